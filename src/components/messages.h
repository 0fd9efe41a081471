#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// The only way the program tells the user anything: ShowInfo, AskQuestion and ShowError hand the
// finished text to the installed presenter (a message box, the assistant's balloon, or a script in
// tests).

constexpr int mrOk = 1;
constexpr int mrYes = 6;
constexpr int mrNo = 7;

/// Puts one message in front of the user and returns the answer (mrYes, mrNo, mrOk).
class TMessagePresenter {
public:
    enum Kind { Info, Question, Error };
    virtual ~TMessagePresenter();
    virtual int present(Kind kind, const QString& caption, const QString& text) = 0;
};

/// Installs the presenter (not owned). nullptr prints to stderr and answers every question with No.
void SetMessagePresenter(TMessagePresenter* presenter);
TMessagePresenter* MessagePresenter();

/// Caption of each box: "Information", "Question", "Error" until the dictionary replaces them.
QString MessageCaption(TMessagePresenter::Kind kind);
void SetMessageCaption(TMessagePresenter::Kind kind, const QString& caption);

/// Button captions shared by the three boxes: "OK", "Cancel", "Yes", "No" until translated.
enum class MessageButton { Ok, Cancel, Yes, No };
QString MessageButtonCaption(MessageButton button);
void SetMessageButtonCaption(MessageButton button, const QString& caption);

void ShowInfo(const QString& text);
/// Returns mrYes (6) for Yes; callers treat every other answer as No.
int AskQuestion(const QString& text);
void ShowError(const QString& text);

/// Presenter for tests: records every message and answers questions from a queue (No when it is
/// empty). It installs itself on construction and puts the previous presenter back on destruction.
class TScriptedPresenter : public TMessagePresenter {
public:
    TScriptedPresenter();
    ~TScriptedPresenter() override;
    TScriptedPresenter(const TScriptedPresenter&) = delete;
    TScriptedPresenter& operator=(const TScriptedPresenter&) = delete;

    int present(Kind kind, const QString& caption, const QString& text) override;

    /// Texts of all messages shown so far, in order.
    QStringList texts() const;
    /// Texts of the messages of one kind, in order.
    QStringList texts(Kind kind) const;
    void clear();

    QList<QPair<Kind, QString>> shown;
    QStringList captions; ///< caption of each shown message, parallel to shown
    QList<int> answers;   ///< answers for the next questions, taken from the front

private:
    TMessagePresenter* m_previous = nullptr;
};

/// The silent exception: a handler throws it to cancel the running operation without a message.
struct Abort {};
