#include "ChooseItem.h"
#include "GuiFixture.h"
#include "PdfText.h"
#include "model/Dialect.h"
#include "model/SqlDateTime.h"
#include "model/graph/GraphRules.h"
#include "reports/events/EventsModel.h"
#include "reports/graph/GraphPainting.h"
#include "reports/records/RecordsModel.h"
#include "shell/SecondaryViews.h"
#include "sim/SimSchema.h"
#include "ui/UnitList.h"
#include "views/current/CurrentPrint.h"
#include "views/current/MainWindow.h"
#include "views/events/EventsWindow.h"
#include "views/graph/GraphWindow.h"
#include "views/messages/MessagesWindow.h"
#include "views/records/RecordsWindow.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTest>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

// Literal values a column of each kind takes in turn. Tokens: NAN, INF, -INF,
// MAX and MIN (the largest counters the column's type holds), T (a time in
// March 2026), ZERO (the zero date).
struct Profile {
    QStringList reals;
    QStringList counters; // integer and small-integer columns
    QStringList texts;
    QStringList keys; // point numbers and event sequence numbers, distinct
    QStringList dates;
    QString serial;
};

const QString kLongName = u"Ζώνη 'α' \"β\" "_s.repeated(300);

constexpr int kRows = 4;    // rows per unit in each table
constexpr int kMinutes = 6; // records per zone

QString literal(const QString& token, char type, bool pg, int row)
{
    const bool small = type == 's';
    if (token == u"NAN")
        return pg ? u"'NaN'"_s : u"NULL"_s; // SQLite stores NaN as NULL anyway
    if (token == u"INF" || token == u"-INF")
        return pg ? u"'"_s + token.toLower().replace(u"inf"_s, u"Infinity"_s) + u"'"_s
                  : token.left(token.size() - 3) + u"9e999"_s;
    if (token == u"MAX")
        return pg ? (small ? u"32767"_s : u"2147483647"_s) : u"9223372036854775807"_s;
    if (token == u"MIN")
        return pg ? (small ? u"-32768"_s : u"-2147483648"_s) : u"(-9223372036854775807 - 1)"_s;
    if (token == u"T" || token == u"ZERO") {
        const qint64 secs = token == u"ZERO" ? *parseSqlDateTime(u"1899-12-30 00:00:00")
                                             : *parseSqlDateTime(u"2026-03-10 10:00:00") + row * 60;
        return sqlDateTimeLiteral(pg ? DbKind::PostgreSQL : DbKind::SQLite, secs);
    }
    return token;
}

// Fills every table for one unit: one row per unit where the serial is the
// key, rows of point numbers from `keys` elsewhere, kMinutes records per zone;
// every other column takes the profile's values in turn.
bool seedUnit(GuiFixture& fx, const Profile& p, const QString& serial)
{
    const bool pg = fx.scratch.isPostgres();
    QMap<QString, QList<sim::SchemaColumn>> tables; // the schema has no foreign keys
    for (const sim::SchemaColumn& c : sim::schemaColumns())
        tables[c.table] << c;
    static const QStringList keyColumns = {u"SeI_Sensornumber"_s,     u"SeCC_Sensornumber"_s,
                                           u"PmI_Powernumber"_s,      u"PmCC_Powernumber"_s,
                                           u"Rec_SeI_Sensornumber"_s, u"SeE_Sensornumber"_s,
                                           u"Event_SystemEventSN"_s};
    for (const auto& [table, cols] : tables.asKeyValueRange()) {
        const int rows = table.startsWith(u"Systems_I"_s) || table.startsWith(u"Systems_C"_s)
                             ? 1
                             : (table == u"Records"_s ? kRows * kMinutes : kRows);
        QStringList names;
        for (const sim::SchemaColumn& c : cols)
            names << c.column;
        QStringList values;
        for (int r = 0; r < rows; ++r) {
            const int zone = table == u"Records"_s ? r / kMinutes : r;
            QStringList row;
            for (qsizetype i = 0; i < cols.size(); ++i) {
                const sim::SchemaColumn& c = cols[i];
                const auto pick = [&](const QStringList& list) {
                    return list.isEmpty() ? u"NULL"_s : list[(r + i) % list.size()];
                };
                QString v;
                if (c.column.endsWith(u"SyI_Serialnumber"_s))
                    v = sqlQuote(serial);
                else if (keyColumns.contains(c.column))
                    v = literal(p.keys.value(zone, QString::number(zone + 1)), c.type, pg, r);
                else if (c.column.endsWith(u"_Used"_s))
                    v = u"1"_s; // the unit and its points stay in the lists
                else if (c.type == 'd')
                    v = literal(pick(p.dates), c.type, pg,
                                table == u"Records"_s ? r % kMinutes : r);
                else if (c.column == u"Rec_SensRecSN"_s)
                    v = QString::number(r + 1); // in time order, so that the graph opens
                else if (c.column.endsWith(u"Sensortype"_s))
                    v = literal(p.counters[(zone + i) % p.counters.size()], c.type, pg, r);
                else if (c.type == 'r')
                    v = literal(pick(p.reals), c.type, pg, r);
                else if (c.type == 't')
                    v = pick(p.texts);
                else
                    v = literal(pick(p.counters), c.type, pg, r);
                row << v;
            }
            values << u"("_s + row.join(u", "_s) + u")"_s;
        }
        if (!fx.exec(u"INSERT INTO "_s + table + u" ("_s + names.join(u", "_s) + u") VALUES "_s +
                     values.join(u", "_s)))
            return false;
    }
    return true;
}

