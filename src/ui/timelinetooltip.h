#pragma once

class QHelpEvent;

namespace eventtimer {

class TimelineWidget;

// The tooltips of the time axis: over a copy button its chat link, over a box all about it
// (TimelineWidget::boxDetails). Texts from the event document are shown as they are, never as
// markup.
class TimelineToolTip
{
public:
    // Shows the tooltip for the point the help event asks about; false where no box is there.
    static bool show(TimelineWidget &timeline, const QHelpEvent &help);
};

} // namespace eventtimer
