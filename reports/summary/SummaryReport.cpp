#include "reports/summary/SummaryReport.h"

#include "model/AppTitle.h"
#include "model/Formatting.h"
#include "model/SqlDateTime.h"
#include "model/graph/GraphRules.h"
#include "reports/PrintRoutines.h"
#include "reports/ReportPainter.h"
#include "reports/graph/GraphPainting.h"

#include <QPagedPaintDevice>
#include <QPrinter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

namespace summary_report {

namespace {

enum Table { DayTable = 0, ContactDayTable, ExcursionTable, OpeningTable };

QString dayText(QDate d)
{
    return d.toString(u"dd/MM/yyyy"_s);
}

QString timeText(qint64 secs)
{
    return formatRecordTime(toQDateTime(secs));
}

QString valueText(double v, int type)
{
    return formatValue(v) + unitSuffix(type);
}

} // namespace

QString titleText(const summary::SummaryPeriod& period)
{
    return appTitle() + (period.wholeYear() ? u" / ΣΥΝΟΨΗ ΕΤΟΥΣ"_s : u" / ΣΥΝΟΨΗ ΜΗΝΑ"_s);
}

QString headingText(const summary::SummaryInput& in, const records::ZoneEntry& zone)
{
    return u"ΣΥΣΤΗΜΑ:"_s + in.unitName + u" ("_s + in.serial + u") , ΖΩΝΗ ΠΑΡΑΚΟΛΟΥΘΗΣΗΣ:"_s +
           records::zoneItemText(zone) + u" , ΠΕΡΙΟΔΟΣ:"_s + summary::periodText(in.period);
}

QString limitsText(const records::ZoneEntry& zone)
{
    const summary::ZoneRule rule = summary::ruleOf(zone);
    if (rule.isContact())
        return u"Επαφή: μετρώνται τα ανοίγματα (ΑΝΟΙΧΤΗ) και η διάρκειά τους."_s;
    const auto limit = [&](const std::optional<double>& v) {
        return v ? valueText(*v, zone.sensorType) : u"εκτός λειτουργίας"_s;
    };
    return u"Ελάχιστο όριο: "_s + limit(rule.minLimit) + u" , Μέγιστο όριο: "_s +
           limit(rule.maxLimit);
}

QString durationText(qint64 secs)
{
    const qint64 minutes = summary::minutesOf(secs);
    return u"%1 ώρ. %2 λεπ."_s.arg(minutes / 60).arg(minutes % 60, 2, 10, QChar(u'0'));
}

QString pageLine(int page, int pages)
{
    return u"Σελίδα "_s + QString::number(page) + u'/' + QString::number(pages);
}

QList<double> columnEdges(int table)
{
    switch (table) {
    case DayTable:
        return {0.0, 0.14, 0.30, 0.46, 0.62, 0.84, 1.0};
    case ContactDayTable:
        return {0.0, 0.2, 0.5, 0.8};
    case ExcursionTable:
        return {0.0, 0.2, 0.4, 0.58, 0.78, 1.0};
    default:
        return {0.0, 0.28, 0.56, 0.84};
    }
}

bool alignRight(int table, int column)
{
    switch (table) {
    case DayTable:
    case ContactDayTable:
        return column > 0;
    case ExcursionTable:
        return column == 2 || column == 3;
    default:
        return column == 2;
    }
}

QList<Block> zoneBlocks(const summary::SummaryInput& in, int zoneIndex)
{
    const summary::ZoneReport& z = in.zones.at(zoneIndex);
    const summary::ZoneSummary& s = z.summary;
    const summary::Totals& t = s.totals;
    const int type = z.zone.sensorType;
    QList<Block> out;
    const auto line = [&](const QString& text) {
        out.append({Block::Kind::Line, {text}, -1, false, zoneIndex});
    };
    const auto cells = [&](int table, const QStringList& texts, bool head = false) {
        out.append({Block::Kind::Cells, texts, table, head, zoneIndex});
    };
    const auto gap = [&] { out.append({Block::Kind::Gap, {}, -1, false, zoneIndex}); };

    line(limitsText(z.zone));
    if (!s.contact && z.chart.size() >= 2) {
        gap();
        out.append({Block::Kind::Chart, {}, -1, false, zoneIndex});
    }
    gap();
    line(u"ΣΥΝΟΛΑ ΠΕΡΙΟΔΟΥ"_s);
    QString counted = u"Καταγραφές: "_s + QString::number(t.readings);
    if (t.skipped > 0)
        counted += u" (και "_s + QString::number(t.skipped) +
                   u" χωρίς τιμή ή άλλου τύπου, που δεν μετρήθηκαν)"_s;
    line(counted);
    if (s.contact) {
        line(u"Ανοίγματα: "_s + QString::number(t.excursions) + u" , συνολική διάρκεια: "_s +
             durationText(t.outsideSecs) + u" , το μεγαλύτερο: "_s + durationText(t.longestSecs));
    } else {
        if (t.readings > 0)
            line(u"Ελάχιστη: "_s + valueText(t.min, type) + u" , Μέση: "_s +
                 valueText(t.mean, type) + u" , Μέγιστη: "_s + valueText(t.max, type));
        line(u"Υπερβάσεις ορίων: "_s + QString::number(t.excursions) +
             u" , χρόνος εκτός ορίων: "_s + durationText(t.outsideSecs) + u" , η μεγαλύτερη: "_s +
             durationText(t.longestSecs));
    }

    gap();
    line(u"ΑΝΑ ΗΜΕΡΑ"_s);
    if (s.contact) {
        cells(ContactDayTable, {u"Ημέρα"_s, u"Ανοίγματα"_s, u"Λεπτά ανοιχτή"_s}, true);
        for (const summary::DayRow& d : s.days)
            cells(ContactDayTable, {dayText(d.day), QString::number(d.excursions),
                                    QString::number(summary::minutesOf(d.outsideSecs))});
    } else {
        cells(DayTable,
              {u"Ημέρα"_s, u"Ελάχιστη"_s, u"Μέση"_s, u"Μέγιστη"_s, u"Λεπτά εκτός ορίων"_s,
               u"Υπερβάσεις"_s},
              true);
        for (const summary::DayRow& d : s.days) {
            const bool any = d.readings > 0;
            cells(DayTable,
                  {dayText(d.day), any ? valueText(d.min, type) : u"-"_s,
                   any ? valueText(d.mean, type) : u"-"_s, any ? valueText(d.max, type) : u"-"_s,
                   QString::number(summary::minutesOf(d.outsideSecs)),
                   QString::number(d.excursions)});
        }
    }

    gap();
    line(s.contact ? u"ΑΝΟΙΓΜΑΤΑ"_s : u"ΥΠΕΡΒΑΣΕΙΣ ΟΡΙΩΝ"_s);
    if (s.excursions.isEmpty()) {
        line(s.contact ? u"Κανένα άνοιγμα στην περίοδο."_s
                       : u"Καμία υπέρβαση ορίων στην περίοδο."_s);
        return out;
    }
    const QString runsOn = u" (συνεχίζεται)"_s;
    if (s.contact) {
        cells(OpeningTable, {u"Άνοιγμα"_s, u"Κλείσιμο"_s, u"Διάρκεια"_s}, true);
        for (const summary::Excursion& e : s.excursions)
            cells(OpeningTable,
                  {timeText(e.startSecs), e.runsOn ? runsOn.trimmed() : timeText(e.endSecs),
                   durationText(e.durationSecs())});
        return out;
    }
    cells(ExcursionTable, {u"Έναρξη"_s, u"Λήξη"_s, u"Διάρκεια"_s, u"Ακραία τιμή"_s, u"Όριο"_s},
          true);
    for (const summary::Excursion& e : s.excursions)
        cells(ExcursionTable,
              {timeText(e.startSecs), e.runsOn ? runsOn.trimmed() : timeText(e.endSecs),
               durationText(e.durationSecs()), valueText(e.extreme, type),
               e.side == summary::Side::Above ? u"Μέγιστο"_s : u"Ελάχιστο"_s});
    return out;
}

Plan planBlocks(const QList<Block>& blocks, const QList<double>& heights, double firstY,
                double bottomY)
{
    Plan plan;
    int page = -1;
    int zone = -1;
    double y = firstY;
    double headHeight = 0.0;
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        const Block& b = blocks[i];
        const double h = heights.value(i);
        Placement at;
        if (b.zone != zone) {
            zone = b.zone;
            ++page;
            y = firstY;
            plan.zoneFirstPage.append(page);
        } else if (y + h > bottomY && y > firstY) {
            ++page;
            y = firstY;
            // A table running on is titled again, unless this line is its head.
            at.headAbove = b.kind == Block::Kind::Cells && !b.head;
            if (at.headAbove)
                y += headHeight;
        }
        if (b.head)
            headHeight = h;
        // A gap at the top of a page only pushes the page down.
        at.page = page;
        at.y = y;
        plan.blocks.append(at);
        if (!(b.kind == Block::Kind::Gap && y == firstY))
            y += h;
    }
    plan.pages = std::max(1, page + 1);
    return plan;
}

} // namespace summary_report

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
    QList<const Block*> heads(4, nullptr);
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
        if (at.headAbove && heads.value(b.table))
            printCells(*heads[b.table], at.y - headHeight);
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
