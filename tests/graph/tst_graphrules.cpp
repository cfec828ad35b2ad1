#include "model/graph/GraphRules.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::graph;

namespace {

constexpr qint64 kBase = 1'700'000'040; // a whole minute

RecordPoint rec(qint64 minute, float value, quint8 type = 1, qint64 extraSecs = 0)
{
    return {kBase + minute * 60 + extraSecs, value, type};
}

// Grid order: newest first. Given oldest first for readability.
std::vector<RecordPoint> grid(std::vector<RecordPoint> oldestFirst)
{
    return {oldestFirst.rbegin(), oldestFirst.rend()};
}

GraphState state(int fullMinutes, int viewOffset, int viewSpan, float fb, float ft, float vb,
                 float vt)
{
    GraphState s;
    s.fullStartSecs = kBase;
    s.fullEndSecs = kBase + qint64(fullMinutes) * 60;
    s.fullBottom = fb;
    s.fullTop = ft;
    s.view = {kBase + qint64(viewOffset) * 60, viewSpan, vb, vt};
    return s;
}

} // namespace

using Records = std::vector<RecordPoint>;
Q_DECLARE_METATYPE(Records)
Q_DECLARE_METATYPE(sx::graph::SelectionProblem)

class TestGraphRules : public QObject {
    Q_OBJECT

private slots:
    void minutesDropSeconds_data();
    void minutesDropSeconds();
    void selectionChecks_data();
    void selectionChecks();
    void refusalTexts();
    void valueRangeContainsZero_data();
    void valueRangeContainsZero();
    void initialStateShowsTheFullRange();
    void valueSteps_data();
    void valueSteps();
    void timeStep_data();
    void timeStep();
    void valueTicksReachTheTop_data();
    void valueTicksReachTheTop();
    void chartScaleCorners();
    void labelScalesHaveNinePixelMargins();
    void segmentRules_data();
    void segmentRules();
    void horizontalBar_data();
    void horizontalBar();
    void verticalBar_data();
    void verticalBar();
    void horizontalScroll_data();
    void horizontalScroll();
    void dragZoom_data();
    void dragZoom();
    void zoomOutStaysInFullRange_data();
    void zoomOutStaysInFullRange();
    void cursorTimeRounds_data();
    void cursorTimeRounds();
    void markerColoursCycleEverySeven_data();
    void markerColoursCycleEverySeven();
    void markerVisibility_data();
    void markerVisibility();
    void the256thMarkerIsRefused();
    void markerEntryText();
};

void TestGraphRules::minutesDropSeconds_data()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("to");
    QTest::addColumn<qint64>("minutes");
    QTest::newRow("59 s apart across a minute") << kBase + 59 << kBase + 60 << qint64(1);
    QTest::newRow("119 s within two minutes") << kBase << kBase + 119 << qint64(1);
    QTest::newRow("same minute") << kBase + 1 << kBase + 59 << qint64(0);
    QTest::newRow("backwards") << kBase + 60 << kBase + 59 << qint64(-1);
    QTest::newRow("before 1970 floors") << qint64(-1) << qint64(0) << qint64(1);
}

void TestGraphRules::minutesDropSeconds()
{
    QFETCH(qint64, from);
    QFETCH(qint64, to);
    QFETCH(qint64, minutes);
    QCOMPARE(minuteDiff(from, to), minutes);
}

