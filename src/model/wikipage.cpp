#include "model/wikipage.h"

using namespace Qt::StringLiterals;

namespace eventtimer {

std::optional<QUrl> wikiPageUrl(const QString &urlTemplate, const QString &page)
{
    const QString placeholder = u"{page}"_s;
    if (page.trimmed().isEmpty() || !urlTemplate.contains(placeholder))
        return std::nullopt;
    // Every character that means something in an address is encoded: the name stays one piece.
    QString address = urlTemplate;
    address.replace(placeholder, QString::fromLatin1(QUrl::toPercentEncoding(page)));
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != u"https"_s || url.host().isEmpty())
        return std::nullopt;
    return url;
}

} // namespace eventtimer
