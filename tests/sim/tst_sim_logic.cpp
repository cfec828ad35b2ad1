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

namespace {

// The parsed options that a row looks at, as one text.
QString summary(const SimOptions& o)
{
    const auto n = [](auto v) { return QString::number(v); };
    return u"%1 db=%2 units=%3 days=%4 seed=%5 end=%6 year=%7 timing=%8/%9/%10/%11 reply=%12 quiet=%13"_s
        .arg(n(int(o.command)), o.dbUrl, n(o.units), n(o.days), n(o.seed),
             o.endSecs ? sqlDateTimeText(*o.endSecs) : u"now"_s, n(int(o.yearPoint)),
             n(o.intervalMs), n(o.answerDelayMs), n(o.ticks), n(o.recordSecs),
             o.forcedReply ? n(*o.forcedReply) : u"-"_s, n(int(o.noAnswer)));
}

} // namespace

class TestSimLogic : public QObject {
    Q_OBJECT

private slots:
    void commandLine_data()
    {
        QTest::addColumn<QString>("args");
        // A part of the summary, or "error: " and a part of the error.
        QTest::addColumn<QString>("mentions");

        const auto row = [](const char* tag, const char16_t* args, const char16_t* mentions) {
            QTest::newRow(tag) << QString::fromUtf16(args) << QString::fromUtf16(mentions);
        };
        row("init, db after command", u"init --db=sqlite:/y.db", u"0 db=sqlite:/y.db ");
        row("seed defaults", u"--db a: seed", u"units=12 days=30 seed=1 end=now year=0");
        row("seed choices", u"--db a: seed --units 3 --days=7 --year-point",
            u"units=3 days=7 seed=1 end=now year=1");
        row("largest seed", u"--db a: seed --seed 18446744073709551615",
            u"seed=18446744073709551615 ");
        row("seed end", u"--db a: seed --end 2024-01-02T03:04", u"end=2024-01-02 03:04:00 ");
        row("run defaults", u"--db a: run", u"timing=2000/1000/0/60 reply=- quiet=0");
        row("run choices",
            u"--db a: run --interval 250 --answer-delay=0 --ticks 5 --record-secs 0 --reply 4 "
            u"--no-answer",
            u"timing=250/0/5/0 reply=4 quiet=1");
        row("nothing", u"", u"error: no command");
        row("no db", u"init", u"error: no database");
        row("unknown command", u"--db a: start", u"error: start");
        row("unknown option", u"--db a: run --fast", u"error: --fast");
        row("missing value", u"--db a: seed --units", u"error: --units");
        row("zero units", u"--db a: seed --units 0", u"error: --units");
        row("negative delay", u"--db a: run --answer-delay -1", u"error: --answer-delay");
        row("tiny interval", u"--db a: run --interval 1", u"error: --interval");
        row("bad end", u"--db a: seed --end yesterday", u"error: --end");
        row("run option on seed", u"--db a: seed --ticks 3", u"error: --ticks");
        row("flag with value", u"--db a: run --no-answer=1", u"error: --no-answer");
    }

    void commandLine()
    {
        QFETCH(QString, args);
        QFETCH(QString, mentions);
        const ParsedOptions p = parseSimOptions(args.split(u' ', Qt::SkipEmptyParts));
        const bool rejected = mentions.startsWith(u"error: ");
        const QString got = rejected ? p.error : summary(p.options);
        QVERIFY2(p.error.isEmpty() != rejected && got.contains(mentions.mid(rejected ? 7 : 0)),
                 qPrintable(summary(p.options) + u" / "_s + p.error));
        QVERIFY(!p.error.contains(u'\n'));

        // Help asked first wins over anything after it.
        const ParsedOptions help =
            parseSimOptions((u"--help "_s + args + u" --bogus"_s).split(u' '));
        QVERIFY(help.error.isEmpty());
        QCOMPARE(help.options.command, SimCommand::Help);
    }

    void replies_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<int>("online");
        QTest::addColumn<QString>("code");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("attributes");
        QTest::addColumn<int>("reply");
        QTest::addColumn<int>("state");

