#include "usda_convert.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using namespace qm::usda;

namespace {

const QString kFixture = QStringLiteral(QM_TEST_DATA "/usda");

// "amount|measure|grams;..." as USDA household measures, numbered in order.
QList<Weight> weights(const QString& measures) {
    QList<Weight> list;
    int seq = 0;
    for (const QString& item : measures.split(u';', Qt::SkipEmptyParts)) {
        const QStringList parts = item.split(u'|');
        list << Weight{++seq, parts.at(0).toDouble(), parts.at(1), parts.at(2).toDouble()};
    }
    return list;
}

QString describe(const QList<MeasureMatch>& matches) {
    QStringList out;
    for (const MeasureMatch& m : matches) {
        QString s = QStringLiteral("%1/%2").arg(m.unitId).arg(m.tier);
        if (m.otherSize)
            s += u's';
        if (m.unitsPerItem != 1)
            s += u'x' + QString::number(m.unitsPerItem);
        out << s;
    }
    return out.join(u' ');
}

bool near(double a, double b) {
    return std::fabs(a - b) <= 1e-9 * std::max(1.0, std::fabs(b));
}

const QStringList* findRow(const SeedTable& table, const QString& first, const QString& second = {}) {
    for (const QStringList& row : table.rows)
        if (row.at(0) == first && (second.isEmpty() || row.at(1) == second))
            return &row;
    return nullptr;
}

QString column(const SeedTable& table, const QStringList& row, const QString& name) {
    return row.at(table.columns.indexOf(name));
}

// A seed file read back: header and rows of raw fields.
struct TsvFile {
    QStringList columns;
    QList<QStringList> rows;
    bool ok = false;
};

TsvFile readTsv(const QString& path) {
    TsvFile tsv;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return tsv;
    const QList<QByteArray> lines = file.readAll().split('\n');
    tsv.columns = QString::fromUtf8(lines.value(0)).split(u'\t');
    for (qsizetype i = 1; i < lines.size(); ++i)
        if (!lines.at(i).isEmpty())
            tsv.rows << QString::fromUtf8(lines.at(i)).split(u'\t');
    tsv.ok = true;
    return tsv;
}

} // namespace

class TestUsdaConvert : public QObject {
    Q_OBJECT

private slots:
    void splitRecord_data();
    void splitRecord();
    void splitRecordRejectsBrokenQuotes();
    void decodeWindows1252();
    void numbers();
    void matchMeasure_data();
    void matchMeasure();
    void measuredUnitsWinAndDeriveTheRest();
    void derivationStartsFromThePlainestLargestVolume();
    void plainMeasureChoice();
    void pieceFromCountsAndSizes();
    void weightMeasuresGiveNoConversion();
    void baseUnit_data();
    void baseUnit();
    void longNamesAreShortened();
    void nutrientUnitsAreChecked();
    void buildsSeedTables();
    void pricesFillTheBasePrice();
    void commandLine();
    void deliveredReferenceData();
};

void TestUsdaConvert::splitRecord_data() {
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QList<bool>>("nulls");
    QTest::newRow("quoted and bare") << "~01001~^~0100~^0^6.38" << QStringList{"01001", "0100", "0", "6.38"}
                                     << QList<bool>{false, false, false, false};
    QTest::newRow("~~ is null") << "~01001~^~~^~Y~" << QStringList{"01001", "", "Y"}
                                << QList<bool>{false, true, false};
    QTest::newRow("empty numerics are null") << "~01001~^^^3.87^" << QStringList{"01001", "", "", "3.87", ""}
                                             << QList<bool>{false, true, true, false, true};
    QTest::newRow("inch marks are text")
        << "~pat (1\" sq, 1/3\" high)~^5.0" << QStringList{"pat (1\" sq, 1/3\" high)", "5.0"}
        << QList<bool>{false, false};
    QTest::newRow("leading space kept")
        << "~ Actinidia~^^" << QStringList{" Actinidia", "", ""} << QList<bool>{false, true, true};
}

