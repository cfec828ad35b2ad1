#include "model/Database.h"

#include "model/Dialect.h"
#include "model/NativeCursors.h"
#include "model/SqlDateTime.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QFileInfo>
#include <QSqlError>
#include <QThread>

#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

QAtomicInt g_connectionCounter;
std::atomic<bool> g_guiThreadGuard{qEnvironmentVariableIntValue("SX_GUI_THREAD_GUARD") != 0};

bool onGuiThread()
{
    const QCoreApplication* app = QCoreApplication::instance();
    return app && app->thread() == QThread::currentThread();
}

// A libpq keyword value; the driver turns every ';' of its options into a blank.
QString pgQuoted(QString value)
{
    value.replace(u'\\', u"\\\\"_s).replace(u'\'', u"\\'"_s);
    return u'\'' + value + u'\'';
}

DbError fileError(const QString& description)
{
    DbError e;
    e.number = kProviderErrorNumber;
    e.description = description;
    return e;
}

} // namespace

Database::Database()
    : m_name(u"sx-db-"_s + QString::number(g_connectionCounter.fetchAndAddRelaxed(1))),
      m_watch(std::make_unique<detail::StatementWatch>())
{
}

void Database::setGuiThreadGuard(bool on)
{
    g_guiThreadGuard = on;
}

void Database::abandonAll(bool on)
{
    detail::consoleEnding() = on;
}

bool Database::guiThreadGuard()
{
    return g_guiThreadGuard;
}

void Database::startStatement(const QString& sql)
{
    if (g_guiThreadGuard && !m_guiThreadAllowed && onGuiThread())
        qFatal("A statement was started on the GUI thread: %s", qPrintable(sql.left(200)));
    m_wasIdle = m_failOver && detail::pgIdle(detail::pgHandle(qtDatabase()));
    m_watch->abort = m_abort;
    m_watch->deadline =
        m_deadlineMs < 0 ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(m_deadlineMs);
}

Database::~Database()
{
    close();
    QSqlDatabase::removeDatabase(m_name);
}

QSqlDatabase Database::qtDatabase() const
{
    return QSqlDatabase::database(m_name, false);
}

bool Database::isOpen() const
{
    return QSqlDatabase::contains(m_name) && qtDatabase().isOpen();
}

void Database::close()
{
    if (QSqlDatabase::contains(m_name)) {
        QSqlDatabase db = qtDatabase();
        db.close();
    }
}

DbError Database::open(const ConnectionSettings& settings, OpenMode mode)
{
    close();
    if (QSqlDatabase::contains(m_name))
        QSqlDatabase::removeDatabase(m_name);
    m_settings = settings;
    m_mode = mode;
    m_lost = false;
    m_lostIdle = false;
    m_wasIdle = false;
    // Several servers are named: a lost one may have handed over to another.
    m_failOver = settings.kind == DbKind::PostgreSQL && serverList(settings.serverIp).size() > 1;

    QSqlDatabase db;
    switch (settings.kind) {
    case DbKind::SQLite: {
        const QFileInfo info(settings.file);
        if (mode == OpenMode::Existing && !info.exists())
            return fileError(u"Could not find file '"_s + settings.file + u"'."_s);
        if (info.exists() && (!info.isFile() || !info.isReadable()))
            return fileError(u"Cannot open file '"_s + settings.file +
                             u"'. It is not a readable file."_s);
        db = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_name);
        db.setDatabaseName(settings.file);
        // The console's own connection must not sleep long on a writer's lock.
        db.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT="_s +
                             QString::number(m_deadlineMs < 0 ? 5000 : kSqliteBusyTimeoutMs));
        break;
    }
    case DbKind::PostgreSQL: {
        db = QSqlDatabase::addDatabase(u"QPSQL"_s, m_name);
        // Keep-alives and a user time-out notice a peer that went silent.
        QString options =
            u"connect_timeout=3;keepalives=1;keepalives_idle=10;keepalives_interval=3;"
            u"keepalives_count=3;tcp_user_timeout=15000"_s;
        // The driver takes one port number only; a list goes in as a keyword.
        for (const auto& [key, value] : pgServerKeywords(settings, true)) {
            if (key == u"host")
                db.setHostName(value);
            else
                options += u';' + key + u'=' + pgQuoted(value);
        }
        if (!settings.serverPort.isEmpty() && !settings.serverPort.contains(u','))
            db.setPort(settings.serverPort.toInt());
        db.setDatabaseName(settings.dataSource);
        db.setUserName(settings.user.isEmpty() ? QString::fromUtf16(kDbUser) : settings.user);
        db.setPassword(settings.password.isEmpty() ? QString::fromUtf16(kDbPassword)
                                                   : settings.password);
        db.setConnectOptions(options);
        break;
    }
    case DbKind::Access:
        db = QSqlDatabase::addDatabase(u"QODBC"_s, m_name);
        db.setDatabaseName(u"DRIVER={Microsoft Access Driver (*.mdb, *.accdb)};DBQ="_s +
                           settings.file + u";PWD="_s + QString::fromUtf16(kDbPassword));
        break;
    case DbKind::Oracle: {
        const bool oci = QSqlDatabase::isDriverAvailable(u"QOCI"_s);
        db = QSqlDatabase::addDatabase(oci ? u"QOCI"_s : u"QODBC"_s, m_name);
        if (oci) {
            if (!settings.serverIp.isEmpty()) {
                db.setHostName(settings.serverIp);
                db.setPort(settings.serverPort.toInt());
            }
            db.setDatabaseName(settings.dataSource);
        } else {
            db.setDatabaseName(connectionString(settings));
        }
        db.setUserName(QString::fromUtf16(kDbUser));
        db.setPassword(QString::fromUtf16(kDbPassword));
        break;
    }
    }

    if (!db.isValid())
        return fileError(u"The database driver for this kind of database is not installed."_s);
    startStatement(u"(connect)"_s);
    if (!db.open()) {
        DbError e = dbErrorFromSql(db.lastError());
        if (settings.kind == DbKind::SQLite && !e.description.contains(settings.file))
            e.description += u" ('"_s + settings.file + u"')"_s;
        return e;
    }
    if (settings.kind == DbKind::SQLite) {
        if (sqlite3* handle = detail::sqliteHandle(db))
            detail::sqliteWatch(handle, m_watch.get());
        // SQLite opens lazily: only a first read tells a database from any other file.
        Rows probe = read(u"SELECT count(*) FROM sqlite_master"_s);
        if (!probe.ok() || !probe.next() || !probe.ok()) {
            DbError e = probe.error();
            e.description += u" ('"_s + settings.file + u"')"_s;
            close();
            return e;
        }
    } else if (settings.kind == DbKind::PostgreSQL) {
        // The native reader parses ISO date-times; notices ("already exists,
        // skipping") would only clutter the output.
        const DbError e = exec(u"SET DateStyle TO ISO, YMD; SET client_min_messages TO WARNING; "
                               u"SET statement_timeout TO "_s +
                               QString::number(m_deadlineMs < 0 ? 0 : kStatementTimeoutMs));
        if (e.isError()) {
            close();
            return e;
        }
    }
    return {};
}

