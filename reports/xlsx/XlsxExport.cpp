#include "reports/xlsx/XlsxExport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace sx::xlsx {

QString templatePathFor(const QString& programDir, const QString& dataFromBin)
{
    const QString name = QString::fromUtf16(kTemplateFileName);
    const QDir here(programDir);
    const QString beside = here.filePath(name);
    if (QFileInfo::exists(beside))
        return beside;
    const QFileInfo installed(QDir::cleanPath(here.filePath(dataFromBin + u'/' + name)));
    // Only an installed copy has the data folder; a build tree keeps naming its own folder.
    return installed.dir().exists() ? installed.filePath() : beside;
}

QString defaultTemplatePath()
{
    return templatePathFor(QCoreApplication::applicationDirPath(),
                           QStringLiteral(SX_TEMPLATE_DIR_FROM_BIN));
}

QString leftOutMessage(int written, int leftOut)
{
    return u"Ένα φύλλο εργασίας του Excel χωράει έως "_s + QString::number(written) +
           u" καταγραφές.\r\nΑποθηκεύτηκαν οι πρώτες "_s + QString::number(written) +
           u" καταγραφές της επιλογής· οι υπόλοιπες "_s + QString::number(leftOut) +
           u" δεν αποθηκεύτηκαν."_s;
}

QString statusMessage(ExportStatus status, const QString& templatePath)
{
    const QString shown = QDir::toNativeSeparators(templatePath);
    const QString cannot = u"\r\nΗ αποθήκευση του αρχείου καταγραφών δεν είναι δυνατή."_s;
    switch (status) {
    case ExportStatus::TemplateMissing:
        return u"Δεν βρέθηκε το πρότυπο αρχείο Excel \""_s + shown + u"\"."_s + cannot;
    case ExportStatus::TemplateDamaged:
        return u"Το πρότυπο αρχείο Excel \""_s + shown +
               u"\" είναι κατεστραμμένο ή δεν είναι βιβλίο εργασίας Excel."_s + cannot;
    case ExportStatus::WriteFailed:
        return u"Η εγγραφή του αρχείου Excel δεν ολοκληρώθηκε. Το αρχείο δεν αποθηκεύτηκε."_s;
    case ExportStatus::Unavailable:
        return u"Η αποθήκευση σε αρχείο Excel δεν είναι διαθέσιμη σε αυτή την έκδοση."_s;
    case ExportStatus::Written:
    case ExportStatus::TargetNotWritable:
        break;
    }
    return {};
}

} // namespace sx::xlsx
