#include "GuiFixture.h"

#include "PdfText.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace sx::test {

GuiFixture::GuiFixture()
{
    settings = std::make_unique<SettingsStore>(scratch.folder() + u"/settings.ini"_s);
    m_ready = scratch.open(db) && !link.openAndWait(scratch.settings()).isError();
    ctx.db = &link;
    ctx.dialogs = &dialogs;
    ctx.settings = settings.get();
    ctx.clock = &clock;
    failures = std::make_unique<QueryFailureReporter>(ctx);
    ctx.failures = failures.get();
    navigator = std::make_unique<Navigator>(ctx);
    ctx.navigator = navigator.get();
    ctx.terminate = [this] { ++terminated; };
}

bool GuiFixture::exec(const QString& sql)
{
    for (const QString& statement : sql.split(u";\n"_s, Qt::SkipEmptyParts)) {
        if (statement.trimmed().isEmpty())
            continue;
        if (const DbError e = db.exec(statement); e.isError()) {
            qWarning("%s\n  in: %s", qPrintable(e.description), qPrintable(statement));
            return false;
        }
    }
    return true;
}

QString GuiFixture::answerPdf(bool accept)
{
    const QString pdf = scratch.folder() + u"/printed%1.pdf"_s.arg(++m_pdfs);
    dialogs.answerPrint(accept, [pdf](QPrinter& p) { setUpPdf(p, pdf); });
    return pdf;
}

bool GuiFixture::waitWindowShown()
{
    const QWidgetList all = QApplication::topLevelWidgets();
    return std::any_of(all.begin(), all.end(),
                       [](QWidget* w) { return w->objectName() == u"Waitfrm" && w->isVisible(); });
}

QString GuiFixture::clippedChild(const QWidget& top)
{
    for (const QWidget* child : top.findChildren<QWidget*>()) {
        const QString name = child->objectName();
        if (!name.isEmpty() && !name.startsWith(u"qt_"_s) && child->isVisible() &&
            !child->parentWidget()->rect().contains(child->geometry()))
            return name;
    }
    return {};
}

} // namespace sx::test
