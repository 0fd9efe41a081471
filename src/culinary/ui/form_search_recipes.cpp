#include "culinary/ui/form_search_recipes.h"

#include "components/dataset_model.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "culinary/search_lists.h"
#include "culinary/ui/search_list_box.h"
#include "store/data_module_main.h"
#include "store/record_kinds.h"
#include "store/record_window_rules.h"
#include "store/shortcuts.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

std::function<void()> TFormSearchRecipes::ShortcutsChanged;
std::function<void(const QString&)> TFormSearchRecipes::PrintRecipes;

namespace {

// Heights of ListBoxContains: beside ListBoxNotContains, and alone when it takes its place.
constexpr int kContainsHeight = 85;
constexpr int kContainsAloneHeight = 185;

QToolButton* arrowButton(const char* name, Qt::ArrowType arrow, const QString& tip) {
    auto* button = new QToolButton;
    button->setObjectName(QLatin1String(name));
    button->setArrowType(arrow);
    button->setToolTip(tip);
    button->setAutoRaise(false);
    return button;
}

QLineEdit* digitsEdit(const char* name, int digits) {
    auto* edit = new QLineEdit;
    edit->setObjectName(QLatin1String(name));
    edit->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\d{0,%1}").arg(digits)), edit));
    edit->setMaxLength(digits);
    edit->setAlignment(Qt::AlignRight);
    edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 16);
    return edit;
}

TSearchListBox* listBox(const char* name) {
    auto* box = new TSearchListBox;
    box->setObjectName(QLatin1String(name));
    return box;
}

} // namespace

TFormSearchRecipes* TFormSearchRecipes::Instance(QWidget* parent) {
    static QPointer<TFormSearchRecipes> instance;
    if (!instance)
        instance = new TFormSearchRecipes(parent);
    return instance;
}

TFormSearchRecipes::TFormSearchRecipes(QWidget* parent) : TSearchWindow(parent) {
    setObjectName(QStringLiteral("FormSearchRecipes"));
    setWindowTitle(tr("Search recipes"));
    m_queryAvailableCategories.setObjectName(QStringLiteral("QueryAvailableCategories"));
    m_queryAvailableCategories.SetSql(QString::fromLatin1(qm::SearchAvailableCategoriesSql));
    m_queryIngredients.setObjectName(QStringLiteral("QueryIngredients"));
    m_queryIngredients.SetSql(QString::fromLatin1(qm::SearchIngredientsOfTypeSql));

    PageControl()->addTab(BuildNamePage(), tr("Name, groups and categories"));
    PageControl()->addTab(BuildAdvancedPage(), tr("Advanced"));
    PageControl()->addTab(BuildContentsPage(), tr("Contents"));

    // After Find and Open, before New search.
    m_bitBtnSaveShortcut = AddButton("BitBtnSaveShortcut", tr("Save as &shortcut"));
    m_bitBtnSaveShortcut->setToolTip(tr("Keep this search in the shortcut bar of the main window"));
    auto* layout = m_bitBtnSaveShortcut->parentWidget()->layout();
    layout->removeWidget(m_bitBtnSaveShortcut);
    static_cast<QVBoxLayout*>(layout)->insertWidget(layout->indexOf(m_bitBtnNewSearch), m_bitBtnSaveShortcut);

    ResultsModel()->addColumn(QStringLiteral("recName"), tr("Recipe"));
    ResultsModel()->addColumn(QStringLiteral("recTime"), tr("Time (min)"));
    ResultsModel()->addColumn(QStringLiteral("recServings"), tr("Servings"));
    ResultsModel()->addColumn(QStringLiteral("recPrice"), tr("Price"));
    ResultsGrid()->SetNameColumn(QStringLiteral("recName"), 0);

    connect(m_bitBtnFind, &QPushButton::clicked, this, &TFormSearchRecipes::BitBtnFindClick);
    connect(m_bitBtnNewSearch, &QPushButton::clicked, this, &TFormSearchRecipes::BitBtnNewSearchClick);
    connect(m_bitBtnSaveShortcut, &QPushButton::clicked, this, &TFormSearchRecipes::BitBtnSaveShortcutClick);
    connect(m_editPattern, &QLineEdit::returnPressed, this, &TFormSearchRecipes::BitBtnFindClick);

    resize(960, height());
    BitBtnNewSearchClick();
}

