#pragma once

#include "components/mdi_frame.h"
#include "components/vintra_translator.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

class QAction;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QMdiSubWindow;
class QMenu;
class QToolBar;
class TDataModuleMain;
class TFormResourceHolder;
class TMdiClient;
class TMessageBoxPresenter;
class TOutlookBar;
class TShortcutBar;
struct TAppPaths;
namespace qm {
class Dataset;
}

/// How a route opens its window.
enum class TRouteKind {
    MdiToggle, ///< MDI child, opened and closed by Toggle; the tool button is a real toggle
    Modal,     ///< dialog run to its end by the route's Run
    Modeless   ///< separate window, created on first use and kept
};

/// What a shortcut hands to the window that the toggle creates (Recipes, Ingredients).
struct TChildRequest {
    QString Definition; ///< the saved SELECT; empty for a plain opening
    QString Name;       ///< the shortcut's name
};

/// Makes the window of a route; the frame owns it from then on.
using TChildFactory = std::function<QWidget*(const TChildRequest& request)>;

/// One window route of the frame: its commands, its window pointer and how it opens. The route
/// table is fixed; a window plugs into its route with RegisterChild / RegisterModal /
/// RegisterModeless, and until then the route's commands stay disabled.
///
/// Special cases, declared in the table:
/// - ShortcutToggle (Recipes, Ingredients): with a pending definition and an open window, the
///   open window is destroyed first, without removing its Window menu entry, and the new one is
///   created with the definition.
/// - CreationTestRoute (Diets looks at UserDiary): the toggle creates a window when the pointer
///   of that other route is null, not its own. So with the diary closed each opening makes a new
///   Diets window, and with the diary open none is made and the empty pointer is shown, which
///   fails as a null window does.
struct TChildRoute {
    QString Name;
    TRouteKind Kind = TRouteKind::MdiToggle;
    QAction* ToolButton = nullptr; ///< checkable for MDI toggles: checked is Down
    QAction* MenuItem = nullptr;
    int BarPage = -1;
    int BarItem = -1;
    bool ShortcutToggle = false;
    QString CreationTestRoute;
    bool UserButton = false;   ///< the tool button also needs ActiveUserId above 0
    TChildFactory Factory;     ///< MdiToggle and Modeless
    std::function<void()> Run; ///< Modal
    QPointer<QWidget> Window;  ///< the window's pointer: null while closed
    QString PendingDefinition; ///< handed to the next window this route creates
    QString WindowDefinition;  ///< the definition the open window was made with

    bool Registered() const { return Kind == TRouteKind::Modal ? bool(Run) : bool(Factory); }
};

/// The MDI frame: brings the shared objects and the database up, routes the windows and the
/// commands, and takes everything down.
class TFormMain : public QMainWindow, public TMdiFrame {
    Q_OBJECT
public:
    explicit TFormMain(const TAppPaths& paths, QWidget* parent = nullptr);
    ~TFormMain() override;

    /// Creation steps: resource holder, data module, dictionary. False when the database is
    /// not usable; `DatabaseDeclined()` tells a refused update.
    bool FormCreate();
    /// Showing steps: bar pages, translation, geometry, tool bars, user buttons.
    void FormShow();
    bool DatabaseDeclined() const;

    // --- TMdiFrame ---
    void SetStatusCount(const QString& text) override;
    QString QuickSearchText() const override;
    void Toggle(const QString& route, bool show) override;
    QObject* ChildWindow(const QString& route) const override;
    void CloseChild(QObject* window) override;
    void SetCommandEnabled(const QString& name, bool enabled) override;

    // --- routes ---
    void RegisterChild(const QString& route, TChildFactory factory);
    void RegisterModal(const QString& route, std::function<void()> run);
    void RegisterModeless(const QString& route, TChildFactory factory);
    /// Binds a plain command (MIRepair, MIContents, ...) to its handler and enables it.
    void RegisterCommand(const QString& name, std::function<void()> handler);
    const TChildRoute* Route(const QString& name) const;
    /// Opens a route's window for a shortcut: the definition and name go to the window the
    /// toggle creates, and the pending definition is cleared after.
    void OpenShortcut(const QString& route, const QString& definition, const QString& name);
    QString PendingShortcutName;

    /// Window menu entries of the open children, in opening order (parallel to their windows).
    QList<QAction*> WindowMenuEntries() const { return m_windowEntries; }
    /// Checks the entry and shows its window.
    void WindowMenuItemsClick(QAction* entry);
    /// Closes every child from the last to the first, each through its own close.
    void CloseAllChildren();
    /// The child that was activated last and is still open; nullptr when none.
    QWidget* ActiveChild() const { return m_activeChild; }

