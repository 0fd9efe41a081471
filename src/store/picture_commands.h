#pragma once

#include "store/data_module_main.h"

#include <QString>
#include <QStringList>

/// The picture commands of the ingredient and recipe windows, on the files beside the database.
/// Positions p count tabs from 0; file numbers count from 1.
namespace PictureCommands {

inline constexpr int MaxPictures = 9;

/// Names of `<id>.*.jpg` sorted as text, as the tabs are built from them.
QStringList PictureFiles(TPictureKind kind, int id);
/// Renumbers, then gives the number a new picture takes, or 0 after ErrorTooMuchPictures.
int NumberForNewPicture(TPictureKind kind, int id);
/// Copies `source` over `<id>.<number>.jpg`; false when the copy fails.
bool CopyPicture(TPictureKind kind, int id, int number, const QString& source);
/// Deletes the picture of tab p and closes the gap.
void ClearPicture(TPictureKind kind, int id, int p);
void MoveUp(TPictureKind kind, int id, int p);
void MoveDown(TPictureKind kind, int id, int p);

} // namespace PictureCommands
