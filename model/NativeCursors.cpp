#include "model/NativeCursors.h"

#include "model/SqlDateTime.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <cerrno>
#include <cmath>
#include <libpq-fe.h>
#include <poll.h>
#include <sqlite3.h>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace sx::detail {

namespace {

std::optional<qint64> usableDate(std::optional<qint64> secs)
{
    if (secs && isZeroDate(*secs))
        return std::nullopt;
    return secs;
}

DbError sqliteError(sqlite3* db)
{
    DbError e;
    e.number = sqlite3_extended_errcode(db);
    if (e.number == 0)
        e.number = kProviderErrorNumber;
    e.description = QString::fromUtf8(sqlite3_errmsg(db));
    if (e.number == SQLITE_INTERRUPT)
        e.cause = DbFailureCause::Slow;
    return e;
}

bool abandoned(const std::atomic<bool>* abort)
{
    return (abort && abort->load(std::memory_order_relaxed)) ||
           consoleEnding().load(std::memory_order_relaxed);
}

int sqliteProgress(void* watch)
{
    const auto* w = static_cast<const StatementWatch*>(watch);
    return abandoned(w->abort) || w->deadline.hasExpired() ? 1 : 0;
}

class SqliteBackend final : public CursorBackend {
public:
    SqliteBackend(sqlite3* db, sqlite3_stmt* stmt) : m_db(db), m_stmt(stmt)
    {
        const int n = sqlite3_column_count(stmt);
        for (int c = 0; c < n; ++c)
            m_names << QString::fromUtf8(sqlite3_column_name(stmt, c));
        m_dates.resize(static_cast<size_t>(n));
    }
    ~SqliteBackend() override { sqlite3_finalize(m_stmt); }

    bool next() override
    {
        if (m_done)
            return false;
        const int rc = sqlite3_step(m_stmt);
        if (rc == SQLITE_ROW)
            return true;
        m_done = true;
        if (rc != SQLITE_DONE)
            m_error = sqliteError(m_db);
        return false;
    }
    int columnCount() const override { return static_cast<int>(m_names.size()); }
    QString columnName(int c) const override { return m_names.at(c); }
    bool isNull(int c) const override { return sqlite3_value_type(value(c)) == SQLITE_NULL; }

    std::optional<qint64> integer(int c) const override
    {
        sqlite3_value* v = value(c);
        switch (sqlite3_value_type(v)) {
        case SQLITE_INTEGER:
            return sqlite3_value_int64(v);
        case SQLITE_FLOAT: {
            const double d = sqlite3_value_double(v);
            if (!std::isfinite(d) || std::fabs(d) >= 9.2e18)
                return std::nullopt;
            return static_cast<qint64>(std::llround(d));
        }
        case SQLITE_TEXT:
            return parseIntegerText(bytes(v));
        default:
            return std::nullopt;
        }
    }
    std::optional<double> real(int c) const override
    {
        sqlite3_value* v = value(c);
        switch (sqlite3_value_type(v)) {
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return sqlite3_value_double(v);
        case SQLITE_TEXT:
            return parseRealText(bytes(v));
        default:
            return std::nullopt;
        }
    }
    std::optional<QString> text(int c) const override
    {
        sqlite3_value* v = value(c);
        if (sqlite3_value_type(v) == SQLITE_NULL)
            return std::nullopt;
        const auto b = bytes(v);
        return QString::fromUtf8(b.data(), static_cast<qsizetype>(b.size()));
    }
    std::optional<qint64> dateTime(int c) const override
    {
        sqlite3_value* v = value(c);
        if (sqlite3_value_type(v) != SQLITE_TEXT)
            return std::nullopt;
        return usableDate(m_dates[static_cast<size_t>(c)](bytes(v)));
    }
    DbError error() const override { return m_error; }

private:
    // One call into the statement per field; the value's own accessors are
    // plain reads. The value lives until the next step, and a connection is
    // only ever used by the thread that opened it.
    sqlite3_value* value(int c) const { return sqlite3_column_value(m_stmt, c); }

    static std::string_view bytes(sqlite3_value* v)
    {
        const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(v));
        const int n = sqlite3_value_bytes(v);
        return p ? std::string_view(p, static_cast<size_t>(n)) : std::string_view();
    }

