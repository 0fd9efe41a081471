// The start-up reference: a bare Qt program showing a main window with a menu bar, which quits
// from a zero-time timer once the window is shown and the queue is idle.
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QTimer>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QMainWindow window;
    QMenu* file = window.menuBar()->addMenu(QStringLiteral("&File"));
    file->addAction(QStringLiteral("E&xit"), &app, &QApplication::quit);
    window.menuBar()->addMenu(QStringLiteral("&Help"))->addAction(QStringLiteral("&About"));
    window.resize(1024, 700);
    window.show();
    QTimer::singleShot(0, &app, [] { QCoreApplication::exit(0); });
    return app.exec();
}
