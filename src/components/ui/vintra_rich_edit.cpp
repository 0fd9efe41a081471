#include "components/ui/vintra_rich_edit.h"

#include "components/dataset.h"
#include "components/decimal_text.h"
#include "components/ui/db_field_binder.h"

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QPainter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>
#include <QTextList>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

constexpr int IconSize = 18;

/// A letter drawn in its own style: B bold, I italic, U underlined.
QIcon letterIcon(const QString& letter, bool bold, bool italic, bool underline) {
    QPixmap pixmap(IconSize * 2, IconSize * 2);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    QFont font(QStringLiteral("Serif"));
    font.setPixelSize(IconSize * 2 - 8);
    font.setBold(bold);
    font.setItalic(italic);
    font.setUnderline(underline);
    p.setFont(font);
    p.setPen(QColor(0x33, 0x33, 0x33));
    p.drawText(pixmap.rect(), Qt::AlignCenter, letter);
    return QIcon(pixmap);
}

/// Lines of text: kind 0-2 left, centred, right; 3 bullets; 4 numbers.
QIcon linesIcon(int kind) {
    const int s = IconSize * 2;
    QPixmap pixmap(s, s);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor ink(0x33, 0x33, 0x33);
    p.setPen(QPen(ink, 3, Qt::SolidLine, Qt::RoundCap));
    for (int i = 0; i < 4; ++i) {
        const int y = 7 + i * 8;
        int length = (i % 2 == 0) ? s - 10 : s - 18;
        int x = 5;
        if (kind == 1)
            x = (s - length) / 2;
        else if (kind == 2)
            x = s - 5 - length;
        if (kind >= 3) {
            x = 14;
            length = s - 19;
            if (kind == 3) {
                p.setBrush(ink);
                p.drawEllipse(QPointF(7, y), 1.5, 1.5);
            } else {
                QFont font;
                font.setPixelSize(8);
                font.setBold(true);
                p.setFont(font);
                p.setPen(ink);
                p.drawText(QRect(1, y - 5, 10, 10), Qt::AlignCenter, QString::number(i + 1));
                p.setPen(QPen(ink, 3, Qt::SolidLine, Qt::RoundCap));
            }
        }
        p.drawLine(x, y, x + length, y);
    }
    return QIcon(pixmap);
}

} // namespace

TVintraRichEdit::TVintraRichEdit(QWidget* parent)
    : QWidget(parent), m_toolBar(new QToolBar(this)), m_edit(new QTextEdit(this)),
      m_fontSize(new QComboBox(this)), m_binder(new TDBFieldBinder(nullptr, this)) {
    m_toolBar->setObjectName(QStringLiteral("ToolBarRichEdit"));
    m_toolBar->setIconSize(QSize(IconSize, IconSize));
    m_edit->setObjectName(QStringLiteral("RichEdit"));
    m_edit->setAcceptRichText(true);

    const auto action = [this](const char* name, const QString& text, const QIcon& icon, auto handler) {
        auto* a = new QAction(icon, text, this);
        a->setObjectName(QLatin1String(name));
        a->setToolTip(text);
        connect(a, &QAction::triggered, this, handler);
        m_toolBar->addAction(a);
        return a;
    };
    m_bold = action("ActionBold", tr("Bold"), letterIcon(QStringLiteral("B"), true, false, false),
                    [this] { ToggleBold(); });
    m_bold->setShortcut(QKeySequence::Bold);
    m_italic = action("ActionItalic", tr("Italic"), letterIcon(QStringLiteral("I"), false, true, false),
                      [this] { ToggleItalic(); });
    m_italic->setShortcut(QKeySequence::Italic);
    m_underline = action("ActionUnderline", tr("Underline"),
                         letterIcon(QStringLiteral("U"), false, false, true), [this] { ToggleUnderline(); });
    m_underline->setShortcut(QKeySequence::Underline);
    for (QAction* a : {m_bold, m_italic, m_underline}) {
        a->setCheckable(true);
        a->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
    m_toolBar->addSeparator();
    m_bullets = action("ActionBullets", tr("Bulleted list"), linesIcon(3), [this] { ToggleBullets(); });
    m_numbering = action("ActionNumbering", tr("Numbered list"), linesIcon(4), [this] { ToggleNumbering(); });
    m_bullets->setCheckable(true);
    m_numbering->setCheckable(true);
    m_toolBar->addSeparator();
    m_alignLeft =
        action("ActionAlignLeft", tr("Align left"), linesIcon(0), [this] { SetAlignment(Qt::AlignLeft); });
    m_alignCenter =
        action("ActionAlignCenter", tr("Center"), linesIcon(1), [this] { SetAlignment(Qt::AlignHCenter); });
    m_alignRight =
        action("ActionAlignRight", tr("Align right"), linesIcon(2), [this] { SetAlignment(Qt::AlignRight); });
    auto* alignments = new QActionGroup(this);
    for (QAction* a : {m_alignLeft, m_alignCenter, m_alignRight}) {
        a->setCheckable(true);
        alignments->addAction(a);
    }
    m_toolBar->addSeparator();
    m_fontSize->setObjectName(QStringLiteral("ComboBoxFontSize"));
    m_fontSize->setToolTip(tr("Font size"));
    m_fontSize->setEditable(true);
    for (int size : {8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 36})
        m_fontSize->addItem(QString::number(size));
    m_fontSize->setMinimumContentsLength(3);
    m_toolBar->addWidget(m_fontSize);
    connect(m_fontSize, &QComboBox::textActivated, this, [this](const QString& text) {
        double size = 0;
        // A size far beyond any page's would overflow the text layout; it goes like any bad text.
        if (qm::ParseDecimal(text, size) && size > 0 && size <= 1000)
            SetFontSize(size);
    });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_toolBar);
    layout->addWidget(m_edit, 1);

    connect(m_edit, &QTextEdit::currentCharFormatChanged, this, [this] { UpdateActions(); });
    connect(m_edit, &QTextEdit::cursorPositionChanged, this, [this] { UpdateActions(); });
    UpdateActions();
}

