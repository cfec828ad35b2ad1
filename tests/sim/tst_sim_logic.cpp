// Logic of the simulator that needs no database: the command line, the
// answers units give to requests, the fleet plan and the reading walk.
#include "model/Formatting.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "sim/DemoFleet.h"
#include "sim/RequestHandler.h"
#include "sim/SimOptions.h"
#include "sim/StoreCounters.h"
#include "sim/ValueWalk.h"

#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::sim;

class TestSimLogic : public QObject {
    Q_OBJECT

private slots:
    void commandLine_data();
    void commandLine();
    void commandLineRejects_data();
    void commandLineRejects();

    void extendedNotification_data();
    void extendedNotification();
    void replies_data();
    void replies();

    void fleetIsTheSameForTheSameSeed();
    void fleetCodesAreFourToEightDigits();
    void fleetPlanCoversModelsVersionsAndStates();
    void storeCountersAreZeroOnlyWhenEmpty();
    void walkRepeatsForTheSameSeed();
    void forcedExcursionCrossesALimitInForce();
};

void TestSimLogic::commandLine_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("value");

    const int init = int(SimCommand::Init), seed = int(SimCommand::Seed),
              run = int(SimCommand::Run);
    QTest::newRow("init") << QStringList{u"--db"_s, u"sqlite:/x.db"_s, u"init"_s} << init << u"db"_s
                          << u"sqlite:/x.db"_s;
    QTest::newRow("db after command")
        << QStringList{u"init"_s, u"--db=sqlite:/y.db"_s} << init << u"db"_s << u"sqlite:/y.db"_s;
    QTest::newRow("seed defaults")
        << QStringList{u"--db"_s, u"sqlite:/x.db"_s, u"seed"_s} << seed << u"units"_s << u"12"_s;
    QTest::newRow("seed units") << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--units"_s, u"3"_s}
                                << seed << u"units"_s << u"3"_s;
    QTest::newRow("seed big seed")
        << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--seed"_s, u"18446744073709551615"_s}
        << seed << u"seed"_s << u"18446744073709551615"_s;
    QTest::newRow("seed end") << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--end"_s,
                                             u"2024-01-02 03:04"_s}
                              << seed << u"end"_s << u"2024-01-02 03:04:00"_s;
    QTest::newRow("year point") << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--year-point"_s}
                                << seed << u"yearPoint"_s << u"1"_s;
    QTest::newRow("run defaults") << QStringList{u"--db"_s, u"a:"_s, u"run"_s} << run << u"timing"_s
                                  << u"2000/1000/0/60"_s;
    QTest::newRow("run timing") << QStringList{u"--db"_s,       u"a:"_s,  u"run"_s,
                                               u"--interval"_s, u"250"_s, u"--answer-delay=0"_s,
                                               u"--ticks"_s,    u"5"_s,   u"--record-secs"_s,
                                               u"0"_s}
                                << run << u"timing"_s << u"250/0/5/0"_s;
    QTest::newRow("forced reply") << QStringList{u"--db"_s, u"a:"_s, u"run"_s, u"--reply"_s, u"4"_s}
                                  << run << u"reply"_s << u"4"_s;
    QTest::newRow("no answer") << QStringList{u"--db"_s, u"a:"_s, u"run"_s, u"--no-answer"_s} << run
                               << u"noAnswer"_s << u"1"_s;
    QTest::newRow("help wins") << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--bogus"_s} << -1
                               << QString() << QString();
}

