// Reads a year of one-minute records of one point back: through the raw
// driver, through the data layer (native reader) and through QSqlQuery.
#include "ScratchDatabase.h"
#include "model/Database.h"
#include "model/Dialect.h"
#include "model/NativeCursors.h"
#include "model/SqlDateTime.h"
#include "sim/RecordWriter.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <libpq-fe.h>
#include <sqlite3.h>
#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr qint64 kRows = 525600;

QString yearQuery(DbKind kind, qint64 from, qint64 to)
{
    return u"SELECT Rec_Datetime, Rec_Value, Rec_Sensortype FROM Records WHERE Rec_SyI_Serialnumber='SXBENCH' AND Rec_SeI_Sensornumber=1 AND Rec_Datetime"_s +
           sqlDateRange(kind, toQDateTime(from), toQDateTime(to)) +
           u" ORDER BY Rec_Datetime DESC"_s;
}

// Runs the readers in turns, five rounds, and keeps each one's fastest time
// in seconds: a burst of load elsewhere then costs every reader alike rather
// than the one that happened to run during it. The processor time of this
// thread is kept too; on a shared machine it leaves out the waits for a core.
struct Reader {
    const char* name;
    std::function<qint64()> run;
    double best = 1e9;
    double bestCpu = 1e9;
    qint64 rows = 0;
};

double threadCpuSeconds()
{
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

void race(std::vector<Reader>& readers)
{
    for (int round = 0; round < 5; ++round) {
        for (Reader& r : readers) {
            QElapsedTimer timer;
            timer.start();
            const double cpu = threadCpuSeconds();
            r.rows = r.run();
            r.bestCpu = std::min(r.bestCpu, threadCpuSeconds() - cpu);
            r.best = std::min(r.best, timer.nsecsElapsed() / 1e9);
        }
    }
}

qint64 rawSqlite(sqlite3* db, const QByteArray& sql, double& checksum)
{
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(db, sql.constData(), -1, &stmt, nullptr);
    qint64 n = 0;
    while (sqlite3_step(stmt) == SQLITE_ROW) {
        const unsigned char* when = sqlite3_column_text(stmt, 0);
        checksum +=
            sqlite3_column_double(stmt, 1) + sqlite3_column_int(stmt, 2) + (when ? when[18] : 0);
        ++n;
    }
    sqlite3_finalize(stmt);
    return n;
}

qint64 rawPq(PGconn* conn, const QByteArray& sql, double& checksum)
{
    PGresult* res = PQexec(conn, sql.constData());
    const int rows = PQntuples(res);
    for (int r = 0; r < rows; ++r) {
        const char* when = PQgetvalue(res, r, 0);
        checksum += std::strtod(PQgetvalue(res, r, 1), nullptr) + std::atoi(PQgetvalue(res, r, 2)) +
                    when[18];
    }
    PQclear(res);
    return rows;
}

qint64 layer(Database& db, const QString& sql, double& checksum)
{
    Rows r = db.read(sql);
    qint64 n = 0;
    while (r.next()) {
        checksum += r.real(1).value_or(0) + static_cast<double>(r.integer(2).value_or(0)) +
                    static_cast<double>(r.dateTime(0).value_or(0) % 7);
        ++n;
    }
    return n;
}

int runFor(const QString& kind)
{
    qputenv("SX_TEST_DB", kind.toUtf8());
    test::ScratchDatabase scratch;
    if (!scratch.problem().isEmpty()) {
        std::printf("%s: skipped (%s)\n", qPrintable(kind), qPrintable(scratch.problem()));
        return 0;
    }
    Database db;
    if (!scratch.open(db))
        return 1;
    const qint64 from = secsFromCivil({2025, 1, 1, 0, 0, 0});
    QElapsedTimer seedTimer;
    seedTimer.start();
    const DbError e = sim::seedRecords(db, u"SXBENCH"_s, 1, 0, from, 60, kRows, 1);
    if (e.isError()) {
        std::fprintf(stderr, "seed failed: %s\n", qPrintable(e.description));
        return 1;
    }
    std::printf("%s: seeded %lld records in %.2f s\n", qPrintable(kind),
                static_cast<long long>(kRows), seedTimer.nsecsElapsed() / 1e9);
    if (db.kind() == DbKind::PostgreSQL)
        (void)db.exec(u"ANALYZE Records"_s);

    const QString sql = yearQuery(db.kind(), from, from + kRows * 60);
    double sum = 0;
    std::vector<Reader> readers;
    if (db.kind() == DbKind::SQLite) {
        sqlite3* h = detail::sqliteHandle(db.qtDatabase());
        readers.push_back(
            {"raw sqlite3 API  ", [&, h] { return rawSqlite(h, sql.toUtf8(), sum); }});
    } else {
        PGconn* h = detail::pgHandle(db.qtDatabase());
        readers.push_back({"raw libpq        ", [&, h] { return rawPq(h, sql.toUtf8(), sum); }});
    }
    readers.push_back({"data layer (Rows)", [&] {
                           db.setNativeReads(true);
                           return layer(db, sql, sum);
                       }});
    readers.push_back({"through QSqlQuery", [&] {
                           db.setNativeReads(false);
                           return layer(db, sql, sum);
                       }});
    race(readers);
    db.setNativeReads(true);
    const Reader& raw = readers.front();
    for (const Reader& r : readers) {
        std::printf("%s: %s %8.3f s  (%lld rows, %.2fx raw; processor %.3f s, %.2fx)\n",
                    qPrintable(kind), r.name, r.best, static_cast<long long>(r.rows),
                    r.best / raw.best, r.bestCpu, r.bestCpu / raw.bestCpu);
    }
    std::printf("(checksum %.1f)\n", sum);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    int rc = runFor(u"sqlite"_s);
    rc |= runFor(u"postgresql"_s);
    return rc;
}