TFormSearchRecipes::~TFormSearchRecipes() {
    DeleteViews();
}

void TFormSearchRecipes::AddListSection(QGridLayout* grid, int row, QLabel* label, TSearchListBox* box,
                                        QToolButton* add, QToolButton* remove) {
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    buttons->addStretch(1);
    label->setBuddy(box);
    grid->addWidget(label, row, 1);
    grid->addLayout(buttons, row + 1, 0);
    grid->addWidget(box, row + 1, 1);
}

QWidget* TFormSearchRecipes::BuildNamePage() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetNameGroupsCategories"));

    m_editPattern = new QLineEdit;
    m_editPattern->setObjectName(QStringLiteral("EditPattern"));
    m_editPattern->setPlaceholderText(tr("part of the recipe's name; * and ? as wildcards"));
    auto* labelPattern = new QLabel(tr("Recipe &name contains:"));
    labelPattern->setObjectName(QStringLiteral("LabelPattern"));
    labelPattern->setBuddy(m_editPattern);

    m_treeRecipeGroups = TVintraDBTreeView::MakePickTree(
        nullptr, QStringLiteral("TreeViewRecipeGroups"), QStringLiteral("RGroups"),
        QStringLiteral("recGroupId"), QStringLiteral("recGroupName"));
    m_checkBoxAllGroups = new QCheckBox(tr("&All groups"));
    m_checkBoxAllGroups->setObjectName(QStringLiteral("CheckBoxAllGroups"));
    auto* groups = new QGroupBox(tr("Groups"));
    groups->setObjectName(QStringLiteral("GroupBoxGroups"));
    auto* groupsLayout = new QVBoxLayout(groups);
    groupsLayout->addWidget(m_treeRecipeGroups, 1);
    groupsLayout->addWidget(m_checkBoxAllGroups);

    m_gridCategories = MakeGrid("DBGridAvailableCategories", m_queryAvailableCategories,
                                {QStringLiteral("catName")}, {tr("Category")});
    m_gridCategories->setSelectionMode(QAbstractItemView::SingleSelection);
    m_gridCategories->setDragEnabled(false);
    m_listBoxBelongsTo = listBox("ListBoxBelongsTo");
    m_listBoxNotBelongsTo = listBox("ListBoxNotBelongsTo");
    auto* labelBelongsTo = new QLabel(tr("&Belongs to all of:"));
    labelBelongsTo->setObjectName(QStringLiteral("LabelBelongsTo"));
    auto* labelNotBelongsTo = new QLabel(tr("Belongs to n&one of:"));
    labelNotBelongsTo->setObjectName(QStringLiteral("LabelNotBelongsTo"));
    auto* addToBelongsTo = arrowButton("SpeedButtonAddToBelongsTo", Qt::RightArrow, tr("Add the category"));
    auto* removeFromBelongsTo = arrowButton("SpeedButtonRemoveFromBelongsTo", Qt::LeftArrow, tr("Remove"));
    auto* addToNotBelongsTo =
        arrowButton("SpeedButtonAddToNotBelongsTo", Qt::RightArrow, tr("Add the category"));
    auto* removeFromNotBelongsTo =
        arrowButton("SpeedButtonRemoveFromNotBelongsTo", Qt::LeftArrow, tr("Remove"));
    connect(addToBelongsTo, &QToolButton::clicked, this, &TFormSearchRecipes::SpeedButtonAddToBelongsToClick);
    connect(removeFromBelongsTo, &QToolButton::clicked, this,
            &TFormSearchRecipes::SpeedButtonRemoveFromBelongsToClick);
    connect(addToNotBelongsTo, &QToolButton::clicked, this,
            &TFormSearchRecipes::SpeedButtonAddToNotBelongsToClick);
    connect(removeFromNotBelongsTo, &QToolButton::clicked, this,
            &TFormSearchRecipes::SpeedButtonRemoveFromNotBelongsToClick);
    connect(m_gridCategories, &QAbstractItemView::doubleClicked, this,
            &TFormSearchRecipes::SpeedButtonAddToBelongsToClick);

    auto* categories = new QGroupBox(tr("Categories"));
    categories->setObjectName(QStringLiteral("GroupBoxCategories"));
    auto* categoriesLayout = new QHBoxLayout(categories);
    auto* chosen = new QGridLayout;
    AddListSection(chosen, 0, labelBelongsTo, m_listBoxBelongsTo, addToBelongsTo, removeFromBelongsTo);
    AddListSection(chosen, 2, labelNotBelongsTo, m_listBoxNotBelongsTo, addToNotBelongsTo,
                   removeFromNotBelongsTo);
    categoriesLayout->addWidget(m_gridCategories, 1);
    categoriesLayout->addLayout(chosen, 1);

    auto* patternRow = new QHBoxLayout;
    patternRow->addWidget(labelPattern);
    patternRow->addWidget(m_editPattern, 1);
    auto* lower = new QHBoxLayout;
    lower->addWidget(groups, 2);
    lower->addWidget(categories, 3);
    auto* layout = new QVBoxLayout(page);
    layout->addLayout(patternRow);
    layout->addLayout(lower, 1);
    return page;
}

