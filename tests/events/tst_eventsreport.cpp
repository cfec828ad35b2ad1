#include "ChooseItem.h"
#include "EventsSeed.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "reports/PdfDirectWriter.h"
#include "reports/ReportPainter.h"
#include "reports/events/EventsModel.h"
#include "reports/events/EventsReport.h"
#include "ui/UnitList.h"
#include "ui/WaitWindow.h"
#include "views/events/EventsWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QPdfWriter>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QXmlStreamReader>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;
using namespace sx::events_report;

namespace {

struct Word {
    int page = 0;
    double x = 0; // points from the page's left edge
    double y = 0;
    double right = 0;
    QString text;
};

struct PdfText {
    QStringList pages; // as pdftotext lays them out
    QList<Word> words;
    double pageWidth = 0; // points
};

PdfText readPdf(const QString& pdf)
{
    PdfText out;
    out.pages = pdfPages(pdf);
    QXmlStreamReader xml(toolOutput(u"pdftotext"_s, {u"-bbox"_s, pdf, u"-"_s}));
    int page = -1;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto a = xml.attributes();
        if (xml.name() == u"page") {
            ++page;
            out.pageWidth = a.value(u"width"_s).toDouble();
        } else if (xml.name() == u"word") {
            Word w{page,
                   a.value(u"xMin"_s).toDouble(),
                   a.value(u"yMin"_s).toDouble(),
                   a.value(u"xMax"_s).toDouble(),
                   {}};
            w.text = xml.readElementText();
            out.words.append(w);
        }
    }
    return out;
}

QString squeezed(QString s)
{
    return s.remove(QRegularExpression(u"\\s+"_s));
}

} // namespace

// The events report: where entries land, the choices line, then the real PDF
// of the window's print command read back as text and word positions.
class TestEventsReport : public QObject {
    Q_OBJECT

private slots:
    void init() { m_fx = std::make_unique<GuiFixture>(); }

    void cleanup()
    {
        m_w.reset();
        m_fx.reset();
    }

    void oneRowIsPageOneOfOne()
    {
        SX_REQUIRE_DB(m_fx->scratch);
        seedAlpha();
        QVERIFY(EventsSeed(m_fx->db).event(u"A-1"_s, 2, u"2026-03-03 10:15:00"_s, 21, 1));
        open(0);
        QCOMPARE(m_w->model()->rowCount(), 2);
        // The PDF is written while the window serves its events, under the wait window.
        bool inputBlocked = false;
        QString waiting;
        QTimer::singleShot(0, m_w.get(), [&] {
            inputBlocked = !m_w->isEnabled();
            for (QWidget* w : QApplication::topLevelWidgets())
                if (auto* wait = qobject_cast<WaitWindow*>(w); wait && wait->isVisible())
                    waiting = wait->message();
        });
        // After a fill only the first row is selected: that is what prints.
        const PdfText pdf = print();
        QVERIFY(inputBlocked);
        QCOMPARE(waiting, u"Εκτύπωση συμβάντων."_s);
        QVERIFY(m_w->isEnabled());
        QVERIFY(QApplication::overrideCursor() == nullptr);
        QCOMPARE(pdf.pages.size(), 1);
        const QString page = pdf.pages.first();
        QVERIFY2(page.contains(u"Σελίδα 1/1"_s), qPrintable(page));
        QVERIFY(page.contains(u"SENTORAX Monitor / ΑΡΧΕΙΟ ΣΥΜΒΑΝΤΩΝ"_s));
        QVERIFY(squeezed(page).contains(squeezed(m_w->choicesText())));
        QVERIFY(page.contains(u"03/03/2026 - 10:15"_s));
        QVERIFY(!page.contains(u"02/03/2026"_s));
        QVERIFY(page.contains(u"ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ"_s));
        // The entry at the top of the left column, below the choices line.
        const Word* date = nullptr;
        const Word* title = nullptr;
        for (const Word& w : pdf.words) {
            if (w.text == u"03/03/2026")
                date = &w;
            if (w.text == u"SENTORAX" && !title)
                title = &w;
        }
        QVERIFY(date && title);
        QVERIFY(date->x < pdf.pageWidth / 2);
        QVERIFY(date->y > title->y);
    }

