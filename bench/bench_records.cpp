// The records view with a year of one-minute records of one zone: the same
// query through the raw driver, then from the selection of "ΟΛΟΙ" to the
// painted grid, what events got through meanwhile, the memory it holds,
// scrolling, the workbook export of 100,000 rows and the report of 10,000.
#include "ChooseItem.h"
#include "GuiFixture.h"
#include "model/Dialect.h"
#include "model/NativeCursors.h"
#include "model/SqlDateTime.h"
#include "model/records/RecordsQuery.h"
#include "reports/records/RecordsModel.h"
#include "sim/RecordWriter.h"
#include "ui/UnitList.h"
#include "views/records/RecordsWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPrinter>
#include <QScrollBar>
#include <QTimer>

// libpq-dev keeps its header in a folder of its own; the library comes with sxcore.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <postgresql/libpq-fe.h>
#include <sqlite3.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr qint64 kRows = 525600;

double residentMb()
{
    QFile f(u"/proc/self/statm"_s);
    if (!f.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> parts = f.readAll().split(' ');
    return parts.size() > 1
               ? parts[1].toDouble() * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0)
               : 0;
}

template <typename F> double best(int runs, F&& run)
{
    double t = 1e9;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        t = std::min(t, timer.nsecsElapsed() / 1e9);
    }
    return t;
}

// Every column of every row, as a reader of the records must at least do.
qint64 rawSqlite(sqlite3* db, const QByteArray& sql)
{
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(db, sql.constData(), -1, &stmt, nullptr);
    qint64 n = 0;
    double sum = 0;
    while (sqlite3_step(stmt) == SQLITE_ROW) {
        const unsigned char* when = sqlite3_column_text(stmt, 2);
        sum += sqlite3_column_double(stmt, 3) + sqlite3_column_int(stmt, 4) +
               double(sqlite3_column_int64(stmt, 5)) + (when ? when[18] : 0);
        ++n;
    }
    sqlite3_finalize(stmt);
    return sum > 0 ? n : n;
}

qint64 rawPq(PGconn* conn, const QByteArray& sql)
{
    PGresult* res = PQexec(conn, sql.constData());
    const int rows = PQntuples(res);
    double sum = 0;
    for (int r = 0; r < rows; ++r) {
        sum += std::strtod(PQgetvalue(res, r, 3), nullptr) + std::atoi(PQgetvalue(res, r, 4)) +
               double(std::atoll(PQgetvalue(res, r, 5))) + PQgetvalue(res, r, 2)[18];
    }
    PQclear(res);
    return sum > 0 ? rows : rows;
}

