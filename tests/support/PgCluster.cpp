#include "PgCluster.h"

#include "ToolRun.h"
#include "model/ConnectionSettings.h"
#include "sim/SimRunner.h"

#include <QDir>
#include <QFile>
#include <QTcpServer>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace sx::test {

namespace {

// In memory where there is a tmpfs: a cluster is some thousand files.
QString baseFolder()
{
    const QFileInfo shm(u"/dev/shm"_s);
    return (shm.isDir() && shm.isWritable() ? shm.filePath() : QDir::tempPath()) +
           u"/sx-cluster-XXXXXX"_s;
}

// Run as root, the server is the user postgres and its files must be its own.
bool ownByServer(const QString& path)
{
    return geteuid() != 0 || runTool(u"chown"_s, {u"postgres:"_s, path}).code == 0;
}

} // namespace

QString PgCluster::binDir()
{
    QString bin = qEnvironmentVariable("SX_PG_BIN");
    if (bin.isEmpty()) {
        QStringList all =
            QDir(u"/usr/lib/postgresql"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        std::sort(all.begin(), all.end(),
                  [](const QString& a, const QString& b) { return a.toInt() < b.toInt(); });
        if (!all.isEmpty())
            bin = u"/usr/lib/postgresql/"_s + all.last() + u"/bin"_s;
    }
    return QFile::exists(bin + u"/initdb"_s) ? bin : QString();
}

int PgCluster::freePort()
{
    for (int tries = 0; tries < 20; ++tries) {
        QTcpServer one;
        if (!one.listen(QHostAddress(u"127.0.0.1"_s)))
            continue;
        QTcpServer two;
        if (two.listen(QHostAddress(u"127.0.0.2"_s), one.serverPort()))
            return one.serverPort();
    }
    return 0;
}

PgCluster::PgCluster(QString name) : m_name(std::move(name)), m_dir(baseFolder())
{
    QFile::setPermissions(m_dir.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                            QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                            QFileDevice::ExeOther);
    ownByServer(m_dir.path());
}

PgCluster::~PgCluster()
{
    stop();
}

bool PgCluster::run(const QString& program, const QStringList& args)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"PGPASSWORD"_s, QString::fromUtf16(kDbPassword));
    const QString path = binDir() + u'/' + program;
    const ToolRun r =
        geteuid() == 0
            ? runTool(u"runuser"_s, QStringList{u"-u"_s, u"postgres"_s, u"--"_s, path} + args, env)
            : runTool(path, args, env);
    if (r.code == 0)
        return true;
    QFile log(m_dir.path() + u"/server.log"_s);
    m_problem =
        m_name + u": "_s + program + u" failed: "_s + r.out + r.err +
        (log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll().right(2000)) : QString());
    return false;
}

bool PgCluster::init()
{
    QFile pw(m_dir.path() + u"/pw"_s);
    if (!pw.open(QIODevice::WriteOnly) || pw.write(QString::fromUtf16(kDbPassword).toUtf8()) < 0)
        return false;
    pw.close();
    ownByServer(pw.fileName());
    if (!run(u"initdb"_s, {u"-D"_s, dataDir(), u"-U"_s, QString::fromUtf16(kDbUser),
                           u"--pwfile="_s + pw.fileName(), u"-A"_s, u"scram-sha-256"_s, u"-E"_s,
                           u"UTF8"_s, u"--locale=C.UTF-8"_s, u"--no-sync"_s}))
        return false;
    QFile hba(dataDir() + u"/pg_hba.conf"_s);
    return hba.open(QIODevice::Append) &&
           hba.write("host all all 127.0.0.0/8 scram-sha-256\n"
                     "host replication all 127.0.0.0/8 scram-sha-256\n") > 0;
}

bool PgCluster::start(const QString& address, int port, const QStringList& settings)
{
    m_address = address;
    m_port = port;
    // A socket folder of its own: two servers may share a port on two addresses.
    QString options =
        u"-p %1 -k %2 -c listen_addresses=%3 -c fsync=off -c synchronous_commit=off "
        u"-c full_page_writes=off"_s.arg(QString::number(port), m_dir.path(), address);
    for (const QString& s : settings)
        options += u" -c "_s + s;
    m_running = run(u"pg_ctl"_s, {u"-D"_s, dataDir(), u"-l"_s, m_dir.path() + u"/server.log"_s,
                                  u"-w"_s, u"-t"_s, u"60"_s, u"-o"_s, options, u"start"_s});
    return m_running;
}

bool PgCluster::stop()
{
    return !std::exchange(m_running, false) ||
           run(u"pg_ctl"_s, {u"-D"_s, dataDir(), u"-m"_s, u"immediate"_s, u"-w"_s, u"stop"_s});
}

bool PgCluster::promote()
{
    return run(u"pg_ctl"_s, {u"-D"_s, dataDir(), u"-w"_s, u"promote"_s});
}

bool PgCluster::give(const QString& from, const QString& name) const
{
    const QString to = dataDir() + u'/' + name;
    QFile::remove(to);
    return QFile::copy(from, to) &&
           QFile::setPermissions(to, QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
           ownByServer(to);
}

QString pairUrl(const PgCluster& primary, const PgCluster& standby, const QString& name)
{
    return u"postgresql://%1:%2@%3:%4,%5:%6/%7"_s.arg(
        QString::fromUtf16(kDbUser), QString::fromUtf16(kDbPassword), primary.address(),
        QString::number(primary.port()), standby.address(), QString::number(standby.port()), name);
}

bool makeReplicatedPair(PgCluster& primary, PgCluster& standby, const QString& name, int units,
                        QString& problem)
{
    const int port = PgCluster::freePort();
    if (!primary.init() || !primary.start(u"127.0.0.1"_s, port) ||
        !primary.run(u"createdb"_s, {u"-h"_s, primary.address(), u"-p"_s, QString::number(port),
                                     u"-U"_s, QString::fromUtf16(kDbUser), name})) {
        problem = primary.problem();
        return false;
    }
    sim::SimOptions seed;
    seed.command = sim::SimCommand::Seed;
    seed.dbUrl = u"postgresql://%1:%2@127.0.0.1:%3/%4"_s.arg(
        QString::fromUtf16(kDbUser), QString::fromUtf16(kDbPassword), QString::number(port), name);
    seed.units = units;
    seed.days = 1;
    QString said;
    QTextStream out(&said);
    const std::atomic<bool> stop{false};
    if (sim::runSimCommand(seed, out, out, stop) != sim::kExitOk) {
        problem = said;
        return false;
    }
    if (!standby.run(u"pg_basebackup"_s,
                     {u"-h"_s, primary.address(), u"-p"_s, QString::number(port), u"-U"_s,
                      QString::fromUtf16(kDbUser), u"-D"_s, standby.dataDir(), u"-R"_s, u"-X"_s,
                      u"stream"_s, u"--no-sync"_s, u"-c"_s, u"fast"_s}) ||
        !standby.start(u"127.0.0.2"_s, port)) {
        problem = standby.problem();
        return false;
    }
    return true;
}

} // namespace sx::test
