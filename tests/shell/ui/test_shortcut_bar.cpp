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
        // ... and shows no picture, while the two known types show different ones.
        QVERIFY(bar.outlook.Item(1, 2)->icon().isNull());
        QVERIFY(!bar.outlook.Item(1, 0)->icon().isNull());
        QVERIFY(bar.outlook.Item(1, 0)->icon().cacheKey() != bar.outlook.Item(1, 1)->icon().cacheKey());
        // In-place rename writes the name by position.
        bar.outlook.Item(1, 1)->setText(QStringLiteral("Milk and cheese"));
        QCOMPARE(store.db().scalar("SELECT shortcutName FROM Shortcuts WHERE shortcutId = 2").toString(),
                 QStringLiteral("Milk and cheese"));
        QCOMPARE(bar.outlook.Item(1, 1)->toolTip(), QStringLiteral("Milk and cheese"));
        bar.shortcuts->MoveUp(1);
        QCOMPARE(bar.captions(), (QStringList{"Milk and cheese", "Soups", "Odd"}));
        bar.shortcuts->Delete(1);
        QCOMPARE(bar.captions(), (QStringList{"Milk and cheese", "Odd"}));
    }

    // The menu comes up on the release of any button, over an item or beside the items.
    void theMenuOpensOnAnyMouseUp() {
        TestStore store;
        store.exec({"INSERT INTO Shortcuts ( shortcutId, shortcutName, shortcutType, shortcutDefinition ) "
                    "VALUES ( 1, 'Soups', 1, 'SELECT 1' )"});
        Bar bar;
        bar.outlook.resize(120, 400);
        bar.outlook.setCurrentIndex(1);
        bar.outlook.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar.outlook));
        bar.shortcuts->Load();
        QListWidget* list = bar.outlook.Page(1);
        auto* menu = bar.outlook.findChild<QMenu*>(QStringLiteral("PopupMenuOutlookBar"));
        const QPoint onItem = list->visualItemRect(list->item(0)).center();

        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, onItem);
        QTRY_VERIFY(menu->isVisible());
        QCOMPARE(visible(menu), (QStringList{"MIMoveUp", "MIMoveDown", "MIDeleteShortcut", "MISmallIcons"}));
        menu->hide();
        QTest::mouseClick(list->viewport(), Qt::RightButton, {}, QPoint(5, list->viewport()->height() - 5));
        QTRY_VERIFY(menu->isVisible());
        QCOMPARE(visible(menu), QStringList{"MISmallIcons"});
        menu->hide();
    }

    // Large items have room for two lines of caption; the rest is cut with an ellipsis and the
    // whole caption is the tool tip.
    void longCaptionsWrapToTwoLines() {
        const QFont font;
        const QFontMetrics metrics(font);
        const QString caption = QStringLiteral("Crispy baked potato wedges with rosemary and garlic");
        const int width = metrics.horizontalAdvance(QStringLiteral("Crispy baked")) + 2;
        const QStringList lines = TOutlookBar::CaptionLines(caption, font, width, 2);
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.first(), QStringLiteral("Crispy baked"));
        QVERIFY2(lines.last().endsWith(QChar(0x2026)), qPrintable(lines.last()));
        QVERIFY(lines.last().startsWith(QStringLiteral("potato")));
        for (const QString& line : lines)
            QVERIFY(metrics.horizontalAdvance(line) <= width);
        QCOMPARE(TOutlookBar::CaptionLines(QStringLiteral("Diets"), font, width, 2), QStringList{"Diets"});
        // One long word is broken where it must.
        const QStringList word =
            TOutlookBar::CaptionLines(QStringLiteral("Benutzerverwaltungsprogramm"), font,
                                      metrics.horizontalAdvance(QStringLiteral("Benutzer")), 2);
        QCOMPARE(word.size(), 2);
        QVERIFY(word.first().startsWith(QStringLiteral("Benutz")));

        TOutlookBar bar;
        bar.AddPage(QStringLiteral("Main"));
        bar.AddItem(0, caption, QIcon());
        bar.resize(116, 300);
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
        QListWidget* list = bar.Page(0);
        QVERIFY(list->visualItemRect(list->item(0)).height() >= 32 + 2 * metrics.lineSpacing());
        QCOMPARE(list->item(0)->toolTip(), caption);
    }
};

QTEST_MAIN(TestShortcutBar)
#include "test_shortcut_bar.moc"