DbError Database::reopen()
{
    return open(m_settings, m_mode);
}

bool Database::reachable(const ConnectionSettings& settings)
{
    switch (settings.kind) {
    case DbKind::SQLite: {
        const QFileInfo info(settings.file);
        return info.isFile() && info.isReadable();
    }
    case DbKind::PostgreSQL: {
        // Only whether some server answers: which one takes writes, and
        // whether its certificate holds, the reopen finds out.
        QString host;
        QString port;
        for (const auto& [key, value] : pgServerKeywords(settings)) {
            if (key == u"host")
                host = value;
            else if (key == u"port")
                port = value;
        }
        return detail::pgReachable(host, port, settings.dataSource);
    }
    default:
        return true;
    }
}

bool Database::connectionLost() const
{
    if (m_lost)
        return true;
    // A file removed under an open connection still reads its old pages: gone is gone.
    if (m_settings.kind == DbKind::SQLite && isOpen() && !QFileInfo::exists(m_settings.file))
        return true;
    if (m_settings.kind == DbKind::PostgreSQL && isOpen())
        return !detail::pgConnectionOk(detail::pgHandle(qtDatabase()));
    return false;
}

DbError Database::noteFailure(DbError e)
{
    if (!e.isError())
        return e;
    if (e.description == QStringView(detail::kDeadlineMissed) ||
        e.description == QStringView(detail::kAborted)) {
        // The connection still waits for an answer that may never come.
        m_lost = true;
        close();
        return e;
    }
    if (m_settings.kind == DbKind::PostgreSQL) {
        if (!isOpen() || !detail::pgConnectionOk(detail::pgHandle(qtDatabase()))) {
            if (!m_lost)
                m_lostIdle = m_wasIdle;
            m_lost = true;
            e.cause = DbFailureCause::Unreachable;
        }
    } else if (!isOpen()) {
        m_lost = true;
    }
    return e;
}

DbError Database::fileGone()
{
    // A file removed under an open connection still reads its old pages: gone is gone.
    if (m_settings.kind != DbKind::SQLite || QFileInfo::exists(m_settings.file))
        return {};
    m_lost = true;
    return fileError(u"Could not find file '"_s + m_settings.file + u"'."_s);
}

Rows Database::read(const QString& sql)
{
    Rows rows = readOnce(sql);
    if (!rows.ok() && failOver())
        rows = readOnce(sql);
    return rows;
}

bool Database::failOver()
{
    // Only a connection lost between transactions: a statement of an open one
    // fails with it, and a server that does not answer is the health watch's.
    if (!m_failOver || !m_lost || !m_lostIdle || (m_abort && m_abort->load()) ||
        detail::consoleEnding().load())
        return false;
    if (!reopen().isError())
        return true;
    m_lost = true;
    m_lostIdle = false;
    return false;
}

