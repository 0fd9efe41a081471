#pragma once

#include <QString>
#include <functional>

namespace qm {
class Database;
}

namespace PriceListSql {
extern const char* const UpdatePrice;
}

/// What an import did: elements that set a price, and the reader's complaint when the file broke off.
struct TPriceListResult {
    int applied = 0;
    QString error;
};

/// Reads `ingredient` elements (any depth, name without case) with `id` and `price` and sets
/// each price; an element with a bad or missing number is skipped, the last of equal ids wins.
/// Elements before a broken part of the file stay applied. Throws DbError when a statement fails.
/// `applied`, when given, hears of each price as soon as its statement has returned.
TPriceListResult ImportPriceList(qm::Database& db, const QString& fileName,
                                 const std::function<void(int ingredId)>& applied = {});
