#include "culinary/ui/form_add_or_edit_recipe.h"

#include "components/dataset_model.h"
#include "components/decimal_text.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "components/ui/window_placement.h"
#include "culinary/recipe_window_rules.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"
#include "store/ui/record_window.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

TFormAddOrEditRecipe::TFormAddOrEditRecipe(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormAddOrEditRecipe"));
    setWindowTitle(tr("Select Recipe"));
    qm::Database* database = DataModuleMain ? &DataModuleMain->KADaoDatabase : nullptr;

    QueryRecipes.setObjectName(QStringLiteral("QueryRecipes"));
    QueryRecipes.SetDatabase(database);
    QueryRecipes.SetSql(QString::fromLatin1(RecipeSql::QueryRecipes));
    QueryRecipes.SetSortedBy(QStringLiteral("[recName] ASC"));

    m_top = new QSplitter(Qt::Horizontal, this);
    m_top->setChildrenCollapsible(false);
    m_tree = TVintraDBTreeView::MakePickTree(m_top, QStringLiteral("TreeViewRecipeGroups"),
                                             QStringLiteral("RGroups"), QStringLiteral("recGroupId"),
                                             QStringLiteral("recGroupName"));
    m_tree->SetDatabase(database);
    m_listModel = new qm::DatasetModel(&QueryRecipes, this);
    m_listModel->addColumn(QStringLiteral("recName"), tr("Recipe"));
    m_list = new TVintraDBGrid(m_top);
    m_list->setObjectName(QStringLiteral("DBGridRecipes"));
    m_list->SetDatasetModel(m_listModel);
    m_list->SetKeyDataset(nullptr);
    m_list->setDragEnabled(false);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->horizontalHeader()->setStretchLastSection(true);
    m_top->setStretchFactor(0, 2);
    m_top->setStretchFactor(1, 3);

    m_bottom = new QWidget(this);
    m_bottom->setObjectName(QStringLiteral("PanelBottom"));
    m_servingsLabel = new QLabel(tr("&Servings"), m_bottom);
    m_servingsLabel->setObjectName(QStringLiteral("LabelServings"));
    m_servings = new QLineEdit(m_bottom);
    m_servings->setObjectName(QStringLiteral("EditServings"));
    m_servings->setMaximumWidth(80);
    m_servingsLabel->setBuddy(m_servings);
    m_ok = new QPushButton(tr("OK"), m_bottom);
    m_ok->setObjectName(QStringLiteral("BitBtnOk"));
    m_ok->setDefault(true);
    auto* cancel = new QPushButton(tr("Cancel"), m_bottom);
    cancel->setObjectName(QStringLiteral("BitBtnCancel"));
    auto* bottomLayout = new QHBoxLayout(m_bottom);
    bottomLayout->setContentsMargins(8, 8, 8, 8);
    bottomLayout->addWidget(m_servingsLabel);
    bottomLayout->addWidget(m_servings);
    bottomLayout->addStretch(1);
    bottomLayout->addWidget(m_ok);
    bottomLayout->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_top, 1);
    layout->addWidget(m_bottom);
    resize(560, 420);

    connect(m_tree, &TVintraDBTreeView::CurrentKeyChanged, this, [this] { TreeViewChange(); });
    connect(m_servings, &QLineEdit::textChanged, this, &TFormAddOrEditRecipe::UpdateOk);
    connect(m_ok, &QPushButton::clicked, this, &TFormAddOrEditRecipe::BitBtnOkClick);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

TFormAddOrEditRecipe::~TFormAddOrEditRecipe() {
    delete m_list;
    delete m_listModel;
}

void TFormAddOrEditRecipe::showEvent(QShowEvent* event) {
    if (!m_shown) {
        m_shown = true;
        FormShow();
    }
    QDialog::showEvent(event);
}

void TFormAddOrEditRecipe::FormShow() {
    TranslateForm(this);
    m_tree->SetRootNodeName(QStringLiteral("Root"));
    const auto loadTree = [this] {
        RunGuarded([this] {
            m_tree->Load();
            m_tree->AlphaSort();
        });
        m_tree->expandItem(m_tree->RootNode());
        m_tree->setCurrentItem(m_tree->RootNode());
    };
    switch (mode) {
    case 1:
        setWindowTitle(GetText(QStringLiteral("CaptionAddRecipe"), tr("Add Recipe to Menu")));
        loadTree();
        break;
    case 2:
        setWindowTitle(GetText(QStringLiteral("CaptionEditMenu"), tr("Edit Servings in Menu")));
        m_top->hide();
        layout()->setContentsMargins(0, 0, 0, 0);
        setFixedSize(250, 100);
        CenterOnMainWindow(this); // placed at its former size
        break;
    default:
        setWindowTitle(GetText(QStringLiteral("CaptionSelectRecipe"), tr("Select Recipe")));
        loadTree();
        m_servingsLabel->hide();
        m_servings->hide();
        break;
    }
    m_servings->setText(qm::DecimalText(servings));
    UpdateOk();
}

void TFormAddOrEditRecipe::TreeViewChange() {
    RunGuarded([this] {
        QueryRecipes.Close();
        QueryRecipes.SetParam(QStringLiteral("recGroupId"), m_tree->GetCurrentKey());
        QueryRecipes.SetParam(QStringLiteral("menuId"), menuId);
        QueryRecipes.Open();
    });
    UpdateOk();
}

void TFormAddOrEditRecipe::UpdateOk() {
    const bool recipe = (QueryRecipes.Active() && !QueryRecipes.IsEmpty()) || recId != 0;
    m_ok->setEnabled(!m_servings->text().isEmpty() && recipe);
}

void TFormAddOrEditRecipe::BitBtnOkClick() {
    if (!m_ok->isEnabled())
        return;
    if (recId == 0 && QueryRecipes.Active() && !QueryRecipes.IsEmpty()) {
        recId = QueryRecipes.FieldByName(QStringLiteral("recId")).AsInteger();
        recName = QueryRecipes.FieldByName(QStringLiteral("recName")).AsString();
    }
    servings = ParseIntegerOrZero(m_servings->text());
    accept();
}
