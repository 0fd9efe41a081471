#include "culinary/category_rules.h"

#include "components/database.h"
#include "components/dataset.h"
#include "components/messages.h"
#include "components/sql_format.h"
#include "store/data_module_main.h"
#include "store/record_window_rules.h"
#include "store/resource_holder.h"

namespace CategorySql {
const char* const QueryAvailableCategories =
    "SELECT catId, catName \nFROM Categories\nWHERE catId NOT IN\n(\n"
    "   SELECT catId\n   FROM RecCat\n   WHERE recId = :recId\n)\n"
    "ORDER BY catName";
const char* const QueryAssignedCategories =
    "SELECT C.catId, C.catName\nFROM Categories C, RecCat RC\n"
    "WHERE RC.recId = :recId\n   AND C.catId = RC.catId\nORDER BY C.catName";
const char* const Assign = "INSERT INTO RecCat( recId, catId ) \nVALUES( %d, %d )";
const char* const Remove = "DELETE FROM RecCat \nWHERE recId = %d \n   AND catId = %d";
const char* const CountRefs = "SELECT COUNT( * ) AS numberOfRefs \nFROM RecCat \nWHERE catId = %d";
const char* const DeleteRefs = "DELETE FROM RecCat \nWHERE catId = %d";
} // namespace CategorySql

namespace {

qm::Database& database() {
    return DataModuleMain->KADaoDatabase;
}

} // namespace

void AssignCategory(int recId, int catId) {
    database().exec(qm::format(QString::fromLatin1(CategorySql::Assign), {recId, catId}));
}

void RemoveCategory(int recId, int catId) {
    database().exec(qm::format(QString::fromLatin1(CategorySql::Remove), {recId, catId}));
}

void CheckCategory(qm::Dataset& table, QString& errors) {
    if (table.FieldByName(QStringLiteral("catName")).IsNull())
        AddFieldError(12, errors);
}

void CategoryBeforeDelete(int catId) {
    const int refs =
        database().scalar(qm::format(QString::fromLatin1(CategorySql::CountRefs), {catId})).toInt();
    if (refs > 0) {
        if (AskQuestion(GetText(QStringLiteral("QuestionDeleteCategoryCascade"))) != mrYes)
            throw Abort();
        database().exec(qm::format(QString::fromLatin1(CategorySql::DeleteRefs), {catId}));
    } else if (AskQuestion(GetText(QStringLiteral("QuestionDeleteCategory"))) != mrYes) {
        throw Abort();
    }
}
