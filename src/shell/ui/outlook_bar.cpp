#include "shell/ui/outlook_bar.h"

#include <QApplication>
#include <QListWidget>
#include <QPainter>
#include <QStyleOptionToolBox>
#include <QStyledItemDelegate>
#include <QTextLayout>
#include <cmath>

namespace {

constexpr int largeIcon = 32;
constexpr int captionLines = 2;
constexpr int itemMargin = 4;

/// An item whose tool tip is always its whole caption, also after an in-place rename.
class BarItem : public QListWidgetItem {
public:
    BarItem(const QIcon& icon, const QString& caption, QListWidget* list)
        : QListWidgetItem(icon, caption, list) {}
    QVariant data(int role) const override {
        if (role == Qt::ToolTipRole)
            return QListWidgetItem::data(Qt::DisplayRole);
        return QListWidgetItem::data(role);
    }
};

/// Large items: the picture above a caption of at most two lines, both centred in the page's
/// width; what doesn't fit in two lines is cut with an ellipsis.
class BarItemDelegate : public QStyledItemDelegate {
public:
    BarItemDelegate(const TOutlookBar* bar, QObject* parent) : QStyledItemDelegate(parent), m_bar(bar) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        if (m_bar->SmallIcons())
            return QStyledItemDelegate::sizeHint(option, index);
        const int height =
            itemMargin + largeIcon + 2 + captionLines * QFontMetrics(option.font).lineSpacing() + itemMargin;
        return {std::max(option.rect.width(), 48), height};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        if (m_bar->SmallIcons()) {
            QStyledItemDelegate::paint(painter, option, index);
            return;
        }
        QStyleOptionViewItem opt = option;
        initStyleOption(&opt, index);
        const QWidget* widget = opt.widget;
        QStyle* style = widget ? widget->style() : QApplication::style();
        style->drawPrimitive(QStyle::PE_PanelItemViewItem, &opt, painter, widget);

        const bool enabled = opt.state.testFlag(QStyle::State_Enabled);
        const bool selected = opt.state.testFlag(QStyle::State_Selected);
        const QRect iconRect(opt.rect.center().x() - largeIcon / 2, opt.rect.top() + itemMargin, largeIcon,
                             largeIcon);
        opt.icon.paint(painter, iconRect, Qt::AlignCenter,
                       !enabled   ? QIcon::Disabled
                       : selected ? QIcon::Selected
                                  : QIcon::Normal);

        const QRect textRect(opt.rect.left() + itemMargin, iconRect.bottom() + 3,
                             opt.rect.width() - 2 * itemMargin, opt.rect.bottom() - iconRect.bottom() - 3);
        const QPalette::ColorGroup group = enabled ? QPalette::Normal : QPalette::Disabled;
        painter->save();
        painter->setFont(opt.font);
        painter->setPen(opt.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
        const QFontMetrics metrics(opt.font);
        int y = textRect.top();
        for (const QString& line :
             TOutlookBar::CaptionLines(opt.text, opt.font, textRect.width(), captionLines)) {
            painter->drawText(QRect(textRect.left(), y, textRect.width(), metrics.lineSpacing()),
                              Qt::AlignHCenter | Qt::AlignTop, line);
            y += metrics.lineSpacing();
        }
        painter->restore();
    }

    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override {
        if (m_bar->SmallIcons()) {
            QStyledItemDelegate::updateEditorGeometry(editor, option, index);
            return;
        }
        // The editor takes the caption's place under the picture.
        const int top = option.rect.top() + itemMargin + largeIcon + 2;
        editor->setGeometry(option.rect.left() + 1, top, option.rect.width() - 2,
                            editor->sizeHint().height());
    }

private:
    const TOutlookBar* m_bar;
};

} // namespace

QStringList TOutlookBar::CaptionLines(const QString& caption, const QFont& font, int width, int maxLines) {
    QStringList lines;
    if (caption.isEmpty() || width <= 0 || maxLines <= 0)
        return lines;
    const QFontMetrics metrics(font);
    QTextLayout layout(caption, font);
    QTextOption textOption(Qt::AlignHCenter);
    textOption.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(textOption);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() == maxLines - 1) {
            // The last line takes the rest of the caption, cut to fit.
            lines << metrics.elidedText(caption.mid(line.textStart()).simplified(), Qt::ElideRight, width);
            break;
        }
        lines << caption.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    return lines;
}

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
    return new BarItem(icon, caption, Page(page));
}

int TOutlookBar::PageLabelMargin() const {
    // What the style keeps of a page button for the tab's shape, plus the label's own margins
    // (4 and 8 pixels in the common style).
    QStyleOptionToolBox option;
    option.initFrom(this);
    option.rect = QRect(0, 0, 1000, 24);
    return option.rect.width() -
           style()->subElementRect(QStyle::SE_ToolBoxTabContents, &option, this).width() + 12;
}

void TOutlookBar::FitPageCaptions() {
    // The bar is made wide enough for the widest caption, so that no page name is cut.
    // Measured exactly, as the style does when it elides.
    qreal widest = 0;
    for (int page = 0; page < count(); ++page)
        widest = std::max(widest, QFontMetricsF(font()).horizontalAdvance(itemText(page)));
    setMinimumWidth(int(std::ceil(widest)) + 1 + PageLabelMargin() + 2 * frameWidth());
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
    list->setTextElideMode(Qt::ElideRight);
    list->setMovement(QListView::Static);
    list->setResizeMode(QListView::Adjust);
    list->doItemsLayout();
}
