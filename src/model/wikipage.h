#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace eventtimer {

// The address of an event's wiki page. A link that is a whole https address already is taken
// as it is. Any other is a page name, put percent-encoded in place of {page} in the settings'
// template, such as "https://wiki.example.org/{page}". Only https addresses with a host are
// made; a template without {page} or of another scheme, and a page name that is empty, give
// none.
std::optional<QUrl> wikiPageUrl(const QString &urlTemplate, const QString &link);

} // namespace eventtimer
