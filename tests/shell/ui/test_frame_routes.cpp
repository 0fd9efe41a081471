// The frame's window routes and its commands to the active child, driven with test windows.
#include "components/database.h"
#include "components/dataset.h"
#include "components/dataset_provider.h"
#include "components/messages.h"
#include "frame_fixture.h"
#include "shell/ui/mdi_client.h"
#include "shell/ui/outlook_bar.h"
#include "store/data_module_main.h"

#include <QAction>
#include <QClipboard>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

/// What the test windows saw, by window title.
struct Journal {
    QStringList events;
    int created = 0;
    QList<TChildRequest> requests;
};

/// A record window as the frame sees one: commands, activation, release, and a close handler
/// that stores its geometry under the Unit prefix.
class TTestChild : public QWidget, public TChildCommands {
    Q_OBJECT
public:
    TTestChild(Journal& journal, const QString& title, int tag, bool find)
        : m_journal(journal), m_find(find) {
        Tag = tag;
        setWindowTitle(title);
        ++journal.created;
        auto* layout = new QVBoxLayout(this);
        edit = new QLineEdit(QStringLiteral("some words"), this);
        layout->addWidget(edit);
    }
    bool SupportsFind() const override { return m_find; }
    void Print() override { m_journal.events << windowTitle() + QStringLiteral(" print"); }
    void Find(int next) override {
        m_journal.events
            << QStringLiteral("%1 find %2 %3").arg(windowTitle()).arg(next).arg(MdiFrame->QuickSearchText());
    }
    void FormActivate() override {
        MdiFrame->SetStatusCount(windowTitle() + QStringLiteral(": 3"));
        MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonRecalculate"), true);
    }
    void FormDeactivate() override {
        m_journal.events << windowTitle() + QStringLiteral(" deactivate");
        MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonRecalculate"), false);
    }
    void Release() override { m_journal.events << windowTitle() + QStringLiteral(" release"); }

    QLineEdit* edit = nullptr;

public slots:
    void MIRecalculateClick() { m_journal.events << windowTitle() + QStringLiteral(" recalculate"); }

protected:
    void closeEvent(QCloseEvent* event) override {
        TVintraOptions& options = FormResourceHolder->VintraOptions;
        options.SetAsInteger(QStringLiteral("UnitSizeWidth"), width());
        options.Store();
        m_journal.events << windowTitle() + QStringLiteral(" close");
        event->accept();
    }

private:
    Journal& m_journal;
    bool m_find;
};

/// A child that puts its frame at a stored place when it is shown, as record windows do.
class TPlacedChild : public TTestChild {
public:
    TPlacedChild(Journal& journal, const QString& title, const QRect& stored, const QSize& minimum)
        : TTestChild(journal, title, 1, true), m_stored(stored), m_minimum(minimum) {}

protected:
    void showEvent(QShowEvent* event) override {
        TTestChild::showEvent(event);
        if (parentWidget()) {
            parentWidget()->setMinimumSize(m_minimum);
            parentWidget()->setGeometry(m_stored);
        }
    }

private:
    QRect m_stored;
    QSize m_minimum;
};

/// A grid that tells the frame which dataset it shows.
class TTestGrid : public QTableView, public TDatasetProvider {
public:
    using QTableView::QTableView;
    qm::Dataset* ProvidedDataset() const override { return dataset; }
    qm::Dataset* dataset = nullptr;
};

TChildFactory factory(Journal& journal, const QString& title, int tag = 1, bool find = true) {
    return [&journal, title, tag, find](const TChildRequest& request) {
        journal.requests << request;
        return new TTestChild(journal, title, tag, find);
    };
}

QAction* action(TFormMain& form, const char* name) {
    return form.findChild<QAction*>(QLatin1String(name));
}

bool enabled(TFormMain& form, const char* name) {
    return action(form, name)->isEnabled();
}

QStringList entryTexts(const TFormMain& form) {
    QStringList texts;
    for (const QAction* entry : form.WindowMenuEntries())
        texts << entry->text() + (entry->isChecked() ? QStringLiteral("*") : QString());
    return texts;
}

} // namespace

class TestFrameRoutes : public QObject {
    Q_OBJECT
    std::unique_ptr<FrameFixture> m_fixture;
    Journal m_journal;
    Journal m_diary; ///< the diary's, beside the diets'

