// The record-window rules without widgets, on a fresh database: group and record deletes, the
// quick search, validation texts, selections, drops and remembered geometry.
#include "test_store.h"

#include "components/database.h"
#include "components/messages.h"
#include "components/sql_format.h"
#include "store/option_table.h"
#include "store/record_kinds.h"
#include "store/record_window_rules.h"

#include <QTest>

using Kind = TMessagePresenter::Kind;

namespace {

QString text(const char* key) {
    return GetText(QString::fromLatin1(key), QString());
}

QList<QPair<Kind, QString>> shown(std::initializer_list<QPair<Kind, const char*>> keys) {
    QList<QPair<Kind, QString>> result;
    for (const auto& [kind, key] : keys)
        result << qMakePair(kind, text(key));
    return result;
}

int count(TestStore& store, const QString& sql) {
    return store.db().scalar(sql).toInt();
}

// Two ingredient types, the first with a subtype; ingredients with lines, grams and a unit.
const QStringList kIngredientScenario = {
    "INSERT INTO ITypes ( ingredTypeId, ingredTypeName, parentId ) VALUES ( 1, 'Fruit', 0 ), ( 2, 'Dairy', 0 "
    "), "
    "( 3, 'Berries', 1 ), ( 4, 'Spices', 0 )",
    "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
    "( 1, 'gram', 'g', 'g', 1, 1 ), ( 9, 'cup', 'cup', 'c', 2, NULL ), ( 100001, 'scoop', 'sc', 's', 2, NULL "
    ")",
    "INSERT INTO Ingreds ( ingredId, ingredTypeId, ingredName, unitId, ingredPrice ) VALUES "
    "( 200001, 2, 'Milk', 9, 1.5 ), ( 200002, 2, 'Cream', 100001, 3 ), ( 200003, 1, 'Apple', 1, 0.5 ), "
    "( 50, 1, 'Apricot', 1, 0.7 ), ( 200004, 1, 'Grape', 1, 0.2 ), ( 200005, 4, 'Pepper@Home', 1, 9 )",
    "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 9, 200001, 244 ), ( 100001, 200002, 50 ), "
    "( 9, 200003, 150 )",
    "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 1, 200001, 2, 9 ), ( 1, 200003, 1, 1 "
    "), "
    "( 2, 200002, 1, 100001 )",
};

} // namespace

class TestRecordWindowRules : public QObject {
    Q_OBJECT

private slots:
    // Every option a kind reads is declared and every message it shows is in the language file, so
    // a misspelt key (the misspelling CookinTip is the declared one) fails here. Each cascade runs
    // on the real schema, except the statements kept as they stand although they name columns the
    // tables lack.
    void kindsMatchOptionsTextsAndSchema() {
        TestStore store;
        const qm::RecordKind kinds[] = {RecordKinds::Units(), RecordKinds::Ingredients(),
                                        RecordKinds::Recipes(), RecordKinds::Menus(),
                                        RecordKinds::CookingTips()};
        for (const qm::RecordKind& kind : kinds) {
            for (const QString& option : kind.OptionNames())
                QVERIFY2(store.holder().VintraOptions.has(option), qPrintable(option));
            QStringList keys = {kind.questionDeleteRecord, kind.noMatching, kind.noMoreMatching,
                                kind.recordReferenced, kind.statusKey};
            if (kind.lockedRecords)
                keys << kind.lockedDelete;
            if (kind.HasTree())
                keys << kind.questionDeleteGroup << kind.groupContainsChildren << kind.groupContainsRecords
                     << kind.newGroupNameKey << kind.rootNodeNameKey;
            for (const QString& key : std::as_const(keys))
                if (!key.isEmpty())
                    QVERIFY2(store.holder().VintraDictionary.contains(key), qPrintable(key));

            const bool brokenGroupCascade = kind.recordTable == QLatin1String("Menus") ||
                                            kind.recordTable == QLatin1String("CookingTips");
            const bool brokenRecordCascade = kind.recordTable == QLatin1String("CookingTips");
            for (const QString& sql : kind.referenceCounts)
                QCOMPARE(count(store, qm::format(sql, {7})), 0);
            if (kind.HasTree())
                QCOMPARE(qm::ClassifyGroup(kind, 7), int(qm::gvEmpty));
            bool groupFailed = false;
            try {
                qm::RunCascade(kind.groupCascade, 7);
            } catch (const qm::DbError&) {
                groupFailed = true;
            }
            QVERIFY2(groupFailed == brokenGroupCascade, qPrintable(kind.recordTable));
            bool recordFailed = false;
            try {
                qm::RunCascade(kind.recordCascade, 7);
                qm::RunCascade(kind.recordDeleteSteps, 7);
            } catch (const qm::DbError&) {
                recordFailed = true;
            }
            QVERIFY2(recordFailed == brokenRecordCascade, qPrintable(kind.recordTable));
        }
    }

