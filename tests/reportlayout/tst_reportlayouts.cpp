#include "model/report/EventsReportLayout.h"
#include "model/report/MarkedPointsLayout.h"
#include "model/report/RecordsReportLayout.h"

#include <QTest>

#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;

// Where the archive reports put their entries, and what their headings say.
class TestReportLayouts : public QObject {
    Q_OBJECT

private slots:
    void layoutCountsPagesAsTheRuleSays_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<double>("height");
        QTest::addColumn<double>("line");
        QTest::addColumn<int>("perColumn");
        QTest::addColumn<int>("pages");
        // Height 245, line 4: lines at 35, 39, ... the 50th ends exactly at the limit 235.
        QTest::newRow("none") << 0 << 245.0 << 4.0 << 50 << 1;
        QTest::newRow("one full column") << 50 << 245.0 << 4.0 << 50 << 1;
        QTest::newRow("four full columns") << 200 << 245.0 << 4.0 << 50 << 1;
        QTest::newRow("one more") << 201 << 245.0 << 4.0 << 50 << 2;
        QTest::newRow("eight full columns") << 400 << 245.0 << 4.0 << 50 << 2;
        QTest::newRow("a third page") << 401 << 245.0 << 4.0 << 50 << 3;
        QTest::newRow("just short of a line") << 10 << 244.99 << 4.0 << 49 << 1;
        QTest::newRow("no room at all") << 3 << 40.0 << 4.0 << 1 << 1;
    }

    void layoutCountsPagesAsTheRuleSays()
    {
        QFETCH(int, rows);
        QFETCH(double, height);
        QFETCH(double, line);
        const records_report::Layout l = records_report::layoutRows(rows, height, line);
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
};

QTEST_GUILESS_MAIN(TestReportLayouts)
#include "tst_reportlayouts.moc"
