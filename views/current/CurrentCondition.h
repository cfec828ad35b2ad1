#pragma once

#include "model/Database.h"

#include <QColor>
#include <QList>
#include <QLocale>
#include <QString>

#include <optional>

namespace sx {

// A text and the background (or, for the connection label, text) colour it is shown in.
struct Look {
    QString text;
    QColor color;
};

struct PointRow {
    QString label;
    QString reading;
    QString minLimit;
    QString maxLimit;
    QColor color;
};

struct PowerRow {
    QString label;
    QString state;
    QColor color;
};

// What one refresh read for one unit, ready for the window.
struct CurrentCondition {
    // The unit's Systems_Info row exists. Without it the labels and buttons keep
    // what they showed and the grids are trimmed to their header.
    bool unitFound = false;
    // SyI_Online = 1: grids filled, commands enabled, unit condition read.
    bool connected = false;
    Look connection;
    QList<PointRow> points;
    QList<PowerRow> powers;
    // Only meaningful when connected; otherwise the buttons keep their captions.
    Look notification;
    Look relay;
    QString clock;
    Look status;
    bool newMessages = false;
    // The first query that failed; the fields above are then incomplete.
    DbError error;
};

// Reads the current condition of the unit with serial `serial`, query by query
// in the order of the view's refresh, stopping at the first failure.
[[nodiscard]] CurrentCondition readCurrentCondition(Database& db, const QString& serial,
                                                    const QLocale& locale = QLocale());

// "[n] name", or "[n] Ανώνυμη ζώνη" for a missing or empty name.
[[nodiscard]] QString pointLabel(std::optional<qint64> number, const std::optional<QString>& name);
// "ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ" for input 1, else "[n-1] name" as for points.
[[nodiscard]] QString powerLabel(std::optional<qint64> number, const std::optional<QString>& name);

// Reading and row colour of a point (the first rule that matches wins).
// A missing Notpowered counts as not powered; a missing alarm, out-of-limits
// flag or value as not above 0. A missing analogue value reads as empty text.
[[nodiscard]] Look pointLook(std::optional<qint64> notPowered, std::optional<qint64> alarm,
                             std::optional<qint64> outOfBounds, std::optional<double> value,
                             int sensorType, const QLocale& locale = QLocale());

// A limit cell: the value with its unit text when its flag is 1 and the point is
// not a contact input; empty otherwise (also for a missing value).
[[nodiscard]] QString limitText(std::optional<double> limit, std::optional<qint64> used,
                                int sensorType, const QLocale& locale = QLocale());

// State text and row colour of a power input for the unit's version number.
[[nodiscard]] Look powerLook(int versionNumber, std::optional<qint64> powerFault,
                             std::optional<qint64> powerCondition);

// Command4 caption and background by SyCC_Alarmcondition (missing = any other value).
[[nodiscard]] Look notificationLook(std::optional<qint64> alarmCondition);
// Command5 caption and background by SyCC_RelayBcondition.
[[nodiscard]] Look relayLook(std::optional<qint64> relayCondition);
// Label6 caption and text colour by SyI_Online (missing = any other value).
[[nodiscard]] Look connectionLook(std::optional<qint64> online);
// Label6 while the database cannot be read.
[[nodiscard]] Look databaseLostLook();

// Lines of a label of width `textWidth` in a column `columnWidth` wide; 0 means
// the label fits and the row keeps the grid's default height.
[[nodiscard]] int labelRowLines(double textWidth, int columnWidth);
// The row height for the label: -1 (the default) or lines × text height, rounded.
[[nodiscard]] int labelRowHeight(double textWidth, double textHeight, int columnWidth);

} // namespace sx
