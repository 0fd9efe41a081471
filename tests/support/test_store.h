#pragma once

#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <QTemporaryDir>
#include <memory>

/// A data root in a temporary folder with a fresh database built from the real schema, the
/// resource holder and the data module over it, all installed as the process singletons.
class TestStore {
public:
    /// `version` goes into PKeys.DatabaseVersion; `open` runs DataModuleCreate at once.
    explicit TestStore(int version = 310, bool open = true);
    ~TestStore();

    QString root() const { return m_dir.path() + QLatin1Char('/'); }
    QString databaseFile() const { return root() + QStringLiteral("Database/Hearthnote.db"); }
    qm::Database& db() { return m_dataModule->KADaoDatabase; }
    TDataModuleMain& dataModule() { return *m_dataModule; }
    TFormResourceHolder& holder() { return m_holder; }
    /// Runs several statements, each on its own, for scenario set-up.
    void exec(const QStringList& statements);

private:
    QTemporaryDir m_dir;
    TFormResourceHolder m_holder;
    std::unique_ptr<TDataModuleMain> m_dataModule;
};
