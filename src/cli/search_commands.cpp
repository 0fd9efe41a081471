#include "cli_commands.h"

#include "culinary/recipe_search.h"
#include "store/data_module_main.h"

#include <QRegularExpression>

namespace cli {

namespace {

/// Reads "--name VALUE" options; flags stand alone. Returns false with `error` on bad usage.
class OptionReader {
public:
    OptionReader(const QStringList& args, const QStringList& flags, const QStringList& valued)
        : m_args(args), m_flags(flags), m_valued(valued) {}
    bool next(QString& name, QString& value, QString& error) {
        if (m_pos >= m_args.size())
            return false;
        name = m_args.at(m_pos++);
        value.clear();
        if (m_flags.contains(name))
            return true;
        if (!m_valued.contains(name)) {
            error = QStringLiteral("unknown option: ") + name;
            return true;
        }
        if (m_pos >= m_args.size()) {
            error = name + QStringLiteral(" needs a value");
            name.clear();
            return true;
        }
        value = m_args.at(m_pos++);
        return true;
    }

private:
    QStringList m_args;
    QStringList m_flags;
    QStringList m_valued;
    int m_pos = 0;
};

// Whole numbers, as the edits take; the command line has no mask to limit their length.
bool digits(const QString& text) {
    static const QRegularExpression re(QStringLiteral("^\\d{1,9}$"));
    return re.match(text).hasMatch();
}

bool intValue(const QString& text, QList<int>& list) {
    bool ok = false;
    const int v = text.toInt(&ok);
    if (ok)
        list << v;
    return ok;
}

bool nutrientLimit(const QString& text, QMap<QString, TNutrientLimit>& limits) {
    // A limit may have decimals here (fat, vitamins); it goes into the statement as typed.
    static const QRegularExpression re(QStringLiteral("^(\\w+)(>=|<=)(\\d{1,9}(?:\\.\\d+)?)$"));
    const QRegularExpressionMatch m = re.match(text);
    if (!m.hasMatch() || !SearchNutrientOrder.contains(m.captured(1)))
        return false;
    limits[m.captured(1)] = TNutrientLimit{m.captured(2), m.captured(3)};
    return true;
}

int runStatement(Context& c, const QString& statement, bool printSql, const char* idColumn,
                 const char* nameColumn) {
    if (printSql) {
        c.out << statement;
        return 0;
    }
    qm::Cursor query = DataModuleMain->KADaoDatabase.run(statement);
    const QStringList columns = query.columnNames();
    const auto indexOf = [&columns](const char* column) {
        for (int i = 0; i < columns.size(); ++i)
            if (columns.at(i).compare(QLatin1String(column), Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    };
    const int id = indexOf(idColumn);
    const int name = indexOf(nameColumn);
    while (query.next())
        c.out << query.toString(id) << '\t' << query.toString(name) << '\n';
    return 0;
}

const char* const RecipeUsage =
    "usage: quillmeal-cli search-recipes [--pattern TEXT] [--group ID] [--all-groups] [--category ID]...\n"
    "  [--not-category ID]... [--max-time MIN] [--servings N] [--nutrient COLUMN>=VALUE|COLUMN<=VALUE]...\n"
    "  [--contains ID]... [--not-contains ID]... [--made-of ID]... [--sql]\n";
const char* const IngredientUsage =
    "usage: quillmeal-cli search-ingredients [--pattern TEXT] [--type ID] [--all-types]\n"
    "  [--nutrient COLUMN>=VALUE|COLUMN<=VALUE]... [--sql]\n";

} // namespace

int SearchRecipes(Context& c, const QStringList& args) {
    TRecipeSearchCriteria criteria;
    criteria.allGroups = false;
    bool printSql = false;
    OptionReader reader(args, {"--all-groups", "--sql"},
                        {"--pattern", "--group", "--category", "--not-category", "--max-time", "--servings",
                         "--nutrient", "--contains", "--not-contains", "--made-of"});
    QString name, value, error;
    bool ok = true;
    while (ok && reader.next(name, value, error)) {
        if (!error.isEmpty())
            ok = false;
        else if (name == QLatin1String("--pattern"))
            criteria.pattern = value;
        else if (name == QLatin1String("--group"))
            criteria.groupKey = value.toInt(&ok);
        else if (name == QLatin1String("--all-groups"))
            criteria.allGroups = true;
        else if (name == QLatin1String("--category"))
            ok = intValue(value, criteria.belongsTo);
        else if (name == QLatin1String("--not-category"))
            ok = intValue(value, criteria.notBelongsTo);
        else if (name == QLatin1String("--max-time"))
            ok = digits(criteria.prepTime = value);
        else if (name == QLatin1String("--servings"))
            ok = digits(criteria.servings = value);
        else if (name == QLatin1String("--nutrient"))
            ok = nutrientLimit(value, criteria.nutrients);
        else if (name == QLatin1String("--contains"))
            ok = intValue(value, criteria.contains);
        else if (name == QLatin1String("--not-contains"))
            ok = intValue(value, criteria.notContains);
        else if (name == QLatin1String("--made-of"))
            ok = intValue(value, criteria.contains) && (criteria.canBeMadeOf = true);
        else if (name == QLatin1String("--sql"))
            printSql = true;
        else
            ok = false;
    }
    if (!ok) {
        c.err << (error.isEmpty() ? QStringLiteral("bad option: ") + name : error) << '\n' << RecipeUsage;
        return 2;
    }
    criteria.groupChildrenIds =
        ChildrenIds(DataModuleMain->KADaoDatabase, QStringLiteral("RGroups"), QStringLiteral("recGroupId"),
                    QStringLiteral("recGroupName"), criteria.groupKey);
    return runStatement(c, StatementText(BuildRecipeSearchLines(criteria)), printSql, "recId", "recName");
}

int SearchIngredients(Context& c, const QStringList& args) {
    TIngredientSearchCriteria criteria;
    criteria.allTypes = false;
    bool printSql = false;
    OptionReader reader(args, {"--all-types", "--sql"}, {"--pattern", "--type", "--nutrient"});
    QString name, value, error;
    bool ok = true;
    while (ok && reader.next(name, value, error)) {
        if (!error.isEmpty())
            ok = false;
        else if (name == QLatin1String("--pattern"))
            criteria.pattern = value;
        else if (name == QLatin1String("--type"))
            criteria.typeKey = value.toInt(&ok);
        else if (name == QLatin1String("--all-types"))
            criteria.allTypes = true;
        else if (name == QLatin1String("--nutrient"))
            ok = nutrientLimit(value, criteria.nutrients);
        else if (name == QLatin1String("--sql"))
            printSql = true;
        else
            ok = false;
    }
    if (!ok) {
        c.err << (error.isEmpty() ? QStringLiteral("bad option: ") + name : error) << '\n' << IngredientUsage;
        return 2;
    }
    criteria.typeChildrenIds =
        ChildrenIds(DataModuleMain->KADaoDatabase, QStringLiteral("ITypes"), QStringLiteral("ingredTypeId"),
                    QStringLiteral("ingredTypeName"), criteria.typeKey);
    return runStatement(c, StatementText(BuildIngredientSearchLines(criteria)), printSql, "ingredId",
                        "ingredName");
}

} // namespace cli
