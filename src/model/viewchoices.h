#pragma once

#include "model/section.h"

#include <QSet>
#include <QStringList>

namespace eventtimer {

// What the player chose to see of the day: sections and categories hidden by their names,
// only the sections that hold a marked event, and the Next up list beside the axis. Only a
// view: the shared suite, the reminders and the checker always take every section. A name that
// no longer exists is kept and hides nothing, so a section back next week is hidden again.
struct ViewChoices
{
    QStringList hiddenSections;
    QStringList hiddenCategories;
    bool markedOnly = false;
    bool nextUp = false;

    friend bool operator==(const ViewChoices &, const ViewChoices &) = default;

    // Whether the timetable gives the section a row, marked being the names of the marked
    // events.
    bool shows(const Section &section, const QSet<QString> &marked) const;
    // The sections that get a row, in their order; and those that do not.
    SectionList shown(const SectionList &sections, const QSet<QString> &marked) const;
    SectionList hidden(const SectionList &sections, const QSet<QString> &marked) const;
    // Why a day with sections gives none a row, in the player's words: the marks, or the hidden
    // names; empty while some section has one.
    QString whyNoRows(const SectionList &sections, const QSet<QString> &marked) const;
};

} // namespace eventtimer
