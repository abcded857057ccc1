#include "pixelCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

using Matrix = Ipp32f[3][4];

constexpr Matrix s_sepia {
    {0.393f, 0.769f, 0.189f, 0}, {0.349f, 0.686f, 0.168f, 0}, {0.272f, 0.534f, 0.131f, 0}};
constexpr Matrix s_video {
    {1.164f, 0, 1.596f, -222.921f}, {1.164f, -0.392f, -0.813f, 135.576f}, {1.164f, 2.017f, 0, -276.836f}};
constexpr Matrix s_identity {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};

} // namespace

namespace oracle {

/** The matrix that the oracle works with. */
static const Matrix* s_matrix = &s_sepia;

struct ColorTwist {
    static void pixel(const Ipp8u* i_from, Ipp8u* o_to)
    {
        const float c[3] = {float(i_from[0]), float(i_from[1]), float(i_from[2])};
        for (int i = 0; i < 3; ++i) {
            const float* t = (*s_matrix)[i];
            const float products[3] = {t[0] * c[0], t[1] * c[1], t[2] * c[2]};
            const float v = ((products[0] + products[1]) + products[2]) + t[3];
            o_to[i] = std::isnan(v) ? Ipp8u(0) : Ipp8u(std::nearbyint(std::min(std::max(v, 0.0f), 255.0f)));
        }
    }
};

} // namespace oracle

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class colorTwistTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(colorTwistTest);

void expectMatrix(const Matrix& i_matrix)
{
    oracle::s_matrix = &i_matrix;
#define CUSTOMIPP_TWIST_CASE(check, symbol, channels)                                                        \
    pixels::check<oracle::ColorTwist>(                                                                       \
        #symbol, channels, [&](const Ipp8u* src, int srcStep, Ipp8u* dst, int dstStep, IppiSize size) {      \
            return symbol(src, srcStep, dst, dstStep, size, i_matrix);                                       \
        });
#undef CUSTOMIPP_TWIST
#define CUSTOMIPP_TWIST(symbol, op, T, channels)                                                             \
    CUSTOMIPP_TWIST_CASE(expectPixels, symbol, channels)                                                     \
    CUSTOMIPP_TWIST_CASE(expectNothingBeyondMemory, symbol, channels)
#include <customipp/colorTwist.def>
}

TEST_P(colorTwistTest, EveryVariantGivesTheOraclesPixels)
{
    expectMatrix(s_sepia);
    expectMatrix(s_video);
}

TEST_P(colorTwistTest, NumbersWithoutBoundAndWithoutValueEndInTheRange)
{
    const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    expectMatrix({{inf, 0, 0, 0}, {-inf, 1, 0, 0}, {0, 0, 1, inf}});
    expectMatrix({{nan, 0, 0, 0}, {0, -nan, 1, 5}, {0, 0, 1, -nan}});
    expectMatrix({{nan, 0, 0, 0}, {0, -inf, 0, -0.0f}, {inf, -inf, 1, 0}});
    expectMatrix({{3e38f, 3e38f, -3e38f, 0}, {-3e38f, -3e38f, 3e38f, 0}, {1e-45f, 1e-45f, 1e-45f, 0.5f}});
    expectMatrix({{1e9f, 0, 0, 0}, {-1e9f, 0, 0, 0}, {0, 0, 0, 4294967296.0f}});
}

TEST_P(colorTwistTest, SumsFarBeyondAByteEndInTheRange)
{
    // Up to 32000 and beyond: below that 16 bits hold them, with a sign.
    for (const float factor : {1.0f, 41.8f, 42.5f, 43.0f, 86.0f, 300.0f})
        expectMatrix(
            {{factor, factor, factor, 0}, {-factor, -factor, -factor, 0}, {factor, -factor, 0.5f, 0}});
    for (const float shift : {31700.0f, 31990.0f, 32767.0f, 32768.0f, 65536.0f})
        expectMatrix({{-1, 0, 0, shift}, {1, 0, 0, -shift}, {0, 0, 1, shift - 31990}});
}

TEST_P(colorTwistTest, TiesGoToTheEvenNumberAndTheIdentityCopies)
{
    const Matrix half {{1, 0, 0, 0.5f}, {0, 1, 0, 0.5f}, {0, 0, 1, -0.5f}};
    expectMatrix(half);
    const Ipp8u from[12] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 254, 255, 255};
    Ipp8u to[12];
    ASSERT_EQ(ippiColorTwist32f_8u_C3R(from, 12, to, 12, {4, 1}, half), ippStsNoErr);
    const Ipp8u expected[12] = {0, 2, 2, 4, 4, 4, 6, 8, 8, 254, 255, 254};
    EXPECT_TRUE(std::equal(to, to + 12, expected));
    expectMatrix(s_identity);
    expectMatrix({{0, 0, 0, 12.5f}, {0, 0, 0, 13.5f}, {0, 0, 0, -3}});
}

TEST_P(colorTwistTest, EveryColourIsTwisted)
{
    const auto twistBy = [](const Matrix& matrix) {
        return [&matrix](const Ipp8u* src, int srcStep, Ipp8u* dst, int dstStep, IppiSize size) {
            return ippiColorTwist32f_8u_C3R(src, srcStep, dst, dstStep, size, matrix);
        };
    };
    EXPECT_EQ(pixels::checksumOfEveryColour(twistBy(s_sepia)), 0x3844dbfcu);
    EXPECT_EQ(pixels::checksumOfEveryColour(twistBy(s_video)), 0x6201996au);
    EXPECT_EQ(pixels::checksumOfEveryColourWithAlpha(
                  [](const Ipp8u* src, int srcStep, Ipp8u* dst, int dstStep, IppiSize size) {
                      return ippiColorTwist32f_8u_AC4R(src, srcStep, dst, dstStep, size, s_sepia);
                  }),
        0x3844dbfcu);
}

template <class Function> void expectChecks(const char* i_symbol, Function&& i_function)
{
    SCOPED_TRACE(i_symbol);
    const Ipp8u src[16] = {};
    Ipp8u dst[16];
    std::fill_n(dst, 16, Ipp8u(7));
    EXPECT_EQ(i_function(nullptr, 0, dst, 0, {0, 0}, s_sepia), ippStsNullPtrErr);
    EXPECT_EQ(i_function(src, 0, nullptr, 0, {0, 0}, s_sepia), ippStsNullPtrErr);
    EXPECT_EQ(i_function(src, 0, dst, 0, {0, 0}, nullptr), ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, {1, 0}, {-1, 1}, {1, -1}})
        EXPECT_EQ(i_function(src, 0, dst, 0, size, s_sepia), ippStsSizeErr);
    for (const int step : {0, -8}) {
        EXPECT_EQ(i_function(src, step, dst, 8, {2, 1}, s_sepia), ippStsStepErr);
        EXPECT_EQ(i_function(src, 8, dst, step, {2, 1}, s_sepia), ippStsStepErr);
    }
    EXPECT_EQ(std::count(dst, dst + 16, 7), 16);
    EXPECT_EQ(i_function(src, 1, dst, 1, {2, 2}, s_sepia), ippStsNoErr) << "rows may overlap";
    EXPECT_EQ(dst[0], 0);
}

TEST(colorTwistCheckTest, PointersThenSizesThenSteps)
{
#undef CUSTOMIPP_TWIST
#define CUSTOMIPP_TWIST(symbol, op, T, channels) expectChecks(#symbol, symbol);
#include <customipp/colorTwist.def>
}

} // namespace