void TestUsdaConvert::splitRecord() {
    QFETCH(QString, line);
    QFETCH(QStringList, fields);
    QFETCH(QList<bool>, nulls);
    const QStringList got = qm::usda::splitRecord(line);
    QCOMPARE(got, fields);
    QList<bool> gotNulls;
    for (const QString& f : got)
        gotNulls << f.isNull();
    QCOMPARE(gotNulls, nulls);
}

void TestUsdaConvert::splitRecordRejectsBrokenQuotes() {
    QVERIFY_THROWS_EXCEPTION(UsdaError, qm::usda::splitRecord(u"~01001^~0100~"));
    QVERIFY_THROWS_EXCEPTION(UsdaError, qm::usda::splitRecord(u"~01001~x^~0100~"));
}

// Letters of Latin-1 and the signs Windows puts where Latin-1 has control codes.
void TestUsdaConvert::decodeWindows1252() {
    QCOMPARE(qm::usda::decodeWindows1252(QByteArray("caf\xe9 \x80\x96")),
             QStringLiteral("caf\u00e9 \u20ac\u2013"));
}

void TestUsdaConvert::numbers() {
    QCOMPARE(parseNumber(QStringLiteral(".5")).value_or(-1), 0.5);
    QVERIFY(!parseNumber(QString()).has_value());
    QVERIFY(!parseNumber(QStringLiteral("11/1976")).has_value());
    QCOMPARE(seedNumber(QStringLiteral(".5")), QStringLiteral("0.5"));
    QCOMPARE(seedNumber(QStringLiteral("-.25")), QStringLiteral("-0.25"));
}

void TestUsdaConvert::matchMeasure_data() {
    QTest::addColumn<QString>("measure");
    QTest::addColumn<QString>("food");
    QTest::addColumn<QString>("expected"); // unit/tier, s = other size, xN = units per item
    QTest::newRow("word boundary") << "cupcake"
                                   << ""
                                   << "";
    QTest::newRow("can with volume") << "can or bottle (12 fl oz)"
                                     << ""
                                     << "26/3 10/4x12";
    QTest::newRow("extra large is no size unit") << "extra large"
                                                 << ""
                                                 << "";
    QTest::newRow("noun of another food") << "apricot"
                                          << "Peaches, yellow, raw"
                                          << "";
}

void TestUsdaConvert::matchMeasure() {
    QFETCH(QString, measure);
    QFETCH(QString, food);
    QFETCH(QString, expected);
    QCOMPARE(describe(qm::usda::matchMeasure(measure, food)), expected);
}

void TestUsdaConvert::measuredUnitsWinAndDeriveTheRest() {
    const FoodUnits u = foodUnits(QStringLiteral("Milk, whole"),
                                  weights(QStringLiteral("1|cup|244;1|fl oz|30.6;.5|quart|490")));
    QCOMPARE(u.measured, (QSet<int>{Cup, FluidOunce, Quart}));
    QCOMPARE(u.grams.value(Cup), 244.0);
    QCOMPARE(u.grams.value(FluidOunce), 30.6); // measured, not 244 / 8
    QCOMPARE(u.grams.value(Quart), 980.0);     // 490 g for half a quart
    // The rest follows the quart, the largest of the plain volume measures.
    const double perCup = 980.0 / 4;
    QVERIFY(near(u.grams.value(Tablespoon), perCup / 16));
    QVERIFY(near(u.grams.value(Liter), perCup * 1000 / 236.5882365));
    QVERIFY(!u.grams.contains(Piece));
}

void TestUsdaConvert::derivationStartsFromThePlainestLargestVolume() {
    // Equally plain: the cup, weighed to the same precision as the tablespoon, gives the better ratio.
    FoodUnits u =
        foodUnits(QStringLiteral("Butter, salted"), weights(QStringLiteral("1|tbsp|14.2;1|cup|227")));
    QCOMPARE(u.grams.value(Tablespoon), 14.2);
    QVERIFY(near(u.grams.value(Teaspoon), 227.0 / 48));
    // A plain tablespoon beats a chopped cup.
    u = foodUnits(QStringLiteral("Parsley, fresh"), weights(QStringLiteral("1|cup, chopped|60;1|tbsp|3.8")));
    QCOMPARE(u.grams.value(Cup), 60.0);
    QVERIFY(near(u.grams.value(Teaspoon), 3.8 / 3));
    // A volume inside a serving starts the family when nothing plainer exists.
    u = foodUnits(QStringLiteral("Soup, condensed"), weights(QStringLiteral("1|serving 1/2 cup|126")));
    QCOMPARE(u.grams.value(Cup), 252.0);
}

