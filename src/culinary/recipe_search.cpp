#include "culinary/recipe_search.h"

#include "components/database.h"
#include "components/sql_format.h"

#include <QCollator>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <functional>

const QStringList SearchNutrientOrder = {
    "nutCal",       "nutTotalFat",   "nutCholesterol", "nutTotalCarbo", "nutProtein", "nutDietaryFiber",
    "nutSodium",    "nutMagnesium",  "nutIron",        "nutPotassium",  "nutCalcium", "nutVitaminA",
    "nutVitaminB6", "nutVitaminB12", "nutVitaminC",    "nutVitaminD",   "nutVitaminE"};

namespace {

const char* const RecipeSelect =
    "SELECT recId, recGroupId, recName, recTime, recServings, recPrice \nFROM Recipes \nWHERE 1 = 1 \n";
const char* const RecipeName = " AND recName LIKE '*%s*'";
const char* const RecipeGroups = " AND recGroupId IN (%s)";
const char* const BelongsTo =
    "   AND recId IN \n   ( \n      SELECT recId \n      FROM RecCat \n      WHERE catId = %d \n"
    "   ) \n";
const char* const NotBelongsTo = "   AND recId NOT IN \n   ( \n      SELECT recId \n      FROM RecCat \n"
                                 "      WHERE catId IN ( %s ) \n   ) \n";
const char* const PrepTime = " AND recTime <= %s";
const char* const Servings = " AND recServings = %s";
const char* const NutrientLimit = " AND %s %s %s";
const char* const CanBeMadeOf = "   AND recId NOT IN \n   ( \n      SELECT recId \n      FROM Contents \n"
                                "      WHERE ingredId NOT IN ( %s ) \n      GROUP BY recId \n   ) \n"
                                "   AND recFreeForm = FALSE";
const char* const Contains = "   AND recId IN \n   ( \n      SELECT DISTINCT recId \n      FROM Contents \n"
                             "      WHERE ingredId = %d \n   ) \n";
const char* const NotContains = "   AND recId NOT IN \n   ( \n      SELECT recId \n      FROM Contents \n"
                                "      WHERE ingredId IN ( %s ) \n   ) \n";
const char* const IngredientSelect = "SELECT ingredId, ingredTypeId, ingredName \nFROM Ingreds \nWHERE 1 = 1";
const char* const IngredientTypes = " AND ingredTypeId IN (%s)";
const char* const IngredientName = " AND ingredName LIKE '*%s*'";

QString joinIds(const QList<int>& ids) {
    QStringList parts;
    for (int id : ids)
        parts << QString::number(id);
    return parts.join(QLatin1Char(','));
}

/// The search keeps one text for the fragment it formatted last; a step whose list is empty
/// skips its formatting but still adds that text, so the previous fragment comes twice.
class Builder {
public:
    void add(const QString& fragment) {
        m_last = fragment;
        m_lines << m_last;
    }
    void addAgain() { m_lines << m_last; }
    /// A fixed line, not formatted: it doesn't become the repeated fragment.
    void addFixed(const QString& line) { m_lines << line; }
    void addList(const char* pattern, const QList<int>& ids) {
        if (ids.isEmpty())
            addAgain();
        else
            add(qm::format(QString::fromLatin1(pattern), {joinIds(ids)}));
    }
    void nutrients(const QMap<QString, TNutrientLimit>& limits) {
        for (const QString& column : SearchNutrientOrder) {
            const auto it = limits.constFind(column);
            if (it != limits.constEnd() && !it->value.trimmed().isEmpty())
                add(qm::format(QString::fromLatin1(NutrientLimit), {column, it->op, it->value}));
        }
    }
    QStringList lines() const { return m_lines; }

private:
    QString m_last;
    QStringList m_lines;
};

} // namespace

QString QuotePatternApostrophes(const QString& pattern) {
    QString text = pattern;
    qm::ReplaceSubstring(text, QStringLiteral("'"), QStringLiteral("@@@ || CHR( 39 ) || @@@"));
    qm::ReplaceSubstring(text, QStringLiteral("@@@"), QStringLiteral("'"));
    return text;
}

QStringList BuildRecipeSearchLines(const TRecipeSearchCriteria& c) {
    Builder b;
    b.addFixed(QString::fromLatin1(RecipeSelect));
    if (!c.pattern.trimmed().isEmpty())
        b.add(qm::format(QString::fromLatin1(RecipeName), {QuotePatternApostrophes(c.pattern)}));
    if (!(c.allGroups && c.groupKey >= 1))
        b.add(qm::format(QString::fromLatin1(RecipeGroups), {c.groupChildrenIds}));
    for (int catId : c.belongsTo)
        b.add(qm::format(QString::fromLatin1(BelongsTo), {catId}));
    b.addList(NotBelongsTo, c.notBelongsTo);
    if (!c.prepTime.trimmed().isEmpty())
        b.add(qm::format(QString::fromLatin1(PrepTime), {c.prepTime}));
    if (!c.servings.trimmed().isEmpty())
        b.add(qm::format(QString::fromLatin1(Servings), {c.servings}));
    b.nutrients(c.nutrients);
    if (c.canBeMadeOf) {
        b.addList(CanBeMadeOf, c.contains);
    } else {
        for (int ingredId : c.contains)
            b.add(qm::format(QString::fromLatin1(Contains), {ingredId}));
        b.addList(NotContains, c.notContains);
    }
    return b.lines();
}

QStringList BuildIngredientSearchLines(const TIngredientSearchCriteria& c) {
    Builder b;
    b.addFixed(QString::fromLatin1(IngredientSelect));
    if (!(c.allTypes && c.typeKey >= 1))
        b.add(qm::format(QString::fromLatin1(IngredientTypes), {c.typeChildrenIds}));
    if (!c.pattern.trimmed().isEmpty())
        b.add(qm::format(QString::fromLatin1(IngredientName), {QuotePatternApostrophes(c.pattern)}));
    b.nutrients(c.nutrients);
    return b.lines();
}

QString StatementText(const QStringList& lines) {
    QString text;
    for (const QString& line : lines)
        text += line + QLatin1Char('\n');
    return text;
}

QString ChildrenIds(qm::Database& db, const QString& table, const QString& keyColumn,
                    const QString& nameColumn, int key) {
    const qm::SqlRows rows = db.select(
        qm::format(QStringLiteral("SELECT %s, %s, parentId FROM %s"), {keyColumn, nameColumn, table}));
    QHash<int, QList<QPair<QString, int>>> children;
    for (const QVariantList& row : rows.rows)
        children[row.at(2).toInt()] << qMakePair(row.at(1).toString(), row.at(0).toInt());
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    QStringList ids;
    QSet<int> seen{key};
    std::function<void(int)> walk = [&](int parent) {
        auto list = children.value(parent);
        std::sort(list.begin(), list.end(), [&collator](const auto& a, const auto& b) {
            return collator.compare(a.first, b.first) < 0;
        });
        for (const auto& child : list) {
            if (seen.contains(child.second))
                continue; // a cycle in the parent links would never end
            seen.insert(child.second);
            ids << QString::number(child.second);
            walk(child.second);
        }
    };
    ids << QString::number(key);
    walk(key);
    return ids.join(QStringLiteral(", "));
}
