#include "sim/RequestHandler.h"

#include "model/Dialect.h"
#include "model/Formatting.h"
#include "model/Schema.h"
#include "model/SqlDateTime.h"
#include "sim/EventLog.h"
#include "sim/UnitCodes.h"
#include "sim/WriteTransaction.h"

#include <QDateTime>
#include <QSet>

using namespace Qt::StringLiterals;

namespace sx::sim {

namespace {

namespace TR = schema::TerminalRequests;

// A field of plain decimal digits (at most nine, so it fits an int).
std::optional<int> digitsField(QStringView field)
{
    if (field.isEmpty() || field.size() > 9)
        return std::nullopt;
    for (QChar c : field) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
    }
    return field.toInt();
}

} // namespace

bool isExtendedNotification(const QString& model, const QString& softver)
{
    static constexpr QStringView kAlwaysExtended[] = {
        u"SENTORAX-1C", u"SENTORAX-1D", u"SENTORAX-1E", u"SENTORAX-1F",
        u"SENTORAX-1G", u"SENTORAX-2D", u"SENTORAX-2E", u"SENTORAX-2F",
    };
    for (QStringView m : kAlwaysExtended) {
        if (model.contains(m))
            return true;
    }
    if (model.contains(u"SENTORAX-1A") || model.contains(u"SENTORAX-1B"))
        return unitVersionNumber(softver) >= 115;
    return false;
}

RequestDecision decideRequest(const UnitFacts& unit, std::optional<qint64> type,
                              const std::optional<QString>& attributes)
{
    RequestDecision d;
    d.type = static_cast<int>(type.value_or(0));
    if (!unit.exists || unit.online == 0) {
        d.reply = kReplyOffline;
        return d;
    }
    if (unit.online != 1) {
        d.reply = kReplyProgramming;
        return d;
    }
    d.reply = kReplyWrongCode;
    if (!attributes)
        return d;
    const QStringList parts = attributes->split(u';');
    QList<int> fields;
    for (const QString& p : parts) {
        const auto v = digitsField(p);
        if (!v)
            return d;
        fields << *v;
    }
    const QString& code = parts[0];
    if (code.size() < 4 || code.size() > 8)
        return d;
    if (unit.code && *unit.code != code)
        return d;

    // From here the code is right; the fields decide.
    switch (d.type) {
    case kRequestNotification: {
        const bool extended = isExtendedNotification(unit.model, unit.softver);
        if (fields.size() == 2) {
            if (!extended) {
                d.reply = kReplyNotSupported;
                return d;
            }
            if (fields[1] > 2)
                return d;
        } else if (fields.size() == 3) {
            if (extended || fields[1] == 2) {
                d.reply = kReplyNotSupported;
                return d;
            }
            if (fields[1] > 1 || fields[2] > 24)
                return d;
        } else {
            return d;
        }
        d.state = fields[1];
        d.reply = kReplyDone;
        return d;
    }
    case kRequestRelayB:
        if (fields.size() != 2 || fields[1] > 1)
            return d;
        d.state = fields[1];
        d.reply = kReplyDone;
        return d;
    case kRequestBypass:
        if (fields.size() != 3 || fields[1] < 1 || fields[1] > 20 || fields[2] > 1)
            return d;
        if (!unit.usedPoints.contains(fields[1])) {
            d.reply = kReplyNotSupported;
            return d;
        }
        d.point = fields[1];
        d.state = fields[2];
        d.reply = kReplyDone;
        return d;
    default:
        d.reply = kReplyNotSupported;
        return d;
    }
}

QString bypassKey(const QString& serial, int point)
{
    return serial + u'#' + QString::number(point);
}

RequestHandler::RequestHandler(Database& db, RequestPolicy policy, WallClock wallClock)
    : m_db(db), m_policy(policy), m_wallClock(std::move(wallClock))
{
    if (!m_wallClock)
        m_wallClock = [] { return fromQDateTime(QDateTime::currentDateTime()); };
}

DbError RequestHandler::poll(qint64 nowMs, int* answered)
{
    if (answered)
        *answered = 0;
    Rows rows = m_db.read(u"SELECT TrmReq_SyI_Serialnumber, TrmReq_Requesttype, TrmReq_Attributes "
                          "FROM Terminal_Requests WHERE TrmReq_Requestcompleted=0"_s);
    QList<std::pair<QString, Pending>> pending;
    QSet<QString> seen;
    while (rows.next()) {
        Pending p{rows.text(0), rows.integer(1), rows.text(2)};
        // Identical rows are one request to us: one UPDATE answers them all.
        const QString key = (p.serial ? u'v' + *p.serial : u"n"_s) + QChar(0x1F) +
                            (p.type ? QString::number(*p.type) : u"n"_s) + QChar(0x1F) +
                            (p.attributes ? u'v' + *p.attributes : u"n"_s);
        if (seen.contains(key))
            continue;
        seen.insert(key);
        pending.append({key, p});
    }
    if (!rows.ok())
        return rows.error();

    for (auto it = m_firstSeen.begin(); it != m_firstSeen.end();) {
        if (seen.contains(it.key()))
            ++it;
        else
            it = m_firstSeen.erase(it);
    }
    for (const auto& [key, request] : pending) {
        const qint64 first = m_firstSeen.value(key, nowMs);
        m_firstSeen.insert(key, first);
        if (m_policy.noAnswer || nowMs - first < m_policy.answerDelayMs)
            continue;
        if (DbError e = answer(request); e.isError())
            return e;
        m_firstSeen.remove(key);
        if (answered)
            ++*answered;
    }
    return {};
}

