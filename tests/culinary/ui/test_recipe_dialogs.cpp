// The recipe editing dialogs and the category dialogs, each shown on its own over a fresh
// database, as their callers run them.
#include "recipe_fixture.h"

#include "components/dataset_model.h"
#include "components/messages.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "components/ui/vintra_rich_edit.h"
#include "culinary/ui/form_add_or_edit_recipe.h"
#include "culinary/ui/form_categories.h"
#include "culinary/ui/form_recipe_add_or_edit_ingredient.h"
#include "culinary/ui/form_recipe_add_or_edit_ingredient_ff.h"
#include "culinary/ui/form_recipe_categories.h"
#include "culinary/ui/form_rich_text_db_editor.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextList>
#include <QTimer>

namespace {

/// The cell editor open in a grid; closed ones wait hidden for their deletion.
QLineEdit* openEditor(QAbstractItemView* grid) {
    for (QLineEdit* edit : grid->viewport()->findChildren<QLineEdit*>())
        if (edit->isVisible())
            return edit;
    return nullptr;
}

QStringList items(QComboBox* box) {
    QStringList list;
    for (int i = 0; i < box->count(); ++i)
        list << box->itemText(i);
    return list;
}

} // namespace

class TestRecipeDialogs : public QObject {
    Q_OBJECT

private slots:
    // The search box waits for its timer; an apostrophe in it breaks no statement and finds the
    // ingredient. The tree narrows the list by type.
    void structuredLineSearch() {
        RecipeStore store;
        TFormRecipeAddOrEditIngredient dialog;
        dialog.recId = 100001;
        dialog.show();
        auto* search = child<QLineEdit>(dialog, "MemoSearch");
        QTest::keyClicks(search, "k's");
        QCOMPARE(dialog.QueryIngredients.RecordCount(), 4);
        dialog.TimerSearchTimer();
        QCOMPARE(names(dialog.QueryIngredients, "ingredName"), QStringList{"Cook's salt"});

        auto* tree = child<TVintraDBTreeView>(dialog, "TreeViewIngredientTypes");
        QVERIFY(tree->Locate(2));
        QCOMPARE(names(dialog.QueryIngredients, "ingredName"), (QStringList{"Eggs", "Milk"}));
        search->setText("flour");
        dialog.TimerSearchTimer();
        QCOMPARE(dialog.QueryIngredients.RecordCount(), 0);
        QVERIFY(!child<QPushButton>(dialog, "BitBtnOk")->isEnabled());
    }

    // Units offered: every unit of fixed weight, and those the ingredient has a conversion for.
    // The OK button waits for an ingredient, an amount and a unit; text that isn't a number is 0.
    // Editing a line whose unit lost its conversion gives the first unit of the list.
    void unitsOfferedAndOk() {
        RecipeStore store;
        TFormRecipeAddOrEditIngredient dialog;
        dialog.show();
        auto* units = child<QComboBox>(dialog, "ComboBoxUnits");
        auto* search = child<QLineEdit>(dialog, "MemoSearch");
        search->setText("Eggs");
        dialog.TimerSearchTimer();
        QCOMPARE(items(units), QStringList{"gram"});
        search->setText("Milk");
        dialog.TimerSearchTimer();
        // The gram taken for the eggs stays chosen, though the list now starts with the cup.
        QCOMPARE(items(units), (QStringList{"cup", "gram"}));
        QCOMPARE(units->currentText(), QStringLiteral("gram"));
        QCOMPARE(dialog.unitId, 1);
        units->setCurrentIndex(0);
        emit units->activated(0);
        QCOMPARE(dialog.unitId, 9);

        auto* amount = child<QLineEdit>(dialog, "EditAmount");
        auto* ok = child<QPushButton>(dialog, "BitBtnOk");
        amount->clear();
        QVERIFY(!ok->isEnabled());
        amount->setText("a lot");
        QVERIFY(ok->isEnabled());
        QTest::mouseClick(ok, Qt::LeftButton);
        QCOMPARE(dialog.ingredId, 2);
        QCOMPARE(dialog.amount, 0.0);

        TFormRecipeAddOrEditIngredient edit;
        edit.recId = 100004;
        edit.ingredId = 4;
        edit.ingredTypeId = 2;
        edit.amount = 2.5;
        edit.unitId = 9;
        edit.show();
        clickOk(edit);
        QCOMPARE(edit.ingredId, 4);
        QCOMPARE(edit.unitId, 1);
        QCOMPARE(edit.amount, 2.5);
    }

