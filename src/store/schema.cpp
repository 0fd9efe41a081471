#include "store/schema.h"

#include "components/database.h"

#include <QFile>
#include <QRegularExpression>

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
        db.exec(withColumnRules(statement));
    db.exec(QStringLiteral("PRAGMA user_version = %1").arg(ColumnRulesMark));
}

namespace {

// Splits the body of a CREATE TABLE at its top-level commas.
QStringList splitDefinitions(const QString& body) {
    QStringList parts;
    QString current;
    int depth = 0;
    bool inLiteral = false;
    for (const QChar c : body) {
        if (c == QLatin1Char('\''))
            inLiteral = !inLiteral;
        if (!inLiteral && c == QLatin1Char('('))
            ++depth;
        if (!inLiteral && c == QLatin1Char(')'))
            --depth;
        if (!inLiteral && depth == 0 && c == QLatin1Char(',')) {
            parts << current;
            current.clear();
            continue;
        }
        current += c;
    }
    parts << current;
    return parts;
}

QString rangeCheck(const QString& column, const char* low, const char* high) {
    return QStringLiteral(
               " CONSTRAINT \"%1 must be a whole number from %2 to %3\" CHECK (%1 BETWEEN %2 AND %3)")
        .arg(column, QLatin1String(low), QLatin1String(high));
}

QString definitionWithRules(const QString& definition) {
    const QString trimmed = definition.trimmed();
    const QStringList words = trimmed.simplified().split(QLatin1Char(' '));
    if (words.size() < 2)
        return definition;
    static const QStringList tableConstraints = {QStringLiteral("PRIMARY"), QStringLiteral("UNIQUE"),
                                                 QStringLiteral("CHECK"), QStringLiteral("CONSTRAINT"),
                                                 QStringLiteral("FOREIGN")};
    if (tableConstraints.contains(words.first().toUpper()))
        return definition;
    const QString column = words.at(0);
    const QString type = words.at(1).toUpper();
    const QString upper = trimmed.toUpper();
    QString out = trimmed;
    if (type == QLatin1String("TEXT") && !upper.contains(QLatin1String("COLLATE"))) {
        const qsizetype at = out.indexOf(words.at(1), column.size()) + words.at(1).size();
        out.insert(at, QStringLiteral(" COLLATE NOCASE"));
    } else if ((type == QLatin1String("SMALLINT") || type == QLatin1String("INT") ||
                type == QLatin1String("INTEGER")) &&
               !upper.contains(column.toUpper() + QStringLiteral(" BETWEEN"))) {
        out += type == QLatin1String("SMALLINT") ? rangeCheck(column, "-32768", "32767")
                                                 : rangeCheck(column, "-2147483648", "2147483647");
    } else {
        return definition;
    }
    return QStringLiteral("\n  ") + out;
}

} // namespace

QString withColumnRules(const QString& createTable) {
    static const QRegularExpression head(QStringLiteral("^\\s*CREATE\\s+TABLE\\s"),
                                         QRegularExpression::CaseInsensitiveOption);
    if (!head.match(createTable).hasMatch())
        return createTable;
    const qsizetype open = createTable.indexOf(QLatin1Char('('));
    const qsizetype close = createTable.lastIndexOf(QLatin1Char(')'));
    if (open < 0 || close < open)
        return createTable;
    QStringList parts = splitDefinitions(createTable.mid(open + 1, close - open - 1));
    for (QString& part : parts)
        part = definitionWithRules(part);
    return createTable.left(open + 1) + parts.join(QLatin1Char(',')) + createTable.mid(close);
}

int upgradeColumnRules(Database& db, bool always) {
    // A file that has the rules says so in its user version, which spares reading its tables at
    // every start.
    if (!always && db.scalar(QStringLiteral("PRAGMA user_version")).toInt() >= ColumnRulesMark)
        return 0;
    const SqlRows tables = db.select(QString::fromLatin1(SchemaSql::Tables));
    int rebuilt = 0;
    bool complete = true;
    for (const QVariantList& row : tables.rows) {
        const QString name = row.at(0).toString();
        const QString sql = row.at(1).toString();
        const QString wanted = withColumnRules(sql);
        if (wanted == sql)
            continue;
        // SQLite changes no column's collation or checks in place: the table is made anew under a
        // temporary name, filled, and takes the old one's place with its indexes, all or nothing.
        const SqlRows indexes =
            db.select(QString::fromLatin1(SchemaSql::Indexes), {{QStringLiteral("table"), name}});
        const QString temporary = QStringLiteral("qm_rebuild_") + name;
        const qsizetype open = wanted.indexOf(QLatin1Char('('));
        db.exec(QStringLiteral("SAVEPOINT qm_rebuild"));
        try {
            db.exec(QStringLiteral("CREATE TABLE \"%1\" ").arg(temporary) + wanted.mid(open));
            db.exec(QStringLiteral("INSERT INTO \"%1\" SELECT * FROM \"%2\"").arg(temporary, name));
            db.exec(QStringLiteral("DROP TABLE \"%1\"").arg(name));
            db.exec(QStringLiteral("ALTER TABLE \"%1\" RENAME TO \"%2\"").arg(temporary, name));
            for (const QVariantList& index : indexes.rows)
                db.exec(index.at(0).toString());
            db.exec(QStringLiteral("RELEASE qm_rebuild"));
            ++rebuilt;
        } catch (const DbError&) {
            // Rows that break the rules (a value out of its range) keep the table as it was.
            db.exec(QStringLiteral("ROLLBACK TO qm_rebuild"));
            db.exec(QStringLiteral("RELEASE qm_rebuild"));
            complete = false;
        }
    }
    db.exec(QStringLiteral("PRAGMA user_version = %1").arg(complete ? ColumnRulesMark : 0));
    return rebuilt;
}

namespace SchemaSql {
const char* const Tables =
    "SELECT name, sql FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite*' "
    "AND name NOT LIKE 'qm[_]rebuild[_]*' ORDER BY name";
const char* const Indexes =
    "SELECT sql FROM sqlite_master WHERE type = 'index' AND tbl_name = :table AND sql IS NOT NULL";
} // namespace SchemaSql

} // namespace qm
