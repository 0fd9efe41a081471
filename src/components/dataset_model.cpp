#include "components/dataset_model.h"

#include "components/messages.h"

namespace qm {

DatasetModel::DatasetModel(Dataset* dataset, QObject* parent)
    : QAbstractTableModel(parent), m_dataset(dataset) {
    if (!dataset)
        return;
    connect(dataset, &Dataset::aboutToReset, this, [this] { beginResetModel(); });
    connect(dataset, &Dataset::reset, this, [this] {
        resolveFields();
        endResetModel();
    });
    connect(dataset, &Dataset::rowAboutToBeInserted, this,
            [this](int row) { beginInsertRows(QModelIndex(), row, row); });
    connect(dataset, &Dataset::rowInserted, this, [this] { endInsertRows(); });
    connect(dataset, &Dataset::rowAboutToBeRemoved, this,
            [this](int row) { beginRemoveRows(QModelIndex(), row, row); });
    connect(dataset, &Dataset::rowRemoved, this, [this] { endRemoveRows(); });
    connect(dataset, &Dataset::rowChanged, this, [this](int row) {
        if (row >= 0 && row < rowCount() && columnCount() > 0)
            emit dataChanged(index(row, 0), index(row, columnCount() - 1));
    });
    connect(dataset, &Dataset::currentChanged, this, [this](int row) { emit currentRowChanged(row); });
    connect(dataset, &QObject::destroyed, this, [this] {
        beginResetModel();
        m_dataset = nullptr;
        m_fieldIndexes.clear();
        endResetModel();
    });
    resolveFields();
}

void DatasetModel::addColumn(const QString& fieldName, const QString& title) {
    beginResetModel();
    m_columns << Column{fieldName, title.isEmpty() ? fieldName : title};
    resolveFields();
    endResetModel();
}

void DatasetModel::clearColumns() {
    beginResetModel();
    m_columns.clear();
    resolveFields();
    endResetModel();
}

void DatasetModel::resolveFields() {
    m_fieldIndexes.clear();
    for (const Column& column : std::as_const(m_columns))
        m_fieldIndexes << (m_dataset ? m_dataset->fieldIndex(column.field) : -1);
}

int DatasetModel::fieldOf(int column) const {
    if (!m_dataset || column < 0)
        return -1;
    if (m_columns.isEmpty())
        return column < m_dataset->FieldCount() ? column : -1;
    return m_fieldIndexes.value(column, -1);
}

QString DatasetModel::columnField(int column) const {
    if (m_columns.isEmpty())
        return m_dataset ? m_dataset->fieldName(column) : QString();
    return column >= 0 && column < m_columns.size() ? m_columns.at(column).field : QString();
}

QStringList DatasetModel::columnFields() const {
    QStringList fields;
    for (const Column& column : m_columns)
        fields << column.field;
    return fields;
}

int DatasetModel::columnOf(const QString& fieldName) const {
    for (int c = 0; c < columnCount(); ++c)
        if (columnField(c).compare(fieldName, Qt::CaseInsensitive) == 0)
            return c;
    return -1;
}

int DatasetModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid() || !m_dataset || !m_dataset->Active())
        return 0;
    return m_dataset->RecordCount();
}

int DatasetModel::columnCount(const QModelIndex& parent) const {
    if (parent.isValid())
        return 0;
    if (m_columns.isEmpty())
        return m_dataset ? m_dataset->FieldCount() : 0;
    return int(m_columns.size());
}

QVariant DatasetModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || !m_dataset)
        return QVariant();
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::TextAlignmentRole)
        return QVariant(); // the view asks for many roles a cell: only these read the value
    const int field = fieldOf(index.column());
    if (field < 0)
        return QVariant();
    const QVariant value = m_dataset->value(index.row(), field);
    if (role != Qt::TextAlignmentRole)
        return value.isNull() ? QVariant() : value;
    const int type = value.metaType().id();
    const bool number = type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::Double;
    return number ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter)) : QVariant();
}

QVariant DatasetModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) {
        if (m_columns.isEmpty())
            return columnField(section);
        return section >= 0 && section < m_columns.size() ? m_columns.at(section).title : QVariant();
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

bool DatasetModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant& value, int role) {
    if (orientation != Qt::Horizontal || (role != Qt::EditRole && role != Qt::DisplayRole) || section < 0 ||
        section >= m_columns.size())
        return false;
    m_columns[section].title = value.toString();
    emit headerDataChanged(orientation, section, section);
    return true;
}

Qt::ItemFlags DatasetModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    const int field = fieldOf(index.column());
    if (m_dataset && !m_dataset->ReadOnly() && field >= 0 && !m_dataset->isCalculated(field))
        result |= Qt::ItemIsEditable;
    return result;
}

bool DatasetModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || !index.isValid() || !(flags(index) & Qt::ItemIsEditable))
        return false;
    Dataset& dataset = *m_dataset;
    // Called from the view's editor: what goes wrong is told here, as nothing above can catch it.
    try {
        if (!dataset.moveTo(index.row()) || !dataset.Edit())
            return false;
        dataset.FieldAt(fieldOf(index.column())).SetValue(value);
        return dataset.Post();
    } catch (const std::exception& e) {
        ShowError(QString::fromUtf8(e.what()));
        return false;
    }
}

int DatasetModel::currentRow() const {
    return m_dataset && m_dataset->Active() ? m_dataset->currentRow() : -1;
}

bool DatasetModel::setCurrentRow(int row) {
    if (!m_dataset || !m_dataset->Active())
        return false;
    return m_dataset->moveTo(row);
}

Bookmark DatasetModel::bookmarkAt(int row) const {
    return m_dataset ? m_dataset->bookmarkAt(row) : Bookmark();
}

} // namespace qm
