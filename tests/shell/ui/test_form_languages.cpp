// Every window and dialog against the delivered language files: each form, built for real over a
// fresh database, translates itself at its show, finds every key it asks for in English and in
// German, shows the German, and the English file says what the form itself says.
#include "test_store.h"

#include "components/mdi_frame.h"
#include "components/vintra_dictionary.h"
#include "components/vintra_translator.h"
#include "culinary/ui/form_add_or_edit_recipe.h"
#include "culinary/ui/form_categories.h"
#include "culinary/ui/form_ingredients.h"
#include "culinary/ui/form_recipe_add_or_edit_ingredient.h"
#include "culinary/ui/form_recipe_add_or_edit_ingredient_ff.h"
#include "culinary/ui/form_recipe_categories.h"
#include "culinary/ui/form_recipes.h"
#include "culinary/ui/form_rich_text_db_editor.h"
#include "culinary/ui/form_search_ingredients.h"
#include "culinary/ui/form_search_recipes.h"
#include "culinary/ui/form_unit_converter.h"
#include "culinary/ui/form_units.h"
#include "shell/ui/form_about.h"
#include "shell/ui/widget_translation.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <functional>
#include <memory>
#include <optional>

namespace {

const QString EnglishFile = QStringLiteral(QM_SOURCE_DATA "/Languages/English.xml");
const QString GermanFile = QStringLiteral(QM_SOURCE_DATA "/Languages/Deutsch.xml");

/// The frame as the windows see it; nothing here is looked at.
class QuietFrame : public TMdiFrame {
public:
    void SetStatusCount(const QString&) override {}
    QString QuickSearchText() const override { return {}; }
    void Toggle(const QString&, bool) override {}
    QObject* ChildWindow(const QString&) const override { return nullptr; }
    void CloseChild(QObject*) override {}
    void SetCommandEnabled(const QString&, bool) override {}
};

using FormFactory = std::function<std::unique_ptr<QWidget>()>;

template <typename T> FormFactory plain() {
    return [] { return std::make_unique<T>(); };
}

/// The forms by row name.
const QMap<QString, FormFactory>& factories() {
    static const QMap<QString, FormFactory> table = {
        {"units", plain<TFormUnits>()},
        {"ingredients", plain<TFormIngredients>()},
        {"recipes", [] { return std::make_unique<TFormRecipes>(); }},
        {"recipes of a saved search",
         [] {
             return std::make_unique<TFormRecipes>(
                 QStringLiteral("SELECT recId, recName, recTime, recServings, recPrice FROM Recipes"),
                 QStringLiteral("Quick dinners"));
         }},
        {"unit converter", plain<TFormUnitConverter>()},
        {"select recipe",
         [] {
             auto form = std::make_unique<TFormAddOrEditRecipe>();
             form->mode = 1; // the servings show as well
             return form;
         }},
        {"recipe line", plain<TFormRecipeAddOrEditIngredient>()},
        {"free-form recipe line", plain<TFormRecipeAddOrEditIngredientFF>()},
        {"rich text editor", plain<TFormRichTextDBEditor>()},
        {"categories", plain<TFormCategories>()},
        {"recipe categories", plain<TFormRecipeCategories>()},
        {"search recipes", plain<TFormSearchRecipes>()},
        {"search ingredients", plain<TFormSearchIngredients>()},
        {"about", plain<TFormAbout>()},
        {"system information", plain<TFormSystemInfo>()},
    };
    return table;
}

const char* captionProperty(const QObject* object) {
    if (object->inherits("QAction") || object->inherits("QAbstractButton") || object->inherits("QLabel"))
        return "text";
    if (object->inherits("QGroupBox") || object->inherits("QMenu"))
        return "title";
    if (object->inherits("QToolBar") || object->inherits("QDockWidget"))
        return "windowTitle";
    return nullptr;
}

/// Where a key of the form leads: the object and which of its texts.
struct KeyTarget {
    QObject* object = nullptr;
    QByteArray slot; ///< as the translator keeps the English: property name, "pageText", "column<N>"
};

QTabWidget* tabsOf(QWidget& form, QObject* page) {
    for (QTabWidget* tabs : form.findChildren<QTabWidget*>())
        if (tabs->indexOf(qobject_cast<QWidget*>(page)) >= 0)
            return tabs;
    return nullptr;
}

std::optional<KeyTarget> target(QWidget& form, const QString& key) {
    const QString rest = key.mid(form.objectName().size() + 1);
    if (rest == QLatin1String("Caption"))
        return KeyTarget{&form, "windowTitle"};
    const QStringList parts = rest.split(QLatin1Char('.'));
    if (parts.size() > 2)
        return std::nullopt;
    for (QObject* object : form.findChildren<QObject*>(parts.first())) {
        if (parts.size() == 2 && parts.last() == QLatin1String("Hint"))
            return KeyTarget{object, object->inherits("QAction") ? "statusTip" : "toolTip"};
        if (parts.size() == 2 && parts.last() == QLatin1String("Placeholder"))
            return KeyTarget{object, "placeholderText"};
        if (parts.size() == 2 && parts.last().startsWith(QLatin1String("Column")) &&
            object->inherits("QAbstractItemView"))
            return KeyTarget{object, "column" + parts.last().mid(6).toLatin1()};
        if (parts.size() == 1 && tabsOf(form, object))
            return KeyTarget{object, "pageText"};
        if (parts.size() == 1 && captionProperty(object))
            return KeyTarget{object, captionProperty(object)};
    }
    return std::nullopt;
}

/// The form's own English of a text, as the translator kept it at the form's first translation.
QVariant ownEnglish(const KeyTarget& t) {
    return t.object->property("vintraEnglish_" + t.slot);
}

/// What the form shows for the key now.
QString shown(QWidget& form, const KeyTarget& t) {
    if (t.slot == "pageText") {
        QTabWidget* tabs = tabsOf(form, t.object);
        return tabs->tabText(tabs->indexOf(static_cast<QWidget*>(t.object)));
    }
    if (t.slot.startsWith("column"))
        return static_cast<QAbstractItemView*>(t.object)
            ->model()
            ->headerData(t.slot.mid(6).toInt(), Qt::Horizontal)
            .toString();
    return t.object->property(t.slot.constData()).toString();
}

/// Runs a translator of our own over the form; the keys it missed, each with the form's English.
QStringList missingKeys(QWidget& form, const TVintraDictionary& dictionary) {
    TVintraTranslator translator(&form);
    translator.SetDictionary(&dictionary);
    translator.Translate();
    QStringList missing;
    for (const QString& key : translator.MissingKeys()) {
        const std::optional<KeyTarget> t = target(form, key);
        missing << key + QStringLiteral(" = ") + (t ? ownEnglish(*t).toString() : QStringLiteral("?"));
    }
    return missing;
}

bool skipped(const QObject* object, const QWidget& form) {
    for (const QObject* o = object; o && o != &form; o = o->parent())
        if (o->property("vintraSkip").toBool() || o->property("vintraForm").isValid())
            return true;
    return false;
}

/// The texts an object shows that would take a key of its own: its caption, its tab texts, the
/// titles of its visible column header.
QStringList ownTexts(QObject* object) {
    QStringList texts;
    if (const char* property = captionProperty(object)) {
        // A tool bar's button shows its action, which has the key.
        auto* button = qobject_cast<QToolButton*>(object);
        if (!button || !button->defaultAction())
            texts << object->property(property).toString();
    }
    if (auto* tabs = qobject_cast<QTabWidget*>(object))
        for (int i = 0; i < tabs->count(); ++i)
            texts << tabs->tabText(i);
    if (auto* table = qobject_cast<QTableView*>(object); table && !table->horizontalHeader()->isHidden())
        for (int c = 0; table->model() && c < table->model()->columnCount(); ++c)
            texts << table->model()->headerData(c, Qt::Horizontal).toString();
    if (auto* tree = qobject_cast<QTreeView*>(object); tree && !tree->isHeaderHidden())
        for (int c = 0; tree->model() && c < tree->model()->columnCount(); ++c)
            texts << tree->model()->headerData(c, Qt::Horizontal).toString();
    texts.removeAll(QString());
    return texts;
}

/// Controls that show a text but have no name, so no key can reach them.
QStringList unnamedTexts(QWidget& form) {
    QStringList found;
    for (QObject* object : form.findChildren<QObject*>()) {
        if (!object->objectName().isEmpty() || skipped(object, form))
            continue;
        const QStringList texts = ownTexts(object);
        if (!texts.isEmpty())
            found << QString::fromLatin1(object->metaObject()->className()) + QStringLiteral(" \"") +
                         texts.join(QStringLiteral("\", \"")) + QLatin1Char('"');
    }
    return found;
}

} // namespace

