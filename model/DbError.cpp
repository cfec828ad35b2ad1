#include "model/DbError.h"

#include <QRegularExpression>
#include <QSqlError>

#include <optional>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

const QString kCrLf = u"\r\n"_s;

const QString kServerDown =
    u"1. Η σύνδεση του διακομιστή με το δίκτυο δεν είναι διαθέσιμη ή ο διακομιστής δεν λειτουργεί. Βεβαιωθείτε ότι ο διακομιστής βρίσκεται σε λειτουργία και η σύνδεση του με το δίκτυο είναι διαθέσιμη."_s;
const QString kWrongIp =
    u"2. Έχετε καθορίσει λανθασμένη IP διακομιστή. Ελέγξτε τις παραμέτρους τις εφαρμογής."_s;
const QString kWrongPort =
    u"3. Έχετε καθορίσει λανθασμένο PORT διακομιστή. Ελέγξτε τις παραμέτρους τις εφαρμογής."_s;
const QString kLocalNetworkDown =
    u"1. Η σύνδεση του Η/Υ σας με το δίκτυο δεν είναι διαθέσιμη. Τερματίστε την εφαρμογή, επαναφέρετε τη σύνδεση του Η/Υ με το δίκτυο και στη συνέχεια εκτελέσετε και πάλι την εφαρμογή."_s;
const QString kWrongDataSource =
    u"1. Έχετε καθορίσει λανθασμένο όνομα βάσης δεδομένων διακομιστή (data source). Ελέγξτε τις παραμέτρους τις εφαρμογής."_s;
const QString kStartingUpTail =
    u"Η βάση δεδομένων του διακομιστή βρίσκεται σε διαδικασία εκκίνησης. Τερματίστε την εφαρμογή και περιμένετε μερικά λεπτά πριν εκτελέσετε και πάλι την εφαρμογή."_s;
const QString kNotRunningTail =
    u"Η βάση δεδομένων του διακομιστή δεν λειτουργεί. Τερματίστε την εφαρμογή και περιμένετε μερικά λεπτά πριν εκτελέσετε και πάλι την εφαρμογή. Εάν το πρόβλημα παραμένει, ενδέχεται ο διακομιστής να χρειάζεται επανεκκίνηση."_s;
const QString kBadCredentials =
    u"1. Το όνομα ή/και ο κωδικός χρήστη για τη βάση δεδομένων του διακομιστή δεν είναι σωστά. Τερματίστε την εφαρμογή και επικοινωνήστε με το υπεύθυνο διαχείρισης της βάσης δεδομένων."_s;
const QString kShuttingDown =
    u"1. Η βάση δεδομένων του διακομιστή βρίσκεται σε διαδικασία τερματισμού. Τερματίστε την εφαρμογή και περιμένετε μερικά λεπτά πριν εκτελέσετε και πάλι την εφαρμογή."_s;
const QString kDisconnected =
    u"1. Ο διακομιστής ή/και ο Η/Υ σας αποσυνδέθηκε από το δίκτυο. Τερματίστε την εφαρμογή και επαναφέρεται τη σύνδεση του διακομιστή ή/και του Η/Υ σας με το δίκτυο πριν εκτελέσετε και πάλι την εφαρμογή."_s;
const QString kSlowServer =
    u"1. Ο διακομιστής δεν απάντησε έγκαιρα, επειδή είναι φορτωμένος ή κάποια άλλη εργασία κρατά τα δεδομένα. Η σύνδεση διατηρείται και η εφαρμογή θα ξαναδοκιμάσει μόνη της. Εάν το πρόβλημα παραμένει, επικοινωνήστε με τον υπεύθυνο διαχείρισης της βάσης δεδομένων."_s;
const QString kCertificateRejected =
    u"1. Το πιστοποιητικό ασφαλείας του διακομιστή δεν μπόρεσε να επαληθευτεί και η σύνδεση απορρίφθηκε για λόγους ασφαλείας. Ενδέχεται ο διακομιστής να μην είναι αυτός που ορίζουν οι παράμετροι της εφαρμογής ή το πιστοποιητικό του να έχει αλλάξει. Τερματίστε την εφαρμογή και επικοινωνήστε με τον υπεύθυνο διαχείρισης της βάσης δεδομένων."_s;
const QString kUnknownOracle =
    u"- Άγνωστο σφάλμα. Επικοινωνήστε με τους υπεύθυνους διαχείρισης δικτύου και βάσης δεδομένων."_s;
const QString kUnknownProvider =
    u"- Άγνωστο σφάλμα. Επικοινωνήστε με την εταιρία που σας προμήθευσε την εφαρμογή."_s;

QString header(qint32 number, const QString& description)
{
    return u"Παρουσιάστηκε το παρακάτω σφάλμα:"_s + kCrLf + u"Error number: "_s +
           QString::number(number) + kCrLf + u"Error description: "_s + description + kCrLf +
           kCrLf + u"Πιθανά αίτια και προτεινόμενες λύσεις:"_s + kCrLf;
}

