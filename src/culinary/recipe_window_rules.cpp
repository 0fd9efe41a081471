#include "culinary/recipe_window_rules.h"

#include "components/database.h"
#include "components/dataset.h"
#include "components/decimal_text.h"
#include "components/sql_format.h"
#include "culinary/recipe_search.h"
#include "store/data_module_main.h"
#include "store/record_window_rules.h"

namespace RecipeSql {
const char* const QueryContents =
    "SELECT C.ingredId, C.recId, I.ingredName, I.ingredTypeId, C.amount, U.unitName, "
    "U.unitId\nFROM Contents C, Ingreds I, Units U\nWHERE C.ingredId = I.ingredId\n"
    "   AND C.unitId = U.unitId\n   AND C.recId = :recId";
const char* const QueryBioValues = "SELECT bioValueDesc\nFROM BioVals\nWHERE bioValueId = :bioValueId";
const char* const QueryRecipeCategories =
    "SELECT C.catName \nFROM Categories C, RecCat RC \nWHERE C.catId = RC.catId\n   AND RC.recID = :recId";
const char* const InsertContents =
    "INSERT INTO Contents ( recId, ingredId, amount, unitId ) \nVALUES ( %d, %d, %f, %i )";
const char* const UpdateContents =
    "UPDATE Contents \nSET amount = %f, \n   unitId = %d \nWHERE recId = %d \n   AND ingredId = %d";
const char* const DeleteContents = "DELETE FROM Contents \nWHERE ingredId = %d \n   AND recId = %d";
const char* const QueryIngredients = "SELECT ingredName, ingredId \nFROM Ingreds \nWHERE 1 = 1";
const char* const IngredientsOfType = "\n   AND ingredTypeId = :ingredTypeId";
const char* const IngredientsNamed = "   AND ingredName LIKE '*%s*'";
const char* const QueryUnitsLookup = "SELECT unitId, unitName\nFROM Units\nWHERE unitType = 1\nUNION\n"
                                     "SELECT U.unitId, U.unitName\nFROM Units U, Ingreds I, Convs C\n"
                                     "WHERE C.unitId = U.unitId\n   AND C.ingredId = I.ingredId\n"
                                     "   AND C.ingredId = :ingredId\nORDER BY unitName";
const char* const QueryRecipes = "SELECT recName, recId\nFROM Recipes\nWHERE recGroupId = :recGroupId\n"
                                 "   AND recId NOT IN\n   (\n      SELECT recId\n      FROM RecMen\n"
                                 "      WHERE menuId = :menuId\n   )";
} // namespace RecipeSql

const std::array<const char*, NutrientCount> BioValueIds = {
    "Calories", "TotalFat",  "Cholesterol", "TotalCarbo", "DietaryFiber", "Protein",
    "VitaminA", "VitaminB6", "VitaminB12",  "VitaminC",   "VitaminD",     "VitaminE",
    "Sodium",   "Magnesium", "Iron",        "Potassium",  "Calcium"};

namespace {

qm::Database& database() {
    return DataModuleMain->KADaoDatabase;
}

bool isNull(const QVariant& v) {
    return !v.isValid() || v.isNull();
}

} // namespace

void CheckRecipe(qm::Dataset& table, QString& errors) {
    if (table.FieldByName(QStringLiteral("recName")).IsNull())
        AddFieldError(0, errors);
    const qm::Field time = table.FieldByName(QStringLiteral("recTime"));
    if (!time.IsNull() && time.AsInteger() < 0)
        AddFieldError(1, errors);
    if (table.FieldByName(QStringLiteral("recServings")).IsNull())
        AddFieldError(2, errors);
}

void RecalculateNutrients(qm::Dataset& table) {
    const qm::Field freeForm = table.FieldByName(QStringLiteral("recFreeForm"));
    if (freeForm.IsNull() || freeForm.AsBoolean())
        return;
    const int recId = table.FieldByName(QStringLiteral("recId")).AsInteger();
    const TNutrientValues sums = RecipeNutrientSums(*table.GetDatabase(), recId);
    const int servings = table.FieldByName(QStringLiteral("recServings")).AsInteger();
    if (table.State() != qm::dsEdit && table.State() != qm::dsInsert)
        table.Edit();
    const TNutrientValues values = PerServing(sums, servings);
    for (int i = 0; i < NutrientCount; ++i)
        table.FieldByName(QLatin1String(NutrientSet[i])).SetAsFloat(values[i]);
}

QVariant CalcAmount(const QVariant& amount, const QVariant& recServings, const QVariant& recFreeForm,
                    const QString& newServings) {
    if (isNull(recFreeForm) || recFreeForm.toBool())
        return QVariant();
    const int n = ParseIntegerOrZero(newServings);
    if (n <= 0)
        return QVariant();
    const double servings = recServings.toDouble();
    // No servings to scale from: the line shows no figure rather than an infinite one.
    if (servings == 0)
        return QVariant();
    return amount.toDouble() / servings * n;
}

void AddContentsLine(int recId, int ingredId, double amount, int unitId) {
    database().exec(
        qm::format(QString::fromLatin1(RecipeSql::InsertContents), {recId, ingredId, amount, unitId}));
}

void UpdateContentsLine(int recId, int ingredId, double amount, int unitId) {
    database().exec(
        qm::format(QString::fromLatin1(RecipeSql::UpdateContents), {amount, unitId, recId, ingredId}));
}

void DeleteContentsLine(int recId, int ingredId) {
    database().exec(qm::format(QString::fromLatin1(RecipeSql::DeleteContents), {ingredId, recId}));
}

QString IngredientChoiceStatement(const QString& search, int typeKey) {
    QString sql = QString::fromLatin1(RecipeSql::QueryIngredients);
    if (!search.isEmpty())
        sql += QLatin1Char('\n') + qm::format(QString::fromLatin1(RecipeSql::IngredientsNamed),
                                              {QuotePatternApostrophes(search)});
    if (typeKey > 0)
        sql += QString::fromLatin1(RecipeSql::IngredientsOfType);
    return sql;
}

int ParseIntegerOrZero(const QString& text) {
    return qm::IntegerOrZero(text);
}

double ParseFloatOrZero(const QString& text) {
    return qm::DecimalOrZero(text);
}
