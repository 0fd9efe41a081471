#pragma once

#include <QString>
#include <QVariant>
#include <initializer_list>

namespace qm {

/// printf-style formatting of statements and messages, independent of the user's locale:
/// %d and %i integers (a floating value is truncated), %s text, %f six decimals with a point,
/// flags, width and precision as in printf (%4.02f), %% a percent sign.
QString format(const QString& pattern, std::initializer_list<QVariant> args);
QString format(const QString& pattern, const QVariantList& args);

/// A floating value cut to its integer part, as %d writes it; beyond 64 bits it stops at the
/// nearest end, and NaN is 0.
qlonglong cutToInteger(double value);

/// Replaces every occurrence in place, as the in-house string helper does.
void ReplaceSubstring(QString& text, const QString& what, const QString& with);

} // namespace qm
