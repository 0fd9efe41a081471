#pragma once

#include <QStringList>
#include <QTextStream>

/// The commands of quillmeal-cli; each returns the exit status (0 done, 1 reported error, 2 bad usage).
namespace cli {

struct Context {
    QTextStream& out;
    QTextStream& err;
};

/// Text of one value as the command line prints it: NULL empty, REAL with up to 15 digits.
QString FormatValue(const QVariant& value);

int Init(Context& c);
int Sql(Context& c, const QStringList& args);
int NewId(Context& c, const QStringList& args);
int IngredientInMenu(Context& c, const QStringList& args);
int IngredientForDate(Context& c, const QStringList& args);
int Options(Context& c);
/// Recalculates one recipe's nutrients, stores them and prints the seventeen values.
int Recalc(Context& c, const QStringList& args);
/// Applies an ingredient price list and prints how many elements it applied.
int ImportPriceListCommand(Context& c, const QStringList& args);
/// The recipe search from options; prints recId and recName per hit, or the statement with --sql.
int SearchRecipes(Context& c, const QStringList& args);
/// The ingredient search likewise.
int SearchIngredients(Context& c, const QStringList& args);

} // namespace cli
