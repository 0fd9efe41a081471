// The references of bench/run_bench.py that run as processes of their own: the same work through
// the SQLite C API alone (Qt Core only reads the price list file).
//   columns DBFILE          reads the columns of the recipes grid, prints the seconds it took
//   price-list DBFILE FILE  one UPDATE per ingredient element, each its own commit, prints the count
#include <QFile>
#include <QXmlStreamReader>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sqlite3.h>

namespace {

const char* const GridColumns = "SELECT recId, recName, recTime, recServings, recPrice FROM Recipes";
const char* const UpdatePrice = "UPDATE Ingreds SET ingredPrice = ?1 WHERE ingredId = ?2";

sqlite3* openOrDie(const char* file) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(file, &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        std::fprintf(stderr, "plain-sqlite: cannot open %s\n", file);
        std::exit(1);
    }
    return db;
}

void execOrDie(sqlite3* db, const char* sql) {
    char* error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) != SQLITE_OK) {
        std::fprintf(stderr, "plain-sqlite: %s\n", error);
        std::exit(1);
    }
}

int columns(const char* file) {
    sqlite3* db = openOrDie(file);
    execOrDie(db, "SELECT COUNT(*) FROM sqlite_master"); // reads the schema, as the program has by then
    const auto start = std::chrono::steady_clock::now();
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, GridColumns, -1, &st, nullptr);
    size_t bytes = 0;
    while (sqlite3_step(st) == SQLITE_ROW) {
        bytes += size_t(sqlite3_column_int(st, 0) != 0);
        const unsigned char* name = sqlite3_column_text(st, 1);
        bytes += name ? std::strlen(reinterpret_cast<const char*>(name)) : 0;
        bytes +=
            size_t(sqlite3_column_int(st, 2) + sqlite3_column_int(st, 3) + sqlite3_column_double(st, 4) > 0);
    }
    sqlite3_finalize(st);
    const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("recipes-columns %.9f\n", elapsed);
    std::fprintf(stderr, "%zu bytes read\n", bytes);
    sqlite3_close(db);
    return 0;
}

int priceList(const char* file, const char* listFile) {
    sqlite3* db = openOrDie(file);
    execOrDie(db, "PRAGMA journal_mode = WAL");
    execOrDie(db, "PRAGMA synchronous = NORMAL");
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, UpdatePrice, -1, &st, nullptr);
    QFile list(QString::fromLocal8Bit(listFile));
    if (!list.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "plain-sqlite: cannot read %s\n", listFile);
        return 1;
    }
    QXmlStreamReader xml(&list);
    int applied = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != QLatin1String("ingredient"))
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        sqlite3_bind_double(st, 1, attributes.value(QLatin1String("price")).toDouble());
        sqlite3_bind_int(st, 2, attributes.value(QLatin1String("id")).toInt());
        if (sqlite3_step(st) != SQLITE_DONE) {
            std::fprintf(stderr, "plain-sqlite: %s\n", sqlite3_errmsg(db));
            return 1;
        }
        applied += sqlite3_changes(db) > 0;
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    std::printf("%d\n", applied);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "columns") == 0)
        return columns(argv[2]);
    if (argc == 4 && std::strcmp(argv[1], "price-list") == 0)
        return priceList(argv[2], argv[3]);
    std::fprintf(stderr, "usage: plain-sqlite columns DBFILE | price-list DBFILE FILE\n");
    return 2;
}