    // The free-form line: the unit box takes twelve characters at most, the name 254, the amount
    // four digits; OK waits for a name.
    void freeFormLineLimits() {
        RecipeStore store;
        TFormRecipeAddOrEditIngredientFF dialog;
        dialog.show();
        auto* unit = child<QComboBox>(dialog, "ComboBoxUnit");
        QTest::keyClicks(unit->lineEdit(), "thirteenchars");
        auto* fraction = child<QComboBox>(dialog, "ComboBoxAmount");
        QTest::keyClicks(child<QLineEdit>(dialog, "MaskEditAmount"), "12x345");
        QVERIFY(!child<QPushButton>(dialog, "BitBtnOk")->isEnabled());
        child<QLineEdit>(dialog, "EditIngredient")->setText(QString(300, QLatin1Char('n')));
        fraction->setCurrentIndex(fraction->findText("2/3"));
        clickOk(dialog);
        QCOMPARE(dialog.ingredient,
                 QStringLiteral("1234 2/3  thirteenchar  ") + QString(254, QLatin1Char('n')));
    }

    // A line the dialog didn't compose (imported, its name past 254 characters) comes back as it
    // was when OK is pressed without a change; a change composes it anew, the long name whole.
    void freeFormImportedLineKeptUntilChanged() {
        RecipeStore store;
        const QString name = QString(280, QLatin1Char('n'));
        const QString imported = QStringLiteral("  1  1/2 cups        ") + name;
        TFormRecipeAddOrEditIngredientFF dialog;
        dialog.ingredient = imported;
        dialog.show();
        QCOMPARE(child<QLineEdit>(dialog, "EditIngredient")->text().size(), 280 - 3);
        clickOk(dialog);
        QCOMPARE(dialog.ingredient, imported);

        TFormRecipeAddOrEditIngredientFF changed;
        changed.ingredient = imported;
        changed.show();
        auto* unit = child<QComboBox>(changed, "ComboBoxUnit");
        unit->setEditText(QStringLiteral("cup"));
        clickOk(changed);
        QCOMPARE(changed.ingredient, QStringLiteral("  1  1/2  cup           ") + name.mid(3));
    }

    // Choosing a recipe (mode 3, the one every caller runs): the group's recipes that the menu
    // doesn't hold, and the current row's recipe on OK.
    void recipeChoice() {
        RecipeStore store;
        store.exec({"INSERT INTO RecMen ( menuId, recId, servings ) VALUES ( 7, 100001, 2 )"});
        TFormAddOrEditRecipe dialog;
        dialog.menuId = 7;
        dialog.show();
        auto* tree = child<TVintraDBTreeView>(dialog, "TreeViewRecipeGroups");
        QVERIFY(!child<QPushButton>(dialog, "BitBtnOk")->isEnabled());
        QVERIFY(tree->Locate(1));
        QCOMPARE(names(dialog.QueryRecipes, "recName"), (QStringList{"Batter", "Soup notes"}));
        QVERIFY(dialog.QueryRecipes.Locate("recId", 100002));
        clickOk(dialog);
        QCOMPARE(dialog.recId, 100002);
        QCOMPARE(dialog.recName, QStringLiteral("Soup notes"));
    }

    // The rich-text editor writes into the bound field, formatting included; the post saves it.
    void richTextEditorBoundToField() {
        RecipeStore store;
        qm::Dataset table;
        table.SetDatabase(&store.db());
        table.SetTableName("Recipes");
        table.Open();
        QVERIFY(table.Locate("recId", 100004));
        TFormRichTextDBEditor editor;
        editor.SetDataSource(&table);
        editor.SetDataField("recPrep");
        editor.show();
        QTextEdit* text = editor.Editor()->Editor();
        QTest::keyClicks(text, "Whisk well");
        text->selectAll();
        editor.Editor()->ToggleBullets();
        clickOk(editor);
        QVERIFY(table.Post());
        const QString stored =
            store.db().scalar("SELECT recPrep FROM Recipes WHERE recId = 100004").toString();
        QVERIFY(stored.contains("Whisk well"));
        QVERIFY(stored.contains("<ul"));

        // Shown again, the document comes back as it was formatted.
        TVintraRichEdit again;
        again.SetDataSource(&table);
        again.SetDataField("recPrep");
        QCOMPARE(again.Editor()->toPlainText(), QStringLiteral("Whisk well"));
        QVERIFY(again.Editor()->document()->begin().textList());
    }

