#pragma once

#include <QString>
#include <QStringList>

namespace qm {

class Database;

/// Splits a script of statements separated by ';' (outside literals), dropping '--' comments.
QStringList splitSqlScript(const QString& script);

/// Creates every table of the schema script in an empty database; throws DbError.
void createSchema(Database& db, const QString& schemaFile);

} // namespace qm
