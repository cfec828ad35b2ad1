#include "model/events/EventDescription.h"

#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace sx::events;

Q_DECLARE_METATYPE(sx::events::EventColour)

class TestEventDescription : public QObject {
    Q_OBJECT

private slots:
    void describe_data();
    void describe();
    void unitPrefix_data();
    void unitPrefix();
    void randomRowsNeverStopTheList();
};

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

void TestEventDescription::describe_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("condition");
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("info1");
    QTest::addColumn<QString>("text");
    QTest::addColumn<EventColour>("colour");
    const auto A = EventColour::Alarm;
    const auto N = EventColour::Normal;
    const auto B = EventColour::Bypass;

    // points
    QTest::newRow("analogue alarm named")
        << 3 << 1 << 0 << 25.25 << QString() << u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 3 (Ψυγείο) ΕΚΤΟΣ ΟΡΙΩΝ: 25.3 °C"_s
        << A;
    QTest::newRow("analogue restoration unnamed")
        << 5 << 0 << 3 << -1.04 << QString()
        << u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 5 (Ανώνυμη ζώνη) ΕΝΤΟΣ ΟΡΙΩΝ: -1.0 bar"_s << N;
    QTest::newRow("contact closed")
        << 4 << 1 << 2 << 1.0 << QString()
        << u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 4 (Είσοδος) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ"_s << A;
    QTest::newRow("contact open at zero")
        << 4 << 0 << 2 << 0.0 << QString()
        << u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 4 (Είσοδος) ΕΝΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΑΝΟΙΧΤΗ"_s << N;
    QTest::newRow("unknown type has no unit")
        << 20 << 1 << 99 << 12.0 << QString()
        << u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 20 (Τελευταία) ΕΚΤΟΣ ΟΡΙΩΝ: 12.0"_s << A;
    QTest::newRow("point condition other than 1 is within")
        << 1 << 2 << 14 << 50.0 << QString()
        << u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 1 (Ανώνυμη ζώνη) ΕΝΤΟΣ ΟΡΙΩΝ: 50.0 %"_s << N;

    // mains power
    QTest::newRow("own supply cut")
        << 21 << 1 << 0 << 0.0 << QString() << u"ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ"_s << A;
    QTest::newRow("own supply back")
        << 21 << 0 << 0 << 0.0 << QString() << u"Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ"_s << N;
    QTest::newRow("64 is a plain restoration")
        << 21 << 64 << 0 << 0.0 << QString() << u"Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ"_s << N;
    QTest::newRow("one input normal")
        << 21 << 16 << 0 << 0.0 << QString()
        << u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΚΑΝΟΝΙΚΗ  /  [1] Γεννήτρια:ΚΑΝΟΝΙΚΗ"_s << N;
    QTest::newRow("one input cut")
        << 21 << 18 << 0 << 0.0 << QString()
        << u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΚΑΝΟΝΙΚΗ  /  [1] Γεννήτρια:ΔΙΑΚΟΠΗ"_s << A;
    QTest::newRow("three inputs mixed")
        << 21 << 53 << 0 << 0.0 << QString()
        << u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΔΙΑΚΟΠΗ  /  [1] Γεννήτρια:ΚΑΝΟΝΙΚΗ  /  [2] Ανώνυμη "
           u"ζώνη:ΔΙΑΚΟΠΗ  /  [3] ΔΕΗ Β:ΚΑΝΟΝΙΚΗ"_s
        << A;
    QTest::newRow("cut bit beyond the count is not shown")
        << 21 << 20 << 0 << 0.0 << QString()
        << u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΚΑΝΟΝΙΚΗ  /  [1] Γεννήτρια:ΚΑΝΟΝΙΚΗ"_s << N;
    QTest::newRow("only the low byte counts")
        << 21 << 257 << 0 << 0.0 << QString() << u"ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ"_s << A;
    QTest::newRow("negative condition reads as byte")
        << 21 << -1 << 0 << 0.0 << QString()
        << u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΔΙΑΚΟΠΗ  /  [1] Γεννήτρια:ΔΙΑΚΟΠΗ  /  [2] Ανώνυμη "
           u"ζώνη:ΔΙΑΚΟΠΗ  /  [3] ΔΕΗ Β:ΔΙΑΚΟΠΗ"_s
        << A;

    // sensor faults
    QTest::newRow("one sensor") << 22 << 0 << 0 << 0.0 << u"3"_s << kOneSensor + u"3 (Ψυγείο)"_s
                                << A;
    QTest::newRow("several sensors")
        << 22 << 0 << 0 << 0.0 << u"3;7"_s << kSensors + u"3 (Ψυγείο), 7 (Αποθήκη)"_s << A;
    QTest::newRow("unnamed sensor")
        << 22 << 0 << 0 << 0.0 << u"5"_s << kOneSensor + u"5 (Ανώνυμη ζώνη)"_s << A;
    QTest::newRow("sensors empty info") << 22 << 0 << 0 << 0.0 << QString() << kOneSensor << A;
    QTest::newRow("sensors empty fields dropped")
        << 22 << 0 << 0 << 0.0 << u";3;;7;"_s << kSensors + u"3 (Ψυγείο), 7 (Αποθήκη)"_s << A;
    QTest::newRow("sensors blanks and zeros")
        << 22 << 0 << 0 << 0.0 << u" 03 ; 7 "_s << kSensors + u"3 (Ψυγείο), 7 (Αποθήκη)"_s << A;
    QTest::newRow("sensor 21 has no name")
        << 22 << 0 << 0 << 0.0 << u"21"_s << kOneSensor + u"21 (Ανώνυμη ζώνη)"_s << A;
    QTest::newRow("sensor 0 has no name")
        << 22 << 0 << 0 << 0.0 << u"0"_s << kOneSensor + u"0 (Ανώνυμη ζώνη)"_s << A;
    QTest::newRow("sensor negative")
        << 22 << 0 << 0 << 0.0 << u"-3"_s << kOneSensor + u"-3 (Ανώνυμη ζώνη)"_s << A;
    QTest::newRow("sensor letters shown as stored")
        << 22 << 0 << 0 << 0.0 << u"abc;3"_s << kSensors + u"abc (Ανώνυμη ζώνη), 3 (Ψυγείο)"_s << A;
    QTest::newRow("sensor beyond int shown as stored")
        << 22 << 0 << 0 << 0.0 << u"99999999999"_s << kOneSensor + u"99999999999 (Ανώνυμη ζώνη)"_s
        << A;

    // unit faults
    QTest::newRow("one unit fault")
        << 23 << 0 << 0 << 0.0 << u"3"_s << u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s << A;
    QTest::newRow("several unit faults")
        << 23 << 0 << 0 << 0.0 << u"0;4"_s
        << u"ΒΛΑΒΕΣ ΣΥΣΤΗΜΑΤΟΣ: ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 10, ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ "
           u"ΡΥΘΜΙΣΤΕΙ"_s
        << A;
    QTest::newRow("code 8 is fifty") << 23 << 0 << 0 << 0.0 << u"8"_s
                                     << u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 50"_s << A;
    QTest::newRow("unknown code keeps separator")
        << 23 << 0 << 0 << 0.0 << u"3;9;8"_s
        << u"ΒΛΑΒΕΣ ΣΥΣΤΗΜΑΤΟΣ: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ, , ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 50"_s << A;
    QTest::newRow("unit faults empty info")
        << 23 << 0 << 0 << 0.0 << QString() << u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: "_s << A;
    QTest::newRow("unit fault letters")
        << 23 << 0 << 0 << 0.0 << u"x"_s << u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: "_s << A;
    QTest::newRow("unit fault leading zero")
        << 23 << 0 << 0 << 0.0 << u"03;"_s << u"ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s << A;

    // message delivery
    QTest::newRow("second recipient cancelled")
        << 24 << 0 << 0 << 0.0 << u"2;1"_s << kOutgoing + u" ΣΤΟΝ 2ο ΠΑΡΑΛΗΠΤΗ"_s + kCancel << A;
    QTest::newRow("incoming call")
        << 24 << 0 << 0 << 0.0 << u"5;0"_s
        << u"ΝΕΑ ΜΗΝΥΜΑΤΑ ΠΑΡΑΔΟΘΗΚΑΝ ΣΕ ΕΙΣΕΡΧΟΜΕΝΗ ΤΗΛΕΦΩΝΙΚΗ ΚΛΗΣΗ"_s << A;
    QTest::newRow("recipient without cancel")
        << 24 << 0 << 0 << 0.0 << u"3;0"_s << kOutgoing + u" ΣΤΟΝ 3ο ΠΑΡΑΛΗΠΤΗ"_s << A;
    QTest::newRow("delivery empty info") << 24 << 0 << 0 << 0.0 << QString() << kOutgoing << A;
    QTest::newRow("delivery unreadable a")
        << 24 << 0 << 0 << 0.0 << u"x;1"_s << kOutgoing + kCancel << A;
    QTest::newRow("delivery one field")
        << 24 << 0 << 0 << 0.0 << u"2"_s << kOutgoing + u" ΣΤΟΝ 2ο ΠΑΡΑΛΗΠΤΗ"_s << A;
    QTest::newRow("delivery extra field ignored")
        << 24 << 0 << 0 << 0.0 << u"2;1;9"_s << kOutgoing + u" ΣΤΟΝ 2ο ΠΑΡΑΛΗΠΤΗ"_s + kCancel << A;
    QTest::newRow("delivery recipient 0 named")
        << 24 << 0 << 0 << 0.0 << u"0;0"_s << kOutgoing + u" ΣΤΟΝ 0ο ΠΑΡΑΛΗΠΤΗ"_s << A;

    // bypass
    QTest::newRow("bypass from the panel")
        << 25 << 0 << 0 << 0.0 << u"1;4;8"_s
        << kBypass + u"4 (Είσοδος) ΓΙΑ 8 ΩΡΕΣ, ΜΕΣΩ ΤΗΣ ΚΕΝΤΡΙΚΗΣ ΜΟΝΑΔΑΣ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ"_s << B;
    QTest::newRow("bypass by incoming call")
        << 25 << 0 << 0 << 0.0 << u"0;5;2"_s
        << kBypass + u"5 (Ανώνυμη ζώνη) ΓΙΑ 2 ΩΡΕΣ, ΜΕΣΩ ΕΙΣΕΡΧΟΜΕΝΗΣ ΤΗΛΕΦΩΝΙΚΗΣ ΚΛΗΣΗΣ"_s << B;
    QTest::newRow("bypass by the console")
        << 25 << 0 << 0 << 0.0 << u"2;3;24"_s
        << kBypass + u"3 (Ψυγείο) ΓΙΑ 24 ΩΡΕΣ, ΜΕΣΩ "_s + kByConsole << B;
    QTest::newRow("bypass empty info")
        << 25 << 0 << 0 << 0.0 << QString()
        << kBypass + u" (Ανώνυμη ζώνη) ΓΙΑ  ΩΡΕΣ, ΜΕΣΩ "_s + kByConsole << B;
    QTest::newRow("bypass point 25 has no name")
        << 25 << 0 << 0 << 0.0 << u"1;25;8"_s
        << kBypass + u"25 (Ανώνυμη ζώνη) ΓΙΑ 8 ΩΡΕΣ, ΜΕΣΩ ΤΗΣ ΚΕΝΤΡΙΚΗΣ ΜΟΝΑΔΑΣ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ"_s
        << B;
    QTest::newRow("bypass letters shown as stored")
        << 25 << 0 << 0 << 0.0 << u"a;b;c"_s
        << kBypass + u"b (Ανώνυμη ζώνη) ΓΙΑ c ΩΡΕΣ, ΜΕΣΩ "_s + kByConsole << B;
    QTest::newRow("bypass without hours")
        << 25 << 0 << 0 << 0.0 << u"0;4"_s
        << kBypass + u"4 (Είσοδος) ΓΙΑ  ΩΡΕΣ, ΜΕΣΩ ΕΙΣΕΡΧΟΜΕΝΗΣ ΤΗΛΕΦΩΝΙΚΗΣ ΚΛΗΣΗΣ"_s << B;

    // sources outside the list
    QTest::newRow("source 0") << 0 << 1 << 0 << 0.0 << u"1;2"_s << QString() << N;
    QTest::newRow("source 26") << 26 << 1 << 0 << 0.0 << u"1;2"_s << QString() << N;
    QTest::newRow("source -1") << -1 << 1 << 0 << 0.0 << QString() << QString() << N;
}

