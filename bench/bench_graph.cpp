// The graph window over a year of one-minute records (525,600 points), all
// selected in the records view: opening the window, one full redraw after a
// zoom, a zoom-out and a scroll step, and one cursor move with its readout.
// Painted offscreen; each figure is the best of several runs or an average.
#include "BestTime.h"
#include "ChooseItem.h"
#include "GuiFixture.h"
#include "ScrollBarPart.h"
#include "model/SqlDateTime.h"
#include "model/records/RecordsQuery.h"
#include "reports/records/RecordsModel.h"
#include "shell/SecondaryViews.h"
#include "sim/RecordWriter.h"
#include "ui/UnitList.h"
#include "views/graph/GraphWindow.h"
#include "views/records/RecordsWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QImage>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QTest>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace sx;

namespace {

constexpr qint64 kRows = 525600;

using bench::bestMs;

void move(GraphWindow* g, QPointF pixel)
{
    QMouseEvent e(QEvent::MouseMove, pixel, g->chart()->mapToGlobal(pixel), Qt::NoButton,
                  Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(g->chart(), &e);
}

// A drag zoom through the window's own mouse handlers, from chart point a to b.
void zoom(GraphWindow* g, QPointF a, QPointF b)
{
    g->mouseDown(Qt::LeftButton, a);
    g->mouseMove(b);
    g->mouseUp(Qt::LeftButton, b);
    g->chart()->repaint();
}

void zoomOut(GraphWindow* g)
{
    g->mouseDown(Qt::RightButton, {1, g->state().view.bottom + 1.0});
    g->mouseUp(Qt::RightButton, {1, g->state().view.bottom + 1.0});
    g->chart()->repaint();
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    qputenv("SX_TEST_DB", "sqlite");
    test::GuiFixture fx;
    if (!fx.problem().isEmpty() || !fx.ready()) {
        std::printf("skipped (%s)\n", qPrintable(fx.problem()));
        return 0;
    }
    if (!fx.exec(
            u"INSERT INTO Systems_Info (SyI_Serialnumber, SyI_Locationnumber, SyI_Systemname, "
            u"SyI_Used) VALUES ('SXBENCH', '1', 'Bench', 1);\n"
            "INSERT INTO Sensors_Info (SeI_SyI_Serialnumber, SeI_Sensornumber, SeI_Sensorname, SeI_Sensortype, SeI_Used, SeI_Maxlimit, SeI_Minlimit, SeI_Maxlimitused, SeI_Minlimitused, SeI_RecordsTable_Pagebyteswrit, SeI_RecordsTable_Lastpagesn) VALUES ('SXBENCH', 1, 'Θάλαμος', 0, 1, 30, 10, 1, 1, 100, 5)"_s))
        return 1;
    const qint64 from = secsFromCivil({2025, 1, 1, 0, 0, 0});
    if (const DbError e = sim::seedRecords(fx.db, u"SXBENCH"_s, 1, 0, from, 60, kRows, 1);
        e.isError()) {
        std::fprintf(stderr, "seed failed: %s\n", qPrintable(e.description));
        return 1;
    }

    RecordsWindow w(fx.ctx);
    connectGraph(w);
    w.show();
    fillSystemSelect(w, 0, false);
    test::chooseItem(w.yearSelect(), 25);
    test::chooseItem(w.monthSelect(), records::kWholeYearIndex);
    QCoreApplication::processEvents();
    w.selectAllRecords();
    std::printf("records in the view: %d selected\n", w.model()->rowCount());

    GraphWindow* g = nullptr;
    const auto openGraphWindow = [&] {
        w.graphButton()->click();
        g = w.findChild<GraphWindow*>();
        if (g)
            g->repaint();
    };
    const double first = bestMs(1, openGraphWindow);
    const double open = bestMs(5, openGraphWindow);
    if (!g) {
        std::fprintf(stderr, "the graph did not open\n");
        return 1;
    }
    std::printf(
        "open the graph window, painted        %8.2f ms  (target 300; first time %.2f ms)\n", open,
        first);

    const double span = g->state().view.spanMinutes;
    const double top = g->state().view.top;
    const double bottom = g->state().view.bottom;
    // Half the year and most of the values: still about 262,800 points in view.
    const double zoomIn = bestMs(5, [&] {
        zoomOut(g); // back to the full view; not timed on its own here
        zoom(g, {span * 0.25, top - 1.5}, {span * 0.75, bottom + 1.5});
    });
    QElapsedTimer t;
    double zoomOutMs = 1e12;
    for (int i = 0; i < 5; ++i) {
        zoom(g, {span * 0.25, top - 1.5}, {span * 0.75, bottom + 1.5});
        t.start();
        zoomOut(g);
        zoomOutMs = std::min(zoomOutMs, t.nsecsElapsed() / 1e6);
    }
    std::printf("zoom out, then in to half a year       %8.2f ms  (two redraws)\n", zoomIn);
    std::printf("zoom out to the full year, redrawn     %8.2f ms  (target 50)\n", zoomOutMs);

    zoom(g, {span * 0.25, top - 1.5}, {span * 0.75, bottom + 1.5});
    QScrollBar* bar = g->hScroll();
    double scroll = 1e12;
    double scrollSum = 0;
    const int steps = 20;
    for (int i = 0; i < steps; ++i) {
        t.start();
        // Forward and back by a page, then a minute: every step moves the view.
        static constexpr QAbstractSlider::SliderAction actions[] = {
            QAbstractSlider::SliderPageStepAdd, QAbstractSlider::SliderSingleStepAdd,
            QAbstractSlider::SliderPageStepSub, QAbstractSlider::SliderSingleStepAdd};
        bar->triggerAction(actions[i % 4]);
        g->chart()->repaint();
        const double ms = t.nsecsElapsed() / 1e6;
        scroll = std::min(scroll, ms);
        scrollSum += ms;
    }
    std::printf("scroll half a year, redrawn            %8.2f ms best, %.2f ms mean (target 50)\n",
                scroll, scrollSum / steps);

    zoomOut(g);
    zoomOut(g);
    const int moves = 2000;
    const int width = g->chart()->width();
    const int height = g->chart()->height();
    t.start();
    for (int i = 0; i < moves; ++i) {
        move(g, QPointF(1 + (i * 7) % (width - 2), height / 2));
        g->chart()->repaint();
    }
    std::printf("cursor move with readout, repainted    %8.3f ms  (target 5; %s)\n",
                t.nsecsElapsed() / 1e6 / moves, qPrintable(g->timeReadout()));
    // The same with the chart widget rendered in full into an image each time,
    // so that its paint event certainly runs: picture copy plus cursor line.
    QImage target(g->chart()->size(), QImage::Format_ARGB32_Premultiplied);
    t.start();
    for (int i = 0; i < moves; ++i) {
        move(g, QPointF(1 + (i * 7) % (width - 2), height / 2));
        g->chart()->render(&target);
    }
    std::printf("cursor move with readout, rendered     %8.3f ms  (target 5)\n",
                t.nsecsElapsed() / 1e6 / moves);

    // For comparison: the chart painted from scratch at the same size.
    const double redraw = bestMs(5, [&] {
        g->drawGraph();
        g->chart()->repaint();
    });
    if (qEnvironmentVariableIsSet("SX_SHOT_DIR"))
        (void)g->grab().save(qEnvironmentVariable("SX_SHOT_DIR") + u"/graph-year.png"_s);
    std::printf("full view of the year, redrawn         %8.2f ms  (target 50)\n", redraw);

    // The value bar clicked as a user does: the top arrow and the trough above
    // the handle lift the view; then a double-click marks one point.
    zoom(g, {span * 0.25, top - 1.5}, {span * 0.75, bottom + 1.5});
    const auto shot = [g](const char* name) {
        if (qEnvironmentVariableIsSet("SX_SHOT_DIR"))
            (void)g->grab().save(qEnvironmentVariable("SX_SHOT_DIR") + u'/' +
                                 QString::fromLatin1(name));
    };
    shot("graph-zoomed.png");
    QScrollBar* values = g->vScroll();
    for (const auto& [part, name] : {std::pair{QStyle::SC_ScrollBarSubLine, "top arrow"},
                                     std::pair{QStyle::SC_ScrollBarAddPage, "trough below"},
                                     std::pair{QStyle::SC_ScrollBarAddLine, "bottom arrow"},
                                     std::pair{QStyle::SC_ScrollBarSubPage, "trough above"}}) {
        const graph::GraphView was = g->state().view;
        t.start();
        QTest::mouseClick(values, Qt::LeftButton, {}, test::scrollBarPart(values, part).center());
        g->chart()->repaint();
        std::printf(
            "value bar, %-12s                 %8.2f ms  (values %.0f..%.0f -> %.0f..%.0f)\n", name,
            t.nsecsElapsed() / 1e6, double(was.bottom), double(was.top),
            double(g->state().view.bottom), double(g->state().view.top));
        if (part == QStyle::SC_ScrollBarSubPage)
            shot("graph-after-trough-above.png");
    }
    const QPoint at = g->pixelOf({g->state().view.spanMinutes / 2.0,
                                  (g->state().view.top + g->state().view.bottom) / 2.0})
                          .toPoint();
    move(g, at);
    QTest::mouseDClick(g->windowHandle(), Qt::LeftButton, {}, g->chart()->mapTo(g, at));
    std::printf("double-click on the chart: %zu marker(s)\n", g->state().markers.size());
    shot("graph-double-click.png");
    return 0;
}
