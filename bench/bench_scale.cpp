// The console on a fleet of thousands, against a database the simulator has
// seeded (sentorax-server-sim seed --units 5000 --records N --messages N):
// the fleet summary, one zone's year in the records view against the raw
// driver, every unit's events of one month, start-up to a filled main view,
// and the peak memory of this process, which does the views' work.
//   bench_scale --db URL [--without-indexes] [--zone SERIAL]
// --without-indexes drops the simulator's indexes first and makes them again
// at the end, so the same figures show what they are worth.
#include "ChooseItem.h"
#include "ScriptedDialogs.h"
#include "model/ConnectionSettings.h"
#include "model/Dialect.h"
#include "model/NativeCursors.h"
#include "model/SqlDateTime.h"
#include "model/events/EventQuery.h"
#include "model/fleet/FleetSummary.h"
#include "model/records/RecordsQuery.h"
#include "model/settings/SettingsStore.h"
#include "model/settings/SettingsValidation.h"
#include "reports/events/EventsModel.h"
#include "reports/records/RecordsModel.h"
#include "shell/Startup.h"
#include "sim/DemoFleet.h"
#include "sim/SimSchema.h"
#include "ui/Navigator.h"
#include "ui/QueryFailureReporter.h"
#include "ui/UnitList.h"
#include "views/current/MainWindow.h"
#include "views/events/EventsWindow.h"
#include "views/records/RecordsWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <postgresql/libpq-fe.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;
using sx::test::chooseItem;

namespace {

double peakRssMb()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return static_cast<double>(u.ru_maxrss) / 1024.0;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

void line(const char* what, double figure, const char* unit, const QString& target,
          const QString& note = {})
{
    std::printf("%-46s %10.3f %-3s (target %s)%s%s\n", what, figure, unit, qPrintable(target),
                note.isEmpty() ? "" : "  ", qPrintable(note));
    std::fflush(stdout);
}

// Every column of every row of the records query, as bench_records reads it.
qint64 rawRead(Database& db, const QByteArray& sql)
{
    qint64 n = 0;
    double sum = 0;
    if (db.kind() == DbKind::SQLite) {
        sqlite3_stmt* stmt = nullptr;
        sqlite3_prepare_v2(detail::sqliteHandle(db.qtDatabase()), sql.constData(), -1, &stmt,
                           nullptr);
        while (sqlite3_step(stmt) == SQLITE_ROW) {
            const unsigned char* when = sqlite3_column_text(stmt, 2);
            sum += sqlite3_column_double(stmt, 3) + sqlite3_column_int(stmt, 4) +
                   double(sqlite3_column_int64(stmt, 5)) + (when ? when[18] : 0);
            ++n;
        }
        sqlite3_finalize(stmt);
    } else {
        PGresult* res = PQexec(detail::pgHandle(db.qtDatabase()), sql.constData());
        n = PQntuples(res);
        for (int r = 0; r < n; ++r) {
            sum += std::strtod(PQgetvalue(res, r, 3), nullptr) + std::atoi(PQgetvalue(res, r, 4)) +
                   double(std::atoll(PQgetvalue(res, r, 5))) + PQgetvalue(res, r, 2)[18];
        }
        PQclear(res);
    }
    return sum > 0 ? n : n;
}

struct Console {
    explicit Console(const ConnectionSettings& where) : settings(dir.filePath(u"settings.ini"_s))
    {
        ok = !link.openAndWait(where).isError();
        ctx.db = &link;
        ctx.dialogs = &dialogs;
        ctx.settings = &settings;
        ctx.clock = &clock;
        failures = std::make_unique<QueryFailureReporter>(ctx);
        ctx.failures = failures.get();
        navigator = std::make_unique<Navigator>(ctx);
        ctx.navigator = navigator.get();
        ctx.terminate = [] {};
    }
    QTemporaryDir dir;
    DbLink link;
    test::ScriptedDialogs dialogs;
    SettingsStore settings;
    Clock clock;
    AppContext ctx;
    std::unique_ptr<QueryFailureReporter> failures;
    std::unique_ptr<Navigator> navigator;
    bool ok = false;
};

void benchFleet(Database& db, bool indexed)
{
    std::vector<double> ms;
    int units = 0;
    int news = 0;
    for (int i = 0; i < (indexed ? 30 : 5); ++i) {
        QElapsedTimer t;
        t.start();
        const std::optional<FleetSummary> fleet = readFleetSummary(db);
        ms.push_back(t.nsecsElapsed() / 1e6);
        if (!fleet) {
            std::printf("fleet summary: failed\n");
            return;
        }
        units = static_cast<int>(fleet->units.size());
        news = 0;
        for (const UnitSummary& u : fleet->units)
            news += u.newMessages;
    }
    line("fleet summary, median", median(ms), "ms",
         db.kind() == DbKind::PostgreSQL ? u"50 ms"_s : u"50 ms on PostgreSQL"_s,
         u"%1 units, %2 new messages"_s.arg(units).arg(news));
}

void benchRecords(Console& c, Database& db, const QString& serial, int year, int runs)
{
    records::ZoneEntry zone;
    zone.serial = serial;
    zone.number = 1;
    const QByteArray sql =
        records::recordsSql(db.kind(), zone,
                            records::recordsPeriod(year - 2000, records::kWholeYearIndex))
            .toUtf8();
    double raw = 1e9;
    qint64 rows = 0;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        rows = rawRead(db, sql);
        raw = std::min(raw, t.nsecsElapsed() / 1e9);
    }
    line("one zone's year, raw driver", raw, "s", u"-"_s, u"%1 rows"_s.arg(rows));

