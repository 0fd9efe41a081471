#include "culinary/ui/form_recipe_add_or_edit_ingredient_ff.h"

#include "culinary/ingredient_line.h"
#include "store/resource_holder.h"
#include "store/ui/record_window.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int MaxNameLength = 254;

const char* const FractionItems[] = {"",    "1/2", "1/3", "1/4", "1/5", "1/6", "1/7", "1/8",
                                     "2/3", "2/5", "2/7", "3/4", "3/5", "3/7", "3/8", "4/5",
                                     "4/7", "5/6", "5/7", "5/8", "6/7", "7/8"};

QComboBox* editableCombo(const char* name, int maxLength, QWidget* parent) {
    auto* box = new QComboBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->lineEdit()->setMaxLength(maxLength);
    return box;
}

} // namespace

TFormRecipeAddOrEditIngredientFF::TFormRecipeAddOrEditIngredientFF(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormRecipeAddOrEditIngredientFF"));
    setWindowTitle(tr("Ingredient"));

    // Up to four digits of the whole part; a blank stays a blank, so right-aligned amounts of
    // imported lines keep their place.
    m_amount = new QLineEdit(this);
    m_amount->setObjectName(QStringLiteral("MaskEditAmount"));
    m_amount->setMaxLength(4);
    m_amount->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9 ]{0,4}")), m_amount));
    m_fraction = editableCombo("ComboBoxAmount", 3, this);
    for (const char* item : FractionItems)
        m_fraction->addItem(QLatin1String(item));
    m_unit = editableCombo("ComboBoxUnit", 12, this);
    m_unit->addItems({QStringLiteral("cup"), QStringLiteral("tbl")});
    m_unit->setCurrentIndex(-1);
    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("EditIngredient"));
    m_name->setMaxLength(MaxNameLength);
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    for (QWidget* w :
         {static_cast<QWidget*>(m_amount), static_cast<QWidget*>(m_fraction), static_cast<QWidget*>(m_unit)})
        w->setFont(fixed);
    m_amount->setFixedWidth(QFontMetrics(fixed).horizontalAdvance(QStringLiteral("00000")) + 12);
    m_fraction->setMinimumContentsLength(4);
    m_unit->setMinimumContentsLength(12);
    m_name->setMinimumWidth(280);

    auto* grid = new QGridLayout;
    const auto label = [this](const char* name, const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, this);
        l->setObjectName(QLatin1String(name));
        l->setBuddy(buddy);
        return l;
    };
    grid->addWidget(label("LabelAmount", tr("&Amount"), m_amount), 0, 0);
    grid->addWidget(label("LabelFraction", tr("&Fraction"), m_fraction), 0, 1);
    grid->addWidget(label("LabelUnit", tr("&Unit"), m_unit), 0, 2);
    grid->addWidget(label("LabelIngredient", tr("&Ingredient"), m_name), 0, 3);
    grid->addWidget(m_amount, 1, 0);
    grid->addWidget(m_fraction, 1, 1);
    grid->addWidget(m_unit, 1, 2);
    grid->addWidget(m_name, 1, 3);
    grid->setColumnStretch(3, 1);

    m_ok = new QPushButton(tr("OK"), this);
    m_ok->setObjectName(QStringLiteral("BitBtnOk"));
    m_ok->setDefault(true);
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName(QStringLiteral("BitBtnCancel"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_ok);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addStretch(1);
    layout->addLayout(buttons);

    connect(m_ok, &QPushButton::clicked, this, &TFormRecipeAddOrEditIngredientFF::BitBtnOkClick);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_name, &QLineEdit::textChanged, this, &TFormRecipeAddOrEditIngredientFF::UpdateOk);
    connect(m_unit, &QComboBox::editTextChanged, this, &TFormRecipeAddOrEditIngredientFF::UpdateOk);
    UpdateOk();
}

void TFormRecipeAddOrEditIngredientFF::showEvent(QShowEvent* event) {
    if (!m_shown) {
        m_shown = true;
        FormShow();
    }
    QDialog::showEvent(event);
}

void TFormRecipeAddOrEditIngredientFF::FormShow() {
    TranslateForm(this);
    if (ingredient.isEmpty()) {
        setWindowTitle(GetText(QStringLiteral("CaptionAddIngredient"), tr("Add Ingredient")));
    } else {
        setWindowTitle(GetText(QStringLiteral("CaptionEditIngredient"), tr("Edit Ingredient")));
        // Whatever the line holds is cut by the columns, also text this dialog didn't compose.
        const TIngredientLineParts parts = SplitIngredientLine(ingredient, ilsMasterCook);
        m_amount->setText(parts.whole);
        m_fraction->setEditText(parts.fraction);
        m_unit->setEditText(parts.unit);
        // An imported name may be longer than one typed here; it shows whole.
        m_name->setMaxLength(std::max(MaxNameLength, int(parts.name.size())));
        m_name->setText(parts.name);
        m_loaded = Pieces();
    }
    m_name->setFocus();
    UpdateOk();
}

void TFormRecipeAddOrEditIngredientFF::UpdateOk() {
    m_ok->setEnabled(!m_name->text().isEmpty());
}

QStringList TFormRecipeAddOrEditIngredientFF::Pieces() const {
    return {m_amount->text(), m_fraction->currentText(), m_unit->currentText(), m_name->text()};
}

void TFormRecipeAddOrEditIngredientFF::BitBtnOkClick() {
    if (!m_ok->isEnabled())
        return;
    // A line left as it came (an imported one, whatever its columns hold) stays exactly so.
    if (ingredient.isEmpty() || Pieces() != m_loaded)
        ingredient = ComposeIngredientLine(m_amount->text(), m_fraction->currentText(), m_unit->currentText(),
                                           m_name->text());
    accept();
}
