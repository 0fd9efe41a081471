#pragma once

#include "components/tree_table_store.h"

#include <QTreeWidget>
#include <functional>

namespace qm {
class Database;
}

/// The data-aware tree of groups: one node per row of its table, hung by the parent column, under
/// an optional root node of key 0 that is no row. The tree writes its own rows: a node added or
/// deleted, a label renamed in place, a node expanded or collapsed. It accepts drops of grid rows
/// onto its nodes; whether a drop may land is the owner's rule (OnDragOver). Names are never cut:
/// a tree too narrow for them scrolls sideways.
class TVintraDBTreeView : public QTreeWidget {
    Q_OBJECT
public:
    explicit TVintraDBTreeView(QWidget* parent = nullptr);

    // Properties; set them before Load().
    qm::Database* Database() const { return m_store.database; }
    void SetDatabase(qm::Database* database) { m_store.database = database; }
    QString Table() const { return m_store.table; }
    void SetTable(const QString& table) { m_store.table = table; }
    QString FieldKey() const { return m_store.fieldKey; }
    void SetFieldKey(const QString& field) { m_store.fieldKey = field; }
    QString FieldName() const { return m_store.fieldName; }
    void SetFieldName(const QString& field) { m_store.fieldName = field; }
    QString FieldParent() const { return m_store.fieldParent; }
    void SetFieldParent(const QString& field) { m_store.fieldParent = field; }
    QString FieldExpanded() const { return m_store.fieldExpanded; }
    void SetFieldExpanded(const QString& field) { m_store.fieldExpanded = field; }
    bool ShowRootNode() const { return m_showRootNode; }
    void SetShowRootNode(bool show) { m_showRootNode = show; }
    QString RootNodeName() const { return m_rootNodeName; }
    /// Also relabels a root node that is already there.
    void SetRootNodeName(const QString& name);
    /// Depth of the group levels the callers work with (2 in the record windows); every level
    /// of the table is loaded whatever it says.
    int Level() const { return m_level; }
    void SetLevel(int level) { m_level = level; }

    /// Reads the table and builds the nodes; a row whose parent is missing hangs under the root.
    /// Nothing is selected afterwards.
    void Load();
    /// Sorts the nodes of every level by their labels, without regard to case.
    void AlphaSort();
    /// A new group beside `node` (under the root when `node` is the root or null); selects it.
    QTreeWidgetItem* AddSibling(QTreeWidgetItem* node, int id, const QString& name);
    /// A new group under `node` (under the root when `node` is null); selects it.
    QTreeWidgetItem* AddChild(QTreeWidgetItem* node, int id, const QString& name);
    /// Removes the node with the rows of its whole branch and selects its parent. The root stays.
    void DeleteNode(QTreeWidgetItem* node);

    /// Key of the selected node: 0 on the root or with nothing selected.
    int GetCurrentKey() const;
    /// Selects the node of the key; false when there is none.
    bool Locate(int id);
    /// Number of group nodes, the root not counted.
    int GetCount() const;
    /// The selected key and the keys of every group below it, joined with ", " for an IN list.
    /// On the root: 0 and every group of the tree.
    QString GetChildrenIds() const;

    QTreeWidgetItem* RootNode() const { return m_root; }
    QTreeWidgetItem* NodeOf(int id) const;
    static int KeyOf(const QTreeWidgetItem* node);
    /// A tree to pick a group from: root shown, nothing renamed or dropped, and its hidden header
    /// left out of translation, since the nodes are data.
    static TVintraDBTreeView* MakePickTree(QWidget* parent, const QString& objectName, const QString& table,
                                           const QString& fieldKey, const QString& fieldName);

    /// Asked while grid rows are dragged over the tree: the drag's source and the node under the
    /// pointer (null when there is none). No answer refuses every drop.
    std::function<bool(QObject* source, QTreeWidgetItem* node)> OnDragOver;

    /// Width of the labels' column: the widest visible label with its indentation, at least the
    /// view's width; wider than the view, the tree scrolls sideways.
    void FitColumn();

signals:
    /// Rows dragged from `source` were dropped on the node of `key`, after OnDragOver accepted it.
    void NodeDropped(QObject* source, int key);
    /// The selection moved to another node (also by code): the group changed.
    void CurrentKeyChanged(int key);

protected:
    void updateGeometries() override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QTreeWidgetItem* MakeNode(QTreeWidgetItem* parent, int key, const QString& name);
    void AddNode(QTreeWidgetItem* parent, int id, const QString& name);
    void NodeRenamed(QTreeWidgetItem* node, int column);
    void NodeExpandedChanged(QTreeWidgetItem* node, bool expanded);
    bool DropAccepted(QObject* source, QTreeWidgetItem* node) const;

    qm::TreeTableStore m_store;
    bool m_showRootNode = true;
    QString m_rootNodeName;
    int m_level = 2;
    QTreeWidgetItem* m_root = nullptr;
    int m_quiet = 0; ///< above 0 while the tree changes its own nodes: no writes back
    int m_fitting = 0;
};
