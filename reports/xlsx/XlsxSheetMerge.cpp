#include "reports/xlsx/XlsxSheetMerge.h"

#include <QBuffer>
#include <QList>
#include <QVarLengthArray>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sx::xlsx {

namespace {

// The heading cells E2 to E6 and the data columns A and B.
constexpr int kHeadingColumn = 5;
constexpr int kHeadingFirstRow = 2;
constexpr int kFirstDataRow = 2;
constexpr qint64 kFlushBytes = 1 << 20;

using Attributes = QList<QPair<QString, QString>>;

// One token of a template cell, kept to be written back unchanged.
struct Token {
    QXmlStreamReader::TokenType type = QXmlStreamReader::NoToken;
    QString name; // qualified name, or the target of a processing instruction
    Attributes attributes;
    QString text;
    bool cdata = false;
};

Attributes startAttributes(const QXmlStreamReader& r)
{
    Attributes out;
    // Declarations are written back as the attributes they were, prefixes unchanged.
    for (const QXmlStreamNamespaceDeclaration& ns : r.namespaceDeclarations()) {
        out.append({ns.prefix().isEmpty() ? u"xmlns"_s : u"xmlns:"_s + ns.prefix().toString(),
                    ns.namespaceUri().toString()});
    }
    for (const QXmlStreamAttribute& a : r.attributes())
        out.append({a.qualifiedName().toString(), a.value().toString()});
    return out;
}

QString attribute(const Attributes& attributes, QStringView name)
{
    for (const auto& [key, value] : attributes) {
        if (key == name)
            return value;
    }
    return {};
}

void setAttribute(Attributes& attributes, const QString& name, const QString& value)
{
    for (auto& [key, old] : attributes) {
        if (key == name) {
            old = value;
            return;
        }
    }
    attributes.append({name, value});
}

void removeAttribute(Attributes& attributes, QStringView name)
{
    attributes.removeIf([name](const QPair<QString, QString>& a) { return a.first == name; });
}

Token capture(const QXmlStreamReader& r)
{
    Token t;
    t.type = r.tokenType();
    switch (t.type) {
    case QXmlStreamReader::StartElement:
        t.name = r.qualifiedName().toString();
        t.attributes = startAttributes(r);
        break;
    case QXmlStreamReader::Characters:
        t.text = r.text().toString();
        t.cdata = r.isCDATA();
        break;
    case QXmlStreamReader::Comment:
        t.text = r.text().toString();
        break;
    case QXmlStreamReader::ProcessingInstruction:
        t.name = r.processingInstructionTarget().toString();
        t.text = r.processingInstructionData().toString();
        break;
    default:
        break;
    }
    return t;
}

void writeStart(QXmlStreamWriter& w, const QString& name, const Attributes& attributes)
{
    w.writeStartElement(name);
    for (const auto& [key, value] : attributes)
        w.writeAttribute(key, value);
}

void replay(QXmlStreamWriter& w, const Token& t)
{
    switch (t.type) {
    case QXmlStreamReader::StartElement:
        writeStart(w, t.name, t.attributes);
        break;
    case QXmlStreamReader::EndElement:
        w.writeEndElement();
        break;
    case QXmlStreamReader::Characters:
        if (t.cdata)
            w.writeCDATA(t.text);
        else
            w.writeCharacters(t.text);
        break;
    case QXmlStreamReader::Comment:
        w.writeComment(t.text);
        break;
    case QXmlStreamReader::ProcessingInstruction:
        w.writeProcessingInstruction(t.name, t.text);
        break;
    default:
        break;
    }
}

// Copies the current token of `r` as it is.
void copyToken(QXmlStreamWriter& w, const QXmlStreamReader& r)
{
    switch (r.tokenType()) {
    case QXmlStreamReader::StartDocument:
        if (r.isStandaloneDocument())
            w.writeStartDocument(r.documentVersion().toString(), true);
        else
            w.writeStartDocument(r.documentVersion().toString());
        break;
    case QXmlStreamReader::EndDocument:
        w.writeEndDocument();
        break;
    case QXmlStreamReader::DTD:
        w.writeDTD(r.text().toString());
        break;
    default:
        replay(w, capture(r));
        break;
    }
}

// "E12" -> 5; 0 when the reference has no column letters.
int columnOfRef(QStringView ref)
{
    int col = 0;
    for (QChar c : ref) {
        if (c < u'A' || c > u'Z')
            break;
        col = col * 26 + (c.unicode() - u'A' + 1);
    }
    return col;
}

int rowOfRef(QStringView ref)
{
    qsizetype i = 0;
    while (i < ref.size() && ref[i] >= u'A' && ref[i] <= u'Z')
        ++i;
    bool ok = false;
    const int row = ref.mid(i).toInt(&ok);
    return ok ? row : 0;
}

QString columnName(int col)
{
    QString out;
    while (col > 0) {
        const int d = (col - 1) % 26;
        out.prepend(QChar(u'A' + d));
        col = (col - 1) / 26;
    }
    return out;
}

QString cellRef(int col, int row)
{
    return columnName(col) + QString::number(row);
}

struct TemplateCell {
    int col = 0;
    QList<Token> tokens; // the <c> element and everything in it
};

struct TemplateRow {
    int number = 0;
    QString name;
    Attributes attributes;
    QList<TemplateCell> cells;
    QList<Token> other; // anything else inside the row (extLst), written after the cells
};

struct GeneratedCell {
    int col;
    QString text; // empty: the cell is left empty
};

class SheetWriter {
public:
    SheetWriter(QIODevice& out, const SheetFill& fill)
        : m_out(out), m_fill(fill), m_lastDataRow(kFirstDataRow - 1 + recordsThatFit(fill.rowCount))
    {
        m_buffer.open(QIODevice::WriteOnly);
        m_w.setDevice(&m_buffer);
    }

