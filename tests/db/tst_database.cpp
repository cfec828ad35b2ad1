#include "ScratchDatabase.h"
#include "UserTexts.h"
#include "model/Database.h"
#include "model/QueryHelpers.h"
#include "model/Schema.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;

#define OPEN_SCRATCH()                                                                             \
    test::ScratchDatabase scratch;                                                                 \
    SX_REQUIRE_DB(scratch);                                                                        \
    Database db;                                                                                   \
    QVERIFY(scratch.open(db))

class TestDatabase : public QObject {
    Q_OBJECT

private slots:
    void openFailures_data()
    {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<QString>("causes");
        QTest::addColumn<QString>("descriptionHas");
        using namespace test::texts;
        if (test::ScratchDatabase::kindName() != u"postgresql") {
            QTest::newRow("missing file") << u"missing"_s << kUnknownProvider << u"nosuch.db"_s;
            QTest::newRow("a folder") << u"folder"_s << kUnknownProvider << u"sub"_s;
        } else {
            QTest::newRow("refused") << u"closed port"_s << kCausesNetwork << u""_s;
            QTest::newRow("wrong password") << u"password"_s << kCauseCredentials << u""_s;
            QTest::newRow("no database") << u"database"_s << kCauseDataSource << u"sx_no_such_db"_s;
        }
    }
    void openFailures()
    {
        QFETCH(QString, setup);
        QFETCH(QString, causes);
        QFETCH(QString, descriptionHas);
        test::ScratchDatabase scratch;
        SX_REQUIRE_DB(scratch);
        ConnectionSettings s = scratch.settings();
        if (!scratch.isPostgres())
            s.file = scratch.folder() + u'/' + descriptionHas; // the file's name is in the message
        if (setup == u"folder")
            QVERIFY(QDir(scratch.folder()).mkdir(u"sub"_s));
        s.serverPort = setup == u"closed port" ? u"1"_s : s.serverPort;
        s.password = setup == u"password" ? u"wrong"_s : s.password;
        s.dataSource = setup == u"database" ? u"sx_no_such_db"_s : s.dataSource;
        Database db;
        db.allowGuiThread();
        const DbError e = db.open(s);
        QVERIFY(e.isError() && !db.isOpen());
        QVERIFY2(e.description.contains(descriptionHas), qPrintable(e.description));
        const QString text = explainDbError(e);
        QVERIFY(text.startsWith(test::texts::kErrorHeader));
        QCOMPARE(text.section(test::texts::kCausesHeading, 1), causes);
        if (setup == u"missing")
            QVERIFY(!QFile::exists(s.file)); // opening never creates the console's database
    }

    void nullsAreDistinctAndFailuresCarryTheirError()
    {
        OPEN_SCRATCH();
        using namespace schema::SensorsInfo;
        const auto row = [&](QString serial, SqlValue name, SqlValue type, SqlValue max) {
            return db.insertRow(table, {{SeI_SyI_Serialnumber, serial},
                                        {SeI_Sensornumber, qint64(1)},
                                        {SeI_Sensorname, name},
                                        {SeI_Sensortype, type},
                                        {SeI_Maxlimit, max}});
        };
        QVERIFY(!row(u"A"_s, std::monostate{}, std::monostate{}, std::monostate{}).isError());
        QVERIFY(!row(u"B"_s, QString(), qint64(0), 0.0).isError());
        QVERIFY(!row(u"C"_s, u"Ψυγείο 'Α'"_s, qint64(20), -12.5).isError());

        // Lower-case names: the server may fold them, the reader must not care.
        Rows r = db.read(
            u"SELECT sei_syi_serialnumber, SeI_Sensorname, SEI_SENSORTYPE, SeI_Maxlimit FROM Sensors_Info ORDER BY SeI_SyI_Serialnumber"_s);
        // Each row as "serial|name|type|max|type or 99|null name"; "-" stands for missing.
        QStringList got;
        while (r.next()) {
            const auto num = [](auto v) { return v ? QString::number(*v) : u"-"_s; };
            got << QStringList{r.text(u"SeI_SyI_Serialnumber").value_or(u"-"_s),
                               r.text(u"SeI_Sensorname").value_or(u"-"_s),
                               num(r.integer(u"SeI_Sensortype")),
                               num(r.real(u"SeI_Maxlimit")),
                               QString::number(r.intOr(u"SeI_Sensortype", 99)),
                               QString::number(int(r.isNull(u"SeI_Sensorname")))}
                       .join(u'|');
            // A column that is not in the result reads as missing.
            QVERIFY(r.isNull(u"SeI_Used") && !r.integer(u"NoSuchColumn"));
        }
        QCOMPARE(got, (QStringList{u"A|-|-|-|99|1"_s, u"B||0|0|0|0"_s,
                                   u"C|Ψυγείο 'Α'|20|-12.5|20|0"_s}));
        QVERIFY(r.ok() && !r.text(0)); // past the end nothing is read
        for (bool native : {true, false}) {
            db.setNativeReads(native);
            Rows bad = db.read(u"SELECT x FROM NoSuchTable"_s);
            QVERIFY(!bad.ok() && !bad.next() && bad.error().number != 0);
            QVERIFY2(bad.error().description.contains(u"NoSuchTable"_s, Qt::CaseInsensitive),
                     qPrintable(bad.error().description));
        }
        QVERIFY(db.exec(u"UPDATE NoSuchTable SET a=1"_s).isError());
        QVERIFY(!db.connectionLost()); // a bad statement is not a lost connection
        DbError fe;
        QVERIFY(!hasMessages(db, MessageKind::New, u"X"_s, &fe) && !fe.isError());
    }

