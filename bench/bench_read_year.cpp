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

#include <libpq-fe.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr qint64 kRows = 525600;

QString yearQuery(DbKind kind, qint64 from, qint64 to)
{
    return u"SELECT Rec_Datetime, Rec_Value, Rec_Sensortype FROM Records WHERE Rec_SyI_Serialnumber='SXBENCH' AND Rec_SeI_Sensornumber=1 AND Rec_Datetime"_s +
           sqlDateRange(kind, toQDateTime(from), toQDateTime(to)) + u" ORDER BY Rec_Datetime DESC"_s;
}

// The fastest of three runs, in seconds.
template <typename F>
double best(F&& run, qint64& rows)
{
    double t = 1e9;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer timer;
        timer.start();
        rows = run();
        t = std::min(t, timer.nsecsElapsed() / 1e9);
    }
    return t;
}

qint64 rawSqlite(sqlite3* db, const QByteArray& sql, double& checksum)
{
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(db, sql.constData(), -1, &stmt, nullptr);
    qint64 n = 0;
    while (sqlite3_step(stmt) == SQLITE_ROW) {
        const unsigned char* when = sqlite3_column_text(stmt, 0);
        checksum += sqlite3_column_double(stmt, 1) + sqlite3_column_int(stmt, 2) + (when ? when[18] : 0);
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
        checksum += std::strtod(PQgetvalue(res, r, 1), nullptr) +
                    std::atoi(PQgetvalue(res, r, 2)) + when[18];
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
    qint64 rows = 0;
    double raw = 0;
    if (db.kind() == DbKind::SQLite) {
        sqlite3* h = detail::sqliteHandle(db.qtDatabase());
        raw = best([&] { return rawSqlite(h, sql.toUtf8(), sum); }, rows);
        std::printf("%s: raw sqlite3 API           %8.3f s  (%lld rows)\n", qPrintable(kind), raw,
                    static_cast<long long>(rows));
    } else {
        PGconn* h = detail::pgHandle(db.qtDatabase());
        raw = best([&] { return rawPq(h, sql.toUtf8(), sum); }, rows);
        std::printf("%s: raw libpq                 %8.3f s  (%lld rows)\n", qPrintable(kind), raw,
                    static_cast<long long>(rows));
    }
    db.setNativeReads(true);
    const double native = best([&] { return layer(db, sql, sum); }, rows);
    std::printf("%s: data layer (Rows)         %8.3f s  (%lld rows, %.2fx raw)\n", qPrintable(kind),
                native, static_cast<long long>(rows), native / raw);
    db.setNativeReads(false);
    const double viaQt = best([&] { return layer(db, sql, sum); }, rows);
    std::printf("%s: through QSqlQuery         %8.3f s  (%lld rows, %.2fx raw)\n",
                qPrintable(kind), viaQt, static_cast<long long>(rows), viaQt / raw);
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