    TFormMain& frame() { return *m_fixture->form; }

private slots:
    void init() {
        m_journal = Journal();
        m_diary = Journal();
        m_fixture = std::make_unique<FrameFixture>();
        m_fixture->create();
    }
    void cleanup() { m_fixture.reset(); }

    void commandsStayDisabledUntilTheirWindowExists() {
        TFormMain& form = frame();
        QVERIFY(!form.OutlookBar()->ItemEnabled(0, 4));
        QVERIFY(!enabled(form, "MIRepair"));
        form.RegisterChild(QStringLiteral("Units"), factory(m_journal, QStringLiteral("Units")));
        QVERIFY(form.OutlookBar()->ItemEnabled(0, 4));
        int repaired = 0;
        form.RegisterCommand(QStringLiteral("MIRepair"), [&] { ++repaired; });
        action(form, "MIRepair")->trigger();
        QCOMPARE(repaired, 1);

        // The user buttons need their window and an active user; their menu items only the window.
        QVERIFY(!enabled(form, "ToolButtonDiets"));
        form.RegisterChild(QStringLiteral("Diets"), factory(m_journal, QStringLiteral("Diets")));
        QVERIFY(enabled(form, "ToolButtonDiets")); // ActiveUserId is 1 by default
        FormResourceHolder->VintraOptions.SetAsInteger(QStringLiteral("ActiveUserId"), 0);
        form.UpdateUserButtons();
        QVERIFY(!enabled(form, "ToolButtonDiets"));
        QVERIFY(enabled(form, "MIDiets"));
    }

    void theToolButtonIsARealToggleAndOnlyCloseStoresGeometry() {
        TFormMain& form = frame();
        form.RegisterChild(QStringLiteral("Units"), factory(m_journal, QStringLiteral("Units")));
        QAction* button = action(form, "ToolButtonUnits");

        button->trigger(); // down: open
        QPointer<QWidget> first = qobject_cast<QWidget*>(form.ChildWindow(QStringLiteral("Units")));
        QVERIFY(first);

        button->trigger(); // up: the window goes without its close handler
        flushDeletes();
        QVERIFY(!first);
        QVERIFY(!m_fixture->stored(QStringLiteral("UnitSizeWidth")).isValid());

        action(form, "MIUnits")->trigger(); // the menu only opens
        action(form, "MIUnits")->trigger();
        QCOMPARE(m_journal.created, 2);
        QPointer<QWidget> second = qobject_cast<QWidget*>(form.ChildWindow(QStringLiteral("Units")));
        QVERIFY(button->isChecked());
        const int width = second->width();
        form.CloseChild(second); // as the close box: FormClose, then the toggle
        flushDeletes();
        QVERIFY(!second);
        QVERIFY(!button->isChecked());
        QCOMPARE(m_fixture->stored(QStringLiteral("UnitSizeWidth")).toInt(), width);
    }

    // The Window menu follows the children and their captions; activation moves the status count
    // and the window's own buttons; the frame's close closes the children last to first.
    void windowMenuActivationAndClosingOrder() {
        TFormMain& form = frame();
        for (const QString& route :
             {QStringLiteral("Recipes"), QStringLiteral("Menus"), QStringLiteral("Calendar")})
            form.RegisterChild(route, factory(m_journal, route));
        auto* count = form.findChild<QLabel*>(QStringLiteral("StatusBarPanel1"));
        form.OutlookBar()->ClickItem(0, 0);
        form.OutlookBar()->ClickItem(0, 2);
        QCOMPARE(entryTexts(form), QStringList({"Recipes", "Menus*"}));
        QCOMPARE(count->text(), QStringLiteral("Menus: 3"));
        QWidget* recipes = qobject_cast<QWidget*>(form.ChildWindow(QStringLiteral("Recipes")));
        QWidget* menus = qobject_cast<QWidget*>(form.ChildWindow(QStringLiteral("Menus")));

        form.WindowMenuItemsClick(form.WindowMenuEntries().at(0));
        QCOMPARE(form.ActiveChild(), recipes);
        QVERIFY(m_journal.events.contains("Menus deactivate"));
        QCOMPARE(count->text(), QStringLiteral("Recipes: 3"));
        action(form, "ToolButtonRecalculate")->trigger();
        QCOMPARE(m_journal.events.filter("recalculate"), QStringList{"Recipes recalculate"});
        // The entry follows the window's caption, as translation changes it.
        recipes->setWindowTitle(QStringLiteral("Rezepte"));
        QCOMPARE(entryTexts(form), QStringList({"Rezepte*", "Menus"}));

        form.Toggle(QStringLiteral("Recipes"), false);
        QCOMPARE(entryTexts(form).size(), 1);
        QCOMPARE(form.ActiveChild(), menus);
        QCOMPARE(m_journal.events.filter("Rezepte").last(), QStringLiteral("Rezepte release"));

        form.Toggle(QStringLiteral("Calendar"), true);
        TScriptedPresenter presenter;
        presenter.answers << mrYes;
        QVERIFY(form.close());
        QCOMPARE(m_journal.events.filter(" close"), QStringList({"Calendar close", "Menus close"}));
        QVERIFY(!action(form, "ToolButtonMenus")->isChecked());
        QCOMPARE(count->text(), QString());
    }

