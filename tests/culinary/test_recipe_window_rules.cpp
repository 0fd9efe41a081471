// The rules behind the recipes window, on a dataset over a fresh database: the recalculation's
// errors, the scaled amount, the post checks and the lines' statements.
#include "test_store.h"

#include "components/dataset.h"
#include "culinary/recipe_window_rules.h"

#include <QTest>
#include <stdexcept>

namespace {

void seedWorkedExample(TestStore& store) {
    store.exec(
        {"INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
         "( 1, 'gram', 'g', 'g', 1, 1 ), ( 9, 'cup', 'cup', 'c', 2, NULL )",
         "INSERT INTO Ingreds ( ingredId, ingredName, unitId, nutCal ) VALUES "
         "( 1, 'Flour', 1, 350 ), ( 2, 'Milk', 9, 50 ), ( 3, 'Cook''s salt', 1, 0 )",
         "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 9, 2, 240 )",
         "INSERT INTO Recipes ( recId, recGroupId, recName, recServings, recFreeForm, nutCal ) VALUES "
         "( 100001, 1, 'Batter', 4, 0, 17 ), ( 100002, 1, 'Notes', 4, 1, 99 )",
         "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES "
         "( 100001, 1, 200, 1 ), ( 100001, 2, 2, 9 )"});
}

} // namespace

class TestRecipeWindowRules : public QObject {
    Q_OBJECT

private slots:
    // Zero servings and no lines: the error is the invalid operation, 0 / 0, and it leaves before
    // any field is written.
    void zeroServingsKeepsTheValues() {
        TestStore store;
        seedWorkedExample(store);
        store.exec({"DELETE FROM Contents"});
        qm::Dataset table;
        table.SetDatabase(&store.db());
        table.SetTableName("Recipes");
        table.Open();
        QVERIFY(table.Locate("recId", 100001));
        QVERIFY(table.Edit());
        table.FieldByName("recServings").SetValue(0);
        try {
            RecalculateNutrients(table);
            QFAIL("no error");
        } catch (const std::domain_error& e) {
            QCOMPARE(QString::fromUtf8(e.what()), QStringLiteral("Invalid floating point operation"));
        }
        QCOMPARE(table.FieldByName("nutCal").AsFloat(), 17.0);
    }

    void calcAmount_data() {
        QTest::addColumn<QVariant>("amount");
        QTest::addColumn<QVariant>("servings");
        QTest::addColumn<QVariant>("freeForm");
        QTest::addColumn<QString>("newServings");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("scaled up") << QVariant(200.0) << QVariant(4) << QVariant(false) << "6"
                                   << QVariant(300.0);
        // Divided first, then multiplied: 1 / 3 * 3 is not exactly 1.
        QTest::newRow("order of the operations")
            << QVariant(1.0) << QVariant(3) << QVariant(false) << "3" << QVariant(1.0 / 3 * 3);
        QTest::newRow("abc") << QVariant(200.0) << QVariant(4) << QVariant(false) << "abc" << QVariant();
        QTest::newRow("zero") << QVariant(200.0) << QVariant(4) << QVariant(false) << "0" << QVariant();
        QTest::newRow("negative") << QVariant(200.0) << QVariant(4) << QVariant(false) << "-2" << QVariant();
        QTest::newRow("decimal text")
            << QVariant(200.0) << QVariant(4) << QVariant(false) << "2.5" << QVariant();
        QTest::newRow("free-form") << QVariant(200.0) << QVariant(4) << QVariant(true) << "2" << QVariant();
        QTest::newRow("null flag") << QVariant(200.0) << QVariant(4) << QVariant() << "2" << QVariant();
        QTest::newRow("no servings") << QVariant(200.0) << QVariant(0) << QVariant(false) << "2"
                                     << QVariant();
    }
    void calcAmount() {
        QFETCH(QVariant, amount);
        QFETCH(QVariant, servings);
        QFETCH(QVariant, freeForm);
        QFETCH(QString, newServings);
        QFETCH(QVariant, expected);
        const QVariant result = CalcAmount(amount, servings, freeForm, newServings);
        QCOMPARE(result.isValid(), expected.isValid());
        if (expected.isValid())
            QCOMPARE(result.toDouble(), expected.toDouble());
    }

    void checks_data() {
        QTest::addColumn<QVariant>("name");
        QTest::addColumn<QVariant>("time");
        QTest::addColumn<QVariant>("servings");
        QTest::addColumn<QString>("errors");
        QTest::newRow("all good") << QVariant("Soup") << QVariant(10) << QVariant(2) << "";
        QTest::newRow("null time and zero servings pass")
            << QVariant("Soup") << QVariant() << QVariant(0) << "";
        QTest::newRow("all three")
            << QVariant() << QVariant(-1) << QVariant()
            << "Please fill in the recipe name.\nThe preparation time must be a positive whole number.\n"
               "Please fill in the servings.";
        QTest::newRow("zero time passes")
            << QVariant("Soup") << QVariant(0) << QVariant() << "Please fill in the servings.";
    }
    void checks() {
        QFETCH(QVariant, name);
        QFETCH(QVariant, time);
        QFETCH(QVariant, servings);
        QFETCH(QString, errors);
        TestStore store;
        store.holder().VintraDictionary.SetFileName(QStringLiteral(QM_SOURCE_DATA "/Languages/English.xml"));
        qm::Dataset table;
        table.SetDatabase(&store.db());
        table.SetTableName("Recipes");
        table.Open();
        QVERIFY(table.Insert());
        table.FieldByName("recName").SetValue(name);
        table.FieldByName("recTime").SetValue(time);
        table.FieldByName("recServings").SetValue(servings);
        QString text;
        CheckRecipe(table, text);
        QCOMPARE(text, errors);
    }

    // The lines' statements go through %f: six decimals are what stays of an amount.
    void linesStoreSixDecimals() {
        TestStore store;
        seedWorkedExample(store);
        AddContentsLine(100002, 3, 1.23456789, 1);
        QCOMPARE(store.db().scalar("SELECT amount FROM Contents WHERE recId = 100002").toDouble(), 1.234568);
        UpdateContentsLine(100002, 3, 2.5, 9);
        QCOMPARE(store.db().scalar("SELECT unitId FROM Contents WHERE recId = 100002").toInt(), 9);
        DeleteContentsLine(100002, 3);
        QCOMPARE(store.db().scalar("SELECT COUNT(*) FROM Contents WHERE recId = 100002").toInt(), 0);
        QCOMPARE(store.db().scalar("SELECT COUNT(*) FROM Contents WHERE recId = 100001").toInt(), 2);
    }
};

QTEST_GUILESS_MAIN(TestRecipeWindowRules)
#include "test_recipe_window_rules.moc"
