#pragma once

#include "components/dataset.h"

#include <QDialog>

class QPushButton;
class TVintraDBGrid;
namespace qm {
class DatasetModel;
}

/// The categories of one recipe: those it has beside those it could have, moved across by the
/// two buttons; the category list itself is edited from here as well.
class TFormRecipeCategories : public QDialog {
    Q_OBJECT
public:
    explicit TFormRecipeCategories(QWidget* parent = nullptr);
    ~TFormRecipeCategories() override;

    int recId = 0;

    qm::Dataset QueryAvailableCategories;
    qm::Dataset QueryAssignedCategories;

    void FormShow();
    void SpeedButtonAssignClick();
    void SpeedButtonRemoveClick();
    /// Opens the category list; both lists show its changes at once.
    void BitBtnCategoriesClick();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Reopen();
    void UpdateButtons();

    qm::DatasetModel* m_availableModel;
    qm::DatasetModel* m_assignedModel;
    TVintraDBGrid* m_available;
    TVintraDBGrid* m_assigned;
    QPushButton* m_assign;
    QPushButton* m_remove;
    bool m_shown = false;
};
