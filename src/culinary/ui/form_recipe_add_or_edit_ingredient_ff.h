#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

class QComboBox;
class QLineEdit;
class QPushButton;

/// The line of a free-form recipe in four pieces: whole part, fraction, unit and name, kept in
/// fixed columns. The caller sets `ingredient` (empty to add a line), runs the dialog and reads
/// the composed line back after OK.
class TFormRecipeAddOrEditIngredientFF : public QDialog {
    Q_OBJECT
public:
    explicit TFormRecipeAddOrEditIngredientFF(QWidget* parent = nullptr);

    /// In: the line to edit, or empty. Out: the line composed on OK.
    QString ingredient;

    void FormShow();
    void BitBtnOkClick();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void UpdateOk();
    /// What the four controls hold now.
    QStringList Pieces() const;

    QLineEdit* m_amount;
    QComboBox* m_fraction;
    QComboBox* m_unit;
    QLineEdit* m_name;
    QPushButton* m_ok;
    bool m_shown = false;
    QStringList m_loaded; ///< the pieces as the edited line filled them in
};
