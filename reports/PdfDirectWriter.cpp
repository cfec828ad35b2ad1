#include "reports/PdfDirectWriter.h"

#include <QDateTime>
#include <QMap>
#include <QRawFont>

#include <array>
#include <cmath>
#include <initializer_list>

using namespace Qt::StringLiterals;

namespace sx {

struct PdfDirectWriter::Font {
    QString face;
    QRawFont raw;       // sized to its units per em: advances come in font units
    QByteArray program; // empty: the font cannot be embedded, and its text is refused
    double pointSize = 0.0;
    QByteArray resource;
    std::vector<Glyph> glyphs = std::vector<Glyph>(0x10000);
    QMap<quint32, char16_t> used; // glyph -> the character it was drawn for
};

namespace {

// Pages and fonts refer to these before they are written.
constexpr int kCatalog = 1;
constexpr int kPages = 2;
constexpr int kResources = 3;
constexpr int kInfo = 4;

void appendNumber(QByteArray& out, double v)
{
    // Thousandths of a point: finer than any device draws.
    long long parts = std::llround(v * 1000.0);
    if (parts < 0) {
        out += '-';
        parts = -parts;
    }
    std::array<char, 24> digits{};
    int n = 0;
    long long whole = parts / 1000;
    do {
        digits[size_t(n++)] = char('0' + whole % 10);
        whole /= 10;
    } while (whole != 0);
    while (n > 0)
        out += digits[size_t(--n)];
    if (int frac = int(parts % 1000); frac != 0) {
        out += '.';
        for (int unit = 100; frac != 0; unit /= 10) {
            out += char('0' + frac / unit);
            frac %= unit;
        }
    }
}

QByteArray number(double v)
{
    QByteArray out;
    appendNumber(out, v);
    return out;
}

QByteArray hex4(quint32 v)
{
    return QByteArray::number(v, 16).rightJustified(4, '0').toUpper();
}

// A text string of the document's information: UTF-16 with its byte order mark.
QByteArray textString(const QString& s)
{
    QByteArray out = "<FEFF";
    for (const QChar c : s)
        out += hex4(c.unicode());
    return out + '>';
}

void appendU16(QByteArray& out, quint32 v)
{
    out += char((v >> 8) & 0xff);
    out += char(v & 0xff);
}

void appendU32(QByteArray& out, quint32 v)
{
    appendU16(out, v >> 16);
    appendU16(out, v & 0xffff);
}

qint32 readI16(const QByteArray& table, qsizetype at)
{
    if (table.size() < at + 2)
        return 0;
    return qint16((quint8(table[at]) << 8) | quint8(table[at + 1]));
}

// Characters that need no shaping: each is one glyph with its own advance.
bool setsPlainly(QChar c)
{
    switch (c.category()) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_PrivateUse:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        break;
    }
    switch (c.script()) {
    case QChar::Script_Common:
    case QChar::Script_Latin:
    case QChar::Script_Greek:
    case QChar::Script_Cyrillic:
        return true;
    default:
        return false;
    }
}

// The font program rebuilt from its tables, as a TrueType file holds them.
QByteArray trueTypeFile(const QRawFont& raw)
{
    // In the order of their tags' bytes, as the table directory wants them.
    static const char* const tags[] = {"OS/2", "cmap", "cvt ", "fpgm", "gasp", "glyf", "head",
                                       "hhea", "hmtx", "loca", "maxp", "name", "post", "prep"};
    // Without these there are no TrueType outlines to embed (a CFF font, say).
    static const QByteArrayList needed = {"glyf", "head", "hhea", "hmtx", "loca", "maxp"};
    QList<std::pair<const char*, QByteArray>> tables;
    for (const char* tag : tags) {
        QByteArray data = raw.fontTable(tag);
        if (!data.isEmpty())
            tables.append({tag, std::move(data)});
        else if (needed.contains(tag))
            return {};
    }
    const auto count = quint32(tables.size());
    quint32 selector = 0;
    while ((2u << selector) <= count)
        ++selector;
    QByteArray out;
    appendU32(out, 0x00010000);
    appendU16(out, count);
    appendU16(out, 16u << selector);
    appendU16(out, selector);
    appendU16(out, count * 16 - (16u << selector));
    quint32 offset = 12 + 16 * count;
    for (const auto& [tag, data] : tables) {
        quint32 sum = 0;
        for (qsizetype i = 0; i < data.size(); i += 4) {
            quint32 word = 0;
            for (qsizetype k = 0; k < 4; ++k)
                word = (word << 8) | (i + k < data.size() ? quint8(data[i + k]) : 0u);
            sum += word;
        }
        out.append(tag, 4);
        appendU32(out, sum);
        appendU32(out, offset);
        appendU32(out, quint32(data.size()));
        offset += (quint32(data.size()) + 3) & ~3u;
    }
    for (const auto& [tag, data] : tables) {
        out += data;
        out.append((4 - data.size() % 4) % 4, '\0');
    }
    return out;
}

QByteArray psName(const QRawFont& raw)
{
    QByteArray name;
    for (const QChar c : raw.familyName()) {
        if (c.isLetterOrNumber() && c.unicode() < 128)
            name += char(c.unicode());
    }
    if (name.isEmpty())
        name = "Font";
    QByteArray style;
    for (const QChar c : raw.styleName()) {
        if (c.isLetterOrNumber() && c.unicode() < 128)
            style += char(c.unicode());
    }
    if (!style.isEmpty() && style != "Regular")
        name += '-' + style;
    return name;
}

} // namespace