    void SetStatusHint(const QString& text);
    /// ToolButtonUsersDiary and ToolButtonDiets need ActiveUserId above 0 (and their windows).
    void UpdateUserButtons();
    /// Applies ToolbarMain ... ToolbarQuickSearch, as after the options dialog.
    void ApplyToolbarVisibility();
    /// Lays the tool bars out from their Top/Left options. Qt has rows of tool bars rather than
    /// free coordinates: tool bars whose Top values lie within half a row (16) of the first of
    /// a row share that row, rows go down by Top, and within a row the bars go by Left.
    void ApplyToolbarPositions();
    /// Writes the tool bars' places into their Top/Left options (not stored): Top is the bar's
    /// distance from the top of the tool bar area plus 2, Left its distance from the left plus
    /// 11, the margins of the defaults. Hidden bars are measured as if shown.
    void SaveToolbarPositions();
    /// The ten options of the tool bar places, Top and Left of each bar.
    static QStringList ToolbarPositionOptions();
    /// Reads ColorMain, BackgroundPictureMain, BackgroundPictureMainTransparent and repaints.
    void UpdateBackground();
    /// Runs the options dialog; on OK the background is repainted and tool bar visibility
    /// applied again.
    void MIOptionsClick();

    /// Help file of the application: ".chm" from start-up, ".hlp" after a change of language.
    QString HelpFile;

    TMdiClient* MdiArea() const { return m_mdiArea; }
    TOutlookBar* OutlookBar() const { return m_outlookBar; }
    TShortcutBar* ShortcutBar() const { return m_shortcutBar; }
    /// Rebuilds page 1 of the bar from the Shortcuts table (after a search is saved).
    void ReloadShortcuts();
    TVintraTranslator& Translator() { return m_translator; }
    bool closeWithoutConfirmation = false;

    /// Find: shows the quick search bar and puts the focus in it while the bar is hidden;
    /// otherwise the active child finds the pattern.
    void MIFindClick();

protected:
    void closeEvent(QCloseEvent* event) override;
    /// ShortcutOverride of any widget of the frame: a key of an enabled frame command is kept
    /// from the widget, so that the command runs.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class TMdiChildWindow;

    void BuildActions();
    void BuildMenus();
    void BuildToolbars();
    void BuildOutlookBar();
    void BuildRoutes();
    void AddBarPages();
    void RestoreGeometry();
    void TranslateOutlookBar();
    void UpdateRouteCommands();
    void UpdateWebItems();

    TChildRoute* FindRoute(const QString& name);
    void ToggleOn(TChildRoute& route);
    void ToggleOff(TChildRoute& route);
    void ShowChild(QWidget* form);
    /// A new child that would cover another one's corner is cascaded from the last opened, and
    /// any new child is kept inside the client area.
    void PlaceNewChild(QMdiSubWindow* sub);
    bool FrameShortcutWins(QObject* target, const QKeyEvent* key) const;
    void DestroyChild(QWidget* form);
    void CheckWindowEntry(const QWidget* form);
    void ChildClosed(QMdiSubWindow* sub, const QString& route);
    void OutlookBarMainItemClick(int page, int item);

    void SubWindowActivated(QMdiSubWindow* sub);
    void ActivateChild(QWidget* form);
    void DeactivateChild(QWidget* form);
    void UpdatePrintAction();
    TChildCommands* ActiveCommands() const;

    void FocusChanged();
    void UpdateEditActions();
    void UpdateNavigator();
    void RunNavigator(const QString& name);

    QAction* Item(const char* name) const;

    const TAppPaths& m_paths;
    std::unique_ptr<TFormResourceHolder> m_holder;
    std::unique_ptr<TDataModuleMain> m_dataModule;
    std::unique_ptr<TMessageBoxPresenter> m_presenter;
    TVintraTranslator m_translator;
    TMdiClient* m_mdiArea = nullptr;
    TOutlookBar* m_outlookBar = nullptr;
    TShortcutBar* m_shortcutBar = nullptr;
    QLabel* m_statusHint = nullptr;
    QLabel* m_statusCount = nullptr;
    QLineEdit* m_editQuickSearch = nullptr;
    QToolBar* m_toolbarMain = nullptr;
    QToolBar* m_toolbarNavigator = nullptr;
    QToolBar* m_toolbarRecipes = nullptr;
    QToolBar* m_toolbarQuickSearch = nullptr;
    QToolBar* m_toolbarUsers = nullptr;
    QMenu* m_windowMenu = nullptr;

    std::vector<TChildRoute> m_routes;
    QHash<QString, std::function<void()>> m_commands;
    QList<QAction*> m_windowEntries;
    QList<QPointer<QWidget>> m_windowForms;
    QPointer<QWidget> m_activeChild;
    QPointer<QWidget> m_focusEditor;
    QPointer<qm::Dataset> m_focusDataset;
    bool m_barPagesAdded = false;
};

extern TFormMain* FormMain;
