#include "store/ui/picture_pages.h"

#include "components/messages.h"
#include "components/ui/vintra_pic_holder.h"
#include "store/picture_commands.h"
#include "store/ui/record_window.h"

#include <QAction>
#include <QFileDialog>
#include <QMenu>
#include <QVBoxLayout>
#include <algorithm>
#include <stdexcept>

TPicturePages::TPicturePages(TPictureKind kind, const QString& holderName, const QString& menuName,
                             QWidget* parent)
    : QTabWidget(parent), m_kind(kind) {
    setObjectName(QStringLiteral("PageControlPictures"));
    setTabPosition(QTabWidget::South);
    setDocumentMode(true);

    m_popup = new QMenu(this);
    m_popup->setObjectName(menuName);
    const auto makeAction = [this](const char* name, const QString& text, void (TPicturePages::*handler)()) {
        auto* action = new QAction(text, this);
        action->setObjectName(QString::fromLatin1(name));
        connect(action, &QAction::triggered, this, handler);
        m_popup->addAction(action);
        return action;
    };
    m_add = makeAction("MIAddImage", tr("Add picture..."), &TPicturePages::AddImage);
    m_set = makeAction("MISetImage", tr("Replace picture..."), &TPicturePages::SetImage);
    m_clear = makeAction("MIClearImage", tr("Remove picture"), &TPicturePages::ClearImage);
    m_popup->addSeparator();
    m_view = makeAction("MIViewImage", tr("View picture"), &TPicturePages::ViewImage);
    m_popup->addSeparator();
    m_moveUp = makeAction("MIMoveUp", tr("Move left"), &TPicturePages::MoveUp);
    m_moveDown = makeAction("MIMoveDown", tr("Move right"), &TPicturePages::MoveDown);
    m_viewGate = m_view;

    auto* first = new QWidget;
    first->setObjectName(QStringLiteral("TabSheetPiuctureMain"));
    m_main = MakeHolder(first, holderName);
    addTab(first, QStringLiteral("1"));

    OpenPictureFile = [this] {
        return QFileDialog::getOpenFileName(this, tr("Picture"), QString(), tr("JPEG Image File (*.jpg)"));
    };
    ShowPicture = [this](const QImage& image) {
        TVintraPicViewer viewer(this);
        viewer.SetImage(image);
        viewer.Show();
    };
    // The moves depend on the active tab: the owner's rules run again when it changes.
    connect(this, &QTabWidget::currentChanged, this, [this] {
        UpdateCommands(m_hasRecord);
        emit PicturesChanged();
    });
}

TVintraPicHolder* TPicturePages::MakeHolder(QWidget* parent, const QString& name) {
    auto* layout = new QVBoxLayout(parent);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* holder = new TVintraPicHolder(parent);
    holder->setObjectName(name);
    holder->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(holder, &QWidget::customContextMenuRequested, this,
            [this, holder](const QPoint& at) { m_popup->exec(holder->mapToGlobal(at)); });
    connect(holder, &TVintraPicHolder::DoubleClicked, this, &TPicturePages::ViewImage);
    layout->addWidget(holder);
    return holder;
}

TVintraPicHolder* TPicturePages::HolderAt(int tab) const {
    QWidget* page = widget(tab);
    return page ? page->findChild<TVintraPicHolder*>() : nullptr;
}

void TPicturePages::SetRecord(int id) {
    m_id = id;
    Rebuild();
}

void TPicturePages::Rebuild() {
    const QSignalBlocker quiet(this);
    while (count() > 1) {
        QWidget* page = widget(count() - 1);
        removeTab(count() - 1);
        delete page;
    }
    const QStringList names = m_id > 0 ? PictureCommands::PictureFiles(m_kind, m_id) : QStringList();
    if (names.isEmpty()) {
        m_main->ShowNoPicture();
        return;
    }
    const QString folder = DataModuleMain->PictureFolder(m_kind);
    m_main->LoadFromFile(folder + names.first());
    for (qsizetype i = 1; i < names.size(); ++i) {
        auto* page = new QWidget;
        page->setObjectName(QStringLiteral("TabSheetPicture%1").arg(i + 1));
        MakeHolder(page, QStringLiteral("VintraPicHolder%1").arg(i + 1))->LoadFromFile(folder + names.at(i));
        addTab(page, QString::number(i + 1));
    }
}

void TPicturePages::UpdateCommands(bool hasRecord) {
    m_hasRecord = hasRecord;
    const bool first = hasRecord && m_id > 0 && DataModuleMain && DataModuleMain->PictureExists(m_id, m_kind);
    const int p = currentIndex();
    m_add->setEnabled(hasRecord);
    m_set->setEnabled(hasRecord);
    m_clear->setEnabled(first);
    m_view->setEnabled(first);
    m_moveUp->setEnabled(p > 0 && count() > 1);
    m_moveDown->setEnabled(first && p < count() - 1 && count() > 1);
}

void TPicturePages::Guarded(const std::function<void()>& command) {
    RunGuarded(command);
}

QImage TPicturePages::LoadChosen(const QString& fileName) const {
    QImage image;
    if (!image.load(fileName))
        throw std::runtime_error(tr("%1 is not a valid picture").arg(fileName).toStdString());
    return image;
}

void TPicturePages::AfterChange(int selectTab) {
    Rebuild();
    setCurrentIndex(std::clamp(selectTab, 0, count() - 1));
    UpdateCommands(m_hasRecord);
    emit PicturesChanged();
}

void TPicturePages::AddImage() {
    if (m_id <= 0)
        return;
    Guarded([this] {
        // The files are renumbered first, so the limit counts what is really there.
        const int number = PictureCommands::NumberForNewPicture(m_kind, m_id);
        if (number == 0)
            return;
        const QString file = OpenPictureFile ? OpenPictureFile() : QString();
        if (file.isEmpty())
            return;
        m_main->SetImage(LoadChosen(file));
        if (!PictureCommands::CopyPicture(m_kind, m_id, number, file))
            throw std::runtime_error(tr("Cannot copy %1").arg(file).toStdString());
        AfterChange(number - 1);
        emit PictureAdded();
    });
}

void TPicturePages::SetImage() {
    if (m_id <= 0)
        return;
    Guarded([this] {
        const QString file = OpenPictureFile ? OpenPictureFile() : QString();
        if (file.isEmpty())
            return;
        LoadChosen(file);
        const int p = currentIndex();
        if (!PictureCommands::CopyPicture(m_kind, m_id, p + 1, file))
            throw std::runtime_error(tr("Cannot copy %1").arg(file).toStdString());
        AfterChange(p);
    });
}

void TPicturePages::ClearImage() {
    if (m_id <= 0)
        return;
    Guarded([this] {
        const int p = currentIndex();
        m_main->ShowNoPicture();
        PictureCommands::ClearPicture(m_kind, m_id, p);
        AfterChange(p);
    });
}

void TPicturePages::ViewImage() {
    if (!m_viewGate || !m_viewGate->isEnabled() || !ShowPicture)
        return;
    if (TVintraPicHolder* holder = HolderAt(currentIndex()))
        ShowPicture(holder->Image());
}

void TPicturePages::MoveUp() {
    if (m_id <= 0)
        return;
    Guarded([this] {
        const int p = currentIndex();
        PictureCommands::MoveUp(m_kind, m_id, p);
        // The tab follows the picture it moved.
        AfterChange(p - 1);
    });
}

void TPicturePages::MoveDown() {
    if (m_id <= 0)
        return;
    Guarded([this] {
        const int p = currentIndex();
        PictureCommands::MoveDown(m_kind, m_id, p);
        AfterChange(p + 1);
    });
}
