#include "components/vintra_dictionary.h"

#include <QFile>
#include <QXmlStreamReader>

void TVintraDictionary::SetFileName(const QString& path) {
    m_fileName = path;
    Load();
}

QString TVintraDictionary::GetText(const QString& key, const QString& defaultText) const {
    return m_texts.value(key, defaultText);
}

void TVintraDictionary::Load() {
    m_texts.clear();
    m_language.clear();
    m_error.clear();
    QFile file(m_fileName);
    if (m_fileName.isEmpty() || !file.open(QIODevice::ReadOnly))
        return; // no language file: callers fall back to their defaults

    QXmlStreamReader xml(&file);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("dictionary")) {
        m_error = xml.hasError() ? xml.errorString() : QStringLiteral("the root element is not <dictionary>");
        return;
    }
    m_language = xml.attributes().value(QLatin1String("language")).toString();
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("entry")) {
            xml.skipCurrentElement();
            continue;
        }
        const QString key = xml.attributes().value(QLatin1String("key")).toString();
        const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
        if (xml.hasError())
            break; // an entry cut short by the fault is not taken
        if (!key.isEmpty())
            m_texts.insert(key, text); // a later entry of the same key wins
    }
    if (xml.hasError())
        m_error = QStringLiteral("%1 (line %2)").arg(xml.errorString()).arg(xml.lineNumber());
}
