// The events view on a busy fleet: a year of 200,000 events of one unit from
// the click to the painted grid, that year's report printed to PDF, "ΟΛΑ" over
// 50 units of 4,000 events each, and marking 10,000 selected rows; wrapping a
// very long line for the reports. SQLite always; PostgreSQL too when
// SX_TEST_PG names a server.
#include "BestTime.h"
#include "ChooseItem.h"
#include "GuiFixture.h"
#include "model/SqlDateTime.h"
#include "model/events/EventQuery.h"
#include "model/events/EventsData.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"
#include "reports/events/EventsModel.h"
#include "reports/events/EventsReport.h"
#include "sim/BulkInsert.h"
#include "ui/UnitList.h"
#include "views/events/EventsWindow.h"
#include "views/records/RecordsWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPdfWriter>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;
using sx::test::chooseItem;

namespace {

constexpr int kBusyEvents = 200000;
constexpr int kFleetUnits = 50;
constexpr int kFleetEvents = 4000;

DbError seedEvents(Database& db, const QString& serial, int count, qint64 fromSecs, qint64 spanSecs)
{
    sim::BulkInsert rows(db, u"Events_1",
                         {u"Event_SyI_Serialnumber"_s, u"Event_SystemEventSN"_s,
                          u"Event_Datetime"_s, u"Event_EventSource"_s, u"Event_Condition"_s,
                          u"Event_SeI_Sensortype"_s, u"Event_Value"_s, u"Event_Info1"_s,
                          u"Event_Ack"_s});
    static const int mains[] = {1, 0, 17, 16, 33, 32};
    for (int i = 0; i < count; ++i) {
        const int r = i % 100;
        qint64 source = 0;
        qint64 condition = 0;
        QString info;
        if (r < 80) {
            source = i % 20 + 1;
            condition = i % 2;
        } else if (r < 90) {
            source = 21;
            condition = mains[i % 6];
        } else if (r < 94) {
            source = 22;
            info = u"3;7"_s;
        } else if (r < 96) {
            source = 23;
            info = u"3;5"_s;
        } else if (r < 98) {
            source = 24;
            info = u"2;1"_s;
        } else {
            source = 25;
            info = u"1;4;8"_s;
        }
        const qint64 secs = fromSecs + spanSecs * i / count;
        if (DbError e = rows.add({serial, qint64(i + 1), SqlDateTimeValue{secs}, source, condition,
                                  qint64(i % 7 == 0 ? 2 : 0), 20.0 + (i % 50) * 0.3, info,
                                  qint64(i % 3 == 0 ? 1 : 0)});
            e.isError())
            return e;
    }
    return rows.finish();
}

bool seed(test::GuiFixture& fx)
{
    QStringList sql;
    const auto unit = [&sql](const QString& serial, const QString& name, int location) {
        sql << u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, "
               "SyI_Used, SyI_EventsTable_Pagebyteswritt, SyI_EventsTable_Lastpagesn) VALUES "
               "('%1', '%2', '%3', 1, 64, 100)"_s.arg(serial)
                   .arg(location)
                   .arg(name);
        for (int z = 1; z <= 20; ++z)
            sql << u"INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, "
                   "SeI_Sensorname, SeI_Sensortype, SeI_Used) VALUES ('%1', %2, 'Ζώνη %2', 0, 1)"_s
                       .arg(serial)
                       .arg(z);
        for (int p = 1; p <= 4; ++p)
            sql << u"INSERT INTO Powermonitoring_Info (PmI_SyI_Serialnumber, PmI_Powernumber, "
                   "PmI_Powername, PmI_Used) VALUES ('%1', %2, 'Γραμμή %2', 1)"_s.arg(serial)
                       .arg(p);
    };
    // "Α..." sorts before the fleet's names: the busy unit is list entry 0.
    unit(u"SXBUSY"_s, u"Αποθήκη"_s, 1);
    for (int u = 0; u < kFleetUnits; ++u)
        unit(u"SXF%1"_s.arg(u, 3, 10, QChar(u'0')), u"Στόλος %1"_s.arg(u, 3, 10, QChar(u'0')),
             100 + u);
    if (!fx.exec(sql.join(u";\n"_s)))
        return false;
    (void)fx.db.begin();
    // The busy unit in 2024, the fleet in 2025: each list reads only its own.
    const qint64 y2024 = secsFromCivil({2024, 1, 1, 0, 0, 0});
    const qint64 y2025 = secsFromCivil({2025, 1, 1, 0, 0, 0});
    DbError e = seedEvents(fx.db, u"SXBUSY"_s, kBusyEvents, y2024, y2025 - y2024 - 60);
    for (int u = 0; u < kFleetUnits && !e.isError(); ++u)
        e = seedEvents(fx.db, u"SXF%1"_s.arg(u, 3, 10, QChar(u'0')), kFleetEvents, y2025,
                       365 * 86400 - 60);
    if (e.isError()) {
        std::fprintf(stderr, "seed failed: %s\n", qPrintable(e.description));
        (void)fx.db.rollback();
        return false;
    }
    (void)fx.db.commit();
    if (fx.db.kind() == DbKind::PostgreSQL)
        (void)fx.db.exec(u"ANALYZE"_s);
    return true;
}

// The report of the whole year: every row selected, printed to PDF, best of
// three; a 10 ms timer counts how often the window got to serve its events.
void benchReport(EventsWindow& w, test::GuiFixture& fx, const QString& kind)
{
    w.selectRows(0, w.model()->rowCount() - 1);
    const QString pdf = QDir(fx.scratch.folder()).filePath(u"events-year-%1.pdf"_s.arg(kind));
    int ticks = 0;
    QTimer ticker;
    ticker.setInterval(10);
    QObject::connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    double report = 1e9;
    double ticksPerSecond = 0;
    for (int run = 0; run < 3; ++run) {
        // Each answer is taken once.
        fx.dialogs.answerPrint(true, [pdf](QPrinter& p) {
            p.setOutputFormat(QPrinter::PdfFormat);
            p.setOutputFileName(pdf);
        });
        ticks = 0;
        ticker.start();
        if (run == 0 && qEnvironmentVariableIsSet("SX_SHOT_DIR"))
            QTimer::singleShot(5000, [&w, kind] {
                const QString shot = QDir(qEnvironmentVariable("SX_SHOT_DIR"))
                                         .filePath(u"events-printing-%1.png"_s.arg(kind));
                (void)w.screen()->grabWindow(0).save(shot);
            });
        const double s = bench::bestMs(1, [&w] { w.printAction()->trigger(); }) / 1e3;
        ticker.stop();
        if (s < report) {
            report = s;
            ticksPerSecond = ticks / s;
        }
    }
    QProcess info;
    info.start(u"pdfinfo"_s, {pdf});
    info.waitForFinished(60000);
    const QString pages = QString::fromUtf8(info.readAllStandardOutput())
                              .section(u"Pages:"_s, 1, 1)
                              .section(u'\n', 0, 0)
                              .trimmed();
    std::printf("%s: report of the year, %d rows to PDF             %6.3f s  (%s pages, %.1f MB; "
                "target 10 s)\n",
                qPrintable(kind), w.model()->rowCount(), report, qPrintable(pages),
                QFileInfo(pdf).size() / 1e6);
    std::printf("%s: 10 ms timer during the report                  %6.0f ticks/s\n",
                qPrintable(kind), ticksPerSecond);
    std::fflush(stdout);
    if (qEnvironmentVariableIsSet("SX_SHOT_DIR"))
        (void)QFile::copy(
            pdf,
            QDir(qEnvironmentVariable("SX_SHOT_DIR")).filePath(u"events-year-%1.pdf"_s.arg(kind)));
}

// The load alone, without the window, for comparison.
void benchLoad(Database& db, const QString& kind)
{
    events::EventsRequest busy;
    busy.units = {{0, u"SXBUSY"_s}};
    busy.kind = events::EventKind::Both;
    busy.newOnly = false;
    busy.period = events::eventsPeriod(24, events::kWholeYearIndex);
    double loadOnly = 1e9;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer t;
        t.start();
        const events::EventsLoad load = events::loadEvents(db, busy);
        loadOnly = std::min(loadOnly, t.nsecsElapsed() / 1e9);
    }
    std::printf("%s: busy unit, rows read and described, no window  %6.3f s\n", qPrintable(kind),
                loadOnly);
    // The other way: keep every cell text built at fill time for the grid to show.
    double keepTexts = 1e9;
    size_t kept = 0;
    for (int i = 0; i < 3; ++i) {
        std::vector<QString> texts;
        texts.reserve(kBusyEvents);
        QElapsedTimer t;
        t.start();
        const events::EventsLoad load = events::loadEvents(db, busy, [&texts](const QString& s) {
            texts.push_back(s);
            return 1;
        });
        keepTexts = std::min(keepTexts, t.nsecsElapsed() / 1e9);
        kept = texts.size();
    }
    std::printf("%s: the same, keeping all %zu texts               %6.3f s\n", qPrintable(kind),
                kept, keepTexts);
}

