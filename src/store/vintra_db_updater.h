#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace qm {
class Database;
}

/// One step of the update script: the statements that bring a database to `version`.
struct TVintraDBUpdateStep {
    int version = 0;
    QStringList statements;
};

/// Brings the schema forward by the statements of Database/DatabaseUpdate.xml.
class TVintraDBUpdater {
public:
    QString VersionTable = QStringLiteral("PKeys");
    QString VersionKeyField = QStringLiteral("keyId");
    QString VersionKeyValue = QStringLiteral("DatabaseVersion");
    QString VersionValueField = QStringLiteral("keyValue");
    int VersionTarget = 310;
    QString ScriptFileName;

    /// keyValue of the DatabaseVersion row; 0 when the row is missing.
    int GetCurrentDBVersion(qm::Database& db) const;
    /// Runs every step above the current version up to the target, in order, then writes the
    /// target as the version. Throws DbError on a bad script or a failing statement.
    void Execute(qm::Database& db) const;

    /// Reads the script; throws DbError when it can't be read or parsed.
    static QList<TVintraDBUpdateStep> ReadScript(const QString& fileName);
};
