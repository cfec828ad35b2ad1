#include "model/Formatting.h"
#include "model/report/CurrentReportLayout.h"
#include "model/report/EventsReportLayout.h"
#include "model/report/MarkedPointsLayout.h"
#include "model/report/RecordsReportLayout.h"

#include <QTest>

#include <limits>
#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::report;

namespace {

using OptInt = std::optional<qint64>;
using OptReal = std::optional<double>;
using OptText = std::optional<QString>;

const OptInt none;

PointLine point(qint64 number, OptText name, OptInt type, OptReal value, OptInt out,
                OptInt notPowered, bool hasCondition = true)
{
    if (!hasCondition)
        return {number, std::nullopt, std::move(name), type, {}, {}, {}};
    return {number, number, std::move(name), type, value, out, notPowered};
}

PowerLine power(qint64 number, OptText name, OptInt fault, OptInt condition)
{
    return {number, number, std::move(name), fault, condition};
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

QDateTime at(int y, int mo, int d, int h, int mi, int s = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s));
}

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

// Where the archive reports put their entries, and what their headings say; the lines of the
// current-condition report (those its PDF test reads back are left to it); the dates, times and
// values every view and report writes.
class TestReportLayouts : public QObject {
    Q_OBJECT

private slots:
    void layoutCountsPagesAsTheRuleSays_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<double>("height");
        QTest::addColumn<int>("perColumn");
        QTest::addColumn<int>("pages");
        // Lines of 4; height 245: lines at 35, 39, ... the 50th ends exactly at the limit 235.
        QTest::newRow("none") << 0 << 245.0 << 50 << 1;
        QTest::newRow("one full column") << 50 << 245.0 << 50 << 1;
        QTest::newRow("four full columns") << 200 << 245.0 << 50 << 1;
        QTest::newRow("one more") << 201 << 245.0 << 50 << 2;
        QTest::newRow("eight full columns") << 400 << 245.0 << 50 << 2;
        QTest::newRow("a third page") << 401 << 245.0 << 50 << 3;
        QTest::newRow("just short of a line") << 10 << 244.99 << 49 << 1;
        QTest::newRow("no room at all") << 3 << 40.0 << 1 << 1;
    }

    void layoutCountsPagesAsTheRuleSays()
    {
        QFETCH(int, rows);
        QFETCH(double, height);
        const records_report::Layout l = records_report::layoutRows(rows, height, 4.0);
        QTEST(l.rowsPerColumn, "perColumn");
        QTEST(l.pages, "pages");
        if (rows > 0)
            QVERIFY(l.pageOf(rows - 1) < l.pages || l.rowsPerColumn == 1);
    }

    void entriesFillColumnsThenPages_data()
    {
        QTest::addColumn<QList<double>>("heights");
        QTest::addColumn<QString>("placed"); // page:column:y of each entry
        QTest::addColumn<int>("pages");
        // Page height 297: the bottom limit is 287, a column runs from 35.
        QTest::newRow("none") << QList<double>{} << QString() << 1;
        QTest::newRow("one") << QList<double>{10} << u"0:0:35"_s << 1;
        QTest::newRow("an exact fit stays in the column")
            << QList<double>{126, 126} << u"0:0:35 0:0:161"_s << 1;
        QTest::newRow("a full left column continues at the top of the right")
            << QList<double>{100, 100, 100} << u"0:0:35 0:0:135 0:1:35"_s << 1;
        QTest::newRow("after the right column a new page")
            << QList<double>{100, 100, 100, 100, 100} << u"0:0:35 0:0:135 0:1:35 0:1:135 1:0:35"_s
            << 2;
        QTest::newRow("taller than a column stays at the top of its own")
            << QList<double>{300, 10, 300} << u"0:0:35 0:1:35 1:0:35"_s << 2;
    }

    void entriesFillColumnsThenPages()
    {
        QFETCH(QList<double>, heights);
        const events_report::Layout l = events_report::layoutEntries(heights, 297.0);
        QStringList got;
        for (const events_report::Placement& p : l.entries)
            got << u"%1:%2:%3"_s.arg(p.page).arg(p.column).arg(p.y);
        QTEST(got.join(u' '), "placed");
        QTEST(l.pages, "pages");
    }

    void choicesLineRestatesTheControls_data()
    {
        QTest::addColumn<bool>("kindApplies");
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("newOnly");
        QTest::addColumn<QString>("source"); // between the unit and the period
        QTest::addColumn<QString>("events");
        QTest::newRow("alarms, new")
            << true << 0 << true << u"ΠΡΟΕΛΕΥΣΗ/ΤΥΠΟΣ ΣΥΜΒΑΝΤΩΝ:[2] Ψυγείο/ΣΥΝΑΓΕΡΜΟΣ"_s
            << u"ΝΕΑ ΣΥΜΒΑΝΤΑ"_s;
        QTest::newRow("restorations, all")
            << true << 1 << false << u"ΠΡΟΕΛΕΥΣΗ/ΤΥΠΟΣ ΣΥΜΒΑΝΤΩΝ:[2] Ψυγείο/ΑΠΟΚΑΤΑΣΤΑΣΗ"_s
            << u"ΟΛΑ ΤΑ ΣΥΜΒΑΝΤΑ"_s;
        QTest::newRow("both kinds")
            << true << 2 << true << u"ΠΡΟΕΛΕΥΣΗ/ΤΥΠΟΣ ΣΥΜΒΑΝΤΩΝ:[2] Ψυγείο/ΟΛΑ"_s
            << u"ΝΕΑ ΣΥΜΒΑΝΤΑ"_s;
        QTest::newRow("no kind where the options are disabled")
            << false << 0 << true << u"ΠΡΟΕΛΕΥΣΗ ΣΥΜΒΑΝΤΩΝ:[2] Ψυγείο"_s << u"ΝΕΑ ΣΥΜΒΑΝΤΑ"_s;
    }

    void choicesLineRestatesTheControls()
    {
        QFETCH(bool, kindApplies);
        QFETCH(int, kind);
        QFETCH(bool, newOnly);
        QFETCH(QString, source);
        QFETCH(QString, events);
        const events_report::Choices c{u"Alpha [7] (A-1)"_s, u"[2] Ψυγείο"_s, kindApplies, kind,
                                       u"Μαρτιος"_s,         u"2026"_s,       newOnly};
        QCOMPARE(events_report::choicesLine(c),
                 u"ΠΛΗΡΟΦΟΡΙΕΣ ΑΡΧΕΙΟΥ ΣΥΜΒΑΝΤΩΝ. ΣΥΣΤΗΜΑ:Alpha [7] (A-1) , "_s + source +
                     u" , ΜΗΝΑΣ/ΕΤΟΣ:Μαρτιος/2026 , "_s + events + u" ΤΗΣ ΧΡΟΝΙΚΗΣ ΠΕΡΙΟΔΟΥ"_s);
    }

    void markedPointsPlan()
    {
        // From y 30 to 60 with lines of 5: six lines a page, an empty line between entries.
        // Lines of each entry, then page@y of each entry and the pages.
        for (const auto& [lines, placed] :
             {std::pair{std::vector<int>{}, u" 1"_s},
              {{2, 2}, u"0@30 0@45 1"_s},
              {{2, 2, 2}, u"0@30 0@45 1@30 2"_s}, // the third goes whole to page two
              {{2, 3}, u"0@30 0@45 1"_s},         // a wrapped entry that just fits
              {{2, 4}, u"0@30 1@30 2"_s},         // one line too many
              {{9, 2}, u"0@30 1@30 2"_s}}) {      // taller than a page stays alone
            const auto plan = graph::marked_points::layoutEntries(lines, 30, 5, 60);
            QStringList got;
            for (const auto& e : plan.entries)
                got << u"%1@%2"_s.arg(e.page).arg(e.y);
            QCOMPARE(got.join(u' ') + u' ' + QString::number(plan.pages), placed);
        }
    }

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

    void greekDateTime_data()
    {
        QTest::addColumn<QDateTime>("when");
        QTest::addColumn<bool>("oneLine");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QDateTime& when, const QString& text) {
            QTest::newRow(name) << when << true << text;
        };
        row("evening", at(2026, 11, 16, 22, 5), u"Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ"_s);
        QTest::newRow("two lines")
            << at(2026, 11, 16, 22, 5) << false << u"Δευτέρα 16 Νοεμβρίου 2026\r\n10:05 μμ"_s;
        row("midnight is 12 am", at(2026, 11, 16, 0, 7), u"Δευτέρα 16 Νοεμβρίου 2026 12:07 πμ"_s);
        row("noon is 12 pm", at(2026, 11, 16, 12, 30), u"Δευτέρα 16 Νοεμβρίου 2026 12:30 μμ"_s);
        row("last morning minute", at(2026, 11, 16, 11, 59, 59),
            u"Δευτέρα 16 Νοεμβρίου 2026 11:59 πμ"_s);
        row("one pm, no padding", at(2026, 11, 16, 13, 0), u"Δευτέρα 16 Νοεμβρίου 2026 1:00 μμ"_s);
        row("first month", at(2026, 1, 3, 9, 0), u"Σάββατο 3 Ιανουαρίου 2026 9:00 πμ"_s);
        row("may keeps its diaeresis", at(2026, 5, 14, 23, 59), u"Πέμπτη 14 Μαΐου 2026 11:59 μμ"_s);
        row("last month", at(2026, 12, 31, 18, 45), u"Πέμπτη 31 Δεκεμβρίου 2026 6:45 μμ"_s);
        row("invalid", QDateTime(), QString());
        // 15 November 2026 is a Sunday.
        const QStringList days{u"Κυριακή"_s, u"Δευτέρα"_s,   u"Τρίτη"_s,  u"Τετάρτη"_s,
                               u"Πέμπτη"_s,  u"Παρασκευή"_s, u"Σάββατο"_s};
        for (int i = 0; i < 7; ++i)
            QTest::addRow("weekday %d", i) << at(2026, 11, 15 + i, 9, 0) << true
                                           << days[i] + u" %1 Νοεμβρίου 2026 9:00 πμ"_s.arg(15 + i);
    }

    void greekDateTime()
    {
        QFETCH(QDateTime, when);
        QFETCH(bool, oneLine);
        QTEST(sx::greekDateTime(when, oneLine), "expected");
    }

    void elapsedText_data()
    {
        QTest::addColumn<qint32>("seconds");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, qint32 s, const QString& text) {
            QTest::newRow(name) << s << text;
        };
        row("zero", 0, u"ΠΡΙΝ 0 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
        row("one minute exactly", 60, u"ΠΡΙΝ 1 ΛΕΠΤΑ "_s);
        row("minute and second", 61, u"ΠΡΙΝ 1 ΛΕΠΤΑ ΚΑΙ 1 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
        row("hour drops seconds", 3725, u"ΠΡΙΝ 1 ΩΡΕΣ ΚΑΙ 2 ΛΕΠΤΑ "_s);
        row("two hours exactly", 7200, u"ΠΡΙΝ 2 ΩΡΕΣ "_s);
        row("a second short of a day", 86399, u"ΠΡΙΝ 23 ΩΡΕΣ ΚΑΙ 59 ΛΕΠΤΑ "_s);
        row("day drops minutes", 90061, u"ΠΡΙΝ 1 ΗΜΕΡΕΣ ΚΑΙ 1 ΩΡΕΣ "_s);
        row("a second short of a year", 31535999, u"ΠΡΙΝ 364 ΗΜΕΡΕΣ ΚΑΙ 23 ΩΡΕΣ "_s);
        row("one year exactly", 31536000, u"ΠΡΙΝ 1 ΧΡΟΝΙΑ "_s);
        row("years and days", 2 * 31536000 + 3 * 86400 + 7, u"ΠΡΙΝ 2 ΧΡΟΝΙΑ ΚΑΙ 3 ΗΜΕΡΕΣ "_s);
        row("largest", std::numeric_limits<qint32>::max(), u"ΠΡΙΝ 68 ΧΡΟΝΙΑ ΚΑΙ 35 ΗΜΕΡΕΣ "_s);
        row("negative stays in seconds", -3725, u"ΠΡΙΝ -3725 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
        row("smallest", std::numeric_limits<qint32>::min(), u"ΠΡΙΝ -2147483648 ΔΕΥΤΕΡΟΛΕΠΤΑ "_s);
    }

    void elapsedText()
    {
        QFETCH(qint32, seconds);
        QTEST(sx::elapsedText(seconds), "expected");
    }

    void unitSuffixAndReading()
    {
        // The degree sign must be U+00B0, not a look-alike.
        QStringList got;
        for (int type : {0, 1, 2, 3, 8, 14, 18, 20, 21, -1, std::numeric_limits<int>::min()})
            got << sx::unitSuffix(type);
        QCOMPARE(got,
                 (QStringList{u" \u00B0C"_s, u" %RH"_s, QString(), u" bar"_s, u" \u00B0F"_s,
                              u" %"_s, u" kJ/mol"_s, u" r/s"_s, QString(), QString(), QString()}));
        got.clear();
        const QLocale greek(QLocale::Greek, QLocale::Greece);
        const std::pair<double, int> readings[] = {{1.0, 2},   {0.01, 2}, {0.0, 2}, {-1.0, 2},
                                                   {21.34, 0}, {1.5, 3},  {5.0, 21}};
        for (const auto& [value, type] : readings)
            got << sx::formatReading(value, type, greek);
        QCOMPARE(got, (QStringList{u"ΚΛΕΙΣΤΗ"_s, u"ΚΛΕΙΣΤΗ"_s, u"ΑΝΟΙΧΤΗ"_s, u"ΑΝΟΙΧΤΗ"_s,
                                   u"21,3 \u00B0C"_s, u"1,5 bar"_s, u"5,0"_s}));
    }

    void formatValue_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("expected");
        const QLocale greek(QLocale::Greek, QLocale::Greece);
        const QLocale c = QLocale::c();
        QTest::newRow("greek comma") << 21.34 << greek << u"21,3"_s;
        QTest::newRow("c point") << 21.34 << c << u"21.3"_s;
        QTest::newRow("whole number keeps a decimal") << 7.0 << c << u"7.0"_s;
        QTest::newRow("half rounds up") << 0.25 << c << u"0.3"_s;
        QTest::newRow("rounding carries") << 9.96 << c << u"10.0"_s;
        QTest::newRow("negative half rounds away") << -0.25 << c << u"-0.3"_s;
        QTest::newRow("negative zero") << -0.0 << c << u"0.0"_s;
        QTest::newRow("small negative rounds to plain zero") << -0.04 << greek << u"0,0"_s;
        QTest::newRow("no grouping") << -1234567.89 << greek << u"-1234567,9"_s;
        QTest::newRow("beyond integer precision, exponent form") << -1e30 << greek << u"-1e+30"_s;
    }

    void formatValue()
    {
        QFETCH(double, value);
        QFETCH(QLocale, locale);
        QTEST(sx::formatValue(value, locale), "expected");
    }

    void recordTime()
    {
        QCOMPARE(sx::formatRecordTime(2026, 1, 5, 0, 0), u"05/01/2026 - 00:00"_s);
        QCOMPARE(sx::formatRecordTime(2025, 12, 31, 23, 59), u"31/12/2025 - 23:59"_s);
        QCOMPARE(sx::formatRecordTime(999, 3, 1, 7, 9), u"01/03/0999 - 07:09"_s);
        QCOMPARE(sx::formatRecordTime(10000, 3, 1, 7, 9), u"01/03/10000 - 07:09"_s);
        // Steps of 7 h 13 min reach every hour, many minutes and every day of a leap year.
        const QDateTime end = at(2025, 1, 1, 0, 0);
        for (QDateTime when = at(2024, 1, 1, 0, 0, 59); when < end;
             when = when.addSecs(7 * 3600 + 13 * 60))
            QCOMPARE(sx::formatRecordTime(when), when.toString(u"dd/MM/yyyy - HH:mm"_s));
        QCOMPARE(sx::formatRecordTime(QDateTime()), QString());
    }

    void recordTimeTakesTheLocalesSeparators_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("expected");
        QTest::newRow("Greek keeps / and :")
            << QLocale(QLocale::Greek, QLocale::Greece) << u"16/11/2026 - 22:05"_s;
        QTest::newRow("German dots")
            << QLocale(QLocale::German, QLocale::Germany) << u"16.11.2026 - 22:05"_s;
        QTest::newRow("Finnish dots in the time too")
            << QLocale(QLocale::Finnish, QLocale::Finland) << u"16.11.2026 - 22.05"_s;
        QTest::newRow("Swedish hyphens")
            << QLocale(QLocale::Swedish, QLocale::Sweden) << u"16-11-2026 - 22:05"_s;
    }
    void recordTimeTakesTheLocalesSeparators()
    {
        QFETCH(QLocale, locale);
        QTEST(sx::formatRecordTime(2026, 11, 16, 22, 5, sx::timeSeparators(locale)), "expected");
        // Grids and reports follow the default locale, also when it changes.
        const QLocale before;
        QLocale::setDefault(locale);
        const QString got = sx::formatRecordTime(at(2026, 11, 16, 22, 5));
        QLocale::setDefault(before);
        QTEST(got, "expected");
    }

    void unitVersionNumber()
    {
        const QStringList texts{QString(),        u"1"_s,           u"1.2.3"_s,
                                u"1.22"_s,        u"1.5"_s,         u"1.225"_s,
                                u"x.10"_s,        u"1.2a"_s,        u"-1.22"_s,
                                u".22"_s,         u"1."_s,          u" 1.22 "_s,
                                u"21474836.47"_s, u"21474836.48"_s, QString(400, u'9') + u".99"_s};
        QList<int> got;
        for (const QString& t : texts)
            got << sx::unitVersionNumber(t);
        // A second point ends the minor part, a third minor digit is ignored, "1." is 1.
        QCOMPARE(got, (QList<int>{0, 0, 12, 122, 15, 122, 0, 0, 0, 0, 1, 122, 2147483647, 0, 0}));
    }
};

QTEST_GUILESS_MAIN(TestReportLayouts)
#include "tst_reportlayouts.moc"
