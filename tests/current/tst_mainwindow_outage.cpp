#include "CurrentSeed.h"
#include "GuiFixture.h"
#include "app/UnitList.h"
#include "sim/SimSchema.h"
#include "views/current/MainWindow.h"

#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

int freeLoopbackPort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0)
        return 0;
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof addr;
    int port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&addr), len) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len) == 0)
        port = ntohs(addr.sin_port);
    ::close(fd);
    return port;
}

// A PostgreSQL server of this test's own, so that stopping it disturbs no other
// test: initdb and pg_ctl run as the postgres user, as scripts/pg.sh does.
class PrivateServer {
public:
    ~PrivateServer()
    {
        if (m_initialised)
            pgCtl({u"-m"_s, u"immediate"_s, u"stop"_s});
    }

    // Empty when the server runs; else why it could not be started.
    QString start()
    {
        m_bin = qEnvironmentVariable("SX_PG_BIN");
        if (m_bin.isEmpty()) {
            const QStringList versions =
                QDir(u"/usr/lib/postgresql"_s)
                    .entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
            if (!versions.isEmpty())
                m_bin = u"/usr/lib/postgresql/"_s + versions.last() + u"/bin"_s;
        }
        if (m_bin.isEmpty() || !QFile::exists(m_bin + u"/initdb"_s))
            return u"PostgreSQL server binaries not found"_s;
        if (::geteuid() != 0 && qEnvironmentVariable("USER") != u"postgres")
            return u"needs root (runuser) or the postgres user"_s;
        if (!m_dir.isValid())
            return u"no temporary folder"_s;
        m_port = freeLoopbackPort();
        QFile pw(m_dir.filePath(u"pw"_s));
        if (!pw.open(QIODevice::WriteOnly) || pw.write("pvlrkmzd5173\n") < 0)
            return u"cannot write the password file"_s;
        pw.close();
        QFile::setPermissions(m_dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                QFile::ReadGroup | QFile::ExeGroup |
                                                QFile::ReadOther | QFile::ExeOther);
        if (::geteuid() == 0 && !run(u"chown"_s, {u"-R"_s, u"postgres:"_s, m_dir.path()}))
            return u"chown failed: "_s + m_output;
        if (!asPostgres(u"initdb"_s,
                        {u"-D"_s, data(), u"-U"_s, u"sentorax"_s, u"--pwfile="_s + pw.fileName(),
                         u"-A"_s, u"scram-sha-256"_s, u"-E"_s, u"UTF8"_s, u"--locale=C.UTF-8"_s}))
            return u"initdb failed: "_s + m_output;
        m_initialised = true;
        return startAgain() ? QString() : u"pg_ctl start failed: "_s + m_output;
    }

    bool startAgain()
    {
        return pgCtl({u"-l"_s, m_dir.filePath(u"server.log"_s), u"-w"_s, u"-t"_s, u"60"_s, u"-o"_s,
                      u"-p %1 -k %2 -c listen_addresses=127.0.0.1 -c fsync=off"_s.arg(m_port).arg(
                          m_dir.path()),
                      u"start"_s});
    }
    bool stop() { return pgCtl({u"-w"_s, u"-m"_s, u"fast"_s, u"stop"_s}); }

    [[nodiscard]] ConnectionSettings settings() const
    {
        ConnectionSettings s;
        s.kind = DbKind::PostgreSQL;
        s.serverIp = u"127.0.0.1"_s;
        s.serverPort = QString::number(m_port);
        s.dataSource = u"postgres"_s;
        return s;
    }
    [[nodiscard]] QString output() const { return m_output; }

private:
    QString data() const { return m_dir.filePath(u"data"_s); }
    bool pgCtl(QStringList args)
    {
        args.prepend(data());
        args.prepend(u"-D"_s);
        return asPostgres(u"pg_ctl"_s, args);
    }
    bool asPostgres(const QString& tool, const QStringList& args)
    {
        const QString program = m_bin + u'/' + tool;
        if (::geteuid() != 0)
            return run(program, args);
        return run(u"runuser"_s, QStringList{u"-u"_s, u"postgres"_s, u"--"_s, program} + args);
    }
    bool run(const QString& program, const QStringList& args)
    {
        QProcess p;
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(program, args);
        const bool finished = p.waitForFinished(120000);
        m_output = QString::fromLocal8Bit(p.readAll());
        return finished && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    }

