#pragma once

#include "clock.h"
#include "event.h"
#include "section.h"
#include "sequenceitem.h"
#include "viewcontroller.h"

#include <QTest>

#include <memory>

// A window over a small hand-made day, at 10:00 UTC in a UTC zone, so that every box's place
// is easy to tell:
//
//   row 0  World / Harbour  Tide 09:00–10:00 (link), Market 10:00–10:30 (no link),
//                           Storm 10:30–12:00 (empty link)
//   row 1  World / Forest   Hunt 08:00–10:00 (link), Night 10:00–13:00 (link with markup)
//   row 2  Raids / Vault    no occurrences
//   row 3  Raids / Keep     Siege 00:00–00:30 (link), Watch 00:30–12:00 (no link),
//                           Siege 12:00–12:30, Watch 12:30–24:00: the whole day, like the rows
//                           of a real document, so that the timeline is a day wide
class SmallTimetable
{
public:
    static constexpr auto tideLink = u"[&BAAAAA=]";
    static constexpr auto huntLink = u"[&BHUNT0=]";
    static constexpr auto nightLink = u"<b>[&BNIGHT=]</b> & more";
    static constexpr auto siegeLink = u"[&BSIEGE=]";

    explicit SmallTimetable(QSize size = QSize(1000, 600))
        : m_controller(std::make_unique<eventtimer::ViewController>([this] { return sections(); },
                                                                    nullptr, m_clock))
    {
        QWidget *view = m_controller->view();
        view->resize(size);
        m_controller->viewDidLoad();
        view->show();
        m_controller->viewDidAppear();
    }
    SmallTimetable(const SmallTimetable &) = delete;
    SmallTimetable &operator=(const SmallTimetable &) = delete;

    eventtimer::ViewController &controller() { return *m_controller; }
    eventtimer::TimelineWidget &timeline() { return *m_controller->horizontalScrollContent(); }

    // The index of the box that shows an event starting at a time, e.g. "Siege 12:00".
    qsizetype box(const QString &nameAndStart)
    {
        const QList<eventtimer::EventBoxGeometry> &boxes = timeline().boxes();
        for (qsizetype i = 0; i < boxes.size(); ++i)
            if (label(i) == nameAndStart)
                return i;
        return -1;
    }
    QString label(qsizetype box)
    {
        const eventtimer::EventBoxGeometry &geometry = timeline().boxes().at(box);
        return geometry.event().name + u' ' + geometry.startText;
    }

private:
    eventtimer::SectionList sections() const
    {
        using namespace eventtimer;
        const double dayStart = static_cast<double>(
            QDateTime(QDate(2026, 11, 22), QTime(0, 0), QTimeZone::utc()).toSecsSinceEpoch());
        const auto section = [](const char16_t *category, const char16_t *name) {
            auto made = std::make_shared<Section>();
            made->category = QString::fromUtf16(category);
            made->name = QString::fromUtf16(name);
            return made;
        };
        const auto event = [](const std::shared_ptr<Section> &in, const char16_t *name,
                              std::optional<QString> link) {
            auto made = std::make_shared<Event>();
            made->name = QString::fromUtf16(name);
            made->chatLink = std::move(link);
            made->section = in->name;
            in->events.append(made);
            return made;
        };
        const auto occur = [dayStart](const std::shared_ptr<Section> &in,
                                      const std::shared_ptr<Event> &what, int hour, int minute,
                                      qint64 duration) {
            in->sequence.append(std::make_shared<SequenceItem>(
                what, duration, dayStart + (hour * 60 + minute) * 60.0));
        };

        const auto harbour = section(u"World", u"Harbour");
        occur(harbour, event(harbour, u"Tide", QString::fromUtf16(tideLink)), 9, 0, 60);
        occur(harbour, event(harbour, u"Market", std::nullopt), 10, 0, 30);
        occur(harbour, event(harbour, u"Storm", QString()), 10, 30, 90);

        const auto forest = section(u"World", u"Forest");
        occur(forest, event(forest, u"Hunt", QString::fromUtf16(huntLink)), 8, 0, 120);
        occur(forest, event(forest, u"Night", QString::fromUtf16(nightLink)), 10, 0, 180);

        const auto vault = section(u"Raids", u"Vault");

        const auto keep = section(u"Raids", u"Keep");
        const auto siege = event(keep, u"Siege", QString::fromUtf16(siegeLink));
        const auto watch = event(keep, u"Watch", std::nullopt);
        occur(keep, siege, 0, 0, 30);
        occur(keep, watch, 0, 30, 690);
        occur(keep, siege, 12, 0, 30);
        occur(keep, watch, 12, 30, 690);

        return {harbour, forest, vault, keep};
    }

    eventtimer::FixedClock m_clock{QDateTime(QDate(2026, 11, 22), QTime(10, 0), QTimeZone::utc()),
                                   QTimeZone::utc()};
    std::unique_ptr<eventtimer::ViewController> m_controller;
};
