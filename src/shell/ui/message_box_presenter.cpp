#include "shell/ui/message_box_presenter.h"

#include "store/resource_holder.h"

#include <QMessageBox>
#include <QPushButton>

namespace {

QString buttonCaption(const char* key, const QString& fallback) {
    const QString text = GetText(QLatin1String(key), QString());
    return text.isEmpty() ? fallback : text;
}

} // namespace

int TMessageBoxPresenter::present(Kind kind, const QString& caption, const QString& text) {
    QMessageBox box(m_parent);
    box.setWindowTitle(caption);
    box.setText(text);
    if (kind == Question) {
        box.setIcon(QMessageBox::Question);
        QPushButton* yes = box.addButton(buttonCaption("VintraButtonYesCaption", QStringLiteral("&Yes")),
                                         QMessageBox::YesRole);
        QPushButton* no =
            box.addButton(buttonCaption("VintraButtonNoCaption", QStringLiteral("&No")), QMessageBox::NoRole);
        box.setDefaultButton(yes);
        box.setEscapeButton(no);
        box.exec();
        return box.clickedButton() == yes ? mrYes : mrNo;
    }
    box.setIcon(kind == Info ? QMessageBox::Information : QMessageBox::Warning);
    QPushButton* ok =
        box.addButton(buttonCaption("VintraButtonOkCaption", QStringLiteral("OK")), QMessageBox::AcceptRole);
    box.setDefaultButton(ok);
    box.exec();
    return 1;
}

void ShowExceptionDialog(const QString& text) {
    QMessageBox::critical(nullptr, QStringLiteral("Quillmeal Plus"), text);
}
