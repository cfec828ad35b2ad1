#include "model/graph/Decimate.h"
#include "model/graph/GraphRules.h"
#include "model/graph/Readout.h"

#include <QRandomGenerator>
#include <QTest>

#include <limits>
#include <map>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::graph;

namespace {

constexpr qint64 kBase = 1'700'000'040; // a whole minute
constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
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
    return QString::asprintf("+%lld min, %d min, %g..%g", minuteDiff(kBase, v.startSecs),
                             v.spanMinutes, double(v.bottom), double(v.top));
}

// Grid order (newest first) from (minute, value) pairs given oldest first.
Records gridOf(const std::vector<std::pair<qint64, float>>& oldestFirst)
{
    Records out;
    for (auto it = oldestFirst.rbegin(); it != oldestFirst.rend(); ++it)
        out.push_back({kBase + it->first * 60 + (it->first % 7) * 7, it->second, 1});
    return out;
}

// The data line as first written, every drawn point in time order: a segment is drawn when
// one of its ends lies after minute 0; the walk ends at the first segment with both ends at
// or after the span.
std::vector<QPointF> drawnPoints(const Records& newestFirst, const GraphView& view)
{
    std::vector<QPointF> out;
    const auto n = qint64(newestFirst.size());
    bool lastAdded = false;
    for (qint64 i = n - 1; i >= 1; --i) {
        const RecordPoint& p = newestFirst[size_t(i)];
        const RecordPoint& q = newestFirst[size_t(i - 1)];
        const qint64 xp = minuteDiff(view.startSecs, p.secs);
        const qint64 xn = minuteDiff(view.startSecs, q.secs);
        if (xp >= view.spanMinutes && xn >= view.spanMinutes)
            break;
        if (xp <= 0 && xn <= 0) {
            lastAdded = false;
            continue;
        }
        if (!lastAdded)
            out.emplace_back(double(xp), double(p.value));
        out.emplace_back(double(xn), double(q.value));
        lastAdded = true;
    }
    return out;
}

// The straightforward scan from the newest record towards the oldest.
std::optional<int> scanNearest(const Records& records, int first, int last, qint64 tSecs)
{
    for (int i = first; i <= last; ++i) {
        const qint64 d = minuteDiff(tSecs, records[size_t(i)].secs);
        if (d <= 0)
            return d < 0 && i > first && minuteDiff(tSecs, records[size_t(i - 1)].secs) < -d ? i - 1
                                                                                             : i;
    }
    return std::nullopt;
}

// What a pixel column shows: where the line enters and leaves it, and the values it covers.
struct Column {
    QPointF first, last;
    double low = 0, high = 0;
    int count = 0;
    bool operator==(const Column& o) const
    {
        return first == o.first && last == o.last && low == o.low && high == o.high;
    }
};

std::map<qint64, Column> columns(const std::vector<QPointF>& points, const GraphView& view,
                                 int width)
{
    std::map<qint64, Column> out;
    for (const QPointF& p : points) {
        Column& c = out[pixelColumn(p.x(), view.spanMinutes, width)];
        if (c.count++ == 0)
            c = {p, p, p.y(), p.y(), 1};
        c.last = p;
        c.low = std::min(c.low, p.y());
        c.high = std::max(c.high, p.y());
    }
    return out;
}

Records randomRecords(QRandomGenerator& rng, int count)
{
    std::vector<std::pair<qint64, float>> oldestFirst;
    qint64 minute = 0;
    for (int i = 0; i < count; ++i) {
        minute += rng.bounded(4);                                      // ties in time
        oldestFirst.emplace_back(minute, float(rng.bounded(21) - 10)); // ties in value
    }
    return gridOf(oldestFirst);
}

} // namespace

Q_DECLARE_METATYPE(Records)
Q_DECLARE_METATYPE(sx::graph::ValueRange)

// The graph's rules, its decimation and its readout search.
class TestGraphRules : public QObject {
    Q_OBJECT

private slots:
    void minutesDropSeconds()
    {
        QCOMPARE(minuteDiff(kBase + 59, kBase + 60), 1);
        QCOMPARE(minuteDiff(kBase, kBase + 119), 1);
        QCOMPARE(minuteDiff(kBase + 1, kBase + 59), 0);
        QCOMPARE(minuteDiff(kBase + 60, kBase + 59), -1);
        QCOMPARE(minuteDiff(-1, 0), 1); // before 1970 floors
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
        const SelectionCheck check = checkSelection(records, 0, int(records.size()) - 1);
        QTEST(int(check.problem), "problem");
        QTEST(check.rowIndex, "row");
    }

