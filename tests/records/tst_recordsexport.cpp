#include "ChooseItem.h"
#include "GuiFixture.h"
#include "RecordsSeed.h"
#include "SkipOrFail.h"
#include "ToolRun.h"
#include "reports/records/RecordsModel.h"
#include "reports/xlsx/XlsxExport.h"
#include "ui/UnitList.h"
#include "views/records/RecordsWindow.h"

#include <QAction>
#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

constexpr char16_t kMain[] = u"http://schemas.openxmlformats.org/spreadsheetml/2006/main";
// The system Python: openpyxl, the independent reader of the workbooks, comes from Debian.
const QString kPython = u"/usr/bin/python3"_s;

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

} // namespace

class TestRecordsExport : public QObject {
    Q_OBJECT

private slots:
    void sheetMergeKeepsTheTemplate_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("rows");
        QTest::addColumn<int>("rowCount");
        // "ref=text|style" of the first cells, in document order.
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("dimension");
        const QString tpl =
            u"<row r=\"1\" spans=\"1:4\"><c r=\"A1\" s=\"1\" t=\"s\"><v>0</v></c><c r=\"D1\" "
            u"t=\"s\"><v>2</v></c></row>"
            "<row r=\"2\" spans=\"4:5\" ht=\"20\" customHeight=\"1\"><c r=\"D2\" s=\"2\" "
            "t=\"s\"><v>3</v></c><c r=\"E2\" s=\"3\"/></row>"
            "<row r=\"3\"><c r=\"C3\"><v>42</v></c><c r=\"E3\" s=\"3\"><v>7</v></c></row>"
            "<row r=\"9\"><c r=\"F9\"><f>1+1</f><v>2</v></c></row>"_s;
        QTest::newRow("default namespace")
            << QString() << tpl << 3
            << u"A1=0|1;D1=2|;A2=d0|;B2=r0|;D2=3|2;E2=U|3;A3=d1|;B3=r1|;C3=42|;E3=Z|3;A4=d2|;B4=r2|;E4=M/Y|;E6= 5.0 °C|;F9=2|"_s
            << u"A1:F9"_s;
        QTest::newRow("prefixed namespace")
            << u"x"_s << tpl << 1
            << u"A1=0|1;D1=2|;A2=d0|;B2=r0|;D2=3|2;E2=U|3;C3=42|;E3=Z|3;E4=M/Y|;E6= 5.0 °C|;F9=2|"_s
            << u"A1:F9"_s;
        QTest::newRow("rows and cells without references")
            << QString()
            << u"<row><c t=\"s\"><v>0</v></c></row><row><c/><c/><c/><c/><c s=\"3\"/></row>"_s << 2
            << u"A1=0|;A2=d0|;B2=r0|;C2=|;D2=|;E2=U|3;A3=d1|;B3=r1|;E3=Z|;E4=M/Y|;E6= 5.0 °C|"_s
            << u"A1:E6"_s;
        // Dates and readings, each row's heading cell after them.
        QTest::newRow("empty sheet data, many rows")
            << QString() << QString() << 1000
            << u"A2=d0|;B2=r0|;E2=U|;A3=d1|;B3=r1|;E3=Z|;A4=d2|;B4=r2|;E4=M/Y|;A5=d3|;B5=r3|;A6=d4|;B6=r4|;E6= 5.0 °C|;A7=d5|"_s
            << u"A1:E1001"_s;
    }

    void sheetMergeKeepsTheTemplate()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, rows);
        QFETCH(int, rowCount);
        QFETCH(QString, expected);
        QFETCH(QString, dimension);
        const QByteArray in = sheetXml(prefix, rows).toUtf8();
        QBuffer out;
        QVERIFY(out.open(QIODevice::WriteOnly));
        // E5 empty: no cell; E6 starts with a blank that must survive; a control
        // character (not allowed in XML) is dropped.
        QVERIFY(xlsx::fillSheetXml(
            in, out, fill(rowCount, {u"U\u0001"_s, u"Z"_s, u"M/Y"_s, QString(), u" 5.0 °C"_s})));
        const QStringList got = cellsOf(out.data());
        QCOMPARE(got.first(), dimension);
        QCOMPARE(got.size() - 1, rowCount == 1000 ? 2004 : expected.count(u';') + 1);
        QCOMPARE(got.mid(1).join(u';').left(expected.size()), expected);
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

    void init()
    {
        if (QTest::currentTestFunction() == QByteArray("sheetMergeKeepsTheTemplate") ||
            QTest::currentTestFunction() == QByteArray("sheetThatIsNoWorksheetIsRefused"))
            return;
#ifndef SX_TEMPLATE_FILE
        SX_SKIP_OR_FAIL("built without the workbook template");
#endif
        if (toolOutput(kPython, {u"-c"_s, u"import openpyxl; print(1)"_s}) != u"1\n")
            SX_SKIP_OR_FAIL("python3 with openpyxl is not installed");
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        RecordsSeed s(m_fx->db);
        QVERIFY(s.unit(u"A-100"_s, u"Ψυκτικός θάλαμος"_s, u"12"_s));
        QVERIFY(s.zone(u"A-100"_s, {.number = 1, .name = u"'Θερμοκρασία & <υγρασία>'"_s}));
        QVERIFY(s.zone(u"A-100"_s, {.number = 5, .name = u"NULL"_s, .type = 2}));
        const double values[] = {20, 30.5, 9.5, 25, 21, 22};
        QVERIFY(s.series(u"A-100"_s, 1, at(u"2026-03-02 08:00:00"_s), 3600, 6,
                         [&values](int i) { return values[i]; }));
        QVERIFY(s.record(u"A-100"_s, 5, u"2026-03-03 10:00:00"_s, 1, 2, 1));
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
    }

    void cleanup()
    {
        m_w.reset();
        m_fx.reset();
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
        const QByteArray templateBefore = fileHash(templateFile());
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
        for (const QString& c : u"E2=Ψυκτικός θάλαμος [12] (A-100);E3=[1] Θερμοκρασία & <υγρασία>;"
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
        QCOMPARE(fileHash(templateFile()), templateBefore);
        if (top == 0)
            return;

        // A contact zone: its states, and the limit cells left empty.
        chooseItem(m_w->sensorSelect(), 1);
        m_fx->dialogs.answerFile(dir + u"/contact.xlsx"_s);
        m_w->saveRecords();
        cells = readBack(dir + u"/contact.xlsx"_s)[u"cells"].toObject();
        QCOMPARE(text(u"A2"_s) + text(u"B2"_s) + text(u"E3"_s),
                 u"03/03/2026 - 10:00ΚΛΕΙΣΤΗ[5] Ανώνυμη ζώνη"_s);
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
            QCOMPARE(QProcess::execute(kPython, {u"-c"_s, u"import sys, zipfile\n"_s + python, tpl,
                                                 templateFile()}),
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
    void open()
    {
        m_w = std::make_unique<RecordsWindow>(m_fx->ctx);
        m_w->setTemplatePath(templateFile());
        fillSystemSelect(*m_w, 0, false);
        QCOMPARE(m_w->model()->rowCount(), 6);
    }

    static QString templateFile()
    {
#ifdef SX_TEMPLATE_FILE
        return QStringLiteral(SX_TEMPLATE_FILE);
#else
        return {};
#endif
    }

    static QJsonObject readBack(const QString& path)
    {
        return QJsonDocument::fromJson(
                   toolOutput(kPython,
                              {u"-c"_s, QString::fromUtf8(kReadWorkbook), path, templateFile()})
                       .toUtf8())
            .object();
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<RecordsWindow> m_w;
};

QTEST_MAIN(TestRecordsExport)
#include "tst_recordsexport.moc"
