#include "app/autostart.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

// An argument of an Exec line: quoted, with the characters the desktop entry format reserves
// escaped, when it holds any of them.
QString execArgument(const QString &argument)
{
    static const QString reserved = u" \t\n\"'\\><~|&;$*?#()`"_s;
    if (std::none_of(argument.cbegin(), argument.cend(),
                     [](QChar c) { return reserved.contains(c); }) &&
        !argument.contains(u'%'))
        return argument;
    QString quoted;
    for (const QChar c : argument) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            quoted += u'\\';
        quoted += c;
    }
    quoted.replace(u'%', u"%%"_s);
    // In a desktop file a backslash is itself escaped once more.
    quoted.replace(u'\\', u"\\\\"_s);
    return u'"' + quoted + u'"';
}

} // namespace

Autostart::Autostart(QString program)
    : m_program(std::move(program))
{}

QString Autostart::standardPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/autostart/org.tolmerkvarn.eventtimer.desktop"_s;
}

bool Autostart::isEnabled() const
{
    return QFileInfo(standardPath()).isFile();
}

QByteArray Autostart::entry() const
{
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Event Timer\n"
           "Comment=Reminds you of the game's events you marked\n"
           "Exec=" +
           execArgument(m_program).toUtf8() +
           " --hidden\n"
           "Icon=org.tolmerkvarn.eventtimer\n"
           "Terminal=false\n"
           "X-GNOME-Autostart-enabled=true\n";
}

Status Autostart::setEnabled(bool enabled)
{
    const QString path = standardPath();
    if (!enabled) {
        if (QFile::exists(path) && !QFile::remove(path))
            return Error{u"cannot remove "_s + path};
        return {};
    }
    QSaveFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(entry()) < 0 || !file.commit())
        return Error{u"cannot write "_s + path + u": "_s + file.errorString()};
    return {};
}

} // namespace eventtimer