void TestGraphRules::selectionChecks_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<SelectionProblem>("problem");
    QTest::addColumn<int>("row");
    QTest::newRow("one record") << grid({rec(0, 1)}) << SelectionProblem::TooShort << -1;
    QTest::newRow("two in one minute")
        << grid({rec(0, 1, 1, 0), rec(0, 2, 1, 50)}) << SelectionProblem::TooShort << -1;
    QTest::newRow("two minutes") << grid({rec(0, 1), rec(1, 2)}) << SelectionProblem::None << -1;
    QTest::newRow("seconds backwards in one minute is fine")
        << grid({rec(0, 1, 1, 30), rec(0, 1, 1, 10), rec(2, 1)}) << SelectionProblem::None << -1;
    // Grid indices: 3 newest .. 0 oldest reversed; index 1 is the reversal, index 2 the type.
    QTest::newRow("type met before a reversal nearer the top")
        << grid({rec(0, 1), rec(1, 1, 3), rec(5, 1), rec(4, 1), rec(6, 1)})
        << SelectionProblem::MixedTypes << 3;
    QTest::newRow("type before time on the same row")
        << grid({rec(5, 1), rec(4, 1, 3)}) << SelectionProblem::MixedTypes << 0;
    QTest::newRow("time reversal") << grid({rec(0, 1), rec(5, 1), rec(4, 1), rec(6, 1)})
                                   << SelectionProblem::TimeReversal << 1;
    QTest::newRow("contact input")
        << grid({rec(0, 1, 2), rec(3, 0, 2)}) << SelectionProblem::ContactInput << -1;
    QTest::newRow("one contact record is refused as contact")
        << grid({rec(0, 1, 2)}) << SelectionProblem::ContactInput << -1;
}

void TestGraphRules::selectionChecks()
{
    QFETCH(Records, records);
    QFETCH(SelectionProblem, problem);
    QFETCH(int, row);
    const SelectionCheck check = checkSelection(records, 0, int(records.size()) - 1);
    QCOMPARE(check.problem, problem);
    QCOMPARE(check.rowIndex, row);
}

void TestGraphRules::refusalTexts()
{
    QCOMPARE(selectionMessage(SelectionProblem::TooShort),
             u"Παρακαλώ επιλέξτε περισσότερες από μία καταγραφές !"_s);
    QVERIFY(selectionMessage(SelectionProblem::MixedTypes)
                .endsWith(u"επιλέξει.\r\nΠαρακαλώ επιλέξτε καταγραφές μόνο ιδίου τύπου."_s));
    QVERIFY(selectionMessage(SelectionProblem::TimeReversal)
                .endsWith(u"επιλέξει.\r\nΠαρακαλώ ξαναπροσπαθήστε."_s));
    QVERIFY(!selectionMessage(SelectionProblem::ContactInput).contains(u'\r'));
    QVERIFY(selectionMessage(SelectionProblem::None).isEmpty());
}

void TestGraphRules::valueRangeContainsZero_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<float>("bottom");
    QTest::addColumn<float>("top");
    QTest::newRow("5 to 23.5") << grid({rec(0, 5), rec(1, 23.5f), rec(2, 12)}) << 0.0f << 30.0f;
    QTest::newRow("max exactly 30 gives 40") << grid({rec(0, 30), rec(1, 2)}) << 0.0f << 40.0f;
    QTest::newRow("-12 to 8") << grid({rec(0, 8), rec(1, -12)}) << -20.0f << 10.0f;
    QTest::newRow("all zero") << grid({rec(0, 0), rec(1, 0)}) << -10.0f << 0.0f;
    QTest::newRow("negative only") << grid({rec(0, -5), rec(1, -0.5f)}) << -10.0f << 0.0f;
    QTest::newRow("-30 gives -40") << grid({rec(0, -30), rec(1, -1)}) << -40.0f << 0.0f;
    QTest::newRow("zero and positive") << grid({rec(0, 0), rec(1, 0.2f)}) << 0.0f << 10.0f;
    QTest::newRow("extremes not at the ends")
        << grid({rec(0, 1), rec(1, 47), rec(2, -3), rec(3, 2)}) << -10.0f << 50.0f;
}

void TestGraphRules::valueRangeContainsZero()
{
    QFETCH(Records, records);
    QFETCH(float, bottom);
    QFETCH(float, top);
    const ValueRange r = valueRange(records, 0, int(records.size()) - 1);
    QCOMPARE(r.bottom, bottom);
    QCOMPARE(r.top, top);
}

