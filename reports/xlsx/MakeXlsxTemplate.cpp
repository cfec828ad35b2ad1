// Writes TEMPLATEv2.xlsx, the workbook the records export fills: titles in
// row 1, the captions of E2 to E6 in column D, styled empty cells E2 to E6,
// column widths, a frozen title row and A4 page set-up. Run by the build.
#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipnewinfo.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

const char* const kContentTypes = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"><Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/><Default Extension="xml" ContentType="application/xml"/><Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/><Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/><Override PartName="/xl/styles.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml"/><Override PartName="/xl/sharedStrings.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sharedStrings+xml"/><Override PartName="/docProps/core.xml" ContentType="application/vnd.openxmlformats-package.core-properties+xml"/><Override PartName="/docProps/app.xml" ContentType="application/vnd.openxmlformats-officedocument.extended-properties+xml"/></Types>)";

const char* const kRootRels = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/><Relationship Id="rId2" Type="http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties" Target="docProps/core.xml"/><Relationship Id="rId3" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties" Target="docProps/app.xml"/></Relationships>)";

const char* const kCore = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<cp:coreProperties xmlns:cp="http://schemas.openxmlformats.org/package/2006/metadata/core-properties" xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:dcterms="http://purl.org/dc/terms/" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><dc:title>SENTORAX Monitor - Αρχείο καταγραφών</dc:title><dc:creator>SENTORAX Monitor</dc:creator><dcterms:created xsi:type="dcterms:W3CDTF">2024-01-01T00:00:00Z</dcterms:created></cp:coreProperties>)";

const char* const kApp = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Properties xmlns="http://schemas.openxmlformats.org/officeDocument/2006/extended-properties"><Application>SENTORAX Monitor</Application></Properties>)";

const char* const kWorkbook = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><bookViews><workbookView activeTab="0"/></bookViews><sheets><sheet name="Καταγραφές" sheetId="1" r:id="rId1"/></sheets><definedNames><definedName name="_xlnm.Print_Titles" localSheetId="0">'Καταγραφές'!$1:$1</definedName></definedNames></workbook>)";

const char* const kWorkbookRels = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/><Relationship Id="rId2" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles" Target="styles.xml"/><Relationship Id="rId3" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings" Target="sharedStrings.xml"/></Relationships>)";

// Styles: 0 plain, 1 column title (bold blue on light grey, boxed), 2 caption
// (bold, right-aligned), 3 heading value (bold, boxed), 4 report title (bold, larger).
const char* const kStyles = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><fonts count="4"><font><sz val="10"/><name val="Arial"/><family val="2"/></font><font><b/><sz val="10"/><color rgb="FF0000FF"/><name val="Arial"/><family val="2"/></font><font><b/><sz val="10"/><name val="Arial"/><family val="2"/></font><font><b/><sz val="12"/><name val="Arial"/><family val="2"/></font></fonts><fills count="3"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/></fill><fill><patternFill patternType="solid"><fgColor rgb="FFE0E0E0"/><bgColor indexed="64"/></patternFill></fill></fills><borders count="2"><border><left/><right/><top/><bottom/><diagonal/></border><border><left style="thin"><color auto="1"/></left><right style="thin"><color auto="1"/></right><top style="thin"><color auto="1"/></top><bottom style="thin"><color auto="1"/></bottom><diagonal/></border></borders><cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs><cellXfs count="5"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/><xf numFmtId="0" fontId="1" fillId="2" borderId="1" xfId="0" applyFont="1" applyFill="1" applyBorder="1" applyAlignment="1"><alignment horizontal="center"/></xf><xf numFmtId="0" fontId="2" fillId="0" borderId="0" xfId="0" applyFont="1" applyAlignment="1"><alignment horizontal="right"/></xf><xf numFmtId="49" fontId="2" fillId="0" borderId="1" xfId="0" applyNumberFormat="1" applyFont="1" applyBorder="1" applyAlignment="1"><alignment horizontal="left"/></xf><xf numFmtId="0" fontId="3" fillId="0" borderId="0" xfId="0" applyFont="1"/></cellXfs><cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles></styleSheet>)";

