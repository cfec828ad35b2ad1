#include "model/graph/GraphRules.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::graph;

namespace {

constexpr qint64 kBase = 1'700'000'040; // a whole minute
using Records = std::vector<RecordPoint>;

RecordPoint rec(qint64 minute, float value, quint8 type = 1, qint64 extraSecs = 0)
{
    return {kBase + minute * 60 + extraSecs, value, type};
}

// Grid order is newest first; given oldest first for readability.
Records grid(Records oldestFirst)
{
    return {oldestFirst.rbegin(), oldestFirst.rend()};
}

GraphState state(int fullMinutes, int viewOffset, int viewSpan, float fb, float ft, float vb,
                 float vt)
{
    GraphState s;
    s.fullStartSecs = kBase;
    s.fullEndSecs = kBase + qint64(fullMinutes) * 60;
    s.fullBottom = fb;
    s.fullTop = ft;
    s.view = {kBase + qint64(viewOffset) * 60, viewSpan, vb, vt};
    return s;
}

// A view as minutes from kBase, so that a failed comparison shows its numbers.
QString viewText(const GraphView& v)
{
    return u"+%1 min, %2 min, %3..%4"_s.arg(minuteDiff(kBase, v.startSecs))
        .arg(v.spanMinutes)
        .arg(v.bottom)
        .arg(v.top);
}

QString viewText(qint64 offset, int span, float bottom, float top)
{
    return viewText({kBase + offset * 60, span, bottom, top});
}

} // namespace

class TestGraphRules : public QObject {
    Q_OBJECT

private slots:
    void minutesDropSeconds()
    {
        const struct {
            qint64 from, to, minutes;
        } cases[] = {{kBase + 59, kBase + 60, 1},
                     {kBase, kBase + 119, 1},
                     {kBase + 1, kBase + 59, 0},
                     {kBase + 60, kBase + 59, -1},
                     {-1, 0, 1}}; // before 1970 floors
        for (const auto& c : cases)
            QCOMPARE(minuteDiff(c.from, c.to), c.minutes);
    }

    void selectionChecks_data()
    {
        QTest::addColumn<Records>("records");
        QTest::addColumn<int>("problem");
        QTest::addColumn<int>("row");
        const auto row = [](const char* name, Records r, SelectionProblem p, int index) {
            QTest::newRow(name) << grid(std::move(r)) << int(p) << index;
        };
        using P = SelectionProblem;
        row("one record", {rec(0, 1)}, P::TooShort, -1);
        row("two in one minute", {rec(0, 1, 1, 0), rec(0, 2, 1, 50)}, P::TooShort, -1);
        row("two minutes", {rec(0, 1), rec(1, 2)}, P::None, -1);
        row("seconds backwards in one minute", {rec(0, 1, 1, 30), rec(0, 1, 1, 10), rec(2, 1)},
            P::None, -1);
        // The scan starts at the oldest: the type change comes before the reversal.
        row("type before a reversal nearer the top",
            {rec(0, 1), rec(1, 1, 3), rec(5, 1), rec(4, 1), rec(6, 1)}, P::MixedTypes, 3);
        row("type before time on the same row", {rec(5, 1), rec(4, 1, 3)}, P::MixedTypes, 0);
        row("time reversal", {rec(0, 1), rec(5, 1), rec(4, 1), rec(6, 1)}, P::TimeReversal, 1);
        row("contact input", {rec(0, 1, 2), rec(3, 0, 2)}, P::ContactInput, -1);
        row("one contact record", {rec(0, 1, 2)}, P::ContactInput, -1);
    }
    void selectionChecks()
    {
        QFETCH(Records, records);
        QFETCH(int, problem);
        QFETCH(int, row);
        const SelectionCheck check = checkSelection(records, 0, int(records.size()) - 1);
        QCOMPARE(int(check.problem), problem);
        QCOMPARE(check.rowIndex, row);
    }

