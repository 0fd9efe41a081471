#include "store/option_table.h"

#include <QDir>
#include <QSet>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

class TestOptionTable : public QObject {
    Q_OBJECT

private slots:
    void declaresEveryOptionOnceFrameFirst() {
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        QCOMPARE(int(options.options().size()), 162);
        QSet<QString> declared;
        for (const TVintraOption& option : options.options())
            declared.insert(option.name);
        QCOMPARE(declared.size(), QuillmealOptionCount);
        QCOMPARE(options.options().front().name, QStringLiteral("ConfirmExit"));
        QCOMPARE(options.options()[27].name, QStringLiteral("Toolb"));
        // Names other files read by hand, misspelling included.
        for (const char* name : {"ConfirmDeletionCookinTipGroup", "UsrDSplitterHorizontal", "CTSplitterVideo",
                                 "CheckVersionLastChecked", "DietSizeWidth"})
            QVERIFY2(options.has(QLatin1String(name)), name);
    }

    void exactDefaults_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("expected");
        const int I = TVintraOption::Integer, S = TVintraOption::String;
        QTest::newRow("Language") << "Language" << S << QVariant(QStringLiteral("English"));
        QTest::newRow("ColorMain") << "ColorMain" << I << QVariant(16777215);
        QTest::newRow("KitchenAssistantPositionTop") << "KitchenAssistantPositionTop" << I << QVariant(99999);
        QTest::newRow("DietName") << "DietName" << I << QVariant(564);
    }

    void exactDefaults() {
        QFETCH(QString, name);
        QFETCH(int, type);
        QFETCH(QVariant, expected);
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        const TVintraOption& option = options.GetOption(name);
        QCOMPARE(option.type, type);
        QCOMPARE(option.defaultValue, expected);
        QCOMPARE(option.value, expected);
    }

    // Deletes ask and refuse by default; every remembered column has a usable width.
    void familiesShareTheirTypeAndDefault() {
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        int confirm = 0, restrict = 0, columns = 0;
        for (const TVintraOption& option : options.options()) {
            if (option.name.startsWith(QLatin1String("ConfirmDeletion"))) {
                ++confirm;
                QCOMPARE(option.defaultValue, QVariant(true));
            } else if (option.name.startsWith(QLatin1String("IRDelete"))) {
                ++restrict;
                QCOMPARE(option.defaultValue, QVariant(1));
            } else if (option.name.contains(QLatin1String("Col")) &&
                       !option.name.startsWith(QLatin1String("Color"))) {
                ++columns;
                QVERIFY(option.defaultValue.toInt() > 0);
            }
        }
        QCOMPARE(confirm, 9);
        QCOMPARE(restrict, 8);
        QCOMPARE(columns, 31);
    }

    void userDiaryTemplateIsAnAbsolutePath() {
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        const QString path = options.GetAsString(QStringLiteral("ReportTemplateUserDiary"));
        QVERIFY(path.endsWith(QLatin1String("Reports and Templates/UserDiary.frf")));
        QVERIFY(QDir::isAbsolutePath(path));
        QVERIFY(!path.contains(QLatin1Char('\\')));
        QVERIFY(!path.contains(QLatin1Char(':')));
    }

    void wholeTableSurvivesStoreAndLoad() {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("Quillmeal.conf"));
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        options.setFileName(path);
        options.SetAsString(QStringLiteral("ReportTemplateUserDiary"),
                            QStringLiteral("/tmp/My Reports/x.frf"));
        options.SetAsInteger(QStringLiteral("Toolb"), 1);
        options.SetAsBoolean(QStringLiteral("ConfirmExit"), false);
        QVERIFY(options.Store());

        QSettings raw(path, QSettings::IniFormat);
        raw.beginGroup(QStringLiteral("Quillmeal"));
        QCOMPARE(raw.childKeys().size(), QuillmealOptionCount);

        TVintraOptions reread;
        DeclareQuillmealOptions(reread);
        reread.setFileName(path);
        QVERIFY(reread.Load());
        for (size_t i = 0; i < options.options().size(); ++i)
            QVERIFY2(reread.options()[i].value == options.options()[i].value,
                     qPrintable(options.options()[i].name));
    }

    void optionsFileLocation() {
        QTemporaryDir dir;
        const QString fromArgument = dir.filePath(QStringLiteral("arg"));
        const QString fromEnvironment = dir.filePath(QStringLiteral("env"));
        qunsetenv("QUILLMEAL_CONFIG_DIR");
        QCOMPARE(DefaultOptionsFile(QString()),
                 QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                     QStringLiteral("/Orvane Team/Hearthnote/Quillmeal.conf"));
        qputenv("QUILLMEAL_CONFIG_DIR", fromEnvironment.toLocal8Bit());
        QCOMPARE(DefaultOptionsFile(QString()), fromEnvironment + QStringLiteral("/Quillmeal.conf"));
        // The command line wins over the environment.
        QCOMPARE(DefaultOptionsFile(fromArgument), fromArgument + QStringLiteral("/Quillmeal.conf"));
        qunsetenv("QUILLMEAL_CONFIG_DIR");
    }
};

QTEST_GUILESS_MAIN(TestOptionTable)
#include "test_option_table.moc"
