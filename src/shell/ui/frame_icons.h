#pragma once

#include <QIcon>
#include <QString>

namespace qm {

/// The pictures of the frame's commands, drawn rather than loaded so that the program needs no
/// icon theme. Names: recipes, ingredients, menus, calendar, units, categories, cookingTips,
/// users, diary, diets, options, systemInfo, print, cut, copy, paste, first, prior, next, last,
/// insert, delete, edit, post, cancel, refresh, recalculate, import, export, mail, priceList,
/// find, findNext, shortcutRecipes, shortcutIngredients. An unknown name gives an empty icon.
QIcon FrameIcon(const QString& name);

} // namespace qm
