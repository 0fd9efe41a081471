#include "culinary/ui/form_unit_converter.h"

#include "components/decimal_text.h"
#include "culinary/unit_converter.h"
#include "store/ui/record_window.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

QLineEdit* maskEdit(const char* name, const QString& mask, QWidget* parent) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(QLatin1String(name));
    edit->setInputMask(mask);
    return edit;
}

/// A row of the form; its label is named so that the translator finds it.
void addRow(QFormLayout* form, const char* name, const QString& text, QWidget* field) {
    auto* label = new QLabel(text, field->parentWidget());
    label->setObjectName(QLatin1String(name));
    label->setBuddy(field);
    form->addRow(label, field);
}

QLineEdit* readOnlyEdit(const char* name, QWidget* parent) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(QLatin1String(name));
    edit->setReadOnly(true);
    return edit;
}

// The mask keeps the digits it has room for; spaces of an unfilled mask are not part of the text.
QString maskedText(const QLineEdit* edit) {
    return edit->text().trimmed();
}

} // namespace

TFormUnitConverter::TFormUnitConverter(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormUnitConverter"));
    setWindowTitle(tr("Unit converter"));
    m_pages = new QTabWidget(this);
    m_pages->setObjectName(QStringLiteral("PageControl"));
    m_length = new QWidget;
    m_length->setObjectName(QStringLiteral("TabSheetLength"));
    m_weight = new QWidget;
    m_weight->setObjectName(QStringLiteral("TabSheetWeight"));
    m_feet = maskEdit("MaskEditFeet", QStringLiteral("9"), m_length);
    m_inches = maskEdit("MaskEditInches", QStringLiteral("99"), m_length);
    m_centimetres = readOnlyEdit("EditCentimters", m_length);
    m_pounds = maskEdit("MaskEditLibres", QStringLiteral("999"), m_weight);
    m_ounces = maskEdit("MaskEditOz", QStringLiteral("99"), m_weight);
    m_kilograms = readOnlyEdit("EditKilograms", m_weight);
    auto* lengthForm = new QFormLayout(m_length);
    addRow(lengthForm, "LabelFeet", tr("Feet:"), m_feet);
    addRow(lengthForm, "LabelInches", tr("Inches:"), m_inches);
    addRow(lengthForm, "LabelCentimeters", tr("Centimeters:"), m_centimetres);
    auto* weightForm = new QFormLayout(m_weight);
    addRow(weightForm, "LabelPounds", tr("Pounds:"), m_pounds);
    addRow(weightForm, "LabelOunces", tr("Ounces:"), m_ounces);
    addRow(weightForm, "LabelKilograms", tr("Kilograms:"), m_kilograms);
    m_pages->addTab(m_length, tr("Length"));
    m_pages->addTab(m_weight, tr("Weight"));

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("BitBtnOk"));
    QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("BitBtnCancel"));
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_pages);
    layout->addWidget(buttons);

    connect(m_feet, &QLineEdit::textChanged, this, &TFormUnitConverter::ImperialLengthChange);
    connect(m_inches, &QLineEdit::textChanged, this, &TFormUnitConverter::ImperialLengthChange);
    connect(m_pounds, &QLineEdit::textChanged, this, &TFormUnitConverter::ImperialWeightChange);
    connect(m_ounces, &QLineEdit::textChanged, this, &TFormUnitConverter::ImperialWeightChange);
}

void TFormUnitConverter::showEvent(QShowEvent* event) {
    FormShow();
    QDialog::showEvent(event);
}

void TFormUnitConverter::FormShow() {
    TranslateForm(this);
    const bool length = mode == 1;
    m_pages->setTabVisible(0, length);
    m_pages->setTabVisible(1, !length);
    m_pages->setCurrentIndex(length ? 0 : 1);
    // Each write recomputes the value from the cut text, so the value follows what is shown.
    if (length) {
        const UnitConverter::Split split = UnitConverter::SplitLength(metricLength);
        m_feet->setText(UnitConverter::MaskText(split.whole, 1));
        m_inches->setText(UnitConverter::MaskText(split.part, 2));
    } else {
        const UnitConverter::Split split = UnitConverter::SplitWeight(metricWeight);
        m_pounds->setText(UnitConverter::MaskText(split.whole, 3));
        m_ounces->setText(UnitConverter::MaskText(split.part, 2));
    }
}

void TFormUnitConverter::ImperialLengthChange() {
    metricLength = UnitConverter::LengthFromTexts(maskedText(m_feet), maskedText(m_inches));
    m_centimetres->setText(qm::DecimalText(metricLength));
}

void TFormUnitConverter::ImperialWeightChange() {
    metricWeight = UnitConverter::WeightFromTexts(maskedText(m_pounds), maskedText(m_ounces));
    m_kilograms->setText(qm::DecimalText(metricWeight));
}