void TestGraphRules::initialStateShowsTheFullRange()
{
    // Records outside first..last must not count.
    const Records records =
        grid({rec(-5, 500), rec(0, 5, 1, 20), rec(7, 23.5f), rec(90, 12, 1, 10), rec(95, -90)});
    const GraphState s = initialState(records, 1, 3);
    QCOMPARE(s.firstIndex, 1);
    QCOMPARE(s.lastIndex, 3);
    QCOMPARE(s.fullStartSecs, kBase + 20);
    QCOMPARE(s.fullEndSecs, kBase + 90 * 60 + 10);
    QCOMPARE(s.view, (GraphView{kBase + 20, 90, 0.0f, 30.0f}));
    QCOMPARE(s.fullBottom, 0.0f);
    QCOMPARE(s.fullTop, 30.0f);
    QVERIFY(!s.zoomed);
    QVERIFY(s.markers.empty());
}

void TestGraphRules::valueSteps_data()
{
    QTest::addColumn<float>("span");
    QTest::addColumn<double>("major");
    QTest::addColumn<double>("minor");
    QTest::newRow("5") << 5.0f << 1.0 << 0.1;
    QTest::newRow("exactly 10") << 10.0f << 1.0 << 0.1;
    QTest::newRow("10.5") << 10.5f << 2.0 << 0.2;
    QTest::newRow("20") << 20.0f << 2.0 << 0.2;
    QTest::newRow("range 0 to 30") << 30.0f << 4.0 << 0.4;
    QTest::newRow("range -20 to 10") << 30.0f << 4.0 << 0.4;
    QTest::newRow("40") << 40.0f << 4.0 << 0.4;
    QTest::newRow("41") << 41.0f << 6.0 << 0.6;
    QTest::newRow("40000, the last even step") << 40000.0f << 4000.0 << 400.0;
    QTest::newRow("40010 goes on evenly") << 40010.0f << 4002.0 << 400.2;
    QTest::newRow("1e6") << 1.0e6f << 100000.0 << 10000.0;
}

void TestGraphRules::valueSteps()
{
    QFETCH(float, span);
    QFETCH(double, major);
    QFETCH(double, minor);
    const ValueSteps s = graph::valueSteps(span);
    QCOMPARE(s.major, major);
    QCOMPARE(s.minor, minor);
}

void TestGraphRules::timeStep_data()
{
    QTest::addColumn<int>("span");
    QTest::addColumn<int>("step");
    QTest::newRow("10: below one") << 10 << 1;
    QTest::newRow("25: 1.25 rounds to 1") << 25 << 1;
    QTest::newRow("30: 1.5 rounds to 2") << 30 << 2;
    QTest::newRow("50: 2.5 rounds to even 2") << 50 << 2;
    QTest::newRow("70: 3.5 rounds to 4") << 70 << 4;
    QTest::newRow("a day") << 1440 << 72;
}

void TestGraphRules::timeStep()
{
    QFETCH(int, span);
    QFETCH(int, step);
    QCOMPARE(graph::timeStep(span), step);
}

void TestGraphRules::valueTicksReachTheTop_data()
{
    QTest::addColumn<double>("bottom");
    QTest::addColumn<double>("top");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("count");
    QTest::addColumn<double>("lastTick");
    QTest::newRow("0..30 by 4") << 0.0 << 30.0 << 4.0 << 8 << 28.0;
    QTest::newRow("-20..10 by 0.4") << -20.0 << 10.0 << 0.4 << 76 << 10.0;
    QTest::newRow("0..10 by 0.1") << 0.0 << 10.0 << 0.1 << 101 << 10.0;
    QTest::newRow("-10..0 by 1") << -10.0 << 0.0 << 1.0 << 11 << 0.0;
}

void TestGraphRules::valueTicksReachTheTop()
{
    QFETCH(double, bottom);
    QFETCH(double, top);
    QFETCH(double, step);
    QFETCH(int, count);
    QFETCH(double, lastTick);
    const std::vector<double> ticks = valueTicks(bottom, top, step);
    QCOMPARE(int(ticks.size()), count);
    QCOMPARE(ticks.front(), bottom);
    QVERIFY(qAbs(ticks.back() - lastTick) < 1e-9);
}

