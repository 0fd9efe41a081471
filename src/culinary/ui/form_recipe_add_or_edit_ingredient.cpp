#include "culinary/ui/form_recipe_add_or_edit_ingredient.h"

#include "components/dataset_model.h"
#include "components/decimal_text.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "components/ui/window_placement.h"
#include "culinary/recipe_window_rules.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"
#include "store/ui/record_window.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int SearchDelay = 500;

} // namespace

TFormRecipeAddOrEditIngredient::TFormRecipeAddOrEditIngredient(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormRecipeAddOrEditIngredient"));
    setWindowTitle(tr("Add Ingredient"));
    qm::Database* database = DataModuleMain ? &DataModuleMain->KADaoDatabase : nullptr;

    QueryIngredients.setObjectName(QStringLiteral("QueryIngredients"));
    QueryIngredients.SetDatabase(database);
    QueryIngredients.SetSql(QString::fromLatin1(RecipeSql::QueryIngredients));
    QueryIngredients.SetSortedBy(QStringLiteral("[ingredName] ASC"));
    QueryIngredients.AfterScroll = [this](qm::Dataset& query) {
        FillUnits(query.IsEmpty() ? 0 : query.FieldByName(QStringLiteral("ingredId")).AsInteger());
        UpdateOk();
    };

    m_top = new QSplitter(Qt::Horizontal, this);
    m_top->setObjectName(QStringLiteral("PanelTop"));
    m_top->setChildrenCollapsible(false);
    m_tree = TVintraDBTreeView::MakePickTree(m_top, QStringLiteral("TreeViewIngredientTypes"),
                                             QStringLiteral("ITypes"), QStringLiteral("ingredTypeId"),
                                             QStringLiteral("ingredTypeName"));
    m_tree->SetDatabase(database);

    auto* right = new QWidget(m_top);
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    m_search = new QLineEdit(right);
    m_search->setObjectName(QStringLiteral("MemoSearch"));
    m_search->setPlaceholderText(tr("Search by name"));
    m_search->setClearButtonEnabled(true);
    m_listModel = new qm::DatasetModel(&QueryIngredients, this);
    m_listModel->addColumn(QStringLiteral("ingredName"), tr("Ingredient"));
    m_list = new TVintraDBGrid(right);
    m_list->setObjectName(QStringLiteral("DBGridIngredients"));
    m_list->SetDatasetModel(m_listModel);
    m_list->SetKeyDataset(nullptr);
    m_list->setDragEnabled(false);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->horizontalHeader()->setStretchLastSection(true);
    rightLayout->addWidget(m_search);
    rightLayout->addWidget(m_list, 1);
    m_top->setStretchFactor(0, 2);
    m_top->setStretchFactor(1, 3);
    m_top->setSizes({240, 360});

    m_bottom = new QWidget(this);
    m_bottom->setObjectName(QStringLiteral("PanelBottom"));
    m_amount = new QLineEdit(m_bottom);
    m_amount->setObjectName(QStringLiteral("EditAmount"));
    m_units = new QComboBox(m_bottom);
    m_units->setObjectName(QStringLiteral("ComboBoxUnits"));
    m_units->setMinimumContentsLength(14);
    auto* amountLabel = new QLabel(tr("&Amount"), m_bottom);
    amountLabel->setObjectName(QStringLiteral("LabelAmount"));
    amountLabel->setBuddy(m_amount);
    auto* unitLabel = new QLabel(tr("&Unit"), m_bottom);
    unitLabel->setObjectName(QStringLiteral("LabelUnit"));
    unitLabel->setBuddy(m_units);
    m_ok = new QPushButton(tr("OK"), m_bottom);
    m_ok->setObjectName(QStringLiteral("BitBtnOk"));
    m_ok->setDefault(true);
    m_cancel = new QPushButton(tr("Cancel"), m_bottom);
    m_cancel->setObjectName(QStringLiteral("BitBtnCancel"));
    auto* fields = new QGridLayout;
    fields->addWidget(amountLabel, 0, 0);
    fields->addWidget(m_amount, 0, 1);
    fields->addWidget(unitLabel, 1, 0);
    fields->addWidget(m_units, 1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_ok);
    buttons->addWidget(m_cancel);
    auto* bottomLayout = new QVBoxLayout(m_bottom);
    bottomLayout->setContentsMargins(8, 8, 8, 8);
    bottomLayout->addLayout(fields);
    bottomLayout->addLayout(buttons);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_top, 1);
    layout->addWidget(m_bottom);
    resize(640, 480);

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("TimerSearch"));
    m_timer->setSingleShot(true);
    m_timer->setInterval(SearchDelay);
    connect(m_timer, &QTimer::timeout, this, &TFormRecipeAddOrEditIngredient::TimerSearchTimer);
    connect(m_search, &QLineEdit::textChanged, this, [this] {
        m_timer->start();
        UpdateOk();
    });
    connect(m_tree, &TVintraDBTreeView::CurrentKeyChanged, this, [this] { TreeViewChange(); });
    connect(m_amount, &QLineEdit::textChanged, this, &TFormRecipeAddOrEditIngredient::UpdateOk);
    connect(m_units, &QComboBox::activated, this, [this] {
        unitId = m_units->currentData().toInt();
        UpdateOk();
    });
    connect(m_ok, &QPushButton::clicked, this, &TFormRecipeAddOrEditIngredient::BitBtnOkClick);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    UpdateOk();
}

