#include "usda_convert.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace qm::usda {

namespace {

// Nutrient number, the unit USDA gives it in (NUTR_DEF) and the ingredient column it fills.
struct NutrientDef {
    int number;
    const char* usdaUnit;
    const char* column;
};

const std::array<NutrientDef, NutrientCount> kNutrients = {{
    {208, "kcal", "nutCal"},
    {204, "g", "nutTotalFat"},
    {601, "mg", "nutCholesterol"},
    {205, "g", "nutTotalCarbo"},
    {291, "g", "nutDietaryFiber"},
    {203, "g", "nutProtein"},
    {318, "IU", "nutVitaminA"},
    {415, "mg", "nutVitaminB6"},
    {418, "\u00b5g", "nutVitaminB12"},
    {401, "mg", "nutVitaminC"},
    {324, "IU", "nutVitaminD"},
    {323, "mg", "nutVitaminE"},
    {307, "mg", "nutSodium"},
    {304, "mg", "nutMagnesium"},
    {303, "mg", "nutIron"},
    {306, "mg", "nutPotassium"},
    {301, "mg", "nutCalcium"},
}};

// Windows-1252 differs from Latin-1 only in 0x80..0x9F; its five unassigned bytes keep their code.
const char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

QString unitDesc(const char* text) {
    return QString::fromUtf8(text);
}

// Measure words (lower case) and the unit each names. Longer words are tried first, so "fl oz"
// wins over nothing and "cubic inch" over nothing; weight words (oz, lb, g) are absent on purpose:
// weights convert through Units.unitConv.
const QList<QPair<QString, int>>& measureWords() {
    static const QList<QPair<QString, int>> words = [] {
        QList<QPair<QString, int>> list = {
            {"cup", Cup},
            {"cups", Cup},
            {"tbsp", Tablespoon},
            {"tbs", Tablespoon},
            {"tablespoon", Tablespoon},
            {"tablespoons", Tablespoon},
            {"tsp", Teaspoon},
            {"teaspoon", Teaspoon},
            {"teaspoons", Teaspoon},
            {"fl oz", FluidOunce},
            {"ml", Milliliter},
            {"milliliter", Milliliter},
            {"milliliters", Milliliter},
            {"dl", Deciliter},
            {"liter", Liter},
            {"liters", Liter},
            {"litre", Liter},
            {"pint", Pint},
            {"pints", Pint},
            {"quart", Quart},
            {"quarts", Quart},
            {"gallon", Gallon},
            {"gallons", Gallon},
            {"pinch", Pinch},
            {"pinches", Pinch},
            {"dash", Dash},
            {"dashes", Dash},
            {"piece", Piece},
            {"pieces", Piece},
            {"each", Piece},
            {"item", Piece},
            {"items", Piece},
            {"fruit", Piece},
            {"fruits", Piece},
            {"slice", 20},
            {"slices", 20},
            {"clove", 21},
            {"cloves", 21},
            {"small", Small},
            {"medium", Medium},
            {"large", Large},
            {"stick", 25},
            {"sticks", 25},
            {"can", 26},
            {"cans", 26},
            {"package", 27},
            {"packages", 27},
            {"pkg", 27},
            {"container", 28},
            {"containers", 28},
            {"bar", 29},
            {"bars", 29},
            {"fillet", 30},
            {"fillets", 30},
            {"link", 31},
            {"links", 31},
            {"patty", 32},
            {"patties", 32},
            {"leaf", 33},
            {"leaves", 33},
            {"stalk", 34},
            {"stalks", 34},
            {"scoop", 35},
            {"scoops", 35},
            {"jar", 36},
            {"jars", 36},
            {"bottle", 37},
            {"bottles", 37},
            {"packet", 38},
            {"packets", 38},
            {"cubic inch", 39},
            {"cubic inches", 39},
            {"steak", 40},
            {"steaks", 40},
            {"chop", 41},
            {"chops", 41},
            {"head", Head},
            {"heads", Head},
            {"ear", Ear},
            {"ears", Ear},
            {"strip", 44},
            {"strips", 44},
            {"breast", 45},
            {"breasts", 45},
            {"thigh", 46},
            {"thighs", 46},
            {"drumstick", 47},
            {"drumsticks", 47},
            {"wing", 48},
            {"wings", 48},
            {"envelope", 49},
            {"envelopes", 49},
        };
        std::stable_sort(list.begin(), list.end(),
                         [](const auto& a, const auto& b) { return a.first.size() > b.first.size(); });
        return list;
    }();
    return words;
}

bool endsWord(const QString& text, qsizetype pos) {
    if (pos >= text.size())
        return true;
    const QChar c = text.at(pos);
    return c == u' ' || c == u',' || c == u'(' || c == u')';
}

// Where the measure's qualifier starts decides how plain it is: nothing, "(...)", ", ...", other words.
int tierOf(const QString& rest) {
    const QString r = rest.trimmed();
    if (r.isEmpty())
        return 0;
    if (r.startsWith(u'('))
        return 1;
    if (r.startsWith(u','))
        return 2;
    return 3;
}

bool namesOtherSize(const QString& rest) {
    static const QRegularExpression rx(
        QStringLiteral("\\b(large|small|extra|mini|miniature|jumbo|thin|thick|little)\\b"));
    return rx.match(rest).hasMatch();
}

QString firstSegment(const QString& lowerName) {
    return lowerName.section(u',', 0, 0).trimmed();
}

// Nouns by which a food counts itself ("Apples, raw" -> apple, "English muffins" -> muffin): the
// first and last word of the name's first segment with their singular forms.
QSet<QString> foodNouns(const QString& foodName) {
    QSet<QString> nouns;
    static const QRegularExpression split(QStringLiteral("[\\s(]+"));
    const QStringList words = firstSegment(foodName.toLower()).split(split, Qt::SkipEmptyParts);
    if (words.isEmpty())
        return nouns;
    for (const QString& word : {words.first(), words.last()}) {
        if (word.size() < 3)
            continue;
        nouns << word;
        if (word.endsWith(u's'))
            nouns << word.chopped(1);
        if (word.endsWith(QStringLiteral("es")))
            nouns << word.chopped(2);
        if (word.endsWith(QStringLiteral("ies")))
            nouns << word.chopped(3) + u'y';
    }
    return nouns;
}

double parseAmountText(const QString& text) {
    static const QRegularExpression mixed(QStringLiteral("^(\\d+)\\s+(\\d+)\\s*/\\s*(\\d+)$"));
    static const QRegularExpression fraction(QStringLiteral("^(\\d+)\\s*/\\s*(\\d+)$"));
    const QString t = text.trimmed();
    if (const auto m = mixed.match(t); m.hasMatch()) {
        const double den = m.captured(3).toDouble();
        return den > 0 ? m.captured(1).toDouble() + m.captured(2).toDouble() / den : 0;
    }
    if (const auto m = fraction.match(t); m.hasMatch()) {
        const double den = m.captured(2).toDouble();
        return den > 0 ? m.captured(1).toDouble() / den : 0;
    }
    return parseNumber(t).value_or(0);
}

QByteArray readFileBytes(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw UsdaError(QStringLiteral("Cannot read %1").arg(path).toStdString());
    return file.readAll();
}

// Records of one USDA file; each must have `fieldCount` fields.
QList<QStringList> readRecords(const QString& path, int fieldCount) {
    const QString text = decodeWindows1252(readFileBytes(path));
    QList<QStringList> records;
    int lineNumber = 0;
    for (QStringView line : QStringView(text).split(u'\n')) {
        ++lineNumber;
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.isEmpty())
            continue;
        QStringList fields;
        try {
            fields = splitRecord(line);
        } catch (const UsdaError& e) {
            throw UsdaError(
                QStringLiteral("%1:%2: %3").arg(path).arg(lineNumber).arg(e.what()).toStdString());
        }
        if (fields.size() != fieldCount)
            throw UsdaError(QStringLiteral("%1:%2: %3 fields where %4 are expected")
                                .arg(path)
                                .arg(lineNumber)
                                .arg(fields.size())
                                .arg(fieldCount)
                                .toStdString());
        records << fields;
    }
    return records;
}

