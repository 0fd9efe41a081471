#include "culinary/ui/form_recipes.h"

#include "components/dataset_model.h"
#include "components/mdi_frame.h"
#include "components/messages.h"
#include "components/ui/db_field_binder.h"
#include "components/ui/modal_runner.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "components/ui/vintra_pic_holder.h"
#include "culinary/ingredient_line.h"
#include "culinary/recipe_window_rules.h"
#include "culinary/ui/form_recipe_add_or_edit_ingredient.h"
#include "culinary/ui/form_recipe_add_or_edit_ingredient_ff.h"
#include "culinary/ui/form_recipe_categories.h"
#include "culinary/ui/form_rich_text_db_editor.h"
#include "store/data_module_main.h"
#include "store/picture_commands.h"
#include "store/record_kinds.h"
#include "store/resource_holder.h"
#include "store/ui/picture_pages.h"
#include "store/ui/record_window.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QFile>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QTextEdit>
#include <QVBoxLayout>
#include <memory>

std::function<void(const QString&, bool)> TFormRecipes::PrintRecipes;
std::function<bool(int)> TFormRecipes::ImportRecipes;
std::function<void(const QString&)> TFormRecipes::ExportRecipes;
std::function<void(int)> TFormRecipes::SendRecipe;

namespace {

const QString NutrientFormat = QStringLiteral("0.###");

struct NutrientLabel {
    const char* text;
    const char* unit;
};

// Parallel to NutrientSet.
const NutrientLabel NutrientLabels[NutrientCount] = {
    {QT_TRANSLATE_NOOP("TFormRecipes", "Calories"), "KCal"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Total fat"), "g"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Cholesterol"), "mg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Total carbohydrates"), "g"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Dietary fiber"), "g"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Protein"), "g"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Vitamin A"), "IU"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Vitamin B6"), "mg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Vitamin B12"), "mcg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Vitamin C"), "mg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Vitamin D"), "IU"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Vitamin E"), "mg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Sodium"), "mg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Magnesium"), "mg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Iron"), "mg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Potassium"), "mg"},
    {QT_TRANSLATE_NOOP("TFormRecipes", "Calcium"), "mg"}};

/// Amounts in the lines' grid read as the nutrient boxes do: "0.###".
class AmountDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant& value, const QLocale& locale) const override {
        const int type = value.metaType().id();
        if (type == QMetaType::Double || type == QMetaType::Float)
            return TDBFieldBinder::FormatNumber(value, NutrientFormat);
        return QStyledItemDelegate::displayText(value, locale);
    }
};

bool editing(const qm::Dataset& table) {
    return table.State() == qm::dsEdit || table.State() == qm::dsInsert;
}

QPushButton* button(const char* name, const QString& text, QWidget* parent) {
    auto* b = new QPushButton(text, parent);
    b->setObjectName(QLatin1String(name));
    b->setAutoDefault(false);
    return b;
}

} // namespace

TFormRecipes::TFormRecipes(const QString& shortcutSql, const QString& shortcutName, QWidget* parent)
    : TRecordWindow(RecordKinds::Recipes(), parent), m_shortcutSql(shortcutSql),
      m_shortcutName(shortcutName) {
    setObjectName(QStringLiteral("FormRecipes"));
    setWindowTitle(tr("Recipes"));
    Tag = PrintRecipes ? 1 : 0; // printable once a report is wired to it
    RecordTable().setObjectName(QStringLiteral("TableRecipes"));
    GroupTable().setObjectName(QStringLiteral("TableRecipeGroups"));
    TreeView()->setObjectName(QStringLiteral("TreeViewRecipeGroups"));
    Grid()->setObjectName(QStringLiteral("DBGridRecipes"));
    GroupPanel()->setObjectName(QStringLiteral("GroupBoxRecipesGroups"));
    RecordModel()->addColumn(QStringLiteral("RecName"), tr("Recipe name"));
    RecordModel()->addColumn(QStringLiteral("RecTime"), tr("Time"));
    RecordModel()->addColumn(QStringLiteral("RecServings"), tr("Servings"));
    RecordModel()->addColumn(QStringLiteral("recPrice"), tr("Price"));
    // The name takes the free width while its remembered width is the default one.
    Grid()->SetNameColumn(QStringLiteral("RecName"),
                          qm::DefaultColumnWidth(Kind().columns, QStringLiteral("RecName")));

    BuildDetails();
    ConnectDatasets();
    setMinimumSize(640, 480);
}

TFormRecipes::~TFormRecipes() {
    // Views go before the datasets they show.
    delete m_contents;
    delete m_categories;
    delete m_contentsModel;
    delete m_categoriesModel;
    if (Grid())
        Grid()->SetDatasetModel(RecordModel());
    delete m_shortcutModel;
}

// ---------------------------------------------------------------------------------------------
// Building

