#include "shell/ui/outlook_bar.h"

#include <QListWidget>
#include <QStyledItemDelegate>

namespace {

/// Large items: the picture above its caption, both centred in the page's width.
class BarItemDelegate : public QStyledItemDelegate {
public:
    BarItemDelegate(const TOutlookBar* bar, QObject* parent) : QStyledItemDelegate(parent), m_bar(bar) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        if (m_bar->SmallIcons())
            return QStyledItemDelegate::sizeHint(option, index);
        return {std::max(option.rect.width(), 48), 54};
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (!m_bar->SmallIcons()) {
            option->decorationPosition = QStyleOptionViewItem::Top;
            option->displayAlignment = Qt::AlignHCenter | Qt::AlignTop;
        }
    }

private:
    const TOutlookBar* m_bar;
};

} // namespace

TOutlookBar::TOutlookBar(QWidget* parent) : QToolBox(parent) {}

int TOutlookBar::AddPage(const QString& caption) {
    auto* list = new QListWidget(this);
    list->setObjectName(objectName() + QStringLiteral("Page") + QString::number(count()));
    list->setFrameShape(QFrame::NoFrame);
    list->setMovement(QListView::Static);
    list->setWrapping(false);
    list->setWordWrap(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setItemDelegate(new BarItemDelegate(this, list));
    applyIconSize(list);
    connect(list, &QListWidget::itemClicked, this,
            [this, list](QListWidgetItem* item) { emit ItemClick(indexOf(list), list->row(item)); });
    return addItem(list, caption);
}

QListWidget* TOutlookBar::Page(int page) const {
    return qobject_cast<QListWidget*>(widget(page));
}

QListWidgetItem* TOutlookBar::AddItem(int page, const QString& caption, const QIcon& icon) {
    return new QListWidgetItem(icon, caption, Page(page));
}

void TOutlookBar::ClearPage(int page) {
    if (QListWidget* list = Page(page))
        list->clear();
}

int TOutlookBar::ItemCount(int page) const {
    const QListWidget* list = Page(page);
    return list ? list->count() : 0;
}

QListWidgetItem* TOutlookBar::Item(int page, int item) const {
    const QListWidget* list = Page(page);
    return list ? list->item(item) : nullptr;
}

QString TOutlookBar::ItemCaption(int page, int item) const {
    const QListWidgetItem* entry = Item(page, item);
    return entry ? entry->text() : QString();
}

void TOutlookBar::SetItemCaption(int page, int item, const QString& caption) {
    if (QListWidgetItem* entry = Item(page, item))
        entry->setText(caption);
}

void TOutlookBar::SetItemEnabled(int page, int item, bool enabled) {
    if (QListWidgetItem* entry = Item(page, item))
        entry->setFlags(enabled ? entry->flags() | Qt::ItemIsEnabled : entry->flags() & ~Qt::ItemIsEnabled);
}

bool TOutlookBar::ItemEnabled(int page, int item) const {
    const QListWidgetItem* entry = Item(page, item);
    return entry && entry->flags().testFlag(Qt::ItemIsEnabled);
}

void TOutlookBar::SetSmallIcons(bool small) {
    m_small = small;
    for (int page = 0; page < count(); ++page)
        applyIconSize(Page(page));
}

void TOutlookBar::ClickItem(int page, int item) {
    if (ItemEnabled(page, item))
        emit ItemClick(page, item);
}

void TOutlookBar::applyIconSize(QListWidget* list) const {
    list->setViewMode(QListView::ListMode);
    list->setFlow(QListView::TopToBottom);
    list->setIconSize(m_small ? QSize(16, 16) : QSize(32, 32));
    list->setSpacing(m_small ? 2 : 0);
    list->setUniformItemSizes(true);
    list->setMovement(QListView::Static);
    list->setResizeMode(QListView::Adjust);
    list->doItemsLayout();
}
