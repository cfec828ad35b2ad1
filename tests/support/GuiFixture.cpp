#include "GuiFixture.h"

using namespace Qt::StringLiterals;

namespace sx::test {

GuiFixture::GuiFixture()
{
    settings = std::make_unique<SettingsStore>(scratch.folder() + u"/settings.ini"_s);
    m_ready = scratch.open(db);
    ctx.db = &db;
    ctx.dialogs = &dialogs;
    ctx.settings = settings.get();
    ctx.clock = &clock;
    failures = std::make_unique<QueryFailureReporter>(ctx);
    ctx.failures = failures.get();
    navigator = std::make_unique<Navigator>(ctx);
    ctx.navigator = navigator.get();
    ctx.terminate = [this] { ++terminated; };
}

GuiFixture::~GuiFixture() = default;

bool GuiFixture::exec(const QString& sql)
{
    for (const QString& statement : sql.split(u";\n"_s, Qt::SkipEmptyParts)) {
        if (statement.trimmed().isEmpty())
            continue;
        const DbError e = db.exec(statement);
        if (e.isError()) {
            qWarning("%s\n  in: %s", qPrintable(e.description), qPrintable(statement));
            return false;
        }
    }
    return true;
}

} // namespace sx::test