int requiredInt(const QString& field, const QString& what) {
    bool ok = false;
    const int value = field.trimmed().toInt(&ok);
    if (!ok)
        throw UsdaError(QStringLiteral("Bad %1: \"%2\"").arg(what, field).toStdString());
    return value;
}

// NUT_DATA.txt as published, or its xz-compressed copy.
QByteArray readNutrientData(const QString& dir) {
    const QString plain = dir + QStringLiteral("/NUT_DATA.txt");
    if (QFileInfo::exists(plain))
        return readFileBytes(plain);
    const QString packed = plain + QStringLiteral(".xz");
    if (!QFileInfo::exists(packed))
        throw UsdaError(QStringLiteral("Neither %1 nor %2 exists").arg(plain, packed).toStdString());
    QProcess xz;
    xz.start(QStringLiteral("xz"), {QStringLiteral("-dc"), packed});
    if (!xz.waitForStarted())
        throw UsdaError("Cannot run xz (package xz-utils) to unpack NUT_DATA.txt.xz");
    xz.closeWriteChannel();
    xz.waitForFinished(-1);
    if (xz.exitStatus() != QProcess::NormalExit || xz.exitCode() != 0)
        throw UsdaError(QStringLiteral("xz failed on %1: %2")
                            .arg(packed, QString::fromLocal8Bit(xz.readAllStandardError()).trimmed())
                            .toStdString());
    return xz.readAllStandardOutput();
}

void readNutrients(const QString& dir, UsdaData& data) {
    // Only about a fifth of the rows hold a wanted nutrient: look at the key bytes before parsing.
    QHash<QByteArray, int> wanted;
    for (int i = 0; i < NutrientCount; ++i)
        wanted.insert(QByteArray::number(kNutrients[i].number), i);
    const QByteArray bytes = readNutrientData(dir);
    qsizetype start = 0;
    int lineNumber = 0;
    while (start < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', start);
        if (end < 0)
            end = bytes.size();
        QByteArrayView line(bytes.constData() + start, end - start);
        start = end + 1;
        ++lineNumber;
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.isEmpty())
            continue;
        const qsizetype first = line.indexOf('^');
        const qsizetype second = first < 0 ? -1 : line.indexOf('^', first + 1);
        if (second < 0)
            throw UsdaError(
                QStringLiteral("NUT_DATA.txt:%1: not a nutrient record").arg(lineNumber).toStdString());
        QByteArray key = line.sliced(first + 1, second - first - 1).toByteArray();
        if (key.startsWith('~') && key.endsWith('~') && key.size() >= 2)
            key = key.mid(1, key.size() - 2);
        const auto column = wanted.constFind(key);
        if (column == wanted.cend())
            continue;
        const QStringList fields = splitRecord(decodeWindows1252(line));
        if (fields.size() != 18)
            throw UsdaError(QStringLiteral("NUT_DATA.txt:%1: %2 fields where 18 are expected")
                                .arg(lineNumber)
                                .arg(fields.size())
                                .toStdString());
        const int ndbNo = requiredInt(fields.at(0), QStringLiteral("NDB number"));
        const QString value = fields.at(2).trimmed();
        auto& texts = data.nutrients[ndbNo];
        texts[*column] = value.isEmpty() ? QString() : seedNumber(value);
    }
}