void TFormRecipes::BuildDetails() {
    // Left panel: the group's description and the search below the tree.
    auto* groupLayout = static_cast<QVBoxLayout*>(GroupPanel()->layout());
    auto* groupDesc = new QPlainTextEdit(GroupPanel());
    groupDesc->setObjectName(QStringLiteral("DBMemoRecipesGroupDesc"));
    groupDesc->setPlaceholderText(tr("Description of the group"));
    groupDesc->setMaximumHeight(110);
    auto* find = button("SpeedButtonFind", tr("Search recipes..."), GroupPanel());
    find->setIcon(style()->standardIcon(QStyle::SP_FileDialogContentsView));
    groupLayout->addWidget(groupDesc);
    groupLayout->addWidget(find);
    connect(find, &QPushButton::clicked, this, &TFormRecipes::SpeedButtonFindClick);
    m_groupBinder = new TDBFieldBinder(&GroupTable(), this);
    m_groupBinder->Bind(groupDesc, QStringLiteral("recGroupDesc"));

    m_binder = new TDBFieldBinder(&RecordTable(), this);
    m_pages = new QTabWidget(DetailPanel());
    m_pages->setObjectName(QStringLiteral("PageControlRecipe"));
    // The main page scrolls rather than push the detail panel past its remembered height.
    auto* mainScroll = new QScrollArea;
    mainScroll->setObjectName(QStringLiteral("TabSheetMain"));
    mainScroll->setFrameShape(QFrame::NoFrame);
    mainScroll->setWidgetResizable(true);
    mainScroll->setWidget(BuildMainTab());
    m_pages->addTab(mainScroll, tr("Main"));
    m_pages->addTab(BuildContentsTab(), tr("Contents"));
    m_pages->addTab(BuildPreparationTab(), tr("Preparation"));
    m_pages->addTab(BuildNutritionTab(), tr("Nutrition facts"));
    auto* detailLayout = new QVBoxLayout(DetailPanel());
    detailLayout->setContentsMargins(0, 4, 0, 0);
    detailLayout->addWidget(m_pages);
    connect(m_pages, &QTabWidget::currentChanged, this, [this] { UpdateCommands(); });
    connect(m_binder, &TDBFieldBinder::FieldEdited, this, [this](const QString& field) {
        if (field.compare(QLatin1String("recFreeForm"), Qt::CaseInsensitive) == 0)
            DBCheckBoxFreeFormClick();
    });

    // The recipes' own commands, on the grid's menu.
    const auto action = [this](const char* name, const QString& text, auto handler) {
        auto* a = new QAction(text, this);
        a->setObjectName(QLatin1String(name));
        connect(a, &QAction::triggered, this, handler);
        return a;
    };
    m_recalculate = action("MIRecalculate", tr("Recalculate nutrients"), [this] { MIRecalculateClick(); });
    m_import = action("MIImport", tr("Import..."), [this] { MIImportClick(); });
    m_export = action("MIExport", tr("Export..."), [this] { MIExportClick(); });
    m_sendToMail = action("MISendToMail", tr("Send by mail..."), [this] { MISendToMailClick(); });
    auto* separator = new QAction(this);
    separator->setSeparator(true);
    Grid()->addActions({m_recalculate, separator, m_import, m_export, m_sendToMail});
    Grid()->setContextMenuPolicy(Qt::ActionsContextMenu);
}

QWidget* TFormRecipes::BuildMainTab() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("PanelMain"));
    m_name = new QLineEdit(page);
    m_name->setObjectName(QStringLiteral("DBEditRecipeName"));
    m_name->setMaxLength(128);
    auto* time = new QLineEdit(page);
    time->setObjectName(QStringLiteral("DBEditRecipeTime"));
    time->setMaximumWidth(60);
    auto* servings = new QLineEdit(page);
    servings->setObjectName(QStringLiteral("DBEditRecipeServings"));
    servings->setMaximumWidth(60);
    m_freeForm = new QCheckBox(tr("&Free-form ingredients"), page);
    m_freeForm->setObjectName(QStringLiteral("DBCheckBoxFreeForm"));
    m_freeForm->setToolTip(tr("The ingredients are lines of text and the nutrients are typed in by hand"));
    auto* desc = new QPlainTextEdit(page);
    desc->setObjectName(QStringLiteral("DBMemoRecipeDesc"));
    desc->setPlaceholderText(tr("A few words about the recipe"));
    m_categoriesModel = new qm::DatasetModel(&QueryRecipeCategories, this);
    m_categoriesModel->addColumn(QStringLiteral("catName"), tr("Categories"));
    m_categories = new TVintraDBGrid(page);
    m_categories->setObjectName(QStringLiteral("DBGridRecipeCategories"));
    m_categories->SetDatasetModel(m_categoriesModel);
    m_categories->SetKeyDataset(nullptr);
    m_categories->setDragEnabled(false);
    m_categories->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_categories->horizontalHeader()->setStretchLastSection(true);
    m_categories->setToolTip(tr("Double-click to choose the categories of the recipe"));
    m_categories->viewport()->installEventFilter(this);

    m_binder->Bind(m_name, QStringLiteral("recName"));
    m_binder->Bind(time, QStringLiteral("recTime"), TDBFieldBinder::Integer);
    m_binder->Bind(servings, QStringLiteral("recServings"), TDBFieldBinder::Integer);
    m_binder->Bind(m_freeForm, QStringLiteral("recFreeForm"));
    m_binder->Bind(desc, QStringLiteral("recDesc"));
    SetNameEdit(m_name);

    const auto label = [page](const char* name, const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, page);
        l->setObjectName(QLatin1String(name));
        l->setBuddy(buddy);
        return l;
    };
    auto* form = new QGridLayout;
    form->setHorizontalSpacing(6);
    form->setVerticalSpacing(4);
    form->addWidget(label("LabelRecipeName", tr("Recipe &name"), m_name), 0, 0);
    form->addWidget(m_name, 0, 1, 1, 5);
    form->addWidget(label("LabelTime", tr("&Time"), time), 1, 0);
    form->addWidget(time, 1, 1);
    auto* minutes = new QLabel(tr("min"), page);
    minutes->setObjectName(QStringLiteral("LabelTimeUnit"));
    form->addWidget(minutes, 1, 2);
    form->addWidget(label("LabelServings", tr("&Servings"), servings), 1, 3, Qt::AlignRight);
    form->addWidget(servings, 1, 4);
    form->addWidget(m_freeForm, 2, 1, 1, 5);
    form->addWidget(label("LabelDescription", tr("&Description"), desc), 3, 0, Qt::AlignTop);
    form->addWidget(desc, 3, 1, 1, 5);
    form->addWidget(label("LabelCategories", tr("Categories"), m_categories), 4, 0, Qt::AlignTop);
    form->addWidget(m_categories, 4, 1, 1, 5);
    form->setColumnStretch(5, 1);
    form->setRowStretch(3, 2);
    form->setRowStretch(4, 1);
    m_categories->horizontalHeader()->hide();
    m_categories->setMinimumHeight(48);

    m_pictures = new TPicturePages(pkRecipe, QStringLiteral("ImageRecipe"),
                                   QStringLiteral("PopupMenuRecipeImage"), page);
    m_pictures->setMinimumWidth(120);
    m_pictures->setMaximumWidth(260);
    // The full view opens only where a picture may be set.
    m_pictures->SetViewGate(m_pictures->ActionSet());
    connect(m_pictures, &TPicturePages::PicturesChanged, this, [this] { UpdateCommands(); });
    connect(m_pictures, &TPicturePages::PictureAdded, this, [this] { UpdateGroupCommands(); });

    auto* layout = new QHBoxLayout(page);
    layout->addLayout(form, 1);
    layout->addWidget(m_pictures);
    return page;
}

