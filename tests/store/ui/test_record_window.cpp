// The record window on a kind of the test's own (jars on shelves), shown offscreen: the tree, the
// grid and the shared commands, against a fresh database.
#include "test_store.h"

#include "components/database.h"
#include "components/messages.h"
#include "components/sql_format.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "store/record_window_rules.h"
#include "store/ui/record_window.h"

#include <QAction>
#include <QFile>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

namespace {

/// Whether `command` failed and showed a text with all of `words` in the exception dialog.
bool ShowsException(const std::function<void()>& command, const QStringList& words) {
    QString shown;
    TRecordWindow::ShowException = [&shown](const QString& text) { shown = text; };
    const bool ran = RunGuarded(command);
    TRecordWindow::ShowException = nullptr;
    if (ran || shown.isEmpty())
        return false;
    for (const QString& word : words)
        if (!shown.contains(word))
            return false;
    return true;
}

const char* const kDictionary = R"(<dictionary language="Test">
  <entry key="JarsRootNodeName">All shelves</entry>
  <entry key="@New_shelf">New shelf</entry>
  <entry key="QuestionDeleteShelf">Delete the shelf?</entry>
  <entry key="InfoShelfContainsChildren">The shelf has shelves.</entry>
  <entry key="StatusJarsOnShelf">Jars here:</entry>
</dictionary>)";

qm::RecordKind jarKind() {
    qm::RecordKind kind = qm::MakeRecordKind("Shelves", "shelfId", "shelfName", "Jars", "jarId", "jarName",
                                             "shelfId", "Jar", "Shelf", "Jar");
    kind.groupContainsRecords = "InfoShelfContainsJars";
    kind.groupCascade = {{"DELETE FROM Jars \nWHERE shelfId = %d"}};
    kind.newGroupNameKey = "@New_shelf";
    kind.rootNodeNameKey = "JarsRootNodeName";
    kind.quickSearchSql =
        "SELECT jarId, shelfId, jarName \nFROM Jars \nWHERE jarName LIKE '@%s@' \nORDER BY shelfId, jarName";
    kind.groupOfRecord = [](int id) {
        return DataModuleMain->KADaoDatabase
            .scalar(qm::format("SELECT shelfId FROM Jars WHERE jarId = %d", {id}))
            .toInt();
    };
    kind.statusKey = "StatusJarsOnShelf";
    kind.columns = {{"jarName", "JarColJarName"}};
    return kind;
}

/// The frame as the windows see it: a status panel and a quick search box.
class FakeFrame : public TMdiFrame {
public:
    QString status = "unset";
    QString pattern;
    void SetStatusCount(const QString& text) override { status = text; }
    QString QuickSearchText() const override { return pattern; }
    void Toggle(const QString&, bool) override {}
    QObject* ChildWindow(const QString&) const override { return nullptr; }
    void CloseChild(QObject*) override {}
    void SetCommandEnabled(const QString&, bool) override {}
};

/// A concrete window as small as the pattern allows: a column and a name edit.
class TFormJars : public TRecordWindow {
public:
    TFormJars() : TRecordWindow(jarKind()) {
        setObjectName("FormJars");
        TreeView()->setObjectName("TreeViewShelves");
        Grid()->setObjectName("DBGridJars");
        RecordModel()->addColumn("jarName", "Jar");
        auto* edit = new QLineEdit(DetailPanel());
        edit->setObjectName("DBEditJarName");
        SetNameEdit(edit);
    }
};

/// Test database: shelves 1 "Pantry" with 3 "Top" under it, 2 "Cellar"; jars on them.
class JarStore : public TestStore {
public:
    JarStore() {
        exec({"CREATE TABLE Shelves ( shelfId INT NOT NULL PRIMARY KEY, shelfName TEXT, parentId INTEGER "
              "DEFAULT 0, "
              "isNodeExpanded BOOLEAN DEFAULT 0 )",
              "CREATE TABLE Jars ( jarId INT NOT NULL PRIMARY KEY, jarName TEXT NOT NULL, shelfId INTEGER )",
              "INSERT INTO Shelves ( shelfId, shelfName, parentId ) VALUES ( 1, 'Pantry', 0 ), ( 2, "
              "'cellar', 0 ), "
              "( 3, 'Top', 1 )",
              "INSERT INTO Jars ( jarId, jarName, shelfId ) VALUES ( 50, 'Honey', 1 ), ( 100001, 'Jam', 1 ), "
              "( 100002, 'Pickles', 2 ), ( 100003, 'Plum jam', 3 )"});
        TVintraOptions& options = holder().VintraOptions;
        options.Declare("ConfirmDeletionShelf", TVintraOption::Boolean, true);
        options.Declare("IRDeleteShelf", TVintraOption::Integer, 1);
        for (const char* name : {"JarSizeHeight", "JarSizeWidth", "JarPositionTop", "JarPositionLeft"})
            options.Declare(name, TVintraOption::Integer, 0);
        options.SetAsInteger("JarSizeHeight", 600);
        options.SetAsInteger("JarSizeWidth", 800);
        options.Declare("JarSplitterVertical", TVintraOption::Integer, 200);
        options.Declare("JarSplitterHorizontal", TVintraOption::Integer, 250);
        options.Declare("JarColJarName", TVintraOption::Integer, 150);
        QFile file(root() + "Test.xml");
        file.open(QIODevice::WriteOnly);
        file.write(kDictionary);
        file.close();
        holder().VintraDictionary.SetFileName(root() + "Test.xml");
    }
    int scalar(const QString& sql) { return db().scalar(sql).toInt(); }
};

