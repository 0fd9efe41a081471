#include "shell/ui/form_main.h"

#include "components/dataset.h"
#include "components/dataset_provider.h"
#include "components/messages.h"
#include "components/ui/db_field_binder.h"
#include "shell/app_paths.h"
#include "shell/ui/form_options.h"
#include "shell/ui/frame_icons.h"
#include "shell/ui/mdi_client.h"
#include "shell/ui/message_box_presenter.h"
#include "shell/ui/outlook_bar.h"
#include "shell/ui/shortcut_bar.h"
#include "shell/ui/widget_translation.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTextEdit>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>
#include <algorithm>
#include <climits>
#include <stdexcept>

TFormMain* FormMain = nullptr;

/// The frame of one MDI child: when the child accepts its close, the frame runs the toggle of
/// the child's route with false, as the child's FormClose does.
class TMdiChildWindow : public QMdiSubWindow {
public:
    TMdiChildWindow(TFormMain* frame, const QString& route) : m_frame(frame), m_route(route) {}

protected:
    void closeEvent(QCloseEvent* event) override {
        QMdiSubWindow::closeEvent(event);
        if (event->isAccepted() && m_frame)
            m_frame->ChildClosed(this, m_route);
    }

private:
    QPointer<TFormMain> m_frame;
    QString m_route;
};

namespace {

TVintraOptions& options() {
    return FormResourceHolder->VintraOptions;
}

/// The route table: which commands and bar items open which window, and the special cases.
struct RouteRow {
    const char* name;
    TRouteKind kind;
    const char* toolButton;
    const char* menuItem;
    int barPage;
    int barItem;
    bool shortcutToggle;
    const char* creationTestRoute;
    bool userButton;
};

constexpr RouteRow routeTable[] = {
    {"Recipes", TRouteKind::MdiToggle, "ToolButtonRecipes", "MIRecipes", 0, 0, true, "", false},
    {"Ingredients", TRouteKind::MdiToggle, "ToolButtonIngredients", "MIIngredients", 0, 1, true, "", false},
    {"Menus", TRouteKind::MdiToggle, "ToolButtonMenus", "MIMenus", 0, 2, false, "", false},
    {"Calendar", TRouteKind::MdiToggle, "ToolButtonCalendar", "MICalendar", 0, 3, false, "", false},
    {"Units", TRouteKind::MdiToggle, "ToolButtonUnits", "MIUnits", 0, 4, false, "", false},
    {"Categories", TRouteKind::Modal, "ToolButtonCategories", "MICategories", 0, 5, false, "", false},
    {"CookingTips", TRouteKind::MdiToggle, "ToolButtonCookingTips", "MICookingTips", 0, 6, false, "", false},
    {"Users", TRouteKind::Modal, "ToolButtonUsersManagement", "MIUsersManagement", 2, 0, false, "", false},
    {"UserDiary", TRouteKind::MdiToggle, "ToolButtonUsersDiary", "MIUsersDiary", 2, 1, false, "", true},
    // The diets toggle decides on creation by the diary's pointer.
    {"Diets", TRouteKind::MdiToggle, "ToolButtonDiets", "MIDiets", 2, 2, false, "UserDiary", true},
    {"SearchRecipes", TRouteKind::Modeless, "", "MISearchRecipes", -1, -1, false, "", false},
    {"SearchIngredients", TRouteKind::Modeless, "", "MISearchIngredients", -1, -1, false, "", false},
    {"Options", TRouteKind::Modal, "ToolButtonOptions", "MIOptions", -1, -1, false, "", false},
    {"SystemInfo", TRouteKind::Modal, "ToolButtonSystemInfo", "MISystemInfo", -1, -1, false, "", false},
    {"About", TRouteKind::Modal, "", "MIAbout", -1, -1, false, "", false},
};

/// Tool buttons that call a handler of an open window, and do nothing while it is closed.
struct WindowButton {
    const char* toolButton;
    const char* route;
    const char* handler;
};

constexpr WindowButton windowButtons[] = {
    {"ToolButtonRecalculate", "Recipes", "MIRecalculateClick"},
    {"ToolButtonImport", "Recipes", "MIImportClick"},
    {"ToolButtonExport", "Recipes", "MIExportClick"},
    {"ToolButtonSendToMail", "Recipes", "MISendToMailClick"},
    {"ToolButtonImportIngredientsPriceList", "Ingredients", "MIImportPriceListClick"},
};

/// Menu items that open the shortcut files under DataRootPath.
struct WebItem {
    const char* menuItem;
    const char* file;
};

constexpr WebItem webItems[] = {
    {"MIHomePage", "URL/Hearthnote - Home Page.url"},
    {"MIQuillmealPage", "URL/Hearthnote - Quillmeal.url"},
    {"MIRecipeUpdates", "URL/Hearthnote - Quillmeal Recipe Updates.url"},
    {"MIBrowseRecipes", "URL/Hearthnote - Browse Recipes.url"},
    {"MIForum", "URL/Hearthnote - Forum.url"},
    {"MIOrvaneTeamHomePage", "URL/Orvane Team - Home Page.url"},
};

/// Commands that other parts of the program bind with RegisterCommand.
constexpr const char* plainCommands[] = {
    "MIRepair",
    "MICompact",
    "MIBackup",
    "MIRestore",
    "MICheckForNewVersion",
    "MIContents",
    "MIIndex",
    "MIShowTips",
    "MIShowKitchenAssistant",
    "MIHideKitchenAssistant",
};

constexpr const char* navigatorButtons[] = {
    "ToolButtonFirst",  "ToolButtonPrior", "ToolButtonNext", "ToolButtonLast",   "ToolButtonInsert",
    "ToolButtonDelete", "ToolButtonEdit",  "ToolButtonPost", "ToolButtonCancel", "ToolButtonRefresh",
};

/// Opens an Internet shortcut file by the address it holds, or the file itself.
void openShortcutFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString& line : lines)
        if (line.trimmed().startsWith(QLatin1String("URL="), Qt::CaseInsensitive)) {
            QDesktopServices::openUrl(QUrl(line.trimmed().mid(4)));
            return;
        }
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

/// The item copies the target's enabled state and runs the target when triggered.
void linkToAction(QAction* item, QAction* target) {
    item->setEnabled(target->isEnabled());
    QObject::connect(target, &QAction::enabledChanged, item, &QAction::setEnabled);
    QObject::connect(item, &QAction::triggered, target, &QAction::trigger);
}

} // namespace

