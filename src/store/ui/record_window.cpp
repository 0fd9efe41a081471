#include "store/ui/record_window.h"

#include "components/messages.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "components/vintra_translator.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <QAction>
#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QSplitter>
#include <QVBoxLayout>

std::function<void(const QString&)> TRecordWindow::ShowException;

void GetSelectedIds(TVintraDBGrid* grid, const QString& keyField, bool& containsLocked, QString& idList) {
    containsLocked = false;
    idList.clear();
    if (!grid || !grid->Dataset())
        return;
    GetSelectedIds(*grid->Dataset(), grid->SelectedRows(), keyField, containsLocked, idList);
}

namespace {

/// A pending edit or insert is posted; false when the post was refused.
bool postPending(qm::Dataset& table) {
    if (table.State() == qm::dsEdit || table.State() == qm::dsInsert)
        return table.Post();
    return true;
}

} // namespace

TRecordWindow::TRecordWindow(const qm::RecordKind& kind, QWidget* parent)
    : QWidget(parent), m_kind(kind), m_search(kind) {
    ConnectTables();
    BuildLayout();
}

TRecordWindow::~TRecordWindow() {
    // The views go before the datasets they show.
    delete m_grid;
    delete m_recordModel;
}

void TRecordWindow::ConnectTables() {
    qm::Database* database = DataModuleMain ? &DataModuleMain->KADaoDatabase : nullptr;
    m_recordTable.SetDatabase(database);
    m_recordTable.SetTableName(m_kind.recordTable);
    m_recordTable.SetKeyFields({m_kind.recordKey});
    if (!m_kind.recordName.isEmpty())
        m_recordTable.SetSortedBy(QStringLiteral("[%1] ASC").arg(m_kind.recordName));
    if (m_kind.HasTree()) {
        m_groupTable.SetDatabase(database);
        m_groupTable.SetTableName(m_kind.treeTable);
        m_groupTable.SetKeyFields({m_kind.treeKey});
        // Until a group is chosen the window shows nothing and changes nothing.
        m_groupTable.SetFilter(qm::GroupFilter(m_kind.treeKey, 0));
        m_groupTable.SetFiltered(true);
        m_recordTable.SetFilter(qm::GroupFilter(m_kind.groupColumn, 0));
        m_recordTable.SetFiltered(true);
        m_recordTable.SetReadOnly(true);
    }

    m_recordTable.BeforeInsert = [this](qm::Dataset&) { RecordBeforeInsert(); };
    m_recordTable.OnNewRecord = [this](qm::Dataset& table) {
        int id = 0;
        if (!Guarded([&] { id = DataModuleMain->GetNewId(m_kind.recordTable); }))
            throw Abort();
        table.FieldByName(m_kind.recordKey).SetValue(id);
        if (m_kind.HasTree())
            table.FieldByName(m_kind.groupColumn).SetValue(m_currentGroupKey);
        NewRecord(table);
    };
    m_recordTable.BeforePost = [this](qm::Dataset& table) {
        QString errors;
        CheckRecord(table, errors);
        if (!errors.isEmpty()) {
            ShowError(errors);
            throw Abort();
        }
        RecordChecked(table);
    };
    m_recordTable.AfterPost = [this](qm::Dataset&) { UpdateStatus(); };
    m_recordTable.BeforeDelete = [this](qm::Dataset& table) {
        const int id = table.FieldByName(m_kind.recordKey).AsInteger();
        const bool done = Guarded([&] {
            qm::DeleteRecordRules(m_kind, id, [this](int key) { RunRecordCascade(key); });
            RecordDeleting(id);
        });
        if (!done)
            throw Abort();
    };
    m_recordTable.AfterDelete = [this](qm::Dataset&) { UpdateStatus(); };
    m_recordTable.AfterScroll = [this](qm::Dataset&) {
        RecordAfterScroll();
        UpdateCommands();
    };
    SortInsertedRecords(m_recordTable);
}

