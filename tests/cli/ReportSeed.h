#pragma once

#include "../events/EventsSeed.h"
#include "../messages/MessagesSeed.h"
#include "../records/RecordsSeed.h"

#include <cmath>

namespace sx::test {

// One unit with a temperature zone (limits 10 to 30) and a door contact,
// March 2026 of records every 30 minutes, two events and one message: enough
// for every report kind.
inline bool seedReportUnit(Database& db)
{
    RecordsSeed r(db);
    EventsSeed e(db);
    const qint64 march = *parseSqlDateTime(QStringView(u"2026-03-01 00:00:00"));
    // Warm spells above 30 every few days, one of them across midnight.
    const auto temperature = [](int i) { return 20.0 + 14.0 * std::sin(i / 40.0); };
    const auto door = [](int i) { return i % 17 == 5 ? 0.0 : 1.0; };
    return e.unit(u"A-100"_s, u"Ψυκτικός θάλαμος"_s) &&
           r.zone(u"A-100"_s, {.number = 1, .name = u"'Ψυγείο'"_s}) &&
           r.zone(u"A-100"_s, {.number = 2, .name = u"'Πόρτα'"_s, .type = 2}) &&
           r.series(u"A-100"_s, 1, march, 1800, 31 * 48, temperature) &&
           r.series(u"A-100"_s, 2, march, 1800, 31 * 48, door, 2) &&
           e.event(u"A-100"_s, 1, u"2026-03-02 10:00:00"_s, 1, 1, 0, 31.5) &&
           e.event(u"A-100"_s, 2, u"2026-03-02 11:00:00"_s, 1, 0, 0, 25.0) &&
           seedMessages(db, u"E A-100,1,1,1,31.5,'2026-03-02 10:00:00',0,1"_s);
}

} // namespace sx::test