void TestUsdaConvert::plainMeasureChoice() {
    // The unit word alone wins over qualified measures, whatever their order.
    FoodUnits u = foodUnits(
        QString(), weights(QStringLiteral("1|cup, chopped|160;1|cup|150;1|cup (1 NLEA serving)|140")));
    QCOMPARE(u.grams.value(Cup), 150.0);
    // Of equal plainness the first one counts, and a medium qualifier beats other sizes.
    u = foodUnits(QString(), weights(QStringLiteral(
                                 "1|slice|30;1|slice|40;1|head, large|755;1|head, medium (6\" dia)|539")));
    QCOMPARE(u.grams.value(20), 30.0);
    QCOMPARE(u.grams.value(Head), 539.0);
}

void TestUsdaConvert::pieceFromCountsAndSizes() {
    FoodUnits u = foodUnits(QStringLiteral("Egg, whole, raw, fresh"),
                            weights(QStringLiteral("1|large|50;1|medium|44;1|small|38")));
    QCOMPARE(u.grams.value(Piece), 44.0);
    u = foodUnits(QStringLiteral("Mushrooms, morel, raw"), weights(QStringLiteral("1|piece|13;1|medium|30")));
    QCOMPARE(u.grams.value(Piece), 13.0);
    u = foodUnits(QStringLiteral("Grapes, red or green"), weights(QStringLiteral("10|grapes|49")));
    QCOMPARE(u.grams.value(Piece), 4.9);
}

void TestUsdaConvert::weightMeasuresGiveNoConversion() {
    const FoodUnits u =
        foodUnits(QStringLiteral("Beef, ground"),
                  weights(QStringLiteral("3|oz|85;1|lb|453.6;0|cup|10;1|tbsp|0;1|serving (3 oz)|85")));
    QVERIFY(u.grams.isEmpty());
    QVERIFY(u.measured.isEmpty());
}

void TestUsdaConvert::baseUnit_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("group");
    QTest::addColumn<QString>("measures");
    QTest::addColumn<int>("unit");
    QTest::newRow("dry milk") << "Milk, dry, whole" << 100 << "1|cup|128" << int(Kilogram);
    QTest::newRow("banana") << "Bananas, raw" << 900 << "1|cup, sliced|150;1|medium (7\" long)|118"
                            << int(Piece);
    QTest::newRow("strawberries are light")
        << "Strawberries, raw" << 900 << "1|cup|152;1|medium|12" << int(Kilogram);
    QTest::newRow("orange juice") << "Orange juice, raw" << 900 << "1|cup|248;1|fruit yields|86"
                                  << int(Liter);
    QTest::newRow("fruit in juice") << "Pineapple, canned, juice pack, solids and liquids" << 900
                                    << "1|cup|249" << int(Kilogram);
    QTest::newRow("dry wine") << "Alcoholic beverage, wine, dessert, dry" << 1400 << "1|fl oz|29.5"
                              << int(Liter);
    QTest::newRow("ice cream in fl oz")
        << "Light Ice Cream, soft serve, blended with cookie pieces" << 2100 << "1|fl oz|30" << int(Kilogram);
    QTest::newRow("onions are weighed")
        << "Onions, raw" << 1100 << "1|cup, chopped|160;1|medium|110" << int(Kilogram);
}

void TestUsdaConvert::baseUnit() {
    QFETCH(QString, name);
    QFETCH(int, group);
    QFETCH(QString, measures);
    QFETCH(int, unit);
    const FoodUnits u = foodUnits(name, weights(measures));
    QCOMPARE(chooseBaseUnit(name, group, u), unit);
    if (unit != Kilogram)
        QVERIFY2(u.grams.value(unit) > 0, "a volume or count base unit needs its conversion");
}