void TRecordWindow::BuildLayout() {
    m_recordModel = new qm::DatasetModel(&m_recordTable, this);
    // Every row keeps the columns the grid shows; memos and pictures are read for the row shown.
    connect(m_recordModel, &QAbstractItemModel::modelReset, this,
            [this] { m_recordTable.SetRowFields(m_recordModel->columnFields()); });

    m_splitterVertical = new QSplitter(Qt::Horizontal, this);
    m_splitterVertical->setObjectName(QStringLiteral("SplitterVertical"));
    m_splitterVertical->setChildrenCollapsible(false);

    m_groupPanel = new QWidget(m_splitterVertical);
    auto* groupLayout = new QVBoxLayout(m_groupPanel);
    groupLayout->setContentsMargins(0, 0, 0, 0);
    m_tree = new TVintraDBTreeView(m_groupPanel);
    m_tree->setProperty("vintraSkip", true); // groups are data; the header is hidden
    groupLayout->addWidget(m_tree, 1);

    m_splitterHorizontal = new QSplitter(Qt::Vertical, m_splitterVertical);
    m_splitterHorizontal->setObjectName(QStringLiteral("SplitterHorizontal"));
    m_splitterHorizontal->setChildrenCollapsible(false);
    m_grid = new TVintraDBGrid(m_splitterHorizontal);
    m_grid->SetDatasetModel(m_recordModel);
    m_detailPanel = new QWidget(m_splitterHorizontal);
    m_splitterHorizontal->setStretchFactor(0, 1);
    m_splitterHorizontal->setStretchFactor(1, 0);
    m_splitterVertical->setStretchFactor(0, 0);
    m_splitterVertical->setStretchFactor(1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitterVertical);

    connect(m_splitterVertical, &QSplitter::splitterMoved, this,
            [this] { SplitterMoved(m_splitterVertical); });
    connect(m_splitterHorizontal, &QSplitter::splitterMoved, this,
            [this] { SplitterMoved(m_splitterHorizontal); });

    const auto makeAction = [this](const QString& name, const QString& text, auto handler) {
        auto* action = new QAction(text, this);
        action->setObjectName(name + m_kind.groupWord);
        connect(action, &QAction::triggered, this, handler);
        return action;
    };
    m_addSibling = makeAction(QStringLiteral("MIAddSibling"), tr("Add group"), [this] { AddGroup(false); });
    m_addChild = makeAction(QStringLiteral("MIAddChild"), tr("Add subgroup"), [this] { AddGroup(true); });
    m_renameGroup = makeAction(QStringLiteral("MIRename"), tr("Rename"), [this] { RenameGroup(); });
    m_deleteGroup = makeAction(QStringLiteral("MIDelete"), tr("Delete"), [this] { DeleteGroup(); });

    if (!m_kind.HasTree()) {
        m_groupPanel->hide();
        return;
    }
    qm::Database* database = DataModuleMain ? &DataModuleMain->KADaoDatabase : nullptr;
    m_tree->SetDatabase(database);
    m_tree->SetTable(m_kind.treeTable);
    m_tree->SetFieldKey(m_kind.treeKey);
    m_tree->SetFieldName(m_kind.treeName);
    m_tree->SetFieldParent(QStringLiteral("parentId"));
    m_tree->SetFieldExpanded(QStringLiteral("isNodeExpanded"));
    m_tree->SetShowRootNode(true);
    m_tree->SetLevel(2);
    m_tree->addActions({m_addSibling, m_addChild, m_renameGroup, m_deleteGroup});
    m_tree->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_tree->OnDragOver = [this](QObject* source, QTreeWidgetItem* node) {
        return TreeDragOver(source, node);
    };
    connect(m_tree, &TVintraDBTreeView::NodeDropped, this, [this](QObject* source, int key) {
        if (source == m_grid)
            TreeDragDrop(key);
    });
    connect(m_tree, &TVintraDBTreeView::CurrentKeyChanged, this,
            [this] { Guarded([this] { GroupChange(); }); });
}

