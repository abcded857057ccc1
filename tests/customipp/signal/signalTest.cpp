#include "support/FencedMemory.h"

#include <customipp/customipp.h>

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class signalTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(signalTest);

constexpr FencedMemory::Side s_sides[] = {FencedMemory::AgainstEnd, FencedMemory::AgainstStart};

/** A float times 2^-scaleFactor as an integer; long double holds the product exactly. */
Ipp32s converted(float i_value, int i_mode, int i_scaleFactor)
{
    if (std::isnan(i_value))
        return INT_MIN;
    const long double product
        = std::ldexp((long double)(i_value), i_scaleFactor == INT_MIN ? INT_MAX : -i_scaleFactor);
    const long double whole = i_mode == 0 ? std::trunc(product)
        : i_mode == 1                     ? std::nearbyint(product)
                                          : std::round(product);
    return whole >= 2147483647.0L ? INT_MAX : whole <= -2147483648.0L ? INT_MIN : Ipp32s(whole);
}

TEST_P(signalTest, FloatsAreScaledRoundedAndLimited)
{
    std::vector<float> values {0.0f, -0.0f, 0.5f, -0.5f, 1.5f, 2.5f, -2.5f, 0.49999997f, -0.49999997f, 3e9f,
        -3e9f, 2147483648.0f, 2147483520.0f, -2147483648.0f, -2147483904.0f, 1e-44f, 1e38f, NAN, INFINITY,
        -INFINITY, 8388607.5f, 8388609.0f, 1e-30f};
    std::mt19937 random(1);
    for (int i = 0; i < 50; ++i)
        values.push_back(std::ldexp(float(int(random()) >> 8), int(random() % 40) - 30));
    const int count = int(values.size());
    std::vector<Ipp32s> out(values.size());
    for (const int mode : {0, 1, 2, 16, 17, 18})
        for (const int factor :
            {0, 1, 2, 10, 31, 32, 160, 299, 300, 301, INT_MAX, -1, -2, -10, -31, -180, -300, -301, INT_MIN}) {
            ASSERT_EQ(ippsConvert_32f32s_Sfs(values.data(), out.data(), count, IppRoundMode(mode), factor),
                ippStsNoErr);
            for (size_t i = 0; i < values.size(); ++i)
                ASSERT_EQ(out[i], converted(values[i], mode & 15, factor))
                    << values[i] << ", mode " << mode << ", factor " << factor;
        }
}

TEST_P(signalTest, WholeNumbersAreTruncatedToThemselves)
{
    std::vector<float> values(65537);
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = float(i);
    std::vector<Ipp32s> out(values.size());
    ASSERT_EQ(ippsConvert_32f32s_Sfs(values.data(), out.data(), int(out.size()), ippRndHintAccurate, 0),
        ippStsNoErr);
    for (size_t i = 0; i < out.size(); ++i)
        ASSERT_EQ(out[i], int(i));
}

TEST_P(signalTest, EveryLengthIsConvertedAndCopiedInsideItsMemory)
{
    for (const FencedMemory::Side side : s_sides)
        for (int length = 1; length <= 70; ++length) {
            FencedMemory src(size_t(length) * 4, side), dst(size_t(length) * 4, side);
            for (size_t i = 0; i < size_t(length); ++i)
                src.set<float>(i, float(i) * 1.5f - 20.0f);
            const float* from = reinterpret_cast<const float*>(src.data());
            ASSERT_EQ(
                ippsConvert_32f32s_Sfs(from, reinterpret_cast<Ipp32s*>(dst.data()), length, ippRndNear, 1),
                ippStsNoErr);
            for (size_t i = 0; i < size_t(length); ++i)
                ASSERT_EQ(dst.get<Ipp32s>(i), converted(src.get<float>(i), 1, 1)) << length << ": " << i;
            ASSERT_EQ(ippsCopy_32f(from, reinterpret_cast<Ipp32f*>(dst.data()), length), ippStsNoErr);
            for (size_t i = 0; i < size_t(length); ++i)
                ASSERT_EQ(dst.get<float>(i), src.get<float>(i)) << length << ": " << i;
        }
}

