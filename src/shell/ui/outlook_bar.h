#pragma once

#include <QToolBox>

class QListWidget;
class QListWidgetItem;

/// The Outlook-like bar: pages of clickable items with a picture, large (caption of up to two
/// lines under the picture) or small (caption beside it). An item's tool tip is its whole caption.
class TOutlookBar : public QToolBox {
    Q_OBJECT
public:
    explicit TOutlookBar(QWidget* parent = nullptr);

    /// Appends a page; returns its index.
    int AddPage(const QString& caption);
    int PageCount() const { return count(); }
    QListWidget* Page(int page) const;
    QString PageCaption(int page) const { return itemText(page); }
    void SetPageCaption(int page, const QString& caption) { setItemText(page, caption); }
    /// Widens the bar's minimum to the widest page caption (after a translation).
    void FitPageCaptions();
    /// The part of a page button's width that its caption can't use.
    int PageLabelMargin() const;
    /// A caption broken into at most `maxLines` lines of `width` pixels, the last one elided.
    static QStringList CaptionLines(const QString& caption, const QFont& font, int width, int maxLines);

    QListWidgetItem* AddItem(int page, const QString& caption, const QIcon& icon);
    /// Removes every item of the page.
    void ClearPage(int page);
    int ItemCount(int page) const;
    QListWidgetItem* Item(int page, int item) const;
    QString ItemCaption(int page, int item) const;
    void SetItemCaption(int page, int item, const QString& caption);
    void SetItemEnabled(int page, int item, bool enabled);
    bool ItemEnabled(int page, int item) const;

    void SetSmallIcons(bool small);
    bool SmallIcons() const { return m_small; }

    /// Clicks an item as the pointer does; a disabled item does nothing.
    void ClickItem(int page, int item);

signals:
    void ItemClick(int page, int item);

private:
    void applyIconSize(QListWidget* list) const;

    bool m_small = false;
};
