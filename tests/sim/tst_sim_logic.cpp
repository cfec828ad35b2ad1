// Logic of the simulator that needs no database: the command line, the
// answers units give to requests, the fleet plan and the reading walk.
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
    void storeCountersAreZeroOnlyWhenEmpty();
    void walkRepeatsForTheSameSeed();
    void forcedExcursionCrossesALimitInForce();
};

namespace {

QStringList words(const QString& line)
{
    return line.split(u' ', Qt::SkipEmptyParts);
}

// The parsed options that a row looks at, as one text.
QString summary(const SimOptions& o)
{
    return u"%1 db=%2 units=%3 days=%4 seed=%5 end=%6 year=%7 timing=%8/%9/%10/%11 reply=%12 quiet=%13"_s
        .arg(int(o.command))
        .arg(o.dbUrl)
        .arg(o.units)
        .arg(o.days)
        .arg(o.seed)
        .arg(o.endSecs ? sqlDateTimeText(*o.endSecs) : u"now"_s)
        .arg(o.yearPoint)
        .arg(o.intervalMs)
        .arg(o.answerDelayMs)
        .arg(o.ticks)
        .arg(o.recordSecs)
        .arg(o.forcedReply ? QString::number(*o.forcedReply) : u"-"_s)
        .arg(o.noAnswer);
}

} // namespace

void TestSimLogic::commandLine_data()
{
    QTest::addColumn<QString>("args");
    QTest::addColumn<QString>("mentions"); // a part of the summary

    QTest::newRow("init") << u"--db sqlite:/x.db init"_s << u"0 db=sqlite:/x.db "_s;
    QTest::newRow("db after command") << u"init --db=sqlite:/y.db"_s << u"0 db=sqlite:/y.db "_s;
    QTest::newRow("seed defaults")
        << u"--db a: seed"_s << u"units=12 days=30 seed=1 end=now year=0"_s;
    QTest::newRow("seed choices") << u"--db a: seed --units 3 --days=7 --year-point"_s
                                  << u"units=3 days=7 seed=1 end=now year=1"_s;
    QTest::newRow("largest seed") << u"--db a: seed --seed 18446744073709551615"_s
                                  << u"seed=18446744073709551615 "_s;
    QTest::newRow("seed end") << u"--db a: seed --end 2024-01-02T03:04"_s
                              << u"end=2024-01-02 03:04:00 "_s;
    QTest::newRow("run defaults") << u"--db a: run"_s << u"timing=2000/1000/0/60 reply=- quiet=0"_s;
    QTest::newRow("run choices")
        << u"--db a: run --interval 250 --answer-delay=0 --ticks 5 --record-secs 0 --reply 4 --no-answer"_s
        << u"timing=250/0/5/0 reply=4 quiet=1"_s;
}

void TestSimLogic::commandLine()
{
    QFETCH(QString, args);
    QFETCH(QString, mentions);
    const ParsedOptions p = parseSimOptions(words(args));
    QVERIFY2(p.error.isEmpty(), qPrintable(p.error));
    const QString got = summary(p.options);
    QVERIFY2(got.contains(mentions), qPrintable(got));

    // Help asked first wins over anything after it.
    const ParsedOptions help = parseSimOptions(words(u"--help "_s + args + u" --bogus"_s));
    QVERIFY(help.error.isEmpty());
    QCOMPARE(help.options.command, SimCommand::Help);
}

void TestSimLogic::commandLineRejects_data()
{
    QTest::addColumn<QString>("args");
    QTest::addColumn<QString>("mentions");
    QTest::newRow("nothing") << QString() << u"no command"_s;
    QTest::newRow("no db") << u"init"_s << u"no database"_s;
    QTest::newRow("unknown command") << u"--db a: start"_s << u"start"_s;
    QTest::newRow("two commands") << u"--db a: init seed"_s << u"seed"_s;
    QTest::newRow("unknown option") << u"--db a: run --fast"_s << u"--fast"_s;
    QTest::newRow("missing value") << u"--db a: seed --units"_s << u"--units"_s;
    QTest::newRow("zero units") << u"--db a: seed --units 0"_s << u"--units"_s;
    QTest::newRow("word for number") << u"--db a: seed --days ten"_s << u"ten"_s;
    QTest::newRow("negative delay") << u"--db a: run --answer-delay -1"_s << u"--answer-delay"_s;
    QTest::newRow("tiny interval") << u"--db a: run --interval 1"_s << u"--interval"_s;
    QTest::newRow("bad end") << u"--db a: seed --end yesterday"_s << u"--end"_s;
    QTest::newRow("run option on seed") << u"--db a: seed --ticks 3"_s << u"--ticks"_s;
    QTest::newRow("seed option on run") << u"--db a: run --units 3"_s << u"--units"_s;
    QTest::newRow("flag with value") << u"--db a: run --no-answer=1"_s << u"--no-answer"_s;
}

void TestSimLogic::commandLineRejects()
{
    QFETCH(QString, args);
    QFETCH(QString, mentions);
    const ParsedOptions p = parseSimOptions(words(args));
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
