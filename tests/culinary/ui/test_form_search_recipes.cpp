// The recipe search on a real window over a small kitchen: criteria set through the controls, the
// statement it runs, the rows it finds, and what it hands to the frame, the report and the bar.
#include "recipe_search_kitchen.h"

#include "store/shortcuts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QMainWindow>

using namespace search_fixture;

namespace {

/// The recipes window as the search sees it.
class FakeRecipesWindow : public QObject {
    Q_OBJECT
public:
    QList<int> located;
    Q_INVOKABLE void LocateRecipe(int id) { located << id; }
};

const QList<int> kEveryRecipe = {1, 2, 3, 4, 5, 6, 7, 8};

} // namespace

class TestFormSearchRecipes : public QObject {
    Q_OBJECT

private slots:
    void withoutCriteriaAllGroupsListsEveryRecipe() {
        Kitchen k;
        QVERIFY(k.show());
        QCOMPARE(k.find(), kEveryRecipe);
        QVERIFY(child<QPushButton>(k.form, "BitBtnOpen")->isEnabled());
        // Print needs rows and a report to print with.
        QVERIFY(!child<QPushButton>(k.form, "BitBtnPrint")->isEnabled());
        TFormSearchRecipes::PrintRecipes = [](const QString&) {};
        QCOMPARE(k.find(), kEveryRecipe);
        QVERIFY(child<QPushButton>(k.form, "BitBtnPrint")->isEnabled());

        // "All groups" with a group selected limits nothing; without it, the group and those below.
        QVERIFY(k.groups()->Locate(3));
        QCOMPARE(k.find(), kEveryRecipe);
        k.check("CheckBoxAllGroups", false);
        QCOMPARE(k.find(), (QList<int>{3, 5, 6}));
        // The root without "All groups": every group written out, so every recipe.
        QVERIFY(k.groups()->Locate(0));
        QCOMPARE(k.find(), kEveryRecipe);

        // An empty result says nothing and disables what needs rows.
        k.type("EditPattern", "no such dish");
        QCOMPARE(k.find(), QList<int>());
        for (const char* button : {"BitBtnOpen", "BitBtnPrint", "BitBtnSaveShortcut"})
            QVERIFY2(!child<QPushButton>(k.form, button)->isEnabled(), button);
        QCOMPARE(k.presenter.texts(), QStringList());
        TFormSearchRecipes::PrintRecipes = nullptr;
    }

    void apostropheInPatternAndInItsShortcut() {
        Kitchen k;
        QVERIFY(k.show());
        int reloads = 0;
        TFormSearchRecipes::ShortcutsChanged = [&reloads] { ++reloads; };
        k.type("EditPattern", "o'brien's");
        QCOMPARE(k.find(), QList<int>{2});
        click(&k.form, "BitBtnSaveShortcut");
        QCOMPARE(reloads, 1);
        const QList<TShortcut> saved = Shortcuts::Load();
        QCOMPARE(saved.size(), 1);
        QCOMPARE(saved.first().type, 1);
        // The whole statement with its line breaks, as the search ran it.
        QCOMPARE(saved.first().definition, k.form.QuerySearch().Sql());
        QVERIFY(saved.first().definition.contains(
            " AND recName LIKE '*o' || CHR( 39 ) || 'brien' || CHR( 39 ) || "
            "'s*'\n"));
        QCOMPARE(sortedIds(k.store.db(), Shortcuts::Open(0).definition), QList<int>{2});

        // Without rows there is nothing to save.
        k.type("EditPattern", "o'neill");
        QCOMPARE(k.find(), QList<int>());
        click(&k.form, "BitBtnSaveShortcut");
        QCOMPARE(Shortcuts::Load().size(), 1);
        QCOMPARE(reloads, 1);
        TFormSearchRecipes::ShortcutsChanged = nullptr;
    }

    void madeOfSaltAlone() {
        Kitchen k;
        QVERIFY(k.show());
        k.check("CheckBoxCanBeMadeOf", true);

        k.addIngredient(10, "SpeedButtonAddToContains");
        // Salt alone and the recipe without lines; never the free-form one.
        QCOMPARE(k.find(), (QList<int>{4, 5, 8}));
        k.addIngredient(11, "SpeedButtonAddToContains");
        QCOMPARE(k.find(), (QList<int>{1, 4, 5, 8}));

        // Two ingredients mean both.
        k.check("CheckBoxCanBeMadeOf", false);
        QCOMPARE(k.find(), QList<int>{1});
    }

    void limitOfZeroIsNotNull() {
        Kitchen k;
        QVERIFY(k.show());
        auto* op = child<QComboBox>(k.form, "ComboBoxOpCal");
        QCOMPARE(op->currentText(), QStringLiteral(">="));
        op->setCurrentIndex(op->findText("<="));
        k.type("EditCal", "0");
        QCOMPARE(k.find(), (QList<int>{1, 4, 6}));
        op->setCurrentIndex(op->findText(">="));
        QCOMPARE(k.find(), (QList<int>{1, 2, 4, 5, 6, 7}));
        // Digits only, four at most: what the statement gets is a number.
        k.type("EditCal", "12a345");
        QCOMPARE(child<QLineEdit>(k.form, "EditCal")->text(), QStringLiteral("1234"));
        // Time is an upper bound, servings an exact number.
        k.type("EditCal", "");
        k.type("EditPrepTime", "20");
        k.type("EditNoServings", "2");
        QCOMPARE(k.find(), (QList<int>{1, 7}));
    }

