#include "../current/CurrentSeed.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "model/Formatting.h"
#include "views/current/CurrentReport.h"

#include <QFile>
#include <QPrinter>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

class TestCurrentReport : public QObject {
    Q_OBJECT

    std::unique_ptr<GuiFixture> fx;

    // Prints the report of a unit to a PDF file and returns its path (empty: none written).
    QString print(const QString& serial)
    {
        const QString path = fx->answerPdf();
        printCurrentCondition(fx->ctx, nullptr, serial);
        return QFile::exists(path) ? path : QString();
    }

    static QString title()
    {
        return u"SENTORAX Monitor / ΑΝΑΦΟΡΑ ΤΡΕΧΟΥΣΑΣ ΚΑΤΑΣΤΑΣΗΣ ΣΥΣΤΗΜΑΤΟΣ"_s;
    }

private slots:
    void initTestCase()
    {
        fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*fx);
        if (QStandardPaths::findExecutable(u"pdftotext"_s).isEmpty())
            QSKIP("pdftotext is not installed");
        CurrentSeed s(fx->db);
        const auto n = [](double v) { return QString::number(v); };
        const auto addUnit = [&](const QString& serial, const QString& name, int online,
                                 const QString& softver, const QString& rtc) {
            QVERIFY(s.unit(serial, name, n(online), sqlQuote(softver), u"'2001'"_s));
            QVERIFY(s.condition(serial, u"2"_s, u"1"_s, rtc));
        };
        const auto addPoint = [&](const QString& serial, int p, const QString& name, int type,
                                  double value, int out, int notPowered, int used = 1) {
            QVERIFY(s.point(serial, p, sqlQuote(name), n(type), n(used), u"NULL"_s, u"NULL"_s));
            QVERIFY(s.pointCondition(serial, p, n(value), n(out), u"0"_s, n(notPowered)));
        };
        const auto addPower = [&](const QString& serial, int p, const QString& name, int fault,
                                  int condition, int used = 1) {
            QVERIFY(s.power(serial, p, sqlQuote(name), n(used)));
            QVERIFY(s.powerCondition(serial, p, n(fault), n(condition)));
        };
        const auto addFault = [&](const QString& serial, int type, const QString& info) {
            QVERIFY(s.fault(serial, type, info));
        };

        addUnit(u"SXR1"_s, u"Κεντρική αποθήκη"_s, 1, u"1.22"_s, u"'2026-11-16 22:05:00'"_s);
        addPoint(u"SXR1"_s, 1, u"Ψυγείο"_s, 0, 4.04, 0, 0);
        addPoint(u"SXR1"_s, 2, u"Πόρτα"_s, 2, 1, 0, 0);
        addPoint(u"SXR1"_s, 3, QString(), 3, 35.5, 1, 1);
        addPoint(u"SXR1"_s, 4, u"Εκτός χρήσης"_s, 0, 1, 0, 0, 0);
        addPoint(u"SXR1"_s, 5, u"Πίεση"_s, 3, 35.5, 1, 0);
        addPower(u"SXR1"_s, 1, u"Κύρια"_s, 0, 0);
        addPower(u"SXR1"_s, 2, u"Δίκτυο Α"_s, 1, 1);
        addPower(u"SXR1"_s, 3, u"Αχρησιμοποίητο"_s, 1, 1, 0);
        addPower(u"SXR1"_s, 4, QString(), 0, 0);
        addFault(u"SXR1"_s, 0, u"4"_s);
        addFault(u"SXR1"_s, 0, u"3"_s);
        addFault(u"SXR1"_s, 1, u"3"_s);

        addUnit(u"SXR2"_s, QString(), 1, u"1.21"_s, u"NULL"_s);
        addPower(u"SXR2"_s, 2, u"Δίκτυο Β"_s, 1, 1);

