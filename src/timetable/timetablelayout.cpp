#include "timetable/timetablelayout.h"

#include "model/shownstart.h"
#include "timetable/boxtexts.h"

#include <QHash>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace eventtimer {

using C = LayoutConstants;

QRectF CategoryBoxGeometry::rect(double columnWidth) const
{
    return QRectF(C::boxMargin, top, columnWidth - 2 * C::categoryDistance, bottom - top);
}

QRectF SectionLabelGeometry::rect(double columnWidth) const
{
    // Only the width and top are fixed by the rules; the label sits boxMargin inside its box.
    const double boxWidth = columnWidth - 2 * C::categoryDistance;
    return QRectF(C::boxMargin + C::boxMargin, top, boxWidth - 2 * C::boxMargin, height);
}

QRectF EventBoxGeometry::nameRect(const QRectF &box, double textHeight)
{
    return QRectF(box.left() + C::boxMargin, box.top() + C::eventDistance,
                  box.width() - 2 * C::boxMargin, textHeight);
}

QRectF EventBoxGeometry::timeRect(const QRectF &box, double textWidth, double textHeight)
{
    return QRectF(box.left() + C::boxMargin, box.bottom() - C::eventDistance - textHeight,
                  textWidth, textHeight);
}

QRectF EventBoxGeometry::iconRect(const QRectF &box, QSizeF iconSize, bool copyButton,
                                  double timeWidth)
{
    // The icon's frame is as high as the box less its margins and as wide as the icon; the
    // picture is scaled down (never up) to fit it, keeping its proportions.
    const double frameHeight = box.height() - 2 * C::boxMargin;
    if (iconSize.isEmpty() || frameHeight <= 0)
        return {};
    const QSizeF drawn = iconSize * std::min(1.0, frameHeight / iconSize.height());
    const double right =
        box.right() -
        (copyButton ? C::copyButtonInset + C::copyButtonWidth + C::eventDistance : C::boxMargin);
    const QRectF icon(right - drawn.width(), box.center().y() - drawn.height() / 2, drawn.width(),
                      drawn.height());
    if (icon.left() < box.left() + C::boxMargin + timeWidth + C::eventDistance)
        return {};
    return icon;
}

QRectF EventBoxGeometry::copyButtonRect(const QRectF &box, QSizeF buttonSize)
{
    return QRectF(box.right() - C::copyButtonInset - buttonSize.width(),
                  box.bottom() - C::copyButtonInset - buttonSize.height(), buttonSize.width(),
                  buttonSize.height());
}

double TimetableGeometry::axisWidth() const
{
    double width = contentWidth;
    if (followingDate.isValid())
        width = std::max(width, static_cast<double>((TimetableLayout::dayEndMinute +
                                                     TimetableLayout::followingMinutes) *
                                                    C::minutesMultiplier));
    for (const EventBoxGeometry &box : eventBoxes)
        width = std::max(width, box.rect.right() + C::eventDistance);
    return width;
}

TimetableLayout::TimetableLayout(QTimeZone zone, const QDateTime &now, LabelHeight labelHeight)
    : m_zone(std::move(zone))
    , m_builtOffset(m_zone.offsetFromUtc(now))
    , m_labelHeight(std::move(labelHeight))
    , m_minutes(m_zone)
{}

const TimetableLayout::ShownStart &TimetableLayout::shownStartOf(const SequenceItem &item)
{
    // The shown minute follows from the start's whole second alone.
    const auto second = static_cast<qint64>(std::floor(item.time));
    auto it = m_shownStarts.find(second);
    if (it == m_shownStarts.end()) {
        const QTime shown = shownStart(item.time, m_zone, m_builtOffset);
        const qint64 minute = shown.hour() * 60 + shown.minute();
        it = m_shownStarts.insert(second, {minute, boxtexts::clock(minute)});
    }
    return it.value();
}

SectionList TimetableLayout::groupedByCategory(const SectionList &sections)
{
    QHash<QString, qsizetype> order;
    for (const auto &section : sections)
        order.insert(section->category, order.value(section->category, order.size()));
    SectionList grouped = sections;
    std::stable_sort(grouped.begin(), grouped.end(), [&](const auto &a, const auto &b) {
        return order.value(a->category) < order.value(b->category);
    });
    return grouped;
}

TimetableGeometry TimetableLayout::build(const SectionList &sections, const QTimeZone &zone,
                                         const QDateTime &now, const LabelHeight &labelHeight,
                                         const SectionList &followingDay)
{
    TimetableLayout layout(zone, now, labelHeight);
    // The next day's sections by category and name, each taken by the first of today's that
    // matches it.
    QHash<QString, QList<const Section *>> following;
    for (const auto &section : followingDay)
        following[section->category + u'\n' + section->name].append(section.get());
    LayoutCursor cursor;
    for (const auto &section : groupedByCategory(sections)) {
        QList<const Section *> &same = following[section->category + u'\n' + section->name];
        layout.layoutSection(*section, cursor, same.isEmpty() ? nullptr : same.takeFirst());
    }
    layout.closeLastCategory(cursor);
    TimetableGeometry geometry = layout.takeGeometry();
    geometry.contentHeight = cursor.contentHeight;
    geometry.contentWidth = cursor.contentWidth;
    if (!followingDay.isEmpty())
        geometry.followingDate = now.toTimeZone(zone).date().addDays(1);
    return geometry;
}

