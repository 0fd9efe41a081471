#include "components/dataset.h"

#include "components/database.h"
#include "components/dataset_row_store.h"
#include "components/messages.h"

#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <cmath>

namespace qm {

namespace {

// Statements the dataset writes itself; names are quoted, values go in as parameters.
const QString kSelectTable = QStringLiteral("SELECT * \nFROM %1");
const QString kSelectFromQuery = QStringLiteral("SELECT * \nFROM ( \n%1 \n)");
const QString kWhereClause = QStringLiteral(" \nWHERE ( %1 )");
const QString kOrderByClause = QStringLiteral(" \nORDER BY %1");
const QString kSelectByKey = QStringLiteral("SELECT * \nFROM %1 \nWHERE %2");
const QString kInsertRow = QStringLiteral("INSERT INTO %1 ( %2 ) \nVALUES ( %3 )");
const QString kInsertDefaults = QStringLiteral("INSERT INTO %1 DEFAULT VALUES");
const QString kUpdateRow = QStringLiteral("UPDATE %1 \nSET %2 \nWHERE %3");
const QString kDeleteRow = QStringLiteral("DELETE FROM %1 \nWHERE %2");
const QString kSelectColumns = QStringLiteral("SELECT %1 \nFROM %2");
const QString kTableInfo = QStringLiteral("PRAGMA table_info( %1 )");
const QString kTableSql = QStringLiteral(
    "SELECT sql \nFROM sqlite_master \nWHERE type = 'table' \n   AND name = :name COLLATE NOCASE");

/// Thrown through OnCalcFields while rows are read, when it reads a column that is not held: the
/// rows are read again with that column. Not a std::exception, so handlers let it pass.
struct NeedField {
    int field;
};

bool isNull(const QVariant& v) {
    return !v.isValid() || v.isNull();
}

bool isIntegral(const QVariant& v) {
    switch (v.metaType().id()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong:
        return true;
    default:
        return false;
    }
}

bool isNumeric(const QVariant& v) {
    const int id = v.metaType().id();
    return isIntegral(v) || id == QMetaType::Double || id == QMetaType::Float;
}

bool isText(const QVariant& v) {
    const int id = v.metaType().id();
    return id == QMetaType::QString || id == QMetaType::QByteArray;
}

/// Equality as Locate and bookmarks need it: numbers by value, text exactly, null only to null.
bool sameValue(const QVariant& a, const QVariant& b) {
    if (isNull(a) || isNull(b))
        return isNull(a) && isNull(b);
    if (isIntegral(a) && isIntegral(b))
        return a.toLongLong() == b.toLongLong();
    if (isNumeric(a) || isNumeric(b)) {
        bool okA = false;
        bool okB = false;
        const double x = a.toDouble(&okA);
        const double y = b.toDouble(&okB);
        if (okA && okB)
            return x == y;
    }
    return a.toString() == b.toString();
}

bool sameValues(const QVariantList& a, const QVariantList& b) {
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i)
        if (!sameValue(a.at(i), b.at(i)))
            return false;
    return true;
}

QString quoteName(const QString& name) {
    if (name.startsWith(QLatin1Char('[')) || name.startsWith(QLatin1Char('"')) ||
        name.startsWith(QLatin1Char('`')))
        return name;
    QString quoted = name;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

/// The grids list names in the order a user reads them: text terms sort without regard to case.
QString caselessOrder(const QString& orderBy) {
    static const QRegularExpression direction(QStringLiteral("\\s+(ASC|DESC)$"),
                                              QRegularExpression::CaseInsensitiveOption);
    QStringList terms;
    int depth = 0;
    QString term;
    for (const QChar c : orderBy) {
        if (c == QLatin1Char('('))
            ++depth;
        else if (c == QLatin1Char(')'))
            --depth;
        if (c == QLatin1Char(',') && depth == 0) {
            terms << term;
            term.clear();
        } else {
            term += c;
        }
    }
    terms << term;
    QStringList out;
    for (QString t : terms) {
        t = t.trimmed();
        if (t.isEmpty())
            continue;
        if (!t.contains(QStringLiteral("COLLATE"), Qt::CaseInsensitive)) {
            QString dir;
            const QRegularExpressionMatch m = direction.match(t);
            if (m.hasMatch()) {
                dir = QLatin1Char(' ') + m.captured(1);
                t = t.left(m.capturedStart());
            }
            t += QStringLiteral(" COLLATE NOCASE") + dir;
        }
        out << t;
    }
    return out.join(QStringLiteral(", "));
}

/// Restores a value when the scope ends, also through an exception.
template <typename T> struct Restore {
    T& ref;
    T saved;
    ~Restore() { ref = saved; }
};

/// Names of the ":name" parameters of a statement, lower case (a name inside a literal counts too,
/// which only binds a value that is not used).
QSet<QString> parameterNames(const QString& sql) {
    static const QRegularExpression param(QStringLiteral(":([A-Za-z_][A-Za-z0-9_]*)"));
    QSet<QString> names;
    for (auto it = param.globalMatch(sql); it.hasNext();)
        names.insert(it.next().captured(1).toLower());
    return names;
}

/// A key as text, so that the keys of many rows can be looked up at once; equal keys (numbers by
/// value) give equal text.
QString keyText(const QVariantList& keys) {
    QString text;
    for (const QVariant& v : keys) {
        if (isNull(v))
            text += QStringLiteral("\x01");
        else if (isNumeric(v))
            text += QLatin1Char('n') + QString::number(v.toDouble(), 'g', 17);
        else
            text += QLatin1Char('s') + v.toString();
        text += QChar(0x1f);
    }
    return text;
}

/// Position of a name in a list, compared without regard to case; -1 when absent.
int indexOfName(const QStringList& names, const QString& name) {
    for (int i = 0; i < names.size(); ++i)
        if (names.at(i).compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

/// Reads every row of a cursor, handing the values of each to `add`.
template <typename Cursor, typename Add> void forEachRow(Cursor& cursor, int columns, Add add) {
    QVariantList values(columns);
    while (cursor.next()) {
        for (int c = 0; c < columns; ++c)
            values[c] = cursor.value(c);
        add(values);
    }
}

/// Characters as the engine's length() counts them: code points of text, bytes of a blob.
qsizetype lengthOf(const QVariant& v) {
    switch (v.metaType().id()) {
    case QMetaType::QByteArray:
        return v.toByteArray().size();
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(v.toDouble(), 'g', 15).size();
    default: {
        const QString text = v.toString();
        qsizetype n = 0;
        for (qsizetype i = 0; i < text.size(); ++i, ++n)
            if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
                ++i;
        return n;
    }
    }
}

} // namespace

/// Columns of a table as declared: names in order, the primary key, and each column's range.
struct Dataset::TableInfo {
    QString table;
    QStringList columns;
    QStringList primaryKey;
    std::vector<FieldRange> ranges;
};

namespace {

/// The range a declared type allows: SMALLINT 16-bit, INT and INTEGER 32-bit, TINYINT a byte,
/// CHAR(n), VARCHAR(n), TEXT(n) at most n characters.
template <typename Range> Range rangeOfType(const QString& declared) {
    static const QRegularExpression width(QStringLiteral("\\(\\s*(\\d+)\\s*\\)"));
    const QString type = declared.trimmed().toUpper();
    Range range;
    const auto bounds = [&range](qint64 min, qint64 max) {
        range.integer = true;
        range.min = min;
        range.max = max;
    };
    if (type.startsWith(QLatin1String("SMALLINT")) || type == QLatin1String("SHORT"))
        bounds(-32768, 32767);
    else if (type.startsWith(QLatin1String("TINYINT")) || type == QLatin1String("BYTE"))
        bounds(0, 255);
    else if (type.contains(QLatin1String("BIG")))
        ; // 64-bit, as the engine keeps it
    else if (type.contains(QLatin1String("INT")) || type == QLatin1String("LONG"))
        bounds(-2147483648LL, 2147483647LL);
    if (type.contains(QLatin1String("CHAR")) || type.contains(QLatin1String("TEXT"))) {
        const QRegularExpressionMatch m = width.match(type);
        if (m.hasMatch())
            range.maxLength = m.captured(1).toInt();
    }
    return range;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Field

QString Field::FieldName() const {
    return m_dataset->fieldName(m_index);
}

bool Field::IsCalculated() const {
    return m_dataset->isCalculated(m_index);
}

QVariant Field::Value() const {
    return m_dataset->currentValue(m_index);
}

bool Field::IsNull() const {
    return isNull(Value());
}

int Field::AsInteger() const {
    const QVariant v = Value();
    if (isNull(v))
        return 0;
    if (isIntegral(v))
        return int(v.toLongLong());
    bool ok = false;
    if (isText(v)) {
        const QString text = v.toString().trimmed();
        const qlonglong n = text.toLongLong(&ok);
        if (ok)
            return int(n);
        const double d = text.toDouble(&ok);
        return ok ? int(std::nearbyint(d)) : 0;
    }
    const double d = v.toDouble(&ok);
    return ok ? int(std::nearbyint(d)) : 0;
}

double Field::AsFloat() const {
    const QVariant v = Value();
    if (isNull(v))
        return 0.0;
    bool ok = false;
    const double d = isText(v) ? v.toString().trimmed().toDouble(&ok) : v.toDouble(&ok);
    return ok ? d : 0.0;
}

QString Field::AsString() const {
    const QVariant v = Value();
    if (isNull(v))
        return QString();
    switch (v.metaType().id()) {
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(v.toDouble(), 'g', 15);
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::QByteArray:
        return QString::fromUtf8(v.toByteArray());
    default:
        return v.toString();
    }
}

bool Field::AsBoolean() const {
    const QVariant v = Value();
    if (isNull(v))
        return false;
    if (isNumeric(v))
        return v.toDouble() != 0.0;
    const QString text = v.toString().trimmed();
    if (text.compare(QStringLiteral("true"), Qt::CaseInsensitive) == 0)
        return true;
    bool ok = false;
    const double d = text.toDouble(&ok);
    return ok && d != 0.0;
}

void Field::SetValue(const QVariant& value) {
    m_dataset->setFieldValue(m_index, value);
}

// ---------------------------------------------------------------------------------------------
// Dataset: configuration

Dataset::Dataset(QObject* parent) : QObject(parent), m_store(std::make_unique<RowStore>(0)) {}

Dataset::~Dataset() {
    if (m_master)
        m_master->m_details.removeAll(QPointer<Dataset>(this));
}

void Dataset::SetTableName(const QString& table) {
    m_tableName = table;
    m_tableInfo.reset();
    m_calcNeeds.clear();
}

void Dataset::SetSql(const QString& sql) {
    m_sql = sql;
    m_readOnly = true;
}

void Dataset::SetParam(const QString& name, const QVariant& value) {
    for (auto it = m_params.begin(); it != m_params.end();)
        it = it.key().compare(name, Qt::CaseInsensitive) == 0 ? m_params.erase(it) : std::next(it);
    m_params.insert(name, value);
}

QVariant Dataset::Param(const QString& name) const {
    for (auto it = m_params.constBegin(); it != m_params.constEnd(); ++it)
        if (it.key().compare(name, Qt::CaseInsensitive) == 0)
            return it.value();
    return QVariant();
}

void Dataset::SetMasterSource(Dataset* master) {
    if (master == this)
        throw DatasetError(QStringLiteral("A dataset cannot be its own master"));
    if (m_master)
        m_master->m_details.removeAll(QPointer<Dataset>(this));
    m_master = master;
    if (master)
        master->m_details << QPointer<Dataset>(this);
}

void Dataset::AddCalculatedField(const QString& name) {
    if (Active())
        throw DatasetError(QStringLiteral("Calculated field '%1' declared on an open dataset").arg(name));
    for (const QString& known : std::as_const(m_calcNames))
        if (known.compare(name, Qt::CaseInsensitive) == 0)
            return;
    m_calcNames << name;
}

// ---------------------------------------------------------------------------------------------
// Dataset: life

QString Dataset::selectText(const QStringList& columns) const {
    const bool filtering = m_filtered && !m_filter.trimmed().isEmpty();
    const bool sorting = !m_sortedBy.trimmed().isEmpty();
    QString text;
    if (IsQuery()) {
        if (!filtering && !sorting)
            return m_sql;
        QString inner = m_sql.trimmed();
        while (inner.endsWith(QLatin1Char(';')))
            inner.chop(1);
        text = kSelectFromQuery.arg(inner);
    } else if (columns.isEmpty()) {
        text = kSelectTable.arg(quoteName(m_tableName));
    } else {
        QStringList quoted;
        for (const QString& c : columns)
            quoted << quoteName(c);
        text = kSelectColumns.arg(quoted.join(QStringLiteral(", ")), quoteName(m_tableName));
    }
    if (filtering)
        text += kWhereClause.arg(m_filter);
    if (sorting)
        text += kOrderByClause.arg(caselessOrder(m_sortedBy));
    return text;
}

QVariantMap Dataset::effectiveParams() const {
    QVariantMap params = m_params;
    if (!m_master)
        return params;
    // Only the master's fields that the statement names: reading one may cost a statement.
    const QSet<QString> used = parameterNames(Active() ? m_openSql : selectText());
    const int row = m_master->currentRow();
    QSet<QString> taken;
    for (int i = 0; i < m_master->FieldCount(); ++i) {
        const QString name = m_master->fieldName(i);
        const QString lower = name.toLower();
        if (taken.contains(lower) || !used.contains(lower))
            continue;
        taken.insert(lower);
        for (auto it = params.begin(); it != params.end();)
            it = it.key().compare(name, Qt::CaseInsensitive) == 0 ? params.erase(it) : std::next(it);
        params.insert(name, row >= 0 ? m_master->value(row, i) : QVariant());
    }
    return params;
}

QVariantList Dataset::boundValues(const QVariantMap& params) const {
    QVariantList values;
    bindNamedParameters(m_openSql, params, values);
    return values;
}

void Dataset::onMasterChanged() {
    if (!Active())
        return;
    if (sameValues(boundValues(effectiveParams()), m_boundValues))
        return;
    // The master moved on: keep what was typed in the detail when its rules allow it.
    if (!checkBrowseMode())
        Cancel();
    Close();
    Open();
}

const Dataset::TableInfo& Dataset::tableInfo() {
    if (m_tableInfo && m_tableInfo->table == m_tableName)
        return *m_tableInfo;
    auto info = std::make_shared<TableInfo>();
    info->table = m_tableName;
    const SqlRows columns = m_database->select(kTableInfo.arg(quoteName(m_tableName)));
    QList<QPair<int, QString>> primary;
    for (qsizetype r = 0; r < columns.rows.size(); ++r) {
        const QString name = columns.value(r, QStringLiteral("name")).toString();
        info->columns << name;
        info->ranges.push_back(rangeOfType<FieldRange>(columns.value(r, QStringLiteral("type")).toString()));
        const int order = columns.value(r, QStringLiteral("pk")).toInt();
        if (order > 0)
            primary << qMakePair(order, name);
    }
    std::sort(primary.begin(), primary.end());
    for (const auto& p : std::as_const(primary))
        info->primaryKey << p.second;
    // Text widths may also stand as CHECK ( length( column ) <= n ) in the table's statement.
    if (!info->columns.isEmpty()) {
        static const QRegularExpression check(QStringLiteral("CHECK\\s*\\(\\s*length\\s*\\(\\s*[\\[\"`]?(\\w+"
                                                             ")[\\]\"`]?\\s*\\)\\s*(<=|<)\\s*(\\d+)\\s*\\)"),
                                              QRegularExpression::CaseInsensitiveOption);
        const QString sql = m_database->scalar(kTableSql, {{QStringLiteral("name"), m_tableName}}).toString();
        for (auto it = check.globalMatch(sql); it.hasNext();) {
            const QRegularExpressionMatch m = it.next();
            const int column = indexOfName(info->columns, m.captured(1));
            if (column < 0)
                continue;
            const int width = m.captured(3).toInt() - (m.captured(2) == QLatin1String("<") ? 1 : 0);
            int& maxLength = info->ranges[size_t(column)].maxLength;
            maxLength = maxLength < 0 ? width : std::min(maxLength, width);
        }
    }
    if (info->columns.isEmpty())
        info->table.clear(); // no such table yet: ask again next time
    m_tableInfo = info;
    return *m_tableInfo;
}

QList<int> Dataset::resolveKeys(const QHash<QString, int>& lookup) {
    QStringList keys = m_keyFields;
    if (keys.isEmpty() && !IsQuery())
        keys = tableInfo().primaryKey;
    QList<int> indexes;
    for (const QString& key : std::as_const(keys)) {
        const int index = lookup.value(key.toLower(), -1);
        if (index < 0)
            throw DatasetError(QStringLiteral("Key field '%1' is not among the columns").arg(key));
        indexes << index;
    }
    return indexes;
}

int Dataset::RecordCount() const {
    return int(m_store->size());
}

bool Dataset::isHeld(int field) const {
    return field >= 0 && field < m_slotOf.size() && m_slotOf.at(field) >= 0;
}

/// Field names, their lookup and where each field is kept; `held` lists the data fields read for
/// every row, in the order the statement reads them.
void Dataset::setFields(const QStringList& dataNames, const QList<int>& held) {
    m_fieldNames = dataNames;
    m_fieldLookup.clear();
    for (int i = 0; i < dataNames.size(); ++i)
        if (!m_fieldLookup.contains(dataNames.at(i).toLower()))
            m_fieldLookup.insert(dataNames.at(i).toLower(), i);
    m_dataFieldCount = int(dataNames.size());
    for (const QString& calc : std::as_const(m_calcNames)) {
        m_fieldLookup.insert(calc.toLower(), int(m_fieldNames.size()));
        m_fieldNames << calc;
    }
    m_slotOf = QList<int>(m_fieldNames.size(), -1);
    m_fieldOfSlot.clear();
    for (int field : held) {
        m_slotOf[field] = int(m_fieldOfSlot.size());
        m_fieldOfSlot << field;
    }
    for (int field = m_dataFieldCount; field < m_fieldNames.size(); ++field) {
        m_slotOf[field] = int(m_fieldOfSlot.size());
        m_fieldOfSlot << field;
    }
    m_unheld.clear();
    for (int field = 0; field < m_dataFieldCount; ++field)
        if (m_slotOf.at(field) < 0)
            m_unheld << field;
}

/// One row as read: the held data fields in statement order, then room for the calculated ones.
void Dataset::addRow(RowStore& store, QVariantList& values) {
    const int held = int(m_fieldOfSlot.size()) - (FieldCount() - m_dataFieldCount);
    if (m_calcNames.isEmpty()) {
        store.append(values);
        return;
    }
    QVariantList row(FieldCount());
    for (int s = 0; s < held; ++s)
        row[m_fieldOfSlot.at(s)] = values.at(s);
    calculate(row, true);
    values.resize(m_fieldOfSlot.size());
    for (qsizetype s = held; s < m_fieldOfSlot.size(); ++s)
        values[s] = row.at(m_fieldOfSlot.at(s));
    store.append(values);
    values.resize(held);
}

void Dataset::Open() {
    if (Active())
        return;
    if (!m_database)
        throw DatasetError(QStringLiteral("The dataset has no database"));
    if (!IsQuery() && m_tableName.isEmpty())
        throw DatasetError(QStringLiteral("The dataset has neither a table nor a statement"));
    const QVariantMap params = effectiveParams();
    // A calculated field that reads a column not held has it added, and the rows are read again.
    while (!openWith(params)) {
    }
    commitOpen();
}

/// Reads the rows; false when they are to be read again (see openTable).
bool Dataset::openWith(const QVariantMap& params) {
    // A statement's columns are known once it ran; a table without columns is one the engine does
    // not know, and its own error says so.
    if (IsQuery() || tableInfo().columns.isEmpty()) {
        openQuery(params);
        return true;
    }
    return openTable(params);
}

/// Lookup of lower-case names; a calculated field may not take a column's name.
QHash<QString, int> Dataset::columnLookup(const QStringList& columns) const {
    QHash<QString, int> lookup;
    for (int i = 0; i < columns.size(); ++i)
        if (!lookup.contains(columns.at(i).toLower()))
            lookup.insert(columns.at(i).toLower(), i);
    for (const QString& calc : std::as_const(m_calcNames))
        if (lookup.contains(calc.toLower()))
            throw DatasetError(QStringLiteral("Calculated field '%1' has the name of a column").arg(calc));
    return lookup;
}

/// Every column of every row, as the statement gives them.
void Dataset::openQuery(const QVariantMap& params) {
    const QString sql = selectText();
    SqlRows result = m_database->select(sql, params);
    const QList<int> keys = resolveKeys(columnLookup(result.columns));
    emit aboutToReset();
    QList<int> all;
    for (int i = 0; i < result.columns.size(); ++i)
        all << i;
    setFields(result.columns, all);
    m_keyIndexes = keys;
    m_openSql = sql;
    m_openParams = params;
    m_boundValues = boundValues(params);
    m_fetchSql.clear();
    m_ranges.clear();
    if (!m_tableName.isEmpty()) {
        // A query that writes to a table keeps that table's ranges for the columns it shows.
        const TableInfo& info = tableInfo();
        for (const QString& name : std::as_const(result.columns)) {
            const int column = indexOfName(info.columns, name);
            m_ranges.push_back(column < 0 ? FieldRange() : info.ranges[size_t(column)]);
        }
    }
    fillOpenedRows([&](RowStore& store) {
        for (QVariantList& row : result.rows)
            addRow(store, row);
    });
    m_readByCursor = false;
    m_openFilter = m_filtered ? m_filter.trimmed() : QString();
}

/// Reads the rows of an opening into a new store; on any failure the dataset is left empty and
/// the views are told before the exception goes on.
void Dataset::fillOpenedRows(const std::function<void(RowStore&)>& fill) {
    auto store = std::make_unique<RowStore>(int(m_fieldOfSlot.size()));
    try {
        fill(*store);
    } catch (...) {
        m_store = std::make_unique<RowStore>(0);
        emit reset();
        throw;
    }
    m_store = std::move(store);
}

/// The table's held columns of every row; false when a calculated field needed a column not
/// held, which is held from then on.
bool Dataset::openTable(const QVariantMap& params) {
    const TableInfo& info = tableInfo();
    const QHash<QString, int> lookup = columnLookup(info.columns);
    const QList<int> keys = resolveKeys(lookup);
    // Held: every column, or with row fields and a key to read the others by, the key, the row
    // fields and what calculated fields read.
    QList<int> held;
    if (m_rowFields.isEmpty() || keys.isEmpty()) {
        for (int i = 0; i < info.columns.size(); ++i)
            held << i;
    } else {
        QSet<int> wanted(keys.begin(), keys.end());
        for (const QString& name : m_rowFields + m_calcNeeds) {
            const int i = lookup.value(name.toLower(), -1);
            if (i >= 0)
                wanted.insert(i);
        }
        for (int i = 0; i < info.columns.size(); ++i)
            if (wanted.contains(i))
                held << i;
    }
    QStringList heldNames;
    for (int i : std::as_const(held))
        heldNames << info.columns.at(i);
    const QString sql = selectText(heldNames);
    auto cursor = m_database->run(sql, params);

    emit aboutToReset();
    setFields(info.columns, held);
    m_keyIndexes = keys;
    m_ranges = info.ranges;
    m_openSql = sql;
    m_openParams = params;
    m_boundValues = boundValues(params);
    m_fetchSql.clear();
    if (!m_unheld.isEmpty()) {
        QStringList unheld;
        for (int field : std::as_const(m_unheld))
            unheld << quoteName(m_fieldNames.at(field));
        QVariantMap dummy;
        m_fetchSql = kSelectColumns.arg(unheld.join(QStringLiteral(", ")), quoteName(m_tableName)) +
                     kWhereClause.arg(keyCondition(QVariantList(keys.size()), dummy));
    }
    try {
        fillOpenedRows([&](RowStore& store) {
            forEachRow(cursor, int(held.size()), [&](QVariantList& values) { addRow(store, values); });
        });
    } catch (const NeedField& need) {
        const QString name = m_fieldNames.value(need.field);
        if (name.isEmpty() || m_calcNeeds.contains(name, Qt::CaseInsensitive))
            throw DatasetError(QStringLiteral("Field '%1' cannot be read while calculating").arg(name));
        m_calcNeeds << name;
        return false;
    }
    m_readByCursor = true;
    m_openFilter = m_filtered ? m_filter.trimmed() : QString();
    return true;
}

/// The rows are read: browse state on the first row, and the signals and events of an Open.
void Dataset::commitOpen() {
    forgetFetched();
    m_buffer.clear();
    m_assigned.clear();
    m_changed = false;
    m_state = dsBrowse;
    m_current = IsEmpty() ? -1 : 0;
    m_bof = true;
    m_eof = IsEmpty();
    emit reset();
    emit stateChanged(m_state);
    setCurrent(m_current);
    fireAfterScroll();
}

void Dataset::Close() {
    if (!Active())
        return;
    emit aboutToReset();
    m_store = std::make_unique<RowStore>(0);
    forgetFetched();
    m_buffer.clear();
    m_assigned.clear();
    m_changed = false;
    m_current = -1;
    m_bof = m_eof = true;
    m_state = dsInactive;
    emit reset();
    emit stateChanged(m_state);
    setCurrent(m_current);
}

void Dataset::SetActive(bool active) {
    if (active)
        Open();
    else
        Close();
}

DatasetState Dataset::State() const {
    return m_calcRow ? dsCalcFields : m_state;
}

void Dataset::Refresh() {
    requireActive();
    if (!checkBrowseMode())
        return;
    const Bookmark mark = m_current >= 0 ? bookmarkAt(m_current) : Bookmark();
    const int oldRow = m_current;
    auto store = std::make_unique<RowStore>(int(m_fieldOfSlot.size()));
    const int held = int(m_fieldOfSlot.size()) - (FieldCount() - m_dataFieldCount);
    if (!m_readByCursor) {
        SqlRows result = m_database->select(m_openSql, m_openParams);
        if (result.columns != m_fieldNames.mid(0, m_dataFieldCount)) {
            Close();
            Open();
            return;
        }
        emit aboutToReset();
        try {
            for (QVariantList& row : result.rows)
                addRow(*store, row);
        } catch (...) {
            emit reset();
            throw;
        }
    } else {
        auto cursor = m_database->run(m_openSql, m_openParams);
        emit aboutToReset();
        try {
            forEachRow(cursor, held, [&](QVariantList& values) { addRow(*store, values); });
        } catch (const NeedField& need) {
            // A calculated field reads a column that is not held: open again with it.
            emit reset();
            m_calcNeeds << m_fieldNames.value(need.field);
            Close();
            Open();
            return;
        } catch (...) {
            emit reset();
            throw;
        }
    }
    m_store = std::move(store);
    forgetFetched();
    int row = mark.isEmpty() ? -1 : findBookmark(mark);
    if (row < 0)
        row = IsEmpty() ? -1 : qBound(0, oldRow, RecordCount() - 1);
    m_current = row;
    m_bof = m_eof = IsEmpty();
    emit reset();
    setCurrent(m_current);
}

// ---------------------------------------------------------------------------------------------
// Dataset: cursor

void Dataset::requireActive() const {
    if (m_state == dsInactive)
        throw DatasetError(QStringLiteral("Cannot perform this operation on a closed dataset (%1)")
                               .arg(IsQuery() ? objectName() : m_tableName));
}

void Dataset::setState(DatasetState state) {
    if (m_state == state)
        return;
    m_state = state;
    emit stateChanged(state);
}

bool Dataset::checkBrowseMode() {
    if (m_state == dsEdit || m_state == dsInsert)
        return Post();
    return true;
}

void Dataset::runAfterEvent(const Event& event) {
    if (!event)
        return;
    try {
        event(*this);
    } catch (const Abort&) {
        // The operation is done; a refusal afterwards has nothing left to undo.
    }
}

void Dataset::fireAfterScroll() {
    runAfterEvent(AfterScroll);
}

void Dataset::setCurrent(int row) {
    m_current = row;
    emit currentChanged(row);
    notifyDetails();
}

void Dataset::currentRowChanged() {
    emit rowChanged(m_current);
    notifyDetails();
}

// Called directly rather than through signals: a detail's Open may throw, and exceptions
// must not cross Qt's signal machinery.
void Dataset::notifyDetails() {
    const QList<QPointer<Dataset>> details = m_details;
    for (const QPointer<Dataset>& detail : details)
        if (detail)
            detail->onMasterChanged();
}

void Dataset::First() {
    requireActive();
    if (!checkBrowseMode())
        return;
    setCurrent(IsEmpty() ? -1 : 0);
    m_bof = true;
    m_eof = IsEmpty();
    fireAfterScroll();
}

void Dataset::Last() {
    requireActive();
    if (!checkBrowseMode())
        return;
    setCurrent(RecordCount() - 1);
    m_eof = true;
    m_bof = IsEmpty();
    fireAfterScroll();
}

void Dataset::Next() {
    requireActive();
    if (!checkBrowseMode() || m_eof)
        return;
    m_bof = false;
    if (m_current + 1 < RecordCount())
        setCurrent(m_current + 1);
    else
        m_eof = true;
    fireAfterScroll();
}

void Dataset::Prior() {
    requireActive();
    if (!checkBrowseMode() || m_bof)
        return;
    m_eof = false;
    if (m_current > 0)
        setCurrent(m_current - 1);
    else
        m_bof = true;
    fireAfterScroll();
}

bool Dataset::moveTo(int row) {
    requireActive();
    if (row < 0 || row >= RecordCount())
        return false;
    if (row == m_current)
        return true;
    if (!checkBrowseMode() || row >= RecordCount())
        return false;
    setCurrent(row);
    m_bof = m_eof = false;
    fireAfterScroll();
    return m_current == row;
}

bool Dataset::Locate(const QString& field, const QVariant& value) {
    return Locate(QStringList{field}, QVariantList{value});
}

bool Dataset::Locate(const QStringList& fields, const QVariantList& values) {
    requireActive();
    if (fields.size() != values.size())
        throw DatasetError(QStringLiteral("Locate needs one value per field"));
    QList<int> columns;
    for (const QString& name : fields)
        columns << FieldByName(name).Index();
    if (!checkBrowseMode())
        return false;
    const int row = findRow(columns, values);
    if (row < 0)
        return false;
    setCurrent(row);
    m_bof = m_eof = false;
    fireAfterScroll();
    return true;
}

/// The first row whose fields equal the values, -1 when none does. Fields that are not held are
/// compared in one pass over the table's rows within the filter of the last Open.
int Dataset::findRow(const QList<int>& columns, const QVariantList& values) {
    QList<int> heldColumns;
    QVariantList heldValues;
    QList<int> unheld;
    QVariantList unheldValues;
    for (int k = 0; k < columns.size(); ++k) {
        if (isHeld(columns.at(k))) {
            heldColumns << columns.at(k);
            heldValues << values.at(k);
        } else {
            unheld << columns.at(k);
            unheldValues << values.at(k);
        }
    }
    QSet<QString> matchingKeys;
    if (!unheld.isEmpty()) {
        QStringList names;
        for (int key : std::as_const(m_keyIndexes))
            names << quoteName(m_fieldNames.at(key));
        for (int field : std::as_const(unheld))
            names << quoteName(m_fieldNames.at(field));
        QString sql = kSelectColumns.arg(names.join(QStringLiteral(", ")), quoteName(m_tableName));
        if (!m_openFilter.isEmpty())
            sql += kWhereClause.arg(m_openFilter);
        auto cursor = m_database->run(sql, m_openParams);
        const int keyCount = int(m_keyIndexes.size());
        forEachRow(cursor, int(names.size()), [&](const QVariantList& row) {
            for (int k = 0; k < unheld.size(); ++k)
                if (!sameValue(row.at(keyCount + k), unheldValues.at(k)))
                    return;
            matchingKeys.insert(keyText(row.mid(0, keyCount)));
        });
        if (matchingKeys.isEmpty())
            return -1;
    }
    for (int r = 0; r < RecordCount(); ++r) {
        bool match = true;
        for (int k = 0; k < heldColumns.size() && match; ++k)
            match = sameValue(m_store->get(r, m_slotOf.at(heldColumns.at(k))), heldValues.at(k));
        if (match && !unheld.isEmpty())
            match = matchingKeys.contains(keyText(keyValuesAt(r)));
        if (match)
            return r;
    }
    return -1;
}

QVariantList Dataset::keyValues(const QVariantList& row) const {
    if (m_keyIndexes.isEmpty())
        return row.mid(0, m_dataFieldCount);
    QVariantList keys;
    for (int index : m_keyIndexes)
        keys << row.value(index);
    return keys;
}

/// The key of a stored row; without a key, all its data values (every field is held then).
QVariantList Dataset::keyValuesAt(int row) const {
    QVariantList keys;
    if (m_keyIndexes.isEmpty()) {
        for (int field = 0; field < m_dataFieldCount; ++field)
            keys << m_store->get(row, m_slotOf.at(field));
        return keys;
    }
    for (int index : m_keyIndexes)
        keys << m_store->get(row, m_slotOf.at(index));
    return keys;
}

Bookmark Dataset::bookmarkAt(int row) const {
    if (row < 0 || row >= RecordCount())
        return Bookmark();
    return keyValuesAt(row);
}

Bookmark Dataset::GetBookmark() const {
    return bookmarkAt(m_current);
}

int Dataset::findBookmark(const Bookmark& bookmark) const {
    if (bookmark.isEmpty())
        return -1;
    for (int r = 0; r < RecordCount(); ++r)
        if (sameValues(keyValuesAt(r), bookmark))
            return r;
    return -1;
}

bool Dataset::BookmarkValid(const Bookmark& bookmark) const {
    return findBookmark(bookmark) >= 0;
}

bool Dataset::GotoBookmark(const Bookmark& bookmark) {
    requireActive();
    if (!checkBrowseMode())
        return false;
    const int row = findBookmark(bookmark);
    if (row < 0)
        return false;
    setCurrent(row);
    m_bof = m_eof = false;
    fireAfterScroll();
    return true;
}

// ---------------------------------------------------------------------------------------------
// Dataset: fields

int Dataset::fieldIndex(const QString& name) const {
    return m_fieldLookup.value(name.toLower(), -1);
}

Field Dataset::FieldByName(const QString& name) {
    const int index = fieldIndex(name);
    if (index < 0)
        throw DatasetError(QStringLiteral("Field '%1' not found").arg(name));
    return Field(this, index);
}

void Dataset::forgetFetched() const {
    for (FetchedRow& f : m_fetched)
        f = FetchedRow();
}

/// The fields not held of a row, read by its key when not read already; throws DbError.
const Dataset::FetchedRow& Dataset::fetched(int row) const {
    for (const FetchedRow& f : m_fetched)
        if (f.row == row)
            return f;
    FetchedRow fresh;
    fresh.row = row;
    fresh.values = QVariantList(FieldCount());
    QVariantMap params;
    keyCondition(keyValuesAt(row), params); // m_fetchSql holds the condition; this gives its values
    const SqlRows read = m_database->select(m_fetchSql, params);
    if (!read.rows.isEmpty())
        for (int c = 0; c < m_unheld.size() && c < read.rows.first().size(); ++c)
            fresh.values[m_unheld.at(c)] = read.rows.first().at(c);
    FetchedRow& slot = m_fetched[row == m_current ? 0 : 1];
    slot = std::move(fresh);
    return slot;
}

QVariantList Dataset::fullRow(int row) const {
    QVariantList values(FieldCount());
    for (int field = 0; field < FieldCount(); ++field)
        if (m_slotOf.at(field) >= 0)
            values[field] = m_store->get(row, m_slotOf.at(field));
    if (!m_unheld.isEmpty()) {
        const FetchedRow& f = fetched(row);
        for (int field : m_unheld)
            values[field] = f.values.at(field);
    }
    return values;
}

/// Puts a whole record (as posted and read back) into the row.
void Dataset::storeRow(int row, const QVariantList& full) {
    for (int s = 0; s < m_fieldOfSlot.size(); ++s)
        m_store->set(row, s, full.value(m_fieldOfSlot.at(s)));
    forgetFetched();
    if (!m_unheld.isEmpty()) {
        m_fetched[0].row = row;
        m_fetched[0].values = full;
    }
}

QVariant Dataset::value(int row, int field) const {
    if (row < 0 || row >= RecordCount() || field < 0 || field >= FieldCount())
        return QVariant();
    if (row == m_current && (m_state == dsEdit || m_state == dsInsert))
        return m_buffer.value(field);
    const int slot = m_slotOf.at(field);
    if (slot >= 0)
        return m_store->get(row, slot);
    try {
        return fetched(row).values.value(field);
    } catch (const DbError&) {
        // Shown in a grid or a control: an empty cell rather than an exception in a paint.
        return QVariant();
    }
}

QVariant Dataset::currentValue(int field) const {
    if (m_calcRow) {
        if (m_calcBulk && field < m_dataFieldCount && !isHeld(field))
            throw NeedField{field};
        return m_calcRow->value(field);
    }
    if (m_state == dsEdit || m_state == dsInsert)
        return m_buffer.value(field);
    if (m_current < 0 || m_current >= RecordCount() || field < 0 || field >= FieldCount())
        return QVariant();
    const int slot = m_slotOf.at(field);
    return slot >= 0 ? m_store->get(m_current, slot) : fetched(m_current).values.value(field);
}

/// Refuses a value outside the column's range: integers always, text lengths when `text`.
void Dataset::checkRange(int field, const QVariant& value, bool text) const {
    if (field < 0 || size_t(field) >= m_ranges.size() || isNull(value))
        return;
    const FieldRange& range = m_ranges[size_t(field)];
    if (range.integer) {
        bool inside = true;
        QString shown;
        if (isIntegral(value)) {
            const qlonglong n = value.toLongLong();
            inside = n >= range.min && n <= range.max;
            shown = QString::number(n);
        } else {
            // Text that is a number goes into the column as that number.
            bool ok = false;
            const double d = isText(value) ? value.toString().trimmed().toDouble(&ok) : value.toDouble(&ok);
            if (ok) {
                inside = d >= double(range.min) && d <= double(range.max);
                shown = isText(value) ? value.toString().trimmed() : QString::number(d, 'g', 15);
            }
        }
        if (!inside)
            throw FieldRangeError(
                QStringLiteral("%1 is not a valid value for field '%2'. The allowed range is %3 "
                               "to %4.")
                    .arg(shown, m_fieldNames.at(field))
                    .arg(range.min)
                    .arg(range.max));
    }
    if (text && range.maxLength >= 0) {
        const qsizetype length = lengthOf(value);
        if (length > range.maxLength)
            throw FieldRangeError(
                QStringLiteral("The text for field '%1' is %2 characters long. The field holds at "
                               "most %3 characters.")
                    .arg(m_fieldNames.at(field))
                    .arg(length)
                    .arg(range.maxLength));
    }
}

/// Every value about to be written lies within its column's range.
void Dataset::checkRanges() const {
    for (int field = 0; field < m_dataFieldCount; ++field)
        if (m_assigned.value(field))
            checkRange(field, m_buffer.at(field), true);
}

void Dataset::setFieldValue(int field, const QVariant& value) {
    if (field < 0 || field >= FieldCount())
        throw DatasetError(QStringLiteral("Field index %1 out of range").arg(field));
    QVariant v = value;
    if (v.metaType().id() == QMetaType::QString && v.toString().isEmpty())
        v = QVariant();
    if (m_calcRow) {
        if (!isCalculated(field))
            throw DatasetError(
                QStringLiteral("Field '%1' cannot be changed while calculating").arg(fieldName(field)));
        (*m_calcRow)[field] = v;
        return;
    }
    if (m_state != dsEdit && m_state != dsInsert)
        throw DatasetError(
            QStringLiteral("Dataset not in edit or insert mode (field '%1')").arg(fieldName(field)));
    if (isCalculated(field))
        throw DatasetError(
            QStringLiteral("Field '%1' is calculated and cannot be changed").arg(fieldName(field)));
    // A number outside the column's range is refused as it is assigned; a long text at Post.
    checkRange(field, v, false);
    m_buffer[field] = v;
    m_assigned[field] = true;
    m_changed = true;
    calculate(m_buffer);
    currentRowChanged();
}

void Dataset::calculate(QVariantList& row, bool bulk) {
    if (m_calcNames.isEmpty())
        return;
    for (int i = m_dataFieldCount; i < row.size(); ++i)
        row[i] = QVariant();
    if (!OnCalcFields)
        return;
    Restore<QVariantList*> restoreRow{m_calcRow, m_calcRow};
    Restore<bool> restoreBulk{m_calcBulk, m_calcBulk};
    m_calcRow = &row;
    m_calcBulk = bulk;
    try {
        OnCalcFields(*this);
    } catch (const Abort&) {
        // A handler that gives up leaves the fields it did not fill empty.
    }
}

// ---------------------------------------------------------------------------------------------
// Dataset: changes

bool Dataset::Edit() {
    requireActive();
    if (m_state == dsEdit || m_state == dsInsert)
        return true;
    if (m_readOnly)
        return false;
    if (IsEmpty())
        return Insert();
    // The record being edited has all its columns, so that what is not changed stays as it was.
    m_buffer = fullRow(m_current);
    m_assigned = QList<bool>(FieldCount(), false);
    m_changed = false;
    setState(dsEdit);
    return true;
}

bool Dataset::Insert() {
    return startInsert(false);
}

bool Dataset::Append() {
    return startInsert(true);
}

bool Dataset::startInsert(bool append) {
    requireActive();
    if (m_readOnly)
        return false;
    if (!checkBrowseMode())
        return false;
    try {
        if (BeforeInsert)
            BeforeInsert(*this);
    } catch (const Abort&) {
        return false;
    }
    if (m_state != dsBrowse)
        return false;
    const int row = append || m_current < 0 ? RecordCount() : m_current;
    m_returnRow = m_current;
    m_buffer = QVariantList(FieldCount());
    m_assigned = QList<bool>(FieldCount(), false);
    emit rowAboutToBeInserted(row);
    m_store->insertNull(row);
    forgetFetched();
    emit rowInserted(row);
    m_bof = m_eof = false;
    setState(dsInsert);
    setCurrent(row);
    try {
        if (OnNewRecord)
            OnNewRecord(*this);
    } catch (const Abort&) {
        if (m_state == dsInsert)
            dropInsertRow();
        return false;
    }
    if (m_state != dsInsert)
        return false;
    m_changed = false;
    calculate(m_buffer);
    currentRowChanged();
    fireAfterScroll();
    return true;
}

void Dataset::dropInsertRow() {
    const int row = m_current;
    m_buffer.clear();
    m_assigned.clear();
    m_changed = false;
    setState(dsBrowse);
    emit rowAboutToBeRemoved(row);
    m_store->remove(row);
    forgetFetched();
    emit rowRemoved(row);
    m_bof = m_eof = IsEmpty();
    setCurrent(IsEmpty() ? -1 : qBound(0, m_returnRow, RecordCount() - 1));
}

void Dataset::Cancel() {
    if (m_state == dsInsert) {
        dropInsertRow();
    } else if (m_state == dsEdit) {
        m_buffer.clear();
        m_assigned.clear();
        m_changed = false;
        setState(dsBrowse);
        currentRowChanged();
    }
}

void Dataset::requireWriteTarget(bool needKey) const {
    if (m_tableName.isEmpty())
        throw DatasetError(QStringLiteral("The dataset has no table to write to"));
    if (needKey && m_keyIndexes.isEmpty())
        throw DatasetError(QStringLiteral("Table '%1' has no key to write by").arg(m_tableName));
}

QString Dataset::keyCondition(const QVariantList& keys, QVariantMap& params) const {
    QStringList terms;
    for (int k = 0; k < m_keyIndexes.size(); ++k) {
        const QString name = QStringLiteral("k%1").arg(k);
        // IS rather than =, so that a key that is null still finds its row.
        terms << quoteName(m_fieldNames.at(m_keyIndexes.at(k))) + QStringLiteral(" IS :") + name;
        params.insert(name, keys.value(k));
    }
    return terms.join(QStringLiteral(" AND "));
}

void Dataset::writeInsert() {
    requireWriteTarget(false);
    QStringList columns;
    QStringList values;
    QVariantMap params;
    for (int i = 0; i < m_dataFieldCount; ++i) {
        if (!m_assigned.value(i))
            continue;
        const QString name = QStringLiteral("p%1").arg(i);
        columns << quoteName(m_fieldNames.at(i));
        values << QLatin1Char(':') + name;
        params.insert(name, m_buffer.at(i));
    }
    const QString table = quoteName(m_tableName);
    const QString sql = columns.isEmpty() ? kInsertDefaults.arg(table)
                                          : kInsertRow.arg(table, columns.join(QStringLiteral(", ")),
                                                           values.join(QStringLiteral(", ")));
    Cursor query = m_database->run(sql, params);
    // A single key left empty is numbered by the engine; take its number to find the row again.
    if (m_keyIndexes.size() == 1 && isNull(m_buffer.at(m_keyIndexes.first()))) {
        const QVariant id = query.lastInsertId();
        if (id.isValid())
            m_buffer[m_keyIndexes.first()] = id;
    }
}

void Dataset::writeUpdate() {
    requireWriteTarget(true);
    QStringList sets;
    QVariantMap params;
    for (int i = 0; i < m_dataFieldCount; ++i) {
        if (!m_assigned.value(i))
            continue;
        const QString name = QStringLiteral("p%1").arg(i);
        sets << quoteName(m_fieldNames.at(i)) + QStringLiteral(" = :") + name;
        params.insert(name, m_buffer.at(i));
    }
    if (sets.isEmpty())
        return;
    const QString where = keyCondition(keyValuesAt(m_current), params);
    m_database->exec(kUpdateRow.arg(quoteName(m_tableName), sets.join(QStringLiteral(", ")), where), params);
}

void Dataset::reread(QVariantList& row) {
    if (IsQuery() || m_keyIndexes.isEmpty())
        return;
    QVariantMap params;
    const QString where = keyCondition(keyValues(row), params);
    const SqlRows fresh = m_database->select(kSelectByKey.arg(quoteName(m_tableName), where), params);
    if (fresh.rows.isEmpty())
        return;
    for (int c = 0; c < fresh.columns.size(); ++c) {
        const int index = fieldIndex(fresh.columns.at(c));
        if (index >= 0 && index < m_dataFieldCount)
            row[index] = fresh.rows.first().at(c);
    }
}

bool Dataset::Post() {
    requireActive();
    if (m_state != dsEdit && m_state != dsInsert)
        return true;
    requireWriteTarget(m_state == dsEdit);
    try {
        if (BeforePost)
            BeforePost(*this);
    } catch (const Abort&) {
        return false;
    }
    if (m_state != dsEdit && m_state != dsInsert)
        return false;
    checkRanges();
    if (m_state == dsInsert)
        writeInsert();
    else
        writeUpdate();
    // Read the row back so that defaults and the engine's conversions show as stored.
    QVariantList row = m_buffer;
    reread(row);
    calculate(row);
    storeRow(m_current, row);
    m_buffer.clear();
    m_assigned.clear();
    m_changed = false;
    setState(dsBrowse);
    currentRowChanged();
    runAfterEvent(AfterPost);
    return true;
}

bool Dataset::Delete() {
    requireActive();
    if (m_state == dsInsert) {
        Cancel();
        return true;
    }
    if (m_readOnly || IsEmpty())
        return false;
    // Checked before the handler, whose cascades would otherwise run for a row that stays.
    requireWriteTarget(true);
    try {
        if (BeforeDelete)
            BeforeDelete(*this);
    } catch (const Abort&) {
        return false;
    }
    if (!Active() || IsEmpty())
        return false;
    QVariantMap params;
    const QString where = keyCondition(keyValuesAt(m_current), params);
    m_database->exec(kDeleteRow.arg(quoteName(m_tableName), where), params);
    if (m_state == dsEdit) {
        m_buffer.clear();
        m_assigned.clear();
        m_changed = false;
        setState(dsBrowse);
    }
    const int row = m_current;
    emit rowAboutToBeRemoved(row);
    m_store->remove(row);
    forgetFetched();
    emit rowRemoved(row);
    m_bof = m_eof = IsEmpty();
    setCurrent(IsEmpty() ? -1 : qMin(row, RecordCount() - 1));
    runAfterEvent(AfterDelete);
    fireAfterScroll();
    return true;
}

} // namespace qm
