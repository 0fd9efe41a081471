// Builds the delivered database from the schema and the seed files of data/.
#include "seed_loader.h"

#include "components/database.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    QTextStream err(stderr);
    if (args.size() != 4) {
        err << "usage: quillmeal-make-database SCHEMA_SQL SEED_DIR OUT_FILE\n";
        return 2;
    }
    const QString temp = args.at(3) + QStringLiteral(".part");
    try {
        const QStringList report = qm::buildDeliveredDatabase(args.at(1), args.at(2), temp);
        QFile::remove(args.at(3));
        QFile::remove(temp + QStringLiteral("-wal"));
        QFile::remove(temp + QStringLiteral("-shm"));
        if (!QFile::rename(temp, args.at(3))) {
            err << "cannot write " << args.at(3) << "\n";
            return 1;
        }
        QTextStream out(stdout);
        for (const QString& line : report)
            out << line << "\n";
    } catch (const qm::DbError& e) {
        err << e.what() << "\n";
        return 1;
    }
    return 0;
}
