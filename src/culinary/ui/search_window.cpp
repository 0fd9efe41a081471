#include "culinary/ui/search_window.h"

#include "components/dataset_model.h"
#include "components/mdi_frame.h"
#include "components/messages.h"
#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "components/ui/window_placement.h"
#include "store/data_module_main.h"
#include "store/ui/record_window.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QShowEvent>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

struct NutrientLabel {
    const char* column;
    const char* text;
    const char* unit;
};

// In the order the statements write them; the unit is that of a recipe's serving or of 100 g
// of an ingredient, whichever the window compares with.
const NutrientLabel kNutrients[] = {
    {"nutCal", QT_TRANSLATE_NOOP("TSearchWindow", "Calories"), "KCal"},
    {"nutTotalFat", QT_TRANSLATE_NOOP("TSearchWindow", "Total fat"), "g"},
    {"nutCholesterol", QT_TRANSLATE_NOOP("TSearchWindow", "Cholesterol"), "mg"},
    {"nutTotalCarbo", QT_TRANSLATE_NOOP("TSearchWindow", "Carbohydrates"), "g"},
    {"nutProtein", QT_TRANSLATE_NOOP("TSearchWindow", "Protein"), "g"},
    {"nutDietaryFiber", QT_TRANSLATE_NOOP("TSearchWindow", "Dietary fiber"), "g"},
    {"nutSodium", QT_TRANSLATE_NOOP("TSearchWindow", "Sodium"), "mg"},
    {"nutMagnesium", QT_TRANSLATE_NOOP("TSearchWindow", "Magnesium"), "mg"},
    {"nutIron", QT_TRANSLATE_NOOP("TSearchWindow", "Iron"), "mg"},
    {"nutPotassium", QT_TRANSLATE_NOOP("TSearchWindow", "Potassium"), "mg"},
    {"nutCalcium", QT_TRANSLATE_NOOP("TSearchWindow", "Calcium"), "mg"},
    {"nutVitaminA", QT_TRANSLATE_NOOP("TSearchWindow", "Vitamin A"), "IU"},
    {"nutVitaminB6", QT_TRANSLATE_NOOP("TSearchWindow", "Vitamin B6"), "mg"},
    {"nutVitaminB12", QT_TRANSLATE_NOOP("TSearchWindow", "Vitamin B12"), "mcg"},
    {"nutVitaminC", QT_TRANSLATE_NOOP("TSearchWindow", "Vitamin C"), "mg"},
    {"nutVitaminD", QT_TRANSLATE_NOOP("TSearchWindow", "Vitamin D"), "IU"},
    {"nutVitaminE", QT_TRANSLATE_NOOP("TSearchWindow", "Vitamin E"), "mg"},
};

/// "nutTotalFat" -> "TotalFat": the part that names the controls of a nutrient.
QString controlSuffix(const char* column) {
    return QString::fromLatin1(column).mid(3);
}

} // namespace