void TestGraphRules::chartScaleCorners()
{
    const GraphView view{kBase, 100, -20.0f, 10.0f};
    const PictureScale s = chartScale(view, 501, 301);
    QCOMPARE(s.toPixel({0, 10}), QPointF(0, 0));
    // The last minute and the bottom value land on the last pixel row and column.
    QCOMPARE(s.toPixel({100, -20}), QPointF(500, 300));
    QCOMPARE(s.toPixel({50, -5}), QPointF(250, 150));
    QCOMPARE(s.toUser({250, 150}), QPointF(50, -5));
}

void TestGraphRules::labelScalesHaveNinePixelMargins()
{
    const GraphView view{kBase, 100, -20.0f, 10.0f};
    const double mv = valueMargin(view, 301);
    QCOMPARE(mv, 9.0 * 30 / 300);
    const PictureScale u = unitScale(view, 301, 40);
    // Symmetric margins: the top and bottom values sit equally far from the edges.
    QCOMPARE(u.toPixel({0, 10}).y(), 301 - u.toPixel({0, -20}).y());
    QCOMPARE(u.toPixel({0, 10 + mv}).y(), 0.0);
    const double mt = timeMargin(100, 501);
    QCOMPARE(mt, 9.0 * 100 / 500);
    const PictureScale t = timeScale(100, 501, 519, 80);
    QCOMPARE(t.toPixel({-mt, 1}), QPointF(0, 0));
    QCOMPARE(t.toPixel({100 + mt, 0}), QPointF(519, 80));
}

void TestGraphRules::segmentRules_data()
{
    QTest::addColumn<qint64>("older");
    QTest::addColumn<qint64>("newer");
    QTest::addColumn<bool>("drawn");
    QTest::addColumn<bool>("stops");
    QTest::newRow("-3 to 0 not drawn") << qint64(-3) << qint64(0) << false << false;
    QTest::newRow("-3 to 2 drawn") << qint64(-3) << qint64(2) << true << false;
    QTest::newRow("0 to 0 not drawn") << qint64(0) << qint64(0) << false << false;
    QTest::newRow("crossing the span end drawn") << qint64(99) << qint64(120) << true << false;
    QTest::newRow("both at the span stops") << qint64(100) << qint64(100) << true << true;
}

void TestGraphRules::segmentRules()
{
    QFETCH(qint64, older);
    QFETCH(qint64, newer);
    QFETCH(bool, drawn);
    QFETCH(bool, stops);
    QCOMPARE(segmentDrawn(older, newer), drawn);
    QCOMPARE(segmentStopsWalk(older, newer, 100), stops);
}

void TestGraphRules::horizontalBar_data()
{
    QTest::addColumn<int>("full");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("span");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("largeChange");
    QTest::addColumn<double>("factor");
    QTest::newRow("full view") << 1000 << 0 << 1000 << 0 << 0 << 1 << 1.0;
    QTest::newRow("zoomed, middle") << 1000 << 450 << 100 << 900 << 450 << 90 << 1.0;
    QTest::newRow("5 free minutes, small change floor") << 10 << 5 << 5 << 5 << 5 << 1 << 1.0;
    QTest::newRow("32767 free minutes still 1 a minute")
        << 32867 << 100 << 100 << 32767 << 100 << 3277 << 1.0;
    QTest::newRow("32768 free minutes scale down")
        << 32868 << 0 << 100 << 32767 << 0 << 3277 << 32767.0 / 32768.0;
    // 32767 / 65534 * 32767 = 16383.5, even 16384.
    QTest::newRow("a half rounds to even")
        << 65634 << 32767 << 100 << 32767 << 16384 << 3277 << 0.5;
}

void TestGraphRules::horizontalBar()
{
    QFETCH(int, full);
    QFETCH(int, offset);
    QFETCH(int, span);
    QFETCH(int, maximum);
    QFETCH(int, value);
    QFETCH(int, largeChange);
    QFETCH(double, factor);
    const HScrollBar bar = horizontalScrollBar(state(full, offset, span, 0, 10, 0, 10));
    QCOMPARE(bar.minimum, 0);
    QCOMPARE(bar.maximum, maximum);
    QCOMPARE(bar.value, value);
    QCOMPARE(bar.largeChange, largeChange);
    QCOMPARE(bar.factor, factor);
}

