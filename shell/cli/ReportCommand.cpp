#include "shell/cli/ReportCommand.h"

#include "model/AppTitle.h"
#include "model/Clock.h"
#include "model/Database.h"
#include "model/SqlDateTime.h"
#include "model/UnitEntries.h"
#include "model/events/EventsData.h"
#include "model/messages/MessagesBuilder.h"
#include "model/records/RecordsQuery.h"
#include "model/settings/SettingsStore.h"
#include "model/summary/SummaryData.h"
#include "reports/ReportPdf.h"
#include "reports/current/CurrentReport.h"
#include "reports/events/EventsModel.h"
#include "reports/events/EventsReport.h"
#include "reports/messages/MessagesReport.h"
#include "reports/records/RecordsModel.h"
#include "reports/records/RecordsReport.h"
#include "reports/summary/SummaryReport.h"
#include "reports/summary/SummaryXlsx.h"
#include "reports/xlsx/XlsxExport.h"
#include "shell/cli/ReportOptions.h"

#include <QFile>
#include <QGuiApplication>
#include <QPrinter>
#include <QRegularExpression>
#include <QTextStream>

#include <cstring>

using namespace Qt::StringLiterals;

namespace sx::cli {

namespace {

struct Failure {
    ExitCode code = ExitCode::Done;
    QString message;
};

// The Greek explanation in one line.
QString oneLine(const QString& text)
{
    return text.split(QRegularExpression(u"[\\r\\n]+"_s), Qt::SkipEmptyParts)
        .join(u' ')
        .simplified();
}

Failure databaseFailure(const DbError& e)
{
    return {ExitCode::Database,
            oneLine(explainDbError(e)) + u" ("_s + e.description.simplified() + u')'};
}

Failure unknownUnit(const QString& serial)
{
    return {ExitCode::UnknownUnit,
            u"Δεν υπάρχει σύστημα σε χρήση με σειριακό αριθμό "_s + serial + u'.'};
}

Failure nothing(const QString& what)
{
    return {ExitCode::NothingToReport, what};
}

Failure notWritten(const QString& path)
{
    return {ExitCode::OutputFailed, u"Το αρχείο δεν ήταν δυνατόν να γραφτεί: "_s + path};
}

// Both files or neither: a workbook written before a failed PDF is taken back.
class Outputs {
public:
    void written(const QString& path) { m_written << path; }
    void rollBack()
    {
        for (const QString& path : m_written)
            QFile::remove(path);
    }

private:
    QStringList m_written;
};

class Runner {
public:
    Runner(const ReportOptions& o, Database& db, const Clock& clock, int sheetRows)
        : m_o(o), m_db(db), m_clock(clock), m_sheetRows(sheetRows)
    {
    }

    Failure run()
    {
        switch (m_o.kind) {
        case ReportKind::Current:
            return current();
        case ReportKind::Records:
            return records();
        case ReportKind::Events:
            return events();
        case ReportKind::Messages:
            return messages();
        case ReportKind::Summary:
            return summary();
        }
        return {};
    }

    void rollBack() { m_outputs.rollBack(); }

private:
    Failure pdf(QPageLayout::Orientation orientation, const ReportDrawing& draw)
    {
        if (m_o.pdf.isEmpty())
            return {};
        if (!writeReportPdf(m_o.pdf, orientation, draw))
            return notWritten(m_o.pdf);
        m_outputs.written(m_o.pdf);
        return {};
    }

    // The unit's entry of the views' unit list.
    std::optional<UnitEntry> unit(Failure& failure)
    {
        DbError e;
        const QList<UnitEntry> units = readUnitList(m_db, &e);
        if (e.isError()) {
            failure = databaseFailure(e);
            return std::nullopt;
        }
        for (const UnitEntry& u : units) {
            if (u.serial == m_o.unit)
                return u;
        }
        failure = unknownUnit(m_o.unit);
        return std::nullopt;
    }

