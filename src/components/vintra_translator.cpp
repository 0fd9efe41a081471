#include "components/vintra_translator.h"

#include "components/vintra_dictionary.h"

#include <QHash>
#include <QMetaObject>
#include <QVariant>

namespace {

QHash<QByteArray, TVintraTranslator::ClassHandler>& handlers() {
    static QHash<QByteArray, TVintraTranslator::ClassHandler> table;
    return table;
}

bool inherits(const QObject* object, const char* className) {
    for (const QMetaObject* meta = object->metaObject(); meta; meta = meta->superClass())
        if (qstrcmp(meta->className(), className) == 0)
            return true;
    return false;
}

/// The property that holds a control's caption, nullptr when the control has none. Edits are not
/// in the list: their text is the user's.
const char* captionProperty(const QObject* object) {
    static const struct {
        const char* className;
        const char* property;
    } table[] = {
        {"QAbstractButton", "text"},    {"QLabel", "text"}, {"QAction", "text"},
        {"QGroupBox", "title"},         {"QMenu", "title"}, {"QToolBar", "windowTitle"},
        {"QDockWidget", "windowTitle"},
    };
    for (const auto& entry : table)
        if (inherits(object, entry.className))
            return entry.property;
    return nullptr;
}

} // namespace

TVintraTranslator::TVintraTranslator(QObject* form) : m_form(form) {
    if (form)
        form->setProperty("vintraForm", true);
}

QString TVintraTranslator::FormName() const {
    return m_form ? m_form->objectName() : QString();
}

QString TVintraTranslator::Key(const QObject* control) const {
    return FormName() + QLatin1Char('.') + control->objectName();
}

void TVintraTranslator::Translate() {
    if (!m_dictionary || !m_form)
        return;
    m_missing.clear();
    visit(m_form, true);
    if (AfterTranslate)
        AfterTranslate();
}

QString TVintraTranslator::Text(const QString& key, const QString& english) {
    if (m_dictionary->contains(key))
        return m_dictionary->GetText(key, english);
    if (!english.isEmpty())
        m_missing.append(key);
    return english;
}

QString TVintraTranslator::English(QObject* object, const QByteArray& slot, const QString& current) {
    const QByteArray name = "vintraEnglish_" + slot;
    const QVariant kept = object->property(name.constData());
    if (kept.isValid())
        return kept.toString();
    object->setProperty(name.constData(), current);
    return current;
}

void TVintraTranslator::RegisterClassHandler(const QByteArray& className, ClassHandler handler) {
    handlers().insert(className, std::move(handler));
}

void TVintraTranslator::translateProperty(QObject* object, const char* property, const QString& key) {
    const QString english = English(object, property, object->property(property).toString());
    if (english.isEmpty() && !m_dictionary->contains(key))
        return;
    object->setProperty(property, Text(key, english));
}

void TVintraTranslator::visit(QObject* object, bool root) {
    if (!root && (object->property("vintraSkip").toBool() || object->property("vintraForm").isValid()))
        return;
    const QString name = object->objectName();
    if (!name.isEmpty() && !name.startsWith(QLatin1String("qt_"))) {
        const QString key = root ? FormName() + QStringLiteral(".Caption") : Key(object);
        if (const char* property = root ? "windowTitle" : captionProperty(object))
            translateProperty(object, property, key);
        const QString hintKey = key + QStringLiteral(".Hint");
        if (inherits(object, "QAction")) {
            // An action's hint is its status tip; the tool tip follows it.
            const QString english = English(object, "statusTip", object->property("statusTip").toString());
            if (!english.isEmpty() || m_dictionary->contains(hintKey)) {
                const QString hint = Text(hintKey, english);
                object->setProperty("statusTip", hint);
                object->setProperty("toolTip", hint);
            }
        } else if (object->property("toolTip").isValid()) {
            translateProperty(object, "toolTip", hintKey);
        }
        if (object->property("placeholderText").isValid())
            translateProperty(object, "placeholderText", key + QStringLiteral(".Placeholder"));
        for (const QMetaObject* meta = object->metaObject(); meta; meta = meta->superClass()) {
            const auto handler = handlers().constFind(QByteArray(meta->className()));
            if (handler != handlers().cend()) {
                (*handler)(object, *this);
                break;
            }
        }
    }
    const QObjectList children = object->children();
    for (QObject* child : children)
        visit(child, false);
}
