#include "store/data_module_main.h"

#include "components/day_number.h"
#include "components/messages.h"
#include "components/sql_format.h"
#include "store/resource_holder.h"
#include "store/schema.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <stdexcept>

TDataModuleMain* DataModuleMain = nullptr;

namespace DataModuleSql {
const char* const GetNewIdSelect = "SELECT keyValue \nFROM PKeys \nWHERE keyId = '%s'";
const char* const GetNewIdInsert = "INSERT INTO PKeys ( keyId, keyValue ) \nVALUES ( '%s', 1 )";
const char* const GetNewIdUpdate = "UPDATE PKeys \nSET keyValue = %d \nWHERE keyId = '%s'";
const char* const CountItems = "SELECT COUNT( * ) AS itemsCount \nFROM %s \nWHERE %s = %d";
const char* const CountRecords = "SELECT COUNT(*) AS recordCount \nFROM %s";
const char* const RecipeGroupId = "SELECT recGroupId \nFROM Recipes \nWHERE recId = %d";
const char* const IngredientTypeId = "SELECT ingredTypeId \nFROM Ingreds \nWHERE ingredId = %d";
const char* const MenuGroupId = "SELECT menuGroupId \nFROM Menus \nWHERE menuId = %d";
const char* const UserData =
    "SELECT userSex, userHeight, userBirthDate \nFROM PUsers \nWHERE userId = :userId";
const char* const IngredBaseUnit =
    "SELECT U.unitId, U.unitName, U.unitConv AS grams, I.ingredPrice FROM Ingreds I, Units U WHERE "
    "I.ingredId = "
    ":ingredId AND I.unitId = U.unitId AND U.unitType = 1 UNION SELECT U.unitId, U.unitName, C.grams, "
    "I.ingredPrice FROM Ingreds I, Convs C, Units U WHERE I.ingredId = :ingredId AND I.unitId = C.unitId AND "
    "I.unitId = U.unitId AND U.unitType = 2";
const char* const IngredientInMenu =
    "SELECT RM.servings AS recAmount, C.amount AS ingredAmount, \n   R.recServings, CN.grams AS grams \n"
    "FROM RecMen RM, Recipes R, Contents C, Ingreds I, Units U, Convs CN \nWHERE RM.menuId = %d \n"
    "   AND RM.recId = R.recId \n   AND R.recId = C.recId \n   AND C.ingredId = %d \n   AND I.ingredId = %d "
    "\n"
    "   AND C.unitId = U.unitId \n   AND CN.unitId = U.unitId \n   AND CN.ingredId = %d \n   AND U.unitType "
    "= 2 \n"
    "UNION \n"
    "SELECT RM.servings AS recAmount, C.amount AS ingredAmount, \n   R.recServings, U.unitConv AS grams \n"
    "FROM RecMen RM, Recipes R, Contents C, Ingreds I, Units U \nWHERE RM.menuId = %d \n   AND RM.recId = "
    "R.recId \n"
    "   AND R.recId = C.recId \n   AND C.ingredId = %d \n   AND I.ingredId = %d \n   AND C.unitId = U.unitId "
    "\n"
    "   AND U.unitType = 1";
const char* const IngredientForDate =
    "SELECT RD.servings AS recAmount, C.amount AS ingredAmount, \n   R.recServings, CN.grams AS grams \n"
    "FROM RecDate RD, Recipes R, Contents C, Ingreds I, Units U, Convs CN \n"
    "WHERE RD.dateScheduled BETWEEN %d AND %d \n   AND RD.recId = R.recId \n   AND R.recId = C.recId \n"
    "   AND C.ingredId = %d \n   AND I.ingredId = %d \n   AND C.unitId = U.unitId \n   AND CN.unitId = "
    "U.unitId \n"
    "   AND CN.ingredId = %d \n   AND U.unitType = 2 \n"
    "UNION \n"
    "SELECT RD.servings AS recAmount, C.amount AS ingredAmount, \n   R.recServings, U.unitConv AS grams \n"
    "FROM RecDate RD, Recipes R, Contents C, Ingreds I, Units U \n"
    "WHERE RD.dateScheduled BETWEEN %d AND %d \n   AND RD.recId = R.recId \n   AND R.recId = C.recId \n"
    "   AND C.ingredId = %d \n   AND I.ingredId = %d \n   AND C.unitId = U.unitId \n   AND U.unitType = 1";
} // namespace DataModuleSql

namespace {

const char* const UpdateQuestion =
    "Current database version is %4.02f\nDatabase version needed for this version\nof "
    "Quillmeal is %4.02f,\nso database needs to be updated.\nThis operation may take a "
    "few minutes.\n\nDo you want to proceed?";

QString sql(const char* text) {
    return QString::fromLatin1(text);
}

// The amount helpers guard no division: a zero divisor is the floating-point error the caller sees.
double divide(double a, double b) {
    if (b == 0)
        throw std::domain_error("Floating point division by zero");
    return a / b;
}

// Whole-day number of a date, cut to an integer as the statements carry it.
int wholeDay(const QDateTime& dateTime) {
    return int(qm::toDayNumberCut(dateTime));
}

QStringList pictureFiles(const QString& folder, int id) {
    QStringList names = QDir(folder).entryList({QString::number(id) + QStringLiteral(".*.jpg")}, QDir::Files);
    std::sort(names.begin(), names.end()); // as text, so 10 sorts before 2
    return names;
}

QString pictureName(int id, const QString& number) {
    return QString::number(id) + QLatin1Char('.') + number + QStringLiteral(".jpg");
}

} // namespace

