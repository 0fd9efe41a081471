#pragma once

#include <QLocale>
#include <QString>

// Numbers typed by the user or read from a user's file, and numbers shown to the user: plain
// decimal text in the machine's format, the same way in and out.

namespace qm {

/// Reads plain decimal text as the machine writes it: blanks around it, an optional sign, digits
/// with at most one decimal separator of `locale`, an exponent only when `exponent` is set. Group
/// separators, "inf", "nan", hexadecimal and a value beyond the range of a double are refused.
bool ParseDecimal(const QString& text, double& value, bool exponent = false,
                  const QLocale& locale = QLocale::system());
/// ParseDecimal, with 0 for text that isn't a number.
double DecimalOrZero(const QString& text, bool exponent = false, const QLocale& locale = QLocale::system());

/// A whole number: blanks around it, an optional sign and digits, within the range of an int.
bool ParseInteger(const QString& text, int& value, const QLocale& locale = QLocale::system());
/// ParseInteger, with 0 for text that isn't a whole number.
int IntegerOrZero(const QString& text, const QLocale& locale = QLocale::system());

/// The shortest text that reads back as the same double, with the decimal separator of `locale`,
/// without group separators or an exponent.
QString DecimalText(double value, const QLocale& locale = QLocale::system());
/// The same for a single-precision value: the shortest text that reads back as that float.
QString DecimalText(float value, const QLocale& locale = QLocale::system());

/// A number through a mask such as "0.###" or "0.00": the zeros after the point are decimals always
/// shown, the hashes decimals shown when they aren't zero. The shortest text of the double is
/// rounded in decimal, a half away from zero, so 236.9115 gives 236.912 with three places.
QString FormatDecimal(double value, const QString& mask, const QLocale& locale = QLocale::system());

} // namespace qm
