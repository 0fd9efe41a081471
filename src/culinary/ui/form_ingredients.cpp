#include "culinary/ui/form_ingredients.h"

#include "components/decimal_text.h"
#include "components/messages.h"
#include "components/ui/db_field_binder.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "culinary/ingredient_records.h"
#include "culinary/price_list_import.h"
#include "store/data_module_main.h"
#include "store/record_kinds.h"
#include "store/resource_holder.h"
#include "store/ui/picture_pages.h"

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QTabWidget>
#include <QTextBrowser>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

std::function<void(const QString&, bool)> TFormIngredients::PrintIngredients;

namespace {

const QString kIngredId = QStringLiteral("ingredId");
const QString kUnitId = QStringLiteral("unitId");

QLabel* labelFor(QWidget* parent, const char* name, const QString& text, QWidget* buddy) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setBuddy(buddy);
    return label;
}

/// A read-only grid over a query: single selection, no dragging, no Insert and Delete keys.
TVintraDBGrid* listGrid(QWidget* parent, const char* name, qm::DatasetModel* model) {
    auto* grid = new TVintraDBGrid(parent);
    grid->setObjectName(QString::fromLatin1(name));
    grid->SetDatasetModel(model);
    grid->SetKeyDataset(nullptr);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setDragEnabled(false);
    grid->horizontalHeader()->setStretchLastSection(true);
    return grid;
}

} // namespace

TFormIngredients::TFormIngredients(QWidget* parent) : TRecordWindow(RecordKinds::Ingredients(), parent) {
    setObjectName(QStringLiteral("FormIngredients"));
    setWindowTitle(tr("Ingredients"));
    Tag = PrintIngredients ? 1 : 0; // printable once a report is wired to it
    setMinimumSize(660, 480);
    RecordTable().setObjectName(QStringLiteral("TableIngredients"));
    GroupTable().setObjectName(QStringLiteral("TableIngredientTypes"));

    // The base unit choice and the two lists of the measurements page follow the ingredient.
    qm::Database* database = DataModuleMain ? &DataModuleMain->KADaoDatabase : nullptr;
    const auto query = [&](qm::Dataset& dataset, const char* name, const char* sql, bool detail) {
        dataset.setObjectName(QString::fromLatin1(name));
        dataset.SetDatabase(database);
        dataset.SetSql(QString::fromLatin1(sql));
        if (detail)
            dataset.SetMasterSource(&RecordTable());
    };
    query(m_unitsLookup, "QueryUnitsLookup", IngredientSql::UnitsLookup, true);
    query(m_unitsOut, "QueryUnitsOut", IngredientSql::UnitsOut, true);
    query(m_unitsIn, "QueryUnitsIn", IngredientSql::UnitsIn, true);
    query(m_bioValues, "QueryBioValues", IngredientSql::BioValues, false);
    connect(&m_unitsLookup, &qm::Dataset::reset, this, &TFormIngredients::RefillUnitsLookup);
    m_unitsIn.AfterScroll = [this](qm::Dataset& unitsIn) {
        if (!IsDataSetEmpty(unitsIn))
            m_editConversion->setText(
                qm::DecimalText(unitsIn.FieldByName(QStringLiteral("grams")).AsFloat()));
    };

    TreeView()->setObjectName(QStringLiteral("TreeViewIngredientTypes"));
    Grid()->setObjectName(QStringLiteral("DBGridIngredients"));
    RecordModel()->addColumn(QStringLiteral("ingredName"), tr("Ingredient"));
    RecordModel()->addColumn(QStringLiteral("ingredPrice"), tr("Price"));
    Grid()->SetNameColumn(QStringLiteral("ingredName"),
                          qm::DefaultColumnWidth(Kind().columns, QStringLiteral("ingredName")));

    m_importPriceList = new QAction(tr("Import price list..."), this);
    m_importPriceList->setObjectName(QStringLiteral("MIImportPriceList"));
    connect(m_importPriceList, &QAction::triggered, this, &TFormIngredients::MIImportPriceListClick);
    Grid()->addAction(m_importPriceList);
    Grid()->setContextMenuPolicy(Qt::ActionsContextMenu);
    OpenDialogPriceList = [this] {
        return QFileDialog::getOpenFileName(this, tr("Import price list"), QString(),
                                            tr("QM ingredients price list file (*.xml)"));
    };

    // Below the tree: the ingredient search window.
    auto* find = new QPushButton(tr("Find ingredient..."), GroupPanel());
    find->setObjectName(QStringLiteral("SpeedButtonFind"));
    connect(find, &QPushButton::clicked, this, &TFormIngredients::SpeedButtonFindClick);
    GroupPanel()->layout()->addWidget(find);

    m_binder = new TDBFieldBinder(&RecordTable(), this);
    m_pages = new QTabWidget(DetailPanel());
    m_pages->setObjectName(QStringLiteral("PageControlIngredient"));
    m_pages->addTab(BuildMainPage(), tr("Main"));
    m_pages->addTab(BuildConversionsPage(), tr("Measurements"));
    m_pages->addTab(BuildValuesPage(), tr("Nutrition facts"));
    auto* detail = new QVBoxLayout(DetailPanel());
    detail->setContentsMargins(0, 4, 0, 0);
    detail->addWidget(m_pages);
    SetNameEdit(m_name);
    ShowCurrency();
}

