#include "ScratchDatabase.h"
#include "model/ConnectionSettings.h"
#include "model/Database.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;

// Only a server has a connection to lose, so this runs against PostgreSQL alone.
class TestLostConnection : public QObject {
    Q_OBJECT

private slots:
    void lostConnectionRecovers()
    {
        test::ScratchDatabase scratch;
        SX_REQUIRE_DB(scratch);
        QVERIFY(scratch.isPostgres());
        Database db;
        QVERIFY(scratch.open(db));
        Rows pid = db.read(u"SELECT pg_backend_pid()"_s);
        QVERIFY(pid.next());
        const qint64 backend = *pid.integer(0);
        pid = Rows();
        {
            ConnectionSettings admin;
            QVERIFY(parseDbUrl(test::ScratchDatabase::serverUrl(), admin));
            Database other;
            other.allowGuiThread();
            QVERIFY(!other.open(admin).isError());
            QVERIFY(!other.exec(u"SELECT pg_terminate_backend("_s + QString::number(backend) + u')')
                         .isError());
        }
        Rows r = db.read(u"SELECT 1"_s);
        QVERIFY(!r.ok() && db.connectionLost());
        QCOMPARE(r.error().cause, DbFailureCause::Unreachable);
        QVERIFY(!db.reopen().isError() && !db.connectionLost());
        Rows again = db.read(u"SELECT 1"_s);
        QVERIFY(again.next() && again.integer(0) == 1);
    }
};

QTEST_GUILESS_MAIN(TestLostConnection)
#include "tst_lostconnection.moc"
