// Red, green, blue to cyan, magenta, yellow, black.
#include "colour/cmykRows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colour/cmykRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace colour {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** Bytes divided by 255. The quotient of floats is, for every byte, that of doubles rounded to a float. */
template <class DF, class V8> HWY_INLINE hn::Vec<DF> shareOf(DF df, V8 bytes)
{
    const hn::Rebind<int32_t, DF> d32;
    return hn::Div(hn::ConvertTo(df, hn::PromoteTo(d32, bytes)), hn::Set(df, 255.0f));
}

template <size_t Channels, class DF> HWY_INLINE void convertVector(DF df, const uint8_t* from, float* to)
{
    const hn::Rebind<uint8_t, DF> d8;
    hn::Vec<decltype(d8)> red, green, blue, alpha;
    if constexpr (Channels == 3)
        hn::LoadInterleaved3(d8, from, red, green, blue);
    else
        hn::LoadInterleaved4(d8, from, red, green, blue, alpha);
    const auto r = shareOf(df, red), g = shareOf(df, green), b = shareOf(df, blue);
    const auto one = hn::Set(df, 1.0f);
    const auto black = hn::Sub(one, hn::Max(hn::Max(r, g), b));
    const auto n = hn::Sub(one, black);
    hn::StoreInterleaved4(
        hn::Div(hn::Sub(n, r), n), hn::Div(hn::Sub(n, g), n), hn::Div(hn::Sub(n, b), n), black, df, to);
}

void convertPixel(const uint8_t* from, float* to)
{
    const float r = float(from[0] / 255.0), g = float(from[1] / 255.0), b = float(from[2] / 255.0);
    const float black = 1.0f - std::max({r, g, b}), n = 1.0f - black;
    to[0] = (n - r) / n;
    to[1] = (n - g) / n;
    to[2] = (n - b) / n;
    to[3] = black;
}

template <size_t Channels> void convert(const uint8_t* from, float* to, size_t n)
{
    const hn::ScalableTag<float> df;
    const size_t step = hn::Lanes(df);
    size_t x = 0;
    for (; x + step <= n; x += step)
        convertVector<Channels>(df, from + Channels * x, to + 4 * x);
    for (; x < n; ++x)
        convertPixel(from + Channels * x, to + 4 * x);
}

} // namespace

void cmykThree(const uint8_t* from, float* to, size_t n) { convert<3>(from, to, n); }
void cmykFour(const uint8_t* from, float* to, size_t n) { convert<4>(from, to, n); }

} // namespace HWY_NAMESPACE
} // namespace colour
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace colour {

HWY_EXPORT(cmykThree);
HWY_EXPORT(cmykFour);

static size_t pixelsOf(IppiSize i_size) { return size_t(i_size.width) * size_t(i_size.height); }

IppStatus cmykOfThree(const Ipp8u* i_source, int, Ipp32f* o_result, int, IppiSize i_size)
{
    HWY_DYNAMIC_DISPATCH(cmykThree)(i_source, o_result, pixelsOf(i_size));
    return ippStsNoErr;
}

IppStatus cmykOfFour(const Ipp8u* i_source, int, Ipp32f* o_result, int, IppiSize i_size)
{
    HWY_DYNAMIC_DISPATCH(cmykFour)(i_source, o_result, pixelsOf(i_size));
    return ippStsNoErr;
}

} // namespace colour
#endif // HWY_ONCE
