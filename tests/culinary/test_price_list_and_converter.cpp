// Price list import on a real database, and the imperial converter's arithmetic.
#include "test_store.h"

#include "culinary/ingredient_records.h"
#include "culinary/price_list_import.h"
#include "culinary/recipe_window_rules.h"
#include "culinary/unit_converter.h"

#include <QTemporaryFile>
#include <QTest>
#include <cmath>

class TestPriceListAndConverter : public QObject {
    Q_OBJECT

    static QString writeFile(QTemporaryFile& file, const QByteArray& content) {
        file.open();
        file.write(content);
        file.close();
        return file.fileName();
    }
    static double price(TestStore& store, int id) {
        return store.db()
            .scalar(QStringLiteral("SELECT ingredPrice FROM Ingreds WHERE ingredId = %1").arg(id))
            .toDouble();
    }

private slots:
    void priceListEdgeCases() {
        TestStore store;
        store.exec({"INSERT INTO Ingreds ( ingredId, ingredName, unitId, ingredPrice ) VALUES "
                    "( 1001, 'Butter', 2, 5 ), ( 200001, 'Mine', 2, 7 ), ( 3, 'Kept', 2, 9 )"});
        QTemporaryFile file;
        const QString name = writeFile(
            file, "<?xml version=\"1.0\"?>\n<shop><aisle name=\"dairy\">"
                  "<INGREDIENT id=\"1001\" price=\"6.25\"/>"
                  "<deep><deeper><Ingredient id=\"200001\" price=\"1\">text</Ingredient></deeper></deep>"
                  "<ingredient id=\"200001\" price=\"2.5\"/>"
                  "<ingredient id=\"3\" price=\"cheap\"/>"
                  "<ingredient id=\"3\"/>"
                  "<ingredient id=\"x3\" price=\"1\"/>"
                  "<ingredient id=\"424242\" price=\"1\"/>"
                  "<item id=\"3\" price=\"1\"/></aisle></shop>");
        const TPriceListResult result = ImportPriceList(store.db(), name);
        QCOMPARE(result.error, QString());
        QCOMPARE(result.applied,
                 3); // two for 200001 and one for the locked 1001; the unknown id sets nothing
        QCOMPARE(price(store, 1001), 6.25);
        QCOMPARE(price(store, 200001), 2.5); // the last of equal ids wins
        QCOMPARE(price(store, 3), 9.0);      // bad and missing prices skipped
    }

    // A price is plain decimal text in the machine's format (the C locale here): infinities, group
    // separators and exponents are skipped like any other bad number.
    void pricesOnlyAsPlainDecimals() {
        TestStore store;
        store.exec(
            {"INSERT INTO Ingreds ( ingredId, ingredName, unitId, ingredPrice ) VALUES "
             "( 1, 'A', 2, 1 ), ( 2, 'B', 2, 1 ), ( 3, 'C', 2, 1 ), ( 4, 'D', 2, 1 ), ( 5, 'E', 2, 1 ), "
             "( 6, 'F', 2, 1 )"});
        QTemporaryFile file;
        const QString name = writeFile(file, "<list><ingredient id=\"1\" price=\"inf\"/>"
                                             "<ingredient id=\"2\" price=\"nan\"/>"
                                             "<ingredient id=\"3\" price=\"1,234.5\"/>"
                                             "<ingredient id=\"4\" price=\"2e3\"/>"
                                             "<ingredient id=\"5\" price=\" 0.75 \"/>"
                                             "<ingredient id=\"6\" price=\"-2\"/>"
                                             "<ingredient id=\"1e0\" price=\"3\"/></list>");
        const TPriceListResult result = ImportPriceList(store.db(), name);
        QCOMPARE(result.applied, 2);
        for (int id = 1; id <= 4; ++id)
            QCOMPARE(price(store, id), 1.0);
        QCOMPARE(price(store, 5), 0.75);
        QCOMPARE(price(store, 6), -2.0);
    }

