// A tiny program around the single-instance guard, for starting several at the same moment:
//   single_instance_probe NAME AT [PARAMETERS...]
// waits until AT (milliseconds since the epoch), then claims NAME. The first prints "first" and
// runs until a line arrives on its standard input, printing "received" and each parameter that a
// later start hands over; a later start hands its parameters over, prints "second" and ends.
#include "shell/single_instance.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QThread>
#include <cstdio>
#include <iostream>
#include <string>
#include <thread>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments();
    if (args.size() < 3)
        return 2;
    const QString name = args.at(1);
    const qint64 at = args.at(2).toLongLong();
    const QStringList parameters = args.mid(3);
    while (QDateTime::currentMSecsSinceEpoch() < at)
        QThread::usleep(200);

    TVintraSingleInstance instance(name);
    if (!instance.Claim()) {
        const bool handed = instance.HandOver(parameters);
        std::printf("second %s\n", handed ? "handed" : "lost");
        std::fflush(stdout);
        return 0;
    }
    std::printf("first\n");
    std::fflush(stdout);
    QObject::connect(&instance, &TVintraSingleInstance::ParametersReceived, [](const QStringList& got) {
        std::printf("received %d\n", int(got.size()));
        for (const QString& parameter : got)
            std::printf("%s\n", qPrintable(parameter));
        std::fflush(stdout);
    });
    std::thread([&app] {
        std::string line;
        std::getline(std::cin, line);
        QMetaObject::invokeMethod(&app, &QCoreApplication::quit, Qt::QueuedConnection);
    }).detach();
    return app.exec();
}
