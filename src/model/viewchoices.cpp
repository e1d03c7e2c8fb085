#include "model/viewchoices.h"

#include "model/event.h"

#include <algorithm>

namespace eventtimer {

bool ViewChoices::shows(const Section &section, const QSet<QString> &marked) const
{
    if (hiddenSections.contains(section.name) || hiddenCategories.contains(section.category))
        return false;
    return !markedOnly || std::any_of(section.events.cbegin(), section.events.cend(),
                                      [&marked](const std::shared_ptr<Event> &event) {
                                          return marked.contains(event->name);
                                      });
}

SectionList ViewChoices::shown(const SectionList &sections, const QSet<QString> &marked) const
{
    SectionList kept;
    std::copy_if(sections.cbegin(), sections.cend(), std::back_inserter(kept),
                 [&](const std::shared_ptr<Section> &section) { return shows(*section, marked); });
    return kept;
}

SectionList ViewChoices::hidden(const SectionList &sections, const QSet<QString> &marked) const
{
    SectionList left;
    std::copy_if(sections.cbegin(), sections.cend(), std::back_inserter(left),
                 [&](const std::shared_ptr<Section> &section) { return !shows(*section, marked); });
    return left;
}

QString ViewChoices::whyNoRows(const SectionList &sections, const QSet<QString> &marked) const
{
    using namespace Qt::StringLiterals;
    if (sections.isEmpty() || !shown(sections, marked).isEmpty())
        return {};
    ViewChoices everything = *this;
    everything.markedOnly = false;
    if (markedOnly && !everything.shown(sections, marked).isEmpty()) {
        const ViewChoices marksAlone{{}, {}, true};
        if (!marksAlone.shown(sections, marked).isEmpty())
            return u"The sections of the marked events are hidden: the preferences (Ctrl+,) show "
                   u"them again, M shows every section."_s;
        return u"No section holds a marked event: M shows every section again."_s;
    }
    return u"Every section is hidden: the preferences (Ctrl+,) show them again."_s;
}

} // namespace eventtimer
