#pragma once

#include "model/QueryHelpers.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace sx {

// "SENTORAX Monitor / ΝΕΑ ΜΗΝΥΜΑΤΑ" or "SENTORAX Monitor / ΑΡΧΕΙΟ ΜΗΝΥΜΑΤΩΝ".
[[nodiscard]] QString messagesReportTitle(MessageKind kind);
// "ΤΕΛΟΣ ΝΕΩΝ ΜΗΝΥΜΑΤΩΝ" or "ΤΕΛΟΣ ΑΡΧΕΙΟY ΜΗΝΥΜΑΤΩΝ" (a Latin Y).
[[nodiscard]] QString messagesReportEnd(MessageKind kind);
// The box shown when no unit has messages of the list's kind.
[[nodiscard]] QString nothingToPrintText(MessageKind kind);

struct PrintedLine {
    int page = 0;
    double y = 0.0; // millimetres from the top of the printable area
    QString text;
};

struct MessagesPageLayout {
    QList<PrintedLine> lines;
    int endPage = 0;
    double endY = 0.0; // top of the end banner
    int pages = 1;
};

// Places the lines from startY down. A line that would run past pageHeight
// starts the next page at topY, as a printer moves on by itself; the end
// banner (one line plus its frame) goes right below the last line, or at the
// top of a new page when it would not fit.
[[nodiscard]] MessagesPageLayout placeMessageLines(const QStringList& lines, double startY,
                                                   double topY, double lineHeight,
                                                   double pageHeight);

} // namespace sx
