#pragma once

#include "reports/xlsx/XlsxPackage.h"
#include "reports/xlsx/XlsxSheetMerge.h"

#include <QString>

namespace sx {

namespace xlsx {

// The file name of the spreadsheet template, kept beside the program.
inline constexpr char16_t kTemplateFileName[] = u"TEMPLATEv2.xlsx";
// The template of this installation: see templatePathFor.
[[nodiscard]] QString defaultTemplatePath();
// Where the template of a program in `programDir` is: beside the program (a
// build tree) or in the installed data folder beside its bin/ (`dataFromBin`,
// relative to `programDir`). When neither holds it, the installed place if that
// folder exists, so that the missing-file message names the right place.
[[nodiscard]] QString templatePathFor(const QString& programDir, const QString& dataFromBin);

// The notice after an export that left records out.
[[nodiscard]] QString leftOutMessage(int written, int leftOut);

// The Greek message for a status the user must hear about; empty for the
// others (written, or a place that cannot be written, which passes silently).
[[nodiscard]] QString statusMessage(ExportStatus status, const QString& templatePath);

} // namespace xlsx
} // namespace sx
