// The dataset and its grid model on a real SQLite file: states, writes by key, refusals through
// Abort, filter, Locate, calculated fields, master-detail, bookmarks, read-only, columns read per
// row, and the ranges of declared column types.
#include "components/database.h"
#include "components/dataset.h"
#include "components/dataset_model.h"
#include "components/messages.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace qm;

class TestDataset : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Database> m_db;

    QVariant scalar(const QString& sql) { return m_db->scalar(sql); }

    /// Dishes 1..n: group i % 3, a name, servings, a memo (null on every seventh), a picture and a
    /// number; the big columns are the ones a grid does not show.
    void makeDishes(int n) {
        m_db->exec("CREATE TABLE Dishes ( id INT NOT NULL PRIMARY KEY, grp INTEGER, name TEXT, servings "
                   "SMALLINT, memo TEXT, pic BLOB, kcal FLOAT )");
        m_db->exec(QString("INSERT INTO Dishes WITH RECURSIVE n( i ) AS ( SELECT 1 UNION ALL SELECT i + 1 "
                           "FROM n WHERE i < %1 ) SELECT i, i % 3, printf( 'Dish %05d', i ), i % 12, CASE "
                           "WHEN i % 7 = 0 THEN NULL ELSE printf( 'memo of %d', i ) END, CAST( printf( "
                           "'pic%d', i ) AS BLOB ), i * 1.5 FROM n")
                       .arg(n));
    }
    /// The memo of a dish as text; null when it has none.
    static QString memoOf(int id) { return id % 7 == 0 ? QString() : QString("memo of %1").arg(id); }
    static bool hasMemo(Dataset& ds, int id) {
        const Field memo = ds.FieldByName("memo");
        return memo.IsNull() == memoOf(id).isNull() && memo.AsString() == memoOf(id);
    }

    /// Dishes, newest name first, keeping only name and servings for every row.
    std::unique_ptr<Dataset> dishes() {
        auto ds = std::make_unique<Dataset>();
        ds->SetDatabase(m_db.get());
        ds->SetTableName("Dishes");
        ds->SetSortedBy("name DESC");
        ds->SetRowFields({"name", "SERVINGS", "noSuchColumn"});
        return ds;
    }

    std::unique_ptr<Dataset> units() {
        auto ds = std::make_unique<Dataset>();
        ds->SetDatabase(m_db.get());
        ds->SetTableName(QStringLiteral("Units"));
        ds->SetSortedBy(QStringLiteral("[unitName] ASC"));
        return ds;
    }

