#include "components/day_number.h"

#include <cmath>

namespace qm {

double toDayNumber(const QDateTime& dateTime) {
    return toDayNumber(dateTime.date()) + dateTime.time().msecsSinceStartOfDay() / 86400000.0;
}

QDateTime fromDayNumber(double day) {
    const double whole = std::floor(day);
    const qint64 msecs = qint64(std::llround((day - whole) * 86400000.0));
    // UTC keeps daylight-saving gaps out of the arithmetic; callers read date() and time().
    return QDateTime(kDayZero.addDays(qint64(whole)), QTime(0, 0), Qt::UTC).addMSecs(msecs);
}

} // namespace qm
