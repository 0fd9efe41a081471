// The translator's key scheme on a form of its own, the language files, and the translation of
// the frame and the options dialog.
#include "components/vintra_dictionary.h"
#include "components/vintra_translator.h"
#include "frame_fixture.h"
#include "shell/ui/form_options.h"
#include "shell/ui/outlook_bar.h"
#include "shell/ui/widget_translation.h"
#include "store/data_module_main.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTreeWidget>
#include <QXmlStreamReader>

namespace {

QString writeDictionary(const QTemporaryDir& dir, const QString& name, const QMap<QString, QString>& texts) {
    const QString path = dir.path() + QLatin1Char('/') + name + QStringLiteral(".xml");
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    QXmlStreamWriter xml(&file);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("dictionary"));
    xml.writeAttribute(QStringLiteral("language"), name);
    for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
        xml.writeStartElement(QStringLiteral("entry"));
        xml.writeAttribute(QStringLiteral("key"), it.key());
        xml.writeCharacters(it.value());
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    return path;
}

/// Keys of a language file in file order, duplicates kept.
QStringList entryKeys(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList keys;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("entry"))
            keys << xml.attributes().value(QLatin1String("key")).toString();
    return keys;
}

QStringList placeholders(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral("%[0-9.]*[sdif]"));
    QStringList found;
    for (auto it = pattern.globalMatch(text); it.hasNext();)
        found << it.next().captured();
    return found;
}

/// A small form with one control of each kind the translator knows.
struct SampleForm {
    QWidget form;
    QLabel* label = new QLabel(QStringLiteral("Name:"), &form);
    QPushButton* button = new QPushButton(QStringLiteral("OK"), &form);
    QLineEdit* edit = new QLineEdit(QStringLiteral("user data"), &form);
    QTabWidget* tabs = new QTabWidget(&form);
    QTreeWidget* tree = new QTreeWidget(&form);
    QAction* action = new QAction(QStringLiteral("Go"), &form);
    QWidget* inner = new QWidget(&form);
    QLabel* innerLabel = new QLabel(QStringLiteral("Inner"), inner);
    QLabel* skipped = new QLabel(QStringLiteral("Skip me"), &form);
    TVintraTranslator translator{&form};
    TVintraTranslator innerTranslator{inner};

    SampleForm() {
        form.setObjectName(QStringLiteral("FormSample"));
        form.setWindowTitle(QStringLiteral("Sample"));
        label->setObjectName(QStringLiteral("LabelName"));
        button->setObjectName(QStringLiteral("BitBtnOk"));
        button->setToolTip(QStringLiteral("Accept"));
        edit->setObjectName(QStringLiteral("EditName"));
        tabs->setObjectName(QStringLiteral("PageControl"));
        for (const char* page : {"TabSheetA", "TabSheetB"}) {
            auto* widget = new QWidget;
            widget->setObjectName(QLatin1String(page));
            tabs->addTab(widget, QLatin1String(page) == QLatin1String("TabSheetA")
                                     ? QStringLiteral("First")
                                     : QStringLiteral("Second"));
        }
        tree->setObjectName(QStringLiteral("TreeViewItems"));
        tree->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Amount")});
        action->setObjectName(QStringLiteral("ActionGo"));
        action->setStatusTip(QStringLiteral("Go on"));
        inner->setObjectName(QStringLiteral("FormInner"));
        innerLabel->setObjectName(QStringLiteral("LabelInner"));
        skipped->setObjectName(QStringLiteral("LabelSkipped"));
        skipped->setProperty("vintraSkip", true);
    }
};

} // namespace

