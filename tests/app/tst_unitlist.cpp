#include "../events/EventsSeed.h"
#include "ScratchDatabase.h"
#include "ui/UnitList.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

// The unit list's order, read back from a real database.
class TestUnitList : public QObject {
    Q_OBJECT

private slots:
    void unitsAreOrderedAsAGreekReaderExpects_data()
    {
        QTest::addColumn<QStringList>("names"); // in the order stored; "-" for a missing name
        QTest::addColumn<QStringList>("listed");
        QTest::newRow("accents and case do not count")
            << QStringList{u"Βόλος"_s, u"άλσος"_s, u"Αγορά"_s, u"Άλσος Β"_s, u"αεροδρόμιο"_s}
            << QStringList{u"Αγορά"_s, u"αεροδρόμιο"_s, u"άλσος"_s, u"Άλσος Β"_s, u"Βόλος"_s};
        QTest::newRow("diaeresis and final sigma")
            << QStringList{u"Ταιρι"_s, u"Ταΐζω"_s, u"Κόσμος Β"_s, u"κοσμοσ Α"_s}
            << QStringList{u"κοσμοσ Α"_s, u"Κόσμος Β"_s, u"Ταΐζω"_s, u"Ταιρι"_s};
        QTest::newRow("missing names first, then unaccented, then capitals")
            << QStringList{u"Ζ"_s, u"αγορα"_s, u"-"_s, u"Αγορά"_s, u"Αγορα"_s}
            << QStringList{u"Ανώνυμο σύστημα"_s, u"Αγορα"_s, u"αγορα"_s, u"Αγορά"_s, u"Ζ"_s};
    }
    void unitsAreOrderedAsAGreekReaderExpects()
    {
        QFETCH(QStringList, names);
        QFETCH(QStringList, listed);
        ScratchDatabase scratch;
        SX_REQUIRE_DB(scratch);
        Database db;
        QVERIFY(scratch.open(db));
        EventsSeed seed(db);
        for (int i = 0; i < names.size(); ++i)
            QVERIFY(seed.unit(u"S%1"_s.arg(i), names[i] == u"-"_s ? QString() : names[i]));
        DbError error;
        QStringList got;
        for (const UnitEntry& u : readUnitList(db, &error))
            got << u.text.left(u.text.indexOf(u" ["_s));
        QVERIFY(!error.isError());
        QCOMPARE(got, listed);
    }
};

QTEST_MAIN(TestUnitList)
#include "tst_unitlist.moc"
