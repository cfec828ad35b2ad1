#include "sim/SimOptions.h"
#include "sim/SimRunner.h"

#include <QCoreApplication>
#include <QTextStream>

#include <atomic>
#include <csignal>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

std::atomic<bool> g_stop{false};

extern "C" void onSignal(int)
{
    g_stop.store(true);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);

    const sx::sim::ParsedOptions parsed = sx::sim::parseSimOptions(app.arguments().mid(1));
    if (!parsed.error.isEmpty()) {
        err << "sentorax-server-sim: " << parsed.error << " (see --help)" << Qt::endl;
        return sx::sim::kExitBadArguments;
    }
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    return sx::sim::runSimCommand(parsed.options, out, err, g_stop);
}