    QTemporaryDir m_dir;
    QString m_bin;
    QString m_output;
    int m_port = 0;
    bool m_initialised = false;
};

} // namespace

// The window while its PostgreSQL server goes away and comes back.
class TestMainWindowOutage : public QObject {
    Q_OBJECT

private slots:
    void serverStopAndRestart()
    {
        if (ScratchDatabase::kindName() != u"postgresql")
            QSKIP("stops and restarts a PostgreSQL server");
        PrivateServer server;
        const QString problem = server.start();
        if (!problem.isEmpty())
            QSKIP(qPrintable(problem));

        {
            Database seedDb;
            const DbError e = seedDb.open(server.settings());
            QVERIFY2(!e.isError(), qPrintable(e.description));
            QVERIFY(!sim::createSchema(seedDb).isError());
            CurrentSeed seed(seedDb);
            QVERIFY(seed.unit(u"S-1"_s, u"Σταθμός"_s));
            for (int n = 1; n <= 4; ++n) {
                QVERIFY(seed.point(u"S-1"_s, n, u"'Ζ'"_s));
                QVERIFY(seed.pointCondition(u"S-1"_s, n, QString::number(n)));
            }
            QVERIFY(seed.power(u"S-1"_s, 1, u"NULL"_s));
            QVERIFY(seed.powerCondition(u"S-1"_s, 1, u"0"_s, u"0"_s));
            QVERIFY(seed.condition(u"S-1"_s, u"1"_s, u"1"_s));
        }

        GuiFixture fx;
        const DbError opened = fx.db.open(server.settings());
        QVERIFY2(!opened.isError(), qPrintable(opened.description));

        MainWindow w(fx.ctx);
        fillSystemSelect(w, -1, false);
        auto* label6 = w.findChild<QLabel*>(u"Label6"_s);
        auto* relay = w.findChild<QPushButton*>(u"Command5"_s);
        QCOMPARE(w.pointsGrid()->rowCount(), 4);
        QCOMPARE(label6->text(), u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ"_s);
        QVERIFY(fx.dialogs.messages().isEmpty());

        QVERIFY2(server.stop(), qPrintable(server.output()));
        w.refresh();
        QCOMPARE(fx.dialogs.messages().size(), 1);
        QCOMPARE(fx.dialogs.messages()[0].icon, DialogService::Icon::Critical);
        QCOMPARE(fx.dialogs.messages()[0].title, u"SENTORAX Monitor"_s);
        QVERIFY(w.databaseLost());
        QCOMPARE(label6->text(), u"ΣΥΝΔΕΣΗ ΜΕ ΤΗ ΒΑΣΗ ΔΕΔΟΜΕΝΩΝ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s);
        QCOMPARE(w.pointsGrid()->rowCount(), 0);
        QCOMPARE(w.powerGrid()->rowCount(), 0);
        QVERIFY(!relay->isEnabled());
        QVERIFY(w.refreshTimer()->isActive());

        // Still down: no second box.
        w.refresh();
        QCOMPARE(fx.dialogs.messages().size(), 1);
        QVERIFY(w.databaseLost());
        QVERIFY(w.refreshTimer()->isActive());

        QVERIFY2(server.startAgain(), qPrintable(server.output()));
        w.refresh();
        QVERIFY(!w.databaseLost());
        QCOMPARE(w.pointsGrid()->rowCount(), 4);
        QCOMPARE(w.powerGrid()->rowCount(), 1);
        QCOMPARE(label6->text(), u"ΣΕ ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ"_s);
        QVERIFY(relay->isEnabled());
        QCOMPARE(relay->text(), u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s);
        QCOMPARE(fx.dialogs.messages().size(), 1);
        QVERIFY(!fx.failures->inOutage());
        QVERIFY(w.refreshTimer()->isActive());
    }
};

QTEST_MAIN(TestMainWindowOutage)
#include "tst_mainwindow_outage.moc"
