#include "data/cachefolder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

constexpr qsizetype longestReadableName = 120;

} // namespace

CacheFolder::CacheFolder(QString path, QTextStream &err)
    : m_path(std::move(path))
    , m_err(err)
{}

QString CacheFolder::standardPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           u"/tolmerkvarn/eventtimer"_s;
}

std::optional<QByteArray> CacheFolder::read(const QString &name, qint64 maxBytes) const
{
    // Opening refuses a folder; a start reads dozens of these files, one call each where it can.
    QFile file(m_path + u'/' + name);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxBytes)
        return std::nullopt;
    QByteArray bytes = file.read(file.size() + 1);
    if (file.error() != QFileDevice::NoError || bytes.size() > maxBytes)
        return std::nullopt;
    return bytes;
}

bool CacheFolder::contains(const QString &name) const
{
    return QFileInfo(m_path + u'/' + name).isFile();
}

bool CacheFolder::write(const QString &name, const QByteArray &bytes)
{
    const QString path = m_path + u'/' + name;
    QString why;
    if (!QDir().mkpath(QFileInfo(path).path())) {
        why = u"cannot make the folder"_s;
    } else {
        QSaveFile file(path);
        if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
            return true;
        why = file.errorString();
    }
    if (!m_reported) {
        m_reported = true;
        m_err << "eventtimer: cannot keep downloads in " << m_path << " (" << why
              << "); they are used for this start only" << Qt::endl;
    }
    return false;
}

QString CacheFolder::safeName(const QString &key)
{
    static constexpr char hex[] = "0123456789ABCDEF";
    const QByteArray utf8 = key.toUtf8();
    QString name;
    name.reserve(std::min<qsizetype>(3 * utf8.size(), longestReadableName + 3));
    for (const char byte : utf8) {
        const auto c = static_cast<unsigned char>(byte);
        const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
        if (plain) {
            name += QLatin1Char(static_cast<char>(c));
        } else {
            name += u'%';
            name += QLatin1Char(hex[c >> 4]);
            name += QLatin1Char(hex[c & 0xf]);
        }
        if (name.size() > longestReadableName)
            return u'~' + QString::fromLatin1(
                              QCryptographicHash::hash(utf8, QCryptographicHash::Sha256).toHex());
    }
    return name.isEmpty() ? u"%"_s : name;
}

} // namespace eventtimer
