#include "store/vintra_db_updater.h"

#include "components/database.h"
#include "components/sql_format.h"

#include <QFile>
#include <QXmlStreamReader>
#include <algorithm>

int TVintraDBUpdater::GetCurrentDBVersion(qm::Database& db) const {
    const QString sql = qm::format(QStringLiteral("SELECT %s FROM %s WHERE %s = :key"),
                                   {VersionValueField, VersionTable, VersionKeyField});
    const QVariant version = db.scalar(sql, {{QStringLiteral("key"), VersionKeyValue}});
    // Without its version row the file is no database of ours, or a damaged one: updating it would
    // only pretend.
    if (!version.isValid())
        throw qm::DbError(QStringLiteral("The database has no version row (%1 %2 = '%3')")
                              .arg(VersionTable, VersionKeyField, VersionKeyValue),
                          db.fileName());
    return version.toInt();
}

QList<TVintraDBUpdateStep> TVintraDBUpdater::ReadScript(const QString& fileName) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw qm::DbError(QStringLiteral("Cannot read the update script"), fileName);
    QList<TVintraDBUpdateStep> steps;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("version")) {
            TVintraDBUpdateStep step;
            bool ok = false;
            step.version = xml.attributes().value(QLatin1String("number")).toInt(&ok);
            if (!ok)
                throw qm::DbError(QStringLiteral("Update script: a version without a number"), fileName);
            steps << step;
        } else if (xml.name() == QLatin1String("statement") && !steps.isEmpty()) {
            const QString statement = xml.readElementText().trimmed();
            if (!statement.isEmpty())
                steps.last().statements << statement;
        }
    }
    if (xml.hasError())
        throw qm::DbError(QStringLiteral("Update script: ") + xml.errorString(), fileName);
    std::stable_sort(
        steps.begin(), steps.end(),
        [](const TVintraDBUpdateStep& a, const TVintraDBUpdateStep& b) { return a.version < b.version; });
    return steps;
}

void TVintraDBUpdater::Execute(qm::Database& db) const {
    const int current = GetCurrentDBVersion(db);
    for (const TVintraDBUpdateStep& step : ReadScript(ScriptFileName)) {
        if (step.version <= current || step.version > VersionTarget)
            continue;
        for (const QString& statement : step.statements)
            db.exec(statement);
    }
    const QString sql = qm::format(QStringLiteral("UPDATE %s SET %s = %d WHERE %s = :key"),
                                   {VersionTable, VersionValueField, VersionTarget, VersionKeyField});
    db.exec(sql, {{QStringLiteral("key"), VersionKeyValue}});
}
