// The data module over a fresh database built from the real schema.
#include "test_store.h"

#include "components/messages.h"
#include "store/schema.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTest>
#include <stdexcept>

namespace {

QByteArray fileHash(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

void touch(const QString& path, const QByteArray& content) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray read(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

// Units, ingredients and recipes shared by the amount scenarios.
const QStringList kAmountScenario = {
    "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
    "( 1, 'gram', 'g', 'g', 1, 1 ), ( 7, 'teaspoon', 'tsp', 'ts', 2, NULL ), ( 9, 'cup', 'cup', 'c', 2, NULL "
    "), "
    "( 13, 'liter', 'l', 'l', 2, NULL )",
    "INSERT INTO Ingreds ( ingredId, ingredName, unitId, ingredPrice ) VALUES "
    "( 10, 'Milk', 13, 1.2 ), ( 20, 'Cream', 9, 3 ), ( 21, 'Salt', 1, 0.01 )",
    "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 13, 10, 1030 ), ( 9, 10, 244 )",
    "INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES "
    "( 1, 'Pancakes', 4, 0 ), ( 2, 'Porridge', 2, 0 ), ( 3, 'Tea', 1, 0 ), ( 4, 'Porridge again', 2, 0 )",
    "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES "
    "( 1, 10, 2, 9 ), ( 2, 10, 500, 1 ), ( 3, 10, 3, 7 ), ( 4, 10, 500, 1 )",
};

} // namespace

class TestDataModule : public QObject {
    Q_OBJECT

private slots:
    void schemaHasEveryTable() {
        TestStore store;
        QCOMPARE(store.db().scalar("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table'").toInt(), 25);
        // Widths and required columns hold as the original engine held them.
        QVERIFY_THROWS_EXCEPTION(qm::DbError,
                                 store.exec({"INSERT INTO Units ( unitId, unitName, unitAbbrev, "
                                             "unitAbbrevSmall ) VALUES ( 1, 'x', 'x', 'abc' )"}));
        QVERIFY_THROWS_EXCEPTION(qm::DbError, store.exec({"INSERT INTO Recipes ( recName, recFreeForm ) "
                                                          "VALUES ( 'no id', 0 )"}));
    }

    void scriptSplitting() {
        const QStringList parts = qm::splitSqlScript(QStringLiteral(
            "-- a; comment\nCREATE TABLE A ( x TEXT DEFAULT 'a;b' );\n\nINSERT INTO A VALUES ( '--' )"));
        QCOMPARE(parts.size(), 2);
        QVERIFY(parts.at(0).contains(QStringLiteral("'a;b'")));
        QCOMPARE(parts.at(1), QStringLiteral("INSERT INTO A VALUES ( '--' )"));
    }

    // A key without a row starts at 1 and continues without a gap; a recipe's group and the active
    // user's data.
    void keysAndLookups() {
        TestStore store;
        TDataModuleMain& dm = store.dataModule();
        QCOMPARE(dm.GetNewId(QStringLiteral("Recipes")), 1);
        QCOMPARE(dm.GetNewId(QStringLiteral("Recipes")), 2);
        store.exec(
            {"INSERT INTO Recipes ( recId, recGroupId, recName, recFreeForm ) VALUES ( 8, 9, 'C', 0 )",
             "INSERT INTO PUsers ( userId, userFirstName, userLastName, userSex, userHeight, userBirthDate ) "
             "VALUES ( 1, 'Ada', 'Brook', 2, 168.5, 29000 ), ( 2, 'Ben', 'Brook', 1, 181, 30000 )"});
        QCOMPARE(dm.GetRecipeGroupId(8), 9);
        QCOMPARE(dm.GetRecipeGroupId(99), 0);
        store.holder().VintraOptions.SetAsInteger(QStringLiteral("ActiveUserId"), 2);
        int sex = 0;
        float height = 0;
        double birth = 0;
        dm.GetUserData(sex, height, birth);
        QCOMPARE(sex, 1);
        QCOMPARE(height, 181.0f);
        QCOMPARE(birth, 30000.0);
        // No row for the active user reads as a user of nothing.
        store.holder().VintraOptions.SetAsInteger(QStringLiteral("ActiveUserId"), 77);
        dm.GetUserData(sex, height, birth);
        QCOMPARE(sex, 0);
        QCOMPARE(height, 0.0f);
        QCOMPARE(birth, 0.0);
        // A key is a value, never statement text.
        QCOMPARE(dm.GetNewId(QStringLiteral("it's")), 1);
        QCOMPARE(dm.GetNewId(QStringLiteral("it's")), 2);
        QCOMPARE(dm.GetNewId(QStringLiteral("x' OR keyId <> '")), 1);
        QCOMPARE(dm.GetNewId(QStringLiteral("Recipes")), 3);
        // Counters are found without case, as the rest of the text is.
        QCOMPARE(dm.GetNewId(QStringLiteral("RECIPES")), 4);
    }

    void columnRules() {
        TestStore store;
        // Numbers beyond their column's width are refused with a message that names the column.
        try {
            store.exec({"INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES ( 1, 'x', "
                        "40000, 0 )"});
            QFAIL("servings beyond 16 bits stored");
        } catch (const qm::DbError& e) {
            QVERIFY2(QString::fromUtf8(e.what()).contains("recServings must be a whole number from -32768 to "
                                                          "32767"),
                     e.what());
        }
        QVERIFY_THROWS_EXCEPTION(qm::DbError,
                                 store.exec({"INSERT INTO Recipes ( recId, recName, recFreeForm ) VALUES ( "
                                             "3000000000, 'x', 0 )"}));
        QCOMPARE(store.db().scalar("SELECT COUNT(*) FROM Recipes").toInt(), 0);
        store.exec({"INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES ( 1, 'Äpfel', "
                    "-32768, 0 )"});
        QCOMPARE(store.db().scalar("SELECT recId FROM Recipes WHERE recName = 'äPFEL'").toInt(), 1);

        // A file made before the rules gets them on its next opening, rows and indexes kept.
        const QString old =
            QStringLiteral("CREATE TABLE Menus ( menuId INT NOT NULL PRIMARY KEY, menuName TEXT "
                           "NOT NULL CHECK (length(menuName) <= 64), menuDesc TEXT, "
                           "menuGroupId INTEGER )");
        store.exec({"DROP TABLE Menus", old, "CREATE INDEX MenusByGroup ON Menus (menuGroupId)",
                    "INSERT INTO Menus VALUES ( 5, 'Sonntag', NULL, 2 )"});
        QCOMPARE(store.db().scalar("SELECT COUNT(*) FROM Menus WHERE menuName = 'SONNTAG'").toInt(), 0);
        QCOMPARE(qm::upgradeColumnRules(store.db()), 0); // marked as having the rules
        store.exec({"PRAGMA user_version = 0"});
        QCOMPARE(qm::upgradeColumnRules(store.db()), 1);
        QCOMPARE(qm::upgradeColumnRules(store.db()), 0); // once is enough
        QCOMPARE(store.db().scalar("SELECT menuGroupId FROM Menus WHERE menuName = 'SONNTAG'").toInt(), 2);
        QCOMPARE(store.db().scalar("SELECT COUNT(*) FROM sqlite_master WHERE name = 'MenusByGroup'").toInt(),
                 1);
        QCOMPARE(store.db().scalar("PRAGMA integrity_check").toString(), QStringLiteral("ok"));
        // Rows that break a rule keep their table as it was, and nothing else changes.
        store.exec({"DROP TABLE Menus", old, "INSERT INTO Menus VALUES ( 5, 'x', NULL, 3000000000 )"});
        QCOMPARE(qm::upgradeColumnRules(store.db(), true), 0);
        QCOMPARE(store.db().scalar("PRAGMA user_version").toInt(), 0); // tried again next time
        QCOMPARE(store.db().scalar("SELECT menuGroupId FROM Menus").toLongLong(), 3000000000LL);
    }

    void ingredientInMenu() {
        TestStore store;
        store.exec(kAmountScenario);
        store.exec(
            {"INSERT INTO RecMen ( menuId, recId, servings ) VALUES ( 1, 1, 8 ), ( 1, 2, 2 ), ( 1, 3, 5 ), "
             "( 2, 2, 2 ), ( 2, 4, 2 )"});
        // Pancakes: 8/4 * 2 cups * 244 g; porridge 2/2 * 500 g; tea's teaspoons have no conversion.
        const TIngredientAmount milk = store.dataModule().GetIngredientInMenu(1, 10);
        QCOMPARE(milk.unitName, QStringLiteral("liter"));
        QCOMPARE(milk.amount, (976.0 + 500.0) / 1030.0);
        QCOMPARE(milk.cost, milk.amount * 1.2);
        // Two recipes giving the same (servings, amount, recServings, grams) row count once.
        QCOMPARE(store.dataModule().GetIngredientInMenu(2, 10).amount, 500.0 / 1030.0);
        // A menu that doesn't use the ingredient: zero, with unit and price still set.
        const TIngredientAmount salt = store.dataModule().GetIngredientInMenu(2, 21);
        QCOMPARE(salt.amount, 0.0);
        QCOMPARE(salt.cost, 0.0);
        QCOMPARE(salt.unitName, QStringLiteral("gram"));
        QCOMPARE(salt.price, 0.01);
        // A volume base unit without its own conversion takes the first of any ingredient.
        store.exec({"INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 2, 20, 122, 1 )"});
        const TIngredientAmount cream = store.dataModule().GetIngredientInMenu(2, 20);
        QCOMPARE(cream.unitName, QStringLiteral("cup"));
        QCOMPARE(cream.amount, 122.0 / 244.0);
        QCOMPARE(cream.cost, 0.5 * 3);
        // Zero servings is not guarded: the caller sees the error.
        store.exec({"UPDATE Recipes SET recServings = 0 WHERE recId = 2"});
        QVERIFY_THROWS_EXCEPTION(std::domain_error, store.dataModule().GetIngredientInMenu(2, 10));
    }

    void ingredientForDate() {
        TestStore store;
        store.exec(kAmountScenario);
        const int jan1 = 37987;
        store.exec(
            {QStringLiteral("INSERT INTO RecDate ( recId, dateScheduled, servings ) VALUES ( 1, %1, 4 ), "
                            "( 2, %2, 4 ), ( 2, %3, 2 )")
                 .arg(jan1)
                 .arg(jan1 + 2)
                 .arg(jan1 + 3)});
        const QDateTime from(QDate(2004, 1, 1), QTime(9, 30), Qt::UTC);
        const QDateTime to(QDate(2004, 1, 3), QTime(0, 0), Qt::UTC);
        // 1 January: 4/4 * 2 cups; 3 January: 4/2 * 500 g; 4 January lies outside.
        const TIngredientAmount milk = store.dataModule().GetIngredientForDate(10, from, to);
        QCOMPARE(milk.amount, (488.0 + 1000.0) / 1030.0);
    }

    void updateDeclinedEqualNewer() {
        {
            TestStore store(310, false);
            TScriptedPresenter presenter;
            store.dataModule().DataModuleCreate();
            QVERIFY(presenter.shown.isEmpty()); // equal version: no question
            QVERIFY(store.dataModule().initialised);
        }
        {
            TestStore store(300, false);
            const QByteArray before = fileHash(store.databaseFile());
            TScriptedPresenter presenter;
            presenter.answers << mrNo;
            store.dataModule().DataModuleCreate();
            QVERIFY(store.dataModule().terminated);
            QVERIFY(store.dataModule().initialised);
            store.dataModule().KADaoDatabase.close();
            QCOMPARE(fileHash(store.databaseFile()), before);
            QCOMPARE(presenter.shown.size(), 1);
            QCOMPARE(
                presenter.shown.first().second,
                QStringLiteral("Current database version is 3.00\nDatabase version needed for this version\n"
                               "of Quillmeal is 3.10,\nso database needs to be updated.\nThis operation may "
                               "take a few minutes.\n\nDo you want to proceed?"));
        }
        {
            TestStore store(311, false);
            TScriptedPresenter presenter;
            store.dataModule().DataModuleCreate();
            QVERIFY(!store.dataModule().initialised);
            QVERIFY(!store.db().isOpen());
            QCOMPARE(presenter.shown.size(), 1);
            QCOMPARE(presenter.shown.first().first, TMessagePresenter::Error);
            QCOMPARE(presenter.shown.first().second,
                     store.holder().VintraDictionary.GetText(
                         QStringLiteral("ErrorIncompatibleDatabaseVersion"), "?"));
        }
    }

    void updateRunsOnlyTheStepsAbove() {
        TestStore store(305, false);
        QFile script(store.root() + QStringLiteral("Database/DatabaseUpdate.xml"));
        QVERIFY(script.open(QIODevice::WriteOnly | QIODevice::Truncate));
        script.write("<databaseUpdate>"
                     "<version number=\"308\"><statement>INSERT INTO Categories VALUES ( 1, 'from 308' "
                     ")</statement></version>"
                     "<version number=\"305\"><statement>INSERT INTO Categories VALUES ( 2, 'from 305' "
                     ")</statement></version>"
                     "<version number=\"312\"><statement>INSERT INTO Categories VALUES ( 3, 'from 312' "
                     ")</statement></version>"
                     "<version number=\"310\"><statement>INSERT INTO Categories VALUES ( 4, 'from 310' "
                     ")</statement></version>"
                     "</databaseUpdate>");
        script.close();
        TScriptedPresenter presenter;
        presenter.answers << mrYes;
        store.dataModule().DataModuleCreate();
        QVERIFY(!store.dataModule().terminated);
        QCOMPARE(
            store.db()
                .scalar("SELECT GROUP_CONCAT( catId ) FROM ( SELECT catId FROM Categories ORDER BY catId )")
                .toString(),
            QStringLiteral("1,4"));
        QCOMPARE(store.dataModule().VintraDBUpdater.GetCurrentDBVersion(store.db()), 310);
    }

    void brokenScriptReachesTheCaller() {
        TestStore store(300, false);
        touch(store.root() + QStringLiteral("Database/DatabaseUpdate.xml"),
              "<databaseUpdate><version number=\"301\">");
        TScriptedPresenter presenter;
        presenter.answers << mrYes;
        QVERIFY_THROWS_EXCEPTION(qm::DbError, store.dataModule().DataModuleCreate());
    }

    void picturesBelow301GetTheirNumber() {
        TestStore store(300, false);
        const QString rec = store.root() + QStringLiteral("Database/pic/rec/");
        const QString ing = store.root() + QStringLiteral("Database/pic/ing/");
        QDir().mkpath(rec);
        QDir().mkpath(ing);
        touch(rec + "123.jpg", "r");
        touch(ing + "7.jpg", "i");
        TScriptedPresenter presenter;
        presenter.answers << mrYes;
        store.dataModule().DataModuleCreate();
        QCOMPARE(read(rec + "123.1.jpg"), QByteArray("r"));
        QCOMPARE(read(ing + "7.1.jpg"), QByteArray("i"));
        QVERIFY(!QFile::exists(rec + "123.jpg"));
    }

    // A missing file is not created; one that is no database is reported as such and left exactly
    // as it was.
    void missingOrBrokenDatabaseFile() {
        TestStore store(310, false);
        QFile::remove(store.databaseFile());
        QVERIFY_THROWS_EXCEPTION(qm::DbError, store.dataModule().DataModuleCreate());
        QVERIFY(!QFile::exists(store.databaseFile()));
        touch(store.databaseFile(), QByteArray(2048, 'x'));
        const QByteArray before = fileHash(store.databaseFile());
        try {
            store.dataModule().DataModuleCreate();
            QFAIL("a broken file opened");
        } catch (const qm::DbError& error) {
            QVERIFY2(QString::fromUtf8(error.what()).startsWith("Cannot open the database: "), error.what());
        }
        QCOMPARE(fileHash(store.databaseFile()), before);
        // A database without its version row is reported, not taken for version 0.
        QFile::remove(store.databaseFile());
        {
            qm::Database db;
            db.open(store.databaseFile());
            qm::createSchema(db, QStringLiteral(QM_SOURCE_DATA "/schema.sql"));
        }
        try {
            store.dataModule().DataModuleCreate();
            QFAIL("a database without its version opened");
        } catch (const qm::DbError& error) {
            QVERIFY2(QString::fromUtf8(error.what()).contains("no version row"), error.what());
        }
    }

    // Moving and clearing through the commands is the picture commands' test; here the numbering
    // itself, which must not touch another record whose id starts the same.
    void picturesRenumber() {
        TestStore store;
        TDataModuleMain& dm = store.dataModule();
        const QString ing = store.root() + QStringLiteral("Database/pic/ing/");
        QDir().mkpath(ing);
        for (int n = 2; n <= 3; ++n)
            touch(ing + QStringLiteral("7.%1.jpg").arg(n), QByteArray::number(n));
        touch(ing + "77.1.jpg", "other");
        QVERIFY(!dm.PictureExists(7, pkIngredient));
        dm.RenumberPictures(7, pkIngredient);
        QVERIFY(dm.PictureExists(7, pkIngredient));
        QCOMPARE(read(ing + "7.1.jpg"), QByteArray("2"));
        QCOMPARE(read(ing + "7.2.jpg"), QByteArray("3"));
        QCOMPARE(read(ing + "77.1.jpg"), QByteArray("other"));
    }

    void repairAndCompact() {
        TestStore store;
        store.exec({"INSERT INTO Categories VALUES ( 1, 'Soup' )"});
        QCOMPARE(store.dataModule().RepairDatabase(), QStringLiteral("ok"));
        store.dataModule().CompactDatabase();
        QCOMPARE(store.dataModule().CountRecords(QStringLiteral("Categories")), 1);
    }
};

QTEST_GUILESS_MAIN(TestDataModule)
#include "test_data_module.moc"
