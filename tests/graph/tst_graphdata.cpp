#include "model/graph/Decimate.h"
#include "model/graph/GraphRules.h"
#include "model/graph/Readout.h"

#include <QRandomGenerator>
#include <QTest>

#include <map>

using namespace sx;
using namespace sx::graph;

namespace {

constexpr qint64 kBase = 1'700'000'040; // a whole minute

using Records = std::vector<RecordPoint>;

// Grid order (newest first) from (minute, value) pairs given oldest first.
Records grid(const std::vector<std::pair<qint64, float>>& oldestFirst)
{
    Records out;
    for (auto it = oldestFirst.rbegin(); it != oldestFirst.rend(); ++it)
        out.push_back({kBase + it->first * 60 + (it->first % 7) * 7, it->second, 1});
    return out;
}

// The chart's walk as written: every drawn point in time order.
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
        if (segmentStopsWalk(xp, xn, view.spanMinutes))
            break;
        if (!segmentDrawn(xp, xn)) {
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
        if (d == 0)
            return i;
        if (d < 0) {
            if (i > first && minuteDiff(tSecs, records[size_t(i - 1)].secs) < -d)
                return i - 1;
            return i;
        }
    }
    return std::nullopt;
}

struct Column {
    QPointF first;
    QPointF last;
    double low = 0;
    double high = 0;
    int count = 0;
};

std::map<qint64, Column> columns(const std::vector<QPointF>& points, const GraphView& view,
                                 int width)
{
    std::map<qint64, Column> out;
    for (const QPointF& p : points) {
        Column& c = out[pixelColumn(p.x(), view.spanMinutes, width)];
        if (c.count == 0) {
            c.first = p;
            c.low = c.high = p.y();
        }
        c.last = p;
        c.low = std::min(c.low, p.y());
        c.high = std::max(c.high, p.y());
        ++c.count;
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
    return grid(oldestFirst);
}

} // namespace

Q_DECLARE_METATYPE(Records)

class TestGraphData : public QObject {
    Q_OBJECT

private slots:
    void decimateKeepsOnlyDrawnSegments_data()
    {
        QTest::addColumn<Records>("records");
        QTest::addColumn<int>("viewOffset");
        QTest::addColumn<int>("span");
        QTest::addColumn<QList<QPointF>>("expected");
        QTest::newRow("segment -3 to 2 drawn")
            << grid({{0, 1}, {5, 2}}) << 3 << 10 << QList<QPointF>{{-3, 1}, {2, 2}};
        QTest::newRow("two records in minute 0: their segment is not drawn")
            << grid({{0, 1}, {0, 7}, {5, 3}}) << 0 << 10 << QList<QPointF>{{0, 7}, {5, 3}};
        QTest::newRow("the walk ends past the span")
            << grid({{0, 1}, {8, 2}, {12, 3}, {15, 4}}) << 0 << 10
            << QList<QPointF>{{0, 1}, {8, 2}, {12, 3}};
        QTest::newRow("one record") << grid({{0, 1}}) << 0 << 10 << QList<QPointF>{};
        QTest::newRow("all before the view")
            << grid({{0, 1}, {1, 2}}) << 5 << 10 << QList<QPointF>{};
        QTest::newRow("a wide column keeps first, low, high, last in time order")
            << grid({{0, 5}, {1, 9}, {2, 1}, {3, 4}, {4, 6}, {30, 2}}) << 0 << 100
            << QList<QPointF>{{0, 5}, {1, 9}, {2, 1}, {4, 6}, {30, 2}};
    }
    void decimateKeepsOnlyDrawnSegments()
    {
        QFETCH(Records, records);
        QFETCH(int, viewOffset);
        QFETCH(int, span);
        QFETCH(QList<QPointF>, expected);
        const GraphView view{kBase + qint64(viewOffset) * 60, span, -10.0f, 10.0f};
        // 11 pixels over 100 minutes: minutes 0..4 share column 0.
        const std::vector<QPointF> points = decimate(records, view, span == 100 ? 11 : 1000);
        QCOMPARE(QList<QPointF>(points.begin(), points.end()), expected);
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
            QCOMPARE(kept.empty(), all.empty());
            if (all.empty())
                continue;
            QCOMPARE(kept.front(), all.front());
            QCOMPARE(kept.back(), all.back());
            // Kept points are drawn points in the same order.
            size_t j = 0;
            for (const QPointF& p : kept) {
                while (j < all.size() && all[j] != p)
                    ++j;
                QVERIFY2(j < all.size(), "a kept point is not a drawn point, or is out of order");
                ++j;
            }
            // Each column covers the same values and joins its neighbours at the same points.
            const auto want = columns(all, view, width);
            const auto got = columns(kept, view, width);
            QCOMPARE(got.size(), want.size());
            for (const auto& [column, w] : want) {
                const Column& g = got.at(column);
                QCOMPARE(g.first, w.first);
                QCOMPARE(g.last, w.last);
                QCOMPARE(g.low, w.low);
                QCOMPARE(g.high, w.high);
                QVERIFY(g.count <= 4);
            }
        }
    }

    void nearestRecord()
    {
        // Grid indices, newest first: 0 at minute 20, 1 at 10, 2 and 3 at 6, 4 at 0.
        const Records records = grid({{0, 1}, {6, 2}, {6, 3}, {10, 4}, {20, 5}});
        const struct {
            int first;
            qint64 tMinute;
            int expected; // -1: readout unchanged
        } cases[] = {
            {0, 6, 2},   // an exact minute takes the newest in it
            {0, 15, 1},  // a tie goes to the older
            {0, 16, 0},  // the newer is nearer
            {0, 7, 2},   // the older is nearer
            {0, -1, -1}, // before every record
            {0, 99, 0},  // after every record
            {1, 19, 1},  // never past the newest selected
            {0, 0, 4},   // the oldest exactly
        };
        for (const auto& c : cases) {
            const qint64 t = kBase + c.tMinute * 60 + 59;
            QCOMPARE(graph::nearestRecord(records, c.first, 4, t).value_or(-1), c.expected);
            QCOMPARE(scanNearest(records, c.first, 4, t).value_or(-1), c.expected);
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

QTEST_APPLESS_MAIN(TestGraphData)
#include "tst_graphdata.moc"