void TestUsdaConvert::longNamesAreShortened() {
    const QString lamb =
        QStringLiteral("Lamb, Australian, imported, fresh, rack, roast, frenched, denuded, bone-in, "
                       "separable lean and fat, trimmed to 0\" fat, cooked, roasted");
    QCOMPARE(ingredientName(lamb),
             QStringLiteral("Lamb, Australian, imported, fresh, rack, roast, frenched, denuded, "
                            "bone-in, lean and fat, trimmed to 0\" fat, cooked, roasted"));
    // Without a known phrase the name is cut at a word and marked.
    QString words;
    while (words.size() < 140)
        words += QStringLiteral("word, ");
    const QString cut = ingredientName(words);
    QVERIFY(cut.size() <= 128);
    QVERIFY(cut.endsWith(QChar(0x2026)));
    QVERIFY(cut.startsWith(QStringLiteral("word, word")));
}

void TestUsdaConvert::nutrientUnitsAreChecked() {
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    for (const QString& name : QDir(kFixture).entryList(QDir::Files))
        QVERIFY(QFile::copy(kFixture + u'/' + name, dir.filePath(name)));
    QFile def(dir.filePath(QStringLiteral("NUTR_DEF.txt")));
    QVERIFY(def.open(QIODevice::ReadOnly));
    QByteArray bytes = def.readAll();
    def.close();
    bytes.replace("~208~^~kcal~", "~208~^~kJ~");
    QVERIFY(def.open(QIODevice::WriteOnly | QIODevice::Truncate));
    def.write(bytes);
    def.close();
    QVERIFY_THROWS_EXCEPTION(UsdaError, readUsdaFolder(dir.path()));
}

void TestUsdaConvert::buildsSeedTables() {
    const SeedResult result = buildSeedTables(readUsdaFolder(kFixture));
    const SeedTable* types = result.table(QStringLiteral("ITypes"));
    const SeedTable* ingreds = result.table(QStringLiteral("Ingreds"));
    const SeedTable* convs = result.table(QStringLiteral("Convs"));
    QVERIFY(types && ingreds && convs);

    QCOMPARE(types->rows.first(), (QStringList{"100", "Dairy and Egg Products", "0", "0"}));

    const QStringList* butter = findRow(*ingreds, QStringLiteral("1001"));
    QVERIFY(butter);
    QCOMPARE(column(*ingreds, *butter, QStringLiteral("nutDietaryFiber")), QString()); // NULL, not 0
    QCOMPARE(column(*ingreds, *butter, QStringLiteral("nutVitaminC")), QStringLiteral("0.0"));

    const QStringList* kiwi = findRow(*ingreds, QStringLiteral("9520"));
    QVERIFY(kiwi);
    QCOMPARE(column(*ingreds, *kiwi, QStringLiteral("ingredDesc")),
             QStringLiteral(
                 "Also called: Gold3\\nScientific name: Actinidia chinensis \u2018Zesy002\u2019 (Gold3)"));

    QCOMPARE(result.shortenedNames, 1);

    QCOMPARE(result.liquidsWithoutVolume, 1); // the energy drink has only a can

    // Derived (written to 15 digits), half-measure and can conversions.
    QCOMPARE(findRow(*convs, QStringLiteral("13"), QStringLiteral("1077"))->at(2),
             QStringLiteral("1031.32769240621"));
    QCOMPARE(findRow(*convs, QStringLiteral("19"), QStringLiteral("9111"))->at(2), QStringLiteral("256"));
    QCOMPARE(findRow(*convs, QStringLiteral("26"), QStringLiteral("14154"))->at(2), QStringLiteral("260"));
}

