#pragma once

#include <QGroupBox>

namespace eventtimer {

// A category's titled box. The style's own group-box frame costs milliseconds per box to draw,
// which a start with a dozen categories would feel; this one draws the title and a plain
// rounded frame itself.
class CategoryBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit CategoryBox(const QString &title, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace eventtimer