    void valueRangeContainsZero_data()
    {
        QTest::addColumn<Records>("records");
        QTest::addColumn<ValueRange>("range");
        const auto row = [](const char* name, Records r, ValueRange range) {
            QTest::newRow(name) << r << range;
        };
        row("positive", {rec(0, 5), rec(1, 23.5f), rec(2, 12)}, {0, 30});
        row("top on a step", {rec(0, 30), rec(1, 2)}, {0, 40});
        row("both signs", {rec(0, 8), rec(1, -12)}, {-20, 10});
        row("all zero", {rec(0, 0), rec(1, 0)}, {-10, 0});
        row("small negative", {rec(0, -5), rec(1, -0.5f)}, {-10, 0});
        row("negative", {rec(0, -30), rec(1, -1)}, {-40, 0});
        row("zero and small positive", {rec(0, 0), rec(1, 0.2f)}, {0, 10});
        row("extremes inside", {rec(0, 1), rec(1, 47), rec(2, -3), rec(3, 2)}, {-10, 50});
        // Non-finite values leave the scale finite; huge ones keep it.
        row("nan and inf", {rec(0, kNan), rec(1, 7), rec(2, kInf)}, {0, 10});
        row("nan and -inf", {rec(0, kNan), rec(1, -kInf)}, {-10, 0});
        row("huge", {rec(0, 1e30f), rec(1, -1e30f)}, {-1e30f, 1e30f});
    }
    void valueRangeContainsZero()
    {
        QFETCH(Records, records);
        QTEST(valueRange(records, 0, int(records.size()) - 1), "range");
    }

    void initialStateShowsTheFullRange()
    {
        // Records outside first..last must not count.
        const Records records =
            grid({rec(-5, 500), rec(0, 5, 1, 20), rec(7, 23.5f), rec(90, 12, 1, 10), rec(95, -90)});
        const GraphState s = initialState(records, 1, 3);
        QCOMPARE(std::pair(s.firstIndex, s.lastIndex), std::pair(1, 3));
        QCOMPARE(std::pair(s.fullStartSecs, s.fullEndSecs), std::pair(kBase + 20, kBase + 5410));
        QCOMPARE(s.view, (GraphView{kBase + 20, 90, 0.0f, 30.0f}));
        QCOMPARE(QPointF(s.fullBottom, s.fullTop), QPointF(0, 30));
    }

    void valueStepsBySpan_data()
    {
        QTest::addColumn<float>("span");
        QTest::addColumn<double>("major");
        QTest::addColumn<double>("minor");
        const std::tuple<float, double, double> rows[] = {
            {5.0f, 1.0, 0.1},  {10.0f, 1.0, 0.1},         {10.5f, 2.0, 0.2},
            {20.0f, 2.0, 0.2}, {30.0f, 4.0, 0.4},         {40.0f, 4.0, 0.4},
            {41.0f, 6.0, 0.6}, {40000.0f, 4000.0, 400.0}, {40010.0f, 4002.0, 400.2},
            {1e6f, 1e5, 1e4}};
        for (const auto& [span, major, minor] : rows)
            QTest::addRow("%g", double(span)) << span << major << minor;
    }
    void valueStepsBySpan()
    {
        QFETCH(float, span);
        QTEST(graph::valueSteps(span).major, "major");
        QTEST(graph::valueSteps(span).minor, "minor");
    }

    // Span / 20 rounded halves to even, at least 1.
    void timeStepBySpan_data()
    {
        QTest::addColumn<int>("span");
        QTest::addColumn<int>("step");
        for (const auto& [span, step] :
             {std::pair{10, 1}, {25, 1}, {30, 2}, {50, 2}, {70, 4}, {1440, 72}})
            QTest::addRow("%d", span) << span << step;
    }
    void timeStepBySpan()
    {
        QFETCH(int, span);
        QTEST(graph::timeStep(span), "step");
    }