TFormMain::TFormMain(const TAppPaths& paths, QWidget* parent)
    : QMainWindow(parent), m_paths(paths), m_translator(this) {
    FormMain = this;
    MdiFrame = this;
    RegisterWidgetTranslation();
    setObjectName(QStringLiteral("FormMain"));
    setWindowTitle(QStringLiteral("Quillmeal Plus"));
    setMinimumSize(800, 600);

    m_mdiArea = new TMdiClient(this);
    m_mdiArea->setObjectName(QStringLiteral("MDIClient"));
    // With scroll bars, Tile lets children that can't shrink further reach past the client area
    // instead of growing the frame past the screen.
    m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_outlookBar = new TOutlookBar(this);
    m_outlookBar->setObjectName(QStringLiteral("OutlookBarMain"));
    // The translator doesn't reach the bar; AfterTranslate does.
    m_outlookBar->setProperty("vintraSkip", true);
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("SplitterMain"));
    splitter->addWidget(m_outlookBar);
    splitter->addWidget(m_mdiArea);
    splitter->setStretchFactor(1, 1);
    splitter->setCollapsible(1, false);
    // Narrow enough that a child of its default 660 pixels fits beside it in the smallest frame.
    splitter->setSizes({116, 684});
    setCentralWidget(splitter);

    m_statusHint = new QLabel(this);
    m_statusHint->setObjectName(QStringLiteral("StatusBarPanel0"));
    m_statusHint->setProperty("vintraSkip", true);
    m_statusCount = new QLabel(this);
    m_statusCount->setObjectName(QStringLiteral("StatusBarPanel1"));
    m_statusCount->setProperty("vintraSkip", true);
    m_statusCount->setMinimumWidth(220);
    statusBar()->addWidget(m_statusHint, 1);
    statusBar()->addPermanentWidget(m_statusCount);

    BuildActions();
    BuildMenus();
    BuildToolbars();
    BuildOutlookBar();
    BuildRoutes();
    RegisterModal(QStringLiteral("Options"), [this] { MIOptionsClick(); });
    m_translator.AfterTranslate = [this] { TranslateOutlookBar(); };

    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &TFormMain::SubWindowActivated);
    connect(qApp, &QApplication::focusChanged, this, &TFormMain::FocusChanged);
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, &TFormMain::UpdateEditActions);
    UpdateEditActions();
    // The frame's shortcuts win over the keys that edits keep for themselves.
    qApp->installEventFilter(this);
}

TFormMain::~TFormMain() {
    qApp->removeEventFilter(this);
    disconnect(qApp, nullptr, this, nullptr);
    disconnect(QGuiApplication::clipboard(), nullptr, this, nullptr);
    disconnect(m_mdiArea, nullptr, this, nullptr);
    m_activeChild = nullptr;
    // Children go while the data module they read from still exists.
    qDeleteAll(m_mdiArea->subWindowList());
    for (TChildRoute& route : m_routes)
        if (route.Kind == TRouteKind::Modeless)
            delete route.Window.data();
    if (m_presenter && MessagePresenter() == m_presenter.get())
        SetMessagePresenter(nullptr);
    if (MdiFrame == this)
        MdiFrame = nullptr;
    m_dataModule.reset();
    DataModuleMain = nullptr;
    FormResourceHolder = nullptr;
    if (FormMain == this)
        FormMain = nullptr;
}

QAction* TFormMain::Item(const char* name) const {
    return findChild<QAction*>(QLatin1String(name), Qt::FindDirectChildrenOnly);
}

// --- building ---

