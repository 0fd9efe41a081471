// quillmeal-cli import-price-list killed with SIGKILL in the middle: the file stays sound, and it
// holds exactly the entries applied before the kill, a prefix of the list in file order.
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <sqlite3.h>

namespace {

constexpr int Entries = 100000;
// Entry k sets PriceBase + k: above every delivered price, so a price tells which entry wrote it.
constexpr double PriceBase = 1000000.25;

/// Runs one statement on a plain SQLite connection of the test's own, opened and closed around it.
QList<QPair<int, double>> readPairs(const QString& file, const QString& sql) {
    QList<QPair<int, double>> rows;
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_busy_timeout(db, 5000);
        sqlite3_stmt* stmt = nullptr;
        if (sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &stmt, nullptr) == SQLITE_OK)
            while (sqlite3_step(stmt) == SQLITE_ROW)
                rows << qMakePair(sqlite3_column_int(stmt, 0), sqlite3_column_double(stmt, 1));
        sqlite3_finalize(stmt);
    }
    sqlite3_close(db);
    return rows;
}

/// The last entry the database shows applied, -1 for none.
int lastApplied(const QString& file) {
    const auto rows = readPairs(file, QStringLiteral("SELECT 0, MAX(ingredPrice) FROM Ingreds"));
    if (rows.isEmpty() || rows.first().second < PriceBase)
        return -1;
    return int(rows.first().second - PriceBase + 0.5);
}

} // namespace

class TestCliKill : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QList<int> m_ids; // the delivered ingredients, in the order the list takes them in turn
    QHash<int, int> m_position;
    QHash<int, double> m_delivered;
    QString m_list;

    QProcess* start(const QString& root, const QStringList& args) {
        auto* p = new QProcess(this);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8")); // the price's decimal point
        p->setProcessEnvironment(env);
        p->start(QStringLiteral(QM_BIN_DIR "/quillmeal-cli"),
                 QStringList{"--data-root", root, "--config-dir", m_dir.filePath("cfg")} + args);
        return p;
    }
    QString run(const QString& root, const QStringList& args) {
        QProcess* p = start(root, args);
        p->waitForFinished(60000);
        const QString out = QString::fromUtf8(p->readAllStandardOutput());
        const bool ok = p->exitStatus() == QProcess::NormalExit && p->exitCode() == 0;
        delete p;
        return ok ? out : QStringLiteral("failed: ") + out;
    }
    static QString databaseFile(const QString& root) {
        return root + QStringLiteral("/Database/Hearthnote.db");
    }

private slots:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        const QString root = m_dir.filePath("seed");
        QCOMPARE(run(root, {"init"}), QStringLiteral("310\n"));
        for (const auto& [id, price] :
             readPairs(databaseFile(root),
                       QStringLiteral("SELECT ingredId, ingredPrice FROM Ingreds ORDER BY 1"))) {
            m_position.insert(id, int(m_ids.size()));
            m_ids << id;
            m_delivered.insert(id, price);
        }
        QVERIFY(m_ids.size() > 1000);
        m_list = m_dir.filePath("prices.xml");
        QFile file(m_list);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QByteArray xml = "<?xml version=\"1.0\"?>\n<priceList>\n";
        for (int k = 0; k < Entries; ++k)
            xml += "  <ingredient id=\"" + QByteArray::number(m_ids.at(k % m_ids.size())) + "\" price=\"" +
                   QByteArray::number(PriceBase + k, 'f', 2) + "\"/>\n";
        xml += "</priceList>\n";
        QCOMPARE(file.write(xml), qint64(xml.size()));
    }

    // The kill comes once the import has reached `target` entries, or `capMs` after its first
    // entry, whichever is first, so that a slow import is still cut short in a few seconds.
    void killedImportLeavesAPrefix_data() {
        QTest::addColumn<int>("target");
        QTest::addColumn<int>("capMs");
        QTest::newRow("first entry") << 1 << 0;
        QTest::newRow("a fifth") << Entries / 5 << 400;
        QTest::newRow("most") << Entries * 3 / 5 << 1200;
    }
    void killedImportLeavesAPrefix() {
        QFETCH(int, target);
        QFETCH(int, capMs);
        const QString root = m_dir.filePath(QString::fromLatin1(QTest::currentDataTag()).replace(' ', '-'));
        const QString file = databaseFile(root);
        QProcess* import = start(root, {"import-price-list", m_list, "--progress"});
        QVERIFY(import->waitForStarted());

        // Whatever a reader saw committed, and whatever the command reported stored, before the
        // kill must survive it.
        int seen = -1;
        qsizetype reported = 0;
        QElapsedTimer sinceStart, sinceFirst;
        sinceStart.start();
        while (import->state() == QProcess::Running && sinceStart.elapsed() < 60000) {
            if (QFile::exists(file))
                seen = qMax(seen, lastApplied(file));
            if (seen >= 0) {
                if (!sinceFirst.isValid())
                    sinceFirst.start();
                if (seen + 1 >= target || sinceFirst.elapsed() >= capMs)
                    break;
            }
            import->waitForReadyRead(2);
            reported += import->readAllStandardOutput().count("applied ");
        }
        import->kill();
        import->waitForFinished(10000);
        reported += import->readAllStandardOutput().count("applied ");
        QVERIFY2(import->exitStatus() == QProcess::CrashExit,
                 qPrintable(QStringLiteral("the import ended before the kill: ") +
                            QString::fromUtf8(import->readAllStandardError())));
        QVERIFY2(seen >= 0, "no entry was applied before the kill");

        // The program opens the file after the crash and finds it sound.
        QCOMPARE(run(root, {"sql", "PRAGMA integrity_check"}), QStringLiteral("integrity_check\nok\n"));

        // Entries 0..last are applied and no later one: each ingredient holds its own last entry
        // up to there, or its delivered price when the list hadn't reached it.
        const int last = lastApplied(file);
        QVERIFY2(last >= seen,
                 qPrintable(QStringLiteral("%1 seen before the kill, %2 after").arg(seen).arg(last)));
        QVERIFY2(last >= reported - 1,
                 qPrintable(QStringLiteral("%1 reported stored, %2 after").arg(reported).arg(last + 1)));
        const int n = int(m_ids.size());
        QStringList wrong;
        const auto now =
            readPairs(file, QStringLiteral("SELECT ingredId, ingredPrice FROM Ingreds ORDER BY 1"));
        QCOMPARE(now.size(), n);
        for (const auto& [id, price] : now) {
            const int p = m_position.value(id, -1);
            const double expected = p < 0       ? -1
                                    : p <= last ? PriceBase + (last - (last - p) % n)
                                                : m_delivered[id];
            if (price != expected && wrong.size() < 5)
                wrong << QStringLiteral("ingredient %1: %2, expected %3")
                             .arg(id)
                             .arg(price, 0, 'f', 2)
                             .arg(expected, 0, 'f', 2);
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QStringLiteral("; "))));
        qInfo("killed after entry %d (seen %d, reported %d)", last, seen, int(reported));
        delete import;
    }
};

QTEST_GUILESS_MAIN(TestCliKill)
#include "test_cli_kill.moc"