void TestUsdaConvert::pricesFillTheBasePrice() {
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("prices.tsv"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("ingredId\tingredPrice\n1001\t8.5\n1077\t.99\n99999\t1\n\n");
    file.close();
    const SeedResult result = buildSeedTables(readUsdaFolder(kFixture), readPrices(path));
    const SeedTable* ingreds = result.table(QStringLiteral("Ingreds"));
    QCOMPARE(column(*ingreds, *findRow(*ingreds, QStringLiteral("9520")), QStringLiteral("ingredPrice")),
             QString());
    // Milk, a liquid, is kept by the kilogram once it has a price.
    const QStringList* milk = findRow(*ingreds, QStringLiteral("1077"));
    QCOMPARE(column(*ingreds, *milk, QStringLiteral("unitId")), QString::number(Kilogram));
    QCOMPARE(column(*ingreds, *milk, QStringLiteral("ingredPrice")), QStringLiteral("0.99"));
    QCOMPARE(result.pricedIngredients, 2);
    QCOMPARE(result.warnings.size(), 1);
    QVERIFY(result.warnings.first().contains(QStringLiteral("99999")));

    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("ingredId\tingredPrice\n1001\tcheap\n");
    file.close();
    QVERIFY_THROWS_EXCEPTION(UsdaError, readPrices(path));
    QVERIFY_THROWS_EXCEPTION(UsdaError, readPrices(dir.filePath(QStringLiteral("missing.tsv"))));
}

// The command line writes one UTF-8, LF-ended file per table that reads back as built.
void TestUsdaConvert::commandLine() {
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QCOMPARE(runConverter({kFixture}), 2);
    QCOMPARE(runConverter({dir.filePath(QStringLiteral("nowhere")), dir.path()}), 1);
    QCOMPARE(runConverter({kFixture, dir.path()}), 0);
    const SeedResult result = buildSeedTables(readUsdaFolder(kFixture));
    for (const SeedTable& table : result.tables) {
        QFile file(dir.filePath(QStringLiteral("%1.tsv").arg(table.name)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QVERIFY(!bytes.contains('\r'));
        QVERIFY(bytes.endsWith('\n'));
        const TsvFile tsv = readTsv(file.fileName());
        QCOMPARE(tsv.columns, table.columns);
        QCOMPARE(tsv.rows, table.rows);
    }
}

// Counts, widths, keys and every base unit's conversion are checked on the built database; here
// what only the seed files show.
void TestUsdaConvert::deliveredReferenceData() {
    const QString seed = QStringLiteral(QM_SOURCE_DATA "/seed/");
    const TsvFile units = readTsv(seed + QStringLiteral("Units.tsv"));
    const TsvFile ingreds = readTsv(seed + QStringLiteral("Ingreds.tsv"));
    const TsvFile convs = readTsv(seed + QStringLiteral("Convs.tsv"));
    QVERIFY(units.ok && ingreds.ok && convs.ok);

    // The units other code names by id keep them; the small codes are distinct.
    const QHash<int, QString> fixed = {{1, "gram"},   {2, "kilogram"}, {9, "cup"},
                                       {13, "liter"}, {19, "piece"},   {27, "package"}};
    QHash<QString, int> unitType;
    QSet<QString> smallCodes;
    for (const QStringList& u : units.rows) {
        if (fixed.contains(u.at(0).toInt()))
            QCOMPARE(u.at(1), fixed.value(u.at(0).toInt()));
        QVERIFY2(!u.at(3).isEmpty() && !smallCodes.contains(u.at(3)), qPrintable(u.at(3)));
        smallCodes.insert(u.at(3));
        unitType.insert(u.at(0), u.at(5).toInt());
    }

    for (const QStringList& c : convs.rows)
        QVERIFY2(unitType.value(c.at(0)) == 2, qPrintable(c.join(u' ')));
    // Liquids by the liter and eggs by the piece, unless priced: then by the kilogram.
    const int unit = ingreds.columns.indexOf(QStringLiteral("unitId"));
    QHash<QString, QString> baseUnit;
    for (const QStringList& row : ingreds.rows)
        baseUnit.insert(row.at(0), row.at(unit));
    QCOMPARE(baseUnit.value("1085"), QStringLiteral("13"));
    QCOMPARE(baseUnit.value("1129"), QStringLiteral("19"));
    QCOMPARE(baseUnit.value("1123"), QStringLiteral("2"));
}

QTEST_GUILESS_MAIN(TestUsdaConvert)
#include "test_usda_convert.moc"
