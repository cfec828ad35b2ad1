#include "UserTexts.h"
#include "model/ConnectionSettings.h"
#include "model/DbError.h"
#include "model/Dialect.h"
#include "model/FaultCodes.h"
#include "model/QueryHelpers.h"
#include "model/SqlDateTime.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test::texts;

namespace {

QDateTime at(int y, int mo, int d, int h, int mi, int s)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s));
}

} // namespace

class TestDataFormats : public QObject {
    Q_OBJECT

private slots:
    void connectionStrings_data()
    {
        QTest::addColumn<int>("dbType");
        QTest::addColumn<QString>("fields"); // file|source|ip|port
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, int dbType, const QString& fields,
                            const QString& expected) {
            QTest::newRow(name) << dbType << fields << expected;
        };
        row("access", 0, u"C:\\data\\sxdb.mdb|||"_s,
            u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\data\\sxdb.mdb;Jet OLEDB:Engine Type=5;;Jet OLEDB:Database Password=pvlrkmzd5173;"_s);
        row("oracle by name", 1, u"|SXDB||1521"_s,
            u"Provider=oraOLEDB.Oracle;Data Source=SXDB;User ID=sentorax;Password=pvlrkmzd5173"_s);
        row("oracle by address", 1, u"|ORCL|10.0.0.5|1521"_s,
            u"Provider=OraOLEDB.Oracle;Data Source=(DESCRIPTION=(CID=KRN_APP)(ADDRESS_LIST=(ADDRESS=(PROTOCOL=TCP)(HOST=10.0.0.5)(PORT=1521)))(CONNECT_DATA=(SID=ORCL)(SERVER=DEDICATED)));User Id=sentorax;Password=pvlrkmzd5173"_s);
        row("oracle address empty port", 7, u"|ORCL|srv|"_s,
            u"Provider=OraOLEDB.Oracle;Data Source=(DESCRIPTION=(CID=KRN_APP)(ADDRESS_LIST=(ADDRESS=(PROTOCOL=TCP)(HOST=srv)(PORT=)))(CONNECT_DATA=(SID=ORCL)(SERVER=DEDICATED)));User Id=sentorax;Password=pvlrkmzd5173"_s);
        row("sqlite", 2, u"/var/lib/sx/sxdb.db|||"_s,
            u"Driver=SQLite;Data Source=/var/lib/sx/sxdb.db;Password=pvlrkmzd5173;"_s);
        row("postgresql this computer", 3, u"|sxdb||"_s,
            u"Driver=PostgreSQL;Server=localhost;Port=5432;Database=sxdb;User Id=sentorax;Password=pvlrkmzd5173;"_s);
        row("postgresql address", 3, u"|sxdb|192.0.2.7|6543"_s,
            u"Driver=PostgreSQL;Server=192.0.2.7;Port=6543;Database=sxdb;User Id=sentorax;Password=pvlrkmzd5173;"_s);
    }
    void connectionStrings()
    {
        QFETCH(int, dbType);
        ConnectionSettings s;
        s.kind = dbKindFromSetting(dbType);
        QFETCH(QString, fields);
        const QStringList f = fields.split(u'|');
        s.file = f.value(0);
        s.dataSource = f.value(1);
        s.serverIp = f.value(2);
        s.serverPort = f.value(3);
        QTEST(connectionString(s), "expected");
    }