        // Enough point faults for a second page.
        addUnit(u"SXLONG"_s, u"Πολλά προβλήματα"_s, 1, u"1.22"_s, u"'2026-11-16 09:30:00'"_s);
        for (int i = 10; i < 90; ++i)
            addFault(u"SXLONG"_s, 1, QString::number(i));
    }

    void cleanup()
    {
        if (fx) {
            QVERIFY2(!fx->dialogs.anyUnexpected(), "a dialog without a scripted answer");
            QCOMPARE(fx->dialogs.messages().size(), 0);
            fx->dialogs.clearShown();
        }
    }

    void connectedUnitWithFaults()
    {
        const QString path = print(u"SXR1"_s);
        QVERIFY(!path.isEmpty());
        const QList<QStringList> pages = pdfLines(path);
        QCOMPARE(pages.size(), 1);
        QCOMPARE(pages.at(0),
                 (QStringList{title(), u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Κεντρική αποθήκη [2001] (SXR1)"_s,
                              u"Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ"_s, u"[1] Ψυγείο 4.0 °C"_s,
                              u"[2] Πόρτα ΚΛΕΙΣΤΗ"_s, u"[3] Ανώνυμη ζώνη ΕΚΤΟΣ ΛΕΙΤΟΥΡΓΕΙΑΣ"_s,
                              u"[5] Πίεση 35.5 bar !"_s, u"ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ ΚΑΝΟΝΙΚΗ"_s,
                              u"[1] Δίκτυο Α ΔΙΑΚΟΠΗ !"_s, u"[3] Ανώνυμη ζώνη ΚΑΝΟΝΙΚΗ"_s,
                              u"ΤΗΛΕΦΩΝΙΚΗ ΕΙΔΟΠΟΙΗΣΗ ΑΥΤΟΜΑΤΗ (ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΗ)"_s,
                              u"ΔΙΑΚΟΠΤΗΣ ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s, u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ:"_s,
                              u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 3"_s, u"ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s,
                              u"ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ"_s,
                              u"* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *"_s, u"ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s}));
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

    void olderUnitWithoutClockOrName()
    {
        const QDateTime before = fx->clock.now();
        const QString path = print(u"SXR2"_s);
        const QDateTime after = fx->clock.now();
        const QList<QStringList> pages = pdfLines(path);
        QCOMPARE(pages.size(), 1);
        const QStringList lines = pages.at(0);
        QCOMPARE(lines.value(1), u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Ανώνυμο σύστημα [2001] (SXR2)"_s);
        // The time of printing stands in for the unit's clock.
        const QStringList allowed{greekDateTime(before, true), greekDateTime(after, true)};
        QVERIFY2(allowed.contains(lines.value(2)), qPrintable(lines.value(2)));
        // 1.21: the cut comes from the fault flag alone, without the mark.
        QVERIFY(lines.contains(u"[1] Δίκτυο Β ΔΙΑΚΟΠΗ"_s));
        QCOMPARE(lines.mid(lines.indexOf(u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ:"_s)),
                 (QStringList{u"ΚΑΤΑΣΤΑΣΗ ΣΥΣΤΗΜΑΤΟΣ:"_s, u"OK"_s, u"ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s}));
    }

    void missingUnitPrintsTheBannersOnly()
    {
        const QList<QStringList> pages = pdfLines(print(u"NO-SUCH"_s));
        QCOMPARE(pages, QList<QStringList>{(QStringList{title(), u"ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s})});
    }

    void longFaultListRunsOntoASecondPage()
    {
        const QString path = print(u"SXLONG"_s);
        const QList<QStringList> pages = pdfLines(path);
        QCOMPARE(pages.size(), 2);
        // No title repeated on the second page; the list goes on where it stopped.
        QVERIFY(!pages.at(1).contains(title()));
        const QStringList all = pages.at(0) + pages.at(1);
        QStringList faultLines;
        for (const QString& l : all) {
            const QString prefix = u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ "_s;
            if (l.startsWith(prefix))
                faultLines << l.mid(prefix.size());
        }
        QStringList expected;
        for (int i = 10; i < 90; ++i)
            expected << QString::number(i);
        QCOMPARE(faultLines, expected);
        QCOMPARE(pages.at(1).last(), u"ΤΕΛΟΣ ΑΝΑΦΟΡΑΣ"_s);
    }

    void printedOnA4PortraitWhateverTheDialogSaid()
    {
        const QString path = fx->scratch.folder() + u"/a3.pdf"_s;
        fx->dialogs.answerPrint(true, [path](QPrinter& printer) {
            setUpPdf(printer, path);
            printer.setPageSize(QPageSize(QPageSize::A3));
            printer.setPageOrientation(QPageLayout::Landscape);
        });
        printCurrentCondition(fx->ctx, nullptr, u"SXR1"_s);
        const QString info = toolOutput(u"pdfinfo"_s, {path});
        static const QRegularExpression size(uR"(Page size:\s+([\d.]+) x ([\d.]+) pts \(A4\))"_s);
        const auto m = size.match(info);
        QVERIFY2(m.hasMatch(), qPrintable(info));
        QVERIFY(m.captured(1).toDouble() < m.captured(2).toDouble());
        QVERIFY(info.contains(u"Page rot:        0"_s));
    }

    void cancelledPrinterChoicePrintsNothing()
    {
        const QString path = fx->answerPdf(false);
        printCurrentCondition(fx->ctx, nullptr, u"SXR1"_s);
        QVERIFY(!QFile::exists(path));
        QCOMPARE(fx->dialogs.shown().size(), 1);
    }

    void unwritableOutputIsReported()
    {
        fx->dialogs.answerPrint(true,
                                [](QPrinter& p) { setUpPdf(p, u"/nonexistent-folder/x.pdf"_s); });
        printCurrentCondition(fx->ctx, nullptr, u"SXR1"_s);
        const auto messages = fx->dialogs.messages();
        QCOMPARE(messages.size(), 1);
        QCOMPARE(messages.at(0).icon, DialogService::Icon::Critical);
        fx->dialogs.clearShown();
    }

    // Last: it breaks a table.
    void failedQueryPrintsNothing()
    {
        QVERIFY(fx->exec(u"DROP TABLE Powermonitoring_Current_Condit"_s));
        const QString path = print(u"SXR1"_s);
        QVERIFY(path.isEmpty());
        QCOMPARE(fx->dialogs.messages().size(), 1);
        QCOMPARE(fx->failures->reportsShown(), 1);
        fx->dialogs.clearShown();
    }
};

QTEST_MAIN(TestCurrentReport)
#include "tst_currentreport.moc"