    bool run(const QByteArray& sheet, int templateMaxRow, int templateMaxCol);

private:
    bool flush(bool force = false)
    {
        if (!force && m_buffer.size() < kFlushBytes)
            return true;
        const QByteArray& data = m_buffer.data();
        if (!data.isEmpty() && m_out.write(data) != data.size())
            m_failed = true;
        m_buffer.buffer().clear();
        m_buffer.seek(0);
        return !m_failed;
    }

    void generated(int row, QVarLengthArray<GeneratedCell, 3>& cells) const
    {
        cells.clear();
        if (row >= kFirstDataRow && row <= m_lastDataRow) {
            cells.append({1, m_fill.dateText(row - kFirstDataRow)});
            cells.append({2, m_fill.readingText(row - kFirstDataRow)});
        }
        if (row >= kHeadingFirstRow && row < kHeadingFirstRow + int(m_fill.heading.size()))
            cells.append({kHeadingColumn, m_fill.heading[size_t(row - kHeadingFirstRow)]});
    }

    [[nodiscard]] int lastGeneratedRow() const
    {
        return std::max(m_lastDataRow, kHeadingFirstRow + int(m_fill.heading.size()) - 1);
    }

    void writeTextCell(int col, int row, const QString& text, const QString& style)
    {
        m_w.writeStartElement(m_prefix + u"c"_s);
        m_w.writeAttribute(u"r"_s, cellRef(col, row));
        if (!style.isEmpty())
            m_w.writeAttribute(u"s"_s, style);
        if (!text.isEmpty()) {
            m_w.writeAttribute(u"t"_s, u"inlineStr"_s);
            m_w.writeStartElement(m_prefix + u"is"_s);
            m_w.writeStartElement(m_prefix + u"t"_s);
            if (text.front().isSpace() || text.back().isSpace())
                m_w.writeAttribute(u"xml:space"_s, u"preserve"_s);
            m_w.writeCharacters(xmlText(text));
            m_w.writeEndElement();
            m_w.writeEndElement();
        }
        m_w.writeEndElement();
    }