UnitFacts RequestHandler::unitFacts(const QString& serial, DbError& error)
{
    UnitFacts facts;
    Rows unit = m_db.readFirst(u"SELECT SyI_Online, SyI_Model, SyI_Softver FROM Systems_Info "
                               "WHERE SyI_Serialnumber="_s +
                               sqlQuote(serial));
    if (unit.next()) {
        facts.exists = true;
        facts.online = static_cast<int>(unit.integer(0).value_or(-1)); // missing: programming
        facts.model = unit.text(1).value_or(QString());
        facts.softver = unit.text(2).value_or(QString());
    }
    if ((error = unit.error()).isError() || !facts.exists)
        return facts;
    Rows points =
        m_db.read(u"SELECT SeI_Sensornumber FROM Sensors_Info WHERE SeI_SyI_Serialnumber="_s +
                  sqlQuote(serial) + u" AND SeI_Used=1"_s);
    while (points.next())
        facts.usedPoints << static_cast<int>(points.integer(0).value_or(0));
    if ((error = points.error()).isError())
        return facts;
    facts.code = unitCode(m_db, serial, &error);
    return facts;
}

QString RequestHandler::whereOf(const Pending& r) const
{
    auto match = [this](QStringView column, const SqlValue& v, bool present) {
        return present ? column.toString() + u'=' + m_db.literal(v)
                       : column.toString() + u" IS NULL"_s;
    };
    return match(TR::TrmReq_SyI_Serialnumber, r.serial.value_or(QString()), r.serial.has_value()) +
           u" AND "_s + match(TR::TrmReq_Requesttype, r.type.value_or(0), r.type.has_value()) +
           u" AND "_s +
           match(TR::TrmReq_Attributes, r.attributes.value_or(QString()),
                 r.attributes.has_value()) +
           u" AND TrmReq_Requestcompleted=0"_s;
}

DbError RequestHandler::answer(const Pending& request)
{
    if (DbError e = beginWrite(m_db); e.isError())
        return e;
    DbError e;
    int reply = kReplyOffline;
    if (m_policy.forcedReply) {
        reply = *m_policy.forcedReply;
    } else if (request.serial) {
        const UnitFacts facts = unitFacts(*request.serial, e);
        if (!e.isError()) {
            const RequestDecision d = decideRequest(facts, request.type, request.attributes);
            reply = d.reply;
            if (d.reply == kReplyDone)
                e = apply(*request.serial, d);
        }
    }
    if (!e.isError()) {
        e = m_db.updateRows(TR::table,
                            {{TR::TrmReq_Requestcompleted.toString(), qint64(1)},
                             {TR::TrmReq_Requestreply.toString(), qint64(reply)}},
                            whereOf(request));
    }
    if (e.isError()) {
        (void)m_db.rollback();
        return e;
    }
    return m_db.commit();
}

DbError RequestHandler::apply(const QString& serial, const RequestDecision& d)
{
    namespace C = schema::SystemsCurrentCondition;
    const QString where = C::SyCC_SyI_Serialnumber.toString() + u'=' + sqlQuote(serial);
    auto setCondition = [&](QStringView column) -> DbError {
        qint64 changed = 0;
        if (DbError e =
                m_db.updateRows(C::table, {{column.toString(), qint64(d.state)}}, where, &changed);
            e.isError() || changed > 0)
            return e;
        return m_db.insertRow(C::table, {{C::SyCC_SyI_Serialnumber.toString(), serial},
                                         {column.toString(), qint64(d.state)}});
    };
    switch (d.type) {
    case kRequestNotification:
        return setCondition(C::SyCC_Alarmcondition);
    case kRequestRelayB:
        return setCondition(C::SyCC_RelayBcondition);
    case kRequestBypass:
        break;
    default:
        return {};
    }

    const QString key = bypassKey(serial, d.point);
    if (d.state == 0) {
        m_bypasses.remove(key);
        return {};
    }
    const qint64 now = m_wallClock();
    m_bypasses.insert(key, now + static_cast<qint64>(m_policy.bypassHours) * 3600);
    // A bypassed point raises no alarm.
    if (DbError e = m_db.updateRows(schema::SensorsCurrentCondition::table,
                                    {{u"SeCC_Alarmcondition"_s, qint64(0)}},
                                    u"SeCC_SyI_Serialnumber="_s + sqlQuote(serial) +
                                        u" AND SeCC_Sensornumber="_s + QString::number(d.point));
        e.isError())
        return e;
    EventRow ev;
    ev.secs = now;
    ev.source = kSourceBypass;
    // Origin 2: neither a telephone call (0) nor the unit's panel (1), i.e. the console.
    ev.info = u"2;%1;%2"_s.arg(d.point).arg(m_policy.bypassHours);
    return appendEvent(m_db, serial, ev);
}

void RequestHandler::expireBypasses(qint64 nowSecs)
{
    for (auto it = m_bypasses.begin(); it != m_bypasses.end();) {
        if (it.value() <= nowSecs)
            it = m_bypasses.erase(it);
        else
            ++it;
    }
}

} // namespace sx::sim