QWidget* TFormRecipes::BuildContentsTab() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetContents"));

    m_panelNotFree = new QWidget(page);
    m_panelNotFree->setObjectName(QStringLiteral("PanelNotFree"));
    m_contentsModel = new qm::DatasetModel(&QueryContents, this);
    m_contentsModel->addColumn(QStringLiteral("ingredName"), tr("Ingredient"));
    m_contentsModel->addColumn(QStringLiteral("amount"), tr("Amount"));
    m_contentsModel->addColumn(QStringLiteral("unitName"), tr("Unit"));
    m_contentsModel->addColumn(QStringLiteral("calcAmount"), tr("Calculated"));
    m_contents = new TVintraDBGrid(m_panelNotFree);
    m_contents->setObjectName(QStringLiteral("DBGridContents"));
    m_contents->SetDatasetModel(m_contentsModel);
    // Delete here deletes the recipe, not the line; Insert and Enter are the line buttons'.
    m_contents->SetKeyDataset(&RecordTable());
    m_contents->setDragEnabled(false);
    m_contents->setSelectionMode(QAbstractItemView::SingleSelection);
    m_contents->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_contents->setItemDelegate(new AmountDelegate(m_contents));
    m_contents->SetNameColumn(QStringLiteral("ingredName"),
                              qm::DefaultColumnWidth(Kind().columns, QStringLiteral("ingredName")));
    m_contents->installEventFilter(this);
    connect(m_contents, &QAbstractItemView::doubleClicked, this, &TFormRecipes::DBGridContentsDblClick);

    m_newServings = new QLineEdit(m_panelNotFree);
    m_newServings->setObjectName(QStringLiteral("EditNewServings"));
    m_newServings->setMaximumWidth(60);
    auto* newServingsLabel = new QLabel(tr("Amounts for"), m_panelNotFree);
    newServingsLabel->setObjectName(QStringLiteral("LabelNewServings"));
    newServingsLabel->setBuddy(m_newServings);
    m_buttonRecalculate = button("ButtonRecalculate", tr("Calculate"), m_panelNotFree);
    connect(m_buttonRecalculate, &QPushButton::clicked, this, &TFormRecipes::ButtonRecalculateClick);
    connect(m_newServings, &QLineEdit::textChanged, this, [this] { UpdateCommands(); });
    connect(m_newServings, &QLineEdit::returnPressed, this, &TFormRecipes::ButtonRecalculateClick);
    auto* scaleRow = new QHBoxLayout;
    scaleRow->addWidget(newServingsLabel);
    scaleRow->addWidget(m_newServings);
    auto* newServingsUnit = new QLabel(tr("servings"), m_panelNotFree);
    newServingsUnit->setObjectName(QStringLiteral("LabelNewServingsUnit"));
    scaleRow->addWidget(newServingsUnit);
    scaleRow->addWidget(m_buttonRecalculate);
    scaleRow->addStretch(1);
    auto* notFreeLayout = new QVBoxLayout(m_panelNotFree);
    notFreeLayout->setContentsMargins(0, 0, 0, 0);
    notFreeLayout->addWidget(m_contents, 1);
    notFreeLayout->addLayout(scaleRow);

    m_panelFree = new QWidget(page);
    m_panelFree->setObjectName(QStringLiteral("PanelFree"));
    m_listIngredients = new QListWidget(m_panelFree);
    m_listIngredients->setObjectName(QStringLiteral("ListBoxIngredients"));
    // The lines are laid out in columns: they need a font of one width.
    m_listIngredients->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_listIngredients->installEventFilter(this);
    connect(m_listIngredients, &QListWidget::itemDoubleClicked, this, &TFormRecipes::BitBtnEditIngredClick);
    connect(m_listIngredients, &QListWidget::itemSelectionChanged, this, [this] { UpdateCommands(); });
    auto* freeLayout = new QVBoxLayout(m_panelFree);
    freeLayout->setContentsMargins(0, 0, 0, 0);
    freeLayout->addWidget(m_listIngredients);

    m_addIngred = button("BitBtnAddIngred", tr("&Add..."), page);
    m_editIngred = button("BitBtnEditIngred", tr("&Edit..."), page);
    m_deleteIngred = button("BitBtnDeleteIngred", tr("De&lete"), page);
    connect(m_addIngred, &QPushButton::clicked, this, &TFormRecipes::BitBtnAddIngredClick);
    connect(m_editIngred, &QPushButton::clicked, this, &TFormRecipes::BitBtnEditIngredClick);
    connect(m_deleteIngred, &QPushButton::clicked, this, &TFormRecipes::BitBtnDeleteIngredClick);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(m_addIngred);
    buttons->addWidget(m_editIngred);
    buttons->addWidget(m_deleteIngred);
    buttons->addStretch(1);

    // The two panels fill the tab; the free-form switch shows one of them.
    auto* layout = new QHBoxLayout(page);
    layout->addWidget(m_panelNotFree, 1);
    layout->addWidget(m_panelFree, 1);
    layout->addLayout(buttons);
    m_panelFree->hide();
    return page;
}

