#pragma once

#include "components/dataset.h"
#include "culinary/nutrient_calculation.h"
#include "store/ui/record_window.h"

#include <QList>
#include <QString>
#include <array>
#include <functional>

class QAction;
class QCheckBox;
class QLineEdit;
class QListWidget;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTextEdit;
class TDBFieldBinder;
class TPicturePages;
namespace qm {
class DatasetModel;
}

/// The recipes window: the tree of recipe groups, the grid of the group's recipes and the tabs
/// Main, Contents, Preparation and Nutrition facts of the current recipe. A structured recipe has
/// lines of ingredients and calculated nutrients; a free-form one keeps its lines as text and its
/// nutrients as typed. Opened for a saved search (shortcut), the window shows the search's rows
/// without the tree and changes nothing.
class TFormRecipes : public TRecordWindow {
    Q_OBJECT
public:
    /// `shortcutSql` and `shortcutName` are empty for the plain window.
    explicit TFormRecipes(const QString& shortcutSql = QString(), const QString& shortcutName = QString(),
                          QWidget* parent = nullptr);
    ~TFormRecipes() override;

    // Later work hooks in here: the recipe report, the import and export dialogs and the mail.
    // While a hook is empty its command stays disabled.
    static std::function<void(const QString& idList, bool containsLocked)> PrintRecipes;
    /// Imports into the group; true when something was imported.
    static std::function<bool(int recGroupId)> ImportRecipes;
    static std::function<void(const QString& idList)> ExportRecipes;
    static std::function<void(int recId)> SendRecipe;

    QString ShortcutSql() const { return m_shortcutSql; }
    QString ShortcutName() const { return m_shortcutName; }
    bool ShortcutMode() const { return !m_shortcutSql.isEmpty(); }

    /// Brings a recipe to view: its group in the tree, then the recipe.
    Q_INVOKABLE bool LocateRecipe(int recId);
    /// The current record's nutrients from its lines, per serving, written into its fields
    /// without a post. Zero servings throw (std::domain_error) and leave the fields as they were.
    void RecalculateNutrients();

    // --- the frame's side ---
    void Print() override;
    void FormActivate() override;
    void FormDeactivate() override;
    void Release() override;

    // --- handlers, public for the frame and the tests ---
    /// Puts the record into edit state and recalculates; a free-form recipe stays as typed.
    Q_INVOKABLE void MIRecalculateClick();
    Q_INVOKABLE void MIImportClick();
    Q_INVOKABLE void MIExportClick();
    Q_INVOKABLE void MISendToMailClick();
    void BitBtnAddIngredClick();
    void BitBtnEditIngredClick();
    void BitBtnDeleteIngredClick();
    /// Refreshes the lines, whose calculated amounts follow EditNewServings.
    void ButtonRecalculateClick();
    void DBCheckBoxFreeFormClick();
    /// Shows the ingredients window at the current line's ingredient.
    void DBGridContentsDblClick();
    void DBGridRecipeCategoriesDblClick();
    void MIEditRithRichTextEditorClick();
    void MIClearClick();
    void SpeedButtonFindClick();
    /// A nutrient box got the focus: its note is shown.
    void DBEditEnter(int nutrient);

    // --- datasets ---
    qm::Dataset QueryContents;
    qm::Dataset QueryBioValues;
    qm::Dataset QueryRecipeCategories;
    qm::Dataset QueryShortcutRecipes;

    // --- parts the tests reach ---
    TPicturePages* Pictures() const { return m_pictures; }
    QListWidget* ListBoxIngredients() const { return m_listIngredients; }
    QLineEdit* NutrientEdit(int i) const { return m_nutrients.at(i); }

protected:
    void CheckRecord(qm::Dataset& table, QString& errors) override;
    void RecordChecked(qm::Dataset& table) override;
    void NewRecord(qm::Dataset& table) override;
    void RecordBeforeInsert() override;
    void RecordDeleting(int id) override;
    void RecordAfterScroll() override;
    void UpdateCommands() override;
    void UpdateStatus() override;
    QList<TVintraDBGrid*> RememberedGrids() const override;
    qm::WindowLayout CurrentLayout() const override;
    void FormShow() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildDetails();
    QWidget* BuildMainTab();
    QWidget* BuildContentsTab();
    QWidget* BuildPreparationTab();
    QWidget* BuildNutritionTab();
    void ConnectDatasets();
    void ApplyFreeForm();
    bool FreeForm();
    int CurrentRecId();
    /// Edit and Post of the recipe (checks and recalculation included), then the lines again.
    void SaveAndReload();
    void LoadIngredientList();
    void WriteIngredientList();
    void ShortcutAfterScroll();
    void SetFrameCommands(bool active);
    void ReopenDetails();

    QString m_shortcutSql;
    QString m_shortcutName;
    bool m_active = false;

    TDBFieldBinder* m_binder = nullptr;
    TDBFieldBinder* m_groupBinder = nullptr;
    TDBFieldBinder* m_noteBinder = nullptr;
    qm::DatasetModel* m_contentsModel = nullptr;
    qm::DatasetModel* m_categoriesModel = nullptr;
    qm::DatasetModel* m_shortcutModel = nullptr;

    QTabWidget* m_pages = nullptr;
    QLineEdit* m_name = nullptr;
    QCheckBox* m_freeForm = nullptr;
    TVintraDBGrid* m_categories = nullptr;
    TPicturePages* m_pictures = nullptr;
    QWidget* m_panelNotFree = nullptr;
    QWidget* m_panelFree = nullptr;
    TVintraDBGrid* m_contents = nullptr;
    QListWidget* m_listIngredients = nullptr;
    QLineEdit* m_newServings = nullptr;
    QPushButton* m_buttonRecalculate = nullptr;
    QPushButton* m_addIngred = nullptr;
    QPushButton* m_editIngred = nullptr;
    QPushButton* m_deleteIngred = nullptr;
    QTextEdit* m_preparation = nullptr;
    QTextEdit* m_bioValueNote = nullptr;
    std::array<QLineEdit*, NutrientCount> m_nutrients{};

    QAction* m_recalculate = nullptr;
    QAction* m_import = nullptr;
    QAction* m_export = nullptr;
    QAction* m_sendToMail = nullptr;
    QAction* m_editRichText = nullptr;
    QAction* m_clear = nullptr;
};
