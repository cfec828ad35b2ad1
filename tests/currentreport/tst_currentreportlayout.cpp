#include "views/current/CurrentReportLayout.h"

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
Q_DECLARE_METATYPE(OptInt)

class TestCurrentReportLayout : public QObject {
    Q_OBJECT

private slots:
    void pointLines_data()
    {
        QTest::addColumn<PointLine>("p");
        QTest::addColumn<QString>("text");

        QTest::newRow("analogue") << point(3, u"Ψυγείο"_s, 0, 21.04, 0, 0)
                                  << u"[3] Ψυγείο    21.0 \u00B0C"_s;
        QTest::newRow("empty name")
            << point(4, u""_s, 1, 55.0, 0, 0) << u"[4] Ανώνυμη ζώνη    55.0 %RH"_s;
        QTest::newRow("missing name")
            << point(5, OptText(), 3, 2.0, 0, 0) << u"[5] Ανώνυμη ζώνη    2.0 bar"_s;
        QTest::newRow("contact closed")
            << point(6, u"Πόρτα"_s, 2, 1.0, 0, 0) << u"[6] Πόρτα    ΚΛΕΙΣΤΗ"_s;
        QTest::newRow("contact open")
            << point(6, u"Πόρτα"_s, 2, 0.0, 0, 0) << u"[6] Πόρτα    ΑΝΟΙΧΤΗ"_s;
        QTest::newRow("contact negative is open")
            << point(6, u"Πόρτα"_s, 2, -3.0, 0, 0) << u"[6] Πόρτα    ΑΝΟΙΧΤΗ"_s;
        QTest::newRow("contact missing value is open")
            << point(6, u"Πόρτα"_s, 2, OptReal(), 0, 0) << u"[6] Πόρτα    ΑΝΟΙΧΤΗ"_s;
        QTest::newRow("out of limits")
            << point(7, u"Πίεση"_s, 3, 35.5, 1, 0) << u"[7] Πίεση    35.5 bar !"_s;
        QTest::newRow("contact out of limits")
            << point(7, u"Πόρτα"_s, 2, 1.0, 2, 0) << u"[7] Πόρτα    ΚΛΕΙΣΤΗ !"_s;
        QTest::newRow("negative out-of-limits flag")
            << point(7, u"Π"_s, 3, 1.0, -1, 0) << u"[7] Π    1.0 bar"_s;
        QTest::newRow("not powered and out of limits, no mark")
            << point(8, u"Αισθητήρας"_s, 0, 99.0, 1, 1)
            << u"[8] Αισθητήρας    ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s;
        QTest::newRow("not powered, any non-zero")
            << point(8, u"Α"_s, 0, 1.0, 0, -1) << u"[8] Α    ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s;
        QTest::newRow("missing powered flag")
            << point(8, u"Α"_s, 0, 1.0, 0, none) << u"[8] Α    ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s;
        QTest::newRow("no condition row, own number")
            << point(9, u"Α"_s, 0, 1.0, 0, 0, false) << u"[9] Α    ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s;
        QTest::newRow("rounds half away, no minus zero")
            << point(10, u"Α"_s, 17, -0.04, 0, 0) << u"[10] Α    0.0 ppm"_s;
        QTest::newRow("unknown type, no unit")
            << point(11, u"Α"_s, 21, 12.25, 0, 0) << u"[11] Α    12.3"_s;
        QTest::newRow("missing type") << point(12, u"Α"_s, none, 7.0, 0, 0) << u"[12] Α    7.0"_s;
        QTest::newRow("missing analogue value")
            << point(13, u"Α"_s, 0, OptReal(), 1, 0) << u"[13] Α     !"_s;
    }

    void pointLines()
    {
        QFETCH(PointLine, p);
        QFETCH(QString, text);
        QCOMPARE(pointText(p), text);
    }

    void conditionNumberNamesThePoint()
    {
        PointLine p = point(2, u"Α"_s, 0, 1.0, 0, 0);
        p.conditionNumber = 12;
        QVERIFY(pointText(p).startsWith(u"[12] "_s));
    }

