// Benchmarks: each figure is printed beside the same work done through plain sqlite3 in the same run.
#include "test_store.h"

#include "components/dataset.h"
#include "components/sql_format.h"
#include "store/data_module_main.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <malloc.h>
#include <memory>
#include <sqlite3.h>
#include <vector>

namespace {

/// Median wall time of `runs` calls, in microseconds.
double medianMicros(int runs, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void report(const char* name, double ours, double plain) {
    std::printf("%-44s %10.1f us   plain sqlite3 %10.1f us   ratio %.2f\n", name, ours, plain, ours / plain);
}

void benchDataModuleCreate() {
    QTemporaryDir dir;
    const QString root = dir.path() + QLatin1Char('/');
    QDir().mkpath(root + QStringLiteral("Database"));
    QFile::copy(QStringLiteral(QM_BIN_DIR "/delivered/Hearthnote.db"),
                root + QStringLiteral("Database/Hearthnote.db"));
    QFile::copy(QStringLiteral(QM_BIN_DIR "/delivered/DatabaseUpdate.xml"),
                root + QStringLiteral("Database/DatabaseUpdate.xml"));
    TFormResourceHolder holder;
    holder.Create(root + QStringLiteral("options.conf"), QStringLiteral(QM_BIN_DIR "/"), root);
    FormResourceHolder = &holder;
    const double ours = medianMicros(50, [] {
        TDataModuleMain dm;
        dm.DataModuleCreate();
    });
    const QByteArray file = (root + QStringLiteral("Database/Hearthnote.db")).toUtf8();
    const double plain = medianMicros(50, [&file] {
        sqlite3* db = nullptr;
        sqlite3_open(file.constData(), &db);
        sqlite3_exec(db, "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
        sqlite3_stmt* st = nullptr;
        sqlite3_prepare_v2(db, "SELECT keyValue FROM PKeys WHERE keyId = 'DatabaseVersion'", -1, &st,
                           nullptr);
        sqlite3_step(st);
        sqlite3_finalize(st);
        sqlite3_close(db);
    });
    FormResourceHolder = nullptr;
    report("DataModuleCreate on the delivered database", ours, plain);
}

void benchIngredientInMenu() {
    TestStore store;
    QStringList setup = {
        "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
        "( 1, 'gram', 'g', 'g', 1, 1 ), ( 2, 'kilogram', 'kg', 'kg', 1, 1000 ), ( 9, 'cup', 'cup', 'c', 2, "
        "NULL )"};
    for (int i = 1; i <= 40; ++i) {
        setup << QStringLiteral("INSERT INTO Ingreds ( ingredId, ingredName, unitId, ingredPrice ) VALUES ( "
                                "%1, 'I%1', 2, 1.5 )")
                     .arg(i);
        setup << QStringLiteral("INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 9, %1, %2 )")
                     .arg(i)
                     .arg(100 + i);
    }
    for (int r = 1; r <= 20; ++r) {
        setup << QStringLiteral("INSERT INTO Recipes ( recId, recName, recServings, recFreeForm ) VALUES ( "
                                "%1, 'R%1', 4, 0 )")
                     .arg(r);
        setup << QStringLiteral("INSERT INTO RecMen ( menuId, recId, servings ) VALUES ( 1, %1, %2 )")
                     .arg(r)
                     .arg(2 + r % 5);
        for (int l = 0; l < 10; ++l) {
            const int ingred = 1 + (r * 7 + l * 3) % 40;
            setup << QStringLiteral("INSERT OR IGNORE INTO Contents ( recId, ingredId, amount, unitId ) "
                                    "VALUES ( %1, %2, %3, %4 )")
                         .arg(r)
                         .arg(ingred)
                         .arg(1 + l)
                         .arg(l % 2 ? 9 : 1);
        }
    }
    store.exec(setup);
    TDataModuleMain& dm = store.dataModule();
    const double ours = medianMicros(20, [&dm] {
        for (int i = 1; i <= 40; ++i)
            dm.GetIngredientInMenu(1, i);
    });
    const QByteArray file = store.databaseFile().toUtf8();
    sqlite3* db = nullptr;
    sqlite3_open(file.constData(), &db);
    const double plain = medianMicros(20, [db] {
        for (int i = 1; i <= 40; ++i) {
            double base = 0;
            sqlite3_stmt* st = nullptr;
            sqlite3_prepare_v2(db, DataModuleSql::IngredBaseUnit, -1, &st, nullptr);
            sqlite3_bind_int(st, 1, i);
            sqlite3_bind_int(st, 2, i);
            if (sqlite3_step(st) == SQLITE_ROW)
                base = sqlite3_column_double(st, 2);
            sqlite3_finalize(st);
            const QByteArray sql =
                qm::format(QString::fromLatin1(DataModuleSql::IngredientInMenu), {1, i, i, i, 1, i, i})
                    .toUtf8();
            sqlite3_prepare_v2(db, sql.constData(), -1, &st, nullptr);
            double total = 0;
            while (sqlite3_step(st) == SQLITE_ROW)
                total += double(sqlite3_column_int(st, 0)) / sqlite3_column_int(st, 2) *
                         sqlite3_column_double(st, 1) * sqlite3_column_double(st, 3);
            sqlite3_finalize(st);
            (void)(total / base);
        }
    });
    sqlite3_close(db);
    report("GetIngredientInMenu, 40 ingredients, 20x10 menu", ours, plain);
}

/// Bytes the heap holds in use, in MB.
double heapMegabytes() {
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd) / (1024 * 1024);
}

void benchLargeTableOpen() {
    TestStore store;
    // 100,000 recipes with a description, rich-text preparation and free-form ingredients of the
    // sizes the delivered samples have.
    store.db().exec(QStringLiteral(
        "INSERT INTO Recipes ( recId, recGroupId, recName, recDesc, recPrep, recTime, recServings, "
        "recFreeForm, recIngreds, nutCal, nutProtein ) WITH RECURSIVE n( i ) AS ( SELECT 1 UNION ALL SELECT "
        "i + 1 FROM n WHERE i < 100000 ) SELECT 100000 + i, 1 + i % 40, printf( 'Recipe %d of the house', ( "
        "i * 7919 ) % 100000 ), printf( '%.80c', 'd' ), CAST( printf( '%.550c', 'p' ) AS BLOB ), i % 90, "
        "1 + i % 8, 0, printf( '%.300c', 'i' ), i * 0.5, i * 0.25 FROM n"));
    const QStringList grid = {"recName", "recTime", "recServings", "recPrice"};
    // Timed: the Open alone; the rows of the last run are let go outside the clock.
    std::unique_ptr<qm::Dataset> recipes;
    const auto open = [&](const QStringList& rowFields) {
        recipes.reset();
        return medianMicros(5, [&] {
            recipes = std::make_unique<qm::Dataset>();
            recipes->SetDatabase(&store.db());
            recipes->SetTableName(QStringLiteral("Recipes"));
            recipes->SetKeyFields({QStringLiteral("recId")});
            recipes->SetSortedBy(QStringLiteral("[recName] ASC"));
            recipes->SetRowFields(rowFields);
            recipes->Open();
        });
    };
    const auto held = [&](const QStringList& rowFields) {
        recipes.reset();
        const double before = heapMegabytes();
        open(rowFields);
        return heapMegabytes() - before;
    };
    const QByteArray file = store.databaseFile().toUtf8();
    const double plain = medianMicros(5, [&file] {
        sqlite3* db = nullptr;
        sqlite3_open(file.constData(), &db);
        sqlite3_stmt* st = nullptr;
        sqlite3_prepare_v2(db,
                           "SELECT \"recId\", \"recName\", \"recTime\", \"recServings\", \"recPrice\" FROM "
                           "\"Recipes\" ORDER BY [recName] COLLATE NOCASE ASC",
                           -1, &st, nullptr);
        qint64 sum = 0;
        while (sqlite3_step(st) == SQLITE_ROW) {
            sum += sqlite3_column_int64(st, 0) + sqlite3_column_bytes16(st, 1);
            (void)sqlite3_column_text16(st, 1);
            sum += sqlite3_column_int64(st, 2) + sqlite3_column_int64(st, 3) + sqlite3_column_int64(st, 4);
        }
        sqlite3_finalize(st);
        sqlite3_close(db);
        (void)sum;
    });
    report("Dataset Open, 100,000 recipes, grid columns", open(grid), plain);
    report("Dataset Open, 100,000 recipes, every column", open({}), plain);
    std::printf("%-44s %10.1f MB   every column %10.1f MB\n", "  heap held by the rows, grid columns",
                held(grid), held({}));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchDataModuleCreate();
    benchIngredientInMenu();
    benchLargeTableOpen();
    return 0;
}
