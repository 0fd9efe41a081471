// Where the program finds its resources and its data, and how a data root is seeded.
#include "shell/app_paths.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

void write(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray read(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

} // namespace

class TestAppPaths : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { qunsetenv("QUILLMEAL_DATA_ROOT"); }

    void commandLineWinsAndIsConsumed() {
        qputenv("QUILLMEAL_DATA_ROOT", m_dir.filePath("env").toUtf8());
        QStringList args = {"--data-root", m_dir.filePath("cli"), "sql",
                            "--config-dir=" + m_dir.filePath("cfg")};
        const TAppPaths paths = ResolveAppPaths(m_dir.filePath("bin"), args);
        QCOMPARE(paths.DataRootPath, m_dir.filePath("cli") + "/");
        QCOMPARE(paths.OptionsFile, m_dir.filePath("cfg") + "/Quillmeal.conf");
        QCOMPARE(args, QStringList{"sql"});
    }

    void environmentThenPortableLayout() {
        QStringList none;
        qputenv("QUILLMEAL_DATA_ROOT", m_dir.filePath("env").toUtf8());
        QCOMPARE(ResolveAppPaths(m_dir.filePath("bin"), none).DataRootPath, m_dir.filePath("env") + "/");
        qunsetenv("QUILLMEAL_DATA_ROOT");
        // The executable in a subfolder of a root that holds the database: that root.
        write(m_dir.filePath("portable/Database/Hearthnote.db"), "db");
        QDir().mkpath(m_dir.filePath("portable/bin"));
        const TAppPaths paths = ResolveAppPaths(m_dir.filePath("portable/bin"), none);
        QCOMPARE(paths.DataRootPath, m_dir.filePath("portable") + "/");
        QCOMPARE(paths.ExecutablePath, m_dir.filePath("portable/bin") + "/");
        // Without it, the user's data folder.
        QCOMPARE(ResolveAppPaths(m_dir.filePath("bin"), none).DataRootPath,
                 QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                     "/Orvane Team/Quillmeal/");
    }

    void seedingNeverOverwritesTheUsersDatabase() {
        TAppPaths paths;
        paths.ExecutablePath = m_dir.filePath("res") + "/";
        paths.DataRootPath = m_dir.filePath("data") + "/";
        QString error;
        QVERIFY(!SeedDataRoot(paths, error)); // nothing delivered yet
        QVERIFY(error.contains("Hearthnote.db"));
        write(paths.ExecutablePath + "delivered/Hearthnote.db", "delivered");
        write(paths.ExecutablePath + "delivered/DatabaseUpdate.xml", "script 1");
        QVERIFY(SeedDataRoot(paths, error));
        QCOMPARE(read(paths.DataRootPath + "Database/Hearthnote.db"), QByteArray("delivered"));
        QVERIFY(QFileInfo(paths.DataRootPath + "Database/pic/rec").isDir());
        write(paths.DataRootPath + "Database/Hearthnote.db", "user's own");
        write(paths.ExecutablePath + "delivered/DatabaseUpdate.xml", "script 2");
        QVERIFY(SeedDataRoot(paths, error));
        QCOMPARE(read(paths.DataRootPath + "Database/Hearthnote.db"), QByteArray("user's own"));
        QCOMPARE(read(paths.DataRootPath + "Database/DatabaseUpdate.xml"), QByteArray("script 2"));
    }
};

QTEST_GUILESS_MAIN(TestAppPaths)
#include "test_app_paths.moc"
