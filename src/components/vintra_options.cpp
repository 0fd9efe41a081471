#include "components/vintra_options.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStringList>
#include <stdexcept>

namespace {

QVariant normalised(int type, const QVariant& value) {
    switch (type) {
    case TVintraOption::Boolean:
        return value.toBool();
    case TVintraOption::String:
        return value.toString();
    default:
        return value.toInt();
    }
}

// QSettings hands back an unquoted value with a comma as a list; the option is one text.
QString storedText(const QVariant& stored) {
    if (stored.typeId() == QMetaType::QStringList)
        return stored.toStringList().join(QStringLiteral(", "));
    return stored.toString();
}

// Reads a stored value as the declared type; an invalid result means "keep what is there".
QVariant readAs(int type, const QVariant& stored) {
    if (type == TVintraOption::String)
        return storedText(stored);
    const QString text = storedText(stored).trimmed();
    if (type == TVintraOption::Boolean) {
        if (text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || text == QLatin1String("1"))
            return true;
        if (text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0 || text == QLatin1String("0"))
            return false;
        return {};
    }
    bool ok = false;
    const int number = text.toInt(&ok);
    return ok ? QVariant(number) : QVariant();
}

} // namespace

TVintraOption::TVintraOption(const QString& optionName, int optionType, const QVariant& optionDefault)
    : name(optionName), type(optionType), defaultValue(normalised(optionType, optionDefault)),
      value(defaultValue) {}

bool TVintraOption::GetAsBoolean() const {
    return value.toBool();
}

int TVintraOption::GetAsInteger() const {
    return value.toInt();
}

QString TVintraOption::GetAsString() const {
    return value.toString();
}

void TVintraOption::SetAsBoolean(bool newValue) {
    value = newValue;
}

void TVintraOption::SetAsInteger(int newValue) {
    value = newValue;
}

void TVintraOption::SetAsString(const QString& newValue) {
    value = newValue;
}

void TVintraOption::RestoreDefaults() {
    value = defaultValue;
}

void TVintraOptions::Declare(const QString& name, int type, const QVariant& defaultValue) {
    if (m_index.contains(name))
        throw std::invalid_argument("option declared twice: " + name.toStdString());
    m_index.insert(name, m_options.size());
    m_options.emplace_back(name, type, defaultValue);
}

TVintraOption& TVintraOptions::GetOption(const QString& name) {
    const auto found = m_index.constFind(name);
    if (found == m_index.constEnd())
        throw std::out_of_range("unknown option: " + name.toStdString());
    return m_options[*found];
}

const TVintraOption& TVintraOptions::GetOption(const QString& name) const {
    return const_cast<TVintraOptions*>(this)->GetOption(name);
}

bool TVintraOptions::has(const QString& name) const {
    return m_index.contains(name);
}

bool TVintraOptions::Load() {
    for (TVintraOption& option : m_options)
        option.RestoreDefaults();
    if (m_fileName.isEmpty() || !QFileInfo::exists(m_fileName))
        return true; // nothing stored yet
    QSettings settings(m_fileName, QSettings::IniFormat);
    if (settings.status() != QSettings::NoError)
        return false;
    settings.beginGroup(QLatin1String(IniGroup));
    for (TVintraOption& option : m_options) {
        if (!settings.contains(option.name))
            continue;
        const QVariant read = readAs(option.type, settings.value(option.name));
        if (read.isValid())
            option.value = read;
    }
    return true;
}

bool TVintraOptions::Store() {
    if (m_fileName.isEmpty())
        return false;
    QDir().mkpath(QFileInfo(m_fileName).absolutePath());
    QSettings settings(m_fileName, QSettings::IniFormat);
    settings.beginGroup(QLatin1String(IniGroup));
    for (const TVintraOption& option : m_options)
        settings.setValue(option.name, normalised(option.type, option.value));
    settings.endGroup();
    settings.sync();
    return settings.status() == QSettings::NoError;
}
