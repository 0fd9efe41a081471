#include "shell/ui/form_options.h"

#include "shell/ui/form_main.h"
#include "shell/ui/mdi_client.h"
#include "shell/ui/widget_translation.h"
#include "store/resource_holder.h"
#include "ui_form_options.h"

#include <QColorDialog>
#include <QDir>
#include <QFileDialog>

namespace {

TVintraOptions& options() {
    return FormResourceHolder->VintraOptions;
}

/// The kinds of record of the deletion page, by the suffix of their controls and keys.
constexpr const char* radioKinds[] = {"Recipe",      "Ingredient",     "Unit",
                                      "RecipeGroup", "IngredientType", "MenuGroup"};

/// Check boxes and their boolean options, in the order of the dialog's pages.
constexpr struct {
    const char* control;
    const char* key;
} checkBoxes[] = {
    {"CheckBoxConfirmExit", "ConfirmExit"},
    {"CheckBoxToolbarNavigator", "ToolbarNavigator"},
    {"CheckBoxToolbarMain", "ToolbarMain"},
    {"CheckBoxToolbarRecipes", "ToolbarRecipes"},
    {"CheckBoxToolbarQuickSearch", "ToolbarQuickSearch"},
    {"CheckBoxToolbarUsers", "ToolbarUsers"},
    {"CheckBoxConfirmDeletionRecipe", "ConfirmDeletionRecipe"},
    {"CheckBoxConfirmDeletionIngredient", "ConfirmDeletionIngredient"},
    {"CheckBoxConfirmDeletionUnit", "ConfirmDeletionUnit"},
    {"CheckBoxConfirmDeletionRecipeGroup", "ConfirmDeletionRecipeGroup"},
    {"CheckBoxConfirmDeletionIngredientType", "ConfirmDeletionIngredientType"},
    {"CheckBoxConfirmDeletionMenuGroup", "ConfirmDeletionMenuGroup"},
    {"CheckBoxReportRecipesPrintPicture", "RepRecPictures"},
    {"CheckBoxReportRecipesPrintNutrients", "RepRecNutrients"},
    {"CheckBoxReportIngredientsPrintPicture", "RepIngPictures"},
    {"CheckBoxReportIngredientsPrintNutrients", "RepIngNutrients"},
    {"CheckBoxReportMenusPrintIngredients", "RepMenIngredients"},
    {"CheckBoxReportCalendarPrintByDay", "RepCalByDay"},
    {"CheckBoxReportCalendarPrintSummary", "RepCalSummary"},
    {"CheckBoxShowMailDialog", "ShowMailDialog"},
    {"CheckBoxExportPicture", "ExportPicture"},
    {"CheckBoxExportNutrients", "ExportNutrients"},
    {"CheckBoxExportIngredients", "ExportIngredients"},
    {"CheckBoxExportUnits", "ExportUnits"},
    {"CheckBoxAutoRecalculate", "AutoRecalculate"},
    {"CheckBoxBackgroundPictureTransparent", "BackgroundPictureMainTransparent"},
};

/// Edits and their string options.
constexpr struct {
    const char* control;
    const char* key;
} edits[] = {
    {"EditCurrency", "Currency"},
    {"EditFromName", "FromName"},
    {"EditFromAddress", "FromAddress"},
    {"EditExportTemplateWord", "ExportTemplateWord"},
    {"EditBackgroundPicture", "BackgroundPictureMain"},
};

int pageSizeIndex(int pageSize) {
    return pageSize == TFormOptions::PageSizeLetter ? 0 : pageSize == TFormOptions::PageSizeA4 ? 1 : -1;
}

} // namespace

TFormOptions::TFormOptions(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::FormOptions>()), m_translator(this) {
    RegisterWidgetTranslation();
    ui->setupUi(this);
    ui->PageControlOptions->setCurrentIndex(0);
    connect(ui->BitBtnOk, &QPushButton::clicked, this, &TFormOptions::BitBtnOkClick);
    connect(ui->BitBtnCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui->BitBtnSaveToolbarsPositions, &QPushButton::clicked, this,
            &TFormOptions::BitBtnSaveToolbarsPositionsClick);
    connect(ui->BitBtnRestoreToolbarsPositions, &QPushButton::clicked, this,
            &TFormOptions::BitBtnRestoreToolbarsPositionsClick);
    connect(ui->SpeedButtonColorMain, &QToolButton::clicked, this, &TFormOptions::SpeedButtonColorMainClick);
    connect(ui->SpeedButtonBackgroundPicture, &QToolButton::clicked, this,
            &TFormOptions::SpeedButtonBackgroundPictureClick);
    connect(ui->SpeedButtonExportTemplateWord, &QToolButton::clicked, this,
            &TFormOptions::SpeedButtonExportTemplateWordClick);
    for (int kind = 0; kind < 6; ++kind) {
        connect(Restricted(kind), &QRadioButton::toggled, this, [this, kind](bool on) {
            if (on)
                IRDelete[kind] = 1;
        });
        connect(Cascade(kind), &QRadioButton::toggled, this, [this, kind](bool on) {
            if (on)
                IRDelete[kind] = 2;
        });
    }

    // FormCreate: each control from its option.
    for (const auto& box : checkBoxes)
        findChild<QCheckBox*>(QLatin1String(box.control))
            ->setChecked(options().GetAsBoolean(QLatin1String(box.key)));
    for (const auto& edit : edits)
        findChild<QLineEdit*>(QLatin1String(edit.control))
            ->setText(options().GetAsString(QLatin1String(edit.key)));
    SetColorMain(qm::ColorFromOption(options().GetAsInteger(QStringLiteral("ColorMain"))));
    for (int kind = 0; kind < 6; ++kind)
        IRDelete[kind] = options().GetAsInteger(QStringLiteral("IRDelete") + QLatin1String(radioKinds[kind]));
    UpdateRadioButtons();
    ui->ComboBoxPageSize->setCurrentIndex(pageSizeIndex(options().GetAsInteger(QStringLiteral("PageSize"))));

    // The languages: the language files beside the program, sorted; the current one selected.
    QStringList languages = QDir(FormResourceHolder->ExecutablePath + QStringLiteral("Languages"))
                                .entryList({QStringLiteral("*.xml")}, QDir::Files);
    for (QString& language : languages)
        language.chop(4);
    languages.sort(Qt::CaseInsensitive);
    ui->ComboBoxCurrentLanguage->addItems(languages);
    ui->ComboBoxCurrentLanguage->setCurrentIndex(
        languages.indexOf(options().GetAsString(QStringLiteral("Language"))));
}

