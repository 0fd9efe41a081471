#include "culinary/search_lists.h"

namespace qm {

const char* const SearchAvailableCategoriesSql = "SELECT catId, catName \nFROM Categories \nORDER BY catId";
const char* const SearchIngredientsOfTypeSql =
    "SELECT ingredId, ingredName\nFROM Ingreds\nWHERE ingredTypeId = :ingredTypeId\nORDER BY ingredName";

} // namespace qm