QWidget* TFormRecipes::BuildPreparationTab() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetPreparation"));
    m_preparation = new QTextEdit(page);
    m_preparation->setObjectName(QStringLiteral("DBRichEditPreparation"));
    m_preparation->setContextMenuPolicy(Qt::CustomContextMenu);
    m_binder->Bind(m_preparation, QStringLiteral("recPrep"));
    m_editRichText = new QAction(tr("Edit in the text editor..."), this);
    m_editRichText->setObjectName(QStringLiteral("MIEditRithRichTextEditor"));
    m_clear = new QAction(tr("Clear"), this);
    m_clear->setObjectName(QStringLiteral("MIClear"));
    connect(m_editRichText, &QAction::triggered, this, &TFormRecipes::MIEditRithRichTextEditorClick);
    connect(m_clear, &QAction::triggered, this, &TFormRecipes::MIClearClick);
    connect(m_preparation, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        std::unique_ptr<QMenu> menu(m_preparation->createStandardContextMenu(at));
        menu->addSeparator();
        menu->addAction(m_editRichText);
        menu->addAction(m_clear);
        menu->exec(m_preparation->viewport()->mapToGlobal(at));
    });
    auto* open = button("ButtonRichTextEditor", tr("Open the text editor..."), page);
    connect(open, &QPushButton::clicked, this, &TFormRecipes::MIEditRithRichTextEditorClick);
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(open);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(m_preparation, 1);
    layout->addLayout(row);
    return page;
}

QWidget* TFormRecipes::BuildNutritionTab() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetNutrition"));
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(3);
    const int perColumn = (NutrientCount + 1) / 2;
    for (int i = 0; i < NutrientCount; ++i) {
        const int row = i % perColumn;
        const int column = (i / perColumn) * 4;
        auto* edit = new QLineEdit(page);
        edit->setObjectName(QStringLiteral("DBEdit") + QLatin1String(BioValueIds[i]));
        edit->setAlignment(Qt::AlignRight);
        edit->setMinimumWidth(64);
        edit->setMaximumWidth(76);
        edit->installEventFilter(this);
        m_binder->Bind(edit, QLatin1String(NutrientSet[i]), TDBFieldBinder::Float, NutrientFormat);
        m_nutrients[i] = edit;
        auto* label = new QLabel(tr(NutrientLabels[i].text), page);
        label->setObjectName(QStringLiteral("Label") + QLatin1String(BioValueIds[i]));
        label->setBuddy(edit);
        edit->setToolTip(tr("%1 per serving").arg(label->text()));
        grid->addWidget(label, row, column);
        grid->addWidget(edit, row, column + 1);
        auto* unit = new QLabel(QLatin1String(NutrientLabels[i].unit), page);
        unit->setObjectName(QStringLiteral("LabelUnit") + QLatin1String(BioValueIds[i]));
        grid->addWidget(unit, row, column + 2);
    }
    grid->setColumnMinimumWidth(3, 18);
    grid->setRowStretch(perColumn, 1);

    m_bioValueNote = new QTextEdit(page);
    m_bioValueNote->setObjectName(QStringLiteral("DBRichEditBioValueNote"));
    m_bioValueNote->setReadOnly(true);
    m_bioValueNote->setPlaceholderText(tr("Click into a box to read about that nutrient."));
    m_noteBinder = new TDBFieldBinder(&QueryBioValues, this);
    m_noteBinder->Bind(m_bioValueNote, QStringLiteral("bioValueDesc"));

    auto* perServing = new QLabel(tr("Values per serving"), page);
    perServing->setObjectName(QStringLiteral("LabelPerServing"));
    QFont bold = perServing->font();
    bold.setBold(true);
    perServing->setFont(bold);
    // The values keep their room; the note takes what is left and scrolls.
    auto* values = new QWidget;
    auto* left = new QVBoxLayout(values);
    left->setContentsMargins(0, 0, 0, 0);
    left->addWidget(perServing);
    left->addLayout(grid, 1);
    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("ScrollBoxNutrients"));
    scroll->setWidget(values);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->viewport()->setAutoFillBackground(false);
    values->setAutoFillBackground(false);
    scroll->setMinimumWidth(220);
    m_bioValueNote->setMinimumWidth(120);
    auto* layout = new QHBoxLayout(page);
    layout->addWidget(scroll, 0);
    layout->addWidget(m_bioValueNote, 1);
    return page;
}

