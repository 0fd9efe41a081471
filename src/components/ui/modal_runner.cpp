#include "components/ui/modal_runner.h"

#include <QDialog>

std::function<int(QDialog&)> ModalRunner;

int ExecModal(QDialog& dialog) {
    if (ModalRunner)
        return ModalRunner(dialog);
    return dialog.exec();
}