int runFor(const QString& kind)
{
    qputenv("SX_TEST_DB", kind.toUtf8());
    test::GuiFixture fx;
    if (!fx.problem().isEmpty() || !fx.ready()) {
        std::printf("%s: skipped (%s)\n", qPrintable(kind), qPrintable(fx.problem()));
        return 0;
    }
    const qint64 from = secsFromCivil({2025, 1, 1, 0, 0, 0});
    if (!fx.exec(
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, "
            u"SyI_Used) VALUES ('SXBENCH', '1', 'Bench', 1);\n"
            "INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype, SeI_Used, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn) VALUES ('SXBENCH', 1, 'Θάλαμος', 0, 1, 30, 10, 1, 1, 100, 5)"_s))
        return 1;
    QElapsedTimer seedTimer;
    seedTimer.start();
    if (const DbError e = sim::seedRecords(fx.db, u"SXBENCH"_s, 1, 0, from, 60, kRows, 1);
        e.isError()) {
        std::fprintf(stderr, "seed failed: %s\n", qPrintable(e.description));
        return 1;
    }
    if (fx.db.kind() == DbKind::PostgreSQL)
        (void)fx.db.exec(u"ANALYZE Records"_s);
    std::printf("%s: seeded %lld records in %.2f s\n", qPrintable(kind),
                static_cast<long long>(kRows), seedTimer.nsecsElapsed() / 1e9);

    records::ZoneEntry zone;
    zone.serial = u"SXBENCH"_s;
    zone.number = 1;
    const QByteArray sql = records::recordsSql(fx.db.kind(), zone,
                                               records::recordsPeriod(25, records::kWholeYearIndex))
                               .toUtf8();
    qint64 rows = 0;
    double raw = 0;
    if (fx.db.kind() == DbKind::SQLite) {
        sqlite3* h = detail::sqliteHandle(fx.db.qtDatabase());
        raw = best(3, [&] { rows = rawSqlite(h, sql); });
    } else {
        PGconn* h = detail::pgHandle(fx.db.qtDatabase());
        raw = best(3, [&] { rows = rawPq(h, sql); });
    }
    std::printf("%s: same query, raw driver      %7.3f s  (%lld rows)\n", qPrintable(kind), raw,
                static_cast<long long>(rows));

    const double rssBefore = residentMb();
    RecordsWindow w(fx.ctx);
    w.show();
    fillSystemSelect(w, 0, false);
    test::chooseItem(w.yearSelect(), 25);
    test::chooseItem(w.monthSelect(), 0);
    QCoreApplication::processEvents();

    int ticks = 0;
    QTimer ticker;
    ticker.setInterval(10);
    QObject::connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    double window = 1e9;
    double ticksPerSecond = 0;
    for (int run = 0; run < 3; ++run) {
        test::chooseItem(w.monthSelect(), 0);
        ticks = 0;
        ticker.start();
        QElapsedTimer t;
        t.start();
        test::chooseItem(w.monthSelect(), records::kWholeYearIndex);
        w.grid()->viewport()->repaint();
        const double s = t.nsecsElapsed() / 1e9;
        ticker.stop();
        if (s < window) {
            window = s;
            ticksPerSecond = ticks / s;
        }
    }
    std::printf("%s: click to painted grid        %7.3f s  (%d rows, %.2fx raw)\n",
                qPrintable(kind), window, w.model()->rowCount(), window / raw);
    std::printf("%s: 10 ms timer during the load  %7.0f ticks/s (events still served)\n",
                qPrintable(kind), ticksPerSecond);
    std::printf(
        "%s: resident with a year loaded  %7.1f MB  (%.1f MB more than before the window)\n",
        qPrintable(kind), residentMb(), residentMb() - rssBefore);

    if (qEnvironmentVariableIsSet("SX_SHOT_DIR")) {
        w.grid()->setFocus();
        (void)w.grab().save(
            QDir(qEnvironmentVariable("SX_SHOT_DIR")).filePath(u"records-year-%1.png"_s.arg(kind)));
    }

    QScrollBar* bar = w.grid()->verticalScrollBar();
    const int steps = 2000;
    QElapsedTimer scroll;
    scroll.start();
    for (int i = 0; i < steps; ++i) {
        bar->setValue(int(qint64(bar->maximum()) * i / steps));
        w.grid()->viewport()->repaint();
    }
    std::printf("%s: scroll and repaint           %7.3f ms a page (%d pages across the year)\n",
                qPrintable(kind), scroll.nsecsElapsed() / 1e6 / steps, steps);

    const QString templateFile =
        QDir(QCoreApplication::applicationDirPath()).filePath(u"../shell/TEMPLATEv2.xlsx"_s);
    w.setTemplatePath(templateFile);
    const QString xlsxFile = fx.scratch.folder() + u"/bench.xlsx"_s;
    w.selectRows(0, 99999, 0);
    fx.dialogs.answerFile(xlsxFile);
    QElapsedTimer exportTimer;
    exportTimer.start();
    w.saveRecords();
    std::printf("%s: export of 100,000 rows       %7.3f s  (%.1f MB workbook%s)\n",
                qPrintable(kind), exportTimer.nsecsElapsed() / 1e9,
                QFileInfo(xlsxFile).size() / 1e6, QFile::exists(xlsxFile) ? "" : ", NOT WRITTEN");

    const QString pdf = fx.scratch.folder() + u"/bench.pdf"_s;
    w.selectRows(0, 9999, 0);
    fx.dialogs.answerPrint(true, [pdf](QPrinter& p) {
        p.setOutputFormat(QPrinter::PdfFormat);
        p.setOutputFileName(pdf);
    });
    QElapsedTimer printTimer;
    printTimer.start();
    w.printRecords();
    std::printf("%s: report of 10,000 rows to PDF %7.3f s  (%.1f MB)\n", qPrintable(kind),
                printTimer.nsecsElapsed() / 1e9, QFileInfo(pdf).size() / 1e6);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int rc = runFor(u"sqlite"_s);
    rc |= runFor(u"postgresql"_s);
    return rc;
}
