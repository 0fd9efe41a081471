#pragma once

#include "components/dataset.h"
#include "culinary/recipe_search.h"

#include <QList>
#include <QMap>
#include <QStringList>
#include <QWidget>
#include <functional>

class QComboBox;
class QGridLayout;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTabWidget;
class QVBoxLayout;
class TVintraDBGrid;
class TVintraDBTreeView;
namespace qm {
class DatasetModel;
}

/// What the two search windows share: the tabs of criteria beside a column of buttons (PanelTop),
/// the result grid below that shows only after a search, the nutrient limits of the Advanced tab,
/// and the opening and printing of hits. A search window is a separate window, hidden rather than
/// destroyed when closed, so that its criteria stay for the next show.
class TSearchWindow : public QWidget {
    Q_OBJECT
public:
    /// The height of DBGridResults as designed; a search shows the grid at this height.
    static constexpr int ResultsHeight = 220;

    explicit TSearchWindow(QWidget* parent = nullptr);
    ~TSearchWindow() override;

    qm::Dataset& QuerySearch() { return m_querySearch; }
    TVintraDBGrid* ResultsGrid() const { return m_gridResults; }
    qm::DatasetModel* ResultsModel() const { return m_resultsModel; }

    /// The limits typed on the Advanced tab, by column; empty edits are left out.
    QMap<QString, TNutrientLimit> NutrientLimits() const;
    /// Empties every nutrient edit and sets every operator to ">=".
    void ResetNutrientLimits();

    /// Runs the statement in QuerySearch, updates the buttons and grows the window to show the rows.
    void RunSearch(const QStringList& lines);
    /// Hides the results: the client height becomes that of PanelTop.
    void ShrinkToCriteria();
    /// BitBtnOpen and the others that need rows follow whether QuerySearch has any.
    virtual void UpdateButtons();

protected:
    /// Key column of the results ("recId", "ingredId").
    virtual QString ResultKey() const = 0;
    /// Opens the hit whose key is `id` in its record window.
    virtual void OpenRecord(int id) = 0;
    /// Hands the ids of the selected results to the report.
    virtual void PrintRecords(const QString& idList) = 0;
    /// Whether a report is wired to print with; without one the print button stays off.
    virtual bool CanPrint() const = 0;
    /// Every show that is not the system's: trees and lists are read again.
    virtual void FormShow() = 0;
    /// The close button and the close box: the window hides and closes the lists it reads at show.
    virtual void FormClose() {}

    /// Adds a tab; its page gets the object name given.
    QWidget* AddPage(const char* name, const QString& title);
    /// Fills the Advanced page's grid with a ComboBoxOp<Nutrient> and an Edit<Nutrient> for each
    /// nutrient, from `row` on; returns the next free row.
    int AddNutrientLimits(QGridLayout* grid, int row);
    /// A button of PanelButtons; the buttons go down in the order they are added.
    QPushButton* AddButton(const char* name, const QString& text);
    /// Loads and sorts the tree and selects its first node.
    static void LoadTree(TVintraDBTreeView* tree, const QString& rootName);
    /// A read-only grid over a model of `dataset` showing `fields` under `titles`.
    TVintraDBGrid* MakeGrid(const char* name, qm::Dataset& dataset, const QStringList& fields,
                            const QStringList& titles);
    /// Runs a command: an engine failure goes to the exception dialog.
    bool Guarded(const std::function<void()>& command);
    /// The record window of `route` at the record: opened by the frame, then `method(id)` on it.
    void OpenInFrame(const QString& route, const char* method, int id);

    /// The grids and their models, before the datasets they show; a window whose datasets are
    /// its own members calls it first in its destructor.
    void DeleteViews();

    QTabWidget* PageControl() const { return m_pageControl; }
    QWidget* PanelTop() const { return m_panelTop; }

    void BitBtnOpenClick();
    void BitBtnPrintClick();

    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

    QPushButton* m_bitBtnFind = nullptr;
    QPushButton* m_bitBtnOpen = nullptr;
    QPushButton* m_bitBtnPrint = nullptr;
    QPushButton* m_bitBtnNewSearch = nullptr;
    QPushButton* m_bitBtnClose = nullptr;

private:
    qm::Dataset m_querySearch;
    qm::DatasetModel* m_resultsModel = nullptr;
    TVintraDBGrid* m_gridResults = nullptr;
    QWidget* m_panelTop = nullptr;
    QWidget* m_panelButtons = nullptr;
    QVBoxLayout* m_buttonsLayout = nullptr;
    QTabWidget* m_pageControl = nullptr;
    QMap<QString, QComboBox*> m_operators;
    QMap<QString, QLineEdit*> m_limits;
    QList<qm::DatasetModel*> m_models;
    QList<TVintraDBGrid*> m_grids;
};