    void dietsDecideByTheDiaryPointer() {
        TFormMain& form = frame();
        form.RegisterChild(QStringLiteral("UserDiary"), factory(m_diary, QStringLiteral("Diary")));
        form.RegisterChild(QStringLiteral("Diets"), factory(m_journal, QStringLiteral("Diets")));

        // Diary closed: every opening makes a new Diets window.
        form.Toggle(QStringLiteral("Diets"), true);
        QWidget* first = qobject_cast<QWidget*>(form.ChildWindow(QStringLiteral("Diets")));
        form.Toggle(QStringLiteral("Diets"), true);
        QWidget* second = qobject_cast<QWidget*>(form.ChildWindow(QStringLiteral("Diets")));
        QVERIFY(first != second);

        // Diary open: no Diets window is made; the open one is shown.
        form.Toggle(QStringLiteral("UserDiary"), true);
        form.Toggle(QStringLiteral("Diets"), true);
        QCOMPARE(m_journal.created, 2);
        QCOMPARE(form.ActiveChild(), second);

        // Diary open and no Diets window: the empty pointer is shown, which fails.
        form.Toggle(QStringLiteral("Diets"), false);
        QCOMPARE(form.ChildWindow(QStringLiteral("Diets")), nullptr);
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, form.Toggle(QStringLiteral("Diets"), true));
    }

    void aShortcutReplacesTheOpenWindowAndLeavesItsEntry() {
        TFormMain& form = frame();
        form.RegisterChild(QStringLiteral("Recipes"), factory(m_journal, QStringLiteral("Recipes")));

        form.OpenShortcut(QStringLiteral("Recipes"), QStringLiteral("SELECT 1"), QStringLiteral("Soups"));
        QPointer<QWidget> first = qobject_cast<QWidget*>(form.ChildWindow(QStringLiteral("Recipes")));
        QCOMPARE(m_journal.requests.at(0).Definition, QStringLiteral("SELECT 1"));
        QCOMPARE(m_journal.requests.at(0).Name, QStringLiteral("Soups"));

        form.OpenShortcut(QStringLiteral("Recipes"), QStringLiteral("SELECT 2"), QStringLiteral("Cakes"));
        flushDeletes();
        QVERIFY(!first);
        QVERIFY(!m_journal.events.contains("Recipes release")); // destroyed, not released
        QCOMPARE(entryTexts(form), QStringList({"Recipes", "Recipes*"}));
        // The entry left behind has no window any more; clicking it shows nothing.
        form.WindowMenuItemsClick(form.WindowMenuEntries().at(0));
        QCOMPARE(entryTexts(form), QStringList({"Recipes*", "Recipes"}));

        // Plain recipes make way the other way round too; a plain window is then only shown.
        form.Toggle(QStringLiteral("Recipes"), true);
        QCOMPARE(m_journal.created, 3);
        QCOMPARE(m_journal.requests.at(2).Definition, QString());
        form.Toggle(QStringLiteral("Recipes"), true);
        QCOMPARE(m_journal.created, 3);
    }

    void printAndFindFollowTheActiveChild_data() {
        QTest::addColumn<int>("tag");
        QTest::addColumn<bool>("find");
        // Print and Find answer to different questions: neither follows the other.
        QTest::newRow("prints only") << 1 << false;
        QTest::newRow("finds only") << 2 << true;
    }

    void printAndFindFollowTheActiveChild() {
        QFETCH(int, tag);
        QFETCH(bool, find);
        TFormMain& form = frame();
        form.RegisterChild(QStringLiteral("Units"), factory(m_journal, QStringLiteral("Units"), tag, find));
        action(form, "ToolButtonUnits")->trigger();
        QCOMPARE(enabled(form, "MIPrint"), tag == 1);
        QCOMPARE(enabled(form, "MIFind"), find);

        action(form, "MIPrint")->trigger();
        form.findChild<QToolBar*>(QStringLiteral("ToolBarQuickSearch"))->show();
        auto* search = form.findChild<QLineEdit*>(QStringLiteral("EditQuickSearch"));
        search->setText(QStringLiteral("soup"));
        QTest::keyClick(search, Qt::Key_Return); // presses ToolButtonQuickSearch
        action(form, "ToolButtonQuickSearchNext")->trigger();
        QStringList expected;
        if (tag == 1)
            expected << "Units print";
        if (find)
            expected << "Units find 0 soup"
                     << "Units find 1 soup";
        QCOMPARE(m_journal.events.filter(QRegularExpression("print|find")), expected);

        // The last child closed: nothing is left to print or search.
        form.CloseChild(form.ChildWindow(QStringLiteral("Units")));
        for (const char* name :
             {"MIPrint", "MIFind", "MIFindNext", "ToolButtonQuickSearch", "ToolButtonPrint"})
            QVERIFY2(!enabled(form, name), name);
    }

    // The edit commands act on the focused edit; Find stays while the quick search box has the
    // focus, though no child is left to search.
    void commandsFollowTheFocus() {
        TFormMain& form = frame();
        form.RegisterChild(QStringLiteral("Units"), factory(m_journal, QStringLiteral("Units")));
        form.Toggle(QStringLiteral("Units"), true);
        auto* child = qobject_cast<TTestChild*>(form.ChildWindow(QStringLiteral("Units")));
        QGuiApplication::clipboard()->clear();
        child->edit->setFocus();
        child->edit->deselect();
        QVERIFY(!enabled(form, "MIPaste"));
        child->edit->setSelection(0, 4);
        action(form, "ToolButtonCut")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("some"));
        QVERIFY(enabled(form, "MIPaste"));
        child->edit->setReadOnly(true);
        child->edit->selectAll();
        QVERIFY(!enabled(form, "MICut"));
        QVERIFY(enabled(form, "MICopy"));

        auto* search = form.findChild<QLineEdit*>(QStringLiteral("EditQuickSearch"));
        form.findChild<QToolBar*>(QStringLiteral("ToolBarQuickSearch"))->show();
        search->setFocus();
        form.Toggle(QStringLiteral("Units"), false);
        QVERIFY(!enabled(form, "MIPrint"));
        QVERIFY(enabled(form, "MIFind"));
        m_journal.events.clear();
        QTest::keyClick(search, Qt::Key_Return);
        QVERIFY(m_journal.events.isEmpty());
    }

    // The frame's shortcuts open their windows while an edit has the focus, in a child or in the
    // quick search box; the edit keeps its own keys and its text.
    void frameShortcutsWinOverEdits() {
        TFormMain& form = frame();
        form.RegisterChild(QStringLiteral("Units"), factory(m_journal, QStringLiteral("Units")));
        form.RegisterChild(QStringLiteral("UserDiary"), factory(m_diary, QStringLiteral("Diary")));
        form.RegisterChild(QStringLiteral("Diets"), factory(m_journal, QStringLiteral("Diets")));
        int categories = 0;
        form.RegisterModal(QStringLiteral("Categories"), [&] { ++categories; });
        form.Toggle(QStringLiteral("Units"), true);
        auto* child = qobject_cast<TTestChild*>(form.ChildWindow(QStringLiteral("Units")));
        child->edit->setFocus();
        child->edit->setSelection(0, 4);

        QTest::keyClick(child->edit, Qt::Key_A, Qt::ControlModifier); // not: select all
        QCOMPARE(categories, 1);
        QCOMPARE(child->edit->selectedText(), QStringLiteral("some"));
        QTest::keyClick(child->edit, Qt::Key_E, Qt::ControlModifier); // not: to the end
        QVERIFY(form.ChildWindow(QStringLiteral("Diets")));
        child->edit->setFocus();
        QTest::keyClick(child->edit, Qt::Key_D, Qt::ControlModifier); // not: delete a character
        QVERIFY(form.ChildWindow(QStringLiteral("UserDiary")));
        QCOMPARE(child->edit->text(), QStringLiteral("some words"));

        // The edit's own keys stay its own: paste once, undo.
        child->edit->setFocus();
        child->edit->setCursorPosition(0);
        QGuiApplication::clipboard()->setText(QStringLiteral("big "));
        QTest::keyClick(child->edit, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(child->edit->text(), QStringLiteral("big some words"));
        QTest::keyClick(child->edit, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(child->edit->text(), QStringLiteral("some words"));

        // In the quick search box, with the Units window closed.
        form.Toggle(QStringLiteral("Units"), false);
        auto* search = form.findChild<QLineEdit*>(QStringLiteral("EditQuickSearch"));
        form.findChild<QToolBar*>(QStringLiteral("ToolBarQuickSearch"))->show();
        search->setFocus();
        search->setText(QStringLiteral("soup"));
        QTest::keyClick(search, Qt::Key_U, Qt::ControlModifier); // not: clear the line
        QVERIFY(form.ChildWindow(QStringLiteral("Units")));
        QCOMPARE(search->text(), QStringLiteral("soup"));
    }

    // Ctrl+F with the quick search bar hidden shows the bar and puts the focus in it; the search
    // itself runs from there.
    void findWithTheQuickSearchBarHidden() {
        TFormMain& form = frame();
        form.RegisterChild(QStringLiteral("Units"), factory(m_journal, QStringLiteral("Units")));
        form.Toggle(QStringLiteral("Units"), true);
        auto* child = qobject_cast<TTestChild*>(form.ChildWindow(QStringLiteral("Units")));
        auto* bar = form.findChild<QToolBar*>(QStringLiteral("ToolBarQuickSearch"));
        auto* search = form.findChild<QLineEdit*>(QStringLiteral("EditQuickSearch"));
        QVERIFY(bar->isHidden()); // the default
        child->edit->setFocus();

        QTest::keyClick(child->edit, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(!bar->isHidden());
        QCOMPARE(QApplication::focusWidget(), search);
        QVERIFY(m_journal.events.filter("find").isEmpty());
        QTest::keyClicks(search, QStringLiteral("soup"));
        QTest::keyClick(search, Qt::Key_Return);
        QCOMPARE(m_journal.events.filter("find"), QStringList{"Units find 0 soup"});
        QTest::keyClick(search, Qt::Key_F, Qt::ControlModifier); // the bar is there now: find
        QCOMPARE(m_journal.events.filter("find").size(), 2);
    }

    // Tile and Cascade leave the frame as it is, also when the children can't shrink to fit;
    // a new child that would open over another is cascaded from the last one; a stored place
    // outside the client area is brought back into it.
    void childrenStayInsideTheFrame() {
        TFormMain& form = frame();
        QMap<QString, QRect> stored;
        QMap<QString, QSize> minimum;
        for (const char* route : {"Recipes", "Ingredients", "Menus", "Calendar", "Units"}) {
            const QString name = QLatin1String(route);
            form.RegisterChild(name, [this, name, &stored, &minimum](const TChildRequest&) {
                return new TPlacedChild(m_journal, name, stored.value(name),
                                        minimum.value(name, QSize(120, 90)));
            });
        }
        stored[QStringLiteral("Recipes")] = QRect(0, 0, 300, 200);
        stored[QStringLiteral("Ingredients")] = QRect(0, 0, 300, 200);
        stored[QStringLiteral("Menus")] = QRect(0, 0, 300, 200);
        stored[QStringLiteral("Calendar")] = QRect(5000, 4000, 320, 210); // stored after a Tile elsewhere
        stored[QStringLiteral("Units")] = QRect(-40, 30, 5000, 5000);
        const auto sub = [&](const char* route) {
            return qobject_cast<QWidget*>(form.ChildWindow(QLatin1String(route)))->parentWidget();
        };
        const QRect client = form.MdiArea()->viewport()->rect();

        form.Toggle(QStringLiteral("Recipes"), true);
        form.Toggle(QStringLiteral("Ingredients"), true);
        form.Toggle(QStringLiteral("Menus"), true);
        QCOMPARE(sub("Recipes")->pos(), QPoint(0, 0));
        const QPoint step = sub("Ingredients")->pos();
        QVERIFY(step.x() >= 16 && step.x() == step.y());
        QCOMPARE(sub("Menus")->pos(), 2 * step);
        QCOMPARE(sub("Menus")->size(), QSize(300, 200));
        form.Toggle(QStringLiteral("Calendar"), true);
        QVERIFY(client.contains(sub("Calendar")->geometry()));
        QCOMPARE(sub("Calendar")->size(), QSize(320, 210));
        // Brought into the client it would lie over the first: it is cascaded and gives up size.
        form.Toggle(QStringLiteral("Units"), true);
        QCOMPARE(sub("Units")->geometry(), QRect(3 * step, client.bottomRight()));

        // Children as large as the client can't give up size: they still don't open over another.
        form.Toggle(QStringLiteral("Menus"), false);
        form.Toggle(QStringLiteral("Calendar"), false);
        form.Toggle(QStringLiteral("Units"), false);
        form.Toggle(QStringLiteral("Ingredients"), false);
        stored[QStringLiteral("Menus")] = QRect(QPoint(0, 0), client.size());
        minimum[QStringLiteral("Menus")] = client.size();
        sub("Recipes")->setGeometry(QRect(QPoint(0, 0), client.size()));
        form.Toggle(QStringLiteral("Menus"), true);
        QCOMPARE(sub("Menus")->pos(), step);
        QCOMPARE(sub("Menus")->size(), client.size());

        // Children whose minimum is larger than a tile: the frame keeps its size.
        form.Toggle(QStringLiteral("Ingredients"), true);
        form.Toggle(QStringLiteral("Calendar"), true);
        form.Toggle(QStringLiteral("Units"), true);
        for (const char* route : {"Recipes", "Ingredients", "Menus", "Calendar", "Units"})
            sub(route)->setMinimumSize(500, 400);
        const QRect frameGeometry = form.geometry();
        form.findChild<QAction*>(QStringLiteral("MITile"))->trigger();
        QCOMPARE(form.geometry(), frameGeometry);
        form.findChild<QAction*>(QStringLiteral("MICascade"))->trigger();
        QCOMPARE(form.geometry(), frameGeometry);
    }

    void theNavigatorActsOnTheFocusedGridsDataset() {
        TFormMain& form = frame();
        qm::Dataset units;
        units.SetDatabase(&DataModuleMain->KADaoDatabase);
        units.SetSql(QStringLiteral("SELECT unitId, unitName FROM Units WHERE unitId <= 3 ORDER BY unitId"));
        units.SetTableName(QStringLiteral("Units"));
        units.SetReadOnly(false);
        units.Open();
        TTestGrid* grid = nullptr;
        form.RegisterChild(QStringLiteral("Units"), [&](const TChildRequest&) {
            auto* child = new TTestChild(m_journal, QStringLiteral("Units"), 1, true);
            grid = new TTestGrid(child);
            grid->dataset = &units;
            child->layout()->addWidget(grid);
            return child;
        });
        form.Toggle(QStringLiteral("Units"), true);

        const auto states = [&] {
            QString text;
            for (const char* name : {"ToolButtonFirst", "ToolButtonPrior", "ToolButtonNext", "ToolButtonLast",
                                     "ToolButtonInsert", "ToolButtonDelete", "ToolButtonEdit",
                                     "ToolButtonPost", "ToolButtonCancel", "ToolButtonRefresh"})
                text += enabled(form, name) ? QLatin1Char('1') : QLatin1Char('0');
            return text;
        };
        QCOMPARE(states(), QStringLiteral("0000000000")); // the edit has the focus
        grid->setFocus();
        QCOMPARE(states(), QStringLiteral("0011111001")); // at the first record
        action(form, "ToolButtonLast")->trigger();
        QCOMPARE(states(), QStringLiteral("1100111001"));
        action(form, "ToolButtonEdit")->trigger();
        QCOMPARE(states(), QStringLiteral("1100110111"));
        action(form, "ToolButtonCancel")->trigger();
        QCOMPARE(units.State(), qm::dsBrowse);
        units.SetReadOnly(true);
        action(form, "ToolButtonRefresh")->trigger(); // reread: neither at the start nor at the end
        QCOMPARE(states(), QStringLiteral("1111000001"));

        // Outside the child the navigator has nothing to act on.
        form.findChild<QLineEdit*>(QStringLiteral("EditQuickSearch"))->setFocus();
        QCOMPARE(states(), QStringLiteral("0000000000"));
        // The window goes before the dataset and model it shows.
        form.Toggle(QStringLiteral("Units"), false);
        flushDeletes();
    }
};

QTEST_MAIN(TestFrameRoutes)
#include "test_frame_routes.moc"
