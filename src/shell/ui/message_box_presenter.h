#pragma once

#include "components/messages.h"

#include <functional>

class QWidget;

/// Shows the three boxes as message boxes, with the button captions of the dictionary.
class TMessageBoxPresenter : public TMessagePresenter {
public:
    int present(Kind kind, const QString& caption, const QString& text) override;
    void SetParent(QWidget* parent) { m_parent = parent; }

private:
    QWidget* m_parent = nullptr;
};

/// The framework's exception dialog: what reaches it is shown and the program goes on.
void ShowExceptionDialog(const QString& text);
/// Replaces the exception dialog (tests record the texts); an empty function puts the box back.
void SetExceptionDialog(std::function<void(const QString&)> dialog);
