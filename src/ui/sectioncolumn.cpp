#include "ui/sectioncolumn.h"

#include "timetable/layoutconstants.h"
#include "ui/boxmenu.h"
#include "ui/categorybox.h"
#include "ui/plaintooltip.h"

#include <algorithm>

namespace eventtimer {

SectionColumn::SectionColumn(QWidget *parent)
    : QWidget(parent)
{}

QSize SectionColumn::labelSize(const QString &name) const
{
    // The natural size of a plain, right-aligned label showing the name. Shaping a text is the
    // costliest part of a build: each name is measured once.
    auto known = m_labelSizes.constFind(name);
    if (known == m_labelSizes.cend())
        known = m_labelSizes.insert(
            name, QFontMetrics(font()).boundingRect(QRect(), Qt::AlignRight, name).size());
    return *known;
}

double SectionColumn::labelHeight(const QString &name) const
{
    return labelSize(name).height();
}

int SectionColumn::widthFor(const TimetableGeometry &geometry) const
{
    using W = WindowConstants;
    const QFontMetrics metrics(font());
    int widest = 0;
    for (const SectionLabelGeometry &label : geometry.sectionLabels)
        widest = std::max(widest, labelSize(label.text).width());
    for (const CategoryBoxGeometry &box : geometry.categoryBoxes)
        widest = std::max(widest, metrics.horizontalAdvance(box.title) + W::categoryTitleRoom);
    // The labels sit two margins inside their boxes, which sit inside the column.
    const int needed =
        widest +
        static_cast<int>(4 * LayoutConstants::boxMargin + 2 * LayoutConstants::categoryDistance) +
        W::sectionColumnSlack;
    return std::clamp(needed, W::minSectionColumnWidth, W::maxSectionColumnWidth);
}

void SectionColumn::build(const TimetableGeometry &geometry)
{
    setFixedWidth(widthFor(geometry));
    m_boxGeometry = geometry.categoryBoxes;
    m_labelGeometry = geometry.sectionLabels;
    for (const CategoryBoxGeometry &box : std::as_const(m_boxGeometry)) {
        auto *widget = new CategoryBox(box.title, this);
        m_categories.insert(box.title, widget);
        offerMenu(widget, QString(), box.title);
    }
    for (const SectionLabelGeometry &label : std::as_const(m_labelGeometry)) {
        auto *widget = new QLabel(m_categories.value(m_boxGeometry.at(label.categoryBox).title));
        widget->setTextFormat(Qt::PlainText);
        widget->setText(label.text);
        widget->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        widget->setToolTip(plainToolTip(label.text));
        offerMenu(widget, label.text, m_boxGeometry.at(label.categoryBox).title);
        m_labels.append(widget);
    }
    // Placed before they are shown (the column may be on screen already): a widget shown
    // without a size is first given the one its text asks for, which costs a start a
    // measure of every name.
    place();
    for (QWidget *widget : std::as_const(m_categories))
        widget->show();
    for (QWidget *widget : std::as_const(m_labels))
        widget->show();
}

void SectionColumn::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    place();
}

void SectionColumn::place()
{
    const double columnWidth = width();
    for (const CategoryBoxGeometry &box : std::as_const(m_boxGeometry))
        m_categories.value(box.title)->setGeometry(box.rect(columnWidth).toAlignedRect());
    for (qsizetype i = 0; i < m_labelGeometry.size(); ++i) {
        const SectionLabelGeometry &label = m_labelGeometry.at(i);
        const QRectF box = m_boxGeometry.at(label.categoryBox).rect(columnWidth);
        m_labels.at(i)->setGeometry(
            label.rect(columnWidth).translated(-box.topLeft()).toAlignedRect());
    }
}

void SectionColumn::offerMenu(QWidget *widget, const QString &section, const QString &category)
{
    widget->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(widget, &QWidget::customContextMenuRequested, this,
            [this, widget, section, category](QPoint at) {
                auto *menu = new QMenu(widget);
                menu->setAttribute(Qt::WA_DeleteOnClose);
                addHideActions(menu, section, category,
                               [this](bool isCategory, const QString &name) {
                                   Q_EMIT hideRequested(isCategory, name);
                               });
                menu->popup(widget->mapToGlobal(at));
            });
}

} // namespace eventtimer