PdfDirectWriter::PdfDirectWriter(const QString& fileName, const QPageLayout& layout)
    : m_file(fileName)
{
    const QRectF page = layout.fullRect(QPageLayout::Point);
    m_pageWidth = page.width();
    m_pageHeight = page.height();
    m_offsets.resize(kInfo, 0);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return;
    write("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");
    (void)newPage();
}

PdfDirectWriter::~PdfDirectWriter() = default;

int PdfDirectWriter::newObject()
{
    m_offsets.push_back(0);
    return int(m_offsets.size());
}

void PdfDirectWriter::beginObject(int number)
{
    m_offsets[size_t(number - 1)] = m_written;
    write(QByteArray::number(number) + " 0 obj\n");
}

void PdfDirectWriter::write(const QByteArray& bytes)
{
    if (m_file.write(bytes) != bytes.size())
        m_failed = true;
    m_written += bytes.size();
}

void PdfDirectWriter::writeStream(int number, const QByteArray& data, const QByteArray& extra)
{
    // qCompress puts the length in front of a plain zlib stream.
    const QByteArray packed = qCompress(data).mid(4);
    beginObject(number);
    write("<< /Length " + QByteArray::number(packed.size()) + " /Filter /FlateDecode" + extra +
          " >>\nstream\n");
    write(packed);
    write("\nendstream\nendobj\n");
}

void PdfDirectWriter::setFont(const QFont& font)
{
    QRawFont raw = QRawFont::fromFont(font);
    const QString face = raw.familyName() + u'/' + raw.styleName();
    m_current = -1;
    for (size_t i = 0; i < m_fonts.size(); ++i) {
        if (m_fonts[i]->face == face)
            m_current = int(i);
    }
    if (m_current < 0) {
        auto f = std::make_unique<Font>();
        f->face = face;
        if (raw.isValid() && raw.unitsPerEm() > 0) {
            raw.setPixelSize(raw.unitsPerEm());
            f->program = trueTypeFile(raw);
        }
        f->raw = raw;
        f->resource = "F" + QByteArray::number(qsizetype(m_fonts.size()) + 1);
        m_fonts.push_back(std::move(f));
        m_current = int(m_fonts.size()) - 1;
    }
    m_fonts[size_t(m_current)]->pointSize = font.pointSizeF();
    m_textFont = -1;
}

