#include "shell/ui/form_about.h"

#include "store/resource_holder.h"
#include "store/system_info.h"
#include "store/ui/record_window.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QPushButton* okButton(QDialog* dialog, QVBoxLayout* layout) {
    auto* buttons = new QDialogButtonBox(dialog);
    QPushButton* ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("BitBtnOk"));
    QObject::connect(ok, &QPushButton::clicked, dialog, &QDialog::accept);
    layout->addWidget(buttons);
    return ok;
}

} // namespace

QPixmap splashPicture() {
    QPixmap picture(420, 220);
    picture.fill(QColor(0xF4, 0xEC, 0xDC));
    QPainter painter(&picture);
    painter.setPen(QColor(0x6B, 0x3E, 0x1F));
    QFont font = painter.font();
    font.setPointSize(26);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(picture.rect().adjusted(0, -30, 0, 0), Qt::AlignCenter,
                     QStringLiteral("Quillmeal Plus"));
    font.setPointSize(10);
    font.setBold(false);
    painter.setFont(font);
    painter.drawText(picture.rect().adjusted(0, 60, 0, 0), Qt::AlignCenter,
                     QStringLiteral("Recipes, menus and diets for your household"));
    return picture;
}

TFormAbout::TFormAbout(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormAbout"));
    setWindowTitle(tr("About Quillmeal"));
    auto* layout = new QVBoxLayout(this);
    auto* image = new QLabel(this);
    image->setObjectName(QStringLiteral("ImageSplash"));
    image->setPixmap(splashPicture());
    layout->addWidget(image);
    auto* version = new QLabel(this);
    version->setObjectName(QStringLiteral("LabelVersion"));
    version->setProperty("vintraSkip", true); // a number, not a text of the language file
    version->setAlignment(Qt::AlignHCenter);
    version->setText(QStringLiteral("Quillmeal Plus %1").arg(QStringLiteral(QM_VERSION)));
    layout->addWidget(version);
    auto* credit = new QLabel(this);
    credit->setObjectName(QStringLiteral("LabelDataSource"));
    credit->setWordWrap(true);
    credit->setText(
        tr("Nutrient values and household measures of the delivered ingredients: USDA National "
           "Nutrient Database for Standard Reference, Release 28 (US Department of Agriculture, "
           "Agricultural Research Service, Nutrient Data Laboratory, 2015), in the public domain. "
           "Ingredient prices are examples."));
    layout->addWidget(credit);
    okButton(this, layout);
}

void TFormAbout::showEvent(QShowEvent* event) {
    TranslateForm(this);
    QDialog::showEvent(event);
}

TFormSystemInfo::TFormSystemInfo(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormSystemInfo"));
    setWindowTitle(tr("System information"));
    auto* layout = new QVBoxLayout(this);
    auto* memo = new QPlainTextEdit(this);
    memo->setObjectName(QStringLiteral("MemoDatabaseInfo"));
    memo->setReadOnly(true);
    memo->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont)); // the ruler lines line up
    layout->addWidget(memo);
    okButton(this, layout);
    resize(460, 420);
}

void TFormSystemInfo::showEvent(QShowEvent* event) {
    TranslateForm(this);
    findChild<QPlainTextEdit*>(QStringLiteral("MemoDatabaseInfo"))->setPlainText(SystemInfoText());
    QDialog::showEvent(event);
}
