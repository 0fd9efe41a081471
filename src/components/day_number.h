#pragma once

#include <QDate>
#include <QDateTime>

namespace qm {

/// Dates are REAL day numbers since 1899-12-30; the fraction is the time of day.
inline const QDate kDayZero(1899, 12, 30);

inline double toDayNumber(const QDate& date) {
    return double(kDayZero.daysTo(date));
}
double toDayNumber(const QDateTime& dateTime);
QDateTime fromDayNumber(double day);
inline QDate dateFromDayNumber(double day) {
    return fromDayNumber(day).date();
}

} // namespace qm

namespace qm {
/// Day number cut to its whole days, as statements carry dates through %d.
inline double toDayNumberCut(const QDateTime& dateTime) {
    return double(qint64(toDayNumber(dateTime)));
}
} // namespace qm
