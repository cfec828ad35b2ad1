#include "reports/summary/SummaryXlsx.h"

#include "model/Formatting.h"
#include "reports/summary/SummaryReport.h"

#include <QBuffer>
#include <QDateTime>
#include <QLocale>
#include <QSaveFile>
#include <QXmlStreamWriter>

#ifdef SX_HAVE_QUAZIP
#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipnewinfo.h>
#endif

using namespace Qt::StringLiterals;

namespace sx::summary {

double spreadsheetDate(qint64 secs)
{
    // 25569 is 01/01/1970 in the 1900 date system.
    return static_cast<double>(secs) / 86400.0 + 25569.0;
}

#ifdef SX_HAVE_QUAZIP

namespace {

const char* const kNs = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

// Styles: 0 plain, 1 bold title, 2 day (dd/mm/yyyy), 3 time (dd/mm/yyyy hh:mm), 4 value (0.0).
const char* const kStyles = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><numFmts count="3"><numFmt numFmtId="164" formatCode="dd/mm/yyyy"/><numFmt numFmtId="165" formatCode="dd/mm/yyyy hh:mm"/><numFmt numFmtId="166" formatCode="0.0"/></numFmts><fonts count="2"><font><sz val="10"/><name val="Arial"/><family val="2"/></font><font><b/><sz val="10"/><name val="Arial"/><family val="2"/></font></fonts><fills count="2"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/></fill></fills><borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders><cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs><cellXfs count="5"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/><xf numFmtId="0" fontId="1" fillId="0" borderId="0" xfId="0" applyFont="1"/><xf numFmtId="164" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/><xf numFmtId="165" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/><xf numFmtId="166" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/></cellXfs><cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles></styleSheet>)";

enum Style { Plain = 0, Title = 1, Day = 2, Time = 3, Value = 4 };

QString columnName(int col)
{
    QString name;
    for (int c = col + 1; c > 0; c = (c - 1) / 26)
        name.prepend(QChar(u'A' + (c - 1) % 26));
    return name;
}

// Rows are written in order; cells of a row are collected first.
class SheetXml {
public:
    explicit SheetXml(QByteArray& out) : m_buffer(&out), m_w(&m_buffer)
    {
        m_buffer.open(QIODevice::WriteOnly);
        m_w.writeStartDocument(u"1.0"_s, true);
        m_w.writeStartElement(QString::fromLatin1(kNs), u"worksheet"_s);
        m_w.writeDefaultNamespace(QString::fromLatin1(kNs));
        m_w.writeStartElement(u"cols"_s);
        for (const auto& [col, width] : {std::pair{1, 24},
                                         {2, 13},
                                         {3, 13},
                                         {4, 13},
                                         {5, 18},
                                         {6, 12},
                                         {7, 14},
                                         {9, 18},
                                         {10, 18},
                                         {11, 14},
                                         {12, 13},
                                         {13, 12},
                                         {14, 12},
                                         {15, 12},
                                         {16, 12},
                                         {18, 18},
                                         {19, 18}}) {
            m_w.writeEmptyElement(u"col"_s);
            m_w.writeAttribute(u"min"_s, QString::number(col));
            m_w.writeAttribute(u"max"_s, QString::number(col));
            m_w.writeAttribute(u"width"_s, QString::number(width));
            m_w.writeAttribute(u"customWidth"_s, u"1"_s);
        }
        m_w.writeEndElement();
        m_w.writeStartElement(u"sheetData"_s);
    }

    void text(int row, int col, const QString& value, Style style = Plain)
    {
        cell(row, col, style);
        m_w.writeAttribute(u"t"_s, u"inlineStr"_s);
        m_w.writeStartElement(u"is"_s);
        m_w.writeTextElement(u"t"_s, xlsx::xmlText(value));
        m_w.writeEndElement();
        m_w.writeEndElement();
    }

    void number(int row, int col, double value, Style style = Plain)
    {
        cell(row, col, style);
        // The stored value as it is, without digits it never had.
        m_w.writeTextElement(u"v"_s, QString::number(value, 'g', QLocale::FloatingPointShortest));
        m_w.writeEndElement();
    }

