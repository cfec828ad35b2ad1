#include "../current/CurrentSeed.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "SkipOrFail.h"
#include "views/current/CurrentPrint.h"

#include <QFile>
#include <QPrinter>
#include <QStandardPaths>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

class TestCurrentReport : public QObject {
    Q_OBJECT

    std::unique_ptr<GuiFixture> fx;

private slots:
    void initTestCase()
    {
        fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*fx);
        if (QStandardPaths::findExecutable(u"pdftotext"_s).isEmpty())
            SX_SKIP_OR_FAIL("pdftotext is not installed");
        CurrentSeed s(fx->db);
        // Units: serial, version, clock, name; SXR2 is older, without clock or name.
        for (const auto& [serial, softver, rtc, name] :
             {std::tuple{u"SXR1"_s, u"'1.22'"_s, u"'2026-11-16 22:05:00'"_s, u"Κεντρική αποθήκη"_s},
              {u"SXR2"_s, u"'1.21'"_s, u"NULL"_s, QString()},
              {u"SXLONG"_s, u"'1.22'"_s, u"'2026-11-16 09:30:00'"_s, u"Πολλά προβλήματα"_s}})
            QVERIFY(s.unit(serial, name, u"1"_s, softver, u"'2001'"_s) &&
                    s.condition(serial, u"2"_s, u"1"_s, rtc));
        // SXR1's points: number, type, value, out of limits, not powered, used, name.
        for (const QString& p :
             {u"1 0 4.04 0 0 1 'Ψυγείο'"_s, u"2 2 1 0 0 1 'Πόρτα'"_s, u"3 3 35.5 1 1 1 ''"_s,
              u"4 0 1 0 0 0 'Εκτός χρήσης'"_s, u"5 3 35.5 1 0 1 'Πίεση'"_s}) {
            const QStringList f = p.split(u' ');
            QVERIFY(s.point(u"SXR1"_s, f[0].toInt(), f.mid(6).join(u' '), f[1], f[5], u"NULL"_s,
                            u"NULL"_s) &&
                    s.pointCondition(u"SXR1"_s, f[0].toInt(), f[2], f[3], u"0"_s, f[4]));
        }
        // Power inputs: serial, number, fault and cut, used, name.
        for (const QString& p :
             {u"SXR1 1 0 1 'Κύρια'"_s, u"SXR1 2 1 1 'Δίκτυο Α'"_s, u"SXR1 3 1 0 'Αχρησιμοποίητο'"_s,
              u"SXR1 4 0 1 ''"_s, u"SXR2 2 1 1 'Δίκτυο Β'"_s}) {
            const QStringList f = p.split(u' ');
            QVERIFY(s.power(f[0], f[1].toInt(), f.mid(4).join(u' '), f[3]) &&
                    s.powerCondition(f[0], f[1].toInt(), f[2], f[2]));
        }
        QVERIFY(s.fault(u"SXR1"_s, 0, u"4"_s) && s.fault(u"SXR1"_s, 0, u"3"_s) &&
                s.fault(u"SXR1"_s, 1, u"3"_s));
        // Enough point faults for a second page.
        for (int i = 10; i < 90; ++i)
            QVERIFY(s.fault(u"SXLONG"_s, 1, QString::number(i)));
    }

    void cleanup()
    {
        if (fx) {
            QVERIFY2(!fx->dialogs.anyUnexpected(), "a dialog without a scripted answer");
            QCOMPARE(fx->dialogs.messages().size(), 0);
            fx->dialogs.clearShown();
        }
    }

    // Every unit's report read back whole: the lines of all pages in order, "|" between them,
    // the title once.
    void printedLines_data()
    {
        QTest::addColumn<QString>("serial");
        QTest::addColumn<int>("pageCount");
        QTest::addColumn<QString>("lines");
        const QString head = u"SENTORAX Monitor / ΑΝΑΦΟΡΑ ΤΡΕΧΟΥΣΑΣ ΚΑΤΑΣΤΑΣΗΣ ΣΥΣΤΗΜΑΤΟΣ|"_s;
        const QString switches = u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)|"
                                 u"ΔΙΑΚΟΠΤΗΣ ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ|ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ:|"_s;
        const QString end = u"* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *|ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s;
        QTest::newRow("connected, with faults")
            << u"SXR1"_s << 1
            << head +
                   u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Κεντρική αποθήκη [2001] (SXR1)|"
                   u"Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ|[1] Ψυγείο 4.0 °C|[2] Πόρτα ΚΛΕΙΣΤΗ|"
                   u"[3] Ανώνυμη ζώνη ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ|[5] Πίεση 35.5 bar !|"
                   u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ ΚΑΝΟΝΙΚΗ|[1] Δίκτυο Α ΔΙΑΚΟΠΗ !|"
                   u"[3] Ανώνυμη ζώνη ΚΑΝΟΝΙΚΗ|"_s +
                   switches +
                   u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 3|ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ|"
                   u"ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ|"_s +
                   end;
        // No clock: the time of printing stands in. 1.21: the cut from the fault flag alone.
        QTest::newRow("older unit without clock or name")
            << u"SXR2"_s << 1
            << head +
                   u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Ανώνυμο σύστημα [2001] (SXR2)|"
                   u"Τρίτη 17 Νοεμβρίου 2026 9:00 πμ|[1] Δίκτυο Β ΔΙΑΚΟΠΗ|"_s +
                   switches + u"OK|ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s;
        QTest::newRow("missing unit: the banners only")
            << u"NO-SUCH"_s << 1 << head + u"ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s;
        // The fault list runs on where it stopped, without a second title.
        QString longList = head +
                           u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Πολλά προβλήματα [2001] (SXLONG)|"
                           u"Δευτέρα 16 Νοεμβρίου 2026 9:30 πμ|"_s +
                           switches;
        for (int i = 10; i < 90; ++i)
            longList += u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ %1|"_s.arg(i);
        QTest::newRow("long fault list, two pages") << u"SXLONG"_s << 2 << longList + end;
    }
    void printedLines()
    {
        QFETCH(QString, serial);
        fx->setNow(QDateTime(QDate(2026, 11, 17), QTime(9, 0)));
        // Printed on A4 portrait whatever the dialog said.
        const QString path = fx->scratch.folder() + u"/a3.pdf"_s;
        fx->dialogs.answerPrint(true, [path](QPrinter& printer) {
            setUpPdf(printer, path);
            printer.setPageSize(QPageSize(QPageSize::A3));
            printer.setPageOrientation(QPageLayout::Landscape);
        });
        printCurrentCondition(fx->ctx, nullptr, serial);
        const QString info = toolOutput(u"pdfinfo"_s, {path});
        QVERIFY2((info.contains(u" x 841.89 pts (A4)"_s) || info.contains(u" x 842 pts (A4)"_s)) &&
                     info.contains(u"Page rot:        0"_s),
                 qPrintable(info));
        const QList<QStringList> pages = pdfLines(path);
        QTEST(int(pages.size()), "pageCount");
        QStringList all;
        for (const QStringList& page : pages)
            all += page;
        QTEST(all.join(u'|'), "lines");
        if (all.size() <= 2)
            return;
        // The body starts where the banners do, 10 mm into the printable area.
        QPrinter pdf(QPrinter::HighResolution);
        pdf.setOutputFormat(QPrinter::PdfFormat);
        pdf.setPageSize(QPageSize(QPageSize::A4));
        const double printableLeft = pdf.pageLayout().margins(QPageLayout::Millimeter).left();
        for (const QString& word : {u"ΠΛΗΡΟΦΟΡΙΕΣ"_s, u"ΚΑΤΑΣΤΑΣΗ"_s}) {
            const double left = pdfBox(path, word).left();
            QVERIFY2(qAbs(left - printableLeft - 10.0) < 0.5, qPrintable(QString::number(left)));
        }
    }

    // Nothing printed: the printer choice cancelled (no box), a file that cannot be
    // written, a failed read (last: it breaks a table).
    void printsNothing_data()
    {
        QTest::addColumn<QString>("failure");
        for (const char* f : {"cancelled", "unwritable", "failed read"})
            QTest::newRow(f) << QString::fromLatin1(f);
    }
    void printsNothing()
    {
        QFETCH(QString, failure);
        const QString path = failure == u"unwritable" ? u"/nonexistent-folder/x.pdf"_s
                                                      : fx->answerPdf(failure != u"cancelled");
        if (failure == u"unwritable")
            fx->dialogs.answerPrint(true, [path](QPrinter& p) { setUpPdf(p, path); });
        if (failure == u"failed read")
            QVERIFY(fx->exec(u"DROP TABLE Powermonitoring_Current_Condit"_s));
        printCurrentCondition(fx->ctx, nullptr, u"SXR1"_s);
        QVERIFY(!QFile::exists(path));
        const auto messages = fx->dialogs.messages();
        QCOMPARE(fx->dialogs.shown().size(), messages.size() + 1); // the printer choice first
        QCOMPARE(messages.size(), failure == u"cancelled" ? 0 : 1);
        if (!messages.isEmpty())
            QCOMPARE(messages.at(0).icon, DialogService::Icon::Critical);
        QCOMPARE(fx->failures->reportsShown(), failure == u"failed read" ? 1 : 0);
        fx->dialogs.clearShown();
    }
};

QTEST_MAIN(TestCurrentReport)
#include "tst_currentreport.moc"
