#include "model/summary/ZoneSummary.h"

#include <QtTest>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace sx::summary;

namespace {

const QTimeZone kAthens("Europe/Athens");

qint64 wallSecs(const QString& monthDayTime)
{
    const QDateTime at = QDateTime::fromString(u"2026-"_s + monthDayTime, u"yyyy-MM-ddTHH:mm"_s);
    return secsOf(at.date()) + at.time().msecsSinceStartOfDay() / 1000;
}

// Samples as "MM-DD HH:MM value[/type]" or a series "MM-DD HH:MM..[MM-DD ]HH:MM/step value",
// in logging order (their serials). The value "-" is NULL.
std::vector<Sample> samples(const QString& text)
{
    std::vector<Sample> out;
    static const QRegularExpression item(
        u"^(\\d\\d-\\d\\d) (\\d\\d:\\d\\d)(?:\\.\\.(?:(\\d\\d-\\d\\d) )?(\\d\\d:\\d\\d)/(\\d+))? (\\S+)$"_s);
    for (const QString& part : text.split(u';', Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch m = item.match(part.trimmed());
        Q_ASSERT(m.hasMatch());
        const qint64 from = wallSecs(m.captured(1) + u'T' + m.captured(2));
        const qint64 to = m.captured(4).isEmpty()
                              ? from
                              : wallSecs((m.captured(3).isEmpty() ? m.captured(1) : m.captured(3)) +
                                         u'T' + m.captured(4));
        const qint64 step = m.captured(5).isEmpty() ? 60 : m.captured(5).toInt() * 60;
        const QStringList v = m.captured(6).split(u'/');
        for (qint64 at = from; at <= to; at += step) {
            Sample s{at, std::nullopt, v.size() > 1 ? v[1].toInt() : 0,
                     static_cast<qint64>(out.size()) + 1};
            if (v[0] != u"-")
                s.value = v[0].toDouble();
            out.push_back(s);
        }
    }
    return out;
}

// The pattern with its markers filled in turn, as a chain of arg() would.
template <typename... A> QString fill(QString pattern, const A&... a)
{
    ((pattern = pattern.arg(a)), ...);
    return pattern;
}

QString timeText(qint64 secs)
{
    const QDate d = dayOf(secs);
    return d.toString(u"MM-dd "_s) +
           QTime::fromMSecsSinceStartOfDay(int(secs - secsOf(d)) * 1000).toString(u"HH:mm"_s);
}

// Excursions (< began before, + runs on, # cut by a gap), the days with
// minutes outside, and the totals, in one line each.
QString describe(const ZoneSummary& s)
{
    QStringList exc;
    for (const Excursion& e : s.excursions)
        exc << timeText(e.startSecs) + u".."_s + timeText(e.endSecs) + u' ' +
                   u"ABO"_s[static_cast<int>(e.side)] + QString::number(e.extreme) +
                   (e.startedBefore ? u"<"_s : QString()) + (e.runsOn ? u"+"_s : QString()) +
                   (e.cutByGap ? u"#"_s : QString());
    QStringList days;
    for (const DayRow& d : s.days)
        if (d.outsideSecs > 0 || d.excursions > 0)
            days << fill(u"%1:%2m/%3"_s, d.day.day(), minutesOf(d.outsideSecs), d.excursions);
    const Totals& t = s.totals;
    return exc.join(u", "_s) + u" | "_s + days.join(u' ') +
           fill(u" | n=%1 skip=%2 %3..%4 mean=%5 out=%6m exc=%7 longest=%8m"_s, t.readings,
                t.skipped, t.min, t.max, t.mean, minutesOf(t.outsideSecs), t.excursions,
                minutesOf(t.longestSecs));
}

// The gaps, the days' minutes without data, their total and the usual interval.
QString coverage(const ZoneSummary& s)
{
    QStringList gaps;
    for (const Gap& g : s.gaps)
        gaps << timeText(g.startSecs) + u".."_s + timeText(g.endSecs);
    QStringList days;
    for (const DayRow& d : s.days)
        if (d.noDataSecs > 0)
            days << fill(u"%1:%2m"_s, d.day.day(), minutesOf(d.noDataSecs));
    return gaps.join(u", "_s) + u" | "_s + days.join(u' ') +
           fill(u" | none=%1m longest=%2m usual=%3m"_s, minutesOf(s.totals.noDataSecs),
                minutesOf(s.totals.longestGapSecs), minutesOf(s.totals.usualIntervalSecs));
}

} // namespace

class TestZoneSummary : public QObject {
    Q_OBJECT

private slots:
    void summarisesCraftedMonths_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        // March 2026 against limits 10..30 (contact zones have none).
        QTest::newRow("on the limits is inside")
            << 0 << u"03-02 10:00 30; 03-02 10:10 10; 03-02 10:20 20"_s
            << u" |  | n=3 skip=0 10..30 mean=20 out=0m exc=0 longest=0m"_s;
        // The last reading stands for one usual interval before the gap to the month's end.
        QTest::newRow("above then back, extreme kept")
            << 0 << u"03-02 10:00 20; 03-02 10:10 31; 03-02 10:20 35; 03-02 10:40 29"_s
            << u"03-02 10:10..03-02 10:40 A35 | 2:30m/1 | n=4 skip=0 20..35 mean=30 "
               u"out=30m exc=1 longest=30m"_s;
        QTest::newRow("across midnight splits the minutes")
            << 0 << u"03-04 23:30 5; 03-05 00:45 12"_s
            << u"03-04 23:30..03-05 00:45 B5 | 4:30m/1 5:45m/0 | n=2 skip=0 5..12 mean=8.5 "
               u"out=75m exc=1 longest=75m"_s;
        QTest::newRow("across the month's end runs on")
            << 0 << u"03-31 23:00 40; 03-31 23:50 41"_s
            << u"03-31 23:00..04-01 00:00 A41+ | 31:60m/1 | n=2 skip=0 40..41 mean=40.1667 "
               u"out=60m exc=1 longest=60m"_s;
        QTest::newRow("two readings alone make the usual interval")
            << 0 << u"03-10 08:00 31; 03-12 08:00 20"_s
            << u"03-10 08:00..03-12 08:00 A31 | 10:960m/1 11:1440m/0 12:480m/0 | n=2 skip=0 "
               u"20..31 mean=25.5 out=2880m exc=1 longest=2880m"_s;
        QTest::newRow("NULL, not-a-number and infinity neither end nor start one")
            << 0
            << u"03-03 09:00 31; 03-03 09:10 -; 03-03 09:20 32; 03-03 09:25 nan; 03-03 09:30 inf; "
               u"03-03 09:40 25"_s
            << u"03-03 09:00..03-03 09:40 A32 | 3:40m/1 | n=3 skip=3 25..32 mean=29.3333 "
               u"out=40m exc=1 longest=40m"_s;
        QTest::newRow("records of an earlier type are left out")
            << 0
            << u"03-06 12:00 80/5; 03-06 12:10 20; 03-06 12:20 90/5; 03-06 12:30 9; 03-06 12:50 15"_s
            << u"03-06 12:30..03-06 12:50 B9 | 6:20m/1 | n=3 skip=2 9..20 mean=14.6667 out=20m "
               u"exc=1 longest=20m"_s;
        QTest::newRow("straight from above to below is two")
            << 0 << u"03-07 01:00 33; 03-07 01:05 7; 03-07 01:15 15"_s
            << u"03-07 01:00..03-07 01:05 A33, 03-07 01:05..03-07 01:15 B7 | 7:15m/2 | n=3 "
               u"skip=0 7..33 mean=15.4 out=15m exc=2 longest=10m"_s;
        QTest::newRow("contact openings")
            << kContactType
            << u"03-08 06:00 1/2; 03-08 06:05 0/2; 03-08 06:35 1/2; 03-09 23:50 0/2; 03-10 00:20 -1/2; 03-10 00:40 1/2"_s
            << u"03-08 06:05..03-08 06:35 O0, 03-09 23:50..03-10 00:40 O0 | 8:30m/1 9:10m/1 "
               u"10:40m/0 | n=6 skip=0 -1..1 mean=0.310345 out=80m exc=2 longest=50m"_s;
        QTest::newRow("one still running stops at now")
            << 0 << u"03-20 10:00 40; 03-20 12:00 now"_s
            << u"03-20 10:00..03-20 12:00 A40+ | 20:120m/1 | n=1 skip=0 40..40 mean=40 out=120m "
               u"exc=1 longest=120m"_s;
        QTest::newRow("empty month")
            << 0 << QString() << u" |  | n=0 skip=0 0..0 mean=0 out=0m exc=0 longest=0m"_s;
    }

