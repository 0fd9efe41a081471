#include "components/decimal_text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace qm {

namespace {

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// Takes a sign at `i` ('+', '-' or the locale's own); returns whether it was a minus.
bool takeSign(const QString& text, qsizetype& i, const QLocale& locale, bool& negative) {
    const QString minus = locale.negativeSign();
    const QString plus = locale.positiveSign();
    if (text.at(i) == QLatin1Char('-') || (!minus.isEmpty() && text.mid(i).startsWith(minus))) {
        i += text.at(i) == QLatin1Char('-') ? 1 : minus.size();
        negative = true;
        return true;
    }
    if (text.at(i) == QLatin1Char('+') || (!plus.isEmpty() && text.mid(i).startsWith(plus))) {
        i += text.at(i) == QLatin1Char('+') ? 1 : plus.size();
        return true;
    }
    return false;
}

/// Digits from `i` on, appended to `out`; returns how many.
int takeDigits(const QString& text, qsizetype& i, QByteArray& out) {
    int count = 0;
    while (i < text.size() && isDigit(text.at(i))) {
        out += char(text.at(i).unicode());
        ++i;
        ++count;
    }
    return count;
}

/// Adds one unit in the last place of a string of digits.
QByteArray increment(QByteArray digits) {
    for (qsizetype i = digits.size() - 1; i >= 0; --i) {
        if (digits[i] != '9') {
            ++digits[i];
            return digits;
        }
        digits[i] = '0';
    }
    return '1' + digits;
}

} // namespace

bool ParseDecimal(const QString& input, double& value, bool exponent, const QLocale& locale) {
    value = 0;
    const QString text = input.trimmed();
    if (text.isEmpty())
        return false;
    QByteArray plain; // the same number in the C locale's spelling
    qsizetype i = 0;
    bool negative = false;
    takeSign(text, i, locale, negative);
    if (negative)
        plain += '-';
    int digits = takeDigits(text, i, plain);
    const QString point = locale.decimalPoint();
    if (i < text.size() && text.mid(i).startsWith(point)) {
        i += point.size();
        plain += '.';
        digits += takeDigits(text, i, plain);
    }
    if (digits == 0)
        return false;
    if (exponent && i < text.size() && (text.at(i) == QLatin1Char('e') || text.at(i) == QLatin1Char('E'))) {
        ++i;
        plain += 'e';
        bool minus = false;
        if (i < text.size() && takeSign(text, i, locale, minus) && minus)
            plain += '-';
        if (takeDigits(text, i, plain) == 0)
            return false;
    }
    if (i != text.size())
        return false;
    bool ok = false;
    const double number = QLocale::c().toDouble(QString::fromLatin1(plain), &ok);
    if (!ok || !std::isfinite(number))
        return false;
    value = number;
    return true;
}

double DecimalOrZero(const QString& text, bool exponent, const QLocale& locale) {
    double value = 0;
    return ParseDecimal(text, value, exponent, locale) ? value : 0.0;
}

bool ParseInteger(const QString& input, int& value, const QLocale& locale) {
    value = 0;
    const QString text = input.trimmed();
    if (text.isEmpty())
        return false;
    QByteArray plain;
    qsizetype i = 0;
    bool negative = false;
    takeSign(text, i, locale, negative);
    if (negative)
        plain += '-';
    if (takeDigits(text, i, plain) == 0 || i != text.size())
        return false;
    bool ok = false;
    const qlonglong number = plain.toLongLong(&ok);
    if (!ok || number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
        return false;
    value = int(number);
    return true;
}

int IntegerOrZero(const QString& text, const QLocale& locale) {
    int value = 0;
    return ParseInteger(text, value, locale) ? value : 0;
}

namespace {

QString localised(QString text, const QLocale& locale) {
    if (text == QLatin1String("-0"))
        text = QStringLiteral("0");
    text.replace(QLatin1Char('.'), locale.decimalPoint());
    if (text.startsWith(QLatin1Char('-')))
        text.replace(0, 1, locale.negativeSign());
    return text;
}

} // namespace

QString DecimalText(double value, const QLocale& locale) {
    if (!std::isfinite(value))
        return QString::number(value);
    return localised(QString::number(value, 'f', QLocale::FloatingPointShortest), locale);
}

QString DecimalText(float value, const QLocale& locale) {
    if (!std::isfinite(value))
        return QString::number(value);
    char buffer[128];
    const std::to_chars_result end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    if (end.ec != std::errc())
        return DecimalText(double(value), locale);
    return localised(QString::fromLatin1(buffer, end.ptr - buffer), locale);
}

QString FormatDecimal(double value, const QString& mask, const QLocale& locale) {
    if (!std::isfinite(value))
        return QString::number(value);
    const qsizetype maskPoint = mask.indexOf(QLatin1Char('.'));
    const QString decimals = maskPoint < 0 ? QString() : mask.mid(maskPoint + 1);
    const int fixed = int(decimals.count(QLatin1Char('0')));
    const int places = fixed + int(decimals.count(QLatin1Char('#')));

    // Rounded in decimal from the shortest text, so that what the user reads decides the half.
    QByteArray text = QString::number(std::fabs(value), 'f', QLocale::FloatingPointShortest).toLatin1();
    const qsizetype dot = text.indexOf('.');
    QByteArray whole = dot < 0 ? text : text.left(dot);
    QByteArray fraction = dot < 0 ? QByteArray() : text.mid(dot + 1);
    if (fraction.size() > places) {
        const bool up = fraction.at(places) >= '5';
        fraction.truncate(places);
        if (up) {
            const QByteArray sum = increment(whole + fraction);
            whole = sum.left(sum.size() - places);
            fraction = sum.right(places);
        }
    }
    while (fraction.size() < fixed)
        fraction += '0';
    while (fraction.size() > fixed && fraction.endsWith('0'))
        fraction.chop(1);

    QString result = QString::fromLatin1(whole);
    if (!fraction.isEmpty())
        result += locale.decimalPoint() + QString::fromLatin1(fraction);
    const bool zero = whole.count('0') == whole.size() && fraction.count('0') == fraction.size();
    if (value < 0 && !zero)
        result.prepend(locale.negativeSign());
    return result;
}

} // namespace qm