void TFormMain::BuildActions() {
    const auto action = [this](const char* name, const QString& text, const char* icon = nullptr,
                               const QKeySequence& shortcut = QKeySequence()) {
        auto* a = new QAction(text, this);
        a->setObjectName(QLatin1String(name));
        if (icon)
            a->setIcon(qm::FrameIcon(QLatin1String(icon)));
        if (!shortcut.isEmpty())
            a->setShortcut(shortcut);
        return a;
    };
    const auto button = [&](const char* name, const QString& text, const QString& hint, const char* icon,
                            bool checkable = false) {
        QAction* a = action(name, text, icon);
        a->setToolTip(hint);
        a->setStatusTip(hint);
        a->setCheckable(checkable);
        return a;
    };

    // File and Edit. Print, Find and FindNext start disabled: no child is active.
    action("MIPrint", tr("&Print..."), "print", QKeySequence(Qt::CTRL | Qt::Key_P))->setEnabled(false);
    connect(Item("MIPrint"), &QAction::triggered, this, [this] {
        if (TChildCommands* child = ActiveCommands())
            child->Print();
    });
    action("MIExit", tr("E&xit"), nullptr, QKeySequence(QKeySequence::Quit));
    connect(Item("MIExit"), &QAction::triggered, this, &QWidget::close);
    action("MICut", tr("Cu&t"), "cut", QKeySequence(Qt::CTRL | Qt::Key_X));
    action("MICopy", tr("&Copy"), "copy", QKeySequence(Qt::CTRL | Qt::Key_C));
    action("MIPaste", tr("&Paste"), "paste", QKeySequence(Qt::CTRL | Qt::Key_V));
    action("MIFind", tr("&Find"), "find", QKeySequence(Qt::CTRL | Qt::Key_F))->setEnabled(false);
    action("MIFindNext", tr("Find &Next"), "findNext", QKeySequence(Qt::Key_F3))->setEnabled(false);
    connect(Item("MIFind"), &QAction::triggered, this, &TFormMain::MIFindClick);
    connect(Item("MIFindNext"), &QAction::triggered, this, [this] {
        if (TChildCommands* child = ActiveCommands())
            child->Find(1);
    });
    // The edit commands act on the focused edit: 0 cut, 1 copy, 2 paste.
    const auto editCommand = [this](const char* name, int command) {
        connect(Item(name), &QAction::triggered, this, [this, command] {
            const auto run = [command](auto* edit) {
                if (command == 0)
                    edit->cut();
                else if (command == 1)
                    edit->copy();
                else
                    edit->paste();
            };
            if (auto* line = qobject_cast<QLineEdit*>(m_focusEditor.data()))
                run(line);
            else if (auto* rich = qobject_cast<QTextEdit*>(m_focusEditor.data()))
                run(rich);
            else if (auto* plain = qobject_cast<QPlainTextEdit*>(m_focusEditor.data()))
                run(plain);
            UpdateEditActions();
        });
    };
    editCommand("MICut", 0);
    editCommand("MICopy", 1);
    editCommand("MIPaste", 2);

    // Window routes.
    action("MIRecipes", tr("&Recipes"), "recipes", QKeySequence(Qt::CTRL | Qt::Key_R));
    action("MIIngredients", tr("&Ingredients"), "ingredients", QKeySequence(Qt::CTRL | Qt::Key_I));
    action("MIMenus", tr("&Menus"), "menus", QKeySequence(Qt::CTRL | Qt::Key_M));
    action("MICalendar", tr("Ca&lendar"), "calendar", QKeySequence(Qt::CTRL | Qt::Key_L));
    action("MIUnits", tr("&Units"), "units", QKeySequence(Qt::CTRL | Qt::Key_U));
    action("MICategories", tr("C&ategories..."), "categories", QKeySequence(Qt::CTRL | Qt::Key_A));
    action("MICookingTips", tr("Cooking &Tips"), "cookingTips", QKeySequence(Qt::CTRL | Qt::Key_T));
    action("MISearchRecipes", tr("&Search Recipes..."), "find", QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_R));
    action("MISearchIngredients", tr("Search I&ngredients..."), nullptr,
           QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_I));
    action("MIUsersManagement", tr("Users &Management..."), "users", QKeySequence(Qt::CTRL | Qt::Key_S));
    action("MIUsersDiary", tr("&Diary"), "diary", QKeySequence(Qt::CTRL | Qt::Key_D));
    action("MIDiets", tr("Di&ets"), "diets", QKeySequence(Qt::CTRL | Qt::Key_E));
    action("MIOptions", tr("&Options..."), "options");
    action("MISystemInfo", tr("&System Information..."), "systemInfo");
    action("MIAbout", tr("&About Quillmeal..."));
    // The user commands are made visible by FormCreate.
    for (const char* name : {"MIUsersManagement", "MIUsersDiary", "MIDiets"})
        Item(name)->setVisible(false);

    // Plain commands, bound by the parts that implement them.
    action("MIRepair", tr("&Repair"));
    action("MICompact", tr("&Compact"));
    action("MIBackup", tr("&Backup..."));
    action("MIRestore", tr("R&estore..."));
    action("MIShowTips", tr("Show &Tips"));
    action("MIShowKitchenAssistant", tr("Show &Kitchen Assistant"));
    action("MIHideKitchenAssistant", tr("Hide &Kitchen Assistant"))->setVisible(false);
    action("MICheckForNewVersion", tr("Check for &New Version..."));
    action("MIContents", tr("&Contents"), nullptr, QKeySequence(Qt::Key_F1));
    action("MIIndex", tr("&Index"));
    for (const char* name : plainCommands) {
        QAction* item = Item(name);
        item->setEnabled(false);
        const QString command = QLatin1String(name);
        connect(item, &QAction::triggered, this, [this, command] {
            if (const auto handler = m_commands.value(command))
                handler();
        });
    }
    action("MICascade", tr("&Cascade"));
    connect(Item("MICascade"), &QAction::triggered, m_mdiArea, &QMdiArea::cascadeSubWindows);
    action("MITile", tr("&Tile"));
    connect(Item("MITile"), &QAction::triggered, m_mdiArea, &QMdiArea::tileSubWindows);
    action("MIHomePage", tr("Hearthnote &Home Page"));
    action("MIQuillmealPage", tr("&Quillmeal Page"));
    action("MIRecipeUpdates", tr("Quillmeal &Recipe Updates"));
    action("MIBrowseRecipes", tr("&Browse Recipes"));
    action("MIForum", tr("&Forum"));
    action("MIOrvaneTeamHomePage", tr("&Orvane Team Home Page"));
    for (const WebItem& web : webItems) {
        const QString file = QLatin1String(web.file);
        connect(Item(web.menuItem), &QAction::triggered, this, [this, file] {
            if (FormResourceHolder)
                openShortcutFile(FormResourceHolder->DataRootPath + file);
        });
    }

    // Tool buttons of the windows.
    button("ToolButtonRecipes", tr("Recipes"), tr("Show or hide the recipes"), "recipes", true);
    button("ToolButtonIngredients", tr("Ingredients"), tr("Show or hide the ingredients"), "ingredients",
           true);
    button("ToolButtonMenus", tr("Menus"), tr("Show or hide the menus"), "menus", true);
    button("ToolButtonCalendar", tr("Calendar"), tr("Show or hide the calendar"), "calendar", true);
    button("ToolButtonUnits", tr("Units"), tr("Show or hide the units"), "units", true);
    button("ToolButtonCategories", tr("Categories"), tr("Edit the recipe categories"), "categories");
    button("ToolButtonCookingTips", tr("Cooking Tips"), tr("Show or hide the cooking tips"), "cookingTips",
           true);
    button("ToolButtonUsersManagement", tr("Users"), tr("Manage the users"), "users");
    button("ToolButtonUsersDiary", tr("Diary"), tr("Show or hide the diary of the active user"), "diary",
           true);
    button("ToolButtonDiets", tr("Diets"), tr("Show or hide the diets of the active user"), "diets", true);
    button("ToolButtonOptions", tr("Options"), tr("Change the options"), "options");
    button("ToolButtonSystemInfo", tr("System Information"), tr("Show what the database holds"),
           "systemInfo");
    linkToAction(
        button("ToolButtonPrint", tr("Print"), tr("Print the records of the active window"), "print"),
        Item("MIPrint"));
    linkToAction(button("ToolButtonCut", tr("Cut"), tr("Cut the selected text"), "cut"), Item("MICut"));
    linkToAction(button("ToolButtonCopy", tr("Copy"), tr("Copy the selected text"), "copy"), Item("MICopy"));
    linkToAction(button("ToolButtonPaste", tr("Paste"), tr("Paste the text of the clipboard"), "paste"),
                 Item("MIPaste"));

    // The navigator acts on the dataset of the focused data-aware control of the active child.
    button("ToolButtonFirst", tr("First"), tr("First record"), "first");
    button("ToolButtonPrior", tr("Prior"), tr("Prior record"), "prior");
    button("ToolButtonNext", tr("Next"), tr("Next record"), "next");
    button("ToolButtonLast", tr("Last"), tr("Last record"), "last");
    button("ToolButtonInsert", tr("Insert"), tr("Insert a record"), "insert");
    button("ToolButtonDelete", tr("Delete"), tr("Delete the record"), "delete");
    button("ToolButtonEdit", tr("Edit"), tr("Edit the record"), "edit");
    button("ToolButtonPost", tr("Post"), tr("Save the changes of the record"), "post");
    button("ToolButtonCancel", tr("Cancel"), tr("Cancel the changes of the record"), "cancel");
    button("ToolButtonRefresh", tr("Refresh"), tr("Read the records again"), "refresh");
    for (const char* name : navigatorButtons) {
        QAction* item = Item(name);
        item->setEnabled(false);
        const QString command = QLatin1String(name);
        connect(item, &QAction::triggered, this, [this, command] { RunNavigator(command); });
    }

    // The recipe bar calls handlers of its windows.
    button("ToolButtonRecalculate", tr("Recalculate"),
           tr("Recalculate the nutrients and costs of the recipes"), "recalculate");
    button("ToolButtonImport", tr("Import"), tr("Import recipes from a file"), "import");
    button("ToolButtonExport", tr("Export"), tr("Export the selected recipes"), "export");
    button("ToolButtonSendToMail", tr("Send by Mail"), tr("Send the recipe by mail"), "mail");
    button("ToolButtonImportIngredientsPriceList", tr("Import Price List"),
           tr("Import the prices of ingredients from a price list"), "priceList");
    for (const WindowButton& entry : windowButtons) {
        QAction* item = Item(entry.toolButton);
        item->setEnabled(false); // each window enables its buttons on activation
        const QString route = QLatin1String(entry.route);
        const QByteArray handler(entry.handler);
        connect(item, &QAction::triggered, this, [this, route, handler] {
            if (QObject* window = ChildWindow(route))
                QMetaObject::invokeMethod(window, handler.constData());
        });
    }

    linkToAction(
        button("ToolButtonQuickSearch", tr("Find"), tr("Find the text in the active window"), "find"),
        Item("MIFind"));
    linkToAction(button("ToolButtonQuickSearchNext", tr("Find Next"),
                        tr("Find the next hit in the active window"), "findNext"),
                 Item("MIFindNext"));
}

void TFormMain::BuildMenus() {
    const auto menu = [](QMenu* parent, const char* name, const QString& title) {
        QMenu* sub = parent->addMenu(title);
        sub->setObjectName(QLatin1String(name));
        return sub;
    };
    const auto top = [this](const char* name, const QString& title) {
        QMenu* sub = menuBar()->addMenu(title);
        sub->setObjectName(QLatin1String(name));
        return sub;
    };
    const auto add = [this](QMenu* target, std::initializer_list<const char*> names) {
        for (const char* name : names) {
            if (!*name)
                target->addSeparator();
            else
                target->addAction(Item(name));
        }
    };
    add(top("MIFile", tr("&File")), {"MIPrint", "", "MIExit"});
    add(top("MIEdit", tr("&Edit")), {"MICut", "MICopy", "MIPaste", "", "MIFind", "MIFindNext"});
    add(top("MIView", tr("&View")),
        {"MIRecipes", "MIIngredients", "MIMenus", "MICalendar", "MIUnits", "MICategories", "MICookingTips",
         "", "MISearchRecipes", "MISearchIngredients"});
    add(top("MIUsers", tr("&Users")), {"MIUsersManagement", "MIUsersDiary", "MIDiets"});
    QMenu* tools = top("MITools", tr("&Tools"));
    add(tools, {"MIOptions", "MISystemInfo", ""});
    add(menu(tools, "MIDatabaseMaintenance", tr("&Database Maintenance")),
        {"MIRepair", "MICompact", "", "MIBackup", "MIRestore"});
    add(tools,
        {"", "MIShowTips", "MIShowKitchenAssistant", "MIHideKitchenAssistant", "", "MICheckForNewVersion"});
    m_windowMenu = top("MIWindow", tr("&Window"));
    add(m_windowMenu, {"MICascade", "MITile", ""});
    QMenu* help = top("MIHelp", tr("&Help"));
    add(help, {"MIContents", "MIIndex", ""});
    add(menu(help, "MIOnTheWeb", tr("Quillmeal on the &Web")),
        {"MIHomePage", "MIQuillmealPage", "MIRecipeUpdates", "MIBrowseRecipes", "MIForum",
         "MIOrvaneTeamHomePage"});
    add(help, {"", "MIAbout"});
}