const PdfDirectWriter::Glyph& PdfDirectWriter::glyph(Font& font, char16_t c)
{
    Glyph& g = font.glyphs[c];
    if (g.size >= 0)
        return g;
    g.size = 0;
    if (font.program.isEmpty() || !setsPlainly(QChar(c)))
        return g;
    const QList<quint32> index = font.raw.glyphIndexesForString(QString(QChar(c)));
    if (index.size() != 1 || index.first() == 0 || index.first() > 0xffff)
        return g;
    for (const quint32 byte : {index.first() >> 8, index.first() & 0xff}) {
        const char b = char(byte);
        if (b == '(' || b == ')' || b == '\\') {
            g.bytes[g.size++] = '\\';
            g.bytes[g.size++] = b;
        } else if (b == '\r' || b == '\n') {
            // A bare line end inside a string would be read as a plain '\n'.
            g.bytes[g.size++] = '\\';
            g.bytes[g.size++] = b == '\r' ? 'r' : 'n';
        } else {
            g.bytes[g.size++] = b;
        }
    }
    font.used.insert(index.first(), c);
    return g;
}

bool PdfDirectWriter::drawText(double x, double y, QStringView text)
{
    if (m_current < 0 || !m_inPage) {
        m_refused = true;
        return false;
    }
    Font& font = *m_fonts[size_t(m_current)];
    if (!m_inText) {
        m_content += "BT\n";
        m_inText = true;
        m_textFont = -1;
    }
    if (m_textFont != m_current) {
        m_content += '/' + font.resource + ' ';
        appendNumber(m_content, font.pointSize);
        m_content += " Tf\n";
        m_textFont = m_current;
    }
    m_content += "1 0 0 1 ";
    appendNumber(m_content, x);
    m_content += ' ';
    appendNumber(m_content, pageY(y));
    m_content += " Tm (";
    for (const QChar c : text) {
        const Glyph& g = glyph(font, c.unicode());
        if (g.size <= 0) {
            m_refused = true;
            return false;
        }
        m_content.append(g.bytes, g.size);
    }
    m_content += ")Tj\n";
    return true;
}

void PdfDirectWriter::endText()
{
    if (m_inText)
        m_content += "ET\n";
    m_inText = false;
}

void PdfDirectWriter::appendPath(std::initializer_list<double> numbers, const char* op)
{
    endText();
    for (const double v : numbers) {
        appendNumber(m_content, v);
        m_content += ' ';
    }
    m_content += op;
}

void PdfDirectWriter::drawRect(const QRectF& r)
{
    appendPath({r.left(), pageY(r.bottom()), r.width(), r.height()}, "re S\n");
}

void PdfDirectWriter::drawLine(QPointF from, QPointF to)
{
    appendPath({from.x(), pageY(from.y())}, "m ");
    appendPath({to.x(), pageY(to.y())}, "l S\n");
}

bool PdfDirectWriter::newPage()
{
    if (!m_file.isOpen())
        return false;
    endPage();
    m_inPage = true;
    m_content.clear();
    // Black, and the square ends and bevelled corners of Qt's default pen.
    m_content += "q 0 G 0 g 2 J 2 j ";
    appendNumber(m_content, m_lineWidth);
    m_content += " w\n";
    return !m_failed && !m_refused;
}

void PdfDirectWriter::endPage()
{
    if (!m_inPage)
        return;
    endText();
    m_content += "Q\n";
    const int contents = newObject();
    writeStream(contents, m_content);
    const int page = newObject();
    beginObject(page);
    write("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + number(m_pageWidth) + ' ' +
          number(m_pageHeight) + "] /Resources 3 0 R /Contents " + QByteArray::number(contents) +
          " 0 R >>\nendobj\n");
    m_pages.append(page);
    m_inPage = false;
}