void TimetableLayout::layoutSection(const Section &section, LayoutCursor &cursor,
                                    const Section *following)
{
    // A new category opens a box below the previous one, which is closed under its last label.
    if (!m_categories.contains(section.category)) {
        const std::optional<qsizetype> previous = cursor.categoryBox;
        CategoryBoxGeometry box{section.category, 0, 0};
        if (previous) {
            CategoryBoxGeometry &closed = m_geometry.categoryBoxes[*previous];
            closed.bottom =
                m_geometry.sectionLabels.at(*cursor.sectionLabel).bottom() + C::sectionDistance;
            box.top = closed.bottom + C::categoryDistance;
        } else {
            box.top = C::categoryDistance;
        }
        box.bottom = box.top;
        m_geometry.categoryBoxes.append(box);
        cursor.categoryBox = m_geometry.categoryBoxes.size() - 1;
        m_categories.insert(section.category, *cursor.categoryBox);
        cursor.contentHeight += C::categoryDistance + C::boxTitleHeight + C::sectionDistance;
        cursor.sectionLabel.reset();
    }

    SectionLabelGeometry label;
    label.text = section.name;
    label.categoryBox = m_categories.value(section.category);
    if (cursor.sectionLabel)
        label.top = m_geometry.sectionLabels.at(*cursor.sectionLabel).bottom() + C::sectionDistance;
    else
        label.top = m_geometry.categoryBoxes.at(*cursor.categoryBox).top + C::sectionDistance +
                    C::boxTitleHeight;
    label.height = m_labelHeight(section.name);
    m_geometry.sectionLabels.append(label);
    cursor.sectionLabel = m_geometry.sectionLabels.size() - 1;

    RowState row;
    row.rowTop = cursor.contentHeight - C::sectionDistance - C::categoryDistance;
    cursor.contentHeight += label.height + C::sectionDistance;

    const qsizetype firstBox = m_geometry.eventBoxes.size();
    for (const auto &item : section.sequence)
        addEventBox(item, *cursor.sectionLabel, row);
    cursor.contentWidth = std::max(cursor.contentWidth, row.rowWidth);
    if (following) {
        double rowEnd = 0;
        for (qsizetype i = firstBox; i < m_geometry.eventBoxes.size(); ++i)
            rowEnd = std::max(rowEnd, m_geometry.eventBoxes.at(i).rect.right() + C::eventDistance);
        addFollowingBoxes(*following, *cursor.sectionLabel, row, rowEnd);
    }
}

void TimetableLayout::addFollowingBoxes(const Section &following, qsizetype sectionLabel,
                                        const RowState &row, double rowEnd)
{
    RowState scratch = row;
    for (const auto &item : following.sequence) {
        const qint64 minutes = m_minutes.of(*item);
        const double x = static_cast<double>((dayEndMinute + minutes) * C::minutesMultiplier);
        if (minutes >= followingMinutes)
            break;
        if (x < rowEnd)
            continue;
        addEventBox(item, sectionLabel, scratch);
        EventBoxGeometry &box = m_geometry.eventBoxes.last();
        box.rect.moveLeft(x);
        box.tomorrow = true;
    }
}

void TimetableLayout::addEventBox(const std::shared_ptr<SequenceItem> &item, qsizetype sectionLabel,
                                  RowState &row)
{
    const qint64 minutes = m_minutes.of(*item);
    const double scaled = static_cast<double>(item->duration * C::minutesMultiplier);
    const double h = m_geometry.sectionLabels.at(sectionLabel).height;

    EventBoxGeometry box;
    box.item = item;
    box.minutes = minutes;
    const ShownStart &shown = shownStartOf(*item);
    box.shownMinute = shown.minute;
    box.startText = shown.text;
    box.row = sectionLabel;
    box.rect = QRectF(static_cast<double>(minutes * C::minutesMultiplier),
                      row.rowTop + C::sectionDistance * 0.5 + C::boxMargin,
                      scaled - C::eventDistance, h + C::sectionDistance - C::boxMargin);
    m_geometry.eventBoxes.append(box);
    row.rowWidth += scaled;
}

void TimetableLayout::closeLastCategory(LayoutCursor &cursor)
{
    if (cursor.categoryBox && cursor.sectionLabel)
        m_geometry.categoryBoxes[*cursor.categoryBox].bottom =
            m_geometry.sectionLabels.at(*cursor.sectionLabel).bottom() + C::sectionDistance;
}

} // namespace eventtimer
