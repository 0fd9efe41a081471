#pragma once

#include <QObject>
#include <functional>

class QListWidget;
class QListWidgetItem;
class QMenu;
class QPoint;
class TOutlookBar;

/// Page 1 of the bar: the saved searches of the Shortcuts table, opened, renamed in place,
/// moved, deleted, and the icon size of the whole bar.
class TShortcutBar : public QObject {
    Q_OBJECT
public:
    static constexpr int ShortcutPage = 1;

    explicit TShortcutBar(TOutlookBar* bar, QObject* parent = nullptr);

    /// Opens a shortcut in the recipes (1) or ingredients (2) window: route, definition, name.
    std::function<void(const QString&, const QString&, const QString&)> OpenRoute;

    /// Reads the table and rebuilds the page; the selection is lost.
    void Load();
    /// OutlookBarMainItemClick on page 1.
    void ItemClick(int index);
    void MoveUp(int index);
    void MoveDown(int index);
    void Delete(int index);
    void SetSmallIcons(bool small);
    /// The context menu for a hit (item index, or -1) on a page, with the visibility rules applied.
    QMenu* ContextMenu(int page, int index);

protected:
    /// The mouse-up of every page, of any button, reaches MouseUp.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ItemTextChange(QListWidgetItem* item);
    /// OutlookBarMainMouseUp: the hit test, then the menu at the pointer.
    void MouseUp(QListWidget* list, const QPoint& position);

    TOutlookBar* m_bar;
    QMenu* m_menu;
    int m_index = -1; ///< the item under the pointer at the last hit test
    bool m_loading = false;
};