    // Child groups win over records, and nothing is deleted.
    void childrenMessageWinsOverRecords() {
        TestStore store;
        store.exec(kIngredientScenario);
        TScriptedPresenter presenter;
        presenter.answers = {mrYes};
        QCOMPARE(qm::ClassifyGroup(RecordKinds::Ingredients(), 1), int(qm::gvChildren));
        QVERIFY_THROWS_EXCEPTION(Abort, qm::DeleteGroupRules(RecordKinds::Ingredients(), 1));
        QCOMPARE(presenter.shown, shown({{TMessagePresenter::Question, "QuestionDeleteIngredientType"},
                                         {TMessagePresenter::Info, "InfoIngredientTypeContainsChildren"}}));
        QCOMPARE(count(store, "SELECT COUNT(*) FROM Ingreds WHERE ingredTypeId = 1"), 3);
        QCOMPARE(count(store, "SELECT COUNT(*) FROM Contents"), 3);
    }

    void groupWithRecordsRestrictedOrCascaded() {
        TestStore store;
        store.exec(kIngredientScenario);
        TScriptedPresenter presenter;
        // The question answered No ends silently, whatever the rule.
        presenter.answers = {mrNo};
        QVERIFY_THROWS_EXCEPTION(Abort, qm::DeleteGroupRules(RecordKinds::Ingredients(), 2));
        QCOMPARE(presenter.shown, shown({{TMessagePresenter::Question, "QuestionDeleteIngredientType"}}));

        // Restricted: the records message, nothing deleted.
        presenter.clear();
        store.holder().VintraOptions.SetAsBoolean("ConfirmDeletionIngredientType", false);
        QVERIFY_THROWS_EXCEPTION(Abort, qm::DeleteGroupRules(RecordKinds::Ingredients(), 2));
        QCOMPARE(presenter.shown,
                 shown({{TMessagePresenter::Info, "InfoIngredientTypeContainsIngredients"}}));
        QCOMPARE(count(store, "SELECT COUNT(*) FROM Ingreds WHERE ingredTypeId = 2"), 2);

        // Cascade (the window's test follows the ingredients and their lines): their grams go too,
        // other groups keep theirs, and the group row itself is the tree's to delete.
        presenter.clear();
        store.holder().VintraOptions.SetAsInteger("IRDeleteIngredientType", 2);
        qm::DeleteGroupRules(RecordKinds::Ingredients(), 2);
        QVERIFY(presenter.shown.isEmpty());
        QCOMPARE(count(store, "SELECT COUNT(*) FROM Convs WHERE ingredId IN ( 200001, 200002 )"), 0);
        QCOMPARE(count(store, "SELECT COUNT(*) FROM Convs"), 1);
        QCOMPARE(count(store, "SELECT COUNT(*) FROM ITypes WHERE ingredTypeId = 2"), 1);
    }

    // A locked record is refused before any question; the boundary is 100000. The question is
    // answered No.
    void lockedRecordRefusedFirst() {
        TestStore store;
        TScriptedPresenter presenter;
        QVERIFY_THROWS_EXCEPTION(Abort, qm::DeleteRecordRules(RecordKinds::Units(), 100000));
        QCOMPARE(presenter.shown, shown({{TMessagePresenter::Info, "InfoLockedUnitDelete"}}));
        presenter.clear();
        QVERIFY_THROWS_EXCEPTION(Abort, qm::DeleteRecordRules(RecordKinds::Units(), 100001));
        QCOMPARE(presenter.shown, shown({{TMessagePresenter::Question, "QuestionDeleteUnit"}}));
    }