    void dbUrls_data()
    {
        QTest::addColumn<QString>("url");
        // kind|file|hosts|ports|name|user|password|tls mode|root|target; empty: refused
        QTest::addColumn<QString>("parsed");
        QTest::newRow("file") << u"sqlite:/tmp/a b.db"_s << u"2|/tmp/a b.db||||||||"_s;
        QTest::newRow("pair") << u"postgresql://u:p@10.0.0.1:5433,10.0.0.2:5434/fleet"_s
                              << u"3||10.0.0.1,10.0.0.2|5433,5434|fleet|u|p|||"_s;
        QTest::newRow("one port named") << u"postgres://u@a,[::1]:6000/f?sslmode=verify-full"_s
                                        << u"3||a,::1|5432,6000|f|u||verify-full||"_s;
        QTest::newRow("parameters")
            << u"postgresql://u@h/f?target_session_attrs=any&sslrootcert=/c%20a.crt"_s
            << u"3||h||f|u|||/c a.crt|any"_s;
        QTest::newRow("unknown parameter") << u"postgresql://u@h/f?sslmod=require"_s << QString();
        QTest::newRow("port not a number") << u"postgresql://u@a:1,b:x/f"_s << QString();
        QTest::newRow("another kind") << u"mysql://x/y"_s << QString();
        QTest::newRow("no file") << u"sqlite:"_s << QString();
        QTest::newRow("no database") << u"postgresql://host:5432/"_s << QString();
    }
    void dbUrls()
    {
        QFETCH(QString, url);
        ConnectionSettings s;
        const bool ok = parseDbUrl(url, s);
        const QStringList fields{QString::number(int(s.kind)),
                                 s.file,
                                 s.serverIp,
                                 s.serverPort,
                                 s.dataSource,
                                 s.user,
                                 s.password,
                                 s.sslMode,
                                 s.sslRootCert,
                                 s.targetSessionAttrs};
        QTEST(ok ? fields.join(u'|') : QString(), "parsed");
    }