// From the change of a choice to the painted grid.
double timeFill(EventsWindow& w, const std::function<void()>& change)
{
    QElapsedTimer t;
    t.start();
    change();
    w.grid()->viewport()->repaint();
    return t.nsecsElapsed() / 1e9;
}

int runFor(const QString& kind, bool reportOnly)
{
    qputenv("SX_TEST_DB", kind.toUtf8());
    test::GuiFixture fx;
    if (!fx.problem().isEmpty() || !fx.ready()) {
        std::printf("%s: skipped (%s)\n", qPrintable(kind), qPrintable(fx.problem()));
        return 0;
    }
    QElapsedTimer seedTimer;
    seedTimer.start();
    if (!seed(fx))
        return 1;
    std::printf("%s: seeded %d + %d x %d events in %.1f s\n", qPrintable(kind), kBusyEvents,
                kFleetUnits, kFleetEvents, seedTimer.nsecsElapsed() / 1e9);
    std::fflush(stdout);

    if (!reportOnly)
        benchLoad(fx.db, kind);

    EventsWindow w(fx.ctx);
    w.resize(1100, 720);
    w.show();
    fillSystemSelect(w, 0, true);
    w.newOption(1)->click();
    w.kindOption(2)->click();
    chooseItem(w.yearSelect(), 24);
    QCoreApplication::processEvents();

    int ticks = 0;
    QTimer ticker;
    ticker.setInterval(10);
    QObject::connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    double year = 1e9;
    double ticksPerSecond = 0;
    for (int run = 0; run < (reportOnly ? 1 : 3); ++run) {
        chooseItem(w.monthSelect(), 0);
        ticks = 0;
        ticker.start();
        const double s =
            timeFill(w, [&w] { chooseItem(w.monthSelect(), events::kWholeYearIndex); });
        ticker.stop();
        if (s < year) {
            year = s;
            ticksPerSecond = ticks / s;
        }
    }
    int tall = 0;
    for (int r = 0; r < w.model()->rowCount(); ++r)
        tall += w.model()->lines(r) > 1 ? 1 : 0;
    std::printf("%s: busy unit, year, click to painted grid          %6.3f s  (%d rows, %d of "
                "them taller; target %.1f s)\n",
                qPrintable(kind), year, w.model()->rowCount(), tall,
                kind == u"sqlite"_s ? 1.5 : 2.5);
    std::printf("%s: 10 ms timer during the load                    %6.0f ticks/s\n",
                qPrintable(kind), ticksPerSecond);

    QScrollBar* bar = w.grid()->verticalScrollBar();
    const int steps = reportOnly ? 1 : 500;
    QElapsedTimer scroll;
    scroll.start();
    for (int i = 0; i < steps; ++i) {
        bar->setValue(int(qint64(bar->maximum()) * i / steps));
        w.grid()->viewport()->repaint();
    }
    std::printf("%s: scroll and repaint                             %6.3f ms a page\n",
                qPrintable(kind), scroll.nsecsElapsed() / 1e6 / steps);
    if (qEnvironmentVariableIsSet("SX_SHOT_DIR"))
        (void)w.grab().save(
            QDir(qEnvironmentVariable("SX_SHOT_DIR")).filePath(u"events-year-%1.png"_s.arg(kind)));

    benchReport(w, fx, kind);
    if (reportOnly)
        return 0;

    // All units: the fleet's year (the busy unit has nothing in 2025).
    chooseItem(w.yearSelect(), 25);
    fillSystemSelect(w, w.systemSelect()->count() - 1, true);
    w.newOption(1)->click();
    w.kindOption(2)->click();
    double fleet = 1e9;
    for (int run = 0; run < 3; ++run) {
        chooseItem(w.monthSelect(), 0);
        fleet = std::min(
            fleet, timeFill(w, [&w] { chooseItem(w.monthSelect(), events::kWholeYearIndex); }));
    }
    tall = 0;
    for (int r = 0; r < w.model()->rowCount(); ++r)
        tall += w.model()->lines(r) > 1 ? 1 : 0;
    std::printf("%s: ΟΛΑ, %d units, year, click to painted grid     %6.3f s  (%d rows, %d of "
                "them taller; target 2.0 s)\n",
                qPrintable(kind), kFleetUnits, fleet, w.model()->rowCount(), tall);
    if (qEnvironmentVariableIsSet("SX_SHOT_DIR"))
        (void)w.grab().save(
            QDir(qEnvironmentVariable("SX_SHOT_DIR")).filePath(u"events-all-%1.png"_s.arg(kind)));

    // Marking: 10,000 rows of the busy unit's new events in two months.
    fillSystemSelect(w, 0, true);
    chooseItem(w.yearSelect(), 24);
    w.newOption(0)->click();
    w.kindOption(2)->click();
    chooseItem(w.monthSelect(), 0);
    chooseItem(w.monthSelect(), events::kWholeYearIndex);
    const int before = w.model()->rowCount();
    w.selectRows(0, 9999);
    QElapsedTimer markTimer;
    markTimer.start();
    w.markButton()->click();
    const double markClick = markTimer.nsecsElapsed() / 1e9;
    std::printf("%s: mark 10,000 rows, transaction and refill        %6.3f s  (%d -> %d rows)\n",
                qPrintable(kind), markClick, before, w.model()->rowCount());
    QList<events::MarkTarget> targets;
    for (int r = 0; r < 10000; ++r)
        targets.append({w.model()->serial(r), w.model()->sequence(r)});
    QElapsedTimer txTimer;
    txTimer.start();
    const DbError e = events::markEvents(fx.db, targets, 1);
    std::printf("%s: mark 10,000 rows, the transaction alone         %6.3f s  (target 2.0 s)%s\n",
                qPrintable(kind), txTimer.nsecsElapsed() / 1e9,
                e.isError() ? qPrintable(u" FAILED: "_s + e.description) : "");
    return 0;
}

