#pragma once

#include "store/data_module_main.h"

#include <QImage>
#include <QTabWidget>
#include <functional>

class QAction;
class QMenu;
class TVintraPicHolder;

/// The picture tabs of one record: a tab per file `<id>.<n>.jpg` of the kind's folder, captioned
/// "1", "2" and so on, the first tab fixed and the others built from the files. Its popup menu
/// carries the picture commands; the active tab's index is the picture's position p (from 0).
/// No command touches the database.
class TPicturePages : public QTabWidget {
    Q_OBJECT
public:
    /// `holderName` names the first tab's holder, `menuName` the popup (PopupMenu...Image).
    TPicturePages(TPictureKind kind, const QString& holderName, const QString& menuName,
                  QWidget* parent = nullptr);

    /// The record whose pictures are shown; 0 for none. Rebuilds the tabs.
    void SetRecord(int id);
    int RecordId() const { return m_id; }
    /// Destroys every tab but the first and builds them again from the files, sorted as text.
    void Rebuild();
    /// Enabled state of the commands: add and set need a record, clear and view a first picture,
    /// the moves a neighbour on the side they move to.
    void UpdateCommands(bool hasRecord);

    TVintraPicHolder* MainHolder() const { return m_main; }
    /// The holder of a tab, nullptr beyond the tabs.
    TVintraPicHolder* HolderAt(int tab) const;
    QMenu* Popup() const { return m_popup; }
    QAction* ActionAdd() const { return m_add; }
    QAction* ActionSet() const { return m_set; }
    QAction* ActionClear() const { return m_clear; }
    QAction* ActionView() const { return m_view; }
    QAction* ActionMoveUp() const { return m_moveUp; }
    QAction* ActionMoveDown() const { return m_moveDown; }
    /// The command whose enabled state lets view and double click show a picture (view itself
    /// unless set otherwise).
    void SetViewGate(QAction* action) { m_viewGate = action; }

    // --- commands (the popup's actions run these) ---
    void AddImage();
    void SetImage();
    void ClearImage();
    void ViewImage();
    void MoveUp();
    void MoveDown();

    /// The picture dialog: returns the chosen file, "" on cancel. Defaults to a file dialog
    /// with the filter "JPEG Image File (*.jpg)".
    std::function<QString()> OpenPictureFile;
    /// Shows one picture in full; defaults to a TVintraPicViewer.
    std::function<void(const QImage&)> ShowPicture;

signals:
    /// A command changed the files, or another tab became active: the owner refreshes its
    /// commands.
    void PicturesChanged();
    /// A picture was added (the owner updates its group commands as well).
    void PictureAdded();

private:
    TVintraPicHolder* MakeHolder(QWidget* parent, const QString& name);
    /// Runs a command; a failed load or copy goes to the exception dialog.
    void Guarded(const std::function<void()>& command);
    QImage LoadChosen(const QString& fileName) const;
    void AfterChange(int selectTab);

    TPictureKind m_kind;
    int m_id = 0;
    TVintraPicHolder* m_main = nullptr;
    QMenu* m_popup = nullptr;
    QAction* m_add = nullptr;
    QAction* m_set = nullptr;
    QAction* m_clear = nullptr;
    QAction* m_view = nullptr;
    QAction* m_moveUp = nullptr;
    QAction* m_moveDown = nullptr;
    QAction* m_viewGate = nullptr;
    bool m_hasRecord = false;
};
