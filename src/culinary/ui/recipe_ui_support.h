#pragma once

#include <functional>

class QWidget;

// Small helpers shared by the recipe windows and dialogs.

/// Runs a command: Abort ends it silently, any other failure goes to the exception dialog.
bool RunGuarded(const std::function<void()>& command);

/// Translates a form from the dictionary of the resource holder, when there is one.
void TranslateForm(QWidget* form);
