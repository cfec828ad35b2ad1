#include "GuiFixture.h"
#include "MessagesSeed.h"
#include "PdfText.h"
#include "UserTexts.h"
#include "model/Formatting.h"
#include "model/messages/MessagesBuilder.h"
#include "reports/Colors.h"
#include "sim/Seeder.h"
#include "sim/SimSchema.h"
#include "ui/NavigationFrame.h"
#include "ui/UnitList.h"
#include "views/messages/MessagesWindow.h"

#include <QComboBox>
#include <QFile>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
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

class TestMessagesWindow : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_FIXTURE(*m_fx);
    }
    void cleanup() { m_fx.reset(); }

    // The text built from real databases, for either list.
    void text_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("rows");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, int kind, const QString& rows, const QString& text) {
            QTest::newRow(name) << kind << rows << text;
        };

        row("new: none, archived only, unit not in use, no unit row", kNew,
            kUnitA + u"E S1,1,1,1,5,NULL,60,0; P S1,1,1,NULL,60,0; U S2,'2','Β',0;"
                     "E S2,1,1,1,5,NULL,60,1; F S2,0,'3'; E S9,1,1,1,5,NULL,60,1"_s,
            texts::kNoNewMessages);
        row("archive: new messages and faults do not count", kArchive,
            kUnitA + u"E S1,1,1,1,5,NULL,60,2; P S1,1,1,NULL,60,2; F S1,0,'0'"_s,
            texts::kArchiveEmpty);
        row("new: faults only, codes 3 and 4 without service line", kNew,
            kUnitA + u"F S1,0,'4'; F S1,0,'3'"_s,
            unitA(u"\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:\nΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ\n"
                  "ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ\n"_s));
        row("new: sensor faults, codes out of order, unknown codes, service line", kNew,
            u"U S1,'1',NULL,1; F S1,0,'8'; F S1,0,'5'; F S1,0,'9'; F S1,1,'3'; F S1,1,'12';"
            "F S1,2,'0'; F S2,0,'0'"_s,
            u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Ανώνυμο σύστημα [1] (S1)\n\n"
            "ΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:\nΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 12\n"
            "ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 3\nΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 40\n"
            "ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 50\n* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *\n~"_s);
        row("time lines: date, zero date, elapsed time; contact values; event order", kNew,
            kUnitA + u"Z S1,1,'Πόρτα',2; E S1,1,4,1,1,'2026-11-17 00:07:00',0,1;"
                     "E S1,1,1,0,0,NULL,125,1; E S1,1,2,1,1,'1899-12-30 00:00:00',45,1;"
                     "E S1,1,3,0,0,'2026-11-16 22:05:00',125,1; E S1,1,5,1,1,NULL,NULL,1"_s,
            unitA(u"\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [1] Πόρτα:\n"
                  "* ΠΡΙΝ 2 ΛΕΠΤΑ ΚΑΙ 5 ΔΕΥΤΕΡΟΛΕΠΤΑ \nΕΝΤΟΣ ΟΡΙΩΝ:  ΑΝΟΙΧΤΗ\n"
                  "* ΠΡΙΝ 45 ΔΕΥΤΕΡΟΛΕΠΤΑ \nΕΚΤΟΣ ΟΡΙΩΝ:  ΚΛΕΙΣΤΗ\n"
                  "* Δευτέρα 16 Νοεμβρίου 2026 10:05 μμ\nΕΝΤΟΣ ΟΡΙΩΝ:  ΑΝΟΙΧΤΗ\n"
                  "* Τρίτη 17 Νοεμβρίου 2026 12:07 πμ\nΕΚΤΟΣ ΟΡΙΩΝ:  ΚΛΕΙΣΤΗ\n"
                  "* ΠΡΙΝ 0 ΔΕΥΤΕΡΟΛΕΠΤΑ \nΕΚΤΟΣ ΟΡΙΩΝ:  ΚΛΕΙΣΤΗ\n"_s));
        row("values: units, missing zone row, NULL type, value and event type", kNew,
            kUnitA + u"Z S1,1,'Θ',0; Z S1,2,'',3; Z S1,3,NULL,NULL; Z S1,5,'Άλλη',2;"
                     "E S1,4,1,1,7,NULL,60,1; E S1,3,1,1,7,NULL,60,1; E S1,2,1,0,7.25,NULL,60,1;"
                     "E S1,1,2,1,NULL,NULL,60,1; E S1,1,1,9,-4.5,NULL,60,1;"
                     "E S1,2,2,NULL,7,NULL,60,1; E S1,5,1,1,-1,NULL,60,1"_s,
            unitA(u"\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [1] Θ:\n@ΕΚΤΟΣ ΟΡΙΩΝ: -4.5 °C\n@ΕΚΤΟΣ ΟΡΙΩΝ: \n"
                  "\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [2] Ανώνυμη ζώνη:\n@ΕΝΤΟΣ ΟΡΙΩΝ: 7.3 bar\n"
                  "@ΕΝΤΟΣ ΟΡΙΩΝ: 7.0 bar\n\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [3] Ανώνυμη ζώνη:\n"
                  "@ΕΚΤΟΣ ΟΡΙΩΝ: 7.0\n\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [4] Ανώνυμη ζώνη:\n"
                  "@ΕΚΤΟΣ ΟΡΙΩΝ: 7.0\n\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [5] Άλλη:\n@ΕΚΤΟΣ ΟΡΙΩΝ:  ΑΝΟΙΧΤΗ\n"_s));
        row("zones in order, NULL zone and event numbers as 0", kNew,
            kUnitA +
                u"E S1,3,9,1,9,NULL,60,1; E S1,1,9,1,9,NULL,60,1; E S1,3,2,1,2,NULL,60,1;"
                "E S1,NULL,NULL,1,0,NULL,60,1; E S1,1,2,1,2,NULL,60,1; E S1,1,NULL,1,1,NULL,60,1"_s,
            unitA(
                u"\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [0] Ανώνυμη ζώνη:\n@ΕΚΤΟΣ ΟΡΙΩΝ: 0.0\n"
                "\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [1] Ανώνυμη ζώνη:\n@ΕΚΤΟΣ ΟΡΙΩΝ: 1.0\n@ΕΚΤΟΣ ΟΡΙΩΝ: "
                "2.0\n@ΕΚΤΟΣ ΟΡΙΩΝ: 9.0\n"
                "\nΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [3] Ανώνυμη ζώνη:\n@ΕΚΤΟΣ ΟΡΙΩΝ: 2.0\n@ΕΚΤΟΣ ΟΡΙΩΝ: 9.0\n"_s));
        row("power 0x00, 0x01, 0x21, 0x34, NULL; then the unit state", kNew,
            kUnitA + u"I S1,1,'Τροφοδοτικό'; I S1,2,'ΔΕΗ'; I S1,3,'Η/Ζ'; I S1,4,'';"
                     "P S1,3,33,NULL,60,1; P S1,1,0,NULL,60,1; P S1,2,1,NULL,60,1;"
                     "P S1,4,52,NULL,60,1; P S1,5,NULL,NULL,60,1; F S1,1,'4'"_s,
            unitA(u"\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n@Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ\n"
                  "@ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ\n@ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΔΙΑΚΟΠΗ \n"
                  "[1] ΔΕΗ:ΚΑΝΟΝΙΚΗ \n[2] Η/Ζ:ΚΑΝΟΝΙΚΗ \n@ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΚΑΝΟΝΙΚΗ \n"
                  "[1] ΔΕΗ:ΚΑΝΟΝΙΚΗ \n[2] Η/Ζ:ΔΙΑΚΟΠΗ \n[3] Ανώνυμη ζώνη:ΚΑΝΟΝΙΚΗ \n"
                  "@Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ\n\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:\n"
                  "ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ 4\n* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *\n"_s));
        row("power 0x21, inputs without row or name", kNew,
            kUnitA + u"I S1,3,NULL; P S1,1,33,NULL,60,1"_s,
            unitA(u"\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n@ΤΡΟΦΟΔΟΣΙΑ ΣΥΣΤΗΜΑΤΟΣ:ΔΙΑΚΟΠΗ \n"
                  "[1] Ανώνυμη ζώνη:ΚΑΝΟΝΙΚΗ \n[2] Ανώνυμη ζώνη:ΚΑΝΟΝΙΚΗ \n"_s));
        row("archive labels: unit, zones, power inputs; no unit state", kArchive,
            u"U S1,'7','Αποθήκη',1; Z S1,2,'Ψυγείο',0; Z S1,3,'',0; I S1,2,'ΔΕΗ';"
            "E S1,3,1,1,5,NULL,60,0; E S1,2,1,0,4,NULL,60,0; P S1,1,33,NULL,60,0; F S1,0,'0'"_s,
            u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: [7] Αποθήκη (S1)\n\nΜΗΝΥΜΑΤΑ ΤΟΥ ΣΗΜΕΙΟΥ [2] Ψυγείο:\n"
            "@ΕΝΤΟΣ ΟΡΙΩΝ: 4.0 °C\n\nΜΗΝΥΜΑΤΑ ΤΟΥ ΣΗΜΕΙΟΥ [3]:\n@ΕΚΤΟΣ ΟΡΙΩΝ: 5.0 °C\n"
            "\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n@ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ:ΔΙΑΚΟΠΗ \n"
            "ΤΑΣΗ ΔΙΚΤΥΟΥ [1] ΔΕΗ:ΚΑΝΟΝΙΚΗ \nΤΑΣΗ ΔΙΚΤΥΟΥ [2]:ΚΑΝΟΝΙΚΗ \n~"_s);
        row("archive, unnamed unit", kArchive, u"U S1,'7',NULL,1; P S1,1,1,NULL,60,0"_s,
            u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: ΣΥΣΤΗΜΑ [7] (S1)\n\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n"
            "@ΕΓΙΝΕ ΔΙΑΚΟΠΗ ΣΤΗΝ ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ\n~"_s);
        const QString battery =
            u"\n\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΗ ΚΑΤΑΣΤΑΣΗ ΤΟΥ ΣΥΣΤΗΜΑΤΟΣ:\nΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ\n~"_s;
        row("units by location text; a quote in a serial; an empty serial skipped", kNew,
            u"U A,'10','Γ',1; U B,'2','Β',1; U O'Neil,'1','Α',1; U ,'0','Κενό',1;"
            "F A,0,'3'; F B,0,'3'; F O'Neil,0,'3'; F ,0,'3'"_s,
            u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Α [1] (O'Neil)"_s + battery +
                u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Γ [10] (A)"_s + battery +
                u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Β [2] (B)"_s + battery);
    }

    void text()
    {
        QFETCH(int, kind);
        QFETCH(QString, rows);
        QFETCH(QString, text);
        QVERIFY(seedMessages(m_fx->db, rows));
        const MessagesText built = buildMessagesText(m_fx->db, MessageKind(kind), QLocale::c());
        QVERIFY2(!built.error.isError(), qPrintable(built.error.description));
        QCOMPARE(built.text, expand(text));
        QCOMPARE(built.centred, built.unitsShown == 0);
        QCOMPARE(built.centred, !text.startsWith(u"ΠΛΗΡΟΦΟΡΙΕΣ"_s));
    }

    void failedQueryStopsWithTextSoFar()
    {
        QVERIFY(seedMessages(m_fx->db, kUnitA + u"U S2,'2','Β',1; P S1,1,0,NULL,60,1;"
                                                "E S2,1,1,1,1,NULL,60,1"_s));
        QVERIFY(!m_fx->db.exec(u"DROP TABLE Sensors_Info"_s).isError());
        const MessagesText built = buildMessagesText(m_fx->db, MessageKind::New, QLocale::c());
        QVERIFY(built.error.isError());
        QCOMPARE(
            built.text,
            expand(unitA(u"\nΜΗΝΥΜΑΤΑ ΓΙΑ ΤΟ ΔΙΚΤΥΟ ΡΕΥΜΑΤΟΣ:\n@Η ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ ΕΠΑΝΗΛΘΕ\n"_s) +
                   u"ΠΛΗΡΟΦΟΡΙΕΣ ΣΥΣΤΗΜΑΤΟΣ: Β [2] (S2)\n"_s));
        QVERIFY(!built.centred);
    }

    // The captions; the list buttons exclusive; the unit list leaves the text alone.
    void controlsAndListButtons()
    {
        QVERIFY(seedMessages(m_fx->db, u"U S1,'1','Α',1; U S2,'2','Β',1; E S1,1,1,1,5,NULL,60,1;"
                                       "E S2,1,2,0,6,NULL,60,0"_s));
        MessagesWindow w(m_fx->ctx);
        QCOMPARE(w.windowTitle(), u"SENTORAX Monitor / Μηνύματα"_s);
        // name=caption of every control; the separator l1 has none.
        const QString rows = u"Frame1=Πλοήγηση;Frame6=Επιλογή συστήματος;Frame2=Νέα Μηνύματα;"
                             u"Command1=Τρέχουσα κατάσταση;Command2=Αρχείο καταγραφών;"
                             u"Command6=Αρχείο συμβάντων;Command3=Mηνύματα;Command4=Νέα μηνύματα;"
                             u"Command5=Αρχείο μηνυμάτων;Diahirisi=Διαχείριση;"
                             u"Printmsgs=Εκτύπωση μηνυμάτων;l1=;Terminateprg=Έξοδος"_s;
        for (const QString& r : rows.split(u';')) {
            const QString name = r.section(u'=', 0, 0);
            const QObject* o = w.findChild<QObject*>(name);
            QVERIFY2(o, qPrintable(name));
            const QVariant title = o->property("title");
            QCOMPARE(name + u'=' + (title.isValid() ? title : o->property("text")).toString(), r);
        }
        QPlainTextEdit* box = w.textBox();
        QVERIFY(box->isReadOnly());
        QCOMPARE(box->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
        QCOMPARE(box->palette().color(QPalette::Base), colors::kLightGrey);
        fillSystemSelect(w, 1, false);
        QCOMPARE(w.systemSelect()->count(), 2); // no "ΟΛΑ"
        w.show();
        QCOMPARE(w.shownList(), MessageKind::New);
        QCOMPARE(indicator(w), colors::kLightRed);
        const struct {
            QPushButton* press;
            MessageKind kind;
        } steps[] = {{nullptr, MessageKind::New},
                     {w.archiveButton(), MessageKind::Archived},
                     {w.newButton(), MessageKind::New}};
        for (const auto& s : steps) {
            if (s.press)
                QTest::mouseClick(s.press, Qt::LeftButton);
            QCOMPARE(w.textFrame()->title(), listCaption(s.kind));
            QCOMPARE(w.newButton()->isEnabled(), s.kind != MessageKind::New);
            QCOMPARE(w.archiveButton()->isEnabled(), s.kind == MessageKind::New);
            const QString built = buildMessagesText(m_fx->db, s.kind).text;
            QCOMPARE(w.messageText(), built);
            QCOMPARE(shownText(w), QString(built).replace(u"\r\n"_s, u"\n"_s));
            QCOMPARE(alignment(w), Qt::AlignLeft);
        }
        // New rows arrive; choosing a unit does not pick them up.
        const QString before = shownText(w);
        QVERIFY(seedMessages(m_fx->db, u"E S2,3,3,1,5,NULL,60,1"_s));
        w.systemSelect()->setCurrentIndex(0);
        emit w.systemSelect()->activated(0);
        QCOMPARE(shownText(w), before);
        // Emptied lists are centred; the indicator is set on opening only.
        QVERIFY(!sim::clearAllData(m_fx->db).isError());
        QTest::mouseClick(w.archiveButton(), Qt::LeftButton);
        QCOMPARE(shownText(w), texts::kArchiveEmpty);
        QTest::mouseClick(w.newButton(), Qt::LeftButton);
        QCOMPARE(shownText(w), texts::kNoNewMessages);
        QCOMPARE(alignment(w), Qt::AlignHCenter);
        QCOMPARE(indicator(w), colors::kLightRed);
        QCOMPARE(MessagesWindow(m_fx->ctx).navigation()->newMessagesShown(), false);
        QVERIFY(m_fx->dialogs.shown().isEmpty());
    }

    void everyFailedBuildIsReportedAndViewStaysUsable()
    {
        QVERIFY(seedMessages(m_fx->db, u"U S1,'1','Α',1; E S1,1,1,1,5,NULL,60,0"_s));
        MessagesWindow w(m_fx->ctx);
        QTest::mouseClick(w.archiveButton(), Qt::LeftButton);
        QVERIFY(!m_fx->db.exec(u"DROP TABLE Sensors_Events"_s).isError());
        QTest::mouseClick(w.newButton(), Qt::LeftButton);
        QTest::mouseClick(w.archiveButton(), Qt::LeftButton);
        QCOMPARE(m_fx->dialogs.messages().size(), 2); // each click the user made
        QCOMPARE(m_fx->dialogs.messages().first().icon, DialogService::Icon::Critical);
        // The caption names the list asked for and no other list's text stays under it.
        QCOMPARE(w.textFrame()->title(), u"Αρχείο Μηνυμάτων"_s);
        QCOMPARE(shownText(w), QString());

        QVERIFY(!sim::createSchema(m_fx->db).isError());
        QVERIFY(seedMessages(m_fx->db, u"E S1,1,1,1,5,NULL,60,1"_s));
        QTest::mouseClick(w.newButton(), Qt::LeftButton);
        QVERIFY(shownText(w).contains(u"ΜΗΝΥΜΑΤΑ ΤΗΣ ΖΩΝΗΣ [1]"_s));
        QCOMPARE(m_fx->dialogs.messages().size(), 2);
        QVERIFY(!m_fx->failures->inOutage());
    }

    void nothingPrinted_data()
    {
        QTest::addColumn<bool>("archive");
        QTest::addColumn<QString>("left"); // what stays in the database
        QTest::addColumn<QString>("box");  // empty: the printer dialog is cancelled

        QTest::newRow("new, archived only")
            << false << u"P S1,1,0,NULL,60,0"_s << u"Δέν υπάρχουν νέα μηνύματα για εκτύπωση"_s;
        QTest::newRow("archive, new and fault only")
            << true << u"P S1,1,0,NULL,60,1; F S1,0,'3'"_s
            << u"Δέν υπάρχουν αρχειοθετημένα μηνύματα για εκτύπωση"_s;
        QTest::newRow("printer cancelled") << false << u"E S1,7,1,1,5,NULL,60,1"_s << QString();
    }

    void nothingPrinted()
    {
        QFETCH(bool, archive);
        QFETCH(QString, left);
        QFETCH(QString, box);
        QVERIFY(
            seedMessages(m_fx->db, kUnitA + u"E S1,1,1,1,5,NULL,60,1; E S1,1,2,1,5,NULL,60,0"_s));
        MessagesWindow w(m_fx->ctx);
        if (archive)
            QTest::mouseClick(w.archiveButton(), Qt::LeftButton);
        const QString before = w.textBox()->toPlainText();
        QVERIFY(!m_fx->db.exec(u"DELETE FROM Sensors_Events"_s).isError());
        QVERIFY(seedMessages(m_fx->db, left));
        const QString pdf = m_fx->answerPdf(false);

        w.printList();
        QCOMPARE(m_fx->dialogs.shown().size(), 1);
        const auto& shown = m_fx->dialogs.shown().first();
        QVERIFY(!QFile::exists(pdf));
        if (box.isEmpty()) {
            QVERIFY(w.textBox()->toPlainText().contains(u"ΖΩΝΗΣ [7]"_s));
            return;
        }
        QCOMPARE(shown.text, box);
        QCOMPARE(shown.icon, DialogService::Icon::Exclamation);
        QCOMPARE(shown.title, QString());
        QCOMPARE(w.textBox()->toPlainText(), before);
    }

    // Title, date and text, then the end box after the last line, on its page or at
    // the top of the next; a long text runs over pages without a title, every value
    // once and in order.
    void printedPages_data()
    {
        QTest::addColumn<bool>("archive");
        QTest::addColumn<int>("messages"); // of zone 1; none: a fault and a power message
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("end");
        QTest::newRow("archive") << true << 0 << u"SENTORAX Monitor / ΑΡΧΕΙΟ ΜΗΝΥΜΑΤΩΝ"_s
                                 << u"ΤΑΣΗ ΔΙΚΤΥΟΥ [1]:ΚΑΝΟΝΙΚΗ"_s << u"ΤΕΛΟΣ ΑΡΧΕΙΟY ΜΗΝΥΜΑΤΩΝ"_s;
        QTest::newRow("long") << false << 150 << u"SENTORAX Monitor / ΝΕΑ ΜΗΝΥΜΑΤΑ"_s
                              << u"ΕΚΤΟΣ ΟΡΙΩΝ: 150.0 °C"_s << u"ΤΕΛΟΣ ΝΕΩΝ ΜΗΝΥΜΑΤΩΝ"_s;
    }

    void printedPages()
    {
        QFETCH(bool, archive);
        QFETCH(int, messages);
        QFETCH(QString, title);
        QFETCH(QString, line);
        QFETCH(QString, end);
        QString rows = kUnitA + u"Z S1,1,'Ψυγείο',0;"_s;
        for (int i = 1; i <= messages; ++i)
            rows += u"E S1,1,%1,1,%1,NULL,60,1;"_s.arg(i);
        QVERIFY(
            seedMessages(m_fx->db, messages ? rows : rows + u"F S1,0,'3'; P S1,1,16,NULL,60,0"_s));
        MessagesWindow w(m_fx->ctx);
        if (archive)
            QTest::mouseClick(w.archiveButton(), Qt::LeftButton);
        const QString pdf = m_fx->answerPdf();
        const QString dateBefore = greekDateTime(m_fx->clock.now(), true);
        w.printList();
        const QString dateAfter = greekDateTime(m_fx->clock.now(), true);

        const QList<QStringList> pages = pdfLines(pdf);
        QVERIFY2(messages ? pages.size() >= 3 : pages.size() == 1,
                 qPrintable(QString::number(pages.size())));
        const QStringList& lines = pages.first();
        QCOMPARE(lines.at(0), title);
        QVERIFY2(lines.at(1) == dateBefore || lines.at(1) == dateAfter, qPrintable(lines.at(1)));
        QCOMPARE(lines.at(2), w.messageText().section(u"\r\n"_s, 0, 0));
        QStringList all;
        for (const QStringList& page : pages) {
            QVERIFY(!page.first().startsWith(u"SENTORAX Monitor"_s) || &page == &pages.first());
            all << page;
        }
        QStringList expected;
        for (int i = 1; i <= messages; ++i)
            expected << u"ΕΚΤΟΣ ΟΡΙΩΝ: %1.0 °C"_s.arg(i);
        QCOMPARE(all.filter(QRegularExpression(u"^ΕΚΤΟΣ ΟΡΙΩΝ: "_s)), expected);
        QCOMPARE(all.mid(all.size() - 2), (QStringList{line, end}));
    }

private:
    static QString shownText(MessagesWindow& w) { return w.textBox()->toPlainText(); }
    static Qt::Alignment alignment(MessagesWindow& w)
    {
        return w.textBox()->document()->defaultTextOption().alignment() & Qt::AlignHorizontal_Mask;
    }
    static QColor indicator(MessagesWindow& w)
    {
        return w.navigation()->button(ViewId::Messages)->property("sxColor").value<QColor>();
    }

    std::unique_ptr<GuiFixture> m_fx;
};

QTEST_MAIN(TestMessagesWindow)
#include "tst_messageswindow.moc"
