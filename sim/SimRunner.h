#pragma once

#include "sim/SimOptions.h"

#include <QTextStream>

#include <atomic>

namespace sx::sim {

// Exit codes of the program.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1; // the database could not be used
inline constexpr int kExitBadArguments = 2;

// Runs one command of the command line; `stop` ends `run` at the next step.
[[nodiscard]] int runSimCommand(const SimOptions& options, QTextStream& out, QTextStream& err,
                                const std::atomic<bool>& stop);

} // namespace sx::sim
