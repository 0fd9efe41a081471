// The Jet dialect on a real SQLite connection: LIKE forms, DATEDIFF, CHR, and the statement helpers.
#include "components/database.h"
#include "components/day_number.h"
#include "components/jet_dialect.h"
#include "components/sql_format.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

// Deliberately simple: one character class at a time, recursion on '*'.
bool referenceLike(const QString& p, int i, const QString& t, int j) {
    if (i == p.size())
        return j == t.size();
    if (p.at(i) == QLatin1Char('*'))
        return referenceLike(p, i + 1, t, j) || (j < t.size() && referenceLike(p, i, t, j + 1));
    if (p.mid(i, 2) == QLatin1String("[]"))
        return referenceLike(p, i + 2, t, j);
    if (j == t.size())
        return false;
    const QChar c = t.at(j).toCaseFolded();
    int width = 1;
    bool hit = false;
    if (p.at(i) == QLatin1Char('?')) {
        hit = true;
    } else if (p.at(i) == QLatin1Char('#')) {
        hit = t.at(j) >= QLatin1Char('0') && t.at(j) <= QLatin1Char('9');
    } else if (p.at(i) == QLatin1Char('[')) {
        const int close = int(p.indexOf(QLatin1Char(']'), i));
        QString members = p.mid(i + 1, close - i - 1);
        const bool negate = members.startsWith(QLatin1Char('!'));
        if (negate)
            members.remove(0, 1);
        hit = members.toCaseFolded().contains(c) != negate;
        width = close - i + 1;
    } else {
        hit = p.at(i).toCaseFolded() == c;
    }
    return hit && referenceLike(p, i + width, t, j + 1);
}

} // namespace

class TestJetDialect : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    qm::Database m_db;

