#include "components/database.h"

#include "components/jet_dialect.h"
#include "components/sql_format.h"

#include <QFile>
#include <QFileInfo>
#include <sqlite3.h>

namespace qm {

/// A statement prepared on the connection; kept in the cache while no cursor uses it.
struct PreparedStatement {
    sqlite3_stmt* stmt = nullptr;
    QString sql;
    bool busy = false;
    bool cached = false;
    quint64 lastUse = 0;
    PreparedStatement() = default;
    PreparedStatement(const PreparedStatement&) = delete;
    PreparedStatement& operator=(const PreparedStatement&) = delete;
    ~PreparedStatement() { sqlite3_finalize(stmt); }
};

namespace {

constexpr int CacheLimit = 256;

bool isNameChar(QChar c) {
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

QString engineMessage(sqlite3* handle) {
    return QString::fromUtf8(sqlite3_errmsg(handle));
}

void bindText(sqlite3_stmt* stmt, int index, const QString& text) {
    static const char16_t empty[] = u"";
    const void* data =
        text.isNull() ? static_cast<const void*>(empty) : static_cast<const void*>(text.utf16());
    sqlite3_bind_text16(stmt, index, data, int(text.size() * 2), SQLITE_TRANSIENT);
}

void bindValue(sqlite3_stmt* stmt, int index, const QVariant& value) {
    if (!value.isValid() || value.isNull()) {
        sqlite3_bind_null(stmt, index);
        return;
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        sqlite3_bind_int64(stmt, index, value.toLongLong());
        break;
    case QMetaType::Double:
    case QMetaType::Float:
        sqlite3_bind_double(stmt, index, value.toDouble());
        break;
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        sqlite3_bind_blob(stmt, index, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
        break;
    }
    default:
        bindText(stmt, index, value.toString());
    }
}

QVariant findParam(const SqlParams& params, const QString& name) {
    const auto exact = params.constFind(name);
    if (exact != params.constEnd())
        return exact.value();
    // Parameter names are case-insensitive, as the engine we follow treats them.
    for (auto it = params.constBegin(); it != params.constEnd(); ++it)
        if (it.key().compare(name, Qt::CaseInsensitive) == 0)
            return it.value();
    return QVariant();
}

// The first bytes of every SQLite 3 file.
bool looksLikeDatabase(const QString& path, QString& why) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        why = file.errorString();
        return false;
    }
    const QByteArray header = file.read(16);
    if (header.isEmpty()) {
        why = QStringLiteral("the file is empty");
        return false;
    }
    if (header != QByteArray("SQLite format 3", 16)) {
        why = QStringLiteral("the file is not a database");
        return false;
    }
    return true;
}

} // namespace

