#pragma once

#include <QString>
#include <QStringList>

namespace qm {

class Database;

/// Unescapes one field of a seed file: \t, \n, \\ (an empty field is NULL, handled by the caller).
QString unescapeSeedField(const QString& field);

/// Loads one seed file (header of column names, one row a line) into the table named by the
/// file; returns the number of rows. Throws DbError naming the file and line on bad input.
int loadSeedFile(Database& db, const QString& table, const QString& path);

/// Builds a delivered database at `outFile` from the schema, every <Table>.tsv of `seedDir`
/// and the version of the update script's target. Returns one report line per table.
QStringList buildDeliveredDatabase(const QString& schemaFile, const QString& seedDir, const QString& outFile);

} // namespace qm
