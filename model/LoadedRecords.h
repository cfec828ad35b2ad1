#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace sx {

// One logged value as the records view loaded it (RecordPoint).
struct RecordPoint {
    qint64 secs = 0;       // Rec_Datetime: seconds since 1970, wall clock
    float value = 0.0f;    // Rec_Value, single precision like the column
    quint8 sensorType = 0; // Rec_Sensortype, the type logged with this value
};

// The records the records view shows, in grid order: element 0 is the first
// data row (the highest Rec_SensRecSN, newest), the last element the oldest.
// The limit texts are the selected zone's limits formatted "####0.0" without
// a unit, empty for a contact input or a limit that is not in force.
struct LoadedRecords {
    std::vector<RecordPoint> records;
    QString minLimitText;
    QString maxLimitText;
};

} // namespace sx
