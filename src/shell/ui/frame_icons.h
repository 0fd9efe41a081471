#pragma once

#include <QIcon>
#include <QProxyStyle>
#include <QString>

namespace qm {

/// The pictures of the frame's commands, drawn rather than loaded so that the program needs no
/// icon theme. Names: recipes, ingredients, menus, calendar, units, categories, cookingTips,
/// users, diary, diets, options, systemInfo, print, cut, copy, paste, first, prior, next, last,
/// insert, delete, edit, post, cancel, refresh, recalculate, import, export, mail, priceList,
/// find, findNext, shortcutRecipes, shortcutIngredients, extension, clear. An unknown name gives
/// a null icon. The same name gives the same icon for the whole run, and each size is drawn once.
QIcon FrameIcon(const QString& name);

/// The disabled look of a picture: grey and faded.
QPixmap DisabledPixmap(const QPixmap& normal);

/// The application's style: the standard pictures of windows and dialogs come from the frame's
/// drawings, and disabled pictures are greyed the frame's way.
class TFrameStyle : public QProxyStyle {
    Q_OBJECT
public:
    using QProxyStyle::QProxyStyle;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                const QStyleOption* option) const override;
};

} // namespace qm
