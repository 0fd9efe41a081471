#pragma once

#include "components/database.h"
#include "store/vintra_db_updater.h"

#include <QDateTime>
#include <QString>
#include <functional>

/// Result of the two ingredient-amount helpers: the total in the ingredient's base unit.
struct TIngredientAmount {
    double amount = 0;
    QString unitName;
    double price = 0;
    double cost = 0;
};

/// Kind of the picture folders: 1 recipes (pic/rec), 2 ingredients (pic/ing).
enum TPictureKind { pkRecipe = 1, pkIngredient = 2 };

/// The one database connection and the shared queries, counters and lookups.
class TDataModuleMain {
public:
    TDataModuleMain();

    qm::Database KADaoDatabase;
    TVintraDBUpdater VintraDBUpdater;
    bool initialised = false;
    bool databaseUsable = true;
    /// Set when the user declined the update; the program ends, as `OnTerminate` does.
    bool terminated = false;
    std::function<void()> OnTerminate;

    /// Opens DataRootPath/Database/Hearthnote.db, checks and updates its version. May throw
    /// DbError when the file can't be opened.
    void DataModuleCreate();
    QString DatabaseFileName() const;

    int GetNewId(const QString& keyId);
    int CountItems(const QString& table, const QString& column, int value);
    int CountRecords(const QString& table);
    int GetRecipeGroupId(int recId);
    int GetIngredientTypeId(int ingredId);
    int GetMenuGroupId(int menuId);
    /// Sex, height and birth date (day number) of the active user; zeros when there is no row.
    void GetUserData(int& sex, float& height, double& birthDate);

    TIngredientAmount GetIngredientInMenu(int menuId, int ingredId);
    TIngredientAmount GetIngredientForDate(int ingredId, const QDateTime& dateStart,
                                           const QDateTime& dateEnd);

    QString PictureFolder(TPictureKind kind) const;
    bool PictureExists(int id, TPictureKind kind) const;
    int NextPictureNumber(int id, TPictureKind kind) const;
    void RenumberPictures(int id, TPictureKind kind) const;
    void SwapPictures(int id, int numberA, int numberB, TPictureKind kind) const;

    /// Integrity check with recovery of what can be read; returns the check's report.
    QString RepairDatabase();
    /// Rewrites the file without free pages.
    void CompactDatabase();

private:
    // The ingredient's base unit with its grams and price, and the rows of one amount statement.
    TIngredientAmount SumIngredientRows(int ingredId, qm::Cursor rows);
    void ConvertPicturesBelow301();
};

extern TDataModuleMain* DataModuleMain;

/// The statement texts of the module, kept as the rest of the system quotes them.
namespace DataModuleSql {
extern const char* const GetNewIdSelect;
extern const char* const GetNewIdInsert;
extern const char* const GetNewIdUpdate;
extern const char* const CountItems;
extern const char* const CountRecords;
extern const char* const RecipeGroupId;
extern const char* const IngredientTypeId;
extern const char* const MenuGroupId;
extern const char* const UserData;
extern const char* const IngredBaseUnit;
extern const char* const IngredientInMenu;
extern const char* const IngredientForDate;
} // namespace DataModuleSql