    // Categories: new ones are numbered by the counter and need a name; one in use goes only after
    // the cascade question, and out of every recipe; no option is asked.
    void categoryList() {
        RecipeStore store;
        store.exec({"INSERT INTO Categories ( catId, catName ) VALUES ( 1, 'Quick' ), ( 2, 'Vegan' )",
                    "INSERT INTO RecCat ( recId, catId ) VALUES ( 100001, 1 ), ( 100004, 1 )",
                    "INSERT INTO PKeys ( keyId, keyValue ) VALUES ( 'Categories', 40 )"});
        store.holder().VintraOptions.SetAsBoolean("ConfirmDeletionRecipe", false);
        TScriptedPresenter presenter;
        TFormCategories form;
        form.show();

        // A new name is typed into the grid's cell, as a user does; Enter posts it.
        form.InsertCategory();
        QCOMPARE(form.TableCategories.FieldByName("catId").AsInteger(), 41);
        auto* cell = form.Grid()->findChild<QLineEdit*>();
        QVERIFY(cell);
        QTest::keyClick(cell, Qt::Key_Return);
        // The delegate commits on the next turn of the loop and deletes its editor later still.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(presenter.texts(TMessagePresenter::Error),
                 QStringList{GetText("ErrorEmptyField").replace("%s", "category name")});
        form.Grid()->edit(form.Grid()->currentIndex());
        cell = form.Grid()->findChild<QLineEdit*>();
        QVERIFY(cell);
        QTest::keyClicks(cell, "Baking");
        QTest::keyClick(cell, Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(store.count("SELECT catId FROM Categories WHERE catName = 'Baking'"), 41);

        presenter.clear();
        presenter.answers = {mrYes};
        QVERIFY(form.TableCategories.Locate("catId", 1));
        form.DeleteCategory();
        QCOMPARE(presenter.texts(), QStringList{GetText("QuestionDeleteCategoryCascade")});
        QCOMPARE(store.count("SELECT COUNT(*) FROM RecCat"), 0);

        presenter.clear();
        presenter.answers = {mrYes};
        QVERIFY(form.TableCategories.Locate("catId", 2));
        form.DeleteCategory();
        QCOMPARE(presenter.texts(), QStringList{GetText("QuestionDeleteCategory")});
        QCOMPARE(names(form.TableCategories, "catName"), QStringList{"Baking"});
    }

    // A name typed into a new row's cell and saved with the navigator is the record's name: no
    // false message, and the row takes its place in name order. Only an empty name is refused.
    void categoryTypedIntoTheCellIsSaved() {
        RecipeStore store;
        store.exec({"INSERT INTO Categories ( catId, catName ) VALUES ( 1, 'Quick' ), ( 2, 'Vegan' )",
                    "INSERT INTO PKeys ( keyId, keyValue ) VALUES ( 'Categories', 40 )"});
        TScriptedPresenter presenter;
        TFormCategories form;
        form.show();
        QVERIFY(form.TableCategories.Locate("catId", 2));
        auto* save = form.findChild<QAction*>("ActionPost");

        form.InsertCategory();
        QLineEdit* cell = openEditor(form.Grid());
        QVERIFY(cell);
        QTest::keyClicks(cell, "Baking");
        QVERIFY(save->isEnabled());
        save->trigger();
        QCOMPARE(presenter.texts(), QStringList());
        QCOMPARE(store.count("SELECT catId FROM Categories WHERE catName = 'Baking'"), 41);
        QCOMPARE(form.TableCategories.State(), qm::dsBrowse);
        QCOMPARE(names(form.TableCategories, "catName"), (QStringList{"Baking", "Quick", "Vegan"}));
        QCOMPARE(form.TableCategories.FieldByName("catId").AsInteger(), 41);
        QCOMPARE(form.Grid()->currentIndex().row(), 0);

        // Typing over a name puts the row into edit state at once; Escape in the cell drops it.
        QVERIFY(form.TableCategories.Locate("catId", 1));
        form.Grid()->edit(form.Grid()->currentIndex());
        cell = openEditor(form.Grid());
        QVERIFY(cell);
        QTest::keyClicks(cell, "er");
        QCOMPARE(form.TableCategories.State(), qm::dsEdit);
        QVERIFY(save->isEnabled());
        QTest::keyClick(cell, Qt::Key_Escape);
        QCOMPARE(form.TableCategories.State(), qm::dsBrowse);
        QCOMPARE(store.db().scalar("SELECT catName FROM Categories WHERE catId = 1").toString(), "Quick");

        // A new row left empty is refused once, with the one message.
        form.InsertCategory();
        save->trigger();
        QCOMPARE(presenter.texts(TMessagePresenter::Error),
                 QStringList{GetText("ErrorEmptyField").replace("%s", "category name")});
        QCOMPARE(form.TableCategories.State(), qm::dsInsert);
    }