int SqlRows::columnIndex(const QString& name) const {
    for (int i = 0; i < columns.size(); ++i)
        if (columns.at(i).compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

QVariant SqlRows::value(int row, const QString& name) const {
    const int column = columnIndex(name);
    if (row < 0 || row >= rows.size() || column < 0)
        return QVariant();
    return rows.at(row).at(column);
}
QString bindNamedParameters(const QString& sql, const SqlParams& params, QVariantList& values) {
    values.clear();
    if (!sql.contains(QLatin1Char(':')))
        return sql; // nothing to bind: the common case of a statement formatted in full
    QString out;
    out.reserve(sql.size());
    const qsizetype n = sql.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = sql.at(i);
        if (c == QLatin1Char('\'') || c == QLatin1Char('"') || c == QLatin1Char('[') ||
            c == QLatin1Char('`')) {
            // Literals and quoted names pass unchanged; a doubled quote stays inside the literal.
            const QChar close = c == QLatin1Char('[') ? QLatin1Char(']') : c;
            out += c;
            qsizetype j = i + 1;
            while (j < n) {
                out += sql.at(j);
                if (sql.at(j) == close) {
                    if (close != QLatin1Char(']') && j + 1 < n && sql.at(j + 1) == close) {
                        out += sql.at(++j);
                    } else {
                        break;
                    }
                }
                ++j;
            }
            i = j;
            continue;
        }
        if (c == QLatin1Char(':') && i + 1 < n &&
            (sql.at(i + 1).isLetter() || sql.at(i + 1) == QLatin1Char('_')) &&
            (i == 0 || sql.at(i - 1) != QLatin1Char(':'))) {
            qsizetype j = i + 1;
            while (j < n && isNameChar(sql.at(j)))
                ++j;
            const QString name = sql.mid(i + 1, j - i - 1);
            // Parameter names are case-insensitive, as the engine we follow treats them.
            QVariant value;
            for (auto it = params.constBegin(); it != params.constEnd(); ++it)
                if (it.key().compare(name, Qt::CaseInsensitive) == 0) {
                    value = it.value();
                    break;
                }
            values << value;
            out += QLatin1Char('?');
            i = j - 1;
            continue;
        }
        out += c;
    }
    return out;
}

// ---- Cursor

Cursor::Cursor(Cursor&& other) noexcept
    : m_statement(std::move(other.m_statement)), m_handle(other.m_handle), m_pending(other.m_pending),
      m_onRow(other.m_onRow), m_done(other.m_done) {
    other.m_done = true;
    other.m_pending = other.m_onRow = false;
}

Cursor& Cursor::operator=(Cursor&& other) noexcept {
    if (this != &other) {
        release();
        m_statement = std::move(other.m_statement);
        m_handle = other.m_handle;
        m_pending = other.m_pending;
        m_onRow = other.m_onRow;
        m_done = other.m_done;
        other.m_done = true;
        other.m_pending = other.m_onRow = false;
    }
    return *this;
}

Cursor::~Cursor() {
    release();
}

void Cursor::release() {
    if (!m_statement)
        return;
    if (m_statement->stmt) {
        sqlite3_reset(m_statement->stmt);
        sqlite3_clear_bindings(m_statement->stmt);
    }
    m_statement->busy = false;
    m_statement.reset();
    m_pending = m_onRow = false;
    m_done = true;
}

bool Cursor::next() {
    if (m_pending) {
        m_pending = false;
        m_onRow = true;
        return true;
    }
    if (m_done || !m_statement) {
        m_onRow = false;
        return false;
    }
    const int rc = sqlite3_step(m_statement->stmt);
    if (rc == SQLITE_ROW) {
        m_onRow = true;
        return true;
    }
    m_onRow = false;
    m_done = true;
    if (rc != SQLITE_DONE) {
        const QString message = engineMessage(m_handle);
        const QString sql = m_statement->sql;
        release();
        throw DbError(message, sql);
    }
    return false;
}

int Cursor::columnCount() const {
    return m_statement && m_statement->stmt ? sqlite3_column_count(m_statement->stmt) : 0;
}

QString Cursor::columnName(int column) const {
    if (column < 0 || column >= columnCount())
        return QString();
    return QString::fromUtf16(static_cast<const char16_t*>(sqlite3_column_name16(m_statement->stmt, column)));
}

QStringList Cursor::columnNames() const {
    QStringList names;
    const int count = columnCount();
    names.reserve(count);
    for (int i = 0; i < count; ++i)
        names << columnName(i);
    return names;
}

QVariant Cursor::value(int column) const {
    if (!m_onRow || column < 0 || column >= columnCount())
        return QVariant();
    sqlite3_stmt* stmt = m_statement->stmt;
    switch (sqlite3_column_type(stmt, column)) {
    case SQLITE_INTEGER:
        return QVariant(qlonglong(sqlite3_column_int64(stmt, column)));
    case SQLITE_FLOAT:
        return QVariant(sqlite3_column_double(stmt, column));
    case SQLITE_TEXT:
        return QVariant(toString(column));
    case SQLITE_BLOB: {
        const void* data = sqlite3_column_blob(stmt, column);
        return QVariant(QByteArray(static_cast<const char*>(data), sqlite3_column_bytes(stmt, column)));
    }
    default:
        return QVariant();
    }
}

QVariant Cursor::value(const QString& name) const {
    const int count = columnCount();
    for (int i = 0; i < count; ++i)
        if (columnName(i).compare(name, Qt::CaseInsensitive) == 0)
            return value(i);
    return QVariant();
}

bool Cursor::isNull(int column) const {
    return !m_onRow || sqlite3_column_type(m_statement->stmt, column) == SQLITE_NULL;
}

double Cursor::toDouble(int column) const {
    return m_onRow ? sqlite3_column_double(m_statement->stmt, column) : 0.0;
}

qint64 Cursor::toInt64(int column) const {
    return m_onRow ? sqlite3_column_int64(m_statement->stmt, column) : 0;
}

QString Cursor::toString(int column) const {
    if (!m_onRow)
        return QString();
    const auto* text = static_cast<const char16_t*>(sqlite3_column_text16(m_statement->stmt, column));
    if (!text)
        return QString();
    return QString::fromUtf16(text, sqlite3_column_bytes16(m_statement->stmt, column) / 2);
}

QVariant Cursor::lastInsertId() const {
    return m_handle ? QVariant(qlonglong(sqlite3_last_insert_rowid(m_handle))) : QVariant();
}

// ---- Database

Database::Database() = default;

Database::~Database() {
    close();
}

void Database::open(const QString& path) {
    close();
    const QFileInfo info(path);
    const bool exists = info.exists();
    QString why;
    // Nothing is written to a file before it has shown itself a database: an empty file would
    // otherwise become an empty database.
    if (exists && !looksLikeDatabase(path, why))
        throw DbError(QStringLiteral("Cannot open the database: ") + why, path);
    const bool writable = !exists || (info.isWritable() && QFileInfo(info.absolutePath()).isWritable());
    const QByteArray name = QFile::encodeName(path);
    int flags = writable ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY;
    flags |= SQLITE_OPEN_NOMUTEX;
    sqlite3* handle = nullptr;
    int rc = sqlite3_open_v2(name.constData(), &handle, flags, nullptr);
    if (rc != SQLITE_OK) {
        const QString message = handle ? engineMessage(handle) : QString::fromUtf8(sqlite3_errstr(rc));
        sqlite3_close_v2(handle);
        throw DbError(QStringLiteral("Cannot open the database: ") + message, path);
    }
    if (!installJetDialect(handle)) {
        sqlite3_close_v2(handle);
        throw DbError(QStringLiteral("Cannot install the SQL dialect on the connection"), path);
    }
    m_handle = handle;
    m_path = path;
    m_readOnly = !writable;
    try {
        configure();
    } catch (const DbError& error) {
        const QString message = QString::fromStdString(error.what()).section(QLatin1Char('\n'), 0, 0);
        close();
        throw DbError(QStringLiteral("Cannot open the database: ") + message, path);
    }
}

void Database::configure() {
    sqlite3_busy_timeout(m_handle, 5000);
    // The first read is where a damaged file shows itself.
    scalar(QStringLiteral("PRAGMA schema_version"));
    if (m_readOnly)
        return;
    // Each statement stands alone and survives a killed process once it returns: WAL commits every
    // statement to the log, and NORMAL syncs only at checkpoints, so a power cut may lose the last
    // statements but never corrupts the file.
    exec(QStringLiteral("PRAGMA journal_mode = WAL"));
    exec(QStringLiteral("PRAGMA synchronous = NORMAL"));
}

void Database::close() {
    m_cache.clear(); // statements still held by a cursor finalize when it lets go
    m_plans.clear();
    if (m_handle) {
        sqlite3_close_v2(m_handle);
        m_handle = nullptr;
    }
    m_path.clear();
    m_readOnly = false;
}

std::shared_ptr<PreparedStatement> Database::prepare(const QString& sql) {
    if (!m_handle)
        throw DbError(QStringLiteral("The database is not open"), sql);
    auto found = m_cache.find(sql);
    if (found != m_cache.end() && !found.value()->busy) {
        found.value()->lastUse = ++m_clock;
        return found.value();
    }
    auto statement = std::make_shared<PreparedStatement>();
    statement->sql = sql;
    const void* tail = nullptr;
    const int rc =
        sqlite3_prepare16_v3(m_handle, sql.utf16(), int(sql.size() * 2),
                             found == m_cache.end() ? SQLITE_PREPARE_PERSISTENT : 0, &statement->stmt, &tail);
    if (rc != SQLITE_OK)
        throw DbError(engineMessage(m_handle), sql);
    if (tail) {
        // What follows the first statement may only be blanks, semicolons and comments.
        const qsizetype used =
            (static_cast<const char16_t*>(tail) - reinterpret_cast<const char16_t*>(sql.utf16()));
        const QString rest = sql.mid(used).trimmed();
        if (!rest.isEmpty() && rest != QLatin1String(";")) {
            sqlite3_stmt* second = nullptr;
            sqlite3_prepare16_v2(m_handle, rest.utf16(), int(rest.size() * 2), &second, nullptr);
            const bool onlyComments = second == nullptr;
            sqlite3_finalize(second);
            if (!onlyComments)
                throw DbError(QStringLiteral("Only one statement can run at a time"), sql);
        }
    }
    if (found == m_cache.end()) {
        if (m_cache.size() >= CacheLimit) {
            auto oldest = m_cache.end();
            for (auto it = m_cache.begin(); it != m_cache.end(); ++it)
                if (!it.value()->busy &&
                    (oldest == m_cache.end() || it.value()->lastUse < oldest.value()->lastUse))
                    oldest = it;
            if (oldest != m_cache.end())
                m_cache.erase(oldest);
        }
        statement->cached = true;
        statement->lastUse = ++m_clock;
        m_cache.insert(sql, statement);
    }
    return statement;
}

Cursor Database::start(std::shared_ptr<PreparedStatement> statement, const SqlParams& params,
                       const QVariantList& positional) {
    Cursor cursor;
    cursor.m_handle = m_handle;
    sqlite3_stmt* stmt = statement->stmt;
    if (!stmt) // a text of comments only
        return cursor;
    statement->busy = true;
    cursor.m_statement = std::move(statement);
    const int count = sqlite3_bind_parameter_count(stmt);
    for (int i = 1; i <= count; ++i) {
        const char* name = sqlite3_bind_parameter_name(stmt, i);
        if (!name || name[0] == '?') {
            const int position = name ? QByteArray(name + 1).toInt() : i;
            bindValue(stmt, i,
                      position >= 1 && position <= positional.size() ? positional.at(position - 1)
                                                                     : QVariant());
        } else {
            bindValue(stmt, i, findParam(params, QString::fromUtf8(name + 1)));
        }
    }
    const int rc = sqlite3_step(stmt);
    if (rc == SQLITE_ROW) {
        cursor.m_pending = true;
        cursor.m_done = false;
    } else if (rc == SQLITE_DONE) {
        cursor.m_done = true;
    } else {
        const QString message = engineMessage(m_handle);
        const QString sql = cursor.m_statement->sql;
        cursor.release();
        throw DbError(message, sql);
    }
    return cursor;
}

Cursor Database::run(const QString& sql, const SqlParams& params) {
    return start(prepare(sql), params, {});
}

void Database::exec(const QString& sql, const SqlParams& params) {
    Cursor cursor = run(sql, params);
    const bool readOnly = !cursor.m_statement || sqlite3_stmt_readonly(cursor.m_statement->stmt);
    m_changes = readOnly ? 0 : sqlite3_changes(m_handle);
}

SqlRows Database::select(const QString& sql, const SqlParams& params) {
    Cursor cursor = run(sql, params);
    SqlRows rows;
    rows.columns = cursor.columnNames();
    const int count = int(rows.columns.size());
    while (cursor.next()) {
        QVariantList row;
        row.reserve(count);
        for (int i = 0; i < count; ++i)
            row << cursor.value(i);
        rows.rows << row;
    }
    return rows;
}

QVariant Database::scalar(const QString& sql, const SqlParams& params) {
    Cursor cursor = run(sql, params);
    if (!cursor.next())
        return QVariant();
    return cursor.value(0);
}

Database::FormatPlan& Database::plan(const char* pattern) {
    auto found = m_plans.find(pattern);
    if (found != m_plans.end())
        return found.value();
    FormatPlan plan;
    plan.bindable = true;
    const QString text = QString::fromLatin1(pattern);
    QString sql;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c != QLatin1Char('%') || i + 1 >= text.size()) {
            sql += c;
            continue;
        }
        const QChar conversion = text.at(i + 1);
        if (conversion == QLatin1Char('%')) {
            sql += QLatin1Char('%');
            ++i;
            continue;
        }
        if (conversion == QLatin1Char('d') || conversion == QLatin1Char('i')) {
            plan.kinds << 'd';
            sql += QStringLiteral("?%1").arg(plan.kinds.size());
            ++i;
            continue;
        }
        // A quoted text value is the same statement bound as a text parameter.
        if (conversion == QLatin1Char('s') && i > 0 && text.at(i - 1) == QLatin1Char('\'') &&
            i + 2 < text.size() && text.at(i + 2) == QLatin1Char('\'')) {
            plan.kinds << 's';
            sql.chop(1);
            sql += QStringLiteral("?%1").arg(plan.kinds.size());
            i += 2;
            continue;
        }
        plan.bindable = false; // %f, a bare %s (a table name), widths: formatted as text
        break;
    }
    if (plan.bindable)
        plan.sql = sql;
    return m_plans.insert(pattern, plan).value();
}

