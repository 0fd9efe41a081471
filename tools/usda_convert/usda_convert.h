#pragma once

#include <QByteArrayView>
#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <stdexcept>
#include <vector>

// Turns the ASCII files of the USDA National Nutrient Database (SR28) into the seed tables Units,
// ITypes, Ingreds and Convs of the delivered database.
namespace qm::usda {

/// Raised on a missing file, a malformed record or an unexpected nutrient unit.
class UsdaError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Number of nutrient columns of an ingredient.
constexpr int NutrientCount = 17;

/// USDA nutrient numbers in the column order of the ingredient's nutrient set.
const std::array<int, NutrientCount>& nutrientNumbers();

/// Decodes Windows-1252 bytes, the encoding of the USDA files.
QString decodeWindows1252(QByteArrayView bytes);

/// Splits one record: fields separated by `^`, text in `~...~`. A null field (`~~` or an empty bare
/// field) comes back as a null QString; text keeps its spaces. Throws UsdaError on a broken quote.
QStringList splitRecord(QStringView line);

/// A bare USDA number (".5", "244", "0.85"); nullopt for a null or unreadable field.
std::optional<double> parseNumber(const QString& field);

/// USDA decimal text as written into a seed file: unchanged, with a leading zero where USDA omits it.
QString seedNumber(const QString& usdaText);

struct Food {
    int ndbNo = 0;
    int groupCode = 0;
    QString longDesc;
    QString comName; // null when USDA gives none
    QString sciName;
};

struct Weight {
    int seq = 0;
    double amount = 0;
    QString measure; // Msre_Desc as USDA writes it
    double grams = 0;
};

using NutrientTexts = std::array<QString, NutrientCount>; // null = not given by USDA

struct UsdaData {
    QMap<int, QString> groups;           // food group code -> description
    QList<Food> foods;                   // in NDB order
    QHash<int, NutrientTexts> nutrients; // by NDB number, per 100 g
    QHash<int, QList<Weight>> weights;   // by NDB number, in Seq order
};

/// Reads FD_GROUP, FOOD_DES, NUTR_DEF, WEIGHT and NUT_DATA (plain or `.xz`, unpacked with `xz -dc`).
UsdaData readUsdaFolder(const QString& dir);

/// One unit of the delivered Units table.
struct UnitDef {
    int id;
    QString name;
    QString abbrev;
    QString abbrevSmall;
    QString desc;
    int type;     // 1 weight, 2 volume or count
    QString conv; // grams of one unit for weight units, empty otherwise
};

/// The delivered units: the fixed ids 1..27 and the household units of the USDA measures from 28 up.
const std::vector<UnitDef>& deliveredUnits();

/// Unit ids with a fixed meaning in the converter.
enum UnitId {
    Gram = 1,
    Kilogram = 2,
    Teaspoon = 7,
    Tablespoon = 8,
    Cup = 9,
    FluidOunce = 10,
    Milliliter = 11,
    Deciliter = 12,
    Liter = 13,
    Pint = 14,
    Quart = 15,
    Gallon = 16,
    Pinch = 17,
    Dash = 18,
    Piece = 19,
    Small = 22,
    Medium = 23,
    Large = 24,
    Head = 42,
    Ear = 43
};

/// Size of a volume unit in US teaspoons; 0 for a unit outside the volume family.
double teaspoonsIn(int unitId);

/// What one USDA household measure stands for.
struct MeasureMatch {
    int unitId = 0;
    int tier = 0; // 0 unit word alone, 1 + "(...)", 2 + ", ...", 3 + other words, 4 size inside a serving or
                  // container
    bool otherSize = false;  // the qualifier names a size other than medium (large, thin, ...)
    double unitsPerItem = 1; // units in one measure item: "serving 1/2 cup" holds 0.5 cup

    /// Sort key: lower is the better measure of a unit.
    int preference() const { return tier * 2 + (otherSize ? 1 : 0); }
};

/// The units a measure names: its leading unit word (or the food's own noun, counted as pieces) and,
/// for servings and containers, the volume written inside it ("can (12 fl oz)").
QList<MeasureMatch> matchMeasure(const QString& measure, const QString& foodName = {});

/// Grams of one unit of a food for each unit it has a measure for, and derived units.
struct FoodUnits {
    QMap<int, double> grams;
    QSet<int> measured; // units taken straight from a USDA measure
};

/// Grams per unit from the food's measures: the best measure of each unit, the rest of the volume
/// family by exact ratios from the best volume measure, and a piece from a medium one where no
/// measure counts pieces.
FoodUnits foodUnits(const QString& foodName, const QList<Weight>& weights);

/// True when the food is sold by volume (drinks, milk, juices, oils, soups, liquid sauces).
bool isLiquidFood(const QString& name, int groupCode, const FoodUnits& units);

/// True when shoppers count the food (eggs, whole fruit, some vegetables, rolls and buns).
bool isPieceFood(const QString& name, int groupCode, const FoodUnits& units);

/// The base unit of a food: liter, piece or kilogram, always convertible for that food.
int chooseBaseUnit(const QString& name, int groupCode, const FoodUnits& units);

/// The ingredient name of a USDA description, at most maxLength characters.
QString ingredientName(const QString& longDesc, int maxLength = 128);

/// Text with the seed-file escapes (\t, \n, \\).
QString escapeSeedField(const QString& text);

/// Prices per base unit by ingredient id, from a TSV file (ingredId, ingredPrice).
QHash<int, QString> readPrices(const QString& path);

/// One seed table: column names and rows of seed-file fields (escaped; empty = NULL).
struct SeedTable {
    QString name;
    QStringList columns;
    QList<QStringList> rows;
};

struct SeedResult {
    QList<SeedTable> tables; // Units, ITypes, Ingreds, Convs
    int shortenedNames = 0;
    int liquidsWithoutVolume = 0;
    int pricedIngredients = 0;
    QMap<int, int> baseUnits; // unitId -> ingredients
    QStringList warnings;

    const SeedTable* table(const QString& name) const;
};

/// Builds the four seed tables from the USDA data and the optional prices.
SeedResult buildSeedTables(const UsdaData& data, const QHash<int, QString>& prices = {});

/// Writes each table as <dir>/<name>.tsv (UTF-8, tab-separated, header of column names).
void writeSeedTables(const QList<SeedTable>& tables, const QString& dir);

/// The program: quillmeal-usda-convert USDA_DIR OUT_DIR [PRICES_TSV]. Returns the exit status.
int runConverter(const QStringList& arguments);

} // namespace qm::usda
