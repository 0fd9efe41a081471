#include "components/dataset.h"

#include "components/database.h"
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
const QString kTableInfo = QStringLiteral("PRAGMA table_info( %1 )");

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

/// Restores a pointer when the scope ends, also through an exception.
struct RestorePointer {
    QVariantList*& ref;
    QVariantList* saved;
    ~RestorePointer() { ref = saved; }
};

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
    const QVariantList* buffer = m_dataset->activeBuffer();
    return buffer ? buffer->value(m_index) : QVariant();
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

Dataset::Dataset(QObject* parent) : QObject(parent) {}

Dataset::~Dataset() {
    if (m_master)
        m_master->m_details.removeAll(QPointer<Dataset>(this));
}

void Dataset::SetTableName(const QString& table) {
    m_tableName = table;
    m_detectedKeysOf.clear();
    m_detectedKeys.clear();
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

QString Dataset::selectText() const {
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
    } else {
        text = kSelectTable.arg(quoteName(m_tableName));
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
    const int row = m_master->currentRow();
    QSet<QString> taken;
    for (int i = 0; i < m_master->FieldCount(); ++i) {
        const QString name = m_master->fieldName(i);
        if (taken.contains(name.toLower()))
            continue;
        taken.insert(name.toLower());
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

QList<int> Dataset::resolveKeys(const QHash<QString, int>& lookup) {
    QStringList keys = m_keyFields;
    if (keys.isEmpty() && !IsQuery()) {
        if (m_detectedKeysOf != m_tableName) {
            const SqlRows info = m_database->select(kTableInfo.arg(quoteName(m_tableName)));
            QList<QPair<int, QString>> primary;
            for (qsizetype r = 0; r < info.rows.size(); ++r) {
                const int order = info.value(r, QStringLiteral("pk")).toInt();
                if (order > 0)
                    primary << qMakePair(order, info.value(r, QStringLiteral("name")).toString());
            }
            std::sort(primary.begin(), primary.end());
            m_detectedKeys.clear();
            for (const auto& p : std::as_const(primary))
                m_detectedKeys << p.second;
            m_detectedKeysOf = m_tableName;
        }
        keys = m_detectedKeys;
    }
    QList<int> indexes;
    for (const QString& key : std::as_const(keys)) {
        const int index = lookup.value(key.toLower(), -1);
        if (index < 0)
            throw DatasetError(QStringLiteral("Key field '%1' is not among the columns").arg(key));
        indexes << index;
    }
    return indexes;
}

void Dataset::loadRows(QList<QVariantList>&& rows) {
    m_rows = std::move(rows);
    if (m_calcNames.isEmpty())
        return;
    const int width = FieldCount();
    for (QVariantList& row : m_rows) {
        row.resize(width);
        calculate(row);
    }
}

void Dataset::Open() {
    if (Active())
        return;
    if (!m_database)
        throw DatasetError(QStringLiteral("The dataset has no database"));
    if (!IsQuery() && m_tableName.isEmpty())
        throw DatasetError(QStringLiteral("The dataset has neither a table nor a statement"));

    const QString sql = selectText();
    const QVariantMap params = effectiveParams();
    SqlRows result = m_database->select(sql, params);

    QStringList names = result.columns;
    QHash<QString, int> lookup;
    for (int i = 0; i < names.size(); ++i)
        if (!lookup.contains(names.at(i).toLower()))
            lookup.insert(names.at(i).toLower(), i);
    for (const QString& calc : std::as_const(m_calcNames)) {
        if (lookup.contains(calc.toLower()))
            throw DatasetError(QStringLiteral("Calculated field '%1' has the name of a column").arg(calc));
        lookup.insert(calc.toLower(), int(names.size()));
        names << calc;
    }
    const QList<int> keys = resolveKeys(lookup);

    emit aboutToReset();
    m_openSql = sql;
    m_openParams = params;
    m_boundValues = boundValues(params);
    m_fieldNames = names;
    m_fieldLookup = lookup;
    m_dataFieldCount = int(result.columns.size());
    m_keyIndexes = keys;
    m_buffer.clear();
    m_assigned.clear();
    m_changed = false;
    m_state = dsBrowse;
    m_current = -1;
    try {
        loadRows(std::move(result.rows));
    } catch (...) {
        emit reset();
        emit stateChanged(m_state);
        throw;
    }
    m_current = m_rows.isEmpty() ? -1 : 0;
    m_bof = true;
    m_eof = m_rows.isEmpty();
    emit reset();
    emit stateChanged(m_state);
    setCurrent(m_current);
    fireAfterScroll();
}

void Dataset::Close() {
    if (!Active())
        return;
    emit aboutToReset();
    m_rows.clear();
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
    SqlRows result = m_database->select(m_openSql, m_openParams);
    if (result.columns != m_fieldNames.mid(0, m_dataFieldCount)) {
        Close();
        Open();
        return;
    }
    const Bookmark mark = m_current >= 0 ? bookmarkAt(m_current) : Bookmark();
    const int oldRow = m_current;
    emit aboutToReset();
    try {
        loadRows(std::move(result.rows));
    } catch (...) {
        m_current = m_rows.isEmpty() ? -1 : qBound(0, oldRow, int(m_rows.size()) - 1);
        emit reset();
        throw;
    }
    int row = mark.isEmpty() ? -1 : findBookmark(mark);
    if (row < 0)
        row = m_rows.isEmpty() ? -1 : qBound(0, oldRow, int(m_rows.size()) - 1);
    m_current = row;
    m_bof = m_eof = m_rows.isEmpty();
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
    setCurrent(m_rows.isEmpty() ? -1 : 0);
    m_bof = true;
    m_eof = m_rows.isEmpty();
    fireAfterScroll();
}

void Dataset::Last() {
    requireActive();
    if (!checkBrowseMode())
        return;
    setCurrent(int(m_rows.size()) - 1);
    m_eof = true;
    m_bof = m_rows.isEmpty();
    fireAfterScroll();
}

void Dataset::Next() {
    requireActive();
    if (!checkBrowseMode() || m_eof)
        return;
    m_bof = false;
    if (m_current + 1 < m_rows.size())
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
    if (row < 0 || row >= m_rows.size())
        return false;
    if (row == m_current)
        return true;
    if (!checkBrowseMode() || row >= m_rows.size())
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
    for (int r = 0; r < m_rows.size(); ++r) {
        const QVariantList& row = m_rows.at(r);
        bool match = true;
        for (int k = 0; k < columns.size() && match; ++k)
            match = sameValue(row.value(columns.at(k)), values.at(k));
        if (match) {
            setCurrent(r);
            m_bof = m_eof = false;
            fireAfterScroll();
            return true;
        }
    }
    return false;
}

QVariantList Dataset::keyValues(const QVariantList& row) const {
    if (m_keyIndexes.isEmpty())
        return row.mid(0, m_dataFieldCount);
    QVariantList keys;
    for (int index : m_keyIndexes)
        keys << row.value(index);
    return keys;
}

Bookmark Dataset::bookmarkAt(int row) const {
    if (row < 0 || row >= m_rows.size())
        return Bookmark();
    return keyValues(m_rows.at(row));
}

Bookmark Dataset::GetBookmark() const {
    return bookmarkAt(m_current);
}

int Dataset::findBookmark(const Bookmark& bookmark) const {
    if (bookmark.isEmpty())
        return -1;
    for (int r = 0; r < m_rows.size(); ++r)
        if (sameValues(keyValues(m_rows.at(r)), bookmark))
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

QVariant Dataset::value(int row, int field) const {
    if (row < 0 || row >= m_rows.size() || field < 0 || field >= FieldCount())
        return QVariant();
    if (row == m_current && (m_state == dsEdit || m_state == dsInsert))
        return m_buffer.value(field);
    return m_rows.at(row).value(field);
}

const QVariantList* Dataset::activeBuffer() const {
    if (m_calcRow)
        return m_calcRow;
    if (m_state == dsEdit || m_state == dsInsert)
        return &m_buffer;
    if (m_current >= 0 && m_current < m_rows.size())
        return &m_rows.at(m_current);
    return nullptr;
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
    m_buffer[field] = v;
    m_assigned[field] = true;
    m_changed = true;
    calculate(m_buffer);
    currentRowChanged();
}

void Dataset::calculate(QVariantList& row) {
    if (m_calcNames.isEmpty())
        return;
    for (int i = m_dataFieldCount; i < row.size(); ++i)
        row[i] = QVariant();
    if (!OnCalcFields)
        return;
    RestorePointer restore{m_calcRow, m_calcRow};
    m_calcRow = &row;
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
    if (m_rows.isEmpty())
        return Insert();
    m_buffer = m_rows.at(m_current);
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
    const int row = append || m_current < 0 ? int(m_rows.size()) : m_current;
    m_returnRow = m_current;
    m_buffer = QVariantList(FieldCount());
    m_assigned = QList<bool>(FieldCount(), false);
    emit rowAboutToBeInserted(row);
    m_rows.insert(row, m_buffer);
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
    m_rows.removeAt(row);
    emit rowRemoved(row);
    m_bof = m_eof = m_rows.isEmpty();
    setCurrent(m_rows.isEmpty() ? -1 : qBound(0, m_returnRow, int(m_rows.size()) - 1));
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
    const QString where = keyCondition(keyValues(m_rows.at(m_current)), params);
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
    if (m_state == dsInsert)
        writeInsert();
    else
        writeUpdate();
    // Read the row back so that defaults and the engine's conversions show as stored.
    QVariantList row = m_buffer;
    reread(row);
    calculate(row);
    m_rows[m_current] = row;
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
    if (m_readOnly || m_rows.isEmpty())
        return false;
    // Checked before the handler, whose cascades would otherwise run for a row that stays.
    requireWriteTarget(true);
    try {
        if (BeforeDelete)
            BeforeDelete(*this);
    } catch (const Abort&) {
        return false;
    }
    if (!Active() || m_rows.isEmpty())
        return false;
    QVariantMap params;
    const QString where = keyCondition(keyValues(m_rows.at(m_current)), params);
    m_database->exec(kDeleteRow.arg(quoteName(m_tableName), where), params);
    if (m_state == dsEdit) {
        m_buffer.clear();
        m_assigned.clear();
        m_changed = false;
        setState(dsBrowse);
    }
    const int row = m_current;
    emit rowAboutToBeRemoved(row);
    m_rows.removeAt(row);
    emit rowRemoved(row);
    m_bof = m_eof = m_rows.isEmpty();
    setCurrent(m_rows.isEmpty() ? -1 : qMin(row, int(m_rows.size()) - 1));
    runAfterEvent(AfterDelete);
    fireAfterScroll();
    return true;
}

} // namespace qm
