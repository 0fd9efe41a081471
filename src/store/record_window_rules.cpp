#include "store/record_window_rules.h"

#include "components/database.h"
#include "components/messages.h"
#include "components/sql_format.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <memory>

namespace qm {

namespace {

const QString kCountRefs = QStringLiteral("SELECT COUNT( * ) AS numberOfRefs \nFROM %1 \nWHERE %2 = %d");
const QString kMoveRecords = QStringLiteral("UPDATE %1 \nSET %2 = %d \nWHERE %3 IN( %s )");

const QString kMaximized = QStringLiteral("MDIChildMaximized");
const QString kStartSearchFirst = QStringLiteral("InfoStartSearchFirst");

TVintraOptions& options() {
    return FormResourceHolder->VintraOptions;
}

Database& database() {
    return DataModuleMain->KADaoDatabase;
}

int count(const QString& sql, int key) {
    return database().scalar(format(sql, {key})).toInt();
}

/// Info box with the key's text, then the silent end of the operation.
[[noreturn]] void refuse(const QString& key) {
    ShowInfo(GetText(key, QString()));
    throw Abort();
}

/// A question answered with anything but Yes ends the operation silently.
void confirm(const QString& key) {
    if (AskQuestion(GetText(key, QString())) != mrYes)
        throw Abort();
}

} // namespace

QString RecordKind::GroupRecordsCountSql() const {
    return kCountRefs.arg(recordTable, groupColumn);
}

QString RecordKind::GroupChildrenCountSql() const {
    return kCountRefs.arg(treeTable, QStringLiteral("parentId"));
}

QStringList RecordKind::OptionNames() const {
    QStringList names;
    for (const QString& name : {confirmDeletionGroup, irDeleteGroup, confirmDeletionRecord, irDeleteRecord})
        if (!name.isEmpty())
            names << name;
    names << kMaximized;
    for (const char* suffix : {"SizeHeight", "SizeWidth", "PositionTop", "PositionLeft"})
        names << Option(QString::fromLatin1(suffix));
    if (hasSplitterVertical)
        names << Option(QStringLiteral("SplitterVertical"));
    if (hasSplitterHorizontal)
        names << Option(QStringLiteral("SplitterHorizontal"));
    for (const ColumnOption& column : columns)
        names << column.option;
    return names;
}

RecordKind MakeRecordKind(const QString& treeTable, const QString& treeKey, const QString& treeName,
                          const QString& recordTable, const QString& recordKey, const QString& recordName,
                          const QString& groupColumn, const QString& optionPrefix, const QString& groupWord,
                          const QString& recordWord) {
    RecordKind kind;
    kind.treeTable = treeTable;
    kind.treeKey = treeKey;
    kind.treeName = treeName;
    kind.recordTable = recordTable;
    kind.recordKey = recordKey;
    kind.recordName = recordName;
    kind.groupColumn = groupColumn;
    kind.optionPrefix = optionPrefix;
    kind.groupWord = groupWord;
    kind.recordWord = recordWord;
    if (!groupWord.isEmpty()) {
        kind.confirmDeletionGroup = QStringLiteral("ConfirmDeletion") + groupWord;
        kind.irDeleteGroup = QStringLiteral("IRDelete") + groupWord;
        kind.questionDeleteGroup = QStringLiteral("QuestionDelete") + groupWord;
        kind.groupContainsChildren = QStringLiteral("Info") + groupWord + QStringLiteral("ContainsChildren");
    }
    kind.newSiblingIdKey = treeTable;
    kind.newChildIdKey = treeTable;
    kind.lockedDelete = QStringLiteral("InfoLocked") + recordWord + QStringLiteral("Delete");
    kind.confirmDeletionRecord = QStringLiteral("ConfirmDeletion") + recordWord;
    kind.questionDeleteRecord = QStringLiteral("QuestionDelete") + recordWord;
    kind.irDeleteRecord = QStringLiteral("IRDelete") + recordWord;
    kind.noMatching = QStringLiteral("InfoNoMatching") + recordWord;
    kind.noMoreMatching = QStringLiteral("InfoNoMoreMatching") + recordWord + QStringLiteral("s");
    if (!treeTable.isEmpty())
        kind.moveStatement = kMoveRecords.arg(recordTable, groupColumn, recordKey);
    kind.hasSplitterVertical = !treeTable.isEmpty();
    return kind;
}

int ClassifyGroup(const RecordKind& kind, int groupKey) {
    const int records = count(kind.GroupRecordsCountSql(), groupKey);
    const int children = count(kind.GroupChildrenCountSql(), groupKey);
    if (children > 0)
        return gvChildren;
    return records > 0 ? gvRecords : gvEmpty;
}

void RunCascade(const QList<CascadeStep>& steps, int key) {
    for (const CascadeStep& step : steps) {
        const QString sql =
            step.table.isEmpty() ? format(step.sql, {key}) : format(step.sql, {step.table, key});
        database().exec(sql);
    }
}

void DeleteGroupRules(const RecordKind& kind, int groupKey) {
    if (options().GetAsBoolean(kind.confirmDeletionGroup))
        confirm(kind.questionDeleteGroup);
    switch (ClassifyGroup(kind, groupKey)) {
    case gvChildren:
        // Whatever IRDelete<X> says: child groups are never deleted with their parent.
        refuse(kind.groupContainsChildren);
    case gvRecords:
        if (options().GetAsInteger(kind.irDeleteGroup) == 1)
            refuse(kind.groupContainsRecords);
        RunCascade(kind.groupCascade, groupKey);
        break;
    default:
        break;
    }
}

void DeleteRecordRules(const RecordKind& kind, int recordId, const std::function<void(int)>& cascade) {
    if (kind.lockedRecords && IsLockedId(recordId))
        refuse(kind.lockedDelete);
    const bool ask = kind.alwaysConfirmRecordDeletion || (!kind.confirmDeletionRecord.isEmpty() &&
                                                          options().GetAsBoolean(kind.confirmDeletionRecord));
    if (ask)
        confirm(kind.questionDeleteRecord);
    // Every count runs, also after one has found references.
    int references = 0;
    for (const QString& sql : kind.referenceCounts)
        references += count(sql, recordId);
    if (references > 0) {
        if (options().GetAsInteger(kind.irDeleteRecord) == 1)
            refuse(kind.recordReferenced);
        if (cascade)
            cascade(recordId);
        else
            RunCascade(kind.recordCascade, recordId);
    }
    RunCascade(kind.recordDeleteSteps, recordId);
}

bool AcceptRecordDrop(bool sourceIsGrid, bool nodeUnderPointer, int nodeKey, int currentGroupKey) {
    return sourceIsGrid && nodeUnderPointer && nodeKey > 0 && nodeKey != currentGroupKey;
}

void MoveRecords(const RecordKind& kind, int targetKey, const QString& idList, int currentId) {
    if (kind.moveOneAtATime)
        database().exec(format(kind.moveStatement, {targetKey, currentId}));
    else
        database().exec(format(kind.moveStatement, {targetKey, idList}));
}

int NewGroupId(const RecordKind& kind, bool child) {
    return DataModuleMain->GetNewId(child ? kind.newChildIdKey : kind.newSiblingIdKey);
}

QString NewGroupName(const RecordKind& kind, bool child) {
    if (child && !kind.newChildFixedName.isEmpty())
        return kind.newChildFixedName;
    return GetText(kind.newGroupNameKey, QString());
}

QString RootNodeName(const RecordKind& kind) {
    return GetText(kind.rootNodeNameKey, kind.rootNodeNameDefault);
}

QString StatusCountText(const RecordKind& kind, int count) {
    const QString text = kind.statusKey.isEmpty() ? kind.statusText : GetText(kind.statusKey, QString());
    if (kind.statusKey.isEmpty() && kind.statusText.isEmpty())
        return QString();
    return text + kind.statusSeparator + QString::number(count);
}

QString GroupFilter(const QString& column, int key) {
    return column + QStringLiteral(" = ") + QString::number(key);
}

QString QuickSearchStatement(const QString& sqlTemplate, const QString& pattern) {
    QString sql = sqlTemplate;
    ReplaceSubstring(sql, QStringLiteral("@"), QStringLiteral("*"));
    QVariantList args;
    for (qsizetype n = sql.count(QStringLiteral("%s")); n > 0; --n)
        args << pattern;
    return format(sql, args);
}

QuickSearch::QuickSearch(const RecordKind& kind) : m_kind(kind) {
    QueryQuickSearch.setObjectName(QStringLiteral("QueryQuickSearch"));
}

std::optional<SearchHit> QuickSearch::Find(bool next, const QString& pattern) {
    if (!next) {
        QueryQuickSearch.Close();
        QueryQuickSearch.SetDatabase(&database());
        QueryQuickSearch.SetSql(QuickSearchStatement(m_kind.quickSearchSql, pattern));
        QueryQuickSearch.Open();
    } else if (!QueryQuickSearch.Active()) {
        ShowInfo(GetText(kStartSearchFirst, QString()));
        return std::nullopt;
    } else {
        QueryQuickSearch.Next();
    }
    if (QueryQuickSearch.IsEmpty()) {
        ShowInfo(GetText(m_kind.noMatching, QString()));
        return std::nullopt;
    }
    // Past the last hit the query stays at its end, so each further find next says so again.
    if (QueryQuickSearch.Eof()) {
        ShowInfo(GetText(m_kind.noMoreMatching, QString()));
        return std::nullopt;
    }
    SearchHit hit;
    hit.recordId = QueryQuickSearch.FieldByName(m_kind.recordKey).AsInteger();
    hit.groupKey = m_kind.groupOfRecord ? m_kind.groupOfRecord(hit.recordId) : 0;
    return hit;
}

QString ColumnWidthOption(const QList<ColumnOption>& columns, const QString& fieldName) {
    for (const ColumnOption& column : columns)
        if (column.name.compare(fieldName, Qt::CaseInsensitive) == 0)
            return column.option;
    return QString();
}

int DefaultColumnWidth(const QList<ColumnOption>& columns, const QString& fieldName) {
    const QString option = ColumnWidthOption(columns, fieldName);
    if (option.isEmpty() || !FormResourceHolder || !options().has(option))
        return 0;
    return options().GetOption(option).defaultValue.toInt();
}

WindowLayout ReadWindowLayout(const QString& prefix, bool hasVertical, bool hasHorizontal,
                              const QList<ColumnOption>& columns, const QStringList& fieldNames) {
    TVintraOptions& o = options();
    WindowLayout layout;
    layout.maximized = o.GetAsBoolean(kMaximized);
    if (!layout.maximized) {
        layout.height = o.GetAsInteger(prefix + QStringLiteral("SizeHeight"));
        layout.width = o.GetAsInteger(prefix + QStringLiteral("SizeWidth"));
        layout.top = o.GetAsInteger(prefix + QStringLiteral("PositionTop"));
        layout.left = o.GetAsInteger(prefix + QStringLiteral("PositionLeft"));
    }
    if (hasVertical)
        layout.splitterVertical = o.GetAsInteger(prefix + QStringLiteral("SplitterVertical"));
    if (hasHorizontal)
        layout.splitterHorizontal = o.GetAsInteger(prefix + QStringLiteral("SplitterHorizontal"));
    for (const QString& field : fieldNames) {
        const QString option = ColumnWidthOption(columns, field);
        if (!option.isEmpty())
            layout.columnWidths << qMakePair(field, o.GetAsInteger(option));
    }
    return layout;
}

void StoreWindowLayout(const QString& prefix, const WindowLayout& layout,
                       const QList<ColumnOption>& columns) {
    TVintraOptions& o = options();
    o.SetAsBoolean(kMaximized, layout.maximized);
    if (!layout.maximized) {
        o.SetAsInteger(prefix + QStringLiteral("SizeHeight"), layout.height);
        o.SetAsInteger(prefix + QStringLiteral("SizeWidth"), layout.width);
        o.SetAsInteger(prefix + QStringLiteral("PositionTop"), layout.top);
        o.SetAsInteger(prefix + QStringLiteral("PositionLeft"), layout.left);
    }
    o.Store();
    if (layout.splitterVertical >= 0)
        o.SetAsInteger(prefix + QStringLiteral("SplitterVertical"), layout.splitterVertical);
    if (layout.splitterHorizontal >= 0)
        o.SetAsInteger(prefix + QStringLiteral("SplitterHorizontal"), layout.splitterHorizontal);
    for (const auto& [field, width] : layout.columnWidths) {
        const QString option = ColumnWidthOption(columns, field);
        if (!option.isEmpty())
            o.SetAsInteger(option, width);
    }
    o.Store();
}

bool VerticalSplitterAllowed(const RecordKind& kind, int newWidth, int clientWidth) {
    return newWidth >= kind.verticalMinimum && newWidth <= clientWidth - kind.verticalMargin;
}

bool HorizontalSplitterAllowed(const RecordKind& kind, int newHeight, int clientHeight) {
    return newHeight >= kind.horizontalMinimum && newHeight <= clientHeight - kind.horizontalMargin;
}

} // namespace qm