const char* const kSharedStrings = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" count="8" uniqueCount="8"><si><t>ΗΜΕΡΟΜΗΝΙΑ</t></si><si><t>ΕΝΔΕΙΞΗ</t></si><si><t>ΠΛΗΡΟΦΟΡΙΕΣ ΑΡΧΕΙΟΥ ΚΑΤΑΓΡΑΦΩΝ</t></si><si><t>ΣΥΣΤΗΜΑ:</t></si><si><t>ΖΩΝΗ ΠΑΡΑΚΟΛΟΥΘΗΣΗΣ:</t></si><si><t>ΜΗΝΑΣ/ΕΤΟΣ:</t></si><si><t>ΜΕΓΙΣΤΟ ΟΡΙΟ:</t></si><si><t>ΕΛΑΧΙΣΤΟ ΟΡΙΟ:</t></si></sst>)";

const char* const kSheet = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><dimension ref="A1:E6"/><sheetViews><sheetView workbookViewId="0"><pane ySplit="1" topLeftCell="A2" activePane="bottomLeft" state="frozen"/><selection pane="bottomLeft" activeCell="A2" sqref="A2"/></sheetView></sheetViews><sheetFormatPr defaultRowHeight="13.2"/><cols><col min="1" max="1" width="22.7" customWidth="1"/><col min="2" max="2" width="18.7" customWidth="1"/><col min="3" max="3" width="3.7" customWidth="1"/><col min="4" max="4" width="26.7" customWidth="1"/><col min="5" max="5" width="48.7" customWidth="1"/></cols><sheetData><row r="1"><c r="A1" s="1" t="s"><v>0</v></c><c r="B1" s="1" t="s"><v>1</v></c><c r="D1" s="4" t="s"><v>2</v></c></row><row r="2"><c r="D2" s="2" t="s"><v>3</v></c><c r="E2" s="3"/></row><row r="3"><c r="D3" s="2" t="s"><v>4</v></c><c r="E3" s="3"/></row><row r="4"><c r="D4" s="2" t="s"><v>5</v></c><c r="E4" s="3"/></row><row r="5"><c r="D5" s="2" t="s"><v>6</v></c><c r="E5" s="3"/></row><row r="6"><c r="D6" s="2" t="s"><v>7</v></c><c r="E6" s="3"/></row></sheetData><pageMargins left="0.7" right="0.7" top="0.75" bottom="0.75" header="0.3" footer="0.3"/><pageSetup paperSize="9" orientation="portrait"/></worksheet>)";

struct Part {
    const char* name;
    const char* text;
};

const Part kParts[] = {
    {"[Content_Types].xml", kContentTypes},
    {"_rels/.rels", kRootRels},
    {"docProps/core.xml", kCore},
    {"docProps/app.xml", kApp},
    {"xl/workbook.xml", kWorkbook},
    {"xl/_rels/workbook.xml.rels", kWorkbookRels},
    {"xl/styles.xml", kStyles},
    {"xl/sharedStrings.xml", kSharedStrings},
    {"xl/worksheets/sheet1.xml", kSheet},
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUTPUT.xlsx\n", argv[0]);
        return 2;
    }
    QSaveFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    QuaZip zip(&file);
    zip.setAutoClose(false);
    if (!zip.open(QuaZip::mdCreate))
        return 1;
    // A fixed time keeps the file identical from build to build.
    const QDateTime stamp(QDate(2024, 1, 1), QTime(0, 0));
    for (const Part& part : kParts) {
        QuaZipNewInfo info(QString::fromLatin1(part.name));
        info.dateTime = stamp;
        QuaZipFile entry(&zip);
        if (!entry.open(QIODevice::WriteOnly, info))
            return 1;
        const QByteArray data(part.text);
        if (entry.write(data) != data.size())
            return 1;
        entry.close();
        if (entry.getZipError() != ZIP_OK)
            return 1;
    }
    zip.close();
    if (zip.getZipError() != ZIP_OK || !file.commit()) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
