#pragma once

#include <QByteArray>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>

class TVintraDictionary;

/// One per form: sets the captions, hints and column titles of the form's controls from the
/// dictionary, falling back to the form's own English.
///
/// Keys: "<Form>.Caption" for the form's title, "<Form>.<Control>" for a control's caption,
/// "<Form>.<Control>.Hint" for its hint, "<Form>.<Control>.Placeholder" for the grey text of an
/// empty edit, "<Form>.<Control>.Column<N>" for column N (from 0) of a
/// grid, "<Form>.<Page>" for a tab or tool box page. <Form> and <Control> are object names.
///
/// What counts as a caption: the text of buttons, labels and actions, the title of group boxes
/// and menus, the window title of tool bars and of the form itself. A control whose English is
/// empty is only translated when the dictionary has its key. Controls inside another form (an
/// object carrying the property "vintraForm") and subtrees marked with the property "vintraSkip"
/// are left alone. Without widgets here, tabs and grid columns are reached through class
/// handlers that the window layer registers.
class TVintraTranslator {
public:
    /// Handler for the parts of a class that properties don't reach (tab texts, column titles).
    using ClassHandler = std::function<void(QObject* object, TVintraTranslator& translator)>;

    explicit TVintraTranslator(QObject* form);

    void SetDictionary(const TVintraDictionary* dictionary) { m_dictionary = dictionary; }
    const TVintraDictionary* Dictionary() const { return m_dictionary; }

    /// Runs once the controls are set, when a dictionary is set.
    std::function<void()> AfterTranslate;

    /// Translates the form; does nothing without a dictionary.
    void Translate();

    /// Keys the last Translate looked for, found missing, and filled with English.
    QStringList MissingKeys() const { return m_missing; }
    QString FormName() const;

    // --- for class handlers ---
    /// "<Form>.<Control>" of a control of this form.
    QString Key(const QObject* control) const;
    /// The dictionary's text of the key, else `english` (noted as missing when not empty).
    QString Text(const QString& key, const QString& english);
    /// The English of one text of an object: what it held the first time it was asked for.
    static QString English(QObject* object, const QByteArray& slot, const QString& current);
    /// Registers a handler for objects of a class and its subclasses (by class name).
    static void RegisterClassHandler(const QByteArray& className, ClassHandler handler);

private:
    void visit(QObject* object, bool root);
    void translateProperty(QObject* object, const char* property, const QString& key);

    QPointer<QObject> m_form;
    const TVintraDictionary* m_dictionary = nullptr;
    QStringList m_missing;
};
