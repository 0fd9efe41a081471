#include "components/ui/vintra_db_grid.h"

#include "components/dataset.h"
#include "components/dataset_model.h"
#include "components/decimal_text.h"
#include "components/messages.h"

#include <QApplication>
#include <QDrag>
#include <QHeaderView>
#include <QIdentityProxyModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QStyledItemDelegate>
#include <algorithm>

namespace {

/// Narrowest a filling name column gets; below it the grid scrolls sideways instead.
constexpr int MinimumNameWidth = 120;

enum class CellKind { Text, Integer, Float };

CellKind kindOf(const QVariant& value) {
    switch (value.metaType().id()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return CellKind::Integer;
    case QMetaType::Double:
    case QMetaType::Float:
        return CellKind::Float;
    default:
        return CellKind::Text;
    }
}

/// A cell's value as the editor shows it: numbers in the machine's plain format.
QString cellText(const QVariant& value) {
    if (!value.isValid() || value.isNull())
        return QString();
    return kindOf(value) == CellKind::Float ? qm::DecimalText(value.toDouble()) : value.toString();
}

} // namespace

/// Edits every cell in a line edit, numbers too (no spin box to round a price to two places): the
/// text is read back by the kind of the value the cell held, and text that isn't a number of that
/// kind leaves the cell as it was.
class TVintraDBGrid::CellDelegate : public QStyledItemDelegate {
public:
    explicit CellDelegate(TVintraDBGrid* grid) : QStyledItemDelegate(grid), m_grid(grid) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override {
        auto* edit = new QLineEdit(parent);
        edit->setFrame(false);
        connect(edit, &QLineEdit::textEdited, m_grid, [grid = m_grid] { grid->CellEdited(); });
        return edit;
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        auto* edit = qobject_cast<QLineEdit*>(editor);
        if (!edit) {
            QStyledItemDelegate::setEditorData(editor, index);
            return;
        }
        const QString text = cellText(index.data(Qt::EditRole));
        if (edit->text() != text)
            edit->setText(text);
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override {
        auto* edit = qobject_cast<QLineEdit*>(editor);
        if (!edit) {
            QStyledItemDelegate::setModelData(editor, model, index);
            return;
        }
        const QVariant old = index.data(Qt::EditRole);
        const QString text = edit->text();
        // Nothing typed over a stored value: nothing to write. A new record goes to its post all
        // the same, whose checks then speak.
        const qm::Dataset* dataset = m_grid->Dataset();
        const bool inserting = dataset && dataset->Active() && dataset->State() == qm::dsInsert &&
                               index.row() == dataset->currentRow();
        if (text == cellText(old) && !inserting)
            return;
        QVariant value = text;
        const CellKind kind = kindOf(old);
        if (kind != CellKind::Text && !text.trimmed().isEmpty()) {
            int n = 0;
            double d = 0;
            if (kind == CellKind::Integer && qm::ParseInteger(text, n))
                value = n;
            else if (kind == CellKind::Float && qm::ParseDecimal(text, d))
                value = d;
            else
                return;
        }
        m_grid->m_cellWritten = true;
        // The model posts the row; a refusal of the engine must not cross Qt's event handling.
        try {
            model->setData(index, value, Qt::EditRole);
        } catch (const std::exception& e) {
            ShowError(QString::fromUtf8(e.what()));
        }
    }

private:
    TVintraDBGrid* m_grid;
};

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
    setItemDelegate(new CellDelegate(this));
    connect(m_proxy, &QAbstractItemModel::modelReset, this, [this] {
        FollowDataset(CurrentRow());
        FitNameColumn();
    });
    connect(horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int column) { SectionResized(column); });
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
    FitNameColumn();
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
    const bool name = !m_nameField.isEmpty() && fieldName.compare(m_nameField, Qt::CaseInsensitive) == 0;
    if (name && width == m_nameDefault) {
        m_nameFills = true;
        FitNameColumn();
        return true;
    }
    ++m_sizing;
    setColumnWidth(column, width);
    --m_sizing;
    if (name)
        m_nameFills = false;
    else
        FitNameColumn();
    return true;
}