    void valueTicksReachTheTop()
    {
        for (const auto& [bottom, top, step, count, lastTick] :
             {std::tuple{0.0, 30.0, 4.0, 8, 28.0},
              {-20.0, 10.0, 0.4, 76, 10.0},
              {0.0, 10.0, 0.1, 101, 10.0},
              {-10.0, 0.0, 1.0, 11, 0.0}}) {
            const std::vector<double> ticks = valueTicks(bottom, top, step);
            QCOMPARE(int(ticks.size()), count);
            QCOMPARE(ticks.front(), bottom);
            QVERIFY(qAbs(ticks.back() - lastTick) < 1e-9);
        }
        // A huge range still has its ticks; a non-finite one none.
        QCOMPARE(int(valueTicks(-1e30f, 1e30f, valueSteps(2e30f).major).size()), 11);
        QVERIFY(valueTicks(0, kInf, 1).empty() && valueTicks(kNan, 0, 1).empty());
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
        QCOMPARE(mv, 0.9);
        const PictureScale u = unitScale(view, 301, 40);
        QCOMPARE(u.toPixel({0, 10}).y(), 301 - u.toPixel({0, -20}).y());
        QCOMPARE(u.toPixel({0, 10 + mv}).y(), 0.0);
        const double mt = timeMargin(100, 501);
        QCOMPARE(mt, 1.8);
        const PictureScale t = timeScale(100, 501, 519, 80);
        QCOMPARE(t.toPixel({-mt, 1}), QPointF(0, 0));
        QCOMPARE(t.toPixel({100 + mt, 0}), QPointF(519, 80));
    }

    void scrollBars()
    {
        // Full minutes, offset, span: the bar.
        for (const auto& [full, offset, span, bar] :
             {std::tuple{1000, 0, 1000, HScrollBar{0, 0, 0, 1, 1.0}},
              {1000, 450, 100, HScrollBar{0, 900, 450, 90, 1.0}},
              {10, 5, 5, HScrollBar{0, 5, 5, 1, 1.0}}, // small change floor
              {32867, 100, 100, HScrollBar{0, 32767, 100, 3277, 1.0}},
              {32868, 0, 100, HScrollBar{0, 32767, 0, 3277, 32767.0 / 32768.0}}, // scaled down
              {65634, 32767, 100, HScrollBar{0, 32767, 16384, 3277, 0.5}}})      // 16383.5 to even
            QCOMPARE(horizontalScrollBar(state(full, offset, span, 0, 10, 0, 10)), bar);
        // Full values -20..10; the bar's top (minimum) is the top of the values.
        for (const auto& [bottom, top, bar] :
             {std::tuple{-20.0f, 10.0f, VScrollBar{0, 0, 0, 1}},
              {-20.0f, -10.0f, VScrollBar{20, 0, 0, 2}},
              {0.0f, 10.0f, VScrollBar{20, 0, 20, 2}},
              {-7.5f, 10.0f, VScrollBar{12, 0, 12, 1}}}) // 12.5 free to even 12
            QCOMPARE(verticalScrollBar(state(100, 0, 100, -20, 10, bottom, top)), bar);
    }

    void horizontalScroll()
    {
        for (const auto& [full, offset, factor, last, newValue, newOffset] :
             {std::tuple{1000, 400, 1.0, 400, 401, 401}, // one unit is one minute
              {1000, 400, 1.0, 400, 310, 310},           // page back
              {200000, 400, 0.25, 100, 99, 399},         // one unit is one minute, also scaled
              {200000, 400, 0.25, 100, 110, 440},
              {200000, 400, 0.8, 100, 102, 402}, // 2.5 minutes to 2
              {200000, 400, 0.4, 100, 103, 408}, // 7.5 minutes to 8
              {1000, 3, 0.5, 10, 6, 0},          // never before the full start
              {1000, 898, 0.5, 10, 14, 900}}) {  // never past the full end
            GraphState s = state(full, offset, 100, 0, 10, 0, 10);
            s.scrollFactor = factor;
            s.hScrollLast = qint16(last);
            QCOMPARE(viewText(scrolledHorizontally(s, newValue)),
                     u"+%1 min, 100 min, 0..10"_s.arg(newOffset));
        }
    }