    RecordsWindow w(c.ctx);
    w.show();
    fillSystemSelect(w, 0, false);
    chooseItem(w.systemSelect(), static_cast<int>(c.ctx.systemSerials.indexOf(serial)));
    chooseItem(w.yearSelect(), year - 2000);
    double view = 1e9;
    for (int i = 0; i < runs; ++i) {
        chooseItem(w.monthSelect(), 0);
        QElapsedTimer t;
        t.start();
        chooseItem(w.monthSelect(), records::kWholeYearIndex);
        w.grid()->viewport()->repaint();
        view = std::min(view, t.nsecsElapsed() / 1e9);
    }
    line("one zone's year, records view", view, "s", u"1.2x raw"_s,
         u"%1 rows, %2x raw"_s.arg(w.model()->rowCount()).arg(view / raw, 0, 'f', 2));
}

void benchEvents(Console& c, int year, int month)
{
    EventsWindow w(c.ctx);
    w.resize(1100, 720);
    w.show();
    chooseItem(w.yearSelect(), year - 2000);
    fillSystemSelect(w, 0, true);
    chooseItem(w.systemSelect(), w.systemSelect()->count() - 1);
    w.newOption(1)->click();
    w.kindOption(2)->click();
    double s = 1e9;
    for (int i = 0; i < 3; ++i) {
        chooseItem(w.monthSelect(), month == 1 ? 1 : 0);
        QElapsedTimer t;
        t.start();
        chooseItem(w.monthSelect(), month - 1);
        w.grid()->viewport()->repaint();
        s = std::min(s, t.nsecsElapsed() / 1e9);
    }
    line("every unit's events of a month, events view", s, "s", u"2 s"_s,
         u"%1 rows, %2 units"_s.arg(w.model()->rowCount()).arg(w.systemSelect()->count() - 1));
}

