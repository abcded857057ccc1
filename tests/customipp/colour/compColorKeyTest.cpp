#include "pixelCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class compColorKeyTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(compColorKeyTest);

/** Lanes of few values, so that a pixel is often equal to the key or nearly so. */
template <class T> class FewValues {
public:
    T operator()()
    {
        m_state = m_state * 1664525u + 1013904223u;
        return m_state >> 24 < 200 ? T(5) : T(m_state >> 20 & 7);
    }

private:
    unsigned m_state = 5;
};

/** call(first, step, second, step, dst, step, size) for a key of fives. */
template <class T, int Channels, class Call> void expectKeyed(const char* i_symbol, Call&& i_call)
{
    FewValues<T> few;
    PixelSource<T> random(41);
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        SCOPED_TRACE(movers::nameOf(i_symbol, size, layout));
        const int lanes = size.width * Channels;
        Plane<T> a(lanes, size.height, movers::layoutAt(layout)),
            b(lanes, size.height, movers::layoutAt(layout + 1));
        Plane<T> dst(lanes, size.height, movers::layoutAt(layout + count % 3)), expected(lanes, size.height);
        a.fill(few);
        b.fill(random);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                bool isKey = true;
                for (int c = 0; c < Channels; ++c)
                    isKey = isKey && a.get(x * Channels + c, y) == T(5);
                for (int c = 0; c < Channels; ++c)
                    expected.set(x * Channels + c, y, (isKey ? b : a).get(x * Channels + c, y));
            }
        ASSERT_EQ(i_call(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(dst, expected));
        ASSERT_TRUE(dst.frameIsIntact() && a.frameIsIntact() && b.frameIsIntact());

        dst.copyFrom(a);
        i_call(dst.data(), dst.step(), b.data(), b.step(), dst.data(), dst.step(), size);
        ASSERT_TRUE(samePixels(dst, expected)) << "the first source is the destination";
        dst.copyFrom(b);
        i_call(a.data(), a.step(), dst.data(), dst.step(), dst.data(), dst.step(), size);
        ASSERT_TRUE(samePixels(dst, expected)) << "the second source is the destination";
        ASSERT_TRUE(dst.frameIsIntact());
    });
    for (const FencedMemory::Side side : movers::s_sides)
        for (const int width : movers::everyFencedWidth()) {
            const size_t count = size_t(width) * Channels;
            FencedMemory a(count * sizeof(T), side), b(count * sizeof(T), side), dst(count * sizeof(T), side);
            for (size_t i = 0; i < count; ++i) {
                a.set<T>(i, T(5));
                b.set<T>(i, T(i));
            }
            const int step = int(count * sizeof(T));
            ASSERT_EQ(i_call(reinterpret_cast<const T*>(a.data()), step, reinterpret_cast<const T*>(b.data()),
                          step, reinterpret_cast<T*>(dst.data()), step, IppiSize {width, 1}),
                ippStsNoErr);
            for (size_t i = 0; i < count; ++i)
                ASSERT_EQ(dst.get<T>(i), T(i)) << width;
        }
}

#undef CUSTOMIPP_COLOUR_KEY
#define CUSTOMIPP_COLOUR_KEY(symbol, op, T)                                                                  \
    expectKeyed<T, 1>(                                                                                       \
        #symbol, [](const T* a, int aStep, const T* b, int bStep, T* dst, int dstStep, IppiSize size) {      \
            return symbol(a, aStep, b, bStep, dst, dstStep, size, 5);                                        \
        });
#undef CUSTOMIPP_COLOUR_KEYS
#define CUSTOMIPP_COLOUR_KEYS(symbol, op, T, channels)                                                       \
    expectKeyed<T, channels>(                                                                                \
        #symbol, [](const T* a, int aStep, const T* b, int bStep, T* dst, int dstStep, IppiSize size) {      \
            T key[4] = {5, 5, 5, 5};                                                                         \
            return symbol(a, aStep, b, bStep, dst, dstStep, size, key);                                      \
        });

TEST_P(compColorKeyTest, TheSecondImageShowsWhereTheFirstHasTheKey) {
#include <customipp/compColorKey.def>
}

TEST_P(compColorKeyTest, EveryChannelOfTheKeyCounts)
{
    constexpr int width = 70;
    for (int wrong = 0; wrong < 5; ++wrong) {
        Ipp8u a[4 * width], b[4 * width], dst[4 * width], key[4] = {1, 2, 3, 255};
        for (int i = 0; i < 4 * width; ++i) {
            a[i] = Ipp8u(key[i % 4] - (i % 4 == wrong));
            b[i] = Ipp8u(i);
        }
        ASSERT_EQ(ippiCompColorKey_8u_C4R(a, 4 * width, b, 4 * width, dst, 4 * width, {width, 1}, key),
            ippStsNoErr);
        EXPECT_TRUE(std::equal(dst, dst + 4 * width, wrong < 4 ? a : b)) << wrong;
    }
    const Ipp8u a[9] = {1, 2, 3, 1, 2, 4, 0, 0, 0}, b[9] = {9, 8, 7, 9, 8, 7, 9, 8, 7};
    Ipp8u dst[9], key[3] = {1, 2, 3};
    ASSERT_EQ(ippiCompColorKey_8u_C3R(a, 9, b, 9, dst, 9, {3, 1}, key), ippStsNoErr);
    const Ipp8u expected[9] = {9, 8, 7, 1, 2, 4, 0, 0, 0};
    EXPECT_TRUE(std::equal(dst, dst + 9, expected));
}

TEST(compColorKeyCheckTest, PointersThenSizesThenSteps)
{
    Ipp8u a[64] = {}, b[64] = {}, dst[64] = {}, key[4] = {};
    const auto call
        = [&](const Ipp8u* first, const Ipp8u* second, Ipp8u* to, Ipp8u* with, int step, IppiSize size) {
              return ippiCompColorKey_8u_C4R(first, step, second, 8, to, 8, size, with);
          };
    EXPECT_EQ(call(nullptr, b, dst, key, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(call(a, nullptr, dst, key, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(call(a, b, nullptr, key, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(call(a, b, dst, nullptr, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(call(a, b, dst, key, 0, {0, 1}), ippStsSizeErr);
    EXPECT_EQ(call(a, b, dst, key, 0, {1, -1}), ippStsSizeErr);
    EXPECT_EQ(call(a, b, dst, key, 0, {1, 1}), ippStsStepErr);
    EXPECT_EQ(ippiCompColorKey_8u_C1R(a, 8, b, 0, dst, 8, {1, 1}, 0), ippStsStepErr);
    EXPECT_EQ(ippiCompColorKey_8u_C3R(a, 8, b, 8, dst, -8, {1, 1}, key), ippStsStepErr);
    EXPECT_EQ(call(a, b, dst, key, 1, {1, 2}), ippStsNoErr) << "rows may overlap";
}

} // namespace