QStringList names(qm::Dataset& table) {
    QStringList result;
    for (int row = 0; row < table.RecordCount(); ++row)
        result << table.value(row, table.fieldIndex("jarName")).toString();
    return result;
}

} // namespace

class TestRecordWindow : public QObject {
    Q_OBJECT

    FakeFrame m_frame;

    std::unique_ptr<TFormJars> open() {
        auto form = std::make_unique<TFormJars>();
        form->show();
        return form;
    }

private slots:
    void init() {
        m_frame = FakeFrame();
        MdiFrame = &m_frame;
    }
    void cleanup() { MdiFrame = nullptr; }

    // FormShow loads and sorts the tree under its named root and selects the root: the grid is
    // empty and read-only, Insert is refused without spending an id, the group commands are off.
    // Drag-over refuses the current group and the root; the selected rows, a locked one among
    // them, move to the drop's group and the table reopens without them.
    void rootSelectionAndDrop() {
        JarStore store;
        auto form = open();
        TVintraDBTreeView* tree = form->findChild<TVintraDBTreeView*>("TreeViewShelves");
        QCOMPARE(tree->topLevelItem(0)->text(0), QStringLiteral("All shelves"));
        QCOMPARE(tree->GetCurrentKey(), 0);
        QCOMPARE(form->Grid()->model()->rowCount(), 0);
        QVERIFY(form->RecordTable().ReadOnly());
        QCOMPARE(m_frame.status, QStringLiteral("Jars here: 0"));

        QTest::keyClick(form->Grid(), Qt::Key_Insert);
        QCOMPARE(form->RecordTable().State(), qm::dsBrowse);
        QCOMPARE(store.scalar("SELECT COUNT(*) FROM PKeys WHERE keyId = 'Jars'"), 0);
        QVERIFY(!form->ActionDeleteGroup()->isEnabled());

        // A shelf: its jars, sorted by name, writable; the commands follow.
        QVERIFY(tree->Locate(1));
        QCOMPARE(names(form->RecordTable()), (QStringList{"Honey", "Jam"}));
        QVERIFY(!form->RecordTable().ReadOnly());
        QVERIFY(form->ActionDeleteGroup()->isEnabled());

        QVERIFY(!tree->OnDragOver(form->Grid(), tree->NodeOf(1)));
        QVERIFY(!form->TreeDragOver(form->Grid(), tree->RootNode()));
        QVERIFY(!form->TreeDragOver(tree, tree->NodeOf(2)));
        QVERIFY(tree->OnDragOver(form->Grid(), tree->NodeOf(2)));
        form->Grid()->selectAll();
        form->TreeDragDrop(2);
        QCOMPARE(store.scalar("SELECT COUNT(*) FROM Jars WHERE shelfId = 2"), 3);
        QCOMPARE(form->RecordTable().RecordCount(), 0);

        // Back on the root: empty and read-only again.
        QVERIFY(tree->Locate(0));
        QCOMPARE(tree->GetChildrenIds(), QStringLiteral("0, 2, 1, 3"));
        QVERIFY(form->RecordTable().ReadOnly());
    }

    // Activation shows the shelf's count; Insert there takes the shelf's key and puts the focus
    // in the name edit; the release closes the datasets.
    void activationInsertAndRelease() {
        JarStore store;
        auto form = open();
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        QVERIFY(form->TreeView()->Locate(2));
        m_frame.status.clear();
        form->FormActivate();
        QCOMPARE(m_frame.status, QStringLiteral("Jars here: 1"));
        form->Grid()->setFocus();
        QTest::keyClick(form->Grid(), Qt::Key_Insert);
        qm::Dataset& jars = form->RecordTable();
        QCOMPARE(jars.State(), qm::dsInsert);
        QCOMPARE(jars.FieldByName("shelfId").AsInteger(), 2);
        QCOMPARE(QApplication::focusWidget(), form->findChild<QLineEdit*>("DBEditJarName"));
        jars.Cancel();
        form->Find(0);
        form->Release();
        QVERIFY(!jars.Active());
        QVERIFY(!form->GroupTable().Active());
        QVERIFY(!form->Search().QueryQuickSearch.Active());
    }

