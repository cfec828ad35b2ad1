#include "GuiFixture.h"
#include "MessagesSeed.h"
#include "PdfText.h"
#include "model/Formatting.h"
#include "views/messages/MessagesWindow.h"

#include <QFile>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace sx;
using namespace sx::test;

class TestMessagesReport : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        if (QStandardPaths::findExecutable(u"pdftotext"_s).isEmpty())
            QSKIP("pdftotext (poppler-utils) is not installed");
    }
    void init()
    {
        m_fx = std::make_unique<GuiFixture>();
        SX_REQUIRE_DB(m_fx->scratch);
        QVERIFY(m_fx->ready() && seedMessages(m_fx->db, u"U S1,'1','Αποθήκη',1"_s));
    }
    void cleanup() { m_fx.reset(); }
    // Nothing left to print: a box, and the text is not rebuilt. The printer
    // dialog cancelled: nothing printed, but the text is rebuilt.
    void nothingPrinted_data()
    {
        QTest::addColumn<bool>("archive");
        QTest::addColumn<QString>("left"); // what stays in the database
        QTest::addColumn<QString>("box");  // empty: the printer dialog is cancelled

        const QString newBox = u"Δέν υπάρχουν νέα μηνύματα για εκτύπωση"_s;
        QTest::newRow("new, none") << false << u""_s << newBox;
        QTest::newRow("new, archived only") << false << u"P S1,1,0,NULL,60,0"_s << newBox;
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
        QVERIFY(seedMessages(m_fx->db, u"E S1,1,1,1,5,NULL,60,1; E S1,1,2,1,5,NULL,60,0"_s));
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

    void titleDateTextAndEnd_data()
    {
        QTest::addColumn<bool>("archive");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("end");

        // The unit has a fault and no new message: it is printed in the new list.
        QTest::newRow("new") << false << u"SENTORAX Monitor / ΝΕΑ ΜΗΝΥΜΑΤΑ"_s
                             << u"ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ"_s << u"ΤΕΛΟΣ ΝΕΩΝ ΜΗΝΥΜΑΤΩΝ"_s;
        QTest::newRow("archive") << true << u"SENTORAX Monitor / ΑΡΧΕΙΟ ΜΗΝΥΜΑΤΩΝ"_s
                                 << u"ΤΑΣΗ ΤΡΟΦΟΔΟΣΙΑΣ:ΚΑΝΟΝΙΚΗ"_s << u"ΤΕΛΟΣ ΑΡΧΕΙΟY ΜΗΝΥΜΑΤΩΝ"_s;
    }

    void titleDateTextAndEnd()
    {
        QFETCH(bool, archive);
        QFETCH(QString, title);
        QFETCH(QString, line);
        QFETCH(QString, end);
        QVERIFY(seedMessages(m_fx->db, u"F S1,0,'3'; P S1,1,16,NULL,60,0"_s));
        MessagesWindow w(m_fx->ctx);
        if (archive)
            QTest::mouseClick(w.archiveButton(), Qt::LeftButton);
        const QString pdf = m_fx->answerPdf();
        const QString dateBefore = greekDateTime(m_fx->clock.now(), true);
        w.printList();
        const QString dateAfter = greekDateTime(m_fx->clock.now(), true);

        const QList<QStringList> pages = pdfLines(pdf);
        QCOMPARE(pages.size(), 1);
        const QStringList& lines = pages.first();
        QCOMPARE(lines.at(0), title);
        QVERIFY2(lines.at(1) == dateBefore || lines.at(1) == dateAfter, qPrintable(lines.at(1)));
        QCOMPARE(lines.at(2), w.messageText().section(u"\r\n"_s, 0, 0));
        QVERIFY(lines.contains(line));
        QCOMPARE(lines.last(), end);
    }

    void longTextRunsOverPagesAndEndFollowsLastLine()
    {
        constexpr int kMessages = 150;
        QString rows = u"Z S1,1,'Ψυγείο',0;"_s;
        for (int i = 1; i <= kMessages; ++i)
            rows += u"E S1,1,%1,1,%1,NULL,60,1;"_s.arg(i);
        QVERIFY(seedMessages(m_fx->db, rows));
        MessagesWindow w(m_fx->ctx);
        const QString pdf = m_fx->answerPdf();
        w.printList();

        const QList<QStringList> pages = pdfLines(pdf);
        QVERIFY2(pages.size() >= 3, qPrintable(QString::number(pages.size())));
        QStringList all;
        for (const QStringList& page : pages) {
            QVERIFY(!page.first().startsWith(u"SENTORAX Monitor"_s) || &page == &pages.first());
            all << page;
        }
        // Every value once and in order across the pages.
        QStringList values;
        for (const QString& l : all) {
            if (l.startsWith(u"ΕΚΤΟΣ ΟΡΙΩΝ: "_s))
                values << l.mid(13);
        }
        QStringList expected;
        for (int i = 1; i <= kMessages; ++i)
            expected << u"%1.0 °C"_s.arg(i);
        QCOMPARE(values, expected);
        // The end box follows the last text line, on its page or at the top of the next.
        QCOMPARE(all.last(), u"ΤΕΛΟΣ ΝΕΩΝ ΜΗΝΥΜΑΤΩΝ"_s);
        QCOMPARE(all.at(all.size() - 2), values.last().prepend(u"ΕΚΤΟΣ ΟΡΙΩΝ: "_s));
    }

private:
    std::unique_ptr<GuiFixture> m_fx;
};

QTEST_MAIN(TestMessagesReport)
#include "tst_messagesreport.moc"
