#include "RecordsSeed.h"
#include "ScratchDatabase.h"
#include "model/SqlDateTime.h"
#include "model/records/RecordsQuery.h"

#include <QtTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;
using records::Marking;
using records::ZoneEntry;

Q_DECLARE_METATYPE(sx::records::ZoneEntry)

namespace {

ZoneEntry zone(int type, float max = 30, float min = 10, bool maxUsed = true, bool minUsed = true,
               const QString& serial = u"S"_s, int number = 1)
{
    ZoneEntry z;
    z.serial = serial;
    z.number = number;
    z.sensorType = type;
    z.maxLimit = max;
    z.minLimit = min;
    z.maxUsed = maxUsed;
    z.minUsed = minUsed;
    return z;
}

} // namespace

class TestRecordsRules : public QObject {
    Q_OBJECT

private slots:
    void periodIncludesBothEnds_data()
    {
        QTest::addColumn<int>("year");
        QTest::addColumn<int>("month"); // index in the list; 12 is the whole year
        QTest::addColumn<QString>("period");
        QTest::newRow("leap february") << 2024 << 1 << u"2024-02-01 00:00:00 2024-02-29 23:59:59"_s;
        QTest::newRow("plain february")
            << 2026 << 1 << u"2026-02-01 00:00:00 2026-02-28 23:59:59"_s;
        QTest::newRow("december") << 2025 << 11 << u"2025-12-01 00:00:00 2025-12-31 23:59:59"_s;
        QTest::newRow("last listed year")
            << 2255 << 12 << u"2255-01-01 00:00:00 2255-12-31 23:59:59"_s;
    }

    void periodIncludesBothEnds()
    {
        QFETCH(int, year);
        QFETCH(int, month);
        const records::Period p = records::recordsPeriod(records::yearIndexOf(year), month);
        QTEST(sqlDateTimeText(p.fromSecs) + u' ' + sqlDateTimeText(p.toSecs), "period");
    }

    void queryText()
    {
        const QString sql =
            records::recordsSql(DbKind::Oracle, zone(0, 30, 10, true, true, u"O'K"_s, 7),
                                records::recordsPeriod(26, 2));
        QCOMPARE(
            sql,
            u"SELECT Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, Rec_Value, Rec_Sensortype, Rec_SensRecSN FROM Records WHERE Rec_SyI_Serialnumber='O''K' AND Rec_SeI_Sensornumber=7 AND Rec_Datetime BETWEEN TO_DATE('1-3-2026 0:0:0','DD-MM-YYYY HH24:MI:SS') AND TO_DATE('31-3-2026 23:59:59','DD-MM-YYYY HH24:MI:SS')"_s);
    }

    void limitTexts_data()
    {
        QTest::addColumn<ZoneEntry>("zone");
        QTest::addColumn<QString>("expected"); // min text, max text, min caption, max caption
        const auto row = [](const char* name, int type, bool minUsed, bool maxUsed,
                            const QString& expected) {
            QTest::newRow(name) << zone(type, 30.5f, -5.0f, maxUsed, minUsed) << expected;
        };
        row("both in force", 0, true, true, u"-5.0|30.5|-5.0 °C|30.5 °C"_s);
        row("maximum only", 3, false, true, u"|30.5||30.5 bar"_s);
        row("contact input", 2, true, true, u"|||"_s);
        row("unknown type", 42, true, false, u"-5.0||-5.0|"_s);
    }

    void limitTexts()
    {
        QFETCH(ZoneEntry, zone);
        const records::ZoneLimits l = records::zoneLimits(zone, QLocale::c());
        QTEST(QStringList({l.minText, l.maxText, l.minCaption, l.maxCaption}).join(u'|'),
              "expected");
    }

    // The record is of the zone's type unless told.
    void markingIsStrictAndOnlyForTheZonesType_data()
    {
        QTest::addColumn<ZoneEntry>("zone");
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("recordType");
        QTest::addColumn<int>("marking");
        const auto row = [](const char* name, ZoneEntry z, float value, int recordType, Marking m) {
            QTest::newRow(name) << z << value << (recordType < 0 ? z.sensorType : recordType)
                                << int(m);
        };
        const ZoneEntry both = zone(0);
        row("above", both, 30.1f, -1, Marking::AboveMax);
        row("equal to the maximum", both, 30.0f, -1, Marking::None);
        row("below", both, 9.9f, -1, Marking::BelowMin);
        row("maximum not in force", zone(0, 30, 10, false), 99.0f, -1, Marking::None);
        row("minimum not in force", zone(0, 30, 10, true, false), -99.0f, -1, Marking::None);
        row("another type logged", both, 99.0f, 1, Marking::None);
        row("contact zone", zone(2), 99.0f, -1, Marking::None);
        row("limits crossed over", zone(5, 10, 30), 20.0f, -1, Marking::AboveMax);
    }

