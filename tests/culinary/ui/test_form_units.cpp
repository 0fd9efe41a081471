// The units window on a fresh database, shown offscreen: the delete order, the post checks, the
// type buttons and their scroll guard, the type column and the quick search.
#include "culinary_window_fixture.h"
#include "search_fixture.h"

#include "components/ui/db_field_binder.h"
#include "components/ui/vintra_db_grid.h"
#include "culinary/ui/form_units.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QRadioButton>
#include <QTest>

namespace {

/// Units 1 gram and 2 cup (delivered), 100000 ounce (the last delivered id), 100001 pinch, the
/// base unit of salt and in a recipe line, 100002 scoop only in Convs, 100003 handful unused,
/// 100004 block of a type that is neither weight nor volume.
class UnitStore : public TestStore {
public:
    UnitStore() {
        exec(
            {"INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
             "( 1, 'gram', 'g', 'g', 1, 1 ), ( 2, 'cup', 'cup', 'c', 2, NULL ), "
             "( 100000, 'ounce', 'oz', 'oz', 1, 28.35 ), ( 100001, 'zest pinch', 'pinch', 'pn', 1, 0.36 ), "
             "( 100002, 'scoop', 'scoop', 'sc', 2, NULL ), ( 100003, 'handful', 'hf', 'hf', 2, NULL ), "
             "( 100004, 'block', 'blk', 'bk', 3, NULL )",
             "INSERT INTO Ingreds ( ingredId, ingredTypeId, ingredName, unitId, ingredPrice ) VALUES "
             "( 100010, 1, 'Salt', 100001, 3.5 ), ( 100011, 1, 'Flour', 1, 1 )",
             "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 100002, 100011, 40 ), ( 100001, 100011, "
             "5 )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 100020, 100010, 2, 100001 ), "
             "( 100021, 100011, 1, 1 )",
             "INSERT INTO PKeys ( keyId, keyValue ) VALUES ( 'Units', 100004 )"});
        WriteDictionary(*this, {{"ErrorEmptyField", "Missing: %s"},
                                {"InfoLockedUnitDelete", "Unit locked"},
                                {"QuestionDeleteUnit", "Delete unit?"},
                                {"InfoUnitReferencedByIngredient", "Unit in use"},
                                {"UnitTypeTextWeight", "Weight"},
                                {"UnitTypeTextVolume", "Volume"}});
    }
    QVariant value(const QString& sql) { return db().scalar(sql); }
    int count(const QString& sql) { return value(sql).toInt(); }
    TVintraOptions& options() { return holder().VintraOptions; }
};

QStringList column(TFormUnits& form, int c) {
    QStringList result;
    QAbstractItemModel* model = form.Grid()->model();
    for (int row = 0; row < model->rowCount(); ++row)
        result << model->index(row, c).data().toString();
    return result;
}

} // namespace

class TestFormUnits : public QObject {
    Q_OBJECT

    FakeFrame m_frame;

    static std::unique_ptr<TFormUnits> open() {
        auto form = std::make_unique<TFormUnits>();
        form->show();
        return form;
    }

private slots:
    void init() {
        m_frame = FakeFrame();
        MdiFrame = &m_frame;
    }
    void cleanup() { MdiFrame = nullptr; }

    // Printable only with a report wired; then the marked rows go to it, locked ones flagged. The
    // quick search looks in the name and both abbreviations.
    void printAndQuickSearch() {
        UnitStore store;
        QCOMPARE(open()->Tag, 0);
        QString printed;
        bool locked = false;
        TFormUnits::PrintUnits = [&](const QString& ids, bool containsLocked) {
            printed = ids;
            locked = containsLocked;
        };
        auto form = open();
        QCOMPARE(form->Tag, 1);
        search_fixture::clickRow(form->Grid(), "unitId", 100003);
        search_fixture::clickRow(form->Grid(), "unitId", 2, Qt::ControlModifier);
        form->Print();
        TFormUnits::PrintUnits = nullptr;
        QCOMPARE(printed, QStringLiteral("2, 100003")); // in the grid's order, by name
        QVERIFY(locked);

        TScriptedPresenter presenter;
        const auto current = [&] { return form->RecordTable().FieldByName("unitId").AsInteger(); };
        m_frame.pattern = "pn";
        form->Find(0);
        QCOMPARE(current(), 100001);
        m_frame.pattern = "blk";
        form->Find(0);
        QCOMPARE(current(), 100004);
    }

