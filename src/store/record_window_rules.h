#pragma once

#include "components/dataset.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

// The rules shared by the windows that keep records in a tree of groups (and by the units window,
// which has the grid without the tree): deletes of groups and records, moving records between
// groups, the quick search, validation texts and remembered geometry. All of it runs without
// widgets, on the data module's database, options and dictionary.

namespace qm {

/// One statement of a cascade, formatted with the key (%d); when `table` is set it goes in for
/// the statement's %s first.
struct CascadeStep {
    CascadeStep(const QString& statement, const QString& tableName = QString())
        : sql(statement), table(tableName) {}
    QString sql;
    QString table;
};

/// A grid column whose width is remembered: `name` is compared without case with the column's
/// field name, and `option` keeps the width.
struct ColumnOption {
    QString name;
    QString option;
};

/// Everything the pattern needs to know of one kind of record, spelt as the database, the options
/// and the dictionary spell it. MakeRecordKind fills the names that follow from the words <X> and
/// <Y>; a kind sets the irregular ones after it.
struct RecordKind {
    // Group tree; no tree table means a window with a grid only.
    QString treeTable;
    QString treeKey;
    QString treeName;
    // Records.
    QString recordTable;
    QString recordKey;
    QString recordName;
    QString groupColumn; ///< the record's column that holds its group key
    QString optionPrefix;
    QString groupWord;  ///< <X> of the message and option keys
    QString recordWord; ///< <Y> of the message and option keys

    // Group commands.
    QString confirmDeletionGroup;  ///< ConfirmDeletion<X>
    QString irDeleteGroup;         ///< IRDelete<X>
    QString questionDeleteGroup;   ///< QuestionDelete<X>
    QString groupContainsChildren; ///< Info<X>ContainsChildren
    QString groupContainsRecords;  ///< Info<X>Contains<records>
    QList<CascadeStep> groupCascade;
    QString newGroupNameKey;   ///< @New_... : name of a new group
    QString newSiblingIdKey;   ///< GetNewId key of a sibling group (the tree table)
    QString newChildIdKey;     ///< GetNewId key of a child group (the tree table)
    QString newChildFixedName; ///< when set, a child group takes this text instead of the dictionary's
    QString rootNodeNameKey;
    QString rootNodeNameDefault;
    /// On the root: every record, read-only (true), or an empty read-only grid (false).
    bool rootListsAllRecords = false;

    // Record delete.
    bool lockedRecords = true;     ///< ids up to LastLockedId can't be deleted
    QString lockedDelete;          ///< InfoLocked<Y>Delete
    QString confirmDeletionRecord; ///< ConfirmDeletion<Y>; empty: no option of its own
    bool alwaysConfirmRecordDeletion = false;
    QString questionDeleteRecord;         ///< QuestionDelete<Y>
    QStringList referenceCounts;          ///< COUNT statements (%d the id); their sum above 0 is "referenced"
    QString recordReferenced;             ///< Info<Y>Referenced...
    QString irDeleteRecord;               ///< IRDelete<Y>
    QList<CascadeStep> recordCascade;     ///< run on a referenced record under the cascade rule
    QList<CascadeStep> recordDeleteSteps; ///< run before every delete that goes ahead

    // Moving records by drag and drop.
    QString moveStatement;       ///< %d the target group, %s the id list (or %d the id, one at a time)
    bool moveOneAtATime = false; ///< only the current record moves

    // Quick search.
    QString quickSearchSql; ///< constant SELECT with LIKE '@%s@'
    QString noMatching;     ///< InfoNoMatching<Y>
    QString noMoreMatching; ///< InfoNoMoreMatching<Y>s
    /// Group of a found record (the data module's lookup); empty for a window without a tree.
    std::function<int(int recordId)> groupOfRecord;

    // Status text: the dictionary text of statusKey (or statusText when there is no key), the
    // separator and the count of the current group.
    QString statusKey;
    QString statusText;
    QString statusSeparator = QStringLiteral(" ");

    // Geometry.
    bool hasSplitterVertical = true;
    bool hasSplitterHorizontal = true;
    int verticalMinimum = 185;
    int verticalMargin = 200; ///< the left panel leaves at least this much of the client width
    int horizontalMinimum = 241;
    int horizontalMargin = 180; ///< the bottom panel leaves at least this much of the client height
    QList<ColumnOption> columns;