    sqlite3* m_db;
    sqlite3_stmt* m_stmt;
    QStringList m_names;
    mutable std::vector<SqlDateTimeReader> m_dates;
    DbError m_error;
    bool m_done = false;
};

DbError pgResultError(PGconn* conn, const PGresult* res)
{
    DbError e;
    e.number = kProviderErrorNumber;
    const char* msg = res ? PQresultErrorMessage(res) : PQerrorMessage(conn);
    e.description = QString::fromUtf8(msg).trimmed();
    if (e.description.isEmpty())
        e.description = QString::fromUtf8(PQerrorMessage(conn)).trimmed();
    const char* state = res ? PQresultErrorField(res, PG_DIAG_SQLSTATE) : nullptr;
    e.cause = classifyFailure(e.description, state ? QString::fromLatin1(state) : QString());
    return e;
}

// Waits until the server's socket has data, the deadline passes or the
// console ends. The wait is cut into short slices so that an ending console
// is not held by a silent server.
enum class Wait { Readable, Deadline, Aborted, Failed };
Wait waitReadable(int fd, const QDeadlineTimer& deadline, const std::atomic<bool>* abort)
{
    constexpr int kSliceMs = 50;
    for (;;) {
        if (abandoned(abort))
            return Wait::Aborted;
        const qint64 left = deadline.remainingTime();
        if (left == 0)
            return Wait::Deadline;
        const int wait = left < 0 ? kSliceMs : static_cast<int>(std::min<qint64>(left, kSliceMs));
        pollfd p{fd, POLLIN, 0};
        const int rc = ::poll(&p, 1, wait);
        if (rc > 0)
            return Wait::Readable;
        if (rc < 0 && errno != EINTR)
            return Wait::Failed;
    }
}

// Asks the server to cancel the running statement. The request opens a
// connection of its own, which a black-holed server may keep waiting for a
// long time: it runs on a thread of its own, and nobody waits for it.
void cancelOnServer(PGconn* conn)
{
    PGcancel* cancel = PQgetCancel(conn);
    if (!cancel)
        return;
    std::thread([cancel] {
        char message[256];
        PQcancel(cancel, message, sizeof message);
        PQfreeCancel(cancel);
    }).detach();
}

class PgBackend final : public CursorBackend {
public:
    explicit PgBackend(PGresult* res) : m_res(res), m_rows(PQntuples(res))
    {
        const int n = PQnfields(res);
        for (int c = 0; c < n; ++c)
            m_names << QString::fromUtf8(PQfname(res, c));
        m_dates.resize(static_cast<size_t>(n));
    }
    ~PgBackend() override { PQclear(m_res); }

    bool next() override { return ++m_row < m_rows; }
    int columnCount() const override { return static_cast<int>(m_names.size()); }
    QString columnName(int c) const override { return m_names.at(c); }
    bool isNull(int c) const override { return PQgetisnull(m_res, m_row, c) != 0; }
    std::optional<qint64> integer(int c) const override
    {
        return isNull(c) ? std::nullopt : parseIntegerText(bytes(c));
    }
    std::optional<double> real(int c) const override
    {
        return isNull(c) ? std::nullopt : parseRealText(bytes(c));
    }
    std::optional<QString> text(int c) const override
    {
        if (isNull(c))
            return std::nullopt;
        const auto b = bytes(c);
        return QString::fromUtf8(b.data(), static_cast<qsizetype>(b.size()));
    }
    std::optional<qint64> dateTime(int c) const override
    {
        return isNull(c) ? std::nullopt : usableDate(m_dates[static_cast<size_t>(c)](bytes(c)));
    }
    DbError error() const override { return {}; }

private:
    std::string_view bytes(int c) const
    {
        return {PQgetvalue(m_res, m_row, c), static_cast<size_t>(PQgetlength(m_res, m_row, c))};
    }

    PGresult* m_res;
    int m_rows;
    int m_row = -1;
    QStringList m_names;
    mutable std::vector<SqlDateTimeReader> m_dates;
};

