#pragma once

#include "model/ConnectionSettings.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace sx::cli {

// The exit codes of `sentorax-monitor report`, one per cause.
enum class ExitCode : int {
    Done = 0,
    Usage = 2,           // an unknown or missing option, a value that is not understood
    Database = 3,        // the database cannot be opened or read
    UnknownUnit = 4,     // no unit with that serial number
    UnknownZone = 5,     // the unit has no such zone (or event source) with records
    NothingToReport = 6, // the period (or list) is empty
    OutputFailed = 7,    // the PDF or workbook cannot be written
    PartlyWritten = 8,   // written, but the workbook's sheet could not hold every record
    NoTemplate = 9,      // the workbook template is missing or damaged
};

enum class ReportKind { Current, Records, Events, Messages, Summary };

struct ReportOptions {
    ReportKind kind = ReportKind::Current;
    std::optional<ConnectionSettings> db; // else the user's settings
    QString unit;                         // "all" for every unit (events)
    int zone = -1;                        // -1: every zone (summary)
    int year = 0;
    int month = 0; // 1 to 12; 0 for a whole year
    std::optional<int> source;
    int eventKind = 0; // 0 alarms, 1 restorations, 2 both
    bool newOnly = false;
    bool archive = false;
    QString pdf;
    QString xlsx;
};

struct ParsedOptions {
    std::optional<ReportOptions> options; // nothing for --help or an error
    bool help = false;
    QString error; // one line, naming the cause
};

// The help text: every kind with its options.
[[nodiscard]] QString reportHelpText();

// Parses the arguments after the program name ("report", KIND, options).
[[nodiscard]] ParsedOptions parseReportOptions(const QStringList& arguments);

} // namespace sx::cli
