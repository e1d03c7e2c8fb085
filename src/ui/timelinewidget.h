#pragma once

#include "timetablelayout.h"

#include <QCache>
#include <QHash>
#include <QPixmap>
#include <QStaticText>
#include <QWidget>

#include <optional>

namespace eventtimer {

// The time axis: every event box of the day painted by one widget, which paints only the part
// that is exposed. Boxes are records, not widgets: a day of thousands of occurrences costs no
// more to build than its arithmetic. The current-time marker is painted first, under the
// boxes; copy buttons are hit-tested, with a pointing cursor and the chat link as tooltip.
class TimelineWidget : public QWidget
{
    Q_OBJECT

public:
    static constexpr QSizeF copyButtonSize{20.0, 18.0};

    explicit TimelineWidget(QWidget *parent = nullptr);

    void setBoxes(QList<EventBoxGeometry> boxes);
    const QList<EventBoxGeometry> &boxes() const { return m_boxes; }

    // The marker's left edge; absent until the first time update.
    void setMarkerX(double x);
    std::optional<double> markerX() const { return m_markerX; }

    // The box under a point, and whether the point is on its copy button.
    std::optional<qsizetype> boxAt(QPointF point) const;
    std::optional<qsizetype> copyButtonAt(QPointF point) const;
    QRectF copyButtonRect(qsizetype box) const;

Q_SIGNALS:
    // The copy button of a box whose event has a chat link was clicked.
    void copyRequested(qsizetype box);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    bool event(QEvent *event) override;

private:
    // A box is drawn once into a pixmap that later paints copy: scrolling back and forth and
    // each minute's marker move then cost a blit per box. Bounded to a few screens' worth.
    static constexpr qsizetype pixmapCacheKb = 12 * 1024;

    void paintBox(QPainter &painter, qsizetype index);
    const QPixmap &boxPixmap(qsizetype index);
    void invalidateBox(qsizetype index);
    const QPixmap &iconOf(const Event &event);
    enum class ButtonState
    {
        Normal,
        Hovered,
        Pressed
    };
    const QPixmap &buttonPixmap(ButtonState state);
    const QStaticText &nameText(qsizetype index);
    const QStaticText &timeText(const QString &text);
    void setHovered(std::optional<qsizetype> button);

    QList<EventBoxGeometry> m_boxes;
    // Filled on first paint of a box: the name cut to the box's width.
    QList<std::optional<QStaticText>> m_nameTexts;
    QHash<QString, QStaticText> m_timeTexts;
    QHash<const Event *, QPixmap> m_icons;
    QCache<qsizetype, QPixmap> m_boxPixmaps{pixmapCacheKb};
    QPixmap m_uncached;
    QPixmap m_buttonPixmaps[3];
    bool m_paintedOnce = false;
    std::optional<double> m_markerX;
    std::optional<qsizetype> m_hoveredButton;
    std::optional<qsizetype> m_pressedButton;
};

} // namespace eventtimer
