#include "model/FaultCodes.h"

using namespace Qt::StringLiterals;

namespace sx {

std::optional<UnitFaultInfo> unitFault(QStringView code)
{
    struct Row {
        QStringView code;
        QStringView text;
        bool service;
    };
    static constexpr Row kTable[] = {
        {u"0", u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 10", true},
        {u"1", u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 20", true},
        {u"2", u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 30", true},
        {u"3", u"ΧΑΜΗΛΗ ΕΦΕΔΡΙΚΗ ΜΠΑΤΑΡΙΑ", false},
        {u"4", u"ΗΜΕΡΟΜΗΝΙΑ ΚΑΙ ΩΡΑ ΔΕΝ ΕΧΟΥΝ ΡΥΘΜΙΣΤΕΙ", false},
        {u"5", u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 40", true},
        {u"6", u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 60", true},
        {u"7", u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 70", true},
        {u"8", u"ΠΡΟΒΛΗΜΑ ΜΕ ΚΩΔΙΚΟ ΑΡΙΘΜΟ 50", true},
    };
    for (const Row& r : kTable) {
        if (r.code == code)
            return UnitFaultInfo{r.text.toString(), r.service};
    }
    return std::nullopt;
}

QString serviceLineText()
{
    return u"* ΠΑΡΑΚΑΛΩ ΚΑΛΕΣΤΕ ΤΟ SERVICE *"_s;
}

QString sensorFaultPrefix()
{
    return u"ΠΡΟΒΛΗΜΑ ΣΤΟ ΑΙΣΘΗΤΗΡΙΟ "_s;
}

} // namespace sx