TSearchWindow::TSearchWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    // A search window left open must not keep the program alive once the frame is gone.
    setAttribute(Qt::WA_QuitOnClose, false);
    m_querySearch.setObjectName(QStringLiteral("QuerySearch"));

    m_panelTop = new QWidget(this);
    m_panelTop->setObjectName(QStringLiteral("PanelTop"));
    m_pageControl = new QTabWidget(m_panelTop);
    m_pageControl->setObjectName(QStringLiteral("PageControl"));
    m_panelButtons = new QWidget(m_panelTop);
    m_panelButtons->setObjectName(QStringLiteral("PanelButtons"));
    m_buttonsLayout = new QVBoxLayout(m_panelButtons);
    m_buttonsLayout->setContentsMargins(0, 0, 0, 0);
    m_buttonsLayout->addStretch(1);
    auto* top = new QHBoxLayout(m_panelTop);
    top->setContentsMargins(0, 0, 0, 0);
    top->addWidget(m_pageControl, 1);
    top->addWidget(m_panelButtons);

    m_gridResults = new TVintraDBGrid(this);
    m_gridResults->setObjectName(QStringLiteral("DBGridResults"));
    m_gridResults->setMinimumHeight(80);
    m_gridResults->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_gridResults->setDragEnabled(false);
    m_gridResults->SetKeyDataset(nullptr);
    m_gridResults->setAlternatingRowColors(true);
    m_gridResults->horizontalHeader()->setStretchLastSection(true);
    m_resultsModel = new qm::DatasetModel(&m_querySearch);
    m_gridResults->SetDatasetModel(m_resultsModel);
    m_grids << m_gridResults;
    m_models << m_resultsModel;
    connect(m_gridResults, &QAbstractItemView::doubleClicked, this, [this] { BitBtnOpenClick(); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_panelTop);
    layout->addWidget(m_gridResults, 1);

    m_bitBtnFind = AddButton("BitBtnFind", tr("&Find"));
    m_bitBtnFind->setDefault(true);
    m_bitBtnOpen = AddButton("BitBtnOpen", tr("&Open"));
    m_bitBtnPrint = AddButton("BitBtnPrint", tr("&Print..."));
    m_bitBtnNewSearch = AddButton("BitBtnNewSearch", tr("&New search"));
    m_bitBtnClose = AddButton("BitBtnClose", tr("&Close"));
    connect(m_bitBtnOpen, &QPushButton::clicked, this, &TSearchWindow::BitBtnOpenClick);
    connect(m_bitBtnPrint, &QPushButton::clicked, this, &TSearchWindow::BitBtnPrintClick);
    connect(m_bitBtnClose, &QPushButton::clicked, this, &QWidget::close);
}

TSearchWindow::~TSearchWindow() {
    DeleteViews();
}

void TSearchWindow::DeleteViews() {
    qDeleteAll(m_grids);
    m_grids.clear();
    qDeleteAll(m_models);
    m_models.clear();
}

QPushButton* TSearchWindow::AddButton(const char* name, const QString& text) {
    auto* button = new QPushButton(text, m_panelButtons);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    // Before the stretch that keeps the column at the top.
    m_buttonsLayout->insertWidget(m_buttonsLayout->count() - 1, button);
    return button;
}

QWidget* TSearchWindow::AddPage(const char* name, const QString& title) {
    auto* page = new QWidget;
    page->setObjectName(QLatin1String(name));
    m_pageControl->addTab(page, title);
    return page;
}

int TSearchWindow::AddNutrientLimits(QGridLayout* grid, int row) {
    constexpr int perColumn = 9;
    int index = 0;
    for (const NutrientLabel& nutrient : kNutrients) {
        const int r = row + index % perColumn;
        const int c = index / perColumn * 5;
        ++index;
        const QString suffix = controlSuffix(nutrient.column);
        auto* op = new QComboBox;
        op->setObjectName(QStringLiteral("ComboBoxOp") + suffix);
        op->addItems({QStringLiteral(">="), QStringLiteral("<=")});
        auto* edit = new QLineEdit;
        edit->setObjectName(QStringLiteral("Edit") + suffix);
        // What the mask lets through: up to four digits.
        edit->setValidator(
            new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\d{0,4}")), edit));
        edit->setMaxLength(4);
        edit->setAlignment(Qt::AlignRight);
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 16);
        auto* label = new QLabel(tr(nutrient.text));
        label->setObjectName(QStringLiteral("Label") + suffix);
        label->setBuddy(edit);
        grid->addWidget(label, r, c);
        grid->addWidget(op, r, c + 1);
        grid->addWidget(edit, r, c + 2);
        auto* unit = new QLabel(QLatin1String(nutrient.unit));
        unit->setObjectName(QStringLiteral("LabelUnit") + suffix);
        grid->addWidget(unit, r, c + 3);
        m_operators.insert(QLatin1String(nutrient.column), op);
        m_limits.insert(QLatin1String(nutrient.column), edit);
    }
    // A gap between the two columns of nutrients.
    grid->setColumnMinimumWidth(4, 24);
    return row + perColumn;
}

QMap<QString, TNutrientLimit> TSearchWindow::NutrientLimits() const {
    QMap<QString, TNutrientLimit> limits;
    for (auto it = m_limits.constBegin(); it != m_limits.constEnd(); ++it) {
        const QString value = it.value()->text().trimmed();
        if (!value.isEmpty())
            limits.insert(it.key(), TNutrientLimit{m_operators.value(it.key())->currentText(), value});
    }
    return limits;
}

