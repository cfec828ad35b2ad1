#pragma once

#include "reports/xlsx/XlsxSheetMerge.h"

#include <QString>

namespace sx::xlsx {

enum class ExportStatus {
    Written,
    TemplateMissing,   // no file at the template's place
    TemplateDamaged,   // not a zip, or no workbook with a first worksheet in it
    TargetNotWritable, // the copy cannot be made at the chosen place
    WriteFailed,       // the copy was started but could not be completed
    Unavailable,       // built without a zip library
};

// Fills a copy of the template and saves it as `target`. The template is only
// read; the target appears complete or not at all (a file already there is
// kept unless the new one was written in full).
[[nodiscard]] ExportStatus writeWorkbook(const QString& templatePath, const QString& target,
                                         const SheetFill& fill);

} // namespace sx::xlsx