    void valueRangeContainsZero()
    {
        const struct {
            Records records;
            ValueRange range;
        } cases[] = {
            {{rec(0, 5), rec(1, 23.5f), rec(2, 12)}, {0, 30}},
            {{rec(0, 30), rec(1, 2)}, {0, 40}},
            {{rec(0, 8), rec(1, -12)}, {-20, 10}},
            {{rec(0, 0), rec(1, 0)}, {-10, 0}},
            {{rec(0, -5), rec(1, -0.5f)}, {-10, 0}},
            {{rec(0, -30), rec(1, -1)}, {-40, 0}},
            {{rec(0, 0), rec(1, 0.2f)}, {0, 10}},
            {{rec(0, 1), rec(1, 47), rec(2, -3), rec(3, 2)}, {-10, 50}}, // extremes inside
        };
        for (const auto& c : cases)
            QCOMPARE(valueRange(c.records, 0, int(c.records.size()) - 1), c.range);
    }

    void nonFiniteAndHugeValuesKeepAFiniteScale()
    {
        const float inf = std::numeric_limits<float>::infinity();
        const float nan = std::numeric_limits<float>::quiet_NaN();
        QCOMPARE(valueRange({rec(0, nan), rec(1, 7), rec(2, inf)}, 0, 2), (ValueRange{0, 10}));
        QCOMPARE(valueRange({rec(0, nan), rec(1, -inf)}, 0, 1), (ValueRange{-10, 0}));
        const ValueRange huge = valueRange({rec(0, 1e30f), rec(1, -1e30f)}, 0, 1);
        QCOMPARE(huge, (ValueRange{-1e30f, 1e30f}));
        const ValueSteps steps = valueSteps(huge.top - huge.bottom);
        QCOMPARE(int(valueTicks(huge.bottom, huge.top, steps.major).size()), 11);
        QVERIFY(valueTicks(0, inf, 1).empty());
        QVERIFY(valueTicks(nan, 0, 1).empty());
    }

    void initialStateShowsTheFullRange()
    {
        // Records outside first..last must not count.
        const Records records =
            grid({rec(-5, 500), rec(0, 5, 1, 20), rec(7, 23.5f), rec(90, 12, 1, 10), rec(95, -90)});
        const GraphState s = initialState(records, 1, 3);
        QCOMPARE(s.firstIndex, 1);
        QCOMPARE(s.lastIndex, 3);
        QCOMPARE(s.fullStartSecs, kBase + 20);
        QCOMPARE(s.fullEndSecs, kBase + 90 * 60 + 10);
        QCOMPARE(s.view, (GraphView{kBase + 20, 90, 0.0f, 30.0f}));
        QCOMPARE(s.fullBottom, 0.0f);
        QCOMPARE(s.fullTop, 30.0f);
        QVERIFY(!s.zoomed);
    }

    void valueAndTimeSteps()
    {
        const struct {
            float span;
            double major, minor;
        } values[] = {{5, 1, 0.1},          {10, 1, 0.1},    {10.5f, 2, 0.2}, {20, 2, 0.2},
                      {30, 4, 0.4},         {40, 4, 0.4},    {41, 6, 0.6},    {40000, 4000, 400},
                      {40010, 4002, 400.2}, {1e6f, 1e5, 1e4}};
        for (const auto& c : values) {
            const ValueSteps s = graph::valueSteps(c.span);
            QCOMPARE(s.major, c.major);
            QCOMPARE(s.minor, c.minor);
        }
        // Span / 20 rounded halves to even, at least 1.
        const struct {
            int span, step;
        } times[] = {{10, 1}, {25, 1}, {30, 2}, {50, 2}, {70, 4}, {1440, 72}};
        for (const auto& c : times)
            QCOMPARE(graph::timeStep(c.span), c.step);
    }

    void valueTicksReachTheTop()
    {
        const struct {
            double bottom, top, step;
            int count;
            double lastTick;
        } cases[] = {
            {0, 30, 4, 8, 28}, {-20, 10, 0.4, 76, 10}, {0, 10, 0.1, 101, 10}, {-10, 0, 1, 11, 0}};
        for (const auto& c : cases) {
            const std::vector<double> ticks = valueTicks(c.bottom, c.top, c.step);
            QCOMPARE(int(ticks.size()), c.count);
            QCOMPARE(ticks.front(), c.bottom);
            QVERIFY(qAbs(ticks.back() - c.lastTick) < 1e-9);
        }
    }

