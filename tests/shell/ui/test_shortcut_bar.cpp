// Page 1 of the bar over a real Shortcuts table.
#include "test_store.h"

#include "shell/ui/outlook_bar.h"
#include "shell/ui/shortcut_bar.h"

#include <QListWidget>
#include <QMenu>
#include <QTest>

class TestShortcutBar : public QObject {
    Q_OBJECT

    struct Bar {
        TOutlookBar outlook;
        TShortcutBar* shortcuts;
        QStringList opened;
        Bar() {
            outlook.setObjectName(QStringLiteral("OutlookBarMain"));
            for (const char* page : {"Main", "Shortcuts", "Users"})
                outlook.AddPage(QLatin1String(page));
            outlook.AddItem(0, QStringLiteral("Recipes"), QIcon());
            shortcuts = new TShortcutBar(&outlook, &outlook);
            shortcuts->OpenRoute = [this](const QString& route, const QString& definition,
                                          const QString& name) {
                opened << route + '|' + definition + '|' + name;
            };
        }
        QStringList captions() const {
            QStringList list;
            for (int i = 0; i < outlook.ItemCount(1); ++i)
                list << outlook.ItemCaption(1, i);
            return list;
        }
    };

    static QStringList visible(QMenu* menu) {
        QStringList names;
        for (QAction* action : menu->actions())
            if (action->isVisible() && !action->isSeparator())
                names << action->objectName();
        return names;
    }

private slots:
    // Without shortcuts the menu holds the icon size only, which is stored at once.
    void emptyTableShowsOnlyTheIconSize() {
        TestStore store;
        Bar bar;
        bar.shortcuts->Load();
        QCOMPARE(bar.outlook.ItemCount(1), 0);
        // An item of another page is no shortcut either.
        QCOMPARE(visible(bar.shortcuts->ContextMenu(0, 0)), QStringList{"MISmallIcons"});
        bar.shortcuts->ContextMenu(1, -1)->findChild<QAction*>("MISmallIcons")->trigger();
        QVERIFY(bar.outlook.SmallIcons());
        TVintraOptions reread;
        reread.Declare(QStringLiteral("OutlookBarSmallIcons"), 1, false);
        reread.setFileName(store.holder().VintraOptions.fileName());
        reread.Load();
        QVERIFY(reread.GetAsBoolean(QStringLiteral("OutlookBarSmallIcons")));
        QCOMPARE(visible(bar.shortcuts->ContextMenu(1, -1)), QStringList{"MILargeIcons"});
    }

    void openRenameMoveDelete() {
        TestStore store;
        store.exec(
            {"INSERT INTO Shortcuts ( shortcutId, shortcutName, shortcutType, shortcutDefinition ) VALUES "
             "( 1, 'Soups', 1, 'SELECT 1' ), ( 2, 'Dairy', 2, 'SELECT 2' ), ( 3, 'Odd', 3, 'SELECT 3' )"});
        Bar bar;
        bar.shortcuts->Load();
        QCOMPARE(bar.captions(), (QStringList{"Soups", "Dairy", "Odd"}));
        QCOMPARE(visible(bar.shortcuts->ContextMenu(1, 1)),
                 (QStringList{"MIMoveUp", "MIMoveDown", "MIDeleteShortcut", "MISmallIcons"}));
        bar.shortcuts->ItemClick(0);
        bar.shortcuts->ItemClick(1);
        bar.shortcuts->ItemClick(2); // a third type opens nothing
        QCOMPARE(bar.opened, (QStringList{"Recipes|SELECT 1|Soups", "Ingredients|SELECT 2|Dairy"}));
        // In-place rename writes the name by position.
        bar.outlook.Item(1, 1)->setText(QStringLiteral("Milk and cheese"));
        QCOMPARE(store.db().scalar("SELECT shortcutName FROM Shortcuts WHERE shortcutId = 2").toString(),
                 QStringLiteral("Milk and cheese"));
        bar.shortcuts->MoveUp(1);
        QCOMPARE(bar.captions(), (QStringList{"Milk and cheese", "Soups", "Odd"}));
        bar.shortcuts->Delete(1);
        QCOMPARE(bar.captions(), (QStringList{"Milk and cheese", "Odd"}));
    }
};

QTEST_MAIN(TestShortcutBar)
#include "test_shortcut_bar.moc"
