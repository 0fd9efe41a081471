#pragma once

#include <QString>

/// Feet and inches, pounds and ounces, with the rounded factors the program has always used:
/// 1 foot = 30.48 cm, 1 inch = 2.54 cm, 1 pound = 0.45 kg, 1 ounce = 0.03 kg.
namespace UnitConverter {

struct Split {
    int whole = 0;   ///< feet or pounds
    double part = 0; ///< inches or ounces, before the edit's mask cuts them
};

Split SplitLength(double centimetres);
Split SplitWeight(double kilograms);

/// The text a mask of `digits` digits keeps of a number: the whole part, at most that many digits.
QString MaskText(double value, int digits);

/// The value recomputed from the two edit texts; text that isn't a number makes both count as 0.
float LengthFromTexts(const QString& feet, const QString& inches);
float WeightFromTexts(const QString& pounds, const QString& ounces);

} // namespace UnitConverter