    // The grams of a measure and the numbers of the dialogs read the same plain text; what doesn't
    // read is refused (grams) or 0 (dialogs, the converter).
    void dialogNumbersReadPlainDecimalsOnly() {
        double grams = -1;
        QVERIFY(IngredientRecords::ReadGrams(QStringLiteral("236.5"), grams));
        QCOMPARE(grams, 236.5);
        for (const char* text : {"236,5", "1,000", "2e2", "inf", "nan", ""})
            QVERIFY2(!IngredientRecords::ReadGrams(QString::fromLatin1(text), grams), text);
        QCOMPARE(ParseFloatOrZero(QStringLiteral("2.25")), 2.25);
        QCOMPARE(ParseFloatOrZero(QStringLiteral("1e3")), 0.0);
        QCOMPARE(ParseFloatOrZero(QStringLiteral("-inf")), 0.0);
        QCOMPARE(ParseFloatOrZero(QStringLiteral("1,5")), 0.0);
        QCOMPARE(ParseIntegerOrZero(QStringLiteral(" 6 ")), 6);
        QCOMPARE(ParseIntegerOrZero(QStringLiteral("6.0")), 0);
        QCOMPARE(UnitConverter::LengthFromTexts(QStringLiteral("1e1"), QStringLiteral("0")), 0.0f);
        QCOMPARE(UnitConverter::WeightFromTexts(QStringLiteral("2"), QStringLiteral("inf")), 0.0f);
        // A stored value far beyond what the mask holds still gives digits, not garbage.
        QCOMPARE(UnitConverter::MaskText(1e300, 3), QStringLiteral("100"));
        QCOMPARE(UnitConverter::MaskText(std::nan(""), 2), QStringLiteral("0"));
    }

    void brokenFileKeepsWhatCameBefore() {
        TestStore store;
        store.exec({"INSERT INTO Ingreds ( ingredId, ingredName, unitId, ingredPrice ) VALUES ( 1, 'A', 2, 1 "
                    "), ( 2, 'B', 2, 1 )"});
        QTemporaryFile file;
        const QString name =
            writeFile(file, "<list><ingredient id=\"1\" price=\"3\"/><ingredient id=\"2\" price=\"4\"");
        const TPriceListResult result = ImportPriceList(store.db(), name);
        QCOMPARE(result.applied, 1);
        QVERIFY(!result.error.isEmpty());
        QCOMPARE(price(store, 1), 3.0);
        QCOMPARE(price(store, 2), 1.0);
    }

    void lengthAndWeight_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<double>("metric");
        QTest::addColumn<QString>("whole");
        QTest::addColumn<QString>("part");
        QTest::addColumn<float>("recomputed");
        QTest::newRow("180 cm") << 1 << 180.0 << "5"
                                << "10" << 177.8f;
        QTest::newRow("1 kg") << 2 << 1.0 << "2"
                              << "3" << 0.99f;
        QTest::newRow("80 kg") << 2 << 80.0 << "177"
                               << "11" << float(177 * 0.45 + 11 * 0.03);
    }
    void lengthAndWeight() {
        QFETCH(int, mode);
        QFETCH(double, metric);
        QFETCH(QString, whole);
        QFETCH(QString, part);
        QFETCH(float, recomputed);
        const UnitConverter::Split split =
            mode == 1 ? UnitConverter::SplitLength(metric) : UnitConverter::SplitWeight(metric);
        const QString wholeText = UnitConverter::MaskText(split.whole, mode == 1 ? 1 : 3);
        const QString partText = UnitConverter::MaskText(split.part, 2);
        QCOMPARE(wholeText, whole);
        QCOMPARE(partText, part);
        QCOMPARE(mode == 1 ? UnitConverter::LengthFromTexts(wholeText, partText)
                           : UnitConverter::WeightFromTexts(wholeText, partText),
                 recomputed);
    }
};

QTEST_GUILESS_MAIN(TestPriceListAndConverter)
#include "test_price_list_and_converter.moc"