/** Each element in turn is the least, then the greatest, of sequences of every length. */
template <class T> void expectExtremes(IppStatus (*i_function)(const T*, int, T*, T*))
{
    std::mt19937 random(3);
    for (const FencedMemory::Side side : s_sides)
        for (const int length :
            {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 257}) {
            FencedMemory memory(size_t(length) * sizeof(T), side);
            for (size_t place = 0; place < size_t(length); ++place) {
                for (size_t i = 0; i < size_t(length); ++i)
                    memory.set<T>(i, T(1000 + random() % 1000));
                T least = 0, greatest = 0;
                const auto run = [&] {
                    return i_function(reinterpret_cast<const T*>(memory.data()), length, &least, &greatest);
                };
                memory.set<T>(place, std::numeric_limits<T>::lowest());
                ASSERT_EQ(run(), ippStsNoErr);
                ASSERT_EQ(least, std::numeric_limits<T>::lowest()) << length << ": " << place;
                memory.set<T>(place, std::numeric_limits<T>::max());
                ASSERT_EQ(run(), ippStsNoErr);
                ASSERT_EQ(greatest, std::numeric_limits<T>::max()) << length << ": " << place;
                memory.set<T>(place, T(1500));
                T expectedLeast = T(1500), expectedGreatest = T(1500);
                for (size_t i = 0; i < size_t(length); ++i) {
                    expectedLeast = std::min(expectedLeast, memory.get<T>(i));
                    expectedGreatest = std::max(expectedGreatest, memory.get<T>(i));
                }
                ASSERT_EQ(run(), ippStsNoErr);
                ASSERT_EQ(least, expectedLeast);
                ASSERT_EQ(greatest, expectedGreatest);
            }
        }
}

TEST_P(signalTest, LeastAndGreatestAreFoundAtEveryPlace)
{
    expectExtremes<Ipp32u>(ippsMinMax_32u);
    expectExtremes<Ipp32s>(ippsMinMax_32s);
    expectExtremes<Ipp64f>(ippsMinMax_64f);
}

TEST_P(signalTest, NotANumberDoesNotCount)
{
    for (int length = 1; length <= 70; ++length) {
        std::vector<double> values(size_t(length), NAN);
        double least = 0, greatest = 0;
        ASSERT_EQ(ippsMinMax_64f(values.data(), length, &least, &greatest), ippStsNoErr);
        EXPECT_TRUE(std::isnan(least) && std::isnan(greatest)) << length;
        for (size_t place = 0; place < values.size(); ++place)
            for (const double value : {-7.5, double(INFINITY), -double(INFINITY)}) {
                values.assign(size_t(length), NAN);
                values[place] = value;
                ASSERT_EQ(ippsMinMax_64f(values.data(), length, &least, &greatest), ippStsNoErr);
                EXPECT_EQ(least, value) << length << ": " << place;
                EXPECT_EQ(greatest, value) << length << ": " << place;
            }
    }
}

TEST_P(signalTest, ZerosGiveTheSameBitsWhateverTheirPlaces)
{
    for (int length = 1; length <= 40; ++length)
        for (unsigned pattern = 0; pattern < 4; ++pattern) {
            std::vector<double> values(size_t(length), 0.0);
            for (size_t i = pattern; i < values.size(); i += pattern + 1)
                values[i] = -0.0;
            double least = 1, greatest = 1;
            ASSERT_EQ(ippsMinMax_64f(values.data(), length, &least, &greatest), ippStsNoErr);
            EXPECT_TRUE(least == 0 && !std::signbit(least));
            EXPECT_TRUE(greatest == 0 && !std::signbit(greatest));
        }
}

TEST(signalCheckTest, PointersThenLengthThenMode)
{
    const float src[2] = {1, 2};
    float copy[2] = {7, 7};
    Ipp32s out[2] = {7, 7};
    EXPECT_EQ(ippsCopy_32f(nullptr, copy, 0), ippStsNullPtrErr);
    EXPECT_EQ(ippsCopy_32f(src, nullptr, 0), ippStsNullPtrErr);
    EXPECT_EQ(ippsConvert_32f32s_Sfs(nullptr, out, 0, IppRoundMode(5), 0), ippStsNullPtrErr);
    EXPECT_EQ(ippsConvert_32f32s_Sfs(src, nullptr, 0, IppRoundMode(5), 0), ippStsNullPtrErr);
    for (const int length : {0, -1, INT_MIN}) {
        EXPECT_EQ(ippsCopy_32f(src, copy, length), ippStsSizeErr);
        EXPECT_EQ(ippsConvert_32f32s_Sfs(src, out, length, IppRoundMode(5), 0), ippStsSizeErr);
    }
    for (const int mode : {3, 15, 19, 32, -1})
        EXPECT_EQ(ippsConvert_32f32s_Sfs(src, out, 2, IppRoundMode(mode), 0), ippStsRoundModeNotSupportedErr);
    EXPECT_EQ(copy[0], 7);
    EXPECT_EQ(out[0], 7);

    const Ipp32s values[1] = {3};
    Ipp32s least = 7, greatest = 8;
    EXPECT_EQ(ippsMinMax_32s(nullptr, 0, &least, &greatest), ippStsNullPtrErr);
    EXPECT_EQ(ippsMinMax_32s(values, 0, nullptr, &greatest), ippStsNullPtrErr);
    EXPECT_EQ(ippsMinMax_32s(values, 0, &least, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsMinMax_32s(values, 0, &least, &greatest), ippStsSizeErr);
    EXPECT_EQ(least, 7);
    EXPECT_EQ(greatest, 8);
}

} // namespace