void TestSimLogic::commandLine()
{
    QFETCH(QStringList, args);
    QFETCH(int, command);
    QFETCH(QString, field);
    QFETCH(QString, value);
    if (command < 0) {
        // An unknown option is an error unless help was asked first.
        QVERIFY(!parseSimOptions(args).error.isEmpty());
        args.prepend(u"--help"_s);
        const ParsedOptions p = parseSimOptions(args);
        QVERIFY(p.error.isEmpty());
        QCOMPARE(p.options.command, SimCommand::Help);
        return;
    }
    const ParsedOptions p = parseSimOptions(args);
    QVERIFY2(p.error.isEmpty(), qPrintable(p.error));
    const SimOptions& o = p.options;
    QCOMPARE(int(o.command), command);
    QString actual;
    if (field == u"db")
        actual = o.dbUrl;
    else if (field == u"units")
        actual = QString::number(o.units);
    else if (field == u"seed")
        actual = QString::number(o.seed);
    else if (field == u"end")
        actual = o.endSecs ? sqlDateTimeText(*o.endSecs) : QString();
    else if (field == u"yearPoint")
        actual = QString::number(o.yearPoint);
    else if (field == u"timing")
        actual =
            u"%1/%2/%3/%4"_s.arg(o.intervalMs).arg(o.answerDelayMs).arg(o.ticks).arg(o.recordSecs);
    else if (field == u"reply")
        actual = o.forcedReply ? QString::number(*o.forcedReply) : QString();
    else if (field == u"noAnswer")
        actual = QString::number(o.noAnswer);
    QCOMPARE(actual, value);
}

void TestSimLogic::commandLineRejects_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("mentions");
    QTest::newRow("nothing") << QStringList{} << u"no command"_s;
    QTest::newRow("no db") << QStringList{u"init"_s} << u"no database"_s;
    QTest::newRow("unknown command") << QStringList{u"--db"_s, u"a:"_s, u"start"_s} << u"start"_s;
    QTest::newRow("two commands") << QStringList{u"--db"_s, u"a:"_s, u"init"_s, u"seed"_s}
                                  << u"seed"_s;
    QTest::newRow("unknown option")
        << QStringList{u"--db"_s, u"a:"_s, u"run"_s, u"--fast"_s} << u"--fast"_s;
    QTest::newRow("missing value")
        << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--units"_s} << u"--units"_s;
    QTest::newRow("zero units") << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--units"_s, u"0"_s}
                                << u"--units"_s;
    QTest::newRow("word for number")
        << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--days"_s, u"ten"_s} << u"ten"_s;
    QTest::newRow("negative delay")
        << QStringList{u"--db"_s, u"a:"_s, u"run"_s, u"--answer-delay"_s, u"-1"_s}
        << u"--answer-delay"_s;
    QTest::newRow("tiny interval")
        << QStringList{u"--db"_s, u"a:"_s, u"run"_s, u"--interval"_s, u"1"_s} << u"--interval"_s;
    QTest::newRow("bad end") << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--end"_s,
                                            u"yesterday"_s}
                             << u"--end"_s;
    QTest::newRow("run option on seed")
        << QStringList{u"--db"_s, u"a:"_s, u"seed"_s, u"--ticks"_s, u"3"_s} << u"--ticks"_s;
    QTest::newRow("seed option on run")
        << QStringList{u"--db"_s, u"a:"_s, u"run"_s, u"--units"_s, u"3"_s} << u"--units"_s;
    QTest::newRow("flag with value")
        << QStringList{u"--db"_s, u"a:"_s, u"run"_s, u"--no-answer=1"_s} << u"--no-answer"_s;
}

void TestSimLogic::commandLineRejects()
{
    QFETCH(QStringList, args);
    QFETCH(QString, mentions);
    const ParsedOptions p = parseSimOptions(args);
    QVERIFY(!p.error.isEmpty());
    QVERIFY2(p.error.contains(mentions), qPrintable(p.error));
    QVERIFY(!p.error.contains(u'\n'));
}

