// The ingredients window on a fresh database, shown offscreen: base unit choice, measurements,
// nutrient notes, pictures on real files, the delete orders, the post checks and the price list.
#include "culinary_window_fixture.h"

#include "components/ui/vintra_db_grid.h"
#include "components/ui/vintra_db_tree_view.h"
#include "culinary/ui/form_ingredients.h"
#include "store/ui/picture_pages.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>

namespace {

/// Types 1 Vegetables (carrot, peas), 100001 Pantry (soup base, stock, spice), 100002 Spare (old
/// jam). Soup base is based on a cup without grams; stock and old jam are in a recipe.
class IngredientStore : public TestStore {
public:
    IngredientStore() {
        exec(
            {"INSERT INTO ITypes ( ingredTypeId, ingredTypeName, parentId ) VALUES ( 1, 'Vegetables', 0 ), "
             "( 100001, 'Pantry', 0 ), ( 100002, 'Spare', 0 )",
             "INSERT INTO Units ( unitId, unitName, unitAbbrev, unitAbbrevSmall, unitType, unitConv ) VALUES "
             "( 1, 'gram', 'g', 'g', 1, 1 ), ( 2, 'kilogram', 'kg', 'kg', 1, 1000 ), ( 3, 'cup', 'cup', 'c', "
             "2, "
             "NULL ), ( 4, 'tablespoon', 'tbsp', 'tb', 2, NULL ), ( 5, 'teaspoon', 'tsp', 'ts', 2, NULL )",
             "INSERT INTO Ingreds ( ingredId, ingredTypeId, ingredName, unitId, ingredPrice, nutCal ) VALUES "
             "( 10, 1, 'Carrot', 1, 2, 41 ), ( 11, 1, 'Peas', 2, 4, 81 ), ( 100001, 100001, 'Soup base', 3, "
             "1, "
             "NULL ), ( 100002, 100001, 'Stock', 1, 1, NULL ), ( 100004, 100001, 'Spice', 1, 9, NULL ), "
             "( 100003, 100002, 'Old jam', 1, 1, NULL )",
             "INSERT INTO Convs ( unitId, ingredId, grams ) VALUES ( 4, 10, 15 ), ( 5, 100002, 5 ), "
             "( 4, 100004, 3 ), ( 3, 100003, 250 )",
             "INSERT INTO Contents ( recId, ingredId, amount, unitId ) VALUES ( 500, 100002, 1, 1 ), "
             "( 500, 100003, 2, 1 )",
             "INSERT INTO BioVals ( bioValueId, bioValueDesc ) VALUES ( 'Calories', '<p>Energy note</p>' ), "
             "( 'Protein', '<p>Protein note</p>' )",
             "INSERT INTO PKeys ( keyId, keyValue ) VALUES ( 'Ingreds', 100010 )"});
        WriteDictionary(*this, {{"ErrorEmptyField", "Missing: %s"},
                                {"ErrorTooMuchPictures", "Too many pictures"},
                                {"ErrorGramsMustBePositiveInteger", "Grams!"},
                                {"QuestionDeleteIngredient", "Delete ingredient?"},
                                {"InfoIngredientReferencedByRecipes", "Ingredient in recipes"},
                                {"QuestionDeleteIngredientType", "Delete type?"},
                                {"StatusIngredientsInCurrentType", "In type:"}});
        QDir().mkpath(pictures());
    }
    QVariant value(const QString& sql) { return db().scalar(sql); }
    int count(const QString& sql) { return value(sql).toInt(); }
    TVintraOptions& options() { return holder().VintraOptions; }
    QString pictures() { return dataModule().PictureFolder(pkIngredient); }
    QByteArray read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

} // namespace

class TestFormIngredients : public QObject {
    Q_OBJECT

    FakeFrame m_frame;

    static std::unique_ptr<TFormIngredients> open() {
        auto form = std::make_unique<TFormIngredients>();
        form->show();
        return form;
    }
    static QAction* action(TFormIngredients& form, const char* name) { return child<QAction>(form, name); }
    static int current(TFormIngredients& form) {
        return form.RecordTable().FieldByName("ingredId").AsInteger();
    }

private slots:
    void init() {
        m_frame = FakeFrame();
        MdiFrame = &m_frame;
    }
    void cleanup() { MdiFrame = nullptr; }

