#pragma once

#include "model/Database.h"

namespace sx::sim {

// One row of Events_1 before it has its sequence number.
struct EventRow {
    qint64 secs = 0;
    int source = 0;
    int condition = 0;
    int sensorType = 0;
    double value = 0;
    QString info;
    int ack = 0;
};

// Appends an event as the unit's next one (Event_SystemEventSN = last + 1)
// and moves the unit's event-store counters on with it.
DbError appendEvent(Database& db, const QString& serial, const EventRow& event);

} // namespace sx::sim
