// Copies one channel of interleaved pixels out or in, and three channels of four out or in.
#include "copyChannel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/copyChannel.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "bytes-inl.h"
#include "rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

template <class T> HWY_INLINE void copyOne(const T* from, T* to) { hwy::CopyBytes<sizeof(T)>(from, to); }

HWY_INLINE void copyThree(const uint8_t* from, uint8_t* to)
{
    to[0] = from[0];
    to[1] = from[1];
    to[2] = from[2];
}

// The row of a channel begins and ends with that channel: what lies before its first and behind its last
// element may belong to nobody. A block of whole pixels that starts at the first element passes the last one
// by the channels behind it, so it needs one more pixel to follow; the block at the end of the row stops at
// the last element, and the channel is the last of its pixels.

/** One channel out of `Channels`. */
template <class T, int Channels> struct Extract {
    const T* src;
    T* dst;

    template <class D> static HWY_INLINE hn::Vec<D> load(D d, const T* from, bool last)
    {
        if constexpr (Channels == 3) {
            hn::Vec<D> a, b, c;
            hn::LoadInterleaved3(d, from, a, b, c);
            return last ? c : a;
        } else if constexpr (sizeof(T) == 4) {
            const size_t n = hn::Lanes(d);
            const auto a = hn::LoadU(d, from), b = hn::LoadU(d, from + n);
            const auto c = hn::LoadU(d, from + 2 * n), e = hn::LoadU(d, from + 3 * n);
            if (last)
                return hn::ConcatOdd(d, hn::ConcatOdd(d, e, c), hn::ConcatOdd(d, b, a));
            return hn::ConcatEven(d, hn::ConcatEven(d, e, c), hn::ConcatEven(d, b, a));
        } else {
            const size_t n = hn::Lanes(d);
            const auto a = pixels(d, from, last), b = pixels(d, from + n, last);
            const auto c = pixels(d, from + 2 * n, last), e = pixels(d, from + 3 * n, last);
            return joinQuarters(a, b, c, e);
        }
    }

    /** Pixels of four channels as lanes that hold the wanted channel at the bottom. */
    template <class D> static HWY_INLINE auto pixels(D d, const T* from, bool last)
    {
        const hn::RepartitionToWide<hn::RepartitionToWide<D>> wide;
        const auto v = hn::BitCast(wide, hn::LoadU(d, from));
        return last ? hn::ShiftRight<24 * int(sizeof(T))>(v) : v;
    }

    template <class D> HWY_INLINE void row(D d, size_t n) const
    {
        const size_t step = hn::Lanes(d);
        if (n > step) {
            for (size_t x = 0; x + step < n; x += step)
                hn::StoreU(load(d, src + x * Channels, false), d, dst + x);
            const size_t x = n - step;
            hn::StoreU(load(d, src + x * Channels - (Channels - 1), true), d, dst + x);
        } else if constexpr (hn::MaxLanes(d) * sizeof(T) > 16) {
            row(hn::Half<D>(), n);
        } else {
            for (size_t x = 0; x < n; ++x)
                copyOne(src + x * Channels, dst + x);
        }
    }
};

template <class T, int Channels> void extract(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y) {
        const Extract<T, Channels> kernel {
            reinterpret_cast<const T*>(move.src.row(y)), reinterpret_cast<T*>(move.dst.row(y))};
        kernel.row(hn::ScalableTag<T>(), move.area.width);
    }
}

/** One channel into `Channels` of bytes; the other channels are read and put back. */
template <int Channels> struct Insert {
    const uint8_t* src;
    uint8_t* dst;

    template <int Channel, int Part, class D> static HWY_INLINE void part(D d, hn::Vec<D> v, uint8_t* to)
    {
        static constexpr ChannelMask<hn::MaxLanes(D()), Channels, Channel> mask;
        to += Part * hn::Lanes(d);
        hn::StoreU(hn::IfVecThenElse(hn::Load(d, mask.bytes + Part * hn::Lanes(d)),
                       repeatBytes<Channels, Part>(d, v), hn::LoadU(d, to)),
            d, to);
    }

    template <int Channel, class D> static HWY_INLINE void store(D d, hn::Vec<D> v, uint8_t* to)
    {
        part<Channel, 0>(d, v, to);
        part<Channel, 1>(d, v, to);
        part<Channel, 2>(d, v, to);
        if constexpr (Channels == 4)
            part<Channel, 3>(d, v, to);
    }

    template <class D> HWY_INLINE void row(D d, size_t n) const
    {
        const size_t step = hn::Lanes(d);
        if (n > step) {
            for (size_t x = 0; x + step < n; x += step)
                store<0>(d, hn::LoadU(d, src + x), dst + x * Channels);
            const size_t x = n - step;
            store<Channels - 1>(d, hn::LoadU(d, src + x), dst + x * Channels - (Channels - 1));
        } else if constexpr (hn::MaxLanes(d) > 16) {
            row(hn::Half<D>(), n);
        } else {
            for (size_t x = 0; x < n; ++x)
                dst[x * Channels] = src[x];
        }
    }
};

template <int Channels> void insert(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        Insert<Channels> {move.src.row(y), move.dst.row(y)}.row(hn::ScalableTag<uint8_t>(), move.area.width);
}

/** Twelve bytes, three pixels' channels of each four, to the bottom of each block; `skip` lanes lie before
 * the first. */
template <size_t Size> constexpr ByteOrder<Size> threeToFourOrder(size_t skip)
{
    ByteOrder<Size> order;
    for (size_t i = 0; i < Size; ++i)
        order.bytes[i] = uint8_t(i % 4 == 3 ? ByteOrder<Size>::zero : i % 16 / 4 * 3 + i % 4);
    for (size_t i = 0; i < Size / 4; ++i) {
        const size_t lane = i / 4 * 3 + i % 4 + skip;
        order.lanes[i] = uint32_t(lane < Size / 4 ? lane : 0); // no byte of the last lane is looked up
    }
    return order;
}