class QtBackend final : public CursorBackend {
public:
    explicit QtBackend(QSqlQuery&& q) : m_q(std::move(q))
    {
        const QSqlRecord r = m_q.record();
        for (int c = 0; c < r.count(); ++c)
            m_names << r.fieldName(c);
    }
    bool next() override
    {
        if (m_q.next())
            return true;
        if (m_q.lastError().isValid())
            m_error = dbErrorFromSql(m_q.lastError());
        return false;
    }
    int columnCount() const override { return static_cast<int>(m_names.size()); }
    QString columnName(int c) const override { return m_names.at(c); }
    bool isNull(int c) const override { return m_q.isNull(c); }
    std::optional<qint64> integer(int c) const override
    {
        const QVariant v = m_q.value(c);
        if (v.isNull())
            return std::nullopt;
        bool ok = false;
        const qint64 i = v.toLongLong(&ok);
        if (ok)
            return i;
        return parseIntegerText(v.toString().toStdString());
    }
    std::optional<double> real(int c) const override
    {
        const QVariant v = m_q.value(c);
        if (v.isNull())
            return std::nullopt;
        bool ok = false;
        const double d = v.toDouble(&ok);
        if (ok)
            return d;
        return parseRealText(v.toString().toStdString());
    }
    std::optional<QString> text(int c) const override
    {
        const QVariant v = m_q.value(c);
        if (v.isNull())
            return std::nullopt;
        if (v.metaType().id() == QMetaType::QDateTime)
            return sqlDateTimeText(fromQDateTime(v.toDateTime()));
        return v.toString();
    }
    std::optional<qint64> dateTime(int c) const override
    {
        const QVariant v = m_q.value(c);
        if (v.isNull())
            return std::nullopt;
        const int type = v.metaType().id();
        if (type == QMetaType::QDateTime || type == QMetaType::QDate) {
            const QDateTime dt = v.toDateTime();
            return dt.isValid() ? usableDate(fromQDateTime(dt)) : std::nullopt;
        }
        return usableDate(parseSqlDateTime(QStringView(v.toString())));
    }
    DbError error() const override { return m_error; }

private:
    mutable QSqlQuery m_q;
    QStringList m_names;
    DbError m_error;
};

} // namespace

sqlite3* sqliteHandle(const QSqlDatabase& db)
{
    const QVariant v = db.driver() ? db.driver()->handle() : QVariant();
    if (!v.isValid() || qstrcmp(v.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(v.constData());
}

pg_conn* pgHandle(const QSqlDatabase& db)
{
    const QVariant v = db.driver() ? db.driver()->handle() : QVariant();
    if (!v.isValid() ||
        (qstrcmp(v.typeName(), "PGconn*") != 0 && qstrcmp(v.typeName(), "pg_conn*") != 0))
        return nullptr;
    return *static_cast<pg_conn* const*>(v.constData());
}

bool pgReachable(const QString& host, const QString& port, const QString& dbName)
{
    const auto quoted = [](const QString& v) {
        QString out = v;
        out.replace(u'\\', u"\\\\"_s).replace(u'\'', u"\\'"_s);
        return u'\'' + out + u'\'';
    };
    QString info = u"connect_timeout=2 host="_s + quoted(host) + u" dbname="_s + quoted(dbName);
    if (!port.isEmpty())
        info += u" port="_s + quoted(port);
    return PQping(info.toUtf8().constData()) == PQPING_OK;
}

bool pgIdle(pg_conn* conn)
{
    return conn && PQstatus(conn) == CONNECTION_OK && PQtransactionStatus(conn) == PQTRANS_IDLE;
}

bool pgConnectionOk(pg_conn* conn)
{
    return conn && PQstatus(conn) == CONNECTION_OK;
}

std::atomic<bool>& consoleEnding()
{
    static std::atomic<bool> ending{false};
    return ending;
}

void sqliteWatch(sqlite3* db, const StatementWatch* watch)
{
    // Called every few thousand virtual machine steps: cheap, and soon enough.
    sqlite3_progress_handler(db, 4000, watch ? sqliteProgress : nullptr,
                             const_cast<StatementWatch*>(watch));
}

std::unique_ptr<CursorBackend> sqliteCursor(sqlite3* db, const QString& sql, DbError& failure)
{
    const QByteArray text = sql.toUtf8();
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, text.constData(), static_cast<int>(text.size()), &stmt, nullptr) !=
            SQLITE_OK ||
        !stmt) {
        failure = sqliteError(db);
        if (failure.description.isEmpty() || !stmt)
            failure.description =
                failure.description.isEmpty() ? u"Empty statement"_s : failure.description;
        sqlite3_finalize(stmt);
        return nullptr;
    }
    return std::make_unique<SqliteBackend>(db, stmt);
}

