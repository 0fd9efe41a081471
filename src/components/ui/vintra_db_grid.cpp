#include "components/ui/vintra_db_grid.h"

#include "components/dataset.h"
#include "components/dataset_model.h"
#include "components/messages.h"

#include <QDrag>
#include <QHeaderView>
#include <QIdentityProxyModel>
#include <QKeyEvent>
#include <QMimeData>
#include <algorithm>

/// The dataset model as the view sees it: every row may be dragged, the drag carrying row numbers.
class TVintraDBGrid::DragRows : public QIdentityProxyModel {
public:
    using QIdentityProxyModel::QIdentityProxyModel;
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        const Qt::ItemFlags base = QIdentityProxyModel::flags(index);
        return index.isValid() ? base | Qt::ItemIsDragEnabled : base;
    }
    // Same columns as the source: a title goes straight through, also while there are no rows to
    // map a section by.
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant& value, int role) override {
        return sourceModel() && sourceModel()->setHeaderData(section, orientation, value, role);
    }
};

TVintraDBGrid::TVintraDBGrid(QWidget* parent) : QTableView(parent), m_proxy(new DragRows(this)) {
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setDefaultDropAction(Qt::MoveAction);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    // Row numbers mean nothing to a user; rows are told apart by their names.
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    setModel(m_proxy);
    connect(m_proxy, &QAbstractItemModel::modelReset, this, [this] { FollowDataset(CurrentRow()); });
}

TVintraDBGrid::~TVintraDBGrid() = default;

void TVintraDBGrid::SetDatasetModel(qm::DatasetModel* model) {
    if (m_model)
        disconnect(m_model, nullptr, this, nullptr);
    m_model = model;
    m_proxy->setSourceModel(model);
    if (model)
        connect(model, &qm::DatasetModel::currentRowChanged, this, &TVintraDBGrid::FollowDataset);
    FollowDataset(CurrentRow());
}

qm::Dataset* TVintraDBGrid::Dataset() const {
    return m_model ? m_model->dataset() : nullptr;
}

void TVintraDBGrid::SetKeyDataset(qm::Dataset* dataset) {
    m_keyDataset = dataset;
    m_keyDatasetSet = true;
}

QString TVintraDBGrid::ColumnFieldName(int column) const {
    return m_model && column >= 0 && column < m_model->columnCount() ? m_model->columnField(column)
                                                                     : QString();
}

int TVintraDBGrid::ColumnWidthOf(const QString& fieldName) const {
    const int column = m_model ? m_model->columnOf(fieldName) : -1;
    return column < 0 ? -1 : columnWidth(column);
}

bool TVintraDBGrid::SetColumnWidthOf(const QString& fieldName, int width) {
    const int column = m_model ? m_model->columnOf(fieldName) : -1;
    if (column < 0)
        return false;
    setColumnWidth(column, width);
    return true;
}

QList<int> TVintraDBGrid::SelectedRows() const {
    QList<int> rows;
    if (!selectionModel())
        return rows;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

int TVintraDBGrid::CurrentRow() const {
    return m_model ? m_model->currentRow() : -1;
}

void TVintraDBGrid::FollowDataset(int row) {
    if (!selectionModel() || currentIndex().row() == row)
        return;
    ++m_following;
    if (row >= 0 && row < m_proxy->rowCount()) {
        const QModelIndex index = m_proxy->index(row, std::max(0, currentIndex().column()));
        selectionModel()->setCurrentIndex(index,
                                          QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        scrollTo(index);
    } else {
        selectionModel()->clearCurrentIndex();
        selectionModel()->clearSelection();
    }
    --m_following;
}

void TVintraDBGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (m_following > 0 || !m_model || !current.isValid() || current.row() == CurrentRow())
        return;
    bool moved = false;
    try {
        moved = m_model->setCurrentRow(current.row());
    } catch (const std::exception& e) {
        // A pending post the engine refused: the cursor stays, and so must the view.
        ShowError(QString::fromUtf8(e.what()));
    }
    if (!moved)
        FollowDataset(CurrentRow());
}

void TVintraDBGrid::keyPressEvent(QKeyEvent* event) {
    qm::Dataset* target = m_keyDatasetSet ? m_keyDataset.data() : Dataset();
    if (target && target->Active() && event->modifiers() == Qt::NoModifier) {
        if (event->key() == Qt::Key_Insert) {
            target->Insert();
            event->accept();
            return;
        }
        if (event->key() == Qt::Key_Delete) {
            if (!(target->Bof() && target->Eof()))
                target->Delete();
            event->accept();
            return;
        }
    }
    QTableView::keyPressEvent(event);
}

void TVintraDBGrid::startDrag(Qt::DropActions supportedActions) {
    Q_UNUSED(supportedActions);
    QList<int> rows = SelectedRows();
    if (rows.isEmpty() && CurrentRow() >= 0)
        rows << CurrentRow();
    if (rows.isEmpty())
        return;
    QByteArray payload;
    for (int row : std::as_const(rows))
        payload += QByteArray::number(row) + ' ';
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(RowsMimeType), payload.trimmed());
    auto* drag = new QDrag(this);
    drag->setMimeData(data);
    // The rows stay in the grid: whoever takes them moves the records and reopens the table.
    drag->exec(Qt::MoveAction, Qt::MoveAction);
}
