#include "app/PrintPreview.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

// A report written over a file the user already has: the old file goes only
// when the new one is complete, and nothing is left beside it.
class TestPdfFileSwap : public QObject {
    Q_OBJECT

private slots:
    void oldFileStaysUntilTheNewOneIsWhole_data()
    {
        QTest::addColumn<bool>("drawn");
        QTest::newRow("drawing fails half way") << false;
        QTest::newRow("drawing completes") << true;
    }

    void oldFileStaysUntilTheNewOneIsWhole()
    {
        QFETCH(bool, drawn);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"report.pdf"_s);
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old report") > 0);
        old.close();
        const bool ok = sx::writeReportPdf(path, QPageLayout::Portrait, [&](QPrinter& printer) {
            QPainter painter(&printer);
            painter.drawText(100, 100, u"Σελίδα 1"_s);
            if (!drawn)
                return false;
            return printer.newPage() && painter.end();
        });
        QCOMPARE(ok, drawn);
        QVERIFY(old.open(QIODevice::ReadOnly));
        QCOMPARE(old.read(4) == "%PDF", drawn);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{u"report.pdf"_s});
    }
};

QTEST_MAIN(TestPdfFileSwap)
#include "tst_pdffileswap.moc"
