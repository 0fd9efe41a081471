#pragma once

#include "culinary/ui/search_window.h"

#include <QList>
#include <functional>

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QToolButton;
class TSearchListBox;

/// The recipe search: criteria on three tabs (name, groups and categories; nutrients, time and
/// servings; contents) make one statement, whose rows open in the recipes window, go to the recipe
/// report or are saved as a shortcut of the frame's bar. One window for the program.
class TFormSearchRecipes : public TSearchWindow {
    Q_OBJECT
public:
    explicit TFormSearchRecipes(QWidget* parent = nullptr);
    ~TFormSearchRecipes() override;

    /// The shared window, made at the first call (as a window of `parent` then) and kept.
    static TFormSearchRecipes* Instance(QWidget* parent = nullptr);

    /// Run after a search was saved as a shortcut: the frame reloads its shortcut bar.
    static std::function<void()> ShortcutsChanged;
    /// The recipe report over the ids ("12, 40"). No report engine exists yet; until one is
    /// wired here the print button does nothing.
    static std::function<void(const QString& idList)> PrintRecipes;

    /// The criteria as the controls hold them now.
    TRecipeSearchCriteria Criteria() const;

    void BitBtnFindClick();
    void BitBtnNewSearchClick();
    void BitBtnSaveShortcutClick();
    void UpdateButtons() override;

    // Choosing categories and ingredients: the box shows the name, the id list keeps the id.
    void SpeedButtonAddToBelongsToClick();
    void SpeedButtonRemoveFromBelongsToClick();
    /// Adds only while ListBoxNotBelongsTo has a selected item, so never to an empty box.
    void SpeedButtonAddToNotBelongsToClick();
    void SpeedButtonRemoveFromNotBelongsToClick();
    void SpeedButtonAddToContainsClick();
    void SpeedButtonRemoveFromContainsClick();
    void SpeedButtonAddToNotContainsClick();
    void SpeedButtonRemoveFromNotContainsClick();

    const QList<int>& BelongsToIds() const { return m_belongsToIds; }
    const QList<int>& NotBelongsToIds() const { return m_notBelongsToIds; }
    const QList<int>& ContainsIds() const { return m_containsIds; }
    const QList<int>& NotContainsIds() const { return m_notContainsIds; }

    qm::Dataset& QueryAvailableCategories() { return m_queryAvailableCategories; }
    qm::Dataset& QueryIngredients() { return m_queryIngredients; }

protected:
    QString ResultKey() const override { return QStringLiteral("recId"); }
    void OpenRecord(int id) override;
    void PrintRecords(const QString& idList) override;
    bool CanPrint() const override { return bool(PrintRecipes); }
    void FormShow() override;
    void FormClose() override;

private:
    QWidget* BuildNamePage();
    QWidget* BuildAdvancedPage();
    QWidget* BuildContentsPage();
    /// A label over a list box, with an add and a remove button at its left, from `row` of the grid.
    static void AddListSection(QGridLayout* grid, int row, QLabel* label, TSearchListBox* box,
                               QToolButton* add, QToolButton* remove);
    void CheckBoxCanBeMadeOfClick();
    void TreeViewIngredientTypesChange(int key);
    /// Appends the dataset's current row (name and id) to the box and the list.
    static void AddCurrent(qm::Dataset& dataset, const QString& idField, const QString& nameField,
                           TSearchListBox* box, QList<int>& ids);
    void AddIngredientRows(const QList<int>& rows, TSearchListBox* box, QList<int>& ids);
    /// Drops the item at `row` from the box and the list.
    static void RemoveAt(int row, TSearchListBox* box, QList<int>& ids);

    qm::Dataset m_queryAvailableCategories;
    qm::Dataset m_queryIngredients;
    QList<int> m_belongsToIds;
    QList<int> m_notBelongsToIds;
    QList<int> m_containsIds;
    QList<int> m_notContainsIds;
    bool m_connected = false;

    QLineEdit* m_editPattern = nullptr;
    TVintraDBTreeView* m_treeRecipeGroups = nullptr;
    QCheckBox* m_checkBoxAllGroups = nullptr;
    TVintraDBGrid* m_gridCategories = nullptr;
    TSearchListBox* m_listBoxBelongsTo = nullptr;
    TSearchListBox* m_listBoxNotBelongsTo = nullptr;
    QLineEdit* m_editPrepTime = nullptr;
    QLineEdit* m_editNoServings = nullptr;
    TVintraDBTreeView* m_treeIngredientTypes = nullptr;
    TVintraDBGrid* m_gridIngredients = nullptr;
    TSearchListBox* m_listBoxContains = nullptr;
    TSearchListBox* m_listBoxNotContains = nullptr;
    QLabel* m_labelNotContains = nullptr;
    QToolButton* m_addToNotContains = nullptr;
    QToolButton* m_removeFromNotContains = nullptr;
    QCheckBox* m_checkBoxCanBeMadeOf = nullptr;
    QPushButton* m_bitBtnSaveShortcut = nullptr;
};