// The USDA unit of each wanted nutrient must be the unit its column holds.
void checkNutrientUnits(const QString& dir) {
    QHash<int, QString> units;
    for (const QStringList& r : readRecords(dir + QStringLiteral("/NUTR_DEF.txt"), 6))
        units.insert(requiredInt(r.at(0), QStringLiteral("nutrient number")), r.at(1).trimmed());
    for (const NutrientDef& n : kNutrients) {
        const QString expected = QString::fromUtf8(n.usdaUnit);
        if (units.value(n.number) != expected)
            throw UsdaError(QStringLiteral("Nutrient %1 is given in \"%2\", %3 needs %4")
                                .arg(n.number)
                                .arg(units.value(n.number), QString::fromLatin1(n.column), expected)
                                .toStdString());
    }
}

QString gramsText(double grams) {
    return QString::number(grams, 'g', 15);
}

bool matches(const QRegularExpression& rx, const QString& text) {
    return rx.match(text).hasMatch();
}

QRegularExpression wordsRx(const char* pattern) {
    return QRegularExpression(QString::fromLatin1(pattern), QRegularExpression::CaseInsensitiveOption);
}

// A powder, dried or instant form, unless the name says it is made up with liquid.
bool isDryForm(QString lowerName) {
    static const QRegularExpression dry = wordsRx(
        "\\b(powder|powdered|dry|dried|dehydrated|granules|crystals|flakes|cubes?|cubed|instant|freeze-dried|"
        "leaves|ground)\\b");
    static const QRegularExpression wet = wordsRx(
        "\\b(prepared|(?<!not )reconstituted|ready-to-drink|ready to drink|ready-to-feed|ready to feed|"
        "ready-to-serve|ready to serve|brewed|with water|diluted)\\b");
    static const QRegularExpression dryWord = wordsRx("\\bdry\\b");
    if (lowerName.contains(QStringLiteral("wine"))) // a dry wine is a liquid
        lowerName.remove(dryWord);
    return matches(dry, lowerName) && !matches(wet, lowerName);
}

} // namespace

const std::array<int, NutrientCount>& nutrientNumbers() {
    static const std::array<int, NutrientCount> numbers = [] {
        std::array<int, NutrientCount> n{};
        for (int i = 0; i < NutrientCount; ++i)
            n[i] = kNutrients[i].number;
        return n;
    }();
    return numbers;
}

QString decodeWindows1252(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (const char ch : bytes) {
        const auto b = static_cast<unsigned char>(ch);
        *out++ = (b >= 0x80 && b <= 0x9F) ? QChar(kCp1252High[b - 0x80]) : QChar(b);
    }
    return text;
}

QStringList splitRecord(QStringView line) {
    QStringList fields;
    qsizetype i = 0;
    const qsizetype n = line.size();
    while (true) {
        if (i < n && line.at(i) == u'~') {
            const qsizetype close = line.indexOf(u'~', i + 1);
            if (close < 0)
                throw UsdaError("A text field misses its closing ~");
            const QStringView text = line.sliced(i + 1, close - i - 1);
            fields << (text.isEmpty() ? QString() : text.toString());
            i = close + 1;
            if (i < n && line.at(i) != u'^')
                throw UsdaError("Text follows a closing ~");
        } else {
            qsizetype sep = line.indexOf(u'^', i);
            if (sep < 0)
                sep = n;
            const QStringView text = line.sliced(i, sep - i).trimmed();
            fields << (text.isEmpty() ? QString() : text.toString());
            i = sep;
        }
        if (i >= n)
            break;
        ++i; // the separator
        if (i == n) {
            fields << QString();
            break;
        }
    }
    return fields;
}

