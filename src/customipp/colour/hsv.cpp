// Red, green, blue to hue, saturation, value and back, all of them bytes.
#include "pixels.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colour/hsv.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "quarters-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

// Quotients go through floats, of which each vector holds a quarter of the pixels. Quarter k of bytes is byte
// k of the 32-bit lanes; of bytes that were widened to even and odd lanes of 16 bits, it is a half of the
// lanes of either.

/** Numbers of 16 bits that belong to even and odd bytes. */
template <class V16> struct Halves {
    V16 even;
    V16 odd;
};

template <class D> HWY_INLINE auto widen(D d, hn::Vec<D> v) -> Halves<hn::Vec<hn::Repartition<uint16_t, D>>>
{
    const hn::Repartition<uint16_t, decltype(d)> d16;
    const auto v16 = hn::BitCast(d16, v);
    return {hn::And(v16, hn::Set(d16, 0x00FF)), hn::ShiftRight<8>(v16)};
}

/** Quarter k as floats; the last two are 65536 times as great. The numbers are below 2^15. */
template <int K, class V16> HWY_INLINE auto quarter(Halves<V16> v)
{
    const hn::Repartition<int32_t, hn::DFromV<V16>> d32;
    const hn::Repartition<float, hn::DFromV<V16>> df;
    const auto half = hn::BitCast(d32, K % 2 == 0 ? v.even : v.odd);
    return hn::ConvertTo(df, hn::And(half, hn::Set(d32, K < 2 ? 0x0000FFFF : int32_t(0xFFFF0000))));
}

/**
 * factor * a / b, rounded, for a product of at most 255 b. The product is exact, and so the quotient lies on
 * a tie only where it should. (An estimated reciprocal, corrected, takes longer.) 0 / 0 gives NaN, whose low
 * bytes are 0.
 */
template <class VF> HWY_INLINE VF roundedRatio(float factor, VF a, VF b)
{
    const hn::DFromV<VF> df;
    return hn::Add(hn::Div(hn::Mul(a, hn::Set(df, factor)), b), hn::Set(df, integerInFloat));
}

/**
 * The circle of hues has six sectors, each between two neighbours of red, yellow, green, cyan, blue, magenta.
 * The sector follows from three comparisons: bit 0 of the index says R < G, bit 1 G < B, bit 2 R < B.
 */
alignas(16) constexpr uint8_t sectorOf[16] = {0, 1, 5, 0, 0, 2, 4, 3};

struct RGBToHSV {
    template <size_t Channels, class D> HWY_INLINE Quarters<D> vector(D d, const uint8_t* from) const
    {
        const auto rgb = loadPlanes<Channels>(d, from);
        const auto r = rgb.first, g = rgb.second, b = rgb.third;
        const auto greatest = hn::Max(hn::Max(r, g), b), least = hn::Min(hn::Min(r, g), b);
        const auto middle = hn::Xor(hn::Xor(hn::Xor(r, g), b), hn::Xor(greatest, least));
        const auto span = hn::Sub(greatest, least);

        const auto index = hn::Or(hn::Or(hn::IfThenElseZero(hn::Lt(r, g), hn::Set(d, 1)),
                                      hn::IfThenElseZero(hn::Lt(g, b), hn::Set(d, 2))),
            hn::IfThenElseZero(hn::Lt(r, b), hn::Set(d, 4)));
        const auto sector = hn::TableLookupBytes(hn::LoadDup128(d, sectorOf), index);
        // In a sector of an odd number the way leads from its end to its begin.
        const auto odd = hn::Ne(hn::And(sector, hn::Set(d, 1)), hn::Zero(d));
        const auto part = hn::IfThenElse(odd, hn::Sub(greatest, middle), hn::Sub(middle, least));

        const auto spans = widen(d, span), sectors16 = widen(d, sector), parts = widen(d, part);
        const Halves<decltype(spans.even)> turns {hn::Add(hn::Mul(sectors16.even, spans.even), parts.even),
            hn::Add(hn::Mul(sectors16.odd, spans.odd), parts.odd)};
        const auto values = widen(d, greatest);
        return joinPlane(d, hueAndSaturation<0>(turns, spans, values),
            hueAndSaturation<1>(turns, spans, values), hueAndSaturation<2>(turns, spans, values),
            hueAndSaturation<3>(turns, spans, values), greatest);
    }

