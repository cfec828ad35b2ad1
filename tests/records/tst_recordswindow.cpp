#include "ChooseItem.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "RecordsSeed.h"
#include "SkipOrFail.h"
#include "model/records/RecordsQuery.h"
#include "reports/Colors.h"
#include "reports/ReportPainter.h"
#include "reports/records/RecordsModel.h"
#include "reports/records/RecordsReport.h"
#include "reports/xlsx/XlsxExport.h"
#include "ui/UnitList.h"
#include "views/records/RecordsWindow.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QBuffer>
#include <QComboBox>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFontMetricsF>
#include <QGroupBox>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenu>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QXmlStreamReader>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;
using records::Marking;
using records::ZoneEntry;

Q_DECLARE_METATYPE(sx::records::ZoneEntry)

namespace {

ZoneEntry zone(int type, float max = 30, float min = 10, bool maxUsed = true, bool minUsed = true,
               const QString& serial = u"S"_s, int number = 1)
{
    return {serial, number, type, max, min, maxUsed, minUsed, {}};
}

constexpr char16_t kMain[] = u"http://schemas.openxmlformats.org/spreadsheetml/2006/main";
// The system Python: openpyxl, the independent reader of the workbooks, comes from Debian.
const QString kPython = u"/usr/bin/python3"_s;
#ifdef SX_TEMPLATE_FILE
const QString kTemplate = QStringLiteral(SX_TEMPLATE_FILE);
#else
const QString kTemplate;
#endif

// The sheet's dimension, then "ref=text|style" of each cell in document order
// (text inline or the raw <v>); a cell outside the sheet's namespace is marked.
QStringList cellsOf(const QByteArray& xml)
{
    QStringList out{QString()};
    QXmlStreamReader r(xml);
    while (!r.atEnd()) {
        if (r.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto attr = [&r](const QString& name) {
            return r.attributes().value(name).toString();
        };
        if (r.name() == u"dimension")
            out[0] = attr(u"ref"_s);
        else if (r.name() == u"c")
            out << attr(u"r"_s) + u"=|"_s + attr(u"s"_s) +
                       (r.namespaceUri() == QStringView(kMain) ? QString() : u" elsewhere"_s);
        else if (r.name() == u"t" || r.name() == u"v")
            out.last().insert(out.last().indexOf(u'=') + 1, r.readElementText());
    }
    if (r.hasError())
        out << r.errorString();
    return out;
}

xlsx::SheetFill fill(int rows, std::array<QString, 5> heading)
{
    xlsx::SheetFill f;
    f.heading = std::move(heading);
    f.rowCount = rows;
    f.dateText = [](int i) { return u"d%1"_s.arg(i); };
    f.readingText = [](int i) { return u"r%1"_s.arg(i); };
    return f;
}

QString sheetXml(const QString& prefix, const QString& body)
{
    const QString p = prefix.isEmpty() ? QString() : prefix + u':';
    const QString decl = prefix.isEmpty() ? u"xmlns"_s : u"xmlns:"_s + prefix;
    return u"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<%1worksheet %2=\"%3\" xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"><%1dimension ref=\"A1\"/><%1sheetData>%4</%1sheetData><%1pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" header=\"0.3\" footer=\"0.3\"/></%1worksheet>"_s
        .arg(p, decl, QString::fromUtf16(kMain),
             QString(body).replace(u"<"_s, u"<"_s + p).replace(u"<"_s + p + u'/', u"</"_s + p));
}

QByteArray fileHash(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly)
               ? QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256)
               : QByteArray();
}

const char* const kReadWorkbook = R"(
import json, sys, zipfile, openpyxl
path, template = sys.argv[1], sys.argv[2]
wb = openpyxl.load_workbook(path)
ws = wb.worksheets[0]
cells = {}
for row in ws.iter_rows():
    for c in row:
        if c.value is not None:
            cells[c.coordinate] = [c.value if isinstance(c.value, str) else repr(c.value), c.data_type]
a, b = zipfile.ZipFile(path), zipfile.ZipFile(template)
look = [bool(ws["E2"].font.b), ws["E5"].border.left.style, ws.freeze_panes, a.namelist() == b.namelist(),
        all(a.read(n) == b.read(n) for n in b.namelist() if n != "xl/worksheets/sheet1.xml"),
        a.testzip() is None]
print(json.dumps({"cells": cells, "look": " ".join(map(str, look))}, ensure_ascii=False))
)";

// The grid's rows as "date|reading", with the text colour when there is one
// (both cells share it).
QString gridRows(const RecordsModel* m)
{
    QStringList out;
    for (int r = 0; r < m->rowCount(); ++r) {
        QString row = m->index(r, 0).data().toString() + u'|' + m->index(r, 1).data().toString();
        const QVariant color = m->index(r, 0).data(Qt::ForegroundRole);
        if (color != m->index(r, 1).data(Qt::ForegroundRole))
            row += u"|mixed"_s;
        else if (color.isValid())
            row +=
                u'|' + (color.value<QBrush>().color() == colors::kBlue ? u"blue"_s : u"dark red"_s);
        out << row;
    }
    return out.join(u"; "_s);
}

// Rows per column as the report measures them on the printer it is given.
int rowsPerColumnOnPdf(const QString& scratchFile)
{
    QPrinter printer(QPrinter::HighResolution);
    setUpPdf(printer, scratchFile);
    (void)printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(QPageLayout::Portrait);
    ReportPainter painter(printer);
    const int rows =
        records_report::layoutRows(0, painter.pageHeight(), painter.textHeight()).rowsPerColumn;
    painter.end();
    QFile::remove(scratchFile);
    return rows;
}

} // namespace

