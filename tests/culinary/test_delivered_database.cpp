// The database that ships with the program, as it is built from data/.
#include "components/database.h"
#include "culinary/nutrient_calculation.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestDeliveredDatabase : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    qm::Database m_db;

    int count(const char* sql) { return m_db.scalar(QString::fromLatin1(sql)).toInt(); }

private slots:
    void initTestCase() {
        // A copy, since the recalculation below writes.
        const QString copy = m_dir.filePath(QStringLiteral("Hearthnote.db"));
        QVERIFY(QFile::copy(QStringLiteral(QM_BIN_DIR "/delivered/Hearthnote.db"), copy));
        m_db.open(copy);
    }

    void versionAndCounters() {
        QCOMPARE(count("SELECT keyValue FROM PKeys WHERE keyId = 'DatabaseVersion'"), 310);
        const QStringList counters = {"Units",      "Ingreds", "ITypes",      "Recipes",  "RGroups", "Menus",
                                      "Categories", "PUsers",  "CookingTips", "CTGroups", "Diets"};
        for (const QString& key : counters)
            QVERIFY2(m_db.scalar(QStringLiteral("SELECT keyValue FROM PKeys WHERE keyId = '%1'").arg(key))
                             .toInt() >= 100000,
                     qPrintable(key));
        // Every delivered record is locked: ids at or below 100000.
        QCOMPARE(count("SELECT COUNT(*) FROM Units WHERE unitId > 100000"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM Ingreds WHERE ingredId > 100000"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM Recipes WHERE recId > 100000"), 0);
        // Menu groups share the recipe groups' counter, so their ids never meet.
        QCOMPARE(count("SELECT COUNT(*) FROM MGroups M, RGroups R WHERE M.menuGroupId = R.recGroupId"), 0);
        QCOMPARE(count("SELECT COUNT(*) FROM BioVals"), 17);
    }

    void usdaSpotValues() {
        QCOMPARE(count("SELECT COUNT(*) FROM Ingreds"), 8789);
        QCOMPARE(count("SELECT COUNT(*) FROM ITypes"), 25);
        QCOMPARE(m_db.scalar("SELECT unitName || '/' || unitConv FROM Units WHERE unitId = 1").toString(),
                 QStringLiteral("gram/1.0"));
        QCOMPARE(m_db.scalar("SELECT nutCal FROM Ingreds WHERE ingredId = 1001").toDouble(),
                 717.0); // salted butter
        QCOMPARE(m_db.scalar("SELECT grams FROM Convs WHERE ingredId = 1077 AND unitId = 9").toDouble(),
                 244.0);
        // A nutrient USDA doesn't give stays unknown rather than zero.
        QVERIFY(count("SELECT COUNT(*) FROM Ingreds WHERE nutVitaminD IS NULL") > 3000);
    }

    void everyBaseUnitIsValid() {
        QCOMPARE(count("SELECT COUNT(*) FROM Ingreds I, Units U WHERE I.unitId = U.unitId AND U.unitType = 2 "
                       "AND NOT EXISTS ( SELECT 1 FROM Convs C WHERE C.unitId = I.unitId AND C.ingredId = "
                       "I.ingredId )"),
                 0);
        QCOMPARE(count("SELECT COUNT(*) FROM Ingreds WHERE unitId NOT IN ( SELECT unitId FROM Units )"), 0);
        // Menu totals read a volume base unit's grams from any food: a priced food must go by weight
        // for its menu cost to be true.
        QCOMPARE(
            count("SELECT COUNT(*) FROM Ingreds I, Units U WHERE I.unitId = U.unitId AND U.unitType <> 1 "
                  "AND I.ingredPrice IS NOT NULL"),
            0);
        QVERIFY(count("SELECT COUNT(*) FROM Ingreds WHERE unitId = 13") >
                1000); // the rest: liquids by the liter
        QCOMPARE(
            count("SELECT COUNT(*) FROM Contents C, Units U WHERE C.unitId = U.unitId AND U.unitType = 2 "
                  "AND NOT EXISTS ( SELECT 1 FROM Convs V WHERE V.unitId = C.unitId AND V.ingredId = "
                  "C.ingredId )"),
            0);
    }

    void sampleRecipesCarryTheirCalculation() {
        const qm::SqlRows recipes =
            m_db.select(QStringLiteral("SELECT * FROM Recipes WHERE recFreeForm = 0 ORDER BY recId"));
        QVERIFY(recipes.rows.size() >= 25);
        for (int row = 0; row < recipes.rows.size(); ++row) {
            const int recId = recipes.value(row, QStringLiteral("recId")).toInt();
            QVERIFY(RecalculateStoredRecipe(m_db, recId));
            const qm::SqlRows fresh =
                m_db.select(QStringLiteral("SELECT * FROM Recipes WHERE recId = %1").arg(recId));
            for (const char* column : NutrientSet)
                QCOMPARE(fresh.value(0, QLatin1String(column)).toDouble(),
                         recipes.value(row, QLatin1String(column)).toDouble());
        }
        QCOMPARE(count("SELECT COUNT(*) FROM Recipes WHERE recFreeForm = 1 AND recIngreds IS NOT NULL"), 3);
    }
};

QTEST_GUILESS_MAIN(TestDeliveredDatabase)
#include "test_delivered_database.moc"