    // Recipes and menus have no locked check; a menu asks always and drops its recipe rows.
    void kindsWithoutLockAndWithFixedQuestion() {
        TestStore store;
        store.exec({"INSERT INTO RecMen ( menuId, recId, servings ) VALUES ( 12, 3, 2 ), ( 13, 3, 1 )"});
        TScriptedPresenter presenter;
        presenter.answers = {mrYes};
        qm::DeleteRecordRules(RecordKinds::Menus(), 12);
        QCOMPARE(presenter.shown, shown({{TMessagePresenter::Question, "QuestionDeleteMenu"}}));
        QCOMPARE(count(store, "SELECT COUNT(*) FROM RecMen"), 1);
        // A window's own cascade stands in for the kind's statements.
        presenter.clear();
        store.holder().VintraOptions.SetAsBoolean("ConfirmDeletionRecipe", false);
        store.holder().VintraOptions.SetAsInteger("IRDeleteRecipe", 2);
        QList<int> cascaded;
        qm::DeleteRecordRules(RecordKinds::Recipes(), 3, [&](int id) { cascaded << id; });
        QVERIFY(presenter.shown.isEmpty());
        QCOMPARE(cascaded, QList<int>{3});
        QCOMPARE(count(store, "SELECT COUNT(*) FROM RecMen"), 1);
    }

    // Find next before any find asks for one; hits come in the statement's order (group, then
    // name) with their groups; past the last one every find next says so again. A '*' typed by the
    // user is a wildcard, an '@' typed is none.
    void findWalksHitsAndStaysAtTheEnd() {
        TestStore store;
        store.exec(kIngredientScenario);
        TScriptedPresenter presenter;
        qm::QuickSearch search(RecordKinds::Ingredients());
        QVERIFY(!search.Find(true, "a"));
        QCOMPARE(presenter.shown, shown({{TMessagePresenter::Info, "InfoStartSearchFirst"}}));
        presenter.clear();
        QList<QPair<int, int>> hits;
        for (auto hit = search.Find(false, "ap"); hit; hit = search.Find(true, "ignored"))
            hits << qMakePair(hit->recordId, hit->groupKey);
        QCOMPARE(hits, (QList<QPair<int, int>>{{200003, 1}, {50, 1}, {200004, 1}}));
        QVERIFY(!search.Find(true, "ap"));
        QCOMPARE(presenter.texts(), QStringList(2, text("InfoNoMoreMatchingIngredients")));

        presenter.clear();
        QVERIFY(!search.Find(false, "zz"));
        QCOMPARE(presenter.shown, shown({{TMessagePresenter::Info, "InfoNoMatchingIngredient"}}));

        QCOMPARE(search.Find(false, "p*e").value_or(qm::SearchHit{}).recordId, 200003);
        QVERIFY(!search.Find(false, "p@h")); // read as a wildcard it would find Pepper@Home
        QCOMPARE(search.Find(false, "r@h").value_or(qm::SearchHit{}).recordId, 200005);
    }

    // The lines come in order; kind 3 and an unknown kind add nothing.
    void fieldErrorLines() {
        TestStore store;
        QString errors;
        for (int kind : {0, 3, 1, 13, 2})
            AddFieldError(kind, errors);
        QCOMPARE(errors,
                 QStringLiteral("Please fill in the recipe name.\nThe preparation time must be a positive "
                                "whole number.\nPlease fill in the servings."));
    }

    // Without a selection the current row is the one; ids up to 100000 are locked.
    void selectedIdsAndTheLockedFlag() {
        TestStore store;
        store.exec({"INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall ) VALUES "
                    "( 5, 'a', 'a', 'a' ), ( 100000, 'b', 'b', 'b' ), ( 100001, 'c', 'c', 'c' )"});
        qm::Dataset units;
        units.SetDatabase(&store.db());
        units.SetTableName("Units");
        units.SetSortedBy("unitName");
        units.Open();
        QVERIFY(SelectRecordById(units, "unitId", 100001));
        bool containsLocked = true;
        QString list;
        GetSelectedIds(units, {}, "unitId", containsLocked, list);
        QCOMPARE(list, QStringLiteral("100001"));
        QVERIFY(!containsLocked);
        QVERIFY(units.moveTo(1));
        GetSelectedIds(units, {}, "unitId", containsLocked, list);
        QCOMPARE(list, QStringLiteral("100000"));
        QVERIFY(containsLocked);
        QVERIFY(!IsDataSetEmpty(units));
        units.Close();
        QVERIFY(IsDataSetEmpty(units));
    }

