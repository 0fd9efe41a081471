#include "shell/ui/start_up.h"

#include "components/messages.h"
#include "shell/ui/form_main.h"
#include "shell/ui/message_box_presenter.h"

#include <exception>

TApplication::TApplication(int& argc, char** argv) : QApplication(argc, argv) {}

bool TApplication::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        ShowCurrentException();
    }
    return false;
}

void ShowCurrentException() {
    try {
        throw;
    } catch (const Abort&) {
        // the silent exception: the operation just ends
    } catch (const std::exception& e) {
        ShowExceptionDialog(QString::fromUtf8(e.what()));
    } catch (...) {
        ShowExceptionDialog(QStringLiteral("Unknown exception"));
    }
}

TStartResult StartFrame(TFormMain& form) {
    bool created = false;
    try {
        created = form.FormCreate();
    } catch (...) {
        ShowCurrentException();
        return TStartResult::Failed;
    }
    // Checked first: a refused update leaves the data module initialised.
    if (form.DatabaseDeclined())
        return TStartResult::Declined;
    if (!created)
        return TStartResult::Incompatible;
    form.show();
    try {
        form.FormShow();
    } catch (...) {
        ShowCurrentException();
    }
    return TStartResult::Run;
}
