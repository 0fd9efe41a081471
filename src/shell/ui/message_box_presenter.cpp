#include "shell/ui/message_box_presenter.h"

#include "store/resource_holder.h"

#include <QApplication>
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

namespace {

std::function<void(const QString&)>& exceptionDialog() {
    static std::function<void(const QString&)> dialog;
    return dialog;
}

} // namespace

void ShowExceptionDialog(const QString& text) {
    if (exceptionDialog())
        exceptionDialog()(text);
    else
        QMessageBox::critical(QApplication::activeWindow(), QStringLiteral("Quillmeal Plus"), text);
}

void SetExceptionDialog(std::function<void(const QString&)> dialog) {
    exceptionDialog() = std::move(dialog);
}