PGresult* pgRun(pg_conn* conn, const QByteArray& sql, int deadlineMs, DbError& failure,
                const std::atomic<bool>* abort)
{
    if (!PQsendQuery(conn, sql.constData())) {
        failure = pgResultError(conn, nullptr);
        return nullptr;
    }
    QDeadlineTimer deadline(deadlineMs < 0 ? QDeadlineTimer::Forever : QDeadlineTimer(deadlineMs));
    bool cancelled = false;
    const int fd = PQsocket(conn);
    const auto good = [](const PGresult* r) {
        return PQresultStatus(r) == PGRES_TUPLES_OK || PQresultStatus(r) == PGRES_COMMAND_OK;
    };
    // As PQexec: the last result, or the first that failed.
    PGresult* kept = nullptr;
    for (;;) {
        while (PQisBusy(conn)) {
            const Wait w = waitReadable(fd, deadline, abort);
            if (w == Wait::Deadline && !cancelled) {
                // Slow is not gone: the server is asked to stop, and its answer
                // to that keeps the connection.
                cancelled = true;
                cancelOnServer(conn);
                deadline = QDeadlineTimer(kCancelGraceMs);
                continue;
            }
            if (w == Wait::Deadline || w == Wait::Aborted) {
                PQclear(kept);
                failure = {kProviderErrorNumber,
                           QString::fromUtf16(w == Wait::Aborted ? kAborted : kDeadlineMissed),
                           DbFailureCause::Unreachable};
                return nullptr;
            }
            if (w == Wait::Failed || !PQconsumeInput(conn))
                break;
        }
        PGresult* res = PQgetResult(conn);
        if (!res)
            break;
        if (kept && !good(kept)) {
            PQclear(res);
            continue;
        }
        PQclear(kept);
        kept = res;
    }
    const ExecStatusType status = kept ? PQresultStatus(kept) : PGRES_FATAL_ERROR;
    if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK) {
        failure = pgResultError(conn, kept);
        if (cancelled && PQstatus(conn) == CONNECTION_OK)
            failure.cause = DbFailureCause::Slow;
        PQclear(kept);
        return nullptr;
    }
    return kept;
}

std::unique_ptr<CursorBackend> pgCursor(pg_conn* conn, const QString& sql, DbError& failure,
                                        int deadlineMs, const std::atomic<bool>* abort)
{
    PGresult* res = pgRun(conn, sql.toUtf8(), deadlineMs, failure, abort);
    if (!res)
        return nullptr;
    return std::make_unique<PgBackend>(res);
}

std::unique_ptr<CursorBackend> qtCursor(const QSqlDatabase& db, const QString& sql,
                                        DbError& failure)
{
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        failure = dbErrorFromSql(q.lastError());
        return nullptr;
    }
    return std::make_unique<QtBackend>(std::move(q));
}

DbError sqliteExec(sqlite3* db, const QString& sql, qint64* rowsAffected)
{
    const QByteArray text = sql.toUtf8();
    const char* tail = text.constData();
    const char* end = tail + text.size();
    // Runs every statement of the text, so a script of DDL works too.
    while (tail < end) {
        sqlite3_stmt* stmt = nullptr;
        if (sqlite3_prepare_v2(db, tail, static_cast<int>(end - tail), &stmt, &tail) != SQLITE_OK)
            return sqliteError(db);
        if (!stmt)
            break;
        int rc;
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        }
        sqlite3_finalize(stmt);
        if (rc != SQLITE_DONE)
            return sqliteError(db);
    }
    if (rowsAffected)
        *rowsAffected = sqlite3_changes(db);
    return {};
}

DbError pgExec(pg_conn* conn, const QString& sql, qint64* rowsAffected, int deadlineMs,
               const std::atomic<bool>* abort)
{
    DbError e;
    PGresult* res = pgRun(conn, sql.toUtf8(), deadlineMs, e, abort);
    if (!res)
        return e;
    if (rowsAffected)
        *rowsAffected = QByteArray(PQcmdTuples(res)).toLongLong();
    PQclear(res);
    return {};
}

DbError qtExec(const QSqlDatabase& db, const QString& sql, qint64* rowsAffected)
{
    QSqlQuery q(db);
    if (!q.exec(sql))
        return dbErrorFromSql(q.lastError());
    if (rowsAffected)
        *rowsAffected = q.numRowsAffected();
    return {};
}

} // namespace sx::detail
