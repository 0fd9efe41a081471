#include "store/shortcuts.h"

#include "store/data_module_main.h"
#include "store/resource_holder.h"

namespace Shortcuts {

namespace {

const char* const SelectAll =
    "SELECT shortcutName, shortcutType, shortcutDefinition \nFROM Shortcuts \nORDER BY shortcutId";
const char* const SelectOne =
    "SELECT shortcutType, shortcutName, shortcutDefinition \nFROM Shortcuts \nWHERE shortcutId = :shortcutId";
const char* const UpdateName =
    "UPDATE Shortcuts \nSET shortcutName = :shortcutName \nWHERE shortcutId = :shortcutId";
const char* const MoveId =
    "UPDATE Shortcuts \nSET shortcutId = :shortcutDestination \nWHERE shortcutId = :shortcutSource";
const char* const DeleteOne = "DELETE FROM Shortcuts \nWHERE shortcutId = :shortcutId";
const char* const CloseGap =
    "UPDATE Shortcuts \nSET shortcutId = shortcutId - 1 \nWHERE shortcutId >= :shortcutId + 1";
const char* const MaxId = "SELECT MAX( shortcutId) AS maxShortcutId \nFROM Shortcuts";
const char* const Insert =
    "INSERT INTO Shortcuts( shortcutId, shortcutName, shortcutType, shortcutDefinition ) \n"
    "VALUES ( :shortcutId, :shortcutName, 1, :shortcutDefinition )";

qm::Database& db() {
    return DataModuleMain->KADaoDatabase;
}
QString sql(const char* text) {
    return QString::fromLatin1(text);
}

void move(int source, int destination) {
    db().exec(sql(MoveId), {{QStringLiteral("shortcutDestination"), destination},
                            {QStringLiteral("shortcutSource"), source}});
}

} // namespace

QList<TShortcut> Load() {
    QList<TShortcut> list;
    for (const QVariantList& row : db().select(sql(SelectAll)).rows)
        list << TShortcut{row.at(0).toString(), row.at(1).toInt(), row.at(2).toString()};
    return list;
}

TShortcut Open(int index) {
    const qm::SqlRows rows = db().select(sql(SelectOne), {{QStringLiteral("shortcutId"), index + 1}});
    if (rows.rows.isEmpty())
        return {};
    return {rows.rows.first().at(1).toString(), rows.rows.first().at(0).toInt(),
            rows.rows.first().at(2).toString()};
}

void Rename(int index, const QString& name) {
    db().exec(sql(UpdateName),
              {{QStringLiteral("shortcutName"), name}, {QStringLiteral("shortcutId"), index + 1}});
}

void MoveUp(int index) {
    const int p = index + 1;
    move(p, 0);
    move(p - 1, p);
    move(0, p - 1);
}

void MoveDown(int index) {
    const int p = index + 1;
    move(p, 0);
    move(p + 1, p);
    move(0, p + 1);
}

void Delete(int index) {
    const int p = index + 1;
    db().exec(sql(DeleteOne), {{QStringLiteral("shortcutId"), p}});
    db().exec(sql(CloseGap), {{QStringLiteral("shortcutId"), p}});
}

int SaveRecipeSearch(const QString& definition) {
    const int id = db().scalar(sql(MaxId)).toInt() + 1;
    db().exec(sql(Insert),
              {{QStringLiteral("shortcutId"), id},
               {QStringLiteral("shortcutName"), GetText(QStringLiteral("NewShortcutToRecipes"), QString())},
               {QStringLiteral("shortcutDefinition"), definition}});
    return id;
}

} // namespace Shortcuts