    bool HasTree() const { return !treeTable.isEmpty(); }
    /// "<prefix><suffix>", the name of one of the window's options.
    QString Option(const QString& suffix) const { return optionPrefix + suffix; }
    /// "SELECT COUNT( * ) AS numberOfRefs \nFROM <records> \nWHERE <group column> = %d"
    QString GroupRecordsCountSql() const;
    /// "SELECT COUNT( * ) AS numberOfRefs \nFROM <tree table> \nWHERE parentId = %d"
    QString GroupChildrenCountSql() const;
    /// Every option name the kind reads, for checks against the declared list.
    QStringList OptionNames() const;
};

/// A kind with the names that follow from its tables and its words X and Y.
RecordKind MakeRecordKind(const QString& treeTable, const QString& treeKey, const QString& treeName,
                          const QString& recordTable, const QString& recordKey, const QString& recordName,
                          const QString& groupColumn, const QString& optionPrefix, const QString& groupWord,
                          const QString& recordWord);

/// Ids up to this one came with the database and can't be deleted.
inline constexpr int LastLockedId = 100000;
inline bool IsLockedId(int id) {
    return id <= LastLockedId;
}

/// Group verdicts: 1 empty, 2 holds records, 3 holds child groups (wins over records).
enum GroupVerdict { gvEmpty = 1, gvRecords = 2, gvChildren = 3 };
int ClassifyGroup(const RecordKind& kind, int groupKey);

/// Runs a list of cascade statements, in order, for one key.
void RunCascade(const QList<CascadeStep>& steps, int key);

/// The delete of a group up to the node's removal: question, verdict, messages, cascade. Throws
/// Abort after a message or an answer other than Yes; returns when the caller may delete the node.
void DeleteGroupRules(const RecordKind& kind, int groupKey);

/// BeforeDelete of a record: locked id, question, references, restricted message or cascade, and
/// the steps of every delete. Throws Abort to keep the record. `cascade` stands in for the kind's
/// cascade statements when a window runs its own.
void DeleteRecordRules(const RecordKind& kind, int recordId, const std::function<void(int)>& cascade = {});

/// Whether grid rows dragged over a node may be dropped there: the drag comes from the window's
/// grid, a node lies under the pointer, and it is a group other than the current one.
bool AcceptRecordDrop(bool sourceIsGrid, bool nodeUnderPointer, int nodeKey, int currentGroupKey);

/// Moves records to the target group: the whole id list, or only `currentId` when the kind moves
/// one record at a time.
void MoveRecords(const RecordKind& kind, int targetKey, const QString& idList, int currentId);

/// Id of a new group and its name: sibling or child.
int NewGroupId(const RecordKind& kind, bool child);
QString NewGroupName(const RecordKind& kind, bool child);
QString RootNodeName(const RecordKind& kind);

/// Status text of the current group's count.
QString StatusCountText(const RecordKind& kind, int count);
/// The record filter of a group: "<group column> = <key>".
QString GroupFilter(const QString& column, int key);

/// The find statement: '@' of the template becomes '*', then the pattern goes in for each %s.
/// A '*' or '?' typed by the user acts as a wildcard; an '@' typed stays an '@'.
QString QuickSearchStatement(const QString& sqlTemplate, const QString& pattern);

/// A record found by the quick search, with its group (0 without a tree).
struct SearchHit {
    int recordId = 0;
    int groupKey = 0;
};

/// The quick search of one window over QueryQuickSearch: find runs the statement, find next walks
/// on; empty and past-the-end results are told, and a query past its end stays there.
class QuickSearch {
public:
    explicit QuickSearch(const RecordKind& kind);

    /// `next` false: a new search for `pattern`; true: the next hit of the running one.
    std::optional<SearchHit> Find(bool next, const QString& pattern);

    Dataset QueryQuickSearch;

private:
    RecordKind m_kind;
};

/// Remembered place and size of a window, its splitters (-1 where it has none) and its columns.
struct WindowLayout {
    bool maximized = false;
    int height = 0;
    int width = 0;
    int top = 0;
    int left = 0;
    int splitterVertical = -1;
    int splitterHorizontal = -1;
    QList<QPair<QString, int>> columnWidths; ///< field name -> width
};

/// The option of a column of that field name, "" when none is known (names compare without case).
QString ColumnWidthOption(const QList<ColumnOption>& columns, const QString& fieldName);
/// The declared default of the width option of a column of that field; 0 when it has none.
int DefaultColumnWidth(const QList<ColumnOption>& columns, const QString& fieldName);
/// What FormShow applies: MDIChildMaximized, then (when not maximised) the four geometry options,
/// the splitters the window has, and the width of each listed field that has an option.
WindowLayout ReadWindowLayout(const QString& prefix, bool hasVertical, bool hasHorizontal,
                              const QList<ColumnOption>& columns, const QStringList& fieldNames);
/// What FormClose stores, in its order: state (and geometry when not maximised), Store, splitters and
/// column widths by the same name comparison, Store again.
void StoreWindowLayout(const QString& prefix, const WindowLayout& layout, const QList<ColumnOption>& columns);
/// OnCanResize of the splitters: the left panel's width between the minimum and the client width
/// less the margin; the bottom panel's height likewise.
bool VerticalSplitterAllowed(const RecordKind& kind, int newWidth, int clientWidth);
bool HorizontalSplitterAllowed(const RecordKind& kind, int newHeight, int clientHeight);

} // namespace qm

// Shared helpers of the record windows, named as the windows call them.

/// Appends one line for a field in error: ErrorEmptyField with the field's label, or
/// ErrorInvalidValuePositiveInteger for kind 1; "\n" first when the text isn't empty. Kind 3 and
/// unknown kinds add nothing.
void AddFieldError(int kind, QString& text);
/// Label of a field kind from the dictionary, with its English default; "" for kind 3.
QString FieldErrorLabel(int kind);
/// True when the dataset stands at both ends: closed or without rows.
bool IsDataSetEmpty(const qm::Dataset& dataSet);
/// Ids of the given rows (the current row when none is given) joined with ", ", and whether any
/// of them is locked.
void GetSelectedIds(const qm::Dataset& dataSet, const QList<int>& selectedRows, const QString& keyField,
                    bool& containsLocked, QString& idList);
/// Locate by key, with no options.
bool SelectRecordById(qm::Dataset& dataSet, const QString& keyField, int id);
/// A record posted by an insert takes its place in the table's order (its SortedBy): after such a
/// post the table is read again, the new record staying current. Wraps the table's BeforePost and
/// AfterPost as they are set now, so it goes after them.
void SortInsertedRecords(qm::Dataset& table);
