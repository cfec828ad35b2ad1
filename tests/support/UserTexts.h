#pragma once
// The texts a user reads in the console's boxes, word for word, in one place:
// a test compares against these and never against the product's own constants.
#include <QString>

namespace sx::test::texts {

using namespace Qt::StringLiterals;

inline const QString kApp = u"SENTORAX Monitor"_s;

// The explanation box of a failed connection or query.
inline const QString kErrorHeader = u"Παρουσιάστηκε το παρακάτω σφάλμα:\r\nError number: "_s;
inline const QString kCausesHeading = u"\r\n\r\nΠιθανά αίτια και προτεινόμενες λύσεις:\r\n"_s;
inline QString errorHeader(qint32 number, const QString& description)
{
    return kErrorHeader + QString::number(number) + u"\r\nError description: "_s + description +
           kCausesHeading;
}
inline const QString kCauseServer =
    u"1. Η σύνδεση του διακομιστή με το δίκτυο δεν είναι διαθέσιμη ή ο διακομιστής δεν λειτουργεί. Βεβαιωθείτε ότι ο διακομιστής βρίσκεται σε λειτουργία και η σύνδεση του με το δίκτυο είναι διαθέσιμη."_s;
inline const QString kCauseIp =
    u"2. Έχετε καθορίσει λανθασμένη IP διακομιστή. Ελέγξτε τις παραμέτρους τις εφαρμογής."_s;
inline const QString kCausePort =
    u"3. Έχετε καθορίσει λανθασμένο PORT διακομιστή. Ελέγξτε τις παραμέτρους τις εφαρμογής."_s;
inline const QString kCausesNetwork = kCauseServer + u"\r\n"_s + kCauseIp + u"\r\n"_s + kCausePort;
inline const QString kCauseLocal =
    u"1. Η σύνδεση του Η/Υ σας με το δίκτυο δεν είναι διαθέσιμη. Τερματίστε την εφαρμογή, επαναφέρετε τη σύνδεση του Η/Υ με το δίκτυο και στη συνέχεια εκτελέσετε και πάλι την εφαρμογή."_s;
inline const QString kCauseDataSource =
    u"1. Έχετε καθορίσει λανθασμένο όνομα βάσης δεδομένων διακομιστή (data source). Ελέγξτε τις παραμέτρους τις εφαρμογής."_s;
inline const QString kStarting =
    u"Η βάση δεδομένων του διακομιστή βρίσκεται σε διαδικασία εκκίνησης. Τερματίστε την εφαρμογή και περιμένετε μερικά λεπτά πριν εκτελέσετε και πάλι την εφαρμογή."_s;
inline const QString kNotRunning =
    u"Η βάση δεδομένων του διακομιστή δεν λειτουργεί. Τερματίστε την εφαρμογή και περιμένετε μερικά λεπτά πριν εκτελέσετε και πάλι την εφαρμογή. Εάν το πρόβλημα παραμένει, ενδέχεται ο διακομιστής να χρειάζεται επανεκκίνηση."_s;
inline const QString kCauseCredentials =
    u"1. Το όνομα ή/και ο κωδικός χρήστη για τη βάση δεδομένων του διακομιστή δεν είναι σωστά. Τερματίστε την εφαρμογή και επικοινωνήστε με το υπεύθυνο διαχείρισης της βάσης δεδομένων."_s;
inline const QString kCauseShutdown =
    u"1. Η βάση δεδομένων του διακομιστή βρίσκεται σε διαδικασία τερματισμού. Τερματίστε την εφαρμογή και περιμένετε μερικά λεπτά πριν εκτελέσετε και πάλι την εφαρμογή."_s;
inline const QString kCauseDisconnected =
    u"1. Ο διακομιστής ή/και ο Η/Υ σας αποσυνδέθηκε από το δίκτυο. Τερματίστε την εφαρμογή και επαναφέρεται τη σύνδεση του διακομιστή ή/και του Η/Υ σας με το δίκτυο πριν εκτελέσετε και πάλι την εφαρμογή."_s;
inline const QString kUnknownOracle =
    u"- Άγνωστο σφάλμα. Επικοινωνήστε με τους υπεύθυνους διαχείρισης δικτύου και βάσης δεδομένων."_s;
inline const QString kUnknownProvider =
    u"- Άγνωστο σφάλμα. Επικοινωνήστε με την εταιρία που σας προμήθευσε την εφαρμογή."_s;

// Start-up and the protected change of the settings.
inline const QString kWelcome =
    u"Καλωσορίσατε στην εφαρμογή SENTORAX Monitor.\r\nΠαρακαλώ πατήστε 'ΟΚ' για να καθορίσετε τις παραμέτρους λειτουργίας της εφαρμογής."_s;
inline const QString kSetupRefused =
    u"H εφαρμογή SENTORAX Monitor δεν μπορεί να ξεκινήσει εάν δεν καθοριστούν οι παράμετροι λειτουργίας της.\r\nΠατήστε 'ΟΚ' για καθορισμό ή 'Άκυρο' για να τερματίσετε την εφαρμογή."_s;
inline const QString kChangeOrEnd =
    u"\r\n\r\nΠατήστε 'Ναι' για να αλλάξετε τις παραμέτρους της εφαρμογής ή 'Όχι' για να τερματίσετε την εφαρμογή."_s;
inline const QString kPressOk = u"Πατήστε 'ΟΚ' για να τερματίσετε την εφαρμογή."_s;
inline const QString kChangeTitle = u"SENTORAX Monitor / Αλλαγή παραμέτρων εφαρμογής"_s;
inline const QString kCodePrompt = u"Παρακαλώ εισάγετε τον κωδικό προστασίας παραμέτρων"_s;
inline const QString kWrongCode = u"Λάθος κωδικός !"_s;
inline const QString kChanged =
    kPressOk +
    u"\r\nΟι αλλαγές θα ισχύσουν απο την επόμενη φορά που θα εκτελεστεί η εφαρμογή SENTORAX Monitor"_s;
inline const QString kFileWait = u"Άνοιγμα αρχείου βάσης δεδομένων."_s;
inline const QString kServerWait = u"Επιχειρείται σύνδεση με τον διακομιστή.\r\n"_s;

// The checks of the settings dialog's OK.
inline const QString kNoDataSource =
    u"Δεν έχετε συμπληρώσει τo πεδίo 'Όνομα βάσης δεδομένων (data source)'"_s;
inline const QString kNoPort = u"Δεν έχετε συμπληρώσει τo πεδίo 'Port διακομιστή (server Port)'"_s;
inline const QString kPortNotNumber =
    u"To πεδίo 'Port διακομιστή (server Port)' πρέπει να είναι αριθμός."_s;
inline const QString kPortList =
    u"To πεδίo 'Port διακομιστή (server Port)' πρέπει να έχει έναν αριθμό ή τόσους αριθμούς, χωρισμένους με κόμμα, όσες είναι και οι διευθύνσεις του πεδίου 'IP διακομιστή (server IP)'."_s;
inline const QString kNoFile =
    u"Δεν έχετε συμπληρώσει τo πεδίo 'Αρχείο βάσης δεδομένων (sxdb.mdb)'"_s;
inline const QString kNoCodes =
    u"Δεν έχετε συμπληρώσει τα πεδία 'Κωδικός προστασίας παραμέτρων' και 'Επιβεβαίωση κωδικού'"_s;
inline const QString kCodesDiffer =
    u"Tα πεδία 'Κωδικός προστασίας παραμέτρων' και 'Επιβεβαίωση κωδικού' δεν συμφωνούν"_s;

// The unit commands and their replies.
inline const QString kRelayOff = u"ΑΠΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
inline const QString kRelayOn = u"ΕΝΕΡΓΟΠΟΙΗΜΕΝΟΣ"_s;
inline const QString kBadCode = u"ΛΑΘΟΣ ΚΩΔΙΚΟΣ"_s;
inline const QString kBadChoice = u"ΛΑΘΟΣ ΕΠΙΛΟΓΗ"_s;
inline const QString kUnitOffline = u"ΣΥΝΔΕΣΗ ΜΕ ΣΥΣΤΗΜΑ ΜΗ ΔΙΑΘΕΣΙΜΗ"_s;
inline const QString kUnitProgramming = u"ΣΥΣΤΗΜΑ ΣΕ ΔΙΑΔΙΚΑΣΙΑ ΠΡΟΓΡΑΜΜΑΤΙΣΜΟΥ"_s;
inline const QString kNotAvailable = u"Η συγκεκριμένη λειτουργία δέν είναι διαθέσιμη στο σύστημα"_s;
inline const QString kDelayRange =
    u"Η καθυστέρηση τηλεφωνικής ειδοποίησης πρέπει να είναι μεταξύ 0 και 24 ΩΡΕΣ"_s;
inline const QString kCodeLength = u"Ο κωδικός πρέπει να έχει μήκος απο 4 εώς 8 νούμερα"_s;
inline const QString kCodeDigits = u"Ο κωδικός πρέπει να αποτελείται μόνο απο αριθμούς"_s;
inline const QString kNoPointsInUse =
    u"Δεν υπάρχουν ενεργοποιημένα σημεία προς παρακολούθηση στο σύστημα !"_s;
inline const QString kNoAnswer =
    u"Η εκτέλεση της εντολής είναι αδύνατη.\r\nΒεβαιωθείτε ότι η εφαρμογή SENTORAX Server βρίσκεται σε λειτουργία και είναι συνδεδεμένη"_s;

// The messages view with nothing to show.
inline const QString kNoNewMessages = u"ΔΕΝ ΥΠΑΡΧΟΥΝ ΝΕΑ ΜΗΝΥΜΑΤΑ"_s;
inline const QString kArchiveEmpty = u"ΤΟ ΑΡΧΕΙΟ ΜΗΝΥΜΑΤΩΝ ΕΙΝΑΙ ΚΕΝΟ"_s;

} // namespace sx::test::texts