void TestSimLogic::extendedNotification_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("softver");
    QTest::addColumn<bool>("extended");
    QTest::newRow("1A before 115") << u"SENTORAX-1A"_s << u"1.14"_s << false;
    QTest::newRow("1A at 115") << u"SENTORAX-1A"_s << u"1.15"_s << true;
    QTest::newRow("1B at 122") << u"SENTORAX-1B"_s << u"1.22"_s << true;
    QTest::newRow("1B 1.5 is 15") << u"SENTORAX-1B"_s << u"1.5"_s << false;
    QTest::newRow("1B 2.0 is 20") << u"SENTORAX-1B"_s << u"2.0"_s << false;
    QTest::newRow("1A unreadable version") << u"SENTORAX-1A"_s << u"abc"_s << false;
    QTest::newRow("1C any version") << u"SENTORAX-1C"_s << u"0.1"_s << true;
    QTest::newRow("2F no version") << u"SENTORAX-2F"_s << QString() << true;
    QTest::newRow("model inside text") << u"X SENTORAX-2E rev b"_s << u"1.0"_s << true;
    QTest::newRow("2B unknown model") << u"SENTORAX-2B"_s << u"1.22"_s << false;
    QTest::newRow("case matters") << u"sentorax-1c"_s << u"1.22"_s << false;
    QTest::newRow("empty model") << QString() << u"1.22"_s << false;
}

void TestSimLogic::extendedNotification()
{
    QFETCH(QString, model);
    QFETCH(QString, softver);
    QFETCH(bool, extended);
    QCOMPARE(isExtendedNotification(model, softver), extended);
}

void TestSimLogic::replies_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("online");
    QTest::addColumn<QString>("code");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<int>("reply");
    QTest::addColumn<int>("state");

    const QString ext = u"SENTORAX-1C"_s;
    const QString old = u"SENTORAX-2B"_s;
    QTest::newRow("offline") << ext << 0 << u"1234"_s << 2 << u"1234;1"_s << 3 << 0;
    QTest::newRow("programming") << ext << 2 << u"1234"_s << 2 << u"1234;1"_s << 4 << 0;
    QTest::newRow("programming before code") << ext << 7 << u"1234"_s << 2 << u"9;9"_s << 4 << 0;
    QTest::newRow("wrong code") << ext << 1 << u"1234"_s << 2 << u"4321;1"_s << 2 << 0;
    QTest::newRow("leading zero counts") << ext << 1 << u"0042"_s << 2 << u"042;1"_s << 2 << 0;
    QTest::newRow("code kept with zeros") << ext << 1 << u"0042"_s << 2 << u"0042;1"_s << 1 << 1;
    QTest::newRow("no stored code takes any")
        << ext << 1 << QString() << 2 << u"87654321;1"_s << 1 << 1;
    QTest::newRow("code of 9 digits") << ext << 1 << QString() << 2 << u"123456789;1"_s << 2 << 0;
    QTest::newRow("code of 3 digits") << ext << 1 << QString() << 2 << u"123;1"_s << 2 << 0;
    QTest::newRow("letter in field") << ext << 1 << u"1234"_s << 2 << u"1234;a"_s << 2 << 0;
    QTest::newRow("trailing separator") << ext << 1 << u"1234"_s << 2 << u"1234;1;"_s << 2 << 0;
    QTest::newRow("empty attributes") << ext << 1 << u"1234"_s << 2 << QString() << 2 << 0;
    QTest::newRow("relay state 2") << ext << 1 << u"1234"_s << 2 << u"1234;2"_s << 2 << 0;
    QTest::newRow("relay off") << ext << 1 << u"1234"_s << 2 << u"1234;0"_s << 1 << 0;
    QTest::newRow("extended automatic") << ext << 1 << u"1234"_s << 1 << u"1234;2"_s << 1 << 2;
    QTest::newRow("extended state 3") << ext << 1 << u"1234"_s << 1 << u"1234;3"_s << 2 << 0;
    QTest::newRow("three fields to extended")
        << ext << 1 << u"1234"_s << 1 << u"1234;1;0"_s << 5 << 0;
    QTest::newRow("two fields to older") << old << 1 << u"1234"_s << 1 << u"1234;1"_s << 5 << 0;
    QTest::newRow("automatic to older") << old << 1 << u"1234"_s << 1 << u"1234;2;0"_s << 5 << 0;
    QTest::newRow("older with delay 24") << old << 1 << u"1234"_s << 1 << u"1234;1;24"_s << 1 << 1;
    QTest::newRow("older with delay 25") << old << 1 << u"1234"_s << 1 << u"1234;1;25"_s << 2 << 0;
    QTest::newRow("older delay leading zero")
        << old << 1 << u"1234"_s << 1 << u"1234;1;07"_s << 1 << 1;
    QTest::newRow("older off") << old << 1 << u"1234"_s << 1 << u"1234;0;0"_s << 1 << 0;
    QTest::newRow("four fields") << old << 1 << u"1234"_s << 1 << u"1234;1;1;1"_s << 2 << 0;
    QTest::newRow("bypass point 4") << ext << 1 << u"1234"_s << 3 << u"1234;4;1"_s << 1 << 1;
    QTest::newRow("back in service") << ext << 1 << u"1234"_s << 3 << u"1234;4;0"_s << 1 << 0;
    QTest::newRow("bypass unused point") << ext << 1 << u"1234"_s << 3 << u"1234;5;1"_s << 5 << 0;
    QTest::newRow("bypass point 21") << ext << 1 << u"1234"_s << 3 << u"1234;21;1"_s << 2 << 0;
    QTest::newRow("bypass state 2") << ext << 1 << u"1234"_s << 3 << u"1234;4;2"_s << 2 << 0;
    QTest::newRow("unknown request") << ext << 1 << u"1234"_s << 9 << u"1234;1"_s << 5 << 0;
}

