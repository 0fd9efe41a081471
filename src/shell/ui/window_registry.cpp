#include "shell/ui/window_registry.h"

#include "components/ui/modal_runner.h"
#include "culinary/ui/form_categories.h"
#include "culinary/ui/form_ingredients.h"
#include "culinary/ui/form_recipes.h"
#include "culinary/ui/form_search_ingredients.h"
#include "culinary/ui/form_search_recipes.h"
#include "culinary/ui/form_units.h"
#include "shell/ui/form_about.h"
#include "shell/ui/form_main.h"
#include "shell/ui/message_box_presenter.h"
#include "store/ui/record_window.h"

void RegisterWindows(TFormMain& frame) {
    // A shortcut hands its statement and name to the recipes window's constructor.
    frame.RegisterChild(QStringLiteral("Recipes"), [](const TChildRequest& request) -> QWidget* {
        return new TFormRecipes(request.Definition, request.Name);
    });
    frame.RegisterModal(QStringLiteral("Categories"), [&frame] {
        TFormCategories form(&frame);
        ExecModal(form);
    });
    frame.RegisterChild(QStringLiteral("Units"), [](const TChildRequest&) { return new TFormUnits; });
    frame.RegisterChild(QStringLiteral("Ingredients"), [](const TChildRequest& request) {
        auto* form = new TFormIngredients;
        form->Definition = request.Definition; // set after creation; nothing in the window reads it
        return form;
    });
    frame.RegisterModal(QStringLiteral("About"), [&frame] { TFormAbout(&frame).exec(); });
    frame.RegisterModal(QStringLiteral("SystemInfo"), [&frame] { TFormSystemInfo(&frame).exec(); });
    // The searches are created once and kept with their criteria.
    frame.RegisterModeless(QStringLiteral("SearchRecipes"),
                           [&frame](const TChildRequest&) { return TFormSearchRecipes::Instance(&frame); });
    frame.RegisterModeless(QStringLiteral("SearchIngredients"), [&frame](const TChildRequest&) {
        return TFormSearchIngredients::Instance(&frame);
    });
    TFormSearchRecipes::ShortcutsChanged = [&frame] { frame.ReloadShortcuts(); };
    TRecordWindow::ShowException = [](const QString& text) { ShowExceptionDialog(text); };
}
