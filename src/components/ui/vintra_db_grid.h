#pragma once

#include "components/dataset.h"
#include "components/dataset_model.h"
#include "components/dataset_provider.h"

#include <QList>
#include <QPointer>
#include <QTableView>

/// The record grid: a table view over a DatasetModel with row select and multi-selection. Its
/// current row is the dataset's cursor, both ways. Insert inserts into the dataset and Delete deletes
/// its current record when it has one; selected rows can be dragged out (to a group tree).
///
/// Cells are edited as text: the first key typed into a cell puts the record into edit state, as a
/// data-aware grid does, and Escape there cancels it. Numbers are read and shown as plain decimal
/// text in the machine's format. A name column (SetNameColumn) takes the width the other columns
/// leave free, until the user sizes it.
class TVintraDBGrid : public QTableView, public TDatasetProvider {
    Q_OBJECT
public:
    /// Format of the drag data: the dragged row numbers, for whoever accepts grid rows.
    static constexpr const char* RowsMimeType = "application/x-quillmeal-grid-rows";

    explicit TVintraDBGrid(QWidget* parent = nullptr);
    ~TVintraDBGrid() override;

    /// Shows the model (not owned); the keys act on its dataset unless SetKeyDataset says otherwise.
    void SetDatasetModel(qm::DatasetModel* model);
    qm::DatasetModel* DatasetModel() const { return m_model; }
    qm::Dataset* Dataset() const;
    qm::Dataset* ProvidedDataset() const override { return Dataset(); }
    /// Dataset that the Insert and Delete keys act on; null turns the two keys off.
    void SetKeyDataset(qm::Dataset* dataset);
    qm::Dataset* KeyDataset() const { return m_keyDataset; }

    /// Field name of a column, "" beyond the columns.
    QString ColumnFieldName(int column) const;
    /// Width of the column that shows the field (names compare without case); -1 when none does.
    int ColumnWidthOf(const QString& fieldName) const;
    /// False when no column shows the field.
    bool SetColumnWidthOf(const QString& fieldName, int width);

    /// The column of `fieldName` takes the free width of the grid while its width stays at
    /// `defaultWidth`: a width given through SetColumnWidthOf other than that one, or dragged by
    /// the user, is kept instead. 0 as default: it fills until the user sizes it.
    void SetNameColumn(const QString& fieldName, int defaultWidth);
    /// Whether the name column fills the free width now.
    bool NameColumnFills() const { return m_nameFills; }
    /// The width to remember for a column: the default while the name column fills, else its width.
    int StoredColumnWidth(int column) const;

    /// Writes what is typed in an open cell editor to the record and closes the editor; the model
    /// posts it. False when that post was refused or failed (after its message); the editor is
    /// closed all the same. True when no editor was open or nothing had been typed.
    bool CommitEdit();

    /// Selected rows in ascending order; empty when nothing is marked.
    QList<int> SelectedRows() const;
    /// Row of the dataset's cursor, -1 when there is none.
    int CurrentRow() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    bool viewportEvent(QEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    void FollowDataset(int row);
    /// The name column's share of the width, when it fills.
    void FitNameColumn();
    void SectionResized(int column);
    /// A key typed into a cell editor: the record goes into edit state.
    void CellEdited();

    QPointer<qm::DatasetModel> m_model;
    class DragRows;
    DragRows* m_proxy = nullptr;
    QPointer<qm::Dataset> m_keyDataset;
    bool m_keyDatasetSet = false;
    int m_following = 0; ///< above 0 while the view follows the dataset's cursor
    class CellDelegate;
    QString m_nameField;
    int m_nameDefault = 0;
    bool m_nameFills = false;
    int m_sizing = 0;           ///< above 0 while the grid sizes its columns itself
    bool m_editStarted = false; ///< the open cell editor put the record into edit state
    bool m_cellWritten = false; ///< the editor being committed handed a value to the model
};
