#include "model/report/MessagesReportLayout.h"

#include "model/AppTitle.h"

using namespace Qt::StringLiterals;

namespace sx {

QString messagesReportTitle(MessageKind kind)
{
    return appTitle() +
           (kind == MessageKind::New ? u" / ΝΕΑ ΜΗΝΥΜΑΤΑ"_s : u" / ΑΡΧΕΙΟ ΜΗΝΥΜΑΤΩΝ"_s);
}

QString messagesReportEnd(MessageKind kind)
{
    // The Y of ΑΡΧΕΙΟY is the Latin letter.
    return kind == MessageKind::New ? u"ΤΕΛΟΣ ΝΕΩΝ ΜΗΝΥΜΑΤΩΝ"_s : u"ΤΕΛΟΣ ΑΡΧΕΙΟY ΜΗΝΥΜΑΤΩΝ"_s;
}

QString nothingToPrintText(MessageKind kind)
{
    return kind == MessageKind::New ? u"Δέν υπάρχουν νέα μηνύματα για εκτύπωση"_s
                                    : u"Δέν υπάρχουν αρχειοθετημένα μηνύματα για εκτύπωση"_s;
}

MessagesPageLayout placeMessageLines(const QStringList& lines, double startY, double topY,
                                     double lineHeight, double pageHeight)
{
    MessagesPageLayout layout;
    layout.lines.reserve(lines.size());
    int page = 0;
    double y = startY;
    bool pageHasLine = false;
    for (const QString& line : lines) {
        // A page takes at least one line, however small it is.
        if (pageHasLine && y + lineHeight > pageHeight) {
            ++page;
            y = topY;
            pageHasLine = false;
        }
        layout.lines.append({page, y, line});
        y += lineHeight;
        pageHasLine = true;
    }
    if (pageHasLine && y + lineHeight + 1.0 > pageHeight) {
        ++page;
        y = topY;
    }
    layout.endPage = page;
    layout.endY = y;
    layout.pages = page + 1;
    return layout;
}

} // namespace sx
