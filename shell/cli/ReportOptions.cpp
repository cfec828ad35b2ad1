#include "shell/cli/ReportOptions.h"

#include <QCommandLineParser>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace sx::cli {

namespace {

// The years the views' lists offer.
constexpr int kFirstYear = 2000;
constexpr int kLastYear = 2255;

struct KindRule {
    QString name;
    ReportKind kind;
    QStringList allowed;
    QStringList required;
};

const QList<KindRule>& kindRules()
{
    static const QList<KindRule> rules = {
        {u"current"_s, ReportKind::Current, {u"unit"_s, u"pdf"_s}, {u"unit"_s, u"pdf"_s}},
        {u"records"_s,
         ReportKind::Records,
         {u"unit"_s, u"zone"_s, u"month"_s, u"year"_s, u"pdf"_s, u"xlsx"_s},
         {u"unit"_s, u"zone"_s}},
        {u"events"_s,
         ReportKind::Events,
         {u"unit"_s, u"source"_s, u"kind"_s, u"month"_s, u"year"_s, u"new"_s, u"pdf"_s},
         {u"unit"_s, u"pdf"_s}},
        {u"messages"_s, ReportKind::Messages, {u"archive"_s, u"pdf"_s}, {u"pdf"_s}},
        {u"summary"_s,
         ReportKind::Summary,
         {u"unit"_s, u"zone"_s, u"month"_s, u"year"_s, u"pdf"_s, u"xlsx"_s},
         {u"unit"_s}},
    };
    return rules;
}

QList<QCommandLineOption> optionList()
{
    return {
        {u"db"_s,
         u"Η βάση δεδομένων: sqlite:ΑΡΧΕΙΟ ή postgresql://χρήστης:κωδικός@διεύθυνση:θύρα/όνομα "
         u"(αλλιώς αυτή των παραμέτρων της εφαρμογής)."_s,
         u"url"_s},
        {u"unit"_s, u"Ο σειριακός αριθμός του συστήματος (στα συμβάντα και all για όλα)."_s,
         u"serial"_s},
        {u"zone"_s, u"Ο αριθμός της ζώνης (στη σύνοψη και all για όλες)."_s, u"N"_s},
        {u"month"_s, u"Ο μήνας, ΕΕΕΕ-ΜΜ."_s, u"YYYY-MM"_s},
        {u"year"_s, u"Ολόκληρο το έτος, ΕΕΕΕ, στη θέση του μήνα."_s, u"YYYY"_s},
        {u"source"_s,
         u"Η προέλευση των συμβάντων: 0 όλες, 1-20 ζώνη, 21 και πάνω όπως στη λίστα."_s, u"N"_s},
        {u"kind"_s, u"Ο τύπος των συμβάντων: alarm, restore ή all."_s, u"kind"_s},
        {u"new"_s, u"Μόνο τα νέα συμβάντα."_s},
        {u"archive"_s, u"Το αρχείο μηνυμάτων αντί για τα νέα μηνύματα."_s},
        {u"pdf"_s, u"Η αναφορά σε αρχείο PDF."_s, u"file"_s},
        {u"xlsx"_s, u"Το βιβλίο εργασίας .xlsx."_s, u"file"_s},
    };
}

void setUp(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        u"Αναφορές χωρίς παράθυρο (π.χ. από το cron):\n"
        u"  report current  --unit SERIAL --pdf FILE\n"
        u"  report records  --unit SERIAL --zone N --month YYYY-MM [--pdf FILE] [--xlsx FILE]\n"
        u"  report events   --unit SERIAL|all [--source N] [--kind alarm|restore|all]\n"
        u"                  --month YYYY-MM [--new] --pdf FILE\n"
        u"  report messages [--archive] --pdf FILE\n"
        u"  report summary  --unit SERIAL [--zone N|all] --month YYYY-MM [--pdf FILE] [--xlsx "
        u"FILE]\n"
        u"Το --year YYYY αντικαθιστά το --month για ολόκληρο έτος (records, events, summary).\n"
        u"Κωδικοί εξόδου: 0 έγινε, 2 λάθος επιλογή, 3 βάση δεδομένων, 4 άγνωστο σύστημα,\n"
        u"5 άγνωστη ζώνη ή προέλευση, 6 κενή περίοδος, 7 το αρχείο δεν γράφεται,\n"
        u"8 το βιβλίο εργασίας δεν χωράει όλες τις καταγραφές (γράφτηκαν όσες χωρούν),\n"
        u"9 το πρότυπο αρχείο Excel λείπει ή είναι κατεστραμμένο."_s);
    parser.addHelpOption();
    parser.addOptions(optionList());
    parser.addPositionalArgument(u"report"_s, u"Η εντολή."_s);
    parser.addPositionalArgument(u"kind"_s, u"current, records, events, messages ή summary."_s);
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
}

std::optional<int> wholeNumber(const QString& text, int low, int high)
{
    bool ok = false;
    const int v = text.toInt(&ok);
    return ok && v >= low && v <= high ? std::optional(v) : std::nullopt;
}

} // namespace

QString reportHelpText()
{
    QCommandLineParser parser;
    setUp(parser);
    return parser.helpText().replace(u"[options] report kind"_s, u"report KIND [options]"_s);
}

