#include "store/record_kinds.h"

#include "store/data_module_main.h"

namespace RecordKinds {

namespace {

using qm::CascadeStep;
using qm::ColumnOption;
using qm::RecordKind;

QString s(const char* text) {
    return QString::fromLatin1(text);
}

QString countRefs(const char* table, const char* column) {
    return QStringLiteral("SELECT COUNT( * ) AS numberOfRefs \nFROM %1 \nWHERE %2 = %d")
        .arg(s(table), s(column));
}

} // namespace

RecordKind Units() {
    RecordKind kind =
        qm::MakeRecordKind({}, {}, {}, s("Units"), s("unitId"), s("unitName"), {}, s("Unit"), {}, s("Unit"));
    kind.referenceCounts = {countRefs("Contents", "unitId"), countRefs("Convs", "unitId"),
                            countRefs("Ingreds", "unitId")};
    kind.recordReferenced = s("InfoUnitReferencedByIngredient");
    // Recipe lines in the unit go; ingredients based on it fall back to unit 1.
    kind.recordCascade = {{s("DELETE FROM Contents \nWHERE unitId = %d")},
                          {s("DELETE FROM Convs \nWHERE unitId = %d")},
                          {s("UPDATE Ingreds \nSET unitId = 1 \nWHERE unitId = %d")}};
    kind.quickSearchSql =
        s("SELECT unitId \nFROM Units \nWHERE unitName LIKE '@%s@' \n   OR unitAbbrev LIKE '@%s@' "
          "\n   OR unitAbbrevSmall LIKE '@%s@' \nORDER BY unitName");
    kind.hasSplitterVertical = false;
    kind.hasSplitterHorizontal = false;
    // The factor column is compared with its option's name, so its width is never kept.
    kind.columns = {{s("UnitName"), s("UnitColUnitName")},
                    {s("UnitAbbrev"), s("UnitColUnitAbbrev")},
                    {s("unitTypeText"), s("UnitColUnitType")},
                    {s("UnitColUnitConv"), s("UnitColUnitConv")}};
    return kind;
}

RecordKind Ingredients() {
    RecordKind kind = qm::MakeRecordKind(s("ITypes"), s("ingredTypeId"), s("ingredTypeName"), s("Ingreds"),
                                         s("ingredId"), s("ingredName"), s("ingredTypeId"), s("Ingred"),
                                         s("IngredientType"), s("Ingredient"));
    kind.groupContainsRecords = s("InfoIngredientTypeContainsIngredients");
    kind.groupCascade = {
        {s("DELETE FROM Contents \nWHERE ingredId IN \n( \n   SELECT ingredId \n   FROM Ingreds \n   WHERE "
           "ingredTypeId = %d \n)")},
        {s("DELETE FROM Convs \nWHERE ingredId IN \n( \n    SELECT ingredId \n    FROM Ingreds \n    WHERE "
           "ingredTypeId = %d \n)")},
        {s("DELETE FROM Ingreds \nWHERE ingredTypeId = %d")}};
    kind.newGroupNameKey = s("@New_ingredient_type");
    kind.rootNodeNameKey = s("IngredientsRootNodeName");
    kind.rootNodeNameDefault = s("Ingredients");
    kind.lockedDelete = s("InfoLockedIngredDelete");
    kind.referenceCounts = {countRefs("Contents", "ingredId")};
    kind.recordReferenced = s("InfoIngredientReferencedByRecipes");
    // An unreferenced ingredient keeps its Convs rows: these run only on this branch.
    kind.recordCascade = {{s("DELETE FROM Contents \nWHERE ingredId = %d")},
                          {s("DELETE FROM Convs \nWHERE ingredId = %d")}};
    kind.quickSearchSql = s(
        "SELECT ingredId, ingredTypeId, ingredName \nFROM Ingreds \nWHERE ingredName LIKE '@%s@' \nORDER BY "
        "ingredTypeId, ingredName");
    kind.groupOfRecord = [](int id) { return DataModuleMain->GetIngredientTypeId(id); };
    kind.statusKey = s("StatusIngredientsInCurrentType");
    kind.columns = {{s("IngredName"), s("IngredColIngredName")},
                    {s("ingredPrice"), s("IngredColIngredPrice")}};
    return kind;
}

RecordKind Recipes() {
    RecordKind kind =
        qm::MakeRecordKind(s("RGroups"), s("recGroupId"), s("recGroupName"), s("Recipes"), s("recId"),
                           s("recName"), s("recGroupId"), s("Rec"), s("RecipeGroup"), s("Recipe"));
    kind.groupContainsRecords = s("InfoRecipeGroupContainsRecipes");
    // Narrower than a recipe's own cascade: diet items, diary meals and pictures stay.
    const QString ofGroup =
        s("DELETE FROM %s \nWHERE recId IN \n( \n   SELECT recId \n   FROM Recipes \n   WHERE "
          "recGroupId = %d \n)");
    kind.groupCascade = {
        {ofGroup, s("RecMen")},
        {ofGroup, s("RecDate")},
        {s("DELETE FROM Contents \nWHERE recId IN \n( \n   SELECT recId \n   FROM Recipes \n   "
           "WHERE recGroupId = %d \n)")},
        {s("DELETE FROM Recipes \nWHERE recGroupId = %d")}};
    kind.newGroupNameKey = s("@New_recipe_group");
    kind.rootNodeNameKey = s("RecipesRootNodeName");
    kind.rootNodeNameDefault = s("Recipes");
    kind.rootListsAllRecords = true;
    // A locked recipe is deleted like any other.
    kind.lockedRecords = false;
    kind.referenceCounts = {countRefs("RecMen", "recId"), countRefs("RecDate", "recId"),
                            countRefs("DietContents", "recId"), countRefs("UserMeals", "recId")};
    kind.recordReferenced = s("InfoRecipeReferenced");
    kind.recordCascade = {{s("DELETE FROM RecDate \nWHERE recId = %d")},
                          {s("DELETE FROM RecMen \nWHERE recId = %d")},
                          {s("DELETE FROM Contents \nWHERE recId = %d")},
                          {s("DELETE FROM DietContents \nWHERE recId = %d")},
                          {s("DELETE FROM UserMeals \nWHERE recId = %d")}};
    kind.quickSearchSql =
        s("SELECT recId, recGroupId, recName \nFROM Recipes \nWHERE recName LIKE '@%s@' \nORDER BY "
          "recGroupId, recName");
    kind.noMatching = s("InfoNoMatchingRecipes");
    kind.noMoreMatching = s("InfoNoMoreMatchingRecipes");
    kind.groupOfRecord = [](int id) { return DataModuleMain->GetRecipeGroupId(id); };
    kind.statusKey = s("StatusRecipesInCurrentGroup");
    kind.statusSeparator = QString();
    kind.columns = {{s("RecName"), s("RecColRecName")},         {s("RecTime"), s("RecColRecTime")},
                    {s("RecServings"), s("RecColRecServings")}, {s("recPrice"), s("RecColRecPrice")},
                    {s("ingredName"), s("RecColIngredName")},   {s("amount"), s("RecColIngredAmount")},
                    {s("unitName"), s("RecColUnitName")},       {s("calcAmount"), s("RecColCalcAmount")}};
    return kind;
}

RecordKind Menus() {
    RecordKind kind =
        qm::MakeRecordKind(s("MGroups"), s("menuGroupId"), s("menuGroupName"), s("Menus"), s("menuId"),
                           s("menuName"), s("menuGroupId"), s("Menu"), s("MenuGroup"), s("Menu"));
    kind.groupContainsRecords = s("InfoMenuGroupContainsMenus");
    // Both statements name columns Menus doesn't have: the engine refuses the first, so a group
    // with menus can't be deleted under either rule.
    kind.groupCascade = {
        {s("DELETE FROM RecMen \nWHERE menuId IN \n( \n   SELECT menuId \n   FROM Menus \n   WHERE "
           "menuGroupIn = %d \n)")},
        {s("DELETE FROM Menus \nWHERE menuGroup = %d")}};
    kind.newGroupNameKey = s("@New_menu_group");
    // A sibling takes its id from the recipe groups' counter and a child from its own, untranslated.
    kind.newSiblingIdKey = s("RGroups");
    kind.newChildIdKey = s("MGroups");
    kind.newChildFixedName = s("New menu group");
    kind.rootNodeNameKey = s("MenusRootNodeName");
    kind.rootNodeNameDefault = s("Menus");
    kind.rootListsAllRecords = true;
    // Menus have message keys but no options of their own: the question is always asked.
    kind.lockedRecords = false;
    kind.confirmDeletionRecord.clear();
    kind.irDeleteRecord.clear();
    kind.alwaysConfirmRecordDeletion = true;
    kind.recordDeleteSteps = {{s("DELETE FROM RecMen \nWHERE menuId = %d")}};
    kind.quickSearchSql =
        s("SELECT menuId, menuGroupId, menuName \nFROM Menus \nWHERE menuName LIKE '@%s@' \nORDER BY "
          "menuGroupId, menuName");
    kind.groupOfRecord = [](int id) { return DataModuleMain->GetMenuGroupId(id); };
    kind.statusKey = s("StatusMenusInCurrentGroup");
    kind.columns = {{s("MenuName"), s("MenuColMenuName")},         {s("recName"), s("MenuColRecName")},
                    {s("servings"), s("MenuColRecServings")},      {s("ingredName"), s("MenuColIngredName")},
                    {s("amount"), s("MenuColIngredAmount")},       {s("unit"), s("MenuColUnitName")},
                    {s("pricePerUnit"), s("MenuColPricePerUnit")}, {s("price"), s("MenuColPrice")}};
    return kind;
}

RecordKind CookingTips() {
    RecordKind kind = qm::MakeRecordKind(
        s("CTGroups"), s("cookingTipGroupId"), s("cookingTipGroupName"), s("CookingTips"), s("cookingTipId"),
        s("cookingTipName"), s("cookingTipGroupId"), s("CT"), s("CookingTipGroup"), s("CookingTip"));
    kind.confirmDeletionGroup = s("ConfirmDeletionCookinTipGroup");
    kind.groupContainsRecords = s("InfoCookingTipGroupContainsCookingTips");
    // The first statement names a column CTVideos doesn't have; the engine refuses it before the
    // tips go.
    kind.groupCascade = {
        {s("DELETE FROM %s \nWHERE recId IN \n( \n   SELECT cookingTipId \n   FROM cookingTips \n   "
           "WHERE cookingTipGroupId = %d \n)"),
         s("CTVideos")},
        {s("DELETE FROM CookingTips \nWHERE cookingTipGroupId = %d")}};
    kind.newGroupNameKey = s("@New_cooking_tip_group");
    kind.rootNodeNameKey = s("CookingTipsRootNodeName");
    kind.rootNodeNameDefault = s("Cooking Tips");
    kind.rootListsAllRecords = true;
    kind.lockedRecords = false;
    kind.referenceCounts = {countRefs("CTVideos", "cookingTipId")};
    kind.recordReferenced = s("InfoCookingTipReferenced");
    // The window's cascade first walks the media files; this statement stands behind that walk.
    kind.recordCascade = {{s("DELETE FROM CTVIdeos \nWHERE cookingTip = %d")}};
    // Only the current tip moves, also when several are marked.
    kind.moveStatement = s("UPDATE CookingTips \nSET cookingTipGroupId = %d \nWHERE cookingTipId = %d");
    kind.moveOneAtATime = true;
    // No quick search in this window.
    kind.noMatching.clear();
    kind.noMoreMatching.clear();
    kind.statusText = s("Cooking tips in current recipe group: ");
    kind.statusSeparator = QString();
    kind.columns = {{s("cookingTipName"), s("CTColTipName")}, {s("fileName"), s("CTColFileName")}};
    return kind;
}

} // namespace RecordKinds
