#include "ui/notify/AlarmNotifier.h"

#include "ui/AppContext.h"

#include <algorithm>

namespace sx {

namespace {

// Puts `n` in place of the notice of the same unit, or last.
void replaceOrAppend(QList<FleetNotice>& list, const FleetNotice& n)
{
    for (FleetNotice& have : list) {
        if (have.serial == n.serial) {
            have = n;
            return;
        }
    }
    list.append(n);
}

} // namespace

AlarmNotifier::AlarmNotifier(const Clock& clock, Send send, Withdraw withdraw)
    : m_clock(clock), m_send(std::move(send)), m_withdraw(std::move(withdraw))
{
}

void AlarmNotifier::send(const FleetNotice& notice)
{
    if (m_enabled && m_send)
        m_send(notice);
}

void AlarmNotifier::readFailed()
{
    if (m_lost)
        return;
    m_lost = true;
    send(connectionLostNotice());
}

void AlarmNotifier::update(const FleetSummary& fleet)
{
    if (m_lost) {
        m_lost = false;
        send(connectionBackNotice());
    }
    if (!m_started) {
        // What is already wrong at start-up is on the screen; no burst of old alarms.
        m_started = true;
        for (const UnitSummary& u : fleet.units)
            m_known.insert(u.serial, u);
        return;
    }
    const QDateTime now = m_clock.now();
    QHash<QString, UnitSummary> known;
    known.reserve(fleet.units.size());
    QList<FleetNotice> due;
    QHash<QString, UnitSummary> told; // what was known of the units in `due`
    for (const UnitSummary& u : fleet.units) {
        const auto it = m_known.constFind(u.serial);
        // A unit taken into use later starts as known, like those at start-up.
        if (it == m_known.cend()) {
            known.insert(u.serial, u);
            continue;
        }
        const std::optional<FleetNotice> notice = fleetNotice(*it, u);
        const auto last = m_lastSent.constFind(u.serial);
        if (notice && last != m_lastSent.cend() && last->msecsTo(now) < kUnitQuietMs) {
            // Too soon after the last one: keep the old state, so that what is
            // still wrong when the minute is over is told then.
            known.insert(u.serial, *it);
            continue;
        }
        known.insert(u.serial, u);
        if (notice) {
            told.insert(u.serial, *it);
            due.append(*notice);
        }
    }
    m_known = std::move(known);
    if (due.isEmpty() || !m_enabled)
        return;
    qsizetype standing = m_live.size();
    for (const FleetNotice& n : std::as_const(due)) {
        standing += std::none_of(m_live.cbegin(), m_live.cend(),
                                 [&n](const FleetNotice& l) { return l.serial == n.serial; });
    }
    if (m_digest.isEmpty() && standing <= kLiveNotices) {
        for (const FleetNotice& n : std::as_const(due)) {
            m_lastSent.insert(n.serial, now);
            replaceOrAppend(m_live, n);
            send(n);
        }
        return;
    }
    // A busy fleet gets one digest a minute; what it could not tell waits for the next.
    if (m_lastDigest.isValid() && m_lastDigest.msecsTo(now) < kUnitQuietMs) {
        for (auto it = told.cbegin(); it != told.cend(); ++it)
            m_known.insert(it.key(), it.value());
        return;
    }
    m_lastDigest = now;
    // The units' own notices make way for the digest, which names them too.
    for (const FleetNotice& n : std::exchange(m_live, {})) {
        replaceOrAppend(m_digest, n);
        if (m_withdraw)
            m_withdraw(n.serial);
    }
    for (const FleetNotice& n : std::as_const(due)) {
        m_lastSent.insert(n.serial, now);
        replaceOrAppend(m_digest, n);
    }
    send(fleetDigest(m_digest));
}

void AlarmNotifier::gone(const FleetNotice& notice)
{
    if (notice.overview)
        m_digest.clear();
    else
        m_live.removeIf([&notice](const FleetNotice& l) { return l.serial == notice.serial; });
}

} // namespace sx
