#pragma once

#include "store/record_window_rules.h"

/// The kinds of record that the record windows keep: tables, keys, words, options, message keys
/// and statements of each, for the window of that kind to build on.
namespace RecordKinds {

qm::RecordKind Units();
qm::RecordKind Ingredients();
qm::RecordKind Recipes();
qm::RecordKind Menus();
qm::RecordKind CookingTips();

} // namespace RecordKinds
