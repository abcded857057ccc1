#pragma once

#include <QFutureSynchronizer>
#include <QThread>
#include <QtConcurrent>
#include <algorithm>
#include <customipp/types.h>
#include <vector>

namespace frame {

/** Consecutive rows of an image that one task works on. */
struct RowBand {
    unsigned first;
    unsigned rows;
};

/**
 * Divides the rows of an image among tasks: at most one task a row, all bands of equal height but the last,
 * which takes the remainder too. Below 1 the machine's ideal number of threads is meant.
 */
inline std::vector<RowBand> splitRows(int i_numThreads, unsigned i_height)
{
    const int wanted = i_numThreads < 1 ? std::max(1, QThread::idealThreadCount()) : i_numThreads;
    const unsigned workers = std::min(unsigned(wanted), i_height);
    std::vector<RowBand> bands;
    bands.reserve(workers);
    for (unsigned i = 0; i < workers; ++i) {
        const unsigned band = i_height / workers;
        const unsigned first = i * band;
        bands.push_back({first, i + 1 == workers ? i_height - first : band});
    }
    return bands;
}

/**
 * Runs a row-wise operation in bands on the global thread pool and waits for all of them; the caller does no
 * band itself. With exactly one thread the operation is one ordinary call. The status is that of the first
 * band; the others are not looked at.
 *
 * @param i_operation takes the first row and the number of rows.
 */
template <class Operation>
IppStatus runInBands(int i_numThreads, unsigned i_height, const Operation& i_operation)
{
    if (i_numThreads == 1)
        return i_operation(0u, i_height);
    QFutureSynchronizer<IppStatus> tasks;
    for (const RowBand& band : splitRows(i_numThreads, i_height))
        tasks.addFuture(
            QtConcurrent::run([&i_operation, band] { return i_operation(band.first, band.rows); }));
    tasks.waitForFinished();
    const auto futures = tasks.futures();
    return futures.isEmpty() ? i_operation(0u, i_height) : futures.front().result();
}

} // namespace frame