void TestSimLogic::replies()
{
    QFETCH(QString, model);
    QFETCH(int, online);
    QFETCH(QString, code);
    QFETCH(int, type);
    QFETCH(QString, attributes);
    QFETCH(int, reply);
    QFETCH(int, state);
    UnitFacts unit;
    unit.exists = true;
    unit.online = online;
    unit.model = model;
    unit.softver = u"1.22"_s;
    if (!code.isEmpty())
        unit.code = code;
    unit.usedPoints = {1, 2, 4};
    const std::optional<QString> attrs =
        attributes.isNull() ? std::nullopt : std::optional<QString>(attributes);
    const RequestDecision d = decideRequest(unit, type, attrs);
    QCOMPARE(d.reply, reply);
    if (reply == kReplyDone)
        QCOMPARE(d.state, state);

    // A unit the server does not know is never reachable, whatever is asked.
    QCOMPARE(decideRequest(UnitFacts{}, type, attrs).reply, int(kReplyOffline));
}

void TestSimLogic::fleetIsTheSameForTheSameSeed()
{
    const QList<DemoUnit> a = buildDemoFleet(20, 5);
    const QList<DemoUnit> b = buildDemoFleet(20, 5);
    const QList<DemoUnit> c = buildDemoFleet(20, 6);
    QCOMPARE(a.size(), 20);
    QStringList codesA, codesB, codesC;
    for (qsizetype i = 0; i < a.size(); ++i) {
        QCOMPARE(a[i].serial, b[i].serial);
        QCOMPARE(a[i].points.size(), b[i].points.size());
        for (qsizetype p = 0; p < a[i].points.size(); ++p)
            QCOMPARE(a[i].points[p].type, b[i].points[p].type);
        codesA << a[i].code;
        codesB << b[i].code;
        codesC << c[i].code;
    }
    QCOMPARE(codesA, codesB);
    QVERIFY(codesA != codesC);
    // Serials do not depend on the seed, so a re-seed keeps the units.
    QCOMPARE(a[15].serial, c[15].serial);
    QSet<QString> serials;
    for (const DemoUnit& u : a)
        serials.insert(u.serial);
    QCOMPARE(serials.size(), a.size());
}