    void dragZoom()
    {
        // View: minutes 100..200 of the full range, values -20..30 (full -20..30).
        const GraphState s = state(1000, 100, 100, -20, 30, -20, 30);
        for (const auto& [p0, p1, view] :
             {// right to left
              std::tuple{QPointF(10.5, 12.7), QPointF(3.2, 4.2), u"+103 min, 7 min, 4..13"_s},
              {QPointF(2.5, 1), QPointF(3.5, 2),
               u"+102 min, 2 min, 1..3"_s}, // halves to even
                                            // negatives truncate toward zero
              {QPointF(0, -5.5), QPointF(10, -12.7), u"+100 min, 10 min, -12..-4"_s},
              // past the full top lowers both
              {QPointF(0, 29.9), QPointF(10, 30), u"+100 min, 10 min, 28..30"_s},
              // lowered bottom raised back
              {QPointF(0, -20), QPointF(10, 30), u"+100 min, 10 min, -20..30"_s}})
            QCOMPARE(viewText(graph::dragZoom(s, p0, p1).value_or(GraphView{})), view);
        QVERIFY(!graph::dragZoom(s, {2.6, 1}, {3.4, 9})); // the same minute
    }

    void zoomOutStaysInFullRange()
    {
        // Full range: minutes 0..1000, values -20..30.
        for (const auto& [offset, span, bottom, top, view] :
             {std::tuple{400, 100, 0.0f, 10.0f, u"+350 min, 200 min, -5..15"_s},
              {20, 100, 0.0f, 10.0f, u"+0 min, 200 min, -5..15"_s},    // near the start
              {880, 100, 0.0f, 10.0f, u"+830 min, 170 min, -5..15"_s}, // near the end
              {400, 5, 0.0f, 10.0f, u"+398 min, 10 min, -5..15"_s},    // odd span halves to even
              {400, 100, 0.5f, 3.5f, u"+350 min, 200 min, -1..5"_s},
              {400, 100, -18.0f, -8.0f, u"+350 min, 200 min, -20..0"_s},
              {400, 100, 20.0f, 30.0f, u"+350 min, 200 min, 15..30"_s},
              {0, 1000, -20.0f, 30.0f, u"+0 min, 1000 min, -20..30"_s}}) // already full
            QCOMPARE(viewText(zoomOut(state(1000, offset, span, -20, 30, bottom, top))), view);
    }

