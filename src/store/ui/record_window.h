#pragma once

#include "components/dataset.h"
#include "components/dataset_model.h"
#include "components/mdi_frame.h"
#include "store/record_window_rules.h"

#include <QWidget>
#include <functional>

/// Runs a command of a window: Abort ends it silently, any other failure goes to the exception
/// dialog (TRecordWindow::ShowException, else the Error box). Returns whether it ran through.
bool RunGuarded(const std::function<void()>& command);

/// Translates a form from the dictionary of the resource holder, when there is one.
void TranslateForm(QWidget* form);

class QAction;
class QSplitter;
class QTreeWidgetItem;
class TVintraDBGrid;
class TVintraDBTreeView;

/// Ids of the grid's selected rows (its current row when none is marked) joined with ", ", and
/// whether a locked record is among them.
void GetSelectedIds(TVintraDBGrid* grid, const QString& keyField, bool& containsLocked, QString& idList);

/// The MDI child that keeps one kind of record: a tree of groups (when the kind has one) beside the
/// grid of the records of the selected group, with a detail panel below the grid. It runs the shared
/// life of such a window from the kind's description: group change, group commands, inserts with new
/// ids, validation, the delete rules, moving records by drag and drop, the quick search, the status
/// count and the remembered geometry. A concrete window adds its columns and fields and overrides
/// the hooks it needs.
///
/// The frame (MdiFrame) puts the window into a sub-window, sends it the child commands, shows its
/// status count and gives it the quick search text. A close stores the geometry (FormClose); the
/// frame then runs the window's toggle with false, which calls Release and destroys the window.
class TRecordWindow : public QWidget, public TChildCommands {
    Q_OBJECT
public:
    explicit TRecordWindow(const qm::RecordKind& kind, QWidget* parent = nullptr);
    ~TRecordWindow() override;

    // --- the frame's side (Tag and Print as TChildCommands has them) ---
    /// Find (0) or find next (1) with the text of the frame's quick search box.
    void Find(int next) override;
    bool SupportsFind() const override { return !m_kind.quickSearchSql.isEmpty(); }
    /// The status count and the window's own commands.
    void FormActivate() override;
    /// Closes the window's datasets.
    void Release() override;

    /// The framework's exception dialog, for what goes wrong in the engine; the program sets it.
    /// Without it the Error box shows the text.
    static std::function<void(const QString& text)> ShowException;
    /// The exception dialog: ShowException when it is set, else the Error box.
    static void ReportException(const QString& text);

    // --- parts ---
    const qm::RecordKind& Kind() const { return m_kind; }
    qm::Dataset& RecordTable() { return m_recordTable; }
    qm::Dataset& GroupTable() { return m_groupTable; }
    qm::DatasetModel* RecordModel() const { return m_recordModel; }
    qm::QuickSearch& Search() { return m_search; }
    TVintraDBTreeView* TreeView() const { return m_tree; }
    TVintraDBGrid* Grid() const { return m_grid; }
    /// Left panel: the tree, and below it what the window adds (a group description).
    QWidget* GroupPanel() const { return m_groupPanel; }
    /// Panel below the grid for the record's fields; empty and without a layout until the window
    /// fills it.
    QWidget* DetailPanel() const { return m_detailPanel; }
    QSplitter* SplitterVertical() const { return m_splitterVertical; }
    QSplitter* SplitterHorizontal() const { return m_splitterHorizontal; }
    QAction* ActionAddSiblingGroup() const { return m_addSibling; }
    QAction* ActionAddChildGroup() const { return m_addChild; }
    QAction* ActionRenameGroup() const { return m_renameGroup; }
    QAction* ActionDeleteGroup() const { return m_deleteGroup; }

    int CurrentGroupKey() const { return m_currentGroupKey; }
    /// Records of the current group as last counted for the status bar.
    int GroupCount() const { return m_groupCount; }
    QString StatusText() const { return m_statusText; }

    // --- commands ---
    /// Selecting a node: the record table follows the group (read-only on the root).
    void GroupChange();
    void AddGroup(bool child);
    void RenameGroup();
    void DeleteGroup();
    /// Drag-over of the tree: grid rows over a node other than the root and the current group.
    bool TreeDragOver(QObject* source, QTreeWidgetItem* node) const;
    /// Drop on the group `key`: the selected records move there and the table reopens.
    void TreeDragDrop(int key);
    /// Shows the record: its group in the tree first (which refilters the table), then the record.
    bool LocateRecord(int id);
    /// Counts the current group for the status bar; a window that shows no group's records (a
    /// saved search) puts its own text there.
    virtual void UpdateStatus();

protected:
    // --- hooks of a concrete window ---
    /// Adds a line for each field in error, through AddFieldError.
    virtual void CheckRecord(qm::Dataset& table, QString& errors);
    /// After the checks passed, before the record is written (recalculation and the like).
    virtual void RecordChecked(qm::Dataset& table);
    /// Fields of a new record beyond its id and group.
    virtual void NewRecord(qm::Dataset& table);
    /// Before an insert: the focus goes to the name edit given by SetNameEdit.
    virtual void RecordBeforeInsert();
    /// After the delete rules let the record go, before the row is deleted (files of the record).
    virtual void RecordDeleting(int id);
    /// The cascade of a referenced record under the cascade rule; the kind's statements by default.
    virtual void RunRecordCascade(int id);
    virtual void RecordAfterScroll();
    /// Enabled state of the window's own commands; runs after every change of group or row.
    virtual void UpdateCommands();
    /// Enabled state of the group commands: add sibling, rename and delete need a group selected.
    virtual void UpdateGroupCommands();
    /// Grids whose column widths are remembered under the kind's column options.
    virtual QList<TVintraDBGrid*> RememberedGrids() const;
    /// FormShow and FormClose; a window with more to remember extends them.
    virtual void RestoreLayout();
    virtual void StoreLayout();
    virtual qm::WindowLayout CurrentLayout() const;
    /// Runs once, when the window is shown the first time.
    virtual void FormShow();
    void FormClose();

    void SetNameEdit(QWidget* edit) { m_nameEdit = edit; }
    /// Runs a command: Abort ends it silently, an engine failure goes to the exception dialog.
    bool Guarded(const std::function<void()>& command);

    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void BuildLayout();
    void ConnectTables();
    QWidget* LayoutTarget() const;
    void SplitterMoved(QSplitter* splitter);

    qm::RecordKind m_kind;
    qm::Dataset m_recordTable;
    qm::Dataset m_groupTable;
    qm::DatasetModel* m_recordModel = nullptr;
    qm::QuickSearch m_search;

    TVintraDBTreeView* m_tree = nullptr;
    TVintraDBGrid* m_grid = nullptr;
    QWidget* m_groupPanel = nullptr;
    QWidget* m_detailPanel = nullptr;
    QSplitter* m_splitterVertical = nullptr;
    QSplitter* m_splitterHorizontal = nullptr;
    QList<int> m_verticalSizes;
    QList<int> m_horizontalSizes;
    QAction* m_addSibling = nullptr;
    QAction* m_addChild = nullptr;
    QAction* m_renameGroup = nullptr;
    QAction* m_deleteGroup = nullptr;
    QWidget* m_nameEdit = nullptr;

    int m_currentGroupKey = 0;
    int m_groupCount = 0;
    int m_groupChanges = 0;
    QString m_statusText;
    bool m_shown = false;
};
