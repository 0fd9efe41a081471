#include "store/resource_holder.h"

#include "components/messages.h"
#include "store/option_table.h"

TFormResourceHolder* FormResourceHolder = nullptr;

namespace {

QString withSlash(const QString& path) {
    return path.isEmpty() || path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
}

} // namespace

void TFormResourceHolder::Create(const QString& optionsFile, const QString& executablePath,
                                 const QString& dataRootPath) {
    if (VintraOptions.options().empty())
        DeclareQuillmealOptions(VintraOptions);
    VintraOptions.setFileName(optionsFile);
    VintraOptions.Load();
    ExecutablePath = withSlash(executablePath);
    DataRootPath = withSlash(dataRootPath);
    VintraDictionary.SetFileName(LanguageFile(VintraOptions.GetAsString(QStringLiteral("Language"))));
    // Captions of the three boxes; the button captions belong to the window layer.
    const auto caption = [this](const char* key, const QString& fallback) {
        const QString text = VintraDictionary.GetText(QLatin1String(key), QString());
        return text.isEmpty() ? fallback : text;
    };
    SetMessageCaption(TMessagePresenter::Info, caption("VintraInfoCaption", QStringLiteral("Information")));
    SetMessageCaption(TMessagePresenter::Question,
                      caption("VintraQuestionCaption", QStringLiteral("Question")));
    SetMessageCaption(TMessagePresenter::Error, caption("VintraErrorCaption", QStringLiteral("Error")));
}

QString TFormResourceHolder::LanguageFile(const QString& language) const {
    return ExecutablePath + QStringLiteral("Languages/") + language + QStringLiteral(".xml");
}

QString GetText(const QString& key, const QString& defaultText) {
    return FormResourceHolder ? FormResourceHolder->VintraDictionary.GetText(key, defaultText) : defaultText;
}