    void cursorTimeRounds()
    {
        const GraphView view{kBase + 17, 100, 0.0f, 10.0f};
        for (const auto& [x, minutes] : {std::pair{0.4, 0}, {0.5, 0}, {1.5, 2}, {7.6, 8}})
            QCOMPARE(cursorTime(view, x), kBase + 17 + minutes * 60);
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

    void decimateKeepsOnlyDrawnSegments_data()
    {
        QTest::addColumn<Records>("records");
        QTest::addColumn<int>("viewOffset");
        QTest::addColumn<int>("span");
        QTest::addColumn<QList<QPointF>>("expected");
        QTest::newRow("segment -3 to 2 drawn")
            << gridOf({{0, 1}, {5, 2}}) << 3 << 10 << QList<QPointF>{{-3, 1}, {2, 2}};
        QTest::newRow("two records in minute 0: their segment is not drawn")
            << gridOf({{0, 1}, {0, 7}, {5, 3}}) << 0 << 10 << QList<QPointF>{{0, 7}, {5, 3}};
        QTest::newRow("the walk ends past the span")
            << gridOf({{0, 1}, {8, 2}, {12, 3}, {15, 4}}) << 0 << 10
            << QList<QPointF>{{0, 1}, {8, 2}, {12, 3}};
        QTest::newRow("one record") << gridOf({{0, 1}}) << 0 << 10 << QList<QPointF>{};
        QTest::newRow("all before the view")
            << gridOf({{0, 1}, {1, 2}}) << 5 << 10 << QList<QPointF>{};
        QTest::newRow("a wide column keeps first, low, high, last in time order")
            << gridOf({{0, 5}, {1, 9}, {2, 1}, {3, 4}, {4, 6}, {30, 2}}) << 0 << 100
            << QList<QPointF>{{0, 5}, {1, 9}, {2, 1}, {4, 6}, {30, 2}};
    }
    void decimateKeepsOnlyDrawnSegments()
    {
        QFETCH(Records, records);
        QFETCH(int, viewOffset);
        QFETCH(int, span);
        const GraphView view{kBase + qint64(viewOffset) * 60, span, -10.0f, 10.0f};
        // 11 pixels over 100 minutes: minutes 0..4 share column 0.
        const std::vector<QPointF> points = decimate(records, view, span == 100 ? 11 : 1000);
        QTEST(QList<QPointF>(points.begin(), points.end()), "expected");
    }

    void decimateLooksLikeEverySegment_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("width");
        QTest::newRow("dense, narrow") << 1u << 5000 << 40;
        QTest::newRow("dense, wide") << 2u << 5000 << 900;
        QTest::newRow("sparse") << 3u << 60 << 700;
        QTest::newRow("two pixels") << 4u << 300 << 2;
        QTest::newRow("odd width") << 5u << 800 << 123;
    }
    void decimateLooksLikeEverySegment()
    {
        QFETCH(quint32, seed);
        QFETCH(int, count);
        QFETCH(int, width);
        QRandomGenerator rng(seed);
        for (int round = 0; round < 40; ++round) {
            const Records records = randomRecords(rng, count);
            const qint64 lastMinute = minuteDiff(records.back().secs, records.front().secs);
            const auto offset = qint64(rng.bounded(int(lastMinute / 2) + 1)) - 3;
            const int span = 1 + rng.bounded(int(lastMinute) + 5);
            const GraphView view{records.back().secs + offset * 60, span, -10.0f, 10.0f};

            const std::vector<QPointF> all = drawnPoints(records, view);
            const std::vector<QPointF> kept = decimate(records, view, width);
            // Kept points are drawn points in the same order.
            size_t j = 0;
            for (const QPointF& p : kept) {
                j = size_t(std::find(all.begin() + qint64(j), all.end(), p) - all.begin()) + 1;
                QVERIFY2(j <= all.size(), "a kept point is not a drawn point, or is out of order");
            }
            // Each column covers the same values and joins its neighbours at the same points,
            // so the first and last points are kept too.
            const auto got = columns(kept, view, width);
            QVERIFY(got == columns(all, view, width));
            for (const auto& c : got)
                QVERIFY(c.second.count <= 4);
        }
    }

    void nearestRecord()
    {
        // Grid indices, newest first: 0 at minute 20, 1 at 10, 2 and 3 at 6, 4 at 0.
        const Records records = gridOf({{0, 1}, {6, 2}, {6, 3}, {10, 4}, {20, 5}});
        // First selected, minute of the cursor, the record read (-1: readout unchanged).
        for (const auto& [first, tMinute, expected] :
             {std::tuple{0, 6, 2}, // an exact minute takes the newest in it
              {0, 15, 1},          // a tie goes to the older
              {0, 16, 0},          // the newer is nearer
              {0, 7, 2},           // the older is nearer
              {0, -1, -1},         // before every record
              {0, 99, 0},          // after every record
              {1, 19, 1},          // never past the newest selected
              {0, 0, 4}}) {        // the oldest exactly
            const qint64 t = kBase + tMinute * 60 + 59;
            QCOMPARE(graph::nearestRecord(records, first, 4, t).value_or(-1), expected);
            QCOMPARE(scanNearest(records, first, 4, t).value_or(-1), expected);
        }
    }

    void binarySearchMatchesTheScan()
    {
        QRandomGenerator rng(11);
        for (const int count : {5, 200, 5000}) {
            for (int round = 0; round < 200; ++round) {
                const Records records = randomRecords(rng, count);
                const int first = rng.bounded(count);
                const int last = first + rng.bounded(count - first);
                const qint64 lastMinute = minuteDiff(kBase, records.front().secs);
                const qint64 t =
                    kBase + (qint64(rng.bounded(int(lastMinute) + 6)) - 3) * 60 + rng.bounded(60);
                QCOMPARE(graph::nearestRecord(records, first, last, t),
                         scanNearest(records, first, last, t));
            }
        }
    }
};

QTEST_APPLESS_MAIN(TestGraphRules)
#include "tst_graphrules.moc"
