#pragma once

#include <QString>

namespace eventtimer {

// Texts from the event document shown in a tooltip as they are, whatever they look like: a
// tooltip takes a text with angle brackets for markup, and one with a markup-escaped "&" then
// shows the escape. As markup that says only the text, line breaks kept, it reads as written.
inline QString plainToolTip(const QString &text)
{
    using namespace Qt::StringLiterals;
    return u"<p style='white-space:pre'>"_s + text.toHtmlEscaped() + u"</p>"_s;
}

} // namespace eventtimer