private slots:
    void initTestCase() {
        m_db.open(m_dir.filePath(QStringLiteral("t.db")));
        m_db.exec(QStringLiteral("CREATE TABLE T ( name TEXT, day FLOAT )"));
    }

    void like_data() {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("matches");
        QTest::newRow("star contains hit") << "*mat*"
                                           << "Tomato" << true;
        QTest::newRow("percent is literal") << "%mat%"
                                            << "Tomato" << false;
        QTest::newRow("no case non-ascii") << "*CRÈME*"
                                           << "crème fraîche" << true;
        QTest::newRow("question one char") << "T?mato"
                                           << "Tomato" << true;
        QTest::newRow("question not empty") << "Tomato?"
                                            << "Tomato" << false;
        QTest::newRow("hash digit") << "Recipe #"
                                    << "Recipe 7" << true;
        QTest::newRow("hash not letter") << "Recipe #"
                                         << "Recipe x" << false;
        QTest::newRow("class") << "[bt]oast"
                               << "Toast" << true;
        QTest::newRow("negated class") << "[!b]oast"
                                       << "Toast" << true;
        QTest::newRow("negated class miss") << "[!t]oast"
                                            << "Toast" << false;
        QTest::newRow("range") << "[a-c]*"
                               << "Bread" << true;
        QTest::newRow("literal star in class") << "5[*]"
                                               << "5*" << true;
        QTest::newRow("underscore literal") << "a_b"
                                            << "axb" << false;
        QTest::newRow("whole match") << "Tom"
                                     << "Tomato" << false;
        QTest::newRow("empty class is empty text") << "a[]b"
                                                   << "ab" << true;
        QTest::newRow("empty class takes nothing") << "a[]b"
                                                   << "axb" << false;
        QTest::newRow("hash is 0-9 only") << "#"
                                          << "\u0663" << false;
        QTest::newRow("class without case") << "[Ä]pfel"
                                            << "äpfel" << true;
        QTest::newRow("star backs up") << "*ab*abc"
                                       << "xabyababc" << true;
        QTest::newRow("star then one") << "?*?*?*x"
                                       << "abcx" << true;
        QTest::newRow("star then one, too short") << "?*?*?*x"
                                                  << "abx" << false;
        QTest::newRow("closing bracket alone") << "a]"
                                               << "a]" << true;
    }
    void like() {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QFETCH(bool, matches);
        QCOMPARE(qm::jetLike(pattern, text), matches);
        // The same through the engine, where statements meet it.
        const QVariant engine = m_db.scalar(QStringLiteral("SELECT :t LIKE :p"),
                                            {{QStringLiteral("t"), text}, {QStringLiteral("p"), pattern}});
        QCOMPARE(engine.toInt(), matches ? 1 : 0);
    }

    // The linear matcher against a plain recursive reading of the same rules, on many small cases.
    void likeAgreesWithReference() {
        const QStringList pieces = {"a", "B", "*", "?", "#", "[ab]", "[!a]", "1", "ä", "[]"};
        const QStringList letters = {"a", "b", "A", "1", "Ä", "x"};
        quint32 seed = 12345;
        const auto next = [&seed](int bound) {
            seed = seed * 1103515245u + 12345u;
            return int((seed >> 16) % quint32(bound));
        };
        for (int round = 0; round < 4000; ++round) {
            QString pattern, text;
            for (int i = next(6); i > 0; --i)
                pattern += pieces.at(next(int(pieces.size())));
            for (int i = next(8); i > 0; --i)
                text += letters.at(next(int(letters.size())));
            QVERIFY2(qm::jetLike(pattern, text) == referenceLike(pattern, 0, text, 0),
                     qPrintable(pattern + QStringLiteral(" / ") + text));
        }
    }

    void likeErrorsAndScale() {
        // An unclosed bracket is an error of the statement, with a message that says why.
        try {
            m_db.scalar(QStringLiteral("SELECT 'ab' LIKE '[ab'"));
            QFAIL("an unclosed bracket must be refused");
        } catch (const qm::DbError& e) {
            QVERIFY2(QString::fromUtf8(e.what()).contains(QStringLiteral("not closed")), e.what());
        }
        QVERIFY(!qm::jetLike(QStringLiteral("[ab"), QStringLiteral("[ab")));
        // Patterns that a backtracking matcher takes exponential time over end at once.
        const QString text(4000, QLatin1Char('a'));
        QVERIFY(!qm::jetLike(QStringLiteral("?*?*?*?*?*?*?*?*x"), text));
        QVERIFY(qm::jetLike(QStringLiteral("*a*a*a*a*a*a*a*a"), text));
        // One pattern over many rows, non-ASCII text on the way.
        m_db.exec(QStringLiteral("CREATE TABLE L ( t TEXT )"));
        for (const char* t : {"Crème brûlée", "CRÈME", "creme", "Sahne"})
            m_db.exec(QStringLiteral("INSERT INTO L VALUES ( :t )"),
                      {{QStringLiteral("t"), QString::fromUtf8(t)}});
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM L WHERE t LIKE 'crè*'")).toInt(), 2);
    }

    void textComparesWithoutCase() {
        m_db.exec(QStringLiteral("CREATE TABLE C ( name TEXT COLLATE NOCASE, n INTEGER )"));
        const char* const names[] = {"Äpfel", "äpfel",  "ÄPFEL",  "Crème",
                                     "CRÈME", "zucker", "Zucker", "Éclair"};
        int n = 0;
        for (const char* name : names)
            m_db.exec(QStringLiteral("INSERT INTO C VALUES ( :name, :n )"),
                      {{QStringLiteral("name"), QString::fromUtf8(name)}, {QStringLiteral("n"), ++n}});
        const auto count = [this](const char* where) {
            return m_db.scalar(QStringLiteral("SELECT COUNT(*) FROM C WHERE ") + QString::fromUtf8(where))
                .toInt();
        };
        QCOMPARE(count("name = 'äPfEl'"), 3);
        QCOMPARE(count("name <> 'ÄPFEL'"), 5);
        QCOMPARE(count("name IN ( 'crème', 'ÉCLAIR' )"), 3);
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT COUNT( DISTINCT name ) FROM C")).toInt(), 4);
        QCOMPARE(m_db.select(QStringLiteral("SELECT name FROM C GROUP BY name")).rows.size(), 4);
        // Sorting folds case for every letter: equal names stay together.
        const qm::SqlRows sorted = m_db.select(QStringLiteral("SELECT name FROM C ORDER BY name, n"));
        QStringList order;
        for (const QVariantList& row : sorted.rows)
            order << row.first().toString();
        QCOMPARE(order,
                 (QStringList{"Crème", "CRÈME", "zucker", "Zucker", "Äpfel", "äpfel", "ÄPFEL", "Éclair"}));
        QVERIFY(qm::jetCompareNoCase(QStringLiteral("Ü"), QStringLiteral("ü")) == 0);
        QVERIFY(qm::jetCompareNoCase(QStringLiteral("a"), QStringLiteral("B")) < 0);
    }

    void dateDiffAndChr() {
        const double jan1 = qm::toDayNumber(QDate(2004, 1, 1));
        QCOMPARE(jan1, 37987.0);
        // Day boundaries crossed, not elapsed time: 23:00 to 01:00 next day is one day.
        const QVariant d = m_db.scalar(
            QStringLiteral("SELECT DATEDIFF( 'd', :a, :b )"),
            {{QStringLiteral("a"), jan1 + 23.0 / 24}, {QStringLiteral("b"), jan1 + 1 + 1.0 / 24}});
        QCOMPARE(d.toInt(), 1);
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT DATEDIFF( 'd', 0, 37987.75 )")).toInt(), 37987);
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT DATEDIFF( 'd', 37990, 37987 )")).toInt(), -3);
        QVERIFY(m_db.scalar(QStringLiteral("SELECT DATEDIFF( 'd', NULL, 1 )")).isNull());
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT 'a' || CHR(13) || CHR(10) || 'b'")).toString(),
                 QStringLiteral("a\r\nb"));
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT CHR(233)")).toString(), QStringLiteral("é"));
        QCOMPARE(m_db.scalar(QStringLiteral("SELECT True + True + False")).toInt(), 2);
        // Days beyond what a date can hold are an error, not an overflow.
        for (const char* sql : {"SELECT DATEDIFF( 'n', 0, 1e300 )", "SELECT DATEDIFF( 'd', -9.2e18, 0 )",
                                "SELECT CHR( 70000 )"})
            QVERIFY_THROWS_EXCEPTION(qm::DbError, m_db.scalar(QString::fromLatin1(sql)));
    }

    void dayNumbers() {
        const QDateTime noon(QDate(2004, 1, 1), QTime(12, 0), Qt::UTC);
        QCOMPARE(qm::toDayNumber(noon), 37987.5);
        QCOMPARE(qm::fromDayNumber(37987.75), QDateTime(QDate(2004, 1, 1), QTime(18, 0), Qt::UTC));
        QCOMPARE(qm::dateFromDayNumber(0), QDate(1899, 12, 30));
        QCOMPARE(qm::toDayNumberCut(noon), 37987.0);
    }

    void format_data() {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QVariantList>("args");
        QTest::addColumn<QString>("expected");
        QTest::newRow("d") << "id = %d" << QVariantList{42} << "id = 42";
        QTest::newRow("d truncates a day") << "%d" << QVariantList{37987.75} << "37987";
        QTest::newRow("d stops at 64 bits")
            << "%d %d" << QVariantList{1e300, -1e300} << "9223372036854775807 -9223372036854775808";
        QTest::newRow("f six decimals") << "%f" << QVariantList{2.5} << "2.500000";
        QTest::newRow("width precision") << "%4.02f" << QVariantList{3.1} << "3.10";
        QTest::newRow("s") << "FROM %s WHERE %s = %d" << QVariantList{"Ingreds", "ingredTypeId", 7}
                           << "FROM Ingreds WHERE ingredTypeId = 7";
        QTest::newRow("percent") << "100%% %s" << QVariantList{"sure"} << "100% sure";
        QTest::newRow("missing arg") << "%d-%s" << QVariantList{1} << "1-";
    }
    void format() {
        QFETCH(QString, pattern);
        QFETCH(QVariantList, args);
        QFETCH(QString, expected);
        QCOMPARE(qm::format(pattern, args), expected);
    }

    void formatIgnoresLocale() {
        const QLocale saved;
        QLocale::setDefault(QLocale(QLocale::German));
        QCOMPARE(qm::format(QStringLiteral("%f"), {1234.5}), QStringLiteral("1234.500000"));
        QLocale::setDefault(saved);
    }

    void namedParameters() {
        QVariantList values;
        const QString sql = qm::bindNamedParameters(
            QStringLiteral("SELECT ':x', \"a:b\" FROM T WHERE a = :ingredId OR b = :ingredId AND c = :Other"),
            {{QStringLiteral("ingredId"), 5}, {QStringLiteral("other"), QStringLiteral("o")}}, values);
        QCOMPARE(sql, QStringLiteral("SELECT ':x', \"a:b\" FROM T WHERE a = ? OR b = ? AND c = ?"));
        QCOMPARE(values, (QVariantList{5, 5, QStringLiteral("o")}));
        // One name used twice through the engine, with an apostrophe in free text.
        const QVariant v =
            m_db.scalar(QStringLiteral("SELECT :n || '/' || :n"), {{QStringLiteral("n"), "O'Brien"}});
        QCOMPARE(v.toString(), QStringLiteral("O'Brien/O'Brien"));
    }
};

QTEST_GUILESS_MAIN(TestJetDialect)
#include "test_jet_dialect.moc"