void TestSimLogic::fleetCodesAreFourToEightDigits()
{
    for (const DemoUnit& u : buildDemoFleet(40, 99)) {
        QVERIFY2(u.code.size() >= 4 && u.code.size() <= 8, qPrintable(u.code));
        for (QChar ch : u.code)
            QVERIFY(ch.isDigit());
    }
}

void TestSimLogic::fleetPlanCoversModelsVersionsAndStates()
{
    const QList<DemoUnit> fleet = buildDemoFleet(12, 1);
    QSet<QString> models;
    QSet<int> online;
    bool below115 = false, from115 = false, below122 = false, from122 = false;
    for (const DemoUnit& u : fleet) {
        models.insert(u.model);
        online.insert(u.online);
        const int v = unitVersionNumber(u.softver);
        const bool oneAB = u.model.contains(u"SENTORAX-1A") || u.model.contains(u"SENTORAX-1B");
        below115 |= oneAB && v < 115;
        from115 |= oneAB && v >= 115;
        below122 |= v < 122;
        from122 |= v >= 122;
    }
    for (QStringView m : kUnitModels)
        QVERIFY2(models.contains(m.toString()), qPrintable(m.toString()));
    QVERIFY(below115 && from115 && below122 && from122);
    QVERIFY(online.contains(0) && online.contains(1) && online.contains(2));
}

void TestSimLogic::storeCountersAreZeroOnlyWhenEmpty()
{
    QCOMPARE(storeCounters(0, kRecordEntryBytes).pageBytes, 0);
    QCOMPARE(storeCounters(0, kRecordEntryBytes).lastPage, 0);
    for (qint64 n : {1, 255, 256, 257, 4096, 525600}) {
        const StoreCounters c = storeCounters(n, kRecordEntryBytes);
        QVERIFY2(c.pageBytes > 0 || c.lastPage > 0, qPrintable(QString::number(n)));
        QCOMPARE(c.lastPage * kStorePageBytes + c.pageBytes, n * kRecordEntryBytes);
    }
}

void TestSimLogic::walkRepeatsForTheSameSeed()
{
    ValueWalk a(0, true, true, 300, WalkTempo::history(), 42);
    ValueWalk b(0, true, true, 300, WalkTempo::history(), 42);
    ValueWalk c(0, true, true, 300, WalkTempo::history(), 43);
    bool differs = false;
    for (int i = 0; i < 2000; ++i) {
        const double va = a.next();
        QCOMPARE(va, b.next());
        differs |= va != c.next();
    }
    QVERIFY(differs);

    ValueWalk contact(kContactSensorType, false, false, 300, WalkTempo::history(), 7);
    for (int i = 0; i < 2000; ++i) {
        const double v = contact.next();
        QVERIFY(v == 0 || v == 1);
    }
}

void TestSimLogic::forcedExcursionCrossesALimitInForce()
{
    // Only the lower limit is in force: the excursion must go down to be seen.
    DemoPoint p;
    p.type = 0;
    const TypeProfile prof = typeProfile(0);
    p.minLimit = prof.center - prof.halfWidth;
    p.maxLimit = prof.center + prof.halfWidth;
    p.minUsed = true;
    for (quint64 seed = 1; seed <= 20; ++seed) {
        WalkTempo calm = WalkTempo::history();
        calm.meanGapSecs = 1e12; // no excursion but the forced one
        ValueWalk walk(0, true, false, 300, calm, seed);
        walk.forceExcursionAt(10);
        bool below = false, above = false;
        for (int i = 0; i < 60; ++i) {
            const double v = walk.next();
            below |= v < p.minLimit;
            above |= v > p.maxLimit;
            if (i < 10)
                QVERIFY(!outOfLimits(p, v));
        }
        QVERIFY2(below, qPrintable(QString::number(seed)));
        QVERIFY(!above);
    }
}

QTEST_GUILESS_MAIN(TestSimLogic)
#include "tst_sim_logic.moc"
