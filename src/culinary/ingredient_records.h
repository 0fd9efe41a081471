#pragma once

#include <QString>
#include <array>

namespace qm {
class Database;
class Dataset;
} // namespace qm

/// Statements of the ingredients window, as the window's queries and commands run them.
namespace IngredientSql {
extern const char* const UnitsLookup;
extern const char* const UnitsOut;
extern const char* const UnitsIn;
extern const char* const BioValues;
extern const char* const AddConversion;
extern const char* const RemoveConversion;
extern const char* const UpdateConversion;
} // namespace IngredientSql

/// The rules of the ingredients window that need no widgets.
namespace IngredientRecords {

/// One box of the nutrition page: its column, the key of its note in BioVals, the unit shown
/// beside it and its English label.
struct NutrientField {
    const char* column;
    const char* bioValueId;
    const char* unit;
    const char* label;
};
/// The seventeen boxes, in the order of NutrientSet.
extern const std::array<NutrientField, 17> NutrientFields;
/// "<label> per 100 grams of current ingredient": the hint of a box.
QString NutrientHint(const NutrientField& field);

/// BeforePost: a null name adds a line of kind 4, a null base unit kind 5. Price and nutrients
/// aren't checked.
void CheckIngredient(qm::Dataset& table, QString& errors);

/// Grams typed for a volume unit: plain decimal text in the machine's format.
/// Neither sign nor zero is refused.
bool ReadGrams(const QString& text, double& grams);
/// The three commands of the measurements page, each one statement through %f.
void AddConversion(qm::Database& db, int unitId, int ingredId, double grams);
void RemoveConversion(qm::Database& db, int unitId, int ingredId);
void UpdateConversion(qm::Database& db, int unitId, int ingredId, double grams);

/// Folder where a deleted ingredient's pictures are looked for: DataRootPath + "Database/ing/rec/".
/// It is not the picture folder, so the files of deleted ingredients stay where they are.
QString DeletedPictureFolder();
/// Deletes what `<id>.*.jpg` finds in DeletedPictureFolder(); returns the number of files removed.
int DeletePictureFiles(int ingredId);

} // namespace IngredientRecords
