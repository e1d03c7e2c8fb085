#include "model/wikipage.h"

using namespace Qt::StringLiterals;

namespace eventtimer {

std::optional<QUrl> wikiPageUrl(const QString &urlTemplate, const QString &link)
{
    const QString placeholder = u"{page}"_s;
    QString address = link.trimmed();
    if (!address.startsWith(u"https://"_s, Qt::CaseInsensitive)) {
        if (address.isEmpty() || !urlTemplate.contains(placeholder))
            return std::nullopt;
        // Every character that means something in an address is encoded: the name stays one
        // piece.
        address = urlTemplate;
        address.replace(placeholder, QString::fromLatin1(QUrl::toPercentEncoding(link)));
    }
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != u"https"_s || url.host().isEmpty())
        return std::nullopt;
    return url;
}

} // namespace eventtimer
