#include "customipp/arithmetic/pointwiseCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class accumulateTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(accumulateTest);

/** call(src1, step, src2, step, sums, step, size); squares take one source for both. */
template <class T, class Call> void expectSums(const char* i_symbol, bool i_square, Call&& i_call)
{
    PixelSource<T> random;
    PixelSource<float> randomSum(9);
    for (const int width : everyWidth())
        for (const int height : everyHeight())
            for (const Layout layout : {Layout {0, 0}, Layout {0, 3}, Layout {12, 1}, Layout {64, 0}}) {
                SCOPED_TRACE(
                    std::string(i_symbol) + " " + std::to_string(width) + " x " + std::to_string(height));
                Plane<T> a(width, height, layout), b(width, height, {4, 5});
                Plane<float> sums(width, height, layout), start(width, height), expected(width, height);
                a.fill(random);
                b.fill(random);
                start.fill(randomSum);
                const Plane<T>& second = i_square ? a : b;
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x) {
                        const volatile float product = float(a.get(x, y)) * float(second.get(x, y));
                        expected.set(x, y, start.get(x, y) + product);
                    }
                sums.copyFrom(start);
                const IppiSize size {width, height};
                ASSERT_EQ(i_call(a.data(), a.step(), b.data(), b.step(), sums.data(), sums.step(), size),
                    ippStsNoErr);
                ASSERT_TRUE(samePixels(sums, expected));
                ASSERT_TRUE(sums.frameIsIntact() && a.frameIsIntact() && b.frameIsIntact());

                sums.copyFrom(start);
                pointwise::inTwoBands(size, [&](int y, IppiSize band) {
                    i_call(pointwise::rowOf(a, y), a.step(), pointwise::rowOf(b, y), b.step(),
                        pointwise::rowOf(sums, y), sums.step(), band);
                });
                ASSERT_TRUE(samePixels(sums, expected)) << "in two bands";
            }
}

#undef CUSTOMIPP_ACCUMULATE_BINARY
#define CUSTOMIPP_ACCUMULATE_BINARY(symbol, op, T)                                                           \
    expectSums<T>(#symbol, false, [](auto... arguments) { return symbol(arguments...); });

#undef CUSTOMIPP_ACCUMULATE_UNARY
#define CUSTOMIPP_ACCUMULATE_UNARY(symbol, op, T)                                                            \
    expectSums<T>(                                                                                           \
        #symbol, true, [](auto* a, int aStep, auto*, int, auto* sums, int sumsStep, IppiSize size) {         \
            return symbol(a, aStep, sums, sumsStep, size);                                                   \
        });

TEST_P(accumulateTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/addProduct.def>
#include <customipp/addSquare.def>
}

TEST_P(accumulateTest, ProductAndSumAreRoundedApart)
{
    // The exact product is 1 + 2^-11 + 2^-24, the last term of which is lost: a fused sum would keep it.
    const float factor = 1 + 0x1p-12f;
    float sum = -(1 + 0x1p-11f);
    ASSERT_EQ(ippiAddProduct_32f_C1IR(&factor, 4, &factor, 4, &sum, 4, {1, 1}), ippStsNoErr);
    EXPECT_EQ(sum, 0);
    const Ipp16u word = 65535;
    sum = -4294836225.0f;
    ASSERT_EQ(ippiAddSquare_16u32f_C1IR(&word, 2, &sum, 4, {1, 1}), ippStsNoErr);
    EXPECT_EQ(sum, 0);
    sum = std::numeric_limits<float>::quiet_NaN();
    ASSERT_EQ(ippiAddSquare_16u32f_C1IR(&word, 2, &sum, 4, {1, 1}), ippStsNoErr);
    EXPECT_TRUE(std::isnan(sum));
}

} // namespace
