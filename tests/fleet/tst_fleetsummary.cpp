// The fleet summary against real databases: which state each unit gets and what
// is counted.
#include "../current/CurrentSeed.h"
#include "ScratchDatabase.h"
#include "model/fleet/FleetSummary.h"

#include <QtTest>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

// The rows of a case in a short form: Z point type used, C point value
// out-of-bounds alarm, P input used, PC input fault condition, F type info,
// M recipients (a point message), PM recipients (a power message).
bool seedCase(test::CurrentSeed& seed, const QString& sql)
{
    const auto one = [&seed](const QStringList& f, int n) {
        const QString u = u"U"_s;
        if (f[0] == u"Z")
            return seed.point(u, f[1].toInt(), u"'Ψυγείο'"_s, f[2], f[3], u"50"_s, u"10"_s, u"1"_s,
                              u"1"_s);
        if (f[0] == u"C")
            return seed.pointCondition(u, f[1].toInt(), f[2], f[3], f[4]);
        if (f[0] == u"P")
            return seed.power(u, f[1].toInt(), u"NULL"_s, f[2]);
        if (f[0] == u"PC")
            return seed.powerCondition(u, f[1].toInt(), f[2], f[3]);
        if (f[0] == u"F")
            return seed.fault(u, f[1].toInt(), f[2]);
        return seed.run( // a point message (M) or a power message (PM)
            (f[0] == u"M"
                 ? u"INSERT INTO Sensors_Events (SeE_SyI_Serialnumber, SeE_Sensornumber, SeE_Eventnumber, SeE_Eventtype, SeE_Recordedvalue, SeE_BeforeCounter, SeE_Recipients) VALUES ('U', 1, %1, 1, 5, 60, %2)"_s
                 : u"INSERT INTO Powermonitoring_Events (PmE_SyI_Serialnumber, PmE_Eventnumber, PmE_Eventpowercondition, PmE_BeforeCounter, PmE_Recipients) VALUES ('U', %1, 1, 60, %2)"_s)
                .arg(n)
                .arg(f[1]));
    };
    int n = 0;
    for (const QString& line : sql.split(u";\n"_s, Qt::SkipEmptyParts))
        if (!one(line.split(u' '), ++n))
            return false;
    return true;
}

} // namespace

class TestFleetSummary : public QObject {
    Q_OBJECT
private slots:
    void rules_data()
    {
        QTest::addColumn<QString>("online");
        QTest::addColumn<QString>("softver");
        QTest::addColumn<QString>("sql"); // more rows for unit 'U'
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("counts"); // zones, powers, new messages
        QTest::addColumn<QString>("faults");

        // Columns: online, version, zones, powers, new messages.
        const auto row = [](const char* name, const char* in, const QString& sql, FleetState state,
                            const QString& faults = {}) {
            const QStringList f = QString::fromLatin1(in).split(u' ');
            QTest::newRow(name) << f[0] << f[1] << sql << static_cast<int>(state)
                                << f.mid(2).join(u' ') << faults;
        };
        const QString zone = u"Z 1 0 1;\nC 1 5 0 0;\n"_s;
        row("normal", "1 1.22 0 0 0", zone, FleetState::Normal);
        row("zone out of limits", "1 1.22 1 0 0", u"Z 1 0 1;\nC 1 60 1 0;\n"_s, FleetState::Alarm);
        row("zone in alarm", "1 1.22 1 0 0", u"Z 2 0 1;\nC 2 60 0 1;\n"_s, FleetState::Alarm);
        row("zone not in use", "1 1.22 0 0 0", u"Z 1 0 0;\nC 1 60 1 1;\n"_s, FleetState::Normal);
        row("offline keeps its stale zones", "0 1.22 1 0 0", u"Z 1 0 1;\nC 1 60 1 1;\n"_s,
            FleetState::Offline);
        row("being programmed", "2 1.22 0 0 0", zone, FleetState::Programming);
        row("online missing", "NULL 1.22 0 0 0", zone, FleetState::Programming);
        row("power fault", "1 1.21 0 1 0", u"P 2 1;\nPC 2 1 0;\n"_s, FleetState::Alarm);
        row("supply cut from 1.22", "1 1.22 0 1 0", u"P 1 1;\nPC 1 0 1;\n"_s, FleetState::Alarm);
        row("supply cut column ignored before 1.22", "1 1.21 0 0 0", u"P 1 1;\nPC 1 0 1;\n"_s,
            FleetState::Normal);
        row("power input not in use", "1 1.21 0 0 0", u"P 3 0;\nPC 3 1 1;\n"_s, FleetState::Normal);
        row("unit fault", "1 1.22 0 0 0", u"F 0 3;\n"_s, FleetState::Faults,
            u"ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s);
        row("sensor fault and alarm", "1 1.22 1 0 0", u"F 1 4;\nZ 1 0 1;\nC 1 60 0 1;\n"_s,
            FleetState::Alarm, u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 4"_s);
        row("new messages of both kinds", "1 1.22 0 0 3", u"M 1;\nM 1;\nM 0;\nPM 1;\nPM 0;\n"_s,
            FleetState::Normal);
    }

    void rules()
    {
        QFETCH(QString, online);
        QFETCH(QString, softver);
        QFETCH(QString, sql);
        test::ScratchDatabase scratch;
        SX_REQUIRE_DB(scratch);
        Database db;
        QVERIFY(scratch.open(db));
        test::CurrentSeed seed(db);
        QVERIFY(seed.unit(u"U"_s, u"Θάλαμος"_s, online, sqlQuote(softver), u"'12'"_s));
        // A unit out of use with everything wrong, and the events that give the newest time.
        QVERIFY(seed.run(
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Systemname, SyI_Used, SyI_Online) VALUES ('OFF', 'x', 0, 1)"_s));
        QVERIFY(seed.fault(u"OFF"_s, 0, u"1"_s));
        QVERIFY(seed.run(
            u"INSERT INTO Events_1 (Event_SyI_Serialnumber, Event_SystemEventSN, Event_Datetime, Event_EventSource) VALUES ('U', 7, %1, 1), ('U', 6, %2, 1)"_s
                .arg(sqlDateTimeLiteral(db.kind(), 1'700'000'000),
                     sqlDateTimeLiteral(db.kind(), 1'800'000'000))));
        QVERIFY(seedCase(seed, sql));

        DbError error;
        const std::optional<FleetSummary> fleet = readFleetSummary(db, &error);
        QVERIFY2(fleet, qPrintable(error.description));
        QCOMPARE(fleet->units.size(), 1);
        const UnitSummary& u = fleet->units.first();
        QCOMPARE(u.serial, u"U"_s);
        QCOMPARE(u.title(), u"Θάλαμος [12]"_s);
        QTEST(static_cast<int>(u.state()), "state");
        QTEST(u"%1 %2 %3"_s.arg(u.zones.size()).arg(u.powers.size()).arg(u.newMessages), "counts");
        QTEST(u.faults.join(u'|'), "faults");
        // The newest event is the last by sequence number, not the latest date.
        QCOMPARE(u.newestEvent, std::optional<qint64>(1'700'000'000));
        QTEST(static_cast<int>(fleet->worst()), "state");
    }
};

QTEST_GUILESS_MAIN(TestFleetSummary)
#include "tst_fleetsummary.moc"
