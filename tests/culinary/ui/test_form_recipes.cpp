// The recipes window, shown offscreen over a fresh database: lines through the dialogs and the
// recalculation they trigger, free-form recipes, scaling, the delete rules, the group cascade and
// the window opened for a saved search.
#include "recipe_fixture.h"

#include "components/messages.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "culinary/ui/form_recipe_add_or_edit_ingredient.h"
#include "culinary/ui/form_recipes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSplitter>
#include <QTabWidget>

namespace {

/// The line dialog as a user fills it: search the name, type the amount, choose the unit.
DialogScript::Step addLine(const QString& name, const QString& amount, const QString& unit) {
    return [=](QDialog& dialog) {
        auto& form = static_cast<TFormRecipeAddOrEditIngredient&>(dialog);
        child<QLineEdit>(form, "MemoSearch")->setText(name);
        form.TimerSearchTimer();
        auto* units = child<QComboBox>(form, "ComboBoxUnits");
        units->setCurrentIndex(units->findText(unit));
        QLineEdit* edit = child<QLineEdit>(form, "EditAmount");
        edit->selectAll();
        QTest::keyClicks(edit, amount);
        clickOk(form);
    };
}

void typeInto(QLineEdit* edit, const QString& text) {
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

} // namespace

class TestFormRecipes : public QObject {
    Q_OBJECT

    FakeFrame m_frame;

    std::unique_ptr<TFormRecipes> open(const QString& sql = {}, const QString& name = {}) {
        auto form = std::make_unique<TFormRecipes>(sql, name);
        form->resize(900, 650);
        form->show();
        return form;
    }

private slots:
    void init() {
        m_frame = FakeFrame();
        MdiFrame = &m_frame;
    }
    void cleanup() { MdiFrame = nullptr; }

    // 4 servings, 200 g of flour and 2 cups of milk added through the line dialog: each line posts
    // the recipe, and AutoRecalculate leaves 235 kcal a serving.
    void workedExampleThroughTheWindow() {
        RecipeStore store;
        DialogScript script;
        TScriptedPresenter presenter;
        auto form = open();
        QVERIFY(form->LocateRecipe(100001));
        QVERIFY(form->NutrientEdit(0)->isReadOnly());

        script.steps = {addLine("Flour", "200", "gram")};
        form->BitBtnAddIngredClick();
        QCOMPARE(store.number("SELECT nutCal FROM Recipes WHERE recId = 100001"), 175.0);
        script.steps = {addLine("Milk", "2", "cup")};
        form->BitBtnAddIngredClick();
        QCOMPARE(store.number("SELECT nutCal FROM Recipes WHERE recId = 100001"), 235.0);
        QCOMPARE(form->NutrientEdit(0)->text(), QStringLiteral("235"));

        // Zero servings: the post fails with the division error shown once and the record keeps its
        // values; a line added meanwhile stays, as nothing wraps the steps.
        QLineEdit* servings = form->findChild<QLineEdit*>("DBEditRecipeServings");
        typeInto(servings, "0");
        script.steps = {addLine("Cook", "5", "gram")};
        form->BitBtnAddIngredClick();
        QCOMPARE(presenter.texts(TMessagePresenter::Error).size(), 1);
        QVERIFY(presenter.texts(TMessagePresenter::Error).first().contains("division by zero"));
        QCOMPARE(store.count("SELECT COUNT(*) FROM Contents WHERE recId = 100001"), 3);
        QCOMPARE(store.number("SELECT nutCal FROM Recipes WHERE recId = 100001"), 235.0);
        typeInto(servings, "4");

        // Without AutoRecalculate a new line changes nothing until the command runs.
        store.holder().VintraOptions.SetAsBoolean("AutoRecalculate", false);
        script.steps = {addLine("Flour", "2", "gram")};
        store.exec({"DELETE FROM Contents WHERE recId = 100001 AND ingredId = 1"});
        form->BitBtnAddIngredClick();
        QCOMPARE(store.number("SELECT nutCal FROM Recipes WHERE recId = 100001"), 235.0);
        form->MIRecalculateClick();
        QVERIFY(form->RecordTable().Post());
        QCOMPARE(store.number("SELECT nutCal FROM Recipes WHERE recId = 100001"), 61.75);
    }

