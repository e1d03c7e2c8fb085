#pragma once

#include "model/result.h"

#include <QString>

namespace eventtimer {

// Starting the program when the user logs in: a desktop entry in the user's autostart folder
// ($XDG_CONFIG_HOME/autostart/org.tolmerkvarn.eventtimer.desktop) that starts it without its
// window. Whether it is on is read from that file each time, so a file removed by hand reads as
// off.
class Autostart
{
public:
    // The entry starts program (an absolute path) with --hidden.
    explicit Autostart(QString program);

    static QString standardPath();

    bool isEnabled() const;
    // Writes or removes the entry; fails with the reason.
    Status setEnabled(bool enabled);

    // The entry's text.
    QByteArray entry() const;

private:
    QString m_program;
};

} // namespace eventtimer
