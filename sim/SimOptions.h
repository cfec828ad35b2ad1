#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace sx::sim {

enum class SimCommand { Init, Seed, Run, Help };

// Everything the command line can say; defaults are the documented ones.
struct SimOptions {
    SimCommand command = SimCommand::Help;
    QString dbUrl;

    // seed
    int units = 12;
    int days = 30;
    quint64 seed = 1;
    std::optional<qint64> endSecs; // wall clock; empty = now
    int recordMinutes = 5;
    bool yearPoint = false;
    qint64 records = 0;  // a large archive instead of the demo's history
    qint64 messages = 0; // a large message archive instead of the demo's
    bool partitioned = false;

    // run
    int intervalMs = 2000;
    int answerDelayMs = 1000;
    std::optional<int> forcedReply;
    bool noAnswer = false;
    qint64 ticks = 0; // 0 = until stopped
    int recordSecs = 60;
};

struct ParsedOptions {
    SimOptions options;
    QString error; // empty when the command line is usable
};

// Parses the arguments after the program name.
[[nodiscard]] ParsedOptions parseSimOptions(const QStringList& args);

[[nodiscard]] QString simUsage();

} // namespace sx::sim
