#pragma once

#include "model/section.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QUrl>

#include <optional>

namespace eventtimer {

// Why a load brought no sections: in plain words, and the address the document was asked of.
struct LoadProblem
{
    QString reason;
    QUrl address;

    // The reason, then the address on a line of its own.
    QString text() const { return reason + u'\n' + address.toDisplayString(); }
};

// One load of the event document, handed over whole: nothing about it is asked afterwards.
struct DayData
{
    // Where the sections come from.
    enum class Origin
    {
        // Nothing usable: no copy, or one that does not decode.
        None,
        // Downloaded just now.
        Downloaded,
        // The copy in the cache folder, less than a week old (or without a date).
        Cache,
        // The copy in the cache folder, kept although the download that should have replaced
        // it failed: the timetable's owner decides whether it is shown.
        Kept,
    };

    // The local day the sections are for.
    QDate day;
    SectionList sections;
    // The same document's sections for the day after: the axis goes on into its first hours.
    SectionList followingDay;
    // Set whenever the load did not go as it should: a failed download (the sections are then
    // the kept copy's, if any), a document that does not decode or holds no sections.
    std::optional<LoadProblem> problem;
    Origin origin = Origin::None;
    // When the document the sections come from was downloaded; invalid when not known.
    QDateTime downloadedAt;
};

} // namespace eventtimer