std::optional<double> parseNumber(const QString& field) {
    const QString t = field.trimmed();
    if (t.isEmpty())
        return std::nullopt;
    bool ok = false;
    const double value = t.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

QString seedNumber(const QString& usdaText) {
    QString t = usdaText.trimmed();
    if (t.startsWith(u'.'))
        t.prepend(u'0');
    else if (t.startsWith(QStringLiteral("-.")))
        t.insert(1, u'0');
    return t;
}

UsdaData readUsdaFolder(const QString& dir) {
    UsdaData data;
    for (const QStringList& r : readRecords(dir + QStringLiteral("/FD_GROUP.txt"), 2))
        data.groups.insert(requiredInt(r.at(0), QStringLiteral("food group code")), r.at(1).trimmed());

    for (const QStringList& r : readRecords(dir + QStringLiteral("/FOOD_DES.txt"), 14)) {
        Food food;
        food.ndbNo = requiredInt(r.at(0), QStringLiteral("NDB number"));
        food.groupCode = requiredInt(r.at(1), QStringLiteral("food group code"));
        food.longDesc = r.at(2).trimmed();
        food.comName = r.at(4).trimmed();
        food.sciName = r.at(9).trimmed();
        data.foods << food;
    }
    std::sort(data.foods.begin(), data.foods.end(),
              [](const Food& a, const Food& b) { return a.ndbNo < b.ndbNo; });

    checkNutrientUnits(dir);

    for (const QStringList& r : readRecords(dir + QStringLiteral("/WEIGHT.txt"), 7)) {
        Weight w;
        const int ndbNo = requiredInt(r.at(0), QStringLiteral("NDB number"));
        w.seq = requiredInt(r.at(1), QStringLiteral("weight sequence"));
        w.measure = r.at(3).trimmed();
        const auto amount = parseNumber(r.at(2));
        const auto grams = parseNumber(r.at(4));
        if (!amount || !grams)
            throw UsdaError(QStringLiteral("WEIGHT.txt: food %1, measure %2 has no amount or weight")
                                .arg(ndbNo)
                                .arg(w.seq)
                                .toStdString());
        w.amount = *amount;
        w.grams = *grams;
        data.weights[ndbNo] << w;
    }
    for (auto& list : data.weights)
        std::sort(list.begin(), list.end(), [](const Weight& a, const Weight& b) { return a.seq < b.seq; });

    readNutrients(dir, data);
    return data;
}

const std::vector<UnitDef>& deliveredUnits() {
    static const std::vector<UnitDef> units = {
        {1, "gram", "g", "g", unitDesc("The metric unit of weight."), 1, "1"},
        {2, "kilogram", "kg", "kg", unitDesc("1000 grams."), 1, "1000"},
        {3, "milligram", "mg", "mg", unitDesc("One thousandth of a gram."), 1, "0.001"},
        {4, "decagram", "dag", "da", unitDesc("10 grams."), 1, "10"},
        {5, "ounce", "oz", "oz", unitDesc("Avoirdupois ounce, about 28.35 grams."), 1, "28.349523125"},
        {6, "pound", "lb", "lb", unitDesc("Avoirdupois pound, 16 ounces or about 453.6 grams."), 1,
         "453.59237"},
        {7, "teaspoon", "tsp", "ts", unitDesc("US teaspoon, a third of a tablespoon, about 4.93 ml."), 2, {}},
        {8, "tablespoon", "tbsp", "tb", unitDesc("US tablespoon, 3 teaspoons, about 14.8 ml."), 2, {}},
        {9, "cup", "cup", "c", unitDesc("US cup, 16 tablespoons, about 236.6 ml."), 2, {}},
        {10,
         "fluid ounce",
         "fl oz",
         "fl",
         unitDesc("US fluid ounce, an eighth of a cup, about 29.6 ml."),
         2,
         {}},
        {11, "milliliter", "ml", "ml", unitDesc("One thousandth of a liter."), 2, {}},
        {12, "deciliter", "dl", "dl", unitDesc("100 milliliters."), 2, {}},
        {13, "liter", "l", "l", unitDesc("1000 milliliters."), 2, {}},
        {14, "pint", "pt", "pt", unitDesc("US pint, 2 cups."), 2, {}},
        {15, "quart", "qt", "qt", unitDesc("US quart, 4 cups."), 2, {}},
        {16, "gallon", "gal", "ga", unitDesc("US gallon, 16 cups."), 2, {}},
        {17, "pinch", "pinch", "pn", unitDesc("What two fingers hold, taken as 1/16 teaspoon."), 2, {}},
        {18, "dash", "dash", "ds", unitDesc("A quick shake or splash, taken as 1/8 teaspoon."), 2, {}},
        {19,
         "piece",
         "pc",
         "ea",
         unitDesc("One whole item, such as an egg or a fruit; a medium one where sizes differ."),
         2,
         {}},
        {20, "slice", "slice", "sl", unitDesc("One slice as the food is usually cut."), 2, {}},
        {21, "clove", "clove", "cv", unitDesc("One clove, as of garlic."), 2, {}},
        {22, "small", "small", "sm", unitDesc("One small item."), 2, {}},
        {23, "medium", "medium", "md", unitDesc("One medium item."), 2, {}},
        {24, "large", "large", "lg", unitDesc("One large item."), 2, {}},
        {25, "stick", "stick", "st", unitDesc("One stick, as of butter."), 2, {}},
        {26, "can", "can", "cn", unitDesc("The contents of one can."), 2, {}},
        {27, "package", "pkg", "pk", unitDesc("The contents of one package."), 2, {}},
        {28, "container", "cont", "ct", unitDesc("The contents of one container, as of yogurt."), 2, {}},
        {29, "bar", "bar", "br", unitDesc("One bar, as of candy or a snack."), 2, {}},
        {30, "fillet", "fillet", "fi", unitDesc("One fillet of fish."), 2, {}},
        {31, "link", "link", "lk", unitDesc("One sausage link."), 2, {}},
        {32, "patty", "patty", "py", unitDesc("One patty, as of ground meat."), 2, {}},
        {33, "leaf", "leaf", "lf", unitDesc("One leaf, as of lettuce or cabbage."), 2, {}},
        {34, "stalk", "stalk", "sk", unitDesc("One stalk, as of celery."), 2, {}},
        {35, "scoop", "scoop", "sc", unitDesc("One scoop, as of ice cream or powder."), 2, {}},
        {36, "jar", "jar", "jr", unitDesc("The contents of one jar."), 2, {}},
        {37, "bottle", "btl", "bt", unitDesc("The contents of one bottle."), 2, {}},
        {38, "packet", "pkt", "pa", unitDesc("The contents of one small packet."), 2, {}},
        {39, "cubic inch", "cu in", "ci", unitDesc("A cube of one inch, as of cheese or meat."), 2, {}},
        {40, "steak", "steak", "se", unitDesc("One steak."), 2, {}},
        {41, "chop", "chop", "ch", unitDesc("One chop, as of pork or lamb."), 2, {}},
        {42, "head", "head", "hd", unitDesc("One head, as of lettuce or cabbage."), 2, {}},
        {43, "ear", "ear", "er", unitDesc("One ear of corn."), 2, {}},
        {44, "strip", "strip", "sp", unitDesc("One strip, as of bacon."), 2, {}},
        {45, "breast", "breast", "bs", unitDesc("One breast (half a bird's breast)."), 2, {}},
        {46, "thigh", "thigh", "th", unitDesc("One thigh of poultry."), 2, {}},
        {47, "drumstick", "drumstick", "dr", unitDesc("One drumstick of poultry."), 2, {}},
        {48, "wing", "wing", "wg", unitDesc("One wing of poultry."), 2, {}},
        {49,
         "envelope",
         "env",
         "ev",
         unitDesc("The contents of one envelope, as of yeast or gelatin."),
         2,
         {}},
    };
    return units;
}

double teaspoonsIn(int unitId) {
    constexpr double teaspoonsPerMl = 48.0 / 236.5882365;
    switch (unitId) {
    case Teaspoon:
        return 1;
    case Tablespoon:
        return 3;
    case FluidOunce:
        return 6;
    case Cup:
        return 48;
    case Pint:
        return 96;
    case Quart:
        return 192;
    case Gallon:
        return 768;
    case Milliliter:
        return teaspoonsPerMl;
    case Deciliter:
        return 100 * teaspoonsPerMl;
    case Liter:
        return 1000 * teaspoonsPerMl;
    // Kitchen convention: a dash is 1/8, a pinch 1/16 teaspoon.
    case Dash:
        return 1.0 / 8;
    case Pinch:
        return 1.0 / 16;
    default:
        return 0;
    }
}

// A measure names a unit by its first word ("cup", "tbsp", "fl oz", "slice", "fillet"...; weights such
// as "oz" and "lb" name none) or by the food's own noun ("apricot"). How plain it is ranks the measures
// of one unit: the word alone, then the word with a parenthesis ("cup (8 fl oz)"), then with a comma
// qualifier ("cup, chopped"), then with other words ("cup slices"), then a volume written inside a
// serving or container ("serving 1/2 cup", "can (12 fl oz)"). Within a rank a qualifier naming a size
// other than medium ("head, large") comes second, and then USDA's order decides.
QList<MeasureMatch> matchMeasure(const QString& measure, const QString& foodName) {
    QList<MeasureMatch> result;
    const QString d = measure.simplified().toLower();
    if (d.isEmpty())
        return result;

    int unit = 0;
    QString rest;
    for (const auto& [word, id] : measureWords()) {
        if (d.startsWith(word) && endsWord(d, word.size())) {
            unit = id;
            rest = d.mid(word.size());
            break;
        }
    }
    if (unit == 0) {
        // "1 apricot" of apricots, "1 roll" of rolls: the food's own noun counts pieces.
        static const QRegularExpression firstWord(QStringLiteral("^[^\\s,(]+"));
        const QString word = firstWord.match(d).captured();
        if (!word.isEmpty() && foodNouns(foodName).contains(word)) {
            unit = Piece;
            rest = d.mid(word.size());
        }
    }
    if (unit == Piece) {
        // "potato medium", "fruit, small": the size names the unit.
        static const QRegularExpression size(QStringLiteral("^[\\s,]*(small|medium|large)(?=$|[\\s,()])"));
        if (const auto m = size.match(rest); m.hasMatch()) {
            const QString s = m.captured(1);
            unit = s == QStringLiteral("small") ? Small : s == QStringLiteral("medium") ? Medium : Large;
            rest = rest.mid(m.capturedEnd());
        }
    }
    if (unit != 0)
        result << MeasureMatch{unit, tierOf(rest), namesOtherSize(rest), 1};

    // Servings and containers often state their volume: "serving 1/2 cup", "can (12 fl oz)".
    static const QRegularExpression container(
        QStringLiteral("^(serving|can|bottle|container|carton|glass|pouch|box|drink)\\b"));
    static const QRegularExpression volume(
        QStringLiteral("(?<![\\d./])(\\d+\\s+\\d+\\s*/\\s*\\d+|\\d+\\s*/\\s*\\d+|\\d*\\.?\\d+)\\s*"
                       "(fl oz|ml|cups?|tbsp|tsp)\\b"));
    if (const auto c = container.match(d); c.hasMatch()) {
        if (const auto v = volume.match(d, c.capturedEnd()); v.hasMatch()) {
            const double amount = parseAmountText(v.captured(1));
            const QString word = v.captured(2);
            const int volumeUnit = word == QStringLiteral("fl oz")  ? FluidOunce
                                   : word == QStringLiteral("ml")   ? Milliliter
                                   : word == QStringLiteral("tbsp") ? Tablespoon
                                   : word == QStringLiteral("tsp")  ? Teaspoon
                                                                    : Cup;
            if (amount > 0)
                result << MeasureMatch{volumeUnit, 4, false, amount};
        }
    }
    return result;
}

FoodUnits foodUnits(const QString& foodName, const QList<Weight>& weights) {
    struct Best {
        int preference;
        int seq;
        double grams;
    };
    QMap<int, Best> best;
    for (const Weight& w : weights) {
        if (w.amount <= 0 || w.grams <= 0)
            continue;
        for (const MeasureMatch& m : matchMeasure(w.measure, foodName)) {
            const Best candidate{m.preference(), w.seq, w.grams / (w.amount * m.unitsPerItem)};
            const auto it = best.constFind(m.unitId);
            if (it == best.cend() ||
                std::pair(candidate.preference, candidate.seq) < std::pair(it->preference, it->seq))
                best.insert(m.unitId, candidate);
        }
    }

    FoodUnits units;
    for (auto it = best.cbegin(); it != best.cend(); ++it) {
        units.grams.insert(it.key(), it->grams);
        units.measured.insert(it.key());
    }
    // "croissant, mini" counts pieces but of an odd size: a medium one is the better piece.
    if (best.contains(Piece) && best[Piece].preference % 2 == 1 && best.contains(Medium))
        units.grams.insert(Piece, best[Medium].grams);

    // The rest of the volume family follows from the plainest volume measure, the larger one on a tie
    // (USDA weighs a cup to the same 0.1 g as a teaspoon). Pinch and dash are too vague to derive from.
    int source = 0;
    for (auto it = best.cbegin(); it != best.cend(); ++it) {
        const int id = it.key();
        if (teaspoonsIn(id) <= 0 || id == Pinch || id == Dash)
            continue;
        if (source == 0 || it->preference < best[source].preference ||
            (it->preference == best[source].preference && teaspoonsIn(id) > teaspoonsIn(source)))
            source = id;
    }
    if (source != 0) {
        const double gramsPerTeaspoon = units.grams[source] / teaspoonsIn(source);
        for (const int id : {Teaspoon, Tablespoon, FluidOunce, Cup, Pint, Quart, Gallon, Milliliter,
                             Deciliter, Liter, Dash, Pinch})
            if (!units.grams.contains(id))
                units.grams.insert(id, gramsPerTeaspoon * teaspoonsIn(id));
    }

    // Without a measure that counts pieces, one piece is the whole item: a medium one, else the one
    // size given, else a head or an ear.
    if (!units.grams.contains(Piece)) {
        for (const int id : {Medium, Large, Small, Head, Ear}) {
            if (units.grams.contains(id)) {
                units.grams.insert(Piece, units.grams[id]);
                break;
            }
        }
    }
    return units;
}

// Liquids are what a shopper buys by volume. In this order:
// - never frozen desserts, spreads, dips, pastes, chunky sauces (salsa, pesto), canned "solids and
//   liquids", nor powders and other dry forms not made up with liquid ("dry, mix" but not "prepared");
// - always a food that USDA measures in fluid ounces (it does so only for pourable foods), every
//   beverage (group 1400) and every soup, sauce and gravy (group 0600);
// - by name: milks, creams and plant milks; juices and nectars (not fruit packed in juice); oils of
//   the fats and oils group; vinegar, extracts, soy sauce, syrups, wines, beers, drinks, water, broth
//   in the first part of the name; a part of the name that is itself a soup, broth or sauce
//   ("Restaurant, Latino, black bean soup"); anything called liquid or fluid.
// A liquid without any volume measure keeps the kilogram, since its liter needs a conversion row.
bool isLiquidFood(const QString& name, int groupCode, const FoodUnits& units) {
    const QString n = name.toLower();
    const QString first = firstSegment(n);
    static const QRegularExpression solid = wordsRx(
        "(ice cream|frozen novelties|frozen yogurt|sherbet|sorbet|milk dessert|\\bspread\\b|\\bdips?\\b|"
        "pesto|salsa|tartar|horseradish|wasabi|\\bpaste\\b|\\bbutter\\b|fully hydrogenated|"
        "confection fat|filling fat|solids and liquid)");
    if (matches(solid, n) || isDryForm(n))
        return false;
    if (units.measured.contains(FluidOunce))
        return true;
    if (groupCode == 1400) // beverages
        return true;
    static const QRegularExpression dairy =
        wordsRx("^(milk|buttermilk|soymilk|eggnog|kefir|cream, fluid|cream, half and half|cream substitute|"
                "half and half)\\b");
    static const QRegularExpression juice = wordsRx("\\b(juice|nectar)\\b");
    static const QRegularExpression fruitInJuice =
        wordsRx("juice[ -]pack|packed in|in juice|with juice|juice[ -]packed");
    static const QRegularExpression oil = wordsRx("\\boil\\b");
    // A liquid named in the first part of the name ("Vinegar, cider", "Soy sauce made from soy")...
    static const QRegularExpression pourableFirst = wordsRx(
        "\\b(syrups?|vinegar|extract|soy sauce|wine|beer|liqueur|drink|beverages?|smoothie|shake|water|"
        "broth|stock)\\b");
    // ...or a part of the name that is a liquid of its own ("black bean soup", "syrup"; not "pasta in
    // tomato sauce" nor the "heavy syrup" of canned fruit).
    static const QRegularExpression pourablePart =
        wordsRx("^(?!.*\\b(with|without|in|and|no)\\b)((\\S+\\s+){0,3}(soup|broth|chowder|bouillon|consomme|"
                "sauce|gravy)|syrups?)$");
    static const QRegularExpression plantMilk = wordsRx("\\b(soymilk|soy milk|almond milk|rice milk)\\b");
    static const QRegularExpression liquidWord = wordsRx("\\b(liquid|fluid)\\b");
    static const QRegularExpression parenthesised(QStringLiteral("\\([^)]*\\)?"));
    if (matches(dairy, n) || (matches(juice, n) && !matches(fruitInJuice, n)))
        return true;
    if (groupCode == 400 && matches(oil, first)) // fats and oils
        return true;
    if (groupCode == 600) // soups, sauces and gravies
        return true;
    if (matches(pourableFirst, first) || matches(plantMilk, n) || matches(liquidWord, n))
        return true;
    for (const QString& part : QString(n).remove(parenthesised).split(u','))
        if (matches(pourablePart, part.trimmed()))
            return true;
    return false;
}

// Bought by the piece, when a piece has its grams: eggs (not dried); raw whole fruit, and raw
// vegetables sold singly (artichokes, cucumbers, eggplants, peppers, heads of lettuce, cabbage and
// cauliflower, squashes, ears of corn), both from 40 g a piece; rolls, bagels, muffins, croissants,
// biscuits, buns, tortillas and doughnuts.
bool isPieceFood(const QString& name, int groupCode, const FoodUnits& units) {
    const auto piece = units.grams.constFind(Piece);
    if (piece == units.grams.cend())
        return false;
    // Whole produce lighter than this (berries, grapes, small chilies) is sold by weight.
    constexpr double minProduceGrams = 40;
    const QString n = name.toLower();
    const QString first = firstSegment(n);
    static const QRegularExpression raw = wordsRx("\\braw\\b");
    static const QRegularExpression juice = wordsRx("\\bjuice\\b");
    static const QRegularExpression countedVegetable =
        wordsRx("^(artichokes|cucumber|eggplant|peppers?|lettuce|cabbage|cauliflower|squash|corn)\\b");
    static const QRegularExpression countedBakery =
        wordsRx("^(rolls|bagels|english muffins|muffins|croissants|biscuits|buns|tortillas|doughnuts)\\b");
    if (groupCode == 100) // dairy and egg products
        return first == QStringLiteral("egg") && !isDryForm(n);
    if ((groupCode == 900 || groupCode == 1100) && matches(raw, n) && !matches(juice, n) &&
        *piece >= minProduceGrams)
        return groupCode == 900 || matches(countedVegetable, first);
    if (groupCode == 1800) // baked products
        return matches(countedBakery, first);
    return false;
}

int chooseBaseUnit(const QString& name, int groupCode, const FoodUnits& units) {
    if (isLiquidFood(name, groupCode, units) && units.grams.contains(Liter))
        return Liter;
    if (isPieceFood(name, groupCode, units))
        return Piece;
    return Kilogram;
}

QString ingredientName(const QString& longDesc, int maxLength) {
    QString name = longDesc.trimmed();
    // USDA's longest names are cuts of meat and branded drinks; these wordings say the same in fewer letters.
    static const QList<QPair<QString, QString>> shorter = {
        {QStringLiteral("separable lean and fat"), QStringLiteral("lean and fat")},
        {QStringLiteral("separable lean only"), QStringLiteral("lean only")},
        {QStringLiteral("fortified with"), QStringLiteral("with")},
        {QStringLiteral("commercially prepared"), QStringLiteral("commercial")},
        {QStringLiteral("approximately"), QStringLiteral("approx.")},
        {QStringLiteral("including"), QStringLiteral("incl.")},
    };
    for (const auto& [from, to] : shorter) {
        if (name.size() <= maxLength)
            return name;
        name.replace(from, to);
    }
    if (name.size() <= maxLength)
        return name;
    // Cut at a word and mark the cut.
    qsizetype cut = name.lastIndexOf(u' ', maxLength - 1);
    if (cut <= 0)
        cut = maxLength - 1;
    name.truncate(cut);
    while (name.endsWith(u',') || name.endsWith(u' '))
        name.chop(1);
    return name + QChar(0x2026);
}

QString escapeSeedField(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        if (c == u'\\')
            out += QStringLiteral("\\\\");
        else if (c == u'\t')
            out += QStringLiteral("\\t");
        else if (c == u'\n')
            out += QStringLiteral("\\n");
        else if (c == u'\r')
            continue;
        else
            out += c;
    }
    return out;
}

