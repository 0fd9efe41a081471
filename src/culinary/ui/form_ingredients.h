#pragma once

#include "store/ui/record_window.h"

#include <QHash>
#include <functional>

class QAction;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTextBrowser;
class QToolButton;
class TDBFieldBinder;
class TPicturePages;

/// The ingredients window: the tree of ingredient types beside the ingredients of the selected
/// type, with their base unit and price, the grams of volume units, the nutrients per 100 grams
/// and up to nine pictures.
class TFormIngredients : public TRecordWindow {
    Q_OBJECT
public:
    explicit TFormIngredients(QWidget* parent = nullptr);
    ~TFormIngredients() override;

    /// A shortcut's definition, stored after creation; nothing in this window reads it.
    QString Definition;

    /// The ingredient report, handed the selected ids; empty until a report engine takes it.
    static std::function<void(const QString& idList, bool containsLocked)> PrintIngredients;
    /// The price list dialog: the chosen file, "" on cancel. Defaults to a file dialog.
    std::function<QString()> OpenDialogPriceList;

    void Print() override;
    void FormActivate() override;
    void Release() override;

    /// Shows the ingredient: its type in the tree, then the record (the search window and the
    /// recipe window use it too).
    Q_INVOKABLE bool SelectIngredient(int id);

    qm::Dataset& QueryUnitsLookup() { return m_unitsLookup; }
    qm::Dataset& QueryUnitsOut() { return m_unitsOut; }
    qm::Dataset& QueryUnitsIn() { return m_unitsIn; }
    qm::Dataset& QueryBioValues() { return m_bioValues; }
    TPicturePages* PageControlPictures() const { return m_pictures; }

public slots:
    /// The price list import; the frame's tool button calls it while the window exists.
    void MIImportPriceListClick();
    void SpeedButtonAddUnitClick();
    void SpeedButtonRemoveUnitClick();
    void BitBtnUpdateUnitClick();
    void SpeedButtonFindClick();

protected:
    void CheckRecord(qm::Dataset& table, QString& errors) override;
    void RecordDeleting(int id) override;
    void RecordAfterScroll() override;
    void UpdateCommands() override;
    void UpdateGroupCommands() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* BuildMainPage();
    QWidget* BuildConversionsPage();
    QWidget* BuildValuesPage();
    void RefillUnitsLookup();
    void ReopenUnitLists(bool both);
    void ShowBioValue(const QString& bioValueId);
    void ApplyTypeCommands();
    void ShowCurrency();
    void LayoutNutrients(int columns);
    int CurrentIngredientId();

    qm::Dataset m_unitsLookup;
    qm::Dataset m_unitsOut;
    qm::Dataset m_unitsIn;
    qm::Dataset m_bioValues;
    qm::DatasetModel* m_unitsOutModel = nullptr;
    qm::DatasetModel* m_unitsInModel = nullptr;

    TDBFieldBinder* m_binder = nullptr;
    QTabWidget* m_pages = nullptr;
    QLineEdit* m_name = nullptr;
    QComboBox* m_baseUnit = nullptr;
    QLineEdit* m_price = nullptr;
    QLabel* m_currency = nullptr;
    QPlainTextEdit* m_desc = nullptr;
    TPicturePages* m_pictures = nullptr;
    TVintraDBGrid* m_gridUnitsOut = nullptr;
    TVintraDBGrid* m_gridUnitsIn = nullptr;
    QLineEdit* m_editConversion = nullptr;
    QToolButton* m_addUnit = nullptr;
    QToolButton* m_removeUnit = nullptr;
    QPushButton* m_updateUnit = nullptr;
    QTextBrowser* m_bioValueNote = nullptr;
    QHash<QObject*, QString> m_nutrientKeys; ///< edit -> bioValueId of its note
    QList<QList<QWidget*>> m_nutrientBoxes;  ///< label, edit and unit of each nutrient
    QGridLayout* m_nutrientGrid = nullptr;
    QWidget* m_nutrientViewport = nullptr;
    int m_nutrientColumns = 0;
    int m_nutrientColumnWidth = 200; ///< width of one column of boxes
    QAction* m_importPriceList = nullptr;
};
