#pragma once

#include <QString>
#include <QWidget>

class QAction;
class QComboBox;
class QTextEdit;
class QToolBar;
class TDBFieldBinder;

namespace qm {
class Dataset;
}

/// A rich-text editor with its own tool bar: bold, italic, underline, bulleted and numbered
/// lists, alignment and font size. Bound to a field of a dataset (SetDataSource, SetDataField),
/// what is typed goes into the field as Qt rich text and is saved by the dataset's next post.
class TVintraRichEdit : public QWidget {
    Q_OBJECT
public:
    explicit TVintraRichEdit(QWidget* parent = nullptr);

    QTextEdit* Editor() const { return m_edit; }
    QToolBar* ToolBar() const { return m_toolBar; }

    void SetDataSource(qm::Dataset* dataset);
    void SetDataField(const QString& field);
    qm::Dataset* DataSource() const;
    QString DataField() const { return m_field; }

    // Formatting commands on the selection (or the word under the cursor).
    void ToggleBold();
    void ToggleItalic();
    void ToggleUnderline();
    /// A bulleted (or numbered) list around the current paragraphs; again: back to paragraphs.
    void ToggleBullets();
    void ToggleNumbering();
    void SetAlignment(Qt::Alignment alignment);
    void SetFontSize(double points);
    /// Empties the text (and the bound field).
    void Clear();

    QAction* ActionBold() const { return m_bold; }
    QAction* ActionItalic() const { return m_italic; }
    QAction* ActionUnderline() const { return m_underline; }
    QAction* ActionBullets() const { return m_bullets; }
    QAction* ActionNumbering() const { return m_numbering; }
    QAction* ActionAlignLeft() const { return m_alignLeft; }
    QAction* ActionAlignCenter() const { return m_alignCenter; }
    QAction* ActionAlignRight() const { return m_alignRight; }
    QComboBox* FontSizeBox() const { return m_fontSize; }

private:
    void ToggleList(int style);
    void UpdateActions();
    void Rebind();

    QToolBar* m_toolBar;
    QTextEdit* m_edit;
    QComboBox* m_fontSize;
    QAction* m_bold;
    QAction* m_italic;
    QAction* m_underline;
    QAction* m_bullets;
    QAction* m_numbering;
    QAction* m_alignLeft;
    QAction* m_alignCenter;
    QAction* m_alignRight;
    TDBFieldBinder* m_binder;
    QString m_field;
};