    // Rows whose parent is missing, or that hang on each other, still show once each; the
    // expanded state is written as it changes and read back by the next load. A label edited in
    // place is written by the tree; an emptied label is taken back.
    void treeLoadsExpandsAndRenames() {
        JarStore store;
        store.exec({"INSERT INTO Shelves ( shelfId, shelfName, parentId ) VALUES ( 7, 'Lost', 99 ), "
                    "( 8, 'Ring a', 9 ), ( 9, 'Ring b', 8 )"});
        auto form = open();
        TVintraDBTreeView* tree = form->TreeView();
        QCOMPARE(tree->GetCount(), 6);
        QCOMPARE(tree->NodeOf(7)->parent(), tree->RootNode());

        QVERIFY(!tree->NodeOf(1)->isExpanded());
        tree->NodeOf(1)->setExpanded(true);
        QCOMPARE(store.scalar("SELECT isNodeExpanded FROM Shelves WHERE shelfId = 1"), 1);
        tree->Load();
        QVERIFY(tree->NodeOf(1)->isExpanded());

        QVERIFY(tree->Locate(2));
        form->RenameGroup();
        auto* editor = tree->findChild<QLineEdit*>();
        QVERIFY(editor);
        editor->selectAll();
        QTest::keyClicks(editor, "Cold room");
        QTest::keyClick(editor, Qt::Key_Return);
        // The delegate commits on the next turn of the event loop.
        QTRY_COMPARE(tree->NodeOf(2)->text(0), QStringLiteral("Cold room"));
        QCOMPARE(store.db().scalar("SELECT shelfName FROM Shelves WHERE shelfId = 2").toString(),
                 QStringLiteral("Cold room"));

        tree->NodeOf(2)->setText(0, QString());
        QCOMPARE(tree->NodeOf(2)->text(0), QStringLiteral("Cold room"));
        // The root is no row: it can't be renamed.
        QVERIFY(!(tree->RootNode()->flags() & Qt::ItemIsEditable));
    }

    // A shelf with a shelf under it stays, even under the cascade rule; an empty one goes with its
    // row, and the selection moves to its parent. New groups take their ids from PKeys and their
    // name from the dictionary, under or beside the selected one.
    void deleteAndAddGroups() {
        JarStore store;
        store.holder().VintraOptions.SetAsInteger("IRDeleteShelf", 2);
        store.exec({"INSERT INTO PKeys ( keyId, keyValue ) VALUES ( 'Shelves', 10 )"});
        auto form = open();
        TVintraDBTreeView* tree = form->TreeView();
        TScriptedPresenter presenter;
        presenter.answers = {mrYes, mrYes};
        QVERIFY(tree->Locate(1));
        form->DeleteGroup();
        QCOMPARE(store.scalar("SELECT COUNT(*) FROM Shelves"), 3);
        QVERIFY(tree->Locate(3));
        form->DeleteGroup();
        QCOMPARE(presenter.texts(),
                 (QStringList{"Delete the shelf?", "The shelf has shelves.", "Delete the shelf?"}));
        QVERIFY(!tree->NodeOf(3));
        QCOMPARE(store.scalar("SELECT COUNT(*) FROM Shelves WHERE shelfId = 3"), 0);
        QCOMPARE(tree->GetCurrentKey(), 1);

        form->AddGroup(true);
        QCOMPARE(tree->currentItem()->parent(), tree->NodeOf(1));
        QCOMPARE(store.scalar("SELECT parentId FROM Shelves WHERE shelfId = 11 AND shelfName = 'New shelf'"),
                 1);
        form->AddGroup(false);
        QCOMPARE(store.scalar("SELECT parentId FROM Shelves WHERE shelfId = 12"), 1);
        // A sibling of the root is a top-level group.
        QVERIFY(tree->Locate(0));
        form->AddGroup(false);
        QCOMPARE(store.scalar("SELECT parentId FROM Shelves WHERE shelfId = 13"), 0);
    }

