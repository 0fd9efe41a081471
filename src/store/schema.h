#pragma once

#include <QString>
#include <QStringList>

namespace qm {

class Database;

/// Splits a script of statements separated by ';' (outside literals), dropping '--' comments.
QStringList splitSqlScript(const QString& script);

/// A CREATE TABLE statement with the rules the engine enforces on columns: text compares without
/// case (COLLATE NOCASE) and SMALLINT and INT columns refuse numbers beyond 16 and 32 bits.
/// Other statements and columns that already carry the rules come back unchanged.
QString withColumnRules(const QString& createTable);

/// The user version of a file whose tables all carry the column rules.
constexpr int ColumnRulesMark = 1;

/// Rebuilds the tables of an existing database whose columns lack those rules; returns how many.
/// A file marked as having them is left alone unless `always` (after an update added tables).
int upgradeColumnRules(Database& db, bool always = false);

namespace SchemaSql {
extern const char* const Tables;
extern const char* const Indexes;
} // namespace SchemaSql

/// Creates every table of the schema script, with the column rules, in an empty database;
/// throws DbError.
void createSchema(Database& db, const QString& schemaFile);

} // namespace qm
