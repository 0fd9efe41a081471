#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>

namespace qm {
class Database;
}

/// A nutrient limit as the search form holds it: operator text (">=" or "<=") and the typed value.
struct TNutrientLimit {
    QString op = QStringLiteral(">=");
    QString value;
};

/// The order in which the searches write their nutrient limits (it differs from NutrientSet).
extern const QStringList SearchNutrientOrder;

/// The criteria of the recipe search window.
struct TRecipeSearchCriteria {
    QString pattern;
    bool allGroups = true;
    int groupKey = 0;         ///< the tree's current key; 0 is the root
    QString groupChildrenIds; ///< GetChildrenIds of the tree at groupKey
    QList<int> belongsTo, notBelongsTo;
    QString prepTime, servings;
    QMap<QString, TNutrientLimit> nutrients; ///< by column
    bool canBeMadeOf = false;
    QList<int> contains, notContains;
};

/// The criteria of the ingredient search window.
struct TIngredientSearchCriteria {
    QString pattern;
    bool allTypes = true;
    int typeKey = 0;
    QString typeChildrenIds;
    QMap<QString, TNutrientLimit> nutrients;
};

/// The lines of the statement, in the order the search adds them.
QStringList BuildRecipeSearchLines(const TRecipeSearchCriteria& criteria);
QStringList BuildIngredientSearchLines(const TIngredientSearchCriteria& criteria);
/// The whole text of a statement as its query holds it: each line followed by a line break.
QString StatementText(const QStringList& lines);

/// A name pattern fit for '*%s*': each apostrophe becomes a concatenation with CHR( 39 ).
QString QuotePatternApostrophes(const QString& pattern);

/// The key and every key below it in a group table, as a list for IN: the key first, then the
/// children depth first in alphabetical order, joined by ", ".
QString ChildrenIds(qm::Database& db, const QString& table, const QString& keyColumn,
                    const QString& nameColumn, int key);