        // Model 1C is extended, 2B is not; no code means none is stored, no attributes a NULL.
        const auto row = [](const char* name, bool ext, int online, const char16_t* code, int type,
                            const char16_t* attributes, int reply, int state) {
            QTest::newRow(name) << (ext ? u"SENTORAX-1C"_s : u"SENTORAX-2B"_s) << online
                                << (code ? QString::fromUtf16(code) : QString()) << type
                                << (attributes ? QString::fromUtf16(attributes) : QString())
                                << reply << state;
        };
        row("offline", true, 0, u"1234", 2, u"1234;1", 3, 0);
        row("programming", true, 2, u"1234", 2, u"1234;1", 4, 0);
        row("programming before code", true, 7, u"1234", 2, u"9;9", 4, 0);
        row("wrong code", true, 1, u"1234", 2, u"4321;1", 2, 0);
        row("leading zero counts", true, 1, u"0042", 2, u"042;1", 2, 0);
        row("no stored code takes any", true, 1, nullptr, 2, u"87654321;1", 1, 1);
        row("code of 9 digits", true, 1, nullptr, 2, u"123456789;1", 2, 0);
        row("code of 3 digits", true, 1, nullptr, 2, u"123;1", 2, 0);
        row("letter in field", true, 1, u"1234", 2, u"1234;a", 2, 0);
        row("trailing separator", true, 1, u"1234", 2, u"1234;1;", 2, 0);
        row("empty attributes", true, 1, u"1234", 2, nullptr, 2, 0);
        row("relay state 2", true, 1, u"1234", 2, u"1234;2", 2, 0);
        row("extended automatic", true, 1, u"1234", 1, u"1234;2", 1, 2);
        row("extended state 3", true, 1, u"1234", 1, u"1234;3", 2, 0);
        row("three fields to extended", true, 1, u"1234", 1, u"1234;1;0", 5, 0);
        row("two fields to older", false, 1, u"1234", 1, u"1234;1", 5, 0);
        row("automatic to older", false, 1, u"1234", 1, u"1234;2;0", 5, 0);
        row("older with delay 24", false, 1, u"1234", 1, u"1234;1;24", 1, 1);
        row("older with delay 25", false, 1, u"1234", 1, u"1234;1;25", 2, 0);
        row("older delay leading zero", false, 1, u"1234", 1, u"1234;1;07", 1, 1);
        row("four fields", false, 1, u"1234", 1, u"1234;1;1;1", 2, 0);
        row("bypass point 4", true, 1, u"1234", 3, u"1234;4;1", 1, 1);
        row("bypass unused point", true, 1, u"1234", 3, u"1234;5;1", 5, 0);
        row("bypass point 21", true, 1, u"1234", 3, u"1234;21;1", 2, 0);
        row("bypass state 2", true, 1, u"1234", 3, u"1234;4;2", 2, 0);
        row("unknown request", true, 1, u"1234", 9, u"1234;1", 5, 0);
    }

    void replies()
    {
        QFETCH(QString, model);
        QFETCH(int, online);
        QFETCH(QString, code);
        QFETCH(int, type);
        QFETCH(QString, attributes);
        QFETCH(int, reply);
        QFETCH(int, state);
        const UnitFacts unit{.exists = true,
                             .online = online,
                             .model = model,
                             .softver = u"1.22"_s,
                             .code = code.isEmpty() ? std::nullopt : std::optional(code),
                             .usedPoints = {1, 2, 4}};
        const std::optional<QString> attrs =
            attributes.isNull() ? std::nullopt : std::optional<QString>(attributes);
        const RequestDecision d = decideRequest(unit, type, attrs);
        QCOMPARE(d.reply, reply);
        if (reply == kReplyDone)
            QCOMPARE(d.state, state);

        // A unit the server does not know is never reachable, whatever is asked.
        QCOMPARE(decideRequest(UnitFacts{}, type, attrs).reply, int(kReplyOffline));
    }

    // Both counters are 0 exactly when the store is empty; pages hold 2048 bytes.
    void storeCounters_data()
    {
        QTest::addColumn<qint64>("entries");
        QTest::addColumn<qint64>("entryBytes");
        QTest::addColumn<qint64>("pageBytes");
        QTest::addColumn<qint64>("lastPage");
        const auto row = [](const char* name, qint64 n, qint64 bytes, qint64 page, qint64 last) {
            QTest::newRow(name) << n << bytes << page << last;
        };
        row("empty", 0, kRecordEntryBytes, 0, 0);
        row("below empty", -1, kRecordEntryBytes, 0, 0);
        row("one record", 1, kRecordEntryBytes, 8, 0);
        row("page nearly full", 255, kRecordEntryBytes, 2040, 0);
        row("page exactly full", 256, kRecordEntryBytes, 0, 1);
        row("one past a page", 257, kRecordEntryBytes, 8, 1);
        row("sixteen pages", 4096, kRecordEntryBytes, 0, 16);
        row("a year of minutes", 525600, kRecordEntryBytes, 256, 2053);
        row("one event", 1, kEventEntryBytes, 16, 0);
        row("a page of events", 128, kEventEntryBytes, 0, 1);
    }
    void storeCounters()
    {
        QFETCH(qint64, entries);
        QFETCH(qint64, entryBytes);
        const StoreCounters c = sim::storeCounters(entries, entryBytes);
        QTEST(c.pageBytes, "pageBytes");
        QTEST(c.lastPage, "lastPage");
    }

    void forcedExcursionCrossesALimitInForce()
    {
        // Only the lower limit is in force: the excursion must go down to be seen.
        const TypeProfile prof = typeProfile(0);
        const double low = prof.center - prof.halfWidth, high = prof.center + prof.halfWidth;
        for (quint64 seed = 1; seed <= 20; ++seed) {
            WalkTempo calm = WalkTempo::history();
            calm.meanGapSecs = 1e12; // no excursion but the forced one
            ValueWalk walk(0, true, false, 300, calm, seed);
            walk.forceExcursionAt(10);
            bool below = false, above = false;
            for (int i = 0; i < 60; ++i) {
                const double v = walk.next();
                below |= v < low;
                above |= v > high;
                if (i < 10)
                    QVERIFY(!outOfLimits(0, true, low, false, high, v));
            }
            QVERIFY2(below, qPrintable(QString::number(seed)));
            QVERIFY(!above);
        }
    }
};

QTEST_GUILESS_MAIN(TestSimLogic)
#include "tst_sim_logic.moc"
