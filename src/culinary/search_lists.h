#pragma once

/// The lists the search windows choose their criteria from.
namespace qm {

/// Every category, in the order of their ids.
extern const char* const SearchAvailableCategoriesSql;
/// The ingredients of one type (parameter ingredTypeId), by name.
extern const char* const SearchIngredientsOfTypeSql;

} // namespace qm
