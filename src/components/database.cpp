#include "components/database.h"

#include "components/jet_dialect.h"

#include <QAtomicInt>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>
#include <sqlite3.h>

namespace qm {

namespace {

QAtomicInt g_connectionCounter;

bool isNameChar(QChar c) {
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

sqlite3* nativeHandle(const QSqlDatabase& db) {
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
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

Database::Database() : m_name(QStringLiteral("qm-%1").arg(g_connectionCounter.fetchAndAddRelaxed(1))) {}

Database::~Database() {
    close();
}

void Database::open(const QString& path) {
    close();
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        if (!db.open()) {
            const QString message = db.lastError().text();
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(m_name);
            throw DbError(QStringLiteral("Cannot open the database: ") + message, path);
        }
        sqlite3* handle = nativeHandle(db);
        if (!handle || !installJetDialect(handle)) {
            db.close();
            db = QSqlDatabase();
            QSqlDatabase::removeDatabase(m_name);
            throw DbError(QStringLiteral("Cannot install the SQL dialect on the connection"), path);
        }
    }
    m_path = path;
    // Each statement stands alone and must be durable when it returns: WAL with a full sync
    // gives that with one sync per statement. The first statement is also where SQLite finds out
    // that a file is no database at all.
    try {
        exec(QStringLiteral("PRAGMA journal_mode = WAL"));
        exec(QStringLiteral("PRAGMA synchronous = FULL"));
    } catch (const DbError& error) {
        const QString message = QString::fromStdString(error.what()).section(QLatin1Char('\n'), 0, 0);
        close();
        throw DbError(QStringLiteral("Cannot open the database: ") + message, path);
    }
}

void Database::close() {
    if (!QSqlDatabase::contains(m_name))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_name, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_name);
    m_path.clear();
}

bool Database::isOpen() const {
    return QSqlDatabase::contains(m_name) && QSqlDatabase::database(m_name, false).isOpen();
}

QSqlDatabase Database::connection() const {
    return QSqlDatabase::database(m_name, false);
}

QSqlQuery Database::run(const QString& sql, const SqlParams& params) {
    if (!isOpen())
        throw DbError(QStringLiteral("The database is not open"), sql);
    QSqlQuery query(connection());
    query.setForwardOnly(true);
    QVariantList values;
    const QString text = bindNamedParameters(sql, params, values);
    if (values.isEmpty()) {
        // Without parameters the statement runs directly: preparing would only scan it again for
        // placeholders.
        if (!query.exec(text))
            throw DbError(query.lastError().text(), sql);
        return query;
    }
    if (!query.prepare(text))
        throw DbError(query.lastError().text(), sql);
    for (int i = 0; i < values.size(); ++i)
        query.bindValue(i, values.at(i));
    if (!query.exec())
        throw DbError(query.lastError().text(), sql);
    return query;
}

void Database::exec(const QString& sql, const SqlParams& params) {
    QSqlQuery query = run(sql, params);
    m_changes = query.numRowsAffected();
}

SqlRows Database::select(const QString& sql, const SqlParams& params) {
    QSqlQuery query = run(sql, params);
    SqlRows rows;
    const QSqlRecord record = query.record();
    const int count = record.count();
    for (int i = 0; i < count; ++i)
        rows.columns << record.fieldName(i);
    while (query.next()) {
        QVariantList row;
        row.reserve(count);
        for (int i = 0; i < count; ++i)
            row << query.value(i);
        rows.rows << row;
    }
    return rows;
}

QVariant Database::scalar(const QString& sql, const SqlParams& params) {
    QSqlQuery query = run(sql, params);
    if (!query.next())
        return QVariant();
    return query.value(0);
}

} // namespace qm
