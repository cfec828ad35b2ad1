#pragma once

#include "model/Database.h"

#include <QHash>
#include <QList>

#include <functional>
#include <optional>

namespace sx::sim {

// Whether the unit takes the two-field telephone notification request (with
// the automatic state) rather than the three-field one with a delay.
[[nodiscard]] bool isExtendedNotification(const QString& model, const QString& softver);

// What the server knows about the unit a request names.
struct UnitFacts {
    bool exists = false;
    int online = 0;
    QString model;
    QString softver;
    std::optional<QString> code; // nothing: any well-formed code is taken
    QList<int> usedPoints;
};

// The outcome of a request and, when it is carried out, what it asks for.
struct RequestDecision {
    int reply = 0;
    int type = 0;
    int state = 0; // notification state, relay on/off, bypass on/off
    int point = 0; // bypass only
};

// The unit's answer to a request: 3 unknown or unreachable unit, 4 unit being
// programmed, 2 wrong code or malformed fields, 5 a form or feature the model
// lacks, 1 done.
[[nodiscard]] RequestDecision decideRequest(const UnitFacts& unit, std::optional<qint64> type,
                                            const std::optional<QString>& attributes);

struct RequestPolicy {
    int answerDelayMs = 1000;       // a request is answered once it has waited this long
    std::optional<int> forcedReply; // answer everything with this, changing nothing
    bool noAnswer = false;          // leave every request pending
    int bypassHours = 24; // requests carry no duration; the console's bypass lasts this long
};

// Points taken out of service by a bypass, until a wall-clock time.
using BypassBook = QHash<QString, qint64>; // key: serial + '#' + point
[[nodiscard]] QString bypassKey(const QString& serial, int point);

// Answers the rows of Terminal_Requests as the server application does:
// carries each request out on the unit, records its event and writes the reply.
class RequestHandler {
public:
    using WallClock = std::function<qint64()>;

    RequestHandler(Database& db, RequestPolicy policy, WallClock wallClock = {});

    // Looks at the pending rows; answers those first seen at least the answer
    // delay before `nowMs` (a monotonic time). `answered` counts the rows written.
    DbError poll(qint64 nowMs, int* answered = nullptr);

    [[nodiscard]] const BypassBook& bypasses() const { return m_bypasses; }
    // Forgets bypasses that have run out.
    void expireBypasses(qint64 nowSecs);

private:
    struct Pending {
        std::optional<QString> serial;
        std::optional<qint64> type;
        std::optional<QString> attributes;
    };

    [[nodiscard]] UnitFacts unitFacts(const QString& serial, DbError& error);
    DbError answer(const Pending& request);
    DbError apply(const QString& serial, const RequestDecision& decision);
    [[nodiscard]] QString whereOf(const Pending& request) const;

    Database& m_db;
    RequestPolicy m_policy;
    WallClock m_wallClock;
    QHash<QString, qint64> m_firstSeen;
    BypassBook m_bypasses;
};

} // namespace sx::sim