    // Rows of the fill that the template does not have, from `from` to `to`.
    void writeGeneratedRows(int from, int to)
    {
        QVarLengthArray<GeneratedCell, 3> cells;
        for (int row = from; row <= to && !m_failed; ++row) {
            generated(row, cells);
            const bool any = std::any_of(cells.begin(), cells.end(),
                                         [](const GeneratedCell& c) { return !c.text.isEmpty(); });
            if (!any)
                continue;
            m_w.writeStartElement(m_prefix + u"row"_s);
            m_w.writeAttribute(u"r"_s, QString::number(row));
            for (const GeneratedCell& c : cells) {
                if (!c.text.isEmpty())
                    writeTextCell(c.col, row, c.text, {});
            }
            m_w.writeEndElement();
            flush();
        }
    }

    void writeMergedRow(TemplateRow& row)
    {
        QVarLengthArray<GeneratedCell, 3> cells;
        generated(row.number, cells);
        setAttribute(row.attributes, u"r"_s, QString::number(row.number));
        // The column span is a hint that new cells could contradict.
        if (!cells.isEmpty())
            removeAttribute(row.attributes, u"spans");
        writeStart(m_w, row.name, row.attributes);
        qsizetype g = 0;
        for (TemplateCell& cell : row.cells) {
            while (g < cells.size() && cells[g].col < cell.col) {
                if (!cells[g].text.isEmpty())
                    writeTextCell(cells[g].col, row.number, cells[g].text, {});
                ++g;
            }
            if (g < cells.size() && cells[g].col == cell.col) {
                // Replaced: the template's style of the cell stays.
                writeTextCell(cell.col, row.number, cells[g].text,
                              attribute(cell.tokens.front().attributes, u"s"));
                ++g;
                continue;
            }
            setAttribute(cell.tokens.front().attributes, u"r"_s, cellRef(cell.col, row.number));
            for (const Token& t : cell.tokens)
                replay(m_w, t);
        }
        for (; g < cells.size(); ++g) {
            if (!cells[g].text.isEmpty())
                writeTextCell(cells[g].col, row.number, cells[g].text, {});
        }
        for (const Token& t : row.other)
            replay(m_w, t);
        m_w.writeEndElement();
        flush();
    }

    // Reads a <row> of the template (the reader is on its start) up to its end.
    static TemplateRow readRow(QXmlStreamReader& r, int number)
    {
        TemplateRow row;
        row.number = number;
        row.name = r.qualifiedName().toString();
        row.attributes = startAttributes(r);
        int col = 0;
        int depth = 0;
        TemplateCell* cell = nullptr;
        while (!r.atEnd()) {
            r.readNext();
            if (r.isStartElement()) {
                ++depth;
                if (depth == 1 && r.name() == u"c") {
                    row.cells.append(TemplateCell{});
                    cell = &row.cells.back();
                    const QString ref = r.attributes().value(u"r"_s).toString();
                    col = ref.isEmpty() ? col + 1 : columnOfRef(ref);
                    cell->col = col;
                }
            } else if (r.isEndElement()) {
                if (depth == 0)
                    break;
                --depth;
                if (cell) {
                    cell->tokens.append(capture(r));
                    if (depth == 0)
                        cell = nullptr;
                } else {
                    row.other.append(capture(r));
                }
                continue;
            } else if (depth == 0 && r.isWhitespace()) {
                continue;
            }
            (cell ? cell->tokens : row.other).append(capture(r));
        }
        return row;
    }

