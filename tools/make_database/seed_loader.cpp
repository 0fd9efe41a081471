#include "seed_loader.h"

#include "components/database.h"
#include "culinary/nutrient_calculation.h"
#include "store/schema.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

namespace qm {

QString unescapeSeedField(const QString& field) {
    if (!field.contains(QLatin1Char('\\')))
        return field;
    QString out;
    out.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        const QChar c = field.at(i);
        if (c != QLatin1Char('\\') || i + 1 >= field.size()) {
            out += c;
            continue;
        }
        const QChar n = field.at(++i);
        out += n == QLatin1Char('t')   ? QChar(QLatin1Char('\t'))
               : n == QLatin1Char('n') ? QChar(QLatin1Char('\n'))
                                       : n;
    }
    return out;
}

int loadSeedFile(Database& db, const QString& table, const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw DbError(QStringLiteral("Cannot read the seed file"), path);
    QTextStream in(&file);
    in.setEncoding(QStringConverter::Utf8);
    const QStringList columns = in.readLine().split(QLatin1Char('\t'));
    QStringList marks;
    for (qsizetype i = 0; i < columns.size(); ++i)
        marks << QStringLiteral(":c%1").arg(i);
    const QString insert =
        QStringLiteral("INSERT INTO %1 ( %2 ) VALUES ( %3 )")
            .arg(table, columns.join(QStringLiteral(", ")), marks.join(QStringLiteral(", ")));
    int count = 0;
    int lineNumber = 1;
    while (!in.atEnd()) {
        const QString line = in.readLine();
        ++lineNumber;
        if (line.isEmpty())
            continue;
        const QStringList fields = line.split(QLatin1Char('\t'));
        if (fields.size() != columns.size())
            throw DbError(
                QStringLiteral("%1 fields where the header has %2").arg(fields.size()).arg(columns.size()),
                QStringLiteral("%1:%2").arg(path).arg(lineNumber));
        SqlParams values;
        for (qsizetype i = 0; i < fields.size(); ++i)
            values.insert(QStringLiteral("c%1").arg(i),
                          fields.at(i).isEmpty() ? QVariant() : QVariant(unescapeSeedField(fields.at(i))));
        try {
            db.exec(insert, values);
        } catch (const DbError& error) {
            throw DbError(QString::fromUtf8(error.what()).section(QLatin1Char('\n'), 0, 0),
                          QStringLiteral("%1:%2").arg(path).arg(lineNumber));
        }
        ++count;
    }
    return count;
}

QStringList buildDeliveredDatabase(const QString& schemaFile, const QString& seedDir,
                                   const QString& outFile) {
    QStringList report;
    QFile::remove(outFile);
    Database db;
    db.open(outFile);
    createSchema(db, schemaFile);
    // One transaction for the build only: the program itself never opens one.
    db.exec(QStringLiteral("BEGIN"));
    const QStringList files = QDir(seedDir).entryList({QStringLiteral("*.tsv")}, QDir::Files, QDir::Name);
    for (const QString& name : files) {
        const QString table = name.chopped(4);
        const int rows = loadSeedFile(db, table, seedDir + QLatin1Char('/') + name);
        report << QStringLiteral("%1\t%2").arg(table).arg(rows);
    }
    // The sample recipes carry the values of the program's own calculation.
    const SqlRows recipes =
        db.select(QStringLiteral("SELECT recId FROM Recipes WHERE recFreeForm = 0 ORDER BY recId"));
    for (const QVariantList& row : recipes.rows)
        RecalculateStoredRecipe(db, row.first().toInt());
    report << QStringLiteral("recalculated\t%1").arg(recipes.rows.size());
    db.exec(QStringLiteral("COMMIT"));
    return report;
}

} // namespace qm