TFormIngredients::~TFormIngredients() {
    // The lists go before the queries they show.
    delete m_gridUnitsOut;
    delete m_gridUnitsIn;
    delete m_unitsOutModel;
    delete m_unitsInModel;
}

QWidget* TFormIngredients::BuildMainPage() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetMain"));
    m_name = new QLineEdit(page);
    m_name->setObjectName(QStringLiteral("DBEditIngredientName"));
    m_name->setMaxLength(128);
    m_baseUnit = new QComboBox(page);
    m_baseUnit->setObjectName(QStringLiteral("DBLookupComboBoxUnit"));
    m_baseUnit->setMaximumWidth(260);
    m_baseUnit->setToolTip(
        tr("Base unit: any unit of weight, or a unit of volume with grams for this ingredient"));
    m_price = new QLineEdit(page);
    m_price->setObjectName(QStringLiteral("DBEditPrice"));
    m_price->setToolTip(tr("Price of one base unit"));
    m_price->setMaximumWidth(90);
    m_currency = new QLabel(page);
    m_currency->setObjectName(QStringLiteral("LabelCurrency"));
    m_currency->setProperty("vintraSkip", true); // the currency of the options
    m_desc = new QPlainTextEdit(page);
    m_desc->setObjectName(QStringLiteral("DBMemoIngredDesc"));

    m_binder->Bind(m_name, QStringLiteral("ingredName"));
    m_binder->BindLookup(m_baseUnit, kUnitId);
    m_binder->Bind(m_price, QStringLiteral("ingredPrice"), TDBFieldBinder::Float);
    m_binder->Bind(m_desc, QStringLiteral("ingredDesc"));

    m_pictures = new TPicturePages(pkIngredient, QStringLiteral("VintraPicHolderIngredient"),
                                   QStringLiteral("PopupMenuIngredientImage"), page);
    m_pictures->setMinimumWidth(140);
    connect(m_pictures, &TPicturePages::PicturesChanged, this, [this] { UpdateCommands(); });
    connect(m_pictures, &TPicturePages::PictureAdded, this, [this] { UpdateGroupCommands(); });

    // Compact enough for the default bottom panel: name, then unit and price on one row, then the
    // description taking what is left; the pictures beside them.
    auto* unitRow = new QHBoxLayout;
    unitRow->addWidget(m_baseUnit, 1);
    unitRow->addSpacing(8);
    unitRow->addWidget(labelFor(page, "LabelPrice", tr("&Price:"), m_price));
    unitRow->addWidget(m_price);
    unitRow->addWidget(m_currency);
    unitRow->addStretch(1);

    auto* layout = new QGridLayout(page);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setVerticalSpacing(4);
    layout->addWidget(labelFor(page, "LabelIngredientName", tr("&Name:"), m_name), 0, 0);
    layout->addWidget(m_name, 0, 1);
    layout->addWidget(labelFor(page, "LabelBaseUnit", tr("&Base unit:"), m_baseUnit), 1, 0);
    layout->addLayout(unitRow, 1, 1);
    layout->addWidget(labelFor(page, "LabelDescription", tr("&Description:"), m_desc), 2, 0,
                      Qt::AlignTop | Qt::AlignLeft);
    layout->addWidget(m_desc, 2, 1);
    layout->addWidget(m_pictures, 0, 2, 3, 1);
    layout->setColumnStretch(1, 3);
    layout->setColumnStretch(2, 1);
    layout->setRowStretch(2, 1);
    return page;
}