Cursor Database::runFormat(const char* pattern, const QVariantList& args, const SqlParams& params) {
    FormatPlan& p = plan(pattern);
    if (!p.bindable)
        return run(format(QString::fromLatin1(pattern), args), params);
    QVariantList values;
    values.reserve(p.kinds.size());
    for (qsizetype i = 0; i < p.kinds.size(); ++i) {
        const QVariant arg = args.value(i);
        if (p.kinds.at(i) == 's') {
            values << QVariant(arg.toString().isNull() ? QStringLiteral("") : arg.toString());
        } else {
            // As the formatted text: a floating value is cut to its integer part.
            values << QVariant(arg.typeId() == QMetaType::Double || arg.typeId() == QMetaType::Float
                                   ? cutToInteger(arg.toDouble())
                                   : arg.toLongLong());
        }
    }
    if (p.statement && !p.statement->busy)
        return start(p.statement, params, values);
    auto statement = prepare(p.sql);
    if (statement->cached)
        p.statement = statement;
    return start(std::move(statement), params, values);
}

void Database::execFormat(const char* pattern, const QVariantList& args, const SqlParams& params) {
    Cursor cursor = runFormat(pattern, args, params);
    const bool readOnly = !cursor.m_statement || sqlite3_stmt_readonly(cursor.m_statement->stmt);
    m_changes = readOnly ? 0 : sqlite3_changes(m_handle);
}

QVariant Database::scalarFormat(const char* pattern, const QVariantList& args, const SqlParams& params) {
    Cursor cursor = runFormat(pattern, args, params);
    if (!cursor.next())
        return QVariant();
    return cursor.value(0);
}

} // namespace qm
