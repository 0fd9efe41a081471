// The recipe nutrient arithmetic on stored recipes.
#include "test_store.h"

#include "culinary/nutrient_calculation.h"

#include <QTest>
#include <limits>
#include <stdexcept>

class TestNutrientCalculation : public QObject {
    Q_OBJECT

    static void seedUnits(TestStore& store) {
        store.exec(
            {"INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
             "( 1, 'gram', 'g', 'g', 1, 1 ), ( 9, 'cup', 'cup', 'c', 2, NULL ), "
             "( 50, 'odd', 'od', 'od', 1, 28.5 ), ( 51, 'odder', 'or', 'or', 1, 29.5 ), "
             "( 52, 'half', 'hf', 'hf', 1, 0.5 ), ( 53, 'nothing', 'no', 'no', 1, NULL ), "
             "( 54, 'ounce', 'oz', 'oz', 1, 28.35 ), ( 60, 'other', 'ot', 'ot', 3, NULL )"});
    }

    static double storedCalories(TestStore& store, int recId) {
        return store.db()
            .scalar(QStringLiteral("SELECT nutCal FROM Recipes WHERE recId = %1").arg(recId))
            .toDouble();
    }

private slots:
    void workedExample() {
        TestStore store;
        seedUnits(store);
        store.exec(
            {"INSERT INTO Ingreds ( ingredId, ingredName, unitId, nutCal, nutProtein ) VALUES "
             "( 1, 'Flour', 1, 350, 10 ), ( 2, 'Milk', 9, 50, NULL )",
             "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 9, 2, 240 )",
             "INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES ( 7, 'Batter', 4, 0 )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 7, 1, 200, 1 ), ( 7, 2, 2, 9 "
             ")"});
        QVERIFY(RecalculateStoredRecipe(store.db(), 7));
        QCOMPARE(storedCalories(store, 7), 235.0);
        // A null value of an ingredient reads as 0: protein comes from the flour alone.
        QCOMPARE(store.db().scalar("SELECT nutProtein FROM Recipes WHERE recId = 7").toDouble(),
                 200 * 0.01 * 10 / 4);
        QCOMPARE(store.db().scalar("SELECT nutCalcium FROM Recipes WHERE recId = 7").toDouble(), 0.0);
    }

    // The recipe reads a unit's factor as a whole number, rounded half to even; the menu helper
    // takes it as it is.
    void roundedInRecipesNotInMenus() {
        TestStore store;
        seedUnits(store);
        store.exec(
            {"INSERT INTO Ingreds ( ingredId, ingredName, unitId, nutCal, ingredPrice ) VALUES "
             "( 1, 'Cheese', 1, 100, 0.02 )",
             "INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES "
             "( 1, 'A', 1, 0 ), ( 2, 'B', 1, 0 ), ( 3, 'C', 1, 0 ), ( 4, 'D', 1, 0 ), ( 5, 'E', 1, 0 )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES "
             "( 1, 1, 1, 50 ), ( 2, 1, 1, 51 ), ( 3, 1, 2, 52 ), ( 4, 1, 1, 53 ), ( 5, 1, 1, 54 )",
             "INSERT INTO RecMen ( menuId, recId, servings ) VALUES ( 1, 5, 1 )"});
        for (int recId = 1; recId <= 5; ++recId)
            QVERIFY(RecalculateStoredRecipe(store.db(), recId));
        QCOMPARE(storedCalories(store, 1), 28.0);
        QCOMPARE(storedCalories(store, 2), 30.0);
        QCOMPARE(storedCalories(store, 3), 0.0);
        QCOMPARE(storedCalories(store, 4), 0.0);
        QCOMPARE(storedCalories(store, 5), 28.0);
        // The shopping total uses the ounce as it is.
        QCOMPARE(store.dataModule().GetIngredientInMenu(1, 1).amount, 28.35);
    }

