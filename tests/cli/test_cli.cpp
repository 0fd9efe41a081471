// quillmeal-cli as a script uses it: a fresh data root seeded from the delivered database.
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

class TestCli : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    struct Result {
        int status;
        QString out;
        QString err;
    };
    Result run(const QStringList& args) {
        QProcess p;
        p.start(QStringLiteral(QM_BIN_DIR "/quillmeal-cli"),
                QStringList{"--data-root", m_dir.filePath("root"), "--config-dir", m_dir.filePath("cfg")} +
                    args);
        p.waitForFinished(60000);
        return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
                QString::fromUtf8(p.readAllStandardError())};
    }

private slots:
    void initSeedsTheDeliveredDatabase() {
        const Result r = run({"init"});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QStringLiteral("310\n"));
        QVERIFY(QFile::exists(m_dir.filePath("root/Database/Hearthnote.db")));
    }

    void sqlPrintsHeaderRowsAndNulls() {
        QCOMPARE(run({"sql", "CREATE TABLE Scratch ( a TEXT, b FLOAT, c INTEGER )"}).status, 0);
        QCOMPARE(run({"sql", "INSERT INTO Scratch VALUES ( 'x y', 0.1, NULL ), ( NULL, 1.0 / 3, 7 )"}).status,
                 0);
        const Result r =
            run({"sql", "SELECT a, b, c FROM Scratch WHERE a LIKE 'X*' OR a IS NULL ORDER BY c"});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QStringLiteral("a\tb\tc\nx y\t0.1\t\n\t0.333333333333333\t7\n"));
    }

    void newIdAndAmounts() {
        QCOMPARE(run({"new-id", "Recipes"}).out, QStringLiteral("100001\n"));
        const QStringList scenario = {
            "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
            "( 900001, 'test gram', 'tg', 'tg', 1, 1 ), ( 900002, 'test mug', 'tm', 'tm', 2, NULL )",
            "INSERT INTO Ingreds ( ingredId, ingredName, unitId, ingredPrice ) VALUES ( 900010, 'Test oats', "
            "900001, 0.5 )",
            "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 900002, 900010, 80 )",
            "INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES ( 900020, 'Test bowl', "
            "2, 0 )",
            "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 900020, 900010, 3, 900002 )",
            "INSERT INTO Menus ( menuId, menuName ) VALUES ( 900030, 'Test menu' )",
            "INSERT INTO RecMen ( menuId, recId, servings ) VALUES ( 900030, 900020, 5 )",
            "INSERT INTO RecDate ( recId, dateScheduled, servings ) VALUES ( 900020, 37988, 1 )"};
        for (const QString& statement : scenario)
            QCOMPARE(run({"sql", statement}).status, 0);
        // 5/2 servings * 3 mugs * 80 g = 600 g at 0.5 a gram.
        QCOMPARE(run({"ingredient-in-menu", "900030", "900010"}).out,
                 QStringLiteral("600\ttest gram\t0.5\t300\n"));
        QCOMPARE(run({"ingredient-for-date", "900010", "2004-01-01", "2004-01-02"}).out,
                 QStringLiteral("120\ttest gram\t0.5\t60\n"));
    }

    void optionsListEveryOption() {
        const Result r = run({"options"});
        QCOMPARE(r.status, 0);
        const QStringList lines = r.out.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 162);
        QVERIFY(lines.contains(QStringLiteral("Toolb\tinteger\t429\t429")));
        QVERIFY(lines.contains(QStringLiteral("Currency\tstring\t$\t$")));
    }

    void errorsAndUsage() {
        QCOMPARE(run({"frobnicate"}).status, 2);
        QCOMPARE(run({"ingredient-in-menu", "x", "1"}).status, 2);
        QCOMPARE(run({"ingredient-for-date", "1", "2004-13-01", "2004-01-02"}).status, 2);
        const Result bad = run({"sql", "DELETE FROM Menus WHERE menuGroup = 3"});
        QCOMPARE(bad.status, 1);
        QVERIFY(bad.err.contains("menuGroup"));
        for (const QStringList& args :
             {QStringList{"--bogus", "init"}, QStringList{"search-recipes", "--bogus"},
              QStringList{"search-ingredients", "--bogus", "1"}}) {
            const Result r = run(args);
            QCOMPARE(r.status, 2);
            QVERIFY2(r.err.contains("unknown option: --bogus"), qPrintable(r.err));
        }
    }

    // Whether rows print is the statement's own answer, whatever text comes first.
    void sqlPrintsWhatReturnsRows() {
        const Result commented =
            run({"sql", "-- how many\nSELECT COUNT(*) AS n FROM Units WHERE unitId < 0"});
        QCOMPARE(commented.out, QStringLiteral("n\n0\n"));
        const Result plan = run({"sql", "EXPLAIN QUERY PLAN SELECT recName FROM Recipes WHERE recId = 1"});
        QCOMPARE(plan.status, 0);
        QVERIFY2(plan.out.startsWith("id\tparent\tnotused\tdetail\n") && plan.out.count('\n') >= 2,
                 qPrintable(plan.out));
        QCOMPARE(run({"sql", "UPDATE Units SET unitDesc = unitDesc WHERE unitId < 0"}).out, QString());
        QCOMPARE(run({"sql", "SELECT 1; SELECT 2"}).status, 1);
    }

    // Text rules of the engine as a script meets them: no case, Jet patterns, clear errors.
    void textRules() {
        const Result same = run({"sql", "SELECT COUNT(*) AS n FROM Units WHERE unitName = 'GRAM' AND "
                                        "unitName IN ( 'gRaM' ) AND 'x' LIKE 'X[]'"});
        QCOMPARE(same.out, QStringLiteral("n\n1\n"));
        const Result unclosed = run({"sql", "SELECT COUNT(*) FROM Ingreds WHERE ingredName LIKE '[a*'"});
        QCOMPARE(unclosed.status, 1);
        QVERIFY2(unclosed.err.contains("not closed"), qPrintable(unclosed.err));
        // A pattern that backtracking would take minutes over gives what the plain one gives.
        const Result slow = run({"search-ingredients", "--all-types", "--pattern", "?*?*?*x"});
        const Result plain = run({"search-ingredients", "--all-types", "--pattern", "*x*"});
        QCOMPARE(slow.status, 0);
        QVERIFY(slow.out.count('\n') > 10);
        QVERIFY(slow.out.count('\n') <= plain.out.count('\n'));
    }

    // Limits go into the statement as typed, decimals too; anything else is a usage error.
    void searchOptions_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("fragment");
        QTest::newRow("decimal limit")
            << QStringList{"--nutrient", "nutTotalFat<=5.5"} << 0 << " AND nutTotalFat <= 5.5";
        QTest::newRow("long time") << QStringList{"--max-time", "1000"} << 0 << " AND recTime <= 1000";
        QTest::newRow("unknown column") << QStringList{"--nutrient", "nutSugar<=5"} << 2 << QString();
        QTest::newRow("no operator") << QStringList{"--nutrient", "nutCal=5"} << 2 << QString();
        QTest::newRow("negative servings") << QStringList{"--servings", "-2"} << 2 << QString();
    }
    void searchOptions() {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, fragment);
        const Result r = run(QStringList{"search-recipes", "--all-groups", "--sql"} + args);
        QCOMPARE(r.status, status);
        if (status == 0)
            QVERIFY2(r.out.contains(fragment), qPrintable(r.out));
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "test_cli.moc"
