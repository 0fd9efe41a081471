#include "shell/ui/shortcut_bar.h"

#include "shell/ui/frame_icons.h"
#include "shell/ui/outlook_bar.h"
#include "store/resource_holder.h"
#include "store/shortcuts.h"

#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>

TShortcutBar::TShortcutBar(TOutlookBar* bar, QObject* parent)
    : QObject(parent), m_bar(bar), m_menu(new QMenu(bar)) {
    m_menu->setObjectName(QStringLiteral("PopupMenuOutlookBar"));
    const auto add = [this](const char* name, const QString& text, std::function<void()> handler) {
        QAction* action = m_menu->addAction(text);
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, std::move(handler));
        return action;
    };
    add("MIMoveUp", tr("Move &up"), [this] { MoveUp(m_index); });
    add("MIMoveDown", tr("Move &down"), [this] { MoveDown(m_index); });
    m_menu->addSeparator()->setObjectName(QStringLiteral("N1"));
    add("MIDeleteShortcut", tr("&Delete shortcut"), [this] { Delete(m_index); });
    m_menu->addSeparator()->setObjectName(QStringLiteral("N2"));
    add("MISmallIcons", tr("&Small icons"), [this] { SetSmallIcons(true); });
    add("MILargeIcons", tr("&Large icons"), [this] { SetSmallIcons(false); });

    // Every page reports its mouse-up, of any button; only page 1 lets its captions be edited.
    for (int page = 0; page < m_bar->PageCount(); ++page) {
        QListWidget* list = m_bar->Page(page);
        list->setContextMenuPolicy(Qt::PreventContextMenu);
        list->viewport()->installEventFilter(this);
        if (page == ShortcutPage) {
            list->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
            connect(list, &QListWidget::itemChanged, this, &TShortcutBar::ItemTextChange);
        } else {
            list->setEditTriggers(QAbstractItemView::NoEditTriggers);
        }
    }
}

void TShortcutBar::Load() {
    m_loading = true;
    m_bar->ClearPage(ShortcutPage);
    for (const TShortcut& shortcut : Shortcuts::Load()) {
        // The type is the icon too: 1 recipes, 2 ingredients, and no picture for any other.
        const QString icon = shortcut.type == 1   ? QStringLiteral("shortcutRecipes")
                             : shortcut.type == 2 ? QStringLiteral("shortcutIngredients")
                                                  : QString();
        QListWidgetItem* item = m_bar->AddItem(ShortcutPage, shortcut.name, qm::FrameIcon(icon));
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
    m_loading = false;
}

void TShortcutBar::ItemClick(int index) {
    const TShortcut shortcut = Shortcuts::Open(index);
    if (!OpenRoute)
        return;
    if (shortcut.type == 1)
        OpenRoute(QStringLiteral("Recipes"), shortcut.definition, shortcut.name);
    else if (shortcut.type == 2)
        OpenRoute(QStringLiteral("Ingredients"), shortcut.definition, shortcut.name);
}

void TShortcutBar::ItemTextChange(QListWidgetItem* item) {
    if (m_loading)
        return;
    Shortcuts::Rename(item->listWidget()->row(item), item->text());
}

void TShortcutBar::MoveUp(int index) {
    Shortcuts::MoveUp(index);
    Load();
}

void TShortcutBar::MoveDown(int index) {
    Shortcuts::MoveDown(index);
    Load();
}

void TShortcutBar::Delete(int index) {
    Shortcuts::Delete(index);
    Load();
}

void TShortcutBar::SetSmallIcons(bool small) {
    FormResourceHolder->VintraOptions.SetAsBoolean(QStringLiteral("OutlookBarSmallIcons"), small);
    FormResourceHolder->VintraOptions.Store();
    m_bar->SetSmallIcons(small);
}

QMenu* TShortcutBar::ContextMenu(int page, int index) {
    m_index = index;
    const bool onShortcut = index >= 0 && page == ShortcutPage;
    for (const char* name : {"MIMoveUp", "MIMoveDown", "N1", "MIDeleteShortcut", "N2"})
        m_menu->findChild<QAction*>(QLatin1String(name))->setVisible(onShortcut);
    const bool small = FormResourceHolder->VintraOptions.GetAsBoolean(QStringLiteral("OutlookBarSmallIcons"));
    m_menu->findChild<QAction*>(QStringLiteral("MISmallIcons"))->setVisible(!small);
    m_menu->findChild<QAction*>(QStringLiteral("MILargeIcons"))->setVisible(small);
    return m_menu;
}

bool TShortcutBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease)
        for (int page = 0; page < m_bar->PageCount(); ++page)
            if (QListWidget* list = m_bar->Page(page); list->viewport() == watched)
                MouseUp(list, static_cast<QMouseEvent*>(event)->position().toPoint());
    return QObject::eventFilter(watched, event);
}

void TShortcutBar::MouseUp(QListWidget* list, const QPoint& position) {
    QListWidgetItem* item = list->itemAt(position);
    ContextMenu(m_bar->indexOf(list), item ? list->row(item) : -1)
        ->popup(list->viewport()->mapToGlobal(position));
}
