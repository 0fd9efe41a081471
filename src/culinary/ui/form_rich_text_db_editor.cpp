#include "culinary/ui/form_rich_text_db_editor.h"

#include "components/ui/vintra_rich_edit.h"
#include "store/ui/record_window.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTextEdit>
#include <QVBoxLayout>

TFormRichTextDBEditor::TFormRichTextDBEditor(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormRichTextDBEditor"));
    setWindowTitle(tr("Preparation"));
    m_editor = new TVintraRichEdit(this);
    m_editor->setObjectName(QStringLiteral("VintraDBEditor"));
    m_ok = new QPushButton(tr("OK"), this);
    m_ok->setObjectName(QStringLiteral("BitBtnOk"));
    m_ok->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_ok);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_editor, 1);
    layout->addLayout(buttons);
    resize(640, 480);
    connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);
}

void TFormRichTextDBEditor::SetDataSource(qm::Dataset* dataset) {
    m_editor->SetDataSource(dataset);
}

void TFormRichTextDBEditor::SetDataField(const QString& field) {
    m_editor->SetDataField(field);
}

void TFormRichTextDBEditor::showEvent(QShowEvent* event) {
    if (!m_shown) {
        m_shown = true;
        TranslateForm(this);
        m_editor->Editor()->setFocus();
    }
    QDialog::showEvent(event);
}