    void choosingKeepsBoxesAndIdsInStep() {
        Kitchen k;
        QVERIFY(k.show());
        for (int id : {1, 3, 2})
            k.addCategory(id, "SpeedButtonAddToBelongsTo");
        auto* belongs = k.box("ListBoxBelongsTo");
        belongs->setCurrentRow(1);
        click(&k.form, "SpeedButtonRemoveFromBelongsTo");
        QCOMPARE(k.names("ListBoxBelongsTo"), (QStringList{"Quick", "Salty"}));
        QCOMPARE(k.form.BelongsToIds(), (QList<int>{1, 2}));
        belongs->setCurrentRow(-1);
        click(&k.form, "SpeedButtonRemoveFromBelongsTo");
        QCOMPARE(k.form.BelongsToIds(), (QList<int>{1, 2}));

        // The "does not belong" button adds nothing while its box has no selected item, and an
        // empty box never has one.
        k.addCategory(3, "SpeedButtonAddToNotBelongsTo");
        QCOMPARE(k.box("ListBoxNotBelongsTo")->count(), 0);
        QVERIFY(k.form.NotBelongsToIds().isEmpty());
        QCOMPARE(k.find(), QList<int>{1}); // two categories mean both: Quick and Salty
        k.box("ListBoxBelongsTo")->setCurrentRow(1);
        click(&k.form, "SpeedButtonRemoveFromBelongsTo");
        QCOMPARE(k.find(), (QList<int>{1, 5}));

        // Reset empties boxes and lists alike and puts every control back.
        k.addIngredient(10, "SpeedButtonAddToContains");
        k.type("EditVitaminC", "5");
        k.check("CheckBoxAllGroups", false);
        click(&k.form, "BitBtnNewSearch");
        QVERIFY(k.form.BelongsToIds().isEmpty() && k.form.ContainsIds().isEmpty());
        QVERIFY(child<QLineEdit>(k.form, "EditVitaminC")->text().isEmpty());
        QVERIFY(child<QCheckBox>(k.form, "CheckBoxAllGroups")->isChecked());
    }

    void openPrintCloseAndShowAgain() {
        Kitchen k;
        QVERIFY(k.show());
        FakeFrame frame;
        FakeRecipesWindow recipes;
        frame.window = &recipes;
        MdiFrame = &frame;
        QString printed;
        TFormSearchRecipes::PrintRecipes = [&printed](const QString& ids) { printed = ids; };

        k.type("EditPattern", "salt");
        QCOMPARE(k.find(), (QList<int>{1, 6, 7, 8}));
        TVintraDBGrid* results = k.results();
        clickRow(results, "recId", 7);
        QTest::mouseDClick(results->viewport(), Qt::LeftButton, {}, rowCenter(results, "recId", 7));
        QCOMPARE(frame.toggled, QStringList{"Recipes+"});
        QCOMPARE(recipes.located, QList<int>{7});

        // Print: the selected rows.
        clickRow(results, "recId", 6);
        clickRow(results, "recId", 8, Qt::ControlModifier);
        click(&k.form, "BitBtnPrint");
        QCOMPARE(printed, QStringLiteral("6, 8"));
        MdiFrame = nullptr;
        TFormSearchRecipes::PrintRecipes = nullptr;

        // Closing hides the window with its criteria; the categories are read again at the next show.
        k.addCategory(2, "SpeedButtonAddToBelongsTo");
        click(&k.form, "BitBtnClose");
        QVERIFY(!k.form.isVisible());
        k.store.exec({"INSERT INTO Categories ( catId, catName ) VALUES ( 4, 'Cheap' )"});
        k.form.show();
        QCOMPARE(sortedIds(k.form.QueryAvailableCategories(), "catId"), (QList<int>{1, 2, 3, 4}));
        QCOMPARE(k.find(), (QList<int>{1, 7})); // still "salt" and Salty
    }

    // The window opens centred on the main window, each time it is shown; the hits' name column
    // takes the width the other columns leave.
    void opensCentredAndNamesUseTheWidth() {
        TestStore store;
        store.exec(kKitchen);
        QMainWindow main;
        main.setGeometry(60, 30, 700, 540); // inside the offscreen screen of 800 by 600
        main.show();
        QVERIFY(QTest::qWaitForWindowExposed(&main));
        TFormSearchRecipes form(&main);
        form.resize(620, form.height());
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        const auto offCentre = [&] {
            const QPoint d = form.frameGeometry().center() - main.frameGeometry().center();
            return std::max(std::abs(d.x()), std::abs(d.y()));
        };
        QVERIFY2(offCentre() <= 1, qPrintable(QString::number(offCentre())));
        form.hide();
        main.move(30, 10);
        form.show();
        QVERIFY2(offCentre() <= 1, qPrintable(QString::number(offCentre())));

        click(&form, "BitBtnFind");
        QCoreApplication::processEvents();
        TVintraDBGrid* results = form.ResultsGrid();
        int others = 0;
        for (int c = 1; c < results->model()->columnCount(); ++c)
            others += results->columnWidth(c);
        QCOMPARE(results->columnWidth(0), results->viewport()->width() - others);
    }
};

QTEST_MAIN(TestFormSearchRecipes)
#include "test_form_search_recipes.moc"