    void fullLeftColumnContinuesAtTheTopOfTheRightOne()
    {
        SX_REQUIRE_DB(m_fx->scratch);
        EventsSeed s(m_fx->db);
        QVERIFY(s.unit(u"A-1"_s, u"Alpha"_s));
        // One event a day in March and again in April's first days: each entry has
        // a date of its own, so its place can be read back.
        const int count = 60;
        for (int i = 0; i < count; ++i) {
            const QDateTime when = QDateTime(QDate(2026, 1, 1), QTime(8, 0)).addDays(i);
            QVERIFY(s.event(u"A-1"_s, i + 1, when.toString(u"yyyy-MM-dd HH:mm:ss"_s), 21, 1));
        }
        open(0);
        chooseItem(m_w->monthSelect(), 12);
        QCOMPARE(m_w->model()->rowCount(), count);
        m_w->selectAllEvents();
        const PdfText pdf = print();
        const int pages = int(pdf.pages.size());
        for (int p = 0; p < pages; ++p) {
            QVERIFY2(pdf.pages.at(p).contains(u"Σελίδα %1/%2"_s.arg(p + 1).arg(pages)),
                     qPrintable(pdf.pages.at(p)));
            QVERIFY(pdf.pages.at(p).contains(u"SENTORAX Monitor / ΑΡΧΕΙΟ ΣΥΜΒΑΝΤΩΝ"_s));
        }
        // The dates in report order: page, then column, then top to bottom.
        struct Spot {
            int page;
            int column;
            double y;
            QString date;
        };
        QList<Spot> spots;
        static const QRegularExpression dateRe(u"^\\d\\d/\\d\\d/2026$"_s);
        for (const Word& w : pdf.words) {
            if (dateRe.match(w.text).hasMatch())
                spots.append({w.page, w.x < pdf.pageWidth / 2 ? 0 : 1, w.y, w.text});
        }
        QCOMPARE(spots.size(), count);
        std::stable_sort(spots.begin(), spots.end(), [](const Spot& a, const Spot& b) {
            return std::tie(a.page, a.column, a.y) < std::tie(b.page, b.column, b.y);
        });
        for (int i = 0; i < count; ++i)
            QCOMPARE(spots.at(i).date, m_w->model()->dateText(i).left(10));
        // The right column of page 1 starts level with the left one, with the
        // entry that follows the left column's last; page 2 starts at the top left.
        const auto firstWhere = [&spots](auto pred) {
            return int(std::find_if(spots.begin(), spots.end(), pred) - spots.begin());
        };
        const int firstRight =
            firstWhere([](const Spot& x) { return x.page == 0 && x.column == 1; });
        const int firstOnPage2 = firstWhere([](const Spot& x) { return x.page == 1; });
        QVERIFY(firstRight > 1 && firstRight < count);
        QCOMPARE(spots.at(firstRight).y, spots.at(0).y);
        QVERIFY(firstOnPage2 > firstRight && firstOnPage2 < count);
        QCOMPARE(spots.at(firstOnPage2).column, 0);
        QCOMPARE(spots.at(firstOnPage2).y, spots.at(0).y);
    }

    void longDescriptionWrapsInsideItsColumn()
    {
        SX_REQUIRE_DB(m_fx->scratch);
        EventsSeed s(m_fx->db);
        QVERIFY(s.unit(u"A-1"_s, u"Alpha"_s));
        QVERIFY(s.unit(u"B-2"_s, u"Beta"_s));
        QVERIFY(s.zone(u"B-2"_s, 4, u"Είσοδος αποθήκης"_s));
        QVERIFY(s.event(u"B-2"_s, 1, u"2026-03-06 13:00:00"_s, 25, 0, 0, 0, u"1;4;8"_s));
        open(2);
        QCOMPARE(m_w->systemSelect()->currentText(), u"ΟΛΑ"_s);
        // Bypasses are listed only with both kinds.
        m_w->kindOption(2)->click();
        QCOMPARE(m_w->model()->rowCount(), 1);
        const QString description = m_w->model()->descriptionText(0);
        QVERIFY(description.startsWith(u"Beta [7] (B-2) -> ΕΝΕΡΓΟΠΟΙΗΘΗΚΕ"_s));
        const PdfText pdf = print();
        QCOMPARE(pdf.pages.size(), 1);
        // Every word of the description, in order, inside the left column.
        const QStringList expected = description.split(u' ', Qt::SkipEmptyParts);
        qsizetype start = -1;
        for (qsizetype i = 0; i < pdf.words.size() && start < 0; ++i) {
            if (pdf.words.at(i).text == u"Beta" && pdf.words.at(i).y > 0 &&
                i + 1 < pdf.words.size() && pdf.words.at(i + 1).text == u"[7]")
                start = i;
        }
        QVERIFY(start >= 0);
        QVERIFY(start + expected.size() <= pdf.words.size());
        QSet<double> lines;
        const double columnRight = pdf.pageWidth / 2;
        for (qsizetype k = 0; k < expected.size(); ++k) {
            const Word& w = pdf.words.at(start + k);
            QCOMPARE(w.text, expected.at(k));
            QVERIFY2(w.right < columnRight, qPrintable(w.text));
            lines.insert(w.y);
        }
        QVERIFY2(lines.size() >= 2, "the description should take more than one line");
    }