QWidget* TFormSearchRecipes::BuildAdvancedPage() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetAdvanced"));
    auto* nutrients = new QGroupBox(tr("Nutrients per serving"));
    nutrients->setObjectName(QStringLiteral("GroupBoxNutrients"));
    auto* grid = new QGridLayout(nutrients);
    AddNutrientLimits(grid, 0);
    grid->setColumnStretch(9, 1);

    m_editPrepTime = digitsEdit("EditPrepTime", 3);
    m_editNoServings = digitsEdit("EditNoServings", 2);
    auto* other = new QGroupBox(tr("Time and servings"));
    other->setObjectName(QStringLiteral("GroupBoxTimeAndServings"));
    auto* otherLayout = new QGridLayout(other);
    auto* labelPrepTime = new QLabel(tr("Preparation &time at most:"));
    labelPrepTime->setObjectName(QStringLiteral("LabelPrepTime"));
    labelPrepTime->setBuddy(m_editPrepTime);
    auto* labelNoServings = new QLabel(tr("Number of ser&vings:"));
    labelNoServings->setObjectName(QStringLiteral("LabelNoServings"));
    labelNoServings->setBuddy(m_editNoServings);
    otherLayout->addWidget(labelPrepTime, 0, 0);
    otherLayout->addWidget(m_editPrepTime, 0, 1);
    auto* minutes = new QLabel(tr("min"));
    minutes->setObjectName(QStringLiteral("LabelPrepTimeUnit"));
    otherLayout->addWidget(minutes, 0, 2);
    otherLayout->addWidget(labelNoServings, 1, 0);
    otherLayout->addWidget(m_editNoServings, 1, 1);
    otherLayout->setColumnStretch(3, 1);

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(nutrients);
    layout->addWidget(other);
    layout->addStretch(1);
    return page;
}

