#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace eventtimer {

// The address of an event's wiki page from the settings' template, such as
// "https://wiki.example.org/{page}": the page name percent-encoded in place of {page}. Only
// https addresses with a host are made; a template without {page} or of another scheme, and a
// page name that is empty, give none.
std::optional<QUrl> wikiPageUrl(const QString &urlTemplate, const QString &page);

} // namespace eventtimer
