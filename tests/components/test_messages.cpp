#include "components/messages.h"

#include <QtTest>

class TestMessages : public QObject {
    Q_OBJECT

private slots:
    void cleanup() {
        SetMessagePresenter(nullptr);
        SetMessageCaption(TMessagePresenter::Info, QStringLiteral("Information"));
        SetMessageCaption(TMessagePresenter::Question, QStringLiteral("Question"));
        SetMessageCaption(TMessagePresenter::Error, QStringLiteral("Error"));
    }

    void scriptedPresenterRecordsEveryMessageInOrder() {
        TScriptedPresenter script;
        ShowInfo(QStringLiteral("first"));
        AskQuestion(QStringLiteral("second"));
        ShowError(QStringLiteral("third"));

        QCOMPARE(script.texts(), QStringList({"first", "second", "third"}));
        QCOMPARE(script.shown.size(), 3);
        QCOMPARE(script.shown[0].first, TMessagePresenter::Info);
        QCOMPARE(script.shown[1].first, TMessagePresenter::Question);
        QCOMPARE(script.shown[2].first, TMessagePresenter::Error);
        QCOMPARE(script.texts(TMessagePresenter::Error), QStringList({"third"}));
        QCOMPARE(script.captions, QStringList({"Information", "Question", "Error"}));
    }

    void questionsAreAnsweredFromTheQueueThenNo() {
        TScriptedPresenter script;
        script.answers = {mrYes, mrNo, mrYes};
        QCOMPARE(AskQuestion(QStringLiteral("a")), mrYes);
        // Info and Error boxes take no answer from the queue.
        ShowInfo(QStringLiteral("between"));
        ShowError(QStringLiteral("between"));
        QCOMPARE(AskQuestion(QStringLiteral("b")), mrNo);
        QCOMPARE(AskQuestion(QStringLiteral("c")), mrYes);
        QCOMPARE(AskQuestion(QStringLiteral("d")), mrNo);
        QVERIFY(script.answers.isEmpty());
        QCOMPARE(script.texts(TMessagePresenter::Question), QStringList({"a", "b", "c", "d"}));
    }

    // A nested script puts the outer one back; after the last one, questions are answered No.
    void scriptedPresenterPutsThePreviousOneBack() {
        {
            TScriptedPresenter outer;
            outer.answers = {mrYes};
            {
                TScriptedPresenter inner;
                QCOMPARE(MessagePresenter(), &inner);
                ShowInfo(QStringLiteral("to inner"));
                QCOMPARE(inner.texts(), QStringList({"to inner"}));
            }
            QCOMPARE(MessagePresenter(), &outer);
            ShowInfo(QStringLiteral("to outer"));
            QCOMPARE(outer.texts(), QStringList({"to outer"}));
        }
        QCOMPARE(MessagePresenter(), nullptr);
        QCOMPARE(AskQuestion(QStringLiteral("after")), mrNo);
    }

    void translatedCaptionsReachThePresenter() {
        TScriptedPresenter script;
        SetMessageCaption(TMessagePresenter::Question, QStringLiteral("Frage"));
        QCOMPARE(MessageCaption(TMessagePresenter::Question), QStringLiteral("Frage"));
        AskQuestion(QStringLiteral("q"));
        ShowInfo(QStringLiteral("i"));
        QCOMPARE(script.captions, QStringList({"Frage", "Information"}));
    }
};

QTEST_GUILESS_MAIN(TestMessages)
#include "test_messages.moc"