QWidget* TFormIngredients::BuildConversionsPage() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetConversions"));
    m_unitsOutModel = new qm::DatasetModel(&m_unitsOut, this);
    m_unitsOutModel->addColumn(QStringLiteral("availableUnitName"), tr("Units of volume"));
    m_unitsInModel = new qm::DatasetModel(&m_unitsIn, this);
    m_unitsInModel->addColumn(QStringLiteral("attachedUnitName"), tr("Attached units"));
    m_unitsInModel->addColumn(QStringLiteral("grams"), tr("Grams"));
    m_gridUnitsOut = listGrid(page, "DBGridUnitsOut", m_unitsOutModel);
    m_gridUnitsIn = listGrid(page, "DBGridUnitsIn", m_unitsInModel);
    m_gridUnitsIn->horizontalHeader()->setStretchLastSection(false);
    m_gridUnitsIn->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    // Grams take what their numbers need, so the names never push the list sideways.
    m_gridUnitsIn->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_gridUnitsIn->horizontalHeader()->setMinimumSectionSize(40);
    m_gridUnitsOut->installEventFilter(this);
    m_gridUnitsIn->installEventFilter(this);
    connect(m_gridUnitsOut, &QAbstractItemView::doubleClicked, this,
            &TFormIngredients::SpeedButtonAddUnitClick);
    connect(m_gridUnitsIn, &QAbstractItemView::doubleClicked, this,
            &TFormIngredients::SpeedButtonRemoveUnitClick);

    m_editConversion = new QLineEdit(page);
    m_editConversion->setObjectName(QStringLiteral("EditConversion"));
    m_editConversion->setToolTip(tr("Grams of one unit of this ingredient"));
    m_editConversion->setMaximumWidth(100);
    connect(m_editConversion, &QLineEdit::textChanged, this, [this] { UpdateCommands(); });
    m_addUnit = new QToolButton(page);
    m_addUnit->setObjectName(QStringLiteral("SpeedButtonAddUnit"));
    m_addUnit->setText(tr("Add >"));
    m_addUnit->setToolTip(tr("Give the ingredient the grams of the chosen unit"));
    m_removeUnit = new QToolButton(page);
    m_removeUnit->setObjectName(QStringLiteral("SpeedButtonRemoveUnit"));
    m_removeUnit->setText(tr("< Remove"));
    m_removeUnit->setToolTip(tr("Remove the unit from the ingredient"));
    m_updateUnit = new QPushButton(tr("&Update"), page);
    m_updateUnit->setObjectName(QStringLiteral("BitBtnUpdateUnit"));
    m_updateUnit->setToolTip(tr("Store the grams for the chosen unit of the ingredient"));
    for (QAbstractButton* button :
         {static_cast<QAbstractButton*>(m_addUnit), static_cast<QAbstractButton*>(m_removeUnit),
          static_cast<QAbstractButton*>(m_updateUnit)})
        button->setMinimumWidth(100);
    connect(m_addUnit, &QToolButton::clicked, this, &TFormIngredients::SpeedButtonAddUnitClick);
    connect(m_removeUnit, &QToolButton::clicked, this, &TFormIngredients::SpeedButtonRemoveUnitClick);
    connect(m_updateUnit, &QPushButton::clicked, this, &TFormIngredients::BitBtnUpdateUnitClick);

    auto* middle = new QVBoxLayout;
    middle->addWidget(labelFor(page, "LabelConversion", tr("&Grams:"), m_editConversion));
    middle->addWidget(m_editConversion);
    middle->addSpacing(6);
    middle->addWidget(m_addUnit);
    middle->addWidget(m_removeUnit);
    middle->addWidget(m_updateUnit);
    middle->addStretch(1);

    auto* layout = new QHBoxLayout(page);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(m_gridUnitsOut, 2);
    layout->addLayout(middle);
    layout->addWidget(m_gridUnitsIn, 3);
    return page;
}

