#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

/// The texts of one language, read from an XML language file:
/// <dictionary language="English"><entry key="QuestionQuit">Do you really want to quit?</entry>...
/// A missing file gives an empty dictionary; a broken one keeps the entries read before the fault.
class TVintraDictionary {
public:
    /// Sets the file and loads it at once, replacing what was loaded before.
    void SetFileName(const QString& path);
    QString FileName() const { return m_fileName; }

    /// The text of the key, or defaultText when the file has no such entry.
    QString GetText(const QString& key, const QString& defaultText) const;
    bool contains(const QString& key) const { return m_texts.contains(key); }
    int count() const { return m_texts.size(); }
    QStringList keys() const { return m_texts.keys(); }

    /// The language attribute of the file's root element.
    QString Language() const { return m_language; }
    /// Why the file stopped being read, with its line; empty when it was read whole or is missing.
    QString ErrorString() const { return m_error; }

private:
    void Load();

    QString m_fileName;
    QString m_language;
    QString m_error;
    QHash<QString, QString> m_texts;
};
