#pragma once
// A frame over a data root seeded in a temporary folder, for the window tests of the shell.

#include "components/database.h"
#include "shell/app_paths.h"
#include "shell/ui/form_main.h"
#include "store/resource_holder.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

class FrameFixture {
public:
    /// `executablePath` holds Languages/ and delivered/; the build's bin folder unless a test
    /// brings its own (see copyLanguages).
    explicit FrameFixture(const QString& executablePath = QStringLiteral(QM_BIN_DIR "/")) {
        paths.ExecutablePath = executablePath;
        paths.DataRootPath = dir.path() + QStringLiteral("/root/");
        paths.OptionsFile = dir.path() + QStringLiteral("/Quillmeal.conf");
    }
    ~FrameFixture() {
        if (!form)
            return;
        form->closeWithoutConfirmation = true;
        form->close();
        form.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// Stores an option before the frame reads them.
    void store(const QString& key, const QVariant& value) {
        QSettings(paths.OptionsFile, QSettings::IniFormat)
            .setValue(QStringLiteral("Quillmeal/") + key, value);
    }
    /// The stored value of an option, invalid when absent.
    QVariant stored(const QString& key) const {
        return QSettings(paths.OptionsFile, QSettings::IniFormat).value(QStringLiteral("Quillmeal/") + key);
    }

    /// Puts the delivered database into the data root, as the first start does.
    void seed() {
        TAppPaths seed = paths;
        seed.ExecutablePath = QStringLiteral(QM_BIN_DIR "/");
        QString error;
        if (!SeedDataRoot(seed, error))
            qFatal("%s", qPrintable(error));
    }
    QString databaseFile() const { return paths.DataRootPath + QStringLiteral("Database/Hearthnote.db"); }
    /// Runs statements on the seeded database before the frame opens it.
    void alter(const QStringList& statements) {
        seed();
        qm::Database db;
        db.open(databaseFile());
        for (const QString& statement : statements)
            db.exec(statement);
        db.close();
    }

    /// Creates and shows the frame, through FormCreate and FormShow.
    TFormMain& create() {
        seed();
        form = std::make_unique<TFormMain>(paths);
        if (!form->FormCreate())
            qFatal("the frame could not open its database");
        form->show();
        form->FormShow();
        QApplication::setActiveWindow(form.get());
        return *form;
    }

    /// An executable folder of our own with copies of the delivered language files.
    static QString copyLanguages(const QTemporaryDir& target) {
        const QString folder = target.path() + QStringLiteral("/exe/Languages/");
        QDir().mkpath(folder);
        const QDir source(QStringLiteral(QM_SOURCE_DATA "/Languages"));
        for (const QString& name : source.entryList({QStringLiteral("*.xml")}, QDir::Files))
            QFile::copy(source.filePath(name), folder + name);
        return target.path() + QStringLiteral("/exe/");
    }

    QTemporaryDir dir;
    TAppPaths paths;
    std::unique_ptr<TFormMain> form;
};

/// Runs the deferred deletions, so that windows destroyed "later" are gone.
inline void flushDeletes() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
