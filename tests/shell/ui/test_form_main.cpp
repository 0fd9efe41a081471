// The frame's start-up and shutdown on a real window, offscreen, with scripted messages.
#include "components/messages.h"
#include "shell/app_paths.h"
#include "shell/ui/form_main.h"
#include "store/data_module_main.h"
#include "store/resource_holder.h"

#include <QApplication>
#include <QLabel>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>

class TestFormMain : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    TAppPaths paths() const {
        TAppPaths p;
        p.ExecutablePath = QStringLiteral(QM_BIN_DIR "/");
        p.DataRootPath = m_dir.path() + QStringLiteral("/root/");
        p.OptionsFile = m_dir.path() + QStringLiteral("/Quillmeal.conf");
        return p;
    }

private slots:
    void initTestCase() {
        QString error;
        QVERIFY2(SeedDataRoot(paths(), error), qPrintable(error));
    }

    void opensWithStoredGeometryAndDefaults() {
        {
            QSettings stored(paths().OptionsFile, QSettings::IniFormat);
            stored.setValue(QStringLiteral("Quillmeal/MainSizeWidth"), 1010);
            stored.setValue(QStringLiteral("Quillmeal/ToolbarQuickSearch"), true);
        }
        const TAppPaths p = paths();
        TFormMain form(p);
        QVERIFY(form.FormCreate());
        form.show();
        form.FormShow();
        QVERIFY(DataModuleMain->initialised);
        QCOMPARE(form.windowTitle(), QStringLiteral("Quillmeal Plus"));
        QCOMPARE(form.width(), 1010); // stored value wins
        QCOMPARE(form.height(), 600); // default
        QVERIFY(form.findChild<QToolBar*>(QStringLiteral("ToolBarQuickSearch"))->isVisible());
        QVERIFY(form.minimumSize() == QSize(800, 600));
        // The status text of start-up comes from the dictionary.
        QCOMPARE(form.findChild<QLabel*>(QStringLiteral("StatusBarPanel0"))->text(),
                 FormResourceHolder->VintraDictionary.GetText(QStringLiteral("@StatusBar"), QString()));
        form.closeWithoutConfirmation = true;
        form.close();
    }

    void quitQuestionAndStore() {
        const TAppPaths p = paths();
        TFormMain form(p);
        QVERIFY(form.FormCreate());
        form.show();
        form.FormShow();
        form.resize(900, 700);
        TScriptedPresenter presenter;
        presenter.answers << mrNo << mrYes;
        QVERIFY(!form.close()); // No keeps the frame open and stores nothing
        QCOMPARE(presenter.texts(), QStringList{GetText(QStringLiteral("QuestionQuit"), QString())});
        QCOMPARE(QSettings(p.OptionsFile, QSettings::IniFormat).value(QStringLiteral("Quillmeal/MainSizeHeight"), -1).toInt(),
                 600);
        QVERIFY(form.close());
        QSettings stored(p.OptionsFile, QSettings::IniFormat);
        QCOMPARE(stored.value(QStringLiteral("Quillmeal/MainSizeWidth")).toInt(), 900);
        QCOMPARE(stored.value(QStringLiteral("Quillmeal/MainSizeHeight")).toInt(), 700);
        QCOMPARE(stored.value(QStringLiteral("Quillmeal/MainMaximized")).toString(), QStringLiteral("false"));
    }

    void noQuestionWithoutConfirmExit() {
        {
            QSettings stored(paths().OptionsFile, QSettings::IniFormat);
            stored.setValue(QStringLiteral("Quillmeal/ConfirmExit"), false);
        }
        const TAppPaths p = paths();
        TFormMain form(p);
        QVERIFY(form.FormCreate());
        form.show();
        form.FormShow();
        TScriptedPresenter presenter;
        QVERIFY(form.close());
        QVERIFY(presenter.shown.isEmpty());
    }

    void userButtonsStayDisabledWithoutTheirWindows() {
        const TAppPaths p = paths();
        TFormMain form(p);
        QVERIFY(form.FormCreate());
        form.FormShow();
        QVERIFY(!form.findChild<QAction*>(QStringLiteral("ToolButtonDiets"))->isEnabled());
        form.closeWithoutConfirmation = true;
        form.close();
    }
};

QTEST_MAIN(TestFormMain)
#include "test_form_main.moc"
