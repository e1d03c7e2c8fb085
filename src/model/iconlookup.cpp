#include "model/iconlookup.h"

#include <QStringList>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace eventtimer {

namespace {

// Splits text at every user-perceived character equal to separator, dropping empty pieces.
QStringList splitByCharacters(const QString &text, QChar separator)
{
    // In plain ASCII every character stands alone (only "\r\n" pairs up), so a plain split
    // gives the same pieces; URLs nearly always are.
    const bool ascii =
        std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
    if (ascii)
        return text.split(separator, Qt::SkipEmptyParts);

    QStringList pieces;
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    qsizetype pieceStart = 0;
    qsizetype characterStart = 0;
    while (true) {
        const qsizetype characterEnd = boundaries.toNextBoundary();
        if (characterEnd < 0)
            break;
        if (characterEnd - characterStart == 1 && text.at(characterStart) == separator) {
            if (characterStart > pieceStart)
                pieces.append(text.mid(pieceStart, characterStart - pieceStart));
            pieceStart = characterEnd;
        }
        characterStart = characterEnd;
    }
    if (text.size() > pieceStart)
        pieces.append(text.mid(pieceStart));
    return pieces;
}

} // namespace

std::optional<QString> iconCacheKey(const QString &url)
{
    const QStringList dotted = splitByCharacters(url, u'.');
    if (dotted.size() < 2)
        return std::nullopt;
    const QStringList path = splitByCharacters(dotted.at(dotted.size() - 2), u'/');
    if (path.size() < 2)
        return std::nullopt;
    return path.at(path.size() - 2) + u'_' + path.last();
}

} // namespace eventtimer
