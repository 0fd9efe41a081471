#include "components/sql_format.h"

#include <limits>

namespace qm {

qlonglong cutToInteger(double value) {
    if (!(value == value))
        return 0;
    if (value >= 9223372036854775807.0)
        return std::numeric_limits<qlonglong>::max();
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<qlonglong>::min();
    return qlonglong(value);
}

namespace {

QString formatOne(const QString& flags, int width, int precision, QChar conversion, const QVariant& arg) {
    QByteArray spec = "%" + flags.toLatin1();
    if (width >= 0)
        spec += QByteArray::number(width);
    switch (conversion.unicode()) {
    case 'd':
    case 'i': {
        // A day number or any floating value is cut to its integer part, as the statements expect.
        const qlonglong value = arg.typeId() == QMetaType::Double || arg.typeId() == QMetaType::Float
                                    ? cutToInteger(arg.toDouble())
                                    : arg.toLongLong();
        return QString::asprintf((spec + "lld").constData(), value);
    }
    case 'f':
        spec += "." + QByteArray::number(precision < 0 ? 6 : precision) + "f";
        return QString::asprintf(spec.constData(), arg.toDouble());
    case 's': {
        QString text = arg.toString();
        if (precision >= 0)
            text.truncate(precision);
        if (width > text.size())
            text = flags.contains(QLatin1Char('-')) ? text.leftJustified(width) : text.rightJustified(width);
        return text;
    }
    default:
        return QString();
    }
}

} // namespace

QString format(const QString& pattern, const QVariantList& args) {
    QString out;
    out.reserve(pattern.size() + 16 * args.size());
    qsizetype next = 0;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern.at(i);
        if (c != QLatin1Char('%') || i + 1 >= pattern.size()) {
            out += c;
            continue;
        }
        qsizetype j = i + 1;
        if (pattern.at(j) == QLatin1Char('%')) {
            out += QLatin1Char('%');
            i = j;
            continue;
        }
        QString flags;
        while (j < pattern.size() && QStringLiteral("-+ #0").contains(pattern.at(j)))
            flags += pattern.at(j++);
        int width = -1;
        while (j < pattern.size() && pattern.at(j).isDigit())
            width = qMax(width, 0) * 10 + pattern.at(j++).digitValue();
        int precision = -1;
        if (j < pattern.size() && pattern.at(j) == QLatin1Char('.')) {
            ++j;
            precision = 0;
            while (j < pattern.size() && pattern.at(j).isDigit())
                precision = precision * 10 + pattern.at(j++).digitValue();
        }
        if (j >= pattern.size() || !QStringLiteral("difs").contains(pattern.at(j))) {
            out += c; // not a conversion we know: keep the text as it stands
            continue;
        }
        out += formatOne(flags, width, precision, pattern.at(j),
                         next < args.size() ? args.at(next) : QVariant());
        ++next;
        i = j;
    }
    return out;
}

QString format(const QString& pattern, std::initializer_list<QVariant> args) {
    return format(pattern, QVariantList(args));
}

void ReplaceSubstring(QString& text, const QString& what, const QString& with) {
    if (!what.isEmpty())
        text.replace(what, with);
}

} // namespace qm
