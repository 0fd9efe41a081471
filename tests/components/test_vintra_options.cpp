#include "components/vintra_options.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <stdexcept>

namespace {

void declareSample(TVintraOptions& options) {
    options.Declare(QStringLiteral("ConfirmExit"), TVintraOption::Boolean, true);
    options.Declare(QStringLiteral("MainSizeWidth"), TVintraOption::Integer, 800);
    options.Declare(QStringLiteral("ActiveUserId"), TVintraOption::Integer, 1);
    options.Declare(QStringLiteral("Currency"), TVintraOption::String, QStringLiteral("$"));
    options.Declare(QStringLiteral("FromName"), TVintraOption::String, QString());
    options.Declare(QStringLiteral("ShowMailDialog"), TVintraOption::Boolean, false);
}

void writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
}

} // namespace

class TestVintraOptions : public QObject {
    Q_OBJECT

private slots:
    // Without a file every option has its default and nothing is written; a stored value wins;
    // a key absent from the file goes back to its default, even after a set.
    void loadStoredValuesOverDefaults() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("Quillmeal.conf"));
        TVintraOptions options;
        declareSample(options);
        options.setFileName(path);
        QVERIFY(options.Load());
        QCOMPARE(options.GetAsBoolean(QStringLiteral("ConfirmExit")), true);
        QCOMPARE(options.GetAsString(QStringLiteral("Currency")), QStringLiteral("$"));
        QVERIFY(!QFile::exists(path));

        writeFile(path, "[Quillmeal]\nCurrency=EUR\nActiveUserId=5\nConfirmExit=false\nUnknownKey=17\n");
        options.SetAsInteger(QStringLiteral("MainSizeWidth"), 1234);
        QVERIFY(options.Load());
        QCOMPARE(options.GetAsString(QStringLiteral("Currency")), QStringLiteral("EUR"));
        QCOMPARE(options.GetAsInteger(QStringLiteral("ActiveUserId")), 5);
        QCOMPARE(options.GetAsBoolean(QStringLiteral("ConfirmExit")), false);
        QCOMPARE(options.GetAsInteger(QStringLiteral("MainSizeWidth")), 800);
        QVERIFY(!options.has(QStringLiteral("UnknownKey")));
    }

    void valuesThatDoNotReadAsTheTypeKeepTheDefault_data() {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("int text") << QByteArray("ActiveUserId=abc") << "ActiveUserId" << QVariant(1);
        QTest::newRow("int fraction") << QByteArray("ActiveUserId=2.5") << "ActiveUserId" << QVariant(1);
        QTest::newRow("bool word") << QByteArray("ConfirmExit=maybe") << "ConfirmExit" << QVariant(true);
        QTest::newRow("bool 0") << QByteArray("ConfirmExit=0") << "ConfirmExit" << QVariant(false);
        QTest::newRow("bool upper") << QByteArray("ShowMailDialog=TRUE") << "ShowMailDialog"
                                    << QVariant(true);
    }

    void valuesThatDoNotReadAsTheTypeKeepTheDefault() {
        QFETCH(QByteArray, line);
        QFETCH(QString, name);
        QFETCH(QVariant, expected);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("Quillmeal.conf"));
        writeFile(path, "[Quillmeal]\n" + line + "\n");
        TVintraOptions options;
        declareSample(options);
        options.setFileName(path);
        QVERIFY(options.Load());
        QCOMPARE(options.GetOption(name).value, expected);
    }

    void roundTripThroughTheFile_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("bool false") << "ConfirmExit" << QVariant(false);
        QTest::newRow("int negative") << "ActiveUserId" << QVariant(-42);
        QTest::newRow("spaces") << "Currency" << QVariant(QStringLiteral("  Euro sign  "));
        QTest::newRow("comma and quotes") << "FromName" << QVariant(QStringLiteral("Doe, \"Jane\"; 'J'"));
        QTest::newRow("empty") << "Currency" << QVariant(QString());
        QTest::newRow("digits as text") << "Currency" << QVariant(QStringLiteral("0042"));
        QTest::newRow("true as text") << "Currency" << QVariant(QStringLiteral("true"));
    }

    void roundTripThroughTheFile() {
        QFETCH(QString, name);
        QFETCH(QVariant, value);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("sub/folder/Quillmeal.conf"));
        {
            TVintraOptions options;
            declareSample(options);
            options.setFileName(path);
            options.GetOption(name).value = value;
            QVERIFY(options.Store());
        }
        TVintraOptions reread;
        declareSample(reread);
        reread.setFileName(path);
        QVERIFY(reread.Load());
        const TVintraOption& option = reread.GetOption(name);
        QCOMPARE(option.value.typeId(), option.defaultValue.typeId());
        QCOMPARE(option.value, value);
    }

    void storeReportsAFileThatCannotBeWritten() {
        QTemporaryDir dir;
        const QString blocker = dir.filePath(QStringLiteral("blocker"));
        writeFile(blocker, "not a folder");
        TVintraOptions options;
        declareSample(options);
        options.setFileName(blocker + QStringLiteral("/Quillmeal.conf"));
        QVERIFY(!options.Store());
    }

    void setterOfAnotherTypeIsStoredAsTheDeclaredType() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("Quillmeal.conf"));
        TVintraOptions options;
        declareSample(options);
        options.setFileName(path);
        options.SetAsString(QStringLiteral("MainSizeWidth"), QStringLiteral("640"));
        options.SetAsInteger(QStringLiteral("Currency"), 7);
        QVERIFY(options.Store());
        TVintraOptions reread;
        declareSample(reread);
        reread.setFileName(path);
        QVERIFY(reread.Load());
        QCOMPARE(reread.GetOption(QStringLiteral("MainSizeWidth")).value, QVariant(640));
        QCOMPARE(reread.GetOption(QStringLiteral("Currency")).value, QVariant(QStringLiteral("7")));
    }

    void declaredOrderAndLookups() {
        TVintraOptions options;
        declareSample(options);
        QCOMPARE(options.options().back().name, QStringLiteral("ShowMailDialog"));
        QVERIFY(options.has(QStringLiteral("Currency")));
        QVERIFY(!options.has(QStringLiteral("currency")));
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, options.GetOption(QStringLiteral("Nope")));
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, options.Declare(QStringLiteral("Currency"),
                                                                        TVintraOption::String, QString()));
        QCOMPARE(options.options().size(), size_t(6));
    }
};

QTEST_GUILESS_MAIN(TestVintraOptions)
#include "test_vintra_options.moc"