void TestEventDescription::describe()
{
    QFETCH(int, source);
    QFETCH(int, condition);
    QFETCH(int, type);
    QFETCH(double, value);
    QFETCH(QString, info1);
    QFETCH(QString, text);
    QFETCH(EventColour, colour);
    const EventText out =
        describeEvent({source, condition, type, value, info1}, names(), QLocale::c());
    QCOMPARE(out.text, text);
    QCOMPARE(out.colour, colour);
}

void TestEventDescription::unitPrefix_data()
{
    QTest::addColumn<QString>("serial");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("expected");
    QTest::newRow("named") << u"SN-1"_s << u"Κεντρικό"_s << u"12"_s
                           << u"Κεντρικό [12] (SN-1) -> "_s;
    QTest::newRow("unnamed") << u"SN-2"_s << QString() << u"7"_s
                             << u"Ανώνυμο σύστημα [7] (SN-2) -> "_s;
    QTest::newRow("empty location") << u"SN-3"_s << u"Α"_s << QString() << u"Α [] (SN-3) -> "_s;
}

void TestEventDescription::unitPrefix()
{
    QFETCH(QString, serial);
    QFETCH(QString, name);
    QFETCH(QString, location);
    QFETCH(QString, expected);
    QCOMPARE(sx::events::unitPrefix(serial, name, location), expected);
}

