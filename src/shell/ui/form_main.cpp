#include "shell/ui/form_main.h"

#include "components/messages.h"
#include "shell/app_paths.h"
#include "shell/ui/message_box_presenter.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMdiArea>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

TFormMain* FormMain = nullptr;

namespace {

TVintraOptions& options() { return FormResourceHolder->VintraOptions; }

} // namespace

TFormMain::TFormMain(const TAppPaths& paths, QWidget* parent) : QMainWindow(parent), m_paths(paths) {
    FormMain = this;
    setObjectName(QStringLiteral("FormMain"));
    setWindowTitle(QStringLiteral("Quillmeal Plus"));
    setMinimumSize(800, 600);
    m_mdiArea = new QMdiArea(this);
    m_mdiArea->setObjectName(QStringLiteral("MDIClient"));
    setCentralWidget(m_mdiArea);
    m_statusHint = new QLabel(this);
    m_statusHint->setObjectName(QStringLiteral("StatusBarPanel0"));
    m_statusCount = new QLabel(this);
    m_statusCount->setObjectName(QStringLiteral("StatusBarPanel1"));
    statusBar()->addWidget(m_statusHint, 1);
    statusBar()->addPermanentWidget(m_statusCount);
    BuildMenus();
    BuildToolbars();
}

TFormMain::~TFormMain() {
    SetMessagePresenter(nullptr);
    DataModuleMain = nullptr;
    FormResourceHolder = nullptr;
    if (FormMain == this)
        FormMain = nullptr;
}

void TFormMain::BuildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->setObjectName(QStringLiteral("MIFile"));
    QAction* exit = file->addAction(tr("E&xit"), this, &QWidget::close);
    exit->setObjectName(QStringLiteral("MIExit"));
    // The user commands are visible from the start; their windows come with later work.
    QMenu* users = menuBar()->addMenu(tr("&Users"));
    users->setObjectName(QStringLiteral("MIUsers"));
    QAction* management = users->addAction(tr("Users &Management"));
    management->setObjectName(QStringLiteral("MIUsersManagement"));
    m_usersDiary = users->addAction(tr("&Diary"));
    m_usersDiary->setObjectName(QStringLiteral("MIUsersDiary"));
    m_diets = users->addAction(tr("Di&ets"));
    m_diets->setObjectName(QStringLiteral("MIDiets"));
    for (QAction* action : users->actions())
        action->setEnabled(false);
    m_windowMenu = menuBar()->addMenu(tr("&Window"));
    m_windowMenu->setObjectName(QStringLiteral("MIWindow"));
}

void TFormMain::BuildToolbars() {
    const auto bar = [this](const char* name, const QString& title) {
        QToolBar* toolbar = addToolBar(title);
        toolbar->setObjectName(QLatin1String(name));
        return toolbar;
    };
    m_toolbarMain = bar("ToolBarMain", tr("Main"));
    m_toolbarNavigator = bar("ToolBarNavigator", tr("Navigator"));
    m_toolbarRecipes = bar("ToolBarRecipes", tr("Recipes"));
    m_toolbarQuickSearch = bar("ToolBarQuickSearch", tr("Quick search"));
    auto* quickSearch = new QLineEdit(m_toolbarQuickSearch);
    quickSearch->setObjectName(QStringLiteral("EditQuickSearch"));
    m_toolbarQuickSearch->addWidget(quickSearch);
    m_toolbarUsers = bar("ToolBarUsers", tr("Users"));
    QAction* diary = m_toolbarUsers->addAction(tr("Diary"));
    diary->setObjectName(QStringLiteral("ToolButtonUsersDiary"));
    QAction* diets = m_toolbarUsers->addAction(tr("Diets"));
    diets->setObjectName(QStringLiteral("ToolButtonDiets"));
}

bool TFormMain::FormCreate() {
    // 2. The resource holder: options, paths, dictionary, box captions.
    m_holder = std::make_unique<TFormResourceHolder>();
    FormResourceHolder = m_holder.get();
    m_holder->Create(m_paths.OptionsFile, m_paths.ExecutablePath, m_paths.DataRootPath);
    m_presenter = std::make_unique<TMessageBoxPresenter>();
    SetMessagePresenter(m_presenter.get());
    // 4. The user commands and their tool bar.
    m_toolbarUsers->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarUsers")));
    // 6. The data module opens and updates the database.
    m_dataModule = std::make_unique<TDataModuleMain>();
    DataModuleMain = m_dataModule.get();
    m_dataModule->OnTerminate = [] { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); };
    m_dataModule->DataModuleCreate();
    // 7. The dictionary once more, as the frame sets it for itself.
    m_holder->VintraDictionary.SetFileName(
        m_holder->LanguageFile(options().GetAsString(QStringLiteral("Language"))));
    return m_dataModule->initialised;
}

bool TFormMain::DatabaseDeclined() const { return m_dataModule && m_dataModule->terminated; }

void TFormMain::FormShow() {
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
    ApplyToolbarVisibility();
    // 16.
    UpdateUserButtons();
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

void TFormMain::ApplyToolbarVisibility() {
    m_toolbarMain->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarMain")));
    m_toolbarNavigator->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarNavigator")));
    m_toolbarRecipes->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarRecipes")));
    m_toolbarQuickSearch->setVisible(options().GetAsBoolean(QStringLiteral("ToolbarQuickSearch")));
}

void TFormMain::UpdateUserButtons() {
    // A button whose window route is not wired yet stays disabled whatever the user.
    const bool enabled = options().GetAsInteger(QStringLiteral("ActiveUserId")) > 0;
    for (const char* name : {"ToolButtonUsersDiary", "ToolButtonDiets"})
        if (QAction* action = findChild<QAction*>(QLatin1String(name)))
            action->setEnabled(enabled && action->property("routeWired").toBool());
}

void TFormMain::SetStatusCount(const QString& text) { m_statusCount->setText(text); }

void TFormMain::SetStatusHint(const QString& text) { m_statusHint->setText(text); }

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
    const QList<QMdiSubWindow*> children = m_mdiArea->subWindowList(QMdiArea::CreationOrder);
    for (qsizetype i = children.size() - 1; i >= 0; --i)
        children.at(i)->close();
    // 5.
    event->accept();
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}