// ---------------------------------------------------------------------------------------------
// The frame's side

void TRecordWindow::Find(int next) {
    if (!SupportsFind())
        return;
    const QString pattern = MdiFrame ? MdiFrame->QuickSearchText() : QString();
    Guarded([&] {
        if (const std::optional<qm::SearchHit> hit = m_search.Find(next != 0, pattern)) {
            if (m_kind.HasTree())
                m_tree->Locate(hit->groupKey);
            SelectRecordById(m_recordTable, m_kind.recordKey, hit->recordId);
        }
    });
}

void TRecordWindow::FormActivate() {
    UpdateStatus();
    UpdateCommands();
}

void TRecordWindow::Release() {
    m_search.QueryQuickSearch.Close();
    m_recordTable.Close();
    m_groupTable.Close();
}

// ---------------------------------------------------------------------------------------------
// Groups

void TRecordWindow::GroupChange() {
    ++m_groupChanges;
    if (!m_kind.HasTree())
        return;
    const int key = m_tree->GetCurrentKey();
    m_currentGroupKey = key;
    if (key != 0) {
        if (!postPending(m_groupTable) || !postPending(m_recordTable))
            return;
        m_groupTable.Close();
        m_groupTable.SetFiltered(false);
        m_groupTable.SetFilter(qm::GroupFilter(m_kind.treeKey, key));
        m_groupTable.SetFiltered(true);
        m_recordTable.Close();
        m_recordTable.SetFiltered(false);
        m_recordTable.SetFilter(qm::GroupFilter(m_kind.groupColumn, key));
        m_recordTable.SetFiltered(true);
        m_groupTable.Open();
        m_recordTable.SetReadOnly(false);
    } else {
        // The root is no group: nothing can be added or changed there.
        m_groupTable.Close();
        m_recordTable.Close();
        m_recordTable.SetFiltered(false);
        m_recordTable.SetReadOnly(true);
        if (!m_kind.rootListsAllRecords) {
            m_recordTable.SetFilter(qm::GroupFilter(m_kind.groupColumn, 0));
            m_recordTable.SetFiltered(true);
        }
    }
    m_recordTable.Open();
    UpdateStatus();
    UpdateGroupCommands();
    UpdateCommands();
}

void TRecordWindow::AddGroup(bool child) {
    if (!m_kind.HasTree())
        return;
    Guarded([&] {
        const int id = qm::NewGroupId(m_kind, child);
        const QString name = qm::NewGroupName(m_kind, child);
        if (child)
            m_tree->AddChild(m_tree->currentItem(), id, name);
        else
            m_tree->AddSibling(m_tree->currentItem(), id, name);
    });
    UpdateGroupCommands();
}

void TRecordWindow::RenameGroup() {
    QTreeWidgetItem* node = m_tree->currentItem();
    if (node && TVintraDBTreeView::KeyOf(node) != 0)
        m_tree->editItem(node);
}

void TRecordWindow::DeleteGroup() {
    QTreeWidgetItem* node = m_tree->currentItem();
    const int key = TVintraDBTreeView::KeyOf(node);
    if (!m_kind.HasTree() || !node || key == 0)
        return;
    Guarded([&] {
        qm::DeleteGroupRules(m_kind, key);
        m_tree->DeleteNode(node);
    });
    UpdateGroupCommands();
}

void TRecordWindow::UpdateGroupCommands() {
    const bool group = m_kind.HasTree() && m_tree->GetCurrentKey() != 0 && m_tree->GetCount() > 0;
    m_addSibling->setEnabled(group);
    m_addChild->setEnabled(m_kind.HasTree());
    m_renameGroup->setEnabled(group);
    m_deleteGroup->setEnabled(group);
}

bool TRecordWindow::TreeDragOver(QObject* source, QTreeWidgetItem* node) const {
    return qm::AcceptRecordDrop(source == m_grid, node != nullptr, TVintraDBTreeView::KeyOf(node),
                                m_currentGroupKey);
}