    QString monthText() const
    {
        return records::monthNames().value(m_o.month > 0 ? m_o.month - 1
                                                         : records::kWholeYearIndex);
    }
    int yearIndex() const { return m_o.year - records::kFirstYear; }
    int monthIndex() const { return m_o.month > 0 ? m_o.month - 1 : records::kWholeYearIndex; }

    Failure current()
    {
        Failure f;
        if (!unit(f))
            return f;
        report::ReportData data;
        data.printedAt = m_clock.now();
        if (const DbError e = readCurrentReport(m_db, m_o.unit, data); e.isError())
            return databaseFailure(e);
        return pdf(QPageLayout::Portrait,
                   [&](QPrinter& printer) { return drawCurrentReport(printer, data); });
    }

    Failure records()
    {
        Failure f;
        const auto u = unit(f);
        if (!u)
            return f;
        DbError e;
        const QList<records::ZoneEntry> zones = records::readZones(m_db, m_o.unit, &e);
        if (e.isError())
            return databaseFailure(e);
        const auto zone =
            std::find_if(zones.begin(), zones.end(),
                         [&](const records::ZoneEntry& z) { return z.number == m_o.zone; });
        if (zone == zones.end())
            return {ExitCode::UnknownZone, u"Το σύστημα δεν έχει καταγραφές στη ζώνη "_s +
                                               QString::number(m_o.zone) + u'.'};
        const records::Period period = records::recordsPeriod(yearIndex(), monthIndex());
        records::RecordsLoad load = records::loadRecords(
            m_db, records::recordsSql(m_db.kind(), *zone, period), records::expectedRows(period));
        if (load.error.isError())
            return databaseFailure(load.error);
        if (load.records.empty())
            return nothing(u"Δεν υπάρχουν καταγραφές της ζώνης για την περίοδο που επιλέξατε."_s);

        const records::ZoneLimits limits = records::zoneLimits(*zone);
        auto loaded = std::make_shared<LoadedRecords>();
        loaded->records = std::move(load.records);
        loaded->minLimitText = limits.minText;
        loaded->maxLimitText = limits.maxText;
        RecordsModel model;
        model.setRecords(loaded, records::LimitRule(*zone));
        const int rows = model.rowCount();
        const auto date = [&model](int i) { return model.dateText(i); };
        const auto reading = [&model](int i) { return model.readingText(i); };

        if (!m_o.xlsx.isEmpty()) {
            xlsx::SheetFill fill;
            fill.heading = {u->text, records::zoneItemText(*zone),
                            monthText() + u'/' + QString::number(m_o.year), limits.maxCaption,
                            limits.minCaption};
            // As the window does: what fits on the sheet is written, the rest told of.
            fill.rowCount = xlsx::recordsThatFit(rows, m_sheetRows);
            fill.dateText = date;
            fill.readingText = reading;
            const QString templatePath = xlsx::defaultTemplatePath();
            const xlsx::ExportStatus status = xlsx::writeWorkbook(templatePath, m_o.xlsx, fill);
            if (status == xlsx::ExportStatus::TemplateMissing ||
                status == xlsx::ExportStatus::TemplateDamaged)
                return {ExitCode::NoTemplate, oneLine(xlsx::statusMessage(status, templatePath))};
            if (status != xlsx::ExportStatus::Written) {
                const QString why = xlsx::statusMessage(status, templatePath);
                return {ExitCode::OutputFailed,
                        why.isEmpty() ? notWritten(m_o.xlsx).message : oneLine(why)};
            }
            m_outputs.written(m_o.xlsx);
            if (fill.rowCount < rows)
                m_partly = {ExitCode::PartlyWritten,
                            oneLine(xlsx::leftOutMessage(fill.rowCount, rows - fill.rowCount))};
        }
        RecordsReportInput in;
        in.unitText = u->text;
        in.zoneText = records::zoneItemText(*zone);
        in.monthText = monthText();
        in.yearText = QString::number(m_o.year);
        in.rowCount = rows;
        in.dateText = date;
        in.readingText = reading;
        f = pdf(QPageLayout::Portrait,
                [&](QPrinter& printer) { return drawRecordsReport(printer, in); });
        return f.code != ExitCode::Done ? f : m_partly;
    }