QHash<int, QString> readPrices(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw UsdaError(QStringLiteral("Cannot read the price list %1").arg(path).toStdString());
    QTextStream in(&file);
    in.setEncoding(QStringConverter::Utf8);
    QHash<int, QString> prices;
    int lineNumber = 0;
    while (!in.atEnd()) {
        const QString line = in.readLine();
        ++lineNumber;
        if (line.trimmed().isEmpty())
            continue;
        const QStringList fields = line.split(u'\t');
        bool idOk = false;
        const int id = fields.value(0).trimmed().toInt(&idOk);
        if (!idOk && lineNumber == 1)
            continue; // the header
        const QString price = fields.value(1).trimmed();
        const auto value = parseNumber(price);
        if (!idOk || fields.size() < 2 || (!price.isEmpty() && (!value || *value < 0)))
            throw UsdaError(QStringLiteral("%1:%2: expected an ingredient id and a price")
                                .arg(path)
                                .arg(lineNumber)
                                .toStdString());
        if (!price.isEmpty())
            prices.insert(id, seedNumber(price));
    }
    return prices;
}

const SeedTable* SeedResult::table(const QString& name) const {
    for (const SeedTable& t : tables)
        if (t.name == name)
            return &t;
    return nullptr;
}

SeedResult buildSeedTables(const UsdaData& data, const QHash<int, QString>& prices) {
    SeedResult result;

    SeedTable units{QStringLiteral("Units"),
                    {QStringLiteral("unitId"), QStringLiteral("unitName"), QStringLiteral("unitAbbrev"),
                     QStringLiteral("unitAbbrevSmall"), QStringLiteral("unitDesc"),
                     QStringLiteral("unitType"), QStringLiteral("unitConv")},
                    {}};
    QSet<int> knownUnits;
    for (const UnitDef& u : deliveredUnits()) {
        units.rows << QStringList{QString::number(u.id),
                                  escapeSeedField(u.name),
                                  escapeSeedField(u.abbrev),
                                  escapeSeedField(u.abbrevSmall),
                                  escapeSeedField(u.desc),
                                  QString::number(u.type),
                                  u.conv};
        knownUnits.insert(u.id);
    }

    SeedTable types{QStringLiteral("ITypes"),
                    {QStringLiteral("ingredTypeId"), QStringLiteral("ingredTypeName"),
                     QStringLiteral("parentId"), QStringLiteral("isNodeExpanded")},
                    {}};
    for (auto it = data.groups.cbegin(); it != data.groups.cend(); ++it)
        types.rows << QStringList{QString::number(it.key()), escapeSeedField(it.value()), QStringLiteral("0"),
                                  QStringLiteral("0")};

    SeedTable ingreds{QStringLiteral("Ingreds"),
                      {QStringLiteral("ingredId"), QStringLiteral("ingredTypeId"),
                       QStringLiteral("ingredName"), QStringLiteral("ingredDesc")},
                      {}};
    for (const NutrientDef& n : kNutrients)
        ingreds.columns << QString::fromLatin1(n.column);
    ingreds.columns << QStringLiteral("unitId") << QStringLiteral("ingredPrice");

    SeedTable convs{QStringLiteral("Convs"),
                    {QStringLiteral("unitId"), QStringLiteral("ingredId"), QStringLiteral("grams")},
                    {}};

    QSet<int> foodIds;
    for (const Food& food : data.foods) {
        foodIds.insert(food.ndbNo);
        if (!data.groups.contains(food.groupCode))
            result.warnings
                << QStringLiteral("Food %1 has the unknown group %2").arg(food.ndbNo).arg(food.groupCode);
        const QString name = ingredientName(food.longDesc);
        if (name != food.longDesc)
            ++result.shortenedNames;
        QStringList desc;
        if (!food.comName.isEmpty())
            desc << QStringLiteral("Also called: %1").arg(food.comName);
        if (!food.sciName.isEmpty())
            desc << QStringLiteral("Scientific name: %1").arg(food.sciName);

        const FoodUnits fu = foodUnits(food.longDesc, data.weights.value(food.ndbNo));
        // A priced food is kept by the kilogram: the menu and calendar totals take a volume or
        // count base unit's grams from whichever food comes first, so only a weight base unit
        // gives a true cost.
        const bool priced = prices.contains(food.ndbNo);
        const int baseUnit = priced ? Kilogram : chooseBaseUnit(food.longDesc, food.groupCode, fu);
        if (!priced && baseUnit != Liter && isLiquidFood(food.longDesc, food.groupCode, fu))
            ++result.liquidsWithoutVolume;
        ++result.baseUnits[baseUnit];

        QStringList row{QString::number(food.ndbNo), QString::number(food.groupCode), escapeSeedField(name),
                        escapeSeedField(desc.join(u'\n'))};
        const NutrientTexts texts = data.nutrients.value(food.ndbNo);
        for (const QString& t : texts)
            row << t;
        row << QString::number(baseUnit) << prices.value(food.ndbNo);
        ingreds.rows << row;

        for (auto it = fu.grams.cbegin(); it != fu.grams.cend(); ++it)
            if (knownUnits.contains(it.key()))
                convs.rows << QStringList{QString::number(it.key()), QString::number(food.ndbNo),
                                          gramsText(it.value())};
    }
    for (auto it = prices.cbegin(); it != prices.cend(); ++it) {
        if (foodIds.contains(it.key()))
            ++result.pricedIngredients;
        else
            result.warnings
                << QStringLiteral("A price for the unknown ingredient %1 is ignored").arg(it.key());
    }

    result.tables = {units, types, ingreds, convs};
    return result;
}

