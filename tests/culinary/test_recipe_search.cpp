// The search statements run against a real database, and the shortcuts that keep them.
#include "test_store.h"

#include "culinary/recipe_search.h"
#include "store/shortcuts.h"

#include <QTest>

Q_DECLARE_METATYPE(TRecipeSearchCriteria)

namespace {

const QStringList kScenario = {
    "INSERT INTO RGroups ( recGroupId, recGroupName, parentId ) VALUES ( 1, 'Mains', 0 ), ( 2, 'Fish', 1 ), "
    "( 3, 'Baking', 0 ), ( 4, 'Aardvark', 1 )",
    "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES ( 1, "
    "'gram', 'g', 'g', 1, 1 )",
    "INSERT INTO Ingreds ( ingredId, ingredName, unitId ) VALUES ( 10, 'Salt', 1 ), ( 11, 'Cod', 1 ), ( 12, "
    "'Flour', 1 )",
    "INSERT INTO Recipes ( recId, recGroupId, recName, recServings, recTime, recFreeForm, nutCal ) VALUES "
    "( 1, 2, 'Salted cod', 2, 20, 0, 0 ), ( 2, 2, 'O''Brien''s fish pie', 4, 60, 0, 350 ), "
    "( 3, 3, 'Plain bread', 6, 90, 0, NULL ), ( 4, 1, 'Brine', 1, 5, 0, 0 ), ( 5, 3, 'Empty idea', 1, 1, 0, "
    "10 ), "
    "( 6, 3, 'Typed salt', 1, 1, 1, 0 )",
    "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 1, 10, 5, 1 ), ( 1, 11, 300, 1 ), "
    "( 2, 11, 400, 1 ), ( 2, 12, 100, 1 ), ( 3, 12, 500, 1 ), ( 3, 10, 8, 1 ), ( 4, 10, 30, 1 )",
    "INSERT INTO Categories ( catId, catName ) VALUES ( 1, 'Quick' ), ( 2, 'Salty' )",
    "INSERT INTO RecCat ( recId, catId ) VALUES ( 1, 1 ), ( 1, 2 ), ( 4, 2 ), ( 5, 1 )",
};

QList<int> ids(TestStore& store, const QString& statement) {
    QList<int> result;
    for (const QVariantList& row : store.db().select(statement).rows)
        result << row.first().toInt();
    std::sort(result.begin(), result.end());
    return result;
}

QList<int> search(TestStore& store, TRecipeSearchCriteria c) {
    c.groupChildrenIds = ChildrenIds(store.db(), "RGroups", "recGroupId", "recGroupName", c.groupKey);
    return ids(store, StatementText(BuildRecipeSearchLines(c)));
}

} // namespace

class TestRecipeSearch : public QObject {
    Q_OBJECT

private slots:
    // Criteria beyond the search window's own cases: a branch listed in name order, the negative
    // lists, time and servings.
    void criteria_data() {
        QTest::addColumn<TRecipeSearchCriteria>("criteria");
        QTest::addColumn<QList<int>>("expected");
        TRecipeSearchCriteria c;
        c.groupKey = 1;
        c.notBelongsTo = {1, 2};
        QTest::newRow("in neither category") << c << QList<int>{2, 3, 6};
        c.notBelongsTo = {};
        c.notContains = {10};
        QTest::newRow("without salt") << c << QList<int>{2, 5, 6};
        c.notContains = {};
        c.prepTime = QStringLiteral("20");
        c.servings = QStringLiteral("2");
        QTest::newRow("time and servings") << c << QList<int>{1};
    }
    void criteria() {
        QFETCH(TRecipeSearchCriteria, criteria);
        QFETCH(QList<int>, expected);
        TestStore store;
        store.exec(kScenario);
        QCOMPARE(ChildrenIds(store.db(), "RGroups", "recGroupId", "recGroupName", 1),
                 QStringLiteral("1, 4, 2"));
        QCOMPARE(search(store, criteria), expected);
    }

    void emptyListRepeatsTheLastFragment() {
        TRecipeSearchCriteria c;
        c.groupKey = 2;
        c.prepTime = QStringLiteral("30");
        const QStringList lines = BuildRecipeSearchLines(c);
        // Select, not-belongs (nothing formatted yet: empty), time, not-contains (time again).
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines.at(1), QString());
        QCOMPARE(lines.at(2), QStringLiteral(" AND recTime <= 30"));
        QCOMPARE(lines.at(3), lines.at(2));
        c.canBeMadeOf = true;
        QCOMPARE(BuildRecipeSearchLines(c).last(), QStringLiteral(" AND recTime <= 30"));
    }

    void ingredientSearchStar() {
        TestStore store;
        store.exec(kScenario);
        TIngredientSearchCriteria c;
        c.typeKey = 1;
        c.pattern = QStringLiteral("f*r"); // a typed star is a wildcard too
        QCOMPARE(ids(store, StatementText(BuildIngredientSearchLines(c))), QList<int>{12});
    }

    void shortcutsKeepAndMoveSearches() {
        TestStore store;
        store.exec(kScenario);
        TRecipeSearchCriteria c;
        c.groupKey = 1;
        c.pattern = QStringLiteral("o'brien");
        QCOMPARE(Shortcuts::SaveRecipeSearch(StatementText(BuildRecipeSearchLines(c))), 1);
        c.pattern = QStringLiteral("salt");
        QCOMPARE(Shortcuts::SaveRecipeSearch(StatementText(BuildRecipeSearchLines(c))), 2);
        QCOMPARE(Shortcuts::SaveRecipeSearch(QStringLiteral("SELECT recId FROM Recipes WHERE recId = 3")), 3);
        QCOMPARE(Shortcuts::Load().first().name, GetText(QStringLiteral("NewShortcutToRecipes")));
        // A restart: the connection is opened anew and the saved statement runs on today's data.
        store.dataModule().KADaoDatabase.close();
        store.dataModule().DataModuleCreate();
        QCOMPARE(ids(store, Shortcuts::Open(0).definition), QList<int>{2});
        Shortcuts::Delete(1); // the middle of three: the third becomes 2
        QCOMPARE(ids(store, "SELECT shortcutId FROM Shortcuts"), (QList<int>{1, 2}));
        QCOMPARE(ids(store, Shortcuts::Open(1).definition), QList<int>{3});
        QCOMPARE(Shortcuts::Open(5).type, 0);
    }
};

QTEST_GUILESS_MAIN(TestRecipeSearch)
#include "test_recipe_search.moc"
