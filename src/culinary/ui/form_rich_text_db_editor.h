#pragma once

#include <QDialog>
#include <QString>

class QPushButton;
class TVintraRichEdit;
namespace qm {
class Dataset;
}

/// A roomy rich-text editor for one field of a dataset: what is typed goes into the field and is
/// saved by the dataset's next post. OK only closes the window.
class TFormRichTextDBEditor : public QDialog {
    Q_OBJECT
public:
    explicit TFormRichTextDBEditor(QWidget* parent = nullptr);

    void SetDataSource(qm::Dataset* dataset);
    void SetDataField(const QString& field);
    TVintraRichEdit* Editor() const { return m_editor; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    TVintraRichEdit* m_editor;
    QPushButton* m_ok;
    bool m_shown = false;
};
