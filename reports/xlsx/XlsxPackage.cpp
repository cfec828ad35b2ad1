#include "reports/xlsx/XlsxPackage.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamReader>

#if SX_HAVE_QUAZIP
#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipfileinfo.h>
#include <quazip/quazipnewinfo.h>
#endif

#include <optional>

using namespace Qt::StringLiterals;

namespace sx::xlsx {

#if SX_HAVE_QUAZIP

namespace {

std::optional<QByteArray> readEntry(QuaZip& zip, const QString& name)
{
    if (!zip.setCurrentFile(name))
        return std::nullopt;
    QuaZipFile file(&zip);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray data = file.readAll();
    file.close();
    if (file.getZipError() != UNZ_OK)
        return std::nullopt;
    return data;
}

// The part name of the workbook's first worksheet, from workbook.xml and its relations.
std::optional<QString> firstSheetPath(QuaZip& zip)
{
    const auto workbook = readEntry(zip, u"xl/workbook.xml"_s);
    const auto rels = readEntry(zip, u"xl/_rels/workbook.xml.rels"_s);
    if (!workbook || !rels)
        return std::nullopt;
    QString id;
    QXmlStreamReader wb(*workbook);
    while (!wb.atEnd() && id.isEmpty()) {
        wb.readNext();
        if (wb.isStartElement() && wb.name() == u"sheet") {
            for (const QXmlStreamAttribute& a : wb.attributes()) {
                if (a.name() == u"id" && !a.namespaceUri().isEmpty())
                    id = a.value().toString();
            }
            if (id.isEmpty())
                return std::nullopt;
        }
    }
    if (id.isEmpty() || wb.hasError())
        return std::nullopt;
    QXmlStreamReader rr(*rels);
    while (!rr.atEnd()) {
        rr.readNext();
        if (rr.isStartElement() && rr.name() == u"Relationship" &&
            rr.attributes().value(u"Id"_s) == id) {
            const QString target = rr.attributes().value(u"Target"_s).toString();
            if (target.startsWith(u'/'))
                return QDir::cleanPath(target.mid(1));
            return QDir::cleanPath(u"xl/"_s + target);
        }
    }
    return std::nullopt;
}

bool copyEntryRaw(QuaZip& in, QuaZip& out)
{
    QuaZipFileInfo64 info;
    if (!in.getCurrentFileInfo(&info))
        return false;
    QuaZipFile src(&in);
    int method = 0;
    int level = 0;
    if (!src.open(QIODevice::ReadOnly, &method, &level, true))
        return false;
    const QByteArray data = src.readAll();
    src.close();
    if (src.getZipError() != UNZ_OK)
        return false;
    QuaZipFile dst(&out);
    if (!dst.open(QIODevice::WriteOnly, QuaZipNewInfo(info), nullptr, info.crc, method, level,
                  true))
        return false;
    const bool written = dst.write(data) == data.size();
    dst.close();
    return written && dst.getZipError() == ZIP_OK;
}

bool writeSheetEntry(QuaZip& in, QuaZip& out, const QByteArray& sheet, const SheetFill& fill)
{
    QuaZipFileInfo64 info;
    if (!in.getCurrentFileInfo(&info))
        return false;
    QuaZipFile dst(&out);
    // Speed over size: a year of rows deflates well at any level.
    if (!dst.open(QIODevice::WriteOnly, QuaZipNewInfo(info), nullptr, 0, Z_DEFLATED, 1))
        return false;
    const bool filled = fillSheetXml(sheet, dst, fill);
    dst.close();
    return filled && dst.getZipError() == ZIP_OK;
}

} // namespace

ExportStatus writeWorkbook(const QString& templatePath, const QString& target,
                           const SheetFill& fill)
{
    const QFileInfo templateInfo(templatePath);
    if (!templateInfo.exists())
        return ExportStatus::TemplateMissing;
    if (!templateInfo.isFile() || !templateInfo.isReadable())
        return ExportStatus::TemplateDamaged;

    QuaZip in(templatePath);
    if (!in.open(QuaZip::mdUnzip))
        return ExportStatus::TemplateDamaged;
    const auto sheetPath = firstSheetPath(in);
    if (!sheetPath)
        return ExportStatus::TemplateDamaged;
    const auto sheet = readEntry(in, *sheetPath);
    int maxRow = 0;
    int maxCol = 0;
    if (!sheet || !scanSheet(*sheet, maxRow, maxCol))
        return ExportStatus::TemplateDamaged;

    // Saving over the template would destroy it: the copy cannot go there.
    const QFileInfo targetInfo(target);
    if (targetInfo.exists() && targetInfo.canonicalFilePath() == templateInfo.canonicalFilePath())
        return ExportStatus::TargetNotWritable;
    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly))
        return ExportStatus::TargetNotWritable;
    QuaZip out(&file);
    out.setAutoClose(false);
    if (!out.open(QuaZip::mdCreate)) {
        file.cancelWriting();
        return ExportStatus::TargetNotWritable;
    }

    bool ok = true;
    for (bool more = in.goToFirstFile(); more && ok; more = in.goToNextFile()) {
        if (in.getCurrentFileName() == *sheetPath)
            ok = writeSheetEntry(in, out, *sheet, fill);
        else
            ok = copyEntryRaw(in, out);
    }
    ok = ok && in.getZipError() == UNZ_OK;
    out.close();
    ok = ok && out.getZipError() == ZIP_OK;
    if (!ok) {
        file.cancelWriting();
        return ExportStatus::WriteFailed;
    }
    return file.commit() ? ExportStatus::Written : ExportStatus::WriteFailed;
}

#else

ExportStatus writeWorkbook(const QString&, const QString&, const SheetFill&)
{
    return ExportStatus::Unavailable;
}

#endif

} // namespace sx::xlsx
