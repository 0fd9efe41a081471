#include "culinary/price_list_import.h"

#include "components/database.h"
#include "components/decimal_text.h"

#include <QFile>
#include <QXmlStreamReader>

namespace PriceListSql {
const char* const UpdatePrice =
    "UPDATE Ingreds \nSET ingredPrice = :ingredPrice \nWHERE ingredId = :ingredId";
}

TPriceListResult ImportPriceList(qm::Database& db, const QString& fileName,
                                 const std::function<void(int ingredId)>& applied) {
    TPriceListResult result;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error = file.errorString();
        return result;
    }
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement ||
            xml.name().compare(QLatin1String("ingredient"), Qt::CaseInsensitive) != 0)
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        QString idText, priceText;
        bool hasId = false, hasPrice = false;
        for (const QXmlStreamAttribute& attribute : attributes) {
            if (attribute.name() == QLatin1String("id")) {
                idText = attribute.value().toString();
                hasId = true;
            } else if (attribute.name() == QLatin1String("price")) {
                priceText = attribute.value().toString();
                hasPrice = true;
            }
        }
        // The price is written in the machine's decimal format, and only in that.
        int id = 0;
        double price = 0;
        if (!hasId || !hasPrice || !qm::ParseInteger(idText, id) || !qm::ParseDecimal(priceText, price))
            continue;
        db.execFormat(PriceListSql::UpdatePrice, {},
                      {{QStringLiteral("ingredPrice"), price}, {QStringLiteral("ingredId"), id}});
        if (db.changes() > 0) { // an unknown id updates nothing
            ++result.applied;
            if (applied)
                applied(id);
        }
    }
    if (xml.hasError())
        result.error = QStringLiteral("%1 (line %2)").arg(xml.errorString()).arg(xml.lineNumber());
    return result;
}