    void deleteRules_data() {
        QTest::addColumn<int>("unitId");
        QTest::addColumn<int>("irDelete");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<bool>("deleted");
        // Locked units are refused before any question, whatever the rule.
        QTest::newRow("unit 1") << 1 << 2 << QStringList{"I:Unit locked"} << false;
        QTest::newRow("free unit") << 100003 << 1 << QStringList{"Q:Delete unit?"} << true;
        // A unit that only a conversion uses is referenced, and the message names ingredients.
        QTest::newRow("only in Convs")
            << 100002 << 1 << QStringList{"Q:Delete unit?", "I:Unit in use"} << false;
    }
    void deleteRules() {
        QFETCH(int, unitId);
        QFETCH(int, irDelete);
        QFETCH(QStringList, messages);
        QFETCH(bool, deleted);
        UnitStore store;
        store.options().SetAsInteger("IRDeleteUnit", irDelete);
        auto form = open();
        QVERIFY(form->LocateRecord(unitId));

        TScriptedPresenter presenter;
        presenter.answers = {mrYes};
        QTest::keyClick(form->Grid(), Qt::Key_Delete);
        QCOMPARE(Shown(presenter), messages);
        const QString exists = QStringLiteral("SELECT COUNT(*) FROM Units WHERE unitId = %1").arg(unitId);
        QCOMPARE(store.count(exists), deleted ? 0 : 1);
        QCOMPARE(form->Grid()->model()->rowCount(), deleted ? 6 : 7);
        // Nothing of the cascade ran.
        QCOMPARE(store.count("SELECT COUNT(*) FROM Convs") + store.count("SELECT COUNT(*) FROM Contents"), 4);
    }

    // Under the cascade rule recipe lines and conversions in the unit go, and ingredients based on
    // it fall back to unit 1 with their price as it was.
    void cascadeRepointsIngredientsToUnitOne() {
        UnitStore store;
        store.options().SetAsInteger("IRDeleteUnit", 2);
        auto form = open();
        QVERIFY(form->LocateRecord(100001));
        TScriptedPresenter presenter;
        presenter.answers = {mrYes};
        QTest::keyClick(form->Grid(), Qt::Key_Delete);
        QCOMPARE(Shown(presenter), QStringList{"Q:Delete unit?"});
        QCOMPARE(store.count("SELECT COUNT(*) FROM Units WHERE unitId = 100001"), 0);
        QCOMPARE(store.count("SELECT unitId FROM Ingreds WHERE ingredId = 100010"), 1);
        QCOMPARE(store.value("SELECT ingredPrice FROM Ingreds WHERE ingredId = 100010").toDouble(), 3.5);
        QCOMPARE(store.count("SELECT COUNT(*) FROM Contents WHERE unitId = 100001"), 0);
        QCOMPARE(store.count("SELECT COUNT(*) FROM Contents"), 1);
        QCOMPARE(store.count("SELECT COUNT(*) FROM Convs"), 1);
        QCOMPARE(store.count("SELECT unitId FROM Convs"), 100002);
        QVERIFY(!column(*form, 0).contains("zest pinch"));
    }

