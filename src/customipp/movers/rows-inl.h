// Loops along a row of pixels. Compiled once for each instruction set.

#if defined(CUSTOMIPP_MOVERS_ROWS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_MOVERS_ROWS_INL_H
#undef CUSTOMIPP_MOVERS_ROWS_INL_H
#else
#define CUSTOMIPP_MOVERS_ROWS_INL_H
#endif

#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class D> constexpr bool isPartOfFloats()
{
    return hwy::IsFloat<hn::TFromD<D>>() && hn::MaxLanes(D()) * sizeof(hn::TFromD<D>) < 16;
}

/**
 * A vector from any address, and to any. Floats that are less than a full vector go as integers: as floats
 * they would pass through a pointer that the language wants aligned.
 */
template <class D> HWY_INLINE hn::Vec<D> loadAnywhere(D d, const hn::TFromD<D>* from)
{
    if constexpr (isPartOfFloats<D>()) {
        const hn::RebindToUnsigned<D> du;
        return hn::BitCast(d, hn::LoadU(du, reinterpret_cast<const hn::TFromD<decltype(du)>*>(from)));
    } else {
        return hn::LoadU(d, from);
    }
}
template <class D> HWY_INLINE void storeAnywhere(hn::Vec<D> v, D d, hn::TFromD<D>* to)
{
    if constexpr (isPartOfFloats<D>()) {
        const hn::RebindToUnsigned<D> du;
        hn::StoreU(hn::BitCast(du, v), du, reinterpret_cast<hn::TFromD<decltype(du)>*>(to));
    } else {
        hn::StoreU(v, d, to);
    }
}

/** Writes a vector in the ordinary way. */
struct Cached {
    template <class D> HWY_INLINE void operator()(hn::Vec<D> v, D d, hn::TFromD<D>* to) const
    {
        storeAnywhere(v, d, to);
    }
};

/** Writes a vector to an aligned place past the caches. */
struct Streamed {
    template <class D> HWY_INLINE void operator()(hn::Vec<D> v, D d, hn::TFromD<D>* to) const
    {
        hn::Stream(v, d, to);
    }
};

/**
 * Covers a row of n pixels with blocks of Lanes(d) pixels by block(d, x, store); the last block ends with the
 * row and overlaps its neighbour. A row shorter than a block takes smaller ones, down to Block::least pixels,
 * and below that block.one(x). So no block passes the end of the row, and a pixel that is written twice gets
 * the same value twice.
 */
template <class D, class Block> HWY_INLINE void coverRow(D d, size_t n, const Block& block)
{
    const size_t step = hn::Lanes(d);
    if (n >= step) {
        for (size_t x = 0; x + step <= n; x += step)
            block(d, x, Cached());
        if (n % step != 0)
            block(d, n - step, Cached());
    } else if constexpr (hn::MaxLanes(d) > Block::least) {
        coverRow(hn::Half<D>(), n, block);
    } else if constexpr (Block::least > 1) {
        for (size_t x = 0; x < n; ++x)
            block.one(x);
    }
}

/** How many bytes lie before the next place where a vector can be streamed to. */
template <class D> HWY_INLINE size_t bytesToAlignment(D d, const void* to)
{
    const size_t bytes = hn::Lanes(d) * sizeof(hn::TFromD<D>);
    return (bytes - reinterpret_cast<uintptr_t>(to) % bytes) % bytes;
}

/** As coverRow, with the destination written past the caches. Flush the stream after the last row. */
template <class D, class Block> HWY_INLINE void streamRow(D d, size_t n, const Block& block)
{
    const size_t step = hn::Lanes(d), lane = sizeof(hn::TFromD<D>);
    const size_t leadBytes = bytesToAlignment(d, block.dst), lead = leadBytes / lane;
    if (leadBytes % lane != 0 || n < lead + step)
        return coverRow(d, n, block);
    if (lead > 0)
        block(d, 0, Cached());
    size_t x = lead;
    for (; x + step <= n; x += step)
        block(d, x, Streamed());
    if (x < n)
        block(d, n - step, Cached());
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // toggle
