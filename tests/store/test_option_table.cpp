#include "store/option_table.h"

#include <QDir>
#include <QSet>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// Every option name the program declares, written out independently of the table.
const QStringList ExpectedNames = {
    "ConfirmExit",
    "Language",
    "MainMaximized",
    "MDIChildMaximized",
    "MainPositionTop",
    "MainPositionLeft",
    "MainSizeHeight",
    "MainSizeWidth",
    "ColorMain",
    "BackgroundPictureMain",
    "BackgroundPictureMainTransparent",
    "OutlookBarSmallIcons",
    "ToolbarMain",
    "ToolbarNavigator",
    "ToolbarRecipes",
    "ToolbarQuickSearch",
    "ToolbarUsers",
    "ToolbarMainTop",
    "ToolbarMainLeft",
    "ToolbarNavigatorTop",
    "ToolbarNavigatorLeft",
    "ToolbarRecipesTop",
    "ToolbarRecipesLeft",
    "ToolbarQuickSearchTop",
    "ToolbarQuickSearchLeft",
    "ToolbarUsersTop",
    "ToolbarUsersLeft",
    "Toolb",
    "Currency",
    "AutoRecalculate",
    "ActiveUserId",
    "PlannerDisplayMinutes",
    "HintsButtons",
    "HintsGridsAndTreeViews",
    "HintsEditBoxesAndMemos",
    "HintsImages",
    "ShowMailDialog",
    "FromName",
    "FromAddress",
    "ExportPicture",
    "ExportNutrients",
    "ExportIngredients",
    "ExportUnits",
    "ExportTemplateWord",
    "IRDeleteRecipe",
    "IRDeleteIngredient",
    "IRDeleteUnit",
    "IRDeleteRecipeGroup",
    "IRDeleteMenuGroup",
    "IRDeleteIngredientType",
    "IRDeleteCookingTip",
    "IRDeleteCookingTipGroup",
    "ConfirmDeletionRecipe",
    "ConfirmDeletionIngredient",
    "ConfirmDeletionUnit",
    "ConfirmDeletionRecipeGroup",
    "ConfirmDeletionIngredientType",
    "ConfirmDeletionMenuGroup",
    "ConfirmDeletionCookingTip",
    "ConfirmDeletionCookinTipGroup",
    "ConfirmDeletionDiet",
    "PageSize",
    "RepRecNutrients",
    "RepRecPictures",
    "RepIngNutrients",
    "RepIngPictures",
    "RepCalByDay",
    "RepCalSummary",
    "RepMenIngredients",
    "RepUsrDByDay",
    "RepUsrDMeasurements",
    "ReportTemplateRecipes",
    "ReportTemplateIngredients",
    "ReportTemplateMenus",
    "ReportTemplateUnits",
    "ReportTemplateCalendar",
    "ReportTemplateCalendarSummary",
    "ReportTemplateUserDiary",
    "KitchenAssistantActor",
    "KitchenAssistantVisible",
    "KitchenAssistantPositionLeft",
    "KitchenAssistantPositionTop",
    "KitchenAssistantShown",
    "CheckVersion",
    "CheckVersionDays",
    "CheckVersionLastChecked",
    "RecSplitterVertical",
    "RecSplitterHorizontal",
    "IngredSplitterVertical",
    "IngredSplitterHorizontal",
    "MenuSplitterVertical",
    "MenuSplitterHorizontal",
    "UsrDSplitterHorizontal",
    "CTSplitterVertical",
    "CTSplitterHorizontal",
    "CTSplitterVideo",
    "DietSplitterHorizontal",
    "RecColRecName",
    "RecColRecTime",
    "RecColRecServings",
    "RecColRecPrice",
    "RecColIngredName",
    "RecColIngredAmount",
    "RecColUnitName",
    "RecColCalcAmount",
    "IngredColIngredName",
    "IngredColIngredPrice",
    "MenuColMenuName",
    "MenuColRecName",
    "MenuColRecServings",
    "MenuColIngredName",
    "MenuColIngredAmount",
    "MenuColUnitName",
    "MenuColPricePerUnit",
    "MenuColPrice",
    "UnitColUnitName",
    "UnitColUnitAbbrev",
    "UnitColUnitConv",
    "UnitColUnitType",
    "CalColRecName",
    "CalColRecServings",
    "CalColIngredName",
    "CalColIngredAmount",
    "CalColUnit",
    "CalColPricePerUnit",
    "CalColPrice",
    "CTColTipName",
    "CTColFileName",
    "DietName",
    "DietDuration",
    "CalPositionLeft",
    "CalPositionTop",
    "CalSizeHeight",
    "CalSizeWidth",
    "RecPositionLeft",
    "RecPositionTop",
    "RecSizeHeight",
    "RecSizeWidth",
    "MenuPositionLeft",
    "MenuPositionTop",
    "MenuSizeHeight",
    "MenuSizeWidth",
    "IngredPositionLeft",
    "IngredPositionTop",
    "IngredSizeHeight",
    "IngredSizeWidth",
    "UnitPositionLeft",
    "UnitPositionTop",
    "UnitSizeHeight",
    "UnitSizeWidth",
    "UsrDPositionLeft",
    "UsrDPositionTop",
    "UsrDSizeHeight",
    "UsrDSizeWidth",
    "CTPositionLeft",
    "CTPositionTop",
    "CTSizeHeight",
    "CTSizeWidth",
    "DietPositionLeft",
    "DietPositionTop",
    "DietSizeHeight",
    "DietSizeWidth",

};

