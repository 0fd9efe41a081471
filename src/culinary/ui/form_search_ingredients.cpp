#include "culinary/ui/form_search_ingredients.h"

#include "components/dataset_model.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "store/data_module_main.h"
#include "store/record_kinds.h"
#include "store/record_window_rules.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

std::function<void(const QString&)> TFormSearchIngredients::PrintIngredients;

TFormSearchIngredients* TFormSearchIngredients::Instance(QWidget* parent) {
    static QPointer<TFormSearchIngredients> instance;
    if (!instance)
        instance = new TFormSearchIngredients(parent);
    return instance;
}

TFormSearchIngredients::TFormSearchIngredients(QWidget* parent) : TSearchWindow(parent) {
    setObjectName(QStringLiteral("FormSearchIngredients"));
    setWindowTitle(tr("Search ingredients"));

    QWidget* namePage = AddPage("TabSheetNameAndType", tr("Name and type"));
    m_editPattern = new QLineEdit;
    m_editPattern->setObjectName(QStringLiteral("EditPattern"));
    m_editPattern->setPlaceholderText(tr("part of the ingredient's name; * and ? as wildcards"));
    auto* labelPattern = new QLabel(tr("Ingredient &name contains:"));
    labelPattern->setObjectName(QStringLiteral("LabelPattern"));
    labelPattern->setBuddy(m_editPattern);
    m_treeIngredientTypes = TVintraDBTreeView::MakePickTree(
        nullptr, QStringLiteral("TreeViewIngredientTypes"), QStringLiteral("ITypes"),
        QStringLiteral("ingredTypeId"), QStringLiteral("ingredTypeName"));
    m_checkBoxAllTypes = new QCheckBox(tr("&All types"));
    m_checkBoxAllTypes->setObjectName(QStringLiteral("CheckBoxAllTypes"));
    auto* types = new QGroupBox(tr("Types"));
    types->setObjectName(QStringLiteral("GroupBoxTypes"));
    auto* typesLayout = new QVBoxLayout(types);
    typesLayout->addWidget(m_treeIngredientTypes, 1);
    typesLayout->addWidget(m_checkBoxAllTypes);
    auto* patternRow = new QHBoxLayout;
    patternRow->addWidget(labelPattern);
    patternRow->addWidget(m_editPattern, 1);
    auto* nameLayout = new QVBoxLayout(namePage);
    nameLayout->addLayout(patternRow);
    nameLayout->addWidget(types, 1);

    QWidget* advanced = AddPage("TabSheetAdvanced", tr("Advanced"));
    auto* nutrients = new QGroupBox(tr("Nutrients per 100 g"));
    nutrients->setObjectName(QStringLiteral("GroupBoxNutrients"));
    auto* grid = new QGridLayout(nutrients);
    AddNutrientLimits(grid, 0);
    grid->setColumnStretch(9, 1);
    auto* advancedLayout = new QVBoxLayout(advanced);
    advancedLayout->addWidget(nutrients);
    advancedLayout->addStretch(1);

    ResultsModel()->addColumn(QStringLiteral("ingredName"), tr("Ingredient"));
    ResultsGrid()->SetNameColumn(QStringLiteral("ingredName"), 0);

    connect(m_bitBtnFind, &QPushButton::clicked, this, &TFormSearchIngredients::BitBtnFindClick);
    connect(m_bitBtnNewSearch, &QPushButton::clicked, this, &TFormSearchIngredients::BitBtnNewSearchClick);
    connect(m_editPattern, &QLineEdit::returnPressed, this, &TFormSearchIngredients::BitBtnFindClick);

    resize(760, height());
    // At creation both pages start empty.
    ResetNamePage();
    ResetNutrientLimits();
    UpdateButtons();
    ShrinkToCriteria();
}

TFormSearchIngredients::~TFormSearchIngredients() {
    DeleteViews();
}

TIngredientSearchCriteria TFormSearchIngredients::Criteria() const {
    TIngredientSearchCriteria c;
    c.pattern = m_editPattern->text();
    c.allTypes = m_checkBoxAllTypes->isChecked();
    c.typeKey = m_treeIngredientTypes->GetCurrentKey();
    // From the table, as the command line reads it, so both build the same statement.
    if (DataModuleMain)
        c.typeChildrenIds =
            ChildrenIds(DataModuleMain->KADaoDatabase, QStringLiteral("ITypes"),
                        QStringLiteral("ingredTypeId"), QStringLiteral("ingredTypeName"), c.typeKey);
    c.nutrients = NutrientLimits();
    return c;
}

void TFormSearchIngredients::BitBtnFindClick() {
    TIngredientSearchCriteria criteria;
    if (Guarded([&] { criteria = Criteria(); }))
        RunSearch(BuildIngredientSearchLines(criteria));
}

void TFormSearchIngredients::ResetNamePage() {
    m_editPattern->clear();
    m_checkBoxAllTypes->setChecked(true);
}

void TFormSearchIngredients::BitBtnNewSearchClick() {
    if (PageControl()->currentIndex() == 0)
        ResetNamePage();
    else
        ResetNutrientLimits();
    UpdateButtons();
    ShrinkToCriteria();
}

void TFormSearchIngredients::OpenRecord(int id) {
    OpenInFrame(QStringLiteral("Ingredients"), "SelectIngredient", id);
}

void TFormSearchIngredients::PrintRecords(const QString& idList) {
    if (PrintIngredients)
        PrintIngredients(idList);
}

void TFormSearchIngredients::FormShow() {
    if (!m_connected) {
        m_treeIngredientTypes->SetDatabase(&DataModuleMain->KADaoDatabase);
        m_connected = true;
    }
    LoadTree(m_treeIngredientTypes, qm::RootNodeName(RecordKinds::Ingredients()));
}
