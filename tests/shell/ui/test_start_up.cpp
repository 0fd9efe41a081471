// The start of the frame as the program runs it, on the program's own application object: a
// refused update ends before anything shows, the language file is read once, and what start-up
// or a handler throws reaches the exception dialog instead of ending the process.
#include "components/messages.h"
#include "frame_fixture.h"
#include "shell/ui/message_box_presenter.h"
#include "shell/ui/outlook_bar.h"
#include "shell/ui/start_up.h"
#include "store/data_module_main.h"

#include <QCryptographicHash>
#include <QToolButton>
#include <stdexcept>

namespace {

QByteArray fileHash(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1);
}

/// Answers every question with `answer` and runs `onMessage` first.
class HookedPresenter : public TMessagePresenter {
public:
    HookedPresenter() : m_previous(MessagePresenter()) { SetMessagePresenter(this); }
    ~HookedPresenter() override { SetMessagePresenter(m_previous); }
    int present(Kind kind, const QString&, const QString& text) override {
        shown << text;
        if (onMessage)
            onMessage();
        return kind == Question ? answer : mrOk;
    }
    std::function<void()> onMessage;
    int answer = mrNo;
    QStringList shown;

private:
    TMessagePresenter* m_previous;
};

/// Records what reaches the exception dialog.
struct DialogRecorder {
    QStringList texts;
    DialogRecorder() {
        SetExceptionDialog([this](const QString& text) { texts << text; });
    }
    ~DialogRecorder() { SetExceptionDialog({}); }
};

} // namespace

class TestStartUp : public QObject {
    Q_OBJECT

private slots:
    // A database older than the shortcuts table, and No to its update: the process is to end at
    // once. Nothing else is asked, the frame never shows (so nothing reads the missing table),
    // no option is stored and the database stays as it was.
    void aRefusedUpdateEndsBeforeTheFrameShows() {
        FrameFixture fixture;
        fixture.alter({QStringLiteral("UPDATE PKeys SET keyValue = 300 WHERE keyId = 'DatabaseVersion'"),
                       QStringLiteral("DROP TABLE Shortcuts")});
        const QByteArray before = fileHash(fixture.databaseFile());
        DialogRecorder dialog;
        TScriptedPresenter presenter;
        presenter.answers << mrNo << mrYes;
        fixture.form = std::make_unique<TFormMain>(fixture.paths);

        QCOMPARE(StartFrame(*fixture.form), TStartResult::Declined);
        QCoreApplication::processEvents();
        QVERIFY(!fixture.form->isVisible());
        QCOMPARE(fixture.form->OutlookBar()->PageCount(), 1); // FormShow adds pages 1 and 2
        QCOMPARE(presenter.shown.size(), 1);
        QCOMPARE(presenter.shown.first().first, TMessagePresenter::Question);
        QVERIFY(
            presenter.shown.first().second.startsWith(QStringLiteral("Current database version is 3.00")));
        QVERIFY(dialog.texts.isEmpty());
        fixture.form.reset();
        QVERIFY(!QFile::exists(fixture.paths.OptionsFile));
        QCOMPARE(fileHash(fixture.databaseFile()), before);
    }

    // The holder reads the language file; the frame names the same file again after the data
    // module, and that must not read it a second time. The file is changed in between (while the
    // data module reports the too new database) to see whether it is read again.
    void theLanguageFileIsReadOnce() {
        QTemporaryDir exe;
        FrameFixture fixture(FrameFixture::copyLanguages(exe));
        fixture.alter({QStringLiteral("UPDATE PKeys SET keyValue = 311 WHERE keyId = 'DatabaseVersion'")});
        const QString language = exe.path() + QStringLiteral("/exe/Languages/English.xml");
        HookedPresenter presenter;
        presenter.onMessage = [&] {
            QFile file(language);
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(
                "<dictionary language=\"English\"><entry key=\"QuestionQuit\">reread</entry></dictionary>");
        };
        fixture.form = std::make_unique<TFormMain>(fixture.paths);

        QCOMPARE(StartFrame(*fixture.form), TStartResult::Incompatible);
        QCOMPARE(presenter.shown.size(), 1); // ErrorIncompatibleDatabaseVersion
        QVERIFY(!presenter.shown.first().isEmpty());
        const QString quit = GetText(QStringLiteral("QuestionQuit"), QString());
        QVERIFY(!quit.isEmpty());
        QVERIFY(quit != QStringLiteral("reread"));
    }

    // FormShow fails on a database without its shortcuts table: the dialog tells it, and the
    // frame stays, shown.
    void whatFormShowThrowsReachesTheDialog() {
        FrameFixture fixture;
        fixture.alter({QStringLiteral("DROP TABLE Shortcuts")});
        DialogRecorder dialog;
        TScriptedPresenter presenter;
        fixture.form = std::make_unique<TFormMain>(fixture.paths);

        QCOMPARE(StartFrame(*fixture.form), TStartResult::Run);
        QVERIFY(fixture.form->isVisible());
        QCOMPARE(dialog.texts.size(), 1);
        QVERIFY2(dialog.texts.first().contains(QStringLiteral("Shortcuts")),
                 qPrintable(dialog.texts.first()));
    }

    // Handlers reached by a shortcut key, a mouse click and a queued call: each exception reaches
    // the dialog (Abort silently), and the frame goes on serving commands.
    void whatHandlersThrowReachesTheDialog() {
        FrameFixture fixture;
        TFormMain& form = fixture.create();
        DialogRecorder dialog;
        form.RegisterModal(QStringLiteral("Categories"), [] { throw std::runtime_error("no categories"); });
        form.RegisterModal(QStringLiteral("SystemInfo"), [] { throw 42; });
        form.RegisterModal(QStringLiteral("About"), [] { throw Abort(); });
        int repaired = 0;
        form.RegisterCommand(QStringLiteral("MIRepair"), [&] { ++repaired; });

        QTest::keyClick(&form, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(dialog.texts, QStringList{QStringLiteral("no categories")});
        auto* button = form.findChild<QToolButton*>(QStringLiteral("ToolButtonSystemInfo"));
        QVERIFY(button && button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(dialog.texts.size(), 2);
        QCOMPARE(dialog.texts.last(), QStringLiteral("Unknown exception"));
        QMetaObject::invokeMethod(form.findChild<QAction*>(QStringLiteral("MIAbout")), "trigger",
                                  Qt::QueuedConnection);
        QCoreApplication::processEvents();
        QCOMPARE(dialog.texts.size(), 2);

        form.findChild<QAction*>(QStringLiteral("MIRepair"))->trigger();
        QCOMPARE(repaired, 1);
    }
};

int main(int argc, char** argv) {
    TApplication app(argc, argv);
    TestStartUp test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_start_up.moc"
