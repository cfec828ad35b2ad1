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

QImage whiteImage(int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(Qt::white);
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

} // namespace

// The pictures of the graph drawn on images, and the page plan of the marked points.
class TestGraphPaint : public QObject {
    Q_OBJECT

private slots:
    void valueLabelsAreCentredOnTheChartsRows()
    {
        const int chartHeight = 401;
        const GraphView view{0, 100, -20.0f, 10.0f}; // major step 4: -20, -16, ... 8
        QImage image = whiteImage(60, chartHeight + 2 * kLabelHalfPx - 1);
        {
            QPainter p(&image);
            paintValueLabels(p, image.size(), view);
        }
        const std::vector<double> rows = inkRuns(image, true);
        const std::vector<double> ticks = valueTicks(-20, 10, 4);
        QCOMPARE(rows.size(), ticks.size());
        const PictureScale chart = chartScale(view, 500, chartHeight);
        for (size_t i = 0; i < ticks.size(); ++i) {
            // The picture starts half a label above the chart; labels are listed top down.
            const double want = chart.toPixel({0, ticks[ticks.size() - 1 - i]}).y() + kLabelHalfPx;
            QVERIFY2(std::abs(rows[i] - want) <= 2.0,
                     qPrintable(u"label %1 at %2, tick at %3"_s.arg(i).arg(rows[i]).arg(want)));
        }
        // Right-aligned: every label ends at the right edge.
        QVERIFY(inkBox(image).right() >= image.width() - 3);
    }
    void timeLabelsAreCentredOnTheChartsColumns()
    {
        const int chartWidth = 801;
        const GraphView view{1'772'323'200, 400, 0.0f, 10.0f}; // step 20 minutes
        QImage image =
            whiteImage(chartWidth + 2 * kLabelHalfPx - 1, int(std::ceil(timeLabelLength())) + 6);
        {
            QPainter p(&image);
            paintTimeLabels(p, image.size(), chartWidth, view);
        }
        const std::vector<double> columns = inkRuns(image, false);
        const std::vector<int> ticks = timeTicks(400, timeStep(400));
        QCOMPARE(columns.size(), ticks.size());
        const PictureScale chart = chartScale(view, chartWidth, 300);
        for (size_t i = 0; i < ticks.size(); ++i) {
            const double want = chart.toPixel({double(ticks[i]), 0}).x() + kLabelHalfPx;
            QVERIFY2(std::abs(columns[i] - want) <= 2.0,
                     qPrintable(u"label %1 at %2, tick at %3"_s.arg(i).arg(columns[i]).arg(want)));
        }
        // Reading upwards from the bottom edge, the whole label inside the picture.
        const QRect box = inkBox(image);
        QVERIFY(box.bottom() >= image.height() - 4);
        QVERIFY(box.top() >= 1);
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
        QImage page = whiteImage(4000, 700);
        double scale = 0;
        {
            QPainter p(&page);
            scale = paintChartPage(p, page.size(), in);
        }
        const QRect box = inkBox(page);
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