    void moveStatementsByKind() {
        TestStore store;
        store.exec({"INSERT INTO CookingTips ( cookingTipId, cookingTipName, cookingTipGroupId ) VALUES "
                    "( 1, 'a', 1 ), ( 2, 'b', 1 )"});
        // Cooking tips move one at a time: the current one only.
        qm::MoveRecords(RecordKinds::CookingTips(), 3, "1, 2", 2);
        QCOMPARE(count(store, "SELECT cookingTipGroupId FROM CookingTips WHERE cookingTipId = 1"), 1);
        QCOMPARE(count(store, "SELECT cookingTipGroupId FROM CookingTips WHERE cookingTipId = 2"), 3);
    }

    void newGroupsAndStatus() {
        TestStore store;
        const qm::RecordKind menus = RecordKinds::Menus();
        // Menu siblings count on the recipe groups' key, children on their own, untranslated.
        QCOMPARE(qm::NewGroupId(menus, false), 1);
        QCOMPARE(qm::NewGroupId(menus, true), 1);
        QCOMPARE(store.db().scalar("SELECT keyValue FROM PKeys WHERE keyId = 'RGroups'").toInt(), 1);
        QCOMPARE(qm::NewGroupName(menus, false), text("@New_menu_group"));
        QCOMPARE(qm::NewGroupName(menus, true), QStringLiteral("New menu group"));

        QCOMPARE(qm::StatusCountText(RecordKinds::Menus(), 0), text("StatusMenusInCurrentGroup") + " 0");
        QCOMPARE(qm::StatusCountText(RecordKinds::CookingTips(), 2),
                 QStringLiteral("Cooking tips in current recipe group: 2"));
        QVERIFY(qm::StatusCountText(RecordKinds::Units(), 2).isEmpty());
    }

    // FormClose, maximised: the state is stored and the geometry is not; splitters always; the file
    // is written.
    void layoutStoredMaximised() {
        TestStore store;
        const qm::RecordKind kind = RecordKinds::Ingredients();
        qm::WindowLayout layout;
        layout.maximized = true;
        layout.height = 700;
        layout.splitterVertical = 250;
        qm::StoreWindowLayout(kind.optionPrefix, layout, kind.columns);
        TVintraOptions reread;
        DeclareQuillmealOptions(reread);
        reread.setFileName(store.holder().VintraOptions.fileName());
        QVERIFY(reread.Load());
        QCOMPARE(reread.GetAsBoolean("MDIChildMaximized"), true);
        QCOMPARE(reread.GetAsInteger("IngredSizeHeight"), 480);
        QCOMPARE(reread.GetAsInteger("IngredSplitterVertical"), 250);
    }

    // Column widths match by field name without case; the units window compares its factor column
    // with an option name, so that width is never kept.
    void unitFactorColumnNeverMatches() {
        const qm::RecordKind units = RecordKinds::Units();
        QCOMPARE(qm::ColumnWidthOption(units.columns, "UNITTYPETEXT"), QStringLiteral("UnitColUnitType"));
        QVERIFY(qm::ColumnWidthOption(units.columns, "UnitConv").isEmpty());
    }

    // The left panel keeps 185 pixels and leaves 200; the bottom one keeps 241 and leaves 180.
    void splitterBounds() {
        const qm::RecordKind kind = RecordKinds::Ingredients();
        QVERIFY(qm::VerticalSplitterAllowed(kind, 185, 1000));
        QVERIFY(!qm::VerticalSplitterAllowed(kind, 184, 1000));
        QVERIFY(!qm::VerticalSplitterAllowed(kind, 801, 1000));
        QVERIFY(qm::HorizontalSplitterAllowed(kind, 241, 600));
        QVERIFY(!qm::HorizontalSplitterAllowed(kind, 240, 600));
        QVERIFY(!qm::HorizontalSplitterAllowed(kind, 421, 600));
    }
};

QTEST_GUILESS_MAIN(TestRecordWindowRules)
#include "test_record_window_rules.moc"