class TestRecordsWindow : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        // The rules and the workbook's own parts need no window.
        const QByteArray test = QTest::currentTestFunction();
        if (test.startsWith("rule") || test.startsWith("sheet") || test.startsWith("template"))
            return;
        if (test.startsWith("export") || test.startsWith("failedSaves")) {
            if (kTemplate.isEmpty())
                SX_SKIP_OR_FAIL("built without the workbook template");
            if (toolOutput(kPython, {u"-c"_s, u"import openpyxl; print(1)"_s}) != u"1\n")
                SX_SKIP_OR_FAIL("python3 with openpyxl is not installed");
        }
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        seed();
        // The window opens on the clock's month: March 2026.
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
    }

    void cleanup()
    {
        m_tester.reset();
        m_w.reset();
        m_fx.reset();
    }

    void rulePeriodIncludesBothEnds_data()
    {
        QTest::addColumn<int>("year");
        QTest::addColumn<int>("month"); // index in the list; 12 is the whole year
        QTest::addColumn<QString>("period");
        QTest::newRow("leap february") << 2024 << 1 << u"2024-02-01 00:00:00 2024-02-29 23:59:59"_s;
        QTest::newRow("plain february")
            << 2026 << 1 << u"2026-02-01 00:00:00 2026-02-28 23:59:59"_s;
        QTest::newRow("december") << 2025 << 11 << u"2025-12-01 00:00:00 2025-12-31 23:59:59"_s;
        QTest::newRow("last listed year")
            << 2255 << 12 << u"2255-01-01 00:00:00 2255-12-31 23:59:59"_s;
    }

    void rulePeriodIncludesBothEnds()
    {
        QFETCH(int, year);
        QFETCH(int, month);
        const records::Period p = records::recordsPeriod(records::yearIndexOf(year), month);
        QTEST(sqlDateTimeText(p.fromSecs) + u' ' + sqlDateTimeText(p.toSecs), "period");
    }

    void ruleQueryText()
    {
        const QString sql =
            records::recordsSql(DbKind::Oracle, zone(0, 30, 10, true, true, u"O'K"_s, 7),
                                records::recordsPeriod(26, 2));
        QCOMPARE(
            sql,
            u"SELECT Rec_SyI_Serialnumber, Rec_SeI_Sensornumber, Rec_Datetime, Rec_Value, Rec_Sensortype, Rec_SensRecSN FROM Records WHERE Rec_SyI_Serialnumber='O''K' AND Rec_SeI_Sensornumber=7 AND Rec_Datetime BETWEEN TO_DATE('1-3-2026 0:0:0','DD-MM-YYYY HH24:MI:SS') AND TO_DATE('31-3-2026 23:59:59','DD-MM-YYYY HH24:MI:SS')"_s);
    }

    void ruleLimitTexts_data()
    {
        QTest::addColumn<ZoneEntry>("zone");
        QTest::addColumn<QString>("expected"); // min text, max text, min caption, max caption
        const auto row = [](const char* name, int type, bool minUsed, bool maxUsed,
                            const QString& expected) {
            QTest::newRow(name) << zone(type, 30.5f, -5.0f, maxUsed, minUsed) << expected;
        };
        row("both in force", 0, true, true, u"-5.0|30.5|-5.0 °C|30.5 °C"_s);
        row("maximum only", 3, false, true, u"|30.5||30.5 bar"_s);
        row("contact input", 2, true, true, u"|||"_s);
        row("unknown type", 42, true, false, u"-5.0||-5.0|"_s);
    }

    void ruleLimitTexts()
    {
        QFETCH(ZoneEntry, zone);
        const records::ZoneLimits l = records::zoneLimits(zone, QLocale::c());
        QTEST(QStringList({l.minText, l.maxText, l.minCaption, l.maxCaption}).join(u'|'),
              "expected");
    }

    // The record is of the zone's type unless told.
    void ruleMarkingIsStrictAndOnlyForTheZonesType_data()
    {
        QTest::addColumn<ZoneEntry>("zone");
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("recordType");
        QTest::addColumn<int>("marking");
        const auto row = [](const char* name, ZoneEntry z, float value, int recordType, Marking m) {
            QTest::newRow(name) << z << value << (recordType < 0 ? z.sensorType : recordType)
                                << int(m);
        };
        const ZoneEntry both = zone(0);
        row("above", both, 30.1f, -1, Marking::AboveMax);
        row("equal to the maximum", both, 30.0f, -1, Marking::None);
        row("below", both, 9.9f, -1, Marking::BelowMin);
        row("maximum not in force", zone(0, 30, 10, false), 99.0f, -1, Marking::None);
        row("minimum not in force", zone(0, 30, 10, true, false), -99.0f, -1, Marking::None);
        row("another type logged", both, 99.0f, 1, Marking::None);
        row("contact zone", zone(2), 99.0f, -1, Marking::None);
        row("limits crossed over", zone(5, 10, 30), 20.0f, -1, Marking::AboveMax);
    }

    void ruleMarkingIsStrictAndOnlyForTheZonesType()
    {
        QFETCH(ZoneEntry, zone);
        QFETCH(float, value);
        QFETCH(int, recordType);
        QTEST(int(records::LimitRule(zone)({0, value, static_cast<quint8>(recordType)})),
              "marking");
    }

    // Beside the window's own units: the zones offered, then the records loaded.
    void zonesWithRecordsInNumberOrderThenRecordsInSequenceOrder()
    {
        Database& db = m_fx->db;
        RecordsSeed s(db);
        const QString serial = u"Q'1"_s;
        // Offered: a zone with records written (bytes or an earlier page), never an empty one.
        for (const ZoneRow& z :
             {ZoneRow{.number = 9, .name = u"'Θάλαμος'"_s, .pageBytes = 0, .lastPage = 3},
              ZoneRow{.number = 2, .name = u"NULL"_s, .type = 2, .pageBytes = 10},
              ZoneRow{.number = 4, .name = u"'Κενή'"_s, .pageBytes = 0},
              ZoneRow{
                  .number = 7, .name = u"''"_s, .maxLimit = 30.25, .minLimit = -4, .minUsed = 2}})
            QVERIFY(s.zone(serial, z));
        QVERIFY(s.zone(u"OTHER"_s, {.number = 1, .name = u"'Ξένη'"_s}));

        DbError e;
        const QList<records::ZoneEntry> zones = records::readZones(db, serial, &e);
        QVERIFY2(!e.isError(), qPrintable(e.description));
        QStringList texts;
        for (const auto& z : zones)
            texts << records::zoneItemText(z);
        QCOMPARE(texts,
                 (QStringList{u"[2] Ανώνυμη ζώνη"_s, u"[7] Ανώνυμη ζώνη"_s, u"[9] Θάλαμος"_s}));
        QCOMPARE(zones[0].sensorType, 2);
        // Only exactly 1 puts a limit in force.
        QCOMPARE(u"%1 %2 %3 %4 %5"_s.arg(zones[1].serial)
                     .arg(zones[1].maxLimit)
                     .arg(zones[1].minLimit)
                     .arg(zones[1].maxUsed)
                     .arg(zones[1].minUsed),
                 u"Q'1 30.25 -4 1 0"_s);

        // A unit whose clock was set back: sequence 3 carries an older time than 2.
        QVERIFY(s.record(u"U1"_s, 1, u"2026-05-01 10:00:00"_s, 1.5, 0, 1) &&
                s.record(u"U1"_s, 1, u"2026-05-01 10:02:00"_s, 2.5, 3, 2) &&
                s.record(u"U1"_s, 1, u"2026-05-01 10:01:00"_s, 0.5, 2, 3) &&
                s.record(u"U1"_s, 1, u"2026-05-01 09:00:00"_s, -7.25, 0, 10));
        const ZoneEntry u1 = zone(0, 30, 10, true, true, u"U1"_s);
        const records::RecordsLoad got = records::loadRecords(
            db, records::recordsSql(db.kind(), u1, records::recordsPeriod(26, 4)));
        QVERIFY2(!got.error.isError(), qPrintable(got.error.description));
        QStringList rows;
        for (const RecordPoint& r : got.records)
            rows << u"%1 %2 %3"_s.arg(sqlDateTimeText(r.secs)).arg(r.value).arg(r.sensorType);
        QCOMPARE(rows,
                 (QStringList{u"2026-05-01 09:00:00 -7.25 0"_s, u"2026-05-01 10:01:00 0.5 2"_s,
                              u"2026-05-01 10:02:00 2.5 3"_s, u"2026-05-01 10:00:00 1.5 0"_s}));

        // Without the table, both ways of loading carry the error, as does a database
        // that cannot be opened.
        QVERIFY(!db.exec(u"ALTER TABLE Records RENAME TO Records_away"_s).isError());
        const QString sql = records::recordsSql(db.kind(), u1, records::recordsPeriod(25, 6));
        ConnectionSettings nowhere = db.settings();
        nowhere.file = m_fx->scratch.folder() + u"/missing/none.db"_s;
        nowhere.dataSource = u"sx_no_such_database"_s;
        QVERIFY(records::loadRecords(db, sql).error.isError() &&
                records::loadRecordsAside(db.settings(), sql).error.isError() &&
                records::loadRecordsAside(nowhere, sql).error.isError());
    }
    void sheetMergeKeepsTheTemplate_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("rows");
        QTest::addColumn<int>("rowCount");
        // The dimension, then "ref=text|style" of the first cells in document order.
        QTest::addColumn<QString>("expected");
        const QString tpl =
            u"<row r=\"1\" spans=\"1:4\"><c r=\"A1\" s=\"1\" t=\"s\"><v>0</v></c><c r=\"D1\" "
            u"t=\"s\"><v>2</v></c></row>"
            "<row r=\"2\" spans=\"4:5\" ht=\"20\" customHeight=\"1\"><c r=\"D2\" s=\"2\" "
            "t=\"s\"><v>3</v></c><c r=\"E2\" s=\"3\"/></row>"
            "<row r=\"3\"><c r=\"C3\"><v>42</v></c><c r=\"E3\" s=\"3\"><v>7</v></c></row>"
            "<row r=\"9\"><c r=\"F9\"><f>1+1</f><v>2</v></c></row>"_s;
        QTest::newRow("default namespace")
            << QString() << tpl << 3
            << u"A1:F9;A1=0|1;D1=2|;A2=d0|;B2=r0|;D2=3|2;E2=U|3;A3=d1|;B3=r1|;C3=42|;E3=Z|3;A4=d2|;B4=r2|;E4=M/Y|;E6= 5.0 °C|;F9=2|"_s;
        QTest::newRow("prefixed namespace")
            << u"x"_s << tpl << 1
            << u"A1:F9;A1=0|1;D1=2|;A2=d0|;B2=r0|;D2=3|2;E2=U|3;C3=42|;E3=Z|3;E4=M/Y|;E6= 5.0 °C|;F9=2|"_s;
        QTest::newRow("rows and cells without references")
            << QString()
            << u"<row><c t=\"s\"><v>0</v></c></row><row><c/><c/><c/><c/><c s=\"3\"/></row>"_s << 2
            << u"A1:E6;A1=0|;A2=d0|;B2=r0|;C2=|;D2=|;E2=U|3;A3=d1|;B3=r1|;E3=Z|;E4=M/Y|;E6= 5.0 °C|"_s;
        // Dates and readings, each row's heading cell after them.
        QTest::newRow("empty sheet data, many rows")
            << QString() << QString() << 1000
            << u"A1:E1001;A2=d0|;B2=r0|;E2=U|;A3=d1|;B3=r1|;E3=Z|;A4=d2|;B4=r2|;E4=M/Y|;A5=d3|;B5=r3|;A6=d4|;B6=r4|;E6= 5.0 °C|;A7=d5|"_s;
    }

    void sheetMergeKeepsTheTemplate()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, rows);
        QFETCH(int, rowCount);
        QFETCH(QString, expected);
        const QByteArray in = sheetXml(prefix, rows).toUtf8();
        QBuffer out;
        QVERIFY(out.open(QIODevice::WriteOnly));
        // E5 empty: no cell; E6 starts with a blank that must survive; a control
        // character (not allowed in XML) is dropped.
        QVERIFY(xlsx::fillSheetXml(
            in, out, fill(rowCount, {u"U\u0001"_s, u"Z"_s, u"M/Y"_s, QString(), u" 5.0 °C"_s})));
        const QStringList got = cellsOf(out.data());
        QCOMPARE(got.size(), rowCount == 1000 ? 2005 : expected.count(u';') + 1);
        QCOMPARE(got.join(u';').left(expected.size()), expected);
        QCOMPARE(got.last(), rowCount == 1000 ? u"B1001=r999|"_s : expected.section(u';', -1));
        QVERIFY(!got.join(u';').contains(u"elsewhere"_s)); // all in the sheet's namespace
        // What follows the sheet data is kept.
        QVERIFY(out.data().contains("pageMargins left=\"0.7\""));
        if (rows.contains(u"<f>"_s)) {
            QVERIFY(out.data().contains("<" + prefix.toUtf8() + (prefix.isEmpty() ? "" : ":") +
                                        "f>1+1<"));
            QVERIFY(out.data().contains("ht=\"20\" customHeight=\"1\""));
            QVERIFY(!out.data().contains("spans=\"4:5\""));
        }
    }

    void sheetThatIsNoWorksheetIsRefused()
    {
        QBuffer out;
        QVERIFY(out.open(QIODevice::WriteOnly));
        for (const char* xml :
             {"<workbook><sheets/></workbook>", "<worksheet><sheetData><row>", "not xml at all"})
            QVERIFY2(!xlsx::fillSheetXml(xml, out, fill(1, {})), xml);
    }

    // A build tree has the template beside the program; an installed copy in
    // share/sentorax-monitor/, reached from bin/.
    void templateIsFoundWhereTheProgramLives_data()
    {
        QTest::addColumn<QStringList>("present");
        QTest::addColumn<QString>("expected");
        const QString beside = u"bin/TEMPLATEv2.xlsx"_s;
        const QString installed = u"share/sentorax-monitor/TEMPLATEv2.xlsx"_s;
        QTest::newRow("build tree") << QStringList{beside} << beside;
        QTest::newRow("installed") << QStringList{installed} << installed;
        QTest::newRow("beside wins") << QStringList{beside, installed} << beside;
        QTest::newRow("installed, template removed")
            << QStringList{u"share/sentorax-monitor/"_s} << installed;
        QTest::newRow("build tree, template not made") << QStringList{} << beside;
    }

    void templateIsFoundWhereTheProgramLives()
    {
        QFETCH(QStringList, present);
        QFETCH(QString, expected);
        QTemporaryDir root;
        QVERIFY(QDir(root.path()).mkpath(u"bin"_s));
        for (const QString& path : present) {
            QVERIFY(QDir(root.path()).mkpath(QFileInfo(root.filePath(path)).path()));
            if (!path.endsWith(u'/'))
                QVERIFY(QFile(root.filePath(path)).open(QIODevice::WriteOnly));
        }
        QCOMPARE(xlsx::templatePathFor(root.filePath(u"bin"_s), u"../share/sentorax-monitor"_s),
                 root.filePath(expected));
    }

    void startUpSelectsTheClocksMonthWithoutQueryingAndTheLayoutFits()
    {
        m_w = std::make_unique<RecordsWindow>(m_fx->ctx);
        QCOMPARE(m_w->queriesRun(), 0);
        QVERIFY(!m_w->loading());
        // The third without its accent, exactly as listed.
        QCOMPARE(
            comboTexts(m_w->monthSelect()).join(u'|'),
            u"Ιανουάριος|Φεβρουάριος|Μαρτιος|Απρίλιος|Μάιος|Ιούνιος|Ιούλιος|Αύγουστος|Σεπτέμβριος|Οκτώβριος|Νοέμβριος|Δεκέμβριος|ΟΛΟΙ"_s);
        QCOMPARE(m_w->yearSelect()->itemText(255) + u' ' + m_w->monthText() + u'/' +
                     m_w->yearText(),
                 u"2255 Μαρτιος/2026"_s);
        QCOMPARE(state(), u"0 zones, lists 111, 0 rows, 0 on"_s); // record commands off

        fillSystemSelect(*m_w, 0, false);
        QCOMPARE(m_w->queriesRun(), 2); // the zone list, then the first zone's records
        chooseItem(m_w->monthSelect(), 1);
        QCOMPARE(m_w->queriesRun(), 3);
        QVERIFY(m_fx->dialogs.shown().isEmpty());

        m_w->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
        QCOMPARE(m_w->windowTitle(), u"SENTORAX Monitor / Αρχείο καταγραφών"_s);
        QVERIFY2(m_w->width() <= 1280 && m_w->height() <= 740,
                 qPrintable(u"%1×%2"_s.arg(m_w->width()).arg(m_w->height())));

        // The frames Frame1 to Frame11, then the menu.
        QStringList titles;
        for (int i = 1; i <= 11; ++i) {
            const auto* box = m_w->findChild<QGroupBox*>(u"Frame%1"_s.arg(i));
            titles << (box ? box->title() : u"none"_s);
        }
        QCOMPARE(
            titles.join(u'|'),
            u"Πλοήγηση|Πληροφορίες ζώνης|Γράφημα|Μέγιστο όριο|Ελάχιστο όριο|Επιλογή συστήματος|Επιλογή χρονικής περιόδου|Καταγραφές|Επιλογή ζώνης|Μήνας|Έτος"_s);
        QVERIFY(!m_w->graphButton()->icon().isNull());
        QCOMPARE(GuiFixture::clippedChild(*m_w->centralWidget()), QString());

        auto* manage = m_w->findChild<QMenu*>(u"Diahirisi"_s);
        QVERIFY(manage);
        QStringList items{manage->title()};
        for (QAction* a : manage->actions())
            items << (a->isSeparator() ? u"-"_s : a->text());
        QCOMPARE(
            items.join(u'|'),
            u"Διαχείριση|Αποθήκευση αρχείου καταγραφών|Εκτύπωση αρχείου καταγραφών|-|Έξοδος|-|Σύνοψη μήνα|Προεπισκόπηση αρχείου καταγραφών|Προεπισκόπηση σύνοψης μήνα"_s);

        // The header texts with their blanks size the columns; both fit side by side.
        ArchiveGrid* grid = m_w->grid();
        const QString headers[] = {QString(34, u' ') + u"ΗΜΕΡΟΜΗΝΙΑ"_s,
                                   QString(42, u' ') + u"ΕΝΔΕΙΞΗ"_s};
        const QFontMetricsF fm(grid->font());
        int total = 0;
        for (int c = 0; c < 2; ++c) {
            QCOMPARE(grid->model()->headerData(c, Qt::Horizontal).toString(), headers[c]);
            const double text = fm.horizontalAdvance(headers[c]);
            const int width = grid->columnWidth(c);
            QVERIFY2(width >= text && width <= text + 12, qPrintable(QString::number(width)));
            total += width;
        }
        QVERIFY2(total <= grid->viewport()->width(), qPrintable(QString::number(total)));
    }

    // The row rules are the rule rows' part; here the wiring to the grid.
    void zoneFillsTheGridNewestFirstAndEveryChoiceLoadsAnew()
    {
        open();
        QCOMPARE(
            gridRows(m_w->model()),
            u"02/03/2026 - 13:00|25.0 bar; 02/03/2026 - 12:00|9.5 °C|blue; 02/03/2026 - 11:00|10.0 °C; 02/03/2026 - 10:00|30.5 °C|dark red; 02/03/2026 - 09:00|30.0 °C; 02/03/2026 - 08:00|20.0 °C"_s);
        // Row 1 selected, highlighted without the focus too.
        QCOMPARE(m_w->selectedRows(), std::make_pair(0, 0));
        const QPalette p = m_w->grid()->palette();
        QCOMPARE(p.color(QPalette::Inactive, QPalette::Highlight),
                 p.color(QPalette::Active, QPalette::Highlight));
        // The shared records, in grid order, with the bare limit texts.
        const auto shared = m_fx->ctx.loadedRecords;
        QVERIFY(shared && shared->records.size() == 6);
        QCOMPARE(shared->records.front().secs, at(u"2026-03-02 13:00:00"_s));
        QCOMPARE(shared->records.front().sensorType, quint8(3));
        QCOMPARE(shared->minLimitText + shared->maxLimitText, u"10.030.0"_s);

        // Choosing the shown entry again loads anew, letting events through
        // behind the wait window meanwhile.
        RecordsSeed s(m_fx->db);
        QComboBox* lists[] = {m_w->sensorSelect(), m_w->monthSelect(), m_w->yearSelect()};
        for (int i = 0; i < 3; ++i) {
            QVERIFY(s.record(u"A-100"_s, 1, u"2026-03-02 14:0%1:00"_s.arg(i), 21, 0, 106 + i));
            QString meanwhile = u"not run"_s;
            QTimer::singleShot(0, this, [&] {
                meanwhile = u"enabled %1, waiting %2"_s.arg(int(m_w->isEnabled()))
                                .arg(int(GuiFixture::waitWindowShown()));
            });
            chooseItem(lists[i], lists[i]->currentIndex());
            QCOMPARE(meanwhile, u"enabled 0, waiting 1"_s);
            QCOMPARE(m_w->model()->dateText(0), u"02/03/2026 - 14:0%1"_s.arg(i));
        }
        QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());

        // A contact zone: states in the normal colour, no limits.
        chooseItem(m_w->sensorSelect(), 1);
        QCOMPARE(gridRows(m_w->model()).count(u'|'), 3);
        QCOMPARE(m_w->minLimitCaption() + m_w->maxLimitCaption() +
                     m_fx->ctx.loadedRecords->minLimitText + m_fx->ctx.loadedRecords->maxLimitText,
                 QString());
    }

    void unitWithoutZonesDisablesTheListsSilentlyAndFailuresAreReported()
    {
        open();
        chooseItem(m_w->systemSelect(), 1);
        QCOMPARE(state(), u"0 zones, lists 000, 0 rows, 0 on"_s);
        QVERIFY(m_w->minLimitCaption().isEmpty() && m_w->maxLimitCaption().isEmpty());
        QVERIFY(m_fx->dialogs.shown().isEmpty());
        chooseItem(m_w->systemSelect(), 0);
        QCOMPARE(state(), u"2 zones, lists 111, 6 rows, 3 on"_s);

        // Failures are reported and the window stays usable.
        m_fx->dialogs.answerMessage(DialogService::Answer::Ok);
        m_fx->dialogs.answerMessage(DialogService::Answer::Ok);
        QVERIFY(m_fx->exec(u"ALTER TABLE Records RENAME TO Records_away"_s));
        chooseItem(m_w->monthSelect(), 12);
        QCOMPARE(m_fx->dialogs.messages().size(), 1);
        QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());
        QCOMPARE(state(), u"2 zones, lists 111, 0 rows, 0 on"_s);
        // The table is back: the next selection loads, and a later failure is news again.
        QVERIFY(m_fx->exec(u"ALTER TABLE Records_away RENAME TO Records"_s));
        chooseItem(m_w->monthSelect(), 2);
        QCOMPARE(state(), u"2 zones, lists 111, 6 rows, 3 on"_s);
        QVERIFY(m_fx->exec(u"ALTER TABLE Sensors_Info RENAME TO Sensors_Info_away"_s));
        emit m_w->systemSelect()->activated(0);
        QCOMPARE(m_fx->dialogs.messages().size(), 2);
        QCOMPARE(state(), u"0 zones, lists 000, 0 rows, 0 on"_s);
        QVERIFY(!m_fx->dialogs.anyUnexpected());
    }

    // One range of whole rows; select-all only while records are shown; an empty
    // period keeps the shared records.
    void selectionIsOneRangeOfWholeRowsAndSelectAll()
    {
        RecordsSeed s(m_fx->db);
        QVERIFY(s.series(
            u"A-100"_s, 1, at(u"2026-03-10 00:00:00"_s), 60, 200, [](int i) { return 15 + i % 7; },
            0, 1000));
        open();
        m_w->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
        ArchiveGrid* grid = m_w->grid();
        const auto cellCentre = [grid](int row, int col) {
            return grid->visualRect(grid->model()->index(row, col)).center();
        };
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cellCentre(4, 1));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, Qt::ShiftModifier, cellCentre(2, 0));
        QCOMPARE(m_w->selectedRows(), std::make_pair(2, 4));
        QCOMPARE(grid->selectionModel()->selectedIndexes().size(), 6); // whole rows 2 to 4

        // The graph's refusal: one row alone, scrolled to the top.
        m_w->selectRowAlone(150);
        QCOMPARE(m_w->selectedRows(), std::make_pair(150, 150));
        QCOMPARE(grid->currentIndex().row(), 150);
        QCOMPARE(grid->rowAt(1), 150);

        QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(m_w->selectedRows(), std::make_pair(0, 205));
        QCOMPARE(grid->currentIndex().row(), 0);
        // Two columns and no fixed column: no row selectors, and so no corner button.
        QCOMPARE(grid->model()->columnCount(), 2);
        QVERIFY(grid->verticalHeader()->isHidden());

        // An empty period: commands off, the shared records kept, and the action selects nothing.
        chooseItem(m_w->monthSelect(), 1);
        QCOMPARE(state(), u"2 zones, lists 111, 0 rows, 0 on"_s);
        QCOMPARE(m_fx->ctx.loadedRecords->records.size(), size_t(206));
        QVERIFY(m_fx->dialogs.shown().isEmpty());
        QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
        QVERIFY(grid->selectionModel()->selection().isEmpty());
        QCOMPARE(m_w->selectedRows(), std::make_pair(-1, -1));
    }

    // Only the selection is printed, under the long heading that wraps whole;
    // columns run top to bottom, then left to right, four to a page (when a page
    // is full is the page layout's rule, tst_reportlayouts).
    void printsTheSelectionInColumnsAndPages()
    {
        const int perColumn = rowsPerColumnOnPdf(m_fx->scratch.folder() + u"/measure.pdf"_s);
        QVERIFY(perColumn > 40);
        const int rows = 4 * perColumn + 1;
        RecordsSeed s(m_fx->db);
        QVERIFY(
            s.unit(u"C-300"_s, u"Ψυκτικός θάλαμος αποθήκης τροφίμων της ανατολικής πτέρυγας"_s) &&
            s.zone(u"C-300"_s, {.number = 1, .name = u"'Θερμοκρασία θαλάμου συντήρησης'"_s}));
        QVERIFY(s.series(u"C-300"_s, 1, at(u"2026-03-01 00:00:00"_s), 60, rows,
                         [](int i) { return -20.0 + (i % 500) * 0.1; }));
        open(2);
        QCOMPARE(m_w->model()->rowCount(), rows);
        RecordsModel* m = m_w->model();
        QStringList pages = print();
        QCOMPARE(pages.size(), 1);
        QVERIFY(pages[0].contains(u"Σελίδα 1/1"_s));
        QVERIFY(pages[0].contains(m->dateText(0)) && pages[0].contains(m->readingText(0)));
        QVERIFY(!pages[0].contains(m->dateText(1)));
        const QString flat = pages[0].simplified();
        // The title, the page line, then the whole heading.
        QVERIFY2(
            flat.startsWith(u"SENTORAX Monitor / ΑΡΧΕΙΟ ΚΑΤΑΓΡΑΦΩΝ Σελίδα"_s) &&
                flat.contains(
                    u"ΠΛΗΡΟΦΟΡΙΕΣ ΑΡΧΕΙΟΥ ΚΑΤΑΓΡΑΦΩΝ. ΣΥΣΤΗΜΑ:Ψυκτικός θάλαμος αποθήκης τροφίμων της ανατολικής πτέρυγας [7] (C-300) , ΖΩΝΗ ΠΑΡΑΚΟΛΟΥΘΗΣΗΣ:[1] Θερμοκρασία θαλάμου συντήρησης , ΜΗΝΑΣ/ΕΤΟΣ:Μαρτιος/2026"_s),
            qPrintable(flat));

        m_w->selectAllRecords();
        pages = print();
        QCOMPARE(pages.size(), 2);
        QVERIFY(pages[0].contains(u"Σελίδα 1/2"_s) && pages[1].contains(u"Σελίδα 2/2"_s));
        QVERIFY(pages[1].contains(m->dateText(rows - 1)) &&
                pages[1].contains(m->readingText(rows - 1)));
        const QStringList lines = pages[0].split(u'\n');
        const auto lineWith = [&lines](const QString& text) {
            return lines.indexOf(
                QRegularExpression(u".*"_s + QRegularExpression::escape(text) + u".*"_s));
        };
        // The first row of each column on the top line, in order, each reading
        // right of its date; a column runs down line by line.
        QStringList top;
        for (int c = 0; c < 4; ++c)
            top << QRegularExpression::escape(m->dateText(c * perColumn)) + u".*"_s +
                       QRegularExpression::escape(m->readingText(c * perColumn));
        const qsizetype first = lineWith(m->dateText(0));
        QVERIFY(lines.value(first).contains(QRegularExpression(top.join(u".*"_s))));
        QCOMPARE(lineWith(m->dateText(perColumn + 2)), first + 2);
        QVERIFY(m_fx->dialogs.messages().isEmpty());
    }

    // The heading and the selected rows in grid order, as far as the sheet has
    // rows; a box says how many were left out.
    void exportWritesHeadingAndSelectedRows_data()
    {
        QTest::addColumn<int>("sheetRows");
        QTest::addColumn<int>("top"); // the selection's top row; it ends at row 4 or 5
        QTest::addColumn<int>("written");
        QTest::newRow("selected from the bottom up") << xlsx::kSheetRows << 1 << 4;
        QTest::newRow("four rows left out") << 3 << 0 << 2;
        QTest::newRow("one left out") << 6 << 0 << 5;
        QTest::newRow("all fit exactly") << 7 << 0 << 6;
    }

    void exportWritesHeadingAndSelectedRows()
    {
        QFETCH(int, sheetRows);
        QFETCH(int, top);
        QFETCH(int, written);
        open();
        const QByteArray templateBefore = fileHash(kTemplate);
        const QString dir = m_fx->scratch.folder();
        m_w->setSheetRows(sheetRows);
        // The current row below the selection's end.
        const int selected = top == 1 ? 4 : 6;
        m_w->selectRows(top + selected - 1, top, top + selected - 1);
        m_fx->dialogs.answerFile(dir + u"/records output"_s);
        m_w->saveAction()->trigger();

        const auto& save = m_fx->dialogs.shown().first();
        QCOMPARE(save.text + u'|' + save.items.join(u'|'),
                 u"Excel Files (*.xlsx)|records output"_s);
        QVERIFY(m_w->isEnabled());
        const auto boxes = m_fx->dialogs.messages();
        QCOMPARE(boxes.size(), written < selected ? 1 : 0);
        if (written < selected)
            QVERIFY(boxes[0].icon == DialogService::Icon::Exclamation &&
                    boxes[0].text.contains(u"οι υπόλοιπες %1 δεν"_s.arg(selected - written)));

        const QJsonObject got = readBack(dir + u"/records output.xlsx"_s);
        QVERIFY(!got.isEmpty());
        QJsonObject cells = got[u"cells"].toObject();
        const auto text = [&cells](const QString& ref) {
            return cells[ref].toArray().at(0).toString();
        };
        // The heading, and the template's own texts kept.
        for (const QString& c : u"E2=Alpha [7] (A-100);E3=[1] Θερμοκρασία & <υγρασία>;"
                                u"E4=Μαρτιος/2026;E5=30.0 °C;E6=10.0 °C;A1=ΗΜΕΡΟΜΗΝΙΑ;D2=ΣΥΣΤΗΜΑ:;"
                                u"D6=ΕΛΑΧΙΣΤΟ ΟΡΙΟ:"_s.split(u';'))
            QCOMPARE(c.section(u'=', 0, 0) + u'=' + text(c.section(u'=', 0, 0)), c);
        for (int i = 0; i < written; ++i) {
            QCOMPARE(text(u"A%1"_s.arg(i + 2)), m_w->model()->dateText(top + i));
            QCOMPARE(text(u"B%1"_s.arg(i + 2)), m_w->model()->readingText(top + i));
            QCOMPARE(cells[u"A%1"_s.arg(i + 2)].toArray().at(1).toString(), u"s"_s);
        }
        QCOMPARE(text(u"A2"_s), top == 1 ? u"02/03/2026 - 12:00"_s : u"02/03/2026 - 13:00"_s);
        QVERIFY(!cells.contains(u"A%1"_s.arg(written + 2)));
        // The template's look (E2 bold, E5 framed, frozen under the header), its
        // other parts unchanged and the zip sound; the template itself untouched.
        QCOMPARE(got[u"look"].toString(), u"True thin A2 True True True"_s);
        QCOMPARE(fileHash(kTemplate), templateBefore);
        if (top == 0)
            return;

        // A contact zone: its states, and the limit cells left empty.
        chooseItem(m_w->sensorSelect(), 1);
        m_fx->dialogs.answerFile(dir + u"/contact.xlsx"_s);
        m_w->saveRecords();
        cells = readBack(dir + u"/contact.xlsx"_s)[u"cells"].toObject();
        QCOMPARE(text(u"A2"_s) + text(u"B2"_s) + text(u"E3"_s),
                 u"03/03/2026 - 12:00ΑΝΟΙΧΤΗ[5] Ανώνυμη ζώνη"_s);
        QVERIFY(!cells.contains(u"A3"_s) && !cells.contains(u"E5"_s) && !cells.contains(u"E6"_s));
    }

    // Where the save cannot succeed nothing is written, a box names the template
    // when it is at fault, and the template itself is never touched.
    void failedSavesWriteNothing_data()
    {
        QTest::addColumn<QString>("answer"); // in the scratch folder; empty: cancelled
        QTest::addColumn<QString>("python"); // makes the template at sys.argv[1]; empty: none
        QTest::addColumn<QString>("words");  // of the box; empty: no box
        const QString copy = u"open(sys.argv[1], 'wb').write(open(sys.argv[2], 'rb').read())"_s;
        const QString damaged = u"κατεστραμμένο"_s;
        QTest::newRow("cancelled") << QString() << copy << QString();
        QTest::newRow("folder that does not exist")
            << u"no such folder/out.xlsx"_s << copy << QString();
        QTest::newRow("template chosen as target") << u"TEMPLATEv2.xlsx"_s << copy << QString();
        QTest::newRow("missing template") << u"out.xlsx"_s << QString() << u"Δεν βρέθηκε"_s;
        QTest::newRow("not a zip")
            << u"out.xlsx"_s << u"open(sys.argv[1], 'wb').write(b'PK but not really')"_s << damaged;
        QTest::newRow("zip without workbook")
            << u"out.xlsx"_s
            << u"z = zipfile.ZipFile(sys.argv[1], 'w'); z.writestr('a.txt', 'x'); z.close()"_s
            << damaged;
        QTest::newRow("sheet that is no worksheet")
            << u"out.xlsx"_s
            << u"s = zipfile.ZipFile(sys.argv[2]); z = zipfile.ZipFile(sys.argv[1], 'w')\n"
               "for n in s.namelist(): z.writestr(n, b'<x/>' if n.endswith('sheet1.xml') else "
               "s.read(n))\n"
               "z.close()"_s
            << damaged;
    }

    void failedSavesWriteNothing()
    {
        QFETCH(QString, answer);
        QFETCH(QString, python);
        QFETCH(QString, words);
        open();
        const QString dir = m_fx->scratch.folder();
        const QString tpl = dir + u"/TEMPLATEv2.xlsx"_s;
        if (!python.isEmpty()) {
            QCOMPARE(QProcess::execute(
                         kPython, {u"-c"_s, u"import sys, zipfile\n"_s + python, tpl, kTemplate}),
                     0);
        }
        m_w->setTemplatePath(tpl);
        const QByteArray before = fileHash(tpl);
        m_fx->dialogs.answerFile(answer.isEmpty() ? QString() : dir + u'/' + answer);
        if (!words.isEmpty())
            m_fx->dialogs.answerMessage(DialogService::Answer::Ok);
        m_w->saveRecords();
        QCOMPARE(fileHash(tpl), before);
        QCOMPARE(QDir(dir).entryList({u"*.xlsx"_s}, QDir::Files),
                 python.isEmpty() ? QStringList() : QStringList{u"TEMPLATEv2.xlsx"_s});
        const auto boxes = m_fx->dialogs.messages();
        QCOMPARE(boxes.size(), words.isEmpty() ? 0 : 1);
        if (!words.isEmpty())
            QVERIFY2(boxes[0].text.contains(QDir::toNativeSeparators(tpl)) &&
                         boxes[0].text.contains(words),
                     qPrintable(boxes[0].text));
        QVERIFY(m_w->isEnabled());
    }

