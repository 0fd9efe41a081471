#pragma once

#include <QString>
#include <QStringList>

/// The two roots of all file paths and the options file, resolved once at start.
struct TAppPaths {
    QString ExecutablePath; ///< read-only resources (Languages/, Help/, Reports/, delivered/), trailing '/'
    QString DataRootPath;   ///< Database/, KitchenAssistant/, URL/, trailing '/'
    QString OptionsFile;
};

/// Resolves the paths from the command line (--data-root DIR, --config-dir DIR), the environment
/// (QUILLMEAL_DATA_ROOT, QUILLMEAL_CONFIG_DIR) and the executable's folder. Consumed options are
/// removed from `args`.
TAppPaths ResolveAppPaths(const QString& executableDir, QStringList& args);

/// Seeds a data root from the delivered files: the database only when it is absent (a user's
/// database is never overwritten), the update script always (it belongs to the program).
/// Returns false with `error` set when the delivered database is missing or can't be copied.
bool SeedDataRoot(const TAppPaths& paths, QString& error);
