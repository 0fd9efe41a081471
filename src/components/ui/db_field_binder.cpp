#include "components/ui/db_field_binder.h"

#include "components/dataset.h"
#include "components/decimal_text.h"
#include "components/messages.h"

#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <algorithm>

namespace {

bool isNull(const QVariant& v) {
    return !v.isValid() || v.isNull();
}

bool sameShown(const QVariant& a, const QVariant& b) {
    if (isNull(a) || isNull(b))
        return isNull(a) && isNull(b);
    return a == b && a.metaType() == b.metaType();
}

QString textOf(const QVariant& v) {
    if (isNull(v))
        return QString();
    if (v.metaType().id() == QMetaType::QByteArray)
        return QString::fromUtf8(v.toByteArray());
    return v.toString();
}

/// The number a field holds: a stored number as it is, stored text read as the engine wrote it.
bool numberOf(const QVariant& v, double& number) {
    switch (v.metaType().id()) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        number = v.toDouble();
        return true;
    default: {
        bool ok = false;
        number = QLocale::c().toDouble(textOf(v).trimmed(), &ok);
        return ok;
    }
    }
}

/// A floating field without a mask: its shortest text in the machine's format, so that what is
/// shown reads back as the same number.
QString plainNumber(const QVariant& v) {
    double number = 0;
    return numberOf(v, number) ? qm::DecimalText(number) : textOf(v);
}

/// Every binder alive, for the frame's question which dataset a focused control shows.
QList<TDBFieldBinder*>& liveBinders() {
    static QList<TDBFieldBinder*> binders;
    return binders;
}

} // namespace

TDBFieldBinder::TDBFieldBinder(qm::Dataset* dataset, QObject* parent) : QObject(parent) {
    liveBinders() << this;
    SetDataset(dataset);
}

TDBFieldBinder::~TDBFieldBinder() {
    liveBinders().removeAll(this);
    for (const QMetaObject::Connection& c : std::as_const(m_datasetConnections))
        disconnect(c);
}

qm::Dataset* TDBFieldBinder::DatasetOf(const QObject* control) {
    if (!control)
        return nullptr;
    for (const TDBFieldBinder* binder : std::as_const(liveBinders()))
        for (const Binding& b : binder->m_bindings)
            if (b.widget == control)
                return binder->m_dataset;
    return nullptr;
}

bool TDBFieldBinder::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape &&
        static_cast<QKeyEvent*>(event)->modifiers() == Qt::NoModifier && m_dataset && m_dataset->Active() &&
        (m_dataset->State() == qm::dsEdit || m_dataset->State() == qm::dsInsert) &&
        Find(qobject_cast<QWidget*>(watched))) {
        m_dataset->Cancel();
        ShowAll(true);
        return true; // the edit is undone; a dialog around it stays open
    }
    return QObject::eventFilter(watched, event);
}

void TDBFieldBinder::SetDataset(qm::Dataset* dataset) {
    for (const QMetaObject::Connection& c : std::as_const(m_datasetConnections))
        disconnect(c);
    m_datasetConnections.clear();
    m_dataset = dataset;
    if (dataset) {
        m_datasetConnections << connect(dataset, &qm::Dataset::reset, this, [this] {
            ForgetTyping();
            ShowAll(true);
        }) << connect(dataset, &qm::Dataset::currentChanged, this, [this] {
            ForgetTyping();
            ShowAll(true);
        }) << connect(dataset, &qm::Dataset::stateChanged, this, [this](qm::DatasetState state) {
            if (state == qm::dsBrowse || state == qm::dsInactive)
                ForgetTyping();
            ShowAll(false);
        }) << connect(dataset, &qm::Dataset::rowChanged, this, [this](int row) {
            if (m_dataset && row == m_dataset->currentRow())
                ShowAll(false);
        });
    }
    ShowAll(true);
}

void TDBFieldBinder::Add(QWidget* widget, Control control, const QString& field, ValueKind kind,
                         const QString& displayFormat) {
    if (!widget)
        return;
    Unbind(widget);
    Binding binding;
    binding.widget = widget;
    binding.control = control;
    binding.field = field;
    binding.kind = kind;
    binding.displayFormat = displayFormat;
    m_bindings << binding;
    widget->installEventFilter(this);
    connect(widget, &QObject::destroyed, this, [this, widget] {
        for (qsizetype i = m_bindings.size() - 1; i >= 0; --i)
            if (!m_bindings.at(i).widget || m_bindings.at(i).widget == widget)
                m_bindings.removeAt(i);
    });
    Show(m_bindings.last(), true);
}

