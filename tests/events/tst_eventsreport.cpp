#include "ChooseItem.h"
#include "EventsSeed.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "reports/PdfDirectWriter.h"
#include "reports/ReportPainter.h"
#include "reports/events/EventsModel.h"
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

namespace {

struct Word {
    int page;
    double x, y, right; // points from the page's top left corner
    QString text;
};

struct PdfText {
    QStringList pages; // as pdftotext lays them out
    QList<Word> words;
    double pageWidth = 0;
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
            const double x = a.value(u"xMin"_s).toDouble();
            const double y = a.value(u"yMin"_s).toDouble();
            out.words.append({page, x, y, a.value(u"xMax"_s).toDouble(), xml.readElementText()});
        }
    }
    return out;
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

    // After a fill only the first row is selected: that is what prints, on one page,
    // under the wait window. Then every row, over pages (where entries land is
    // tst_reportlayouts' part), each description wrapped inside its column.
    void theSelectedRowsPrint()
    {
        SX_REQUIRE_DB(m_fx->scratch);
        seed();
        QVERIFY(EventsSeed(m_fx->db).event(u"A-1"_s, 2, u"2026-03-03 10:15:00"_s, 21, 1));
        for (int i = 0; i < 60; ++i) {
            const QDateTime when = QDateTime(QDate(2026, 1, 1), QTime(8, 0)).addDays(i);
            QVERIFY(EventsSeed(m_fx->db).event(
                u"A-1"_s, i + 3, when.toString(u"yyyy-MM-dd HH:mm:ss"_s), 25, 0, 0, 0, u"1;4;8"_s));
        }
        open();
        QCOMPARE(m_w->model()->rowCount(), 2);
        bool inputBlocked = false;
        QString waiting;
        QTimer::singleShot(0, m_w.get(), [&] {
            inputBlocked = !m_w->isEnabled();
            for (QWidget* w : QApplication::topLevelWidgets())
                if (auto* wait = qobject_cast<WaitWindow*>(w); wait && wait->isVisible())
                    waiting = wait->message();
        });
        PdfText pdf = print();
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

        // Bypasses are listed only with both kinds.
        m_w->kindOption(2)->click();
        chooseItem(m_w->monthSelect(), 12);
        const int count = m_w->model()->rowCount();
        QCOMPARE(count, 62);
        m_w->selectAllEvents();
        pdf = print();
        const int pages = int(pdf.pages.size());
        QVERIFY(pages > 1);
        for (int p = 0; p < pages; ++p) {
            QVERIFY2(pdf.pages.at(p).contains(u"Σελίδα %1/%2"_s.arg(p + 1).arg(pages)),
                     qPrintable(pdf.pages.at(p)));
            QVERIFY(pdf.pages.at(p).contains(u"SENTORAX Monitor / ΑΡΧΕΙΟ ΣΥΜΒΑΝΤΩΝ"_s));
        }
        // The dates in report order: page, then column, then top to bottom; below
        // the choices line no word crosses the middle of the page.
        struct Spot {
            int page;
            int column;
            double y;
            QString date;
        };
        QList<Spot> spots;
        static const QRegularExpression dateRe(u"^\\d\\d/\\d\\d/2026$"_s);
        const double middle = pdf.pageWidth / 2;
        for (const Word& w : pdf.words) {
            if (dateRe.match(w.text).hasMatch())
                spots.append({w.page, w.x < middle ? 0 : 1, w.y, w.text});
        }
        QCOMPARE(spots.size(), count);
        for (const Word& w : pdf.words)
            QVERIFY2(w.y < spots.first().y || w.x >= middle || w.right < middle,
                     qPrintable(w.text));
        QList<double> starts; // every description takes more than one line
        QList<double> ends;
        for (const Word& w : pdf.words) {
            if (w.text == u"ΕΝΕΡΓΟΠΟΙΗΘΗΚΕ")
                starts << w.y;
            else if (w.text == u"ΣΥΣΤΗΜΑΤΟΣ")
                ends << w.y;
        }
        QCOMPARE(starts.size(), 60);
        QCOMPARE(ends.size(), 60);
        for (int i = 0; i < 60; ++i)
            QVERIFY(ends.at(i) > starts.at(i));
        std::stable_sort(spots.begin(), spots.end(), [](const Spot& a, const Spot& b) {
            return std::tie(a.page, a.column, a.y) < std::tie(b.page, b.column, b.y);
        });
        for (int i = 0; i < count; ++i)
            QCOMPARE(spots.at(i).date, m_w->model()->dateText(i).left(10));
    }

    // Three ways to set a line: drawn text, kept glyph runs, and the direct
    // writer a PDF of the report gets. All must read back alike.
    void linesPrintAlikeEveryWay_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("split");   // where the second part starts, or -1
        QTest::addColumn<bool>("direct"); // the direct writer sets it itself
        QTest::newRow("pairs a font kerns, greek, signs")
            << u"AVATAR To Ty Wa ΑΤΑΥΤΟ (Ζώνη 20): 28.7 °C"_s << -1 << true;
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
        seed();
        open();
        const QString pdf = m_fx->answerPdf(false);
        m_w->printAction()->trigger();
        QVERIFY(!QFile::exists(pdf));
        QCOMPARE(m_fx->dialogs.shown().size(), 1);
        QCOMPARE(m_fx->dialogs.shown().first().kind, u"print"_s);
    }

private:
    static QString squeezed(QString s) { return s.remove(QRegularExpression(u"\\s+"_s)); }

    void open()
    {
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
        m_w = std::make_unique<EventsWindow>(m_fx->ctx);
        fillSystemSelect(*m_w, 0, true);
    }

    PdfText print()
    {
        const QString pdf = m_fx->answerPdf();
        m_w->printAction()->trigger();
        return readPdf(pdf);
    }

    // Unit A-1 with one mains cut on 2 March 2026.
    void seed()
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
