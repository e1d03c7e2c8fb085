#include "model/iconcachekey.h"

#include <QStringList>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace eventtimer {

namespace {

// Splits text at every user-perceived character equal to separator, dropping empty pieces.
// The pieces are views into text.
QList<QStringView> splitByCharacters(QStringView text, QChar separator)
{
    // In plain ASCII every character stands alone (only "\r\n" pairs up), so a plain split
    // gives the same pieces; URLs nearly always are.
    const bool ascii =
        std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
    if (ascii)
        return text.split(separator, Qt::SkipEmptyParts);

    QList<QStringView> pieces;
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text.data(), text.size());
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
    const QList<QStringView> dotted = splitByCharacters(url, u'.');
    if (dotted.size() < 2)
        return std::nullopt;
    const QList<QStringView> path = splitByCharacters(dotted.at(dotted.size() - 2), u'/');
    if (path.size() < 2)
        return std::nullopt;
    QString key;
    key.reserve(path.at(path.size() - 2).size() + 1 + path.last().size());
    key.append(path.at(path.size() - 2)).append(u'_').append(path.last());
    return key;
}

} // namespace eventtimer