void TFormRecipes::ConnectDatasets() {
    qm::Database* database = DataModuleMain ? &DataModuleMain->KADaoDatabase : nullptr;
    QueryContents.setObjectName(QStringLiteral("QueryContents"));
    QueryContents.SetDatabase(database);
    QueryContents.SetSql(QString::fromLatin1(RecipeSql::QueryContents));
    QueryContents.AddCalculatedField(QStringLiteral("calcAmount"));
    QueryContents.OnCalcFields = [this](qm::Dataset& lines) {
        qm::Dataset& recipes = RecordTable();
        QVariant servings;
        QVariant freeForm;
        if (recipes.Active() && recipes.currentRow() >= 0) {
            servings = recipes.FieldByName(QStringLiteral("recServings")).Value();
            freeForm = recipes.FieldByName(QStringLiteral("recFreeForm")).Value();
        }
        lines.FieldByName(QStringLiteral("calcAmount"))
            .SetValue(CalcAmount(lines.FieldByName(QStringLiteral("amount")).Value(), servings, freeForm,
                                 m_newServings ? m_newServings->text() : QString()));
    };
    QueryBioValues.setObjectName(QStringLiteral("QueryBioValues"));
    QueryBioValues.SetDatabase(database);
    QueryBioValues.SetSql(QString::fromLatin1(RecipeSql::QueryBioValues));
    QueryRecipeCategories.setObjectName(QStringLiteral("QueryRecipeCategories"));
    QueryRecipeCategories.SetDatabase(database);
    QueryRecipeCategories.SetSql(QString::fromLatin1(RecipeSql::QueryRecipeCategories));
    QueryShortcutRecipes.setObjectName(QStringLiteral("QueryShortcutRecipes"));
    QueryShortcutRecipes.SetDatabase(database);
    if (ShortcutMode()) {
        QueryShortcutRecipes.SetSql(m_shortcutSql);
        QueryShortcutRecipes.AfterScroll = [this](qm::Dataset&) { ShortcutAfterScroll(); };
        m_shortcutModel = new qm::DatasetModel(&QueryShortcutRecipes);
        for (int c = 0; c < RecordModel()->columnCount(); ++c)
            m_shortcutModel->addColumn(RecordModel()->columnField(c),
                                       RecordModel()->headerData(c, Qt::Horizontal).toString());
    }
}

// ---------------------------------------------------------------------------------------------
// Showing and the frame

void TFormRecipes::FormShow() {
    TranslateForm(this);
    if (!ShortcutMode()) {
        TRecordWindow::FormShow();
        UpdateCommands();
        return;
    }
    setWindowTitle(windowTitle() + QStringLiteral(" - ") + m_shortcutName);
    m_import->setVisible(false);
    if (MdiFrame)
        MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonImport"), false);
    // The search's rows take the grid; the details still come from the recipe table.
    Grid()->SetDatasetModel(m_shortcutModel);
    for (int c = 0; c < RecordModel()->columnCount(); ++c) // under the titles just translated
        m_shortcutModel->setHeaderData(c, Qt::Horizontal, RecordModel()->headerData(c, Qt::Horizontal));
    Grid()->SetKeyDataset(&RecordTable());
    GroupPanel()->hide();
    if (QSplitterHandle* handle = SplitterVertical()->handle(1))
        handle->hide();
    RestoreLayout();
    RecordTable().SetReadOnly(true);
    RunGuarded([this] {
        GroupTable().Open();
        QueryShortcutRecipes.Open();
        if (!RecordTable().Active())
            RecordTable().Open();
    });
    UpdateStatus();
    UpdateCommands();
}

void TFormRecipes::ShortcutAfterScroll() {
    RunGuarded([this] {
        qm::Dataset& recipes = RecordTable();
        if (editing(recipes) && !recipes.Post())
            return;
        const int id = QueryShortcutRecipes.IsEmpty()
                           ? 0
                           : QueryShortcutRecipes.FieldByName(QStringLiteral("recId")).AsInteger();
        recipes.Close();
        recipes.SetFilter(QStringLiteral("recId = %1").arg(id));
        recipes.SetFiltered(true);
        recipes.Open();
    });
}

void TFormRecipes::UpdateStatus() {
    if (!ShortcutMode()) {
        TRecordWindow::UpdateStatus();
        return;
    }
    if (MdiFrame)
        MdiFrame->SetStatusCount(QString());
}

