#include "ChooseItem.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "RecordsSeed.h"
#include "ScrollBarPart.h"
#include "model/graph/GraphRules.h"
#include "shell/SecondaryViews.h"
#include "ui/UnitList.h"
#include "views/graph/GraphWindow.h"
#include "views/records/RecordsWindow.h"

#include <QApplication>
#include <QFile>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

// A mouse move straight to the widget: QTest's moves go through the
// platform's cursor, which the offscreen platform does not always report.
void sendMove(QWidget* w, QPoint p, Qt::MouseButtons buttons = Qt::NoButton)
{
    QMouseEvent move(QEvent::MouseMove, QPointF(p), w->mapToGlobal(QPointF(p)), Qt::NoButton,
                     buttons, Qt::NoModifier);
    QApplication::sendEvent(w, &move);
}

// The colour within a pixel of p: aliased lines land on either side of a half pixel.
bool colourNear(const QPixmap& pixmap, QPointF p, const QColor& colour)
{
    const QImage image = pixmap.toImage();
    const QPoint at(int(std::floor(p.x())), int(std::floor(p.y())));
    for (int i = 0; i < 9; ++i)
        if (image.pixelColor(at + QPoint(i % 3 - 1, i / 3 - 1)) == colour)
            return true;
    return false;
}

} // namespace

