#pragma once

#include <QDialog>

class QLineEdit;
class QTabWidget;
class QWidget;

/// Feet and inches or pounds and ounces for a metric field; the caller sets mode and value,
/// shows the dialog modally and reads the value back after OK.
class TFormUnitConverter : public QDialog {
    Q_OBJECT
public:
    explicit TFormUnitConverter(QWidget* parent = nullptr);

    int mode = 1;           ///< 1 length, 2 weight
    float metricLength = 0; ///< centimetres
    float metricWeight = 0; ///< kilograms

    void FormShow();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void ImperialLengthChange();
    void ImperialWeightChange();

    QTabWidget* m_pages;
    QWidget* m_length;
    QWidget* m_weight;
    QLineEdit* m_feet;
    QLineEdit* m_inches;
    QLineEdit* m_centimetres;
    QLineEdit* m_pounds;
    QLineEdit* m_ounces;
    QLineEdit* m_kilograms;
};