TDataModuleMain::TDataModuleMain() {
    OnTerminate = [] {};
}

QString TDataModuleMain::DatabaseFileName() const {
    return FormResourceHolder->DataRootPath + QStringLiteral("Database/Hearthnote.db");
}

void TDataModuleMain::DataModuleCreate() {
    // 1. A connection left open from an earlier use is a slip of the caller.
    if (KADaoDatabase.isOpen()) {
        ShowInfo(QStringLiteral("Set KADaoDatabase->Connected property to false!"));
        KADaoDatabase.close();
    }
    // 2. Open. SQLite would make a new empty file; a missing database is an error instead.
    const QString file = DatabaseFileName();
    if (!QFileInfo::exists(file))
        throw qm::DbError(QStringLiteral("The database file does not exist"), file);
    KADaoDatabase.open(file);
    // 3.
    const int current = VintraDBUpdater.GetCurrentDBVersion(KADaoDatabase);
    // 4. A database newer than this build: not usable, and initialised stays false.
    if (VintraDBUpdater.VersionTarget < current) {
        ShowError(GetText(QStringLiteral("ErrorIncompatibleDatabaseVersion"), QString()));
        databaseUsable = false;
        KADaoDatabase.close();
        return;
    }
    // 5.
    VintraDBUpdater.ScriptFileName =
        FormResourceHolder->DataRootPath + QStringLiteral("Database/DatabaseUpdate.xml");
    // 6. The question is fixed English text, not a dictionary entry.
    if (VintraDBUpdater.VersionTarget > current) {
        const QString question = qm::format(QString::fromLatin1(UpdateQuestion),
                                            {current * 0.01, VintraDBUpdater.VersionTarget * 0.01});
        if (AskQuestion(question) != mrYes) {
            terminated = true;
            OnTerminate();
            initialised = true;
            return;
        }
        VintraDBUpdater.Execute(KADaoDatabase);
        // 7. Passwords don't exist here; the pictures of old databases get their number.
        if (current < 301)
            ConvertPicturesBelow301();
    }
    // Text compares without case and numbers keep their widths, in older files too.
    if (!KADaoDatabase.isReadOnly())
        qm::upgradeColumnRules(KADaoDatabase, VintraDBUpdater.VersionTarget > current);
    // 8.
    initialised = true;
}

void TDataModuleMain::ConvertPicturesBelow301() {
    for (const char* kind : {"rec", "ing"}) {
        QDir folder(FormResourceHolder->DataRootPath + QStringLiteral("Database/pic/") + QLatin1String(kind));
        for (const QString& name : folder.entryList({QStringLiteral("*.jpg")}, QDir::Files)) {
            QString renamed = name;
            renamed.insert(renamed.size() - 4, QStringLiteral(".1"));
            folder.rename(name, renamed);
        }
    }
}

int TDataModuleMain::GetNewId(const QString& keyId) {
    // The key goes in as a bound text value: a quote in it can't change the statement.
    const QVariant value = KADaoDatabase.scalarFormat(DataModuleSql::GetNewIdSelect, {keyId});
    if (!value.isValid()) {
        KADaoDatabase.execFormat(DataModuleSql::GetNewIdInsert, {keyId});
        return 1;
    }
    const int next = value.toInt() + 1;
    KADaoDatabase.execFormat(DataModuleSql::GetNewIdUpdate, {next, keyId});
    return next;
}

int TDataModuleMain::CountItems(const QString& table, const QString& column, int value) {
    return KADaoDatabase.scalar(qm::format(sql(DataModuleSql::CountItems), {table, column, value})).toInt();
}

int TDataModuleMain::CountRecords(const QString& table) {
    return KADaoDatabase.scalar(qm::format(sql(DataModuleSql::CountRecords), {table})).toInt();
}

int TDataModuleMain::GetRecipeGroupId(int recId) {
    return KADaoDatabase.scalarFormat(DataModuleSql::RecipeGroupId, {recId}).toInt();
}

int TDataModuleMain::GetIngredientTypeId(int ingredId) {
    return KADaoDatabase.scalarFormat(DataModuleSql::IngredientTypeId, {ingredId}).toInt();
}

int TDataModuleMain::GetMenuGroupId(int menuId) {
    return KADaoDatabase.scalarFormat(DataModuleSql::MenuGroupId, {menuId}).toInt();
}