    // An empty small abbreviation blocks the post with its own line; there is no check on the
    // factor, so a unit without one posts once it is filled in.
    void postChecks() {
        UnitStore store;
        auto form = open();
        QTest::keyClick(form->Grid(), Qt::Key_Insert);
        qm::Dataset& units = form->RecordTable();
        QCOMPARE(units.FieldByName("unitId").AsInteger(), 100005);
        QTest::keyClicks(child<QLineEdit>(*form, "DBEditUnitName"), "teaspoon");
        QTest::keyClicks(child<QLineEdit>(*form, "DBEditAbbrev"), "tsp");
        TScriptedPresenter presenter;
        QVERIFY(!units.Post());
        QCOMPARE(presenter.texts(TMessagePresenter::Error), QStringList{"Missing: unit small abbreviation"});
        QCOMPARE(units.State(), qm::dsInsert);
        QTest::keyClicks(child<QLineEdit>(*form, "DBEditAbbreviationSmall"), "ts");
        QVERIFY(units.Post());
        QCOMPARE(store.count("SELECT COUNT(*) FROM Units WHERE unitId = 100005"), 1);
        QVERIFY(store.value("SELECT unitType FROM Units WHERE unitId = 100005").isNull());
    }

    // Scrolling checks the button of the unit's type and shows the factor for weight units only,
    // without putting the record into edit state; a click does.
    void scrollGuardKeepsRecordClean() {
        UnitStore store;
        auto form = open();
        auto* weight = child<QRadioButton>(*form, "RadioButtonWeight");
        auto* volume = child<QRadioButton>(*form, "RadioButtonVolume");
        auto* conv = child<QLineEdit>(*form, "DBEditConv");
        qm::Dataset& units = form->RecordTable();
        // The type column names weight and volume; the odd type shows as nothing.
        QCOMPARE(column(*form, 2),
                 (QStringList{"", "Volume", "Weight", "Volume", "Weight", "Volume", "Weight"}));
        for (int row = 6; row >= 0; --row) {
            form->Grid()->setCurrentIndex(form->Grid()->model()->index(row, 0));
            const bool isWeight = units.FieldByName("unitType").AsInteger() == 1;
            QCOMPARE(units.State(), qm::dsBrowse);
            QCOMPARE(weight->isChecked(), isWeight);
            QCOMPARE(volume->isChecked(), !isWeight);
            QCOMPARE(conv->isVisibleTo(form.get()), isWeight);
        }
        // The odd type shows as volume and stays as it is.
        QCOMPARE(store.count("SELECT unitType FROM Units WHERE unitId = 100004"), 3);

        QVERIFY(form->LocateRecord(100003));
        weight->click();
        QCOMPARE(units.State(), qm::dsEdit);
        QVERIFY(conv->isVisibleTo(form.get()));
        QTest::keyClicks(conv, "85.5");
        QVERIFY(units.Post());
        QCOMPARE(store.count("SELECT unitType FROM Units WHERE unitId = 100003"), 1);
        QCOMPARE(store.value("SELECT unitConv FROM Units WHERE unitId = 100003").toDouble(), 85.5);
        QCOMPARE(column(*form, 2).at(3), QStringLiteral("Weight"));
    }

    // A detail edit tells the frame's navigator its dataset; typing puts the record into edit
    // state, and Escape there cancels: an edit goes back to the stored text, an insert goes.
    void escapeInADetailEditCancels() {
        UnitStore store;
        auto form = open();
        qm::Dataset& units = form->RecordTable();
        auto* name = child<QLineEdit>(*form, "DBEditUnitName");
        QCOMPARE(TDBFieldBinder::DatasetOf(name), &units);
        QCOMPARE(TDBFieldBinder::DatasetOf(form->Grid()), nullptr);
        QVERIFY(form->LocateRecord(100003));
        QTest::keyClicks(name, "s");
        QCOMPARE(units.State(), qm::dsEdit);
        QTest::keyClick(name, Qt::Key_Escape);
        QCOMPARE(units.State(), qm::dsBrowse);
        QCOMPARE(name->text(), QStringLiteral("handful"));
        QCOMPARE(store.value("SELECT unitName FROM Units WHERE unitId = 100003").toString(), "handful");

        QTest::keyClick(form->Grid(), Qt::Key_Insert);
        QTest::keyClicks(name, "dash");
        QTest::keyClick(name, Qt::Key_Escape);
        QCOMPARE(units.State(), qm::dsBrowse);
        QCOMPARE(form->Grid()->model()->rowCount(), 7);
        QCOMPARE(name->text(), units.FieldByName("unitName").AsString());
    }