QWidget* TFormIngredients::BuildValuesPage() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("TabSheetValues"));
    auto* boxes = new QWidget;
    m_nutrientGrid = new QGridLayout(boxes);
    m_nutrientGrid->setContentsMargins(4, 4, 4, 4);
    m_nutrientGrid->setVerticalSpacing(2);
    for (const IngredientRecords::NutrientField& field : IngredientRecords::NutrientFields) {
        const QString key = QString::fromLatin1(field.bioValueId);
        auto* edit = new QLineEdit(boxes);
        edit->setObjectName(QStringLiteral("DBEdit") + key);
        edit->setToolTip(IngredientRecords::NutrientHint(field));
        edit->setFixedWidth(72);
        edit->installEventFilter(this);
        m_nutrientKeys.insert(edit, key);
        m_binder->Bind(edit, QString::fromLatin1(field.column), TDBFieldBinder::Float);
        QLabel* label = labelFor(boxes, "", QString::fromLatin1(field.label) + QLatin1Char(':'), edit);
        label->setObjectName(QStringLiteral("Label") + key);
        auto* unit = new QLabel(QString::fromLatin1(field.unit), boxes);
        unit->setObjectName(QStringLiteral("LabelUnit") + key);
        m_nutrientBoxes << QList<QWidget*>{label, edit, unit};
    }
    LayoutNutrients(1);
    m_nutrientColumnWidth = boxes->minimumSizeHint().width();
    auto* scroll = new QScrollArea(page);
    scroll->setObjectName(QStringLiteral("ScrollBoxValues"));
    scroll->setWidget(boxes);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // As many columns of boxes as the width holds, in the order of the nutrients.
    scroll->viewport()->installEventFilter(this);
    m_nutrientViewport = scroll->viewport();
    scroll->setMinimumWidth(m_nutrientColumnWidth + scroll->verticalScrollBar()->sizeHint().width());

    m_bioValueNote = new QTextBrowser(page);
    m_bioValueNote->setObjectName(QStringLiteral("DBRichEditBioValueNote"));
    m_bioValueNote->setOpenLinks(false);
    m_bioValueNote->setMinimumWidth(120);

    auto* split = new QSplitter(Qt::Horizontal, page);
    split->setObjectName(QStringLiteral("SplitterValues"));
    split->addWidget(scroll);
    split->addWidget(m_bioValueNote);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    split->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(split);
    return page;
}

void TFormIngredients::LayoutNutrients(int columns) {
    m_nutrientColumns = columns;
    for (const QList<QWidget*>& box : std::as_const(m_nutrientBoxes))
        for (QWidget* widget : box)
            m_nutrientGrid->removeWidget(widget);
    const int rows = (int(m_nutrientBoxes.size()) + columns - 1) / columns;
    for (int i = 0; i < m_nutrientBoxes.size(); ++i)
        for (int part = 0; part < 3; ++part)
            m_nutrientGrid->addWidget(m_nutrientBoxes.at(i).at(part), i % rows, (i / rows) * 4 + part);
    for (int c = 0; c < 3; ++c)
        m_nutrientGrid->setColumnMinimumWidth(c * 4 + 3, c + 1 < columns ? 16 : 0);
    m_nutrientGrid->setRowStretch(rows, 1);
}

// ---------------------------------------------------------------------------------------------
// The frame's side

void TFormIngredients::ShowCurrency() {
    m_currency->setText(FormResourceHolder
                            ? FormResourceHolder->VintraOptions.GetAsString(QStringLiteral("Currency"))
                            : QString());
}

void TFormIngredients::FormActivate() {
    ShowCurrency();
    TRecordWindow::FormActivate();
    if (MdiFrame)
        MdiFrame->SetCommandEnabled(QStringLiteral("ToolButtonImportIngredientsPriceList"), true);
}

