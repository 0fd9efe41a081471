#pragma once

#include <QString>
#include <QVariant>

namespace qm {
class Dataset;
}

/// The rules of the units window that need no widgets: the type text of the grid and the checks
/// before a unit is written.
namespace UnitRecords {

inline constexpr int WeightUnit = 1;
inline constexpr int VolumeUnit = 2;

/// Text of the calculated field unitTypeText: the dictionary's weight text for type 1, its volume
/// text for type 2, "" for anything else.
QString UnitTypeText(const QVariant& unitType);
/// The type a unit shows on screen: type 1 is weight, any other value (null too) volume.
bool ShowsAsWeight(const QVariant& unitType);
/// BeforePost: an empty name, abbreviation or small abbreviation adds a line of kind 7, 8 or 9.
/// The factor isn't checked, so a weight unit without one posts.
void CheckUnit(qm::Dataset& table, QString& errors);

} // namespace UnitRecords
