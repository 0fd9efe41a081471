#pragma once

#include <QApplication>

class TFormMain;

/// The application object of the window program: whatever a handler throws reaches the exception
/// dialog (Abort silently ends the operation), and the program goes on.
class TApplication : public QApplication {
    Q_OBJECT
public:
    TApplication(int& argc, char** argv);
    bool notify(QObject* receiver, QEvent* event) override;
};

/// Call inside a catch block: Abort is silent, anything else goes to the exception dialog.
void ShowCurrentException();

/// How the start of the frame ended.
enum class TStartResult {
    Run,         ///< the frame is shown: run the message loop
    Declined,    ///< the user refused the database update: end the process at once
    Failed,      ///< the creation failed; the exception dialog has told why
    Incompatible ///< the database is newer than this build: the process waits for good
};

/// Runs the frame's FormCreate, shows it and runs FormShow. A refused update ends before the frame
/// is shown, so nothing is asked, shown or stored. What FormShow throws reaches the exception
/// dialog and leaves the frame running.
TStartResult StartFrame(TFormMain& form);
