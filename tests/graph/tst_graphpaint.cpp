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

} // namespace

// The chart page drawn on an image, and the numbers the graph writes. Where the labels go is
// tst_graphrules' part (the scales and their margins).
class TestGraphPaint : public QObject {
    Q_OBJECT

private slots:
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
