#pragma once

#include "model/QueryHelpers.h"
#include "model/report/MessagesReportLayout.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class QPrinter;

namespace sx {

class ReportPainter;

// The printed lines of a message text (CR LF separated): one per text line,
// lines wider than maxWidthMm wrapped, then the one empty line before the end.
[[nodiscard]] QStringList messageReportLines(const QString& text, double maxWidthMm,
                                             const ReportPainter& painter);

// Draws the whole report on an open painter: title box, printing date, the
// text over as many pages as it needs, the end box. false when a page could
// not be started.
bool drawMessagesReport(ReportPainter& painter, MessageKind kind, const QString& text,
                        const QDateTime& printedAt);

// The whole report on `printer` (A4 portrait); false when a page failed.
bool drawMessagesReport(QPrinter& printer, MessageKind kind, const QString& text,
                        const QDateTime& printedAt);

} // namespace sx
