#include "ScratchDatabase.h"

#include "sim/SimSchema.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QCryptographicHash>

#include <utility>

using namespace Qt::StringLiterals;

namespace sx::test {

namespace {
QAtomicInt g_counter;

// A database with the schema: cheaper to copy than the statements are to run. A digest of
// them names it, so a change of schema makes a new one. The first process that needs it
// makes it under an advisory lock and another name, so a copy never meets half of one.
QString schemaTemplate(Database& server, const ConnectionSettings& admin, DbError& e)
{
    static QString made;
    if (!made.isEmpty())
        return made;
    const QByteArray digest =
        QCryptographicHash::hash(sim::schemaStatements(DbKind::PostgreSQL).join(u';').toUtf8(),
                                 QCryptographicHash::Md5)
            .toHex()
            .left(12);
    const QString name = u"sx_template_"_s + QString::fromLatin1(digest);
    const QString lock = u"(hashtext('"_s + name + u"'))"_s;
    e = server.exec(u"SELECT pg_advisory_lock"_s + lock);
    const QString exists = u"SELECT 1 FROM pg_database WHERE datname = '"_s + name + u'\'';
    if (!e.isError() && !server.exists(exists, &e) && !e.isError()) {
        ConnectionSettings building = admin;
        building.dataSource = name + u"_new"_s;
        e = server.exec(u"DROP DATABASE IF EXISTS "_s + building.dataSource + u" WITH (FORCE)"_s);
        if (!e.isError())
            e = server.exec(u"CREATE DATABASE "_s + building.dataSource);
        if (!e.isError()) {
            Database db;
            db.allowGuiThread();
            e = db.open(building);
            if (!e.isError())
                e = sim::createSchema(db);
        }
        if (!e.isError())
            e = server.exec(u"ALTER DATABASE "_s + building.dataSource + u" RENAME TO "_s + name);
    }
    const DbError unlocked = server.exec(u"SELECT pg_advisory_unlock"_s + lock);
    if (!e.isError())
        e = unlocked;
    return e.isError() ? QString() : (made = name);
}
} // namespace

QString ScratchDatabase::serverUrl()
{
    return qEnvironmentVariable("SX_TEST_PG");
}

QString ScratchDatabase::kindName()
{
    return qEnvironmentVariable("SX_TEST_DB", u"sqlite"_s);
}

ScratchDatabase::ScratchDatabase()
{
    if (kindName() != u"postgresql") {
        m_settings.kind = DbKind::SQLite;
        m_settings.file = m_dir.filePath(u"sentorax.db"_s);
        return;
    }
    if (serverUrl().isEmpty() || !parseDbUrl(serverUrl(), m_admin)) {
        // scripts/test always provides a server; a bare ctest run may not.
        m_problem = u"SX_TEST_PG names no PostgreSQL server"_s;
        return;
    }
    m_settings = m_admin;
    m_settings.dataSource = u"sx_t_%1_%2"_s.arg(QCoreApplication::applicationPid())
                                .arg(g_counter.fetchAndAddRelaxed(1));
    // A server that does not answer shows here, where the test asks for problem().
    m_server.allowGuiThread();
    if (const DbError e = m_server.open(m_admin); e.isError())
        m_problem = u"cannot create a test database: "_s + e.description;
}

ScratchDatabase::~ScratchDatabase()
{
    const QString drop = u"DROP DATABASE IF EXISTS "_s + m_settings.dataSource + u" WITH (FORCE)"_s;
    // The test may have cut this connection, as it cuts others.
    if (m_created && m_server.exec(drop).isError() && !m_server.reopen().isError())
        (void)m_server.exec(drop);
}

void ScratchDatabase::create(bool withSchema) const
{
    if (!isPostgres() || m_created || !m_problem.isEmpty())
        return;
    DbError e;
    QString sql = u"CREATE DATABASE "_s + m_settings.dataSource;
    if (withSchema)
        sql += u" TEMPLATE "_s + schemaTemplate(m_server, m_admin, e);
    if (!e.isError())
        e = m_server.exec(sql);
    if (e.isError()) {
        m_problem = u"cannot create a test database: "_s + e.description;
        qWarning("scratch database: %s", qPrintable(m_problem));
        return;
    }
    m_created = true;
    m_cloned = withSchema;
}

const ConnectionSettings& ScratchDatabase::settings() const
{
    create(false);
    return m_settings;
}

QString ScratchDatabase::url() const
{
    if (!isPostgres())
        return u"sqlite:"_s + m_settings.file;
    create(false);
    return u"postgresql://%1:%2@%3:%4/%5"_s.arg(m_settings.user, m_settings.password,
                                                m_settings.serverIp, m_settings.serverPort,
                                                m_settings.dataSource);
}

bool ScratchDatabase::open(Database& db, bool withSchema)
{
    create(withSchema);
    if (!m_problem.isEmpty())
        return false;
    // The test's own connection: seeding and checking run on the test's thread.
    db.allowGuiThread();
    DbError e = db.open(m_settings, Database::OpenMode::CreateIfMissing);
    // A copy of the template has the schema already; later calls run it again, as on SQLite.
    if (!e.isError() && withSchema && !std::exchange(m_cloned, false))
        e = sim::createSchema(db);
    if (e.isError()) {
        qWarning("scratch database: %s", qPrintable(e.description));
        return false;
    }
    return true;
}

} // namespace sx::test