void TDBFieldBinder::Bind(QLineEdit* edit, const QString& field, ValueKind kind,
                          const QString& displayFormat) {
    Add(edit, Control::Line, field, kind, displayFormat);
    connect(edit, &QLineEdit::textEdited, this, [this, edit] { UserEdited(edit); });
    // A formatted number shows its typed text while it is edited, its format once left.
    connect(edit, &QLineEdit::editingFinished, this, [this, edit] { EditingFinished(edit); });
}

void TDBFieldBinder::ForgetTyping() {
    for (Binding& b : m_bindings) {
        b.typing = false;
        b.before = QVariant();
    }
}

void TDBFieldBinder::EditingFinished(QLineEdit* edit) {
    Binding* b = Find(edit);
    if (!b)
        return;
    bool ok = true;
    ControlValue(*b, ok);
    // "1,000" typed as a factor wrote 1 on its way; left so, the field takes its old value back.
    if (!ok && b->typing && m_dataset && m_dataset->Active() &&
        (m_dataset->State() == qm::dsEdit || m_dataset->State() == qm::dsInsert)) {
        try {
            ++m_writing;
            m_dataset->FieldByName(b->field).SetValue(b->before);
            --m_writing;
        } catch (const std::exception& e) {
            m_writing = 0;
            ShowError(QString::fromUtf8(e.what()));
        }
    }
    if ((b = Find(edit))) {
        b->typing = false;
        Show(*b, true);
    }
}

void TDBFieldBinder::Bind(QPlainTextEdit* edit, const QString& field) {
    Add(edit, Control::Plain, field);
    connect(edit, &QPlainTextEdit::textChanged, this, [this, edit] {
        if (m_loading == 0)
            UserEdited(edit);
    });
}

void TDBFieldBinder::Bind(QTextEdit* edit, const QString& field) {
    Add(edit, Control::Rich, field);
    connect(edit, &QTextEdit::textChanged, this, [this, edit] {
        if (m_loading == 0)
            UserEdited(edit);
    });
}

void TDBFieldBinder::Bind(QCheckBox* box, const QString& field) {
    Add(box, Control::Check, field);
    connect(box, &QCheckBox::clicked, this, [this, box] { UserEdited(box); });
}

void TDBFieldBinder::BindLookup(QComboBox* box, const QString& field) {
    Add(box, Control::Lookup, field);
    connect(box, &QComboBox::activated, this, [this, box] { UserEdited(box); });
}

void TDBFieldBinder::Unbind(QWidget* control) {
    for (qsizetype i = m_bindings.size() - 1; i >= 0; --i) {
        if (m_bindings.at(i).widget == control) {
            disconnect(control, nullptr, this, nullptr);
            control->removeEventFilter(this);
            m_bindings.removeAt(i);
        }
    }
}

QString TDBFieldBinder::FieldOf(const QWidget* control) const {
    for (const Binding& b : m_bindings)
        if (b.widget == control)
            return b.field;
    return QString();
}

TDBFieldBinder::Binding* TDBFieldBinder::Find(const QWidget* widget) {
    for (Binding& b : m_bindings)
        if (b.widget == widget)
            return &b;
    return nullptr;
}

void TDBFieldBinder::Refresh() {
    ShowAll(true);
}

QVariant TDBFieldBinder::ReadField(const QString& field) const {
    if (!m_dataset || !m_dataset->Active())
        return QVariant();
    const int index = m_dataset->fieldIndex(field);
    if (index < 0)
        return QVariant();
    return m_dataset->FieldAt(index).Value();
}

void TDBFieldBinder::ShowAll(bool force) {
    if (m_writing > 0)
        return;
    for (qsizetype i = 0; i < m_bindings.size(); ++i)
        Show(m_bindings[i], force);
}

QString TDBFieldBinder::FormatNumber(const QVariant& value, const QString& displayFormat) {
    if (isNull(value))
        return QString();
    double number = 0;
    if (!numberOf(value, number))
        return textOf(value);
    return qm::FormatDecimal(number, displayFormat);
}

