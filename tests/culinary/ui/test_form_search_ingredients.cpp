// The ingredient search on a real window: types, pattern and limits per 100 g through the
// controls, the page-wise new search, and the hand-over to the ingredients window.
#include "search_fixture.h"

#include "components/messages.h"
#include "culinary/ui/form_search_ingredients.h"

#include <QCheckBox>
#include <QComboBox>

using namespace search_fixture;

namespace {

/// The ingredients window as the search sees it.
class FakeIngredientsWindow : public QObject {
    Q_OBJECT
public:
    QList<int> selected;
    Q_INVOKABLE bool SelectIngredient(int id) {
        selected << id;
        return true;
    }
};

struct Pantry {
    TestStore store;
    TScriptedPresenter presenter;
    TFormSearchIngredients form;
    bool show() {
        store.exec(kKitchen);
        form.show();
        return QTest::qWaitForWindowExposed(&form);
    }
    QList<int> find() {
        click(&form, "BitBtnFind");
        return sortedIds(form.QuerySearch(), "ingredId");
    }
    TVintraDBTreeView* types() { return child<TVintraDBTreeView>(form, "TreeViewIngredientTypes"); }
    QCheckBox* allTypes() { return child<QCheckBox>(form, "CheckBoxAllTypes"); }
    QLineEdit* edit(const char* name) { return child<QLineEdit>(form, name); }
    void type(const char* name, const QString& text) {
        bringTab(&form, edit(name));
        edit(name)->clear();
        QTest::keyClicks(edit(name), text);
    }
    void setAllTypes(bool on) {
        bringTab(&form, allTypes());
        if (allTypes()->isChecked() != on)
            QTest::mouseClick(allTypes(), Qt::LeftButton, {}, QPoint(4, allTypes()->height() / 2));
    }
    void limit(const char* nutrient, const char* op, const QString& value) {
        auto* box = child<QComboBox>(form, (QByteArray("ComboBoxOp") + nutrient).constData());
        box->setCurrentIndex(box->findText(op));
        type((QByteArray("Edit") + nutrient).constData(), value);
    }
};

} // namespace

class TestFormSearchIngredients : public QObject {
    Q_OBJECT

private slots:
    void allTypesAndApostrophe() {
        Pantry p;
        QVERIFY(p.show());
        p.store.exec({"INSERT INTO Ingreds ( ingredId, ingredTypeId, ingredName, unitId ) VALUES ( 16, NULL, "
                      "'Mystery', 1 )"});
        QVERIFY(p.allTypes()->isChecked());
        QCOMPARE(p.types()->GetCurrentKey(), 0);
        // At the root every type is written out, so an ingredient without a type is left out...
        QCOMPARE(p.find(), (QList<int>{10, 11, 12, 13, 14, 15}));
        // ...while "All types" on a type limits nothing at all.
        QVERIFY(p.types()->Locate(2));
        QCOMPARE(p.find(), (QList<int>{10, 11, 12, 13, 14, 15, 16}));
        p.setAllTypes(false);
        QCOMPARE(p.find(), QList<int>{11});
        QVERIFY(p.types()->Locate(1)); // Basics with spices below it
        QCOMPARE(p.find(), (QList<int>{10, 12, 13, 14, 15}));
        p.type("EditPattern", "baker's");
        QCOMPARE(p.find(), QList<int>{15});
        p.type("EditPattern", "o'");
        QCOMPARE(p.find(), QList<int>());
        QVERIFY(!child<QPushButton>(p.form, "BitBtnOpen")->isEnabled());
        QCOMPARE(p.presenter.texts(), QStringList());
    }

    void newSearchResetsOnlyThePageInFront() {
        Pantry p;
        QVERIFY(p.show());
        p.type("EditPattern", "salt");
        p.setAllTypes(false);
        p.limit("Sodium", "<=", "100");
        const int criteriaHeight = p.form.height();
        QCOMPARE(p.find(), QList<int>());
        QVERIFY(p.form.ResultsGrid()->isVisible());

        // On the Advanced page: the limits go, the name and type stay.
        bringTab(&p.form, p.edit("EditSodium"));
        click(&p.form, "BitBtnNewSearch");
        QVERIFY(p.edit("EditSodium")->text().isEmpty());
        QCOMPARE(child<QComboBox>(p.form, "ComboBoxOpSodium")->currentText(), QStringLiteral(">="));
        QCOMPARE(p.edit("EditPattern")->text(), QStringLiteral("salt"));
        QVERIFY(!p.allTypes()->isChecked());
        QCOMPARE(p.form.height(), criteriaHeight);
        QVERIFY(p.types()->Locate(1));
        QCOMPARE(p.find(), QList<int>{10});

        // On the first page: the name and "All types" go, the limits stay.
        p.limit("Cal", ">=", "100");
        bringTab(&p.form, p.edit("EditPattern"));
        click(&p.form, "BitBtnNewSearch");
        QVERIFY(p.edit("EditPattern")->text().isEmpty());
        QVERIFY(p.allTypes()->isChecked());
        QCOMPARE(p.edit("EditCal")->text(), QStringLiteral("100"));
        QCOMPARE(p.find(), (QList<int>{12, 13, 14, 15})); // not Cod with 80
    }

    void openAndPrintHits() {
        Pantry p;
        QVERIFY(p.show());
        FakeFrame frame;
        FakeIngredientsWindow ingredients;
        frame.window = &ingredients;
        MdiFrame = &frame;
        QString printed;
        TFormSearchIngredients::PrintIngredients = [&printed](const QString& ids) { printed = ids; };
        p.type("EditPattern", "t");
        QCOMPARE(p.find(), (QList<int>{10, 13, 15}));
        TVintraDBGrid* results = p.form.ResultsGrid();
        clickRow(results, "ingredId", 15);
        click(&p.form, "BitBtnOpen");
        QCOMPARE(frame.toggled, QStringList{"Ingredients+"});
        QCOMPARE(ingredients.selected, QList<int>{15});
        click(&p.form, "BitBtnPrint");
        QCOMPARE(printed, QStringLiteral("15"));
        MdiFrame = nullptr;
        TFormSearchIngredients::PrintIngredients = nullptr;
    }
};

QTEST_MAIN(TestFormSearchIngredients)
#include "test_form_search_ingredients.moc"
