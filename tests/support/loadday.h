#pragma once

#include "data/eventdatasource.h"
#include "data/waitfor.h"

namespace eventtimer::testing {

// One load of the data source, waited for in a local event loop.
inline DayData loadDayNow(EventDataSource &source, bool download = false)
{
    QMetaObject::Connection connection;
    DayData day = waitFor<DayData>([&](auto done) {
        connection =
            QObject::connect(&source, &EventDataSource::finished, &source, std::move(done));
        source.load(download);
    });
    QObject::disconnect(connection);
    return day;
}

} // namespace eventtimer::testing
