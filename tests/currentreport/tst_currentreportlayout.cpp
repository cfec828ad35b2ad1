#include "model/report/CurrentReportLayout.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx::report;

namespace {

using OptInt = std::optional<qint64>;
using OptReal = std::optional<double>;
using OptText = std::optional<QString>;

const OptInt none;

PointLine point(qint64 number, OptText name, OptInt type, OptReal value, OptInt out,
                OptInt notPowered, bool hasCondition = true)
{
    PointLine p;
    p.number = number;
    p.name = std::move(name);
    p.type = type;
    if (hasCondition) {
        p.conditionNumber = number;
        p.value = value;
        p.outOfBounds = out;
        p.notPowered = notPowered;
    }
    return p;
}

PowerLine power(qint64 number, OptText name, OptInt fault, OptInt condition)
{
    PowerLine p;
    p.number = number;
    p.conditionNumber = number;
    p.name = std::move(name);
    p.fault = fault;
    p.condition = condition;
    return p;
}

QList<Fault> faults(const QStringList& infos)
{
    QList<Fault> out;
    for (const QString& i : infos)
        out.append({i});
    return out;
}

const QString kCrLf = u"\r\n"_s;
const QString kService = u"* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *"_s;

ReportData connectedUnit()
{
    ReportData d;
    d.unit = UnitInfo{u"SX9"_s, u"1009"_s, u"Αποθήκη"_s, 1, u"1.22"_s};
    d.condition = UnitCondition{1, 0, QDateTime(QDate(2026, 11, 16), QTime(22, 5))};
    d.points = {point(1, u"Ψυγείο"_s, 0, 4.04, 0, 0)};
    d.powers = {power(1, u"x"_s, 0, 0)};
    d.printedAt = QDateTime(QDate(2026, 1, 1), QTime(0, 7));
    return d;
}

} // namespace

Q_DECLARE_METATYPE(PointLine)
Q_DECLARE_METATYPE(PowerLine)

