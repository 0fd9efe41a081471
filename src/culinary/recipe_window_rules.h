#pragma once

#include "culinary/nutrient_calculation.h"

#include <QString>
#include <QVariant>
#include <array>

namespace qm {
class Dataset;
}

// The rules of the recipes window and of its line dialogs that run without widgets: statements,
// validation, the recalculation of the current record, the scaled amount of a line.

namespace RecipeSql {
/// The lines of a structured recipe (:recId).
extern const char* const QueryContents;
/// The note on one nutrient (:bioValueId, text).
extern const char* const QueryBioValues;
/// Category names of a recipe (:recId).
extern const char* const QueryRecipeCategories;
extern const char* const InsertContents; ///< %d recId, %d ingredId, %f amount, %i unitId
extern const char* const UpdateContents; ///< %f amount, %d unitId, %d recId, %d ingredId
extern const char* const DeleteContents; ///< %d ingredId, %d recId
/// The ingredient list of the line dialog, its type condition (:ingredTypeId) and its name
/// condition (%s a pattern already quoted for the literal).
extern const char* const QueryIngredients;
extern const char* const IngredientsOfType;
extern const char* const IngredientsNamed;
/// Units of fixed weight and the units this ingredient has a conversion for (:ingredId).
extern const char* const QueryUnitsLookup;
/// Recipes of a group that a menu doesn't hold yet (:recGroupId, :menuId).
extern const char* const QueryRecipes;
} // namespace RecipeSql

/// Keys of the BioVals notes, parallel to NutrientSet.
extern const std::array<const char*, NutrientCount> BioValueIds;

/// The post checks of a recipe: a null name (kind 0), a negative preparation time (kind 1; null
/// passes), null servings (kind 2). Zero servings pass.
void CheckRecipe(qm::Dataset& tableRecipes, QString& errors);

/// Recalculates the nutrients of the current record of the recipe table into its fields, per
/// serving, leaving the record in edit (or insert) state without posting. A free-form record, or
/// one whose free-form flag is null, is left alone. Zero servings throw std::domain_error before
/// any field is written, so the record keeps its values.
void RecalculateNutrients(qm::Dataset& tableRecipes);

/// The scaled amount of a line: amount / recServings * n for a structured recipe, with n the
/// target servings read as an integer (empty or unparsable: 0). Null (cleared) when n isn't above
/// 0, for a free-form recipe or a null flag, and where the servings are 0.
QVariant CalcAmount(const QVariant& amount, const QVariant& recServings, const QVariant& recFreeForm,
                    const QString& newServings);

/// The statements of the lines, on the data module's connection.
void AddContentsLine(int recId, int ingredId, double amount, int unitId);
void UpdateContentsLine(int recId, int ingredId, double amount, int unitId);
void DeleteContentsLine(int recId, int ingredId);

/// The statement of the line dialog's ingredient list: all ingredients, those whose name holds
/// `search` (an apostrophe becomes a concatenation with CHR( 39 )), those of the type when
/// `typeKey` is above 0 (the caller sets :ingredTypeId).
QString IngredientChoiceStatement(const QString& search, int typeKey);

/// Integer and floating text of the dialogs: what doesn't parse is 0, without a message.
int ParseIntegerOrZero(const QString& text);
double ParseFloatOrZero(const QString& text);