namespace {

struct FieldLabel {
    int kind;
    const char* key;
    const char* defaultText;
};

constexpr FieldLabel FieldLabels[] = {
    {0, "rec_name", "recipe name"},
    {1, "prep_time", "preparation time"},
    {2, "servings", "servings"},
    {4, "ingred_name", "ingredient name"},
    {5, "ingred_base", "ingredient base unit"},
    {6, "menu_name", "menu name"},
    {7, "unit_name", "unit name"},
    {8, "unit_abb", "unit abbreviation"},
    {9, "unit_small_abb", "unit small abbreviation"},
    {10, "cooking_tip_name", "cooking tip name"},
    {11, "cooking_tip_desc", "cooking tip description"},
    {12, "category_name", "category name"},
};

} // namespace

QString FieldErrorLabel(int kind) {
    for (const FieldLabel& label : FieldLabels)
        if (label.kind == kind)
            return GetText(QString::fromLatin1(label.key), QString::fromLatin1(label.defaultText));
    return QString();
}

void AddFieldError(int kind, QString& text) {
    const QString label = FieldErrorLabel(kind);
    if (label.isEmpty())
        return;
    if (!text.isEmpty())
        text += QLatin1Char('\n');
    // Without a dictionary the English texts keep the message readable.
    const QString pattern =
        kind == 1 ? GetText(QStringLiteral("ErrorInvalidValuePositiveInteger"),
                            QStringLiteral("The %s must be a positive whole number."))
                  : GetText(QStringLiteral("ErrorEmptyField"), QStringLiteral("Please fill in the %s."));
    text += qm::format(pattern, {label});
}