    // A free-form recipe. Its lines go through their dialog: a 254-character name survives the
    // columns both ways; add posts, delete leaves the record in edit state. Its nutrients are typed
    // and kept through the command; switching the box changes the panels, not the data.
    void freeFormRecipe() {
        RecipeStore store;
        DialogScript script;
        auto form = open();
        QVERIFY(form->LocateRecipe(100002));
        const QString name = QStringLiteral("very long ") + QString(244, QLatin1Char('z'));
        script.steps = {[&](QDialog& dialog) {
            child<QLineEdit>(dialog, "MaskEditAmount")->setText("12");
            child<QComboBox>(dialog, "ComboBoxAmount")->setEditText("3/4");
            child<QComboBox>(dialog, "ComboBoxUnit")->setEditText("tablespoons");
            child<QLineEdit>(dialog, "EditIngredient")->setText(name);
            clickOk(dialog);
        }};
        form->BitBtnAddIngredClick();
        QListWidget* list = form->ListBoxIngredients();
        const QString line = QStringLiteral("12   3/4  tablespoons   ") + name;
        QCOMPARE(list->count(), 3);
        QCOMPARE(list->item(2)->text(), line);
        QCOMPARE(form->RecordTable().State(), qm::dsBrowse);

        // Edit shows the pieces back and gives the same line.
        list->setCurrentRow(2);
        QString shownName;
        script.steps = {[&](QDialog& dialog) {
            shownName = child<QLineEdit>(dialog, "EditIngredient")->text();
            clickOk(dialog);
        }};
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(shownName, name);
        QCOMPARE(list->item(2)->text(), line);

        list->setCurrentRow(0);
        form->BitBtnDeleteIngredClick();
        QCOMPARE(list->count(), 2);
        QCOMPARE(form->RecordTable().State(), qm::dsEdit);
        QVERIFY(form->RecordTable().Post());
        QCOMPARE(store.db().scalar("SELECT recIngreds FROM Recipes WHERE recId = 100002").toString(),
                 QStringLiteral("     1/2  tsp           salt\n") + line + "\n");
        // A cancelled dialog changes nothing.
        form->BitBtnAddIngredClick();
        QCOMPARE(list->count(), 2);

        QLineEdit* kcal = form->NutrientEdit(0);
        QVERIFY(!kcal->isReadOnly());
        typeInto(kcal, "123.5");
        form->MIRecalculateClick();
        QVERIFY(form->RecordTable().Post());
        QCOMPARE(store.number("SELECT nutCal FROM Recipes WHERE recId = 100002"), 123.5);

        QTest::mouseClick(form->findChild<QCheckBox*>("DBCheckBoxFreeForm"), Qt::LeftButton);
        QVERIFY(form->findChild<QWidget*>("PanelFree")->isHidden());
        QCOMPARE(form->QueryContents.RecordCount(), 0);
        QVERIFY(form->RecordTable().Post());
        QVERIFY(store.db()
                    .scalar("SELECT recIngreds FROM Recipes WHERE recId = 100002")
                    .toString()
                    .contains("salt"));
    }

