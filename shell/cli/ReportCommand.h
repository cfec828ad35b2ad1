#pragma once

#include <QStringList>

class QTextStream;

namespace sx {

class SettingsStore;

namespace cli {

// true when the program was started as `sentorax-monitor report ...`.
[[nodiscard]] bool isReportCommand(int argc, char** argv);

// Writes one report and returns its exit code (ExitCode). `arguments` start
// with "report"; the database is --db or the one of `settings`. A failure is
// one line on `err`; no file is left half-written. Needs a GUI application
// (the offscreen platform will do).
[[nodiscard]] int runReportCommand(const QStringList& arguments, SettingsStore& settings,
                                   QTextStream& out, QTextStream& err);

// main() for the report command: the offscreen platform, no window, no
// single-copy lock, the user's settings.
[[nodiscard]] int reportMain(int argc, char** argv);

} // namespace cli
} // namespace sx
