#pragma once

#include "components/vintra_translator.h"

#include <QColor>
#include <QDialog>
#include <memory>

namespace Ui {
class FormOptions;
}
class QRadioButton;

/// The options dialog over a part of the options: filled at creation, written back and stored
/// on OK; Cancel writes nothing. The tool bar buttons act on the frame at once.
class TFormOptions : public QDialog {
    Q_OBJECT
public:
    /// The report engine's numbers of the two paper formats the dialog offers.
    static constexpr int PageSizeLetter = 1;
    static constexpr int PageSizeA4 = 9;

    /// FormCreate: every control from its option, the radio pairs, the list of languages.
    explicit TFormOptions(QWidget* parent = nullptr);
    ~TFormOptions() override;

    /// Deletion rules (1 restricted, 2 cascade) of Recipe, Ingredient, Unit, RecipeGroup,
    /// IngredientType and MenuGroup, as the radio pairs show them.
    int IRDelete[6] = {};
    /// Sets the twelve radio buttons from IRDelete; a value other than 1 and 2 checks neither.
    void UpdateRadioButtons();

    QColor ColorMain() const { return m_colorMain; }
    /// The colour PanelColorMain shows and OK stores.
    void SetColorMain(const QColor& color);

    void BitBtnOkClick();
    /// Stores the tool bars' places at once; the only place that saves them.
    void BitBtnSaveToolbarsPositionsClick();
    /// Puts the ten place options back to their defaults and the tool bars with them.
    void BitBtnRestoreToolbarsPositionsClick();
    void SpeedButtonColorMainClick();
    void SpeedButtonBackgroundPictureClick();
    void SpeedButtonExportTemplateWordClick();

    TVintraTranslator& Translator() { return m_translator; }

protected:
    /// FormShow: the translator.
    void showEvent(QShowEvent* event) override;

private:
    QRadioButton* Restricted(int kind) const;
    QRadioButton* Cascade(int kind) const;

    std::unique_ptr<Ui::FormOptions> ui;
    TVintraTranslator m_translator;
    QColor m_colorMain;
};
