#pragma once

#include <QString>

namespace sx {

class ReportPainter;

// Breaks text into lines narrower than maxWidthMm in the painter's current font, joined by
// CR LF, and returns the number of lines (1 for the empty text). Lines break at the last blank
// before the width is reached and the blank is dropped; a word wider than the whole width is
// cut at the width, keeping at least one character per line.
int wrapToWidth(QString& text, double maxWidthMm, const ReportPainter& painter);

// Prints each CR LF separated line of text starting at xMm, one line below the other.
// The empty text still takes one line, as wrapToWidth counts it.
void printLinesAt(ReportPainter& painter, const QString& text, double xMm);

// A boxed title: the frame runs from (xMm, yMm) to 10 mm before the right edge, the text is
// centred on the page; printing continues at the left edge one line below the frame.
void printBanner(ReportPainter& painter, double xMm, double yMm, const QString& text);

} // namespace sx
