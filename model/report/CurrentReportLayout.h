#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What the current-condition report prints and where, without a database or a printer.
namespace sx::report {

struct UnitInfo {
    QString serial;
    std::optional<QString> location;
    std::optional<QString> name;
    std::optional<qint64> online;
    std::optional<QString> softver;
};

struct UnitCondition {
    std::optional<qint64> alarm; // SyCC_Alarmcondition
    std::optional<qint64> relayB;
    std::optional<QDateTime> rtc; // nothing for a missing or zero clock
};

// A point in use with its current condition (the condition fields are
// missing when the point has no current-condition row).
struct PointLine {
    qint64 number = 0;                     // SeI_Sensornumber
    std::optional<qint64> conditionNumber; // SeCC_Sensornumber
    std::optional<QString> name;
    std::optional<qint64> type;
    std::optional<double> value;
    std::optional<qint64> outOfBounds;
    std::optional<qint64> notPowered;
};

struct PowerLine {
    qint64 number = 0;                     // PmI_Powernumber
    std::optional<qint64> conditionNumber; // PmCC_Powernumber
    std::optional<QString> name;
    std::optional<qint64> fault;
    std::optional<qint64> condition;
};

struct Fault {
    std::optional<QString> info;
};

struct ReportData {
    std::optional<UnitInfo> unit; // nothing: the unit has no Systems_Info row
    std::optional<UnitCondition> condition;
    QList<PointLine> points;
    QList<PowerLine> powers;
    bool hasFaults = false;
    QList<Fault> pointFaults; // SyF_Faulttype 1, in SyF_Faultinfo order
    QList<Fault> unitFaults;  // SyF_Faulttype 0, in SyF_Faultinfo order
    QDateTime printedAt;      // shown when the unit's clock is not set
};

[[nodiscard]] QString titleText(); // "SENTORAX Monitor / ΑΝΑΦΟΡΑ ΤΡΕΧΟΥΣΑΣ ΚΑΤΑΣΤΑΣΗΣ ΣΥΣΤΗΜΑΤΟΣ"
[[nodiscard]] QString endText(); // "ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"

[[nodiscard]] QString pointText(const PointLine& point);
[[nodiscard]] QString powerText(const PowerLine& power, int versionNumber);
[[nodiscard]] QString notificationText(std::optional<qint64> alarm);
[[nodiscard]] QString relayText(std::optional<qint64> relayB);
[[nodiscard]] QString headingText(const UnitInfo& unit, const std::optional<UnitCondition>& cond,
                                  const QDateTime& printedAt);
// The text under "ΚΑΤΑΣΤΑΣΗΣ ΣΥΣΤΗΜΑΤΟΣ:" for a unit with faults: point faults,
// unit faults, then the service line when one of them asks for it.
[[nodiscard]] QString faultText(const QList<Fault>& pointFaults, const QList<Fault>& unitFaults);

// The printed items between the title and the end line, in order. Each item
// is followed by a line end; CR LF inside an item starts a new line, so the
// blank item CR LF leaves two empty lines.
[[nodiscard]] QStringList bodyItems(const ReportData& data);

// The lines of the items, one per printed line.
[[nodiscard]] QStringList itemLines(const QStringList& items);

struct PlacedLine {
    int page = 0;
    double y = 0.0; // millimetres from the top of the printable area
    QString text;
};

struct PageLayout {
    QList<PlacedLine> lines;
    int endPage = 0;
    double endY = 0.0;
    int pages = 1;
};

// Places the lines from startY down, moving to the top of a new page when a
// line would run past pageHeight, as a printer does by itself. The end line
// goes at the whole millimetre nearest to where the text stopped; a box that
// would not fit there goes to the top of a new page.
[[nodiscard]] PageLayout placeLines(const QStringList& lines, double startY, double lineHeight,
                                    double pageHeight);

} // namespace sx::report