    void finish()
    {
        if (m_row > 0)
            m_w.writeEndElement();
        m_w.writeEndElement(); // sheetData
        m_w.writeEmptyElement(u"pageSetup"_s);
        m_w.writeAttribute(u"paperSize"_s, u"9"_s);
        m_w.writeAttribute(u"orientation"_s, u"landscape"_s);
        m_w.writeEndElement();
        m_w.writeEndDocument();
    }

private:
    void cell(int row, int col, Style style)
    {
        if (row != m_row) {
            if (m_row > 0)
                m_w.writeEndElement();
            m_w.writeStartElement(u"row"_s);
            m_w.writeAttribute(u"r"_s, QString::number(row));
            m_row = row;
        }
        m_w.writeStartElement(u"c"_s);
        m_w.writeAttribute(u"r"_s, columnName(col) + QString::number(row));
        if (style != Plain)
            m_w.writeAttribute(u"s"_s, QString::number(style));
    }

    QBuffer m_buffer;
    QXmlStreamWriter m_w;
    int m_row = 0;
};

QByteArray zoneSheet(const SummaryInput& in, const ZoneReport& z)
{
    QByteArray out;
    SheetXml sheet(out);
    const ZoneSummary& s = z.summary;
    const Totals& t = s.totals;
    const ZoneRule rule = ruleOf(z.zone);
    sheet.text(1, 0, summary_report::titleText(in.period), Title);
    sheet.text(2, 0, summary_report::headingText(in, z.zone));
    sheet.text(3, 0, u"Ελάχιστο όριο"_s);
    if (rule.minLimit)
        sheet.number(3, 1, *rule.minLimit, Value);
    sheet.text(3, 2, u"Μέγιστο όριο"_s);
    if (rule.maxLimit)
        sheet.number(3, 3, *rule.maxLimit, Value);
    sheet.text(3, 4, s.contact ? u"Επαφή"_s : unitSuffix(z.zone.sensorType).trimmed());

    sheet.text(4, 0, u"Καταγραφές"_s, Title);
    sheet.number(4, 1, t.readings);
    sheet.text(4, 2, u"Χωρίς έγκυρη τιμή ή άλλου τύπου"_s);
    sheet.number(4, 3, t.skipped);
    if (!s.contact && t.readings > 0) {
        sheet.text(5, 0, u"Ελάχιστη / Μέση / Μέγιστη"_s, Title);
        sheet.number(5, 1, t.min, Value);
        sheet.number(5, 2, t.mean, Value);
        sheet.number(5, 3, t.max, Value);
    }
    sheet.text(6, 0, s.contact ? u"Ανοίγματα"_s : u"Υπερβάσεις ορίων"_s, Title);
    sheet.number(6, 1, t.excursions);
    sheet.text(6, 2, s.contact ? u"Λεπτά ανοιχτή"_s : u"Λεπτά εκτός ορίων"_s);
    sheet.number(6, 3, static_cast<double>(minutesOf(t.outsideSecs)));
    sheet.text(6, 4, u"Μεγαλύτερη (λεπτά)"_s);
    sheet.number(6, 5, static_cast<double>(minutesOf(t.longestSecs)));
    sheet.text(7, 0, u"Χρόνος χωρίς καταγραφές (λεπτά)"_s, Title);
    sheet.number(7, 1, static_cast<double>(minutesOf(t.noDataSecs)));
    sheet.text(7, 2, u"Μεγαλύτερο κενό (λεπτά)"_s);
    sheet.number(7, 3, static_cast<double>(minutesOf(t.longestGapSecs)));
    sheet.text(7, 4, u"Συνήθες διάστημα (λεπτά)"_s);
    sheet.number(7, 5, static_cast<double>(minutesOf(t.usualIntervalSecs)));

    const QStringList dayHead = s.contact
                                    ? QStringList{u"Ημέρα"_s, u"Ανοίγματα"_s, u"Λεπτά ανοιχτή"_s,
                                                  u"Λεπτά χωρίς καταγραφές"_s}
                                    : QStringList{u"Ημέρα"_s,
                                                  u"Ελάχιστη"_s,
                                                  u"Μέση"_s,
                                                  u"Μέγιστη"_s,
                                                  u"Λεπτά εκτός ορίων"_s,
                                                  u"Υπερβάσεις"_s,
                                                  u"Λεπτά χωρίς καταγραφές"_s};
    const QStringList excHead =
        s.contact ? QStringList{u"Άνοιγμα"_s,     u"Κλείσιμο"_s,    u"Λεπτά"_s,
                                u"Συνεχίζεται"_s, u"Άρχισε πριν"_s, u"Λήξη σε κενό"_s}
                  : QStringList{u"Έναρξη"_s, u"Λήξη"_s,        u"Λεπτά"_s,       u"Ακραία τιμή"_s,
                                u"Όριο"_s,   u"Συνεχίζεται"_s, u"Άρχισε πριν"_s, u"Λήξη σε κενό"_s};
    const QStringList gapHead{u"Κενό από"_s, u"Κενό έως"_s, u"Λεπτά"_s};
    constexpr int head = 9;
    constexpr int excCol = 8;
    const int gapCol = excCol + static_cast<int>(excHead.size()) + 1;
    for (int c = 0; c < dayHead.size(); ++c)
        sheet.text(head, c, dayHead[c], Title);
    for (int c = 0; c < excHead.size(); ++c)
        sheet.text(head, excCol + c, excHead[c], Title);
    for (int c = 0; c < gapHead.size(); ++c)
        sheet.text(head, gapCol + c, gapHead[c], Title);

    const qsizetype rows = std::max({s.days.size(), s.excursions.size(), s.gaps.size()});
    for (qsizetype i = 0; i < rows; ++i) {
        const int row = head + 1 + static_cast<int>(i);
        if (i < s.days.size()) {
            const DayRow& d = s.days[i];
            sheet.number(row, 0, spreadsheetDate(secsOf(d.day)), Day);
            if (s.contact) {
                sheet.number(row, 1, d.excursions);
                sheet.number(row, 2, static_cast<double>(minutesOf(d.outsideSecs)));
                sheet.number(row, 3, static_cast<double>(minutesOf(d.noDataSecs)));
            } else {
                if (d.readings > 0) {
                    sheet.number(row, 1, d.min, Value);
                    sheet.number(row, 2, d.mean, Value);
                    sheet.number(row, 3, d.max, Value);
                } else {
                    sheet.text(row, 1, u"χωρίς καταγραφές"_s);
                }
                sheet.number(row, 4, static_cast<double>(minutesOf(d.outsideSecs)));
                sheet.number(row, 5, d.excursions);
                sheet.number(row, 6, static_cast<double>(minutesOf(d.noDataSecs)));
            }
        }
        if (i < s.excursions.size()) {
            const Excursion& e = s.excursions[i];
            int c = excCol;
            sheet.number(row, c++, spreadsheetDate(e.startSecs), Time);
            sheet.number(row, c++, spreadsheetDate(e.endSecs), Time);
            sheet.number(row, c++, static_cast<double>(minutesOf(e.durationSecs())));
            if (!s.contact) {
                sheet.number(row, c++, e.extreme, Value);
                sheet.text(row, c++, e.side == Side::Above ? u"Μέγιστο"_s : u"Ελάχιστο"_s);
            }
            if (e.runsOn)
                sheet.text(row, c, u"Ναι"_s);
            if (e.startedBefore)
                sheet.text(row, c + 1, u"Ναι"_s);
            if (e.cutByGap && !e.runsOn)
                sheet.text(row, c + 2, u"Ναι"_s);
        }
        if (i < s.gaps.size()) {
            const Gap& g = s.gaps[i];
            sheet.number(row, gapCol, spreadsheetDate(g.startSecs), Time);
            sheet.number(row, gapCol + 1, spreadsheetDate(g.endSecs), Time);
            sheet.number(row, gapCol + 2, static_cast<double>(minutesOf(g.realSecs)));
        }
    }
    sheet.finish();
    return out;
}

QByteArray workbookXml(const QStringList& names)
{
    QString sheets;
    for (int i = 0; i < names.size(); ++i)
        sheets += u"<sheet name=\"%1\" sheetId=\"%2\" r:id=\"rId%2\"/>"_s.arg(names[i]).arg(i + 1);
    return (u"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<workbook "
            u"xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
            u"xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
            u"<sheets>"_s +
            sheets + u"</sheets></workbook>"_s)
        .toUtf8();
}

QByteArray workbookRels(int sheets)
{
    QString rels;
    const QString ns = u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/"_s;
    for (int i = 1; i <= sheets; ++i)
        rels += u"<Relationship Id=\"rId%1\" Type=\"%2worksheet\" "
                u"Target=\"worksheets/sheet%1.xml\"/>"_s.arg(i)
                    .arg(ns);
    rels +=
        u"<Relationship Id=\"rId%1\" Type=\"%2styles\" Target=\"styles.xml\"/>"_s.arg(sheets + 1)
            .arg(ns);
    return (u"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<Relationships "
            u"xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"_s +
            rels + u"</Relationships>"_s)
        .toUtf8();
}

QByteArray contentTypes(int sheets)
{
    QString parts;
    for (int i = 1; i <= sheets; ++i)
        parts += u"<Override PartName=\"/xl/worksheets/sheet%1.xml\" "
                 u"ContentType=\"application/"
                 u"vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml\"/>"_s.arg(i);
    return (u"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<Types "
            u"xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"><Default "
            u"Extension=\"rels\" "
            u"ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/><Default "
            u"Extension=\"xml\" ContentType=\"application/xml\"/><Override "
            u"PartName=\"/xl/workbook.xml\" "
            u"ContentType=\"application/"
            u"vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml\"/><Override "
            u"PartName=\"/xl/styles.xml\" "
            u"ContentType=\"application/"
            u"vnd.openxmlformats-officedocument.spreadsheetml.styles+xml\"/>"_s +
            parts + u"</Types>"_s)
        .toUtf8();
}

const char* const kRootRels = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/></Relationships>)";

