#pragma once

class QWidget;

/// The program's main window for `window`: the application's visible QMainWindow, else the top
/// level of the window's parent; nullptr when there is neither.
QWidget* MainWindowOf(const QWidget* window);

/// Moves a top-level window so that it stands centred on the main window, kept on the main
/// window's screen. Without a main window it is centred on its screen.
void CenterOnMainWindow(QWidget* window);
