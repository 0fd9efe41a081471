#include "components/vintra_dictionary.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& content) {
    const QString path = dir.filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
    return path;
}

QString englishFile() {
    return QStringLiteral(QM_SOURCE_DATA "/Languages/English.xml");
}

// printf conversions a text would consume when formatted (a lone "%" followed by other text is not one).
int conversions(const QString& text) {
    static const QRegularExpression conversion(QStringLiteral("%[-+ #0]*\\d*(\\.\\d+)?[sdifu]"));
    return int(text.count(conversion));
}

} // namespace

class TestVintraDictionary : public QObject {
    Q_OBJECT

private slots:
    void readsEntriesAsWritten() {
        QTemporaryDir dir;
        const QString path = writeFile(dir, QStringLiteral("Test.xml"),
                                       "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                       "<dictionary language=\"Testish\">\n"
                                       "  <entry key=\"QuestionQuit\">Really quit?</entry>\n"
                                       "  <entry key=\"@Servings\">Portionen</entry>\n"
                                       "  <entry key=\"Lines\">one&#10;two\nthree</entry>\n"
                                       "  <entry key=\"Blanks\">  Recipes: </entry>\n"
                                       "  <entry key=\"Empty\"></entry>\n"
                                       "  <entry key=\"Twice\">first</entry>\n"
                                       "  <entry key=\"Twice\">second</entry>\n"
                                       "</dictionary>\n");
        TVintraDictionary dictionary;
        dictionary.SetFileName(path);
        QCOMPARE(dictionary.Language(), QStringLiteral("Testish"));
        QVERIFY(dictionary.ErrorString().isEmpty());
        QCOMPARE(dictionary.count(), 6);
        QCOMPARE(dictionary.GetText(QStringLiteral("@Servings"), QString()), QStringLiteral("Portionen"));
        QCOMPARE(dictionary.GetText(QStringLiteral("Lines"), QString()), QStringLiteral("one\ntwo\nthree"));
        QCOMPARE(dictionary.GetText(QStringLiteral("Blanks"), QString()), QStringLiteral("  Recipes: "));
        QCOMPARE(dictionary.GetText(QStringLiteral("Twice"), QString()), QStringLiteral("second"));
        // An entry that is present but empty is a text, not a missing key.
        QVERIFY(dictionary.contains(QStringLiteral("Empty")));
        QCOMPARE(dictionary.GetText(QStringLiteral("Empty"), QStringLiteral("fallback")), QString());
    }

