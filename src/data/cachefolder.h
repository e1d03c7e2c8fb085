#pragma once

#include <QByteArray>
#include <QString>
#include <QTextStream>

#include <optional>

namespace eventtimer {

// What the program downloads, kept as one file per key in a folder of its own
// ($XDG_CACHE_HOME/tolmerkvarn/eventtimer/). Every write replaces its file atomically: a
// program killed while writing leaves the old file or the new one, never a torn one. A file
// that cannot be read counts as absent. A folder that cannot be written is said once on the
// error stream, and the program goes on with what it has in memory.
class CacheFolder
{
public:
    CacheFolder(QString path, QTextStream &err);

    static QString standardPath();
    const QString &path() const { return m_path; }

    // The bytes kept under name, when there are at most maxBytes of them.
    std::optional<QByteArray> read(const QString &name, qint64 maxBytes) const;
    bool contains(const QString &name) const;
    bool write(const QString &name, const QByteArray &bytes);

    // A file name for a key that comes from the network: never leaves the folder (no "/",
    // "..", NUL; bounded length) and is different for different keys, also where the file
    // system ignores case. Letters a–z, digits, "_" and "-" stand as they are, every other byte
    // of the key's UTF-8 as "%XX"; a name that would be long is "~" and the key's SHA-256.
    static QString safeName(const QString &key);

private:
    QString m_path;
    QTextStream &m_err;
    bool m_reported = false;
};

} // namespace eventtimer