void PdfDirectWriter::writeFonts()
{
    QByteArray resources = "<< /Font <<";
    for (const auto& font : m_fonts) {
        const QRawFont& raw = font->raw;
        const QByteArray head = raw.fontTable("head");
        const QByteArray hhea = raw.fontTable("hhea");
        const double unitsPerEm = raw.unitsPerEm() > 0 ? raw.unitsPerEm() : 1000.0;
        const auto perMille = [unitsPerEm](double v) { return number(v * 1000.0 / unitsPerEm); };
        const QByteArray name = psName(raw);

        const int file = newObject();
        writeStream(file, font->program, " /Length1 " + QByteArray::number(font->program.size()));

        const int descriptor = newObject();
        beginObject(descriptor);
        write("<< /Type /FontDescriptor /FontName /" + name + " /Flags 4 /FontBBox [" +
              perMille(readI16(head, 36)) + ' ' + perMille(readI16(head, 38)) + ' ' +
              perMille(readI16(head, 40)) + ' ' + perMille(readI16(head, 42)) +
              "] /ItalicAngle 0 /Ascent " + perMille(readI16(hhea, 4)) + " /Descent " +
              perMille(readI16(hhea, 6)) + " /CapHeight " + perMille(readI16(hhea, 4)) +
              " /StemV 80 /FontFile2 " + QByteArray::number(file) + " 0 R >>\nendobj\n");

        const QList<quint32> glyphs = font->used.keys();
        const QList<QPointF> advances =
            raw.isValid() ? raw.advancesForGlyphIndexes(glyphs, QRawFont::UseDesignMetrics)
                          : QList<QPointF>();
        QByteArray widths = "[";
        for (qsizetype i = 0; i < glyphs.size() && i < advances.size(); ++i)
            widths += ' ' + QByteArray::number(glyphs[i]) + " [" + perMille(advances[i].x()) + ']';
        widths += " ]";
        const int cidFont = newObject();
        beginObject(cidFont);
        write("<< /Type /Font /Subtype /CIDFontType2 /BaseFont /" + name +
              " /CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 >>"
              " /FontDescriptor " +
              QByteArray::number(descriptor) + " 0 R /CIDToGIDMap /Identity /W " + widths +
              " >>\nendobj\n");

        // What a reader copies or searches: the character each glyph stands for.
        QByteArray cmap = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
                          "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> "
                          "def\n/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
                          "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
        for (qsizetype i = 0; i < glyphs.size(); i += 100) {
            const qsizetype n = std::min<qsizetype>(100, glyphs.size() - i);
            cmap += QByteArray::number(n) + " beginbfchar\n";
            for (qsizetype k = i; k < i + n; ++k)
                cmap += '<' + hex4(glyphs[k]) + "> <" + hex4(font->used.value(glyphs[k])) + ">\n";
            cmap += "endbfchar\n";
        }
        cmap += "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
        const int toUnicode = newObject();
        writeStream(toUnicode, cmap);

        const int type0 = newObject();
        beginObject(type0);
        write("<< /Type /Font /Subtype /Type0 /BaseFont /" + name +
              " /Encoding /Identity-H /DescendantFonts [" + QByteArray::number(cidFont) +
              " 0 R] /ToUnicode " + QByteArray::number(toUnicode) + " 0 R >>\nendobj\n");
        resources += " /" + font->resource + ' ' + QByteArray::number(type0) + " 0 R";
    }
    beginObject(kResources);
    write(resources + " >> /ProcSet [/PDF /Text] >>\nendobj\n");
}

bool PdfDirectWriter::finish()
{
    if (!m_file.isOpen())
        return false;
    if (m_refused) {
        m_file.close();
        return false;
    }
    endPage();
    writeFonts();
    QByteArray kids;
    for (const int page : m_pages)
        kids += QByteArray::number(page) + " 0 R ";
    beginObject(kPages);
    write("<< /Type /Pages /Kids [" + kids + "] /Count " + QByteArray::number(m_pages.size()) +
          " >>\nendobj\n");
    beginObject(kCatalog);
    write("<< /Type /Catalog /Pages 2 0 R >>\nendobj\n");
    beginObject(kInfo);
    write("<< /Title " + textString(m_title) + " /Creator " + textString(m_creator) +
          " /CreationDate (D:" +
          QDateTime::currentDateTime().toString(u"yyyyMMddHHmmss"_s).toLatin1() + ") >>\nendobj\n");
    const qint64 xref = m_written;
    QByteArray table = "xref\n0 " + QByteArray::number(qsizetype(m_offsets.size()) + 1) +
                       "\n0000000000 65535 f \n";
    for (const qint64 offset : m_offsets)
        table += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    write(table);
    write("trailer\n<< /Size " + QByteArray::number(qsizetype(m_offsets.size()) + 1) +
          " /Root 1 0 R /Info 4 0 R >>\nstartxref\n" + QByteArray::number(xref) + "\n%%EOF\n");
    if (!m_file.flush())
        m_failed = true;
    m_file.close();
    return !m_failed;
}

} // namespace sx
