#pragma once

#include "culinary/ui/search_window.h"

#include <functional>

class QCheckBox;
class QLineEdit;

/// The ingredient search: a name pattern, a branch of ingredient types and nutrient limits per
/// 100 grams make one statement, whose rows open in the ingredients window or go to the
/// ingredient report. One window for the program.
class TFormSearchIngredients : public TSearchWindow {
    Q_OBJECT
public:
    explicit TFormSearchIngredients(QWidget* parent = nullptr);
    ~TFormSearchIngredients() override;

    /// The shared window, made at the first call (as a window of `parent` then) and kept.
    static TFormSearchIngredients* Instance(QWidget* parent = nullptr);

    /// The ingredient report over the ids ("12, 40"). No report engine exists yet; until one is
    /// wired here the print button does nothing.
    static std::function<void(const QString& idList)> PrintIngredients;

    /// The criteria as the controls hold them now.
    TIngredientSearchCriteria Criteria() const;

    void BitBtnFindClick();
    /// Resets the page in front only, and hides the results.
    void BitBtnNewSearchClick();

protected:
    QString ResultKey() const override { return QStringLiteral("ingredId"); }
    void OpenRecord(int id) override;
    void PrintRecords(const QString& idList) override;
    bool CanPrint() const override { return bool(PrintIngredients); }
    void FormShow() override;

private:
    void ResetNamePage();

    bool m_connected = false;
    QLineEdit* m_editPattern = nullptr;
    TVintraDBTreeView* m_treeIngredientTypes = nullptr;
    QCheckBox* m_checkBoxAllTypes = nullptr;
};