ParsedOptions parseReportOptions(const QStringList& arguments)
{
    ParsedOptions out;
    QCommandLineParser parser;
    setUp(parser);
    if (!parser.parse(QStringList{u"sentorax-monitor"_s} + arguments)) {
        out.error = parser.errorText();
        return out;
    }
    if (parser.isSet(u"help"_s)) {
        out.help = true;
        return out;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 2 || positional[0] != u"report") {
        out.error = positional.size() < 2 ? u"Λείπει το είδος της αναφοράς (δείτε --help)."_s
                                          : u"Περιττό όρισμα: "_s + positional.value(2);
        return out;
    }
    const KindRule* rule = nullptr;
    for (const KindRule& r : kindRules()) {
        if (r.name == positional[1])
            rule = &r;
    }
    if (!rule) {
        out.error = u"Άγνωστο είδος αναφοράς: "_s + positional[1];
        return out;
    }
    for (const QString& name : parser.optionNames()) {
        if (name != u"db" && !rule->allowed.contains(name)) {
            out.error = u"Η επιλογή --%1 δεν ισχύει για την αναφορά %2."_s.arg(name, rule->name);
            return out;
        }
    }
    for (const QString& name : rule->required) {
        if (!parser.isSet(name)) {
            out.error = u"Λείπει η επιλογή --%1."_s.arg(name);
            return out;
        }
    }

    ReportOptions o;
    o.kind = rule->kind;
    if (parser.isSet(u"db"_s)) {
        ConnectionSettings db;
        if (!parseDbUrl(parser.value(u"db"_s), db)) {
            out.error = u"Η βάση δεδομένων δεν δίνεται σωστά: "_s + parser.value(u"db"_s);
            return out;
        }
        o.db = db;
    }
    o.unit = parser.value(u"unit"_s);
    if (o.unit == u"all" && rule->kind != ReportKind::Events) {
        out.error = u"Το --unit all ισχύει μόνο για τα συμβάντα."_s;
        return out;
    }
    if (parser.isSet(u"zone"_s) && parser.value(u"zone"_s) != u"all") {
        const auto zone = wholeNumber(parser.value(u"zone"_s), 0, 32767);
        if (!zone) {
            out.error = u"Ο αριθμός ζώνης δεν είναι σωστός: "_s + parser.value(u"zone"_s);
            return out;
        }
        o.zone = *zone;
    } else if (parser.isSet(u"zone"_s) && rule->kind != ReportKind::Summary) {
        out.error = u"Το --zone all ισχύει μόνο για τη σύνοψη."_s;
        return out;
    }

    const bool periodKind = rule->allowed.contains(u"month"_s);
    if (periodKind) {
        if (parser.isSet(u"month"_s) == parser.isSet(u"year"_s)) {
            out.error = u"Δώστε είτε --month ΕΕΕΕ-ΜΜ είτε --year ΕΕΕΕ."_s;
            return out;
        }
        static const QRegularExpression monthForm(u"^(\\d{4})-(\\d{2})$"_s);
        if (parser.isSet(u"month"_s)) {
            const auto m = monthForm.match(parser.value(u"month"_s));
            const auto month = m.hasMatch() ? wholeNumber(m.captured(2), 1, 12) : std::nullopt;
            const auto year =
                m.hasMatch() ? wholeNumber(m.captured(1), kFirstYear, kLastYear) : std::nullopt;
            if (!month || !year) {
                out.error = u"Ο μήνας δεν είναι σωστός (ΕΕΕΕ-ΜΜ, 2000 έως 2255): "_s +
                            parser.value(u"month"_s);
                return out;
            }
            o.year = *year;
            o.month = *month;
        } else {
            const auto year = wholeNumber(parser.value(u"year"_s), kFirstYear, kLastYear);
            if (!year || parser.value(u"year"_s).size() != 4) {
                out.error =
                    u"Το έτος δεν είναι σωστό (ΕΕΕΕ, 2000 έως 2255): "_s + parser.value(u"year"_s);
                return out;
            }
            o.year = *year;
        }
    }
    if (parser.isSet(u"source"_s)) {
        o.source = wholeNumber(parser.value(u"source"_s), 0, 25);
        if (!o.source) {
            out.error = u"Η προέλευση δεν είναι σωστή: "_s + parser.value(u"source"_s);
            return out;
        }
    }
    if (parser.isSet(u"kind"_s)) {
        const QStringList kinds{u"alarm"_s, u"restore"_s, u"all"_s};
        o.eventKind = static_cast<int>(kinds.indexOf(parser.value(u"kind"_s)));
        if (o.eventKind < 0) {
            out.error = u"Ο τύπος συμβάντων δεν είναι σωστός: "_s + parser.value(u"kind"_s);
            return out;
        }
    }
    o.newOnly = parser.isSet(u"new"_s);
    o.archive = parser.isSet(u"archive"_s);
    o.pdf = parser.value(u"pdf"_s);
    o.xlsx = parser.value(u"xlsx"_s);
    if (o.pdf.isEmpty() && o.xlsx.isEmpty()) {
        out.error = u"Λείπει το αρχείο εξόδου (--pdf ή --xlsx)."_s;
        return out;
    }
    out.options = o;
    return out;
}

} // namespace sx::cli
