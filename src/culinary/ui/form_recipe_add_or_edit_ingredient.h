#pragma once

#include "components/dataset.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QPushButton;
class QSplitter;
class QTimer;
class QWidget;
class TVintraDBGrid;
class TVintraDBTreeView;
namespace qm {
class DatasetModel;
}

/// The line of a structured recipe: an ingredient picked from the tree of types and the list (or
/// found by the search box), an amount and a unit that has a weight for that ingredient. The
/// caller sets the fields, runs the dialog and, after OK, runs the statement with what it reads
/// back. A positive ingredTypeId or an ingredId of 1 or more opens it to edit a line: then only
/// amount and unit can change.
class TFormRecipeAddOrEditIngredient : public QDialog {
    Q_OBJECT
public:
    explicit TFormRecipeAddOrEditIngredient(QWidget* parent = nullptr);
    ~TFormRecipeAddOrEditIngredient() override;

    int recId = 0;
    int ingredTypeId = 0;
    int ingredId = 0;
    double amount = 0;
    int unitId = 0;

    bool EditMode() const { return ingredTypeId > 0 || ingredId >= 1; }

    void FormShow();
    /// A node of the type tree was chosen: the list shows that type (all at the root).
    void TreeViewChange();
    /// The search box waited long enough: the list is rebuilt from its text.
    void TimerSearchTimer();
    void BitBtnOkClick();

    qm::Dataset QueryIngredients;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void OpenIngredients(const QString& search);
    void FillUnits(int forIngredId);
    void UpdateOk();

    TVintraDBTreeView* m_tree;
    QLineEdit* m_search;
    TVintraDBGrid* m_list;
    qm::DatasetModel* m_listModel;
    QSplitter* m_top;
    QWidget* m_bottom;
    QLineEdit* m_amount;
    QComboBox* m_units;
    QPushButton* m_ok;
    QPushButton* m_cancel;
    QTimer* m_timer;
    bool m_shown = false;
};
