// The frame's start-up and shutdown on a real window, offscreen, with scripted messages.
#include "components/messages.h"
#include "frame_fixture.h"
#include "store/data_module_main.h"

#include "shell/ui/form_about.h"
#include "shell/ui/outlook_bar.h"

#include <QAbstractButton>
#include <QLabel>
#include <QToolBar>

class TestFormMain : public QObject {
    Q_OBJECT

private slots:
    void opensWithStoredGeometryAndDefaults() {
        FrameFixture fixture;
        fixture.store(QStringLiteral("MainSizeWidth"), 1010);
        fixture.store(QStringLiteral("ToolbarQuickSearch"), true);
        TFormMain& form = fixture.create();
        QVERIFY(DataModuleMain->initialised);
        QCOMPARE(form.width(), 1010); // stored value wins
        QCOMPARE(form.height(), 600); // default
        QVERIFY(form.findChild<QToolBar*>(QStringLiteral("ToolBarQuickSearch"))->isVisible());
        // The status text of start-up comes from the dictionary.
        QCOMPARE(form.findChild<QLabel*>(QStringLiteral("StatusBarPanel0"))->text(),
                 FormResourceHolder->VintraDictionary.GetText(QStringLiteral("@StatusBar"), QString()));
    }

    void quitQuestionAndStore() {
        FrameFixture fixture;
        TFormMain& form = fixture.create();
        form.resize(900, 700);
        TScriptedPresenter presenter;
        presenter.answers << mrNo << mrYes;
        QVERIFY(!form.close()); // No keeps the frame open and stores nothing
        QCOMPARE(presenter.texts(), QStringList{GetText(QStringLiteral("QuestionQuit"), QString())});
        QVERIFY(!fixture.stored(QStringLiteral("MainSizeHeight")).isValid());
        QVERIFY(form.close());
        QCOMPARE(fixture.stored(QStringLiteral("MainSizeHeight")).toInt(), 700);
        QCOMPARE(fixture.stored(QStringLiteral("MainMaximized")).toString(), QStringLiteral("false"));
    }

    void noQuestionWithoutConfirmExit() {
        FrameFixture fixture;
        fixture.store(QStringLiteral("ConfirmExit"), false);
        TFormMain& form = fixture.create();
        TScriptedPresenter presenter;
        QVERIFY(form.close());
        QVERIFY(presenter.shown.isEmpty());
    }

    // In German the page buttons of the bar show their whole names.
    void germanPageNamesFitTheBar() {
        FrameFixture fixture;
        fixture.store(QStringLiteral("Language"), QStringLiteral("Deutsch"));
        TFormMain& form = fixture.create();
        TOutlookBar* bar = form.OutlookBar();
        QCOMPARE(bar->PageCaption(1), QStringLiteral("Verknüpfungen"));
        QApplication::processEvents();
        const QList<QAbstractButton*> buttons = bar->findChildren<QAbstractButton*>();
        QCOMPARE(buttons.size(), bar->PageCount());
        // The style elides each caption to the room its button leaves for the label.
        for (const QAbstractButton* button : buttons)
            QCOMPARE(button->fontMetrics().elidedText(button->text(), Qt::ElideRight,
                                                      button->width() - bar->PageLabelMargin()),
                     button->text());
    }

    void theAboutWindowShowsTheVersion() {
        FrameFixture fixture;
        fixture.create();
        TFormAbout about;
        about.show();
        const QLabel* version = about.findChild<QLabel*>(QStringLiteral("LabelVersion"));
        QVERIFY(version && version->isVisible());
        QVERIFY(version->text().contains(QStringLiteral(QM_VERSION)));
        QVERIFY(!QStringLiteral(QM_VERSION).isEmpty());
    }
};

QTEST_MAIN(TestFormMain)
#include "test_form_main.moc"
