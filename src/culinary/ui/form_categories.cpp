#include "culinary/ui/form_categories.h"

#include "components/dataset_model.h"
#include "components/messages.h"
#include "components/ui/vintra_db_grid.h"
#include "culinary/category_rules.h"
#include "store/data_module_main.h"
#include "store/ui/record_window.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

TFormCategories::TFormCategories(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FormCategories"));
    setWindowTitle(tr("Categories"));

    TableCategories.setObjectName(QStringLiteral("TableCategories"));
    TableCategories.SetDatabase(DataModuleMain ? &DataModuleMain->KADaoDatabase : nullptr);
    TableCategories.SetTableName(QStringLiteral("Categories"));
    TableCategories.SetKeyFields({QStringLiteral("catId")});
    TableCategories.SetSortedBy(QStringLiteral("[catName] ASC"));
    TableCategories.OnNewRecord = [](qm::Dataset& table) {
        int id = 0;
        if (!RunGuarded([&] { id = DataModuleMain->GetNewId(QStringLiteral("Categories")); }))
            throw Abort();
        table.FieldByName(QStringLiteral("catId")).SetValue(id);
    };
    TableCategories.BeforePost = [](qm::Dataset& table) {
        QString errors;
        CheckCategory(table, errors);
        if (!errors.isEmpty()) {
            ShowError(errors);
            throw Abort();
        }
    };
    TableCategories.BeforeDelete = [](qm::Dataset& table) {
        const int id = table.FieldByName(QStringLiteral("catId")).AsInteger();
        if (!RunGuarded([id] { CategoryBeforeDelete(id); }))
            throw Abort();
    };
    SortInsertedRecords(TableCategories);

    m_model = new qm::DatasetModel(&TableCategories, this);
    m_model->addColumn(QStringLiteral("catName"), tr("Category"));
    m_grid = new TVintraDBGrid(this);
    m_grid->setObjectName(QStringLiteral("DBGridCategories"));
    m_grid->SetDatasetModel(m_model);
    m_grid->setDragEnabled(false);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    m_grid->horizontalHeader()->setStretchLastSection(true);

    m_navigator = new QToolBar(this);
    m_navigator->setObjectName(QStringLiteral("DBNavigatorCategories"));
    m_navigator->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto action = [this](const char* name, const QString& text, QStyle::StandardPixmap icon,
                               auto handler) {
        auto* a = m_navigator->addAction(style()->standardIcon(icon), text);
        a->setObjectName(QLatin1String(name));
        connect(a, &QAction::triggered, this, handler);
        return a;
    };
    m_insert =
        action("ActionInsert", tr("New"), QStyle::SP_FileDialogNewFolder, [this] { InsertCategory(); });
    m_delete = action("ActionDelete", tr("Delete"), QStyle::SP_TrashIcon, [this] { DeleteCategory(); });
    m_post = action("ActionPost", tr("Save"), QStyle::SP_DialogApplyButton, [this] { PostCategory(); });
    m_cancel = action("ActionCancel", tr("Cancel edit"), QStyle::SP_DialogCancelButton,
                      [this] { CancelCategory(); });

    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("BitBtnOk"));
    close->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_navigator);
    layout->addWidget(m_grid, 1);
    layout->addLayout(buttons);
    resize(380, 420);

    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    connect(&TableCategories, &qm::Dataset::stateChanged, this, [this] { UpdateNavigator(); });
    connect(&TableCategories, &qm::Dataset::currentChanged, this, [this] { UpdateNavigator(); });
    UpdateNavigator();
}

TFormCategories::~TFormCategories() {
    delete m_grid;
    delete m_model;
}

void TFormCategories::showEvent(QShowEvent* event) {
    if (!m_shown) {
        m_shown = true;
        TranslateForm(this);
        RunGuarded([this] { TableCategories.Open(); });
        UpdateNavigator();
    }
    QDialog::showEvent(event);
}

void TFormCategories::UpdateNavigator() {
    const bool active = TableCategories.Active();
    const bool editing = TableCategories.State() == qm::dsEdit || TableCategories.State() == qm::dsInsert;
    m_insert->setEnabled(active);
    m_delete->setEnabled(active && !TableCategories.IsEmpty());
    m_post->setEnabled(editing);
    m_cancel->setEnabled(editing);
}

void TFormCategories::InsertCategory() {
    RunGuarded([this] {
        if (TableCategories.Insert()) {
            const QModelIndex cell = m_grid->model()->index(TableCategories.currentRow(), 0);
            m_grid->setCurrentIndex(cell);
            m_grid->edit(cell);
        }
    });
}

void TFormCategories::DeleteCategory() {
    RunGuarded([this] {
        if (!TableCategories.IsEmpty())
            TableCategories.Delete();
    });
    UpdateNavigator();
}

void TFormCategories::PostCategory() {
    // A name typed into the cell goes to the record first; the check then sees it.
    if (!m_grid->CommitEdit())
        return;
    RunGuarded([this] { TableCategories.Post(); });
}

void TFormCategories::CancelCategory() {
    TableCategories.Cancel();
}

void TFormCategories::done(int result) {
    // Close keeps what was typed; Escape drops it.
    if (TableCategories.Active() && result == QDialog::Accepted) {
        bool posted = false;
        if (m_grid->CommitEdit())
            RunGuarded([&] { posted = TableCategories.Post(); });
        if (!posted)
            return;
    }
    TableCategories.Close();
    QDialog::done(result);
}
