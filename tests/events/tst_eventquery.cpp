#include "EventsSeed.h"
#include "ScratchDatabase.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "model/events/EventDescription.h"
#include "model/events/EventQuery.h"

#include <QRandomGenerator>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::events;

Q_DECLARE_METATYPE(sx::DbKind)
Q_DECLARE_METATYPE(sx::events::EventFilter)
Q_DECLARE_METATYPE(sx::events::EventColour)
Q_DECLARE_METATYPE(sx::events::EventRow)

// Unit SN1's events of a month of the list (11: December), by default of 2004.
static EventFilter filter(int source, EventKind kind, bool newOnly, int month = 11, int year = 4,
                          const QString& serial = u"SN1"_s)
{
    return {serial, source, kind, newOnly, eventsPeriod(year, month)};
}

static const QString kMainsAlarm =
    u"((Event_Condition=1) OR (Event_Condition BETWEEN 17 AND 19) OR (Event_Condition BETWEEN 33 "
    u"AND 39) OR (Event_Condition BETWEEN 49 AND 63))"_s;
static const QString kMainsRestore =
    u"((Event_Condition=0) OR (Event_Condition=16) OR (Event_Condition=32) OR (Event_Condition=64))"_s;
static const QString kHead = u"SELECT * FROM Events_1 WHERE Event_SyI_Serialnumber='SN1'"_s;
static const QString kAccessYear =
    u" AND Event_Datetime BETWEEN #2004-1-1 0:0:0# AND #2004-12-31 23:59:59#"_s;
static const QString kAccessDec =
    u" AND Event_Datetime BETWEEN #2004-12-1 0:0:0# AND #2004-12-31 23:59:59#"_s;
static const QString kOracleDec =
    u" AND Event_Datetime BETWEEN TO_DATE('1-12-2004 0:0:0','DD-MM-YYYY HH24:MI:SS') AND "
    u"TO_DATE('31-12-2004 23:59:59','DD-MM-YYYY HH24:MI:SS')"_s;

static NameCache names()
{
    NameCache n;
    n.zones[2] = u"Ψυγείο"_s;  // point 3
    n.zones[3] = u"Είσοδος"_s; // point 4
    n.zones[6] = u"Αποθήκη"_s; // point 7
    n.zones[19] = u"Τελευταία"_s;
    n.powers[0] = u"Δική της"_s; // the unit's own supply never appears by name
    n.powers[1] = u"Γεννήτρια"_s;
    n.powers[3] = u"ΔΕΗ Β"_s;
    return n;
}

static const QString kCancel =
    u". Ο ΠΑΡΑΛΗΠΤΗΣ ΑΚΥΡΩΣΕ ΤΗΝ ΠΑΡΑΔΟΣΗ ΤΩΝ ΜΗΝΥΜΑΤΩΝ ΣΤΟΥΣ ΥΠΟΛΟΙΠΟΥΣ ΠΑΡΑΛΗΠΤΕΣ"_s;
static const QString kOutgoing = u"ΝΕΑ ΜΗΝΥΜΑΤΑ ΠΑΡΑΔΟΘΗΚΑΝ ΣΕ ΕΞΕΡΧΟΜΕΝΗ ΤΗΛΕΦΩΝΙΚΗ ΚΛΗΣΗ"_s;
static const QString kBypass = u"ΕΝΕΡΓΟΠΟΙΗΘΗΚΕ Η ΠΑΡΑΚΑΜΨΗ ΣΤΟ ΣΗΜΕΙΟ "_s;
static const QString kByConsole = u"ΤΗΣ ΕΦΑΡΜΟΓΗΣ SENTORAX MONITOR"_s;
static const QString kOneSensor = u"ΒΛΑΒΗ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ ΤΟΥ ΣΗΜΕΙΟΥ "_s;
static const QString kSensors = u"ΒΛΑΒΗ ΣΤΑ ΑΙΣΘΗΤΗΡΙΑ ΤΩΝ ΣΗΜΕΙΩΝ: "_s;

