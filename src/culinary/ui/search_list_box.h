#pragma once

#include <QList>
#include <QListWidget>
#include <functional>

class TVintraDBGrid;

/// A list box of chosen names (categories, ingredients) whose ids the search window keeps in a
/// list of the same order. It takes rows dragged from its source grid, and an item dragged from it
/// back onto that grid leaves it; what either means is the window's business.
class TSearchListBox : public QListWidget {
public:
    /// Format of an item dragged out of a box: its row in the box.
    static constexpr const char* ItemMimeType = "application/x-quillmeal-search-item";

    explicit TSearchListBox(QWidget* parent = nullptr);

    /// The grid whose rows may be dropped here and onto which items are dragged back.
    void SetRowSource(TVintraDBGrid* grid);

    /// Grid rows (dataset rows) dropped on the box.
    std::function<void(const QList<int>& rows)> OnRowsDropped;
    /// The item at `row` was dragged back onto the source grid.
    std::function<void(int row)> OnItemDraggedBack;

    /// A few names high: the boxes share their page with a tree and a grid.
    QSize sizeHint() const override { return QSize(180, 85); }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool TakesRows(const QDropEvent* event) const;

    TVintraDBGrid* m_source = nullptr;
    const QObject* m_sourceViewport = nullptr; ///< compared with, never called
};
