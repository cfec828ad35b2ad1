#include "model/report/MarkedPointsLayout.h"

#include "model/AppTitle.h"

using namespace Qt::StringLiterals;

namespace sx::graph {

namespace marked_points {

QString titleText()
{
    return appTitle() + u" / ΜΑΡΚΑΡΙΣΜΕΝΑ ΣΗΜΕΙΑ"_s;
}

QString headingText(const QString& unitText, const QString& zoneText)
{
    return unitText + u" | "_s + zoneText;
}

QString timeLine(int k, const QString& timeText)
{
    return u"Χρόνος μαρκαρισμένου σημείου "_s + QString::number(k) + u": "_s + timeText;
}

QString valueLine(int k, const QString& valueText)
{
    return u"Ένδειξη μαρκαρισμένου σημείου "_s + QString::number(k) + u": "_s + valueText;
}

QString pageLine(int page, int pages)
{
    return u"Σελίδα "_s + QString::number(page) + u'/' + QString::number(pages);
}

Plan layoutEntries(const std::vector<int>& entryLines, double firstY, double lineHeight,
                   double bottomY)
{
    Plan plan;
    int page = 0;
    double y = firstY;
    for (const int lines : entryLines) {
        const double height = lines * lineHeight;
        // Measured the way the lines advance, so the plan agrees with the printing.
        const bool pageEmpty = y == firstY;
        const double start = pageEmpty ? y : y + lineHeight;
        if (!pageEmpty && start + height > bottomY) {
            ++page;
            y = firstY;
            plan.entries.push_back({page, y});
        } else {
            plan.entries.push_back({page, start});
            y = start;
        }
        y += height;
    }
    plan.pages = page + 1;
    return plan;
}

} // namespace marked_points

} // namespace sx::graph