    template <int K, class V16>
    static HWY_INLINE auto hueAndSaturation(Halves<V16> turns, Halves<V16> spans, Halves<V16> values)
    {
        const auto span = quarter<K>(spans);
        return joinBytes(
            roundedRatio(42.5f, quarter<K>(turns), span), roundedRatio(255.0f, span, quarter<K>(values)));
    }

    void pixel(const uint8_t* from, uint8_t* to) const
    {
        const int r = from[0], g = from[1], b = from[2];
        const int greatest = std::max({r, g, b}), span = greatest - std::min({r, g, b});
        int turns = 0;
        if (greatest == r)
            turns = g - b + (g < b ? 6 * span : 0);
        else if (greatest == g)
            turns = 2 * span + b - r;
        else
            turns = 4 * span + r - g;
        to[0] = roundedQuotient(85 * turns, 2 * span);
        to[1] = roundedQuotient(255 * span, greatest);
        to[2] = uint8_t(greatest);
    }

    /** To nearest, ties to even; 0 / 0 is 0. */
    static uint8_t roundedQuotient(int a, int b)
    {
        if (b == 0)
            return 0;
        const int floor = a / b, twice = 2 * (a % b);
        return uint8_t(floor + (twice > b || (twice == b && floor % 2 != 0)));
    }
};

/**
 * Two of the channels are the value and the least one, M; the third lies between them, with a distance from
 * the value that grows from one end of a sixth of the circle to the other. Thirds of the circle differ only
 * in whose turn it is.
 */
struct HSVToRGB {
    static constexpr int third = 85; // of the hues; 255 is 0 again
    static constexpr int whole = 255 * third; // saturation times the greatest distance within a third

    template <size_t Channels, class D> HWY_INLINE Quarters<D> vector(D d, const uint8_t* from) const
    {
        const auto hsv = loadPlanes<Channels>(d, from);
        const auto h = hsv.first, s = hsv.second, v = hsv.third;
        const auto thirds = hn::Set(d, third);
        const auto beyondFirst = hn::Sub(h, thirds), beyondSecond = hn::Sub(beyondFirst, thirds);
        const auto inSecond = hn::Lt(beyondFirst, thirds), inThird = hn::Lt(beyondSecond, thirds);
        // Modulo a third: a difference below 0 turns great.
        auto within = hn::Min(h, beyondFirst);
        within = hn::Min(within, hn::Sub(within, thirds));
        within = hn::Min(within, hn::Sub(within, thirds));
        const auto twice = hn::Add(within, within);
        const auto distance = hn::Or(hn::SaturatedSub(twice, thirds), hn::SaturatedSub(thirds, twice));

        const auto values = widen(d, v), saturations = widen(d, s), distances = widen(d, distance);
        const auto least = productBy255(d, values, widen(d, hn::Not(s)));
        const hn::DFromV<decltype(values.even)> d16;
        const auto wholes = hn::Set(d16, whole);
        const Halves<decltype(values.even)> shares {
            hn::Sub(wholes, hn::Mul(saturations.even, distances.even)),
            hn::Sub(wholes, hn::Mul(saturations.odd, distances.odd))};
        const auto between = planeOfQuarters(d, middleOf<0>(values, shares), middleOf<1>(values, shares),
            middleOf<2>(values, shares), middleOf<3>(values, shares));

        const auto secondHalf = hn::Lt(thirds, twice);
        const auto one = hn::IfThenElse(secondHalf, between, v),
                   other = hn::IfThenElse(secondHalf, v, between);
        return quartersOf(d,
            Planes<D> {hn::IfThenElse(inThird, other, hn::IfThenElse(inSecond, least, one)),
                hn::IfThenElse(inThird, least, hn::IfThenElse(inSecond, one, other)),
                hn::IfThenElse(inThird, one, hn::IfThenElse(inSecond, other, least))});
    }

