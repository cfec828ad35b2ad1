#pragma once

#include <QLocale>
#include <QString>

#include <array>

// The text and colour of one row of the events archive, from the row's values
// and the unit's name caches; no database.
//
// Event_Info1 is read as fields separated by ";", each with surrounding blanks
// removed. A field is a number when it is an optional sign and decimal digits
// within int range ("07" is 7); anything else is unreadable. What is shown when
// the text does not follow its form:
// - Sensor faults (22): empty fields are dropped ("3;;7;" is 3 and 7); the
//   heading is the one-point text for zero or one field. A point outside 1 to
//   20 has no name and reads " (Ανώνυμη ζώνη)"; an unreadable field is shown as
//   stored, with the same anonymous label. Empty Info1 gives the heading alone.
// - Unit faults (23): empty fields are dropped; a field that is not a code 0 to
//   8 adds no text but keeps its separator, as an unknown code does.
// - Message delivery (24): a missing or unreadable a names no recipient (the
//   outgoing-call text ends at "ΚΛΗΣΗ"); any other number than 5 is named as
//   it is, 0 and negatives included. b other than 1, missing or unreadable, adds
//   nothing. Fields after the second are ignored.
// - Bypass (25): o other than 0 or 1, missing or unreadable, is this console.
//   An unreadable or missing p or h is shown as stored (possibly empty); a p
//   outside 1 to 20 has no name. Extra fields are ignored.
// - Mains power (21): only the low eight bits of the condition are read.
// - A source outside 1 to 25 gives the empty text in the normal colour.
namespace sx::events {

enum class EventColour { Normal, Alarm, Bypass };

// Names of one unit; empty means the item has no name.
struct NameCache {
    std::array<QString, 20> zones; // point 1 at index 0
    std::array<QString, 4> powers; // power input 1 (the unit's own supply) at index 0

    [[nodiscard]] QString zone(qint64 number) const;
    [[nodiscard]] QString power(qint64 number) const;
};

// The columns of Events_1 a description reads; NULL columns come as 0 or empty.
struct EventRow {
    int source = 0;
    int condition = 0;
    int sensorType = 0;
    double value = 0.0;
    QString info1;
};

struct EventText {
    QString text;
    EventColour colour = EventColour::Normal;
};

[[nodiscard]] EventText describeEvent(const EventRow& row, const NameCache& names,
                                      const QLocale& locale = QLocale());

// "Όνομα [12] (SN-1) -> ", or "Ανώνυμο σύστημα [12] (SN-1) -> " for a unit without a name.
[[nodiscard]] QString unitPrefix(const QString& serial, const QString& name,
                                 const QString& location);

} // namespace sx::events
