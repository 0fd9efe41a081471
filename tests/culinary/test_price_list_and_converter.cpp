// Price list import on a real database, and the imperial converter's arithmetic.
#include "test_store.h"

#include "culinary/price_list_import.h"
#include "culinary/unit_converter.h"

#include <QTemporaryFile>
#include <QTest>

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