bool IsDataSetEmpty(const qm::Dataset& dataSet) {
    return dataSet.Bof() && dataSet.Eof();
}

void GetSelectedIds(const qm::Dataset& dataSet, const QList<int>& selectedRows, const QString& keyField,
                    bool& containsLocked, QString& idList) {
    QList<int> rows = selectedRows;
    if (rows.isEmpty() && dataSet.currentRow() >= 0)
        rows << dataSet.currentRow();
    const int field = dataSet.fieldIndex(keyField);
    QStringList ids;
    containsLocked = false;
    for (int row : std::as_const(rows)) {
        const int id = dataSet.value(row, field).toInt();
        if (id < qm::LastLockedId + 1)
            containsLocked = true;
        ids << QString::number(id);
    }
    idList = ids.join(QStringLiteral(", "));
}

bool SelectRecordById(qm::Dataset& dataSet, const QString& keyField, int id) {
    return dataSet.Locate(keyField, id);
}

void SortInsertedRecords(qm::Dataset& table) {
    auto inserting = std::make_shared<bool>(false);
    const qm::Dataset::Event beforePost = table.BeforePost;
    const qm::Dataset::Event afterPost = table.AfterPost;
    table.BeforePost = [beforePost, inserting](qm::Dataset& t) {
        *inserting = t.State() == qm::dsInsert;
        if (beforePost)
            beforePost(t);
    };
    table.AfterPost = [afterPost, inserting](qm::Dataset& t) {
        if (*inserting) {
            *inserting = false;
            t.Refresh();
        }
        if (afterPost)
            afterPost(t);
    };
}