void TFormRecipes::FormActivate() {
    TRecordWindow::FormActivate();
    m_active = true;
    SetFrameCommands(true);
}

void TFormRecipes::FormDeactivate() {
    m_active = false;
    // The user may be typing a pattern for this window into the frame's quick search box.
    const QWidget* focus = QApplication::focusWidget();
    if (focus && focus->objectName() == QLatin1String("EditQuickSearch"))
        return;
    SetFrameCommands(false);
}

void TFormRecipes::SetFrameCommands(bool active) {
    if (!MdiFrame)
        return;
    MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonRecalculate"), active);
    MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonImport"), active && m_import->isEnabled());
    MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonExport"), active && bool(ExportRecipes));
    MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonSendToMail"), active && bool(SendRecipe));
}

void TFormRecipes::Release() {
    QueryContents.Close();
    QueryBioValues.Close();
    QueryRecipeCategories.Close();
    QueryShortcutRecipes.Close();
    TRecordWindow::Release();
}

QList<TVintraDBGrid*> TFormRecipes::RememberedGrids() const {
    return {Grid(), m_contents};
}

qm::WindowLayout TFormRecipes::CurrentLayout() const {
    qm::WindowLayout layout = TRecordWindow::CurrentLayout();
    // The tree's width is a plain window's; a search window has no tree.
    if (ShortcutMode())
        layout.splitterVertical = -1;
    return layout;
}

void TFormRecipes::Print() {
    bool containsLocked = false;
    QString ids;
    GetSelectedIds(Grid(), QStringLiteral("recId"), containsLocked, ids);
    if (PrintRecipes && !ids.isEmpty())
        PrintRecipes(ids, containsLocked);
}

bool TFormRecipes::LocateRecipe(int recId) {
    return LocateRecord(recId);
}

// ---------------------------------------------------------------------------------------------
// Record hooks

void TFormRecipes::CheckRecord(qm::Dataset& table, QString& errors) {
    CheckRecipe(table, errors);
}

void TFormRecipes::RecordChecked(qm::Dataset& table) {
    if (FormResourceHolder &&
        FormResourceHolder->VintraOptions.GetAsBoolean(QStringLiteral("AutoRecalculate")))
        ::RecalculateNutrients(table);
}

void TFormRecipes::RecordBeforeInsert() {
    // The name edit lies on the first tab.
    m_pages->setCurrentIndex(0);
    TRecordWindow::RecordBeforeInsert();
}

void TFormRecipes::NewRecord(qm::Dataset& table) {
    if (ShortcutMode())
        throw Abort();
    table.FieldByName(QStringLiteral("recFreeForm")).SetAsBoolean(false);
}

void TFormRecipes::RecordDeleting(int id) {
    const QString folder = DataModuleMain->PictureFolder(pkRecipe);
    for (const QString& name : PictureCommands::PictureFiles(pkRecipe, id))
        QFile::remove(folder + name);
}

int TFormRecipes::CurrentRecId() {
    qm::Dataset& recipes = RecordTable();
    if (!recipes.Active() || recipes.currentRow() < 0)
        return 0;
    return recipes.FieldByName(QStringLiteral("recId")).AsInteger();
}

bool TFormRecipes::FreeForm() {
    qm::Dataset& recipes = RecordTable();
    return recipes.Active() && recipes.currentRow() >= 0 &&
           recipes.FieldByName(QStringLiteral("recFreeForm")).AsBoolean();
}

void TFormRecipes::RecordAfterScroll() {
    RunGuarded([this] {
        const int id = CurrentRecId();
        // A picture of the old single-file form, until the tabs are built below.
        const QString single = DataModuleMain->PictureFolder(pkRecipe) + QStringLiteral("%1.jpg").arg(id);
        if (id > 0 && QFile::exists(single))
            m_pictures->MainHolder()->LoadFromFile(single);
        else
            m_pictures->MainHolder()->ShowNoPicture();
        LoadIngredientList();
        ReopenDetails();
        m_pictures->SetRecord(id);
        ApplyFreeForm();
    });
}

void TFormRecipes::ReopenDetails() {
    QueryContents.Close();
    QueryBioValues.Close();
    QueryRecipeCategories.Close();
    if (IsDataSetEmpty(RecordTable()))
        return;
    const int id = CurrentRecId();
    QueryContents.SetParam(QStringLiteral("recId"), id);
    QueryContents.Open();
    QueryBioValues.Open();
    QueryRecipeCategories.SetParam(QStringLiteral("recId"), id);
    QueryRecipeCategories.Open();
}

void TFormRecipes::LoadIngredientList() {
    m_listIngredients->clear();
    qm::Dataset& recipes = RecordTable();
    if (recipes.Active() && recipes.currentRow() >= 0)
        m_listIngredients->addItems(
            IngredientLines(recipes.FieldByName(QStringLiteral("recIngreds")).AsString()));
}

void TFormRecipes::WriteIngredientList() {
    QStringList lines;
    for (int i = 0; i < m_listIngredients->count(); ++i)
        lines << m_listIngredients->item(i)->text();
    qm::Dataset& recipes = RecordTable();
    if (!recipes.Edit())
        throw qm::DatasetError(tr("Cannot modify a read-only dataset"));
    recipes.FieldByName(QStringLiteral("recIngreds")).SetAsString(IngredientText(lines));
}

