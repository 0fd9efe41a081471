#include "culinary/ingredient_line.h"

#include "components/sql_format.h"

#include <QRegularExpression>
#include <cmath>
#include <utility>

namespace {

const char* const LayoutTarget1 = "%4s %-3s  %-12s %s";
const char* const LayoutTarget2 = "%3s %3s %2s %s";
const char* const LayoutTarget3 = "       %-8s %-5s %s";
const char* const LayoutDialog = "%-4s %-3s  %-12s  %-s";

struct Fraction {
    const char* text;
    double value;
};

// In rising order: the first one not below the rest is taken.
const Fraction Fractions[] = {{"1/8", 1.0 / 8}, {"1/7", 1.0 / 7}, {"1/6", 1.0 / 6}, {"1/5", 1.0 / 5},
                              {"1/4", 1.0 / 4}, {"2/7", 2.0 / 7}, {"1/3", 1.0 / 3}, {"3/8", 3.0 / 8},
                              {"2/5", 2.0 / 5}, {"3/7", 3.0 / 7}, {"1/2", 1.0 / 2}, {"4/7", 4.0 / 7},
                              {"3/5", 3.0 / 5}, {"5/8", 5.0 / 8}, {"2/3", 2.0 / 3}, {"5/7", 5.0 / 7},
                              {"3/4", 3.0 / 4}, {"4/5", 4.0 / 5}, {"5/6", 5.0 / 6}, {"6/7", 6.0 / 7},
                              {"7/8", 7.0 / 8}};

/// Characters `from` to `to` (1-based, inclusive; to 0 is the end), as far as the line reaches.
QString columns(const QString& line, int from, int to) {
    if (line.size() < from)
        return QString();
    return to == 0 ? line.mid(from - 1) : line.mid(from - 1, to - from + 1);
}

} // namespace

TIngredientLineParts SplitIngredientLine(const QString& line, int source) {
    TIngredientLineParts parts;
    if (source == ilsMasterCook) {
        parts.whole = columns(line, 1, 4);
        parts.fraction = columns(line, 6, 8);
        parts.unit = columns(line, 11, 22);
        parts.name = columns(line, 25, 0);
        return parts;
    }
    parts.whole = columns(line, 1, 3);
    parts.fraction = columns(line, 5, 7);
    parts.unit = columns(line, 9, 10);
    parts.name = columns(line, 12, 0);
    // These formats right-justify a lone fraction into the whole part's place; a blank whole part
    // is taken as empty.
    if (parts.whole.trimmed().isEmpty() && !parts.fraction.trimmed().isEmpty()) {
        parts.whole = parts.fraction;
        parts.fraction.clear();
    }
    return parts;
}

QString ReformatIngredientLine(const QString& line, int source, int target) {
    TIngredientLineParts p = SplitIngredientLine(line, source);
    p.whole = p.whole.trimmed();
    p.fraction = p.fraction.trimmed();
    p.unit = p.unit.trimmed();
    p.name = p.name.trimmed();
    switch (target) {
    case 1:
        return qm::format(QString::fromLatin1(LayoutTarget1), {p.whole, p.fraction, p.unit, p.name});
    case 2:
        if (p.fraction.isEmpty())
            p.fraction = std::exchange(p.whole, QString());
        return qm::format(QString::fromLatin1(LayoutTarget2), {p.whole, p.fraction, p.unit, p.name});
    case 3:
        return qm::format(QString::fromLatin1(LayoutTarget3),
                          {p.whole + QLatin1Char(' ') + p.fraction, p.unit, p.name});
    default:
        return line;
    }
}

void AmountToFraction(double amount, QString& whole, QString& fraction) {
    // The amount is handed over in single precision, and the rest is taken in it.
    const float single = static_cast<float>(amount);
    const float truncated = std::trunc(single);
    whole = QString::number(static_cast<qlonglong>(truncated));
    const float rest = single - truncated;
    if (rest == 0.0f) {
        fraction.clear();
        return;
    }
    for (const Fraction& f : Fractions) {
        if (f.value >= static_cast<double>(rest)) {
            // A negative rest is not below any entry but matches none either: it leaves the text.
            if (rest > 0.0f)
                fraction = QString::fromLatin1(f.text);
            return;
        }
    }
}

QString ComposeIngredientLine(const QString& whole, const QString& fraction, const QString& unit,
                              const QString& name) {
    return qm::format(QString::fromLatin1(LayoutDialog), {whole, fraction, unit, name});
}

QStringList IngredientLines(const QString& text) {
    static const QRegularExpression lineBreak(QStringLiteral("\r\n|\r|\n"));
    QStringList lines = text.split(lineBreak);
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QString IngredientText(const QStringList& lines) {
    QString text;
    for (const QString& line : lines)
        text += line + QLatin1Char('\n');
    return text;
}