class TestFormLanguages : public QObject {
    Q_OBJECT

    TVintraDictionary m_english;
    TVintraDictionary m_german;
    QuietFrame m_frame;

private slots:
    void initTestCase() {
        RegisterWidgetTranslation();
        m_english.SetFileName(EnglishFile);
        m_german.SetFileName(GermanFile);
        QCOMPARE(m_german.Language(), QStringLiteral("Deutsch"));
        QVERIFY(m_english.count() > 0);
    }
    void init() { MdiFrame = &m_frame; }
    void cleanup() { MdiFrame = nullptr; }

    void everyFormSpeaksBothLanguages_data() {
        QTest::addColumn<QString>("form");
        // Keys whose German must be on the screen once the form has shown: a title, a tab, a
        // grid column, a button, a label, a hint.
        QTest::addColumn<QStringList>("spots");
        QTest::newRow("units") << "units"
                               << QStringList{"FormUnits.Caption", "FormUnits.DBGridUnits.Column2",
                                              "FormUnits.RadioButtonWeight", "FormUnits.DBEditConv.Hint",
                                              "FormUnits.LabelAbbrev"};
        QTest::newRow("ingredients") << "ingredients"
                                     << QStringList{"FormIngredients.Caption",
                                                    "FormIngredients.TabSheetConversions",
                                                    "FormIngredients.DBGridIngredients.Column1",
                                                    "FormIngredients.DBGridUnitsIn.Column0",
                                                    "FormIngredients.BitBtnUpdateUnit",
                                                    "FormIngredients.LabelTotalFat",
                                                    "FormIngredients.MIAddImage"};
        QTest::newRow("recipes") << "recipes"
                                 << QStringList{"FormRecipes.Caption",
                                                "FormRecipes.TabSheetPreparation",
                                                "FormRecipes.DBGridRecipes.Column2",
                                                "FormRecipes.DBGridContents.Column1",
                                                "FormRecipes.BitBtnAddIngred",
                                                "FormRecipes.LabelServings",
                                                "FormRecipes.DBEditCalories.Hint",
                                                "FormRecipes.MIRecalculate"};
        QTest::newRow("recipes of a saved search")
            << "recipes of a saved search"
            << QStringList{"FormRecipes.DBGridRecipes.Column0", "FormRecipes.DBGridRecipes.Column2",
                           "FormRecipes.TabSheetContents"};
        QTest::newRow("unit converter")
            << "unit converter"
            << QStringList{"FormUnitConverter.Caption", "FormUnitConverter.TabSheetLength",
                           "FormUnitConverter.LabelFeet", "FormUnitConverter.BitBtnCancel"};
        QTest::newRow("select recipe")
            << "select recipe"
            << QStringList{"FormAddOrEditRecipe.DBGridRecipes.Column0", "FormAddOrEditRecipe.LabelServings",
                           "FormAddOrEditRecipe.BitBtnCancel"};
        QTest::newRow("recipe line") << "recipe line"
                                     << QStringList{"FormRecipeAddOrEditIngredient.DBGridIngredients.Column0",
                                                    "FormRecipeAddOrEditIngredient.LabelAmount",
                                                    "FormRecipeAddOrEditIngredient.BitBtnCancel"};
        QTest::newRow("free-form recipe line")
            << "free-form recipe line"
            << QStringList{"FormRecipeAddOrEditIngredientFF.LabelFraction",
                           "FormRecipeAddOrEditIngredientFF.LabelIngredient",
                           "FormRecipeAddOrEditIngredientFF.BitBtnCancel"};
        QTest::newRow("rich text editor")
            << "rich text editor"
            << QStringList{"FormRichTextDBEditor.Caption", "FormRichTextDBEditor.ActionBold",
                           "FormRichTextDBEditor.ActionBold.Hint",
                           "FormRichTextDBEditor.ComboBoxFontSize.Hint"};
        QTest::newRow("categories") << "categories"
                                    << QStringList{"FormCategories.Caption",
                                                   "FormCategories.DBGridCategories.Column0",
                                                   "FormCategories.ActionDelete", "FormCategories.BitBtnOk"};
        QTest::newRow("recipe categories")
            << "recipe categories"
            << QStringList{"FormRecipeCategories.Caption", "FormRecipeCategories.LabelAvailableCategories",
                           "FormRecipeCategories.BitBtnCategories",
                           "FormRecipeCategories.SpeedButtonAssign.Hint"};
        QTest::newRow("search recipes") << "search recipes"
                                        << QStringList{"FormSearchRecipes.Caption",
                                                       "FormSearchRecipes.TabSheetAdvanced",
                                                       "FormSearchRecipes.DBGridResults.Column1",
                                                       "FormSearchRecipes.BitBtnNewSearch",
                                                       "FormSearchRecipes.EditPattern.Placeholder",
                                                       "FormSearchRecipes.GroupBoxNutrients",
                                                       "FormSearchRecipes.LabelTotalCarbo"};
        QTest::newRow("search ingredients")
            << "search ingredients"
            << QStringList{"FormSearchIngredients.Caption", "FormSearchIngredients.TabSheetNameAndType",
                           "FormSearchIngredients.DBGridResults.Column0", "FormSearchIngredients.BitBtnFind",
                           "FormSearchIngredients.CheckBoxAllTypes"};
        QTest::newRow("about") << "about" << QStringList{"FormAbout.Caption", "FormAbout.LabelDataSource"};
        QTest::newRow("system information") << "system information" << QStringList{"FormSystemInfo.Caption"};
    }