    // The base unit: any weight unit, or a volume unit with grams for this ingredient; a volume
    // base unit without them is not in the list, though the row keeps it. Measurements: grams that
    // don't read as a number attach nothing; update takes any sign; the lists' keys run the
    // buttons' commands.
    void baseUnitAndMeasurements() {
        IngredientStore store;
        auto form = open();
        auto* box = child<QComboBox>(*form, "DBLookupComboBoxUnit");
        QVERIFY(form->SelectIngredient(100001));
        QCOMPARE(names(form->QueryUnitsLookup(), "unitName"), (QStringList{"gram", "kilogram"}));
        QCOMPARE(box->currentIndex(), -1);
        QCOMPARE(form->RecordTable().FieldByName("unitId").AsInteger(), 3);
        QCOMPARE(form->RecordTable().State(), qm::dsBrowse);

        QVERIFY(form->SelectIngredient(10));
        QCOMPARE(names(form->QueryUnitsLookup(), "unitName"),
                 (QStringList{"gram", "kilogram", "tablespoon"}));
        QCOMPARE(box->currentText(), QStringLiteral("gram"));

        auto* edit = child<QLineEdit>(*form, "EditConversion");
        auto* add = child<QToolButton>(*form, "SpeedButtonAddUnit");
        auto* update = child<QPushButton>(*form, "BitBtnUpdateUnit");
        qm::Dataset& out = form->QueryUnitsOut();
        qm::Dataset& in = form->QueryUnitsIn();
        QCOMPARE(names(out, "availableUnitName"), (QStringList{"cup", "teaspoon"}));

        TScriptedPresenter presenter;
        QVERIFY(out.Locate("availableUnitName", "teaspoon"));
        QTest::keyClicks(edit, "abc");
        add->click();
        QCOMPARE(store.count("SELECT COUNT(*) FROM Convs WHERE ingredId = 10"), 1);
        edit->setText("4.5");
        add->click();
        QCOMPARE(store.value("SELECT grams FROM Convs WHERE ingredId = 10 AND unitId = 5").toDouble(), 4.5);

        QVERIFY(in.Locate("attachedUnitName", "teaspoon"));
        edit->setText("-2");
        update->click();
        QCOMPARE(store.value("SELECT grams FROM Convs WHERE ingredId = 10 AND unitId = 5").toDouble(), -2.0);
        edit->setText("x");
        update->click();
        QCOMPARE(Shown(presenter), QStringList{"E:Grams!"});

        QVERIFY(in.Locate("attachedUnitName", "tablespoon"));
        QTest::keyClick(child<TVintraDBGrid>(*form, "DBGridUnitsIn"), Qt::Key_Delete);
        QCOMPARE(names(in, "attachedUnitName"), QStringList{"teaspoon"});
        // Other ingredients' rows stay.
        QCOMPARE(store.count("SELECT COUNT(*) FROM Convs"), 4);
    }

    void nutrientNoteFollowsFocus() {
        IngredientStore store;
        auto form = open();
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        QVERIFY(form->SelectIngredient(10));
        child<QTabWidget>(*form, "PageControlIngredient")->setCurrentIndex(2);
        auto* note = child<QTextBrowser>(*form, "DBRichEditBioValueNote");
        child<QLineEdit>(*form, "DBEditCalories")->setFocus();
        QCOMPARE(note->toPlainText(), QStringLiteral("Energy note"));
        child<QLineEdit>(*form, "DBEditTotalFat")->setFocus();
        QCOMPARE(note->toPlainText(), QString());
    }

