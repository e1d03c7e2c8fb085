#pragma once

#include <QFrame>

#include <chrono>

namespace eventtimer {

class Clock;

// "Chat link copied to the clipboard": a framed message with a shadow, centred near the bottom
// of the view it stands in, shown after each copy for a while.
class ClipboardMessage : public QFrame
{
    Q_OBJECT

public:
    // How long the message shows after each copy.
    static constexpr std::chrono::milliseconds interval{3000};

    // Made hidden; it follows the view's size.
    ClipboardMessage(Clock &clock, QWidget *view);

    // The chat link onto the clipboard as its only content, as plain text (an empty one as it
    // is), and the message shown while the view is visible.
    void copy(const QString &link);
    // Shows the message on top until the earliest pending hide.
    void showCopied();
    void hideClipboardMessage();

private:
    void place();

    Clock &m_clock;
};

} // namespace eventtimer