private:
    void seed()
    {
        RecordsSeed s(m_fx->db);
        // Listed by name: Alpha (0), Beta (1).
        QVERIFY(s.unit(u"A-100"_s, u"Alpha"_s));
        QVERIFY(s.zone(u"A-100"_s, {.number = 1, .name = u"'Θερμοκρασία & <υγρασία>'"_s}));
        QVERIFY(s.zone(u"A-100"_s, {.number = 5, .name = u"NULL"_s, .type = 2}));
        QVERIFY(s.zone(u"A-100"_s, {.number = 8, .name = u"'Άδεια'"_s, .pageBytes = 0}));
        const double march[] = {20, 30, 30.5, 10, 9.5};
        QVERIFY(s.series(
            u"A-100"_s, 1, at(u"2026-03-02 08:00:00"_s), 3600, 5,
            [&march](int i) { return march[i]; }, 0, 100));
        QVERIFY(s.record(u"A-100"_s, 1, u"2026-03-02 13:00:00"_s, 25, 3, 105));
        const double contact[] = {0.5, 0, -1};
        QVERIFY(s.series(
            u"A-100"_s, 5, at(u"2026-03-03 10:00:00"_s), 3600, 3,
            [&contact](int i) { return contact[i]; }, 2));
        QVERIFY(s.unit(u"B-200"_s, u"Beta"_s));
        QVERIFY(s.zone(u"B-200"_s, {.number = 1, .name = u"'Χ'"_s, .pageBytes = 0, .lastPage = 0}));
    }

    void open(int unitIndex = 0)
    {
        m_w = std::make_unique<RecordsWindow>(m_fx->ctx);
        m_w->setTemplatePath(kTemplate);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_w->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        fillSystemSelect(*m_w, unitIndex, false);
    }

    static QJsonObject readBack(const QString& path)
    {
        return QJsonDocument::fromJson(
                   toolOutput(kPython, {u"-c"_s, QString::fromUtf8(kReadWorkbook), path, kTemplate})
                       .toUtf8())
            .object();
    }

    QStringList print()
    {
        const QString pdf = m_fx->answerPdf();
        m_w->printAction()->trigger();
        return pdfPages(pdf);
    }

    // The zones listed, which of the three lists are on, the rows shown and how
    // many of the graph button and the save and print commands are on (all or none).
    QString state() const
    {
        return u"%1 zones, lists %2%3%4, %5 rows, %6 on"_s.arg(m_w->sensorSelect()->count())
            .arg(int(m_w->sensorSelect()->isEnabled()))
            .arg(int(m_w->monthSelect()->isEnabled()))
            .arg(int(m_w->yearSelect()->isEnabled()))
            .arg(m_w->model()->rowCount())
            .arg(m_w->graphButton()->isEnabled() + m_w->saveAction()->isEnabled() +
                 m_w->printAction()->isEnabled());
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<RecordsWindow> m_w;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

QTEST_MAIN(TestRecordsWindow)
#include "tst_recordswindow.moc"