bool writeEntry(QuaZip& zip, const QString& name, const QByteArray& data)
{
    QuaZipNewInfo info(name);
    info.dateTime = QDateTime::currentDateTime();
    QuaZipFile entry(&zip);
    if (!entry.open(QIODevice::WriteOnly, info, nullptr, 0, Z_DEFLATED, 1))
        return false;
    const bool ok = entry.write(data) == data.size();
    entry.close();
    return ok && entry.getZipError() == ZIP_OK;
}

} // namespace

xlsx::ExportStatus writeSummaryWorkbook(const QString& target, const SummaryInput& in)
{
    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly))
        return xlsx::ExportStatus::TargetNotWritable;
    QuaZip zip(&file);
    zip.setAutoClose(false);
    if (!zip.open(QuaZip::mdCreate)) {
        file.cancelWriting();
        return xlsx::ExportStatus::TargetNotWritable;
    }
    QStringList names;
    for (const ZoneReport& z : in.zones)
        names << u"Ζώνη "_s + QString::number(z.zone.number);
    bool ok = writeEntry(zip, u"[Content_Types].xml"_s, contentTypes(names.size())) &&
              writeEntry(zip, u"_rels/.rels"_s, kRootRels) &&
              writeEntry(zip, u"xl/workbook.xml"_s, workbookXml(names)) &&
              writeEntry(zip, u"xl/_rels/workbook.xml.rels"_s, workbookRels(names.size())) &&
              writeEntry(zip, u"xl/styles.xml"_s, kStyles);
    for (qsizetype i = 0; i < in.zones.size() && ok; ++i)
        ok = writeEntry(zip, u"xl/worksheets/sheet%1.xml"_s.arg(i + 1), zoneSheet(in, in.zones[i]));
    zip.close();
    if (!ok || zip.getZipError() != ZIP_OK) {
        file.cancelWriting();
        return xlsx::ExportStatus::WriteFailed;
    }
    return file.commit() ? xlsx::ExportStatus::Written : xlsx::ExportStatus::WriteFailed;
}

#else

xlsx::ExportStatus writeSummaryWorkbook(const QString&, const SummaryInput&)
{
    return xlsx::ExportStatus::Unavailable;
}

#endif

} // namespace sx::summary