    Failure events()
    {
        DbError e;
        const QList<UnitEntry> units = readUnitList(m_db, &e);
        if (e.isError())
            return databaseFailure(e);
        events::EventsRequest request;
        QList<events::SourceEntry> sources;
        QString unitText;
        if (m_o.unit == u"all") {
            // Every unit in use, however many there are.
            if (units.isEmpty())
                return unknownUnit(m_o.unit);
            request.withPrefix = true;
            for (int i = 0; i < units.size(); ++i)
                request.units.append({i, units[i].serial});
            sources = events::allUnitsSourceList();
            unitText = u"ΟΛΑ"_s;
        } else {
            const auto at = std::find_if(units.begin(), units.end(),
                                         [&](const UnitEntry& u) { return u.serial == m_o.unit; });
            if (at == units.end())
                return unknownUnit(m_o.unit);
            const int index = static_cast<int>(at - units.begin());
            request.units.append({index, at->serial});
            sources = events::buildSourceList(m_db, at->serial, index, &e);
            if (e.isError())
                return databaseFailure(e);
            unitText = at->text;
        }
        if (sources.isEmpty())
            return nothing(u"Το σύστημα δεν έχει μνήμη συμβάντων."_s);
        // The list starts on its last entry, as the window does.
        const events::SourceEntry* source = &sources.last();
        if (m_o.source) {
            source = nullptr;
            for (const events::SourceEntry& s : sources) {
                if (s.source == *m_o.source)
                    source = &s;
            }
            if (!source)
                return {ExitCode::UnknownZone,
                        u"Το σύστημα δεν έχει συμβάντα από την προέλευση "_s +
                            QString::number(*m_o.source) + u'.'};
        }
        request.source = source->source;
        request.kind = static_cast<events::EventKind>(m_o.eventKind);
        request.newOnly = m_o.newOnly;
        request.period = events::eventsPeriod(yearIndex(), monthIndex());
        events::EventsLoad load = events::loadEvents(m_db, request);
        if (load.error.isError())
            return databaseFailure(load.error);
        if (load.rows.empty())
            return nothing(u"Δεν υπάρχουν συμβάντα για τις επιλογές και την περίοδο."_s);
        EventsModel model;
        model.setEvents(std::move(load));

        events_report::Choices c;
        c.unit = unitText;
        c.source = source->text;
        c.kindApplies = events::kindOptionsApply(source->source);
        c.kind = m_o.eventKind;
        c.month = monthText();
        c.year = QString::number(m_o.year);
        c.newOnly = m_o.newOnly;
        EventsReportInput in;
        in.choices = events_report::choicesLine(c);
        in.rowCount = model.rowCount();
        in.dateText = [&model](int i) { return model.dateText(i); };
        in.descriptionText = [&model](int i) { return model.descriptionText(i); };
        return pdf(QPageLayout::Portrait,
                   [&](QPrinter& printer) { return drawEventsReport(printer, in); });
    }

    Failure messages()
    {
        const MessageKind kind = m_o.archive ? MessageKind::Archived : MessageKind::New;
        DbError e;
        const bool any = listHasMessages(m_db, kind, &e);
        if (e.isError())
            return databaseFailure(e);
        if (!any)
            return nothing(nothingToPrintText(kind));
        const MessagesText text = buildMessagesText(m_db, kind);
        if (text.error.isError())
            return databaseFailure(text.error);
        const QDateTime printedAt = m_clock.now();
        return pdf(QPageLayout::Portrait, [&](QPrinter& printer) {
            return drawMessagesReport(printer, kind, text.text, printedAt);
        });
    }

