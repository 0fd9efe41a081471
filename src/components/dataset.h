#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

namespace qm {

class Database;
class Dataset;

/// States of a dataset; dsCalcFields holds only while OnCalcFields runs.
enum DatasetState { dsInactive, dsBrowse, dsEdit, dsInsert, dsCalcFields };

/// A misuse of a dataset (unknown field, write outside edit state, no key to write by).
class DatasetError : public std::runtime_error {
public:
    explicit DatasetError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

/// A value outside the range its column declares (a 16-bit smallint, a 32-bit integer, text of at
/// most n characters). The value is refused before anything is stored.
class FieldRangeError : public DatasetError {
public:
    using DatasetError::DatasetError;
};

/// A stable handle of one record: its key values, or all its data values when there is no key.
using Bookmark = QVariantList;

/// One column of the record that the dataset presents now (edit buffer, cursor row or the row
/// being calculated). A cheap handle: read it when needed rather than keeping it.
class Field {
public:
    Field(Dataset* dataset, int index) : m_dataset(dataset), m_index(index) {}

    int Index() const { return m_index; }
    QString FieldName() const;
    bool IsCalculated() const;

    QVariant Value() const;
    bool IsNull() const;
    /// Numbers round to the nearest integer; null and unparsable text give 0.
    int AsInteger() const;
    double AsFloat() const;
    /// Null gives an empty text; floating values show up to 15 significant digits.
    QString AsString() const;
    bool AsBoolean() const;

    /// Writable in edit and insert state (calculated fields only inside OnCalcFields).
    /// Empty text is stored as null, so that "required" checks see a cleared edit as missing.
    void SetValue(const QVariant& value);
    void SetAsInteger(int value) { SetValue(value); }
    void SetAsFloat(double value) { SetValue(value); }
    void SetAsString(const QString& value) { SetValue(value); }
    void SetAsBoolean(bool value) { SetValue(value); }
    void Clear() { SetValue(QVariant()); }

private:
    Dataset* m_dataset;
    int m_index;
};

/// Rows of a table or of a SELECT read into memory, with a cursor, browse/edit/insert states
/// and the events that record windows hang their rules on. A handler refuses an operation by
/// throwing Abort: the operation returns false and the dataset stays as it was.
///
/// When events fire: AfterScroll after Open, First, Last, a hit of Locate or GotoBookmark, Next and
/// Prior unless already at Eof/Bof, a move by moveTo, Insert/Append (after OnNewRecord) and Delete
/// (after AfterDelete). Moving while in edit or insert state posts first, and stays when the post is
/// refused. Abort thrown by an After* handler is swallowed: the operation is already done. Any
/// other exception, DbError included, reaches the caller with the state unchanged.
///
/// A table with row fields keeps only those (and its key) for every row; its other columns (memos,
/// pictures, rich text) are read for one row at a time, by key, when a field of that row is read
/// or the row is edited. Writing a value outside its column's declared range throws
/// FieldRangeError: integers on assignment, text lengths on Post.
class Dataset : public QObject {
    Q_OBJECT
public:
    using Event = std::function<void(Dataset&)>;

    explicit Dataset(QObject* parent = nullptr);
    ~Dataset() override;

    // --- source ---
    void SetDatabase(Database* database) { m_database = database; }
    Database* GetDatabase() const { return m_database; }
    /// Table mode: rows of the table; Post and Delete write by the key columns (read from the
    /// table's primary key when none are given).
    void SetTableName(const QString& table);
    QString TableName() const { return m_tableName; }
    void SetKeyFields(const QStringList& fields) { m_keyFields = fields; }
    /// Fields held for every row of a table (the grid's columns); the key, and columns that
    /// calculated fields read, are held as well. Empty: every column. Applies at the next Open.
    void SetRowFields(const QStringList& fields) { m_rowFields = fields; }
    QStringList RowFields() const { return m_rowFields; }
    QStringList KeyFields() const { return m_keyFields; }
    /// ORDER BY terms ("unitName", "[UnitName] ASC", "a, b DESC"); text sorts without regard to case.
    void SetSortedBy(const QString& orderBy) { m_sortedBy = orderBy; }
    QString SortedBy() const { return m_sortedBy; }
    /// Query mode: any SELECT with named parameters. Makes the dataset read-only; a query that
    /// must write names its table with SetTableName and clears ReadOnly.
    void SetSql(const QString& sql);
    QString Sql() const { return m_sql; }
    bool IsQuery() const { return !m_sql.isEmpty(); }