void TDBFieldBinder::Show(Binding& binding, bool force) {
    QWidget* widget = binding.widget;
    if (!widget)
        return;
    const QVariant value = ReadField(binding.field);
    if (!force && binding.valid && sameShown(value, binding.shown))
        return;
    binding.shown = value;
    binding.valid = true;
    ++m_loading;
    switch (binding.control) {
    case Control::Line: {
        auto* edit = static_cast<QLineEdit*>(widget);
        const QString text = binding.kind != Float || isNull(value) ? textOf(value)
                             : binding.displayFormat.isEmpty()      ? plainNumber(value)
                                                               : FormatNumber(value, binding.displayFormat);
        // Only a value changed elsewhere gets here while the user types; the cursor stays put.
        if (edit->text() != text) {
            const int cursor = edit->cursorPosition();
            edit->setText(text);
            edit->setCursorPosition(std::min(cursor, int(text.size())));
        }
        break;
    }
    case Control::Plain: {
        auto* edit = static_cast<QPlainTextEdit*>(widget);
        const QString text = textOf(value);
        if (edit->toPlainText() != text)
            edit->setPlainText(text);
        break;
    }
    case Control::Rich: {
        auto* edit = static_cast<QTextEdit*>(widget);
        const QString text = textOf(value);
        if (Qt::mightBeRichText(text))
            edit->setHtml(text);
        else
            edit->setPlainText(text);
        break;
    }
    case Control::Check:
        static_cast<QCheckBox*>(widget)->setChecked(!isNull(value) && value.toBool());
        break;
    case Control::Lookup: {
        auto* box = static_cast<QComboBox*>(widget);
        int index = -1;
        for (int i = 0; i < box->count() && !isNull(value); ++i)
            if (box->itemData(i).toString() == textOf(value))
                index = i;
        box->setCurrentIndex(index);
        break;
    }
    }
    --m_loading;
}

QVariant TDBFieldBinder::ControlValue(const Binding& binding, bool& ok) const {
    ok = true;
    QWidget* widget = binding.widget;
    switch (binding.control) {
    case Control::Line: {
        const QString text = static_cast<QLineEdit*>(widget)->text();
        if (binding.kind == Text)
            return text;
        const QString trimmed = text.trimmed();
        if (trimmed.isEmpty())
            return QVariant();
        // Plain numbers in the machine's format, as they are shown.
        if (binding.kind == Integer) {
            int n = 0;
            ok = qm::ParseInteger(trimmed, n);
            return ok ? QVariant(n) : QVariant();
        }
        double d = 0;
        ok = qm::ParseDecimal(trimmed, d);
        return ok ? QVariant(d) : QVariant();
    }
    case Control::Plain:
        return static_cast<QPlainTextEdit*>(widget)->toPlainText();
    case Control::Rich: {
        auto* edit = static_cast<QTextEdit*>(widget);
        return edit->document()->isEmpty() ? QString() : edit->toHtml();
    }
    case Control::Check:
        return static_cast<QCheckBox*>(widget)->isChecked();
    case Control::Lookup: {
        auto* box = static_cast<QComboBox*>(widget);
        return box->currentIndex() < 0 ? QVariant() : box->currentData();
    }
    }
    return QVariant();
}

void TDBFieldBinder::UserEdited(QWidget* widget) {
    Binding* binding = Find(widget);
    if (!binding || m_loading > 0)
        return;
    const QString field = binding->field;
    if (!binding->typing) {
        binding->before = ReadField(field);
        binding->typing = true;
    }
    bool ok = true;
    const QVariant value = ControlValue(*binding, ok);
    bool written = false;
    if (m_dataset && m_dataset->Active() && m_dataset->fieldIndex(field) >= 0) {
        try {
            // A number half typed ("-", "1e") waits for the rest rather than being refused.
            if (!ok)
                return;
            if (m_dataset->Edit()) {
                ++m_writing;
                m_dataset->FieldByName(field).SetValue(value);
                --m_writing;
                written = true;
            }
        } catch (const std::exception& e) {
            m_writing = 0;
            ShowError(QString::fromUtf8(e.what()));
        }
    }
    if (Binding* b = Find(widget)) {
        if (!written) {
            Show(*b, true);
            return;
        }
        // An edit that started an insert saw the new record shown over what was typed.
        const QVariant stored = ReadField(field);
        bool same = true;
        const QVariant now = ControlValue(*b, same);
        if (!same || !sameShown(now, stored))
            Show(*b, true);
        b->shown = stored;
        b->valid = true;
    }
    // Other controls on the same field follow.
    ShowAll(false);
    emit FieldEdited(field);
}