    // Three ways to set a line: drawn text, kept glyph runs, and the direct
    // writer a PDF of the report gets. All must read back alike.
    void linesPrintAlikeEveryWay_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("split");   // where the second part starts, or -1
        QTest::addColumn<bool>("direct"); // the direct writer sets it itself
        QTest::newRow("greek") << u"ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 20 (Ζώνη 20) ΕΚΤΟΣ ΟΡΙΩΝ: 28.7 °C"_s << -1
                               << true;
        QTest::newRow("pairs a font kerns") << u"AVATAR To Ty Wa ΑΤΑΥΤΟ"_s << -1 << true;
        // Glyph numbers whose bytes a PDF string must escape: ( ) \ CR LF.
        QTest::newRow("escaped bytes") << u"EF y' *"_s << -1 << true;
        QTest::newRow("a fallback font") << u"Zone ✓ ok"_s << -1 << false;
        QTest::newRow("a date and its time") << u"31/12/2024 - 23:56"_s << 13 << true;
    }

    void linesPrintAlikeEveryWay()
    {
        QFETCH(QString, line);
        QFETCH(int, split);
        QFETCH(bool, direct);
        QList<Word> words[3];
        for (int way = 0; way < 3; ++way) {
            const QString file = m_fx->scratch.folder() + u"/line%1.pdf"_s.arg(way);
            QPdfWriter writer(way < 2 ? file : QString());
            std::optional<PdfDirectWriter> pdf;
            if (way == 2)
                pdf.emplace(file, writer.pageLayout());
            auto painter = pdf ? std::make_unique<ReportPainter>(writer, *pdf)
                               : std::make_unique<ReportPainter>(writer);
            painter->setCurrentY(20);
            for (int i = 0; i < 3; ++i) {
                painter->setCurrentX(15);
                if (way == 0)
                    painter->print(line);
                else if (split < 0)
                    painter->printRecurring(line);
                else
                    painter->printRecurring(line.left(split), line.mid(split));
            }
            QCOMPARE(painter->end(), way < 2 || direct);
            QCOMPARE(pdf && pdf->refusedText(), way == 2 && !direct);
            if (way < 2 || direct)
                words[way] = readPdf(file).words;
        }
        QCOMPARE(words[0].size(), 3 * line.split(u' ').size());
        for (int way = 1; way < (direct ? 3 : 2); ++way) {
            QCOMPARE(words[way].size(), words[0].size());
            // The direct writer sums exact advances where Qt sums them in
            // 64ths of a device pixel: a few hundredths of a point apart.
            const double near = way == 1 ? 0.01 : 0.05;
            for (qsizetype i = 0; i < words[0].size(); ++i) {
                QCOMPARE(words[way][i].text, words[0][i].text);
                QVERIFY(std::abs(words[way][i].x - words[0][i].x) < near);
                QVERIFY(std::abs(words[way][i].right - words[0][i].right) < near);
                QVERIFY(std::abs(words[way][i].y - words[0][i].y) < near);
            }
        }
    }

    void cancelledPrinterDialogPrintsNothing()
    {
        SX_REQUIRE_DB(m_fx->scratch);
        seedAlpha();
        open(0);
        const QString pdf = m_fx->answerPdf(false);
        m_w->printAction()->trigger();
        QVERIFY(!QFile::exists(pdf));
        QCOMPARE(m_fx->dialogs.shown().size(), 1);
        QCOMPARE(m_fx->dialogs.shown().first().kind, u"print"_s);
    }

private:
    void open(int unitIndex)
    {
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
        m_w = std::make_unique<EventsWindow>(m_fx->ctx);
        fillSystemSelect(*m_w, unitIndex, true);
    }

    PdfText print()
    {
        const QString pdf = m_fx->answerPdf();
        m_w->printAction()->trigger();
        return readPdf(pdf);
    }

    // Unit A-1 with one mains cut on 2 March 2026.
    void seedAlpha()
    {
        EventsSeed s(m_fx->db);
        QVERIFY(s.unit(u"A-1"_s, u"Alpha"_s));
        QVERIFY(s.event(u"A-1"_s, 1, u"2026-03-02 09:05:00"_s, 21, 1));
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<EventsWindow> m_w;
};

QTEST_MAIN(TestEventsReport)
#include "tst_eventsreport.moc"
