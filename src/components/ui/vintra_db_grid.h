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

    /// Selected rows in ascending order; empty when nothing is marked.
    QList<int> SelectedRows() const;
    /// Row of the dataset's cursor, -1 when there is none.
    int CurrentRow() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    void FollowDataset(int row);

    QPointer<qm::DatasetModel> m_model;
    class DragRows;
    DragRows* m_proxy = nullptr;
    QPointer<qm::Dataset> m_keyDataset;
    bool m_keyDatasetSet = false;
    int m_following = 0; ///< above 0 while the view follows the dataset's cursor
};
