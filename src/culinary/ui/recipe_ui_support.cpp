#include "culinary/ui/recipe_ui_support.h"

#include "components/messages.h"
#include "components/vintra_translator.h"
#include "store/resource_holder.h"
#include "store/ui/record_window.h"

#include <exception>

bool RunGuarded(const std::function<void()>& command) {
    try {
        command();
        return true;
    } catch (const Abort&) {
        return false;
    } catch (const std::exception& e) {
        const QString text = QString::fromUtf8(e.what());
        if (TRecordWindow::ShowException)
            TRecordWindow::ShowException(text);
        else
            ShowError(text);
        return false;
    }
}

void TranslateForm(QWidget* form) {
    if (!FormResourceHolder)
        return;
    TVintraTranslator translator(form);
    translator.SetDictionary(&FormResourceHolder->VintraDictionary);
    translator.Translate();
}
