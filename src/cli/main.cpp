// quillmeal-cli: the core of the program for scripts, checks and benchmarks.
#include "cli_commands.h"

#include "components/database.h"
#include "components/messages.h"
#include "shell/app_paths.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <QCoreApplication>
#include <exception>

namespace {

const char* const Usage =
    "usage: quillmeal-cli [--data-root DIR] [--config-dir DIR] COMMAND ...\n"
    "commands:\n"
    "  init                                   create or update the database, print its version\n"
    "  sql STATEMENT                          run one statement; a SELECT prints a header and rows\n"
    "  new-id KEY                             next id of a counter\n"
    "  ingredient-in-menu MENUID INGREDID     amount, unit, price and cost over a menu\n"
    "  ingredient-for-date INGREDID FROM TO   the same over calendar days (yyyy-mm-dd)\n"
    "  options                                name, type, default and value of every option\n"
    "  recalc RECID                           recalculate a recipe's nutrients and print them\n"
    "  import-price-list FILE [--progress]    set ingredient prices from an XML price list\n"
    "  search-recipes [OPTIONS]               the recipe search (options: see the README)\n"
    "  search-ingredients [OPTIONS]           the ingredient search\n";

/// Messages go to standard error; the update question is answered by the command.
class TCliPresenter : public TMessagePresenter {
public:
    TCliPresenter(QTextStream& err, bool answerYes) : m_err(err), m_answerYes(answerYes) {}
    int present(Kind kind, const QString& caption, const QString& text) override {
        m_err << caption << ": " << text << '\n';
        return kind == Question && m_answerYes ? mrYes : mrNo;
    }

private:
    QTextStream& m_err;
    bool m_answerYes;
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Orvane Team"));
    QCoreApplication::setApplicationName(QStringLiteral("Quillmeal"));
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = app.arguments().mid(1);
    const TAppPaths paths = ResolveAppPaths(QCoreApplication::applicationDirPath(), args);
    if (args.isEmpty() || args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")) {
        (args.isEmpty() ? err : out) << Usage;
        return args.isEmpty() ? 2 : 0;
    }
    const QString command = args.takeFirst();
    static const QStringList known = {QStringLiteral("init"),
                                      QStringLiteral("sql"),
                                      QStringLiteral("new-id"),
                                      QStringLiteral("ingredient-in-menu"),
                                      QStringLiteral("ingredient-for-date"),
                                      QStringLiteral("options"),
                                      QStringLiteral("recalc"),
                                      QStringLiteral("import-price-list"),
                                      QStringLiteral("search-recipes"),
                                      QStringLiteral("search-ingredients")};
    if (command.startsWith(QLatin1String("--"))) {
        err << "unknown option: " << command << '\n' << Usage;
        return 2;
    }
    if (!known.contains(command)) {
        err << "unknown command: " << command << '\n' << Usage;
        return 2;
    }

    TFormResourceHolder holder;
    FormResourceHolder = &holder;
    holder.Create(paths.OptionsFile, paths.ExecutablePath, paths.DataRootPath);
    // Only init may bring the database forward; other commands refuse an old database.
    TCliPresenter presenter(err, command == QLatin1String("init"));
    SetMessagePresenter(&presenter);
    cli::Context context{out, err};
    if (command == QLatin1String("options"))
        return cli::Options(context);

    int status = 1;
    try {
        QString error;
        if (!SeedDataRoot(paths, error)) {
            err << error << '\n';
            return 1;
        }
        TDataModuleMain dataModule;
        DataModuleMain = &dataModule;
        dataModule.DataModuleCreate();
        if (!dataModule.databaseUsable)
            return 1;
        if (dataModule.terminated) {
            err << "The database must be updated first: run quillmeal-cli init\n";
            return 1;
        }
        if (command == QLatin1String("init"))
            status = cli::Init(context);
        else if (command == QLatin1String("sql"))
            status = cli::Sql(context, args);
        else if (command == QLatin1String("new-id"))
            status = cli::NewId(context, args);
        else if (command == QLatin1String("ingredient-in-menu"))
            status = cli::IngredientInMenu(context, args);
        else if (command == QLatin1String("ingredient-for-date"))
            status = cli::IngredientForDate(context, args);
        else if (command == QLatin1String("recalc"))
            status = cli::Recalc(context, args);
        else if (command == QLatin1String("import-price-list"))
            status = cli::ImportPriceListCommand(context, args);
        else if (command == QLatin1String("search-recipes"))
            status = cli::SearchRecipes(context, args);
        else if (command == QLatin1String("search-ingredients"))
            status = cli::SearchIngredients(context, args);
        DataModuleMain = nullptr;
    } catch (const std::exception& e) {
        out.flush();
        err << e.what() << '\n';
        DataModuleMain = nullptr;
        status = 1;
    }
    SetMessagePresenter(nullptr);
    return status;
}