    /** a * b / 255, rounded; x / 255 is (t + t / 256) / 256 with t = x + 128, for x up to 255 * 255. */
    template <class D, class V16> static HWY_INLINE hn::Vec<D> productBy255(D d, Halves<V16> a, Halves<V16> b)
    {
        const hn::DFromV<V16> d16;
        const auto half = hn::Set(d16, 128);
        const auto even = hn::Add(hn::Mul(a.even, b.even), half), odd = hn::Add(hn::Mul(a.odd, b.odd), half);
        const auto upperEven = hn::Add(even, hn::ShiftRight<8>(even)),
                   upperOdd = hn::Add(odd, hn::ShiftRight<8>(odd));
        return hn::BitCast(d, hn::Or(hn::ShiftRight<8>(upperEven), hn::And(upperOdd, hn::Set(d16, 0xFF00))));
    }

    /**
     * value * share / whole, rounded. No quotient is near enough to a tie to be moved by the roundings on the
     * way, so it makes no difference whether a processor fuses the last two steps.
     */
    template <int K, class V16> static HWY_INLINE auto middleOf(Halves<V16> values, Halves<V16> shares)
    {
        const hn::Repartition<float, hn::DFromV<V16>> df;
        constexpr float scale = K < 2 ? 1.0f : 65536.0f * 65536.0f;
        const auto product = hn::Mul(quarter<K>(values), quarter<K>(shares));
        return hn::MulAdd(product, hn::Set(df, 1.0f / (float(whole) * scale)), hn::Set(df, integerInFloat));
    }

    void pixel(const uint8_t* from, uint8_t* to) const
    {
        const int h = from[0] == 255 ? 0 : from[0], s = from[1], v = from[2];
        const int sixth = 2 * h / third, part = 2 * h % third;
        const int distance = sixth % 2 == 0 ? third - part : part;
        const auto least = uint8_t((2 * v * (255 - s) + 255) / 510);
        const auto between = uint8_t((2 * v * (whole - s * distance) + whole) / (2 * whole));
        const uint8_t one = sixth % 2 == 0 ? uint8_t(v) : between,
                      other = sixth % 2 == 0 ? between : uint8_t(v);
        const int first = sixth / 2;
        to[first] = one;
        to[(first + 1) % 3] = other;
        to[(first + 2) % 3] = least;
    }
};

template <size_t Channels, class Op> void everyRow(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        colourRow<Channels>(
            hn::ScalableTag<uint8_t>(), Op(), move.src.row(y), move.dst.row(y), move.area.width);
}

constexpr PixelKernels s_toHSV {everyRow<3, RGBToHSV>, everyRow<4, RGBToHSV>};
constexpr PixelKernels s_fromHSV {everyRow<3, HSVToRGB>, everyRow<4, HSVToRGB>};
} // namespace

const PixelKernels& rgbToHSVKernels() { return s_toHSV; }
const PixelKernels& hsvToRGBKernels() { return s_fromHSV; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(rgbToHSVKernels);
HWY_EXPORT(hsvToRGBKernels);
const PixelKernels& kernelsRGBToHSV() { return HWY_DYNAMIC_DISPATCH(rgbToHSVKernels)(); }
const PixelKernels& kernelsHSVToRGB() { return HWY_DYNAMIC_DISPATCH(hsvToRGBKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/hsvToRGB.def>
#include <customipp/rgbToHSV.def>
#endif // HWY_ONCE