    void powerLines_data()
    {
        QTest::addColumn<PowerLine>("p");
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("text");

        QTest::newRow("own supply, whatever its name")
            << power(1, u"Κεντρικός"_s, 0, 0) << 122 << u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ    ΚΑΝΟΝΙΚΗ"_s;
        QTest::newRow("input 3 shown as [2]")
            << power(3, u"Α"_s, 0, 0) << 122 << u"[2] Α    ΚΑΝΟΝΙΚΗ"_s;
        QTest::newRow("input 2 unnamed")
            << power(2, u""_s, 0, 0) << 122 << u"[1] Ανώνυμη ζώνη    ΚΑΝΟΝΙΚΗ"_s;
        QTest::newRow("1.22: cut with fault")
            << power(2, u"Δ"_s, 1, 1) << 122 << u"[1] Δ    ΔΙΑΚΟΠΗ !"_s;
        QTest::newRow("1.22: cut") << power(2, u"Δ"_s, 0, 1) << 122 << u"[1] Δ    ΔΙΑΚΟΠΗ"_s;
        QTest::newRow("1.22: fault only")
            << power(2, u"Δ"_s, 1, 0) << 122 << u"[1] Δ    ΚΑΝΟΝΙΚΗ !"_s;
        QTest::newRow("1.21: cut with fault, no mark")
            << power(2, u"Δ"_s, 1, 1) << 121 << u"[1] Δ    ΔΙΑΚΟΠΗ"_s;
        QTest::newRow("1.21: cut without fault is normal")
            << power(2, u"Δ"_s, 0, 1) << 121 << u"[1] Δ    ΚΑΝΟΝΙΚΗ"_s;
        QTest::newRow("2.0 is older than 1.22")
            << power(1, u""_s, 1, 0) << 20 << u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ    ΔΙΑΚΟΠΗ"_s;
        QTest::newRow("missing values")
            << power(4, OptText(), none, none) << 130 << u"[3] Ανώνυμη ζώνη    ΚΑΝΟΝΙΚΗ"_s;
    }

    void powerLines()
    {
        QFETCH(PowerLine, p);
        QFETCH(int, version);
        QFETCH(QString, text);
        QCOMPARE(powerText(p, version), text);
    }

    void switchLines_data()
    {
        QTest::addColumn<OptInt>("value");
        QTest::addColumn<QString>("notification");
        QTest::addColumn<QString>("relay");

        QTest::newRow("0") << OptInt(0) << u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s
                           << u"ΔΙΑΚΟΠΤΗΣ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
        QTest::newRow("1") << OptInt(1) << u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s
                           << u"ΔΙΑΚΟΠΤΗΣ ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
        QTest::newRow("2") << OptInt(2) << u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s
                           << u"ΔΙΑΚΟΠΤΗΣ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
        QTest::newRow("3") << OptInt(3) << u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s
                           << u"ΔΙΑΚΟΠΤΗΣ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
        QTest::newRow("-1") << OptInt(-1) << u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s
                            << u"ΔΙΑΚΟΠΤΗΣ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
        QTest::newRow("missing") << OptInt() << u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s
                                 << u"ΔΙΑΚΟΠΤΗΣ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
    }

    void switchLines()
    {
        QFETCH(OptInt, value);
        QFETCH(QString, notification);
        QFETCH(QString, relay);
        QCOMPARE(notificationText(value), notification);
        QCOMPARE(relayText(value), relay);
    }

