#include "cli/atoption.h"

using namespace Qt::StringLiterals;

namespace eventtimer::cli {

Result<QDateTime> parseAtOption(const QString &text, const QTimeZone &zone, QStringView example)
{
    QDateTime moment = QDateTime::fromString(text, Qt::ISODate);
    if (!moment.isValid())
        return Error{u"--at: \""_s + text + u"\" is not an ISO 8601 date-time such as "_s +
                     example.toString()};
    if (moment.timeSpec() == Qt::LocalTime)
        moment = QDateTime(moment.date(), moment.time(), zone);
    return moment;
}

} // namespace eventtimer::cli