const char* const GeometryPrefixes[] = {"Cal", "Rec", "Menu", "Ingred", "Unit", "UsrD", "CT", "Diet"};

// Sets or clears an environment variable for the life of the object.
class EnvironmentOverride {
public:
    EnvironmentOverride(const char* name, const QByteArray& value) : m_name(name), m_old(qgetenv(name)) {
        m_had = qEnvironmentVariableIsSet(name);
        if (value.isNull())
            qunsetenv(name);
        else
            qputenv(name, value);
    }
    ~EnvironmentOverride() {
        if (m_had)
            qputenv(m_name, m_old);
        else
            qunsetenv(m_name);
    }

private:
    const char* m_name;
    QByteArray m_old;
    bool m_had = false;
};

} // namespace

class TestOptionTable : public QObject {
    Q_OBJECT

private slots:
    void declaresEveryOptionOnce() {
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        QCOMPARE(int(options.options().size()), QuillmealOptionCount);
        QCOMPARE(QuillmealOptionCount, 162);
        QSet<QString> declared;
        for (const TVintraOption& option : options.options())
            declared.insert(option.name);
        QCOMPARE(declared.size(), QuillmealOptionCount);
        const QSet<QString> expected(ExpectedNames.begin(), ExpectedNames.end());
        QCOMPARE(expected.size(), QuillmealOptionCount);
        QCOMPARE(declared - expected, QSet<QString>());
        QCOMPARE(expected - declared, QSet<QString>());
    }

    void declaresTheFrameFirst() {
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        QCOMPARE(options.options().front().name, QStringLiteral("ConfirmExit"));
        QCOMPARE(options.options()[27].name, QStringLiteral("Toolb"));
    }

    void exactDefaults_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("expected");
        const int I = TVintraOption::Integer, B = TVintraOption::Boolean, S = TVintraOption::String;
        QTest::newRow("Toolb") << "Toolb" << I << QVariant(429);
        QTest::newRow("RecColRecName") << "RecColRecName" << I << QVariant(248);
        QTest::newRow("Currency") << "Currency" << S << QVariant(QStringLiteral("$"));
        QTest::newRow("ConfirmDeletionCookinTipGroup")
            << "ConfirmDeletionCookinTipGroup" << B << QVariant(true);
        QTest::newRow("Language") << "Language" << S << QVariant(QStringLiteral("English"));
        QTest::newRow("ColorMain") << "ColorMain" << I << QVariant(16777215);
        QTest::newRow("MainSizeHeight") << "MainSizeHeight" << I << QVariant(600);
        QTest::newRow("MainSizeWidth") << "MainSizeWidth" << I << QVariant(800);
        QTest::newRow("MainMaximized") << "MainMaximized" << B << QVariant(false);
        QTest::newRow("BackgroundPictureMain") << "BackgroundPictureMain" << S << QVariant(QString());
        QTest::newRow("ToolbarQuickSearch") << "ToolbarQuickSearch" << B << QVariant(false);
        QTest::newRow("ToolbarUsersLeft") << "ToolbarUsersLeft" << I << QVariant(541);
        QTest::newRow("ActiveUserId") << "ActiveUserId" << I << QVariant(1);
        QTest::newRow("PlannerDisplayMinutes") << "PlannerDisplayMinutes" << I << QVariant(30);
        QTest::newRow("HintsEditBoxesAndMemos") << "HintsEditBoxesAndMemos" << B << QVariant(false);
        QTest::newRow("ShowMailDialog") << "ShowMailDialog" << B << QVariant(false);
        QTest::newRow("PageSize") << "PageSize" << I << QVariant(4);
        QTest::newRow("KitchenAssistantActor")
            << "KitchenAssistantActor" << S << QVariant(QStringLiteral("Beetle"));
        QTest::newRow("KitchenAssistantPositionTop") << "KitchenAssistantPositionTop" << I << QVariant(99999);
        QTest::newRow("KitchenAssistantShown") << "KitchenAssistantShown" << B << QVariant(false);
        QTest::newRow("CheckVersionDays") << "CheckVersionDays" << I << QVariant(7);
        QTest::newRow("MenuSplitterHorizontal") << "MenuSplitterHorizontal" << I << QVariant(217);
        QTest::newRow("CTSplitterVideo") << "CTSplitterVideo" << I << QVariant(265);
        QTest::newRow("DietSplitterHorizontal") << "DietSplitterHorizontal" << I << QVariant(146);
        QTest::newRow("MenuColPrice") << "MenuColPrice" << I << QVariant(51);
        QTest::newRow("CalColRecName") << "CalColRecName" << I << QVariant(471);
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

