#include "culinary/ui/form_recipe_categories.h"

#include "components/dataset_model.h"
#include "components/ui/modal_runner.h"
#include "components/ui/vintra_db_grid.h"
#include "culinary/category_rules.h"
#include "culinary/ui/form_categories.h"
#include "store/data_module_main.h"
#include "store/ui/record_window.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace {

TVintraDBGrid* listGrid(const char* name, qm::DatasetModel* model, QWidget* parent) {
    auto* grid = new TVintraDBGrid(parent);
    grid->setObjectName(QLatin1String(name));
    grid->SetDatasetModel(model);
    grid->SetKeyDataset(nullptr);
    grid->setDragEnabled(false);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->horizontalHeader()->setStretchLastSection(true);
    grid->horizontalHeader()->hide();
    grid->setProperty("vintraSkip", true); // category names only, under no title
    return grid;
}

} // namespace

TFormRecipeCategories::TFormRecipeCategories(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormRecipeCategories"));
    setWindowTitle(tr("Recipe Categories"));
    qm::Database* database = DataModuleMain ? &DataModuleMain->KADaoDatabase : nullptr;
    QueryAvailableCategories.setObjectName(QStringLiteral("QueryAvailableCategories"));
    QueryAvailableCategories.SetDatabase(database);
    QueryAvailableCategories.SetSql(QString::fromLatin1(CategorySql::QueryAvailableCategories));
    QueryAssignedCategories.setObjectName(QStringLiteral("QueryAssignedCategories"));
    QueryAssignedCategories.SetDatabase(database);
    QueryAssignedCategories.SetSql(QString::fromLatin1(CategorySql::QueryAssignedCategories));

    m_availableModel = new qm::DatasetModel(&QueryAvailableCategories, this);
    m_availableModel->addColumn(QStringLiteral("catName"));
    m_assignedModel = new qm::DatasetModel(&QueryAssignedCategories, this);
    m_assignedModel->addColumn(QStringLiteral("catName"));
    m_available = listGrid("DBGridAvailableCategories", m_availableModel, this);
    m_assigned = listGrid("DBGridAssignedCategories", m_assignedModel, this);

    m_assign = new QPushButton(style()->standardIcon(QStyle::SP_ArrowRight), QString(), this);
    m_assign->setObjectName(QStringLiteral("SpeedButtonAssign"));
    m_assign->setToolTip(tr("Give the recipe this category"));
    m_remove = new QPushButton(style()->standardIcon(QStyle::SP_ArrowLeft), QString(), this);
    m_remove->setObjectName(QStringLiteral("SpeedButtonRemove"));
    m_remove->setToolTip(tr("Take the recipe out of this category"));
    for (QPushButton* b : {m_assign, m_remove})
        b->setAutoDefault(false);
    auto* categories = new QPushButton(tr("&Edit categories..."), this);
    categories->setObjectName(QStringLiteral("BitBtnCategories"));
    categories->setAutoDefault(false);
    auto* ok = new QPushButton(tr("Close"), this);
    ok->setObjectName(QStringLiteral("BitBtnOk"));

    auto* availableLabel = new QLabel(tr("Available categories"), this);
    availableLabel->setObjectName(QStringLiteral("LabelAvailableCategories"));
    auto* assignedLabel = new QLabel(tr("Categories of the recipe"), this);
    assignedLabel->setObjectName(QStringLiteral("LabelAssignedCategories"));
    auto* middle = new QVBoxLayout;
    middle->addStretch(1);
    middle->addWidget(m_assign);
    middle->addWidget(m_remove);
    middle->addStretch(1);
    auto* grid = new QGridLayout;
    grid->addWidget(availableLabel, 0, 0);
    grid->addWidget(assignedLabel, 0, 2);
    grid->addWidget(m_available, 1, 0);
    grid->addLayout(middle, 1, 1);
    grid->addWidget(m_assigned, 1, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(categories);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid, 1);
    layout->addLayout(buttons);
    resize(520, 360);

    connect(m_assign, &QPushButton::clicked, this, &TFormRecipeCategories::SpeedButtonAssignClick);
    connect(m_remove, &QPushButton::clicked, this, &TFormRecipeCategories::SpeedButtonRemoveClick);
    connect(m_available, &QAbstractItemView::doubleClicked, this,
            &TFormRecipeCategories::SpeedButtonAssignClick);
    connect(m_assigned, &QAbstractItemView::doubleClicked, this,
            &TFormRecipeCategories::SpeedButtonRemoveClick);
    connect(categories, &QPushButton::clicked, this, &TFormRecipeCategories::BitBtnCategoriesClick);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    UpdateButtons();
}

TFormRecipeCategories::~TFormRecipeCategories() {
    delete m_available;
    delete m_assigned;
    delete m_availableModel;
    delete m_assignedModel;
}

void TFormRecipeCategories::showEvent(QShowEvent* event) {
    if (!m_shown) {
        m_shown = true;
        FormShow();
    }
    QDialog::showEvent(event);
}

void TFormRecipeCategories::FormShow() {
    TranslateForm(this);
    QueryAvailableCategories.SetParam(QStringLiteral("recId"), recId);
    QueryAssignedCategories.SetParam(QStringLiteral("recId"), recId);
    Reopen();
}

void TFormRecipeCategories::Reopen() {
    RunGuarded([this] {
        QueryAvailableCategories.Close();
        QueryAvailableCategories.Open();
        QueryAssignedCategories.Close();
        QueryAssignedCategories.Open();
    });
    UpdateButtons();
}

void TFormRecipeCategories::UpdateButtons() {
    m_assign->setEnabled(QueryAvailableCategories.Active() && !QueryAvailableCategories.IsEmpty());
    m_remove->setEnabled(QueryAssignedCategories.Active() && !QueryAssignedCategories.IsEmpty());
}

void TFormRecipeCategories::SpeedButtonAssignClick() {
    if (!m_assign->isEnabled())
        return;
    RunGuarded([this] {
        AssignCategory(recId, QueryAvailableCategories.FieldByName(QStringLiteral("catId")).AsInteger());
    });
    Reopen();
}

void TFormRecipeCategories::SpeedButtonRemoveClick() {
    if (!m_remove->isEnabled())
        return;
    RunGuarded([this] {
        RemoveCategory(recId, QueryAssignedCategories.FieldByName(QStringLiteral("catId")).AsInteger());
    });
    Reopen();
}

void TFormRecipeCategories::BitBtnCategoriesClick() {
    {
        TFormCategories form(this);
        ExecModal(form);
    }
    Reopen();
}