void TSearchWindow::ResetNutrientLimits() {
    for (QLineEdit* edit : std::as_const(m_limits))
        edit->clear();
    for (QComboBox* op : std::as_const(m_operators))
        op->setCurrentIndex(0);
}

void TSearchWindow::LoadTree(TVintraDBTreeView* tree, const QString& rootName) {
    tree->SetRootNodeName(rootName);
    tree->Load();
    tree->AlphaSort();
    tree->setCurrentItem(tree->topLevelItem(0));
}

TVintraDBGrid* TSearchWindow::MakeGrid(const char* name, qm::Dataset& dataset, const QStringList& fields,
                                       const QStringList& titles) {
    auto* model = new qm::DatasetModel(&dataset);
    for (qsizetype i = 0; i < fields.size(); ++i)
        model->addColumn(fields.at(i), titles.value(i));
    m_models << model;
    auto* grid = new TVintraDBGrid;
    grid->setObjectName(QLatin1String(name));
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->SetKeyDataset(nullptr);
    grid->horizontalHeader()->setStretchLastSection(true);
    grid->SetDatasetModel(model);
    m_grids << grid;
    return grid;
}

bool TSearchWindow::Guarded(const std::function<void()>& command) {
    return RunGuarded(command);
}

void TSearchWindow::RunSearch(const QStringList& lines) {
    m_querySearch.Close();
    m_querySearch.SetSql(StatementText(lines));
    m_querySearch.SetDatabase(&DataModuleMain->KADaoDatabase);
    Guarded([this] { m_querySearch.Open(); });
    UpdateButtons();
    const QMargins margins = layout()->contentsMargins();
    const int top = m_panelTop->isVisible() ? m_panelTop->height() : m_panelTop->sizeHint().height();
    m_gridResults->show();
    layout()->activate();
    resize(width(), margins.top() + top + layout()->spacing() + ResultsHeight + margins.bottom());
}

void TSearchWindow::ShrinkToCriteria() {
    m_gridResults->hide();
    // The minimum size must drop with the grid before the window can shrink.
    layout()->activate();
    const QMargins margins = layout()->contentsMargins();
    resize(width(), margins.top() + m_panelTop->sizeHint().height() + margins.bottom());
}

void TSearchWindow::UpdateButtons() {
    const bool rows = m_querySearch.Active() && !m_querySearch.IsEmpty();
    m_bitBtnOpen->setEnabled(rows);
    m_bitBtnPrint->setEnabled(rows && CanPrint());
}

void TSearchWindow::BitBtnOpenClick() {
    if (!m_querySearch.Active() || m_querySearch.IsEmpty() || m_querySearch.currentRow() < 0)
        return;
    int id = 0;
    if (!Guarded([&] { id = m_querySearch.FieldByName(ResultKey()).AsInteger(); }))
        return;
    Guarded([&] { OpenRecord(id); });
}

void TSearchWindow::BitBtnPrintClick() {
    bool locked = false;
    QString ids;
    GetSelectedIds(m_gridResults, ResultKey(), locked, ids);
    if (!ids.isEmpty())
        Guarded([&] { PrintRecords(ids); });
}

void TSearchWindow::OpenInFrame(const QString& route, const char* method, int id) {
    if (!MdiFrame)
        return;
    MdiFrame->Toggle(route, true);
    QObject* window = MdiFrame->ChildWindow(route);
    if (!window)
        return;
    QMetaObject::invokeMethod(window, method, Qt::DirectConnection, Q_ARG(int, id));
    if (auto* widget = qobject_cast<QWidget*>(window)) {
        // The frame and, inside it, the record window come to the front.
        QWidget* frame = widget->window();
        frame->raise();
        frame->activateWindow();
        widget->setFocus();
    }
}

void TSearchWindow::showEvent(QShowEvent* event) {
    // A window restored from the task bar is not shown anew; each other show takes the language
    // in force.
    if (!event->spontaneous()) {
        TranslateForm(this);
        Guarded([this] { FormShow(); });
        // Each opening stands over the middle of the main window, at the size the show left.
        CenterOnMainWindow(this);
    }
    QWidget::showEvent(event);
}

void TSearchWindow::closeEvent(QCloseEvent* event) {
    Guarded([this] { FormClose(); });
    event->accept();
}
