#include "matchCases.h"

#include <climits>

namespace {

using namespace match;

TEST(matchCheckTest, ASizeQueryRefusesInItsOrder)
{
    for (const bool isDistance : {false, true}) {
        const auto size = isDistance ? ippiSqrDistanceNormGetBufferSize : ippiCrossCorrNormGetBufferSize;
        const auto says = [&](IppiSize source, IppiSize pattern, int flags) {
            int bytes = 77;
            const IppStatus status = size(source, pattern, flags, &bytes);
            EXPECT_EQ(bytes > 0, status == ippStsNoErr) << bytes;
            return status;
        };
        EXPECT_EQ(size({0, 1}, {1, 1}, -1, nullptr), ippStsNullPtrErr);
        EXPECT_EQ(says({0, 1}, {1, 1}, 3), ippStsSizeErr);
        EXPECT_EQ(says({1, -1}, {1, 1}, 0), ippStsSizeErr);
        EXPECT_EQ(says({1, 1}, {0, 1}, 0), ippStsSizeErr);
        EXPECT_EQ(says({1, 1}, {1, 0}, 0), ippStsSizeErr);
        EXPECT_EQ(says({4, 4}, {5, 4}, ippiROIValid), ippStsSizeErr);
        EXPECT_EQ(says({4, 4}, {4, 5}, ippiROIValid | 0x300), ippStsSizeErr);
        EXPECT_EQ(says({4, 4}, {5, 5}, ippiROIFull), ippStsNoErr);
        EXPECT_EQ(says({4, 4}, {5, 5}, ippiROISame), ippStsNoErr);
        for (const int bad : {3, 0xFF, 0x300, 0xFF00, 0x30000, 0xFF0000, 0x1000000, INT_MIN})
            EXPECT_EQ(says({4, 4}, {2, 2}, bad), ippStsAlgTypeErr) << bad;
        for (const int algorithm : {int(ippAlgAuto), int(ippAlgDirect), int(ippAlgFFT)})
            EXPECT_EQ(says({4, 4}, {2, 2}, algorithm), ippStsNoErr);
        EXPECT_EQ(says({4, 4}, {2, 2}, ippiNormCoefficient), isDistance ? ippStsAlgTypeErr : ippStsNoErr);
        EXPECT_EQ(says({INT_MAX, 4}, {2, 2}, ippiROIFull), ippStsExceededSizeErr);
        EXPECT_EQ(says({60000, 60000}, {60000, 60000}, ippiROISame), ippStsExceededSizeErr);
    }
}

template <class T> void expectChecksOf(const Calls<T>& i_calls)
{
    std::vector<T> source(64, T(1)), pattern(64, T(1));
    std::vector<Ipp32f> result(256, 5.0f);
    std::vector<Ipp8u> work(1 << 20);
    const int step = 8 * int(sizeof(T));
    struct Case {
        IppStatus status;
        bool src, tpl, dst, buffer;
        IppiSize source, pattern;
        int srcStep, tplStep, dstStep, flags;
    };
    const IppiSize none {0, 0}, four {4, 4}, two {2, 2}, five {5, 4};
    const int coefficient = i_calls.isDistance ? int(ippiNormCoefficient) : 0x300;
    const std::vector<Case> cases {
        {ippStsNullPtrErr, false, true, true, true, none, none, 0, 0, 0, -1},
        {ippStsNullPtrErr, true, false, true, true, none, none, 0, 0, 0, -1},
        {ippStsNullPtrErr, true, true, false, true, none, none, 0, 0, 0, -1},
        {ippStsNullPtrErr, true, true, true, false, none, none, 0, 0, 0, -1},
        {ippStsSizeErr, true, true, true, true, none, two, 0, 0, 0, -1},
        {ippStsSizeErr, true, true, true, true, four, none, 0, 0, 0, -1},
        {ippStsSizeErr, true, true, true, true, four, five, 0, 0, 0, ippiROIValid | 0x300},
        {ippStsStepErr, true, true, true, true, four, two, 0, step, 32, -1},
        {ippStsStepErr, true, true, true, true, four, two, step, -4, 32, -1},
        {ippStsStepErr, true, true, true, true, four, two, step, step, 0, -1},
        {ippStsStepErr, true, true, true, true, four, two, 4 * int(sizeof(T)) - 1, step, 32, 0},
        {ippStsStepErr, true, true, true, true, four, two, step, 2 * int(sizeof(T)) - 1, 32, 0},
        {ippStsStepErr, true, true, true, true, four, two, step, step, 19, ippiROIFull | coefficient},
        {ippStsStepErr, true, true, true, true, four, two, step, step, 15, ippiROISame | coefficient},
        {ippStsStepErr, true, true, true, true, four, two, step, step, 11, ippiROIValid | coefficient},
        {ippStsAlgTypeErr, true, true, true, true, four, two, step, step, 1, 0x30000},
        {ippStsAlgTypeErr, true, true, true, true, four, two, step, step, 20, coefficient},
        {ippStsAlgTypeErr, true, true, true, true, four, two, step, step, 20, 3},
        {ippStsNoErr, true, true, true, true, four, two, 4 * int(sizeof(T)), 2 * int(sizeof(T)), 20, 2},
    };
    for (size_t i = 0; i < cases.size(); ++i) {
        const Case& c = cases[i];
        EXPECT_EQ(i_calls.run(c.src ? source.data() : nullptr, c.srcStep, c.source,
                      c.tpl ? pattern.data() : nullptr, c.tplStep, c.pattern, c.dst ? result.data() : nullptr,
                      c.dstStep, c.flags, c.buffer ? work.data() : nullptr),
            c.status)
            << i_calls.name << ", case " << i;
        const bool untouched = std::all_of(result.begin(), result.end(), [](float v) { return v == 5.0f; });
        EXPECT_EQ(untouched, c.status != ippStsNoErr) << i_calls.name << ", case " << i;
    }
}

TEST(matchCheckTest, EveryFunctionChecksInItsOrder)
{
    for (const auto& calls : bothMeasures<Ipp8u>())
        expectChecksOf(calls);
    for (const auto& calls : bothMeasures<Ipp16u>())
        expectChecksOf(calls);
    for (const auto& calls : bothMeasures<Ipp32f>())
        expectChecksOf(calls);
}

} // namespace
