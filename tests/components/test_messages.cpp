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
        QCOMPARE(script.shown[0].first, TMessagePresenter::Info);
        QCOMPARE(script.texts(TMessagePresenter::Error), QStringList({"third"}));
        QCOMPARE(script.captions, QStringList({"Information", "Question", "Error"}));
        // A translated caption reaches the presenter.
        SetMessageCaption(TMessagePresenter::Question, QStringLiteral("Frage"));
        AskQuestion(QStringLiteral("q"));
        QCOMPARE(script.captions.last(), QStringLiteral("Frage"));
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
};

QTEST_GUILESS_MAIN(TestMessages)
#include "test_messages.moc"
