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

namespace {

records::ZoneEntry zone(const QString& serial, int number, int type = 0)
{
    records::ZoneEntry z;
    z.serial = serial;
    z.number = number;
    z.sensorType = type;
    return z;
}

} // namespace

class TestRecordsRules : public QObject {
    Q_OBJECT

private slots:
    void periodIncludesBothEnds_data()
    {
        QTest::addColumn<int>("year");
        QTest::addColumn<int>("month");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("leap february")
            << 2024 << 1 << u"2024-02-01 00:00:00"_s << u"2024-02-29 23:59:59"_s;
        QTest::newRow("plain february")
            << 2026 << 1 << u"2026-02-01 00:00:00"_s << u"2026-02-28 23:59:59"_s;
        QTest::newRow("december ends with the year")
            << 2025 << 11 << u"2025-12-01 00:00:00"_s << u"2025-12-31 23:59:59"_s;
        QTest::newRow("last listed year")
            << 2255 << 12 << u"2255-01-01 00:00:00"_s << u"2255-12-31 23:59:59"_s;
    }

    void periodIncludesBothEnds()
    {
        QFETCH(int, year);
        QFETCH(int, month);
        QFETCH(QString, from);
        QFETCH(QString, to);
        const records::Period p = records::recordsPeriod(records::yearIndexOf(year), month);
        QCOMPARE(sqlDateTimeText(p.fromSecs), from);
        QCOMPARE(sqlDateTimeText(p.toSecs), to);
    }

    void queryText()
    {
        const QString sql =
            records::recordsSql(DbKind::Oracle, zone(u"O'K"_s, 7), records::recordsPeriod(26, 2));
        QCOMPARE(
            sql,
            u"SELECT Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, Rec_Value, Rec_Sensortype, Rec_SensRecSN FROM Records WHERE Rec_SyI_Serialnumber='O''K' AND Rec_SeI_Sensornumber=7 AND Rec_Datetime BETWEEN TO_DATE('1-3-2026 0:0:0','DD-MM-YYYY HH24:MI:SS') AND TO_DATE('31-3-2026 23:59:59','DD-MM-YYYY HH24:MI:SS')"_s);
    }

    void limitTexts_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("minUsed");
        QTest::addColumn<bool>("maxUsed");
        QTest::addColumn<QStringList>("expected"); // min text, max text, min caption, max caption
        QTest::newRow("both in force")
            << 0 << true << true << QStringList{u"-5.0"_s, u"30.5"_s, u"-5.0 °C"_s, u"30.5 °C"_s};
        QTest::newRow("maximum only")
            << 3 << false << true << QStringList{QString(), u"30.5"_s, QString(), u"30.5 bar"_s};
        QTest::newRow("contact input")
            << 2 << true << true << QStringList{QString(), QString(), QString(), QString()};
        QTest::newRow("unknown type")
            << 42 << true << false << QStringList{u"-5.0"_s, QString(), u"-5.0"_s, QString()};
    }

    void limitTexts()
    {
        QFETCH(int, type);
        QFETCH(bool, minUsed);
        QFETCH(bool, maxUsed);
        QFETCH(QStringList, expected);
        records::ZoneEntry z = zone(u"S"_s, 1, type);
        z.minUsed = minUsed;
        z.maxUsed = maxUsed;
        z.minLimit = -5.0f;
        z.maxLimit = 30.5f;
        const records::ZoneLimits l = records::zoneLimits(z, QLocale::c());
        QCOMPARE((QStringList{l.minText, l.maxText, l.minCaption, l.maxCaption}), expected);
    }

    void markingIsStrictAndOnlyForTheZonesType_data()
    {
        QTest::addColumn<int>("zoneType");
        QTest::addColumn<bool>("maxUsed");
        QTest::addColumn<bool>("minUsed");
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("recordType");
        QTest::addColumn<int>("marking");
        const int none = int(Marking::None);
        const int above = int(Marking::AboveMax);
        const int below = int(Marking::BelowMin);
        QTest::newRow("above") << 0 << true << true << 30.1f << 0 << above;
        QTest::newRow("equal to the maximum") << 0 << true << true << 30.0f << 0 << none;
        QTest::newRow("below") << 0 << true << true << 9.9f << 0 << below;
        QTest::newRow("maximum not in force") << 0 << false << true << 99.0f << 0 << none;
        QTest::newRow("minimum not in force") << 0 << true << false << -99.0f << 0 << none;
        QTest::newRow("another type logged") << 0 << true << true << 99.0f << 1 << none;
        QTest::newRow("contact zone") << 2 << true << true << 99.0f << 2 << none;
        QTest::newRow("limits crossed over") << 5 << true << true << 20.0f << 5 << above;
    }

    void markingIsStrictAndOnlyForTheZonesType()
    {
        QFETCH(int, zoneType);
        QFETCH(bool, maxUsed);
        QFETCH(bool, minUsed);
        QFETCH(float, value);
        QFETCH(int, recordType);
        QFETCH(int, marking);
        records::ZoneEntry z = zone(u"S"_s, 1, zoneType);
        z.maxUsed = maxUsed;
        z.minUsed = minUsed;
        z.maxLimit = QTest::currentDataTag() == QByteArray("limits crossed over") ? 10.0f : 30.0f;
        z.minLimit = QTest::currentDataTag() == QByteArray("limits crossed over") ? 30.0f : 10.0f;
        const RecordPoint r{0, value, static_cast<quint8>(recordType)};
        QCOMPARE(int(records::LimitRule(z)(r)), marking);
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
            db, records::recordsSql(db.kind(), zone(u"U1"_s, 1), records::recordsPeriod(26, 4)));
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
        const QString sql =
            records::recordsSql(db.kind(), zone(u"U1"_s, 1), records::recordsPeriod(25, 6));
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
