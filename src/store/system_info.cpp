#include "store/system_info.h"

#include "store/data_module_main.h"
#include "store/resource_holder.h"

QString SystemInfoText() {
    const auto count = [](const char* table) { return DataModuleMain->CountRecords(QLatin1String(table)); };
    // 1. The counts, read first and in this order.
    const int recipeGroups = count("RGroups"), recipes = count("Recipes"), types = count("ITypes"),
              ingredients = count("Ingreds"), menuGroups = count("MGroups"), menus = count("Menus"),
              units = count("Units"), categories = count("Categories"), tipGroups = count("CTGroups"),
              tips = count("CookingTips");
    // 2, 3.
    const QString full = GetText(QStringLiteral("SIFullLine"), QString());
    const QString indented = GetText(QStringLiteral("SIIndentedLine"), QString());
    QString text;
    const auto line = [&text](const QString& s) { text += s + QLatin1Char('\n'); };
    const auto counted = [&line](const char* key, int n) {
        line(GetText(QLatin1String(key), QString()) + QString::number(n));
    };
    const auto title = [&line, &indented](const char* key) {
        line(GetText(QLatin1String(key), QString()));
        line(indented);
    };
    line(GetText(QStringLiteral("SIDatabase"), QString()));
    line(full);
    title("SIRecipesTitle");
    counted("SIRecipeGroups", recipeGroups);
    counted("SIRecipes", recipes);
    title("SIIngredientsTitle");
    counted("SIIngredientTypes", types);
    counted("SIIngredients", ingredients);
    title("SIMenusTitle");
    counted("SIMenuGroups", menuGroups);
    counted("SIMenus", menus);
    title("SIUnitsTitle");
    counted("SIUnits", units);
    title("SICategoriesTitle");
    counted("SICategories", categories);
    title("SICookingTipsTitle");
    counted("SICookingTipGroups", tipGroups);
    counted("SICookingTips", tips);
    return text;
}
