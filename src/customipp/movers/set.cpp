// Fills a region with one pixel.
#include "set.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/set.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "bytes-inl.h"
#include "rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** Copies of a pixel one after the other, long enough for a vector that begins within the first of them. */
template <size_t Bytes> struct Pattern {
    static constexpr size_t vector = HWY_MAX_BYTES;
    uint8_t bytes[vector + Bytes];

    explicit Pattern(const uint8_t* pixel)
    {
        for (size_t i = 0; i < sizeof(bytes); ++i)
            bytes[i] = pixel[i % Bytes];
    }
    const uint8_t* from(size_t offset) const { return bytes + offset % Bytes; }
};

/** Fills n bytes; from byte `lead` on the place is fit for `store`. */
template <size_t Bytes, class D, class Store>
HWY_INLINE void fillRow(D d, uint8_t* to, size_t n, size_t lead, const Pattern<Bytes>& pattern, Store store)
{
    const size_t step = hn::Lanes(d);
    if (n >= step + lead) {
        std::memcpy(to, pattern.bytes, lead);
        size_t x = lead;
        // Three vectors hold a whole number of pixels of any size from 1 to 4 bytes.
        const auto a = hn::LoadU(d, pattern.from(x)), b = hn::LoadU(d, pattern.from(x + step));
        const auto c = hn::LoadU(d, pattern.from(x + 2 * step));
        for (; x + 3 * step <= n; x += 3 * step) {
            store(a, d, to + x);
            store(b, d, to + x + step);
            store(c, d, to + x + 2 * step);
        }
        if (x + step <= n) {
            store(a, d, to + x);
            x += step;
        }
        if (x + step <= n)
            store(b, d, to + x);
        hn::StoreU(hn::LoadU(d, pattern.from(n - step)), d, to + n - step);
    } else if constexpr (hn::MaxLanes(d) > 16) {
        fillRow(hn::Half<D>(), to, n, 0, pattern, Cached());
    } else {
        for (size_t x = 0; x < n; ++x)
            to[x] = *pattern.from(x);
    }
}

template <size_t Bytes> void fillPixels(const Fill& fill)
{
    const hn::ScalableTag<uint8_t> d;
    const Pattern<Bytes> pattern(fill.pixel);
    for (size_t y = 0; y < fill.area.height; ++y) {
        uint8_t* to = fill.dst.row(y);
        const size_t n = fill.area.width * Bytes;
        if (!fill.isBeyondCache && Bytes == 1)
            std::memset(to, *fill.pixel, n);
        else if (fill.isBeyondCache)
            fillRow(d, to, n, bytesToAlignment(d, to), pattern, Streamed());
        else
            fillRow(d, to, n, 0, pattern, Cached());
    }
    if (fill.isBeyondCache)
        hwy::FlushStream();
}

/** One byte of each four; the others are read and put back. The first and the last byte are of that channel.
 */
struct FillChannel {
    uint8_t* dst;
    uint8_t value;

    template <size_t Channel, class D> HWY_INLINE void block(D d, uint8_t* to) const
    {
        static constexpr ChannelMask<hn::MaxLanes(D()), 4, Channel> mask;
        hn::StoreU(hn::IfVecThenElse(hn::Load(d, mask.bytes), hn::Set(d, value), hn::LoadU(d, to)), d, to);
    }

    template <class D> HWY_INLINE void row(D d, size_t n) const
    {
        const size_t step = hn::Lanes(d) / 4;
        if (n > step) {
            for (size_t x = 0; x + step < n; x += step)
                block<0>(d, dst + 4 * x);
            block<3>(d, dst + 4 * (n - step) - 3);
        } else if constexpr (hn::MaxLanes(d) > 16) {
            row(hn::Half<D>(), n);
        } else {
            for (size_t x = 0; x < n; ++x)
                dst[4 * x] = value;
        }
    }
};

void fillChannel(const Fill& fill)
{
    for (size_t y = 0; y < fill.area.height; ++y)
        FillChannel {fill.dst.row(y), *fill.pixel}.row(hn::ScalableTag<uint8_t>(), fill.area.width);
}

constexpr SetKernels s_kernels {{fillPixels<1>, fillPixels<2>, fillPixels<3>, fillPixels<4>}, fillChannel};
} // namespace

const SetKernels& setKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(setKernels);
const SetKernels& kernelsSet() { return HWY_DYNAMIC_DISPATCH(setKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/set.def>
#endif // HWY_ONCE
