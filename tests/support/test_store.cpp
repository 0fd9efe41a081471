#include "test_store.h"

#include "components/database.h"
#include "store/schema.h"

#include <QDir>
#include <QFile>

TestStore::TestStore(int version, bool open) {
    QDir().mkpath(root() + QStringLiteral("Database"));
    {
        qm::Database db;
        db.open(databaseFile());
        qm::createSchema(db, QStringLiteral(QM_SOURCE_DATA "/schema.sql"));
        db.exec(QStringLiteral("INSERT INTO PKeys ( keyId, keyValue ) VALUES ( 'DatabaseVersion', %1 )")
                    .arg(version));
    }
    QFile::copy(QStringLiteral(QM_SOURCE_DATA "/DatabaseUpdate.xml"),
                root() + QStringLiteral("Database/DatabaseUpdate.xml"));
    m_holder.Create(root() + QStringLiteral("options.conf"), QStringLiteral(QM_SOURCE_DATA "/"), root());
    FormResourceHolder = &m_holder;
    m_dataModule = std::make_unique<TDataModuleMain>();
    DataModuleMain = m_dataModule.get();
    if (open)
        m_dataModule->DataModuleCreate();
}

TestStore::~TestStore() {
    m_dataModule.reset();
    DataModuleMain = nullptr;
    FormResourceHolder = nullptr;
}

void TestStore::exec(const QStringList& statements) {
    for (const QString& statement : statements)
        db().exec(statement);
}
