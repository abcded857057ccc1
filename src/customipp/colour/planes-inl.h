// Pixels of three channels, or of three and an alpha that stays, as three vectors of bytes. Compiled once for
// each instruction set.

#if defined(CUSTOMIPP_COLOUR_PLANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_COLOUR_PLANES_INL_H
#undef CUSTOMIPP_COLOUR_PLANES_INL_H
#else
#define CUSTOMIPP_COLOUR_PLANES_INL_H
#endif

#include "../movers/bytes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {

/**
 * As many pixels as a vector has bytes, channel by channel. Byte k of each 32-bit lane belongs to quarter k
 * of the pixels, so that a quarter is taken out, or put in, without moving anything across lanes.
 */
template <class D> struct Planes {
    hn::Vec<D> first;
    hn::Vec<D> second;
    hn::Vec<D> third;
};

/** Four pixels to a block, channel by channel; `skip` 32-bit lanes lie before the first pixel. */
template <size_t Size, size_t Channels> constexpr ByteOrder<Size> apartOrder(size_t skip)
{
    ByteOrder<Size> order;
    for (size_t i = 0; i < Size; ++i) {
        const size_t channel = i % 16 / 4, pixel = i % 4;
        const size_t within = Size == 16 ? 4 * skip : 0; // a single block has nowhere to move its lanes
        order.bytes[i] = uint8_t(channel < Channels ? pixel * Channels + channel + within : order.zero);
    }
    for (size_t i = 0; i < Size / 4; ++i) {
        const size_t lane = i / 4 * Channels + i % 4 + skip;
        order.lanes[i] = uint32_t(lane < Size / 4 ? lane : 0); // no byte of such a lane is looked up
    }
    return order;
}

/** 32-bit lanes before quarter number Part in the vector that holds it. A quarter with three channels is
 * shorter than a vector: the last one is taken from the end of a vector, so that no other pixels are read. */
template <size_t Size, size_t Channels, size_t Part>
inline constexpr size_t skipOf = Channels == 3 && Part == 3 ? Size / 16 : 0;

template <size_t Channels, size_t Part, class D> HWY_INLINE hn::Vec<D> loadQuarter(D d, const uint8_t* from)
{
    constexpr size_t size = hn::MaxLanes(D());
    return hn::LoadU(d, from + Part * Channels * (size / 4) - 4 * skipOf<size, Channels, Part>);
}

/** Quarter number Part of the pixels, in each block four of every channel. */
template <size_t Channels, size_t Part, class D> HWY_INLINE hn::Vec<D> loadApart(D d, const uint8_t* from)
{
    constexpr size_t size = hn::MaxLanes(D());
    static constexpr auto order = apartOrder<size, Channels>(skipOf<size, Channels, Part>);
    return reorder(d, loadQuarter<Channels, Part>(d, from), order);
}

/** The planes of four quarters, each of which has in each block four of every channel. */
template <class D>
HWY_INLINE Planes<D> planesOf(D d, hn::Vec<D> q0, hn::Vec<D> q1, hn::Vec<D> q2, hn::Vec<D> q3)
{
    const hn::Repartition<uint16_t, D> d16;
    const auto lower01 = hn::BitCast(d16, hn::InterleaveLower(d, q0, q1));
    const auto lower23 = hn::BitCast(d16, hn::InterleaveLower(d, q2, q3));
    const auto upper01 = hn::BitCast(d16, hn::InterleaveUpper(d, q0, q1));
    const auto upper23 = hn::BitCast(d16, hn::InterleaveUpper(d, q2, q3));
    return {hn::BitCast(d, hn::InterleaveLower(d16, lower01, lower23)),
        hn::BitCast(d, hn::InterleaveUpper(d16, lower01, lower23)),
        hn::BitCast(d, hn::InterleaveLower(d16, upper01, upper23))};
}

/** Lanes(d) pixels of three or four bytes; a fourth channel is not looked at. */
template <size_t Channels, class D> HWY_INLINE Planes<D> loadPlanes(D d, const uint8_t* from)
{
    return planesOf(d, loadApart<Channels, 0>(d, from), loadApart<Channels, 1>(d, from),
        loadApart<Channels, 2>(d, from), loadApart<Channels, 3>(d, from));
}

/**
 * The first three bytes of all lanes of 32 bits, one after the other: as quarter number Part of a row they
 * begin where the quarter before ends within its vector, and go on at the start of the next vector.
 */
template <size_t Size> constexpr LaneOrder<Size> togetherOrder(size_t part)
{
    LaneOrder<Size> order;
    constexpr size_t lanes = Size / 4, used = lanes / 4 * 3;
    for (size_t i = 0; i < Size; ++i) {
        const size_t lane = Size == 16 ? (i / 4 + lanes - part * used % lanes) % lanes : i % 16 / 4;
        const size_t byte = 4 * lane + i % 4;
        order.bytes[i] = uint8_t(lane < 3 ? byte / 3 * 4 + byte % 3 : order.zero);
    }
    for (size_t i = 0; i < lanes; ++i) {
        const size_t lane = (i + lanes - part * used % lanes) % lanes;
        order.lanes[i] = uint32_t(lane < used ? lane / 3 * 4 + lane % 3 : 3);
    }
    return order;
}

