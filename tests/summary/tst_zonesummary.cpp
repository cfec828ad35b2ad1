#include "model/summary/ZoneSummary.h"

#include <QtTest>

using namespace Qt::StringLiterals;
using namespace sx::summary;

namespace {

// Samples as "MM-DD HH:MM value[/type]"; the value "-" is NULL. Year 2026.
std::vector<Sample> samples(const QString& text)
{
    std::vector<Sample> out;
    for (const QString& item : text.split(u';', Qt::SkipEmptyParts)) {
        const QStringList f = item.trimmed().split(u' ');
        const QDateTime at =
            QDateTime::fromString(u"2026-"_s + f[0] + u' ' + f[1], u"yyyy-MM-dd HH:mm"_s);
        const QStringList v = f[2].split(u'/');
        Sample s{secsOf(at.date()) + at.time().msecsSinceStartOfDay() / 1000, std::nullopt,
                 v.size() > 1 ? v[1].toInt() : 0};
        if (v[0] != u"-" && v[0] != u"now")
            s.value = v[0].toDouble();
        out.push_back(s);
    }
    return out;
}

QString timeText(qint64 secs)
{
    const QDate d = dayOf(secs);
    return d.toString(u"MM-dd "_s) +
           QTime::fromMSecsSinceStartOfDay(int(secs - secsOf(d)) * 1000).toString(u"HH:mm"_s);
}

// Excursions, the days with minutes outside, and the totals, in one line each.
QString describe(const ZoneSummary& s)
{
    QStringList exc;
    for (const Excursion& e : s.excursions)
        exc << timeText(e.startSecs) + u".."_s + timeText(e.endSecs) + u' ' +
                   u"ABO"_s[static_cast<int>(e.side)] + QString::number(e.extreme) +
                   (e.runsOn ? u"+"_s : QString());
    QStringList days;
    for (const DayRow& d : s.days) {
        if (d.outsideSecs > 0 || d.excursions > 0)
            days << u"%1:%2m/%3"_s.arg(d.day.day()).arg(minutesOf(d.outsideSecs)).arg(d.excursions);
    }
    const Totals& t = s.totals;
    return exc.join(u", "_s) + u" | "_s + days.join(u' ') +
           u" | n=%1 skip=%2 %3..%4 mean=%5 out=%6m exc=%7 longest=%8m"_s.arg(t.readings)
               .arg(t.skipped)
               .arg(t.min)
               .arg(t.max)
               .arg(t.mean)
               .arg(minutesOf(t.outsideSecs))
               .arg(t.excursions)
               .arg(minutesOf(t.longestSecs));
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
        QTest::newRow("above then back, extreme kept")
            << 0 << u"03-02 10:00 20; 03-02 10:10 31; 03-02 10:20 35; 03-02 10:40 29"_s
            << u"03-02 10:10..03-02 10:40 A35 | 2:30m/1 | n=4 skip=0 20..35 mean=28.75 "
               u"out=30m exc=1 longest=30m"_s;
        QTest::newRow("across midnight splits the minutes")
            << 0 << u"03-04 23:30 5; 03-05 00:45 12"_s
            << u"03-04 23:30..03-05 00:45 B5 | 4:30m/1 5:45m/0 | n=2 skip=0 5..12 mean=8.5 "
               u"out=75m exc=1 longest=75m"_s;
        QTest::newRow("across the month's end runs on")
            << 0 << u"03-31 23:00 40; 03-31 23:50 41"_s
            << u"03-31 23:00..04-01 00:00 A41+ | 31:60m/1 | n=2 skip=0 40..41 mean=40.5 "
               u"out=60m exc=1 longest=60m"_s;
        QTest::newRow("gap inside an excursion counts until seen back")
            << 0 << u"03-10 08:00 31; 03-12 08:00 20"_s
            << u"03-10 08:00..03-12 08:00 A31 | 10:960m/1 11:1440m/0 12:480m/0 | n=2 skip=0 "
               u"20..31 mean=25.5 out=2880m exc=1 longest=2880m"_s;
        QTest::newRow("NULL neither ends nor starts one")
            << 0
            << u"03-03 09:00 31; 03-03 09:10 -; 03-03 09:20 32; 03-03 09:30 -; 03-03 09:40 25"_s
            << u"03-03 09:00..03-03 09:40 A32 | 3:40m/1 | n=3 skip=2 25..32 mean=29.3333 "
               u"out=40m exc=1 longest=40m"_s;
        QTest::newRow("records of an earlier type are left out")
            << 0
            << u"03-06 12:00 80/5; 03-06 12:10 20; 03-06 12:20 90/5; 03-06 12:30 9; 03-06 12:50 15"_s
            << u"03-06 12:30..03-06 12:50 B9 | 6:20m/1 | n=3 skip=2 9..20 mean=14.6667 out=20m "
               u"exc=1 longest=20m"_s;
        QTest::newRow("straight from above to below is two")
            << 0 << u"03-07 01:00 33; 03-07 01:05 7; 03-07 01:15 15"_s
            << u"03-07 01:00..03-07 01:05 A33, 03-07 01:05..03-07 01:15 B7 | 7:15m/2 | n=3 "
               u"skip=0 7..33 mean=18.3333 out=15m exc=2 longest=10m"_s;
        QTest::newRow("contact openings")
            << kContactType
            << u"03-08 06:00 1/2; 03-08 06:05 0/2; 03-08 06:35 1/2; 03-09 23:50 0/2; 03-10 00:20 -1/2; 03-10 00:40 1/2"_s
            << u"03-08 06:05..03-08 06:35 O0, 03-09 23:50..03-10 00:40 O0 | 8:30m/1 9:10m/1 "
               u"10:40m/0 | n=6 skip=0 -1..1 mean=0.333333 out=80m exc=2 longest=50m"_s;
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
        ZoneRule rule{type, std::nullopt, std::nullopt};
        if (type != kContactType)
            rule = {type, 10.0, 30.0};
        // A last item "... now" is the present moment, not a reading.
        std::vector<Sample> in = samples(input);
        std::optional<qint64> now;
        if (input.endsWith(u"now")) {
            now = in.back().secs;
            in.pop_back();
        }
        const ZoneSummary s = summarise(in, rule, QDate(2026, 3, 1), QDate(2026, 3, 31), now);
        QCOMPARE(s.days.size(), 31);
        QTEST(describe(s), "expected");
    }

    void dayRowsKeepTheirOwnFigures()
    {
        const ZoneSummary s =
            summarise(samples(u"03-01 00:00 12; 03-01 23:59 14; 03-03 12:00 -4"_s),
                      {0, std::nullopt, std::nullopt}, QDate(2026, 3, 1), QDate(2026, 3, 3));
        QCOMPARE(s.days.size(), 3);
        QCOMPARE(s.days[0].readings, 2);
        QCOMPARE(s.days[0].mean, 13.0);
        QCOMPARE(s.days[1].readings, 0); // a day without records stays empty
        QCOMPARE(s.days[2].min, -4.0);
        QCOMPARE(s.days[2].day, QDate(2026, 3, 3));
    }
};

QTEST_GUILESS_MAIN(TestZoneSummary)
#include "tst_zonesummary.moc"