void TFormMain::BuildToolbars() {
    const auto bar = [this](const char* name, const QString& title,
                            std::initializer_list<const char*> names) {
        auto* toolbar = new QToolBar(title, this);
        toolbar->setObjectName(QLatin1String(name));
        // Tool bars stay in rows at the top, where their Top/Left options place them.
        toolbar->setAllowedAreas(Qt::TopToolBarArea);
        toolbar->setFloatable(false);
        toolbar->setIconSize(QSize(24, 24));
        for (const char* item : names) {
            if (!*item) {
                toolbar->addSeparator();
                continue;
            }
            QAction* action = Item(item);
            toolbar->addAction(action);
            // The button carries the action's name and follows the action's texts.
            QWidget* widget = toolbar->widgetForAction(action);
            widget->setObjectName(action->objectName());
            widget->setProperty("vintraSkip", true);
        }
        return toolbar;
    };
    m_toolbarMain =
        bar("ToolBarMain", tr("Main"),
            {"ToolButtonRecipes", "ToolButtonIngredients", "ToolButtonMenus", "ToolButtonCalendar",
             "ToolButtonUnits", "ToolButtonCategories", "ToolButtonCookingTips", "", "ToolButtonPrint", "",
             "ToolButtonCut", "ToolButtonCopy", "ToolButtonPaste", "", "ToolButtonOptions",
             "ToolButtonSystemInfo"});
    m_toolbarUsers = bar("ToolBarUsers", tr("Users"),
                         {"ToolButtonUsersManagement", "ToolButtonUsersDiary", "ToolButtonDiets"});
    m_toolbarNavigator = bar("ToolBarNavigator", tr("Navigator"),
                             {"ToolButtonFirst", "ToolButtonPrior", "ToolButtonNext", "ToolButtonLast",
                              "ToolButtonInsert", "ToolButtonDelete", "ToolButtonEdit", "ToolButtonPost",
                              "ToolButtonCancel", "ToolButtonRefresh"});
    m_toolbarRecipes = bar("ToolBarRecipes", tr("Recipes"),
                           {"ToolButtonRecalculate", "ToolButtonImport", "ToolButtonExport",
                            "ToolButtonSendToMail", "", "ToolButtonImportIngredientsPriceList"});
    m_toolbarQuickSearch = bar("ToolBarQuickSearch", tr("Quick Search"), {});
    m_editQuickSearch = new QLineEdit(m_toolbarQuickSearch);
    m_editQuickSearch->setObjectName(QStringLiteral("EditQuickSearch"));
    m_editQuickSearch->setToolTip(tr("Text to look for in the active window"));
    m_editQuickSearch->setClearButtonEnabled(true);
    m_editQuickSearch->setMinimumWidth(160);
    m_toolbarQuickSearch->addWidget(m_editQuickSearch);
    for (const char* name : {"ToolButtonQuickSearch", "ToolButtonQuickSearchNext"}) {
        m_toolbarQuickSearch->addAction(Item(name));
        QWidget* widget = m_toolbarQuickSearch->widgetForAction(Item(name));
        widget->setObjectName(QLatin1String(name));
        widget->setProperty("vintraSkip", true);
    }
    // Enter in the box presses the find button.
    connect(m_editQuickSearch, &QLineEdit::returnPressed, this,
            [this] { Item("ToolButtonQuickSearch")->trigger(); });

    addToolBar(Qt::TopToolBarArea, m_toolbarMain);
    addToolBar(Qt::TopToolBarArea, m_toolbarUsers);
    addToolBarBreak(Qt::TopToolBarArea);
    addToolBar(Qt::TopToolBarArea, m_toolbarNavigator);
    addToolBar(Qt::TopToolBarArea, m_toolbarRecipes);
    addToolBar(Qt::TopToolBarArea, m_toolbarQuickSearch);
}

void TFormMain::BuildOutlookBar() {
    // Page 0 comes with the frame; pages 1 and 2 are added when the frame is shown.
    m_outlookBar->AddPage(tr("Main"));
    const struct {
        const char* caption;
        const char* icon;
    } items[] = {{"Recipes", "recipes"},
                 {"Ingredients", "ingredients"},
                 {"Menus", "menus"},
                 {"Calendar", "calendar"},
                 {"Units", "units"},
                 {"Categories", "categories"},
                 {"Cooking Tips", "cookingTips"}};
    for (const auto& item : items)
        m_outlookBar->AddItem(0, tr(item.caption), qm::FrameIcon(QLatin1String(item.icon)));
    connect(m_outlookBar, &TOutlookBar::ItemClick, this, &TFormMain::OutlookBarMainItemClick);
}

void TFormMain::AddBarPages() {
    if (m_barPagesAdded)
        return;
    m_barPagesAdded = true;
    m_outlookBar->AddPage(tr("Shortcuts"));
    m_outlookBar->AddPage(tr("Users"));
    m_outlookBar->AddItem(2, tr("Users Management"), qm::FrameIcon(QStringLiteral("users")));
    m_outlookBar->AddItem(2, tr("Diary"), qm::FrameIcon(QStringLiteral("diary")));
    m_outlookBar->AddItem(2, tr("Diets"), qm::FrameIcon(QStringLiteral("diets")));
    m_shortcutBar = new TShortcutBar(m_outlookBar, this);
    m_shortcutBar->OpenRoute = [this](const QString& route, const QString& definition, const QString& name) {
        OpenShortcut(route, definition, name);
    };
    UpdateRouteCommands();
}

void TFormMain::ReloadShortcuts() {
    if (m_shortcutBar)
        m_shortcutBar->Load();
}

void TFormMain::BuildRoutes() {
    m_routes.reserve(std::size(routeTable));
    for (const RouteRow& row : routeTable) {
        TChildRoute route;
        route.Name = QLatin1String(row.name);
        route.Kind = row.kind;
        route.ToolButton = *row.toolButton ? Item(row.toolButton) : nullptr;
        route.MenuItem = Item(row.menuItem);
        route.BarPage = row.barPage;
        route.BarItem = row.barItem;
        route.ShortcutToggle = row.shortcutToggle;
        route.CreationTestRoute = QLatin1String(row.creationTestRoute);
        route.UserButton = row.userButton;
        m_routes.push_back(route);
    }
    for (const TChildRoute& route : m_routes) {
        const QString name = route.Name;
        const bool toggle = route.Kind == TRouteKind::MdiToggle;
        // A tool button is a real toggle: a second press closes the window.
        if (route.ToolButton)
            connect(route.ToolButton, &QAction::triggered, this,
                    [this, name, toggle](bool down) { Toggle(name, toggle ? down : true); });
        connect(route.MenuItem, &QAction::triggered, this, [this, name] { Toggle(name, true); });
    }
    UpdateRouteCommands();
}

// --- start-up and shutdown ---