// The graph window over a records window on a real database.
class TestGraphWindow : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        RecordsSeed s(m_fx->db);
        QVERIFY(s.unit(u"A-100"_s, u"Alpha"_s));
        QVERIFY(s.zone(u"A-100"_s,
                       {.number = 1, .name = u"'Ψυγείο'"_s, .maxLimit = 25, .minLimit = 10}));
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
    }
    void cleanup()
    {
        m_w.reset();
        m_fx.reset();
    }

    void openingChecksTheSelection_data()
    {
        // Records of 3 March oldest first, "time value [type]"; all of them selected.
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("selectedRow"); // the grid row selected alone, -1: selection kept
        // Grid rows newest first: the offending record is row 1.
        QTest::newRow("mixed types, offending row alone")
            << QStringList{u"10:00:00 12"_s, u"10:05:00 14"_s, u"10:09:00 13 3"_s, u"10:12:00 11"_s}
            << u"Εντοπίστηκε ασυμφωνία μεταξύ του τύπου δεδομένων των καταγραφών που έχετε "
               u"επιλέξει.\r\nΠαρακαλώ επιλέξτε καταγραφές μόνο ιδίου τύπου."_s
            << 1;
        QTest::newRow("time reversal, offending row alone")
            << QStringList{u"10:00:00 12"_s, u"10:05:00 14"_s, u"10:03:00 13"_s, u"10:12:00 11"_s}
            << u"Εντοπίστηκε ανάστροφη χρονική μετάβαση στις καταγραφές που έχετε "
               u"επιλέξει.\r\nΠαρακαλώ ξαναπροσπαθήστε."_s
            << 1;
        QTest::newRow("contact input")
            << QStringList{u"10:00:00 1 2"_s, u"10:05:00 0 2"_s}
            << u"Δεν είναι δυνατόν να παραχθεί γράφημα από τον τύπο δεδομένων των καταγραφών "
               u"που έχετε επιλέξει."_s
            << -1;
        QTest::newRow("two records in one minute")
            << QStringList{u"10:00:05 12"_s, u"10:00:55 14"_s}
            << u"Παρακαλώ επιλέξτε περισσότερες από μία καταγραφές !"_s << -1;
    }
    void openingChecksTheSelection()
    {
        QFETCH(QStringList, rows);
        QFETCH(QString, message);
        QFETCH(int, selectedRow);
        RecordsSeed s(m_fx->db);
        for (int i = 0; i < rows.size(); ++i) {
            const QStringList f = rows[i].split(u' ');
            QVERIFY(s.record(u"A-100"_s, 1, u"2026-03-03 "_s + f[0], f[1].toDouble(),
                             f.value(2, u"0"_s).toInt(), i + 1));
        }
        openRecords();
        const int last = int(rows.size()) - 1;

        QVERIFY(!openGraphOn(0, last));
        expectMessage(u"Γράφημα / "_s + message, DialogService::Icon::Exclamation);
        QCOMPARE(m_w->selectedRows(),
                 (selectedRow < 0 ? std::pair{0, last} : std::pair{selectedRow, selectedRow}));
    }
    void opensOnTheSelectionThenZoomsInAndOut()
    {
        GraphWindow* g = openSeries();
        QVERIFY(g && g->isVisible() && m_fx->dialogs.messages().isEmpty());
        QCOMPARE(g->windowModality(), Qt::ApplicationModal);
        QCOMPARE(g->windowTitle(), u"SENTORAX Monitor / Γράφημα (ΣΥΣΤΗΜΑ:"_s + m_w->unitText() +
                                       u" , ΖΩΝΗ ΠΑΡΑΚΟΛΟΥΘΗΣΗΣ:[1] Ψυγείο)"_s);
        // From minute 1800 over the full value range.
        const graph::GraphView full{at(u"2026-03-03 06:00:00"_s), 199, 0.0f, 30.0f};
        QCOMPARE(g->state().view, full);
        QCOMPARE((QStringList{g->unitLabel(), g->maxLimitLabel(), g->minLimitLabel()}),
                 (QStringList{u" °C"_s, u"25.0"_s, u"10.0"_s}));
        QVERIFY(g->markerList().isEmpty() && g->chartOption()->isChecked());

        // Green data line, the red dashed maximum, the frame; white inside.
        const QPixmap pic = g->chart()->pixmap();
        bool red = false;
        for (int dx = 0; dx < 12 && !red; ++dx)
            red = colourNear(pic, g->pixelOf({100, 25}) + QPointF(dx, 0), QColor(255, 0, 0));
        QVERIFY(red);
        QVERIFY(colourNear(pic, g->pixelOf({0, 30}), QColor(Qt::black)));
        int green = 0;
        const QImage image = pic.toImage();
        for (int y = 0; y < image.height(); ++y)
            green += image.pixelColor(image.width() / 2, y) == QColor(0, 128, 0);
        QVERIFY(green > 0);
        QCOMPARE(image.pixelColor(g->pixelOf({100, 2}).toPoint()), QColor(Qt::white));

        // The cursor reads the nearest record (series minute 1900: 1900 % 37 = 13) without
        // repainting the chart; below the values shown nothing changes.
        int paints = g->chartPaints();
        const QPoint cursor = g->pixelOf({100, 15}).toPoint();
        sendMove(g->chart(), cursor);
        QCOMPARE(g->timeReadout() + u" | "_s + g->valueReadout(),
                 u"03/03/2026 - 07:40 | 11.5 °C"_s);
        QCOMPARE(g->chart()->cursorLine().value_or(-1), double(cursor.x()));
        sendMove(g->chart(), QPoint(g->chart()->width() / 2, g->chart()->height() + 5));
        QCOMPARE(g->timeReadout(), u"03/03/2026 - 07:40"_s);
        QCOMPARE(g->chartPaints(), paints);

        zoomOut(g);
        QCOMPARE(g->state().view, full);
        QCOMPARE(g->chartPaints(), paints);

        dragFromTo(g, {150.2, 7.6}, {50.3, 22.4});
        const graph::GraphView zoomed{full.startSecs + 50 * 60, 100, 7.0f, 23.0f};
        QCOMPARE(g->state().view, zoomed);
        QCOMPARE(g->chartPaints(), ++paints);
        QVERIFY(m_fx->ctx.graphZoomed);
        QVERIFY(g->state().markers.empty() && !g->chart()->rubberBand());
        QCOMPARE(g->hScroll()->value(), 50);
        // A drag within one minute zooms nowhere.
        dragFromTo(g, {40.1, 20}, {40.3, 10});
        QCOMPARE(g->state().view, zoomed);

        // The bars move the view (their sums are tst_graphrules' part): a step is one
        // minute; the top arrow lifts the values, the bottom one lowers them.
        g->hScroll()->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        QTest::mouseClick(g->vScroll(), Qt::LeftButton, {},
                          scrollBarPart(g->vScroll(), QStyle::SC_ScrollBarSubLine).center());
        QCOMPARE(g->state().view, (graph::GraphView{zoomed.startSecs + 60, 100, 8.0f, 24.0f}));
        g->hScroll()->triggerAction(QAbstractSlider::SliderSingleStepSub);
        QTest::mouseClick(g->vScroll(), Qt::LeftButton, {},
                          scrollBarPart(g->vScroll(), QStyle::SC_ScrollBarAddLine).center());
        QCOMPARE(g->state().view, zoomed);

        // Usable on a 1280 x 800 screen; smaller, it redraws the same view and value scale.
        QVERIFY(g->frameGeometry().width() <= 1280 && g->frameGeometry().height() <= 800);
        paints = g->chartPaints();
        g->resize(g->width() - 200, g->height() - 100);
        QTRY_COMPARE(g->chart()->pixmap().size(), g->chart()->size());
        QVERIFY(g->chartPaints() > paints);
        QCOMPARE(g->state().view, zoomed);
        QVERIFY(colourNear(g->chart()->pixmap(), g->pixelOf({0, 23}), QColor(Qt::black)));

        // Twice around the centre: 50 - 50 = 0, then bounded by the full range (zooming out
        // of the full view is tst_graphrules' "already full" row).
        zoomOut(g);
        QCOMPARE(g->state().view, full);
        QCOMPARE(g->hScroll()->maximum(), 0);
        // The zoom is the application's: a graph opened again zooms out without one.
        GraphWindow* again = openGraphOn(0, 199);
        paints = again->chartPaints();
        zoomOut(again);
        QCOMPARE(again->chartPaints(), paints + 1);
    }
    // Markers cycle their colours, stop at 255, print and are deleted; the chart prints too.
    void markersCycleColoursStopAt255PrintAndAreDeleted()
    {
        GraphWindow* g = openSeries();
        QVERIFY(g);
        const int paints = g->chartPaints();
        g->markedOption()->setChecked(true);

        QVERIFY(!QFile::exists(printTo(g)));
        expectMessage(u"SENTORAX Monitor / Δέν υπάρχουν μαρκαρισμένα σημεία !"_s,
                      DialogService::Icon::Information);
        QCOMPARE(m_fx->dialogs.pendingAnswers(), 1);
        m_fx->dialogs = ScriptedDialogs();

        // Nine markers ten minutes apart: colours 0..6, then 0 and 1 again.
        for (int k = 1; k <= 9; ++k)
            clickAt(g, {k * 20.0, 15});
        QCOMPARE(g->state().markers.size(), size_t(9));
        QCOMPARE(g->chartPaints(), paints);
        // Below every value of the data line only the marker lines are there: the second in
        // navy, the eighth black again (the cycle is tst_graphrules' part).
        QVERIFY(colourNear(g->chart()->pixmap(), g->pixelOf({40.0, 2}), QColor(0, 0, 128)));
        QVERIFY(colourNear(g->chart()->pixmap(), g->pixelOf({160.0, 2}), QColor(Qt::black)));

        const QString list = g->markerList();
        QVERIFY(list.startsWith(u"Χρόνος μαρκαρισμένου σημείου 9: 03/03/2026 - 09:00\r\n"
                                u"Ένδειξη μαρκαρισμένου σημείου 9: "_s));
        QVERIFY(list.endsWith(u"Χρόνος μαρκαρισμένου σημείου 1: 03/03/2026 - 06:20\r\n"
                              u"Ένδειξη μαρκαρισμένου σημείου 1: 8.5 °C\r\n\r\n"_s));
        QVERIFY(g->findChild<QPlainTextEdit*>(u"Text1"_s)
                    ->toPlainText()
                    .startsWith(u"Χρόνος μαρκαρισμένου σημείου 9"_s));

        // Markers out of the view keep their numbers and colours.
        dragFromTo(g, {150.2, 29.5}, {50.3, 0.5});
        // Marker 3 (minute 60) is at minute 10 of the view; marker 1 (minute 20) is outside.
        QCOMPARE(g->state().view.startSecs, g->state().fullStartSecs + 50 * 60);
        QVERIFY(colourNear(g->chart()->pixmap(), g->pixelOf({10.0, 2}), QColor(0, 128, 0)));
        zoomOut(g);

        // Up to 255; the next one is refused with a message and nothing else.
        for (int k = 10; k <= 255; ++k)
            g->click();
        QCOMPARE(g->state().markers.size(), size_t(9));
        for (int k = 10; k <= 255; ++k)
            clickAt(g, {100.0 + (k % 90), 15});
        QCOMPARE(g->state().markers.size(), size_t(255));
        QVERIFY(m_fx->dialogs.messages().isEmpty());
        const QString full = g->markerList();
        m_fx->dialogs.answerMessage(DialogService::Answer::Ok);
        clickAt(g, {5.0, 15});
        QCOMPARE(g->state().markers.size(), size_t(255));
        QCOMPARE(g->markerList(), full);
        expectMessage(u"Προσοχή / Δεν μπορείτε να προσθέσετε άλλον δείκτη σημείου"_s,
                      DialogService::Icon::None);

        // The marked points: cancelled, then on pages of their own, each entry whole on one.
        QVERIFY(!QFile::exists(printTo(g, false)));
        const QString marked = printTo(g);
        const QStringList pages = pdfPages(marked);
        // The next print dialog starts from the printer chosen last.
        QString offered;
        m_fx->dialogs.answerPrint(false, [&offered](QPrinter& p) { offered = p.outputFileName(); });
        g->printButton()->click();
        QCOMPARE(offered, marked);
        QVERIFY2(pages.size() >= 2, qPrintable(QString::number(pages.size())));
        for (int i = 0; i < pages.size(); ++i) {
            QVERIFY2(pages[i].contains(u"SENTORAX Monitor / ΜΑΡΚΑΡΙΣΜΕΝΑ ΣΗΜΕΙΑ"_s) &&
                         pages[i].contains(m_w->unitText() + u" | [1] Ψυγείο"_s) &&
                         pages[i].contains(u"Σελίδα %1/%2"_s.arg(i + 1).arg(pages.size())),
                     qPrintable(pages[i]));
            QCOMPARE(pages[i].count(u"Χρόνος μαρκαρισμένου"_s),
                     pages[i].count(u"Ένδειξη μαρκαρισμένου"_s));
        }
        QVERIFY(pages[0].contains(u"Ένδειξη μαρκαρισμένου σημείου 1: 8.5 °C"_s));
        const QString all = pages.join(u'\n');
        qsizetype from = 0;
        for (int k = 1; k <= 255; ++k) {
            const qsizetype found = all.indexOf(u"Χρόνος μαρκαρισμένου σημείου %1:"_s.arg(k), from);
            QVERIFY2(found >= from, qPrintable(QString::number(k)));
            from = found + 1;
        }
        previewShows(g, pages, QPageLayout::Portrait);

        g->chartOption()->setChecked(true);
        const QString pdf = printTo(g);
        const QString info = toolOutput(u"pdfinfo"_s, {pdf});
        QVERIFY2(info.contains(u"Pages:           1"_s), qPrintable(info));
        QVERIFY2(info.contains(u"841.89 x 595.276"_s) || info.contains(u"842 x 595"_s),
                 qPrintable(info)); // A4 landscape
        const QString flat = pdfPages(pdf).value(0).simplified();
        // The labels, then value labels every 4.
        for (const QString& text :
             {g->windowTitle().simplified(), u"Mονάδα μέτρησης: °C"_s, u"Μέγιστο Όριο: 25.0"_s,
              u"Ελάχιστο Όριο: 10.0"_s, u"28"_s, u"24"_s, u"4"_s})
            QVERIFY2(flat.contains(text), qPrintable(text + u" in "_s + flat));
        previewShows(g, pdfPages(pdf), QPageLayout::Landscape);
        QVERIFY(!m_fx->dialogs.anyUnexpected());

        g->deleteButton()->click();
        QVERIFY(g->markerList().isEmpty() && g->state().markers.empty());
        QVERIFY(!colourNear(g->chart()->pixmap(), g->pixelOf({20.0, 2}), QColor(Qt::black)));
        // Numbering and colours start over; a double-click marks one point.
        const QPoint p = g->pixelOf({30.0, 15}).toPoint();
        sendMove(g->chart(), p);
        // Through the window, so the platform makes the double-click of two clicks.
        QTest::mouseDClick(g->windowHandle(), Qt::LeftButton, {}, g->chart()->mapTo(g, p));
        QCOMPARE(g->state().markers.size(), size_t(1));
        QVERIFY(
            g->markerList().startsWith(u"Χρόνος μαρκαρισμένου σημείου 1: 03/03/2026 - 06:30"_s));
        QVERIFY(colourNear(g->chart()->pixmap(), g->pixelOf({30.0, 2}), QColor(Qt::black)));
    }

