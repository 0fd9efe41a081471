#pragma once

#include <QList>
#include <QString>

/// One entry of the shortcut bar.
struct TShortcut {
    QString name;
    int type = 0; ///< 1 recipes, 2 ingredients; also the icon index + 1
    QString definition;
};

/// The statements of the shortcut bar. Positions are bar indexes from 0; the id is index + 1.
namespace Shortcuts {

QList<TShortcut> Load();
/// The shortcut at a bar index; an empty one when there is no such row.
TShortcut Open(int index);
void Rename(int index, const QString& name);
/// Swaps with the neighbour through the parking id 0; the ends of the list are not tested.
void MoveUp(int index);
void MoveDown(int index);
/// Deletes without a question and closes the gap.
void Delete(int index);
/// Appends a recipe search under the name NewShortcutToRecipes; returns its id.
int SaveRecipeSearch(const QString& definition);

} // namespace Shortcuts
