// The converter dialog on a real window: the value follows the text the masks keep.
#include "culinary/ui/form_unit_converter.h"

#include <QLineEdit>
#include <QTest>

class TestFormUnitConverter : public QObject {
    Q_OBJECT

private slots:
    void lengthIsRecomputedFromTheCutText() {
        TFormUnitConverter form;
        form.mode = 1;
        form.metricLength = 180;
        form.show();
        QCOMPARE(form.findChild<QLineEdit*>("MaskEditFeet")->text(), QStringLiteral("5"));
        QCOMPARE(form.findChild<QLineEdit*>("MaskEditInches")->text(), QStringLiteral("10"));
        QCOMPARE(form.metricLength, 177.8f);
        // Typing changes the value at once.
        QLineEdit* inches = form.findChild<QLineEdit*>("MaskEditInches");
        inches->selectAll();
        QTest::keyClicks(inches, "11");
        QCOMPARE(form.metricLength, float(5 * 30.48 + 11 * 2.54));
        // An emptied edit counts both numbers as 0.
        inches->clear();
        QCOMPARE(form.metricLength, 0.0f);
    }
};

QTEST_MAIN(TestFormUnitConverter)
#include "test_form_unit_converter.moc"
