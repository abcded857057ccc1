#pragma once

#include <QtGlobal>

/** One event in the life of a stamp at a port. The numbers are fixed. */
struct GraphHistoryEntry {
    enum HistoryEntryType {
        Sent = 1,
        Arrived = 2,
        Scheduled = 3,
        WaitsForMutex = 4,
        HasMutex = 5,
        Finished = 6
    };
    qint64 stamp = 0;
    qint64 time = 0; ///< nanoseconds of the steady clock
    HistoryEntryType type = Arrived;
};
