#include "PgCluster.h"
#include "SkipOrFail.h"
#include "ToolRun.h"
#include "model/Database.h"
#include "model/settings/SettingsStore.h"

#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

// The console checks the server's certificate as the settings file says.
class TestTls : public QObject {
    Q_OBJECT

    std::unique_ptr<PgCluster> m_server;
    QTemporaryDir m_dir;
    int m_port = 0;

    QString file(const QString& name) const { return m_dir.filePath(name); }
    // A key and certificate `name`: an authority of its own when `ca` is empty,
    // else one for `san` signed by the authority `ca`.
    bool certificate(const QString& name, const QString& ca = {}, const QString& san = {})
    {
        QStringList args =
            u"req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2"_s.split(
                u' ');
        args << u"-subj"_s << u"/CN=SX test "_s + name << u"-keyout"_s << file(name + u".key"_s)
             << u"-out"_s << file(name + u".crt"_s);
        if (!ca.isEmpty())
            args << u"-CA"_s << file(ca + u".crt"_s) << u"-CAkey"_s << file(ca + u".key"_s)
                 << u"-addext"_s << u"subjectAltName="_s + san << u"-addext"_s
                 << u"basicConstraints=CA:FALSE"_s;
        const ToolRun r = runTool(u"openssl"_s, args);
        if (r.code != 0)
            qWarning("openssl %s: %s", qPrintable(args.join(u' ')), qPrintable(r.err));
        return r.code == 0;
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        if (PgCluster::binDir().isEmpty() || QStandardPaths::findExecutable(u"openssl"_s).isEmpty())
            SX_SKIP_OR_FAIL("the PostgreSQL server programs or openssl are not installed");
        QVERIFY(certificate(u"ca"_s) && certificate(u"otherca"_s));
        QVERIFY(certificate(u"right"_s, u"ca"_s, u"IP:127.0.0.1"_s));
        QVERIFY(certificate(u"othername"_s, u"ca"_s, u"DNS:db.elsewhere.example"_s));
        QVERIFY(certificate(u"strange"_s, u"otherca"_s, u"IP:127.0.0.1"_s));
        m_server = std::make_unique<PgCluster>(u"tls"_s);
        m_port = PgCluster::freePort();
        QVERIFY2(m_server->init(), qPrintable(m_server->problem()));
    }

    void verifies_data()
    {
        QTest::addColumn<QString>("served"); // the server's certificate
        QTest::addColumn<QString>("mode");   // DBSslMode
        QTest::addColumn<bool>("connects");
        QTest::newRow("verify-full, right certificate") << u"right"_s << u"verify-full"_s << true;
        QTest::newRow("verify-full, made for another name")
            << u"othername"_s << u"verify-full"_s << false;
        QTest::newRow("verify-ca, another authority") << u"strange"_s << u"verify-ca"_s << false;
        QTest::newRow("verify-ca, another name") << u"othername"_s << u"verify-ca"_s << true;
        QTest::newRow("no mode: as before") << u"strange"_s << QString() << true;
    }
    void verifies()
    {
        QFETCH(QString, served);
        QFETCH(QString, mode);
        QFETCH(bool, connects);
        m_server->stop();
        QVERIFY(m_server->give(file(served + u".crt"_s), u"server.crt"_s) &&
                m_server->give(file(served + u".key"_s), u"server.key"_s));
        QVERIFY2(m_server->start(u"127.0.0.1"_s, m_port, {u"ssl=on"_s}),
                 qPrintable(m_server->problem()));

        // Set in the file by hand, as whoever runs the server does.
        SettingsStore store(file(u"settings.ini"_s));
        store.setApp(u"DBType"_s, u"3"_s);
        store.setApp(u"DBDataSource"_s, u"postgres"_s);
        store.setApp(u"DBServerIP"_s, u"127.0.0.1"_s);
        store.setApp(u"DBServerPORT"_s, QString::number(m_port));
        store.setApp(u"DBSslMode"_s, mode);
        store.setApp(u"DBSslRootCert"_s, mode.isEmpty() ? QString() : file(u"ca.crt"_s));
        Database db;
        db.allowGuiThread();
        const DbError e = db.open(store.connection());
        QCOMPARE(!e.isError(), connects);
        if (connects)
            QVERIFY(!db.exec(u"SELECT 1"_s).isError());
        else
            QVERIFY2(e.cause == DbFailureCause::CertificateRejected &&
                         explainDbError(e).contains(
                             u"Το πιστοποιητικό ασφαλείας του διακομιστή δεν μπόρεσε να "
                             u"επαληθευτεί και η σύνδεση απορρίφθηκε για λόγους ασφαλείας"_s),
                     qPrintable(e.description));
    }
};

QTEST_GUILESS_MAIN(TestTls)
#include "tst_tls.moc"
