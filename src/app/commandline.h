#pragma once

#include <QString>
#include <QStringList>

namespace eventtimer {

// The program's own command line: --help, --version, --hidden. Qt's own options (-style,
// -platform, -reverse, -stylesheet, -qwindowgeometry, …) are left to the application object,
// which takes them off the command line as it starts; ours are what remains.
struct CommandLine
{
    // Start without showing the window.
    bool hidden = false;
    // Set when the program is to end at once with this status, after writing out and err.
    int exitStatus = -1;
    QString out;
    QString err;

    // Checks every argument (given without the program's name) before the application object
    // exists, so that help, the version and a wrong argument are answered without a display.
    static CommandLine parse(const QStringList &arguments);

    // The arguments that are Qt's own options, with the values they take, left out.
    static QStringList withoutQtOptions(const QStringList &arguments);
};

} // namespace eventtimer