    void missingKeyGivesTheDefault_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("defaultText");
        QTest::newRow("empty default") << "InfoNotThere" << QString();
        QTest::newRow("case differs") << "questionquit"
                                      << "x";
        QTest::newRow("without @") << "Servings"
                                   << "Servings";
    }

    void missingKeyGivesTheDefault() {
        QFETCH(QString, key);
        QFETCH(QString, defaultText);
        QTemporaryDir dir;
        TVintraDictionary dictionary;
        dictionary.SetFileName(
            writeFile(dir, QStringLiteral("T.xml"),
                      "<dictionary language=\"T\"><entry key=\"QuestionQuit\">Quit?</entry>"
                      "<entry key=\"@Servings\">Portions</entry></dictionary>"));
        QVERIFY(!dictionary.contains(key));
        QCOMPARE(dictionary.GetText(key, defaultText), defaultText);
    }

    void settingAnotherFileReplacesTheTexts() {
        QTemporaryDir dir;
        TVintraDictionary dictionary;
        dictionary.SetFileName(writeFile(dir, QStringLiteral("A.xml"),
                                         "<dictionary language=\"A\"><entry key=\"k\">a</entry>"
                                         "<entry key=\"onlyA\">x</entry></dictionary>"));
        dictionary.SetFileName(
            writeFile(dir, QStringLiteral("B.xml"),
                      "<dictionary language=\"B\"><entry key=\"k\">b</entry></dictionary>"));
        QCOMPARE(dictionary.GetText(QStringLiteral("k"), QString()), QStringLiteral("b"));
        QVERIFY(!dictionary.contains(QStringLiteral("onlyA")));
        QCOMPARE(dictionary.Language(), QStringLiteral("B"));
        // A missing file is no error: the dictionary is empty and defaults answer.
        dictionary.SetFileName(dir.filePath(QStringLiteral("Gone.xml")));
        QCOMPARE(dictionary.count(), 0);
        QCOMPARE(dictionary.Language(), QString());
        QVERIFY(dictionary.ErrorString().isEmpty());
        QCOMPARE(dictionary.GetText(QStringLiteral("k"), QStringLiteral("k")), QStringLiteral("k"));
    }

    void brokenFileKeepsWhatWasReadBefore_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("kept");
        QTest::newRow("unclosed entry")
            << QByteArray(
                   "<dictionary><entry key=\"a\">A</entry><entry key=\"b\">B</entry><entry key=\"c\">C")
            << QStringList({"a", "b"});
        QTest::newRow("mismatched tag")
            << QByteArray("<dictionary><entry key=\"a\">A</entry><entry key=\"b\">B</entrx>"
                          "<entry key=\"c\">C</entry></dictionary>")
            << QStringList({"a"});
        QTest::newRow("not xml") << QByteArray("QuestionQuit=Quit?") << QStringList();
    }

    void brokenFileKeepsWhatWasReadBefore() {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, kept);
        QTemporaryDir dir;
        TVintraDictionary dictionary;
        dictionary.SetFileName(writeFile(dir, QStringLiteral("Broken.xml"), content));
        QStringList keys = dictionary.keys();
        keys.sort();
        QCOMPARE(keys, kept);
        QVERIFY(!dictionary.ErrorString().isEmpty());
    }

    void otherRootElementGivesNoTexts() {
        QTemporaryDir dir;
        TVintraDictionary dictionary;
        dictionary.SetFileName(writeFile(dir, QStringLiteral("Other.xml"),
                                         "<qm_exchange_file><entry key=\"a\">A</entry></qm_exchange_file>"));
        QCOMPARE(dictionary.count(), 0);
    }

    void englishFileHasEveryKeyTheProgramAsksFor() {
        QFile list(QStringLiteral(QM_TEST_DATA "/dictionary_keys.txt"));
        QVERIFY(list.open(QIODevice::ReadOnly | QIODevice::Text));
        const QStringList keys =
            QString::fromUtf8(list.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QVERIFY(keys.size() > 100);

        TVintraDictionary dictionary;
        dictionary.SetFileName(englishFile());
        QStringList missing;
        for (const QString& key : keys)
            if (dictionary.GetText(key, QString()).trimmed().isEmpty())
                missing.append(key);
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QStringLiteral(", "))));

        // The bar captions: page 1 holds the user's shortcuts, so only its page caption is a key.
        const QList<QPair<int, int>> pages = {{0, 7}, {1, 0}, {2, 3}};
        for (const auto& [page, items] : pages) {
            const QString pageKey = QStringLiteral("OutlookBarMain.%1").arg(page);
            QVERIFY2(!dictionary.GetText(pageKey, QString()).isEmpty(), qPrintable(pageKey));
            for (int item = 0; item < items; ++item) {
                const QString itemKey = pageKey + QStringLiteral(".%1").arg(item);
                QVERIFY2(!dictionary.GetText(itemKey, QString()).isEmpty(), qPrintable(itemKey));
            }
        }

        // The tips are numbered from 1 without gaps.
        int consecutive = 0;
        while (!dictionary.GetText(QString::asprintf("@VINTRATIP%04d", consecutive + 1), QString()).isEmpty())
            ++consecutive;
        const QStringList all = dictionary.keys();
        QVERIFY(consecutive > 0);
        QCOMPARE(consecutive, int(all.filter(QRegularExpression(QStringLiteral("^@VINTRATIP"))).size()));
    }

    void englishPlaceholdersMatchHowTextsAreFormatted() {
        // Texts formatted with one value carry exactly one placeholder; all others none, so that
        // formatting never eats a value meant for another text.
        const QHash<QString, int> formatted = {
            {QStringLiteral("ErrorEmptyField"), 1},
            {QStringLiteral("ErrorInvalidValuePositiveInteger"), 1},
            {QStringLiteral("AssistantIntroduction"), 1},
        };
        TVintraDictionary dictionary;
        dictionary.SetFileName(englishFile());
        for (const QString& key : dictionary.keys()) {
            const QString text = dictionary.GetText(key, QString());
            QVERIFY2(conversions(text) == formatted.value(key, 0),
                     qPrintable(key + QStringLiteral(": ") + text));
        }
        QVERIFY(
            dictionary.GetText(QStringLiteral("ErrorEmptyField"), QString()).contains(QStringLiteral("%s")));
    }
};

QTEST_GUILESS_MAIN(TestVintraDictionary)
#include "test_vintra_dictionary.moc"
