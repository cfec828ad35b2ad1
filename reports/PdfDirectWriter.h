#pragma once

#include <QByteArray>
#include <QFile>
#include <QFont>
#include <QList>
#include <QPageLayout>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QStringView>

#include <initializer_list>
#include <memory>
#include <vector>

namespace sx {

// A PDF of plain text, lines and rectangles written straight to its file: one
// text command per line, each font embedded whole. Made for reports of
// thousands of pages, where Qt's PDF engine spends about a microsecond on
// every character. Text that needs shaping (combining marks, right-to-left or
// other complex scripts) or a glyph the font lacks is refused; the caller then
// draws the document through Qt instead.
class PdfDirectWriter {
public:
    // The file is opened at once and the first page begun.
    PdfDirectWriter(const QString& fileName, const QPageLayout& layout);
    ~PdfDirectWriter();
    PdfDirectWriter(const PdfDirectWriter&) = delete;
    PdfDirectWriter& operator=(const PdfDirectWriter&) = delete;

    void setTitle(const QString& title) { m_title = title; }
    void setCreator(const QString& creator) { m_creator = creator; }

    [[nodiscard]] bool isOpen() const { return m_file.isOpen(); }
    // True once a text could not be set with its font.
    [[nodiscard]] bool refusedText() const { return m_refused; }

    void setFont(const QFont& font);
    void setLineWidth(double points) { m_lineWidth = points; }

    // Positions in points from the top left corner of the page; y is the
    // text's baseline. False (and nothing drawn) when the text is refused.
    bool drawText(double x, double y, QStringView text);
    void drawRect(const QRectF& points);
    void drawLine(QPointF from, QPointF to);

    bool newPage();
    // Writes the fonts and the document's tables and closes the file; false
    // when a text was refused or the file could not be written whole.
    bool finish();

private:
    struct Font;
    struct Glyph {
        char bytes[4];   // the glyph number as a literal string's escaped bytes
        qint8 size = -1; // -1 not looked up yet, 0 refused
    };

    int newObject();
    void beginObject(int number);
    void write(const QByteArray& bytes);
    void writeStream(int number, const QByteArray& data, const QByteArray& extra = {});
    void endPage();
    void endText();
    void appendPath(std::initializer_list<double> numbers, const char* op);
    void writeFonts();
    const Glyph& glyph(Font& font, char16_t c);
    [[nodiscard]] double pageY(double y) const { return m_pageHeight - y; }

    QFile m_file;
    double m_pageWidth = 0.0;
    double m_pageHeight = 0.0;
    QString m_title;
    QString m_creator;
    std::vector<qint64> m_offsets; // of object n + 1
    QList<int> m_pages;
    qint64 m_written = 0;
    QByteArray m_content;
    bool m_inPage = false;
    bool m_inText = false;
    int m_textFont = -1;
    bool m_refused = false;
    bool m_failed = false;
    double m_lineWidth = 1.0;
    std::vector<std::unique_ptr<Font>> m_fonts;
    int m_current = -1;
};

} // namespace sx
