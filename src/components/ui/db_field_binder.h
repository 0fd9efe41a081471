#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QTextEdit;
class QWidget;

namespace qm {
class Dataset;
}

/// Binds edit controls to fields of a dataset, as data-aware controls do: each control shows the
/// field of the current record (after a scroll, a state change or a change of the value from
/// elsewhere), and a user's edit puts the dataset into edit state and writes the field. When the
/// dataset refuses the edit (read-only, closed), the control goes back to the stored value.
/// Escape in a control cancels the pending edit or insert of the dataset, as in a data-aware
/// control; the frame's navigator finds the dataset of a focused control through DatasetOf.
///
/// The controls are not owned; a control destroyed before the binder is dropped from it.
class TDBFieldBinder : public QObject {
    Q_OBJECT
public:
    /// How a line edit's text becomes a field value: text as typed, or a number in the machine's
    /// plain decimal format (empty is null; text that doesn't parse is not written, and the edit
    /// shows the stored value again once left).
    enum ValueKind { Text, Integer, Float };

    explicit TDBFieldBinder(qm::Dataset* dataset, QObject* parent = nullptr);
    ~TDBFieldBinder() override;

    /// Rebinds every control to another dataset (or to none).
    void SetDataset(qm::Dataset* dataset);
    qm::Dataset* Dataset() const { return m_dataset; }

    /// `displayFormat` (numbers only) is a mask such as "0.###": the zeros after the point are
    /// decimals always shown, the hashes decimals shown when they aren't zero.
    void Bind(QLineEdit* edit, const QString& field, ValueKind kind = Text,
              const QString& displayFormat = {});
    void Bind(QPlainTextEdit* edit, const QString& field);
    /// Rich text: the field holds the document as Qt rich text (HTML); plain text is shown as such.
    void Bind(QTextEdit* edit, const QString& field);
    void Bind(QCheckBox* box, const QString& field);
    /// A lookup: the items carry their key as item data (Qt::UserRole); the field holds the key.
    void BindLookup(QComboBox* box, const QString& field);
    void Unbind(QWidget* control);

    /// The field a control shows; "" when it isn't bound.
    QString FieldOf(const QWidget* control) const;
    /// The dataset that a control is bound to by any binder; nullptr when it is bound to none.
    static qm::Dataset* DatasetOf(const QObject* control);
    /// Shows the current record in every control again.
    void Refresh();

    /// Text of a number through a mask such as "0.###" or "0.00" ("" for null), rounded in decimal
    /// and written in the machine's format (qm::FormatDecimal).
    static QString FormatNumber(const QVariant& value, const QString& displayFormat);

signals:
    /// The user changed a control and the field took the value.
    void FieldEdited(const QString& field);

protected:
    /// Escape in a bound control cancels the dataset's pending changes.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Control { Line, Plain, Rich, Check, Lookup };
    struct Binding {
        QPointer<QWidget> widget;
        Control control;
        QString field;
        ValueKind kind = Text;
        QString displayFormat;
        QVariant shown;      ///< value the control shows now
        bool valid = false;  ///< shown holds a value read from the dataset
        bool typing = false; ///< the user is typing into the control; `before` holds the field's value
        QVariant before;
    };

    void Add(QWidget* widget, Control control, const QString& field, ValueKind kind = Text,
             const QString& displayFormat = {});
    void Show(Binding& binding, bool force);
    void ShowAll(bool force);
    /// The record moved, was reread, posted or cancelled: no typing is under way any more.
    void ForgetTyping();
    /// Leaving a line edit: a number left half typed gives the field back its value from before.
    void EditingFinished(QLineEdit* edit);
    QVariant ReadField(const QString& field) const;
    void UserEdited(QWidget* widget);
    QVariant ControlValue(const Binding& binding, bool& ok) const;
    Binding* Find(const QWidget* widget);

    QPointer<qm::Dataset> m_dataset;
    QList<Binding> m_bindings;
    QList<QMetaObject::Connection> m_datasetConnections;
    int m_loading = 0; ///< above 0 while the binder itself writes into controls
    int m_writing = 0; ///< above 0 while the binder writes a field
};