    // The grid's rows keep the key and the columns the grid shows; a note is read for the record
    // shown, and a rename from the grid keeps it. A value beyond its column's range (the schema's
    // 16-bit servings, a name over its width) reaches the exception dialog naming the field and
    // the range, and nothing is written.
    void gridColumnsAndRanges() {
        JarStore store;
        store.exec(
            {"DROP TABLE Jars",
             "CREATE TABLE Jars ( jarId INT NOT NULL PRIMARY KEY, jarName TEXT NOT NULL CHECK ( length( "
             "jarName ) <= 12 ), shelfId INTEGER, jarNote TEXT, jarCount SMALLINT )",
             "INSERT INTO Jars VALUES ( 100001, 'Jam', 1, 'Plums of the garden', 3 ), ( 100002, 'Honey', 1, "
             "NULL, 1 )"});
        auto form = open();
        QVERIFY(form->LocateRecord(100001));
        qm::Dataset& jars = form->RecordTable();
        QVERIFY(jars.isHeld(jars.fieldIndex("jarId")) && jars.isHeld(jars.fieldIndex("jarName")));
        QVERIFY(!jars.isHeld(jars.fieldIndex("jarNote")) && !jars.isHeld(jars.fieldIndex("jarCount")));
        QCOMPARE(jars.FieldByName("jarNote").AsString(), QStringLiteral("Plums of the garden"));
        const QModelIndex name = form->RecordModel()->index(jars.currentRow(), 0);
        QVERIFY(form->RecordModel()->setData(name, "Plum jam"));
        QCOMPARE(
            store.db().scalar("SELECT jarName || ': ' || jarNote FROM Jars WHERE jarId = 100001").toString(),
            QStringLiteral("Plum jam: Plums of the garden"));

        QVERIFY(ShowsException(
            [&] {
                jars.Edit();
                jars.FieldByName("jarCount").SetValue(40000);
            },
            {"'jarCount'", "-32768 to 32767"}));
        QVERIFY(ShowsException(
            [&] {
                jars.FieldByName("jarName").SetAsString("Plum jam of 2024");
                jars.Post();
            },
            {"'jarName'", "12"}));
        jars.Cancel();
        QCOMPARE(store.scalar("SELECT jarCount FROM Jars WHERE jarId = 100001"), 3);
        QCOMPARE(jars.FieldByName("jarName").AsString(), QStringLiteral("Plum jam"));

        // The tables of the schema carry their ranges too.
        qm::Dataset recipes;
        recipes.SetDatabase(&store.db());
        recipes.SetTableName("Recipes");
        recipes.Open();
        QVERIFY(recipes.Insert());
        recipes.FieldByName("recId").SetValue(100001);
        QVERIFY_THROWS_EXCEPTION(qm::FieldRangeError, recipes.FieldByName("recServings").SetValue(32768));
        QVERIFY_THROWS_EXCEPTION(qm::FieldRangeError, recipes.FieldByName("recPrice").SetValue(1LL << 31));
        recipes.FieldByName("recName").SetAsString(QString(129, 'x'));
        QVERIFY_THROWS_EXCEPTION(qm::FieldRangeError, recipes.Post());
        recipes.FieldByName("recName").SetAsString(QString(128, 'x'));
        recipes.FieldByName("recServings").SetValue(32767);
        QVERIFY(recipes.Post());
        QCOMPARE(store.scalar("SELECT recServings FROM Recipes WHERE recId = 100001"), 32767);
    }

    // In the MDI area the state and geometry are the sub-window's: FormShow maximises it or puts
    // it at its remembered place; FormClose stores the state, the size and the column widths.
    void geometryInTheMdiArea() {
        JarStore store;
        TVintraOptions& options = store.holder().VintraOptions;
        options.SetAsBoolean("MDIChildMaximized", true);
        options.SetAsInteger("JarColJarName", 123);
        QMdiArea area;
        area.resize(1000, 800);
        area.show();
        QMdiSubWindow* sub = area.addSubWindow(new TFormJars);
        sub->show();
        QVERIFY(sub->isMaximized());
        options.SetAsBoolean("MDIChildMaximized", false);
        QVERIFY(sub->close());
        QCOMPARE(options.GetAsBoolean("MDIChildMaximized"), true);

        options.SetAsBoolean("MDIChildMaximized", false);
        options.SetAsInteger("JarPositionLeft", 30);
        options.SetAsInteger("JarPositionTop", 20);
        auto* form = new TFormJars;
        QMdiSubWindow* second = area.addSubWindow(form);
        second->show();
        QCOMPARE(second->geometry(), QRect(30, 20, 800, 600));
        QCOMPARE(form->Grid()->ColumnWidthOf("JARNAME"), 123);
        form->Grid()->SetColumnWidthOf("jarName", 222);
        second->resize(900, 700);
        QVERIFY(second->close());
        QCOMPARE(options.GetAsInteger("JarColJarName"), 222);
        QCOMPARE(options.GetAsInteger("JarSizeWidth"), 900);
    }
};

QTEST_MAIN(TestRecordWindow)
#include "test_record_window.moc"
