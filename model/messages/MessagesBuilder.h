#pragma once

#include "model/Database.h"
#include "model/QueryHelpers.h"

#include <QLocale>
#include <QString>

namespace sx {

// The messages text of one list (new or archive), built from the database.
struct MessagesText {
    // Lines joined by CR LF. When no unit was shown: the empty-list text.
    QString text;
    // true when no unit was shown; the view then centres the text.
    bool centred = false;
    int unitsShown = 0;
    // The query that failed; the build stopped there and `text` holds what was
    // built until then (the empty text when no unit had been shown yet).
    DbError error;
};

// Builds the whole list: units in use in location-number order, each unit with
// messages of the kind (or, for the new list, with an open fault) as header,
// zone messages, power messages, the unit state (new list only) and six line
// breaks.
//
// Choices where the database gives less than the text needs:
// - A zone without a Sensors_Info row is shown with the anonymous heading and
//   its values as plain numbers: the type is unknown, so no unit of measurement
//   and no open/closed reading. A NULL type reads the same way.
// - A missing analogue value leaves the value text empty (no invented 0.0); a
//   missing contact value reads open, as a value of 0 would.
// - NULL zone, event numbers, event type, age and power condition count as 0;
//   only the low eight bits of the power condition are read. A NULL location
//   is shown as empty text; a NULL recipients mark belongs to neither list
//   (the SQL conditions <>0 and =0 both exclude it). A unit whose serial is
//   NULL or empty is skipped: the message check would read it as "every unit".
// - Units are ordered by the text of their location (so 10 comes before 2),
//   ties by serial. Messages, zones and fault rows are ordered on the client
//   as well, so SQLite and PostgreSQL place NULLs alike.
// - Zone names and types are read once per unit (one Sensors_Info query) and
//   power-input names once per unit, when first needed.
[[nodiscard]] MessagesText buildMessagesText(Database& db, MessageKind kind,
                                             const QLocale& locale = QLocale());

// Whether any unit in use has messages of the kind (new: or an open fault): the
// nothing-to-print check of the report. A failure is reported in `error`.
[[nodiscard]] bool listHasMessages(Database& db, MessageKind kind, DbError* error = nullptr);

// "Νέα Μηνύματα" or "Αρχείο Μηνυμάτων": the caption of the frame around the text.
[[nodiscard]] QString listCaption(MessageKind kind);
// "ΔΕΝ ΥΠΑΡΧΟΥΝ ΝΕΑ ΜΗΝΥΜΑΤΑ" or "ΤΟ ΑΡΧΕΙΟ ΜΗΝΥΜΑΤΩΝ ΕΙΝΑΙ ΚΕΝΟ".
[[nodiscard]] QString emptyListText(MessageKind kind);

} // namespace sx