void TVintraRichEdit::SetDataSource(qm::Dataset* dataset) {
    m_binder->SetDataset(dataset);
    Rebind();
}

void TVintraRichEdit::SetDataField(const QString& field) {
    m_field = field;
    Rebind();
}

qm::Dataset* TVintraRichEdit::DataSource() const {
    return m_binder->Dataset();
}

void TVintraRichEdit::Rebind() {
    m_binder->Unbind(m_edit);
    if (!m_field.isEmpty())
        m_binder->Bind(m_edit, m_field);
}

namespace {

/// Merges a character format into the selection, or into the word under the cursor.
void mergeFormat(QTextEdit* edit, const QTextCharFormat& format) {
    QTextCursor cursor = edit->textCursor();
    if (!cursor.hasSelection())
        cursor.select(QTextCursor::WordUnderCursor);
    cursor.mergeCharFormat(format);
    edit->mergeCurrentCharFormat(format);
}

} // namespace

void TVintraRichEdit::ToggleBold() {
    QTextCharFormat format;
    format.setFontWeight(m_edit->fontWeight() > QFont::Normal ? QFont::Normal : QFont::Bold);
    mergeFormat(m_edit, format);
    UpdateActions();
}

void TVintraRichEdit::ToggleItalic() {
    QTextCharFormat format;
    format.setFontItalic(!m_edit->fontItalic());
    mergeFormat(m_edit, format);
    UpdateActions();
}

void TVintraRichEdit::ToggleUnderline() {
    QTextCharFormat format;
    format.setFontUnderline(!m_edit->fontUnderline());
    mergeFormat(m_edit, format);
    UpdateActions();
}

void TVintraRichEdit::ToggleList(int style) {
    QTextCursor cursor = m_edit->textCursor();
    cursor.beginEditBlock();
    QTextList* list = cursor.currentList();
    if (list && list->format().style() == style) {
        // The same command again takes the paragraphs out of the list.
        const QTextBlock first = cursor.document()->findBlock(cursor.selectionStart());
        const QTextBlock last = cursor.document()->findBlock(cursor.selectionEnd());
        for (QTextBlock block = first; block.isValid(); block = block.next()) {
            if (QTextList* owner = block.textList())
                owner->remove(block);
            QTextCursor c(block);
            QTextBlockFormat format = c.blockFormat();
            format.setIndent(0);
            c.setBlockFormat(format);
            if (block == last)
                break;
        }
    } else if (list) {
        QTextListFormat format = list->format();
        format.setStyle(QTextListFormat::Style(style));
        list->setFormat(format);
    } else {
        QTextListFormat format;
        format.setStyle(QTextListFormat::Style(style));
        format.setIndent(cursor.blockFormat().indent() + 1);
        cursor.createList(format);
    }
    cursor.endEditBlock();
    UpdateActions();
}

void TVintraRichEdit::ToggleBullets() {
    ToggleList(QTextListFormat::ListDisc);
}

void TVintraRichEdit::ToggleNumbering() {
    ToggleList(QTextListFormat::ListDecimal);
}

void TVintraRichEdit::SetAlignment(Qt::Alignment alignment) {
    m_edit->setAlignment(alignment | Qt::AlignAbsolute);
    UpdateActions();
}

void TVintraRichEdit::SetFontSize(double points) {
    QTextCharFormat format;
    format.setFontPointSize(points);
    mergeFormat(m_edit, format);
    UpdateActions();
}

void TVintraRichEdit::Clear() {
    m_edit->clear();
    UpdateActions();
}

void TVintraRichEdit::UpdateActions() {
    m_bold->setChecked(m_edit->fontWeight() > QFont::Normal);
    m_italic->setChecked(m_edit->fontItalic());
    m_underline->setChecked(m_edit->fontUnderline());
    const QTextList* list = m_edit->textCursor().currentList();
    const int style = list ? list->format().style() : 0;
    m_bullets->setChecked(style == QTextListFormat::ListDisc);
    m_numbering->setChecked(style == QTextListFormat::ListDecimal);
    const Qt::Alignment alignment = m_edit->alignment() & Qt::AlignHorizontal_Mask;
    if (alignment & Qt::AlignHCenter)
        m_alignCenter->setChecked(true);
    else if (alignment & Qt::AlignRight)
        m_alignRight->setChecked(true);
    else
        m_alignLeft->setChecked(true);
    const double size = m_edit->fontPointSize() > 0 ? m_edit->fontPointSize() : m_edit->font().pointSizeF();
    const QString text = QString::number(size);
    if (m_fontSize->currentText() != text)
        m_fontSize->setEditText(text);
}