// Random and mutated Event_Info1 values with random columns: every row gives
// a description and the colour its source calls for.
void TestEventDescription::randomRowsNeverStopTheList()
{
    QRandomGenerator rng(20261123);
    const QString alphabet = u"0123456789;;;-+ \tabΩ.,\u0000\uFFFF"_s;
    const QStringList seeds = {u"3;7"_s,  u"0;4;8"_s, u"2;1"_s,
                               u"5;0"_s,  u"1;4;8"_s, u"20"_s,
                               u"21;0"_s, u"-1"_s,    u"2147483647;2147483648"_s,
                               u";;;"_s,  QString(),  u"9;9;9;9;9;9;9;9"_s};
    const double oddValues[] = {0.0,
                                -0.0,
                                0.05,
                                -0.05,
                                1e300,
                                -1e300,
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::denorm_min()};
    NameCache cache = names();
    cache.zones[0] = QString(300, u'Ζ');

    for (int i = 0; i < 100000; ++i) {
        QString info;
        if (rng.bounded(2) == 0) {
            const int len = rng.bounded(40);
            for (int k = 0; k < len; ++k)
                info += alphabet[rng.bounded(int(alphabet.size()))];
        } else {
            info = seeds[rng.bounded(int(seeds.size()))];
            const int edits = rng.bounded(4);
            for (int k = 0; k < edits; ++k) {
                const int at = info.isEmpty() ? 0 : rng.bounded(int(info.size()) + 1);
                const QChar c = alphabet[rng.bounded(int(alphabet.size()))];
                switch (rng.bounded(3)) {
                case 0:
                    info.insert(at, c);
                    break;
                case 1:
                    if (at < info.size())
                        info.remove(at, 1);
                    break;
                default:
                    if (at < info.size())
                        info[at] = c;
                    break;
                }
            }
        }
        EventRow row;
        row.source = rng.bounded(10) == 0 ? int(rng.generate()) : rng.bounded(-2, 28);
        row.condition = rng.bounded(4) == 0 ? int(rng.generate()) : rng.bounded(-1, 130);
        row.sensorType = rng.bounded(-3, 25);
        row.value =
            rng.bounded(3) == 0 ? oddValues[rng.bounded(10)] : (rng.generateDouble() - 0.5) * 2e6;
        row.info1 = info;

        const EventText out = describeEvent(row, cache, QLocale::c());
        const bool known = row.source >= 1 && row.source <= 25;
        if (known == out.text.isEmpty())
            QFAIL(qPrintable(u"text presence for source %1, info %2"_s.arg(row.source).arg(info)));
        const bool bypass = row.source == 25;
        if (bypass != (out.colour == EventColour::Bypass))
            QFAIL(qPrintable(u"bypass colour for source %1"_s.arg(row.source)));
        if (row.source >= 22 && row.source <= 24 && out.colour != EventColour::Alarm)
            QFAIL(qPrintable(u"fault colour for source %1"_s.arg(row.source)));
    }
}

QTEST_GUILESS_MAIN(TestEventDescription)
#include "tst_eventdescription.moc"
