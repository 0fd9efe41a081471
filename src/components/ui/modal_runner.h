#pragma once

#include <functional>

class QDialog;

/// Runs a dialog modally, centred on the main window, and returns its result. Everything that opens
/// a modal dialog of its own
/// goes through here, so that a test can stand in for the user: it installs a runner that fills
/// the dialog's controls and presses its buttons.
int ExecModal(QDialog& dialog);

/// The runner ExecModal uses; empty means QDialog::exec.
extern std::function<int(QDialog& dialog)> ModalRunner;