void TFormIngredients::Release() {
    m_bioValues.Close();
    m_unitsIn.Close();
    m_unitsOut.Close();
    m_unitsLookup.Close();
    TRecordWindow::Release();
}

void TFormIngredients::Print() {
    bool containsLocked = false;
    QString ids;
    GetSelectedIds(Grid(), kIngredId, containsLocked, ids);
    if (PrintIngredients)
        PrintIngredients(ids, containsLocked);
}

bool TFormIngredients::SelectIngredient(int id) {
    return LocateRecord(id);
}

// ---------------------------------------------------------------------------------------------
// Record hooks

void TFormIngredients::CheckRecord(qm::Dataset& table, QString& errors) {
    IngredientRecords::CheckIngredient(table, errors);
}

void TFormIngredients::RecordDeleting(int id) {
    IngredientRecords::DeletePictureFiles(id);
}

int TFormIngredients::CurrentIngredientId() {
    qm::Dataset& table = RecordTable();
    if (!table.Active() || IsDataSetEmpty(table))
        return 0;
    return table.FieldByName(kIngredId).AsInteger();
}

void TFormIngredients::RecordAfterScroll() {
    qm::Dataset& table = RecordTable();
    m_unitsLookup.Close();
    m_unitsOut.Close();
    m_unitsIn.Close();
    if (table.Active() && (!IsDataSetEmpty(table) || table.State() == qm::dsInsert)) {
        m_unitsLookup.Open();
        m_unitsOut.Open();
        m_unitsIn.Open();
    }
    // The old single picture <id>.jpg would show first; the tabs put the numbered ones over it.
    m_pictures->SetRecord(CurrentIngredientId());
}

void TFormIngredients::UpdateCommands() {
    const bool attached = !IsDataSetEmpty(m_unitsIn);
    m_removeUnit->setEnabled(attached);
    m_addUnit->setEnabled(!IsDataSetEmpty(m_unitsOut));
    m_updateUnit->setEnabled(attached && !m_editConversion->text().isEmpty());
    m_pictures->UpdateCommands(!IsDataSetEmpty(RecordTable()));
    ApplyTypeCommands();
}

void TFormIngredients::UpdateGroupCommands() {
    TRecordWindow::UpdateGroupCommands();
    ApplyTypeCommands();
}

void TFormIngredients::ApplyTypeCommands() {
    // A child type and a delete need a type: on the root both are off. A sibling of the root is a
    // top-level type, so that an empty tree can still get its first one.
    const bool type = TreeView()->GetCurrentKey() != 0;
    ActionAddSiblingGroup()->setEnabled(true);
    ActionAddChildGroup()->setEnabled(type);
    ActionDeleteGroup()->setEnabled(type);
}

// ---------------------------------------------------------------------------------------------
// Base unit and measurements

void TFormIngredients::RefillUnitsLookup() {
    const QSignalBlocker quiet(m_baseUnit);
    m_baseUnit->clear();
    for (int row = 0; row < m_unitsLookup.RecordCount(); ++row)
        m_baseUnit->addItem(
            m_unitsLookup.value(row, m_unitsLookup.fieldIndex(QStringLiteral("unitName"))).toString(),
            m_unitsLookup.value(row, m_unitsLookup.fieldIndex(kUnitId)).toInt());
    // A base unit that the list doesn't hold (a unit of volume without grams) shows empty.
    const QVariant unit = RecordTable().Active() && RecordTable().fieldIndex(kUnitId) >= 0
                              ? RecordTable().FieldByName(kUnitId).Value()
                              : QVariant();
    m_baseUnit->setCurrentIndex(unit.isNull() ? -1 : m_baseUnit->findData(unit.toInt()));
}

void TFormIngredients::ReopenUnitLists(bool both) {
    if (both) {
        m_unitsOut.Close();
        m_unitsOut.Open();
    }
    m_unitsIn.Close();
    m_unitsIn.Open();
}