// The lines the PDF test already reads back (a plain value, a closed contact, a mark, an
// unnamed not-powered point, the own supply, a 1.22 cut, a 1.21 fault) are left to it.
class TestCurrentReportLayout : public QObject {
    Q_OBJECT

private slots:
    void pointLines_data()
    {
        QTest::addColumn<PointLine>("p");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const PointLine& p, const QString& text) {
            QTest::newRow(name) << p << text;
        };
        row("missing name", point(5, OptText(), 3, 2.0, 0, 0), u"[5] Ανώνυμη ζώνη    2.0 bar"_s);
        row("relative humidity", point(4, u"Υ"_s, 1, 55.0, 0, 0), u"[4] Υ    55.0 %RH"_s);
        row("contact open", point(6, u"Π"_s, 2, 0.0, 0, 0), u"[6] Π    ΑΝΟΙΧΤΗ"_s);
        row("contact negative is open", point(6, u"Π"_s, 2, -3.0, 0, 0), u"[6] Π    ΑΝΟΙΧΤΗ"_s);
        row("contact missing value is open", point(6, u"Π"_s, 2, OptReal(), 0, 0),
            u"[6] Π    ΑΝΟΙΧΤΗ"_s);
        row("contact out of limits", point(7, u"Π"_s, 2, 1.0, 2, 0), u"[7] Π    ΚΛΕΙΣΤΗ !"_s);
        row("negative out-of-limits flag", point(7, u"Π"_s, 3, 1.0, -1, 0), u"[7] Π    1.0 bar"_s);
        row("not powered, any non-zero", point(8, u"Α"_s, 0, 1.0, 0, -1),
            u"[8] Α    ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s);
        row("missing powered flag", point(8, u"Α"_s, 0, 1.0, 0, none),
            u"[8] Α    ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s);
        row("no condition row, own number", point(9, u"Α"_s, 0, 1.0, 0, 0, false),
            u"[9] Α    ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s);
        row("rounds half away, no minus zero", point(10, u"Α"_s, 17, -0.04, 0, 0),
            u"[10] Α    0.0 ppm"_s);
        row("unknown type, no unit", point(11, u"Α"_s, 21, 12.25, 0, 0), u"[11] Α    12.3"_s);
        // As on screen: a missing type is type 0.
        row("missing type", point(12, u"Α"_s, none, 7.0, 0, 0), u"[12] Α    7.0 \u00B0C"_s);
        row("type beyond 16 bits, no unit", point(12, u"Α"_s, 65536, 7.0, 0, 0),
            u"[12] Α    7.0"_s);
        row("missing analogue value", point(13, u"Α"_s, 0, OptReal(), 1, 0), u"[13] Α     !"_s);
        PointLine renumbered = point(2, u"Α"_s, 0, 1.0, 0, 0);
        renumbered.conditionNumber = 12;
        row("the condition's number names the point", renumbered, u"[12] Α    1.0 \u00B0C"_s);
    }
    void pointLines()
    {
        QFETCH(PointLine, p);
        QTEST(pointText(p), "text");
    }

    void powerLines_data()
    {
        QTest::addColumn<PowerLine>("p");
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const PowerLine& p, int version,
                            const QString& text) { QTest::newRow(name) << p << version << text; };
        row("input 3 shown as [2]", power(3, u"Α"_s, 0, 0), 122, u"[2] Α    ΚΑΝΟΝΙΚΗ"_s);
        row("input 2 unnamed", power(2, u""_s, 0, 0), 122, u"[1] Ανώνυμη ζώνη    ΚΑΝΟΝΙΚΗ"_s);
        row("1.22: cut", power(2, u"Δ"_s, 0, 1), 122, u"[1] Δ    ΔΙΑΚΟΠΗ"_s);
        row("1.22: fault only", power(2, u"Δ"_s, 1, 0), 122, u"[1] Δ    ΚΑΝΟΝΙΚΗ !"_s);
        row("1.21: cut alone is normal", power(2, u"Δ"_s, 0, 1), 121, u"[1] Δ    ΚΑΝΟΝΙΚΗ"_s);
        row("2.0 is older than 1.22", power(1, u""_s, 1, 0), 20,
            u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ    ΔΙΑΚΟΠΗ"_s);
        row("missing values", power(4, OptText(), none, none), 130,
            u"[3] Ανώνυμη ζώνη    ΚΑΝΟΝΙΚΗ"_s);
    }
    void powerLines()
    {
        QFETCH(PowerLine, p);
        QFETCH(int, version);
        QTEST(powerText(p, version), "text");
    }

    void switchLines()
    {
        const QString autoOn = u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s;
        const QString relayOff = u"ΔΙΑΚΟΠΤΗΣ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
        for (const auto& [value, notification, relay] :
             {std::tuple{OptInt(0), u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, relayOff},
              {1, u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, u"ΔΙΑΚΟΠΤΗΣ ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s},
              {2, u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s, relayOff},
              {3, autoOn, relayOff},
              {-1, autoOn, relayOff},
              {none, autoOn, relayOff}}) {
            QCOMPARE(notificationText(value), notification);
            QCOMPARE(relayText(value), relay);
        }
    }

    // Without a condition row (the PDF test's older unit has one without a clock).
    void headingWithoutTheUnitsClockShowsThePrintingTime()
    {
        const QDateTime printed(QDate(2026, 11, 16), QTime(0, 7));
        QCOMPARE(headingText(UnitInfo{u"S"_s, {}, {}, 1, {}}, std::nullopt, printed),
                 u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Ανώνυμο σύστημα [] (S)\r\n"
                 u"Δευτέρα 16 Νοεμβρίου 2026 12:07 πμ"_s);
    }

    void faultTexts()
    {
        // Unit fault codes, "|" between them, and the lines they print; battery and clock
        // alone ask for no service.
        const QString code = u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ "_s;
        for (const auto& [unitFaults, lines] :
             {std::pair{u"3|4"_s,
                        u"ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ|ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ|"_s},
              {u"5|6|7|8"_s, code + u"40|"_s + code + u"60|"_s + code + u"70|"_s + code + u"50|"_s +
                                 kService + u'|'},
              {u"0"_s, code + u"10|"_s + kService + u'|'},
              {u"9"_s, QString()},           // unknown code
              {u"03| 3|3 "_s, QString()}}) { // codes compared as text
            QCOMPARE(faultText({}, faults(unitFaults.split(u'|'))).replace(kCrLf, u"|"_s), lines);
        }
        // A fault without its info prints like an empty one.
        QCOMPARE(faultText({Fault{}}, {Fault{}}),
                 u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ \r\n"_s + kService + kCrLf);
    }

    // The items of a connected unit are read back by the PDF test; a fault the table does not
    // know still replaces "OK", by an empty item.
    void unknownFaultReplacesOk()
    {
        ReportData d = connectedUnit();
        const qsizetype ok = bodyItems(d).indexOf(u"OK"_s);
        QVERIFY(ok > 0);
        d.hasFaults = true;
        d.unitFaults = faults({u"9"_s});
        QCOMPARE(bodyItems(d).at(ok), QString());
    }

    void unitNotConnected()
    {
        const QString unreachable = u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΘΙΑΘΕΣΙΜΗ"_s;
        for (const auto& [online, line] :
             {std::pair{OptInt(0), unreachable},
              {OptInt(3), unreachable},
              {OptInt(), unreachable},
              {OptInt(2), u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s}}) {
            ReportData d = connectedUnit();
            d.unit->online = online;
            d.hasFaults = true;
            const QStringList items = bodyItems(d);
            QVERIFY(items.at(0).startsWith(u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: "_s));
            QCOMPARE(items.mid(1), (QStringList{kCrLf, line, kCrLf, kCrLf, kCrLf, kCrLf}));
        }
    }

    void itemsToLines()
    {
        QCOMPARE(itemLines({u"a"_s, kCrLf, u"b\r\nc\r\n"_s, u""_s}),
                 (QStringList{u"a"_s, u""_s, u""_s, u"b"_s, u"c"_s, u""_s, u""_s}));
    }

    void pageBreaks()
    {
        // Five lines of 4 mm fit between 20 and 40 mm; the sixth starts a new page.
        const PageLayout layout = placeLines(QList<QString>(7, u"x"_s), 20.0, 4.0, 40.0);
        QStringList placed;
        for (const auto& line : layout.lines)
            placed << u"%1@%2"_s.arg(line.page).arg(line.y);
        QCOMPARE(placed.join(u' '), u"0@20 0@24 0@28 0@32 0@36 1@0 1@4"_s);
        QCOMPARE(std::tuple(layout.endPage, layout.endY, layout.pages), std::tuple(1, 8.0, 2));
    }

    void endLine()
    {
        // 3.3 mm lines on a 40 mm page: the box needs the line and 1 mm more.
        for (const auto& [lineCount, startY, endPage, endY] :
             {std::tuple{2, 10.0, 0, 17.0}, // 16.6 rounded up
              {1, 10.0, 0, 13.0},           // 13.3 rounded down
              {1, 31.8, 0, 35.0},           // 35.1 -> 35, box to 39.3
              {1, 32.4, 1, 0.0},            // 35.7 -> 36, box to 40.3
              {2, 29.0, 1, 0.0},            // 35.6 -> 36
              {0, 17.3, 0, 17.0}}) {        // nothing to place (a missing unit): the start, rounded
            const PageLayout layout =
                placeLines(QList<QString>(lineCount, u"x"_s), startY, 3.3, 40.0);
            QCOMPARE(std::pair(layout.endPage, layout.endY), std::pair(endPage, endY));
        }
    }
};

QTEST_APPLESS_MAIN(TestCurrentReportLayout)
#include "tst_currentreportlayout.moc"
