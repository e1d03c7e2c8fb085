#pragma once

#include <QChar>
#include <QString>

namespace eventtimer {

// A text from the network on one line and inert where it is printed: control characters (a
// terminal's escape sequences among them) and line breaks become spaces. Qt Core only, for
// the companion programs too.
inline QString oneLine(QString text)
{
    for (QChar &c : text)
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = u' ';
    return text;
}

} // namespace eventtimer
