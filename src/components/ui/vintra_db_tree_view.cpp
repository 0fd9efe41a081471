#include "components/ui/vintra_db_tree_view.h"

#include "components/messages.h"
#include "components/ui/vintra_db_grid.h"

#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHash>
#include <QHeaderView>
#include <QMimeData>
#include <QSet>
#include <QTreeWidgetItemIterator>
#include <functional>

namespace {

constexpr int KeyRole = Qt::UserRole;
constexpr int StoredNameRole = Qt::UserRole + 1;

/// Sorts labels as the user reads them: without regard to case, by the locale.
class TreeNode : public QTreeWidgetItem {
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem& other) const override {
        return text(0).toLower().localeAwareCompare(other.text(0).toLower()) < 0;
    }
};

/// Exceptions must not cross Qt's signal machinery: a write the engine refuses is reported here.
template <typename F> bool reportFailure(F&& write) {
    try {
        write();
        return true;
    } catch (const std::exception& e) {
        ShowError(QString::fromUtf8(e.what()));
        return false;
    }
}

} // namespace

TVintraDBTreeView::TVintraDBTreeView(QWidget* parent) : QTreeWidget(parent) {
    setHeaderHidden(true);
    setColumnCount(1);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    // Long names make the tree scroll sideways rather than lose their ends.
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Interactive);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTextElideMode(Qt::ElideNone);
    connect(this, &QTreeWidget::itemChanged, this, &TVintraDBTreeView::NodeRenamed);
    connect(this, &QTreeWidget::itemExpanded, this,
            [this](QTreeWidgetItem* node) { NodeExpandedChanged(node, true); });
    connect(this, &QTreeWidget::itemCollapsed, this,
            [this](QTreeWidgetItem* node) { NodeExpandedChanged(node, false); });
    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* current) {
        if (m_quiet == 0)
            emit CurrentKeyChanged(KeyOf(current));
    });
}

void TVintraDBTreeView::FitColumn() {
    if (m_fitting > 0)
        return;
    ++m_fitting;
    // The labels' width (with their indentation), at least the width of the view.
    const int width = std::max(viewport()->width(), sizeHintForColumn(0));
    if (columnWidth(0) != width)
        setColumnWidth(0, width);
    --m_fitting;
}

void TVintraDBTreeView::updateGeometries() {
    FitColumn();
    QTreeWidget::updateGeometries();
}

void TVintraDBTreeView::SetRootNodeName(const QString& name) {
    m_rootNodeName = name;
    if (m_root) {
        ++m_quiet;
        m_root->setText(0, name);
        --m_quiet;
    }
}

int TVintraDBTreeView::KeyOf(const QTreeWidgetItem* node) {
    return node ? node->data(0, KeyRole).toInt() : 0;
}

QTreeWidgetItem* TVintraDBTreeView::MakeNode(QTreeWidgetItem* parent, int key, const QString& name) {
    auto* node = parent ? new TreeNode(parent) : new TreeNode(this);
    node->setData(0, KeyRole, key);
    node->setText(0, name);
    node->setData(0, StoredNameRole, name);
    node->setFlags(node->flags() | Qt::ItemIsEditable | Qt::ItemIsDropEnabled);
    return node;
}

void TVintraDBTreeView::Load() {
    ++m_quiet;
    clear();
    m_root = nullptr;
    if (m_showRootNode) {
        m_root = new TreeNode(this);
        m_root->setData(0, KeyRole, 0);
        m_root->setText(0, m_rootNodeName);
        m_root->setFlags((m_root->flags() & ~Qt::ItemIsEditable) | Qt::ItemIsDropEnabled);
    }
    const QList<qm::TreeTableRow> rows = m_store.LoadRows();
    QHash<int, QTreeWidgetItem*> nodes;
    QHash<int, const qm::TreeTableRow*> byKey;
    for (const qm::TreeTableRow& row : rows)
        byKey.insert(row.key, &row);
    // Parents before children, whatever the order of the rows; a cycle ends under the root.
    QSet<int> visiting;
    std::function<QTreeWidgetItem*(const qm::TreeTableRow&)> place = [&](const qm::TreeTableRow& row) {
        if (QTreeWidgetItem* done = nodes.value(row.key))
            return done;
        visiting.insert(row.key);
        QTreeWidgetItem* parent = m_root;
        if (row.parent != 0 && byKey.contains(row.parent) && !visiting.contains(row.parent))
            parent = place(*byKey.value(row.parent));
        visiting.remove(row.key);
        QTreeWidgetItem* node = MakeNode(parent, row.key, row.name);
        nodes.insert(row.key, node);
        return node;
    };
    for (const qm::TreeTableRow& row : rows)
        place(row);
    if (m_root)
        m_root->setExpanded(true);
    for (const qm::TreeTableRow& row : rows)
        if (row.expanded)
            nodes.value(row.key)->setExpanded(true);
    setCurrentItem(nullptr);
    --m_quiet;
}

void TVintraDBTreeView::AlphaSort() {
    ++m_quiet;
    sortItems(0, Qt::AscendingOrder);
    --m_quiet;
}

void TVintraDBTreeView::AddNode(QTreeWidgetItem* parent, int id, const QString& name) {
    // Under the root (or at the top when no root shows) the row's parent is 0.
    m_store.InsertRow(id, name, KeyOf(parent));
    ++m_quiet;
    QTreeWidgetItem* node = MakeNode(parent, id, name);
    --m_quiet;
    if (parent)
        parent->setExpanded(true);
    setCurrentItem(node);
    scrollToItem(node);
}

