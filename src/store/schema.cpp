#include "store/schema.h"

#include "components/database.h"

#include <QFile>

namespace qm {

QStringList splitSqlScript(const QString& script) {
    QStringList statements;
    QString current;
    bool inLiteral = false;
    for (qsizetype i = 0; i < script.size(); ++i) {
        const QChar c = script.at(i);
        if (!inLiteral && c == QLatin1Char('-') && i + 1 < script.size() &&
            script.at(i + 1) == QLatin1Char('-')) {
            while (i < script.size() && script.at(i) != QLatin1Char('\n'))
                ++i;
            current += QLatin1Char('\n');
            continue;
        }
        if (c == QLatin1Char('\''))
            inLiteral = !inLiteral;
        if (c == QLatin1Char(';') && !inLiteral) {
            if (!current.trimmed().isEmpty())
                statements << current.trimmed();
            current.clear();
            continue;
        }
        current += c;
    }
    if (!current.trimmed().isEmpty())
        statements << current.trimmed();
    return statements;
}

void createSchema(Database& db, const QString& schemaFile) {
    QFile file(schemaFile);
    if (!file.open(QIODevice::ReadOnly))
        throw DbError(QStringLiteral("Cannot read the schema file"), schemaFile);
    for (const QString& statement : splitSqlScript(QString::fromUtf8(file.readAll())))
        db.exec(statement);
}

} // namespace qm
