#include "cli_commands.h"

#include "components/database.h"
#include "culinary/nutrient_calculation.h"
#include "culinary/price_list_import.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <QDate>

namespace cli {

namespace {

bool toInt(const QString& text, int& value) {
    bool ok = false;
    value = text.toInt(&ok);
    return ok;
}

void printAmount(Context& c, const TIngredientAmount& a) {
    c.out << FormatValue(a.amount) << '\t' << a.unitName << '\t' << FormatValue(a.price) << '\t'
          << FormatValue(a.cost) << '\n';
}

} // namespace

QString FormatValue(const QVariant& value) {
    if (!value.isValid() || value.isNull())
        return QString();
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return QString::number(value.toDouble(), 'g', 15);
    return value.toString();
}

int Init(Context& c) {
    c.out << DataModuleMain->VintraDBUpdater.GetCurrentDBVersion(DataModuleMain->KADaoDatabase) << '\n';
    return 0;
}

int Sql(Context& c, const QStringList& args) {
    if (args.size() != 1) {
        c.err << "usage: quillmeal-cli sql STATEMENT\n";
        return 2;
    }
    // Whether rows are printed is the statement's own answer: it has result columns or not.
    qm::Cursor query = DataModuleMain->KADaoDatabase.run(args.first());
    const int count = query.columnCount();
    if (count == 0)
        return 0;
    c.out << query.columnNames().join(QLatin1Char('\t')) << '\n';
    while (query.next()) {
        QStringList row;
        for (int i = 0; i < count; ++i)
            row << FormatValue(query.value(i));
        c.out << row.join(QLatin1Char('\t')) << '\n';
    }
    return 0;
}

int NewId(Context& c, const QStringList& args) {
    if (args.size() != 1) {
        c.err << "usage: quillmeal-cli new-id KEY\n";
        return 2;
    }
    c.out << DataModuleMain->GetNewId(args.first()) << '\n';
    return 0;
}

int IngredientInMenu(Context& c, const QStringList& args) {
    int menuId = 0, ingredId = 0;
    if (args.size() != 2 || !toInt(args.at(0), menuId) || !toInt(args.at(1), ingredId)) {
        c.err << "usage: quillmeal-cli ingredient-in-menu MENUID INGREDID\n";
        return 2;
    }
    printAmount(c, DataModuleMain->GetIngredientInMenu(menuId, ingredId));
    return 0;
}

int IngredientForDate(Context& c, const QStringList& args) {
    int ingredId = 0;
    const QDate from = args.size() == 3 ? QDate::fromString(args.at(1), Qt::ISODate) : QDate();
    const QDate to = args.size() == 3 ? QDate::fromString(args.at(2), Qt::ISODate) : QDate();
    if (args.size() != 3 || !toInt(args.at(0), ingredId) || !from.isValid() || !to.isValid()) {
        c.err << "usage: quillmeal-cli ingredient-for-date INGREDID FROM TO   (dates as yyyy-mm-dd)\n";
        return 2;
    }
    printAmount(c, DataModuleMain->GetIngredientForDate(ingredId, QDateTime(from, QTime(0, 0), Qt::UTC),
                                                        QDateTime(to, QTime(0, 0), Qt::UTC)));
    return 0;
}

int Recalc(Context& c, const QStringList& args) {
    int recId = 0;
    if (args.size() != 1 || !toInt(args.first(), recId)) {
        c.err << "usage: quillmeal-cli recalc RECID\n";
        return 2;
    }
    qm::Database& db = DataModuleMain->KADaoDatabase;
    if (db.scalar(QStringLiteral("SELECT COUNT(*) FROM Recipes WHERE recId = :recId"),
                  {{QStringLiteral("recId"), recId}})
            .toInt() == 0) {
        c.err << "no recipe " << recId << '\n';
        return 1;
    }
    RecalculateStoredRecipe(db, recId); // a free-form recipe keeps its typed values
    QStringList columns;
    for (const char* column : NutrientSet)
        columns << QLatin1String(column);
    const qm::SqlRows rows = db.select(QStringLiteral("SELECT ") + columns.join(QStringLiteral(", ")) +
                                           QStringLiteral(" FROM Recipes WHERE recId = :recId"),
                                       {{QStringLiteral("recId"), recId}});
    QStringList values;
    for (const QVariant& value : rows.rows.first())
        values << FormatValue(value);
    c.out << values.join(QLatin1Char('\t')) << '\n';
    return 0;
}

int ImportPriceListCommand(Context& c, const QStringList& args) {
    const bool progress = args.size() == 2 && args.at(1) == QLatin1String("--progress");
    if (args.size() != 1 && !progress) {
        c.err << "usage: quillmeal-cli import-price-list FILE [--progress]\n";
        return 2;
    }
    // With --progress each applied id is written the moment its statement has returned, so a
    // reader knows what is in the database even if the command is killed.
    std::function<void(int)> report;
    if (progress)
        report = [&c](int id) {
            c.out << "applied " << id << '\n';
            c.out.flush();
        };
    const TPriceListResult result = ImportPriceList(DataModuleMain->KADaoDatabase, args.first(), report);
    c.out << result.applied << '\n';
    if (!result.error.isEmpty()) {
        c.err << args.first() << ": " << result.error << '\n';
        return 1;
    }
    return 0;
}

int Options(Context& c) {
    static const char* const typeNames[] = {"integer", "boolean", "string"};
    for (const TVintraOption& option : FormResourceHolder->VintraOptions.options()) {
        const auto text = [&option](const QVariant& v) {
            return option.type == 1 ? QString::fromLatin1(v.toBool() ? "true" : "false") : v.toString();
        };
        c.out << option.name << '\t' << typeNames[qBound(0, option.type, 2)] << '\t'
              << text(option.defaultValue) << '\t' << text(option.value) << '\n';
    }
    return 0;
}

} // namespace cli