Rows Database::readOnce(const QString& sql)
{
    if (!isOpen())
        return Rows(noteFailure(fileError(u"The connection to the database is closed."_s)));
    if (DbError gone = fileGone(); gone.isError())
        return Rows(gone);
    startStatement(sql);
    const QSqlDatabase db = qtDatabase();
    DbError failure;
    std::unique_ptr<CursorBackend> backend;
    if (m_native && m_settings.kind == DbKind::SQLite && detail::sqliteHandle(db))
        backend = detail::sqliteCursor(detail::sqliteHandle(db), sql, failure);
    else if (m_native && m_settings.kind == DbKind::PostgreSQL && detail::pgHandle(db)) {
        backend = detail::pgCursor(detail::pgHandle(db), sql, failure, m_deadlineMs, m_abort);
    } else
        backend = detail::qtCursor(db, sql, failure);
    if (!backend)
        return Rows(noteFailure(failure));
    return Rows(std::move(backend));
}

Rows Database::readFirst(const QString& sql)
{
    Rows rows = read(sqlFirstRowOnly(m_settings.kind, sql));
    rows.setRowLimit(1);
    return rows;
}

bool Database::exists(const QString& sql, DbError* error)
{
    Rows rows = readFirst(sql);
    const bool found = rows.next();
    if (error)
        *error = rows.error();
    return found;
}

DbError Database::exec(const QString& sql, qint64* rowsAffected)
{
    if (!isOpen())
        return noteFailure(fileError(u"The connection to the database is closed."_s));
    if (DbError gone = fileGone(); gone.isError())
        return gone;
    startStatement(sql);
    const QSqlDatabase db = qtDatabase();
    if (m_settings.kind == DbKind::SQLite && detail::sqliteHandle(db))
        return noteFailure(detail::sqliteExec(detail::sqliteHandle(db), sql, rowsAffected));
    if (m_settings.kind == DbKind::PostgreSQL && detail::pgHandle(db)) {
        const DbError e =
            detail::pgExec(detail::pgHandle(db), sql, rowsAffected, m_deadlineMs, m_abort);
        return noteFailure(e);
    }
    return noteFailure(detail::qtExec(db, sql, rowsAffected));
}

QString Database::literal(const SqlValue& value) const
{
    struct Visitor {
        DbKind kind;
        QString operator()(std::monostate) const { return u"NULL"_s; }
        QString operator()(qint64 v) const { return QString::number(v); }
        QString operator()(double v) const
        {
            if (!std::isfinite(v))
                return u"NULL"_s;
            // Shortest text that reads back as the same double, never in the user's locale.
            return QString::number(v, 'g', 17);
        }
        QString operator()(const QString& v) const { return sqlQuote(v); }
        QString operator()(SqlDateTimeValue v) const { return sqlDateTimeLiteral(kind, v.secs); }
    };
    return std::visit(Visitor{m_settings.kind}, value);
}

DbError Database::insertRow(QStringView table, const QList<SqlAssignment>& values)
{
    QString columns;
    QString literals;
    for (const SqlAssignment& a : values) {
        if (!columns.isEmpty()) {
            columns += u", "_s;
            literals += u", "_s;
        }
        columns += a.column;
        literals += literal(a.value);
    }
    return exec(u"INSERT INTO "_s + table.toString() + u" ("_s + columns + u") VALUES ("_s +
                literals + u')');
}

DbError Database::updateRows(QStringView table, const QList<SqlAssignment>& values,
                             const QString& where, qint64* rowsAffected)
{
    QString sets;
    for (const SqlAssignment& a : values) {
        if (!sets.isEmpty())
            sets += u", "_s;
        sets += a.column + u'=' + literal(a.value);
    }
    QString sql = u"UPDATE "_s + table.toString() + u" SET "_s + sets;
    if (!where.isEmpty())
        sql += u" WHERE "_s + where;
    return exec(sql, rowsAffected);
}

DbError Database::deleteRows(QStringView table, const QString& where, qint64* rowsAffected)
{
    QString sql = u"DELETE FROM "_s + table.toString();
    if (!where.isEmpty())
        sql += u" WHERE "_s + where;
    return exec(sql, rowsAffected);
}

DbError Database::begin()
{
    if (m_settings.kind == DbKind::SQLite || m_settings.kind == DbKind::PostgreSQL)
        return exec(u"BEGIN"_s);
    QSqlDatabase db = qtDatabase();
    return db.transaction() ? DbError{} : noteFailure(dbErrorFromSql(db.lastError()));
}

DbError Database::commit()
{
    if (m_settings.kind == DbKind::SQLite || m_settings.kind == DbKind::PostgreSQL)
        return exec(u"COMMIT"_s);
    QSqlDatabase db = qtDatabase();
    return db.commit() ? DbError{} : noteFailure(dbErrorFromSql(db.lastError()));
}

DbError Database::rollback()
{
    if (m_settings.kind == DbKind::SQLite || m_settings.kind == DbKind::PostgreSQL)
        return exec(u"ROLLBACK"_s);
    QSqlDatabase db = qtDatabase();
    return db.rollback() ? DbError{} : noteFailure(dbErrorFromSql(db.lastError()));
}

} // namespace sx