TVintraDBTreeView* TVintraDBTreeView::MakePickTree(QWidget* parent, const QString& objectName,
                                                   const QString& table, const QString& fieldKey,
                                                   const QString& fieldName) {
    auto* tree = new TVintraDBTreeView(parent);
    tree->setObjectName(objectName);
    tree->SetTable(table);
    tree->SetFieldKey(fieldKey);
    tree->SetFieldName(fieldName);
    tree->SetShowRootNode(true);
    tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tree->setAcceptDrops(false);
    tree->setProperty("vintraSkip", true);
    return tree;
}

QTreeWidgetItem* TVintraDBTreeView::AddSibling(QTreeWidgetItem* node, int id, const QString& name) {
    QTreeWidgetItem* parent = (!node || node == m_root) ? m_root : node->parent();
    AddNode(parent, id, name);
    return currentItem();
}

QTreeWidgetItem* TVintraDBTreeView::AddChild(QTreeWidgetItem* node, int id, const QString& name) {
    AddNode(node ? node : m_root, id, name);
    return currentItem();
}

void TVintraDBTreeView::DeleteNode(QTreeWidgetItem* node) {
    if (!node || node == m_root)
        return;
    QList<int> keys;
    std::function<void(QTreeWidgetItem*)> collect = [&](QTreeWidgetItem* n) {
        keys << KeyOf(n);
        for (int i = 0; i < n->childCount(); ++i)
            collect(n->child(i));
    };
    collect(node);
    m_store.DeleteRows(keys);
    QTreeWidgetItem* parent = node->parent();
    ++m_quiet;
    delete node;
    setCurrentItem(parent ? parent : topLevelItem(0));
    --m_quiet;
    emit CurrentKeyChanged(GetCurrentKey());
}

int TVintraDBTreeView::GetCurrentKey() const {
    return KeyOf(currentItem());
}

QTreeWidgetItem* TVintraDBTreeView::NodeOf(int id) const {
    for (QTreeWidgetItemIterator it(const_cast<TVintraDBTreeView*>(this)); *it; ++it)
        if (KeyOf(*it) == id)
            return *it;
    return nullptr;
}

bool TVintraDBTreeView::Locate(int id) {
    QTreeWidgetItem* node = NodeOf(id);
    if (!node)
        return false;
    setCurrentItem(node);
    scrollToItem(node);
    return true;
}

int TVintraDBTreeView::GetCount() const {
    int count = 0;
    for (QTreeWidgetItemIterator it(const_cast<TVintraDBTreeView*>(this)); *it; ++it)
        if (*it != m_root)
            ++count;
    return count;
}

QString TVintraDBTreeView::GetChildrenIds() const {
    QStringList ids;
    std::function<void(const QTreeWidgetItem*)> walk = [&](const QTreeWidgetItem* n) {
        ids << QString::number(KeyOf(n));
        for (int i = 0; i < n->childCount(); ++i)
            walk(n->child(i));
    };
    if (const QTreeWidgetItem* current = currentItem()) {
        walk(current);
    } else {
        ids << QStringLiteral("0");
        for (int i = 0; i < topLevelItemCount(); ++i)
            if (topLevelItem(i) != m_root)
                walk(topLevelItem(i));
    }
    return ids.join(QStringLiteral(", "));
}

void TVintraDBTreeView::NodeRenamed(QTreeWidgetItem* node, int column) {
    if (m_quiet > 0 || column != 0 || !node || node == m_root)
        return;
    const QString stored = node->data(0, StoredNameRole).toString();
    const QString typed = node->text(0);
    if (typed == stored)
        return;
    // An emptied label is taken back rather than written.
    const bool written =
        !typed.trimmed().isEmpty() && reportFailure([&] { m_store.Rename(KeyOf(node), typed); });
    ++m_quiet;
    if (written)
        node->setData(0, StoredNameRole, typed);
    else
        node->setText(0, stored);
    --m_quiet;
    FitColumn();
}

void TVintraDBTreeView::NodeExpandedChanged(QTreeWidgetItem* node, bool expanded) {
    if (m_quiet > 0 || !node || node == m_root)
        return;
    reportFailure([&] { m_store.SetExpanded(KeyOf(node), expanded); });
}

bool TVintraDBTreeView::DropAccepted(QObject* source, QTreeWidgetItem* node) const {
    return OnDragOver && OnDragOver(source, node);
}

void TVintraDBTreeView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData() && event->mimeData()->hasFormat(QString::fromLatin1(TVintraDBGrid::RowsMimeType)))
        event->acceptProposedAction();
    else
        event->ignore();
}

void TVintraDBTreeView::dragMoveEvent(QDragMoveEvent* event) {
    QTreeWidgetItem* node = itemAt(event->position().toPoint());
    if (event->mimeData() && event->mimeData()->hasFormat(QString::fromLatin1(TVintraDBGrid::RowsMimeType)) &&
        DropAccepted(event->source(), node)) {
        event->setDropAction(Qt::MoveAction);
        event->accept(visualItemRect(node));
    } else {
        event->ignore(node ? visualItemRect(node) : QRect());
    }
}

void TVintraDBTreeView::dropEvent(QDropEvent* event) {
    QTreeWidgetItem* node = itemAt(event->position().toPoint());
    if (!event->mimeData() ||
        !event->mimeData()->hasFormat(QString::fromLatin1(TVintraDBGrid::RowsMimeType)) ||
        !DropAccepted(event->source(), node)) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::MoveAction);
    event->accept();
    emit NodeDropped(event->source(), KeyOf(node));
}