bool TFormMain::FormCreate() {
    // 2. The resource holder: options, paths, dictionary, box captions.
    m_holder = std::make_unique<TFormResourceHolder>();
    FormResourceHolder = m_holder.get();
    m_holder->Create(m_paths.OptionsFile, m_paths.ExecutablePath, m_paths.DataRootPath);
    // The message boxes, unless a presenter is in place already (a test's script).
    m_presenter = std::make_unique<TMessageBoxPresenter>();
    m_presenter->SetParent(this);
    if (!MessagePresenter())
        SetMessagePresenter(m_presenter.get());
    // 4. The user commands and their tool bar.
    for (const char* name : {"MIUsersManagement", "MIUsersDiary", "MIDiets"})
        Item(name)->setVisible(true);
    m_toolbarUsers->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarUsers")));
    // 6. The data module opens and updates the database.
    m_dataModule = std::make_unique<TDataModuleMain>();
    DataModuleMain = m_dataModule.get();
    // A refused update at start-up ends the process before the frame shows (see StartFrame); a
    // later one closes the frame without its question.
    m_dataModule->OnTerminate = [this] {
        if (isVisible()) {
            closeWithoutConfirmation = true;
            QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
        }
    };
    m_dataModule->DataModuleCreate();
    // 7. The dictionary once more, as the frame sets it for itself, and the help file. The holder
    // has read that very file already: the same name is not read twice.
    const QString language = options().GetAsString(QStringLiteral("Language"));
    if (m_holder->VintraDictionary.FileName() != m_holder->LanguageFile(language))
        m_holder->VintraDictionary.SetFileName(m_holder->LanguageFile(language));
    HelpFile = m_holder->ExecutablePath + QStringLiteral("Help/") + language + QStringLiteral(".chm");
    return m_dataModule->initialised;
}

bool TFormMain::DatabaseDeclined() const {
    return m_dataModule && m_dataModule->terminated;
}

void TFormMain::FormShow() {
    // 9. Bar pages, translation, icon size. The shortcuts of page 1 are loaded by their own code.
    AddBarPages();
    m_translator.SetDictionary(&m_holder->VintraDictionary);
    m_translator.Translate();
    ReloadShortcuts();
    m_outlookBar->SetSmallIcons(options().GetAsBoolean(QStringLiteral("OutlookBarSmallIcons")));
    // 10. A database that can't be used closes the frame without the question.
    if (!m_dataModule->databaseUsable) {
        closeWithoutConfirmation = true;
        close();
        return;
    }
    // 11.
    setWindowTitle(QStringLiteral("Quillmeal Plus"));
    // 12, 13.
    RestoreGeometry();
    ApplyToolbarPositions();
    ApplyToolbarVisibility();
    // 16.
    UpdateUserButtons();
    UpdateWebItems();
    UpdateBackground();
    SetStatusHint(GetText(QStringLiteral("@StatusBar"), QString()));
}

void TFormMain::RestoreGeometry() {
    if (options().GetAsBoolean(QStringLiteral("MainMaximized"))) {
        setWindowState(Qt::WindowMaximized);
        return;
    }
    setWindowState(Qt::WindowNoState);
    resize(options().GetAsInteger(QStringLiteral("MainSizeWidth")),
           options().GetAsInteger(QStringLiteral("MainSizeHeight")));
    move(options().GetAsInteger(QStringLiteral("MainPositionLeft")),
         options().GetAsInteger(QStringLiteral("MainPositionTop")));
}