TFormOptions::~TFormOptions() = default;

QRadioButton* TFormOptions::Restricted(int kind) const {
    return findChild<QRadioButton*>(QStringLiteral("RadioButtonIRDeleteRestricted") +
                                    QLatin1String(radioKinds[kind]));
}

QRadioButton* TFormOptions::Cascade(int kind) const {
    return findChild<QRadioButton*>(QStringLiteral("RadioButtonIRDeleteCascade") +
                                    QLatin1String(radioKinds[kind]));
}

void TFormOptions::UpdateRadioButtons() {
    for (int kind = 0; kind < 6; ++kind) {
        QRadioButton* restricted = Restricted(kind);
        QRadioButton* cascade = Cascade(kind);
        // Without exclusiveness for a moment, so that a value other than 1 and 2 checks neither.
        const int value = IRDelete[kind];
        restricted->setAutoExclusive(false);
        cascade->setAutoExclusive(false);
        restricted->setChecked(value == 1);
        cascade->setChecked(value == 2);
        restricted->setAutoExclusive(true);
        cascade->setAutoExclusive(true);
        IRDelete[kind] = value;
    }
}

void TFormOptions::SetColorMain(const QColor& color) {
    m_colorMain = color;
    QPalette palette = ui->PanelColorMain->palette();
    palette.setColor(QPalette::Window, color);
    ui->PanelColorMain->setPalette(palette);
}

void TFormOptions::showEvent(QShowEvent* event) {
    m_translator.SetDictionary(&FormResourceHolder->VintraDictionary);
    m_translator.Translate();
    QDialog::showEvent(event);
}

void TFormOptions::BitBtnOkClick() {
    for (const auto& box : checkBoxes)
        options().SetAsBoolean(QLatin1String(box.key),
                               findChild<QCheckBox*>(QLatin1String(box.control))->isChecked());
    for (const auto& edit : edits)
        options().SetAsString(QLatin1String(edit.key),
                              findChild<QLineEdit*>(QLatin1String(edit.control))->text());
    options().SetAsInteger(QStringLiteral("ColorMain"), qm::ColorToOption(m_colorMain));
    for (int kind = 0; kind < 6; ++kind)
        options().SetAsInteger(QStringLiteral("IRDelete") + QLatin1String(radioKinds[kind]), IRDelete[kind]);
    switch (ui->ComboBoxPageSize->currentIndex()) {
    case 0:
        options().SetAsInteger(QStringLiteral("PageSize"), PageSizeLetter);
        break;
    case 1:
        options().SetAsInteger(QStringLiteral("PageSize"), PageSizeA4);
        break;
    default: // a stored format the dialog doesn't offer stays
        break;
    }
    // A new language: the dictionary at once, the windows at their next showing. No selection
    // (the current language file is gone) keeps the language.
    const QString language = ui->ComboBoxCurrentLanguage->currentText();
    if (!language.isEmpty() && language != options().GetAsString(QStringLiteral("Language"))) {
        options().SetAsString(QStringLiteral("Language"), language);
        FormResourceHolder->VintraDictionary.SetFileName(FormResourceHolder->LanguageFile(language));
        if (FormMain)
            FormMain->HelpFile = FormResourceHolder->ExecutablePath + QStringLiteral("Help/") + language +
                                 QStringLiteral(".hlp");
    }
    options().Store();
    accept();
}

void TFormOptions::BitBtnSaveToolbarsPositionsClick() {
    if (FormMain)
        FormMain->SaveToolbarPositions();
    options().Store();
}

void TFormOptions::BitBtnRestoreToolbarsPositionsClick() {
    for (const QString& key : TFormMain::ToolbarPositionOptions())
        options().RestoreDefaults(key);
    if (FormMain)
        FormMain->ApplyToolbarPositions();
}

void TFormOptions::SpeedButtonColorMainClick() {
    const QColor color = QColorDialog::getColor(m_colorMain, this, ui->SpeedButtonColorMain->toolTip());
    if (color.isValid())
        SetColorMain(color);
}

void TFormOptions::SpeedButtonBackgroundPictureClick() {
    const QString file = QFileDialog::getOpenFileName(
        this, ui->SpeedButtonBackgroundPicture->toolTip(), ui->EditBackgroundPicture->text(),
        QStringLiteral("Pictures (*.bmp *.jpg *.jpeg *.png *.gif);;All files (*)"));
    if (!file.isEmpty())
        ui->EditBackgroundPicture->setText(file);
}

void TFormOptions::SpeedButtonExportTemplateWordClick() {
    // The Word export writes .docx from its template; older .doc names are shown as well.
    const QString file = QFileDialog::getOpenFileName(this, ui->SpeedButtonExportTemplateWord->toolTip(),
                                                      ui->EditExportTemplateWord->text(),
                                                      QStringLiteral("Microsoft Word (*.docx *.doc)"));
    if (!file.isEmpty())
        ui->EditExportTemplateWord->setText(file);
}