private slots:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        m_db = std::make_unique<Database>();
        m_db->open(m_dir->filePath(QStringLiteral("t.db")));
        m_db->exec("CREATE TABLE Units ( unitId INT NOT NULL PRIMARY KEY, unitName TEXT NOT NULL, "
                   "unitType SMALLINT, unitConv FLOAT, unitDesc TEXT DEFAULT 'none' )");
        m_db->exec("INSERT INTO Units ( unitId, unitName, unitType, unitConv ) VALUES "
                   "( 1, 'gram', 1, 1 ), ( 2, 'Cup', 2, NULL ), ( 3, 'kilogram', 1, 1000 ), "
                   "( 4, 'Ounce', 1, 28.35 )");
        m_db->exec("CREATE TABLE Convs ( unitId INTEGER NOT NULL, ingredId INTEGER NOT NULL, grams FLOAT, "
                   "PRIMARY KEY ( unitId, ingredId ) )");
        m_db->exec("INSERT INTO Convs VALUES ( 2, 10, 120 ), ( 2, 11, 200 ), ( 3, 10, 5 )");
        m_db->exec(
            "CREATE TABLE Recipes ( recId INT NOT NULL PRIMARY KEY, recName TEXT, recServings INTEGER )");
        m_db->exec("INSERT INTO Recipes VALUES ( 1, 'Soup', 4 ), ( 2, 'Bread', 2 ), ( 3, 'Tea', 1 )");
        m_db->exec("CREATE TABLE Contents ( recId INTEGER, ingredId INTEGER, amount FLOAT )");
        m_db->exec("INSERT INTO Contents VALUES ( 1, 10, 200 ), ( 1, 11, 50 ), ( 1, 12, 1 ), ( 2, 10, 500 )");
    }
    void cleanup() {
        m_db.reset();
        m_dir.reset();
    }

    void statesAndNavigation() {
        auto ds = units();
        QCOMPARE(ds->State(), dsInactive);
        QVERIFY_THROWS_EXCEPTION(DatasetError, ds->Next());
        ds->Open();
        QCOMPARE(ds->RecordCount(), 4);
        // Names sort without regard to case, as in the grids.
        QStringList names;
        for (ds->First(); !ds->Eof(); ds->Next())
            names << ds->FieldByName("UNITNAME").AsString();
        QCOMPARE(names, QStringList({"Cup", "gram", "kilogram", "Ounce"}));
        QCOMPARE(ds->currentRow(), 3); // Next past the last row stays on it
        ds->First();
        ds->Prior();
        QVERIFY(ds->Bof());

        ds->Last();
        QVERIFY(ds->Insert());
        QCOMPARE(ds->RecordCount(), 5);
        QCOMPARE(ds->currentRow(), 3); // inserted before the current row
        QVERIFY(ds->FieldByName("unitName").IsNull());
        ds->Cancel();
        QCOMPARE(ds->FieldByName("unitName").AsString(), QString("Ounce"));

        ds->Close();
        ds->SetFilter("unitId > 100");
        ds->Open();
        QCOMPARE(ds->RecordCount(), 4); // set but not on
        ds->Close();
        ds->SetFiltered(true);
        ds->Open();
        QVERIFY(ds->Bof() && ds->Eof() && ds->IsEmpty());
        QVERIFY(ds->Edit()); // on an empty dataset Edit inserts
        QCOMPARE(ds->State(), dsInsert);
        QVERIFY_THROWS_EXCEPTION(DatasetError, ds->FieldByName("noSuchField"));
    }

    void insertEventsAndPostByKey() {
        auto ds = units();
        bool refuseInsert = true;
        ds->BeforeInsert = [&](Dataset&) {
            if (refuseInsert)
                throw Abort();
        };
        ds->OnNewRecord = [](Dataset& d) {
            d.FieldByName("unitId").SetAsInteger(100001);
            d.FieldByName("unitType").SetAsInteger(2);
        };
        ds->Open();
        QVERIFY(!ds->Insert());
        QCOMPARE(ds->State(), dsBrowse);
        QCOMPARE(ds->RecordCount(), 4);

        refuseInsert = false;
        QVERIFY(ds->Append());
        QVERIFY(!ds->Modified()); // what OnNewRecord put in is not a user change
        ds->FieldByName("unitName").SetAsString("pinch");
        ds->FieldByName("unitConv").SetAsFloat(0.36);
        QVERIFY(ds->Post());
        QCOMPARE(scalar("SELECT unitConv FROM Units WHERE unitId = 100001 AND unitType = 2").toDouble(),
                 0.36);
        // Columns not written take their default, and the record shows it after the post.
        QCOMPARE(ds->FieldByName("unitDesc").AsString(), QString("none"));

        QVERIFY(ds->Locate("unitId", 3));
        QVERIFY(ds->Edit());
        ds->FieldByName("unitName").SetAsString("kg");
        ds->FieldByName("unitId").SetAsInteger(30); // the key itself may change
        QVERIFY(ds->Post());
        QCOMPARE(scalar("SELECT unitName FROM Units WHERE unitId = 30").toString(), QString("kg"));
        QCOMPARE(scalar("SELECT COUNT(*) FROM Units WHERE unitId = 3").toInt(), 0);
        QCOMPARE(scalar("SELECT unitName FROM Units WHERE unitId = 1").toString(), QString("gram"));
        // Edit and Post without a change writes nothing but still passes BeforePost.
        int beforePost = 0;
        ds->BeforePost = [&](Dataset&) { ++beforePost; };
        QVERIFY(ds->Edit() && ds->Post());
        QCOMPARE(beforePost, 1);
    }

    void postCompoundKey() {
        Dataset ds;
        ds.SetDatabase(m_db.get());
        ds.SetTableName("Convs"); // key read from the table: ( unitId, ingredId )
        ds.Open();
        QVERIFY(ds.Locate(QStringList{"unitId", "ingredId"}, QVariantList{2, 11}));
        QVERIFY(ds.Edit());
        ds.FieldByName("grams").SetAsFloat(210);
        QVERIFY(ds.Post());
        QCOMPARE(scalar("SELECT grams FROM Convs WHERE unitId = 2 AND ingredId = 11").toDouble(), 210.0);
        QCOMPARE(scalar("SELECT SUM( grams ) FROM Convs").toDouble(), 335.0);

        QVERIFY(ds.Locate(QStringList{"unitId", "ingredId"}, QVariantList{3, 10}));
        QVERIFY(ds.Delete());
        QCOMPARE(scalar("SELECT COUNT(*) FROM Convs WHERE unitId = 3").toInt(), 0);
    }

    void abortRefusesPostAndDelete() {
        auto ds = units();
        ds->BeforePost = [](Dataset& d) {
            if (d.FieldByName("unitName").IsNull())
                throw Abort();
        };
        int afterPost = 0;
        ds->AfterPost = [&](Dataset&) { ++afterPost; };
        ds->Open();
        QVERIFY(ds->Edit());
        ds->FieldByName("unitConv").SetAsFloat(2.5);
        ds->FieldByName("unitName").SetAsString(""); // a cleared text counts as null
        QVERIFY(!ds->Post());
        QCOMPARE(ds->State(), dsEdit);
        QCOMPARE(ds->FieldByName("unitConv").AsFloat(), 2.5);
        QVERIFY(scalar("SELECT unitConv FROM Units WHERE unitId = 2").isNull());
        ds->FieldByName("unitName").SetAsString("Cup");
        QVERIFY(ds->Post());
        QCOMPARE(afterPost, 1);
        QCOMPARE(scalar("SELECT unitConv FROM Units WHERE unitId = 2").toDouble(), 2.5);

        // A refused post also stops the move that needed it.
        QVERIFY(ds->Insert());
        ds->FieldByName("unitId").SetAsInteger(100003);
        ds->Next();
        QCOMPARE(ds->State(), dsInsert);
        // An engine error reaches the caller and keeps the insert too.
        ds->BeforePost = nullptr;
        ds->FieldByName("unitName").SetAsString(""); // unitName is NOT NULL
        QVERIFY_THROWS_EXCEPTION(DbError, ds->Post());
        QCOMPARE(ds->State(), dsInsert);
        QCOMPARE(ds->FieldByName("unitId").AsInteger(), 100003);
        ds->Cancel();

        // A refused delete keeps the row, in the dataset and in the file.
        int afterDelete = 0;
        ds->BeforeDelete = [](Dataset& d) {
            if (d.FieldByName("unitId").AsInteger() <= 1)
                throw Abort();
        };
        ds->AfterDelete = [&](Dataset&) { ++afterDelete; };
        QVERIFY(ds->Locate("unitId", 1));
        QVERIFY(!ds->Delete());
        QCOMPARE(ds->FieldByName("unitId").AsInteger(), 1);
        QCOMPARE(scalar("SELECT COUNT(*) FROM Units WHERE unitId = 1").toInt(), 1);

        QVERIFY(ds->Locate("unitId", 3)); // kilogram, followed by Ounce
        QVERIFY(ds->Delete());
        QCOMPARE(afterDelete, 1);
        QCOMPARE(ds->FieldByName("unitName").AsString(), QString("Ounce"));
        QCOMPARE(scalar("SELECT COUNT(*) FROM Units WHERE unitId = 3").toInt(), 0);
    }

    void locate_data() {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("found"); // empty: no match

        QTest::newRow("number given as text") << "unitId" << QVariant("3") << "kilogram";
        QTest::newRow("text other case") << "unitName" << QVariant("Gram") << "";
        QTest::newRow("null") << "unitConv" << QVariant() << "Cup";
        QTest::newRow("field name any case") << "UNITID" << QVariant(1) << "gram";
    }
    void locate() {
        QFETCH(QString, field);
        QFETCH(QVariant, value);
        QFETCH(QString, found);
        auto ds = units();
        int scrolls = 0;
        ds->AfterScroll = [&](Dataset&) { ++scrolls; };
        ds->Open();
        QCOMPARE(scrolls, 1);
        ds->Last();
        QCOMPARE(scrolls, 2);
        QCOMPARE(ds->Locate(field, value), !found.isEmpty());
        QCOMPARE(ds->FieldByName("unitName").AsString(), found.isEmpty() ? QString("Ounce") : found);
        QCOMPARE(scrolls, found.isEmpty() ? 2 : 3);
    }

    void fieldConversions_data() {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<int>("asInteger");
        QTest::addColumn<double>("asFloat");
        QTest::addColumn<QString>("asString");
        QTest::addColumn<bool>("asBoolean");
        QTest::newRow("null") << QVariant() << 0 << 0.0 << "" << false;
        QTest::newRow("real rounds") << QVariant(2.75) << 3 << 2.75 << "2.75" << true;
        QTest::newRow("tenth") << QVariant(0.1) << 0 << 0.1 << "0.1" << true;
        QTest::newRow("word") << QVariant("abc") << 0 << 0.0 << "abc" << false;
    }
    void fieldConversions() {
        QFETCH(QVariant, stored);
        QFETCH(int, asInteger);
        QFETCH(double, asFloat);
        QFETCH(QString, asString);
        QFETCH(bool, asBoolean);
        // A column without a declared type keeps each value as it was given.
        m_db->exec("CREATE TABLE Vals ( id INT PRIMARY KEY, v )");
        m_db->exec("INSERT INTO Vals VALUES ( 1, :v )", {{"v", stored}});
        Dataset ds;
        ds.SetDatabase(m_db.get());
        ds.SetTableName("Vals");
        ds.Open();
        const Field f = ds.FieldByName("v");
        QCOMPARE(f.IsNull(), !stored.isValid());
        QCOMPARE(f.AsInteger(), asInteger);
        QCOMPARE(f.AsFloat(), asFloat);
        QCOMPARE(f.AsString(), asString);
        QCOMPARE(f.AsBoolean(), asBoolean);
    }

    void calculatedFields() {
        auto ds = units();
        ds->AddCalculatedField("milligrams");
        ds->OnCalcFields = [](Dataset& d) {
            QCOMPARE(d.State(), dsCalcFields);
            if (!d.FieldByName("unitConv").IsNull())
                d.FieldByName("milligrams").SetAsFloat(d.FieldByName("unitConv").AsFloat() * 1000);
        };
        ds->Open();
        QVERIFY(ds->Locate("unitId", 3));
        QCOMPARE(ds->FieldByName("milligrams").AsFloat(), 1000000.0);
        QVERIFY(ds->Locate("unitId", 2));
        QVERIFY(ds->FieldByName("milligrams").IsNull());
        QVERIFY(ds->Edit());
        QVERIFY_THROWS_EXCEPTION(DatasetError, ds->FieldByName("milligrams").SetAsFloat(1));
        ds->FieldByName("unitConv").SetAsFloat(0.25);
        QVERIFY(ds->Post());
        QCOMPARE(ds->FieldByName("milligrams").AsFloat(), 250.0);
        QVERIFY_THROWS_EXCEPTION(DatasetError, ds->AddCalculatedField("late"));
    }

    void masterDetail() {
        Dataset master;
        master.SetDatabase(m_db.get());
        master.SetTableName("Recipes");
        master.SetSortedBy("recId");
        Dataset detail;
        detail.SetDatabase(m_db.get());
        detail.SetSql("SELECT ingredId, amount FROM Contents WHERE recId = :recId ORDER BY ingredId");
        detail.SetMasterSource(&master);
        int detailOpens = 0; // the detail is never moved here, so each AfterScroll is an Open
        detail.AfterScroll = [&](Dataset&) { ++detailOpens; };
        QStringList order; // the detail follows before the master's own AfterScroll runs
        master.AfterScroll = [&](Dataset&) { order << QString::number(detail.RecordCount()); };

        master.Open();
        detail.Open();
        QCOMPARE(detail.RecordCount(), 3);
        detailOpens = 0;
        order.clear();
        master.Next();
        QCOMPARE(detail.RecordCount(), 1);
        master.Next();
        QVERIFY(detail.IsEmpty());
        QCOMPARE(detailOpens, 2);
        QCOMPARE(order, QStringList({"1", "0"}));

        // Editing a field the detail does not use leaves it alone; a new master record re-binds.
        master.First();
        QCOMPARE(detailOpens, 3);
        QVERIFY(master.Edit());
        master.FieldByName("recName").SetAsString("Broth");
        QVERIFY(master.Post());
        QCOMPARE(detailOpens, 3);
        QVERIFY(master.Insert());
        QVERIFY(detail.IsEmpty());
        master.Cancel();
        QCOMPARE(detail.RecordCount(), 3);
        master.Close();
        QVERIFY(detail.Active() && detail.IsEmpty());
    }

    void readOnly() {
        Dataset query;
        query.SetDatabase(m_db.get());
        query.SetSql("SELECT unitId, unitName FROM Units");
        query.Open();
        QVERIFY(!query.Edit());
        QVERIFY(!query.Insert());
        QVERIFY(!query.Delete());
        QCOMPARE(query.State(), dsBrowse);
        QVERIFY_THROWS_EXCEPTION(DatasetError, query.FieldByName("unitName").SetAsString("x"));
    }

    void bookmarks() {
        auto ds = units();
        ds->Open();
        QVERIFY(ds->Locate("unitName", "kilogram"));
        const Bookmark mark = ds->GetBookmark();
        QCOMPARE(mark, Bookmark({3}));
        ds->First();
        // Rows added before it do not lose the record.
        m_db->exec("INSERT INTO Units ( unitId, unitName ) VALUES ( 9, 'Cl' ), ( 8, 'dram' )");
        ds->Refresh();
        QCOMPARE(ds->FieldByName("unitName").AsString(), QString("Cup"));
        QVERIFY(ds->GotoBookmark(mark));
        QCOMPARE(ds->FieldByName("unitName").AsString(), QString("kilogram"));
        QVERIFY(ds->Delete());
        QVERIFY(!ds->BookmarkValid(mark));
        QVERIFY(!ds->GotoBookmark(mark));
    }

    // Only the key and the row fields are kept for every row; every column reads as the engine
    // gives it, for the current row and for any other, with the same types and nulls.
    void unheldColumnsReadAsStored() {
        makeDishes(3000);
        auto lazy = dishes();
        lazy->Open();
        const SqlRows whole = m_db->select("SELECT * FROM Dishes ORDER BY name COLLATE NOCASE DESC");
        QCOMPARE(lazy->RecordCount(), 3000);
        QStringList held;
        for (int f = 0; f < lazy->FieldCount(); ++f)
            if (lazy->isHeld(f))
                held << lazy->fieldName(f);
        QCOMPARE(held, QStringList({"id", "name", "servings"}));
        QCOMPARE(lazy->FieldCount(), int(whole.columns.size()));
        for (int row = 0; row < 3000; row += 7)
            for (int f = 0; f < lazy->FieldCount(); ++f) {
                const QVariant a = lazy->value(row, f);
                const QVariant b = whole.rows.at(row).at(f);
                if (a != b || a.metaType() != b.metaType())
                    QFAIL(qPrintable(QString("row %1 field %2: %3 against %4")
                                         .arg(row)
                                         .arg(whole.columns.at(f), a.toString(), b.toString())));
            }
        // Scrolling: the current row's memo follows the cursor both ways.
        for (lazy->First(); lazy->currentRow() < 40; lazy->Next()) {
            const int id = lazy->FieldByName("id").AsInteger();
            QVERIFY(hasMemo(*lazy, id));
            QCOMPARE(lazy->FieldByName("pic").AsString(), QString("pic%1").arg(id));
        }
        lazy->Last();
        QCOMPARE(lazy->FieldByName("kcal").AsFloat(), 1.5);
        lazy->Prior();
        QCOMPARE(lazy->FieldByName("memo").AsString(), QString("memo of 2"));
    }

    // Edit and insert have every column: an edit writes back only what changed, so a memo not
    // touched keeps its value; cancelling an edit or an insert shows the record as stored, also
    // after the rows moved up and down around the insert; a delete moves on to a row read afresh.
    void unheldColumnsThroughChanges() {
        makeDishes(2000);
        auto ds = dishes();
        ds->Open();
        QVERIFY(ds->Locate("id", 1500));
        QVERIFY(ds->Edit());
        QCOMPARE(ds->FieldByName("memo").AsString(), QString("memo of 1500"));
        ds->FieldByName("name").SetAsString("Renamed");
        QVERIFY(ds->Post());
        QCOMPARE(scalar("SELECT memo || '/' || kcal FROM Dishes WHERE id = 1500").toString(),
                 QString("memo of 1500/2250.0"));
        QCOMPARE(ds->FieldByName("pic").AsString(), QString("pic1500"));

        QVERIFY(ds->Edit());
        ds->FieldByName("memo").SetAsString("typed");
        ds->Cancel();
        QCOMPARE(ds->FieldByName("memo").AsString(), QString("memo of 1500"));
        QVERIFY(ds->Edit());
        ds->FieldByName("memo").SetAsString("kept");
        QVERIFY(ds->Post());
        ds->Next();
        ds->Prior();
        QCOMPARE(ds->FieldByName("memo").AsString(), QString("kept"));
        QCOMPARE(scalar("SELECT memo FROM Dishes WHERE id = 1500").toString(), QString("kept"));

        // An insert before the current row shifts it down; its columns still belong to it.
        QVERIFY(ds->Locate("id", 600));
        const int row = ds->currentRow();
        QCOMPARE(ds->value(row + 1, ds->fieldIndex("memo")).toString(), memoOf(599));
        QVERIFY(ds->Insert());
        QCOMPARE(ds->value(row + 1, ds->fieldIndex("memo")).toString(), memoOf(600));
        QVERIFY(ds->FieldByName("memo").IsNull());
        ds->Cancel();
        QCOMPARE(ds->currentRow(), row);
        QVERIFY(hasMemo(*ds, 600));
        QVERIFY(ds->Insert());
        ds->FieldByName("id").SetAsInteger(9000);
        ds->FieldByName("name").SetAsString("Dish 00600b");
        ds->FieldByName("memo").SetAsString("new memo");
        QVERIFY(ds->Post());
        QCOMPARE(ds->FieldByName("memo").AsString(), QString("new memo"));
        ds->Next();
        QCOMPARE(ds->FieldByName("id").AsInteger(), 600);
        QVERIFY(hasMemo(*ds, 600));

        QVERIFY(ds->Delete());
        QCOMPARE(ds->FieldByName("id").AsInteger(), 599);
        QVERIFY(hasMemo(*ds, 599));
        // A change made beside the dataset shows after a refresh.
        m_db->exec("UPDATE Dishes SET memo = 'from outside' WHERE id = 599");
        ds->Refresh();
        QCOMPARE(ds->FieldByName("memo").AsString(), QString("from outside"));
    }

    // Filter and Locate: a filter on a column not held works in the statement; Locate on such a
    // column finds the first row in the dataset's order, within the filter, also mixed with a held
    // field. A calculated field that reads a column not held gets it for every row.
    void unheldColumnsFilterLocateAndCalc() {
        makeDishes(3000);
        auto ds = dishes();
        ds->SetFilter("grp = 1 AND memo IS NOT NULL");
        ds->SetFiltered(true);
        ds->AddCalculatedField("joules");
        ds->OnCalcFields = [](Dataset& d) {
            d.FieldByName("joules").SetAsFloat(d.FieldByName("kcal").AsFloat() * 4.184);
        };
        int scrolls = 0;
        ds->AfterScroll = [&](Dataset&) { ++scrolls; };
        ds->Open();
        QCOMPARE(ds->RecordCount(),
                 scalar("SELECT COUNT(*) FROM Dishes WHERE grp = 1 AND memo IS NOT NULL").toInt());
        QVERIFY(ds->isHeld(ds->fieldIndex("kcal")));
        QVERIFY(!ds->isHeld(ds->fieldIndex("memo")));
        QCOMPARE(ds->value(10, ds->fieldIndex("joules")).toDouble(),
                 ds->value(10, ds->fieldIndex("kcal")).toDouble() * 4.184);

        QVERIFY(!ds->Locate("memo", "memo of 2")); // group 2
        QVERIFY(!ds->Locate("memo", QVariant()));  // filtered out
        QCOMPARE(scrolls, 1);
        QVERIFY(ds->Locate("memo", "memo of 1000"));
        QCOMPARE(ds->FieldByName("id").AsInteger(), 1000);
        QCOMPARE(scrolls, 2);
        // Rows with the same picture: the first in the dataset's order is found.
        m_db->exec("UPDATE Dishes SET pic = CAST( 'same' AS BLOB ) WHERE id IN ( 4, 2998, 1501 )");
        QVERIFY(ds->Locate("pic", QByteArray("same")));
        QCOMPARE(ds->FieldByName("id").AsInteger(), 2998);
        QVERIFY(ds->Locate(QStringList{"servings", "pic"}, QVariantList{1501 % 12, QByteArray("same")}));
        QCOMPARE(ds->FieldByName("id").AsInteger(), 1501);
        QVERIFY(!ds->Locate(QStringList{"servings", "pic"}, QVariantList{0, QByteArray("same")}));
    }

    // Declared types bound the values: a smallint or integer out of range is refused as it is
    // assigned, a text longer than its width (declared or by CHECK) when posted, counted in
    // characters as the engine counts them. A refused value leaves the record as it was and writes
    // nothing; the message names the field and the range.
    void columnRanges() {
        m_db->exec("CREATE TABLE Ranged ( id INT NOT NULL PRIMARY KEY, small SMALLINT, whole INTEGER, code "
                   "VARCHAR(4), name TEXT CHECK ( length( name ) <= 5 ), note TEXT, big BIGINT )");
        m_db->exec("INSERT INTO Ranged ( id, small ) VALUES ( 1, 9 )");
        Dataset ds;
        ds.SetDatabase(m_db.get());
        ds.SetTableName("Ranged");
        ds.Open();
        QVERIFY(ds.Edit());
        const auto refused = [&](const char* field, const QVariant& value, const QString& words) {
            try {
                ds.FieldByName(field).SetValue(value);
            } catch (const FieldRangeError& e) {
                const QString text = QString::fromUtf8(e.what());
                QVERIFY2(text.contains(QString("'%1'").arg(field)) && text.contains(words), qPrintable(text));
                return;
            }
            QFAIL(qPrintable(QString("%1 = %2 was taken").arg(field, value.toString())));
        };
        ds.FieldByName("small").SetValue(32767);
        ds.FieldByName("small").SetValue(-32768);
        refused("small", 32768, "-32768 to 32767");
        refused("small", "40000", "40000");
        refused("small", -32768.5, "-32768.5");
        QCOMPARE(ds.FieldByName("small").AsInteger(), -32768);
        ds.FieldByName("whole").SetValue(2147483647);
        refused("whole", 2147483648LL, "-2147483648 to 2147483647");
        refused("whole", -3e9, "-3000000000");
        ds.FieldByName("big").SetValue(2147483648LL * 4);
        ds.FieldByName("whole").SetValue("not a number"); // no number: the column keeps the text

        ds.FieldByName("code").SetAsString("abcde");
        QVERIFY_THROWS_EXCEPTION(FieldRangeError, ds.Post());
        QCOMPARE(ds.State(), dsEdit);
        QCOMPARE(scalar("SELECT small FROM Ranged WHERE id = 1").toInt(), 9);
        ds.FieldByName("code").SetAsString("abcd");
        ds.FieldByName("name").SetAsString(QString::fromUtf8("\xF0\x9F\x8D\xB2h\xC3\xA9llo")); // 6 characters
        try {
            ds.Post();
            QFAIL("a name of 6 characters was posted");
        } catch (const FieldRangeError& e) {
            QVERIFY(QString::fromUtf8(e.what()).contains("'name'"));
            QVERIFY(QString::fromUtf8(e.what()).contains("at most 5"));
        }
        // Five characters, one outside the basic plane: as long as the engine's check allows.
        ds.FieldByName("name").SetAsString(QString::fromUtf8("\xF0\x9F\x8D\xB2hell"));
        ds.FieldByName("whole").SetValue(-2147483648LL);
        QVERIFY(ds.Post());
        QCOMPARE(scalar("SELECT small || ' ' || whole || ' ' || code FROM Ranged WHERE id = 1").toString(),
                 QString("-32768 -2147483648 abcd"));

        // A value stored out of range is not refused when the edit leaves it alone.
        m_db->exec("UPDATE Ranged SET small = 99999 WHERE id = 1");
        ds.Refresh();
        QVERIFY(ds.Edit());
        ds.FieldByName("note").SetAsString("only the note");
        QVERIFY(ds.Post());

        // Through the grid model the refusal is a message, and the row keeps its value.
        TScriptedPresenter presenter;
        DatasetModel model(&ds);
        model.addColumn("small");
        QVERIFY(!model.setData(model.index(0, 0), 70000));
        QCOMPARE(presenter.texts(TMessagePresenter::Error).size(), 1);
        QVERIFY(presenter.texts().first().contains("'small'"));
        ds.Cancel();
        QCOMPARE(model.data(model.index(0, 0)).toInt(), 99999);
    }

    void model() {
        auto ds = units();
        ds->AddCalculatedField("typeText");
        ds->OnCalcFields = [](Dataset& d) {
            d.FieldByName("typeText")
                .SetAsString(d.FieldByName("unitType").AsInteger() == 1 ? "Weight" : "Volume");
        };
        ds->BeforePost = [](Dataset& d) {
            if (d.FieldByName("unitName").IsNull())
                throw Abort();
        };
        DatasetModel model(ds.get());
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.addColumn("unitName", "Unit name");
        model.addColumn("typeText", "Type");
        model.addColumn("unitConv", "Grams");
        QSignalSpy current(&model, &DatasetModel::currentRowChanged);
        ds->Open();
        QCOMPARE(model.rowCount(), 4);
        QCOMPARE(model.data(model.index(1, 1)).toString(), QString("Weight"));
        QVERIFY(model.flags(model.index(1, 0)) & Qt::ItemIsEditable);
        QVERIFY(!(model.flags(model.index(1, 1)) & Qt::ItemIsEditable));

        QVERIFY(model.setData(model.index(3, 2), 30));
        QCOMPARE(current.last().first().toInt(), 3);
        QCOMPARE(scalar("SELECT unitConv FROM Units WHERE unitName = 'Ounce'").toDouble(), 30.0);

        QVERIFY(!model.setData(model.index(3, 0), QString())); // refused by BeforePost
        QVERIFY(!model.data(model.index(3, 0)).isValid());
        ds->Cancel();
        QCOMPARE(model.data(model.index(3, 0)).toString(), QString("Ounce"));

        QVERIFY(model.setCurrentRow(0));
        QCOMPARE(ds->FieldByName("unitName").AsString(), QString("Cup"));
        QCOMPARE(model.bookmarkAt(0), Bookmark({2}));
        // Row insertions and removals reach the model (the tester checks their signals).
        QVERIFY(ds->Insert());
        QCOMPARE(model.rowCount(), 5);
        ds->Cancel();
        QVERIFY(ds->Delete());
        QCOMPARE(model.rowCount(), 3);
        ds->SetReadOnly(true);
        QVERIFY(!(model.flags(model.index(0, 0)) & Qt::ItemIsEditable));
        QVERIFY(!ds->Delete());
        QCOMPARE(model.rowCount(), 3);
        ds->Close();
        QCOMPARE(model.rowCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestDataset)
#include "test_dataset.moc"