    QIODevice& m_out;
    const SheetFill& m_fill;
    const int m_lastDataRow;
    QBuffer m_buffer;
    QXmlStreamWriter m_w;
    QString m_prefix;
    bool m_failed = false;
};

bool SheetWriter::run(const QByteArray& sheet, int templateMaxRow, int templateMaxCol)
{
    QXmlStreamReader r(sheet);
    bool inSheetData = false;
    int nextRow = 1;
    int previousRow = 0;
    while (!r.atEnd() && !m_failed) {
        r.readNext();
        if (r.hasError())
            return false;
        if (inSheetData) {
            if (r.isStartElement() && r.name() == u"row") {
                const QString attr = r.attributes().value(u"r"_s).toString();
                const int number = attr.isEmpty() ? previousRow + 1 : attr.toInt();
                writeGeneratedRows(nextRow, number - 1);
                TemplateRow row = readRow(r, number);
                if (r.hasError())
                    return false;
                writeMergedRow(row);
                previousRow = number;
                nextRow = std::max(nextRow, number + 1);
                continue;
            }
            if (r.isEndElement() && r.name() == u"sheetData") {
                writeGeneratedRows(nextRow, lastGeneratedRow());
                m_w.writeEndElement();
                inSheetData = false;
                continue;
            }
            if (r.isWhitespace())
                continue;
        }
        if (r.isStartElement() && r.name() == u"sheetData") {
            const QString qualified = r.qualifiedName().toString();
            m_prefix = qualified.left(qualified.size() - r.name().size());
            inSheetData = true;
        }
        if (r.isStartElement() && r.name() == u"dimension") {
            Attributes attributes = startAttributes(r);
            const QString start = attribute(attributes, u"ref").section(u':', 0, 0);
            const int maxRow = std::max({templateMaxRow, m_lastDataRow, lastGeneratedRow()});
            const int maxCol = std::max(templateMaxCol, kHeadingColumn);
            setAttribute(attributes, u"ref"_s,
                         (start.isEmpty() ? u"A1"_s : start) + u':' + cellRef(maxCol, maxRow));
            writeStart(m_w, r.qualifiedName().toString(), attributes);
            continue;
        }
        copyToken(m_w, r);
    }
    if (r.hasError())
        return false;
    return flush(true);
}

} // namespace

// XML 1.0 has no place for most control characters; a name that carries one
// loses it rather than making the whole workbook unreadable.
QString xmlText(const QString& text)
{
    const auto invalid = [](QChar c) {
        return (c.unicode() < 0x20 && c != u'\t' && c != u'\n' && c != u'\r') ||
               c.unicode() == 0xFFFE || c.unicode() == 0xFFFF;
    };
    if (std::none_of(text.begin(), text.end(), invalid))
        return text;
    QString out = text;
    out.removeIf(invalid);
    return out;
}

bool scanSheet(const QByteArray& sheet, int& maxRow, int& maxCol)
{
    QXmlStreamReader r(sheet);
    bool sawWorksheet = false;
    bool sawSheetData = false;
    int row = 0;
    int col = 0;
    maxRow = 0;
    maxCol = 0;
    while (!r.atEnd()) {
        r.readNext();
        if (!r.isStartElement())
            continue;
        if (r.name() == u"worksheet")
            sawWorksheet = true;
        else if (r.name() == u"sheetData")
            sawSheetData = true;
        else if (r.name() == u"row") {
            const QString attr = r.attributes().value(u"r"_s).toString();
            row = attr.isEmpty() ? row + 1 : attr.toInt();
            col = 0;
            maxRow = std::max(maxRow, row);
        } else if (r.name() == u"c") {
            const QString ref = r.attributes().value(u"r"_s).toString();
            col = ref.isEmpty() ? col + 1 : columnOfRef(ref);
            if (!ref.isEmpty())
                maxRow = std::max(maxRow, rowOfRef(ref));
            maxCol = std::max(maxCol, col);
        }
    }
    return !r.hasError() && sawWorksheet && sawSheetData;
}

bool fillSheetXml(const QByteArray& templateSheet, QIODevice& out, const SheetFill& fill)
{
    int maxRow = 0;
    int maxCol = 0;
    if (!scanSheet(templateSheet, maxRow, maxCol))
        return false;
    SheetWriter writer(out, fill);
    return writer.run(templateSheet, maxRow, maxCol);
}

int recordsThatFit(int rowCount, int sheetRows)
{
    return std::clamp(rowCount, 0, std::max(0, sheetRows - kFirstDataRow + 1));
}

} // namespace sx::xlsx
