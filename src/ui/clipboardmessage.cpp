#include "ui/clipboardmessage.h"

#include "model/clock.h"
#include "timetable/layoutconstants.h"
#include "ui/eventhook.h"

#include <QClipboard>
#include <QGraphicsDropShadowEffect>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace eventtimer {

ClipboardMessage::ClipboardMessage(Clock &clock, QWidget *view)
    : QFrame(view)
    , m_clock(clock)
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    auto *label = new QLabel(this);
    label->setTextFormat(Qt::PlainText);
    label->setText(u"Chat link copied to the clipboard"_s);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(label);
    adjustSize();
    auto *shadow = new QGraphicsDropShadowEffect(this);
    shadow->setBlurRadius(10.0);
    shadow->setColor(Qt::black);
    setGraphicsEffect(shadow);
    hide();
    place();
    new EventHook(view, QEvent::Resize, [this] { place(); });
}

void ClipboardMessage::place()
{
    const QSize size = sizeHint();
    setGeometry((parentWidget()->width() - size.width()) / 2,
                parentWidget()->height() - size.height() - WindowConstants::clipboardMessageBottom,
                size.width(), size.height());
}

void ClipboardMessage::copy(const QString &link)
{
    QGuiApplication::clipboard()->setText(link);
    if (parentWidget()->isVisible())
        showCopied();
}

void ClipboardMessage::showCopied()
{
    show();
    raise();
    // Every copy schedules its own hide and none is ever cancelled: the earliest one pending
    // ends the showing, even right after a later copy.
    m_clock.callAfter(interval, this, [this] { hideClipboardMessage(); });
}

void ClipboardMessage::hideClipboardMessage()
{
    hide();
}

} // namespace eventtimer