    void heading()
    {
        const QDateTime printed(QDate(2026, 11, 16), QTime(0, 7));
        const UnitInfo named{u"SX1"_s, u"1001"_s, u"Κεντρική"_s, 1, u"1.22"_s};
        const UnitCondition clock{0, 0, QDateTime(QDate(2026, 11, 16), QTime(22, 5))};
        QCOMPARE(headingText(named, clock, printed),
                 u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Κεντρική [1001] (SX1)\r\n"
                 u"Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ"_s);
        // Without the unit's clock the time of printing is shown.
        const UnitInfo unnamed{u"SX'2"_s, u"7"_s, u""_s, 0, {}};
        QCOMPARE(headingText(unnamed, UnitCondition{0, 0, {}}, printed),
                 u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Ανώνυμο σύστημα [7] (SX'2)\r\n"
                 u"Δευτέρα 16 Νοεμβρίου 2026 12:07 πμ"_s);
        QCOMPARE(headingText(UnitInfo{u"S"_s, {}, {}, 1, {}}, std::nullopt, printed),
                 u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Ανώνυμο σύστημα [] (S)\r\n"
                 u"Δευτέρα 16 Νοεμβρίου 2026 12:07 πμ"_s);
    }

    void faultTexts_data()
    {
        QTest::addColumn<QStringList>("pointFaults");
        QTest::addColumn<QStringList>("unitFaults");
        QTest::addColumn<QStringList>("lines");

        QTest::newRow("battery and clock ask for no service")
            << QStringList() << QStringList{u"3"_s, u"4"_s}
            << QStringList{u"ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s,
                           u"ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ"_s};
        QTest::newRow("a point fault first, service last")
            << QStringList{u"7"_s} << QStringList{u"3"_s, u"4"_s}
            << QStringList{u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 7"_s, u"ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s,
                           u"ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ"_s, kService};
        QTest::newRow("codes 5 to 8")
            << QStringList() << QStringList{u"5"_s, u"6"_s, u"7"_s, u"8"_s}
            << QStringList{u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 40"_s, u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 60"_s,
                           u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 70"_s, u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 50"_s,
                           kService};
        QTest::newRow("code 0 asks for service")
            << QStringList() << QStringList{u"0"_s}
            << QStringList{u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 10"_s, kService};
        QTest::newRow("unknown code prints nothing")
            << QStringList() << QStringList{u"9"_s} << QStringList();
        QTest::newRow("codes compared as text")
            << QStringList() << QStringList{u"03"_s, u" 3"_s, u"3 "_s} << QStringList();
    }

    void faultTexts()
    {
        QFETCH(QStringList, pointFaults);
        QFETCH(QStringList, unitFaults);
        QFETCH(QStringList, lines);
        QString expected;
        for (const QString& l : lines)
            expected += l + kCrLf;
        QCOMPARE(faultText(faults(pointFaults), faults(unitFaults)), expected);
    }

    void missingFaultInfo()
    {
        QCOMPARE(faultText({Fault{}}, {Fault{}}),
                 u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ \r\n"_s + kService + kCrLf);
    }

    void connectedUnitItems()
    {
        ReportData d = connectedUnit();
        d.points.append(point(2, u"Πόρτα"_s, 2, 1.0, 0, 0));
        d.powers.append(power(2, u"Δίκτυο"_s, 1, 1));
        const QStringList items = bodyItems(d);
        QCOMPARE(items, (QStringList{
                            u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Αποθήκη [1009] (SX9)\r\n"
                            u"Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ"_s,
                            kCrLf, u"[1] Ψυγείο    4.0 \u00B0C"_s, u"[2] Πόρτα    ΚΛΕΙΣΤΗ"_s, kCrLf,
                            u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ    ΚΑΝΟΝΙΚΗ"_s, u"[1] Δίκτυο    ΔΙΑΚΟΠΗ !"_s,
                            kCrLf, u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΕΝΕΡΓΟΠΟΙΗΜΕΝΗ"_s, kCrLf,
                            u"ΔΙΑΚΟΠΤΗΣ ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s, kCrLf, u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ:"_s,
                            u"OK"_s, kCrLf, kCrLf, kCrLf, kCrLf}));
    }

    void versionOfTheUnitDecidesThePowerText()
    {
        ReportData d = connectedUnit();
        d.powers = {power(2, u"Δ"_s, 1, 0)};
        d.unit->softver = u"1.21"_s;
        QVERIFY(bodyItems(d).contains(u"[1] Δ    ΔΙΑΚΟΠΗ"_s));
        d.unit->softver = u"1.22"_s;
        QVERIFY(bodyItems(d).contains(u"[1] Δ    ΚΑΝΟΝΙΚΗ !"_s));
        // Unreadable versions count as old.
        d.unit->softver = u"122"_s;
        QVERIFY(bodyItems(d).contains(u"[1] Δ    ΔΙΑΚΟΠΗ"_s));
    }

    void faultsUnderTheStatusLine()
    {
        ReportData d = connectedUnit();
        d.hasFaults = true;
        d.unitFaults = faults({u"9"_s});
        // A fault the table does not know still replaces "OK", by an empty item.
        QStringList items = bodyItems(d);
        const qsizetype status = items.indexOf(u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ:"_s);
        QCOMPARE(items.at(status + 1), QString());
        QVERIFY(!items.contains(u"OK"_s));
        d.pointFaults = faults({u"4"_s});
        items = bodyItems(d);
        QCOMPARE(items.at(status + 1), u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 4\r\n"_s + kService + kCrLf);
    }

    void unitNotConnected_data()
    {
        QTest::addColumn<OptInt>("online");
        QTest::addColumn<QString>("line");

        const QString unreachable = u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΘΙΑΘΕΣΙΜΗ"_s;
        QTest::newRow("0") << OptInt(0) << unreachable;
        QTest::newRow("3") << OptInt(3) << unreachable;
        QTest::newRow("missing") << OptInt() << unreachable;
        QTest::newRow("2") << OptInt(2) << u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s;
    }

    void unitNotConnected()
    {
        QFETCH(OptInt, online);
        QFETCH(QString, line);
        ReportData d = connectedUnit();
        d.unit->online = online;
        d.hasFaults = true;
        const QStringList items = bodyItems(d);
        QCOMPARE(items.size(), 7);
        QVERIFY(items.at(0).startsWith(u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: "_s));
        QCOMPARE(items.at(1), kCrLf);
        QCOMPARE(items.at(2), line);
        QCOMPARE(items.mid(3), (QStringList{kCrLf, kCrLf, kCrLf, kCrLf}));
    }

    void missingUnitPrintsNothingBetweenTheBanners()
    {
        ReportData d = connectedUnit();
        d.unit.reset();
        QCOMPARE(bodyItems(d), QStringList());
        QCOMPARE(placeLines({}, 17.3, 4.0, 270.0).endY, 17.0);
    }

    void itemsToLines()
    {
        QCOMPARE(itemLines({u"a"_s, kCrLf, u"b\r\nc\r\n"_s, u""_s}),
                 (QStringList{u"a"_s, u""_s, u""_s, u"b"_s, u"c"_s, u""_s, u""_s}));
    }

    void pageBreaks()
    {
        const QStringList lines{u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"6"_s, u"7"_s};
        // Five lines of 4 mm fit between 20 and 40 mm; the sixth starts a new page.
        const PageLayout layout = placeLines(lines, 20.0, 4.0, 40.0);
        QCOMPARE(layout.lines.size(), 7);
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(layout.lines.at(i).page, 0);
            QCOMPARE(layout.lines.at(i).y, 20.0 + 4.0 * i);
        }
        QCOMPARE(layout.lines.at(5).page, 1);
        QCOMPARE(layout.lines.at(5).y, 0.0);
        QCOMPARE(layout.lines.at(6).y, 4.0);
        QCOMPARE(layout.endPage, 1);
        QCOMPARE(layout.endY, 8.0);
        QCOMPARE(layout.pages, 2);
    }

    void endLine_data()
    {
        QTest::addColumn<int>("lineCount");
        QTest::addColumn<double>("startY");
        QTest::addColumn<int>("endPage");
        QTest::addColumn<double>("endY");

        // 3.3 mm lines on a 40 mm page: the box needs the line and 1 mm more.
        QTest::newRow("rounded up") << 2 << 10.0 << 0 << 17.0;             // 16.6 -> 17
        QTest::newRow("rounded down") << 1 << 10.0 << 0 << 13.0;           // 13.3 -> 13
        QTest::newRow("fits") << 1 << 31.8 << 0 << 35.0;                   // 35.1 -> 35, 39.3
        QTest::newRow("rounding pushes it over") << 1 << 32.4 << 1 << 0.0; // 35.7 -> 36, 40.3
        QTest::newRow("to the next page") << 2 << 29.0 << 1 << 0.0;        // 35.6 -> 36
    }

    void endLine()
    {
        QFETCH(int, lineCount);
        QFETCH(double, startY);
        QFETCH(int, endPage);
        QFETCH(double, endY);
        QStringList lines;
        for (int i = 0; i < lineCount; ++i)
            lines << u"x"_s;
        const PageLayout layout = placeLines(lines, startY, 3.3, 40.0);
        QCOMPARE(layout.endPage, endPage);
        QCOMPARE(layout.endY, endY);
    }
};

QTEST_APPLESS_MAIN(TestCurrentReportLayout)
#include "tst_currentreportlayout.moc"