    // With nine pictures the tenth is refused before the file is asked for. Clearing picture 2
    // moves the later ones down, on disk and in the tabs, and the next one is taken as the ninth.
    void picturesLimitAndRenumbering() {
        IngredientStore store;
        for (int n = 1; n <= 9; ++n)
            WritePicture(store.pictures() + QStringLiteral("10.%1.jpg").arg(n), Qt::red);
        const QString source = store.root() + "new.jpg";
        const QByteArray bytes = WritePicture(source, Qt::white);
        auto form = open();
        QVERIFY(form->SelectIngredient(10));
        TPicturePages* pages = form->PageControlPictures();
        int asked = 0;
        pages->OpenPictureFile = [&] {
            ++asked;
            return source;
        };
        TScriptedPresenter presenter;
        action(*form, "MIAddImage")->trigger();
        QCOMPARE(Shown(presenter), QStringList{"E:Too many pictures"});
        QCOMPARE(asked, 0);

        pages->setCurrentIndex(1);
        action(*form, "MIClearImage")->trigger();
        QVERIFY(!QFile::exists(store.pictures() + "10.9.jpg"));
        QCOMPARE(pages->count(), 8);

        presenter.clear();
        action(*form, "MIAddImage")->trigger();
        QVERIFY(presenter.shown.isEmpty());
        QCOMPARE(asked, 1);
        QCOMPARE(store.read(store.pictures() + "10.9.jpg"), bytes);
    }

    void deleteIngredient_data() {
        QTest::addColumn<int>("id");
        QTest::addColumn<int>("irDelete");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<bool>("deleted");
        QTest::addColumn<int>("convsLeft");
        QTest::addColumn<int>("contentsLeft");
        QTest::newRow("restricted") << 100002 << 1
                                    << QStringList{"Q:Delete ingredient?", "I:Ingredient in recipes"} << false
                                    << 1 << 1;
        QTest::newRow("cascade") << 100002 << 2 << QStringList{"Q:Delete ingredient?"} << true << 0 << 0;
        // Conversions go only with the cascade of a referenced ingredient.
        QTest::newRow("unreferenced keeps its conversions")
            << 100004 << 2 << QStringList{"Q:Delete ingredient?"} << true << 1 << 0;
    }
    void deleteIngredient() {
        QFETCH(int, id);
        QFETCH(int, irDelete);
        QFETCH(QStringList, messages);
        QFETCH(bool, deleted);
        QFETCH(int, convsLeft);
        QFETCH(int, contentsLeft);
        IngredientStore store;
        store.options().SetAsInteger("IRDeleteIngredient", irDelete);
        // The delete looks for pictures in a folder that isn't the picture folder.
        const QString picture = store.pictures() + QStringLiteral("%1.1.jpg").arg(id);
        const QString stray = store.root() + QStringLiteral("Database/ing/rec/%1.1.jpg").arg(id);
        WritePicture(picture, Qt::red);
        WritePicture(stray, Qt::red);
        auto form = open();
        QVERIFY(form->SelectIngredient(id));
        TScriptedPresenter presenter;
        presenter.answers = {mrYes};
        QTest::keyClick(form->Grid(), Qt::Key_Delete);
        QCOMPARE(Shown(presenter), messages);
        const auto where = [id](const char* sql) { return QString::fromLatin1(sql).arg(id); };
        QCOMPARE(store.count(where("SELECT COUNT(*) FROM Ingreds WHERE ingredId = %1")), deleted ? 0 : 1);
        QCOMPARE(store.count(where("SELECT COUNT(*) FROM Convs WHERE ingredId = %1")), convsLeft);
        QCOMPARE(store.count(where("SELECT COUNT(*) FROM Contents WHERE ingredId = %1")), contentsLeft);
        QVERIFY(QFile::exists(picture));
        QCOMPARE(QFile::exists(stray), !deleted);
    }

    void postChecksAndNewRecord() {
        IngredientStore store;
        auto form = open();
        QVERIFY(form->TreeView()->Locate(100002));
        QTest::keyClick(form->Grid(), Qt::Key_Insert);
        qm::Dataset& table = form->RecordTable();
        TScriptedPresenter presenter;
        QVERIFY(!table.Post());
        QCOMPARE(presenter.texts(), QStringList{"Missing: ingredient name\nMissing: ingredient base unit"});
        QTest::keyClicks(child<QLineEdit>(*form, "DBEditIngredientName"), "Basil");
        QTest::keyClick(child<QComboBox>(*form, "DBLookupComboBoxUnit"), Qt::Key_Down);
        QVERIFY(table.Post());
        QCOMPARE(store.count("SELECT ingredTypeId FROM Ingreds WHERE ingredId = 100011"), 100002);
        QCOMPARE(store.count("SELECT unitId FROM Ingreds WHERE ingredName = 'Basil'"), 1);
        QCOMPARE(m_frame.status, QStringLiteral("In type: 2"));
    }

