#pragma once

#include <QString>

namespace qm {
class Dataset;
}

// The category list and the categories of one recipe.

namespace CategorySql {
/// Categories a recipe doesn't have yet, and those it has (:recId).
extern const char* const QueryAvailableCategories;
extern const char* const QueryAssignedCategories;
extern const char* const Assign;     ///< %d recId, %d catId
extern const char* const Remove;     ///< %d recId, %d catId
extern const char* const CountRefs;  ///< %d catId
extern const char* const DeleteRefs; ///< %d catId
} // namespace CategorySql

void AssignCategory(int recId, int catId);
void RemoveCategory(int recId, int catId);

/// A null name: the line of kind 12 (category name).
void CheckCategory(qm::Dataset& tableCategories, QString& errors);

/// Before a category goes: with recipes in it the cascade question, on Yes its assignments go;
/// without, the plain question. Any answer but Yes throws Abort. No option is asked.
void CategoryBeforeDelete(int catId);