    void scalesAndLabelMargins()
    {
        const GraphView view{kBase, 100, -20.0f, 10.0f};
        const PictureScale s = chartScale(view, 501, 301);
        QCOMPARE(s.toPixel({0, 10}), QPointF(0, 0));
        // The last minute and the bottom value land on the last pixel row and column.
        QCOMPARE(s.toPixel({100, -20}), QPointF(500, 300));
        QCOMPARE(s.toPixel({50, -5}), QPointF(250, 150));
        QCOMPARE(s.toUser({250, 150}), QPointF(50, -5));

        // Nine-pixel margins, equal at both ends.
        const double mv = valueMargin(view, 301);
        QCOMPARE(mv, 9.0 * 30 / 300);
        const PictureScale u = unitScale(view, 301, 40);
        QCOMPARE(u.toPixel({0, 10}).y(), 301 - u.toPixel({0, -20}).y());
        QCOMPARE(u.toPixel({0, 10 + mv}).y(), 0.0);
        const double mt = timeMargin(100, 501);
        QCOMPARE(mt, 9.0 * 100 / 500);
        const PictureScale t = timeScale(100, 501, 519, 80);
        QCOMPARE(t.toPixel({-mt, 1}), QPointF(0, 0));
        QCOMPARE(t.toPixel({100 + mt, 0}), QPointF(519, 80));
    }

    void segmentRules()
    {
        const struct {
            qint64 older, newer;
            bool drawn, stops;
        } cases[] = {{-3, 0, false, false},
                     {-3, 2, true, false},
                     {0, 0, false, false},
                     {99, 120, true, false}, // crossing the span end
                     {100, 100, true, true}};
        for (const auto& c : cases) {
            QCOMPARE(segmentDrawn(c.older, c.newer), c.drawn);
            QCOMPARE(segmentStopsWalk(c.older, c.newer, 100), c.stops);
        }
    }

    void scrollBars()
    {
        const struct {
            int full, offset, span, maximum, value, largeChange;
            double factor;
        } horizontal[] = {
            {1000, 0, 1000, 0, 0, 1, 1.0},
            {1000, 450, 100, 900, 450, 90, 1.0},
            {10, 5, 5, 5, 5, 1, 1.0}, // small change floor
            {32867, 100, 100, 32767, 100, 3277, 1.0},
            {32868, 0, 100, 32767, 0, 3277, 32767.0 / 32768.0}, // scaled down from here
            {65634, 32767, 100, 32767, 16384, 3277, 0.5},       // 16383.5 to even
        };
        for (const auto& c : horizontal)
            QCOMPARE(horizontalScrollBar(state(c.full, c.offset, c.span, 0, 10, 0, 10)),
                     (HScrollBar{0, c.maximum, c.value, c.largeChange, c.factor}));
        // Full values -20..10; the bar's top (minimum) is the top of the values.
        const struct {
            float bottom, top;
            int minimum, value, largeChange;
        } vertical[] = {{-20, 10, 0, 0, 1},
                        {-20, -10, 20, 0, 2},
                        {0, 10, 20, 20, 2},
                        {-7.5f, 10, 12, 12, 1}}; // 12.5 free to even 12
        for (const auto& c : vertical)
            QCOMPARE(verticalScrollBar(state(100, 0, 100, -20, 10, c.bottom, c.top)),
                     (VScrollBar{c.minimum, 0, c.value, c.largeChange}));
    }

    void horizontalScroll()
    {
        const struct {
            int full, offset;
            double factor;
            int last, newValue, newOffset;
        } cases[] = {
            {1000, 400, 1.0, 400, 401, 401},   // one unit is one minute
            {1000, 400, 1.0, 400, 310, 310},   // page back
            {200000, 400, 0.25, 100, 99, 399}, // one unit is one minute, also scaled
            {200000, 400, 0.25, 100, 110, 440},
            {200000, 400, 0.8, 100, 102, 402}, // 2.5 minutes to 2
            {200000, 400, 0.4, 100, 103, 408}, // 7.5 minutes to 8
            {1000, 3, 0.5, 10, 6, 0},          // never before the full start
            {1000, 898, 0.5, 10, 14, 900},     // never past the full end
        };
        for (const auto& c : cases) {
            GraphState s = state(c.full, c.offset, 100, 0, 10, 0, 10);
            s.scrollFactor = c.factor;
            s.hScrollLast = qint16(c.last);
            QCOMPARE(viewText(scrolledHorizontally(s, c.newValue)),
                     viewText(c.newOffset, 100, 0, 10));
        }
    }

