#include "ChooseItem.h"
#include "EventsSeed.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "reports/Colors.h"
#include "reports/PdfDirectWriter.h"
#include "reports/ReportPainter.h"
#include "reports/events/EventsModel.h"
#include "shell/SecondaryViews.h"
#include "ui/NavigationFrame.h"
#include "ui/UnitList.h"
#include "ui/WaitWindow.h"
#include "views/events/EventsWindow.h"
#include "views/records/RecordsWindow.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QBrush>
#include <QComboBox>
#include <QFile>
#include <QFontMetricsF>
#include <QPdfWriter>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QXmlStreamReader>

#include <memory>
#include <optional>
#include <tuple>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

// "date | description | colour" of every grid row, colour as n (normal), a (alarm), b (bypass).
QStringList gridRows(const EventsModel* m)
{
    QStringList out;
    for (int r = 0; r < m->rowCount(); ++r) {
        const QVariant fg = m->index(r, 1).data(Qt::ForegroundRole);
        const QColor c = fg.isValid() ? fg.value<QBrush>().color() : QColor();
        const QString code = !c.isValid()            ? u"n"_s
                             : c == colors::kDarkRed ? u"a"_s
                             : c == colors::kBlue    ? u"b"_s
                                                     : c.name();
        out << m->index(r, 0).data().toString() + u" | "_s + m->index(r, 1).data().toString() +
                   u" | "_s + code;
    }
    return out;
}

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

