#include "components/ui/db_field_binder.h"

#include "components/dataset.h"
#include "components/messages.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <cmath>

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

} // namespace

TDBFieldBinder::TDBFieldBinder(qm::Dataset* dataset, QObject* parent) : QObject(parent) {
    SetDataset(dataset);
}

TDBFieldBinder::~TDBFieldBinder() {
    for (const QMetaObject::Connection& c : std::as_const(m_datasetConnections))
        disconnect(c);
}

void TDBFieldBinder::SetDataset(qm::Dataset* dataset) {
    for (const QMetaObject::Connection& c : std::as_const(m_datasetConnections))
        disconnect(c);
    m_datasetConnections.clear();
    m_dataset = dataset;
    if (dataset) {
        m_datasetConnections << connect(dataset, &qm::Dataset::reset, this, [this] { ShowAll(true); })
                             << connect(dataset, &qm::Dataset::currentChanged, this,
                                        [this] { ShowAll(true); })
                             << connect(dataset, &qm::Dataset::stateChanged, this, [this] { ShowAll(false); })
                             << connect(dataset, &qm::Dataset::rowChanged, this, [this](int row) {
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
    connect(edit, &QLineEdit::editingFinished, this, [this, edit] {
        if (Binding* b = Find(edit))
            Show(*b, true);
    });
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
    bool ok = false;
    const double number = textOf(value).trimmed().toDouble(&ok);
    if (!ok)
        return textOf(value);
    const qsizetype point = displayFormat.indexOf(QLatin1Char('.'));
    const QString decimals = point < 0 ? QString() : displayFormat.mid(point + 1);
    const int fixed = int(decimals.count(QLatin1Char('0')));
    const int optional = int(decimals.count(QLatin1Char('#')));
    QString text = QString::number(number, 'f', fixed + optional);
    if (optional > 0) {
        const qsizetype dot = text.indexOf(QLatin1Char('.'));
        qsizetype keep = text.size();
        while (keep > dot + 1 + fixed && text.at(keep - 1) == QLatin1Char('0'))
            --keep;
        if (keep == dot + 1)
            keep = dot;
        text.truncate(keep);
    }
    if (text == QStringLiteral("-0"))
        text = QStringLiteral("0");
    return text;
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
        const QString text = binding.kind == Text || binding.displayFormat.isEmpty()
                                 ? textOf(value)
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
        if (binding.kind == Integer) {
            const int n = trimmed.toInt(&ok);
            return ok ? QVariant(n) : QVariant();
        }
        // A point always; a comma too when the user's locale writes one.
        double d = trimmed.toDouble(&ok);
        if (!ok)
            d = QLocale().toDouble(trimmed, &ok);
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