    void dragZoom()
    {
        // View: minutes 100..200 of the full range, values -20..30 (full -20..30).
        const GraphState s = state(1000, 100, 100, -20, 30, -20, 30);
        const struct {
            QPointF p0, p1;
            int offset, span;
            float bottom, top;
        } cases[] = {
            {{10.5, 12.7}, {3.2, 4.2}, 103, 7, 4, 13},  // right to left
            {{2.5, 1}, {3.5, 2}, 102, 2, 1, 3},         // halves to even
            {{0, -5.5}, {10, -12.7}, 100, 10, -12, -4}, // negatives truncate toward zero
            {{0, 29.9}, {10, 30}, 100, 10, 28, 30},     // past the full top lowers both
            {{0, -20}, {10, 30}, 100, 10, -20, 30},     // lowered bottom raised back
        };
        for (const auto& c : cases) {
            const std::optional<GraphView> v = graph::dragZoom(s, c.p0, c.p1);
            QVERIFY(v);
            QCOMPARE(viewText(*v), viewText(c.offset, c.span, c.bottom, c.top));
        }
        QVERIFY(!graph::dragZoom(s, {2.6, 1}, {3.4, 9})); // the same minute
    }

    void zoomOutStaysInFullRange()
    {
        // Full range: minutes 0..1000, values -20..30.
        const struct {
            int offset, span;
            float bottom, top;
            int newOffset, newSpan;
            float newBottom, newTop;
        } cases[] = {
            {400, 100, 0, 10, 350, 200, -5, 15},
            {20, 100, 0, 10, 0, 200, -5, 15},    // near the start
            {880, 100, 0, 10, 830, 170, -5, 15}, // near the end
            {400, 5, 0, 10, 398, 10, -5, 15},    // odd span halves to even
            {400, 100, 0.5f, 3.5f, 350, 200, -1, 5},
            {400, 100, -18, -8, 350, 200, -20, 0},
            {400, 100, 20, 30, 350, 200, 15, 30},
            {0, 1000, -20, 30, 0, 1000, -20, 30}, // already full
        };
        for (const auto& c : cases) {
            const GraphState s = state(1000, c.offset, c.span, -20, 30, c.bottom, c.top);
            QCOMPARE(viewText(zoomOut(s)), viewText(c.newOffset, c.newSpan, c.newBottom, c.newTop));
        }
    }

    void cursorTimeRounds()
    {
        const GraphView view{kBase + 17, 100, 0.0f, 10.0f};
        const struct {
            double x;
            qint64 minutes;
        } cases[] = {{0.4, 0}, {0.5, 0}, {1.5, 2}, {7.6, 8}};
        for (const auto& c : cases)
            QCOMPARE(cursorTime(view, c.x), kBase + 17 + c.minutes * 60);
    }

    void markerColoursAndVisibility()
    {
        const Rgb palette[] = {{0, 0, 0},   {0, 0, 128},   {0, 128, 0},  {0, 128, 128},
                               {128, 0, 0}, {128, 0, 128}, {128, 128, 0}};
        for (int i = 0; i < 7; ++i)
            QCOMPARE(markerColour(i), palette[i]);
        for (const auto& [k, index] : {std::pair{1, 0}, {7, 6}, {8, 0}, {255, 2}})
            QCOMPARE(markerColourIndex(k), index);

        // View from kBase + 30 s over 10 minutes: whole minutes 0..10 count.
        const GraphView view{kBase + 30, 10, 0.0f, 10.0f};
        QVERIFY(markerVisible(view, kBase));
        QVERIFY(!markerVisible(view, kBase - 1));
        QVERIFY(markerVisible(view, kBase + 10 * 60 + 59));
        QVERIFY(!markerVisible(view, kBase + 11 * 60));
    }
};

QTEST_APPLESS_MAIN(TestGraphRules)
#include "tst_graphrules.moc"
