#include "culinary/ingredient_records.h"

#include "components/database.h"
#include "components/dataset.h"
#include "components/decimal_text.h"
#include "components/sql_format.h"
#include "store/record_window_rules.h"
#include "store/resource_holder.h"

#include <QDir>
#include <QFile>

namespace IngredientSql {
// A base unit is any weight unit, or a volume unit that has grams for this ingredient.
const char* const UnitsLookup =
    "SELECT unitId, unitName FROM Units WHERE unitType = 1 UNION SELECT U.unitId AS unitId, U.unitName AS "
    "unitName FROM Units U, Convs C WHERE ingredId = :ingredId AND C.unitId = U.unitId ORDER BY unitName";
const char* const UnitsOut =
    "SELECT unitId, unitName AS availableUnitName FROM Units WHERE unitType = 2 AND unitId NOT IN ( SELECT "
    "unitId FROM Convs WHERE ingredId = :ingredId ) ORDER BY unitName";
const char* const UnitsIn =
    "SELECT U.unitId, U.unitName AS attachedUnitName, C.grams FROM Units U, Convs C WHERE ingredId = "
    ":ingredId AND C.unitId = U.unitId ORDER BY U.unitName";
const char* const BioValues = "SELECT bioValueDesc FROM BioVals WHERE bioValueId = :bioValueId";
const char* const AddConversion = "INSERT INTO Convs( unitId, ingredId, grams ) \nVALUES( %d, %d, %f )";
const char* const RemoveConversion = "DELETE FROM Convs \nWHERE unitId = %d \n   AND ingredId = %d";
const char* const UpdateConversion =
    "UPDATE Convs \nSET grams = %f \nWHERE unitId = %d \n   AND ingredId = %d";
} // namespace IngredientSql

namespace IngredientRecords {

const std::array<NutrientField, 17> NutrientFields = {{
    {"nutCal", "Calories", "KCal", "Calories"},
    {"nutTotalFat", "TotalFat", "g", "Total fat"},
    {"nutCholesterol", "Cholesterol", "mg", "Cholesterol"},
    {"nutTotalCarbo", "TotalCarbo", "g", "Carbohydrates"},
    {"nutDietaryFiber", "DietaryFiber", "g", "Dietary fiber"},
    {"nutProtein", "Protein", "g", "Protein"},
    {"nutVitaminA", "VitaminA", "IU", "Vitamin A"},
    {"nutVitaminB6", "VitaminB6", "mg", "Vitamin B6"},
    {"nutVitaminB12", "VitaminB12", "mcg", "Vitamin B12"},
    {"nutVitaminC", "VitaminC", "mg", "Vitamin C"},
    {"nutVitaminD", "VitaminD", "IU", "Vitamin D"},
    {"nutVitaminE", "VitaminE", "mg", "Vitamin E"},
    {"nutSodium", "Sodium", "mg", "Sodium"},
    {"nutMagnesium", "Magnesium", "mg", "Magnesium"},
    {"nutIron", "Iron", "mg", "Iron"},
    {"nutPotassium", "Potassium", "mg", "Potassium"},
    {"nutCalcium", "Calcium", "mg", "Calcium"},
}};

QString NutrientHint(const NutrientField& field) {
    return QStringLiteral("%1 per 100 grams of current ingredient").arg(QString::fromLatin1(field.label));
}

void CheckIngredient(qm::Dataset& table, QString& errors) {
    if (table.FieldByName(QStringLiteral("ingredName")).IsNull())
        AddFieldError(4, errors);
    if (table.FieldByName(QStringLiteral("unitId")).IsNull())
        AddFieldError(5, errors);
}

bool ReadGrams(const QString& text, double& grams) {
    return qm::ParseDecimal(text, grams);
}

void AddConversion(qm::Database& db, int unitId, int ingredId, double grams) {
    db.exec(qm::format(QString::fromLatin1(IngredientSql::AddConversion), {unitId, ingredId, grams}));
}

void RemoveConversion(qm::Database& db, int unitId, int ingredId) {
    db.exec(qm::format(QString::fromLatin1(IngredientSql::RemoveConversion), {unitId, ingredId}));
}

void UpdateConversion(qm::Database& db, int unitId, int ingredId, double grams) {
    db.exec(qm::format(QString::fromLatin1(IngredientSql::UpdateConversion), {grams, unitId, ingredId}));
}

QString DeletedPictureFolder() {
    const QString root = FormResourceHolder ? FormResourceHolder->DataRootPath : QString();
    return root + QStringLiteral("Database/ing/rec/");
}

int DeletePictureFiles(int ingredId) {
    const QDir folder(DeletedPictureFolder());
    int removed = 0;
    for (const QString& name : folder.entryList({QStringLiteral("%1.*.jpg").arg(ingredId)}, QDir::Files))
        if (QFile::remove(folder.filePath(name)))
            ++removed;
    return removed;
}

} // namespace IngredientRecords
