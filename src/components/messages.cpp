#include "components/messages.h"

#include <QTextStream>
#include <cstdio>

namespace {

TMessagePresenter* g_presenter = nullptr;

QString g_captions[3] = {QStringLiteral("Information"), QStringLiteral("Question"), QStringLiteral("Error")};

QString g_buttonCaptions[4] = {QStringLiteral("OK"), QStringLiteral("Cancel"), QStringLiteral("Yes"),
                               QStringLiteral("No")};

int present(TMessagePresenter::Kind kind, const QString& text) {
    const QString caption = MessageCaption(kind);
    if (g_presenter)
        return g_presenter->present(kind, caption, text);
    // Without a presenter (command line, early start) the text still reaches someone.
    QTextStream err(stderr);
    err << caption << ": " << text << Qt::endl;
    return kind == TMessagePresenter::Question ? mrNo : mrOk;
}

} // namespace

TMessagePresenter::~TMessagePresenter() = default;

void SetMessagePresenter(TMessagePresenter* presenter) {
    g_presenter = presenter;
}

TMessagePresenter* MessagePresenter() {
    return g_presenter;
}

QString MessageCaption(TMessagePresenter::Kind kind) {
    return g_captions[kind];
}

void SetMessageCaption(TMessagePresenter::Kind kind, const QString& caption) {
    g_captions[kind] = caption;
}

QString MessageButtonCaption(MessageButton button) {
    return g_buttonCaptions[static_cast<int>(button)];
}

void SetMessageButtonCaption(MessageButton button, const QString& caption) {
    g_buttonCaptions[static_cast<int>(button)] = caption;
}

void ShowInfo(const QString& text) {
    present(TMessagePresenter::Info, text);
}

int AskQuestion(const QString& text) {
    return present(TMessagePresenter::Question, text);
}

void ShowError(const QString& text) {
    present(TMessagePresenter::Error, text);
}

TScriptedPresenter::TScriptedPresenter() : m_previous(MessagePresenter()) {
    SetMessagePresenter(this);
}

TScriptedPresenter::~TScriptedPresenter() {
    if (MessagePresenter() == this)
        SetMessagePresenter(m_previous);
}

int TScriptedPresenter::present(Kind kind, const QString& caption, const QString& text) {
    shown.append({kind, text});
    captions.append(caption);
    if (kind != Question)
        return mrOk;
    return answers.isEmpty() ? mrNo : answers.takeFirst();
}

QStringList TScriptedPresenter::texts() const {
    QStringList result;
    for (const auto& message : shown)
        result.append(message.second);
    return result;
}

QStringList TScriptedPresenter::texts(Kind kind) const {
    QStringList result;
    for (const auto& message : shown)
        if (message.first == kind)
            result.append(message.second);
    return result;
}

void TScriptedPresenter::clear() {
    shown.clear();
    captions.clear();
    answers.clear();
}
