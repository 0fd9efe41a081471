#include "store/option_table.h"

#include <QDir>
#include <QStandardPaths>

namespace {

constexpr int I = TVintraOption::Integer;
constexpr int B = TVintraOption::Boolean;
constexpr int S = TVintraOption::String;

struct OptionRow {
    const char* name;
    int type;
    const char* text; // default: a number, "true"/"false", or the text itself
};

// The frame's keys. Toolb is a stray that nothing reads; it stays so that stored files keep it.
constexpr OptionRow FrameOptions[] = {
    {"ConfirmExit", B, "true"},
    {"Language", S, "English"},
    {"MainMaximized", B, "false"},
    {"MDIChildMaximized", B, "false"},
    {"MainPositionTop", I, "0"},
    {"MainPositionLeft", I, "0"},
    {"MainSizeHeight", I, "600"},
    {"MainSizeWidth", I, "800"},
    {"ColorMain", I, "16777215"},
    {"BackgroundPictureMain", S, ""},
    {"BackgroundPictureMainTransparent", B, "true"},
    {"OutlookBarSmallIcons", B, "false"},
    {"ToolbarMain", B, "true"},
    {"ToolbarNavigator", B, "true"},
    {"ToolbarRecipes", B, "true"},
    {"ToolbarQuickSearch", B, "false"},
    {"ToolbarUsers", B, "true"},
    {"ToolbarMainTop", I, "2"},
    {"ToolbarMainLeft", I, "11"},
    {"ToolbarNavigatorTop", I, "34"},
    {"ToolbarNavigatorLeft", I, "11"},
    {"ToolbarRecipesTop", I, "34"},
    {"ToolbarRecipesLeft", I, "321"},
    {"ToolbarQuickSearchTop", I, "34"},
    {"ToolbarQuickSearchLeft", I, "429"},
    {"ToolbarUsersTop", I, "2"},
    {"ToolbarUsersLeft", I, "541"},
    {"Toolb", I, "429"},
};

// Windows that remember their place and size, by option prefix.
constexpr const char* GeometryPrefixes[] = {"Cal", "Rec", "Menu", "Ingred", "Unit", "UsrD", "CT", "Diet"};

constexpr OptionRow OtherOptions[] = {
    // General
    {"Currency", S, "$"},
    {"AutoRecalculate", B, "true"},
    {"ActiveUserId", I, "1"},
    {"PlannerDisplayMinutes", I, "30"},
    {"HintsButtons", B, "true"},
    {"HintsGridsAndTreeViews", B, "true"},
    {"HintsEditBoxesAndMemos", B, "false"},
    {"HintsImages", B, "true"},
    // Mail and export
    {"ShowMailDialog", B, "false"},
    {"FromName", S, ""},
    {"FromAddress", S, ""},
    {"ExportPicture", B, "true"},
    {"ExportNutrients", B, "true"},
    {"ExportIngredients", B, "true"},
    {"ExportUnits", B, "true"},
    {"ExportTemplateWord", S, ""},
    // Deletion rules: 1 restricted, 2 cascade
    {"IRDeleteRecipe", I, "1"},
    {"IRDeleteIngredient", I, "1"},
    {"IRDeleteUnit", I, "1"},
    {"IRDeleteRecipeGroup", I, "1"},
    {"IRDeleteMenuGroup", I, "1"},
    {"IRDeleteIngredientType", I, "1"},
    {"IRDeleteCookingTip", I, "1"},
    {"IRDeleteCookingTipGroup", I, "1"},
    // Deletion questions; the misspelt CookinTip key is the one the cooking tips window reads
    {"ConfirmDeletionRecipe", B, "true"},
    {"ConfirmDeletionIngredient", B, "true"},
    {"ConfirmDeletionUnit", B, "true"},
    {"ConfirmDeletionRecipeGroup", B, "true"},
    {"ConfirmDeletionIngredientType", B, "true"},
    {"ConfirmDeletionMenuGroup", B, "true"},
    {"ConfirmDeletionCookingTip", B, "true"},
    {"ConfirmDeletionCookinTipGroup", B, "true"},
    {"ConfirmDeletionDiet", B, "true"},
    // Reports
    {"PageSize", I, "4"},
    {"RepRecNutrients", B, "true"},
    {"RepRecPictures", B, "true"},
    {"RepIngNutrients", B, "true"},
    {"RepIngPictures", B, "true"},
    {"RepCalByDay", B, "true"},
    {"RepCalSummary", B, "true"},
    {"RepMenIngredients", B, "true"},
    {"RepUsrDByDay", B, "true"},
    {"RepUsrDMeasurements", B, "true"},
    {"ReportTemplateRecipes", S, ""},
    {"ReportTemplateIngredients", S, ""},
    {"ReportTemplateMenus", S, ""},
    {"ReportTemplateUnits", S, ""},
    {"ReportTemplateCalendar", S, ""},
    {"ReportTemplateCalendarSummary", S, ""},
    // A path of the machine the layout was designed on, kept as delivered.
    {"ReportTemplateUserDiary", S, "/home/designer/Quillmeal/Reports and Templates/UserDiary.frf"},
    // Kitchen assistant
    {"KitchenAssistantActor", S, "Beetle"},
    {"KitchenAssistantVisible", B, "true"},
    {"KitchenAssistantPositionLeft", I, "99999"},
    {"KitchenAssistantPositionTop", I, "99999"},
    {"KitchenAssistantShown", B, "false"},
    // Version check
    {"CheckVersion", B, "true"},
    {"CheckVersionDays", I, "7"},
    {"CheckVersionLastChecked", I, "0"},
    // Splitters
    {"RecSplitterVertical", I, "186"},
    {"RecSplitterHorizontal", I, "183"},
    {"IngredSplitterVertical", I, "186"},
    {"IngredSplitterHorizontal", I, "183"},
    {"MenuSplitterVertical", I, "185"},
    {"MenuSplitterHorizontal", I, "217"},
    {"UsrDSplitterHorizontal", I, "300"},
    {"CTSplitterVertical", I, "186"},
    {"CTSplitterHorizontal", I, "213"},
    {"CTSplitterVideo", I, "265"},
    {"DietSplitterHorizontal", I, "146"},
    // Grid columns
    {"RecColRecName", I, "248"},
    {"RecColRecTime", I, "64"},
    {"RecColRecServings", I, "64"},
    {"RecColRecPrice", I, "64"},
    {"RecColIngredName", I, "286"},
    {"RecColIngredAmount", I, "64"},
    {"RecColUnitName", I, "92"},
    {"RecColCalcAmount", I, "73"},
    {"IngredColIngredName", I, "378"},
    {"IngredColIngredPrice", I, "64"},
    {"MenuColMenuName", I, "440"},
    {"MenuColRecName", I, "460"},
    {"MenuColRecServings", I, "67"},
    {"MenuColIngredName", I, "312"},
    {"MenuColIngredAmount", I, "70"},
    {"MenuColUnitName", I, "89"},
    {"MenuColPricePerUnit", I, "97"},
    {"MenuColPrice", I, "51"},
    {"UnitColUnitName", I, "400"},
    {"UnitColUnitAbbrev", I, "76"},
    {"UnitColUnitConv", I, "72"},
    {"UnitColUnitType", I, "71"},
    {"CalColRecName", I, "471"},
    {"CalColRecServings", I, "62"},
    {"CalColIngredName", I, "361"},
    {"CalColIngredAmount", I, "59"},
    {"CalColUnit", I, "52"},
    {"CalColPricePerUnit", I, "85"},
    {"CalColPrice", I, "64"},
    {"CTColTipName", I, "430"},
    {"CTColFileName", I, "415"},
    {"DietName", I, "564"},
    {"DietDuration", I, "64"},
};

QVariant defaultOf(const OptionRow& row) {
    const QString text = QString::fromUtf8(row.text);
    switch (row.type) {
    case B:
        return text == QLatin1String("true");
    case I:
        return text.toInt();
    default:
        return text;
    }
}

void declare(TVintraOptions& options, const OptionRow& row) {
    options.Declare(QString::fromLatin1(row.name), row.type, defaultOf(row));
}

} // namespace

void DeclareQuillmealOptions(TVintraOptions& options) {
    for (const OptionRow& row : FrameOptions)
        declare(options, row);
    for (const char* prefix : GeometryPrefixes) {
        const QString p = QString::fromLatin1(prefix);
        options.Declare(p + QStringLiteral("PositionLeft"), I, 0);
        options.Declare(p + QStringLiteral("PositionTop"), I, 0);
        options.Declare(p + QStringLiteral("SizeHeight"), I, 480);
        options.Declare(p + QStringLiteral("SizeWidth"), I, 660);
    }
    for (const OptionRow& row : OtherOptions)
        declare(options, row);
}

QString DefaultOptionsFile(const QString& configDirOverride) {
    const QString fileName = QStringLiteral("Quillmeal.conf");
    if (!configDirOverride.isEmpty())
        return QDir(configDirOverride).filePath(fileName);
    const QString fromEnvironment = qEnvironmentVariable("QUILLMEAL_CONFIG_DIR");
    if (!fromEnvironment.isEmpty())
        return QDir(fromEnvironment).filePath(fileName);
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Orvane Team/Hearthnote/") + fileName;
}
