#pragma once

#include "components/dataset.h"

#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;
class QPushButton;
class QSplitter;
class QWidget;
class TVintraDBGrid;
class TVintraDBTreeView;
namespace qm {
class DatasetModel;
}

/// The choice of a recipe from the tree of recipe groups, with a number of servings. Mode 1 adds
/// to a menu, 2 edits the servings of a recipe in a menu, 3 (what every caller runs) selects a
/// recipe. The caller reads recId, recName and servings after OK.
class TFormAddOrEditRecipe : public QDialog {
    Q_OBJECT
public:
    explicit TFormAddOrEditRecipe(QWidget* parent = nullptr);
    ~TFormAddOrEditRecipe() override;

    int mode = 3;
    int recId = 0;
    QString recName;
    int menuId = 0;
    int recGroupId = 0;
    double servings = 0;

    void FormShow();
    void TreeViewChange();
    void BitBtnOkClick();

    qm::Dataset QueryRecipes;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void UpdateOk();

    TVintraDBTreeView* m_tree;
    TVintraDBGrid* m_list;
    qm::DatasetModel* m_listModel;
    QSplitter* m_top;
    QWidget* m_bottom;
    QLabel* m_servingsLabel;
    QLineEdit* m_servings;
    QPushButton* m_ok;
    bool m_shown = false;
};