void TFormMain::closeEvent(QCloseEvent* event) {
    if (!m_holder) {
        event->accept();
        return;
    }
    // 1.
    if (options().GetAsBoolean(QStringLiteral("ConfirmExit")) && !closeWithoutConfirmation &&
        AskQuestion(GetText(QStringLiteral("QuestionQuit"), QString())) != mrYes) {
        event->ignore();
        return;
    }
    // 2, 3. Tool bar positions are stored by the options dialog only.
    if (isMaximized()) {
        options().SetAsBoolean(QStringLiteral("MainMaximized"), true);
    } else {
        options().SetAsBoolean(QStringLiteral("MainMaximized"), false);
        options().SetAsInteger(QStringLiteral("MainSizeHeight"), height());
        options().SetAsInteger(QStringLiteral("MainSizeWidth"), width());
        options().SetAsInteger(QStringLiteral("MainPositionTop"), y());
        options().SetAsInteger(QStringLiteral("MainPositionLeft"), x());
    }
    options().Store();
    // 4. Children close last to first, each storing its own geometry.
    CloseAllChildren();
    // 5.
    event->accept();
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

void TFormMain::CloseAllChildren() {
    const QList<QMdiSubWindow*> children = m_mdiArea->subWindowList(QMdiArea::CreationOrder);
    for (qsizetype i = children.size() - 1; i >= 0; --i)
        if (children.at(i)->isVisible())
            children.at(i)->close();
}

// --- tool bars and background ---

void TFormMain::ApplyToolbarVisibility() {
    // ToolbarUsers is applied at creation only.
    m_toolbarMain->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarMain")));
    m_toolbarNavigator->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarNavigator")));
    m_toolbarRecipes->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarRecipes")));
    m_toolbarQuickSearch->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarQuickSearch")));
}

namespace {

struct ToolbarPlace {
    QToolBar* bar;
    int top;
    int left;
};

constexpr int toolbarRowPitch = 32; // the distance of the default rows
constexpr int toolbarTopMargin = 2;
constexpr int toolbarLeftMargin = 11;

} // namespace

QStringList TFormMain::ToolbarPositionOptions() {
    QStringList names;
    for (const char* bar :
         {"ToolbarMain", "ToolbarNavigator", "ToolbarRecipes", "ToolbarQuickSearch", "ToolbarUsers"})
        names << QLatin1String(bar) + QStringLiteral("Top") << QLatin1String(bar) + QStringLiteral("Left");
    return names;
}

void TFormMain::ApplyToolbarPositions() {
    const QList<QToolBar*> bars{m_toolbarMain, m_toolbarNavigator, m_toolbarRecipes, m_toolbarQuickSearch,
                                m_toolbarUsers};
    const QStringList keys = ToolbarPositionOptions();
    std::vector<ToolbarPlace> places;
    QList<bool> hidden;
    for (qsizetype i = 0; i < bars.size(); ++i) {
        places.push_back(
            {bars[i], options().GetAsInteger(keys[2 * i]), options().GetAsInteger(keys[2 * i + 1])});
        hidden << bars[i]->isHidden();
    }
    std::stable_sort(places.begin(), places.end(),
                     [](const ToolbarPlace& a, const ToolbarPlace& b) { return a.top < b.top; });
    // Rows: a bar within half a row of the first bar of the row joins it.
    std::vector<std::vector<ToolbarPlace>> rows;
    for (const ToolbarPlace& place : places) {
        if (rows.empty() || place.top - rows.back().front().top >= toolbarRowPitch / 2)
            rows.emplace_back();
        rows.back().push_back(place);
    }
    for (QToolBar* bar : bars)
        removeToolBar(bar);
    for (size_t r = 0; r < rows.size(); ++r) {
        std::stable_sort(rows[r].begin(), rows[r].end(),
                         [](const ToolbarPlace& a, const ToolbarPlace& b) { return a.left < b.left; });
        if (r > 0)
            addToolBarBreak(Qt::TopToolBarArea);
        for (const ToolbarPlace& place : rows[r])
            addToolBar(Qt::TopToolBarArea, place.bar);
    }
    for (qsizetype i = 0; i < bars.size(); ++i)
        bars[i]->setVisible(!hidden[i]);
}

void TFormMain::SaveToolbarPositions() {
    const QList<QToolBar*> bars{m_toolbarMain, m_toolbarNavigator, m_toolbarRecipes, m_toolbarQuickSearch,
                                m_toolbarUsers};
    const QStringList keys = ToolbarPositionOptions();
    // Hidden bars keep their place in their row; show them for the measure, unseen.
    const bool updates = updatesEnabled();
    setUpdatesEnabled(false);
    QList<bool> hidden;
    for (QToolBar* bar : bars) {
        hidden << bar->isHidden();
        bar->setVisible(true);
    }
    if (layout())
        layout()->activate();
    int top = INT_MAX;
    int left = INT_MAX;
    for (QToolBar* bar : bars) {
        top = std::min(top, bar->y());
        left = std::min(left, bar->x());
    }
    for (qsizetype i = 0; i < bars.size(); ++i) {
        options().SetAsInteger(keys[2 * i], bars[i]->y() - top + toolbarTopMargin);
        options().SetAsInteger(keys[2 * i + 1], bars[i]->x() - left + toolbarLeftMargin);
    }
    for (qsizetype i = 0; i < bars.size(); ++i)
        bars[i]->setVisible(!hidden[i]);
    if (layout())
        layout()->activate();
    setUpdatesEnabled(updates);
}

void TFormMain::UpdateBackground() {
    m_mdiArea->SetBackground(qm::ColorFromOption(options().GetAsInteger(QStringLiteral("ColorMain"))),
                             options().GetAsString(QStringLiteral("BackgroundPictureMain")),
                             options().GetAsBoolean(QStringLiteral("BackgroundPictureMainTransparent")));
}

void TFormMain::MIOptionsClick() {
    TFormOptions dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    UpdateBackground();
    ApplyToolbarVisibility();
}

void TFormMain::UpdateWebItems() {
    // A shortcut file that isn't there has nothing to open.
    for (const WebItem& web : webItems)
        Item(web.menuItem)
            ->setEnabled(FormResourceHolder &&
                         QFile::exists(FormResourceHolder->DataRootPath + QLatin1String(web.file)));
}

// --- translation of the bar ---

void TFormMain::TranslateOutlookBar() {
    const TVintraDictionary* dictionary = m_translator.Dictionary();
    for (int page = 0; page < m_outlookBar->PageCount(); ++page) {
        const QString pageKey = QStringLiteral("OutlookBarMain.") + QString::number(page);
        m_outlookBar->SetPageCaption(page, dictionary->GetText(pageKey, QString()));
        // Page 1 holds no items yet when this runs: its shortcuts are the user's own names.
        for (int item = 0; item < m_outlookBar->ItemCount(page); ++item)
            m_outlookBar->SetItemCaption(
                page, item,
                dictionary->GetText(pageKey + QLatin1Char('.') + QString::number(item), QString()));
    }
    m_outlookBar->FitPageCaptions();
}

// --- routes ---

TChildRoute* TFormMain::FindRoute(const QString& name) {
    for (TChildRoute& route : m_routes)
        if (route.Name == name)
            return &route;
    return nullptr;
}

const TChildRoute* TFormMain::Route(const QString& name) const {
    return const_cast<TFormMain*>(this)->FindRoute(name);
}

void TFormMain::RegisterChild(const QString& name, TChildFactory factory) {
    TChildRoute* route = FindRoute(name);
    if (!route || route->Kind != TRouteKind::MdiToggle)
        throw std::invalid_argument("no MDI route named " + name.toStdString());
    route->Factory = std::move(factory);
    UpdateRouteCommands();
}

void TFormMain::RegisterModal(const QString& name, std::function<void()> run) {
    TChildRoute* route = FindRoute(name);
    if (!route || route->Kind != TRouteKind::Modal)
        throw std::invalid_argument("no modal route named " + name.toStdString());
    route->Run = std::move(run);
    UpdateRouteCommands();
}

void TFormMain::RegisterModeless(const QString& name, TChildFactory factory) {
    TChildRoute* route = FindRoute(name);
    if (!route || route->Kind != TRouteKind::Modeless)
        throw std::invalid_argument("no modeless route named " + name.toStdString());
    route->Factory = std::move(factory);
    UpdateRouteCommands();
}

void TFormMain::RegisterCommand(const QString& name, std::function<void()> handler) {
    QAction* item = findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
    if (!item || !std::count_if(std::begin(plainCommands), std::end(plainCommands),
                                [&](const char* command) { return name == QLatin1String(command); }))
        throw std::invalid_argument("no command named " + name.toStdString());
    m_commands.insert(name, std::move(handler));
    item->setEnabled(true);
}

void TFormMain::UpdateRouteCommands() {
    for (const TChildRoute& route : m_routes) {
        const bool enabled = route.Registered();
        route.MenuItem->setEnabled(enabled);
        if (route.ToolButton && !route.UserButton)
            route.ToolButton->setEnabled(enabled);
        if (route.BarPage >= 0 && route.BarItem < m_outlookBar->ItemCount(route.BarPage))
            m_outlookBar->SetItemEnabled(route.BarPage, route.BarItem, enabled);
    }
    UpdateUserButtons();
}

void TFormMain::UpdateUserButtons() {
    const bool user = FormResourceHolder && options().GetAsInteger(QStringLiteral("ActiveUserId")) > 0;
    for (const TChildRoute& route : m_routes)
        if (route.UserButton && route.ToolButton)
            route.ToolButton->setEnabled(user && route.Registered());
}

QObject* TFormMain::ChildWindow(const QString& name) const {
    const TChildRoute* route = Route(name);
    return route ? route->Window.data() : nullptr;
}

void TFormMain::OpenShortcut(const QString& name, const QString& definition, const QString& shortcutName) {
    TChildRoute* route = FindRoute(name);
    if (!route)
        return;
    route->PendingDefinition = definition;
    PendingShortcutName = shortcutName;
    Toggle(name, true);
    route->PendingDefinition.clear();
}

void TFormMain::Toggle(const QString& name, bool show) {
    TChildRoute* route = FindRoute(name);
    if (!route || !route->Registered())
        return;
    switch (route->Kind) {
    case TRouteKind::Modal:
        if (show)
            route->Run();
        return;
    case TRouteKind::Modeless:
        if (!show)
            return;
        if (!route->Window)
            route->Window = route->Factory(TChildRequest{});
        if (route->Window) {
            route->Window->show();
            route->Window->raise();
            route->Window->activateWindow();
        }
        return;
    case TRouteKind::MdiToggle:
        if (show)
            ToggleOn(*route);
        else
            ToggleOff(*route);
        return;
    }
}

void TFormMain::ToggleOn(TChildRoute& route) {
    if (route.ToolButton)
        route.ToolButton->setChecked(true);
    if (route.ShortcutToggle && route.Window &&
        (!route.PendingDefinition.isEmpty() || !route.WindowDefinition.isEmpty())) {
        // A shortcut's window replaces the open one, and the plain window replaces a shortcut's;
        // the Window menu entry of the old one stays behind.
        QWidget* old = route.Window;
        if (old == m_activeChild) {
            DeactivateChild(old);
            m_activeChild = nullptr;
        }
        route.Window = nullptr;
        DestroyChild(old);
    }
    const TChildRoute* test = route.CreationTestRoute.isEmpty() ? &route : FindRoute(route.CreationTestRoute);
    bool created = false;
    if (!test->Window) {
        QWidget* form = route.Factory(TChildRequest{route.PendingDefinition, PendingShortcutName});
        if (!form)
            return;
        auto* sub = new TMdiChildWindow(this, route.Name);
        sub->setWidget(form);
        if (route.ToolButton)
            sub->setWindowIcon(route.ToolButton->icon());
        m_mdiArea->addSubWindow(sub);
        auto* entry = new QAction(form->windowTitle(), m_windowMenu);
        entry->setCheckable(true);
        connect(form, &QWidget::windowTitleChanged, entry, &QAction::setText);
        connect(entry, &QAction::triggered, this, [this, entry] { WindowMenuItemsClick(entry); });
        m_windowMenu->addAction(entry);
        m_windowEntries << entry;
        m_windowForms << form;
        route.Window = form;
        route.WindowDefinition = route.PendingDefinition;
        created = true;
    }
    if (!route.Window)
        throw std::runtime_error("Access violation: the " + route.Name.toStdString() +
                                 " window does not exist");
    ShowChild(route.Window);
    // The window has restored its stored place while it was shown.
    if (created)
        PlaceNewChild(qobject_cast<QMdiSubWindow*>(route.Window->parentWidget()));
    CheckWindowEntry(route.Window);
}

void TFormMain::ToggleOff(TChildRoute& route) {
    if (route.ToolButton)
        route.ToolButton->setChecked(false);
    QWidget* form = route.Window;
    if (!form)
        return;
    const qsizetype index = m_windowForms.indexOf(form);
    if (index >= 0) {
        m_windowForms.removeAt(index);
        m_windowEntries.takeAt(index)->deleteLater();
    }
    // The release routine: the deactivation first, then the window's own datasets.
    if (form == m_activeChild) {
        DeactivateChild(form);
        m_activeChild = nullptr;
    }
    if (auto* child = dynamic_cast<TChildCommands*>(form))
        child->Release();
    route.Window = nullptr;
    DestroyChild(form);
    UpdatePrintAction();
}

void TFormMain::PlaceNewChild(QMdiSubWindow* sub) {
    if (!sub || sub->isMaximized() || sub->isMinimized())
        return;
    // The stored place is brought into the client as it is without scroll bars.
    const QSize client = m_mdiArea->maximumViewportSize();
    QRect geometry = qm::ClampToClient(sub->geometry(), client);
    const QList<QMdiSubWindow*> others = m_mdiArea->subWindowList(QMdiArea::CreationOrder);
    const auto takenCorner = [&](const QPoint& corner) {
        return std::any_of(others.begin(), others.end(), [&](const QMdiSubWindow* other) {
            return other != sub && other->isVisible() && !other->isMaximized() &&
                   (other->pos() - corner).manhattanLength() < 4;
        });
    };
    // A window that would open right over another goes one title bar down and right from the
    // one opened last, and on from there while that place is taken too. It gives up size rather
    // than its place; where its minimum doesn't let it, it reaches past the client, under the
    // scroll bars, as a cascade does.
    if (takenCorner(geometry.topLeft())) {
        QMdiSubWindow* last = nullptr;
        for (QMdiSubWindow* other : others)
            if (other != sub && other->isVisible() && !other->isMaximized())
                last = other;
        const int step = std::max(16, style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, sub));
        QPoint corner = last->pos();
        for (qsizetype tries = 0; tries <= others.size() && (tries == 0 || takenCorner(corner)); ++tries) {
            corner += QPoint(step, step);
            // Where less than half of it would fit, the cascade starts again at the top.
            if (corner.x() + geometry.width() / 2 > client.width() ||
                corner.y() + geometry.height() / 2 > client.height())
                corner = QPoint(0, 0);
        }
        const QSize room(client.width() - corner.x(), client.height() - corner.y());
        geometry = QRect(corner, geometry.size().boundedTo(room).expandedTo(sub->minimumSize()));
    }
    sub->setGeometry(geometry);
}