void TFormRecipes::ApplyFreeForm() {
    const bool free = FreeForm();
    m_panelFree->setVisible(free);
    m_panelNotFree->setVisible(!free);
    m_newServings->setVisible(!free);
    m_buttonRecalculate->setVisible(!free);
    m_recalculate->setEnabled(!free);
    // Typed by hand only where nothing calculates them.
    for (QLineEdit* edit : m_nutrients)
        edit->setReadOnly(!free);
}

void TFormRecipes::UpdateCommands() {
    if (!m_addIngred)
        return;
    qm::Dataset& recipes = RecordTable();
    const bool recipe = !IsDataSetEmpty(recipes);
    m_addIngred->setEnabled(recipe);
    m_recalculate->setEnabled(recipe);
    m_export->setEnabled(recipe && bool(ExportRecipes));
    m_sendToMail->setEnabled(recipe && bool(SendRecipe));
    const bool lines = FreeForm() ? !m_listIngredients->selectedItems().isEmpty()
                                  : QueryContents.Active() && !QueryContents.IsEmpty();
    m_editIngred->setEnabled(recipe && lines);
    m_deleteIngred->setEnabled(recipe && lines);
    m_buttonRecalculate->setEnabled(recipe && !m_newServings->text().isEmpty());

    m_pictures->UpdateCommands(recipe);
    const bool clear = m_pictures->ActionSet()->isEnabled() && DataModuleMain &&
                       DataModuleMain->PictureExists(CurrentRecId(), pkRecipe);
    const int tab = m_pictures->currentIndex();
    const int tabs = m_pictures->count();
    m_pictures->ActionClear()->setEnabled(clear);
    m_pictures->ActionView()->setEnabled(clear);
    m_pictures->ActionMoveUp()->setEnabled(clear && tab > 0 && tabs > 1);
    m_pictures->ActionMoveDown()->setEnabled(clear && tab < tabs - 1 && tabs > 1);

    m_import->setEnabled(!ShortcutMode() && CurrentGroupKey() != 0 && bool(ImportRecipes));
    if (m_active && MdiFrame)
        MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonImport"), m_import->isEnabled());
}

// ---------------------------------------------------------------------------------------------
// Commands

void TFormRecipes::RecalculateNutrients() {
    ::RecalculateNutrients(RecordTable());
}

void TFormRecipes::MIRecalculateClick() {
    RunGuarded([this] {
        qm::Dataset& recipes = RecordTable();
        // A view that can't be changed (the root, a saved search) has nothing to recalculate.
        if (IsDataSetEmpty(recipes) || !recipes.Edit())
            return;
        RecalculateNutrients();
    });
}

void TFormRecipes::MIImportClick() {
    if (!m_import->isEnabled() || !ImportRecipes)
        return;
    RunGuarded([this] {
        if (!ImportRecipes(CurrentGroupKey()))
            return;
        RecordTable().Refresh();
        LoadIngredientList();
        UpdateStatus();
    });
}

void TFormRecipes::MIExportClick() {
    if (!ExportRecipes)
        return;
    bool containsLocked = false;
    QString ids;
    GetSelectedIds(Grid(), QStringLiteral("recId"), containsLocked, ids);
    if (ids.isEmpty())
        return;
    if (containsLocked && AskQuestion(GetText(QStringLiteral("QuestionLockedRecipesExport"))) != mrYes)
        return;
    ExportRecipes(ids);
}

void TFormRecipes::MISendToMailClick() {
    if (!SendRecipe || IsDataSetEmpty(RecordTable()))
        return;
    SendRecipe(CurrentRecId());
}

void TFormRecipes::SaveAndReload() {
    qm::Dataset& recipes = RecordTable();
    if (!recipes.Edit())
        throw qm::DatasetError(tr("Cannot modify a read-only dataset"));
    if (!recipes.Post())
        return;
    QueryContents.Close();
    QueryContents.SetParam(QStringLiteral("recId"), CurrentRecId());
    QueryContents.Open();
    UpdateCommands();
}

void TFormRecipes::BitBtnAddIngredClick() {
    if (IsDataSetEmpty(RecordTable()))
        return;
    const int recId = CurrentRecId();
    if (FreeForm()) {
        TFormRecipeAddOrEditIngredientFF dialog(this);
        dialog.ingredient.clear();
        if (ExecModal(dialog) != QDialog::Accepted)
            return;
        m_listIngredients->addItem(dialog.ingredient);
        RunGuarded([this] {
            WriteIngredientList();
            SaveAndReload();
        });
        return;
    }
    TFormRecipeAddOrEditIngredient dialog(this);
    dialog.recId = recId;
    if (ExecModal(dialog) != QDialog::Accepted)
        return;
    RunGuarded([&] {
        AddContentsLine(recId, dialog.ingredId, dialog.amount, dialog.unitId);
        SaveAndReload();
    });
}