// The description of an event row; the period and the SQL text of the event
// query, then the query run against a real database of the kind under test: the
// condition sets, the period edges, the read mark and the order of the rows.
class TestEventQuery : public QObject {
    Q_OBJECT

private slots:
    void describe_data()
    {
        QTest::addColumn<EventRow>("row");
        QTest::addColumn<QString>("text");
        QTest::addColumn<EventColour>("colour");
        const auto A = EventColour::Alarm;
        const auto N = EventColour::Normal;
        const auto B = EventColour::Bypass;
        const auto point = [](const char* name, int source, int condition, int type, double value,
                              const QString& text, EventColour colour) {
            QTest::newRow(name) << EventRow{source, condition, type, value, {}} << text << colour;
        };
        const auto row = [](const char* name, int source, int condition, const QString& info,
                            const QString& text, EventColour colour) {
            QTest::newRow(name) << EventRow{source, condition, 0, 0.0, info} << text << colour;
        };

        point("analogue alarm named", 3, 1, 0, 25.25,
              u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 3 (Ψυγείο) ΕΚΤΟΣ ΟΡΙΩΝ: 25.3 °C"_s, A);
        point("analogue restoration unnamed", 5, 0, 3, -1.04,
              u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 5 (Ανώνυμη ζώνη) ΕΝΤΟΣ ΟΡΙΩΝ: -1.0 bar"_s, N);
        point("contact closed", 4, 1, 2, 1.0,
              u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 4 (Είσοδος) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ"_s, A);
        point("contact open at zero", 4, 0, 2, 0.0,
              u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 4 (Είσοδος) ΕΝΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΑΝΟΙΧΤΗ"_s, N);
        point("last point, unknown type", 20, 1, 99, 12.0,
              u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 20 (Τελευταία) ΕΚΤΟΣ ΟΡΙΩΝ: 12.0"_s, A);
        point("point condition other than 1 is within", 1, 2, 14, 50.0,
              u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 1 (Ανώνυμη ζώνη) ΕΝΤΟΣ ΟΡΙΩΝ: 50.0 %"_s, N);

        const QString ownCut = u"ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ"_s;
        const QString oneInput = u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΚΑΝΟΝΙΚΗ  /  [1] Γεννήτρια:"_s;
        row("own supply cut", 21, 1, {}, ownCut, A);
        row("own supply back", 21, 0, {}, u"Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ"_s, N);
        row("64 is a plain restoration", 21, 64, {}, u"Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ"_s, N);
        row("one input normal", 21, 16, {}, oneInput + u"ΚΑΝΟΝΙΚΗ"_s, N);
        row("one input cut", 21, 18, {}, oneInput + u"ΔΙΑΚΟΠΗ"_s, A);
        row("three inputs mixed", 21, 53, {},
            u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΔΙΑΚΟΠΗ  /  [1] Γεννήτρια:ΚΑΝΟΝΙΚΗ  /  [2] Ανώνυμη "
            u"ζώνη:ΔΙΑΚΟΠΗ  /  [3] ΔΕΗ Β:ΚΑΝΟΝΙΚΗ"_s,
            A);
        row("cut bit beyond the count is not shown", 21, 20, {}, oneInput + u"ΚΑΝΟΝΙΚΗ"_s, N);
        row("only the low byte counts", 21, 257, {}, ownCut, A);
        row("negative condition reads as byte", 21, -1, {},
            u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΔΙΑΚΟΠΗ  /  [1] Γεννήτρια:ΔΙΑΚΟΠΗ  /  [2] Ανώνυμη "
            u"ζώνη:ΔΙΑΚΟΠΗ  /  [3] ΔΕΗ Β:ΔΙΑΚΟΠΗ"_s,
            A);

        const QString both = u"3 (Ψυγείο), 7 (Αποθήκη)"_s;
        row("one sensor", 22, 0, u"3"_s, kOneSensor + u"3 (Ψυγείο)"_s, A);
        row("several sensors", 22, 0, u"3;7"_s, kSensors + both, A);
        row("sensors empty info", 22, 0, {}, kOneSensor, A);
        row("sensors empty fields dropped", 22, 0, u";3;;7;"_s, kSensors + both, A);
        row("sensors blanks and zeros", 22, 0, u" 03 ; 7 "_s, kSensors + both, A);
        row("sensor 21 has no name", 22, 0, u"21"_s, kOneSensor + u"21 (Ανώνυμη ζώνη)"_s, A);
        row("sensor 0 has no name", 22, 0, u"0"_s, kOneSensor + u"0 (Ανώνυμη ζώνη)"_s, A);
        row("sensor letters shown as stored", 22, 0, u"abc;3"_s,
            kSensors + u"abc (Ανώνυμη ζώνη), 3 (Ψυγείο)"_s, A);
        row("sensor beyond int shown as stored", 22, 0, u"99999999999"_s,
            kOneSensor + u"99999999999 (Ανώνυμη ζώνη)"_s, A);

        const QString battery = u"ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s;
        row("one unit fault", 23, 0, u"3"_s, u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: "_s + battery, A);
        row("several unit faults", 23, 0, u"0;4"_s,
            u"ΒΛΑΒΕΣ ΣΥΣΤΗΜΑΤΟΣ: ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 10, ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ "
            u"ΡΥΘΜΙΣΤΕΙ"_s,
            A);
        row("code 8 is fifty", 23, 0, u"8"_s, u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 50"_s,
            A);
        row("unknown code keeps separator", 23, 0, u"3;9;8"_s,
            u"ΒΛΑΒΕΣ ΣΥΣΤΗΜΑΤΟΣ: "_s + battery + u", , ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 50"_s, A);
        row("unit faults empty info", 23, 0, {}, u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: "_s, A);
        row("unit fault letters", 23, 0, u"x"_s, u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: "_s, A);
        row("unit fault leading zero", 23, 0, u"03;"_s, u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: "_s + battery, A);

        const QString second = kOutgoing + u" ΣΤΟΝ 2ο ΠΑΡΑΛΗΠΤΗ"_s;
        row("second recipient cancelled", 24, 0, u"2;1"_s, second + kCancel, A);
        row("incoming call", 24, 0, u"5;0"_s,
            u"ΝΕΑ ΜΗΝΥΜΑΤΑ ΠΑΡΑΔΟΘΗΚΑΝ ΣΕ ΕΙΣΕΡΧΟΜΕΝΗ ΤΗΛΕΦΩΝΙΚΗ ΚΛΗΣΗ"_s, A);
        row("recipient without cancel", 24, 0, u"3;0"_s, kOutgoing + u" ΣΤΟΝ 3ο ΠΑΡΑΛΗΠΤΗ"_s, A);
        row("delivery empty info", 24, 0, {}, kOutgoing, A);
        row("delivery unreadable a", 24, 0, u"x;1"_s, kOutgoing + kCancel, A);
        row("delivery one field", 24, 0, u"2"_s, second, A);
        row("delivery extra field ignored", 24, 0, u"2;1;9"_s, second + kCancel, A);
        row("delivery recipient 0 named", 24, 0, u"0;0"_s, kOutgoing + u" ΣΤΟΝ 0ο ΠΑΡΑΛΗΠΤΗ"_s, A);

        const QString byPanel = u" ΩΡΕΣ, ΜΕΣΩ ΤΗΣ ΚΕΝΤΡΙΚΗΣ ΜΟΝΑΔΑΣ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ"_s;
        const QString byCall = u" ΩΡΕΣ, ΜΕΣΩ ΕΙΣΕΡΧΟΜΕΝΗΣ ΤΗΛΕΦΩΝΙΚΗΣ ΚΛΗΣΗΣ"_s;
        const QString byConsole = u" ΩΡΕΣ, ΜΕΣΩ "_s + kByConsole;
        row("bypass from the panel", 25, 0, u"1;4;8"_s, kBypass + u"4 (Είσοδος) ΓΙΑ 8"_s + byPanel,
            B);
        row("bypass by incoming call", 25, 0, u"0;5;2"_s,
            kBypass + u"5 (Ανώνυμη ζώνη) ΓΙΑ 2"_s + byCall, B);
        row("bypass by the console", 25, 0, u"2;3;24"_s,
            kBypass + u"3 (Ψυγείο) ΓΙΑ 24"_s + byConsole, B);
        row("bypass empty info", 25, 0, {}, kBypass + u" (Ανώνυμη ζώνη) ΓΙΑ "_s + byConsole, B);
        row("bypass point 25 has no name", 25, 0, u"1;25;8"_s,
            kBypass + u"25 (Ανώνυμη ζώνη) ΓΙΑ 8"_s + byPanel, B);
        row("bypass letters shown as stored", 25, 0, u"a;b;c"_s,
            kBypass + u"b (Ανώνυμη ζώνη) ΓΙΑ c"_s + byConsole, B);
        row("bypass without hours", 25, 0, u"0;4"_s, kBypass + u"4 (Είσοδος) ΓΙΑ "_s + byCall, B);

        row("source 0", 0, 1, u"1;2"_s, QString(), N);
        row("source 26", 26, 1, u"1;2"_s, QString(), N);
    }

    void describe()
    {
        QFETCH(EventRow, row);
        QFETCH(QString, text);
        QFETCH(EventColour, colour);
        const EventText out = describeEvent(row, names(), QLocale::c());
        QCOMPARE(out.text, text);
        QCOMPARE(out.colour, colour);
    }

    // A named unit's prefix is read in tst_eventswindow's all-units rows.
    void unitPrefix()
    {
        QCOMPARE(sx::events::unitPrefix(u"SN-2"_s, {}, u"7"_s),
                 u"Ανώνυμο σύστημα [7] (SN-2) -> "_s);
        QCOMPARE(sx::events::unitPrefix(u"SN-3"_s, u"Α"_s, {}), u"Α [] (SN-3) -> "_s);
    }

    // Mutated Event_Info1 values with random columns: every row gives a
    // description and the colour its source calls for.
    void randomRowsNeverStopTheList()
    {
        QRandomGenerator rng(20261123);
        const QString alphabet = u"0123456789;;;-+ \tabΩ.,\u0000\uFFFF"_s;
        const QStringList seeds = {
            u"3;7"_s, u"0;4;8"_s, u"2;1"_s,  u"5;0"_s, u"21;0"_s,
            u"-1"_s,  u";;;"_s,   QString(), u"20"_s,  u"2147483647;2147483648"_s};
        const double odd[] = {-0.0, 0.05, 1e300, -1e300, qQNaN(), qInf(), -qInf(), 5e-324};
        NameCache cache = names();
        cache.zones[0] = QString(300, u'Ζ');
        for (int i = 0; i < 100000; ++i) {
            EventRow row{rng.bounded(10) ? rng.bounded(-2, 28) : int(rng.generate()),
                         rng.bounded(4) ? rng.bounded(-1, 130) : int(rng.generate()),
                         rng.bounded(-3, 25),
                         rng.bounded(3) ? (rng.generateDouble() - 0.5) * 2e6 : odd[rng.bounded(8)],
                         seeds[rng.bounded(int(seeds.size()))]};
            // Up to six edits: a character inserted, replaced or removed.
            for (int k = rng.bounded(7); k > 0; --k)
                row.info1.replace(rng.bounded(int(row.info1.size()) + 1), rng.bounded(2),
                                  rng.bounded(3)
                                      ? QString(alphabet[rng.bounded(int(alphabet.size()))])
                                      : QString());
            const EventText out = describeEvent(row, cache, QLocale::c());
            const bool known = row.source >= 1 && row.source <= 25;
            if (known == out.text.isEmpty() ||
                (row.source == 25) != (out.colour == EventColour::Bypass) ||
                (row.source >= 22 && row.source <= 24 && out.colour != EventColour::Alarm))
                QFAIL(qPrintable(u"source %1, info %2"_s.arg(row.source).arg(row.info1)));
        }
    }

    void period_data()
    {
        QTest::addColumn<int>("yearIndex");
        QTest::addColumn<int>("monthIndex");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        const auto row = [](const char* name, int year, int month, const char* from,
                            const char* to) {
            QTest::newRow(name) << year << month << QString::fromLatin1(from)
                                << QString::fromLatin1(to);
        };
        row("whole year", 4, 12, "2004-01-01 00:00:00", "2004-12-31 23:59:59");
        row("december rolls into next year", 4, 11, "2004-12-01 00:00:00", "2004-12-31 23:59:59");
        row("leap february", 4, 1, "2004-02-01 00:00:00", "2004-02-29 23:59:59");
        row("plain february", 5, 1, "2005-02-01 00:00:00", "2005-02-28 23:59:59");
        row("january", 0, 0, "2000-01-01 00:00:00", "2000-01-31 23:59:59");
        row("last year of the list", 255, 12, "2255-01-01 00:00:00", "2255-12-31 23:59:59");
        row("month out of list is whole year", 4, -1, "2004-01-01 00:00:00", "2004-12-31 23:59:59");
    }

    void period()
    {
        QFETCH(int, yearIndex);
        QFETCH(int, monthIndex);
        QFETCH(QString, from);
        QFETCH(QString, to);
        const EventPeriod p = eventsPeriod(yearIndex, monthIndex);
        QCOMPARE(sqlDateTimeText(p.fromSecs), from);
        QCOMPARE(sqlDateTimeText(p.toSecs), to);
    }

    void eventSql_data()
    {
        QTest::addColumn<DbKind>("db");
        QTest::addColumn<EventFilter>("filter");
        QTest::addColumn<QString>("expected");
        const QString allAlarms =
            u" AND (((Event_EventSource BETWEEN 1 AND 20) AND (Event_Condition=1)) OR "
            u"((Event_EventSource=21) AND "_s +
            kMainsAlarm + u") OR (Event_EventSource BETWEEN 22 AND 24))"_s;
        const QString allRestorations =
            u" AND (((Event_EventSource BETWEEN 1 AND 20) AND (Event_Condition=0)) OR "
            u"((Event_EventSource=21) AND "_s +
            kMainsRestore + u"))"_s;
        const auto row = [](const char* name, DbKind db, const EventFilter& f, const QString& sql) {
            QTest::newRow(name) << db << f << sql;
        };
        const auto access = DbKind::Access;
        const auto oracle = DbKind::Oracle;
        const auto alarms = EventKind::Alarms;
        const auto restorations = EventKind::Restorations;
        const auto both = EventKind::Both;
        row("access every source alarms new year", access, filter(0, alarms, true, 12),
            kHead + allAlarms + u" AND Event_Ack=0"_s + kAccessYear);
        row("oracle every source restorations all december", oracle, filter(0, restorations, false),
            kHead + allRestorations + kOracleDec);
        row("access every source both has no condition", access, filter(0, both, false),
            kHead + kAccessDec);
        row("access all points alarms", access, filter(-1, alarms, true),
            kHead +
                u" AND Event_EventSource BETWEEN 1 AND 20 AND Event_Condition=1 AND Event_Ack=0"_s +
                kAccessDec);
        row("oracle one point restorations new", oracle, filter(7, restorations, true),
            kHead + u" AND Event_EventSource=7 AND Event_Condition=0 AND Event_Ack=0"_s +
                kOracleDec);
        row("access mains alarms", access, filter(21, alarms, false),
            kHead + u" AND Event_EventSource=21 AND "_s + kMainsAlarm + kAccessDec);
        row("oracle mains restorations", oracle, filter(21, restorations, false),
            kHead + u" AND Event_EventSource=21 AND "_s + kMainsRestore + kOracleDec);
        row("access unit faults ignore the kind", access, filter(23, alarms, true),
            kHead + u" AND Event_EventSource=23 AND Event_Ack=0"_s + kAccessDec);
        row("oracle bypass ignores restorations", oracle, filter(25, restorations, false),
            kHead + u" AND Event_EventSource=25"_s + kOracleDec);
        row("access quote in serial is doubled, faults ignore the kind", access,
            filter(22, alarms, false, 11, 4, u"O'K"_s),
            u"SELECT * FROM Events_1 WHERE Event_SyI_Serialnumber='O''K' AND Event_EventSource=22"_s +
                kAccessDec);
        row("access unknown source adds nothing", access, filter(30, alarms, false),
            kHead + kAccessDec);
        row("sqlite stored date form", DbKind::SQLite, filter(3, alarms, false),
            kHead + u" AND Event_EventSource=3 AND Event_Condition=1 AND Event_Datetime BETWEEN "
                    u"'2004-12-01 00:00:00' AND '2004-12-31 23:59:59'"_s);
        row("postgresql stored date form", DbKind::PostgreSQL, filter(0, both, true, 12),
            kHead + u" AND Event_Ack=0 AND Event_Datetime BETWEEN '2004-01-01 00:00:00' AND "
                    u"'2004-12-31 23:59:59'"_s);
    }

    void eventSql()
    {
        QFETCH(DbKind, db);
        QFETCH(EventFilter, filter);
        QFETCH(QString, expected);
        QCOMPARE(eventQuerySql(db, filter), expected);
    }

    void initTestCase()
    {
        m_db = std::make_unique<Database>();
        m_scratch = std::make_unique<test::ScratchDatabase>();
        if (!m_scratch->problem().isEmpty())
            return; // the runs skip; the texts are checked all the same
        QVERIFY(m_scratch->open(*m_db));

        // Sequence numbers fall as rows are added, so only the ordering gives ascending order.
        test::EventsSeed seed(*m_db);
        qint64 sn = 1000;
        const auto add = [&](const QString& serial, int source, int condition, const QString& when,
                             int ack) {
            QVERIFY(seed.event(serial, sn--, when, source, condition, 0, 0, {}, ack));
        };
        const QString dec = u"2004-12-15 12:00:00"_s;
        for (int s = 1; s <= 25; ++s) {
            add(u"SN1"_s, s, 0, dec, 0);
            add(u"SN1"_s, s, 1, dec, 0);
        }
        for (int c : {16, 17, 20, 48, 64})
            add(u"SN1"_s, 21, c, dec, 0);
        add(u"SN1"_s, 4, 1, dec, 1);
        add(u"SN1"_s, 3, 1, u"2004-11-30 23:59:59"_s, 0);
        add(u"SN1"_s, 3, 1, u"2005-01-01 00:00:00"_s, 0);
        add(u"SN2"_s, 3, 1, dec, 0);
    }

    void selectsTheRightRows_data()
    {
        QTest::addColumn<EventFilter>("filter");
        QTest::addColumn<int>("rows");
        const auto both = EventKind::Both;
        const auto alarms = EventKind::Alarms;
        const auto restorations = EventKind::Restorations;
        QTest::newRow("every source both all") << filter(0, both, false) << 56;
        QTest::newRow("every source both new") << filter(0, both, true) << 55;
        // points at 1 (20), mains 1 and 17, sources 22 to 24 twice each; no bypass
        QTest::newRow("every source alarms") << filter(0, alarms, true) << 28;
        // points at 0 (20), mains 0, 16 and 64; no fault, delivery or bypass row
        QTest::newRow("every source restorations") << filter(0, restorations, true) << 23;
        QTest::newRow("mains alarms") << filter(21, alarms, false) << 2;
        QTest::newRow("mains restorations") << filter(21, restorations, false) << 3;
        QTest::newRow("bypass whatever the kind") << filter(25, alarms, false) << 2;
        QTest::newRow("all points alarms with read") << filter(-1, alarms, false) << 21;
        QTest::newRow("year edges included") << filter(3, alarms, false, 12) << 2;
        QTest::newRow("next year first second") << filter(3, alarms, false, 0, 5) << 1;
    }

    void selectsTheRightRows()
    {
        QFETCH(EventFilter, filter);
        QFETCH(int, rows);
        SX_REQUIRE_DB(*m_scratch);
        Rows r = m_db->read(orderedEventQuerySql(m_db->kind(), filter));
        const int snColumn = r.column(schema::Events1::Event_SystemEventSN);
        int count = 0;
        qint64 last = -1;
        while (r.next()) {
            const qint64 sn = r.integer(snColumn).value_or(-1);
            QVERIFY(sn > last);
            last = sn;
            ++count;
        }
        QVERIFY2(r.ok(), qPrintable(r.error().description));
        QCOMPARE(count, rows);
    }

private:
    std::unique_ptr<test::ScratchDatabase> m_scratch;
    std::unique_ptr<Database> m_db;
};

QTEST_GUILESS_MAIN(TestEventQuery)
#include "tst_eventquery.moc"
