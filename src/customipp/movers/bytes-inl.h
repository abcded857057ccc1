// Orders of bytes within and across vectors. Compiled once for each instruction set.

#if defined(CUSTOMIPP_MOVERS_BYTES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_MOVERS_BYTES_INL_H
#undef CUSTOMIPP_MOVERS_BYTES_INL_H
#else
#define CUSTOMIPP_MOVERS_BYTES_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/** An order of the bytes of a vector: first 32-bit lanes move across it, then bytes within its 16-byte
 * blocks. */
template <size_t Size> struct ByteOrder {
    static constexpr uint8_t zero = 0x80;
    alignas(64) uint32_t lanes[Size / 4] = {};
    alignas(64) uint8_t bytes[Size] = {};
};

/** The same bytes with the lanes moved last. */
template <size_t Size> struct LaneOrder {
    static constexpr uint8_t zero = 0x80;
    alignas(64) uint8_t bytes[Size] = {};
    alignas(64) uint32_t lanes[Size / 4] = {};
};

template <class D, class Lanes> HWY_INLINE hn::Vec<D> moveLanes(D d, hn::Vec<D> v, const Lanes& lanes)
{
    if constexpr (hn::MaxLanes(d) <= 16) {
        return v;
    } else {
        const hn::Repartition<uint32_t, D> d32;
        return hn::BitCast(d, hn::TableLookupLanes(hn::BitCast(d32, v), hn::SetTableIndices(d32, lanes)));
    }
}

/** v in the given order; d has bytes as lanes. In a single block the lanes must stay where they are. */
template <class D> HWY_INLINE hn::Vec<D> reorder(D d, hn::Vec<D> v, const ByteOrder<hn::MaxLanes(D())>& order)
{
    return hn::TableLookupBytesOr0(moveLanes(d, v, order.lanes), hn::Load(d, order.bytes));
}
template <class D> HWY_INLINE hn::Vec<D> reorder(D d, hn::Vec<D> v, const LaneOrder<hn::MaxLanes(D())>& order)
{
    return moveLanes(d, hn::TableLookupBytesOr0(v, hn::Load(d, order.bytes)), order.lanes);
}

/** All bits of one channel of `Channels` bytes, and no other, in `Channels` vectors. */
template <size_t Size, size_t Channels, size_t Channel> struct ChannelMask {
    alignas(64) uint8_t bytes[Size * Channels] = {};

    constexpr ChannelMask()
    {
        for (size_t i = Channel; i < sizeof(bytes); i += Channels)
            bytes[i] = 0xFF;
    }
};

template <size_t Size, size_t Times, size_t Part> constexpr ByteOrder<Size> repeatOrder()
{
    ByteOrder<Size> order;
    for (size_t i = 0; i < Size; ++i) {
        const size_t block = Part * (Size / 16) + i / 16; // of all that come from this vector
        order.bytes[i] = uint8_t((block % Times * 16 + i % 16) / Times);
        if (i % 4 == 0)
            order.lanes[i / 4] = uint32_t(block / Times * 4 + i % 16 / 4);
    }
    return order;
}

/** Each byte of v repeated `Times` times: vector number Part of the `Times` vectors that this makes. */
template <size_t Times, size_t Part, class D> HWY_INLINE hn::Vec<D> repeatBytes(D d, hn::Vec<D> v)
{
    if constexpr (Times == 1) {
        return v;
    } else {
        static constexpr ByteOrder<hn::MaxLanes(D())> order = repeatOrder<hn::MaxLanes(D()), Times, Part>();
        return reorder(d, v, order);
    }
}

template <size_t Size, size_t Parts, size_t Bytes> constexpr LaneOrder<Size> unmergeOrder()
{
    LaneOrder<Size> order;
    for (size_t i = 0; i < Size; ++i) {
        const size_t each = 16 / Parts, part = i % 16 / each, item = i % each / Bytes;
        order.bytes[i] = uint8_t((item * Parts + part) * Bytes + i % Bytes);
    }
    for (size_t i = 0; i < Size / 4; ++i) {
        const size_t each = Size / 4 / Parts, part = i / each, block = i % each / (4 / Parts);
        order.lanes[i] = uint32_t(block * 4 + part * (4 / Parts) + i % (4 / Parts));
    }
    return order;
}

/** The lowest byte of each 32-bit lane of v, then the next of each, and so on; d has bytes as lanes. */
template <class D> HWY_INLINE hn::Vec<D> apartQuarters(D d, hn::Vec<D> v)
{
    static constexpr auto order = unmergeOrder<hn::MaxLanes(D()), 4, 1>();
    return reorder(d, v, order);
}

/** The lower halves of the lanes of a, and above them those of b. */
template <class V> HWY_INLINE V mergeHalves(V a, V b)
{
    const hn::DFromV<V> d;
    const hn::RepartitionToNarrow<decltype(d)> dn;
    constexpr int bits = 4 * int(sizeof(hn::TFromV<V>));
    return hn::BitCast(d, hn::OddEven(hn::BitCast(dn, hn::ShiftLeft<bits>(b)), hn::BitCast(dn, a)));
}

/** The lower halves of the lanes of a, then those of b. */
template <class V> HWY_INLINE hn::Vec<hn::RepartitionToNarrow<hn::DFromV<V>>> joinHalves(V a, V b)
{
    const hn::DFromV<V> d;
    const hn::RepartitionToNarrow<decltype(d)> dn;
    const hn::Repartition<uint8_t, decltype(d)> d8;
    static constexpr auto order = unmergeOrder<hn::MaxLanes(d8), 2, sizeof(hn::TFromV<V>) / 2>();
    return hn::BitCast(dn, reorder(d8, hn::BitCast(d8, mergeHalves(a, b)), order));
}

/** The lowest quarters of the lanes of a, b, c and e, one after the other. */
template <class V>
HWY_INLINE hn::Vec<hn::RepartitionToNarrow<hn::RepartitionToNarrow<hn::DFromV<V>>>> joinQuarters(
    V a, V b, V c, V e)
{
    const hn::DFromV<V> d;
    const hn::RepartitionToNarrow<decltype(d)> dHalf;
    const hn::RepartitionToNarrow<decltype(dHalf)> dn;
    const hn::Repartition<uint8_t, decltype(d)> d8;
    static constexpr auto order = unmergeOrder<hn::MaxLanes(d8), 4, sizeof(hn::TFromV<V>) / 4>();
    const auto lower = mergeHalves(hn::BitCast(dHalf, a), hn::BitCast(dHalf, b));
    const auto upper = mergeHalves(hn::BitCast(dHalf, c), hn::BitCast(dHalf, e));
    const auto merged = mergeHalves(hn::BitCast(d, lower), hn::BitCast(d, upper));
    return hn::BitCast(dn, reorder(d8, hn::BitCast(d8, merged), order));
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // toggle
