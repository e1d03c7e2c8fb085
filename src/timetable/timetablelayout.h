#pragma once

#include "model/section.h"
#include "model/sequencetime.h"
#include "timetable/layoutconstants.h"

#include <QDateTime>
#include <QRectF>
#include <QTimeZone>

#include <functional>
#include <optional>

namespace eventtimer {

// A titled box framing the labels of one category, in the section column's coordinates. Its
// left and width follow the column's width.
struct CategoryBoxGeometry
{
    QString title;
    double top = 0;
    double bottom = 0; // set when the box is closed

    QRectF rect(double columnWidth) const;
};

// The right-aligned name of one section, inside its category box.
struct SectionLabelGeometry
{
    QString text;
    qsizetype categoryBox = 0;
    double top = 0;
    double height = 0;

    double bottom() const { return top + height; }
    QRectF rect(double columnWidth) const;
};

// One occurrence on the time axis, in the timeline's coordinates.
struct EventBoxGeometry
{
    std::shared_ptr<SequenceItem> item;
    QRectF rect;
    qint64 minutes = 0;
    // The start it shows (shownStart) in minutes from 00:00, 1280 for 21:20, and as text.
    qint64 shownMinute = 0;
    QString startText;
    qsizetype row = 0;
    // One of the next day's first occurrences, after the day's end.
    bool tomorrow = false;

    const Event &event() const { return *item->event; }

    // Where the parts of a box go: the name along the top, the start time at the bottom left,
    // the icon at the right, the copy button in the bottom-right corner; nothing covers a text.
    static QRectF nameRect(const QRectF &box, double textHeight);
    static QRectF timeRect(const QRectF &box, double textWidth, double textHeight);
    // The icon stands at the box's right end, before the copy button, as high as the box
    // less its margins (never enlarged); none (empty) where it would reach over the start time.
    // The name ends before it.
    static QRectF iconRect(const QRectF &box, QSizeF iconSize, bool copyButton, double timeWidth);
    static QRectF copyButtonRect(const QRectF &box, QSizeF buttonSize);
};

// The running state carried from one section to the next while the timetable is laid out.
struct LayoutCursor
{
    std::optional<qsizetype> categoryBox;
    std::optional<qsizetype> sectionLabel;
    double contentHeight = LayoutConstants::categoryDistance;
    double contentWidth = 0.0;
};

// The per-section values that the event boxes of one row update. (The row's chat-link
// registrations are the model's: see globalSequence.)
struct RowState
{
    double rowTop = 0;
    double rowWidth = 0;
};

struct TimetableGeometry
{
    QList<CategoryBoxGeometry> categoryBoxes;
    QList<SectionLabelGeometry> sectionLabels;
    QList<EventBoxGeometry> eventBoxes;
    double contentHeight = LayoutConstants::categoryDistance;
    double contentWidth = 0;
    // The next day, when its first hours continue the axis after the day's end.
    QDate followingDate;

    // How wide the time axis must be to show every box: the content width counts only the
    // rows' durations, so a row that starts with a pause can reach further. With the next
    // day's first hours, at least to their end.
    double axisWidth() const;
};

// Lays the timetable out without any window: category boxes stacked in the section column,
// one label per section, one box per occurrence on the time axis. Every number follows from
// the layout constants and the labels' height.
class TimetableLayout
{
public:
    using LabelHeight = std::function<double(const QString &)>;

    // now and zone give each box its start text; labelHeight is the natural height of a
    // section label showing the given name.
    TimetableLayout(QTimeZone zone, const QDateTime &now, LabelHeight labelHeight);

    // Sections of one category together, at the place of the category's first section;
    // otherwise in document order. Only the display is grouped: the chat-link occurrences
    // follow the list order.
    static SectionList groupedByCategory(const SectionList &sections);

    // The minute the day ends at on the axis, and how much of the next day follows it.
    static constexpr qint64 dayEndMinute = 1440;
    static constexpr qint64 followingMinutes = 360;

    // The whole timetable: groups, lays out every section, closes the last box. With the
    // sections of the next day (the same document from the next local midnight) the axis goes
    // on after the day's end with their occurrences that start in its first hours, each in
    // its section's row; the day's own boxes stay as they are.
    static TimetableGeometry build(const SectionList &sections, const QTimeZone &zone,
                                   const QDateTime &now, const LabelHeight &labelHeight,
                                   const SectionList &followingDay = {});

    void layoutSection(const Section &section, LayoutCursor &cursor,
                       const Section *following = nullptr);
    void addEventBox(const std::shared_ptr<SequenceItem> &item, qsizetype sectionLabel,
                     RowState &row);
    // The next day's boxes of a row, after the day's end: those that start in its first hours
    // and not under the row's last box of the day, which may run on past midnight.
    void addFollowingBoxes(const Section &following, qsizetype sectionLabel, const RowState &row,
                           double rowEnd);
    // Ties the last category box's bottom below its last label.
    void closeLastCategory(LayoutCursor &cursor);

    const TimetableGeometry &geometry() const { return m_geometry; }
    TimetableGeometry takeGeometry() { return std::move(m_geometry); }

private:
    struct ShownStart
    {
        qint64 minute = 0;
        QString text;
    };

    // shownStart once per start, not a time-zone lookup for every box: a day's occurrences
    // share a few hundred start minutes.
    const ShownStart &shownStartOf(const SequenceItem &item);

    QTimeZone m_zone;
    // The zone's offset from UTC when the timetable is built, which every box's time takes.
    int m_builtOffset;
    LabelHeight m_labelHeight;
    TimetableGeometry m_geometry;
    QHash<QString, qsizetype> m_categories;
    DayMinutes m_minutes;
    QHash<qint64, ShownStart> m_shownStarts;
};

} // namespace eventtimer
