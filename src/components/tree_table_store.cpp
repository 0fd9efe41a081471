#include "components/tree_table_store.h"

#include "components/database.h"
#include "components/sql_format.h"

#include <stdexcept>

namespace qm {

namespace {

const QString kSelectRows = QStringLiteral("SELECT %s, %s, %s, %s \nFROM %s");
const QString kInsertRow =
    QStringLiteral("INSERT INTO %s ( %s, %s, %s, %s ) \nVALUES ( :key, :name, :parent, False )");
const QString kDeleteRow = QStringLiteral("DELETE FROM %s \nWHERE %s = :key");
const QString kRenameRow = QStringLiteral("UPDATE %s \nSET %s = :name \nWHERE %s = :key");
const QString kExpandRow = QStringLiteral("UPDATE %s \nSET %s = :expanded \nWHERE %s = :key");

Database& need(Database* database) {
    if (!database)
        throw std::logic_error("The tree has no database");
    return *database;
}

} // namespace

QList<TreeTableRow> TreeTableStore::LoadRows() const {
    const SqlRows rows =
        need(database).select(format(kSelectRows, {fieldKey, fieldName, fieldParent, fieldExpanded, table}));
    QList<TreeTableRow> result;
    result.reserve(rows.rows.size());
    for (const QVariantList& row : rows.rows)
        result << TreeTableRow{row.value(0).toInt(), row.value(1).toString(), row.value(2).toInt(),
                               row.value(3).toBool()};
    return result;
}

void TreeTableStore::InsertRow(int key, const QString& name, int parent) const {
    need(database).exec(
        format(kInsertRow, {table, fieldKey, fieldName, fieldParent, fieldExpanded}),
        {{QStringLiteral("key"), key}, {QStringLiteral("name"), name}, {QStringLiteral("parent"), parent}});
}

void TreeTableStore::DeleteRows(const QList<int>& keys) const {
    const QString sql = format(kDeleteRow, {table, fieldKey});
    for (int key : keys)
        need(database).exec(sql, {{QStringLiteral("key"), key}});
}

void TreeTableStore::Rename(int key, const QString& name) const {
    need(database).exec(format(kRenameRow, {table, fieldName, fieldKey}),
                        {{QStringLiteral("name"), name}, {QStringLiteral("key"), key}});
}

void TreeTableStore::SetExpanded(int key, bool expanded) const {
    need(database).exec(format(kExpandRow, {table, fieldExpanded, fieldKey}),
                        {{QStringLiteral("expanded"), expanded}, {QStringLiteral("key"), key}});
}

} // namespace qm
