// Process entry of the window program.
#include "components/database.h"
#include "shell/app_paths.h"
#include "shell/single_instance.h"
#include "shell/ui/form_about.h"
#include "shell/ui/form_main.h"
#include "shell/ui/message_box_presenter.h"
#include "shell/ui/window_registry.h"

#include <QApplication>
#include <QFileInfo>
#include <QSplashScreen>
#include <QThread>
#include <QTimer>
#include <exception>

namespace {

/// Exceptions that reach the event loop go to the exception dialog, and the program goes on.
class TApplication : public QApplication {
public:
    using QApplication::QApplication;
    bool notify(QObject* receiver, QEvent* event) override {
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::exception& e) {
            ShowExceptionDialog(QString::fromUtf8(e.what()));
        }
        return false;
    }
};

} // namespace

int main(int argc, char** argv) {
    TApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Orvane Team"));
    QCoreApplication::setApplicationName(QStringLiteral("Quillmeal"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Quillmeal Plus"));

    QStringList args = app.arguments();
    const QString executable = QFileInfo(args.takeFirst()).fileName();
    const TAppPaths paths = ResolveAppPaths(QCoreApplication::applicationDirPath(), args);

    // A second start hands its parameters to the first and ends at once.
    TVintraSingleInstance instance(executable);
    if (!instance.Claim()) {
        instance.HandOver(args);
        return 0;
    }
    QObject::connect(&instance, &TVintraSingleInstance::ParametersReceived, [](const QStringList&) {});

    QString error;
    if (!SeedDataRoot(paths, error)) {
        ShowExceptionDialog(error);
        return 1;
    }

    QSplashScreen splash(splashPicture());
    splash.show();
    QTimer::singleShot(3000, &splash, &QWidget::close);
    app.processEvents();

    TFormMain form(paths);
    RegisterWindows(form);
    try {
        if (!form.FormCreate()) {
            if (!form.DatabaseDeclined()) {
                // A database newer than this build: the frame waits here for good, as it always
                // has, but without burning the processor.
                splash.close();
                for (;;)
                    QThread::sleep(3600);
            }
        }
    } catch (const std::exception& e) {
        splash.close();
        ShowExceptionDialog(QString::fromUtf8(e.what()));
        return 1;
    }
    form.show();
    form.FormShow();
    return app.exec();
}
