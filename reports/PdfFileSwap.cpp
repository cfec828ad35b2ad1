#include "reports/PdfFileSwap.h"

#include <QFile>
#include <QFileInfo>
#include <QPrinter>
#include <QTemporaryFile>

#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;

namespace sx {

PdfFileSwap::PdfFileSwap(QPrinter& printer) : printer_(printer)
{
    if (printer.outputFormat() != QPrinter::PdfFormat || printer.outputFileName().isEmpty())
        return;
    const QFileInfo target(printer.outputFileName());
    QTemporaryFile part(target.absoluteFilePath() + u".XXXXXX"_s);
    // A folder we cannot create in: write in place, as the printer would.
    if (!part.open())
        return;
    part.setAutoRemove(false);
    target_ = target.absoluteFilePath();
    part_ = part.fileName();
    printer.setOutputFileName(part_);
}

PdfFileSwap::~PdfFileSwap()
{
    if (part_.isEmpty())
        return;
    QFile::remove(part_);
    printer_.setOutputFileName(target_);
}

bool PdfFileSwap::commit()
{
    if (part_.isEmpty())
        return true;
    const QString part = std::exchange(part_, QString());
    printer_.setOutputFileName(target_);
    // The part was made private to us; the file gets the rights the old one
    // had, or those a new file usually gets.
    const QFileInfo old(target_);
    (void)QFile::setPermissions(part, old.exists() ? old.permissions()
                                                   : QFile::ReadOwner | QFile::WriteOwner |
                                                         QFile::ReadUser | QFile::WriteUser |
                                                         QFile::ReadGroup | QFile::ReadOther);
    // rename() replaces an existing file in one step; QFile::rename would not.
    if (QFileInfo(part).size() > 0 && std::rename(QFile::encodeName(part).constData(),
                                                  QFile::encodeName(target_).constData()) == 0)
        return true;
    QFile::remove(part);
    return false;
}

} // namespace sx
