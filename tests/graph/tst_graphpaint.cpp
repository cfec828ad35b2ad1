#include "model/graph/GraphRules.h"
#include "reports/graph/GraphPainting.h"
#include "reports/graph/GraphPrint.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <vector>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::graph;

namespace {

// A white picture of the given size, drawn on by draw(painter, size).
template <typename Draw> QImage painted(QSize size, Draw draw)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    draw(p, size);
    return image;
}

bool ink(const QImage& image, int x, int y)
{
    return qGray(image.pixel(x, y)) < 128;
}

QRect inkBox(const QImage& image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (ink(image, x, y))
                box |= QRect(x, y, 1, 1);
    return box;
}

// Centres of the runs of rows (or columns) that hold ink, in order.
std::vector<double> inkRuns(const QImage& image, bool rows)
{
    std::vector<double> centres;
    const int n = rows ? image.height() : image.width();
    const int m = rows ? image.width() : image.height();
    int start = -1;
    for (int i = 0; i <= n; ++i) {
        bool any = false;
        for (int j = 0; i < n && j < m && !any; ++j)
            any = rows ? ink(image, j, i) : ink(image, i, j);
        if (any && start < 0)
            start = i;
        if (!any && start >= 0) {
            centres.push_back((start + i - 1) / 2.0);
            start = -1;
        }
    }
    return centres;
}

void compareRuns(const std::vector<double>& labels, const std::vector<double>& ticks)
{
    QCOMPARE(labels.size(), ticks.size());
    for (size_t i = 0; i < ticks.size(); ++i)
        QVERIFY2(std::abs(labels[i] - ticks[i]) <= 2.0,
                 qPrintable(u"label %1 at %2, tick at %3"_s.arg(i).arg(labels[i]).arg(ticks[i])));
}

} // namespace

// The pictures of the graph drawn on images.
class TestGraphPaint : public QObject {
    Q_OBJECT

private slots:
    // The pictures start half a label before the chart.
    void labelsAreCentredOnTheChartsTicks()
    {
        const GraphView values{0, 100, -20.0f, 10.0f}; // major step 4: -20, -16, ... 8
        const QImage v = painted(QSize(60, 400 + 2 * kLabelHalfPx),
                                 [&](QPainter& p, QSize s) { paintValueLabels(p, s, values); });
        std::vector<double> ticks;
        for (const double t : valueTicks(-20, 10, 4)) // labels are listed top down
            ticks.insert(ticks.begin(),
                         chartScale(values, 500, 401).toPixel({0, t}).y() + kLabelHalfPx);
        compareRuns(inkRuns(v, true), ticks);
        QVERIFY(inkBox(v).right() >= v.width() - 3); // right-aligned

        const GraphView times{1'772'323'200, 400, 0.0f, 10.0f}; // step 20 minutes
        const QImage t =
            painted(QSize(800 + 2 * kLabelHalfPx, int(std::ceil(timeLabelLength())) + 6),
                    [&](QPainter& p, QSize s) { paintTimeLabels(p, s, 801, times); });
        ticks.clear();
        for (const int m : timeTicks(400, timeStep(400)))
            ticks.push_back(chartScale(times, 801, 300).toPixel({double(m), 0}).x() + kLabelHalfPx);
        compareRuns(inkRuns(t, false), ticks);
        // Reading upwards from the bottom edge, the whole label inside the picture.
        QVERIFY(inkBox(t).bottom() >= t.height() - 4 && inkBox(t).top() >= 1);
    }
    void chartPageStartsAtTheTopLeft()
    {
        // A page much wider than the layout: the chart stays at the left edge.
        const std::vector<RecordPoint> none;
        ChartPrintInput in;
        in.data = {&none, 0, 0, GraphView{0, 100, 0.0f, 10.0f}, {}, {}};
        in.unitRect = QRect(0, 0, 60, 418);
        in.chartRect = QRect(60, 9, 800, 400);
        in.timeRect = QRect(51, 410, 818, 130);
        in.details = {{u"Mονάδα μέτρησης: °C"_s, Qt::black}};
        double scale = 0;
        const QRect box = inkBox(painted(
            QSize(4000, 700), [&](QPainter& p, QSize s) { scale = paintChartPage(p, s, in); }));
        QVERIFY(scale > 0.5 && scale < 1.5);
        QVERIFY2(box.left() < 60 * scale && box.top() < 20 * scale,
                 qPrintable(u"%1,%2"_s.arg(box.left()).arg(box.top())));
        QVERIFY2(box.right() <= 869 * scale + 2, qPrintable(QString::number(box.right())));
    }
    void plainNumbers()
    {
        QCOMPARE(plainNumber(23.5), u"23.5"_s);
        QCOMPARE(plainNumber(double(23.1f)), u"23.1"_s); // a float's digits, not a double's
        QCOMPARE(plainNumber(-19.6 + 1e-13), u"-19.6"_s);
        QCOMPARE(plainNumber(1234567), u"1234567"_s); // no grouping
        QCOMPARE(plainNumber(-0.0), u"0"_s);
        QCOMPARE(limitValue(u"25.0"_s).value_or(-1), 25.0);
        QVERIFY(!limitValue(QString()));
    }
};

QTEST_MAIN(TestGraphPaint)
#include "tst_graphpaint.moc"
