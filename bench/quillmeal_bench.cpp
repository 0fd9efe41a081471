// The benchmarks that need the project's code in the process. bench/run_bench.py drives them and
// judges the figures; each mode prints "label OURS REFERENCE" (seconds) per run, or one time.
//   amounts ROOT RUNS             GetIngredientInMenu / GetIngredientForDate against the same
//                                 statements through the SQLite C API, prepared once
//   ingredient-pattern ROOT RUNS  the ingredient search for ?*?*?*x against the plain *x*
//   recipes-window ROOT           opens the recipes window until it is shown and idle
#include "culinary/recipe_search.h"
#include "culinary/ui/form_recipes.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <QApplication>
#include <QDateTime>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace {

// The reference side: the data module's statements, copied as they stand, with %d as positional
// parameters. No project code runs on this side.
const char* const PlainIngredBaseUnit =
    "SELECT U.unitId, U.unitName, U.unitConv AS grams, I.ingredPrice FROM Ingreds I, Units U WHERE "
    "I.ingredId = "
    ":ingredId AND I.unitId = U.unitId AND U.unitType = 1 UNION SELECT U.unitId, U.unitName, C.grams, "
    "I.ingredPrice FROM Ingreds I, Convs C, Units U WHERE I.ingredId = :ingredId AND I.unitId = C.unitId AND "
    "I.unitId = U.unitId AND U.unitType = 2";
const char* const PlainIngredientInMenu =
    "SELECT RM.servings AS recAmount, C.amount AS ingredAmount, \n   R.recServings, CN.grams AS grams \n"
    "FROM RecMen RM, Recipes R, Contents C, Ingreds I, Units U, Convs CN \nWHERE RM.menuId = %d \n"
    "   AND RM.recId = R.recId \n   AND R.recId = C.recId \n   AND C.ingredId = %d \n   AND I.ingredId = %d "
    "\n"
    "   AND C.unitId = U.unitId \n   AND CN.unitId = U.unitId \n   AND CN.ingredId = %d \n   AND U.unitType "
    "= 2 \n"
    "UNION \n"
    "SELECT RM.servings AS recAmount, C.amount AS ingredAmount, \n   R.recServings, U.unitConv AS grams \n"
    "FROM RecMen RM, Recipes R, Contents C, Ingreds I, Units U \nWHERE RM.menuId = %d \n   AND RM.recId = "
    "R.recId \n"
    "   AND R.recId = C.recId \n   AND C.ingredId = %d \n   AND I.ingredId = %d \n   AND C.unitId = U.unitId "
    "\n"
    "   AND U.unitType = 1";
const char* const PlainIngredientForDate =
    "SELECT RD.servings AS recAmount, C.amount AS ingredAmount, \n   R.recServings, CN.grams AS grams \n"
    "FROM RecDate RD, Recipes R, Contents C, Ingreds I, Units U, Convs CN \n"
    "WHERE RD.dateScheduled BETWEEN %d AND %d \n   AND RD.recId = R.recId \n   AND R.recId = C.recId \n"
    "   AND C.ingredId = %d \n   AND I.ingredId = %d \n   AND C.unitId = U.unitId \n   AND CN.unitId = "
    "U.unitId \n"
    "   AND CN.ingredId = %d \n   AND U.unitType = 2 \n"
    "UNION \n"
    "SELECT RD.servings AS recAmount, C.amount AS ingredAmount, \n   R.recServings, U.unitConv AS grams \n"
    "FROM RecDate RD, Recipes R, Contents C, Ingreds I, Units U \n"
    "WHERE RD.dateScheduled BETWEEN %d AND %d \n   AND RD.recId = R.recId \n   AND R.recId = C.recId \n"
    "   AND C.ingredId = %d \n   AND I.ingredId = %d \n   AND C.unitId = U.unitId \n   AND U.unitType = 1";
// The menus' ingredients, and the days the bench schedules them on.
const char* const PlainMenuIngredients =
    "SELECT DISTINCT RM.menuId, C.ingredId FROM RecMen RM, Contents C WHERE C.recId = RM.recId "
    "ORDER BY 1, 2";
const char* const PlainDays = "SELECT MIN(dateScheduled), MAX(dateScheduled) FROM RecDate";