void benchStartup(Console& c, const ConnectionSettings& where)
{
    SettingsForm form;
    form.kind = where.kind;
    form.file = where.file;
    form.dataSource = where.dataSource;
    form.serverIp = where.serverIp;
    form.serverPort = where.serverPort;
    form.code = form.confirmation = u"1234"_s;
    if (!writeSettingsForm(c.settings, form)) {
        std::printf("start-up: settings not saved\n");
        return;
    }
    c.settings.setApp(u"Init"_s, u"1"_s);
    std::vector<double> ms;
    for (int round = 0; round < 3; ++round) {
        QElapsedTimer t;
        t.start();
        Startup startup(c.ctx, [](AppContext& ctx) { return new MainWindow(ctx); });
        startup.setLockFile(c.dir.filePath(u"bench.lock"_s));
        const auto code = startup.run();
        QCoreApplication::processEvents();
        ms.push_back(t.nsecsElapsed() / 1e6);
        if (code || !startup.mainWindow() || startup.mainWindow()->systemSelect()->count() == 0) {
            std::printf("start-up did not reach a filled view\n");
            return;
        }
    }
    line("start-up to a filled main view, median", median(ms), "ms", u"1000 ms"_s);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    const QStringList args = app.arguments();
    const auto value = [&args](const QString& name) {
        const qsizetype i = args.indexOf(name);
        return i >= 0 && i + 1 < args.size() ? args.at(i + 1) : QString();
    };
    ConnectionSettings where;
    if (!parseDbUrl(value(u"--db"_s), where)) {
        std::fprintf(stderr, "usage: bench_scale --db URL [--without-indexes] [--zone SERIAL]\n");
        return 2;
    }
    const bool without = args.contains(u"--without-indexes"_s);
    QString serial = value(u"--zone"_s);
    if (serial.isEmpty())
        serial = sim::buildDemoFleet(1, 1).value(0).serial;

    Database db;
    db.allowGuiThread();
    db.setDeadline(-1);
    if (DbError e = db.open(where); e.isError()) {
        std::fprintf(stderr, "cannot open the database: %s\n", qPrintable(e.description));
        return 1;
    }
    if (without) {
        QElapsedTimer t;
        t.start();
        if (DbError e = sim::dropConsoleIndexes(db); e.isError()) {
            std::fprintf(stderr, "cannot drop the indexes: %s\n", qPrintable(e.description));
            return 1;
        }
        std::printf("without the simulator's indexes (dropped in %.1f s)\n",
                    t.nsecsElapsed() / 1e9);
    }
    // The newest record of the zone decides the year and the month shown.
    qint64 end = 0;
    {
        Rows newest =
            db.read(u"SELECT MAX(Rec_Datetime) FROM Records WHERE Rec_SyI_Serialnumber="_s +
                    sqlQuote(serial) + u" AND Rec_SeI_Sensornumber=1"_s);
        if (newest.next())
            end = newest.dateTime(0).value_or(0);
    }
    const CivilTime last = civilFromSecs(end);
    std::printf("%s, zone 1 of %s, newest record %s\n",
                db.kind() == DbKind::PostgreSQL ? "PostgreSQL" : "SQLite", qPrintable(serial),
                qPrintable(sqlDateTimeText(end)));

    benchFleet(db, !without);
    {
        Console c(where);
        if (!c.ok) {
            std::fprintf(stderr, "the console cannot connect\n");
            return 1;
        }
        // Without the index a year is read from the whole table: once is enough.
        benchRecords(c, db, serial, last.year, without ? 1 : 3);
        // The month before the newest record: a whole one.
        const CivilTime month = civilFromSecs(end - 20 * 86400);
        benchEvents(c, month.year, month.month);
        benchStartup(c, where);
    }
    line("peak memory of this process", peakRssMb(), "MB", u"300 MB"_s);

    if (without) {
        QElapsedTimer t;
        t.start();
        const DbError e = sim::createConsoleIndexes(db);
        std::printf("indexes made again in %.1f s%s\n", t.nsecsElapsed() / 1e9,
                    e.isError() ? qPrintable(u": FAILED "_s + e.description) : "");
    }
    return 0;
}