void TestGraphRules::verticalBar_data()
{
    QTest::addColumn<float>("viewBottom");
    QTest::addColumn<float>("viewTop");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("largeChange");
    QTest::newRow("full") << -20.0f << 10.0f << 0 << 0 << 1;
    QTest::newRow("lower third") << -20.0f << -10.0f << 20 << 0 << 2;
    QTest::newRow("top") << 0.0f << 10.0f << 20 << 20 << 2;
    QTest::newRow("12.5 free rounds to even 12") << -7.5f << 10.0f << 12 << 12 << 1;
}

void TestGraphRules::verticalBar()
{
    QFETCH(float, viewBottom);
    QFETCH(float, viewTop);
    QFETCH(int, minimum);
    QFETCH(int, value);
    QFETCH(int, largeChange);
    const VScrollBar bar = verticalScrollBar(state(100, 0, 100, -20, 10, viewBottom, viewTop));
    QCOMPARE(bar.minimum, minimum);
    QCOMPARE(bar.maximum, 0);
    QCOMPARE(bar.value, value);
    QCOMPARE(bar.largeChange, largeChange);
}

void TestGraphRules::horizontalScroll_data()
{
    QTest::addColumn<int>("full");
    QTest::addColumn<int>("offset");
    QTest::addColumn<double>("factor");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("newValue");
    QTest::addColumn<int>("newOffset");
    QTest::newRow("one unit is one minute") << 1000 << 400 << 1.0 << 400 << 401 << 401;
    QTest::newRow("page back") << 1000 << 400 << 1.0 << 400 << 310 << 310;
    QTest::newRow("one unit is one minute when scaled")
        << 200000 << 400 << 0.25 << 100 << 99 << 399;
    QTest::newRow("scaled page") << 200000 << 400 << 0.25 << 100 << 110 << 440;
    QTest::newRow("2.5 minutes round to 2") << 200000 << 400 << 0.8 << 100 << 102 << 402;
    QTest::newRow("7.5 minutes round to 8") << 200000 << 400 << 0.4 << 100 << 103 << 408;
    QTest::newRow("never before the full start") << 1000 << 3 << 0.5 << 10 << 6 << 0;
    QTest::newRow("never past the full end") << 1000 << 898 << 0.5 << 10 << 14 << 900;
}

void TestGraphRules::horizontalScroll()
{
    QFETCH(int, full);
    QFETCH(int, offset);
    QFETCH(double, factor);
    QFETCH(int, last);
    QFETCH(int, newValue);
    QFETCH(int, newOffset);
    GraphState s = state(full, offset, 100, 0, 10, 0, 10);
    s.scrollFactor = factor;
    s.hScrollLast = qint16(last);
    const GraphView v = scrolledHorizontally(s, newValue);
    QCOMPARE(minuteDiff(s.fullStartSecs, v.startSecs), qint64(newOffset));
    QCOMPARE(v.spanMinutes, 100);
    QCOMPARE(v.bottom, 0.0f);
}

void TestGraphRules::dragZoom_data()
{
    QTest::addColumn<QPointF>("p0");
    QTest::addColumn<QPointF>("p1");
    QTest::addColumn<bool>("zooms");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("span");
    QTest::addColumn<float>("bottom");
    QTest::addColumn<float>("top");
    // View: minutes 100..200 of the full range, values -20..30 (full -20..30).
    QTest::newRow("right to left")
        << QPointF(10.5, 12.7) << QPointF(3.2, 4.2) << true << 103 << 7 << 4.0f << 13.0f;
    QTest::newRow("halves to even")
        << QPointF(2.5, 1) << QPointF(3.5, 2) << true << 102 << 2 << 1.0f << 3.0f;
    QTest::newRow("same minute does not zoom")
        << QPointF(2.6, 1) << QPointF(3.4, 9) << false << 0 << 0 << 0.0f << 0.0f;
    QTest::newRow("negative values truncate toward zero")
        << QPointF(0, -5.5) << QPointF(10, -12.7) << true << 100 << 10 << -12.0f << -4.0f;
    QTest::newRow("top past the full top lowers both")
        << QPointF(0, 29.9) << QPointF(10, 30) << true << 100 << 10 << 28.0f << 30.0f;
    QTest::newRow("lowered bottom raised back")
        << QPointF(0, -20) << QPointF(10, 30) << true << 100 << 10 << -20.0f << 30.0f;
}