TFormRecipeAddOrEditIngredient::~TFormRecipeAddOrEditIngredient() {
    // The grid goes before the query it shows.
    delete m_list;
    delete m_listModel;
}

void TFormRecipeAddOrEditIngredient::showEvent(QShowEvent* event) {
    if (!m_shown) {
        m_shown = true;
        FormShow();
    }
    QDialog::showEvent(event);
}

void TFormRecipeAddOrEditIngredient::FormShow() {
    TranslateForm(this);
    m_tree->SetRootNodeName(GetText(QStringLiteral("IngredientsRootNodeName"), tr("Ingredients")));
    if (EditMode()) {
        // Only amount and unit of the line can change: the bottom panel alone.
        m_top->hide();
        m_bottom->setFixedSize(250, 100);
        layout()->setContentsMargins(0, 0, 0, 0);
        setFixedSize(250, 100);
        setWindowTitle(GetText(QStringLiteral("CaptionEditRecipeContents"), tr("Edit Amount and Unit")));
        CenterOnMainWindow(this); // placed at its former size

        RunGuarded([this] { FillUnits(ingredId); });
    } else {
        setWindowTitle(GetText(QStringLiteral("CaptionAddIngredient"), tr("Add Ingredient")));
        RunGuarded([this] {
            m_tree->Load();
            m_tree->AlphaSort();
        });
        m_tree->expandItem(m_tree->RootNode());
        m_tree->setCurrentItem(m_tree->RootNode());
        m_search->setFocus();
    }
    // In the machine's format, as OK reads it back.
    m_amount->setText(qm::DecimalText(amount));
    UpdateOk();
}

void TFormRecipeAddOrEditIngredient::OpenIngredients(const QString& search) {
    const int key = m_tree->GetCurrentKey();
    RunGuarded([&] {
        QueryIngredients.Close();
        QueryIngredients.ClearParams();
        QueryIngredients.SetSql(IngredientChoiceStatement(search, key));
        if (key > 0)
            QueryIngredients.SetParam(QStringLiteral("ingredTypeId"), key);
        QueryIngredients.Open();
    });
    UpdateOk();
}

void TFormRecipeAddOrEditIngredient::TreeViewChange() {
    if (EditMode())
        return;
    // The type alone decides; the search box's text waits for its next change.
    OpenIngredients(QString());
}

void TFormRecipeAddOrEditIngredient::TimerSearchTimer() {
    m_timer->stop();
    if (EditMode())
        return;
    OpenIngredients(m_search->text());
}

void TFormRecipeAddOrEditIngredient::FillUnits(int forIngredId) {
    const int previous = unitId;
    m_units->clear();
    RunGuarded([&] {
        const qm::SqlRows rows = DataModuleMain->KADaoDatabase.select(
            QString::fromLatin1(RecipeSql::QueryUnitsLookup), {{QStringLiteral("ingredId"), forIngredId}});
        for (int r = 0; r < rows.rows.size(); ++r)
            m_units->addItem(rows.value(r, QStringLiteral("unitName")).toString(),
                             rows.value(r, QStringLiteral("unitId")).toInt());
    });
    if (m_units->count() == 0)
        return;
    m_units->setCurrentIndex(0);
    unitId = m_units->itemData(0).toInt();
    const int again = m_units->findData(previous);
    if (again >= 0) {
        m_units->setCurrentIndex(again);
        unitId = previous;
    }
    UpdateOk();
}

void TFormRecipeAddOrEditIngredient::UpdateOk() {
    const bool ingredient = (QueryIngredients.Active() && !QueryIngredients.IsEmpty()) || ingredId >= 1;
    m_ok->setEnabled(ingredient && !m_amount->text().isEmpty() && m_units->currentIndex() >= 0);
}

void TFormRecipeAddOrEditIngredient::BitBtnOkClick() {
    if (!m_ok->isEnabled())
        return;
    if (ingredId == 0 && QueryIngredients.Active() && !QueryIngredients.IsEmpty())
        ingredId = QueryIngredients.FieldByName(QStringLiteral("ingredId")).AsInteger();
    amount = ParseFloatOrZero(m_amount->text());
    unitId = m_units->currentData().toInt();
    accept();
}