void TFormRecipes::BitBtnEditIngredClick() {
    if (IsDataSetEmpty(RecordTable()))
        return;
    if (FreeForm()) {
        QListWidgetItem* item = m_listIngredients->currentItem();
        if (!item || !item->isSelected())
            return;
        TFormRecipeAddOrEditIngredientFF dialog(this);
        dialog.ingredient = item->text();
        if (ExecModal(dialog) != QDialog::Accepted)
            return;
        item->setText(dialog.ingredient);
        RunGuarded([this] { WriteIngredientList(); });
        UpdateCommands();
        return;
    }
    if (!QueryContents.Active() || QueryContents.IsEmpty())
        return;
    const int recId = CurrentRecId();
    TFormRecipeAddOrEditIngredient dialog(this);
    dialog.recId = recId;
    dialog.ingredId = QueryContents.FieldByName(QStringLiteral("ingredId")).AsInteger();
    dialog.ingredTypeId = QueryContents.FieldByName(QStringLiteral("ingredTypeId")).AsInteger();
    dialog.amount = QueryContents.FieldByName(QStringLiteral("amount")).AsFloat();
    dialog.unitId = QueryContents.FieldByName(QStringLiteral("unitId")).AsInteger();
    const int ingredId = dialog.ingredId;
    if (ExecModal(dialog) != QDialog::Accepted)
        return;
    RunGuarded([&] {
        UpdateContentsLine(recId, ingredId, dialog.amount, dialog.unitId);
        SaveAndReload();
    });
}

void TFormRecipes::BitBtnDeleteIngredClick() {
    if (IsDataSetEmpty(RecordTable()))
        return;
    if (FreeForm()) {
        QListWidgetItem* item = m_listIngredients->currentItem();
        if (!item || !item->isSelected())
            return;
        delete item;
        RunGuarded([this] { WriteIngredientList(); });
        UpdateCommands();
        return;
    }
    if (!QueryContents.Active() || QueryContents.IsEmpty())
        return;
    const int recId = CurrentRecId();
    const int ingredId = QueryContents.FieldByName(QStringLiteral("ingredId")).AsInteger();
    RunGuarded([&] {
        DeleteContentsLine(recId, ingredId);
        SaveAndReload();
    });
}

void TFormRecipes::ButtonRecalculateClick() {
    RunGuarded([this] {
        if (QueryContents.Active())
            QueryContents.Refresh();
    });
}

void TFormRecipes::DBCheckBoxFreeFormClick() {
    ApplyFreeForm();
    UpdateCommands();
}

void TFormRecipes::DBGridContentsDblClick() {
    if (!QueryContents.Active() || QueryContents.IsEmpty() || !MdiFrame)
        return;
    const int ingredId = QueryContents.FieldByName(QStringLiteral("ingredId")).AsInteger();
    MdiFrame->Toggle(QStringLiteral("Ingredients"), true);
    if (auto* window = dynamic_cast<TRecordWindow*>(MdiFrame->ChildWindow(QStringLiteral("Ingredients")))) {
        window->LocateRecord(ingredId);
        window->setFocus();
    }
}

void TFormRecipes::DBGridRecipeCategoriesDblClick() {
    if (IsDataSetEmpty(RecordTable()))
        return;
    {
        TFormRecipeCategories dialog(this);
        dialog.recId = CurrentRecId();
        ExecModal(dialog);
    }
    RunGuarded([this] {
        QueryRecipeCategories.Close();
        QueryRecipeCategories.SetParam(QStringLiteral("recId"), CurrentRecId());
        QueryRecipeCategories.Open();
    });
}

void TFormRecipes::MIEditRithRichTextEditorClick() {
    TFormRichTextDBEditor editor(this);
    editor.SetDataSource(&RecordTable());
    editor.SetDataField(QStringLiteral("recPrep"));
    ExecModal(editor);
}

void TFormRecipes::MIClearClick() {
    RunGuarded([this] {
        qm::Dataset& recipes = RecordTable();
        if (!IsDataSetEmpty(recipes) && recipes.Edit())
            recipes.FieldByName(QStringLiteral("recPrep")).Clear();
    });
}

void TFormRecipes::SpeedButtonFindClick() {
    if (MdiFrame)
        MdiFrame->Toggle(QStringLiteral("SearchRecipes"), true);
}

void TFormRecipes::DBEditEnter(int nutrient) {
    if (nutrient < 0 || nutrient >= NutrientCount)
        return;
    RunGuarded([&] {
        QueryBioValues.Close();
        QueryBioValues.SetParam(QStringLiteral("bioValueId"), QString::fromLatin1(BioValueIds[nutrient]));
        QueryBioValues.Open();
    });
}

bool TFormRecipes::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        for (int i = 0; i < NutrientCount; ++i)
            if (watched == m_nutrients[i])
                DBEditEnter(i);
    } else if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (watched == m_contents && key->modifiers() == Qt::NoModifier) {
            if (key->key() == Qt::Key_Insert) {
                if (m_addIngred->isEnabled())
                    BitBtnAddIngredClick();
                return true;
            }
            if (enter) {
                if (m_editIngred->isEnabled())
                    BitBtnEditIngredClick();
                return true;
            }
        } else if (watched == m_listIngredients && enter) {
            if (m_editIngred->isEnabled())
                BitBtnEditIngredClick();
            return true;
        }
    } else if (event->type() == QEvent::MouseButtonDblClick && watched == m_categories->viewport()) {
        DBGridRecipeCategoriesDblClick();
        return true;
    }
    return TRecordWindow::eventFilter(watched, event);
}