    void everyFormSpeaksBothLanguages() {
        QFETCH(QString, form);
        QFETCH(QStringList, spots);
        TestStore store;
        store.holder().VintraDictionary.SetFileName(GermanFile);
        std::unique_ptr<QWidget> window = factories().value(form)();
        window->show();
        const QString prefix = window->objectName() + QLatin1Char('.');

        // The form translated itself at its show.
        for (const QString& key : spots) {
            const std::optional<KeyTarget> t = target(*window, key);
            QVERIFY2(t, qPrintable(key + ": no such control"));
            QVERIFY2(m_german.contains(key), qPrintable(key + ": not in Deutsch.xml"));
            QVERIFY2(m_german.GetText(key, {}) != m_english.GetText(key, {}),
                     qPrintable(key + ": the German is the English"));
            QCOMPARE(shown(*window, *t), m_german.GetText(key, {}));
        }

        QStringList missing = missingKeys(*window, m_german);
        QVERIFY2(missing.isEmpty(),
                 qPrintable("missing in Deutsch.xml:\n" + missing.join(QLatin1Char('\n'))));
        missing = missingKeys(*window, m_english);
        QVERIFY2(missing.isEmpty(),
                 qPrintable("missing in English.xml:\n" + missing.join(QLatin1Char('\n'))));
        // Back in English, the spots show the English again.
        for (const QString& key : spots)
            QCOMPARE(shown(*window, *target(*window, key)), m_english.GetText(key, {}));

        // The English file says what the form says, and each of the form's keys reaches a text.
        QStringList wrong;
        for (const QString& key : m_english.keys()) {
            if (!key.startsWith(prefix))
                continue;
            const std::optional<KeyTarget> t = target(*window, key);
            const QVariant english = t ? ownEnglish(*t) : QVariant();
            if (!english.isValid())
                wrong << key + QStringLiteral(": reaches no text of the form");
            else if (!english.toString().isEmpty() && english.toString() != m_english.GetText(key, {}))
                wrong << key + QStringLiteral(": the form says \"") + english.toString() + QLatin1Char('"');
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));

        const QStringList unnamed = unnamedTexts(*window);
        QVERIFY2(unnamed.isEmpty(), qPrintable("texts without a name:\n" + unnamed.join(QLatin1Char('\n'))));
    }
};

QTEST_MAIN(TestFormLanguages)
#include "test_form_languages.moc"
