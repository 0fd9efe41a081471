#include "culinary/unit_converter.h"

#include "components/decimal_text.h"

#include <algorithm>
#include <cmath>

namespace UnitConverter {

Split SplitLength(double centimetres) {
    Split s;
    s.whole = int(std::floor(0.03280839895013123 * centimetres));
    s.part = (centimetres - s.whole * 30.48) * 0.39370078740157477;
    return s;
}

Split SplitWeight(double kilograms) {
    Split s;
    s.whole = int(std::floor(2.2222222222222223 * kilograms));
    s.part = (kilograms - s.whole * 0.45) * 33.333333333333336;
    return s;
}

QString MaskText(double value, int digits) {
    // Past what the mask holds the digits are cut anyway; the bound keeps the conversion defined.
    if (!std::isfinite(value))
        value = 0;
    value = std::clamp(std::trunc(value), -1e15, 1e15);
    QString text = QString::number(qint64(value));
    if (text.startsWith(QLatin1Char('-')))
        text.remove(0, 1); // a digit mask takes no sign
    return text.left(digits);
}

namespace {

// Both texts as numbers, or both 0 when either one isn't a number (an empty mask edit).
bool readPair(const QString& a, const QString& b, double& x, double& y) {
    if (qm::ParseDecimal(a, x) && qm::ParseDecimal(b, y))
        return true;
    x = y = 0;
    return false;
}

} // namespace

float LengthFromTexts(const QString& feet, const QString& inches) {
    double f = 0, i = 0;
    readPair(feet, inches, f, i);
    return float(f * 30.48 + i * 2.54);
}

float WeightFromTexts(const QString& pounds, const QString& ounces) {
    double p = 0, o = 0;
    readPair(pounds, ounces, p, o);
    return float(p * 0.45 + o * 0.03);
}

} // namespace UnitConverter
