// The single-instance guard: a second start hands its parameters to the first and ends.
#include "shell/single_instance.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>

class TestSingleInstance : public QObject {
    Q_OBJECT

private slots:
    void secondStartHandsOver() {
        const QString name = QStringLiteral("quillmeal-test-%1").arg(QCoreApplication::applicationPid());
        TVintraSingleInstance first(name);
        QVERIFY(first.Claim());
        QSignalSpy received(&first, &TVintraSingleInstance::ParametersReceived);

        TVintraSingleInstance second(name);
        QVERIFY(!second.Claim());
        QStringList parameters;
        for (int i = 0; i < 12; ++i)
            parameters << QStringLiteral("p%1").arg(i);
        parameters[1] = QString(400, QLatin1Char('x'));
        QVERIFY(second.HandOver(parameters));

        QVERIFY(received.wait(5000));
        const QStringList got = received.first().first().toStringList();
        QCOMPARE(got.size(), 10);
        QCOMPARE(got.at(0), QStringLiteral("p0"));
        QCOMPARE(got.at(1).size(), 300);
        QCOMPARE(got.at(9), QStringLiteral("p9"));
    }

    void firstGoneLeavesTheNameFree() {
        const QString name = QStringLiteral("quillmeal-gone-%1").arg(QCoreApplication::applicationPid());
        {
            TVintraSingleInstance first(name);
            QVERIFY(first.Claim());
        }
        TVintraSingleInstance next(name);
        QVERIFY(next.Claim());
        QSignalSpy received(&next, &TVintraSingleInstance::ParametersReceived);
        QVERIFY(TVintraSingleInstance(name).HandOver({QStringLiteral("again")}));
        QVERIFY(received.wait(5000));
    }
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "test_single_instance.moc"