void TFormMain::ShowChild(QWidget* form) {
    auto* sub = qobject_cast<QMdiSubWindow*>(form->parentWidget());
    if (!sub)
        return;
    sub->show();
    m_mdiArea->setActiveSubWindow(sub);
}

void TFormMain::DestroyChild(QWidget* form) {
    // Later, since the window may be inside one of its own handlers now.
    if (auto* sub = qobject_cast<QMdiSubWindow*>(form->parentWidget())) {
        sub->hide();
        sub->deleteLater();
        // The next child in the stacking order takes over, as it does when a window closes.
        if (!m_mdiArea->activeSubWindow() || m_mdiArea->activeSubWindow() == sub) {
            const QList<QMdiSubWindow*> stack = m_mdiArea->subWindowList(QMdiArea::StackingOrder);
            for (qsizetype i = stack.size() - 1; i >= 0; --i)
                if (stack[i] != sub && stack[i]->isVisible()) {
                    m_mdiArea->setActiveSubWindow(stack[i]);
                    break;
                }
        }
    } else {
        form->hide();
        form->deleteLater();
    }
}

void TFormMain::CheckWindowEntry(const QWidget* form) {
    for (qsizetype i = 0; i < m_windowEntries.size(); ++i)
        m_windowEntries[i]->setChecked(form && m_windowForms[i] == form);
}

void TFormMain::WindowMenuItemsClick(QAction* entry) {
    const qsizetype index = m_windowEntries.indexOf(entry);
    if (index < 0)
        return;
    for (qsizetype i = 0; i < m_windowEntries.size(); ++i)
        m_windowEntries[i]->setChecked(i == index);
    if (QWidget* form = m_windowForms[index])
        ShowChild(form);
}

void TFormMain::CloseChild(QObject* window) {
    auto* form = qobject_cast<QWidget*>(window);
    if (auto* sub = form ? qobject_cast<QMdiSubWindow*>(form->parentWidget()) : nullptr)
        sub->close();
}

void TFormMain::ChildClosed(QMdiSubWindow* sub, const QString& route) {
    Q_UNUSED(sub);
    Toggle(route, false);
}

void TFormMain::OutlookBarMainItemClick(int page, int item) {
    // Page 1 holds the shortcuts, which open through their own handler.
    if (page == TShortcutBar::ShortcutPage) {
        if (m_shortcutBar)
            m_shortcutBar->ItemClick(item);
        return;
    }
    for (const TChildRoute& route : m_routes)
        if (route.BarPage == page && route.BarItem == item) {
            Toggle(route.Name, true);
            return;
        }
}

// --- the active child and its commands ---

void TFormMain::SubWindowActivated(QMdiSubWindow* sub) {
    QWidget* form = sub && sub->isVisible() ? sub->widget() : nullptr;
    if (form != m_activeChild) {
        if (m_activeChild)
            DeactivateChild(m_activeChild);
        m_activeChild = form;
        if (form)
            ActivateChild(form);
    }
    UpdatePrintAction();
    FocusChanged();
}

void TFormMain::ActivateChild(QWidget* form) {
    CheckWindowEntry(form);
    auto* child = dynamic_cast<TChildCommands*>(form);
    const bool find = child && child->SupportsFind();
    Item("MIFind")->setEnabled(find);
    Item("MIFindNext")->setEnabled(find);
    if (child)
        child->FormActivate();
}

void TFormMain::DeactivateChild(QWidget* form) {
    if (auto* child = dynamic_cast<TChildCommands*>(form))
        child->FormDeactivate();
    SetStatusCount(QString());
    // The user may be typing a pattern for this child into the quick search box.
    if (!m_editQuickSearch->hasFocus()) {
        Item("MIPrint")->setEnabled(false);
        Item("MIFind")->setEnabled(false);
        Item("MIFindNext")->setEnabled(false);
    }
}

TChildCommands* TFormMain::ActiveCommands() const {
    return dynamic_cast<TChildCommands*>(m_activeChild.data());
}

