#pragma once

#include "store/ui/record_window.h"

#include <functional>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;
class TDBFieldBinder;

/// The units window: one grid of the Units table with the fields of the current unit below it.
/// Weight units know their grams; volume units get theirs per ingredient.
class TFormUnits : public TRecordWindow {
    Q_OBJECT
public:
    explicit TFormUnits(QWidget* parent = nullptr);

    /// The unit report, handed the selected ids; empty until a report engine takes it.
    static std::function<void(const QString& idList, bool containsLocked)> PrintUnits;
    void Print() override;

    // Handlers, public for the frame and for tests.
    void RadioButtonWeightClick();
    void RadioButtonVolumeClick();
    /// True while a scroll sets the type buttons: their handlers then leave the record alone.
    bool Scrolling() const { return m_scrolling; }

protected:
    void CheckRecord(qm::Dataset& table, QString& errors) override;
    void RecordAfterScroll() override;

private:
    void TypeChosen(int unitType);
    void ShowConversion(bool show);

    TDBFieldBinder* m_binder;
    QLineEdit* m_name;
    QLineEdit* m_abbrev;
    QLineEdit* m_abbrevSmall;
    QLabel* m_convLabel;
    QLineEdit* m_conv;
    QRadioButton* m_weight;
    QRadioButton* m_volume;
    QPlainTextEdit* m_desc;
    bool m_scrolling = false;
};