template <size_t Part, class D, class V32> HWY_INLINE auto together(D d, V32 pixels)
{
    static constexpr auto order = togetherOrder<hn::MaxLanes(D())>(Part);
    return hn::BitCast(hn::DFromV<V32>(), reorder(d, hn::BitCast(d, pixels), order));
}

/** The same pixels, quarter by quarter, in the lower three bytes of their lanes; what is in the fourth does
 * not matter. */
template <class D> struct Quarters {
    hn::Vec<hn::Repartition<uint32_t, D>> q0, q1, q2, q3;
};

/** Two channels in the lower halves of the lanes, and a third one in byte 2. */
template <class V32> HWY_INLINE V32 joinThird(V32 lower, V32 third)
{
    const hn::Repartition<uint16_t, hn::DFromV<V32>> d16;
    return hn::BitCast(hn::DFromV<V32>(), hn::OddEven(hn::BitCast(d16, third), hn::BitCast(d16, lower)));
}

/** The same with a plane as the third channel. */
template <class D, class V32>
HWY_INLINE Quarters<D> joinPlane(D, V32 q0, V32 q1, V32 q2, V32 q3, hn::Vec<D> third)
{
    const auto v = hn::BitCast(hn::DFromV<V32>(), third);
    return {joinThird(q0, hn::ShiftLeft<16>(v)), joinThird(q1, hn::ShiftLeft<8>(v)), joinThird(q2, v),
        joinThird(q3, hn::ShiftRight<8>(v))};
}

template <class D> HWY_INLINE Quarters<D> quartersOf(D d, Planes<D> planes)
{
    const hn::Repartition<uint16_t, D> d16;
    const hn::Repartition<uint32_t, D> d32;
    const auto low = hn::Set(d16, 0x00FF);
    const auto first = hn::BitCast(d16, planes.first), second = hn::BitCast(d16, planes.second);
    const auto even = hn::BitCast(d32, hn::IfVecThenElse(low, first, hn::ShiftLeft<8>(second)));
    const auto odd = hn::BitCast(d32, hn::IfVecThenElse(low, hn::ShiftRight<8>(first), second));
    return joinPlane(d, even, odd, hn::ShiftRight<16>(even), hn::ShiftRight<16>(odd), planes.third);
}

/** Pixels of three bytes. */
template <class D> HWY_INLINE void storeThree(D d, Quarters<D> pixels, uint8_t* to)
{
    const hn::Repartition<uint32_t, D> d32;
    const size_t n = hn::Lanes(d), quarter = n / 16;
    const auto p0 = together<0>(d, pixels.q0), p1 = together<1>(d, pixels.q1);
    const auto p2 = together<2>(d, pixels.q2), p3 = together<3>(d, pixels.q3);
    hn::StoreU(hn::BitCast(d, hn::IfThenElse(hn::FirstN(d32, 3 * quarter), p0, p1)), d, to);
    hn::StoreU(hn::BitCast(d, hn::IfThenElse(hn::FirstN(d32, 2 * quarter), p1, p2)), d, to + n);
    hn::StoreU(hn::BitCast(d, hn::IfThenElse(hn::FirstN(d32, quarter), p2, p3)), d, to + 2 * n);
}

/** A quarter of pixels of four bytes, whose fourth stays. */
template <class D, class V32> HWY_INLINE void storeKeepingAlpha(D d, V32 pixels, uint8_t* to)
{
    const hn::DFromV<V32> d32;
    const auto alpha = hn::Set(d32, 0xFF000000u), before = hn::BitCast(d32, hn::LoadU(d, to));
    hn::StoreU(hn::BitCast(d, hn::IfVecThenElse(alpha, before, pixels)), d, to);
}

/** The inverse of loadPlanes; a fourth channel keeps what it holds. */
template <size_t Channels, class D> HWY_INLINE void storeQuarters(D d, Quarters<D> pixels, uint8_t* to)
{
    if constexpr (Channels == 3) {
        storeThree(d, pixels, to);
    } else {
        const size_t n = hn::Lanes(d);
        storeKeepingAlpha(d, pixels.q0, to);
        storeKeepingAlpha(d, pixels.q1, to + n);
        storeKeepingAlpha(d, pixels.q2, to + 2 * n);
        storeKeepingAlpha(d, pixels.q3, to + 3 * n);
    }
}

/**
 * Covers a row of n pixels by op.template vector<Channels>(d, from), which gives the quarters of Lanes(d)
 * pixels; a row shorter than the shortest vector goes by op.pixel(from, to). The last vector ends with the
 * row: it is computed before the others are stored, so that the row may be its own destination.
 */
template <size_t Channels, class Op, class D>
HWY_INLINE void colourRow(D d, const Op& op, const uint8_t* src, uint8_t* dst, size_t n)
{
    const size_t step = hn::Lanes(d);
    if (n >= step) {
        const size_t end = Channels * (n - step);
        const auto last = op.template vector<Channels>(d, src + end);
        for (size_t i = 0; i < end; i += Channels * step)
            storeQuarters<Channels>(d, op.template vector<Channels>(d, src + i), dst + i);
        storeQuarters<Channels>(d, last, dst + end);
    } else if constexpr (hn::MaxLanes(d) > 16) {
        colourRow<Channels>(hn::Half<D>(), op, src, dst, n);
    } else {
        for (size_t x = 0; x < n; ++x)
            op.pixel(src + Channels * x, dst + Channels * x);
    }
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // toggle
