#pragma once

#include <QList>
#include <QString>

namespace qm {

class Database;

/// One row of a group table as the tree shows it.
struct TreeTableRow {
    int key = 0;
    QString name;
    int parent = 0;
    bool expanded = false;
};

/// The statements of the data-aware tree: it reads its table whole and writes each change of a
/// node (add, delete, rename, expand) as one statement of its own. Names of table and columns are
/// the tree's properties; values go in as parameters.
class TreeTableStore {
public:
    Database* database = nullptr;
    QString table;
    QString fieldKey;
    QString fieldName;
    QString fieldParent = QStringLiteral("parentId");
    QString fieldExpanded = QStringLiteral("isNodeExpanded");

    /// Every row of the table, in the engine's order.
    QList<TreeTableRow> LoadRows() const;
    /// A new row, collapsed.
    void InsertRow(int key, const QString& name, int parent) const;
    void DeleteRows(const QList<int>& keys) const;
    void Rename(int key, const QString& name) const;
    void SetExpanded(int key, bool expanded) const;
};

} // namespace qm
