// Numbers read from and shown to the user in the machine's format.
#include "components/decimal_text.h"

#include <QTest>

class TestDecimalText : public QObject {
    Q_OBJECT

private slots:
    void plainDecimalsInTheMachinesFormat() {
        const QLocale c = QLocale::c();
        const QLocale german(QLocale::German, QLocale::Germany);
        double v = -1;
        QVERIFY(qm::ParseDecimal(QStringLiteral(" 12.5 "), v, false, c));
        QCOMPARE(v, 12.5);
        QVERIFY(qm::ParseDecimal(QStringLiteral("-0.25"), v, false, c));
        QCOMPARE(v, -0.25);
        QVERIFY(qm::ParseDecimal(QStringLiteral("+3"), v, false, c));
        QCOMPARE(v, 3.0);
        QVERIFY(qm::ParseDecimal(QStringLiteral(".5"), v, false, c));
        QCOMPARE(v, 0.5);
        QVERIFY(qm::ParseDecimal(QStringLiteral("12,5"), v, false, german));
        QCOMPARE(v, 12.5);
        // A point is not the German machine's separator, nor a comma the C locale's.
        QVERIFY(!qm::ParseDecimal(QStringLiteral("12.5"), v, false, german));
        QVERIFY(!qm::ParseDecimal(QStringLiteral("12,5"), v, false, c));
        QCOMPARE(v, 0.0);
    }

    void everythingElseIsRefused() {
        const QLocale english(QLocale::English, QLocale::UnitedStates);
        double v = 0;
        for (const char* text : {"", "  ", "-", ".", "1,000.5", "1 000", "inf", "-inf", "nan", "NaN",
                                 "infinity", "0x10", "1e3", "1.5e-2", "12abc", "1.2.3", "--1", "١٢", "1e999"})
            QVERIFY2(!qm::ParseDecimal(QString::fromUtf8(text), v, false, english), text);
        QCOMPARE(qm::DecimalOrZero(QStringLiteral("1,000"), false, english), 0.0);
        // The exponent only where it is asked for, and a value beyond a double never.
        QVERIFY(qm::ParseDecimal(QStringLiteral("1.5e-2"), v, true, english));
        QCOMPARE(v, 0.015);
        QVERIFY(!qm::ParseDecimal(QStringLiteral("1e999"), v, true, english));
        QVERIFY(!qm::ParseDecimal(QStringLiteral("1e"), v, true, english));
    }

    void wholeNumbers() {
        int n = -1;
        QVERIFY(qm::ParseInteger(QStringLiteral(" 42 "), n));
        QCOMPARE(n, 42);
        QVERIFY(qm::ParseInteger(QStringLiteral("-7"), n));
        QCOMPARE(n, -7);
        for (const char* text : {"", "4.0", "1,000", "2147483648", "1e3", "0x1F", "abc"})
            QVERIFY2(!qm::ParseInteger(QString::fromLatin1(text), n), text);
        QCOMPARE(qm::IntegerOrZero(QStringLiteral("2147483647")), 2147483647);
        QCOMPARE(qm::IntegerOrZero(QStringLiteral("12 servings")), 0);
    }

    // What is shown reads back as the same number, in the same format.
    void textRoundTrips() {
        const QLocale german(QLocale::German, QLocale::Germany);
        QCOMPARE(qm::DecimalText(1234567.25, german), QStringLiteral("1234567,25"));
        QCOMPARE(qm::DecimalText(0.1, QLocale::c()), QStringLiteral("0.1"));
        QCOMPARE(qm::DecimalText(-0.0, QLocale::c()), QStringLiteral("0"));
        QCOMPARE(qm::DecimalText(1e21, QLocale::c()), QStringLiteral("1000000000000000000000"));
        // A single-precision value shows as typed, not with the digits of its double.
        QCOMPARE(qm::DecimalText(177.8f, german), QStringLiteral("177,8"));
        for (double x : {28.349523125, 1.0 / 3, 123456789.125, -0.000123}) {
            double back = 0;
            QVERIFY(qm::ParseDecimal(qm::DecimalText(x, german), back, false, german));
            QCOMPARE(back, x);
        }
    }

    void maskRoundsTheShortestTextHalfUp() {
        const QLocale c = QLocale::c();
        // Binary rounding of 236.9115 (stored as 236.91149999...) would give 236.911.
        QCOMPARE(qm::FormatDecimal(236.9115, QStringLiteral("0.###"), c), QStringLiteral("236.912"));
        QCOMPARE(qm::FormatDecimal(-236.9115, QStringLiteral("0.###"), c), QStringLiteral("-236.912"));
        QCOMPARE(qm::FormatDecimal(1.0005, QStringLiteral("0.###"), c), QStringLiteral("1.001"));
        QCOMPARE(qm::FormatDecimal(2.5, QStringLiteral("0"), c), QStringLiteral("3"));
        QCOMPARE(qm::FormatDecimal(9.9996, QStringLiteral("0.###"), c), QStringLiteral("10"));
        QCOMPARE(qm::FormatDecimal(99.9996, QStringLiteral("0.00"), c), QStringLiteral("100.00"));
        QCOMPARE(qm::FormatDecimal(235.0, QStringLiteral("0.###"), c), QStringLiteral("235"));
        QCOMPARE(qm::FormatDecimal(0.1, QStringLiteral("0.00"), c), QStringLiteral("0.10"));
        QCOMPARE(qm::FormatDecimal(-0.0004, QStringLiteral("0.###"), c), QStringLiteral("0"));
        QCOMPARE(qm::FormatDecimal(0.0625, QStringLiteral("0.###"), QLocale(QLocale::German)),
                 QStringLiteral("0,063"));
    }
};

QTEST_GUILESS_MAIN(TestDecimalText)
#include "test_decimal_text.moc"