    // What counts as a new or archived message of a unit: "N" new, "A" archived,
    // "F" a fault, "-" none; for the unit U'1 and for every unit at once.
    void messageAndFaultChecks_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("all");
        const QString pm =
            u"INSERT INTO Powermonitoring_Events (PmE_SyI_Serialnumber, PmE_Recipients) VALUES "_s;
        const QString se =
            u"INSERT INTO Sensors_Events (SeE_SyI_Serialnumber, SeE_Recipients) VALUES "_s;
        QTest::newRow("fault only")
            << u"INSERT INTO Systems_Faults (SyF_SyI_Serialnumber, SyF_Faulttype, SyF_Faultinfo) VALUES ('U''1', 1, '4')"_s
            << u"N-F"_s << u"N-F"_s;
        QTest::newRow("new power message") << pm + u"('U''1', 3)"_s << u"N--"_s << u"N--"_s;
        QTest::newRow("archived power message") << pm + u"('U''1', 0)"_s << u"-A-"_s << u"-A-"_s;
        QTest::newRow("new point message") << se + u"('U''1', -1)"_s << u"N--"_s << u"N--"_s;
        QTest::newRow("archived point message") << se + u"('U''1', 0)"_s << u"-A-"_s << u"-A-"_s;
        QTest::newRow("other unit only") << se + u"('U2', 1)"_s << u"---"_s << u"N--"_s;
        QTest::newRow("null recipients") << se + u"('U''1', NULL)"_s << u"---"_s << u"---"_s;
    }
    void messageAndFaultChecks()
    {
        QFETCH(QString, sql);
        OPEN_SCRATCH();
        QVERIFY(!db.exec(sql).isError());
        const auto found = [&db](const QString& unit) {
            return QString(hasMessages(db, MessageKind::New, unit) ? u'N' : u'-') +
                   (hasMessages(db, MessageKind::Archived, unit) ? u'A' : u'-') +
                   (hasFaults(db, unit) ? u'F' : u'-');
        };
        QTEST(found(u"U'1"_s), "unit");
        QTEST(found({}), "all");
    }

    void nativeAndQtReadersAgree()
    {
        OPEN_SCRATCH();
        QVERIFY(!db.exec(u"INSERT INTO Events_1 (Event_SyI_Serialnumber, Event_SystemEventSN, "
                         u"Event_Datetime, Event_EventSource, Event_Condition, "
                         u"Event_SeI_Sensortype, Event_Value, Event_Info1, Event_Ack) VALUES "
                         "('S', 1, '2026-01-02 03:04:05', 25, NULL, 2, 0.25, '2;7;12', 0), "
                         "('S', 2147483647, NULL, 21, 49, NULL, -1e6, NULL, 1), "
                         "('S', 3, '1899-12-30 00:00:00', 7, 1, 0, 21.5, '', NULL)"_s)
                     .isError());
        const QString sql = u"SELECT * FROM Events_1 ORDER BY Event_SystemEventSN"_s;
        auto dump = [&](bool native) {
            db.setNativeReads(native);
            QStringList out;
            Rows r = db.read(sql);
            while (r.next())
                for (int c = 0; c < r.columnCount(); ++c)
                    out << (r.isNull(c) ? u"NULL"_s : u"v"_s) +
                               QString::number(r.integer(c).value_or(-7)) + u'|' +
                               QString::number(r.real(c).value_or(-7)) + u'|' +
                               QString::number(r.dateTime(c).value_or(-7));
            return out;
        };
        QCOMPARE(dump(true), dump(false));
    }

    // A statement past its deadline is stopped and reported as slow; the
    // connection stays and works as soon as the holder lets go.
    void slowStatementIsCancelledNotLost()
    {
        OPEN_SCRATCH();
        QVERIFY(!db.exec(u"INSERT INTO Systems_Info (SyI_Serialnumber) VALUES ('S1')"_s).isError());
        Database holder;
        QVERIFY(scratch.open(holder, false));
        QString slow = u"SELECT count(*) FROM Systems_Info"_s;
        if (scratch.isPostgres())
            QVERIFY(!holder.exec(u"BEGIN; LOCK TABLE Systems_Info IN ACCESS EXCLUSIVE MODE"_s)
                         .isError());
        else
            slow = u"WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) "
                   u"SELECT count(*) FROM c"_s;
        db.setDeadline(300);
        Rows r = db.read(slow);
        QVERIFY(!r.next());
        QCOMPARE(r.error().cause, DbFailureCause::Slow);
        QVERIFY(explainDbError(r.error()).contains(u"δεν απάντησε έγκαιρα"_s));
        QVERIFY(db.isOpen() && !db.connectionLost());
        if (scratch.isPostgres())
            QVERIFY(!holder.exec(u"ROLLBACK"_s).isError());
        Rows again = db.read(u"SELECT count(*) FROM Systems_Info"_s);
        QVERIFY(again.next() && again.integer(0) == 1);
    }
};

QTEST_GUILESS_MAIN(TestDatabase)
#include "tst_database.moc"
