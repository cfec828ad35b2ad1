#pragma once

#include <QtGlobal>

namespace sx::sim {

// A unit keeps its events and each point its records in pages of a small
// store; the database mirrors how far each store is written.
inline constexpr qint64 kStorePageBytes = 2048;
inline constexpr qint64 kRecordEntryBytes = 8;
inline constexpr qint64 kEventEntryBytes = 16;

struct StoreCounters {
    qint64 pageBytes = 0; // bytes written in the current page
    qint64 lastPage = 0;  // pages filled so far
};

// Both counters are 0 exactly when the store is empty.
[[nodiscard]] constexpr StoreCounters storeCounters(qint64 entries, qint64 entryBytes)
{
    if (entries <= 0)
        return {};
    const qint64 bytes = entries * entryBytes;
    return {bytes % kStorePageBytes, bytes / kStorePageBytes};
}

} // namespace sx::sim