QString oracleCauses(QStringView code)
{
    if (code == u"12170")
        return kServerDown + kCrLf + kWrongIp + kCrLf + kWrongPort;
    if (code == u"12560")
        return kLocalNetworkDown;
    if (code == u"12545")
        return kLocalNetworkDown + kCrLf + kWrongIp + kCrLf + kWrongPort;
    if (code == u"12505")
        return kWrongDataSource + kCrLf + u"2. "_s + kStartingUpTail + kCrLf + u"3. "_s +
               kNotRunningTail;
    if (code == u"01017")
        return kBadCredentials;
    if (code == u"12541")
        return u"1. "_s + kNotRunningTail;
    if (code == u"01089")
        return kShuttingDown;
    if (code == u"12528")
        return u"1. "_s + kStartingUpTail;
    if (code == u"03135")
        return kDisconnected;
    return kUnknownOracle;
}

// The Oracle code of a description: drivers put their own text before it.
std::optional<QString> oracleCode(const QString& description)
{
    static const QRegularExpression code(u"ORA-(\\d{5})"_s);
    if (const QRegularExpressionMatch m = code.match(description); m.hasMatch())
        return m.captured(1);
    if (description.startsWith(u"ORA"))
        return description.mid(4, 5);
    return std::nullopt;
}

QString causesFor(DbFailureCause cause)
{
    switch (cause) {
    case DbFailureCause::Unreachable:
        return oracleCauses(u"12170");
    case DbFailureCause::Authentication:
        return oracleCauses(u"01017");
    case DbFailureCause::NoSuchDatabase:
        return kWrongDataSource;
    case DbFailureCause::StartingUp:
        return oracleCauses(u"12528");
    case DbFailureCause::ShuttingDown:
        return oracleCauses(u"01089");
    case DbFailureCause::Slow:
        return kSlowServer;
    case DbFailureCause::CertificateRejected:
        return kCertificateRejected;
    case DbFailureCause::Unknown:
        break;
    }
    return kUnknownProvider;
}

} // namespace

QString explainDbError(qint32 number, const QString& description)
{
    const std::optional<QString> code = oracleCode(description);
    return header(number, description) + (code ? oracleCauses(*code) : kUnknownProvider);
}

QString explainDbError(const DbError& error)
{
    if (oracleCode(error.description) || error.cause == DbFailureCause::Unknown)
        return explainDbError(error.number, error.description);
    return header(error.number, error.description) + causesFor(error.cause);
}

DbFailureCause classifyFailure(const QString& message, const QString& sqlState)
{
    const QString m = message.toLower();
    // SQLSTATE first where the driver gives one; libpq's own connection
    // messages carry none, so the message text decides for those.
    if (sqlState == u"28P01" || sqlState == u"28000")
        return DbFailureCause::Authentication;
    if (sqlState == u"3D000")
        return DbFailureCause::NoSuchDatabase;
    // libpq's own words when TLS verification fails; they also say "connection to server".
    if (m.contains(u"certificate verify failed") || m.contains(u"ssl error: certificate") ||
        (m.contains(u"server certificate for") && m.contains(u"does not match host name")) ||
        m.contains(u"root certificate file") ||
        m.contains(u"could not get server's host name from server certificate"))
        return DbFailureCause::CertificateRejected;
    if (m.contains(u"starting up") || m.contains(u"not yet accepting connections") ||
        m.contains(u"in recovery mode"))
        return DbFailureCause::StartingUp;
    if (m.contains(u"shutting down") || sqlState == u"57P01" || sqlState == u"57P02")
        return DbFailureCause::ShuttingDown;
    if (m.contains(u"password authentication failed") || m.contains(u"no password supplied") ||
        m.contains(u"authentication failed") || m.contains(u"no pg_hba.conf entry"))
        return DbFailureCause::Authentication;
    if (m.contains(u"database \"") && m.contains(u"does not exist"))
        return DbFailureCause::NoSuchDatabase;
    if (m.contains(u"connection refused") || m.contains(u"could not connect") ||
        m.contains(u"timeout expired") || m.contains(u"timed out") ||
        m.contains(u"could not translate host name") || m.contains(u"no route to host") ||
        m.contains(u"network is unreachable") || m.contains(u"server closed the connection") ||
        m.contains(u"connection to server") || m.contains(u"no connection to the server"))
        return DbFailureCause::Unreachable;
    return DbFailureCause::Unknown;
}

DbError dbErrorFromSql(const QSqlError& error)
{
    DbError e;
    bool numeric = false;
    const qint32 native = error.nativeErrorCode().toInt(&numeric);
    e.number = numeric && native != 0 ? native : kProviderErrorNumber;
    QString text = error.databaseText().trimmed();
    const QString driver = error.driverText().trimmed();
    if (text.isEmpty())
        text = driver;
    else if (!driver.isEmpty() && !text.contains(driver))
        text = driver + u": "_s + text;
    e.description = text.isEmpty() ? u"Unknown error"_s : text;
    const QString state = numeric ? QString() : error.nativeErrorCode();
    e.cause = classifyFailure(e.description, state);
    return e;
}

} // namespace sx
