#pragma once
// The recipe search window shown over the small kitchen, with the moves a user makes in it.

#include "search_fixture.h"

#include "components/messages.h"
#include "components/sql_format.h"
#include "culinary/ui/form_search_recipes.h"

#include <QCheckBox>
#include <QListWidget>

namespace search_fixture {

/// The kitchen, a presenter that records messages, and the window shown over them.
struct Kitchen {
    TestStore store;
    TScriptedPresenter presenter;
    TFormSearchRecipes form;
    bool show() {
        store.exec(kKitchen);
        form.show();
        return QTest::qWaitForWindowExposed(&form);
    }
    QList<int> find() {
        click(&form, "BitBtnFind");
        return sortedIds(form.QuerySearch(), "recId");
    }
    TVintraDBTreeView* groups() { return child<TVintraDBTreeView>(form, "TreeViewRecipeGroups"); }
    TVintraDBTreeView* types() { return child<TVintraDBTreeView>(form, "TreeViewIngredientTypes"); }
    TVintraDBGrid* categories() { return child<TVintraDBGrid>(form, "DBGridAvailableCategories"); }
    TVintraDBGrid* ingredients() { return child<TVintraDBGrid>(form, "DBGridIngredientsAvailable"); }
    TVintraDBGrid* results() { return child<TVintraDBGrid>(form, "DBGridResults"); }
    QListWidget* box(const char* name) { return child<QListWidget>(form, name); }
    QStringList names(const char* box) {
        QStringList names;
        for (int i = 0; i < this->box(box)->count(); ++i)
            names << this->box(box)->item(i)->text();
        return names;
    }
    /// Chooses a category in the grid and presses an add button.
    void addCategory(int catId, const char* button) {
        bringTab(&form, categories());
        clickRow(categories(), "catId", catId);
        click(&form, button);
    }
    /// Opens the ingredient's type in the tree, chooses it in the grid and presses an add button.
    void addIngredient(int ingredId, const char* button) {
        bringTab(&form, ingredients());
        types()->Locate(
            store.db()
                .scalar(qm::format("SELECT ingredTypeId FROM Ingreds WHERE ingredId = %d", {ingredId}))
                .toInt());
        clickRow(ingredients(), "ingredId", ingredId);
        click(&form, button);
    }
    void type(const char* edit, const QString& text) {
        auto* line = child<QLineEdit>(form, edit);
        bringTab(&form, line);
        line->clear();
        QTest::keyClicks(line, text);
    }
    void check(const char* name, bool on) {
        auto* box = child<QCheckBox>(form, name);
        bringTab(&form, box);
        if (box->isChecked() != on)
            QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(4, box->height() / 2));
    }
};

} // namespace search_fixture
