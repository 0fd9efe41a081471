// The options dialog over a real frame: its bindings, OK and Cancel, the languages, and the
// tool bar places it saves and restores.
#include "frame_fixture.h"
#include "shell/ui/form_options.h"
#include "shell/ui/mdi_client.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QToolBar>

namespace {

template <typename T> T* child(QWidget& parent, const QString& name) {
    T* found = parent.findChild<T*>(name);
    if (!found)
        qFatal("no control %s", qPrintable(name));
    return found;
}

QToolBar* bar(TFormMain& form, const char* name) {
    return form.findChild<QToolBar*>(QLatin1String(name));
}

} // namespace

class TestFormOptions : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_exe;
    std::unique_ptr<FrameFixture> m_fixture;

    TVintraOptions& options() { return FormResourceHolder->VintraOptions; }

private slots:
    void init() {
        m_exe = std::make_unique<QTemporaryDir>();
        m_fixture = std::make_unique<FrameFixture>(FrameFixture::copyLanguages(*m_exe));
    }
    void cleanup() {
        m_fixture.reset();
        m_exe.reset();
    }

    // Toggling every check box and pressing OK changes as many options, so no box is left unbound
    // and no two share an option.
    void everyCheckBoxHasAnOptionOfItsOwn() {
        TFormMain& form = m_fixture->create();
        TFormOptions dialog(&form);
        dialog.show();
        const auto values = [this] {
            QHash<QString, QVariant> values;
            for (const TVintraOption& option : options().options())
                values.insert(option.name, option.value);
            return values;
        };
        const QHash<QString, QVariant> before = values();
        const QList<QCheckBox*> boxes = dialog.findChildren<QCheckBox*>();
        for (QCheckBox* box : boxes)
            box->click();
        child<QPushButton>(dialog, "BitBtnOk")->click();
        const QHash<QString, QVariant> after = values();
        QStringList changed;
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            if (after.value(it.key()) != it.value())
                changed << it.key();
        QCOMPARE(changed.size(), boxes.size());
        QVERIFY(boxes.size() > 20);
    }

    // Stored values fill the edits, radio buttons and lists, colours as 0x00BBGGRR, and OK writes
    // them back (the check boxes have their own test above).
    void storedValuesFillTheControlsAndOkWritesThem() {
        m_fixture->store(QStringLiteral("Currency"), QStringLiteral("EUR"));
        m_fixture->store(QStringLiteral("ColorMain"), 0x563412);
        m_fixture->store(QStringLiteral("IRDeleteRecipe"), 2);
        m_fixture->store(QStringLiteral("IRDeleteMenuGroup"), 7);
        m_fixture->store(QStringLiteral("PageSize"), TFormOptions::PageSizeA4);
        TFormMain& form = m_fixture->create();
        TFormOptions dialog(&form);
        dialog.show();
        QCOMPARE(child<QLineEdit>(dialog, "EditCurrency")->text(), QStringLiteral("EUR"));
        QCOMPARE(child<QWidget>(dialog, "PanelColorMain")->palette().color(QPalette::Window),
                 QColor(0x12, 0x34, 0x56));
        QVERIFY(child<QRadioButton>(dialog, "RadioButtonIRDeleteCascadeRecipe")->isChecked());
        // A value that is neither rule checks neither button, and stays unless a button is chosen.
        QVERIFY(!child<QRadioButton>(dialog, "RadioButtonIRDeleteRestrictedMenuGroup")->isChecked());
        QVERIFY(!child<QRadioButton>(dialog, "RadioButtonIRDeleteCascadeMenuGroup")->isChecked());
        QCOMPARE(child<QComboBox>(dialog, "ComboBoxPageSize")->currentText(), QStringLiteral("A4"));

        child<QLineEdit>(dialog, "EditCurrency")->setText(QStringLiteral("GBP"));
        child<QRadioButton>(dialog, "RadioButtonIRDeleteCascadeUnit")->click();
        child<QRadioButton>(dialog, "RadioButtonIRDeleteRestrictedRecipe")->click();
        dialog.SetColorMain(QColor(0x65, 0x43, 0x21));
        child<QComboBox>(dialog, "ComboBoxPageSize")->setCurrentText(QStringLiteral("Letter"));
        child<QPushButton>(dialog, "BitBtnOk")->click();
        QCOMPARE(m_fixture->stored(QStringLiteral("Currency")).toString(), QStringLiteral("GBP"));
        QCOMPARE(m_fixture->stored(QStringLiteral("ColorMain")).toInt(), 0x214365);
        QCOMPARE(m_fixture->stored(QStringLiteral("IRDeleteUnit")).toInt(), 2);
        QCOMPARE(m_fixture->stored(QStringLiteral("IRDeleteRecipe")).toInt(), 1);
        QCOMPARE(m_fixture->stored(QStringLiteral("IRDeleteMenuGroup")).toInt(), 7);
        QCOMPARE(m_fixture->stored(QStringLiteral("PageSize")).toInt(), TFormOptions::PageSizeLetter);
    }

    // The list is the folder's language files sorted without regard to case; a stored language
    // whose file is gone selects nothing and stays the language.
    void languagesComeFromTheLanguagesFolder() {
        const QString folder = m_fixture->paths.ExecutablePath + QStringLiteral("Languages/");
        QFile::copy(folder + QStringLiteral("English.xml"), folder + QStringLiteral("afrikaans.xml"));
        QFile(folder + QStringLiteral("notes.txt")).open(QIODevice::WriteOnly);
        QFile::remove(folder + QStringLiteral("Deutsch.xml"));
        m_fixture->store(QStringLiteral("Language"), QStringLiteral("Deutsch"));
        TFormMain& form = m_fixture->create();
        TFormOptions dialog(&form);
        dialog.show();
        auto* combo = child<QComboBox>(dialog, "ComboBoxCurrentLanguage");
        QStringList items;
        for (int i = 0; i < combo->count(); ++i)
            items << combo->itemText(i);
        QCOMPARE(items, QStringList({"afrikaans", "English"}));
        QCOMPARE(combo->currentIndex(), -1);
        child<QPushButton>(dialog, "BitBtnOk")->click();
        QCOMPARE(m_fixture->stored(QStringLiteral("Language")).toString(), QStringLiteral("Deutsch"));
    }

    void aNewLanguageReachesTheWindowsShownLater() {
        TFormMain& form = m_fixture->create();
        const QString englishFile = form.findChild<QMenu*>(QStringLiteral("MIFile"))->title();
        QVERIFY(form.HelpFile.endsWith(QLatin1String("Help/English.chm")));
        {
            TFormOptions dialog(&form);
            dialog.show();
            child<QComboBox>(dialog, "ComboBoxCurrentLanguage")->setCurrentText(QStringLiteral("Deutsch"));
            child<QPushButton>(dialog, "BitBtnOk")->click();
        }
        QCOMPARE(FormResourceHolder->VintraDictionary.Language(), QStringLiteral("Deutsch"));
        QCOMPARE(m_fixture->stored(QStringLiteral("Language")).toString(), QStringLiteral("Deutsch"));
        // The help file takes the other ending after a change of language.
        QCOMPARE(form.HelpFile, m_fixture->paths.ExecutablePath + QStringLiteral("Help/Deutsch.hlp"));
        // Open windows stay as they were.
        QCOMPARE(form.findChild<QMenu*>(QStringLiteral("MIFile"))->title(), englishFile);

        TFormOptions later(&form);
        later.show();
        QCOMPARE(later.windowTitle(), QStringLiteral("Optionen"));
        QCOMPARE(child<QComboBox>(later, "ComboBoxCurrentLanguage")->currentText(),
                 QStringLiteral("Deutsch"));
    }

    // Saving the positions stores them at once, the hidden bar's in its row; the Cancel that
    // follows writes none of the controls back.
    void savedPositionsSurviveCancel() {
        // Users alone on top; Recipes before Main below; Navigator and the hidden quick search last.
        const QList<std::tuple<const char*, int, int>> places = {{"ToolbarUsers", 2, 11},
                                                                 {"ToolbarRecipes", 40, 11},
                                                                 {"ToolbarMain", 44, 300},
                                                                 {"ToolbarNavigator", 80, 11},
                                                                 {"ToolbarQuickSearch", 82, 600}};
        for (const auto& [name, top, left] : places) {
            m_fixture->store(QLatin1String(name) + QStringLiteral("Top"), top);
            m_fixture->store(QLatin1String(name) + QStringLiteral("Left"), left);
        }
        TFormMain& form = m_fixture->create();
        {
            TFormOptions dialog(&form);
            dialog.show();
            child<QCheckBox>(dialog, "CheckBoxConfirmExit")->click();
            child<QComboBox>(dialog, "ComboBoxCurrentLanguage")->setCurrentText(QStringLiteral("Deutsch"));
            child<QPushButton>(dialog, "BitBtnSaveToolbarsPositions")->click();
            child<QPushButton>(dialog, "BitBtnCancel")->click();
        }
        QVERIFY(options().GetAsBoolean(QStringLiteral("ConfirmExit")));
        QCOMPARE(FormResourceHolder->VintraDictionary.Language(), QStringLiteral("English"));
        QVERIFY(bar(form, "ToolBarQuickSearch")->isHidden());
        // Stored at once, in the frame's coordinates: rows of one Top, Left growing along a row.
        const auto stored = [&](const char* name, const char* part) {
            return m_fixture->stored(QLatin1String(name) + QLatin1String(part)).toInt();
        };
        QCOMPARE(stored("ToolbarUsers", "Top"), 2);
        QCOMPARE(stored("ToolbarRecipes", "Top"), stored("ToolbarMain", "Top"));
        QVERIFY(stored("ToolbarRecipes", "Left") < stored("ToolbarMain", "Left"));
        QCOMPARE(stored("ToolbarNavigator", "Top"), stored("ToolbarQuickSearch", "Top"));
        QVERIFY(stored("ToolbarNavigator", "Top") > stored("ToolbarMain", "Top"));
    }

    void restoreMovesTheBarsBackWithoutStoring() {
        m_fixture->store(QStringLiteral("ToolbarUsersTop"), 90);
        m_fixture->store(QStringLiteral("ToolbarMainTop"), 34);
        m_fixture->store(QStringLiteral("ToolbarMainLeft"), 900);
        TFormMain& form = m_fixture->create();
        const auto y = [&](const char* name) { return bar(form, name)->y(); };
        QVERIFY(y("ToolBarUsers") > y("ToolBarMain"));
        QVERIFY(bar(form, "ToolBarMain")->x() > bar(form, "ToolBarRecipes")->x());
        TFormOptions dialog(&form);
        dialog.show();
        child<QPushButton>(dialog, "BitBtnRestoreToolbarsPositions")->click();
        // Back in place: Main and Users on top, Navigator and Recipes below.
        QCOMPARE(y("ToolBarUsers"), y("ToolBarMain"));
        QVERIFY(bar(form, "ToolBarUsers")->x() > bar(form, "ToolBarMain")->x());
        QCOMPARE(y("ToolBarNavigator"), y("ToolBarRecipes"));
        QVERIFY(y("ToolBarNavigator") > y("ToolBarMain"));
        QCOMPARE(options().GetAsInteger(QStringLiteral("ToolbarUsersTop")), 2);
        QCOMPARE(m_fixture->stored(QStringLiteral("ToolbarUsersTop")).toInt(), 90);
    }

    void okFromTheFrameRepaintsAndAppliesVisibility() {
        TFormMain& form = m_fixture->create();
        QVERIFY(!bar(form, "ToolBarNavigator")->isHidden());
        QTimer::singleShot(0, this, [] {
            auto* dialog = qobject_cast<TFormOptions*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            child<QCheckBox>(*dialog, "CheckBoxToolbarNavigator")->click();
            child<QCheckBox>(*dialog, "CheckBoxToolbarUsers")->click();
            dialog->SetColorMain(QColor(0x20, 0x40, 0x60));
            child<QPushButton>(*dialog, "BitBtnOk")->click();
        });
        form.findChild<QAction*>(QStringLiteral("ToolButtonOptions"))->trigger();
        QVERIFY(bar(form, "ToolBarNavigator")->isHidden());
        // The users' bar follows its option at the next start only.
        QVERIFY(!bar(form, "ToolBarUsers")->isHidden());
        QCOMPARE(form.MdiArea()->BackgroundColor(), QColor(0x20, 0x40, 0x60));
    }
};

QTEST_MAIN(TestFormOptions)
#include "test_form_options.moc"