    Failure summary()
    {
        // The unit is found as every other kind finds it: one in use.
        Failure f;
        if (!unit(f))
            return f;
        const summary::SummaryPeriod period{m_o.year, m_o.month};
        const summary::SummaryLoad load =
            summary::loadSummary(m_db, m_o.unit, m_o.zone, period, fromQDateTime(m_clock.now()));
        switch (load.problem) {
        case summary::LoadProblem::None:
            break;
        case summary::LoadProblem::Database:
            return databaseFailure(load.error);
        case summary::LoadProblem::UnknownUnit:
            return unknownUnit(m_o.unit);
        case summary::LoadProblem::UnknownZone:
            return {ExitCode::UnknownZone, m_o.zone < 0
                                               ? u"Το σύστημα δεν έχει ζώνες με καταγραφές."_s
                                               : u"Το σύστημα δεν έχει καταγραφές στη ζώνη "_s +
                                                     QString::number(m_o.zone) + u'.'};
        case summary::LoadProblem::NoRecords:
            return nothing(u"Δεν υπάρχουν καταγραφές της ζώνης για την περίοδο που επιλέξατε."_s);
        }
        if (!m_o.xlsx.isEmpty()) {
            if (summary::writeSummaryWorkbook(m_o.xlsx, load.input) != xlsx::ExportStatus::Written)
                return notWritten(m_o.xlsx);
            m_outputs.written(m_o.xlsx);
        }
        return pdf(QPageLayout::Portrait,
                   [&](QPrinter& printer) { return drawSummaryReport(printer, load.input); });
    }

    const ReportOptions& m_o;
    Database& m_db;
    const Clock& m_clock;
    int m_sheetRows;
    Outputs m_outputs;
    Failure m_partly; // the report is written, but not all of it fitted
};

} // namespace

bool isReportCommand(int argc, char** argv)
{
    return argc > 1 && std::strcmp(argv[1], "report") == 0;
}

int runReportCommand(const QStringList& arguments, SettingsStore& settings, QTextStream& out,
                     QTextStream& err)
{
    const ParsedOptions parsed = parseReportOptions(arguments);
    if (parsed.help) {
        out << reportHelpText();
        out.flush();
        return static_cast<int>(ExitCode::Done);
    }
    if (!parsed.options) {
        err << parsed.error << '\n';
        err.flush();
        return static_cast<int>(ExitCode::Usage);
    }
    const ReportOptions& o = *parsed.options;
    Database db;
    // No window to keep live: the report reads on the main thread.
    db.allowGuiThread();
    if (const DbError e = db.open(o.db ? *o.db : settings.connection()); e.isError()) {
        err << databaseFailure(e).message << '\n';
        err.flush();
        return static_cast<int>(ExitCode::Database);
    }
    const Clock clock;
    // Tests give the workbook a short sheet instead of writing a million rows.
    const int sheetRows = qEnvironmentVariableIntValue("SX_XLSX_SHEET_ROWS");
    Runner runner(o, db, clock, sheetRows > 0 ? sheetRows : xlsx::kSheetRows);
    const Failure f = runner.run();
    if (f.code != ExitCode::Done) {
        if (f.code != ExitCode::PartlyWritten)
            runner.rollBack();
        err << f.message << '\n';
        err.flush();
    }
    return static_cast<int>(f.code);
}

namespace {

// Cron mails whatever a job prints: only our own one line, not Qt's notes on
// the environment (no runtime folder, no fonts configured, ...).
void quietMessages(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        QTextStream(stderr) << message << '\n';
}

} // namespace

int reportMain(int argc, char** argv)
{
    qInstallMessageHandler(quietMessages);
    // No display is needed: reports run from cron and timers.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(appTitle());
    QGuiApplication::setApplicationVersion(QStringLiteral(SX_VERSION));
    SettingsStore settings;
    QTextStream out(stdout);
    QTextStream err(stderr);
    return runReportCommand(QGuiApplication::arguments().mid(1), settings, out, err);
}

} // namespace sx::cli