void TestGraphRules::dragZoom()
{
    QFETCH(QPointF, p0);
    QFETCH(QPointF, p1);
    QFETCH(bool, zooms);
    QFETCH(int, offset);
    QFETCH(int, span);
    QFETCH(float, bottom);
    QFETCH(float, top);
    const GraphState s = state(1000, 100, 100, -20, 30, -20, 30);
    const std::optional<GraphView> v = graph::dragZoom(s, p0, p1);
    QCOMPARE(v.has_value(), zooms);
    if (!v)
        return;
    QCOMPARE(minuteDiff(s.fullStartSecs, v->startSecs), qint64(offset));
    QCOMPARE(v->spanMinutes, span);
    QCOMPARE(v->bottom, bottom);
    QCOMPARE(v->top, top);
}

void TestGraphRules::zoomOutStaysInFullRange_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("span");
    QTest::addColumn<float>("bottom");
    QTest::addColumn<float>("top");
    QTest::addColumn<int>("newOffset");
    QTest::addColumn<int>("newSpan");
    QTest::addColumn<float>("newBottom");
    QTest::addColumn<float>("newTop");
    // Full range: minutes 0..1000, values -20..30.
    QTest::newRow("middle doubles around")
        << 400 << 100 << 0.0f << 10.0f << 350 << 200 << -5.0f << 15.0f;
    QTest::newRow("near the start") << 20 << 100 << 0.0f << 10.0f << 0 << 200 << -5.0f << 15.0f;
    QTest::newRow("near the end") << 880 << 100 << 0.0f << 10.0f << 830 << 170 << -5.0f << 15.0f;
    QTest::newRow("odd span halves to even")
        << 400 << 5 << 0.0f << 10.0f << 398 << 10 << -5.0f << 15.0f;
    QTest::newRow("floor of the bottom")
        << 400 << 100 << 0.5f << 3.5f << 350 << 200 << -1.0f << 5.0f;
    QTest::newRow("values near the bottom")
        << 400 << 100 << -18.0f << -8.0f << 350 << 200 << -20.0f << 0.0f;
    QTest::newRow("values near the top")
        << 400 << 100 << 20.0f << 30.0f << 350 << 200 << 15.0f << 30.0f;
    QTest::newRow("already full") << 0 << 1000 << -20.0f << 30.0f << 0 << 1000 << -20.0f << 30.0f;
}

void TestGraphRules::zoomOutStaysInFullRange()
{
    QFETCH(int, offset);
    QFETCH(int, span);
    QFETCH(float, bottom);
    QFETCH(float, top);
    QFETCH(int, newOffset);
    QFETCH(int, newSpan);
    QFETCH(float, newBottom);
    QFETCH(float, newTop);
    const GraphState s = state(1000, offset, span, -20, 30, bottom, top);
    const GraphView v = zoomOut(s);
    QCOMPARE(minuteDiff(s.fullStartSecs, v.startSecs), qint64(newOffset));
    QCOMPARE(v.spanMinutes, newSpan);
    QCOMPARE(v.bottom, newBottom);
    QCOMPARE(v.top, newTop);
}

void TestGraphRules::cursorTimeRounds_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<qint64>("minutes");
    QTest::newRow("0.4") << 0.4 << qint64(0);
    QTest::newRow("0.5 to even 0") << 0.5 << qint64(0);
    QTest::newRow("1.5 to even 2") << 1.5 << qint64(2);
    QTest::newRow("7.6") << 7.6 << qint64(8);
}

