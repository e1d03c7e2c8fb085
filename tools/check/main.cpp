#include "check/checker.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    // The application only decodes the command line; the checker needs no event loop.
    const QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    // The one place that reads the clock and the system's zone.
    return eventtimer::checker::run(QCoreApplication::arguments().mid(1), out, err,
                                    QDateTime::currentDateTimeUtc(), QTimeZone::systemTimeZone());
}