    void familiesShareTheirTypeAndDefault() {
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        int confirm = 0, restrict = 0, columns = 0, splitters = 0;
        for (const TVintraOption& option : options.options()) {
            if (option.name.startsWith(QLatin1String("ConfirmDeletion"))) {
                ++confirm;
                QCOMPARE(option.type, int(TVintraOption::Boolean));
                QCOMPARE(option.defaultValue, QVariant(true));
            } else if (option.name.startsWith(QLatin1String("IRDelete"))) {
                ++restrict;
                QCOMPARE(option.type, int(TVintraOption::Integer));
                QCOMPARE(option.defaultValue, QVariant(1));
            } else if (option.name.contains(QLatin1String("Col")) &&
                       !option.name.startsWith(QLatin1String("Color"))) {
                ++columns;
                QCOMPARE(option.type, int(TVintraOption::Integer));
                QVERIFY(option.defaultValue.toInt() > 0);
            } else if (option.name.contains(QLatin1String("Splitter"))) {
                ++splitters;
                QCOMPARE(option.type, int(TVintraOption::Integer));
            } else if (option.name.startsWith(QLatin1String("Rep")) &&
                       !option.name.startsWith(QLatin1String("Report"))) {
                QCOMPARE(option.defaultValue, QVariant(true));
            } else if (option.name.startsWith(QLatin1String("ReportTemplate"))) {
                QCOMPARE(option.type, int(TVintraOption::String));
            }
        }
        QCOMPARE(confirm, 9);
        QCOMPARE(restrict, 8);
        QCOMPARE(columns, 31);
        QCOMPARE(splitters, 11);
    }

    void everyRecordWindowHasItsGeometry() {
        TVintraOptions options;
        DeclareQuillmealOptions(options);
        for (const char* prefix : GeometryPrefixes) {
            const QString p = QString::fromLatin1(prefix);
            QCOMPARE(options.GetOption(p + "PositionLeft").defaultValue, QVariant(0));
            QCOMPARE(options.GetOption(p + "PositionTop").defaultValue, QVariant(0));
            QCOMPARE(options.GetOption(p + "SizeHeight").defaultValue, QVariant(480));
            QCOMPARE(options.GetOption(p + "SizeWidth").defaultValue, QVariant(660));
        }
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
        QCOMPARE(reread.GetAsInteger(QStringLiteral("Toolb")), 1);
    }

    void optionsFileLocation() {
        QTemporaryDir dir;
        const QString fromArgument = dir.filePath(QStringLiteral("arg"));
        const QString fromEnvironment = dir.filePath(QStringLiteral("env"));
        {
            EnvironmentOverride env("QUILLMEAL_CONFIG_DIR", QByteArray());
            const QString standard = DefaultOptionsFile(QString());
            QCOMPARE(standard, QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                                   QStringLiteral("/Orvane Team/Hearthnote/Quillmeal.conf"));
            QCOMPARE(DefaultOptionsFile(fromArgument), fromArgument + QStringLiteral("/Quillmeal.conf"));
        }
        {
            EnvironmentOverride env("QUILLMEAL_CONFIG_DIR", fromEnvironment.toLocal8Bit());
            QCOMPARE(DefaultOptionsFile(QString()), fromEnvironment + QStringLiteral("/Quillmeal.conf"));
            // The command line wins over the environment.
            QCOMPARE(DefaultOptionsFile(fromArgument), fromArgument + QStringLiteral("/Quillmeal.conf"));
        }
    }
};

QTEST_GUILESS_MAIN(TestOptionTable)
#include "test_option_table.moc"