void TVintraDBGrid::SetNameColumn(const QString& fieldName, int defaultWidth) {
    m_nameField = fieldName;
    m_nameDefault = defaultWidth;
    m_nameFills = true;
    // The name column takes the free width; the last one keeps its own.
    horizontalHeader()->setStretchLastSection(false);
    FitNameColumn();
}

int TVintraDBGrid::StoredColumnWidth(int column) const {
    if (m_nameFills && m_nameDefault > 0 && m_model && column == m_model->columnOf(m_nameField))
        return m_nameDefault;
    return columnWidth(column);
}

void TVintraDBGrid::FitNameColumn() {
    const int column = m_model && m_nameFills ? m_model->columnOf(m_nameField) : -1;
    if (column < 0)
        return;
    int others = 0;
    ++m_sizing;
    for (int c = 0; c < m_proxy->columnCount(); ++c) {
        if (c == column || isColumnHidden(c))
            continue;
        // Beside a filling name column no other column cuts its title (a longer translation).
        const int title = horizontalHeader()->sectionSizeHint(c);
        if (columnWidth(c) < title)
            setColumnWidth(c, title);
        others += columnWidth(c);
    }
    --m_sizing;
    const int width = std::max(MinimumNameWidth, viewport()->width() - others);
    if (columnWidth(column) == width)
        return;
    ++m_sizing;
    setColumnWidth(column, width);
    --m_sizing;
}

void TVintraDBGrid::SectionResized(int column) {
    if (m_sizing > 0 || m_nameField.isEmpty() || !m_model)
        return;
    // The user (or a caller) sized the name column: that width stays. Another column's change
    // moves the free width.
    if (column == m_model->columnOf(m_nameField))
        m_nameFills = false;
    else
        FitNameColumn();
}

bool TVintraDBGrid::viewportEvent(QEvent* event) {
    const bool result = QTableView::viewportEvent(event);
    if (event->type() == QEvent::Resize)
        FitNameColumn();
    return result;
}

bool TVintraDBGrid::CommitEdit() {
    if (state() != QAbstractItemView::EditingState)
        return true;
    // The open editor is a child of the viewport, with the focus while the user types in it.
    QWidget* editor = QApplication::focusWidget();
    while (editor && editor->parentWidget() != viewport())
        editor = editor->parentWidget();
    if (!editor) {
        const QList<QWidget*> children = viewport()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
        for (QWidget* child : children)
            if (child->isVisible())
                editor = child;
    }
    if (!editor)
        return true;
    bool ok = true;
    m_cellWritten = false;
    try {
        commitData(editor);
        // The model posts what it takes; a record still pending then was refused by its checks.
        const qm::Dataset* dataset = Dataset();
        if (m_cellWritten && dataset && dataset->Active() &&
            (dataset->State() == qm::dsEdit || dataset->State() == qm::dsInsert))
            ok = false;
    } catch (const std::exception& e) {
        ShowError(QString::fromUtf8(e.what()));
        ok = false;
    }
    closeEditor(editor, QAbstractItemDelegate::NoHint);
    return ok;
}

void TVintraDBGrid::CellEdited() {
    qm::Dataset* dataset = Dataset();
    if (!dataset || !dataset->Active() || dataset->State() != qm::dsBrowse)
        return;
    try {
        m_editStarted = dataset->Edit();
    } catch (const std::exception& e) {
        ShowError(QString::fromUtf8(e.what()));
    }
}

void TVintraDBGrid::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    const bool started = m_editStarted;
    m_editStarted = false;
    QTableView::closeEditor(editor, hint);
    // Escape in the cell drops what the typing began.
    qm::Dataset* dataset = Dataset();
    if (hint == QAbstractItemDelegate::RevertModelCache && dataset && dataset->Active() &&
        (started || dataset->State() == qm::dsInsert))
        dataset->Cancel();
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
