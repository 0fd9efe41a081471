#include "shell/app_paths.h"

#include "store/option_table.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

QString withSlash(const QString& path) {
    const QString clean = QDir::cleanPath(QDir(path).absolutePath());
    return clean.endsWith(QLatin1Char('/')) ? clean : clean + QLatin1Char('/');
}

// Takes "--name VALUE" or "--name=VALUE" out of the arguments.
QString takeOption(QStringList& args, const QString& name) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args.at(i) == name && i + 1 < args.size()) {
            const QString value = args.at(i + 1);
            args.remove(i, 2);
            return value;
        }
        if (args.at(i).startsWith(name + QLatin1Char('='))) {
            const QString value = args.at(i).mid(name.size() + 1);
            args.removeAt(i);
            return value;
        }
    }
    return QString();
}

// Installed, the resources stand in <prefix>/share/quillmeal beside <prefix>/bin.
QString resourceFolder(const QString& executableDir) {
    const QString installed = QDir(executableDir).absoluteFilePath(QStringLiteral("../share/quillmeal"));
    if (!QFileInfo::exists(executableDir + QStringLiteral("/Languages")) && QFileInfo(installed).isDir())
        return installed;
    return executableDir;
}

} // namespace

TAppPaths ResolveAppPaths(const QString& executableDir, QStringList& args) {
    TAppPaths paths;
    paths.ExecutablePath = withSlash(resourceFolder(executableDir));

    QString dataRoot = takeOption(args, QStringLiteral("--data-root"));
    if (dataRoot.isEmpty())
        dataRoot = qEnvironmentVariable("QUILLMEAL_DATA_ROOT");
    if (dataRoot.isEmpty()) {
        // The portable layout: the executable stands in a subfolder of the data root.
        const QString parent = QDir(executableDir).absoluteFilePath(QStringLiteral(".."));
        if (QFileInfo::exists(parent + QStringLiteral("/Database/Hearthnote.db")))
            dataRoot = parent;
        else
            dataRoot = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                       QStringLiteral("/Orvane Team/Quillmeal");
    }
    paths.DataRootPath = withSlash(dataRoot);

    QString configDir = takeOption(args, QStringLiteral("--config-dir"));
    paths.OptionsFile = DefaultOptionsFile(configDir);
    return paths;
}

bool SeedDataRoot(const TAppPaths& paths, QString& error) {
    const QString databaseFolder = paths.DataRootPath + QStringLiteral("Database");
    if (!QDir().mkpath(databaseFolder)) {
        error = QStringLiteral("Cannot create the folder %1").arg(databaseFolder);
        return false;
    }
    for (const char* folder : {"Database/pic/rec", "Database/pic/ing", "Database/pic/usr",
                               "Database/pic/tips", "KitchenAssistant", "URL"})
        QDir().mkpath(paths.DataRootPath + QLatin1String(folder));
    const QString delivered = paths.ExecutablePath + QStringLiteral("delivered/");
    const QString script = databaseFolder + QStringLiteral("/DatabaseUpdate.xml");
    if (QFileInfo::exists(delivered + QStringLiteral("DatabaseUpdate.xml"))) {
        QFile::remove(script);
        QFile::copy(delivered + QStringLiteral("DatabaseUpdate.xml"), script);
    }
    const QString database = databaseFolder + QStringLiteral("/Hearthnote.db");
    if (QFileInfo::exists(database))
        return true;
    const QString source = delivered + QStringLiteral("Hearthnote.db");
    if (!QFileInfo::exists(source)) {
        error = QStringLiteral("The delivered database %1 is missing").arg(source);
        return false;
    }
    // Copy under another name first so that a broken copy never stands as the user's database.
    const QString part = database + QStringLiteral(".part");
    QFile::remove(part);
    if (!QFile::copy(source, part) || !QFile::rename(part, database)) {
        QFile::remove(part);
        error = QStringLiteral("Cannot copy the delivered database to %1").arg(database);
        return false;
    }
    QFile(database).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                   QFile::ReadOther);
    return true;
}
