#pragma once

#include "components/dataset.h"

#include <QAbstractTableModel>
#include <QList>
#include <QPointer>

namespace qm {

/// Presents a Dataset to a grid: chosen fields as columns, the dataset's cursor as current row,
/// cell edits through Edit and Post. Calculated fields and read-only datasets are not editable.
class DatasetModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit DatasetModel(Dataset* dataset, QObject* parent = nullptr);

    Dataset* dataset() const { return m_dataset; }

    /// Shows a field as a column; without any column every field shows, titled by its name.
    void addColumn(const QString& fieldName, const QString& title = QString());
    void clearColumns();
    QString columnField(int column) const;
    /// Fields of the chosen columns; empty when every field shows.
    QStringList columnFields() const;
    /// Column showing the field (names compare without case), -1 when none does.
    int columnOf(const QString& fieldName) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    /// Retitles a column (a translation); false for a section that is no chosen column.
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant& value,
                       int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Moves to the row, puts the dataset in edit state, writes the value and posts. False when
    /// the dataset refuses; a refused post leaves the dataset in edit state with the value typed.
    /// A value the engine or the column's range refuses shows in the Error box.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    int currentRow() const;
    /// Moves the dataset's cursor; false when it stays (a pending post was refused).
    bool setCurrentRow(int row);
    Bookmark bookmarkAt(int row) const;

signals:
    /// The dataset's cursor moved (also by code); -1 when it stands on no row.
    void currentRowChanged(int row);

private:
    struct Column {
        QString field;
        QString title;
    };

    int fieldOf(int column) const;
    void resolveFields();

    QPointer<Dataset> m_dataset;
    QList<Column> m_columns;
    QList<int> m_fieldIndexes; ///< dataset field of each shown column, -1 when absent
};

} // namespace qm
