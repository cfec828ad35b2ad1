// The monthly summary over a year of one-minute records of one zone (525,600
// rows): read and summarised, then written to PDF with its chart, on SQLite
// and on PostgreSQL (when SX_TEST_PG names a server). Best of three runs.
// Then the window's way, read aside on a connection of its own: how long the
// GUI thread went at most without serving its timers meanwhile.
#include "BestTime.h"
#include "ScratchDatabase.h"
#include "model/SqlDateTime.h"
#include "reports/summary/SummaryReport.h"
#include "sim/RecordWriter.h"
#include "ui/PrintPreview.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPrinter>
#include <QTimer>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr qint64 kRows = 525600;

using bench::bestMs;

int benchKind(const char* kind)
{
    qputenv("SX_TEST_DB", kind);
    test::ScratchDatabase scratch;
    Database db;
    if (!scratch.problem().isEmpty() || !scratch.open(db)) {
        std::printf("%-10s skipped (%s)\n", kind, qPrintable(scratch.problem()));
        return 0;
    }
    for (const QString& sql :
         {u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, "
          u"SyI_Used) VALUES ('SXBENCH', '1', 'Bench', 1)"_s,
          u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, "
          u"SeI_Sensortype, SeI_Used, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, "
          u"SeI_Minlimitused, SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn) VALUES "
          u"('SXBENCH', 1, 'Θάλαμος', 0, 1, 30, 10, 1, 1, 100, 5)"_s}) {
        if (db.exec(sql).isError())
            return 1;
    }
    const qint64 from = secsFromCivil({2025, 1, 1, 0, 0, 0});
    if (const DbError e = sim::seedRecords(db, u"SXBENCH"_s, 1, 0, from, 60, kRows, 1);
        e.isError()) {
        std::fprintf(stderr, "seed failed: %s\n", qPrintable(e.description));
        return 1;
    }
    const qint64 now = secsFromCivil({2026, 1, 1, 0, 0, 0});
    const QString pdf = scratch.folder() + u"/summary.pdf"_s;
    summary::SummaryLoad load;
    const double read = bestMs(3, [&] {
        load = summary::loadSummary(db, u"SXBENCH"_s, 1, {2025, 0}, now);
    });
    if (load.problem != summary::LoadProblem::None) {
        std::fprintf(stderr, "the summary could not be read\n");
        return 1;
    }
    bool written = true;
    const double write = bestMs(3, [&] {
        written = writeReportPdf(
                      pdf, QPageLayout::Portrait,
                      [&](QPrinter& printer) { return drawSummaryReport(printer, load.input); }) &&
                  written;
    });
    if (!written)
        return 1;

    qint64 longestGap = 0;
    QElapsedTimer sinceTick;
    QTimer tick;
    tick.setInterval(5);
    QObject::connect(&tick, &QTimer::timeout,
                     [&] { longestGap = std::max(longestGap, sinceTick.restart()); });
    QElapsedTimer aside;
    aside.start();
    sinceTick.start();
    tick.start();
    const summary::SummaryLoad asideLoad =
        summary::loadSummaryAside(db.settings(), u"SXBENCH"_s, 1, {2025, 0}, now);
    longestGap = std::max(longestGap, sinceTick.elapsed());
    tick.stop();
    const qint64 asideMs = aside.elapsed();
    if (asideLoad.problem != summary::LoadProblem::None)
        return 1;

    const summary::Totals& t = load.input.zones.first().summary.totals;
    std::printf("%-10s %d readings, %d excursions: read and summarise %7.1f ms, PDF %7.1f ms "
                "(%lld kB), together %7.1f ms  (target 1000)\n",
                kind, t.readings, t.excursions, read, write,
                static_cast<long long>(QFileInfo(pdf).size() / 1024), read + write);
    std::printf("%-10s read aside as the window does %lld ms, longest GUI-thread gap %lld ms "
                "(target 250)\n",
                kind, static_cast<long long>(asideMs), static_cast<long long>(longestGap));
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::printf("summary of a year of one-minute records of one zone (%lld rows)\n",
                static_cast<long long>(kRows));
    return benchKind("sqlite") + benchKind("postgresql");
}