    // Oracle's codes pick their own causes; the server's messages and states are classified.
    void explain_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("sqlState");
        QTest::addColumn<QString>("causes");
        const auto row = [](const char* name, const QString& message, const QString& causes,
                            const QString& sqlState = {}) {
            QTest::newRow(name) << message << sqlState << causes;
        };
        row("12170", u"ORA-12170: TNS:Connect timeout occurred"_s, kCausesNetwork);
        row("12560", u"ORA-12560: TNS:protocol adapter error"_s, kCauseLocal);
        row("12545", u"ORA-12545: Connect failed"_s,
            kCauseLocal + u"\r\n"_s + kCauseIp + u"\r\n"_s + kCausePort);
        row("12505", u"ORA-12505: TNS:listener does not know of SID"_s,
            kCauseDataSource + u"\r\n2. "_s + kStarting + u"\r\n3. "_s + kNotRunning);
        row("01017", u"ORA-01017: invalid username/password"_s, kCauseCredentials);
        row("12541", u"ORA-12541: TNS:no listener"_s, u"1. "_s + kNotRunning);
        row("01089", u"ORA-01089: immediate shutdown in progress"_s, kCauseShutdown);
        row("12528", u"ORA-12528: TNS:listener: all handlers blocked"_s, u"1. "_s + kStarting);
        row("03135", u"ORA-03135: connection lost contact"_s, kCauseDisconnected);
        row("other code", u"ORA-00942: table or view does not exist"_s, kUnknownOracle);
        row("code cut short", u"ORA-121"_s, kUnknownOracle);
        // The driver's own text comes first.
        row("after driver text", u"Unable to logon: ORA-12541: TNS:no listener"_s,
            u"1. "_s + kNotRunning);
        row("inside the text", u"[Oracle][ODBC]ORA-01017: could not connect"_s, kCauseCredentials);
        // A message that also reads as unreachable keeps the code's own causes.
        row("ORA beats the message", u"ORA-01017: could not connect"_s, kCauseCredentials);
        row("lower-case ora is not oracle", u"ora-12170: timeout"_s, kUnknownProvider);
        row("jet missing file", u"Could not find file 'C:\\sxdb.mdb'."_s, kUnknownProvider);
        row("empty", QString(), kUnknownProvider);
        row("refused",
            u"connection to server at \"127.0.0.1\", port 1 failed: Connection refused\n\tIs the server running on that host and accepting TCP/IP connections?"_s,
            kCausesNetwork);
        row("timeout", u"timeout expired"_s, kCausesNetwork);
        row("unknown host",
            u"could not translate host name \"nohost\" to address: Name or service not known"_s,
            kCausesNetwork);
        row("password",
            u"connection to server at \"127.0.0.1\", port 5432 failed: FATAL:  password authentication failed for user \"sentorax\""_s,
            kCauseCredentials);
        row("auth by state", u"FATAL: no"_s, kCauseCredentials, u"28P01"_s);
        row("no database",
            u"connection to server at \"127.0.0.1\", port 5432 failed: FATAL:  database \"sxdb\" does not exist"_s,
            kCauseDataSource);
        row("starting up", u"FATAL:  the database system is starting up"_s, u"1. "_s + kStarting);
        row("shutting down", u"FATAL:  the database system is shutting down"_s, kCauseShutdown);
        row("unknown", u"out of memory"_s, kUnknownProvider);
    }
    void explain()
    {
        QFETCH(QString, message);
        QFETCH(QString, sqlState);
        QFETCH(QString, causes);
        DbError e{kProviderErrorNumber, message, classifyFailure(message, sqlState)};
        QCOMPARE(explainDbError(e), errorHeader(kProviderErrorNumber, message) + causes);
    }

    void bits()
    {
        QVERIFY(isBitClear(0x21, 1) && !isBitClear(0x21, 5) && !isBitClear(0x80, 7));
        QVERIFY(isBitClear(0xFF, 8)); // no ninth bit in a byte
    }

    void storedDateTimes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("expected"); // invalid: refused
        QTest::newRow("full") << u"2026-11-16 22:05:09"_s << at(2026, 11, 16, 22, 5, 9);
        QTest::newRow("T and fraction")
            << u"2026-11-16T22:05:09.123"_s << at(2026, 11, 16, 22, 5, 9);
        QTest::newRow("no seconds") << u"2026-11-16 22:05"_s << at(2026, 11, 16, 22, 5, 0);
        QTest::newRow("date only") << u"2024-02-29"_s << at(2024, 2, 29, 0, 0, 0);
        QTest::newRow("blanks around") << u" 2026-01-01 00:00:00 "_s << at(2026, 1, 1, 0, 0, 0);
        QTest::newRow("not leap") << u"2023-02-29 00:00:00"_s << QDateTime();
        QTest::newRow("hour 24") << u"2026-01-01 24:00:00"_s << QDateTime();
        QTest::newRow("letters") << u"yesterday"_s << QDateTime();
        QTest::newRow("cut") << u"2026-01-01 1"_s << QDateTime();
        QTest::newRow("greek digits") << u"2026-01-0١"_s << QDateTime();
        QTest::newRow("minute 60") << u"2026-01-01 00:60:00"_s << QDateTime();
        QTest::newRow("blank for colon") << u"2026-01-01 00:00 00"_s << QDateTime();
    }
    void storedDateTimes()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, expected);
        const bool valid = expected.isValid();
        const auto secs = parseSqlDateTime(QStringView(text));
        QCOMPARE(secs.has_value(), valid);
        // A reader that has just read another time of the same day answers alike.
        const QByteArray bytes = text.toUtf8();
        SqlDateTimeReader reader;
        QVERIFY(reader(bytes.left(10).toStdString() + " 12:34:56").has_value() ||
                !parseSqlDateTime(QStringView(text.left(10))));
        QCOMPARE(reader(std::string_view(bytes.constData(), bytes.size())), secs);
        if (valid) {
            QCOMPARE(toQDateTime(*secs), expected);
            QCOMPARE(parseSqlDateTime(std::string_view(bytes.constData(), bytes.size())), secs);
        }
    }

    void calendarRoundTrip()
    {
        // Random instants from 1899 to 2255, against Qt's calendar.
        QRandomGenerator rng(7);
        const QDateTime base(QDate(1899, 12, 30), QTime(0, 0));
        for (int i = 0; i < 20000; ++i) {
            const QDateTime qt =
                base.addSecs(static_cast<qint64>(rng.bounded(356.0 * 365.25 * 86400)));
            const qint64 secs = fromQDateTime(qt);
            QCOMPARE(toQDateTime(secs), qt);
            QCOMPARE(parseSqlDateTime(QStringView(sqlDateTimeText(secs))), secs);
        }
        QVERIFY(isZeroDate(fromQDateTime(base)));
        QVERIFY(!isZeroDate(fromQDateTime(base.addDays(1))));
    }
};

QTEST_GUILESS_MAIN(TestDataFormats)
#include "tst_dataformats.moc"