// One line of 100,000 characters in words of 3 to 12 letters, and one
// without a blank, wrapped to a report column.
void benchWrap()
{
    QTemporaryDir dir;
    QPdfWriter writer(dir.filePath(u"wrap.pdf"_s));
    writer.setPageSize(QPageSize(QPageSize::A4));
    ReportPainter painter(writer);
    QString words;
    for (int i = 0; words.size() < 100000; ++i)
        words += QString(3 + i % 10, QChar(u'α' + i % 24)) + u' ';
    const QString solid(100000, u'Ω');
    for (const auto& [name, line] : {std::pair{"words", words}, std::pair{"one word", solid}}) {
        QString text = line;
        QElapsedTimer t;
        t.start();
        const int lines =
            wrapToWidth(text, events_report::columnTextWidth(painter.pageWidth()), painter);
        std::printf("wrap 100,000 characters (%s) to a report column  %6.3f s  (%d lines)\n", name,
                    t.nsecsElapsed() / 1e9, lines);
    }
    (void)painter.end();
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // "report": only the year's report, on SQLite.
    const bool reportOnly = app.arguments().contains(u"report"_s);
    if (reportOnly)
        return runFor(u"sqlite"_s, true);
    benchWrap();
    int rc = runFor(u"sqlite"_s, false);
    rc |= runFor(u"postgresql"_s, false);
    return rc;
}
