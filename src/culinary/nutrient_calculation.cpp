#include "culinary/nutrient_calculation.h"

#include "components/database.h"
#include "components/sql_format.h"

#include <QVariant>
#include <cfenv>
#include <cmath>
#include <limits>
#include <stdexcept>

const std::array<const char*, NutrientCount> NutrientSet = {
    "nutCal",      "nutTotalFat",  "nutCholesterol", "nutTotalCarbo", "nutDietaryFiber", "nutProtein",
    "nutVitaminA", "nutVitaminB6", "nutVitaminB12",  "nutVitaminC",   "nutVitaminD",     "nutVitaminE",
    "nutSodium",   "nutMagnesium", "nutIron",        "nutPotassium",  "nutCalcium"};

namespace NutrientSql {
const char* const RecipeLines =
    "SELECT C.ingredId, C.amount, U.unitId, U.unitType, U.unitConv, \n   I.nutCal, I.nutTotalFat, "
    "I.nutCholesterol, "
    "\n   I.nutTotalCarbo, I.nutDietaryFiber, I.nutProtein, \n   I.nutVitaminA, I.nutVitaminB6, "
    "I.nutVitaminB12, \n"
    "   I.nutVitaminC, I.nutVitaminD, I.nutVitaminE, \n   I.nutSodium, I.nutMagnesium, I.nutIron, "
    "I.nutPotassium, "
    "I.nutCalcium \nFROM Units U, Contents C, Ingreds I \nWHERE C.recId = %d \n   AND C.unitId = U.unitId \n"
    "   AND C.ingredId = I.ingredId";
const char* const LineGrams = "SELECT grams \nFROM Convs \nWHERE unitId = %d \n   AND ingredId = %d";
} // namespace NutrientSql

namespace {

const char* const SelectRecipe = "SELECT recFreeForm, recServings FROM Recipes WHERE recId = %d";

} // namespace

qint64 UnitConvAsInteger(const QVariant& unitConv) {
    if (unitConv.isNull())
        return 0;
    const double value = unitConv.toDouble();
    if (std::isnan(value))
        return 0;
    // Past the 64-bit range the nearest whole number of that range; beyond 2^53 every double is
    // whole already, so only the bounds need care.
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (value >= limit)
        return std::numeric_limits<qint64>::max();
    if (value < -limit)
        return std::numeric_limits<qint64>::min();
    // nearbyint follows the current rounding mode, which is to-nearest-even by default.
    const int saved = std::fegetround();
    std::fesetround(FE_TONEAREST);
    const double rounded = std::nearbyint(value);
    std::fesetround(saved);
    return qint64(rounded);
}

double LineFactor(double amount, double weight) {
    const long double factor = static_cast<long double>(amount) * static_cast<long double>(weight) * 0.01L;
    return static_cast<double>(factor);
}

TNutrientValues RecipeNutrientSums(qm::Database& db, int recId) {
    TNutrientValues sums{};
    qm::Cursor lines = db.runFormat(NutrientSql::RecipeLines, {recId});
    while (lines.next()) {
        const int ingredId = lines.value(0).toInt();
        const double amount = lines.value(1).toDouble();
        const int unitId = lines.value(2).toInt();
        double weight = 0;
        if (lines.value(3).toInt() == 1) {
            weight = double(UnitConvAsInteger(lines.value(4)));
        } else {
            // No row reads as 0 grams, so the line adds nothing.
            weight = db.scalar(qm::format(QString::fromLatin1(NutrientSql::LineGrams), {unitId, ingredId}))
                         .toDouble();
        }
        const double factor = LineFactor(amount, weight);
        for (int i = 0; i < NutrientCount; ++i) {
            const long double value = lines.value(5 + i).toDouble(); // null reads as 0
            sums[i] = static_cast<double>(static_cast<long double>(sums[i]) + value * factor);
        }
    }
    return sums;
}

TNutrientValues PerServing(const TNutrientValues& sums, int recServings) {
    if (recServings == 0)
        throw std::domain_error(sums[0] == 0 ? "Invalid floating point operation"
                                             : "Floating point division by zero");
    TNutrientValues values{};
    for (int i = 0; i < NutrientCount; ++i)
        values[i] = static_cast<double>(static_cast<long double>(sums[i]) / recServings);
    return values;
}

bool RecalculateStoredRecipe(qm::Database& db, int recId) {
    const qm::SqlRows recipe = db.select(qm::format(QString::fromLatin1(SelectRecipe), {recId}));
    if (recipe.rows.isEmpty())
        return false;
    const QVariant freeForm = recipe.rows.first().at(0);
    if (freeForm.isNull() || freeForm.toBool())
        return false;
    const TNutrientValues values =
        PerServing(RecipeNutrientSums(db, recId), recipe.rows.first().at(1).toInt());
    QStringList assignments;
    qm::SqlParams params{{QStringLiteral("recId"), recId}};
    for (int i = 0; i < NutrientCount; ++i) {
        assignments << QStringLiteral("%1 = :%1").arg(QLatin1String(NutrientSet[i]));
        params.insert(QLatin1String(NutrientSet[i]), values[i]);
    }
    db.exec(QStringLiteral("UPDATE Recipes SET ") + assignments.join(QStringLiteral(", ")) +
                QStringLiteral(" WHERE recId = :recId"),
            params);
    return true;
}