class TestTranslation : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { RegisterWidgetTranslation(); }

    void controlsTakeTheirKeysAndFallBackToEnglish() {
        QTemporaryDir dir;
        TVintraDictionary german;
        german.SetFileName(writeDictionary(dir, QStringLiteral("Deutsch"),
                                           {{"FormSample.Caption", "Beispiel"},
                                            {"FormSample.LabelName", "Name (de):"},
                                            {"FormSample.BitBtnOk.Hint", "Annehmen"},
                                            {"FormSample.EditName", "must not reach the edit"},
                                            {"FormSample.TabSheetA", "Erste"},
                                            {"FormSample.TreeViewItems.Column1", "Menge"},
                                            {"FormSample.ActionGo", "Los"},
                                            {"FormSample.ActionGo.Hint", "Weiter"},
                                            {"FormSample.LabelInner", "Innen"},
                                            {"FormSample.LabelSkipped", "Übersprungen"}}));
        SampleForm sample;
        bool after = false;
        sample.translator.AfterTranslate = [&] { after = true; };
        sample.translator.Translate(); // no dictionary: nothing happens
        QVERIFY(!after);
        QCOMPARE(sample.form.windowTitle(), QStringLiteral("Sample"));

        sample.translator.SetDictionary(&german);
        sample.translator.Translate();
        QVERIFY(after);
        QCOMPARE(sample.form.windowTitle(), QStringLiteral("Beispiel"));
        QCOMPARE(sample.label->text(), QStringLiteral("Name (de):"));
        QCOMPARE(sample.button->text(), QStringLiteral("OK")); // no key: the English stays
        QCOMPARE(sample.button->toolTip(), QStringLiteral("Annehmen"));
        QCOMPARE(sample.edit->text(), QStringLiteral("user data"));
        QCOMPARE(sample.tabs->tabText(0), QStringLiteral("Erste"));
        QCOMPARE(sample.tree->headerItem()->text(1), QStringLiteral("Menge"));
        QCOMPARE(sample.action->text(), QStringLiteral("Los"));
        QCOMPARE(sample.action->toolTip(), QStringLiteral("Weiter"));
        // Another form's controls and marked controls are not this translator's.
        QCOMPARE(sample.innerLabel->text(), QStringLiteral("Inner"));
        QCOMPARE(sample.skipped->text(), QStringLiteral("Skip me"));
        QStringList missing = sample.translator.MissingKeys();
        missing.sort();
        QCOMPARE(missing, QStringList({"FormSample.BitBtnOk", "FormSample.TabSheetB",
                                       "FormSample.TreeViewItems.Column0"}));

        // The inner form translates itself by its own name.
        sample.innerTranslator.SetDictionary(&german);
        sample.innerTranslator.Translate();
        QCOMPARE(sample.innerLabel->text(), QStringLiteral("Inner"));
        QCOMPARE(sample.innerTranslator.MissingKeys(), QStringList{"FormInner.LabelInner"});

        // A later language without a key gives the English back.
        TVintraDictionary other;
        other.SetFileName(
            writeDictionary(dir, QStringLiteral("Other"), {{"FormSample.Caption", "Sample 2"}}));
        sample.translator.SetDictionary(&other);
        sample.translator.Translate();
        QCOMPARE(sample.form.windowTitle(), QStringLiteral("Sample 2"));
        QCOMPARE(sample.label->text(), QStringLiteral("Name:"));
        QCOMPARE(sample.tabs->tabText(0), QStringLiteral("First"));
        QCOMPARE(sample.tree->headerItem()->text(1), QStringLiteral("Amount"));
        QCOMPARE(sample.action->text(), QStringLiteral("Go"));
    }

    void languageFilesHoldTheSameKeys() {
        const QString english = QStringLiteral(QM_SOURCE_DATA "/Languages/English.xml");
        const QString german = QStringLiteral(QM_SOURCE_DATA "/Languages/Deutsch.xml");
        for (const QString& file : {english, german}) {
            TVintraDictionary dictionary;
            dictionary.SetFileName(file);
            QVERIFY2(dictionary.ErrorString().isEmpty(), qPrintable(file + ": " + dictionary.ErrorString()));
            const QStringList keys = entryKeys(file);
            QStringList once = keys;
            once.removeDuplicates();
            QVERIFY2(once.size() == keys.size(), qPrintable(file + ": a key stands twice"));
        }
        const QStringList englishKeys = entryKeys(english);
        const QSet<QString> englishSet(englishKeys.cbegin(), englishKeys.cend());
        const QStringList germanKeys = entryKeys(german);
        const QSet<QString> germanSet(germanKeys.cbegin(), germanKeys.cend());
        QVERIFY2(englishSet == germanSet,
                 qPrintable("only in one file: " +
                            ((englishSet - germanSet) + (germanSet - englishSet)).values().join(", ")));

        // Texts formatted with values keep their placeholders, in the same order.
        TVintraDictionary englishTexts, germanTexts;
        englishTexts.SetFileName(english);
        germanTexts.SetFileName(german);
        QStringList wrong;
        for (const QString& key : englishKeys)
            if (placeholders(englishTexts.GetText(key, {})) != placeholders(germanTexts.GetText(key, {})) ||
                englishTexts.GetText(key, {}).isEmpty() != germanTexts.GetText(key, {}).isEmpty())
                wrong << key;
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(", ")));
    }

    void frameAndOptionsHaveEveryKey_data() {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << "English";
        QTest::newRow("Deutsch") << "Deutsch";
    }

    // The frame, the options dialog and the bar's fixed pages take every text from the language file.
    void frameAndOptionsHaveEveryKey() {
        QFETCH(QString, language);
        QTemporaryDir exe;
        FrameFixture fixture(FrameFixture::copyLanguages(exe));
        fixture.store(QStringLiteral("Language"), language);
        TFormMain& form = fixture.create();
        QCOMPARE(FormResourceHolder->VintraDictionary.Language(), language);
        QVERIFY2(form.Translator().MissingKeys().isEmpty(),
                 qPrintable(form.Translator().MissingKeys().join("\n")));
        TFormOptions options(&form);
        options.show();
        QVERIFY2(options.Translator().MissingKeys().isEmpty(),
                 qPrintable(options.Translator().MissingKeys().join("\n")));
        const TVintraDictionary& dictionary = FormResourceHolder->VintraDictionary;
        QCOMPARE(form.findChild<QMenu*>(QStringLiteral("MIFile"))->title(),
                 dictionary.GetText(QStringLiteral("FormMain.MIFile"), {}));

        TOutlookBar* bar = form.OutlookBar();
        // Page 1 holds the delivered shortcuts, loaded after the translation: user data, untranslated.
        QCOMPARE(bar->ItemCount(1), 2);
        QCOMPARE(
            bar->ItemCaption(1, 0),
            DataModuleMain->KADaoDatabase.scalar("SELECT shortcutName FROM Shortcuts WHERE shortcutId = 1")
                .toString());
        for (int page = 0; page < 3; ++page) {
            const QString key = QStringLiteral("OutlookBarMain.") + QString::number(page);
            QCOMPARE(bar->PageCaption(page), dictionary.GetText(key, {}));
            for (int item = 0; page != 1 && item < bar->ItemCount(page); ++item)
                QCOMPARE(bar->ItemCaption(page, item),
                         dictionary.GetText(key + QLatin1Char('.') + QString::number(item), {}));
        }
    }

    void withoutALanguageFileTheFormStaysEnglishAndTheBarEmpty() {
        QTemporaryDir exe;
        FrameFixture fixture(FrameFixture::copyLanguages(exe));
        fixture.store(QStringLiteral("Language"), QStringLiteral("Klingon"));
        TFormMain& form = fixture.create();
        QCOMPARE(FormResourceHolder->VintraDictionary.count(), 0);
        QCOMPARE(form.findChild<QMenu*>(QStringLiteral("MIFile"))->title(), QStringLiteral("&File"));
        // The bar's captions come from the dictionary only, with empty defaults.
        QCOMPARE(form.OutlookBar()->PageCaption(0), QString());
        QCOMPARE(form.OutlookBar()->ItemCaption(0, 0), QString());
    }
};

QTEST_MAIN(TestTranslation)
#include "test_translation.moc"
