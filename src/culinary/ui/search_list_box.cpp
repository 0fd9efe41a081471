#include "culinary/ui/search_list_box.h"

#include "components/ui/vintra_db_grid.h"

#include <QDrag>
#include <QDropEvent>
#include <QMimeData>

TSearchListBox::TSearchListBox(QWidget* parent) : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
}

void TSearchListBox::SetRowSource(TVintraDBGrid* grid) {
    m_source = grid;
    QWidget* viewport = grid->viewport();
    m_sourceViewport = viewport;
    // The grid only drags; its viewport takes drops for the boxes that feed on it.
    viewport->setAcceptDrops(true);
    viewport->installEventFilter(this);
    // The grid's viewport keeps sending events while the grid is taken down; from then on they
    // are none of the box's business.
    connect(grid, &QObject::destroyed, this, [this] {
        m_source = nullptr;
        m_sourceViewport = nullptr;
    });
}

bool TSearchListBox::TakesRows(const QDropEvent* event) const {
    return m_source && event->source() == m_source && event->mimeData() &&
           event->mimeData()->hasFormat(QString::fromLatin1(TVintraDBGrid::RowsMimeType));
}

void TSearchListBox::dragEnterEvent(QDragEnterEvent* event) {
    if (TakesRows(event))
        event->acceptProposedAction();
    else
        event->ignore();
}

void TSearchListBox::dragMoveEvent(QDragMoveEvent* event) {
    if (TakesRows(event)) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void TSearchListBox::dropEvent(QDropEvent* event) {
    if (!TakesRows(event)) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::MoveAction);
    event->accept();
    QList<int> rows;
    const QList<QByteArray> parts =
        event->mimeData()->data(QString::fromLatin1(TVintraDBGrid::RowsMimeType)).split(' ');
    for (const QByteArray& part : parts) {
        bool ok = false;
        const int row = part.toInt(&ok);
        if (ok)
            rows << row;
    }
    if (OnRowsDropped && !rows.isEmpty())
        OnRowsDropped(rows);
}

void TSearchListBox::startDrag(Qt::DropActions supportedActions) {
    Q_UNUSED(supportedActions);
    const int row = currentRow();
    if (row < 0 || !m_source)
        return;
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(ItemMimeType), QByteArray::number(row));
    auto* drag = new QDrag(this);
    drag->setMimeData(data);
    drag->exec(Qt::MoveAction);
}

bool TSearchListBox::eventFilter(QObject* watched, QEvent* event) {
    // Only addresses are compared here: the grid may be half destroyed when its viewport speaks.
    if (!m_sourceViewport || watched != m_sourceViewport)
        return QListWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event);
        // Another box's items are that box's filter's to take.
        if (drop->source() != this || !drop->mimeData() ||
            !drop->mimeData()->hasFormat(QString::fromLatin1(ItemMimeType)))
            return false;
        drop->setDropAction(Qt::MoveAction);
        drop->accept();
        if (event->type() == QEvent::Drop) {
            bool ok = false;
            const int row = drop->mimeData()->data(QString::fromLatin1(ItemMimeType)).toInt(&ok);
            if (ok && OnItemDraggedBack)
                OnItemDraggedBack(row);
        }
        return true;
    }
    default:
        return false;
    }
}
