#include "ScratchDatabase.h"

#include "sim/SimSchema.h"

#include <QAtomicInt>
#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace sx::test {

namespace {
QAtomicInt g_counter;
}

QString ScratchDatabase::serverUrl()
{
    return qEnvironmentVariable("SX_TEST_PG");
}

QString ScratchDatabase::kindName()
{
    const QString kind = qEnvironmentVariable("SX_TEST_DB");
    return kind.isEmpty() ? u"sqlite"_s : kind;
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
    Database admin;
    admin.allowGuiThread();
    DbError e = admin.open(m_admin);
    if (!e.isError()) {
        e = admin.exec(u"CREATE DATABASE "_s + m_settings.dataSource);
    }
    if (e.isError())
        m_problem = u"cannot create a test database: "_s + e.description;
}

ScratchDatabase::~ScratchDatabase()
{
    if (isPostgres() && m_problem.isEmpty()) {
        Database admin;
        admin.allowGuiThread();
        if (!admin.open(m_admin).isError())
            (void)admin.exec(u"DROP DATABASE IF EXISTS "_s + m_settings.dataSource +
                             u" WITH (FORCE)"_s);
    }
}

QString ScratchDatabase::url() const
{
    if (!isPostgres())
        return u"sqlite:"_s + m_settings.file;
    return u"postgresql://%1:%2@%3:%4/%5"_s.arg(m_settings.user, m_settings.password,
                                                m_settings.serverIp, m_settings.serverPort,
                                                m_settings.dataSource);
}

bool ScratchDatabase::open(Database& db, bool withSchema)
{
    if (!m_problem.isEmpty())
        return false;
    // The test's own connection: seeding and checking run on the test's thread.
    db.allowGuiThread();
    DbError e = db.open(m_settings, Database::OpenMode::CreateIfMissing);
    if (!e.isError() && withSchema)
        e = sim::createSchema(db);
    if (e.isError()) {
        qWarning("scratch database: %s", qPrintable(e.description));
        return false;
    }
    return true;
}

} // namespace sx::test