using Clock = std::chrono::steady_clock;
constexpr double GiveUpSeconds = 10;

double seconds(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

[[noreturn]] void fail(const std::string& message) {
    std::fprintf(stderr, "quillmeal-bench: %s\n", message.c_str());
    std::exit(1);
}

/// "%d" becomes "?1", "?2", ... in order, so the texts above prepare as they stand.
std::string positional(const char* text) {
    std::string out;
    int n = 0;
    for (const char* p = text; *p; ++p) {
        if (p[0] == '%' && p[1] == 'd') {
            out += '?' + std::to_string(++n);
            ++p;
        } else {
            out += *p;
        }
    }
    return out;
}

/// One statement prepared once, reset per call.
class PlainStatement {
public:
    PlainStatement(sqlite3* db, const std::string& sql) {
        if (sqlite3_prepare_v2(db, sql.c_str(), -1, &m_stmt, nullptr) != SQLITE_OK)
            fail(std::string("prepare: ") + sqlite3_errmsg(db));
    }
    ~PlainStatement() { sqlite3_finalize(m_stmt); }
    sqlite3_stmt* bind(const std::vector<int>& values) {
        sqlite3_reset(m_stmt);
        for (size_t i = 0; i < values.size(); ++i)
            sqlite3_bind_int(m_stmt, int(i + 1), values[i]);
        return m_stmt;
    }

private:
    sqlite3_stmt* m_stmt = nullptr;
};

/// The data module's arithmetic over the plain statements: amount in the base unit.
double plainAmount(PlainStatement& base, PlainStatement& rows, int ingredId, const std::vector<int>& values) {
    double baseGrams = 0;
    sqlite3_stmt* b = base.bind({ingredId});
    if (sqlite3_step(b) == SQLITE_ROW)
        baseGrams = sqlite3_column_double(b, 2);
    double total = 0;
    sqlite3_stmt* r = rows.bind(values);
    while (sqlite3_step(r) == SQLITE_ROW) {
        const int servings = sqlite3_column_int(r, 2);
        total += (servings ? double(sqlite3_column_int(r, 0)) / servings : 0.0) *
                 sqlite3_column_double(r, 1) * sqlite3_column_double(r, 3);
    }
    return baseGrams ? total / baseGrams : 0.0;
}

struct Store {
    TFormResourceHolder holder;
    TDataModuleMain dataModule;
    explicit Store(const QString& root) {
        holder.Create(root + QStringLiteral("options.conf"), QStringLiteral(QM_BIN_DIR "/"), root);
        FormResourceHolder = &holder;
        dataModule.DataModuleCreate();
        if (!dataModule.databaseUsable || dataModule.terminated)
            fail("the database under " + root.toStdString() + " is not usable");
        DataModuleMain = &dataModule;
    }
    ~Store() {
        DataModuleMain = nullptr;
        FormResourceHolder = nullptr;
    }
};

int benchAmounts(const QString& root, int runs) {
    Store store(root);
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(store.dataModule.DatabaseFileName().toUtf8().constData(), &db, SQLITE_OPEN_READWRITE,
                        nullptr) != SQLITE_OK)
        fail("cannot open the database");
    std::vector<std::pair<int, int>> pairs; // menu, ingredient
    {
        PlainStatement list(db, PlainMenuIngredients);
        sqlite3_stmt* s = list.bind({});
        while (sqlite3_step(s) == SQLITE_ROW)
            pairs.emplace_back(sqlite3_column_int(s, 0), sqlite3_column_int(s, 1));
    }
    int firstDay = 0, lastDay = 0;
    {
        PlainStatement days(db, PlainDays);
        sqlite3_stmt* s = days.bind({});
        if (sqlite3_step(s) == SQLITE_ROW) {
            firstDay = sqlite3_column_int(s, 0);
            lastDay = sqlite3_column_int(s, 1);
        }
    }
    if (pairs.empty() || lastDay == 0)
        fail("the database has no menus or no scheduled days");
    // Day numbers count from 1899-12-30.
    const QDate base(1899, 12, 30);
    const QDateTime from(base.addDays(firstDay), QTime(0, 0), Qt::UTC);
    const QDateTime to(base.addDays(lastDay), QTime(0, 0), Qt::UTC);

    PlainStatement baseUnit(db, PlainIngredBaseUnit);
    PlainStatement inMenu(db, positional(PlainIngredientInMenu));
    PlainStatement forDate(db, positional(PlainIngredientForDate));
    double sink = 0; // keeps both sides' results alive
    for (int run = 0; run < runs; ++run) {
        const double oursMenu = seconds([&] {
            for (const auto& [menu, ingred] : pairs)
                sink += store.dataModule.GetIngredientInMenu(menu, ingred).amount;
        });
        const double plainMenu = seconds([&] {
            for (const auto& [menu, ingred] : pairs)
                sink += plainAmount(baseUnit, inMenu, ingred,
                                    {menu, ingred, ingred, ingred, menu, ingred, ingred});
        });
        const double oursDate = seconds([&] {
            for (const auto& [menu, ingred] : pairs)
                sink += store.dataModule.GetIngredientForDate(ingred, from, to).amount;
        });
        const double plainDate = seconds([&] {
            for (const auto& [menu, ingred] : pairs)
                sink += plainAmount(
                    baseUnit, forDate, ingred,
                    {firstDay, lastDay, ingred, ingred, ingred, firstDay, lastDay, ingred, ingred});
        });
        std::printf("ingredient-in-menu %.9f %.9f\n", oursMenu, plainMenu);
        std::printf("ingredient-for-date %.9f %.9f\n", oursDate, plainDate);
    }
    std::fprintf(stderr, "%zu ingredients a call, checksum %g\n", pairs.size(), sink);
    sqlite3_close(db);
    return 0;
}

