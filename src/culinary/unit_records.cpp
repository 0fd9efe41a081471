#include "culinary/unit_records.h"

#include "components/dataset.h"
#include "store/record_window_rules.h"
#include "store/resource_holder.h"

namespace UnitRecords {

QString UnitTypeText(const QVariant& unitType) {
    if (unitType.isNull())
        return QString();
    switch (unitType.toInt()) {
    case WeightUnit:
        return GetText(QStringLiteral("UnitTypeTextWeight"), QString());
    case VolumeUnit:
        return GetText(QStringLiteral("UnitTypeTextVolume"), QString());
    default:
        return QString();
    }
}

bool ShowsAsWeight(const QVariant& unitType) {
    return !unitType.isNull() && unitType.toInt() == WeightUnit;
}

void CheckUnit(qm::Dataset& table, QString& errors) {
    if (table.FieldByName(QStringLiteral("unitName")).IsNull())
        AddFieldError(7, errors);
    if (table.FieldByName(QStringLiteral("unitAbbrev")).IsNull())
        AddFieldError(8, errors);
    if (table.FieldByName(QStringLiteral("unitAbbrevSmall")).IsNull())
        AddFieldError(9, errors);
}

} // namespace UnitRecords
