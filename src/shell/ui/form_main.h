#pragma once

#include <QMainWindow>
#include <memory>

class QAction;
class QLabel;
class QMdiArea;
class QMenu;
class QToolBar;
class TDataModuleMain;
class TFormResourceHolder;
class TMessageBoxPresenter;
struct TAppPaths;

/// The MDI frame: brings the shared objects and the database up, and takes them down.
class TFormMain : public QMainWindow {
    Q_OBJECT
public:
    explicit TFormMain(const TAppPaths& paths, QWidget* parent = nullptr);
    ~TFormMain() override;

    /// Creation steps: resource holder, data module, dictionary. False when the database is
    /// not usable; `DatabaseDeclined()` tells a refused update.
    bool FormCreate();
    /// Showing steps: translation, geometry, tool bars, user buttons.
    void FormShow();
    bool DatabaseDeclined() const;

    void SetStatusCount(const QString& text);
    void SetStatusHint(const QString& text);
    void UpdateUserButtons();
    /// Applies ToolbarMain ... ToolbarUsers, as after the options dialog.
    void ApplyToolbarVisibility();

    QMdiArea* MdiArea() const { return m_mdiArea; }
    bool closeWithoutConfirmation = false;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void BuildMenus();
    void BuildToolbars();
    void RestoreGeometry();

    const TAppPaths& m_paths;
    std::unique_ptr<TFormResourceHolder> m_holder;
    std::unique_ptr<TDataModuleMain> m_dataModule;
    std::unique_ptr<TMessageBoxPresenter> m_presenter;
    QMdiArea* m_mdiArea = nullptr;
    QLabel* m_statusHint = nullptr;
    QLabel* m_statusCount = nullptr;
    QToolBar* m_toolbarMain = nullptr;
    QToolBar* m_toolbarNavigator = nullptr;
    QToolBar* m_toolbarRecipes = nullptr;
    QToolBar* m_toolbarQuickSearch = nullptr;
    QToolBar* m_toolbarUsers = nullptr;
    QMenu* m_windowMenu = nullptr;
    QAction* m_usersDiary = nullptr;
    QAction* m_diets = nullptr;
};

extern TFormMain* FormMain;
