#include "store/picture_commands.h"

#include "components/messages.h"
#include "store/resource_holder.h"

#include <QDir>
#include <QFile>
#include <algorithm>

namespace PictureCommands {

namespace {

QString fileOf(TPictureKind kind, int id, int number) {
    return DataModuleMain->PictureFolder(kind) + QStringLiteral("%1.%2.jpg").arg(id).arg(number);
}

} // namespace

QStringList PictureFiles(TPictureKind kind, int id) {
    QStringList names = QDir(DataModuleMain->PictureFolder(kind))
                            .entryList({QStringLiteral("%1.*.jpg").arg(id)}, QDir::Files);
    std::sort(names.begin(), names.end());
    return names;
}

int NumberForNewPicture(TPictureKind kind, int id) {
    DataModuleMain->RenumberPictures(id, kind);
    const int number = DataModuleMain->NextPictureNumber(id, kind);
    if (number > MaxPictures) {
        ShowError(GetText(QStringLiteral("ErrorTooMuchPictures"), QString()));
        return 0;
    }
    return number;
}

bool CopyPicture(TPictureKind kind, int id, int number, const QString& source) {
    QDir().mkpath(DataModuleMain->PictureFolder(kind));
    const QString target = fileOf(kind, id, number);
    // The copy goes over an existing file, as the in-house FileCopy does.
    QFile::remove(target);
    return QFile::copy(source, target);
}

void ClearPicture(TPictureKind kind, int id, int p) {
    QFile::remove(fileOf(kind, id, p + 1));
    DataModuleMain->RenumberPictures(id, kind);
}

void MoveUp(TPictureKind kind, int id, int p) {
    DataModuleMain->SwapPictures(id, p + 1, p, kind);
}

void MoveDown(TPictureKind kind, int id, int p) {
    DataModuleMain->SwapPictures(id, p + 1, p + 2, kind);
}

} // namespace PictureCommands