QWidget* TFormSearchRecipes::BuildContentsPage() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetContents"));
    m_treeIngredientTypes = TVintraDBTreeView::MakePickTree(
        nullptr, QStringLiteral("TreeViewIngredientTypes"), QStringLiteral("ITypes"),
        QStringLiteral("ingredTypeId"), QStringLiteral("ingredTypeName"));
    connect(m_treeIngredientTypes, &TVintraDBTreeView::CurrentKeyChanged, this,
            &TFormSearchRecipes::TreeViewIngredientTypesChange);
    m_gridIngredients = MakeGrid("DBGridIngredientsAvailable", m_queryIngredients,
                                 {QStringLiteral("ingredName")}, {tr("Ingredient")});
    m_gridIngredients->setToolTip(tr("Drag ingredients to the lists on the right"));

    m_listBoxContains = listBox("ListBoxContains");
    m_listBoxNotContains = listBox("ListBoxNotContains");
    m_listBoxContains->setFixedHeight(kContainsHeight);
    m_listBoxNotContains->setFixedHeight(kContainsHeight);
    for (TSearchListBox* box : {m_listBoxContains, m_listBoxNotContains})
        box->SetRowSource(m_gridIngredients);
    m_listBoxContains->OnRowsDropped = [this](const QList<int>& rows) {
        AddIngredientRows(rows, m_listBoxContains, m_containsIds);
    };
    m_listBoxNotContains->OnRowsDropped = [this](const QList<int>& rows) {
        AddIngredientRows(rows, m_listBoxNotContains, m_notContainsIds);
    };
    m_listBoxContains->OnItemDraggedBack = [this](int row) {
        RemoveAt(row, m_listBoxContains, m_containsIds);
    };
    m_listBoxNotContains->OnItemDraggedBack = [this](int row) {
        RemoveAt(row, m_listBoxNotContains, m_notContainsIds);
    };

    auto* labelContains = new QLabel(tr("Contains a&ll of:"));
    labelContains->setObjectName(QStringLiteral("LabelContains"));
    m_labelNotContains = new QLabel(tr("Contains none o&f:"));
    m_labelNotContains->setObjectName(QStringLiteral("LabelNotContains"));
    auto* addToContains = arrowButton("SpeedButtonAddToContains", Qt::RightArrow, tr("Add the ingredient"));
    auto* removeFromContains = arrowButton("SpeedButtonRemoveFromContains", Qt::LeftArrow, tr("Remove"));
    m_addToNotContains = arrowButton("SpeedButtonAddToNotContains", Qt::RightArrow, tr("Add the ingredient"));
    m_removeFromNotContains = arrowButton("SpeedButtonRemoveFromNotContains", Qt::LeftArrow, tr("Remove"));
    connect(addToContains, &QToolButton::clicked, this, &TFormSearchRecipes::SpeedButtonAddToContainsClick);
    connect(removeFromContains, &QToolButton::clicked, this,
            &TFormSearchRecipes::SpeedButtonRemoveFromContainsClick);
    connect(m_addToNotContains, &QToolButton::clicked, this,
            &TFormSearchRecipes::SpeedButtonAddToNotContainsClick);
    connect(m_removeFromNotContains, &QToolButton::clicked, this,
            &TFormSearchRecipes::SpeedButtonRemoveFromNotContainsClick);

    m_checkBoxCanBeMadeOf = new QCheckBox(tr("Can be &made of these alone"));
    m_checkBoxCanBeMadeOf->setObjectName(QStringLiteral("CheckBoxCanBeMadeOf"));
    m_checkBoxCanBeMadeOf->setToolTip(tr("Recipes that need nothing but the ingredients listed"));
    connect(m_checkBoxCanBeMadeOf, &QCheckBox::toggled, this, &TFormSearchRecipes::CheckBoxCanBeMadeOfClick);

    auto* chosen = new QGridLayout;
    AddListSection(chosen, 0, labelContains, m_listBoxContains, addToContains, removeFromContains);
    AddListSection(chosen, 2, m_labelNotContains, m_listBoxNotContains, m_addToNotContains,
                   m_removeFromNotContains);
    chosen->addWidget(m_checkBoxCanBeMadeOf, 4, 0, 1, 2);
    chosen->setRowStretch(5, 1);

    auto* layout = new QHBoxLayout(page);
    layout->addWidget(m_treeIngredientTypes, 2);
    layout->addWidget(m_gridIngredients, 3);
    layout->addLayout(chosen, 2);
    return page;
}