void TDataModuleMain::GetUserData(int& sex, float& height, double& birthDate) {
    const int userId = FormResourceHolder->VintraOptions.GetAsInteger(QStringLiteral("ActiveUserId"));
    const qm::SqlRows rows =
        KADaoDatabase.select(sql(DataModuleSql::UserData), {{QStringLiteral("userId"), userId}});
    // No row for the active user: a user of nothing, as the empty query reads.
    sex = 0;
    height = 0;
    birthDate = 0;
    if (rows.rows.isEmpty())
        return;
    sex = rows.value(0, QStringLiteral("userSex")).toInt();
    height = rows.value(0, QStringLiteral("userHeight")).toFloat();
    birthDate = rows.value(0, QStringLiteral("userBirthDate")).toDouble();
}

TIngredientAmount TDataModuleMain::SumIngredientRows(int ingredId, qm::Cursor rows) {
    TIngredientAmount result;
    // The base unit: the first row read decides, which for a volume unit may be another
    // ingredient's conversion, since the statement doesn't bind Convs to this ingredient.
    double baseGrams = 0;
    {
        qm::Cursor base = KADaoDatabase.runFormat(DataModuleSql::IngredBaseUnit, {},
                                                  {{QStringLiteral("ingredId"), ingredId}});
        if (base.next()) {
            result.unitName = base.toString(1);
            baseGrams = base.toDouble(2);
            result.price = base.toDouble(3);
        }
    }
    double total = 0;
    while (rows.next()) {
        const int recAmount = int(rows.toInt64(0));
        const double ingredAmount = rows.toDouble(1);
        const int recServings = int(rows.toInt64(2));
        const double grams = rows.toDouble(3);
        total += divide(double(recAmount), double(recServings)) * ingredAmount * grams;
    }
    result.amount = divide(total, baseGrams);
    result.cost = result.amount * result.price;
    return result;
}

TIngredientAmount TDataModuleMain::GetIngredientInMenu(int menuId, int ingredId) {
    return SumIngredientRows(ingredId, KADaoDatabase.runFormat(DataModuleSql::IngredientInMenu,
                                                               {menuId, ingredId, ingredId, ingredId, menuId,
                                                                ingredId, ingredId}));
}

TIngredientAmount TDataModuleMain::GetIngredientForDate(int ingredId, const QDateTime& dateStart,
                                                        const QDateTime& dateEnd) {
    const int start = wholeDay(dateStart);
    const int end = wholeDay(dateEnd);
    return SumIngredientRows(ingredId, KADaoDatabase.runFormat(DataModuleSql::IngredientForDate,
                                                               {start, end, ingredId, ingredId, ingredId,
                                                                start, end, ingredId, ingredId}));
}

QString TDataModuleMain::PictureFolder(TPictureKind kind) const {
    return FormResourceHolder->DataRootPath + QStringLiteral("Database/pic/") +
           (kind == pkRecipe ? QStringLiteral("rec/") : QStringLiteral("ing/"));
}

bool TDataModuleMain::PictureExists(int id, TPictureKind kind) const {
    return QFileInfo::exists(PictureFolder(kind) + pictureName(id, QStringLiteral("1")));
}

int TDataModuleMain::NextPictureNumber(int id, TPictureKind kind) const {
    return int(pictureFiles(PictureFolder(kind), id).size()) + 1;
}

void TDataModuleMain::RenumberPictures(int id, TPictureKind kind) const {
    const QString folder = PictureFolder(kind);
    const QStringList names = pictureFiles(folder, id);
    const QString prefix = QString::number(id) + QLatin1Char('.');
    for (int i = 1; i <= names.size(); ++i) {
        const QString& name = names.at(i - 1);
        const QString number = name.mid(prefix.size(), name.size() - prefix.size() - 4);
        if (number == QString::number(i))
            continue;
        QString renamed = name;
        qm::ReplaceSubstring(renamed, QLatin1Char('.') + number + QLatin1Char('.'),
                             QLatin1Char('.') + QString::number(i) + QLatin1Char('.'));
        QFile::rename(folder + name, folder + renamed);
    }
}

void TDataModuleMain::SwapPictures(int id, int numberA, int numberB, TPictureKind kind) const {
    const QString folder = PictureFolder(kind);
    const QString a = folder + pictureName(id, QString::number(numberA));
    const QString b = folder + pictureName(id, QString::number(numberB));
    const QString temp = folder + pictureName(id, QStringLiteral("TEMP"));
    QFile::rename(a, temp);
    QFile::rename(b, a);
    QFile::rename(temp, b);
}

QString TDataModuleMain::RepairDatabase() {
    QString report = KADaoDatabase.scalar(QStringLiteral("PRAGMA integrity_check")).toString();
    if (report != QLatin1String("ok")) {
        // Indexes are the part SQLite can rebuild from the rows themselves.
        KADaoDatabase.exec(QStringLiteral("REINDEX"));
        report = KADaoDatabase.scalar(QStringLiteral("PRAGMA integrity_check")).toString();
    }
    return report;
}

void TDataModuleMain::CompactDatabase() {
    KADaoDatabase.exec(QStringLiteral("VACUUM"));
}
