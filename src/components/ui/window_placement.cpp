#include "components/ui/window_placement.h"

#include <QApplication>
#include <QMainWindow>
#include <QScreen>
#include <QWidget>
#include <algorithm>

QWidget* MainWindowOf(const QWidget* window) {
    // The program's frame first, also for a dialog opened from another dialog.
    for (QWidget* top : QApplication::topLevelWidgets())
        if (qobject_cast<QMainWindow*>(top) && top->isVisible() && top != window)
            return top;
    return window && window->parentWidget() ? window->parentWidget()->window() : nullptr;
}

void CenterOnMainWindow(QWidget* window) {
    if (!window || !window->isWindow())
        return;
    const QWidget* main = MainWindowOf(window);
    QScreen* screen = main ? main->screen() : window->screen();
    const QRect available = screen ? screen->availableGeometry() : QRect();
    const QRect area = main && main->isVisible() ? main->frameGeometry() : available;
    if (area.isEmpty())
        return;
    // The frame's decorations are known only once the window is mapped; until then they count
    // as nothing, as they do for Qt's own placement of dialogs.
    const QSize frame = window->frameGeometry().size().expandedTo(window->size());
    QPoint topLeft(area.left() + (area.width() - frame.width()) / 2,
                   area.top() + (area.height() - frame.height()) / 2);
    if (!available.isEmpty()) {
        topLeft.setX(std::clamp(topLeft.x(), available.left(),
                                std::max(available.left(), available.right() + 1 - frame.width())));
        topLeft.setY(std::clamp(topLeft.y(), available.top(),
                                std::max(available.top(), available.bottom() + 1 - frame.height())));
    }
    window->move(topLeft);
}
