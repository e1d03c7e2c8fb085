#pragma once

#include "timetable/timetablelayout.h"

#include <QGroupBox>
#include <QHash>
#include <QLabel>
#include <QList>
#include <QWidget>

namespace eventtimer {

// The column beside the time axis: one titled box per category holding the right-aligned
// names of its sections, a row each. Boxes and labels are real widgets (a few dozen at most),
// placed by the layout's numbers and again whenever the column's width changes. A label's menu
// hides its section or its category, a category title's menu the category.
class SectionColumn : public QWidget
{
    Q_OBJECT

public:
    explicit SectionColumn(QWidget *parent = nullptr);

    // The natural height of a section label showing the name: what the layout gives its row.
    double labelHeight(const QString &name) const;

    // Takes the width its longest name or category title needs (within bounds) and makes the
    // boxes and labels of the laid-out timetable.
    void build(const TimetableGeometry &geometry);

    const QHash<QString, QGroupBox *> &categories() const { return m_categories; }

Q_SIGNALS:
    // From a label's menu (right click, the menu key): hide its section, or its category.
    void hideRequested(bool category, const QString &name);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QSize labelSize(const QString &name) const;
    int widthFor(const TimetableGeometry &geometry) const;
    void place();
    void offerMenu(QWidget *widget, const QString &section, const QString &category);

    mutable QHash<QString, QSize> m_labelSizes;
    QHash<QString, QGroupBox *> m_categories;
    QList<QLabel *> m_labels;
    QList<CategoryBoxGeometry> m_boxGeometry;
    QList<SectionLabelGeometry> m_labelGeometry;
};

} // namespace eventtimer
