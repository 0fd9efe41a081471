#pragma once

#include <QString>
#include <QStringList>

/// The four pieces of a free-form ingredient line.
struct TIngredientLineParts {
    QString whole;
    QString fraction;
    QString unit;
    QString name;
};

/// Layouts of free-form lines, by the program that wrote them.
enum TIngredientLineSource {
    ilsMasterCook = 1, ///< also the layout a free-form recipe keeps its lines in
    ilsMealMaster = 2,
    ilsComputerChef = 3
};

/// Cuts a line by its fixed columns (counted from 1), without trimming: MasterCook whole part
/// 1-4, fraction 6-8, unit 11-22, name from 25; Meal-Master and Computer Chef 1-3, 5-7, 9-10,
/// from 12. For the last two a fraction with a blank whole part moves to the whole part.
TIngredientLineParts SplitIngredientLine(const QString& line, int source);

/// Splits, trims the four pieces and builds the line of the target layout:
/// 1 "%4s %-3s  %-12s %s"; 2 "%3s %3s %2s %s" with a lone whole part moved to the fraction;
/// 3 "       %-8s %-5s %s" of (whole + " " + fraction), unit, name.
QString ReformatIngredientLine(const QString& line, int source, int target);

/// An amount as a whole part ("0" below 1) and the next listed fraction at or above the rest.
/// A rest of exactly 0 empties `fraction`; a rest above 7/8 (or below 0) leaves it as it was,
/// so that a caller keeping it across lines repeats the previous line's fraction.
void AmountToFraction(double amount, QString& whole, QString& fraction);

/// The line the free-form line dialog composes: "%-4s %-3s  %-12s  %-s" of whole part, fraction,
/// unit and name; its columns are those that SplitIngredientLine reads for source 1.
QString ComposeIngredientLine(const QString& whole, const QString& fraction, const QString& unit,
                              const QString& name);

/// The lines of a free-form recipe's ingredient text, one per line break; a break at the end
/// makes no empty last line.
QStringList IngredientLines(const QString& text);
/// The text of the lines as the list box gives it back: each line followed by a line break.
QString IngredientText(const QStringList& lines);