    void SetParam(const QString& name, const QVariant& value);
    QVariant Param(const QString& name) const;
    void ClearParams() { m_params.clear(); }
    /// Parameters named like a field of the master take that field's value of the master's
    /// current record; the detail re-opens when those values change.
    void SetMasterSource(Dataset* master);
    Dataset* MasterSource() const { return m_master; }

    /// A SQL condition added to the WHERE while Filtered is on; changes apply at the next Open.
    void SetFilter(const QString& condition) { m_filter = condition; }
    QString Filter() const { return m_filter; }
    void SetFiltered(bool on) { m_filtered = on; }
    bool Filtered() const { return m_filtered; }

    void SetReadOnly(bool readOnly) { m_readOnly = readOnly; }
    bool ReadOnly() const { return m_readOnly; }

    /// Declares a calculated field; OnCalcFields fills it. Declare before Open.
    void AddCalculatedField(const QString& name);
    QStringList CalculatedFields() const { return m_calcNames; }

    // --- life ---
    /// Reads the rows and fires AfterScroll; throws DbError when the statement fails.
    void Open();
    /// Closes without posting: a pending edit or insert is dropped.
    void Close();
    void SetActive(bool active);
    bool Active() const { return m_state != dsInactive; }
    DatasetState State() const;
    /// Reads the rows again with the statement of the last Open, keeping the cursor on the same
    /// record when it is still there. Posts a pending edit first.
    void Refresh();

    // --- cursor ---
    void First();
    void Last();
    void Next();
    void Prior();
    bool Eof() const { return m_eof; }
    bool Bof() const { return m_bof; }
    bool IsEmpty() const { return RecordCount() == 0; }
    /// Rows held, including a record being inserted.
    int RecordCount() const;
    /// Exact match (text compared with case); moves and fires AfterScroll, or returns false and stays.
    bool Locate(const QString& field, const QVariant& value);
    bool Locate(const QStringList& fields, const QVariantList& values);

    Bookmark GetBookmark() const;
    bool GotoBookmark(const Bookmark& bookmark);
    bool BookmarkValid(const Bookmark& bookmark) const;

    // --- fields ---
    /// Throws DatasetError for an unknown name (names compare without case).
    Field FieldByName(const QString& name);
    Field FieldAt(int index) { return Field(this, index); }
    int FieldCount() const { return int(m_fieldNames.size()); }

    // --- changes ---
    /// False when read-only. On an empty dataset it inserts, as grids expect.
    bool Edit();
    bool Insert();
    bool Append();
    /// Writes the record; false when BeforePost refuses (the values typed stay in the buffer).
    bool Post();
    void Cancel();
    /// False when read-only, empty or refused by BeforeDelete. In insert state it cancels.
    bool Delete();
    /// Whether a field was written since Edit, or since OnNewRecord ran.
    bool Modified() const { return m_changed; }

    // --- events ---
    Event BeforeInsert;
    Event OnNewRecord;
    Event BeforePost;
    Event AfterPost;
    Event AfterScroll;
    Event BeforeDelete;
    Event AfterDelete;
    Event OnCalcFields;

    // --- row access for item models ---
    int currentRow() const { return m_current; }
    /// Moves the cursor (posting a pending edit); AfterScroll fires when the row changes.
    bool moveTo(int row);
    /// Value of a row, seen through the edit buffer on the record being edited. A column that is
    /// not held is read from the table (null when that fails).
    QVariant value(int row, int field) const;
    /// Whether the field is kept for every row rather than read for one row when needed.
    bool isHeld(int field) const;
    QString fieldName(int field) const { return m_fieldNames.value(field); }
    int fieldIndex(const QString& name) const;
    bool isCalculated(int field) const { return field >= m_dataFieldCount && field < FieldCount(); }
    Bookmark bookmarkAt(int row) const;

signals:
    void aboutToReset();
    void reset();
    void rowAboutToBeInserted(int row);
    void rowInserted(int row);
    void rowAboutToBeRemoved(int row);
    void rowRemoved(int row);
    /// Values of a row changed (typed, posted, cancelled or recalculated).
    void rowChanged(int row);
    /// The cursor stands on another record (or on none: -1).
    void currentChanged(int row);
    void stateChanged(qm::DatasetState state);

private:
    friend class Field;
    class RowStore;
    struct TableInfo;
    /// What a column's declared type allows; integer bounds inclusive, maxLength -1 for any.
    struct FieldRange {
        bool integer = false;
        qint64 min = 0;
        qint64 max = 0;
        int maxLength = -1;
    };
    /// Values of the columns that are not held, read for one row.
    struct FetchedRow {
        int row = -1;
        QVariantList values;
    };