    // A dialog opens over the middle of the main window, also when another dialog opened it.
    void dialogsOpenCentredOnTheMainWindow() {
        RecipeStore store;
        QMainWindow main;
        main.setGeometry(60, 30, 700, 540); // inside the offscreen screen of 800 by 600
        main.show();
        QVERIFY(QTest::qWaitForWindowExposed(&main));
        QDialog opener(&main);
        opener.setGeometry(0, 0, 200, 150);
        opener.show();
        TFormCategories dialog(&opener);
        QPoint offset(-1000, -1000);
        QTimer::singleShot(0, &dialog, [&] {
            offset = dialog.frameGeometry().center() - main.frameGeometry().center();
            dialog.reject();
        });
        ExecModal(dialog);
        // Placed before its frame is known: off by the frame's width at most.
        QVERIFY2(std::abs(offset.x()) <= 4 && std::abs(offset.y()) <= 4,
                 qPrintable(QStringLiteral("%1 %2").arg(offset.x()).arg(offset.y())));
    }

    // Assign and remove move a category across; the last one assigned turns the button off; the
    // list edited from here shows its new names at once.
    void recipeCategories() {
        RecipeStore store;
        store.exec({"INSERT INTO Categories ( catId, catName ) VALUES ( 1, 'Quick' ), ( 2, 'Vegan' )",
                    "INSERT INTO RecCat ( recId, catId ) VALUES ( 100004, 2 )"});
        TFormRecipeCategories dialog;
        dialog.recId = 100001;
        dialog.show();
        auto* assign = child<QPushButton>(dialog, "SpeedButtonAssign");
        auto* remove = child<QPushButton>(dialog, "SpeedButtonRemove");
        QVERIFY(dialog.QueryAvailableCategories.Locate("catId", 2));
        QTest::mouseClick(assign, Qt::LeftButton);
        QTest::mouseClick(assign, Qt::LeftButton);
        QCOMPARE(names(dialog.QueryAssignedCategories, "catName"), (QStringList{"Quick", "Vegan"}));
        QVERIFY(!assign->isEnabled());
        QCOMPARE(store.count("SELECT COUNT(*) FROM RecCat WHERE recId = 100001"), 2);

        QVERIFY(dialog.QueryAssignedCategories.Locate("catId", 1));
        QTest::mouseClick(remove, Qt::LeftButton);
        QCOMPARE(store.count("SELECT COUNT(*) FROM RecCat WHERE recId = 100001 AND catId = 1"), 0);
        QCOMPARE(store.count("SELECT COUNT(*) FROM RecCat WHERE recId = 100004"), 1);

        DialogScript script;
        script.steps = {[](QDialog& list) {
            auto& form = static_cast<TFormCategories&>(list);
            QVERIFY(form.TableCategories.Locate("catId", 1));
            form.TableCategories.Edit();
            form.TableCategories.FieldByName("catName").SetValue("Fast");
            clickOk(form);
        }};
        QTest::mouseClick(child<QPushButton>(dialog, "BitBtnCategories"), Qt::LeftButton);
        QCOMPARE(names(dialog.QueryAvailableCategories, "catName"), QStringList{"Fast"});
    }
};

QTEST_MAIN(TestRecipeDialogs)
#include "test_recipe_dialogs.moc"
