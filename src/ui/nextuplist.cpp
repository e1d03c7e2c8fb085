#include "ui/nextuplist.h"

#include "model/clock.h"
#include "model/event.h"
#include "model/reminderchoices.h"
#include "model/soontext.h"
#include "timetable/boxtexts.h"
#include "ui/glyphs.h"
#include "ui/plaintooltip.h"

#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

constexpr int boxRole = Qt::UserRole;
constexpr int linkRole = Qt::UserRole + 1;

// The copy column: a button with the copy sign on the rows that have a chat link.
class CopyButtonDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, QModelIndex());
        if (index.data(linkRole).isNull())
            return;
        // As a box's copy button looks, light on any theme.
        const int side = std::min(option.rect.height(), option.rect.width()) - 2;
        QRectF button(0, 0, side, side);
        button.moveCenter(QRectF(option.rect).center());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(QColor(0, 0, 0, 120), 1.0));
        painter->setBrush(QColor(255, 255, 255, 220));
        painter->drawRoundedRect(button.adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
        drawCopyGlyph(*painter, button);
        painter->restore();
    }
};

} // namespace

NextUpList::NextUpList(Clock &clock, QWidget *parent)
    : QTreeWidget(parent)
    , m_clock(clock)
{
    setAccessibleName(u"Next up"_s);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setHeaderLabels({u"Start"_s, u"In"_s, u"Event"_s, u"Section"_s, QString()});
    headerItem()->setData(Copy, Qt::AccessibleTextRole, u"Copy"_s);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(Name, QHeaderView::Stretch);
    header()->setSectionResizeMode(Copy, QHeaderView::Fixed);
    setItemDelegateForColumn(Copy, new CopyButtonDelegate(this));
    const int side = fontMetrics().height();
    setIconSize(QSize(2 * side, side));
    header()->resizeSection(Copy, side + 12);
    connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem *item) { copy(item); });
    connect(this, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem *item, int column) {
        if (column == Copy)
            copy(item);
    });
}

void NextUpList::setDay(const QList<EventBoxGeometry> &boxes, const SectionList &sections)
{
    m_boxes = boxes;
    m_sections = sections;
    m_icons.clear();
    refresh();
}

void NextUpList::setChoices(ReminderChoices *choices)
{
    m_choices = choices;
    if (choices)
        connect(choices, &ReminderChoices::changed, this, &NextUpList::refresh);
}

void NextUpList::setMarkedOnly(bool markedOnly)
{
    m_markedOnly = markedOnly;
    refresh();
}

void NextUpList::refresh()
{
    if (!isVisible())
        return; // made when it shows
    const qsizetype currentBox = currentItem() ? boxOf(currentItem()) : -1;
    const QSet<QString> marked = m_choices ? m_choices->markedSet() : QSet<QString>();
    const QList<NextUpRow> rows =
        nextUp(m_boxes, m_sections, m_clock.now(), m_markedOnly ? &marked : nullptr);
    setUpdatesEnabled(false);
    clear();
    QList<QTreeWidgetItem *> items;
    items.reserve(rows.size());
    QTreeWidgetItem *current = nullptr;
    for (const NextUpRow &row : rows) {
        const EventBoxGeometry &box = m_boxes.at(row.box);
        const Event &event = box.event();
        const bool isMarked = marked.contains(event.name);
        auto *item = new QTreeWidgetItem({box.startText, soonText(row.secondsAhead), event.name,
                                          event.section.value_or(QString()), QString()});
        item->setData(Start, boxRole, row.box);
        item->setToolTip(Name, plainToolTip(boxtexts::details(box)));
        item->setData(Name, Qt::AccessibleDescriptionRole, boxtexts::description(box, isMarked));
        item->setIcon(Name, iconFor(event, isMarked));
        if (event.chatLink) {
            item->setData(Copy, linkRole, *event.chatLink);
            item->setData(Copy, Qt::AccessibleTextRole, u"Copy chat link"_s);
            item->setToolTip(Copy, u"Copy chat link"_s);
        }
        if (row.box == currentBox)
            current = item;
        items.append(item);
    }
    addTopLevelItems(items);
    if (current)
        setCurrentItem(current);
    else if (!items.isEmpty())
        setCurrentItem(items.first(), 0, QItemSelectionModel::NoUpdate);
    setUpdatesEnabled(true);
    // The icons come after the frame, as on the axis.
    if (m_iconsAwaited)
        QMetaObject::invokeMethod(this, &NextUpList::showIcons, Qt::QueuedConnection);
    followMinute();
}

void NextUpList::showIcons()
{
    if (!std::exchange(m_iconsAwaited, false))
        return;
    for (const EventBoxGeometry &box : std::as_const(m_boxes))
        if (box.event().icon)
            box.event().icon->image();
    refresh();
}

void NextUpList::followMinute()
{
    // How soon each event starts changes with the clock's minute, which the timetable's own
    // tick does not keep to: "in 3 min" turns "in 2 min" as the minute does.
    if (std::exchange(m_minuteFollowed, true))
        return;
    const qint64 intoMinute = m_clock.now().toMSecsSinceEpoch() % 60000;
    m_clock.callAfter(std::chrono::milliseconds(60000 - intoMinute), this, [this] {
        m_minuteFollowed = false;
        refresh();
    });
}

QSize NextUpList::sizeHint() const
{
    // Room for a start, a countdown, a name and a section of common lengths, and the button.
    const int letter = fontMetrics().horizontalAdvance(u'x');
    return {letter * 64 + iconSize().width() + header()->sectionSize(Copy) + 24,
            QTreeWidget::sizeHint().height()};
}

qsizetype NextUpList::boxOf(const QTreeWidgetItem *item) const
{
    return item->data(Start, boxRole).value<qsizetype>();
}

void NextUpList::showEvent(QShowEvent *event)
{
    QTreeWidget::showEvent(event);
    refresh();
}

QIcon NextUpList::iconFor(const Event &event, bool marked)
{
    const auto key = std::pair(&event, marked);
    if (const auto found = m_icons.constFind(key); found != m_icons.cend())
        return *found;
    // The bell where the event is marked, then the event's own icon, side by side.
    const bool onDark = palette().base().color().lightness() < 128;
    const QIcon icon =
        glyphIcon(iconSize(), devicePixelRatioF(), [&](QPainter &painter, const QRectF &all) {
            const QRectF left(all.topLeft(), QSizeF(all.height(), all.height()));
            if (marked)
                drawBell(painter, left.adjusted(2, 2, -2, -2), onDark);
            if (event.icon && !event.icon->isDecoded())
                m_iconsAwaited = true;
            if (!event.icon || !event.icon->isDecoded() || event.icon->image().isNull())
                return;
            const QImage &image = event.icon->image();
            QRectF fitted(QPointF(), QSizeF(image.size()).scaled(left.size(), Qt::KeepAspectRatio));
            fitted.moveCenter(left.center() + QPointF(all.height(), 0));
            painter.drawImage(fitted, image);
        });
    if (!event.icon || event.icon->isDecoded())
        m_icons.insert(key, icon);
    return icon;
}

void NextUpList::copy(QTreeWidgetItem *item)
{
    const QVariant link = item ? item->data(Copy, linkRole) : QVariant();
    if (!link.isNull())
        Q_EMIT copyRequested(link.toString());
}

} // namespace eventtimer
