#include "components/ui/modal_runner.h"

#include "components/ui/window_placement.h"

#include <QDialog>

std::function<int(QDialog&)> ModalRunner;

int ExecModal(QDialog& dialog) {
    if (ModalRunner)
        return ModalRunner(dialog);
    // Every dialog opens over the middle of the main window, also one opened from another dialog.
    dialog.ensurePolished();
    if (!dialog.testAttribute(Qt::WA_Resized))
        dialog.adjustSize();
    CenterOnMainWindow(&dialog);
    return dialog.exec();
}