void TRecordWindow::TreeDragDrop(int key) {
    Guarded([&] {
        bool containsLocked = false;
        QString ids;
        // Locked records move as well.
        GetSelectedIds(m_grid, m_kind.recordKey, containsLocked, ids);
        if (ids.isEmpty())
            return;
        const int currentId =
            IsDataSetEmpty(m_recordTable) ? 0 : m_recordTable.FieldByName(m_kind.recordKey).AsInteger();
        qm::MoveRecords(m_kind, key, ids, currentId);
        m_recordTable.Close();
        m_recordTable.Open();
        UpdateStatus();
    });
}

bool TRecordWindow::LocateRecord(int id) {
    bool found = false;
    Guarded([&] {
        if (m_kind.HasTree() && m_kind.groupOfRecord)
            m_tree->Locate(m_kind.groupOfRecord(id));
        found = SelectRecordById(m_recordTable, m_kind.recordKey, id);
    });
    return found;
}

void TRecordWindow::UpdateStatus() {
    Guarded([&] {
        m_groupCount = m_kind.HasTree() ? DataModuleMain->CountItems(m_kind.recordTable, m_kind.groupColumn,
                                                                     m_currentGroupKey)
                                        : 0;
        m_statusText = qm::StatusCountText(m_kind, m_groupCount);
    });
    if (MdiFrame && !m_statusText.isEmpty())
        MdiFrame->SetStatusCount(m_statusText);
}

// ---------------------------------------------------------------------------------------------
// Hooks

void TRecordWindow::CheckRecord(qm::Dataset&, QString&) {}

void TRecordWindow::RecordChecked(qm::Dataset&) {}

void TRecordWindow::NewRecord(qm::Dataset&) {}

void TRecordWindow::RecordBeforeInsert() {
    if (m_nameEdit)
        m_nameEdit->setFocus();
}

void TRecordWindow::RecordDeleting(int) {}

void TRecordWindow::RunRecordCascade(int id) {
    qm::RunCascade(m_kind.recordCascade, id);
}

void TRecordWindow::RecordAfterScroll() {}

void TRecordWindow::UpdateCommands() {}

QList<TVintraDBGrid*> TRecordWindow::RememberedGrids() const {
    return {m_grid};
}

bool RunGuarded(const std::function<void()>& command) {
    try {
        command();
        return true;
    } catch (const Abort&) {
        return false;
    } catch (const std::exception& e) {
        TRecordWindow::ReportException(QString::fromUtf8(e.what()));
        return false;
    }
}

void TranslateForm(QWidget* form) {
    if (!FormResourceHolder)
        return;
    TVintraTranslator translator(form);
    translator.SetDictionary(&FormResourceHolder->VintraDictionary);
    translator.Translate();
}

bool TRecordWindow::Guarded(const std::function<void()>& command) {
    return RunGuarded(command);
}

void TRecordWindow::ReportException(const QString& text) {
    if (ShowException)
        ShowException(text);
    else
        ShowError(text);
}

// ---------------------------------------------------------------------------------------------
// Life and geometry

QWidget* TRecordWindow::LayoutTarget() const {
    auto* sub = qobject_cast<QMdiSubWindow*>(parentWidget());
    return sub ? static_cast<QWidget*>(sub) : const_cast<TRecordWindow*>(this);
}

