#include "shell/ui/widget_translation.h"

#include "components/dataset_model.h"
#include "components/vintra_translator.h"

#include <QAbstractItemView>
#include <QAbstractProxyModel>
#include <QTabWidget>
#include <QTableWidget>
#include <QToolBox>
#include <QTreeWidget>

namespace {

QString columnKey(TVintraTranslator& translator, const QObject* view, int column) {
    return translator.Key(view) + QStringLiteral(".Column") + QString::number(column);
}

QString pageText(TVintraTranslator& translator, QWidget* page, const QString& current) {
    const QString english = TVintraTranslator::English(page, "pageText", current);
    return translator.Text(translator.Key(page), english);
}

void translateTabs(QObject* object, TVintraTranslator& translator) {
    auto* tabs = static_cast<QTabWidget*>(object);
    for (int i = 0; i < tabs->count(); ++i) {
        QWidget* page = tabs->widget(i);
        if (!page->objectName().isEmpty())
            tabs->setTabText(i, pageText(translator, page, tabs->tabText(i)));
    }
}

void translateToolBox(QObject* object, TVintraTranslator& translator) {
    auto* box = static_cast<QToolBox*>(object);
    for (int i = 0; i < box->count(); ++i) {
        QWidget* page = box->widget(i);
        if (!page->objectName().isEmpty())
            box->setItemText(i, pageText(translator, page, box->itemText(i)));
    }
}

void translateTreeColumns(QObject* object, TVintraTranslator& translator) {
    QTreeWidgetItem* header = static_cast<QTreeWidget*>(object)->headerItem();
    for (int i = 0; header && i < header->columnCount(); ++i) {
        const QString english =
            TVintraTranslator::English(object, "column" + QByteArray::number(i), header->text(i));
        header->setText(i, translator.Text(columnKey(translator, object, i), english));
    }
}

void translateTableColumns(QObject* object, TVintraTranslator& translator) {
    auto* table = static_cast<QTableWidget*>(object);
    for (int i = 0; i < table->columnCount(); ++i) {
        QTableWidgetItem* item = table->horizontalHeaderItem(i);
        if (!item)
            continue;
        const QString english =
            TVintraTranslator::English(object, "column" + QByteArray::number(i), item->text());
        item->setText(translator.Text(columnKey(translator, object, i), english));
    }
}

void translateModelColumns(QObject* object, TVintraTranslator& translator) {
    QAbstractItemModel* model = static_cast<QAbstractItemView*>(object)->model();
    if (!model)
        return;
    for (int i = 0; i < model->columnCount(); ++i) {
        const QString english = TVintraTranslator::English(object, "column" + QByteArray::number(i),
                                                           model->headerData(i, Qt::Horizontal).toString());
        model->setHeaderData(i, Qt::Horizontal, translator.Text(columnKey(translator, object, i), english));
    }
}

} // namespace

void RegisterWidgetTranslation() {
    static bool registered = false;
    if (registered)
        return;
    registered = true;
    TVintraTranslator::RegisterClassHandler("QTabWidget", translateTabs);
    TVintraTranslator::RegisterClassHandler("QToolBox", translateToolBox);
    TVintraTranslator::RegisterClassHandler("QTreeWidget", translateTreeColumns);
    TVintraTranslator::RegisterClassHandler("QTableWidget", translateTableColumns);
    // Lists have no column titles.
    TVintraTranslator::RegisterClassHandler("QListView", [](QObject*, TVintraTranslator&) {});
    TVintraTranslator::RegisterClassHandler("QTableView", translateModelColumns);
    TVintraTranslator::RegisterClassHandler("QTreeView", translateModelColumns);
}

qm::Dataset* DatasetOfView(const QAbstractItemView* view) {
    QAbstractItemModel* model = view ? view->model() : nullptr;
    while (model) {
        if (auto* datasetModel = qobject_cast<qm::DatasetModel*>(model))
            return datasetModel->dataset();
        auto* proxy = qobject_cast<QAbstractProxyModel*>(model);
        model = proxy ? proxy->sourceModel() : nullptr;
    }
    return nullptr;
}