void TFormIngredients::SpeedButtonAddUnitClick() {
    double grams = 0;
    // Not a number: the command stops without a word.
    if (!IngredientRecords::ReadGrams(m_editConversion->text(), grams))
        return;
    const int ingredId = CurrentIngredientId();
    if (ingredId == 0 || IsDataSetEmpty(m_unitsOut))
        return;
    Guarded([&] {
        IngredientRecords::AddConversion(DataModuleMain->KADaoDatabase,
                                         m_unitsOut.FieldByName(kUnitId).AsInteger(), ingredId, grams);
        ReopenUnitLists(true);
    });
    UpdateCommands();
}

void TFormIngredients::SpeedButtonRemoveUnitClick() {
    const int ingredId = CurrentIngredientId();
    if (ingredId == 0 || IsDataSetEmpty(m_unitsIn))
        return;
    Guarded([&] {
        IngredientRecords::RemoveConversion(DataModuleMain->KADaoDatabase,
                                            m_unitsIn.FieldByName(kUnitId).AsInteger(), ingredId);
        ReopenUnitLists(true);
    });
    UpdateCommands();
}

void TFormIngredients::BitBtnUpdateUnitClick() {
    double grams = 0;
    if (!IngredientRecords::ReadGrams(m_editConversion->text(), grams)) {
        // The key says integer; the value is a float and may be zero or negative.
        ShowError(GetText(QStringLiteral("ErrorGramsMustBePositiveInteger"), QString()));
        return;
    }
    const int ingredId = CurrentIngredientId();
    if (ingredId == 0 || IsDataSetEmpty(m_unitsIn))
        return;
    Guarded([&] {
        IngredientRecords::UpdateConversion(DataModuleMain->KADaoDatabase,
                                            m_unitsIn.FieldByName(kUnitId).AsInteger(), ingredId, grams);
        ReopenUnitLists(false);
    });
    UpdateCommands();
}

void TFormIngredients::SpeedButtonFindClick() {
    if (MdiFrame)
        MdiFrame->Toggle(QStringLiteral("SearchIngredients"), true);
}

// ---------------------------------------------------------------------------------------------
// Nutrient note, list keys

void TFormIngredients::ShowBioValue(const QString& bioValueId) {
    Guarded([&] {
        m_bioValues.Close();
        m_bioValues.SetParam(QStringLiteral("bioValueId"), bioValueId);
        m_bioValues.Open();
        const QString text = IsDataSetEmpty(m_bioValues)
                                 ? QString()
                                 : m_bioValues.FieldByName(QStringLiteral("bioValueDesc")).AsString();
        m_bioValueNote->setHtml(text);
    });
}

bool TFormIngredients::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_nutrientViewport && event->type() == QEvent::Resize) {
        const int width = static_cast<QResizeEvent*>(event)->size().width();
        const int columns = std::clamp((width + 16) / (m_nutrientColumnWidth + 16), 1, 3);
        if (columns != m_nutrientColumns)
            LayoutNutrients(columns);
    } else if (event->type() == QEvent::FocusIn) {
        const auto key = m_nutrientKeys.constFind(watched);
        if (key != m_nutrientKeys.constEnd())
            ShowBioValue(*key);
    } else if (event->type() == QEvent::KeyPress && (watched == m_gridUnitsOut || watched == m_gridUnitsIn)) {
        // The keys of the two lists run the commands their double clicks run.
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
        if (watched == m_gridUnitsOut && (enter || key == Qt::Key_Insert)) {
            SpeedButtonAddUnitClick();
            return true;
        }
        if (watched == m_gridUnitsIn && (enter || key == Qt::Key_Delete)) {
            SpeedButtonRemoveUnitClick();
            return true;
        }
    }
    return TRecordWindow::eventFilter(watched, event);
}

// ---------------------------------------------------------------------------------------------
// Price list

void TFormIngredients::MIImportPriceListClick() {
    const QString file = OpenDialogPriceList ? OpenDialogPriceList() : QString();
    if (file.isEmpty())
        return;
    // No message follows, and the grid shows the old prices until the table is next opened.
    Guarded([&] { ImportPriceList(DataModuleMain->KADaoDatabase, file); });
}
