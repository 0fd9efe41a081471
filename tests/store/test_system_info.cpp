// The counts of the system information window.
#include "test_store.h"

#include "store/system_info.h"

#include <QTest>

class TestSystemInfo : public QObject {
    Q_OBJECT

private slots:
    void countsInTheirBlocks() {
        TestStore store;
        store.exec({"INSERT INTO Recipes ( recId, recName, recFreeForm ) VALUES ( 1, 'A', 0 ), ( 2, 'B', 0 )",
                    "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall ) VALUES ( 1, 'g', "
                    "'g', 'g' )",
                    "INSERT INTO PUsers ( userId, userFirstName, userLastName ) VALUES ( 1, 'Ann', 'Lee' )"});
        const QStringList lines = SystemInfoText().split('\n');
        const auto text = [](const char* key) { return GetText(QLatin1String(key)); };
        QCOMPARE(lines.at(0), text("SIDatabase"));
        QCOMPARE(lines.at(1), text("SIFullLine"));
        QCOMPARE(lines.at(2), text("SIRecipesTitle"));
        QCOMPARE(lines.at(3), text("SIIndentedLine"));
        QCOMPARE(lines.at(4), text("SIRecipeGroups") + "0"); // an empty table shows 0
        QCOMPARE(lines.at(5), text("SIRecipes") + "2");
        QVERIFY(lines.contains(text("SIUnits") + "1"));
        QCOMPARE(lines.at(lines.size() - 2), text("SICookingTips") + "0");
        QCOMPARE(lines.last(), QString()); // every line ends in a break
        QCOMPARE(lines.size(), 25);        // users, diets and diary rows don't appear
    }
};

QTEST_GUILESS_MAIN(TestSystemInfo)
#include "test_system_info.moc"