TRecipeSearchCriteria TFormSearchRecipes::Criteria() const {
    TRecipeSearchCriteria c;
    c.pattern = m_editPattern->text();
    c.allGroups = m_checkBoxAllGroups->isChecked();
    c.groupKey = m_treeRecipeGroups->GetCurrentKey();
    // Read from the table rather than the tree, as the command line does: the same statement
    // for the same group, and groups added since the tree was loaded count too.
    if (DataModuleMain)
        c.groupChildrenIds =
            ChildrenIds(DataModuleMain->KADaoDatabase, QStringLiteral("RGroups"),
                        QStringLiteral("recGroupId"), QStringLiteral("recGroupName"), c.groupKey);
    c.belongsTo = m_belongsToIds;
    c.notBelongsTo = m_notBelongsToIds;
    c.prepTime = m_editPrepTime->text().trimmed();
    c.servings = m_editNoServings->text().trimmed();
    c.nutrients = NutrientLimits();
    c.canBeMadeOf = m_checkBoxCanBeMadeOf->isChecked();
    c.contains = m_containsIds;
    c.notContains = m_notContainsIds;
    return c;
}

void TFormSearchRecipes::BitBtnFindClick() {
    TRecipeSearchCriteria criteria;
    if (Guarded([&] { criteria = Criteria(); }))
        RunSearch(BuildRecipeSearchLines(criteria));
}

void TFormSearchRecipes::BitBtnNewSearchClick() {
    m_editPattern->clear();
    m_checkBoxAllGroups->setChecked(true);
    m_listBoxBelongsTo->clear();
    m_listBoxNotBelongsTo->clear();
    m_listBoxContains->clear();
    m_listBoxNotContains->clear();
    m_belongsToIds.clear();
    m_notBelongsToIds.clear();
    m_containsIds.clear();
    m_notContainsIds.clear();
    ResetNutrientLimits();
    m_editPrepTime->clear();
    m_editNoServings->clear();
    m_checkBoxCanBeMadeOf->setChecked(false);
    CheckBoxCanBeMadeOfClick();
    UpdateButtons();
    ShrinkToCriteria();
}

void TFormSearchRecipes::BitBtnSaveShortcutClick() {
    if (!Guarded([this] { Shortcuts::SaveRecipeSearch(QuerySearch().Sql()); }))
        return;
    if (ShortcutsChanged)
        Guarded([] { ShortcutsChanged(); });
}

void TFormSearchRecipes::UpdateButtons() {
    TSearchWindow::UpdateButtons();
    m_bitBtnSaveShortcut->setEnabled(m_bitBtnOpen->isEnabled());
}

void TFormSearchRecipes::AddCurrent(qm::Dataset& dataset, const QString& idField, const QString& nameField,
                                    TSearchListBox* box, QList<int>& ids) {
    if (!dataset.Active() || dataset.currentRow() < 0)
        return;
    box->addItem(dataset.FieldByName(nameField).AsString());
    ids << dataset.FieldByName(idField).AsInteger();
}

void TFormSearchRecipes::AddIngredientRows(const QList<int>& rows, TSearchListBox* box, QList<int>& ids) {
    const int id = m_queryIngredients.fieldIndex(QStringLiteral("ingredId"));
    const int name = m_queryIngredients.fieldIndex(QStringLiteral("ingredName"));
    if (!m_queryIngredients.Active() || id < 0 || name < 0)
        return;
    for (int row : rows) {
        if (row < 0 || row >= m_queryIngredients.RecordCount())
            continue;
        box->addItem(m_queryIngredients.value(row, name).toString());
        ids << m_queryIngredients.value(row, id).toInt();
    }
}

void TFormSearchRecipes::RemoveAt(int row, TSearchListBox* box, QList<int>& ids) {
    if (row < 0 || row >= box->count() || row >= ids.size())
        return;
    delete box->takeItem(row);
    ids.removeAt(row);
}