    QVariant currentValue(int field) const;
    void setFieldValue(int field, const QVariant& value);
    void requireActive() const;
    void setState(DatasetState state);
    bool checkBrowseMode();
    void runAfterEvent(const Event& event);
    void fireAfterScroll();
    void setCurrent(int row);
    void currentRowChanged();
    void notifyDetails();
    void calculate(QVariantList& row, bool bulk = false);
    bool startInsert(bool append);
    void dropInsertRow();

    QString selectText(const QStringList& columns = {}) const;
    QVariantMap effectiveParams() const;
    QVariantList boundValues(const QVariantMap& params) const;
    void onMasterChanged();
    const TableInfo& tableInfo();
    QList<int> resolveKeys(const QHash<QString, int>& lookup);
    bool openWith(const QVariantMap& params);
    QHash<QString, int> columnLookup(const QStringList& columns) const;
    void openQuery(const QVariantMap& params);
    bool openTable(const QVariantMap& params);
    void setFields(const QStringList& dataNames, const QList<int>& held);
    void addRow(RowStore& store, QVariantList& values);
    void fillOpenedRows(const std::function<void(RowStore&)>& fill);
    void commitOpen();
    QVariantList keyValues(const QVariantList& row) const;
    QVariantList keyValuesAt(int row) const;
    QString keyCondition(const QVariantList& keys, QVariantMap& params) const;
    void requireWriteTarget(bool needKey) const;
    void checkRange(int field, const QVariant& value, bool text) const;
    void checkRanges() const;
    void writeInsert();
    void writeUpdate();
    void reread(QVariantList& row);
    int findBookmark(const Bookmark& bookmark) const;
    /// Every field of a row, the columns not held read from the table; throws DbError.
    QVariantList fullRow(int row) const;
    const FetchedRow& fetched(int row) const;
    void forgetFetched() const;
    void storeRow(int row, const QVariantList& full);
    int findRow(const QList<int>& columns, const QVariantList& values);

    Database* m_database = nullptr;
    QString m_tableName;
    QString m_sql;
    QString m_sortedBy;
    QString m_filter;
    QStringList m_keyFields;
    QStringList m_rowFields;
    QStringList m_calcNeeds; ///< columns that calculated fields read, held although no row field
    QStringList m_calcNames;
    QVariantMap m_params;
    QPointer<Dataset> m_master;
    QList<QPointer<Dataset>> m_details;
    bool m_filtered = false;
    bool m_readOnly = false;

    // What the last Open read with, for Refresh and for re-binding a detail.
    QString m_openSql;
    QVariantMap m_openParams;
    QVariantList m_boundValues;
    QString m_openFilter;
    bool m_readByCursor = false; ///< the last Open named the table's columns rather than ran a SELECT

    QStringList m_fieldNames;
    QHash<QString, int> m_fieldLookup; ///< lower-case name -> index
    int m_dataFieldCount = 0;
    QList<int> m_keyIndexes;
    QList<int> m_slotOf;              ///< per field: its column in m_store, -1 when read per row
    QList<int> m_fieldOfSlot;         ///< per column of m_store: the field
    QList<int> m_unheld;              ///< data fields read per row, in the order of m_fetchSql
    QString m_fetchSql;               ///< reads the fields not held of one row by key
    std::vector<FieldRange> m_ranges; ///< per data field, from the table's declared types
    std::unique_ptr<RowStore> m_store;
    mutable FetchedRow m_fetched[2]; ///< the current row's, and the last other row's
    int m_current = -1;
    bool m_bof = true;
    bool m_eof = true;
    DatasetState m_state = dsInactive;

    QVariantList m_buffer;  ///< the record in edit or insert state
    QList<bool> m_assigned; ///< per field of m_buffer: written since Edit/Insert, so to be stored
    bool m_changed = false;
    int m_returnRow = -1; ///< cursor to go back to when an insert is cancelled
    QVariantList* m_calcRow = nullptr;
    bool m_calcBulk = false; ///< m_calcRow is a row being read: only held fields are in it
    std::shared_ptr<const TableInfo> m_tableInfo;
};

} // namespace qm
