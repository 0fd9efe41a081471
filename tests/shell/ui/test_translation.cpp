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
#include <QXmlStreamReader>

namespace {

/// A language file of the given entries; the texts hold no markup.
QString writeDictionary(const QTemporaryDir& dir, const QString& name, const QMap<QString, QString>& texts) {
    QString xml = QStringLiteral("<dictionary language=\"%1\">").arg(name);
    for (auto it = texts.cbegin(); it != texts.cend(); ++it)
        xml += QStringLiteral("<entry key=\"%1\">%2</entry>").arg(it.key(), it.value());
    QFile file(dir.filePath(name + QStringLiteral(".xml")));
    file.open(QIODevice::WriteOnly);
    file.write((xml + QStringLiteral("</dictionary>")).toUtf8());
    return file.fileName();
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

/// A small form: captions, an action with its hint, the user's edit, a form inside it and a marked
/// control.
struct SampleForm {
    QWidget form;
    QLabel* label = new QLabel(QStringLiteral("Name:"), &form);
    QPushButton* button = new QPushButton(QStringLiteral("OK"), &form);
    QLineEdit* edit = new QLineEdit(QStringLiteral("user data"), &form);
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
        edit->setObjectName(QStringLiteral("EditName"));
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
                                            {"FormSample.EditName", "must not reach the edit"},
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
        QCOMPARE(sample.edit->text(), QStringLiteral("user data"));
        QCOMPARE(sample.action->text(), QStringLiteral("Los"));
        QCOMPARE(sample.action->toolTip(), QStringLiteral("Weiter"));
        // Another form's controls and marked controls are not this translator's.
        QCOMPARE(sample.innerLabel->text(), QStringLiteral("Inner"));
        QCOMPARE(sample.skipped->text(), QStringLiteral("Skip me"));
        QCOMPARE(sample.translator.MissingKeys(), QStringList{"FormSample.BitBtnOk"});

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
        QCOMPARE(sample.action->toolTip(), QStringLiteral("Go on"));
    }

    void languageFilesHoldTheSameKeys() {
        const QString english = QStringLiteral(QM_SOURCE_DATA "/Languages/English.xml");
        const QString german = QStringLiteral(QM_SOURCE_DATA "/Languages/Deutsch.xml");
        const QStringList englishKeys = entryKeys(english);
        const QSet<QString> englishSet(englishKeys.cbegin(), englishKeys.cend());
        const QStringList germanKeys = entryKeys(german);
        const QSet<QString> germanSet(germanKeys.cbegin(), germanKeys.cend());
        QVERIFY2(englishSet == germanSet,
                 qPrintable("only in one file: " +
                            ((englishSet - germanSet) + (germanSet - englishSet)).values().join(", ")));
        // A key standing twice hides its first text.
        QCOMPARE(englishSet.size(), englishKeys.size());
        QCOMPARE(germanSet.size(), germanKeys.size());

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

    void frameOptionsAndBarTakeTheLanguageFile_data() {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << "English";
        QTest::newRow("Deutsch") << "Deutsch";
        // Without its file the frame stays English and the bar, whose captions have no English of
        // their own, stays empty.
        QTest::newRow("no file") << "Klingon";
    }

    void frameOptionsAndBarTakeTheLanguageFile() {
        QFETCH(QString, language);
        QTemporaryDir exe;
        FrameFixture fixture(FrameFixture::copyLanguages(exe));
        fixture.store(QStringLiteral("Language"), language);
        TFormMain& form = fixture.create();
        const TVintraDictionary& dictionary = FormResourceHolder->VintraDictionary;
        const bool found = language != QLatin1String("Klingon");
        QCOMPARE(dictionary.Language(), found ? language : QString());
        if (found) {
            QVERIFY2(form.Translator().MissingKeys().isEmpty(),
                     qPrintable(form.Translator().MissingKeys().join("\n")));
            TFormOptions options(&form);
            options.show();
            QVERIFY2(options.Translator().MissingKeys().isEmpty(),
                     qPrintable(options.Translator().MissingKeys().join("\n")));
        }
        QCOMPARE(form.findChild<QMenu*>(QStringLiteral("MIFile"))->title(),
                 dictionary.GetText(QStringLiteral("FormMain.MIFile"), QStringLiteral("&File")));

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
};

QTEST_MAIN(TestTranslation)
#include "test_translation.moc"