void TFormSearchRecipes::SpeedButtonAddToBelongsToClick() {
    Guarded([this] {
        AddCurrent(m_queryAvailableCategories, QStringLiteral("catId"), QStringLiteral("catName"),
                   m_listBoxBelongsTo, m_belongsToIds);
    });
}

void TFormSearchRecipes::SpeedButtonRemoveFromBelongsToClick() {
    if (m_listBoxBelongsTo->currentRow() >= 0)
        RemoveAt(m_listBoxBelongsTo->currentRow(), m_listBoxBelongsTo, m_belongsToIds);
}

void TFormSearchRecipes::SpeedButtonAddToNotBelongsToClick() {
    // Unlike its three siblings this one wants a selected item in its own box first.
    if (m_listBoxNotBelongsTo->currentRow() < 0)
        return;
    Guarded([this] {
        AddCurrent(m_queryAvailableCategories, QStringLiteral("catId"), QStringLiteral("catName"),
                   m_listBoxNotBelongsTo, m_notBelongsToIds);
    });
}

void TFormSearchRecipes::SpeedButtonRemoveFromNotBelongsToClick() {
    RemoveAt(m_listBoxNotBelongsTo->currentRow(), m_listBoxNotBelongsTo, m_notBelongsToIds);
}

void TFormSearchRecipes::SpeedButtonAddToContainsClick() {
    Guarded([this] {
        AddCurrent(m_queryIngredients, QStringLiteral("ingredId"), QStringLiteral("ingredName"),
                   m_listBoxContains, m_containsIds);
    });
}

void TFormSearchRecipes::SpeedButtonRemoveFromContainsClick() {
    RemoveAt(m_listBoxContains->currentRow(), m_listBoxContains, m_containsIds);
}

void TFormSearchRecipes::SpeedButtonAddToNotContainsClick() {
    Guarded([this] {
        AddCurrent(m_queryIngredients, QStringLiteral("ingredId"), QStringLiteral("ingredName"),
                   m_listBoxNotContains, m_notContainsIds);
    });
}

void TFormSearchRecipes::SpeedButtonRemoveFromNotContainsClick() {
    RemoveAt(m_listBoxNotContains->currentRow(), m_listBoxNotContains, m_notContainsIds);
}

void TFormSearchRecipes::CheckBoxCanBeMadeOfClick() {
    const bool alone = m_checkBoxCanBeMadeOf->isChecked();
    m_labelNotContains->setVisible(!alone);
    m_listBoxNotContains->setVisible(!alone);
    m_addToNotContains->setVisible(!alone);
    m_removeFromNotContains->setVisible(!alone);
    m_listBoxContains->setFixedHeight(alone ? kContainsAloneHeight : kContainsHeight);
}

void TFormSearchRecipes::TreeViewIngredientTypesChange(int key) {
    Guarded([this, key] {
        m_queryIngredients.Close();
        m_queryIngredients.SetParam(QStringLiteral("ingredTypeId"), key);
        m_queryIngredients.Open();
    });
}

void TFormSearchRecipes::OpenRecord(int id) {
    OpenInFrame(QStringLiteral("Recipes"), "LocateRecipe", id);
}

void TFormSearchRecipes::PrintRecords(const QString& idList) {
    if (PrintRecipes)
        PrintRecipes(idList);
}

void TFormSearchRecipes::FormShow() {
    if (!m_connected) {
        qm::Database* db = &DataModuleMain->KADaoDatabase;
        m_queryAvailableCategories.SetDatabase(db);
        m_queryIngredients.SetDatabase(db);
        m_treeRecipeGroups->SetDatabase(db);
        m_treeIngredientTypes->SetDatabase(db);
        m_connected = true;
    }
    LoadTree(m_treeRecipeGroups, qm::RootNodeName(RecordKinds::Recipes()));
    LoadTree(m_treeIngredientTypes, qm::RootNodeName(RecordKinds::Ingredients()));
    m_queryAvailableCategories.Close();
    m_queryAvailableCategories.Open();
}

void TFormSearchRecipes::FormClose() {
    m_queryAvailableCategories.Close();
}
