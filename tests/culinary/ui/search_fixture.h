#pragma once
// What the two search window tests share: a small kitchen, the rows and controls a user clicks,
// and real mouse drags between widgets.

#include "culinary_window_fixture.h"

#include "components/dataset.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"

#include <QAbstractItemView>
#include <QDrag>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <algorithm>

namespace search_fixture {

// Groups: Mains with "fish" and Aardvark below it (the lower case sorts among the others),
// Baking, Soups. Types: Basics with spices below it, Seafood.
// Recipes: 1 salt+cod, 2 cod+flour, 3 flour+salt, 4 salt, 5 no lines, 6 free-form, 7 salt+pepper,
// 8 salt. nutCal 0 on 1, 4, 6; NULL on 3 and 8.
const QStringList kKitchen = {
    "INSERT INTO RGroups ( recGroupId, recGroupName, parentId ) VALUES ( 1, 'Mains', 0 ), ( 2, 'fish', 1 ), "
    "( 3, 'Baking', 0 ), ( 4, 'Aardvark', 1 ), ( 5, 'Soups', 0 )",
    "INSERT INTO ITypes ( ingredTypeId, ingredTypeName, parentId ) VALUES ( 1, 'Basics', 0 ), ( 2, "
    "'Seafood', 0 ), "
    "( 3, 'spices', 1 )",
    "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) "
    "VALUES ( 1, 'gram', 'g', 'g', 1, 1 )",
    "INSERT INTO Ingreds ( ingredId, ingredTypeId, ingredName, unitId, nutSodium, nutCal ) VALUES "
    "( 10, 3, 'Salt', 1, 38000, 0 ), ( 11, 2, 'Cod', 1, 50, 80 ), ( 12, 1, 'Flour', 1, 2, 360 ), "
    "( 13, 1, 'Butter', 1, 600, 720 ), ( 14, 3, 'Pepper', 1, 20, 250 ), ( 15, 1, 'Baker''s yeast', 1, 50, "
    "100 )",
    "INSERT INTO Recipes ( recId, recGroupId, recName, recServings, recTime, recFreeForm, nutCal ) VALUES "
    "( 1, 2, 'Salted cod', 2, 20, 0, 0 ), ( 2, 2, 'O''Brien''s fish pie', 4, 60, 0, 350 ), "
    "( 3, 3, 'Plain bread', 6, 90, 0, NULL ), ( 4, 1, 'Brine', 1, 5, 0, 0 ), ( 5, 3, 'Empty idea', 1, 1, 0, "
    "10 ), "
    "( 6, 3, 'Typed salt', 1, 1, 1, 0 ), ( 7, 5, 'Salt and pepper', 2, 2, 0, 5 ), "
    "( 8, 5, 'Salt crust', 1, 1, 0, NULL )",
    "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 1, 10, 5, 1 ), ( 1, 11, 300, 1 ), "
    "( 2, 11, 400, 1 ), ( 2, 12, 100, 1 ), ( 3, 12, 500, 1 ), ( 3, 10, 8, 1 ), ( 4, 10, 30, 1 ), "
    "( 7, 10, 1, 1 ), ( 7, 14, 1, 1 ), ( 8, 10, 2, 1 )",
    "INSERT INTO Categories ( catId, catName ) VALUES ( 1, 'Quick' ), ( 2, 'Salty' ), ( 3, 'Festive' )",
    "INSERT INTO RecCat ( recId, catId ) VALUES ( 1, 1 ), ( 1, 2 ), ( 4, 2 ), ( 5, 1 ), ( 7, 2 ), ( 2, 3 )",
};

inline QList<int> sortedIds(qm::Dataset& query, const QString& key) {
    QList<int> ids;
    if (!query.Active())
        return ids;
    const int field = query.fieldIndex(key);
    for (int row = 0; row < query.RecordCount(); ++row)
        ids << query.value(row, field).toInt();
    std::sort(ids.begin(), ids.end());
    return ids;
}

inline QList<int> sortedIds(qm::Database& db, const QString& statement) {
    QList<int> ids;
    for (const QVariantList& row : db.select(statement).rows)
        ids << row.first().toInt();
    std::sort(ids.begin(), ids.end());
    return ids;
}

inline void click(QWidget* window, const char* name) {
    QTest::mouseClick(child<QAbstractButton>(*window, name), Qt::LeftButton);
}

/// Puts the tab that holds `widget` in front.
inline void bringTab(QWidget* window, QWidget* widget) {
    auto* pages = child<QTabWidget>(*window, "PageControl");
    for (int i = 0; i < pages->count(); ++i)
        if (pages->widget(i)->isAncestorOf(widget))
            pages->setCurrentIndex(i);
}

/// The centre, in the viewport, of the grid row whose `field` holds `value`.
inline QPoint rowCenter(TVintraDBGrid* grid, const QString& field, const QVariant& value) {
    qm::Dataset* data = grid->Dataset();
    const int column = data->fieldIndex(field);
    for (int row = 0; row < data->RecordCount(); ++row)
        if (data->value(row, column) == value)
            return grid->visualRect(grid->model()->index(row, 0)).center();
    qFatal("no row with %s", qPrintable(value.toString()));
}

inline void clickRow(TVintraDBGrid* grid, const QString& field, const QVariant& value,
                     Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, rowCenter(grid, field, value));
}

/// A real drag with the mouse: pressed on `from` (a point of `source`'s viewport), moved until the
/// view starts its drag, and released over `target` inside the drag's own event loop. False when
/// no drag started.
inline bool drag(QAbstractItemView* source, const QPoint& from, QWidget* target) {
    qDeleteAll(source->findChildren<QDrag*>());
    bool dragged = false;
    bool returned = false;
    QPointer<QAbstractItemView> view(source);
    QPointer<QWidget> over(target);
    // Posted now, it runs inside the drag's loop when the last move starts a drag, and after it
    // otherwise, when it finds no drag and does nothing.
    QTimer::singleShot(0, [view, over, &dragged, &returned] {
        if (returned || !view || !over || !view->findChild<QDrag*>())
            return;
        dragged = true;
        const QPoint to = over->rect().center();
        QTest::mouseMove(over, to);
        QTest::mouseMove(over, to + QPoint(1, 1));
        QTest::mouseRelease(over, Qt::LeftButton, {}, to + QPoint(1, 1));
    });
    QTest::mousePress(source->viewport(), Qt::LeftButton, {}, from);
    QTest::mouseMove(source->viewport(), from + QPoint(2, 0));
    QTest::mouseMove(source->viewport(), from + QPoint(40, 4));
    returned = true;
    if (!dragged)
        QTest::mouseRelease(source->viewport(), Qt::LeftButton, {}, from + QPoint(40, 4));
    // The drag hands its release on after its loop: it must not end the next drag.
    QCoreApplication::processEvents();
    return dragged;
}

} // namespace search_fixture
