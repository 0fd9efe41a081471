#pragma once

#include <QRect>
#include <QString>

class QObject;

// The two sides of the MDI frame and its children, without widgets, so that windows of every
// folder reach the frame of the shell and the frame reaches them.

/// What the frame sends to its active child. A child window inherits it beside its widget class
/// and overrides what it supports; the rest does nothing.
class TChildCommands {
public:
    virtual ~TChildCommands();

    /// 1 marks a window that prints: Print is enabled exactly while such a window is active.
    int Tag = 0;

    /// Whether Find and Find Next are enabled while this window is active.
    virtual bool SupportsFind() const { return false; }
    virtual void Print() {}
    /// `next` 0: find from the start with the quick search pattern; 1: find the next hit.
    virtual void Find(int next);
    /// After the frame has checked the window's Window menu entry and enabled Print, Find and
    /// FindNext: the status text and the window's own tool buttons.
    virtual void FormActivate() {}
    /// Before the frame clears the count panel: the window disables its own tool buttons.
    virtual void FormDeactivate() {}
    /// The release routine, run by the frame's Toggle(false) just before it destroys the window:
    /// close the datasets. The frame has run the deactivation already.
    virtual void Release() {}
};

/// What children ask of the frame. Route names are the window names without "TForm":
/// Recipes, Ingredients, Menus, Calendar, Units, Categories, CookingTips, Users, UserDiary,
/// Diets, SearchRecipes, SearchIngredients, Options, SystemInfo, About.
class TMdiFrame {
public:
    virtual ~TMdiFrame();

    /// Panel 1 of the status bar: the active window's count text.
    virtual void SetStatusCount(const QString& text) = 0;
    /// The pattern of the quick search box.
    virtual QString QuickSearchText() const = 0;
    /// The one route that opens (true) and closes (false) a window.
    virtual void Toggle(const QString& route, bool show) = 0;
    /// The open window of a route; nullptr while it is closed.
    virtual QObject* ChildWindow(const QString& route) const = 0;
    /// Closes a child as its close box does: its close handler runs (FormClose), and when it
    /// accepts, the frame runs Toggle(false) of the window's route.
    virtual void CloseChild(QObject* window) = 0;
    /// Enables or disables a command of the frame by name (ToolButtonRecalculate, ...).
    virtual void SetCommandEnabled(const QString& name, bool enabled) = 0;
};

/// The frame of the process; nullptr until it is created (and in tests without one).
extern TMdiFrame* MdiFrame;

namespace qm {

/// A child's geometry moved, and shrunk where it is larger, so that it lies inside a client area
/// of the given size: a window stored partly outside (after a Tile in a larger frame, or on a
/// larger screen) comes back whole. The widget's minimum size still applies when it is set.
QRect ClampToClient(const QRect& geometry, const QSize& client);

} // namespace qm
