#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <initializer_list>
#include <memory>
#include <stdexcept>

struct sqlite3;
struct sqlite3_stmt;

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

class Database;
struct PreparedStatement;

/// The rows of one running statement, read one at a time. The statement has already run its first
/// step when the cursor is handed out, so a statement without rows is done by then.
class Cursor {
public:
    Cursor() = default;
    Cursor(Cursor&& other) noexcept;
    Cursor& operator=(Cursor&& other) noexcept;
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;
    ~Cursor();

    /// Moves to the next row; false at the end. Throws DbError when the engine fails midway.
    bool next();
    int columnCount() const;
    QString columnName(int column) const;
    QStringList columnNames() const;
    /// Value of the current row: integer as qlonglong, float as double, text as QString, blob as
    /// QByteArray, NULL as an invalid QVariant.
    QVariant value(int column) const;
    QVariant value(const QString& name) const;
    bool isNull(int column) const;
    double toDouble(int column) const;
    qint64 toInt64(int column) const;
    QString toString(int column) const;
    /// Row id of the last insert on the connection.
    QVariant lastInsertId() const;

private:
    friend class Database;
    void release();
    std::shared_ptr<PreparedStatement> m_statement;
    sqlite3* m_handle = nullptr;
    bool m_pending = false; ///< the first step found a row that next() has not handed out yet
    bool m_onRow = false;
    bool m_done = true;
};

/// One SQLite connection with the Jet dialect installed on open. Statements are prepared once and
/// kept by their text, so a fixed statement costs one hash look-up on later runs.
class Database {
public:
    Database();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Opens the file, or creates it when it does not exist. A file that exists but is no database
    /// (an empty file included) is refused with DbError and left untouched; a file in a folder
    /// that can't be written opens for reading.
    void open(const QString& path);
    void close();
    bool isOpen() const { return m_handle != nullptr; }
    bool isReadOnly() const { return m_readOnly; }
    QString fileName() const { return m_path; }
    sqlite3* handle() const { return m_handle; }

    /// Runs one statement that returns no rows; throws DbError.
    void exec(const QString& sql, const SqlParams& params = {});
    /// Runs one statement and reads all its rows; throws DbError.
    SqlRows select(const QString& sql, const SqlParams& params = {});
    /// First column of the first row, or an invalid QVariant when there is none.
    QVariant scalar(const QString& sql, const SqlParams& params = {});
    /// Runs a statement for row-by-row reading; throws DbError.
    Cursor run(const QString& sql, const SqlParams& params = {});

    /// A statement given as a format pattern (%d, %i, '%s', %s, %f as qm::format reads them). Where
    /// the pattern holds only %d, %i and quoted '%s', the values are bound to one statement prepared
    /// once for the pattern, which is the same statement as the formatted text; other patterns
    /// are formatted as text.
    Cursor runFormat(const char* pattern, const QVariantList& args, const SqlParams& params = {});
    void execFormat(const char* pattern, const QVariantList& args, const SqlParams& params = {});
    QVariant scalarFormat(const char* pattern, const QVariantList& args, const SqlParams& params = {});

    /// Rows changed by the last exec().
    int changes() const { return m_changes; }

private:
    std::shared_ptr<PreparedStatement> prepare(const QString& sql);
    Cursor start(std::shared_ptr<PreparedStatement> statement, const SqlParams& params,
                 const QVariantList& positional);
    void configure();
    struct FormatPlan {
        bool bindable = false;
        QString sql;                                  ///< with ?1, ?2 … in place of the bindable specifiers
        QList<char> kinds;                            ///< 'd' integer, 's' text, per argument
        std::shared_ptr<PreparedStatement> statement; ///< kept here, so no look-up by text
    };
    FormatPlan& plan(const char* pattern);

    sqlite3* m_handle = nullptr;
    QString m_path;
    bool m_readOnly = false;
    int m_changes = 0;
    quint64 m_clock = 0;
    QHash<QString, std::shared_ptr<PreparedStatement>> m_cache;
    QHash<const char*, FormatPlan> m_plans;
};

/// Rewrites ":name" placeholders into positional "?" outside string literals and quoted names,
/// listing the values in order; a name used twice is bound twice.
QString bindNamedParameters(const QString& sql, const SqlParams& params, QVariantList& values);

} // namespace qm