    // The import says nothing and runs on the root as well.
    void priceListImport() {
        IngredientStore store;
        const QString file = store.root() + "prices.xml";
        QFile xml(file);
        QVERIFY(xml.open(QIODevice::WriteOnly));
        xml.write("<list><ingredient id=\"10\" price=\"3.25\"/></list>");
        xml.close();
        auto form = open();
        QCOMPARE(form->TreeView()->GetCurrentKey(), 0);
        form->OpenDialogPriceList = [&] { return file; };
        TScriptedPresenter presenter;
        action(*form, "MIImportPriceList")->trigger();
        QCOMPARE(store.value("SELECT ingredPrice FROM Ingreds WHERE ingredId = 10").toDouble(), 3.25);
        QVERIFY(presenter.shown.isEmpty());
    }

    // A hit in another type selects the type first; the find button opens the search window. The
    // root can't be deleted; a type goes with its ingredients under the cascade.
    void findAndTypeCascade() {
        IngredientStore store;
        store.options().SetAsInteger("IRDeleteIngredientType", 2);
        auto form = open();
        m_frame.pattern = "ase";
        form->Find(0);
        QCOMPARE(form->TreeView()->GetCurrentKey(), 100001);
        QCOMPARE(current(*form), 100001);
        child<QPushButton>(*form, "SpeedButtonFind")->click();
        QCOMPARE(m_frame.toggled, QStringList{"SearchIngredients+"});

        QVERIFY(form->TreeView()->Locate(100002));
        TScriptedPresenter presenter;
        presenter.answers = {mrYes};
        action(*form, "MIDeleteIngredientType")->trigger();
        QCOMPARE(Shown(presenter), QStringList{"Q:Delete type?"});
        QCOMPARE(store.count("SELECT COUNT(*) FROM ITypes WHERE ingredTypeId = 100002"), 0);
        QCOMPARE(store.count("SELECT COUNT(*) FROM Ingreds WHERE ingredTypeId = 100002"), 0);
        QCOMPARE(store.count("SELECT COUNT(*) FROM Contents"), 1);
    }

    // The tree keeps long names whole and scrolls sideways; the grid's name column takes what the
    // price leaves free.
    void longNamesUseTheWidth() {
        IngredientStore store;
        const QString longName = QStringLiteral("Preserved, pickled and fermented vegetables of the season");
        store.exec({QStringLiteral("UPDATE ITypes SET ingredTypeName = '%1' WHERE ingredTypeId = 100002")
                        .arg(longName)});
        auto form = open();
        QCoreApplication::processEvents();
        TVintraDBTreeView* tree = form->TreeView();
        QTreeWidgetItem* node = tree->NodeOf(100002);
        QVERIFY(node);
        const QRect label = tree->visualItemRect(node);
        const int textWidth = tree->fontMetrics().horizontalAdvance(longName);
        QVERIFY(tree->columnWidth(0) > tree->viewport()->width());
        QVERIFY(tree->columnWidth(0) - (label.left() + tree->horizontalScrollBar()->value()) >= textWidth);
        QVERIFY(tree->horizontalScrollBar()->maximum() > 0);
        // Short names again: the column is as wide as the view, nothing to scroll.
        node->setText(0, QStringLiteral("Jams"));
        QCoreApplication::processEvents();
        QCOMPARE(tree->columnWidth(0), tree->viewport()->width());

        TVintraDBGrid* grid = form->Grid();
        QCOMPARE(grid->columnWidth(0) + grid->columnWidth(1), grid->viewport()->width());
    }
};

QTEST_MAIN(TestFormIngredients)
#include "test_form_ingredients.moc"