    void summarisesCraftedMonths()
    {
        QFETCH(int, type);
        QFETCH(QString, input);
        const ZoneRule rule = type == kContactType ? ZoneRule{type, std::nullopt, std::nullopt}
                                                   : ZoneRule{type, 10.0, 30.0};
        // A last item "... now" is the present moment, not a reading.
        const bool untilNow = input.endsWith(u"now");
        std::vector<Sample> in = samples(untilNow ? input.chopped(4) + u" 0"_s : input);
        std::optional<qint64> now;
        if (untilNow) {
            now = in.back().secs;
            in.pop_back();
        }
        const ZoneSummary s =
            summarise(in, rule, QDate(2026, 3, 1), QDate(2026, 3, 31), now, kAthens);
        QCOMPARE(s.days.size(), 31);
        QTEST(describe(s), "expected");
    }

    // Readings every ten minutes against limits 10..30, checked for their
    // coverage and clock changes; minutes worked out by hand.
    void coversGapsClockChangesAndEdges_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QDate>("first");
        QTest::addColumn<QDate>("last");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("covered");
        const QDate mar2(2026, 3, 2);
        QTest::newRow("gap after a reading inside")
            << u"03-02 00:00..10:30/10 20; 03-02 14:00..23:50/10 20"_s << mar2 << mar2
            << u" |  | n=124 skip=0 20..20 mean=20 out=0m exc=0 longest=0m"_s
            << u"03-02 10:40..03-02 14:00 | 2:200m | none=200m longest=200m usual=10m"_s;
        QTest::newRow("gap after a reading outside cuts the excursion")
            << u"03-02 00:00..10:20/10 20; 03-02 10:30 35; 03-02 14:00..23:50/10 20"_s << mar2
            << mar2
            << u"03-02 10:30..03-02 10:40 A35# | 2:10m/1 | n=124 skip=0 20..35 mean=20.121 "
               u"out=10m exc=1 longest=10m"_s
            << u"03-02 10:40..03-02 14:00 | 2:200m | none=200m longest=200m usual=10m"_s;
        QTest::newRow("a whole day without a reading")
            << u"03-04 00:00..23:50/10 20; 03-06 00:00..23:50/10 40"_s << QDate(2026, 3, 4)
            << QDate(2026, 3, 6)
            << u"03-06 00:00..03-07 00:00 A40+ | 6:1440m/1 | n=288 skip=0 20..40 mean=30 "
               u"out=1440m exc=1 longest=1440m"_s
            << u"03-05 00:00..03-06 00:00 | 5:1440m | none=1440m longest=1440m usual=10m"_s;
        // 29 March: 03:00 does not happen, the clock goes on at 04:00; the day has 23 hours.
        QTest::newRow("the March change")
            << u"03-29 00:00..02:50/10 20; 03-29 04:00..12:50/10 35; 03-29 13:00..23:50/10 20"_s
            << QDate(2026, 3, 29) << QDate(2026, 3, 29)
            << u"03-29 04:00..03-29 13:00 A35 | 29:540m/1 | n=138 skip=0 20..35 mean=25.8696 "
               u"out=540m exc=1 longest=540m"_s
            << u" |  | none=0m longest=0m usual=10m"_s;
        // 25 October: 03:00 to 03:59 happen twice; the day has 25 hours.
        QTest::newRow("the October change")
            << u"10-25 00:00..03:20/10 20; 10-25 03:30..03:50/10 35; 10-25 03:00..03:10/10 35; "
               u"10-25 03:20..23:50/10 20"_s
            << QDate(2026, 10, 25) << QDate(2026, 10, 25)
            << u"10-25 03:30..10-25 03:20 A35 | 25:50m/1 | n=150 skip=0 20..35 mean=20.5 "
               u"out=50m exc=1 longest=50m"_s
            << u" |  | none=0m longest=0m usual=10m"_s;
        // Excursions 1 March 23:30 to 2 March 00:40 and 2 March 23:40 to 3 March 00:30.
        const QString edges =
            u"03-01 23:00..23:20/10 20; 03-01 23:30..03-02 00:30/10 35; 03-02 00:40..23:30/10 20; "
            u"03-02 23:40..03-03 00:20/10 35; 03-03 00:30..01:00/10 20"_s;
        QTest::newRow("month edges: the middle day")
            << edges << mar2 << mar2
            << u"03-02 00:00..03-02 00:40 A35<, 03-02 23:40..03-03 00:00 A35+ | 2:60m/2 | n=144 "
               u"skip=0 20..35 mean=20.625 out=60m exc=2 longest=40m"_s
            << u" |  | none=0m longest=0m usual=10m"_s;
        QTest::newRow("month edges: the day before")
            << edges << QDate(2026, 3, 1) << QDate(2026, 3, 1)
            << u"03-01 23:30..03-02 00:00 A35+ | 1:30m/1 | n=6 skip=0 20..35 mean=27.5 "
               u"out=30m exc=1 longest=30m"_s
            << u"03-01 00:00..03-01 23:00 | 1:1380m | none=1380m longest=1380m usual=10m"_s;
        QTest::newRow("month edges: the three days add up")
            << edges << QDate(2026, 3, 1) << QDate(2026, 3, 3)
            << u"03-01 23:30..03-02 00:40 A35, 03-02 23:40..03-03 00:30 A35 | 1:30m/1 2:60m/1 "
               u"3:30m/0 | n=157 skip=0 20..35 mean=21.1465 out=120m exc=2 longest=70m"_s
            << u"03-01 00:00..03-01 23:00, 03-03 01:10..03-04 00:00 | 1:1380m 3:1370m | "
               u"none=2750m longest=1380m usual=10m"_s;
    }

    void coversGapsClockChangesAndEdges()
    {
        QFETCH(QString, input);
        QFETCH(QDate, first);
        QFETCH(QDate, last);
        const ZoneSummary s =
            summarise(samples(input), {0, 10.0, 30.0}, first, last, std::nullopt, kAthens);
        QTEST(describe(s), "expected");
        QTEST(coverage(s), "covered");
    }

    void dayRowsKeepTheirOwnFigures()
    {
        const ZoneSummary s =
            summarise(samples(u"03-01 00:00 12; 03-01 23:59 14; 03-03 12:00 -4"_s),
                      {0, std::nullopt, std::nullopt}, QDate(2026, 3, 1), QDate(2026, 3, 3),
                      std::nullopt, kAthens);
        QCOMPARE(s.days.size(), 3);
        QCOMPARE(s.days[0].readings, 2);
        // Weighted by time: 12 for 23 h 59 min, 14 for the last minute.
        QCOMPARE(s.days[0].mean, (12.0 * 86340 + 14.0 * 60) / 86400);
        QCOMPARE(s.days[1].readings, 0); // a day without records stays empty
        QCOMPARE(s.days[2].min, -4.0);
        QCOMPARE(s.days[2].day, QDate(2026, 3, 3));
    }
};

QTEST_GUILESS_MAIN(TestZoneSummary)
#include "tst_zonesummary.moc"