void TestGraphRules::cursorTimeRounds()
{
    QFETCH(double, x);
    QFETCH(qint64, minutes);
    const GraphView view{kBase + 17, 100, 0.0f, 10.0f};
    QCOMPARE(cursorTime(view, x), kBase + 17 + minutes * 60);
}

void TestGraphRules::markerColoursCycleEverySeven_data()
{
    QTest::addColumn<int>("k");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("r");
    QTest::addColumn<int>("g");
    QTest::addColumn<int>("b");
    QTest::newRow("1 black") << 1 << 0 << 0 << 0 << 0;
    QTest::newRow("2 blue") << 2 << 1 << 0 << 0 << 128;
    QTest::newRow("3 green") << 3 << 2 << 0 << 128 << 0;
    QTest::newRow("4 cyan") << 4 << 3 << 0 << 128 << 128;
    QTest::newRow("5 red") << 5 << 4 << 128 << 0 << 0;
    QTest::newRow("6 magenta") << 6 << 5 << 128 << 0 << 128;
    QTest::newRow("7 brown-yellow") << 7 << 6 << 128 << 128 << 0;
    QTest::newRow("8 black again") << 8 << 0 << 0 << 0 << 0;
    QTest::newRow("255") << 255 << 2 << 0 << 128 << 0;
}

void TestGraphRules::markerColoursCycleEverySeven()
{
    QFETCH(int, k);
    QFETCH(int, index);
    QFETCH(int, r);
    QFETCH(int, g);
    QFETCH(int, b);
    QCOMPARE(markerColourIndex(k), index);
    QCOMPARE(markerColour(index), (Rgb{r, g, b}));
}

void TestGraphRules::markerVisibility_data()
{
    QTest::addColumn<qint64>("secs");
    QTest::addColumn<bool>("visible");
    // View from kBase + 30 s over 10 minutes: minutes 0..10 of kBase.
    QTest::newRow("earlier seconds of the first minute") << kBase << true;
    QTest::newRow("minute before") << kBase - 1 << false;
    QTest::newRow("last second of the last minute") << kBase + 10 * 60 + 59 << true;
    QTest::newRow("minute after") << kBase + 11 * 60 << false;
}

void TestGraphRules::markerVisibility()
{
    QFETCH(qint64, secs);
    QFETCH(bool, visible);
    QCOMPARE(markerVisible(GraphView{kBase + 30, 10, 0.0f, 10.0f}, secs), visible);
}

void TestGraphRules::the256thMarkerIsRefused()
{
    GraphState s;
    for (int k = 1; k <= 255; ++k) {
        QCOMPARE(s.markerColourIndex, markerColourIndex(k));
        QVERIFY(addMarker(s, rec(k, float(k))));
    }
    QCOMPARE(s.markers.size(), size_t(255));
    QCOMPARE(s.markers[254].value, 255.0f);
    const int colour = s.markerColourIndex;
    QVERIFY(!addMarker(s, rec(300, 1)));
    QCOMPARE(s.markers.size(), size_t(255));
    QCOMPARE(s.markerColourIndex, colour);
    clearMarkers(s);
    QVERIFY(s.markers.empty());
    QCOMPARE(s.markerColourIndex, 0);
    QCOMPARE(QString::fromUtf16(kMarkerLimitMessage),
             u"Δεν μπορείτε να προσθέσετε άλλον δείκτη σημείου"_s);
}

void TestGraphRules::markerEntryText()
{
    QCOMPARE(markerEntry(12, u"05/03/2026 - 14:07"_s, u"23.5 °C"_s),
             u"Χρόνος μαρκαρισμένου σημείου 12: 05/03/2026 - 14:07\r\n"
             u"Ένδειξη μαρκαρισμένου σημείου 12: 23.5 °C\r\n\r\n"_s);
}

QTEST_APPLESS_MAIN(TestGraphRules)
#include "tst_graphrules.moc"