// The first cell of a grid whose text the grid cuts, as "row,col: text": it
// needs more than its column less the grid line.
QString clippedCell(const QTableView& view)
{
    const QAbstractItemModel* m = view.model();
    for (int r = 0; r < m->rowCount(); ++r) {
        for (int c = 0; c < m->columnCount(); ++c) {
            const QModelIndex index = m->index(r, c);
            const QString text = index.data().toString();
            // Names are allowed to run out of their cell; numbers are not.
            if (text.size() > 60 || view.isColumnHidden(c))
                continue;
            if (view.sizeHintForIndex(index).width() + 1 > view.columnWidth(c))
                return u"%1,%2: %3"_s.arg(r).arg(c).arg(text);
        }
    }
    return {};
}

} // namespace

Q_DECLARE_METATYPE(Profile)

// Every table full of hostile values, every unit walked through the four
// views, the graph and every report: nothing may crash, throw, fail a query or
// show a number that does not fit its place.
class TestHostileData : public QObject {
    Q_OBJECT

private slots:
    void everyViewSurvives_data()
    {
        QTest::addColumn<Profile>("profile");
        // Lists of tokens separated by blanks; texts are SQL literals.
        const auto row = [](const char* name, const char* reals, const char* counters,
                            const QStringList& texts, const char* keys, const char* dates,
                            const QString& serial) {
            const auto list = [](const char* tokens) {
                return QString::fromLatin1(tokens).split(u' ', Qt::SkipEmptyParts);
            };
            QTest::newRow(name) << Profile{list(reals), list(counters), texts,
                                           list(keys),  list(dates),    serial};
        };
        row("nulls", "NULL 5", "NULL 1", {u"NULL"_s}, "", "NULL T ZERO", u"N-1"_s);
        row("extremes", "1e30 -1e30 0 -9.5e14", "MAX MIN -1 0", {u"''"_s, u"'x'"_s}, "MAX MIN 0 -1",
            "T", u"X-1"_s);
        row("one sign, huge", "-1e30 -3e29 -1e30", "1", {u"'y'"_s}, "", "T", u"G-1"_s);
        row("nan and infinities", "NAN 7 8 INF -3 -INF", "1", {u"'z'"_s}, "", "T", u"F-1"_s);
        row("unknown codes, eight digits", "-12345678.5 98765432", "99 250 -7 13", {u"'?'"_s},
            "1 200 77 9", "T", u"C-1"_s);
        row("quotes and long texts", "1 2", "1 0",
            {sqlQuote(kLongName), u"'''; DROP TABLE Records; --'"_s, u"'\r\n\t<b>&amp;%1'"_s}, "",
            "T", u"Q'\"%1"_s + u"Σ"_s.repeated(300));
    }
    void everyViewSurvives()
    {
        QFETCH(Profile, profile);
        m_fx.reset();
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
        m_fx->setNow(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
        m_refusals.clear();
        m_graphs = 0;
        QVERIFY(seedUnit(*m_fx, profile, profile.serial));
        QVERIFY(seedUnit(*m_fx, profile, profile.serial + u"2"_s));
        const int units = int(readUnitList(m_fx->db).size());
        QCOMPARE(units, 2);

        walkCurrentCondition(units);
        walkRecordsAndGraph(units);
        walkEvents(units);
        walkMessages();

        for (const auto& shown : m_fx->dialogs.messages()) {
            // The graph may refuse a selection and an empty list its printout;
            // nothing else may speak up.
            QVERIFY2(shown.title == QString::fromUtf16(graph::kGraphCaption) ||
                         m_refusals.contains(shown.text),
                     qPrintable(shown.title + u": "_s + shown.text));
        }
        QCOMPARE(m_fx->failures->reportsShown(), 0);
        QVERIFY(m_graphs > 0); // the walk reached the graph
    }

private:
    // Prints into a file that must then hold some text.
    void expectReport(const char* step, const std::function<void()>& print)
    {
        const QString pdf = m_fx->answerPdf();
        print();
        QVERIFY2(!pdfPages(pdf).join(QString()).trimmed().isEmpty(), step);
    }

    void walkCurrentCondition(int units)
    {
        MainWindow w(m_fx->ctx);
        w.show();
        fillSystemSelect(w, 0, false);
        for (int u = 0; u < units; ++u) {
            test::chooseItem(w.systemSelect(), u);
            w.refresh();
            QVERIFY(!w.databaseLost());
            for (QTableWidget* grid : {w.pointsGrid(), w.powerGrid()})
                QCOMPARE(clippedCell(*grid), QString());
            expectReport("current condition",
                         [&] { printCurrentCondition(m_fx->ctx, &w, m_fx->ctx.serialAt(u)); });
        }
    }

    void walkRecordsAndGraph(int units)
    {
        RecordsWindow w(m_fx->ctx);
        connectGraph(w);
        w.show();
        fillSystemSelect(w, 0, false);
        for (int u = 0; u < units; ++u) {
            test::chooseItem(w.systemSelect(), u);
            for (int z = 0; z < w.sensorSelect()->count(); ++z) {
                test::chooseItem(w.sensorSelect(), z);
                test::chooseItem(w.monthSelect(), 2);
                const int rows = w.model()->rowCount();
                if (rows == 0)
                    continue;
                QCOMPARE(clippedCell(*w.grid()), QString());
                w.selectRows(0, rows - 1, 0);
                // One printout per unit keeps the run short; every zone is shown.
                if (z == 0)
                    expectReport("records", [&] { w.printRecords(); });
                w.graphButton()->click();
                if (std::unique_ptr<GraphWindow> g(w.findChild<GraphWindow*>()); g)
                    walkGraph(*g, z == 0);
            }
        }
    }

    void walkGraph(GraphWindow& g, bool print)
    {
        ++m_graphs;
        QVERIFY(QTest::qWaitForWindowExposed(&g));
        // Every value label fits the label column.
        const graph::GraphView& v = g.state().view;
        const double span = double(v.top) - double(v.bottom);
        const auto steps = graph::valueSteps(float(span));
        for (const double y : graph::valueTicks(v.bottom, v.top, steps.major)) {
            const QString label = graph::plainNumber(y);
            QVERIFY2(graph::valueLabelWidth(label) <= g.unitPicture()->width(), qPrintable(label));
        }
        // The cursor over the middle of the chart and a marker there.
        const QPoint mid = g.chart()->rect().center();
        QMouseEvent move(QEvent::MouseMove, QPointF(mid), g.chart()->mapToGlobal(QPointF(mid)),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(g.chart(), &move);
        QTest::mouseClick(g.chart(), Qt::LeftButton, {}, mid);
        for (const bool marked : {false, true}) {
            g.markedOption()->setChecked(marked);
            if (print)
                expectReport(marked ? "marked points" : "graph", [&] { g.printButton()->click(); });
        }
    }

    void walkEvents(int units)
    {
        EventsWindow w(m_fx->ctx);
        w.show();
        fillSystemSelect(w, 0, true);
        w.kindOption(2)->click();
        w.newOption(1)->click();
        for (int u = 0; u < w.systemSelect()->count(); ++u) {
            test::chooseItem(w.systemSelect(), u);
            bool printed = false;
            for (int s = 0; s < w.sensorSelect()->count(); ++s) {
                test::chooseItem(w.sensorSelect(), s);
                w.refreshEvents();
                if (w.model()->rowCount() == 0)
                    continue;
                QCOMPARE(clippedCell(*w.grid()), QString());
                w.selectAllEvents();
                if (std::exchange(printed, true))
                    continue;
                expectReport("events", [&] { w.printEvents(); });
                // Marking finds its rows by quoted serial and extreme sequence numbers.
                const int before = w.model()->rowCount();
                w.markSelected();
                QCOMPARE(w.model()->rowCount(), before);
                Rows marked = m_fx->db.read(u"SELECT COUNT(*) FROM Events_1 WHERE Event_Ack=0"_s);
                QVERIFY(marked.next() && marked.integer(0).value_or(0) >= before);
            }
        }
        QVERIFY(w.systemSelect()->count() == units + 1);
    }

    void walkMessages()
    {
        MessagesWindow w(m_fx->ctx);
        w.show();
        fillSystemSelect(w, 0, false);
        for (const MessageKind kind : {MessageKind::New, MessageKind::Archived}) {
            QVERIFY(w.showList(kind));
            const QString pdf = m_fx->answerPdf();
            const qsizetype before = m_fx->dialogs.messages().size();
            w.printList();
            // An empty list is refused with its own message instead of a report.
            if (m_fx->dialogs.messages().size() == before)
                QVERIFY(!pdfPages(pdf).join(QString()).trimmed().isEmpty());
            else
                m_refusals << m_fx->dialogs.messages().last().text;
        }
    }

    std::unique_ptr<GuiFixture> m_fx;
    QStringList m_refusals;
    int m_graphs = 0;
};

QTEST_MAIN(TestHostileData)
#include "tst_hostiledata.moc"
