#include "model/report/EventsReportLayout.h"

#include "model/AppTitle.h"

using namespace Qt::StringLiterals;

namespace sx::events_report {

QString titleText()
{
    return appTitle() + u" / ΑΡΧΕΙΟ ΣΥΜΒΑΝΤΩΝ"_s;
}

QString choicesLine(const Choices& c)
{
    QString out = u"ΠΛΗΡΟΦΟΡΙΕΣ ΑΡΧΕΙΟΥ ΣΥΜΒΑΝΤΩΝ. "_s + u"ΣΥΣΤΗΜΑ:"_s + c.unit;
    if (c.kindApplies) {
        static const QString kinds[] = {u"ΣΥΝΑΓΕΡΜΟΣ"_s, u"ΑΠΟΚΑΤΑΣΤΑΣΗ"_s, u"ΟΛΑ"_s};
        out += u" , ΠΡΟΕΛΕΥΣΗ/ΤΥΠΟΣ ΣΥΜΒΑΝΤΩΝ:"_s + c.source + u'/' +
               kinds[c.kind >= 0 && c.kind <= 2 ? c.kind : 2];
    } else {
        out += u" , ΠΡΟΕΛΕΥΣΗ ΣΥΜΒΑΝΤΩΝ:"_s + c.source;
    }
    out += u" , ΜΗΝΑΣ/ΕΤΟΣ:"_s + c.month + u'/' + c.year;
    out += c.newOnly ? u" , ΝΕΑ ΣΥΜΒΑΝΤΑ ΤΗΣ ΧΡΟΝΙΚΗΣ ΠΕΡΙΟΔΟΥ"_s
                     : u" , ΟΛΑ ΤΑ ΣΥΜΒΑΝΤΑ ΤΗΣ ΧΡΟΝΙΚΗΣ ΠΕΡΙΟΔΟΥ"_s;
    return out;
}

QString pageLine(int page, int pages)
{
    return u"Σελίδα "_s + QString::number(page) + u'/' + QString::number(pages);
}

Layout layoutEntries(const QList<double>& heights, double pageHeight)
{
    Layout out;
    out.entries.reserve(heights.size());
    const double bottom = pageHeight - kMarginMm;
    Placement at;
    for (const double h : heights) {
        // A column that is still empty keeps even an entry taller than itself.
        if (at.y > kFirstLineMm && at.y + h > bottom) {
            at.y = kFirstLineMm;
            if (at.column == 0) {
                at.column = 1;
            } else {
                at.column = 0;
                ++at.page;
            }
        }
        out.entries.append(at);
        at.y += h;
    }
    out.pages = at.page + 1;
    return out;
}

double columnTextLeft(int column, double pageWidth)
{
    return kMarginMm + column * (pageWidth - 2 * kMarginMm) / 2 + 2.0;
}

double columnTextWidth(double pageWidth)
{
    return (pageWidth - 2 * kMarginMm) / 2 - 4.0;
}

} // namespace sx::events_report