    // A new unit takes its place by name once posted, and stays the current one.
    void newUnitTakesItsPlaceByName() {
        UnitStore store;
        auto form = open();
        QVERIFY(form->LocateRecord(100001)); // the last by name
        QTest::keyClick(form->Grid(), Qt::Key_Insert);
        QTest::keyClicks(child<QLineEdit>(*form, "DBEditUnitName"), "bunch");
        QTest::keyClicks(child<QLineEdit>(*form, "DBEditAbbrev"), "bn");
        QTest::keyClicks(child<QLineEdit>(*form, "DBEditAbbreviationSmall"), "bn");
        QVERIFY(form->RecordTable().Post());
        QCOMPARE(column(*form, 0).mid(0, 3), (QStringList{"block", "bunch", "cup"}));
        QCOMPARE(form->RecordTable().FieldByName("unitName").AsString(), QStringLiteral("bunch"));
        QCOMPARE(form->Grid()->currentIndex().row(), 1);
    }

    // Numbers are shown and read as plain decimals in the machine's format: a factor typed with
    // a group separator or an exponent is not taken, and the edit shows the stored one again.
    void factorReadAsPlainDecimal() {
        UnitStore store;
        auto form = open();
        auto* conv = child<QLineEdit>(*form, "DBEditConv");
        QVERIFY(form->LocateRecord(100000));
        QCOMPARE(conv->text(), QStringLiteral("28.35"));
        for (const char* text : {"1,000", "1e3", "inf"}) {
            conv->setFocus();
            conv->selectAll();
            QTest::keyClicks(conv, QString::fromLatin1(text));
            emit conv->editingFinished();
            QCOMPARE(conv->text(), QStringLiteral("28.35"));
        }
        form->RecordTable().Cancel();
        QCOMPARE(store.value("SELECT unitConv FROM Units WHERE unitId = 100000").toDouble(), 28.35);
    }

    // While its remembered width is the default one, the name column takes what the other columns
    // leave free; a width the user drags is kept, and stored as dragged.
    void nameColumnTakesTheFreeWidth() {
        UnitStore store;
        auto form = open();
        form->resize(900, 500);
        QCoreApplication::processEvents();
        TVintraDBGrid* grid = form->Grid();
        const auto others = [grid] {
            return grid->columnWidth(1) + grid->columnWidth(2) + grid->columnWidth(3);
        };
        QVERIFY(grid->NameColumnFills());
        QCOMPARE(grid->columnWidth(0), grid->viewport()->width() - others());
        form->resize(1100, 500);
        QCoreApplication::processEvents();
        QCOMPARE(grid->columnWidth(0), grid->viewport()->width() - others());
        form->close();
        QCOMPARE(store.options().GetAsInteger("UnitColUnitName"), 400);

        auto again = open();
        again->Grid()->horizontalHeader()->resizeSection(0, 250); // as a drag does
        QVERIFY(!again->Grid()->NameColumnFills());
        again->resize(1000, 500);
        QCoreApplication::processEvents();
        QCOMPARE(again->Grid()->columnWidth(0), 250);
        again->close();
        QCOMPARE(store.options().GetAsInteger("UnitColUnitName"), 250);

        // A stored width other than the default is kept from the start.
        auto third = open();
        QVERIFY(!third->Grid()->NameColumnFills());
        QCOMPARE(third->Grid()->columnWidth(0), 250);
    }
};

QTEST_MAIN(TestFormUnits)
#include "test_form_units.moc"
