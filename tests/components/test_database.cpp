// The engine class on real files: what open may and may not do to a file, prepared statements kept
// and reused, statements formatted by binding.
#include "components/database.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

class TestDatabase : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }

    static void write(const QString& file, const QByteArray& bytes) {
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

private slots:
    void openRefusesWhatIsNoDatabaseAndLeavesIt_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("text") << QByteArray("<recipes>not a database</recipes>\n");
        QTest::newRow("cut header") << QByteArray("SQLite form");
    }
    void openRefusesWhatIsNoDatabaseAndLeavesIt() {
        QFETCH(QByteArray, bytes);
        const QString file = path("broken.db");
        write(file, bytes);
        qm::Database db;
        try {
            db.open(file);
            QFAIL("a file that is no database must be refused");
        } catch (const qm::DbError& e) {
            QVERIFY2(QString::fromUtf8(e.what()).contains(file), e.what());
        }
        QVERIFY(!db.isOpen());
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), bytes);
        QVERIFY(!QFile::exists(file + QStringLiteral("-wal")));
    }

    void openCreatesAMissingFileInWal() {
        qm::Database db;
        db.open(path("new.db"));
        QCOMPARE(db.scalar(QStringLiteral("PRAGMA journal_mode")).toString(), QStringLiteral("wal"));
        QCOMPARE(db.scalar(QStringLiteral("PRAGMA synchronous")).toInt(), 1); // NORMAL
        QVERIFY(!db.isReadOnly());
    }

    void readOnlyFolderOpensForReading() {
        if (geteuid() == 0)
            QSKIP("the superuser writes into any folder");
        QTemporaryDir folder;
        {
            qm::Database db;
            db.open(folder.filePath(QStringLiteral("r.db")));
            db.exec(QStringLiteral("CREATE TABLE T ( a INTEGER )"));
            db.exec(QStringLiteral("INSERT INTO T VALUES ( 5 )"));
        }
        QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::ExeOwner);
        qm::Database db;
        db.open(folder.filePath(QStringLiteral("r.db")));
        QVERIFY(db.isReadOnly());
        QCOMPARE(db.scalar(QStringLiteral("SELECT a FROM T")).toInt(), 5);
        QVERIFY_THROWS_EXCEPTION(qm::DbError, db.exec(QStringLiteral("INSERT INTO T VALUES ( 6 )")));
        db.close();
        QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void statementsAreKeptAndReused() {
        qm::Database db;
        db.open(path("cache.db"));
        db.exec(QStringLiteral("CREATE TABLE T ( a INTEGER, b TEXT )"));
        for (int i = 1; i <= 3; ++i)
            db.exec(QStringLiteral("INSERT INTO T VALUES ( :a, :b )"),
                    {{QStringLiteral("a"), i}, {QStringLiteral("B"), QStringLiteral("r%1").arg(i)}});
        // The same text while a cursor on it is still open: the second run gets its own statement.
        qm::Cursor outer = db.run(QStringLiteral("SELECT a FROM T WHERE a >= :min ORDER BY a"),
                                  {{QStringLiteral("min"), 1}});
        QStringList pairs;
        while (outer.next()) {
            qm::Cursor inner = db.run(QStringLiteral("SELECT a FROM T WHERE a >= :min ORDER BY a"),
                                      {{QStringLiteral("min"), outer.toInt64(0) + 1}});
            int count = 0;
            while (inner.next())
                ++count;
            pairs << QStringLiteral("%1:%2").arg(outer.toInt64(0)).arg(count);
        }
        QCOMPARE(pairs, (QStringList{"1:2", "2:1", "3:0"}));
        // Bindings do not stay behind: a parameter left out is NULL on the next run.
        QCOMPARE(db.scalar(QStringLiteral("SELECT COUNT(*) FROM T WHERE a = :a"), {{QStringLiteral("a"), 2}})
                     .toInt(),
                 1);
        QCOMPARE(db.scalar(QStringLiteral("SELECT COUNT(*) FROM T WHERE a = :a")).toInt(), 0);
        // Values keep their kinds.
        const qm::SqlRows rows = db.select(QStringLiteral("SELECT 1, 1.5, 'x', x'00ff', NULL"));
        QCOMPARE(rows.rows.first().at(0).typeId(), int(QMetaType::LongLong));
        QCOMPARE(rows.rows.first().at(1).toDouble(), 1.5);
        QCOMPARE(rows.rows.first().at(2).toString(), QStringLiteral("x"));
        QCOMPARE(rows.rows.first().at(3).toByteArray(), QByteArray("\x00\xff", 2));
        QVERIFY(!rows.rows.first().at(4).isValid());
        // One statement at a time; a trailing semicolon or comment is no second one.
        QVERIFY_THROWS_EXCEPTION(qm::DbError, db.exec(QStringLiteral("DELETE FROM T; DROP TABLE T")));
        QCOMPARE(db.scalar(QStringLiteral("SELECT COUNT(*) FROM T")).toInt(), 3);
        QCOMPARE(db.scalar(QStringLiteral("SELECT COUNT(*) FROM T; -- all of them")).toInt(), 3);
        db.exec(QStringLiteral("UPDATE T SET b = 'y' WHERE a > 1"));
        QCOMPARE(db.changes(), 2);
        db.exec(QStringLiteral("SELECT * FROM T"));
        QCOMPARE(db.changes(), 0);
    }

    void formatsBindWhatTheyCan() {
        qm::Database db;
        db.open(path("format.db"));
        db.exec(QStringLiteral("CREATE TABLE K ( keyId TEXT, keyValue INTEGER )"));
        static const char* const insert = "INSERT INTO K ( keyId, keyValue ) VALUES ( '%s', %d )";
        static const char* const select = "SELECT keyValue FROM K WHERE keyId = '%s'";
        // A quote in the value stays in the value.
        db.execFormat(insert, {QStringLiteral("O'Brien"), 7});
        db.execFormat(insert, {QStringLiteral("x' OR '1'='1"), 8.9}); // %d cuts a floating value
        QCOMPARE(db.scalarFormat(select, {QStringLiteral("O'Brien")}).toInt(), 7);
        QCOMPARE(db.scalarFormat(select, {QStringLiteral("x' OR '1'='1")}).toInt(), 8);
        QVERIFY(!db.scalarFormat(select, {QStringLiteral("nobody")}).isValid());
        // A bare %s (a table name) and %f are formatted as text.
        static const char* const count = "SELECT COUNT(*) FROM %s WHERE keyValue > %f";
        QCOMPARE(db.scalarFormat(count, {QStringLiteral("K"), 7.5}).toInt(), 1);
    }
};

QTEST_GUILESS_MAIN(TestDatabase)
#include "test_database.moc"
