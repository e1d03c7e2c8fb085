#pragma once

#include "model/result.h"

#include <QDateTime>
#include <QStringView>
#include <QTimeZone>

namespace eventtimer::cli {

// The moment an --at option names: an ISO 8601 date-time. Without Z or an offset the text is
// wall-clock time in zone, the zone the tool works in, which need not be the zone of the
// process that runs it (tests pin their own). The error quotes the text and shows example as
// a date-time that would do.
Result<QDateTime> parseAtOption(const QString &text, const QTimeZone &zone, QStringView example);

} // namespace eventtimer::cli