/** Three channels into the first three of four. A vector makes Lanes / 4 pixels of its first or last bytes.
 */
struct ThreeToFour {
    const uint8_t* src;
    uint8_t* dst;

    template <class D> static HWY_INLINE void store(D d, hn::Vec<D> v, uint8_t* to)
    {
        static constexpr ChannelMask<hn::MaxLanes(D()), 4, 3> alpha;
        hn::StoreU(hn::Or(v, hn::And(hn::LoadU(d, to), hn::Load(d, alpha.bytes))), d, to);
    }

    /** Reads what it needs and Lanes / 4 bytes before that. */
    template <class D> HWY_INLINE void block(D d, size_t x) const
    {
        constexpr size_t size = hn::MaxLanes(D());
        const uint8_t* from = src + 3 * x - hn::Lanes(d) / 4;
        if constexpr (size == 16) {
            static constexpr ByteOrder<16> order = [] {
                ByteOrder<16> shifted = threeToFourOrder<16>(0);
                for (uint8_t& i : shifted.bytes)
                    i = uint8_t(i == ByteOrder<16>::zero ? i : i + 4);
                return shifted;
            }();
            store(d, reorder(d, hn::LoadU(d, from), order), dst + 4 * x);
        } else {
            static constexpr ByteOrder<size> order = threeToFourOrder<size>(size / 16);
            store(d, reorder(d, hn::LoadU(d, from), order), dst + 4 * x);
        }
    }

    template <class D> HWY_INLINE void row(D d, size_t n) const
    {
        const size_t step = hn::Lanes(d) / 4;
        if (3 * n >= hn::Lanes(d)) {
            static constexpr auto first = threeToFourOrder<hn::MaxLanes(D())>(0);
            store(d, reorder(d, hn::LoadU(d, src), first), dst);
            for (size_t x = step; x + step <= n; x += step)
                block(d, x);
            if (n % step != 0)
                block(d, n - step);
        } else if constexpr (hn::MaxLanes(d) > 16) {
            row(hn::Half<D>(), n);
        } else {
            for (size_t x = 0; x < n; ++x)
                copyThree(src + 3 * x, dst + 4 * x);
        }
    }
};

void threeToFour(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        ThreeToFour {move.src.row(y), move.dst.row(y)}.row(hn::ScalableTag<uint8_t>(), move.area.width);
}

/**
 * What four-channel vector `source` of four gives to three-channel vector `part` of three. Other bytes become
 * 0: there another source has its share.
 */
template <size_t Size> constexpr LaneOrder<Size> fourToThreeOrder(size_t source, size_t part)
{
    LaneOrder<Size> order;
    for (size_t i = 0; i < Size; ++i) {
        if constexpr (Size == 16) {
            const size_t pixel = (16 * part + i) / 3, channel = (16 * part + i) % 3;
            order.bytes[i] = uint8_t(pixel / 4 == source ? pixel % 4 * 4 + channel : order.zero);
        } else {
            order.bytes[i] = uint8_t(i % 16 < 12 ? i % 16 / 3 * 4 + i % 16 % 3 : order.zero);
        }
    }
    const size_t lanes = Size / 4, used = lanes / 4 * 3;
    for (size_t i = 0; i < lanes; ++i) {
        const size_t lane = part * lanes + i;
        order.lanes[i]
            = uint32_t(lane / used == source ? lane % used / 3 * 4 + lane % used % 3 : 3); // lane 3 is 0
    }
    return order;
}

/** The first three channels of four. */
struct FourToThree {
    static constexpr size_t least = 16;
    const uint8_t* src;
    uint8_t* dst;

    template <size_t Part, class D>
    static HWY_INLINE hn::Vec<D> part(D d, hn::Vec<D> first, hn::Vec<D> second)
    {
        static constexpr auto one = fourToThreeOrder<hn::MaxLanes(D())>(Part, Part);
        static constexpr auto two = fourToThreeOrder<hn::MaxLanes(D())>(Part + 1, Part);
        return hn::Or(reorder(d, first, one), reorder(d, second, two));
    }

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const size_t n = hn::Lanes(d);
        const uint8_t* from = src + 4 * x;
        const auto a = hn::LoadU(d, from), b = hn::LoadU(d, from + n);
        const auto c = hn::LoadU(d, from + 2 * n), e = hn::LoadU(d, from + 3 * n);
        store(part<0>(d, a, b), d, dst + 3 * x);
        store(part<1>(d, b, c), d, dst + 3 * x + n);
        store(part<2>(d, c, e), d, dst + 3 * x + 2 * n);
    }
    HWY_INLINE void one(size_t x) const { copyThree(src + 4 * x, dst + 3 * x); }
};

void fourToThree(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        coverRow(hn::ScalableTag<uint8_t>(), move.area.width, FourToThree {move.src.row(y), move.dst.row(y)});
}

constexpr ChannelKernels s_kernels {{{extract<uint8_t, 3>, extract<uint16_t, 3>, extract<uint32_t, 3>},
                                        {extract<uint8_t, 4>, extract<uint16_t, 4>, extract<uint32_t, 4>}},
    {insert<3>, insert<4>}, threeToFour, fourToThree};
} // namespace

const ChannelKernels& copyChannelKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(copyChannelKernels);
const ChannelKernels& kernelsCopyChannel() { return HWY_DYNAMIC_DISPATCH(copyChannelKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/copyChannel.def>
#endif // HWY_ONCE
