#include "MessagesSeed.h"
#include "ScratchDatabase.h"
#include "UserTexts.h"
#include "model/messages/MessagesBuilder.h"
#include "sim/Seeder.h"
#include "sim/SimSchema.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

namespace {

constexpr int kNew = 0;
constexpr int kArchive = 1;

// Expected texts: "\n" is CR LF, "@" the time line of an age of 60 s without a
// date, "~" the six line breaks that end a unit.
QString expand(QString text)
{
    return text.replace(u"@"_s, u"* ΠΡΙΝ 1 ΛΕΠΤΑ \n"_s)
        .replace(u"~"_s, u"\n\n\n\n\n\n"_s)
        .replace(u"\n"_s, u"\r\n"_s);
}

// Unit S1 at location 1, named Α, shown in the new list.
QString unitA(const QString& body)
{
    return u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Α [1] (S1)\n"_s + body + u'~';
}

const QString kUnitA = u"U S1,'1','Α',1;"_s;

} // namespace

class TestMessagesBuilder : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        SX_REQUIRE_DB(m_scratch);
        QVERIFY(m_scratch.open(m_db));
    }
    void init() { QVERIFY(!sim::clearAllData(m_db).isError()); }
    void text_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("rows");
        QTest::addColumn<QString>("text");

        QTest::newRow("new: none, archived only, unit not in use, no unit row")
            << kNew
            << kUnitA + u"E S1,1,1,1,5,NULL,60,0; P S1,1,1,NULL,60,0; U S2,'2','Β',0;"
                        "E S2,1,1,1,5,NULL,60,1; F S2,0,'3'; E S9,1,1,1,5,NULL,60,1"_s
            << texts::kNoNewMessages;
        QTest::newRow("archive: new messages and faults do not count")
            << kArchive << kUnitA + u"E S1,1,1,1,5,NULL,60,2; P S1,1,1,NULL,60,2; F S1,0,'0'"_s
            << texts::kArchiveEmpty;
        QTest::newRow("new: faults only, codes 3 and 4 without service line")
            << kNew << kUnitA + u"F S1,0,'4'; F S1,0,'3'"_s
            << unitA(u"\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:\nΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ\n"
                     "ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ\n"_s);
        QTest::newRow("new: sensor faults, codes out of order, unknown codes, service line")
            << kNew
            << u"U S1,'1',NULL,1; F S1,0,'8'; F S1,0,'5'; F S1,0,'9'; F S1,1,'3'; F S1,1,'12';"
               "F S1,2,'0'; F S2,0,'0'"_s
            << u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Ανώνυμο σύστημα [1] (S1)\n\n"
               "ΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:\nΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 12\n"
               "ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 3\nΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 40\n"
               "ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 50\n* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *\n~"_s;
        QTest::newRow("time lines: date, zero date, elapsed time; contact values; event order")
            << kNew
            << kUnitA + u"Z S1,1,'Πόρτα',2; E S1,1,4,1,1,'2026-11-17 00:07:00',0,1;"
                        "E S1,1,1,0,0,NULL,125,1; E S1,1,2,1,1,'1899-12-30 00:00:00',45,1;"
                        "E S1,1,3,0,0,'2026-11-16 22:05:00',125,1; E S1,1,5,1,1,NULL,NULL,1"_s
            << unitA(u"\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [1] Πόρτα:\n"
                     "* ΠΡΙΝ 2 ΛΕΠΤΑ ΚΑΙ 5 ΔΕΥΤΕΡΟΛΕΠΤΑ \nΕΝΤΟΣ ΟΡΙΩΝ:  ΑΝΟΙΧΤΗ\n"
                     "* ΠΡΙΝ 45 ΔΕΥΤΕΡΟΛΕΠΤΑ \nΕΚΤΟΣ ΟΡΙΩΝ:  ΚΛΕΙΣΤΗ\n"
                     "* Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ\nΕΝΤΟΣ ΟΡΙΩΝ:  ΑΝΟΙΧΤΗ\n"
                     "* Τρίτη 17 Νοεμβρίου 2026 12:07 πμ\nΕΚΤΟΣ ΟΡΙΩΝ:  ΚΛΕΙΣΤΗ\n"
                     "* ΠΡΙΝ 0 ΔΕΥΤΕΡΟΛΕΠΤΑ \nΕΚΤΟΣ ΟΡΙΩΝ:  ΚΛΕΙΣΤΗ\n"_s);
        QTest::newRow("values: units, missing zone row, NULL type, value and event type")
            << kNew
            << kUnitA + u"Z S1,1,'Θ',0; Z S1,2,'',3; Z S1,3,NULL,NULL; Z S1,5,'Άλλη',2;"
                        "E S1,4,1,1,7,NULL,60,1; E S1,3,1,1,7,NULL,60,1; E S1,2,1,0,7.25,NULL,60,1;"
                        "E S1,1,2,1,NULL,NULL,60,1; E S1,1,1,9,-4.5,NULL,60,1;"
                        "E S1,2,2,NULL,7,NULL,60,1; E S1,5,1,1,-1,NULL,60,1"_s
            << unitA(
                   u"\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [1] Θ:\n@ΕΚΤΟΣ ΟΡΙΩΝ: -4.5 °C\n@ΕΚΤΟΣ ΟΡΙΩΝ: \n"
                   "\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [2] Ανώνυμη ζώνη:\n@ΕΝΤΟΣ ΟΡΙΩΝ: 7.3 bar\n"
                   "@ΕΝΤΟΣ ΟΡΙΩΝ: 7.0 bar\n\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [3] Ανώνυμη ζώνη:\n"
                   "@ΕΚΤΟΣ ΟΡΙΩΝ: 7.0\n\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [4] Ανώνυμη ζώνη:\n"
                   "@ΕΚΤΟΣ ΟΡΙΩΝ: 7.0\n\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [5] Άλλη:\n@ΕΚΤΟΣ ΟΡΙΩΝ:  ΑΝΟΙΧΤΗ\n"_s);
        QTest::newRow("zones in order, NULL zone and event numbers as 0")
            << kNew
            << kUnitA +
                   u"E S1,3,9,1,9,NULL,60,1; E S1,1,9,1,9,NULL,60,1; E S1,3,2,1,2,NULL,60,1;"
                   "E S1,NULL,NULL,1,0,NULL,60,1; E S1,1,2,1,2,NULL,60,1; E S1,1,NULL,1,1,NULL,60,1"_s
            << unitA(
                   u"\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [0] Ανώνυμη ζώνη:\n@ΕΚΤΟΣ ΟΡΙΩΝ: 0.0\n"
                   "\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [1] Ανώνυμη ζώνη:\n@ΕΚΤΟΣ ΟΡΙΩΝ: 1.0\n@ΕΚΤΟΣ ΟΡΙΩΝ: "
                   "2.0\n@ΕΚΤΟΣ ΟΡΙΩΝ: 9.0\n"
                   "\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [3] Ανώνυμη ζώνη:\n@ΕΚΤΟΣ ΟΡΙΩΝ: 2.0\n@ΕΚΤΟΣ ΟΡΙΩΝ: 9.0\n"_s);
        QTest::newRow("power 0x00, 0x01, 0x21, 0x34, NULL; then the unit state")
            << kNew
            << kUnitA + u"I S1,1,'Τροφοδοτικό'; I S1,2,'ΔΕΗ'; I S1,3,'Η/Ζ'; I S1,4,'';"
                        "P S1,3,33,NULL,60,1; P S1,1,0,NULL,60,1; P S1,2,1,NULL,60,1;"
                        "P S1,4,52,NULL,60,1; P S1,5,NULL,NULL,60,1; F S1,1,'4'"_s
            << unitA(u"\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n@Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ\n"
                     "@ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ\n@ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΔΙΑΚΟΠΗ \n"
                     "[1] ΔΕΗ:ΚΑΝΟΝΙΚΗ \n[2] Η/Ζ:ΚΑΝΟΝΙΚΗ \n@ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΚΑΝΟΝΙΚΗ \n"
                     "[1] ΔΕΗ:ΚΑΝΟΝΙΚΗ \n[2] Η/Ζ:ΔΙΑΚΟΠΗ \n[3] Ανώνυμη ζώνη:ΚΑΝΟΝΙΚΗ \n"
                     "@Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ\n\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:\n"
                     "ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 4\n* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *\n"_s);
        QTest::newRow("power 0x21, inputs without row or name")
            << kNew << kUnitA + u"I S1,3,NULL; P S1,1,33,NULL,60,1"_s
            << unitA(u"\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n@ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΔΙΑΚΟΠΗ \n"
                     "[1] Ανώνυμη ζώνη:ΚΑΝΟΝΙΚΗ \n[2] Ανώνυμη ζώνη:ΚΑΝΟΝΙΚΗ \n"_s);
        QTest::newRow("archive labels: unit, zones, power inputs; no unit state")
            << kArchive
            << u"U S1,'7','Αποθήκη',1; Z S1,2,'Ψυγείο',0; Z S1,3,'',0; I S1,2,'ΔΕΗ';"
               "E S1,3,1,1,5,NULL,60,0; E S1,2,1,0,4,NULL,60,0; P S1,1,33,NULL,60,0; F S1,0,'0'"_s
            << u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: [7] Αποθήκη (S1)\n\nΜΗΝΥΜΑΤΑ ΤΟΥ ΣΗΜΕΙΟΥ [2] Ψυγείο:\n"
               "@ΕΝΤΟΣ ΟΡΙΩΝ: 4.0 °C\n\nΜΗΝΥΜΑΤΑ ΤΟΥ ΣΗΜΕΙΟΥ [3]:\n@ΕΚΤΟΣ ΟΡΙΩΝ: 5.0 °C\n"
               "\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n@ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ:ΔΙΑΚΟΠΗ \n"
               "ΤΑΣΗ ΔΙΚΤΥΟΥ [1] ΔΕΗ:ΚΑΝΟΝΙΚΗ \nΤΑΣΗ ΔΙΚΤΥΟΥ [2]:ΚΑΝΟΝΙΚΗ \n~"_s;
        QTest::newRow("archive, unnamed unit")
            << kArchive << u"U S1,'7',NULL,1; P S1,1,1,NULL,60,0"_s
            << u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: ΣΥΣΤΗΜΑ [7] (S1)\n\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n"
               "@ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ\n~"_s;
        const QString battery =
            u"\n\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:\nΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ\n~"_s;
        QTest::newRow("units by location text; a quote in a serial; an empty serial skipped")
            << kNew
            << u"U A,'10','Γ',1; U B,'2','Β',1; U O'Neil,'1','Α',1; U ,'0','Κενό',1;"
               "F A,0,'3'; F B,0,'3'; F O'Neil,0,'3'; F ,0,'3'"_s
            << u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Α [1] (O'Neil)"_s + battery +
                   u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Γ [10] (A)"_s + battery +
                   u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Β [2] (B)"_s + battery;
    }

    void text()
    {
        QFETCH(int, kind);
        QFETCH(QString, rows);
        QFETCH(QString, text);
        QVERIFY(seedMessages(m_db, rows));
        const MessagesText built = buildMessagesText(m_db, MessageKind(kind), QLocale::c());
        QVERIFY2(!built.error.isError(), qPrintable(built.error.description));
        QCOMPARE(built.text, expand(text));
        QCOMPARE(built.centred, built.unitsShown == 0);
        QCOMPARE(built.centred, !text.startsWith(u"ΠΛΗΡΟΦΟΡΙΕΣ"_s));
    }

    void failedQueryStopsWithTextSoFar()
    {
        QVERIFY(seedMessages(m_db, kUnitA + u"U S2,'2','Β',1; P S1,1,0,NULL,60,1;"
                                            "E S2,1,1,1,1,NULL,60,1"_s));
        QVERIFY(!m_db.exec(u"DROP TABLE Sensors_Info"_s).isError());
        const MessagesText built = buildMessagesText(m_db, MessageKind::New, QLocale::c());
        QVERIFY(!sim::createSchema(m_db).isError());
        QVERIFY(built.error.isError());
        QCOMPARE(
            built.text,
            expand(unitA(u"\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n@Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ\n"_s) +
                   u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Β [2] (S2)\n"_s));
        QVERIFY(!built.centred);
    }

private:
    ScratchDatabase m_scratch;
    Database m_db;
};

QTEST_GUILESS_MAIN(TestMessagesBuilder)
#include "tst_messagesbuilder.moc"
