// Seeds a year of one-minute records for one point (525,600 rows) into a
// fresh SQLite file and, when SX_TEST_PG names a server, into PostgreSQL.
// Prints the time each took; also the whole default demo fleet.
#include "ScratchDatabase.h"
#include "model/SqlDateTime.h"
#include "sim/RecordWriter.h"
#include "sim/Seeder.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kYear = 525600;

bool benchKind(const char* kind)
{
    qputenv("SX_TEST_DB", kind);
    sx::test::ScratchDatabase scratch;
    if (!scratch.problem().isEmpty()) {
        std::printf("%s: skipped (%s)\n", kind, qPrintable(scratch.problem()));
        return true;
    }
    sx::Database db;
    if (!scratch.open(db)) {
        std::printf("%s: cannot open the scratch database\n", kind);
        return false;
    }
    const qint64 from = sx::secsFromCivil({2023, 1, 1, 0, 0, 0});
    QElapsedTimer t;
    t.start();
    const sx::DbError e = sx::sim::seedRecords(db, u"SX100001"_s, 1, 0, from, 60, kYear, 1);
    const double secs = static_cast<double>(t.nsecsElapsed()) / 1e9;
    if (e.isError()) {
        std::printf("%s: failed: %s\n", kind, qPrintable(e.description));
        return false;
    }
    std::printf("seed %lld records %s: %.2f s (%.0f rows/s)\n", static_cast<long long>(kYear), kind,
                secs, static_cast<double>(kYear) / secs);

    sx::sim::SeedOptions fleet; // 12 units, 30 days of five-minute records
    fleet.endSecs = sx::secsFromCivil({2024, 3, 10, 12, 0, 0});
    t.restart();
    const sx::sim::SeedReport r = sx::sim::seedDemo(db, fleet);
    if (r.error.isError()) {
        std::printf("%s: demo seed failed: %s\n", kind, qPrintable(r.error.description));
        return false;
    }
    std::printf("seed demo fleet %s: %.2f s (%lld records, %lld events)\n", kind,
                static_cast<double>(t.nsecsElapsed()) / 1e9, static_cast<long long>(r.records),
                static_cast<long long>(r.events));
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    bool ok = benchKind("sqlite");
    if (!sx::test::ScratchDatabase::serverUrl().isEmpty())
        ok = benchKind("postgresql") && ok;
    else
        std::printf("postgresql: skipped (SX_TEST_PG not set)\n");
    return ok ? 0 : 1;
}