void writeSeedTables(const QList<SeedTable>& tables, const QString& dir) {
    if (!QDir().mkpath(dir))
        throw UsdaError(QStringLiteral("Cannot make the folder %1").arg(dir).toStdString());
    for (const SeedTable& table : tables) {
        QString text = table.columns.join(u'\t') + u'\n';
        for (const QStringList& row : table.rows)
            text += row.join(u'\t') + u'\n';
        const QString path = dir + u'/' + table.name + QStringLiteral(".tsv");
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text.toUtf8()) < 0)
            throw UsdaError(QStringLiteral("Cannot write %1").arg(path).toStdString());
    }
}

int runConverter(const QStringList& arguments) {
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (arguments.size() < 2 || arguments.size() > 3) {
        err << "Usage: quillmeal-usda-convert USDA_DIR OUT_DIR [PRICES_TSV]\n"
               "Writes Units.tsv, ITypes.tsv, Ingreds.tsv and Convs.tsv into OUT_DIR from the USDA SR28 "
               "files.\n";
        return 2;
    }
    try {
        const UsdaData data = readUsdaFolder(arguments.at(0));
        const QHash<int, QString> prices =
            arguments.size() == 3 ? readPrices(arguments.at(2)) : QHash<int, QString>();
        const SeedResult result = buildSeedTables(data, prices);
        writeSeedTables(result.tables, arguments.at(1));
        for (const SeedTable& t : result.tables)
            out << t.name << '\t' << t.rows.size() << '\n';
        for (auto it = result.baseUnits.cbegin(); it != result.baseUnits.cend(); ++it) {
            const auto unit = std::find_if(deliveredUnits().begin(), deliveredUnits().end(),
                                           [&](const UnitDef& u) { return u.id == it.key(); });
            out << "base unit " << (unit != deliveredUnits().end() ? unit->name : QString::number(it.key()))
                << '\t' << it.value() << '\n';
        }
        out << "shortened names\t" << result.shortenedNames << '\n';
        out << "liquids kept in kilograms (no volume measure)\t" << result.liquidsWithoutVolume << '\n';
        out << "priced ingredients\t" << result.pricedIngredients << '\n';
        for (const QString& w : result.warnings)
            err << "warning: " << w << '\n';
        return 0;
    } catch (const std::exception& e) {
        err << "quillmeal-usda-convert: " << e.what() << '\n';
        return 1;
    }
}

} // namespace qm::usda
