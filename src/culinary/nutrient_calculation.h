#pragma once

#include <QString>
#include <QStringList>
#include <array>

namespace qm {
class Database;
}

/// The seventeen nutrient columns, in the order they are read, written and printed.
inline constexpr int NutrientCount = 17;
extern const std::array<const char*, NutrientCount> NutrientSet;

using TNutrientValues = std::array<double, NutrientCount>;

namespace NutrientSql {
extern const char* const RecipeLines;
extern const char* const LineGrams;
} // namespace NutrientSql

/// Grams of one unit of fixed weight as the recipe calculation counts them: unitConv read as a
/// whole number, a half going to the even neighbour, null as 0. The rounding is done in 64 bits;
/// a factor beyond that range counts as its nearest bound.
qint64 UnitConvAsInteger(const QVariant& unitConv);

/// The factor of one line: amount * weight * 0.01, left to right in extended precision.
double LineFactor(double amount, double weight);

/// Sums over a recipe's lines of each ingredient value per 100 g times the line's factor.
/// A line whose unit has no fixed weight and no conversion adds nothing.
TNutrientValues RecipeNutrientSums(qm::Database& db, int recId);

/// Sum / servings for each value; a zero divisor raises the division error before anything is
/// written, as the stored row must keep what it had.
TNutrientValues PerServing(const TNutrientValues& sums, int recServings);

/// Recalculates one stored recipe and writes the per-serving values with an UPDATE; a free-form
/// (or null) recipe is left as it is. Returns false when the recipe doesn't exist or is free-form.
bool RecalculateStoredRecipe(qm::Database& db, int recId);