void TRecordWindow::RestoreLayout() {
    QStringList fields;
    const QList<TVintraDBGrid*> grids = RememberedGrids();
    for (TVintraDBGrid* grid : grids)
        for (int c = 0; grid && c < grid->DatasetModel()->columnCount(); ++c)
            fields << grid->ColumnFieldName(c);
    const qm::WindowLayout layout =
        qm::ReadWindowLayout(m_kind.optionPrefix, m_kind.hasSplitterVertical && m_kind.HasTree(),
                             m_kind.hasSplitterHorizontal, m_kind.columns, fields);
    QWidget* target = LayoutTarget();
    // The window's minimum is that of its frame, as the sizes restored here are the frame's.
    if (target != this && !minimumSize().isNull()) {
        target->setMinimumSize(target->minimumSize().expandedTo(minimumSize()));
        setMinimumSize(0, 0);
    }
    if (layout.maximized) {
        target->setWindowState(Qt::WindowMaximized);
    } else {
        target->setWindowState(Qt::WindowNoState);
        target->resize(layout.width, layout.height);
        target->move(layout.left, layout.top);
    }
    if (layout.splitterVertical >= 0) {
        const int total = std::max(m_splitterVertical->width(), target->width());
        m_splitterVertical->setSizes({layout.splitterVertical, std::max(1, total - layout.splitterVertical)});
    }
    if (layout.splitterHorizontal >= 0) {
        const int total = std::max(m_splitterHorizontal->height(), target->height());
        m_splitterHorizontal->setSizes(
            {std::max(1, total - layout.splitterHorizontal), layout.splitterHorizontal});
    }
    m_verticalSizes = m_splitterVertical->sizes();
    m_horizontalSizes = m_splitterHorizontal->sizes();
    for (const auto& [field, width] : layout.columnWidths)
        for (TVintraDBGrid* grid : grids)
            if (grid)
                grid->SetColumnWidthOf(field, width);
}

qm::WindowLayout TRecordWindow::CurrentLayout() const {
    qm::WindowLayout layout;
    const QWidget* target = LayoutTarget();
    layout.maximized = target->isMaximized();
    layout.height = target->height();
    layout.width = target->width();
    layout.top = target->y();
    layout.left = target->x();
    if (m_kind.hasSplitterVertical && m_kind.HasTree())
        layout.splitterVertical = m_splitterVertical->sizes().value(0);
    if (m_kind.hasSplitterHorizontal)
        layout.splitterHorizontal = m_splitterHorizontal->sizes().value(1);
    for (TVintraDBGrid* grid : RememberedGrids())
        for (int c = 0; grid && c < grid->DatasetModel()->columnCount(); ++c)
            layout.columnWidths << qMakePair(grid->ColumnFieldName(c), grid->StoredColumnWidth(c));
    return layout;
}

void TRecordWindow::StoreLayout() {
    qm::StoreWindowLayout(m_kind.optionPrefix, CurrentLayout(), m_kind.columns);
}

void TRecordWindow::SplitterMoved(QSplitter* splitter) {
    const bool vertical = splitter == m_splitterVertical;
    QList<int>& accepted = vertical ? m_verticalSizes : m_horizontalSizes;
    const QList<int> sizes = splitter->sizes();
    const bool allowed = vertical ? qm::VerticalSplitterAllowed(m_kind, sizes.value(0), width())
                                  : qm::HorizontalSplitterAllowed(m_kind, sizes.value(1), height());
    if (allowed)
        accepted = sizes;
    else if (!accepted.isEmpty())
        splitter->setSizes(accepted);
}

void TRecordWindow::FormShow() {
    // Translation first, then geometry: each window takes the language in force at its show.
    TranslateForm(this);
    RestoreLayout();
    if (!m_kind.HasTree()) {
        Guarded([this] { m_recordTable.Open(); });
        UpdateGroupCommands();
        UpdateStatus();
        UpdateCommands();
        return;
    }
    Guarded([this] {
        m_tree->SetRootNodeName(qm::RootNodeName(m_kind));
        m_tree->Load();
        m_tree->AlphaSort();
        m_groupTable.Open();
        m_recordTable.Open();
    });
    const int before = m_groupChanges;
    m_tree->setCurrentItem(m_tree->topLevelItem(0));
    if (m_groupChanges == before)
        Guarded([this] { GroupChange(); });
    UpdateGroupCommands();
}

void TRecordWindow::FormClose() {
    Guarded([this] { StoreLayout(); });
}

void TRecordWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_shown)
        return;
    m_shown = true;
    FormShow();
}

void TRecordWindow::closeEvent(QCloseEvent* event) {
    FormClose();
    event->accept();
}