private:
    void expectMessage(const QString& titleAndText, DialogService::Icon icon)
    {
        const auto shown = m_fx->dialogs.messages();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].title + u" / "_s + shown[0].text, titleAndText);
        QCOMPARE(shown[0].icon, icon);
    }
    void openRecords()
    {
        m_w = std::make_unique<RecordsWindow>(m_fx->ctx);
        connectGraph(*m_w);
        m_w->show();
        fillSystemSelect(*m_w, 0, false);
        chooseItem(m_w->sensorSelect(), 0);
        chooseItem(m_w->monthSelect(), 2);
    }
    GraphWindow* openGraphOn(int first, int last)
    {
        m_w->selectRows(first, last, first);
        m_w->graphButton()->click();
        GraphWindow* g = m_w->findChild<GraphWindow*>();
        if (g)
            (void)QTest::qWaitForWindowExposed(g);
        return g;
    }
    GraphWindow* openSeries()
    {
        // 2000 one-minute records from 2 March, 5 to 23 in steps of 0.5: the range is 0 to 30.
        RecordsSeed s(m_fx->db);
        if (!s.series(u"A-100"_s, 1, at(u"2026-03-02 00:00:00"_s), 60, 2000,
                      [](int i) { return 5.0 + (i % 37) * 0.5; }))
            return nullptr;
        openRecords();
        return openGraphOn(0, 199);
    }
    void clickAt(GraphWindow* g, QPointF chart)
    {
        const QPoint p = g->pixelOf(chart).toPoint();
        sendMove(g->chart(), p);
        QTest::mouseClick(g->chart(), Qt::LeftButton, {}, p);
    }
    void zoomOut(GraphWindow* g)
    {
        QTest::mouseClick(g->chart(), Qt::RightButton, {}, g->pixelOf({50, 10}).toPoint());
    }
    void dragFromTo(GraphWindow* g, QPointF from, QPointF to)
    {
        const QPoint a = g->pixelOf(from).toPoint();
        const QPoint b = g->pixelOf(to).toPoint();
        QTest::mousePress(g->chart(), Qt::LeftButton, {}, a);
        sendMove(g->chart(), (a + b) / 2, Qt::LeftButton);
        sendMove(g->chart(), b, Qt::LeftButton);
        QTest::mouseRelease(g->chart(), Qt::LeftButton, {}, b);
    }
    QString printTo(GraphWindow* g, bool accept = true)
    {
        const QString pdf = m_fx->answerPdf(accept);
        g->printButton()->click();
        return pdf;
    }

    // The preview shows the pages printed, in the same orientation, and
    // printing from it prints them again.
    void previewShows(GraphWindow* g, const QStringList& printed, QPageLayout::Orientation o)
    {
        std::pair<qsizetype, int> shown{-1, -1}; // pages, orientation
        const QString again = m_fx->scratch.folder() + u"/again.pdf"_s;
        m_fx->dialogs.answerPreview([&](QPrinter& printer, const auto& paint) {
            QPrintPreviewWidget view(&printer);
            QObject::connect(&view, &QPrintPreviewWidget::paintRequested,
                             [&](QPrinter* p) { paint(*p); });
            view.updatePreview();
            shown = {view.pageCount(), int(printer.pageLayout().orientation())};
            QPrinter chosen(QPrinter::HighResolution);
            setUpPdf(chosen, again);
            paint(chosen);
        });
        g->previewButton()->click();
        QCOMPARE(shown, std::pair(printed.size(), int(o)));
        QCOMPARE(pdfPages(again), printed);
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<RecordsWindow> m_w;
};

QTEST_MAIN(TestGraphWindow)
#include "tst_graphwindow.moc"