    // A factor beyond 32 bits is still rounded as a whole number, in 64 bits, half to even; past
    // that range it counts as the nearest bound rather than as garbage.
    void factorsBeyondThirtyTwoBits() {
        QCOMPARE(UnitConvAsInteger(QVariant(4294967296.5)), qint64(4294967296));
        QCOMPARE(UnitConvAsInteger(QVariant(4294967297.5)), qint64(4294967298));
        QCOMPARE(UnitConvAsInteger(QVariant(-3000000000.5)), qint64(-3000000000));
        QCOMPARE(UnitConvAsInteger(QVariant(1e30)), std::numeric_limits<qint64>::max());
        QCOMPARE(UnitConvAsInteger(QVariant(-1e30)), std::numeric_limits<qint64>::min());
        QCOMPARE(UnitConvAsInteger(QVariant(std::numeric_limits<double>::infinity())),
                 std::numeric_limits<qint64>::max());

        TestStore store;
        store.exec(
            {"INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) "
             "VALUES ( 70, 'tanker', 'tk', 'tk', 1, 5000000000.5 )",
             "INSERT INTO Ingreds ( ingredId, ingredName, unitId, nutCal ) VALUES ( 1, 'Water', 70, 1 )",
             "INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES ( 1, 'Lake', 1, 0 )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 1, 1, 1, 70 )"});
        QVERIFY(RecalculateStoredRecipe(store.db(), 1));
        QCOMPARE(storedCalories(store, 1), 50000000.0);
    }

    void linesWithoutWeightAddNothing() {
        TestStore store;
        seedUnits(store);
        store.exec(
            {"INSERT INTO Ingreds ( ingredId, ingredName, unitId, nutCal ) VALUES "
             "( 1, 'Sugar', 1, 400 ), ( 2, 'Honey', 1, 300 ), ( 3, 'Jam', 1, 250 )",
             "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 60, 3, 10 )",
             "INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES ( 1, 'Sweet', 2, 0 )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES "
             "( 1, 1, 50, 1 ), ( 1, 2, 3, 9 ), ( 1, 3, 1, 60 )"});
        // Honey has no cup conversion; jam's unit of a third type still goes to Convs.
        QVERIFY(RecalculateStoredRecipe(store.db(), 1));
        QCOMPARE(storedCalories(store, 1), (50 * 0.01 * 400 + 1 * 10 * 0.01 * 250) / 2);
        // Deleting a conversion lowers the values at the next recalculation only.
        store.exec({"DELETE FROM Convs WHERE ingredId = 3"});
        QCOMPARE(storedCalories(store, 1), (200.0 + 25.0) / 2);
        QVERIFY(RecalculateStoredRecipe(store.db(), 1));
        QCOMPARE(storedCalories(store, 1), 100.0);
    }

    void noLinesFreeFormAndZeroServings() {
        TestStore store;
        seedUnits(store);
        store.exec(
            {"INSERT INTO Ingreds ( ingredId, ingredName, unitId, nutCal ) VALUES ( 1, 'Oats', 1, 380 )",
             "INSERT INTO Recipes ( recId, recName, recServings, recFreeForm, nutCal, nutIron ) VALUES "
             "( 1, 'Empty', 2, 0, 99, 9 ), ( 2, 'Typed', 2, 1, 123, 4 ), ( 3, 'Nobody', 0, 0, 77, 7 )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 2, 1, 100, 1 ), ( 3, 1, 100, "
             "1 )"});
        QVERIFY(RecalculateStoredRecipe(store.db(), 1));
        QCOMPARE(storedCalories(store, 1), 0.0);
        QCOMPARE(store.db().scalar("SELECT nutIron FROM Recipes WHERE recId = 1").toDouble(), 0.0);
        QVERIFY(!RecalculateStoredRecipe(store.db(), 2));
        QCOMPARE(storedCalories(store, 2), 123.0);
        QVERIFY_THROWS_EXCEPTION(std::domain_error, RecalculateStoredRecipe(store.db(), 3));
        QCOMPARE(storedCalories(store, 3), 77.0);
        QVERIFY(!RecalculateStoredRecipe(store.db(), 999));
    }
};

QTEST_GUILESS_MAIN(TestNutrientCalculation)
#include "test_nutrient_calculation.moc"