    // A recipe in a menu: restricted, the message and nothing goes; cascade, its menu and calendar
    // rows, lines, diet items, diary meals and pictures go, its categories stay. The group cascade
    // is narrower: diet items, diary meals and pictures stay.
    void referencedRecipeAndGroupCascade() {
        RecipeStore store;
        store.exec(
            {"INSERT INTO RecMen ( menuId, recId, servings ) VALUES ( 1, 100003, 2 ), ( 1, 100005, 2 )",
             "INSERT INTO RecDate ( recId, dateScheduled, servings ) VALUES ( 100003, 45000, 2 ), "
             "( 100005, 45000, 2 )",
             "INSERT INTO DietContents ( dietId, dietTime, recId, servings ) VALUES ( 1, 36892.5, 100003, 1 "
             "), ( 1, 36893.5, 100005, 1 )",
             "INSERT INTO UserMeals ( userId, mealTime, recId, servings ) VALUES ( 1, 45000.5, 100003, 1 ), "
             "( 1, 45001.5, 100005, 1 )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 100003, 1, 10, 1 ), "
             "( 100005, 1, 10, 1 )",
             "INSERT INTO RecCat ( recId, catId ) VALUES ( 100003, 1 )"});
        WritePicture(store.root() + "Database/pic/rec/100003.1.jpg", Qt::darkGreen);
        WritePicture(store.root() + "Database/pic/rec/100005.1.jpg", Qt::darkGreen);
        store.holder().VintraOptions.SetAsInteger("IRDeleteRecipe", 1);
        TScriptedPresenter presenter;
        auto form = open();
        QVERIFY(form->LocateRecipe(100003));

        presenter.answers = {mrYes};
        QTest::keyClick(form->Grid(), Qt::Key_Delete);
        QCOMPARE(presenter.texts(),
                 (QStringList{GetText("QuestionDeleteRecipe"), GetText("InfoRecipeReferenced")}));
        QCOMPARE(store.count("SELECT COUNT(*) FROM Recipes WHERE recId = 100003"), 1);
        QVERIFY(QFile::exists(store.root() + "Database/pic/rec/100003.1.jpg"));

        store.holder().VintraOptions.SetAsInteger("IRDeleteRecipe", 2);
        presenter.clear();
        presenter.answers = {mrYes};
        QTest::keyClick(form->Grid(), Qt::Key_Delete);
        QCOMPARE(presenter.texts(), QStringList{GetText("QuestionDeleteRecipe")});
        QCOMPARE(store.count("SELECT COUNT(*) FROM Recipes WHERE recId = 100003"), 0);
        for (const char* table : {"RecMen", "RecDate", "Contents", "DietContents", "UserMeals"})
            QCOMPARE(store.count(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE recId = 100003").arg(table)),
                     0);
        QCOMPARE(store.count("SELECT COUNT(*) FROM RecCat WHERE recId = 100003"), 1);
        QCOMPARE(store.count("SELECT COUNT(*) FROM RecMen WHERE recId = 100005"), 1);
        QVERIFY(!QFile::exists(store.root() + "Database/pic/rec/100003.1.jpg"));
        QCOMPARE(m_frame.status, GetText("StatusRecipesInCurrentGroup") + "1");

        store.holder().VintraOptions.SetAsInteger("IRDeleteRecipeGroup", 2);
        presenter.clear();
        presenter.answers = {mrYes};
        QVERIFY(form->TreeView()->Locate(2));
        form->DeleteGroup();
        QCOMPARE(presenter.texts(), QStringList{GetText("QuestionDeleteRecipeGroup")});
        QCOMPARE(store.count("SELECT COUNT(*) FROM RGroups WHERE recGroupId = 2"), 0);
        QCOMPARE(store.count("SELECT COUNT(*) FROM Recipes WHERE recGroupId = 2"), 0);
        for (const char* table : {"RecMen", "RecDate", "Contents"})
            QCOMPARE(store.count(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE recId = 100005").arg(table)),
                     0);
        QCOMPARE(store.count("SELECT COUNT(*) FROM DietContents WHERE recId = 100005"), 1);
        QCOMPARE(store.count("SELECT COUNT(*) FROM UserMeals WHERE recId = 100005"), 1);
        QVERIFY(QFile::exists(store.root() + "Database/pic/rec/100005.1.jpg"));
        // Breakfast's lines are untouched.
        QCOMPARE(store.count("SELECT COUNT(*) FROM Contents WHERE recId = 100004"), 2);
    }

    // Batter's lines: EditNewServings scales the calculated amounts silently, the stored ones stay;
    // Delete in the lines' grid asks about the recipe itself; Enter edits the current line's amount
    // and unit; each change recalculates, and with no lines left every value is 0, not NULL.
    void batterLines() {
        RecipeStore store;
        TScriptedPresenter presenter;
        DialogScript script;
        auto form = open();
        QVERIFY(form->LocateRecipe(100004));
        form->findChild<QTabWidget*>("PageControlRecipe")->setCurrentIndex(1);
        QVERIFY(form->QueryContents.Locate("ingredId", 1));
        form->findChild<QLineEdit*>("EditNewServings")->setText("8");
        QTest::mouseClick(form->findChild<QPushButton*>("ButtonRecalculate"), Qt::LeftButton);
        // The cursor stays on its line: flour, 200 g for 4.
        QCOMPARE(form->QueryContents.FieldByName("ingredId").AsInteger(), 1);
        QCOMPARE(form->QueryContents.FieldByName("calcAmount").AsFloat(), 400.0);
        QVERIFY(presenter.shown.isEmpty());
        QCOMPARE(store.number("SELECT amount FROM Contents WHERE recId = 100004 AND ingredId = 1"), 200.0);

        auto* contents = form->findChild<TVintraDBGrid*>("DBGridContents");
        presenter.answers = {mrNo};
        QTest::keyClick(contents, Qt::Key_Delete);
        QCOMPARE(presenter.texts(), QStringList{GetText("QuestionDeleteRecipe")});
        QCOMPARE(store.count("SELECT COUNT(*) FROM Recipes WHERE recId = 100004"), 1);

        QVERIFY(form->QueryContents.Locate("ingredId", 2));
        script.steps = {[&](QDialog& dialog) {
            QCOMPARE(child<QComboBox>(dialog, "ComboBoxUnits")->currentText(), QStringLiteral("cup"));
            child<QLineEdit>(dialog, "EditAmount")->setText("1.5");
            clickOk(dialog);
        }};
        QTest::keyClick(contents, Qt::Key_Return);
        QCOMPARE(store.number("SELECT amount FROM Contents WHERE recId = 100004 AND ingredId = 2"), 1.5);
        // 700 + 1.5 * 240 * 0.5 = 880 over 4 servings.
        QCOMPARE(store.number("SELECT nutCal FROM Recipes WHERE recId = 100004"), 220.0);

        for (int ingredId : {1, 2}) {
            QVERIFY(form->QueryContents.Locate("ingredId", ingredId));
            form->BitBtnDeleteIngredClick();
        }
        QCOMPARE(store.count("SELECT COUNT(*) FROM Contents WHERE recId = 100004"), 0);
        QCOMPARE(store.db().scalar("SELECT nutCal FROM Recipes WHERE recId = 100004").toString(),
                 QStringLiteral("0"));
        QVERIFY(!store.db().scalar("SELECT nutCalcium FROM Recipes WHERE recId = 100004").isNull());
    }

    // The root lists every recipe, read-only, counted as 0; a group counts its own and takes a new
    // recipe, structured. The frame's buttons follow the activation; a double click on a line
    // shows the ingredients window.
    void rootGroupsAndFrame() {
        RecipeStore store;
        auto form = open();
        QCOMPARE(form->RecordTable().RecordCount(), 5);
        QVERIFY(form->RecordTable().ReadOnly());
        QCOMPARE(m_frame.status, GetText("StatusRecipesInCurrentGroup") + "0");

        QVERIFY(form->TreeView()->Locate(1));
        QCOMPARE(m_frame.status, GetText("StatusRecipesInCurrentGroup") + "3");
        QVERIFY(form->RecordTable().Insert());
        QCOMPARE(form->RecordTable().FieldByName("recGroupId").AsInteger(), 1);
        QVERIFY(!form->RecordTable().FieldByName("recFreeForm").IsNull());
        typeInto(form->findChild<QLineEdit*>("DBEditRecipeName"), "Porridge");
        typeInto(form->findChild<QLineEdit*>("DBEditRecipeServings"), "2");
        QVERIFY(form->RecordTable().Post());
        QCOMPARE(store.number("SELECT nutCal FROM Recipes WHERE recName = 'Porridge'"), 0.0);

        form->FormActivate();
        QCOMPARE(m_frame.commands.value("ToolButtonRecalculate"), true);
        form->FormDeactivate();
        QCOMPARE(m_frame.commands.value("ToolButtonRecalculate"), false);
        QVERIFY(form->LocateRecipe(100004));
        form->DBGridContentsDblClick();
        QCOMPARE(m_frame.toggled, QStringList{"Ingredients+"});
    }

    // A saved search: the caption names it, the tree is gone, nothing can be added, the details
    // follow the grid row, and the status line is empty.
    void shortcutMode() {
        RecipeStore store;
        m_frame.commands["ToolButtonImport"] = true;
        const int splitter = store.holder().VintraOptions.GetAsInteger("RecSplitterVertical");
        auto form = open("SELECT recId, recGroupId, recName, recTime, recServings, recPrice \nFROM Recipes "
                         "\nWHERE 1 = 1 \n AND recName LIKE '*a*' \n",
                         "With an a");
        QCOMPARE(form->windowTitle(), QStringLiteral("Recipes - With an a"));
        QVERIFY(form->GroupPanel()->isHidden());
        QCOMPARE(m_frame.commands.value("ToolButtonImport"), false);
        QCOMPARE(m_frame.status, QString());
        const int first = form->QueryShortcutRecipes.FieldByName("recId").AsInteger();
        form->Grid()->selectRow(2);
        const int third = form->QueryShortcutRecipes.FieldByName("recId").AsInteger();
        QVERIFY(third != first);
        QCOMPARE(form->findChild<QLineEdit*>("DBEditRecipeName")->text(),
                 form->QueryShortcutRecipes.FieldByName("recName").AsString());

        QVERIFY(!form->RecordTable().Insert());
        form->close();
        QCOMPARE(store.holder().VintraOptions.GetAsInteger("RecSplitterVertical"), splitter);
    }

    // The panels come back at their stored sizes and keep them as the window grows; the grids'
    // name columns take the free width; a nutrient shows its shortest text rounded half up.
    void layoutAsStored() {
        RecipeStore store;
        TVintraOptions& options = store.holder().VintraOptions;
        options.SetAsInteger("RecSplitterHorizontal", 250);
        options.SetAsInteger("RecSplitterVertical", 210);
        options.SetAsInteger("RecSizeHeight", 600);
        options.SetAsInteger("RecSizeWidth", 800);
        auto form = std::make_unique<TFormRecipes>(QString(), QString());
        form->show();
        QVERIFY(QTest::qWaitForWindowExposed(form.get()));
        QCOMPARE(form->SplitterHorizontal()->sizes().value(1), 250);
        QCOMPARE(form->SplitterVertical()->sizes().value(0), 210);
        form->resize(1000, 760);
        QCoreApplication::processEvents();
        QCOMPARE(form->SplitterHorizontal()->sizes().value(1), 250);
        QCOMPARE(form->SplitterVertical()->sizes().value(0), 210);

        TVintraDBGrid* grid = form->Grid();
        QVERIFY(grid->NameColumnFills());
        int others = 0;
        for (int c = 1; c < grid->model()->columnCount(); ++c)
            others += grid->columnWidth(c);
        QCOMPARE(grid->columnWidth(0), grid->viewport()->width() - others);

        store.exec({"UPDATE Recipes SET nutCal = 236.9115 WHERE recId = 100002"});
        form->RecordTable().Refresh();
        QVERIFY(form->LocateRecipe(100002));
        QCOMPARE(form->NutrientEdit(0)->text(), QStringLiteral("236.912"));

        form->close();
        QCOMPARE(options.GetAsInteger("RecSplitterHorizontal"), 250);
        QCOMPARE(options.GetAsInteger("RecColRecName"), 248); // the default, as it still fills
    }

    // In the frame's MDI area the panels come back as stored too, the sub-window's title bar
    // taken into account.
    void layoutAsStoredInTheFrame() {
        RecipeStore store;
        TVintraOptions& options = store.holder().VintraOptions;
        options.SetAsInteger("RecSplitterHorizontal", 220);
        QMdiArea area;
        area.resize(780, 580);
        area.show();
        auto* form = new TFormRecipes(QString(), QString());
        QMdiSubWindow* sub = area.addSubWindow(form);
        sub->show();
        QVERIFY(QTest::qWaitForWindowExposed(&area));
        QCoreApplication::processEvents();
        QCOMPARE(form->SplitterHorizontal()->sizes().value(1), 220);
        sub->resize(760, 560);
        QCoreApplication::processEvents();
        QCOMPARE(form->SplitterHorizontal()->sizes().value(1), 220);
        sub->close();
        QCOMPARE(options.GetAsInteger("RecSplitterHorizontal"), 220);
    }
};

QTEST_MAIN(TestFormRecipes)
#include "test_form_recipes.moc"
