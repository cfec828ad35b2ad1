#include "reports/summary/SummaryReport.h"

#include "model/AppTitle.h"
#include "model/Formatting.h"
#include "model/SqlDateTime.h"
#include "model/graph/GraphRules.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"
#include "reports/graph/GraphPainting.h"

#include <QHash>
#include <QPagedPaintDevice>
#include <QPrinter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

using namespace summary_report;

// The period's chart with the zone's limits, drawn by the graph's own code.
void drawChart(ReportPainter& painter, const summary::ZoneReport& z,
               const summary::SummaryPeriod& period, double topMm, double widthMm)
{
    const summary::ZoneRule rule = summary::ruleOf(z.zone);
    const auto last = static_cast<int>(z.chart.size()) - 1;
    graph::GraphState state = graph::initialState(z.chart, 0, last);
    graph::GraphView view = state.view;
    view.startSecs = summary::secsOf(period.first());
    view.spanMinutes =
        static_cast<int>((summary::secsOf(period.last()) + 86400 - view.startSecs) / 60);
    // The limit lines stay on the chart even where no reading came near them.
    const auto widen = [&](const std::optional<double>& limit) {
        if (!limit)
            return;
        view.bottom = std::min(view.bottom, static_cast<float>(std::floor(*limit / 10.0) * 10.0));
        view.top = std::max(view.top, static_cast<float>(std::ceil(*limit / 10.0) * 10.0));
    };
    widen(rule.minLimit);
    widen(rule.maxLimit);
    if (view.top <= view.bottom)
        view.top = view.bottom + 10.0f;

    // Laid out in picture units like the graph window, then scaled onto the page.
    const int unitWidth = static_cast<int>(std::ceil(graph::valueLabelWidth(u"-8888888"_s))) + 2;
    const int timeHeight = static_cast<int>(std::ceil(graph::timeLabelLength())) + 6;
    const int chartW = 1000;
    const int totalW = unitWidth + graph::kLabelHalfPx + chartW + graph::kLabelHalfPx;
    const double scale = widthMm * painter.deviceUnitsPerMmX() / totalW;
    const int totalH = static_cast<int>(kChartHeightMm * painter.deviceUnitsPerMmY() / scale);
    const int chartH = totalH - timeHeight - 2 * graph::kLabelHalfPx;
    const int chartX = unitWidth + graph::kLabelHalfPx;
    const int chartY = graph::kLabelHalfPx;

    graph::ChartData data{&z.chart, 0, last, view, rule.maxLimit, rule.minLimit};
    QPainter& p = painter.painter();
    p.save();
    p.translate(painter.toDevice(kMarginMm, topMm));
    p.scale(scale, scale);
    const auto inPicture = [&p](QRect rect, auto&& paint) {
        p.save();
        p.translate(rect.topLeft());
        p.setClipRect(QRect(QPoint(0, 0), rect.size()));
        paint();
        p.restore();
    };
    const QSize chartSize(chartW, chartH);
    inPicture(QRect(chartX, chartY, chartW, chartH),
              [&] { graph::paintChart(p, chartSize, data); });
    const QSize unitSize(unitWidth, chartH + 2 * graph::kLabelHalfPx - 1);
    inPicture(QRect(QPoint(0, 0), unitSize), [&] { graph::paintValueLabels(p, unitSize, view); });
    const QSize timeSize(chartW + 2 * graph::kLabelHalfPx - 1, timeHeight);
    inPicture(QRect(QPoint(chartX - graph::kLabelHalfPx, chartY + chartH), timeSize),
              [&] { graph::paintTimeLabels(p, timeSize, chartW, view); });
    p.restore();
}

} // namespace

bool drawSummaryReport(QPagedPaintDevice& device, const summary::SummaryInput& in)
{
    ReportPainter painter(device);
    if (!painter.isActive())
        return false;
    const double w = painter.pageWidth();
    const double textWidth = w - 2 * kMarginMm;
    const double lineHeight = painter.textHeight();
    const QString title = titleText(in.period);

    QList<Block> blocks;
    QStringList headings;
    int headingLines = 1;
    for (int z = 0; z < in.zones.size(); ++z) {
        blocks += zoneBlocks(in, z);
        QString heading = headingText(in, in.zones[z].zone);
        headingLines = std::max(headingLines, wrapToWidth(heading, textWidth, painter));
        headings << heading;
    }
    // A table's head takes a little more, for the rule under it.
    const double headHeight = lineHeight + 1.0;
    QList<double> heights;
    for (const Block& b : blocks)
        heights << (b.kind == Block::Kind::Chart ? kChartHeightMm
                    : b.kind == Block::Kind::Gap ? lineHeight / 2
                    : b.head                     ? headHeight
                                                 : lineHeight);
    const double bannerBottom = kMarginMm + 2 * lineHeight + 1.0;
    const double firstY = bannerBottom + (headingLines + 1) * lineHeight;
    const Plan plan = planBlocks(blocks, heights, firstY, painter.pageHeight() - kMarginMm);

    const auto pageTop = [&](int page, int zone) {
        printBanner(painter, kMarginMm, kMarginMm, title);
        painter.setCurrentY(bannerBottom);
        printLinesAt(painter, headings.value(zone), kMarginMm);
        const QString number = pageLine(page + 1, plan.pages);
        painter.setCurrentX(w - 20.0 - painter.textWidth(number));
        painter.setCurrentY(kPageLineTopMm);
        painter.print(number);
    };
    const auto printCells = [&](const Block& b, double y) {
        const QList<double> edges = columnEdges(b.table);
        for (qsizetype c = 0; c < b.cells.size() && c + 1 < edges.size(); ++c) {
            const QString& text = b.cells[c];
            const double left = kMarginMm + edges[c] * textWidth;
            const double right = kMarginMm + edges[c + 1] * textWidth - 2.0;
            painter.setCurrentX(
                alignRight(b.table, static_cast<int>(c)) ? right - painter.textWidth(text) : left);
            painter.setCurrentY(y);
            painter.print(text);
        }
        if (b.head)
            painter.drawLine(kMarginMm, y + lineHeight + 0.3, w - kMarginMm, y + lineHeight + 0.3);
    };

    int page = -1;
    QHash<int, const Block*> heads; // the last head of each table
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        const Block& b = blocks[i];
        const Placement& at = plan.blocks[i];
        if (at.page != page) {
            if (page >= 0 && !painter.newPage())
                return false;
            page = at.page;
            pageTop(page, b.zone);
        }
        if (b.head)
            heads[b.table] = &b;
        if (const Block* head = heads.value(b.table); at.headAbove && head)
            printCells(*head, at.y - headHeight);
        switch (b.kind) {
        case Block::Kind::Line:
            painter.setCurrentX(kMarginMm);
            painter.setCurrentY(at.y);
            painter.print(b.cells.value(0));
            break;
        case Block::Kind::Cells:
            printCells(b, at.y);
            break;
        case Block::Kind::Chart:
            drawChart(painter, in.zones[b.zone], in.period, at.y, textWidth);
            break;
        case Block::Kind::Gap:
            break;
        }
    }
    return painter.end();
}

} // namespace sx
