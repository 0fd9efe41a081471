#pragma once

#include "components/dataset.h"

#include <QDialog>

class QAction;
class QToolBar;
class TVintraDBGrid;
namespace qm {
class DatasetModel;
}

/// The list of recipe categories, edited in its grid: new names get their id from the counter,
/// a name can't be left empty, and deleting a category in use takes it out of its recipes after a
/// question.
class TFormCategories : public QDialog {
    Q_OBJECT
public:
    explicit TFormCategories(QWidget* parent = nullptr);
    ~TFormCategories() override;

    qm::Dataset TableCategories;
    TVintraDBGrid* Grid() const { return m_grid; }

    // Navigator commands.
    void InsertCategory();
    void DeleteCategory();
    void PostCategory();
    void CancelCategory();

    /// Closes the dialog once a pending edit is posted.
    void done(int result) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void UpdateNavigator();

    qm::DatasetModel* m_model;
    TVintraDBGrid* m_grid;
    QToolBar* m_navigator;
    QAction* m_insert;
    QAction* m_delete;
    QAction* m_post;
    QAction* m_cancel;
    bool m_shown = false;
};
