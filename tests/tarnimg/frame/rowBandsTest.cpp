#include "frame/rowBands.h"
#include <support/skipUnderTsan.h>

#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <thread>

using frame::runInBands;
using frame::splitRows;

TEST(rowBandsTest, TheLastBandTakesTheRemainder)
{
    const auto bands = splitRows(3, 7);
    ASSERT_EQ(bands.size(), 3u);
    EXPECT_EQ(bands[0].first, 0u);
    EXPECT_EQ(bands[0].rows, 2u);
    EXPECT_EQ(bands[1].first, 2u);
    EXPECT_EQ(bands[1].rows, 2u);
    EXPECT_EQ(bands[2].first, 4u);
    EXPECT_EQ(bands[2].rows, 3u);
}

TEST(rowBandsTest, ThereAreNoMoreBandsThanRows)
{
    const auto bands = splitRows(100, 4);
    ASSERT_EQ(bands.size(), 4u);
    for (const auto& band : bands)
        EXPECT_EQ(band.rows, 1u);
}

TEST(rowBandsTest, BelowOneTheIdealNumberOfThreadsIsMeant)
{
    const auto ideal = std::size_t(QThread::idealThreadCount());
    EXPECT_EQ(splitRows(0, 10000).size(), ideal);
    EXPECT_EQ(splitRows(-5, 10000).size(), ideal);
}

TEST(rowBandsTest, OneThreadIsAnOrdinaryCall)
{
    const auto caller = std::this_thread::get_id();
    const IppStatus status = runInBands(1, 9, [&](unsigned first, unsigned rows) {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        EXPECT_EQ(first, 0u);
        EXPECT_EQ(rows, 9u);
        return ippStsDivByZero;
    });
    EXPECT_EQ(status, ippStsDivByZero);
}

TEST(rowBandsTest, EachRowIsDoneOnceAndNotByTheCaller)
{
    SKIP_WITHOUT_SIGHT_OF_QTS_THREADS();
    const auto caller = std::this_thread::get_id();
    std::mutex mutex;
    std::multiset<unsigned> done;
    const IppStatus status = runInBands(4, 10, [&](unsigned first, unsigned rows) {
        EXPECT_NE(std::this_thread::get_id(), caller);
        const std::lock_guard lock(mutex);
        for (unsigned y = first; y < first + rows; ++y)
            done.insert(y);
        return ippStsNoErr;
    });
    EXPECT_EQ(status, ippStsNoErr);
    ASSERT_EQ(done.size(), 10u);
    for (unsigned y = 0; y < 10; ++y)
        EXPECT_EQ(done.count(y), 1u);
}

TEST(rowBandsTest, TheStatusIsThatOfTheFirstBand)
{
    SKIP_WITHOUT_SIGHT_OF_QTS_THREADS();
    const auto failing = [](unsigned failingRow) {
        return [failingRow](
                   unsigned first, unsigned) { return first == failingRow ? ippStsSizeErr : ippStsNoErr; };
    };
    EXPECT_EQ(runInBands(2, 10, failing(0)), ippStsSizeErr);
    EXPECT_EQ(runInBands(2, 10, failing(5)), ippStsNoErr);
}
