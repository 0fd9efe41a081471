// Process entry of the window program.
#include "shell/app_paths.h"
#include "shell/single_instance.h"
#include "shell/ui/form_about.h"
#include "shell/ui/form_main.h"
#include "shell/ui/frame_icons.h"
#include "shell/ui/message_box_presenter.h"
#include "shell/ui/start_up.h"
#include "shell/ui/window_registry.h"

#include <QFileInfo>
#include <QSplashScreen>
#include <QThread>
#include <QTimer>

int main(int argc, char** argv) {
    TApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Orvane Team"));
    QCoreApplication::setApplicationName(QStringLiteral("Quillmeal"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QM_VERSION));
    // No display name: the window system would add it to the frame's title a second time.

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
    QApplication::setStyle(new qm::TFrameStyle);

    QSplashScreen splash(splashPicture());
    splash.show();
    QTimer::singleShot(3000, &splash, &QWidget::close);
    app.processEvents();

    TFormMain form(paths);
    RegisterWindows(form);
    switch (StartFrame(form)) {
    case TStartResult::Run:
        // For the start-up benchmark: end as soon as the loop is idle with the frame shown.
        if (qEnvironmentVariableIsSet("QUILLMEAL_BENCH_QUIT_WHEN_IDLE"))
            QTimer::singleShot(0, &app, [] { QCoreApplication::exit(0); });
        return app.exec();
    case TStartResult::Declined:
        return 0;
    case TStartResult::Failed:
        return 1;
    case TStartResult::Incompatible:
        break;
    }
    // A database newer than this build: the frame waits here for good, as it always has, but
    // without burning the processor.
    splash.close();
    for (;;)
        QThread::sleep(3600);
}