void TFormMain::UpdatePrintAction() {
    const TChildCommands* child = ActiveCommands();
    Item("MIPrint")->setEnabled(child && child->Tag == 1);
}

void TFormMain::MIFindClick() {
    // With the quick search bar hidden there is nowhere to type a pattern: show it first.
    if (m_toolbarQuickSearch->isHidden()) {
        m_toolbarQuickSearch->show();
        m_editQuickSearch->setFocus(Qt::ShortcutFocusReason);
        m_editQuickSearch->selectAll();
        return;
    }
    if (TChildCommands* child = ActiveCommands())
        child->Find(0);
}

bool TFormMain::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        FrameShortcutWins(watched, static_cast<QKeyEvent*>(event))) {
        // Left unaccepted and kept from the edit, the key goes on to the frame's shortcut.
        event->ignore();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

bool TFormMain::FrameShortcutWins(QObject* target, const QKeyEvent* key) const {
    auto* widget = qobject_cast<QWidget*>(target);
    if (!widget || widget->window() != this)
        return false;
    const QKeySequence sequence(key->keyCombination());
    for (const QAction* action : findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly)) {
        // Cut, Copy and Paste are the edit's own keys and do the same there.
        const QString name = action->objectName();
        if (name == QLatin1String("MICut") || name == QLatin1String("MICopy") ||
            name == QLatin1String("MIPaste"))
            continue;
        if (action->isEnabled() && action->isVisible() && action->shortcuts().contains(sequence))
            return true;
    }
    return false;
}

void TFormMain::SetCommandEnabled(const QString& name, bool enabled) {
    if (QAction* item = findChild<QAction*>(name, Qt::FindDirectChildrenOnly))
        item->setEnabled(enabled);
}

void TFormMain::SetStatusCount(const QString& text) {
    m_statusCount->setText(text);
}

void TFormMain::SetStatusHint(const QString& text) {
    m_statusHint->setText(text);
}

QString TFormMain::QuickSearchText() const {
    return m_editQuickSearch->text();
}

// --- focus: the edit commands and the navigator ---

void TFormMain::FocusChanged() {
    QWidget* focus = QApplication::focusWidget();
    if (focus && focus->window() != this)
        focus = nullptr;

    QWidget* editor = nullptr;
    if (qobject_cast<QLineEdit*>(focus) || qobject_cast<QTextEdit*>(focus) ||
        qobject_cast<QPlainTextEdit*>(focus))
        editor = focus;
    if (editor != m_focusEditor) {
        if (m_focusEditor)
            disconnect(m_focusEditor, nullptr, this, nullptr);
        m_focusEditor = editor;
        if (auto* line = qobject_cast<QLineEdit*>(editor))
            connect(line, &QLineEdit::selectionChanged, this, &TFormMain::UpdateEditActions);
        else if (auto* rich = qobject_cast<QTextEdit*>(editor))
            connect(rich, &QTextEdit::selectionChanged, this, &TFormMain::UpdateEditActions);
        else if (auto* plain = qobject_cast<QPlainTextEdit*>(editor))
            connect(plain, &QPlainTextEdit::selectionChanged, this, &TFormMain::UpdateEditActions);
    }

    // The dataset of the focused data-aware control, inside a child of this frame only.
    qm::Dataset* dataset = nullptr;
    bool inChild = false;
    for (QObject* object = focus; object; object = object->parent()) {
        if (auto* sub = qobject_cast<QMdiSubWindow*>(object)) {
            inChild = sub->mdiArea() == m_mdiArea;
            break;
        }
        if (dataset)
            continue;
        if (auto* provider = dynamic_cast<TDatasetProvider*>(object))
            dataset = provider->ProvidedDataset();
        else if (auto* view = qobject_cast<QAbstractItemView*>(object))
            dataset = DatasetOfView(view);
        else if (object == focus) // an edit bound to a field of a record
            dataset = TDBFieldBinder::DatasetOf(focus);
    }
    if (!inChild)
        dataset = nullptr;
    if (dataset != m_focusDataset) {
        if (m_focusDataset)
            disconnect(m_focusDataset, nullptr, this, nullptr);
        m_focusDataset = dataset;
        if (dataset) {
            connect(dataset, &qm::Dataset::stateChanged, this, &TFormMain::UpdateNavigator);
            connect(dataset, &qm::Dataset::currentChanged, this, &TFormMain::UpdateNavigator);
            connect(dataset, &qm::Dataset::reset, this, &TFormMain::UpdateNavigator);
            connect(dataset, &qm::Dataset::rowInserted, this, &TFormMain::UpdateNavigator);
            connect(dataset, &qm::Dataset::rowRemoved, this, &TFormMain::UpdateNavigator);
        }
    }
    UpdateEditActions();
    UpdateNavigator();
}

void TFormMain::UpdateEditActions() {
    bool selection = false;
    bool readOnly = true;
    if (auto* line = qobject_cast<QLineEdit*>(m_focusEditor.data())) {
        selection = line->hasSelectedText();
        readOnly = line->isReadOnly();
    } else if (auto* rich = qobject_cast<QTextEdit*>(m_focusEditor.data())) {
        selection = rich->textCursor().hasSelection();
        readOnly = rich->isReadOnly();
    } else if (auto* plain = qobject_cast<QPlainTextEdit*>(m_focusEditor.data())) {
        selection = plain->textCursor().hasSelection();
        readOnly = plain->isReadOnly();
    }
    const bool editor = m_focusEditor;
    Item("MICut")->setEnabled(editor && selection && !readOnly);
    Item("MICopy")->setEnabled(editor && selection);
    Item("MIPaste")->setEnabled(editor && !readOnly && !QGuiApplication::clipboard()->text().isEmpty());
}

void TFormMain::UpdateNavigator() {
    const qm::Dataset* dataset = m_focusDataset;
    const bool active = dataset && dataset->Active();
    const qm::DatasetState state = active ? dataset->State() : qm::dsInactive;
    const bool editing = state == qm::dsEdit || state == qm::dsInsert;
    const bool canModify = active && !dataset->ReadOnly();
    const bool enabled[] = {
        active && !dataset->Bof(),        // First
        active && !dataset->Bof(),        // Prior
        active && !dataset->Eof(),        // Next
        active && !dataset->Eof(),        // Last
        canModify,                        // Insert
        canModify && !dataset->IsEmpty(), // Delete
        canModify && !editing,            // Edit
        editing,                          // Post
        editing,                          // Cancel
        active,                           // Refresh
    };
    for (size_t i = 0; i < std::size(navigatorButtons); ++i)
        Item(navigatorButtons[i])->setEnabled(enabled[i]);
}

void TFormMain::RunNavigator(const QString& name) {
    qm::Dataset* dataset = m_focusDataset;
    if (!dataset || !dataset->Active())
        return;
    if (name == QLatin1String("ToolButtonFirst"))
        dataset->First();
    else if (name == QLatin1String("ToolButtonPrior"))
        dataset->Prior();
    else if (name == QLatin1String("ToolButtonNext"))
        dataset->Next();
    else if (name == QLatin1String("ToolButtonLast"))
        dataset->Last();
    else if (name == QLatin1String("ToolButtonInsert"))
        dataset->Insert();
    else if (name == QLatin1String("ToolButtonDelete"))
        dataset->Delete();
    else if (name == QLatin1String("ToolButtonEdit"))
        dataset->Edit();
    else if (name == QLatin1String("ToolButtonPost"))
        dataset->Post();
    else if (name == QLatin1String("ToolButtonCancel"))
        dataset->Cancel();
    else if (name == QLatin1String("ToolButtonRefresh"))
        dataset->Refresh();
    UpdateNavigator();
}
