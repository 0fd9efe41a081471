#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <stdexcept>

namespace qm {

/// Named parameters of a statement: name without the colon -> value.
using SqlParams = QVariantMap;

/// A statement that the engine refused; what() holds the engine's text and the statement.
class DbError : public std::runtime_error {
public:
    DbError(const QString& message, const QString& sql)
        : std::runtime_error((message + QStringLiteral("\n") + sql).toStdString()), m_sql(sql) {}
    const QString& sql() const { return m_sql; }

private:
    QString m_sql;
};

/// Rows of one SELECT, read whole: column names and values (NULL as invalid QVariant).
struct SqlRows {
    QStringList columns;
    QList<QVariantList> rows;
    int columnIndex(const QString& name) const; ///< case-insensitive, -1 when absent
    QVariant value(int row, const QString& name) const;
};

/// One SQLite connection through QtSql, with the Jet dialect installed on open.
class Database {
public:
    Database();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Opens (and creates, when absent) the file; throws DbError when the engine refuses it.
    void open(const QString& path);
    void close();
    bool isOpen() const;
    QString fileName() const { return m_path; }
    QSqlDatabase connection() const;

    /// Runs one statement that returns no rows; throws DbError.
    void exec(const QString& sql, const SqlParams& params = {});
    /// Runs one statement and reads all its rows; throws DbError.
    SqlRows select(const QString& sql, const SqlParams& params = {});
    /// First column of the first row, or an invalid QVariant when there is none.
    QVariant scalar(const QString& sql, const SqlParams& params = {});
    /// Prepared and executed query for row-by-row reading; throws DbError.
    QSqlQuery run(const QString& sql, const SqlParams& params = {});

    /// Rows changed by the last exec().
    int changes() const { return m_changes; }

private:
    QString m_name;
    QString m_path;
    int m_changes = 0;
};

/// Rewrites ":name" placeholders into positional "?" outside string literals and quoted names,
/// listing the values in order; a name used twice is bound twice.
QString bindNamedParameters(const QString& sql, const SqlParams& params, QVariantList& values);

} // namespace qm
