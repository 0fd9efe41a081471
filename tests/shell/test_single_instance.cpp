// The single-instance guard: a second start hands its parameters to the first and ends, and of
// two starts at the same moment exactly one runs.
#include "shell/single_instance.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <memory>

class TestSingleInstance : public QObject {
    Q_OBJECT

    /// Names of this test program: stable from run to run, so that what a killed instance
    /// leaves behind is met again (and cleaned) by the next run instead of piling up.
    static QString testName(const char* what) {
        const QByteArray program = QCoreApplication::applicationFilePath().toUtf8();
        return QStringLiteral("quillmeal-test-%1-%2")
            .arg(QLatin1String(what))
            .arg(QString::fromLatin1(
                QCryptographicHash::hash(program, QCryptographicHash::Sha1).toHex().left(8)));
    }

private slots:
    void secondStartHandsOver() {
        const QString name = testName("handover");
        TVintraSingleInstance first(name);
        QVERIFY(first.Claim());
        QVERIFY(first.Claim()); // asking again changes nothing
        QSignalSpy received(&first, &TVintraSingleInstance::ParametersReceived);

        TVintraSingleInstance second(name);
        QVERIFY(!second.Claim());
        QStringList parameters;
        for (int i = 0; i < 12; ++i)
            parameters << QStringLiteral("p%1").arg(i);
        parameters[1] = QString(400, QLatin1Char('x'));
        parameters[2] = QStringLiteral("Crème brûlée – 200 g");
        QVERIFY(second.HandOver(parameters));

        QVERIFY(received.wait(5000));
        const QStringList got = received.first().first().toStringList();
        QCOMPARE(got.size(), 10);
        QCOMPARE(got.at(0), QStringLiteral("p0"));
        QCOMPARE(got.at(1), QString(300, QLatin1Char('x')));
        QCOMPARE(got.at(2), parameters.at(2));
        QCOMPARE(got.at(9), QStringLiteral("p9"));

        // A later, shorter hand-over does not carry the rest of the earlier one.
        QVERIFY(TVintraSingleInstance(name).HandOver({QStringLiteral("only")}));
        QTRY_COMPARE(received.size(), 2);
        QCOMPARE(received.last().first().toStringList(), QStringList{QStringLiteral("only")});
    }

    void firstGoneLeavesTheNameFree() {
        const QString name = testName("gone");
        {
            TVintraSingleInstance first(name);
            QVERIFY(first.Claim());
        }
        TVintraSingleInstance nobody(name);
        QVERIFY(!nobody.HandOver({QStringLiteral("lost")}, 200)); // nobody there to read
        TVintraSingleInstance next(name);
        QVERIFY(next.Claim());
        QSignalSpy received(&next, &TVintraSingleInstance::ParametersReceived);
        QVERIFY(TVintraSingleInstance(name).HandOver({QStringLiteral("again")}));
        QVERIFY(received.wait(5000));
    }

    // Two processes start at the same moment, thirty times: exactly one stays, the other hands
    // its parameters over and ends. Every other first instance is killed, so that the next try
    // also meets the block and semaphores that a killed instance leaves behind; the last one
    // ends cleanly.
    void twoStartsAtOnceLeaveExactlyOne() {
        const QString name = testName("race");
        for (int attempt = 0; attempt < 30; ++attempt) {
            const QString at = QString::number(QDateTime::currentMSecsSinceEpoch() + 400);
            std::unique_ptr<QProcess> processes[2];
            for (int i = 0; i < 2; ++i) {
                processes[i] = std::make_unique<QProcess>();
                processes[i]->start(QStringLiteral(QM_PROBE),
                                    {name, at, QStringLiteral("from-%1-%2").arg(attempt).arg(i)});
                QVERIFY(processes[i]->waitForStarted());
            }
            int firsts = 0;
            QProcess* first = nullptr;
            QProcess* second = nullptr;
            for (auto& process : processes) {
                QVERIFY2(process->waitForReadyRead(10000), qPrintable(QStringLiteral("try %1").arg(attempt)));
                const QByteArray role = process->readLine().trimmed();
                if (role == "first") {
                    ++firsts;
                    first = process.get();
                } else {
                    QCOMPARE(role, QByteArray("second handed"));
                    second = process.get();
                }
            }
            QVERIFY2(firsts == 1,
                     qPrintable(QStringLiteral("try %1: %2 first instances").arg(attempt).arg(firsts)));
            QVERIFY(second->waitForFinished(10000));
            QCOMPARE(second->exitCode(), 0);
            QCOMPARE(first->state(), QProcess::Running);
            // The first has read what the second brought.
            QByteArray output = first->readAll();
            while (!output.contains("from-") && first->waitForReadyRead(5000))
                output += first->readAll();
            QVERIFY2(output.startsWith("received 1\nfrom-" + QByteArray::number(attempt)),
                     output.constData());
            if (attempt % 2 == 0) {
                first->kill();
            } else {
                first->write("quit\n");
                first->closeWriteChannel();
            }
            QVERIFY(first->waitForFinished(10000));
        }
    }
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "test_single_instance.moc"
