#pragma once

// What the recipe window tests share: a database with groups, units, ingredients and recipes, and
// a modal runner that plays the user's part
// in the dialogs the window opens.
#include "culinary_window_fixture.h"

#include "components/database.h"
#include "components/ui/modal_runner.h"

#include <QDialog>
#include <QPushButton>
#include <QStringList>
#include <QTest>
#include <functional>

/// Groups 1 Breakfast (3 Quick under it) and 2 Dinner. Units gram (1), cup (9), piece (19).
/// Ingredients Flour 350 kcal and Cook's salt in type 1, Milk 50 kcal (240 g a cup) and Eggs (no
/// conversion) in type 2. Recipes in Breakfast: 100001 Pancakes (4 servings, no lines), 100002
/// Soup notes (free-form, 99 kcal), 100004 Batter (4 servings: 200 g flour, 2 cups milk); in
/// Dinner: 100003 Stew and 100005 Roast.
class RecipeStore : public TestStore {
public:
    RecipeStore() {
        exec(
            {"INSERT INTO RGroups ( recGroupId, recGroupName, parentId, recGroupDesc ) VALUES "
             "( 1, 'Breakfast', 0, 'Morning food' ), ( 2, 'Dinner', 0, NULL ), ( 3, 'Quick', 1, NULL )",
             "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
             "( 1, 'gram', 'g', 'g', 1, 1 ), ( 9, 'cup', 'cup', 'c', 2, NULL ), ( 19, 'piece', 'pc', 'ea', "
             "2, NULL )",
             "INSERT INTO ITypes ( ingredTypeId, ingredTypeName, parentId ) VALUES ( 1, 'Baking', 0 ), "
             "( 2, 'Dairy and eggs', 0 )",
             "INSERT INTO Ingreds ( ingredId, ingredTypeId, ingredName, unitId, nutCal ) VALUES "
             "( 1, 1, 'Flour', 1, 350 ), ( 2, 2, 'Milk', 9, 50 ), ( 3, 1, 'Cook''s salt', 1, 0 ), "
             "( 4, 2, 'Eggs', 19, 140 )",
             "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 9, 2, 240 )",
             "INSERT INTO Recipes ( recId, recGroupId, recName, recServings, recFreeForm, recIngreds, nutCal "
             ") "
             "VALUES ( 100001, 1, 'Pancakes', 4, 0, NULL, NULL ), "
             "( 100002, 1, 'Soup notes', 2, 1, '   1      cup           water\n     1/2  tsp           "
             "salt', 99 ), "
             "( 100004, 1, 'Batter', 4, 0, NULL, 0 ), ( 100003, 2, 'Stew', 6, 0, NULL, NULL ), "
             "( 100005, 2, 'Roast', 8, 0, NULL, NULL )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 100004, 1, 200, 1 ), "
             "( 100004, 2, 2, 9 )"});
    }
    int count(const QString& sql) { return db().scalar(sql).toInt(); }
    double number(const QString& sql) { return db().scalar(sql).toDouble(); }
};

/// Plays the dialogs: each one the code runs takes the next script, which fills its controls and
/// presses its buttons. A dialog without a script is cancelled.
class DialogScript {
public:
    using Step = std::function<void(QDialog&)>;
    DialogScript() {
        ModalRunner = [this](QDialog& dialog) {
            dialog.show();
            if (steps.isEmpty()) {
                dialog.reject();
            } else {
                const Step step = steps.takeFirst();
                step(dialog);
            }
            if (dialog.isVisible())
                dialog.reject();
            return dialog.result();
        };
    }
    ~DialogScript() { ModalRunner = nullptr; }
    QList<Step> steps;
};

inline void clickOk(QDialog& dialog) {
    QPushButton* ok = child<QPushButton>(dialog, "BitBtnOk");
    QVERIFY(ok && ok->isEnabled());
    QTest::mouseClick(ok, Qt::LeftButton);
}