    void markingIsStrictAndOnlyForTheZonesType()
    {
        QFETCH(ZoneEntry, zone);
        QFETCH(float, value);
        QFETCH(int, recordType);
        QTEST(int(records::LimitRule(zone)({0, value, static_cast<quint8>(recordType)})),
              "marking");
    }

    // On one scratch database: the zones offered, then the records loaded.
    void zonesWithRecordsInNumberOrderThenRecordsInSequenceOrder()
    {
        ScratchDatabase scratch;
        SX_REQUIRE_DB(scratch);
        Database db;
        QVERIFY(scratch.open(db));
        RecordsSeed s(db);
        const QString serial = u"Q'1"_s;
        // Offered: a zone with records written (bytes or an earlier page), never an empty one.
        for (const ZoneRow& z :
             {ZoneRow{.number = 9, .name = u"'Θάλαμος'"_s, .pageBytes = 0, .lastPage = 3},
              ZoneRow{.number = 2, .name = u"NULL"_s, .type = 2, .pageBytes = 10},
              ZoneRow{.number = 4, .name = u"'Κενή'"_s, .pageBytes = 0},
              ZoneRow{
                  .number = 7, .name = u"''"_s, .maxLimit = 30.25, .minLimit = -4, .minUsed = 2}})
            QVERIFY(s.zone(serial, z));
        QVERIFY(s.zone(u"OTHER"_s, {.number = 1, .name = u"'Ξένη'"_s}));

        DbError e;
        const QList<records::ZoneEntry> zones = records::readZones(db, serial, &e);
        QVERIFY2(!e.isError(), qPrintable(e.description));
        QStringList texts;
        for (const auto& z : zones)
            texts << records::zoneItemText(z);
        QCOMPARE(texts,
                 (QStringList{u"[2] Ανώνυμη ζώνη"_s, u"[7] Ανώνυμη ζώνη"_s, u"[9] Θάλαμος"_s}));
        QCOMPARE(zones[0].sensorType, 2);
        // Only exactly 1 puts a limit in force.
        QCOMPARE(u"%1 %2 %3 %4 %5"_s.arg(zones[1].serial)
                     .arg(zones[1].maxLimit)
                     .arg(zones[1].minLimit)
                     .arg(zones[1].maxUsed)
                     .arg(zones[1].minUsed),
                 u"Q'1 30.25 -4 1 0"_s);

        // A unit whose clock was set back: sequence 3 carries an older time than 2.
        QVERIFY(s.record(u"U1"_s, 1, u"2026-05-01 10:00:00"_s, 1.5, 0, 1) &&
                s.record(u"U1"_s, 1, u"2026-05-01 10:02:00"_s, 2.5, 3, 2) &&
                s.record(u"U1"_s, 1, u"2026-05-01 10:01:00"_s, 0.5, 2, 3) &&
                s.record(u"U1"_s, 1, u"2026-05-01 09:00:00"_s, -7.25, 0, 10));
        const records::RecordsLoad got = records::loadRecords(
            db, records::recordsSql(db.kind(), zone(0, 30, 10, true, true, u"U1"_s),
                                    records::recordsPeriod(26, 4)));
        QVERIFY2(!got.error.isError(), qPrintable(got.error.description));
        QStringList rows;
        for (const RecordPoint& r : got.records)
            rows << u"%1 %2 %3"_s.arg(sqlDateTimeText(r.secs)).arg(r.value).arg(r.sensorType);
        QCOMPARE(rows,
                 (QStringList{u"2026-05-01 09:00:00 -7.25 0"_s, u"2026-05-01 10:01:00 0.5 2"_s,
                              u"2026-05-01 10:02:00 2.5 3"_s, u"2026-05-01 10:00:00 1.5 0"_s}));

        // Without the table, both ways of loading carry the error, as does a database
        // that cannot be opened.
        QVERIFY(!db.exec(u"ALTER TABLE Records RENAME TO Records_away"_s).isError());
        const QString sql = records::recordsSql(db.kind(), zone(0, 30, 10, true, true, u"U1"_s),
                                                records::recordsPeriod(25, 6));
        ConnectionSettings nowhere = db.settings();
        nowhere.file = scratch.folder() + u"/missing/none.db"_s;
        nowhere.dataSource = u"sx_no_such_database"_s;
        QVERIFY(records::loadRecords(db, sql).error.isError() &&
                records::loadRecordsAside(db.settings(), sql).error.isError() &&
                records::loadRecordsAside(nowhere, sql).error.isError());
    }
};

QTEST_GUILESS_MAIN(TestRecordsRules)
#include "tst_recordsrules.moc"
