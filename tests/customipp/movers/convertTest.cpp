#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <cmath>
#include <memory>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class convertTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(convertTest);

/** One rounding mode as an operation on pixels. */
template <int Mode> struct Rounded {
    static constexpr bool oneChannel = false;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        o_dst[0] = oracle::Convert::rounded<D>(i_src[0], Mode);
    }
};

/** Everything that could be rounded or limited wrongly, as often as a row needs to take every way. */
std::vector<float> difficultFloats()
{
    std::vector<float> floats {NAN, -NAN, INFINITY, -INFINITY, 0.0f, -0.0f, 3e9f, -3e9f, 2147483648.0f,
        -2147483648.0f, 4294967296.0f, 1e30f, -1e30f, 1e-30f, -1e-30f, 1e-44f, 8388607.5f, 8388608.0f,
        12582912.0f, -12582912.0f};
    for (const int whole : {0, 1, 2, 3, 4, 126, 127, 128, 129, 253, 254, 255, 256, 257, 32766, 32767, 32768,
             32769, 65534, 65535, 65536, 65537})
        for (const float fraction : {0.0f, 0.25f, 0.5f, 0.75f}) {
            const float value = float(whole) + fraction;
            for (const float near : {value, std::nextafter(value, -1.0f), std::nextafter(value, 1e9f)}) {
                floats.push_back(near);
                floats.push_back(-near);
            }
        }
    return floats;
}

template <class D, class Function> void expectRounded(const char* i_symbol, Function&& i_function)
{
    const auto call = [&](int mode) {
        return [&i_function, mode](const Ipp32f* src, int srcStep, D* dst, int dstStep, IppiSize size) {
            return i_function(src, srcStep, dst, dstStep, size, IppRoundMode(mode));
        };
    };
    movers::expectMove<Rounded<0>, Ipp32f, 1, D, 1>(i_symbol, call(ippRndZero));
    movers::expectMove<Rounded<1>, Ipp32f, 1, D, 1>(i_symbol, call(ippRndNear));
    movers::expectMove<Rounded<2>, Ipp32f, 1, D, 1>(i_symbol, call(ippRndFinancial));

    const std::vector<float> floats = difficultFloats();
    const int count = int(floats.size());
    std::vector<D> out(floats.size());
    for (const int mode : {0, 1, 2, 16, 17, 18}) {
        ASSERT_EQ(i_function(floats.data(), 4 * count, out.data(), int(sizeof(D)) * count, {count, 1},
                      IppRoundMode(mode)),
            ippStsNoErr);
        for (size_t i = 0; i < floats.size(); ++i)
            EXPECT_EQ(out[i], oracle::Convert::rounded<D>(floats[i], mode & 15))
                << i_symbol << ", mode " << mode << ": " << floats[i];
    }
    for (const int mode : {3, 4, 15, 19, 32, 33, -1, -16}) {
        D untouched = 7;
        EXPECT_EQ(i_function(floats.data(), 4, &untouched, 4, {1, 1}, IppRoundMode(mode)),
            ippStsRoundModeNotSupportedErr)
            << i_symbol << ", mode " << mode;
        EXPECT_EQ(untouched, 7);
    }
}

#undef CUSTOMIPP_MOVE_ROUNDED
#define CUSTOMIPP_MOVE_ROUNDED(symbol, op, S, D) expectRounded<D>(#symbol, symbol);

TEST_P(convertTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/convert.def>
}

TEST_P(convertTest, ThreeModesOfOneHalf)
{
    const float halves[] = {0.5f, 1.5f, 2.5f, -0.5f, 254.5f, 255.5f, 3e9f, NAN};
    const struct {
        IppRoundMode mode;
        int expected[8];
    } rows[] = {{ippRndZero, {0, 1, 2, 0, 254, 255, 255, 0}}, {ippRndNear, {0, 2, 2, 0, 254, 255, 255, 0}},
        {ippRndFinancial, {1, 2, 3, 0, 255, 255, 255, 0}}};
    for (const auto& row : rows) {
        Ipp8u out[8] = {};
        ASSERT_EQ(ippiConvert_32f8u_C1R(halves, 32, out, 8, {8, 1}, row.mode), ippStsNoErr);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(out[i], row.expected[i]) << "mode " << row.mode << ": " << halves[i];
    }
    const float bytes[] = {127.6f, -128.5f, -128.4f, NAN};
    Ipp8s out[4] = {};
    ASSERT_EQ(ippiConvert_32f8s_C1R(bytes, 16, out, 4, {4, 1}, ippRndNear), ippStsNoErr);
    EXPECT_EQ(out[0], 127);
    EXPECT_EQ(out[1], -128);
    EXPECT_EQ(out[2], -128);
    EXPECT_EQ(out[3], -128);
}

TEST_P(convertTest, AnImageBeyondTheCacheIsWrittenWithoutItsPadding)
{
    // 2100 * 4100 floats are more than 32 MB. An odd destination cannot be streamed to.
    for (const int offset : {0, 1}) {
        const IppiSize size {2100, 4100};
        const size_t srcStep = 2101, dstStep = 8404, dstBytes = dstStep * size_t(size.height) + 64;
        const std::unique_ptr<Ipp8u[]> src(new Ipp8u[srcStep * size_t(size.height)]),
            dst(new Ipp8u[dstBytes]);
        for (size_t i = 0; i < srcStep * size_t(size.height); ++i)
            src[i] = Ipp8u(i * 7 + i / 251);
        std::fill_n(dst.get(), dstBytes, Ipp8u(0xA5));
        ASSERT_EQ(ippiConvert_8u32f_C1R(src.get(), int(srcStep),
                      reinterpret_cast<Ipp32f*>(dst.get() + offset), int(dstStep), size),
            ippStsNoErr);
        size_t wrong = 0;
        for (size_t y = 0; y < size_t(size.height); ++y) {
            const Ipp8u* row = dst.get() + offset + y * dstStep;
            for (size_t x = 0; x < size_t(size.width); ++x) {
                Ipp32f value;
                std::memcpy(&value, row + 4 * x, 4);
                wrong += value != Ipp32f(src[y * srcStep + x]);
            }
            for (size_t i = 4 * size_t(size.width); i < dstStep; ++i)
                wrong += row[i] != 0xA5;
        }
        EXPECT_EQ(wrong, 0u);
    }
}

} // namespace
