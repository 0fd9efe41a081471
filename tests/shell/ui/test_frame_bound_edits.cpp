// The frame's navigator with the focus in a detail edit of a real record window: it acts on the
// dataset the edit is bound to.
#include "components/dataset.h"
#include "frame_fixture.h"
#include "shell/ui/window_registry.h"
#include "store/data_module_main.h"
#include "store/ui/record_window.h"

#include <QAction>
#include <QLineEdit>

class TestFrameBoundEdits : public QObject {
    Q_OBJECT

    static bool enabled(TFormMain& form, const char* name) {
        return form.findChild<QAction*>(QLatin1String(name))->isEnabled();
    }

private slots:
    void navigatorFollowsTheEditsDataset() {
        FrameFixture fixture;
        TFormMain& form = fixture.create();
        RegisterWindows(form);
        form.Toggle(QStringLiteral("Units"), true);
        auto* units = dynamic_cast<TRecordWindow*>(form.ChildWindow(QStringLiteral("Units")));
        QVERIFY(units);
        qm::Dataset& table = units->RecordTable();
        auto* name = units->findChild<QLineEdit*>(QStringLiteral("DBEditUnitName"));
        QVERIFY(name);
        name->setFocus();
        QVERIFY(name->hasFocus());
        QVERIFY(!enabled(form, "ToolButtonPost"));
        QVERIFY(enabled(form, "ToolButtonInsert"));

        // Typing starts the edit: Save and Cancel at once.
        const int id = table.FieldByName(QStringLiteral("unitId")).AsInteger();
        const QString before = table.FieldByName(QStringLiteral("unitName")).AsString();
        name->end(false);
        QTest::keyClicks(name, QStringLiteral(" x"));
        QCOMPARE(table.State(), qm::dsEdit);
        QVERIFY(enabled(form, "ToolButtonPost"));
        QVERIFY(enabled(form, "ToolButtonCancel"));
        form.findChild<QAction*>(QStringLiteral("ToolButtonPost"))->trigger();
        QCOMPARE(table.State(), qm::dsBrowse);
        QCOMPARE(DataModuleMain->KADaoDatabase
                     .scalar(QStringLiteral("SELECT unitName FROM Units WHERE unitId = %1").arg(id))
                     .toString(),
                 before + QStringLiteral(" x"));
        QVERIFY(!enabled(form, "ToolButtonPost"));

        // Cancel from the bar drops what was typed; so does Escape in the edit.
        QTest::keyClicks(name, QStringLiteral("y"));
        QVERIFY(enabled(form, "ToolButtonCancel"));
        form.findChild<QAction*>(QStringLiteral("ToolButtonCancel"))->trigger();
        QCOMPARE(table.State(), qm::dsBrowse);
        QCOMPARE(name->text(), before + QStringLiteral(" x"));
        QTest::keyClicks(name, QStringLiteral("z"));
        QTest::keyClick(name, Qt::Key_Escape);
        QCOMPARE(table.State(), qm::dsBrowse);
        QVERIFY(!enabled(form, "ToolButtonCancel"));
        QCOMPARE(name->text(), before + QStringLiteral(" x"));
        form.Toggle(QStringLiteral("Units"), false);
    }
};

QTEST_MAIN(TestFrameBoundEdits)
#include "test_frame_bound_edits.moc"
