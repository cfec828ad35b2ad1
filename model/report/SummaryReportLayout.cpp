#include "model/report/SummaryReportLayout.h"

#include "model/AppTitle.h"
#include "model/Formatting.h"
#include "model/SqlDateTime.h"
#include "model/graph/GraphRules.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace sx {

namespace summary_report {

namespace {

enum Table { DayTable = 0, ContactDayTable, ExcursionTable, OpeningTable, GapTable };

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
        return {0.0, 0.12, 0.24, 0.36, 0.48, 0.65, 0.78, 1.0};
    case ContactDayTable:
        return {0.0, 0.2, 0.45, 0.7, 1.0};
    case GapTable:
        return {0.0, 0.28, 0.56, 0.84};
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
    default: // the openings and the gaps
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
                   u" χωρίς έγκυρη τιμή ή άλλου τύπου, που δεν μετρήθηκαν)"_s;
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
    line(u"Χρόνος χωρίς καταγραφές: "_s + durationText(t.noDataSecs) +
         u" , το μεγαλύτερο κενό: "_s + durationText(t.longestGapSecs));
    line(u"Συνήθες διάστημα καταγραφών (διάμεσο της περιόδου): "_s +
         durationText(t.usualIntervalSecs));
    line(u"Κενό είναι διάστημα πάνω από "_s + QString::number(summary::kGapFactor) +
         u" συνήθη· ο χρόνος του δεν μετρά ούτε εντός ούτε εκτός ορίων."_s);
    if (!s.contact)
        line(u"Η μέση τιμή σταθμίζεται με τον χρόνο: κάθε καταγραφή μετρά έως την επόμενη."_s);

    gap();
    line(u"ΑΝΑ ΗΜΕΡΑ"_s);
    const QString none = u"χωρίς καταγραφές"_s;
    if (s.contact) {
        cells(ContactDayTable,
              {u"Ημέρα"_s, u"Ανοίγματα"_s, u"Λεπτά ανοιχτή"_s, u"Λεπτά χωρίς καταγραφές"_s}, true);
        for (const summary::DayRow& d : s.days)
            cells(ContactDayTable,
                  {dayText(d.day), d.readings > 0 ? QString::number(d.excursions) : none,
                   QString::number(summary::minutesOf(d.outsideSecs)),
                   QString::number(summary::minutesOf(d.noDataSecs))});
    } else {
        cells(DayTable,
              {u"Ημέρα"_s, u"Ελάχιστη"_s, u"Μέση"_s, u"Μέγιστη"_s, u"Λεπτά εκτός ορίων"_s,
               u"Υπερβάσεις"_s, u"Λεπτά χωρίς καταγραφές"_s},
              true);
        for (const summary::DayRow& d : s.days) {
            const bool any = d.readings > 0;
            cells(DayTable,
                  {dayText(d.day), any ? valueText(d.min, type) : QString(),
                   any ? valueText(d.mean, type) : none, any ? valueText(d.max, type) : QString(),
                   QString::number(summary::minutesOf(d.outsideSecs)),
                   QString::number(d.excursions),
                   QString::number(summary::minutesOf(d.noDataSecs))});
        }
    }

    gap();
    line(u"ΚΕΝΑ ΚΑΤΑΓΡΑΦΩΝ"_s);
    if (s.gaps.isEmpty()) {
        line(u"Κανένα κενό καταγραφών στην περίοδο."_s);
    } else {
        cells(GapTable, {u"Από"_s, u"Έως"_s, u"Διάρκεια"_s}, true);
        for (const summary::Gap& g : s.gaps)
            cells(GapTable, {timeText(g.startSecs), timeText(g.endSecs), durationText(g.realSecs)});
    }

    gap();
    line(s.contact ? u"ΑΝΟΙΓΜΑΤΑ"_s : u"ΥΠΕΡΒΑΣΕΙΣ ΟΡΙΩΝ"_s);
    if (s.excursions.isEmpty()) {
        line(s.contact ? u"Κανένα άνοιγμα στην περίοδο."_s
                       : u"Καμία υπέρβαση ορίων στην περίοδο."_s);
        return out;
    }
    // * began before the period, ** ended by a gap, (συνεχίζεται) goes on after it.
    const auto start = [](const summary::Excursion& e) {
        return timeText(e.startSecs) + (e.startedBefore ? u"*"_s : QString());
    };
    const auto end = [](const summary::Excursion& e) {
        if (e.runsOn)
            return u"(συνεχίζεται)"_s;
        return timeText(e.endSecs) + (e.cutByGap ? u"**"_s : QString());
    };
    bool before = false;
    bool cut = false;
    if (s.contact) {
        cells(OpeningTable, {u"Άνοιγμα"_s, u"Κλείσιμο"_s, u"Διάρκεια"_s}, true);
        for (const summary::Excursion& e : s.excursions)
            cells(OpeningTable, {start(e), end(e), durationText(e.durationSecs())});
    } else {
        cells(ExcursionTable, {u"Έναρξη"_s, u"Λήξη"_s, u"Διάρκεια"_s, u"Ακραία τιμή"_s, u"Όριο"_s},
              true);
        for (const summary::Excursion& e : s.excursions)
            cells(ExcursionTable,
                  {start(e), end(e), durationText(e.durationSecs()), valueText(e.extreme, type),
                   e.side == summary::Side::Above ? u"Μέγιστο"_s : u"Ελάχιστο"_s});
    }
    for (const summary::Excursion& e : s.excursions) {
        before = before || e.startedBefore;
        cut = cut || (e.cutByGap && !e.runsOn);
    }
    if (before)
        line(u"* Άρχισε πριν από την περίοδο· μετρά μόνο το μέρος της μέσα στην περίοδο."_s);
    if (cut)
        line(u"** Οι καταγραφές σταματούν: η λήξη είναι η τελευταία καταγραφή και ένα συνήθες "
             u"διάστημα."_s);
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

} // namespace sx
