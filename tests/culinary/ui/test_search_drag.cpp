// Ingredients dragged with the mouse between the grid and the boxes of the recipe search. The
// offscreen platform has no drag and drop, so this test runs on the minimal one, where Qt's own
// in-process drag runs its loop.
#include "recipe_search_kitchen.h"

#include <QApplication>

using namespace search_fixture;

class TestSearchDrag : public QObject {
    Q_OBJECT

private slots:
    void dragIngredientsInAndBackOut() {
        Kitchen k;
        QVERIFY(k.show());
        TVintraDBGrid* grid = k.ingredients();
        bringTab(&k.form, grid);
        QVERIFY(k.types()->Locate(3));
        auto rowOf = [grid](int id) { return rowCenter(grid, "ingredId", id); };
        QVERIFY(drag(grid, rowOf(10), k.box("ListBoxContains")));
        QCOMPARE(k.names("ListBoxContains"), QStringList{"Salt"});
        QVERIFY(drag(grid, rowOf(14), k.box("ListBoxNotContains")));
        QCOMPARE(k.form.NotContainsIds(), QList<int>{14});
        QCOMPARE(k.find(), (QList<int>{1, 3, 4, 8}));

        // Rows of another grid are not ingredients: the box refuses them.
        auto* categories = k.categories();
        categories->setDragEnabled(true);
        bringTab(&k.form, categories);
        const QPoint quick = categories->visualRect(categories->model()->index(0, 0)).center();
        bringTab(&k.form, grid);
        QVERIFY(drag(categories, quick, k.box("ListBoxContains")));
        QCOMPARE(k.form.ContainsIds(), QList<int>{10});

        // Back onto the grid: the item leaves its box and its list.
        bringTab(&k.form, grid);
        auto* contains = k.box("ListBoxContains");
        QVERIFY(drag(contains, contains->visualItemRect(contains->item(0)).center(), grid));
        QCOMPARE(contains->count(), 0);
        QVERIFY(k.form.ContainsIds().isEmpty());
        QCOMPARE(k.form.NotContainsIds(), QList<int>{14});
        QCOMPARE(k.find(), (QList<int>{1, 2, 3, 4, 5, 6, 8}));

        // Several rows at once, in the grid's order.
        clickRow(grid, "ingredId", 10);
        clickRow(grid, "ingredId", 14, Qt::ControlModifier);
        QVERIFY(drag(grid, rowOf(10), contains));
        QCOMPARE(k.names("ListBoxContains"), (QStringList{"Pepper", "Salt"}));
        QCOMPARE(k.form.ContainsIds(), (QList<int>{14, 10}));
    }
};

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "minimal");
    QApplication app(argc, argv);
    TestSearchDrag test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "test_search_drag.moc"