// The events window on a real database, and its report read back from the real PDF.
class TestEventsWindow : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        seed();
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
    }

    void cleanup()
    {
        m_tester.reset();
        m_w.reset();
        m_fx.reset();
    }

    void startUpWithoutFillingThenLayoutAndWrappedRows()
    {
        m_w = std::make_unique<EventsWindow>(m_fx->ctx);
        QCOMPARE(m_w->fills(), 0);
        QVERIFY(!m_w->loading());
        QCOMPARE(m_w->monthSelect()->currentText(), u"Μαρτιος"_s);
        QCOMPARE(m_w->yearSelect()->currentText(), u"2026"_s);
        QVERIFY(!m_w->sensorSelect()->isEnabled());
        QVERIFY(!m_w->markButton()->isEnabled() && !m_w->printAction()->isEnabled());
        QVERIFY(m_w->kindOption(0)->isChecked() && m_w->newOption(0)->isChecked());
        // The unit arrives with the navigation: one list, one fill.
        fillSystemSelect(*m_w, 0, true);
        QCOMPARE(m_w->fills(), 1);
        QCOMPARE(comboTexts(m_w->systemSelect()).last(), u"ΟΛΑ"_s);
        QCOMPARE(m_fx->ctx.systemSerials.last(), u"*"_s);

        m_w->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_w.get()));
        QVERIFY2(m_w->width() <= 1280 && m_w->height() <= 740,
                 qPrintable(u"%1×%2"_s.arg(m_w->width()).arg(m_w->height())));
        for (QAbstractButton* b : std::initializer_list<QAbstractButton*>{
                 m_w->markButton(), m_w->kindOption(1), m_w->newOption(0)})
            QVERIFY2(b->sizeHint().width() <= b->width(), qPrintable(b->text()));
        const auto shown = [](QWidget* w) {
            return !w->objectName().isEmpty() && !w->objectName().startsWith(u"qt_"_s) &&
                   w->isVisible();
        };
        // Every named control lies wholly inside its container and clear of its siblings.
        QCOMPARE(GuiFixture::clippedChild(*m_w->centralWidget()), QString());
        const QList<QWidget*> all = m_w->centralWidget()->findChildren<QWidget*>();
        for (QWidget* a : all) {
            for (QWidget* b : all) {
                if (b != a && b->parentWidget() == a->parentWidget() && shown(a) && shown(b))
                    QVERIFY2(!a->geometry().intersects(b->geometry()),
                             qPrintable(a->objectName() + u" / "_s + b->objectName()));
            }
        }
        // The padded header texts size the columns; the grid shows both whole.
        const QFontMetricsF fm(m_w->grid()->font());
        for (int c = 0; c < 2; ++c)
            QVERIFY(m_w->grid()->columnWidth(c) >=
                    fm.horizontalAdvance(EventsModel::headerText(c)));
        QVERIFY(m_w->grid()->viewport()->width() >=
                m_w->grid()->columnWidth(0) + m_w->grid()->columnWidth(1));

        // A description wider than its column gets a row that fits it wrapped whole.
        chooseItem(m_w->systemSelect(), 3);
        pickSource(u"Παράκαμψη ζώνης"_s);
        const QString text = m_w->model()->descriptionText(0);
        const int column = m_w->grid()->columnWidth(EventsModel::DescriptionColumn);
        QVERIFY(fm.horizontalAdvance(text) > column);
        QVERIFY(m_w->model()->lines(0) >= 2);
        const QRectF needed =
            fm.boundingRect(QRectF(0, 0, column - 8, 1e6), Qt::TextWordWrap, text);
        QVERIFY2(m_w->grid()->rowHeight(0) >= needed.height(),
                 qPrintable(u"%1 < %2"_s.arg(m_w->grid()->rowHeight(0)).arg(needed.height())));
        pickSource(u"Δίκτυο ρεύματος"_s);
        m_w->kindOption(2)->click();
        QCOMPARE(m_w->model()->lines(0), 1);
        QCOMPARE(m_w->grid()->rowHeight(0), m_w->grid()->verticalHeader()->defaultSectionSize());
    }

    // The list per unit; each entry fills once and sets the kind options, every
    // entry reached from the opposite state so that the rule has to act.
    void sourceListPerUnit_data()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<QStringList>("kindless"); // entries without alarms or restorations
        const QString delivery = u"Παράδοση μηνυμάτων"_s;
        const QString faults = u"Βλάβες συστήματος"_s;
        const QString bypass = u"Παράκαμψη ζώνης"_s;
        QTest::newRow("points 2 and 5 and deliveries")
            << 0
            << QStringList{u"Ζώνες παρακολούθησης"_s, u"[2] Ψυγείο"_s, u"[5] Ανώνυμη ζώνη"_s,
                           delivery, u"ΟΛΑ"_s}
            << QStringList{delivery};
        QTest::newRow("no event memory") << 2 << QStringList{} << QStringList{};
        QTest::newRow("all units, without queries")
            << 3
            << u"Ζώνες παρακολούθησης|Δίκτυο ρεύματος|Βλάβες αισθητηρίων"_s.split(u'|') +
                   QStringList{faults, delivery, bypass, u"ΟΛΑ"_s}
            << QStringList{u"Βλάβες αισθητηρίων"_s, faults, delivery, bypass};
    }

    void sourceListPerUnit()
    {
        QFETCH(int, unit);
        QFETCH(QStringList, entries);
        QFETCH(QStringList, kindless);
        open(unit);
        QCOMPARE(comboTexts(m_w->sensorSelect()), entries);
        const bool any = !entries.isEmpty();
        for (QWidget* w : std::initializer_list<QWidget*>{
                 m_w->sensorSelect(), m_w->monthSelect(), m_w->yearSelect(), m_w->newOption(0),
                 m_w->newOption(1), m_w->kindOption(0), m_w->kindOption(1), m_w->kindOption(2)})
            QCOMPARE(w->isEnabled(), any);
        QVERIFY(m_fx->dialogs.shown().isEmpty());
        QCOMPARE(m_w->fills(), any ? 1 : 0);
        if (!any) {
            QCOMPARE(m_w->model()->rowCount(), 0);
            QVERIFY(!m_w->markButton()->isEnabled() && !m_w->printAction()->isEnabled());
            return;
        }
        QCOMPARE(m_w->sensorSelect()->currentText(), u"ΟΛΑ"_s);
        for (const events::SourceEntry& e : m_w->sources())
            QCOMPARE(e.unitIndex, unit == 3 ? -1 : unit);
        for (const QString& entry : entries) {
            const bool kinds = !kindless.contains(entry);
            pickSource(kinds ? kindless.first() : u"ΟΛΑ"_s);
            const int before = m_w->fills();
            pickSource(entry);
            QCOMPARE(m_w->fills(), before + 1);
            for (int i = 0; i < 3; ++i)
                QCOMPARE(m_w->kindOption(i)->isEnabled(), kinds);
            QVERIFY(m_w->choicesText().contains(kinds ? u" , ΠΡΟΕΛΕΥΣΗ/ΤΥΠΟΣ ΣΥΜΒΑΝΤΩΝ:"_s
                                                      : u" , ΠΡΟΕΛΕΥΣΗ ΣΥΜΒΑΝΤΩΝ:"_s));
        }
    }

    // All units, every source, both kinds, new, March: each control's wiring once
    // (which rows a filter selects is tst_eventquery's part), then marking in one
    // transaction, refused whole when the server refuses one row; then an empty month.
    void gridThenMarkingInOneTransaction()
    {
        const auto selectable = [this](int rows) {
            const bool any = rows > 0;
            QCOMPARE(m_w->markButton()->isEnabled(), any);
            QCOMPARE(m_w->printAction()->isEnabled(), any);
            QCOMPARE(m_w->selectedRows(), (any ? std::pair{0, 0} : std::pair{-1, -1}));
            QCOMPARE(m_w->grid()->highlight(), any);
            // Select-all only while there is something to mark.
            m_w->grid()->selectAll();
            QCOMPARE(m_w->selectedRows(), (any ? std::pair{0, rows - 1} : std::pair{-1, -1}));
            QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());
        };
        open(3);
        m_w->kindOption(2)->click();
        QCOMPARE(m_w->markButton()->text(), u"Μαρκάρισμα ως διαβασμένα"_s);
        QCOMPARE(
            gridRows(m_w->model()),
            (QStringList{
                u"04/03/2026 - 11:00 | Alpha [7] (A-1) -> ΝΕΑ ΜΗΝΥΜΑΤΑ ΠΑΡΑΔΟΘΗΚΑΝ ΣΕ ΕΞΕΡΧΟΜΕΝΗ ΤΗΛΕΦΩΝΙΚΗ ΚΛΗΣΗ ΣΤΟΝ 2ο ΠΑΡΑΛΗΠΤΗ. Ο ΠΑΡΑΛΗΠΤΗΣ ΑΚΥΡΩΣΕ ΤΗΝ ΠΑΡΑΔΟΣΗ ΤΩΝ ΜΗΝΥΜΑΤΩΝ ΣΤΟΥΣ ΥΠΟΛΟΙΠΟΥΣ ΠΑΡΑΛΗΠΤΕΣ | a"_s,
                u"03/03/2026 - 10:00 | Alpha [7] (A-1) -> ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 5 (Ανώνυμη ζώνη) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s,
                u"02/03/2026 - 09:00 | Alpha [7] (A-1) -> ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΝΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΑΝΟΙΧΤΗ | n"_s,
                u"01/03/2026 - 08:00 | Alpha [7] (A-1) -> ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 2 (Ψυγείο) ΕΚΤΟΣ ΟΡΙΩΝ: ΕΙΣΟΔΟΣ ΚΛΕΙΣΤΗ | a"_s,
                u"09/03/2026 - 16:00 | Beta [9] (B-2) -> Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ | n"_s,
                u"08/03/2026 - 15:00 | Beta [9] (B-2) -> ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ | a"_s,
                u"07/03/2026 - 14:00 | Beta [9] (B-2) -> ΒΛΑΒΗ ΣΥΣΤΗΜΑΤΟΣ: ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ | a"_s,
                u"06/03/2026 - 13:00 | Beta [9] (B-2) -> ΕΝΕΡΓΟΠΟΙΗΘΗΚΕ Η ΠΑΡΑΚΑΜΨΗ ΣΤΟ ΣΗΜΕΙΟ 4 (Είσοδος) ΓΙΑ 8 ΩΡΕΣ, ΜΕΣΩ ΤΗΣ ΚΕΝΤΡΙΚΗΣ ΜΟΝΑΔΑΣ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ | b"_s,
                // Listed although it has no event memory: all units are read.
                u"01/03/2026 - 08:00 | Gamma [3] (C-3) -> ΕΝΔΕΙΞΗ ΣΗΜΕΙΟΥ 1 (Ανώνυμη ζώνη) ΕΚΤΟΣ ΟΡΙΩΝ: 0.0 °C | a"_s}));
        selectable(9);
        QVERIFY(m_fx->dialogs.shown().isEmpty());

        // The selection may be made from the bottom up: A-1 sn 2 and 1, B-2 sn 13 and 12.
        m_w->selectRows(5, 2);
        const int fills = m_w->fills();
        m_w->markButton()->click();
        QCOMPARE(m_w->fills(), fills + 1);
        EventsSeed s(m_fx->db);
        QCOMPARE(s.acks(u"A-1"_s), u"1:1 2:1 3:0 4:0 5:1 6:0"_s);
        QCOMPARE(s.acks(u"B-2"_s), u"10:0 11:0 12:1 13:1"_s);
        QCOMPARE(m_w->model()->rowCount(), 5);

        if (m_fx->scratch.isPostgres()) {
            QVERIFY(m_fx->exec(u"CREATE FUNCTION refuse_mark() RETURNS trigger AS $$ BEGIN IF "
                               u"NEW.Event_SystemEventSN = 11 THEN RAISE EXCEPTION 'mark refused'; "
                               u"END IF; RETURN NEW; END $$ LANGUAGE plpgsql"_s));
            QVERIFY(m_fx->exec(u"CREATE TRIGGER refuse_mark BEFORE UPDATE ON Events_1 FOR EACH ROW "
                               u"EXECUTE FUNCTION refuse_mark()"_s));
        } else {
            QVERIFY(m_fx->exec(u"CREATE TRIGGER refuse_mark BEFORE UPDATE ON Events_1 WHEN "
                               u"NEW.Event_SystemEventSN = 11 BEGIN SELECT RAISE(ABORT, 'mark "
                               u"refused'); END"_s));
        }
        m_w->selectRows(4, 0);
        m_w->markButton()->click();
        QCOMPARE(m_w->fills(), fills + 1);
        QCOMPARE(s.acks(u"A-1"_s), u"1:1 2:1 3:0 4:0 5:1 6:0"_s);
        QCOMPARE(s.acks(u"B-2"_s), u"10:0 11:0 12:1 13:1"_s);
        QCOMPARE(m_w->model()->rowCount(), 5);
        QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());
        const auto shown = m_fx->dialogs.shown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.first().icon, DialogService::Icon::Critical);
        QVERIFY2(shown.first().text.contains(u"Κανένα συμβάν δεν μαρκαρίστηκε."_s),
                 qPrintable(shown.first().text));
        QVERIFY(shown.first().text.contains(u"mark refused"_s));
        // The connection still serves the next action.
        m_w->selectRows(0, 0);
        m_fx->failures->clear();
        m_w->markButton()->click();
        QCOMPARE(s.acks(u"A-1"_s), u"1:1 2:1 3:0 4:1 5:1 6:0"_s);

        m_w->newOption(1)->click();
        QCOMPARE(m_w->markButton()->text(), u"Μαρκάρισμα ως νέα"_s);
        m_w->kindOption(1)->click();
        chooseItem(m_w->monthSelect(), 3);
        QCOMPARE(m_w->model()->rowCount(), 0);
        selectable(0);
    }

    // Choosing the shown month or year again fetches new events; failed queries
    // are reported and the window stays usable.
    void choosingAgainFetchesAndFailuresAreReported()
    {
        open(0);
        QComboBox* lists[] = {m_w->monthSelect(), m_w->yearSelect()};
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(m_w->model()->rowCount(), 3 + i);
            QVERIFY(EventsSeed(m_fx->db).event(u"A-1"_s, 7 + i, u"2026-03-1%1 10:00:00"_s.arg(i), 2,
                                               1, 2, 1));
            chooseItem(lists[i], lists[i]->currentIndex());
            QCOMPARE(m_w->model()->dateText(0), u"1%1/03/2026 - 10:00"_s.arg(i));
        }
        QVERIFY(m_fx->exec(u"ALTER TABLE Events_1 RENAME TO Events_gone"_s));
        m_w->newOption(1)->click();
        QCOMPARE(m_fx->dialogs.messages().size(), 1);
        QCOMPARE(m_fx->dialogs.messages().first().icon, DialogService::Icon::Critical);
        QCOMPARE(m_fx->dialogs.messages().first().title, u"SENTORAX Monitor"_s);
        QCOMPARE(m_w->model()->rowCount(), 0);
        QVERIFY(!m_w->markButton()->isEnabled() && !m_w->printAction()->isEnabled());
        QVERIFY(m_w->isEnabled() && !GuiFixture::waitWindowShown());
        // The source list fails too: the user's every action is explained.
        emit m_w->systemSelect()->activated(1);
        QVERIFY(m_w->sources().isEmpty());
        QVERIFY(!m_w->sensorSelect()->isEnabled());
        QCOMPARE(m_fx->dialogs.messages().size(), 2);
        QVERIFY(m_fx->exec(u"ALTER TABLE Events_gone RENAME TO Events_1"_s));
        emit m_w->systemSelect()->activated(0);
        QCOMPARE(m_w->model()->rowCount(), 6);
        QCOMPARE(m_fx->dialogs.messages().size(), 2);
    }

    void navigationCarriesTheUnitIndex()
    {
        registerSecondaryViews(*m_fx->navigator);
        auto* events = new EventsWindow(m_fx->ctx);
        fillSystemSelect(*events, 3, true);
        QCOMPARE(events->systemSelect()->currentText(), u"ΟΛΑ"_s);
        // "ΟΛΑ" does not exist in the records view: its first unit is taken.
        events->navigation()->button(ViewId::Records)->click();
        auto* records = qobject_cast<RecordsWindow*>(m_fx->navigator->secondaryView());
        QVERIFY(records);
        QCOMPARE(records->unitIndex(), 0);
        records->systemSelect()->setCurrentIndex(1);
        m_fx->navigator->navigate(*records, ViewId::Events);
        auto* back = qobject_cast<EventsWindow*>(m_fx->navigator->secondaryView());
        QVERIFY(back);
        QCOMPARE(back->unitIndex(), 1);
        QCOMPARE(back->systemSelect()->count(), 4);
        QCOMPARE(back->sensorSelect()->currentText(), u"ΟΛΑ"_s);
        QCOMPARE(back->model()->rowCount(), 2);
        QTest::qWait(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        delete back;
    }

    // After a fill only the first row is selected: that is what prints, on one page,
    // under the wait window. Then every row, over pages (where entries land is
    // tst_reportlayouts' part), each description wrapped inside its column.
    void theSelectedRowsPrint()
    {
        for (int i = 0; i < 60; ++i) {
            const QDateTime when = QDateTime(QDate(2026, 1, 1), QTime(8, 0)).addDays(i);
            QVERIFY(EventsSeed(m_fx->db).event(u"A-1"_s, i + 100,
                                               when.toString(u"yyyy-MM-dd HH:mm:ss"_s), 25, 0, 0, 0,
                                               u"1;4;8"_s));
        }
        open(0);
        QCOMPARE(m_w->model()->rowCount(), 3);
        // A cancelled printer dialog prints nothing.
        const QString cancelled = m_fx->answerPdf(false);
        m_w->printAction()->trigger();
        QVERIFY(!QFile::exists(cancelled));
        QCOMPARE(m_fx->dialogs.shown().size(), 1);
        QCOMPARE(m_fx->dialogs.shown().first().kind, u"print"_s);
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
        for (const QString& text : {u"Σελίδα 1/1"_s, u"SENTORAX Monitor / ΑΡΧΕΙΟ ΣΥΜΒΑΝΤΩΝ"_s,
                                    u"04/03/2026 - 11:00"_s, u"ΝΕΑ ΜΗΝΥΜΑΤΑ ΠΑΡΑΔΟΘΗΚΑΝ"_s})
            QVERIFY2(page.contains(text), qPrintable(text + u" in "_s + page));
        QVERIFY(squeezed(page).contains(squeezed(m_w->choicesText())));
        QVERIFY(!page.contains(u"03/03/2026"_s));

        // Bypasses are listed only with both kinds.
        m_w->kindOption(2)->click();
        m_w->newOption(1)->click();
        chooseItem(m_w->monthSelect(), 12);
        const int count = m_w->model()->rowCount();
        QCOMPARE(count, 66);
        m_w->selectAllEvents();
        pdf = print();
        const int pages = int(pdf.pages.size());
        QVERIFY(pages > 1);
        for (int p = 0; p < pages; ++p) {
            QVERIFY2(pdf.pages.at(p).contains(u"Σελίδα %1/%2"_s.arg(p + 1).arg(pages)),
                     qPrintable(pdf.pages.at(p)));
            QVERIFY(pdf.pages.at(p).contains(u"SENTORAX Monitor / ΑΡΧΕΙΟ ΣΥΜΒΑΝΤΩΝ"_s));
        }
        // Below the choices line no word crosses the middle of the page; the dates
        // come in report order: page, then column, then top to bottom.
        static const QRegularExpression dateRe(u"^\\d\\d/\\d\\d/2026$"_s);
        const double middle = pdf.pageWidth / 2;
        QList<std::tuple<int, bool, double, QString>> dates;
        QList<double> starts; // every description takes more than one line
        QList<double> ends;
        for (const Word& w : pdf.words) {
            if (dateRe.match(w.text).hasMatch())
                dates.append({w.page, w.x >= middle, w.y, w.text});
            else if (w.text == u"ΕΝΕΡΓΟΠΟΙΗΘΗΚΕ")
                starts << w.y;
            else if (w.text == u"ΣΥΣΤΗΜΑΤΟΣ")
                ends << w.y;
            QVERIFY2(dates.isEmpty() || w.y < std::get<2>(dates.first()) || w.x >= middle ||
                         w.right < middle,
                     qPrintable(w.text));
        }
        QCOMPARE(dates.size(), count);
        QCOMPARE(starts.size(), 60);
        QCOMPARE(ends.size(), 60);
        for (int i = 0; i < 60; ++i)
            QVERIFY(ends.at(i) > starts.at(i));
        std::sort(dates.begin(), dates.end());
        for (int i = 0; i < count; ++i)
            QCOMPARE(std::get<3>(dates.at(i)), m_w->model()->dateText(i).left(10));
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

private:
    static QString squeezed(QString s) { return s.remove(QRegularExpression(u"\\s+"_s)); }

    PdfText print()
    {
        const QString pdf = m_fx->answerPdf();
        m_w->printAction()->trigger();
        return readPdf(pdf);
    }

    // Listed by name: Alpha (0), Beta (1), Gamma (2), then "ΟΛΑ" (3). Gamma has
    // events, but no event memory by the unit's counters.
    void seed()
    {
        EventsSeed s(m_fx->db);
        QVERIFY(s.unit(u"A-1"_s, u"Alpha"_s) && s.unit(u"B-2"_s, u"Beta"_s, u"9"_s, 0, 3) &&
                s.unit(u"C-3"_s, u"Gamma"_s, u"3"_s, 0, 0));
        QVERIFY(s.zone(u"A-1"_s, 2, u"Ψυγείο"_s) && s.zone(u"A-1"_s, 5, QString()) &&
                s.zone(u"B-2"_s, 4, u"Είσοδος"_s));
        QVERIFY(s.event(u"A-1"_s, 1, u"2026-03-01 08:00:00"_s, 2, 1, 2, 1));
        QVERIFY(s.event(u"A-1"_s, 2, u"2026-03-02 09:00:00"_s, 2, 0, 2, 0));
        QVERIFY(s.event(u"A-1"_s, 3, u"2026-03-03 10:00:00"_s, 5, 1, 2, 1));
        QVERIFY(s.event(u"A-1"_s, 4, u"2026-03-04 11:00:00"_s, 24, 0, 0, 0, u"2;1"_s));
        QVERIFY(s.event(u"A-1"_s, 5, u"2026-03-05 12:00:00"_s, 2, 1, 2, 1, {}, 1));
        QVERIFY(s.event(u"A-1"_s, 6, u"2026-02-10 12:00:00"_s, 5, 1, 2, 1));
        QVERIFY(s.event(u"B-2"_s, 10, u"2026-03-06 13:00:00"_s, 25, 0, 0, 0, u"1;4;8"_s));
        QVERIFY(s.event(u"B-2"_s, 11, u"2026-03-07 14:00:00"_s, 23, 0, 0, 0, u"3"_s));
        QVERIFY(s.event(u"B-2"_s, 12, u"2026-03-08 15:00:00"_s, 21, 1));
        QVERIFY(s.event(u"B-2"_s, 13, u"2026-03-09 16:00:00"_s, 21, 0));
        QVERIFY(s.event(u"C-3"_s, 1, u"2026-03-01 08:00:00"_s, 1, 1));
    }

    void open(int unitIndex)
    {
        m_w = std::make_unique<EventsWindow>(m_fx->ctx);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_w->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        fillSystemSelect(*m_w, unitIndex, true);
    }

    void pickSource(const QString& text)
    {
        const int i = m_w->sensorSelect()->findText(text);
        QVERIFY2(i >= 0, qPrintable(text));
        chooseItem(m_w->sensorSelect(), i);
    }

    std::unique_ptr<GuiFixture> m_fx;
    std::unique_ptr<EventsWindow> m_w;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

QTEST_MAIN(TestEventsWindow)
#include "tst_eventswindow.moc"