int benchIngredientPattern(const QString& root, int runs) {
    Store store(root);
    qm::Database& db = store.dataModule.KADaoDatabase;
    // As quillmeal-cli search-ingredients --pattern builds it: every type under the root.
    const auto statement = [&db](const QString& pattern) {
        TIngredientSearchCriteria criteria;
        criteria.allTypes = false;
        criteria.pattern = pattern;
        criteria.typeChildrenIds = ChildrenIds(db, QStringLiteral("ITypes"), QStringLiteral("ingredTypeId"),
                                               QStringLiteral("ingredTypeName"), 0);
        return StatementText(BuildIngredientSearchLines(criteria));
    };
    const QString wild = statement(QStringLiteral("?*?*?*x"));
    const QString plain = statement(QStringLiteral("x"));
    int hits = 0;
    const auto search = [&db, &hits](const QString& sql) {
        qm::Cursor query = db.run(sql);
        while (query.next())
            hits += query.value(2).toString().size() > 0;
    };
    for (int run = 0; run < runs; ++run) {
        const double ours = seconds([&] { search(wild); });
        const double reference = seconds([&] { search(plain); });
        std::printf("ingredient-pattern %.9f %.9f\n", ours, reference);
        std::fflush(stdout);
        if (ours > GiveUpSeconds)
            break; // a matcher that backtracks: one run tells enough
    }
    std::fprintf(stderr, "%d hits\n", hits);
    return 0;
}

int benchRecipesWindow(const QString& root) {
    Store store(root);
    double elapsed = 0;
    const auto start = Clock::now();
    TFormRecipes form;
    form.resize(900, 650);
    form.show();
    // Shown and idle: the first zero-time timer after the show runs once the queue is empty.
    QTimer::singleShot(0, [&] {
        elapsed = std::chrono::duration<double>(Clock::now() - start).count();
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    std::printf("recipes-window %.9f\n", elapsed);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    const QString mode = args.value(0);
    QString root = args.value(1);
    if (!root.endsWith(QLatin1Char('/')))
        root += QLatin1Char('/');
    const int runs = qMax(1, args.value(2).toInt());
    if (mode == QLatin1String("amounts") && args.size() == 3)
        return benchAmounts(root, runs);
    if (mode == QLatin1String("ingredient-pattern") && args.size() == 3)
        return benchIngredientPattern(root, runs);
    if (mode == QLatin1String("recipes-window") && args.size() == 2)
        return benchRecipesWindow(root);
    std::fprintf(stderr, "usage: quillmeal-bench amounts|ingredient-pattern ROOT RUNS\n"
                         "       quillmeal-bench recipes-window ROOT\n");
    return 2;
}
