// Packed Y, Cb and Cr, two pixels to four bytes, to planes and back.
#include "ycbcr422.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colour/ycbcr422.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/bytes-inl.h"
#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

// Blocks have an even number of pixels and start at an even one.

struct ToPlanes {
    static constexpr size_t least = 16;
    const uint8_t* packed;
    uint8_t *y, *cb, *cr;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const hn::Repartition<uint16_t, D> d16;
        const hn::Half<D> dHalf;
        const auto first = hn::BitCast(d16, hn::LoadU(d, packed + 2 * x));
        const auto second = hn::BitCast(d16, hn::LoadU(d, packed + 2 * x + hn::Lanes(d)));
        store(joinHalves(first, second), d, y + x);
        const auto chroma = joinHalves(hn::ShiftRight<8>(first), hn::ShiftRight<8>(second));
        static constexpr auto apart = unmergeOrder<hn::MaxLanes(D()), 2, 1>();
        const auto both = reorder(d, chroma, apart);
        hn::StoreU(hn::LowerHalf(dHalf, both), dHalf, cb + x / 2);
        hn::StoreU(hn::UpperHalf(dHalf, both), dHalf, cr + x / 2);
    }
    HWY_INLINE void one(size_t x) const
    {
        uint8_t* const chroma = x % 2 == 0 ? cb : cr; // GCC's sanitizer forgets x in an index of a choice
        y[x] = packed[2 * x];
        chroma[x / 2] = packed[2 * x + 1];
    }
};

/** The order in which luma has to be for an interleaving within blocks to give whole vectors. */
template <size_t Size> constexpr ByteOrder<Size> lumaOrder()
{
    ByteOrder<Size> order;
    constexpr size_t lanes = Size / 4;
    for (size_t i = 0; i < Size; ++i)
        order.bytes[i] = uint8_t(i % 16);
    for (size_t i = 0; i < lanes; ++i)
        order.lanes[i] = uint32_t(i % 4 / 2 * (lanes / 2) + i / 4 * 2 + i % 2);
    return order;
}

/** The same for chroma, of which the lower half of a vector is Cb and the upper half Cr: Cb and Cr in turn.
 */
template <size_t Size> constexpr ByteOrder<Size> chromaOrder()
{
    ByteOrder<Size> order;
    constexpr size_t lanes = Size / 4;
    for (size_t i = 0; i < Size; ++i) {
        const size_t half = i % 16 / 8, pair = i % 8 / 2, isCr = i % 2;
        // Across blocks the lanes are Cb and Cr of the lower half in turn, then those of the upper half.
        order.bytes[i] = uint8_t(Size == 16 ? half * 4 + isCr * 8 + pair : half * 8 + isCr * 4 + pair);
    }
    for (size_t i = 0; i < lanes; ++i)
        order.lanes[i] = uint32_t(i % 4 / 2 * (lanes / 4) + i % 2 * (lanes / 2) + i / 4);
    return order;
}

struct ToPacked {
    static constexpr size_t least = 16;
    const uint8_t *y, *cb, *cr;
    uint8_t* packed;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const hn::Half<D> dHalf;
        static constexpr auto ofLuma = lumaOrder<hn::MaxLanes(D())>();
        static constexpr auto ofChroma = chromaOrder<hn::MaxLanes(D())>();
        const auto chroma = hn::Combine(d, hn::LoadU(dHalf, cr + x / 2), hn::LoadU(dHalf, cb + x / 2));
        const auto inTurn = reorder(d, chroma, ofChroma);
        const auto luma = moveLanes(d, hn::LoadU(d, y + x), ofLuma.lanes);
        store(hn::InterleaveLower(d, luma, inTurn), d, packed + 2 * x);
        store(hn::InterleaveUpper(d, luma, inTurn), d, packed + 2 * x + hn::Lanes(d));
    }
    HWY_INLINE void one(size_t x) const
    {
        const uint8_t* const chroma = x % 2 == 0 ? cb : cr;
        packed[2 * x] = y[x];
        packed[2 * x + 1] = chroma[x / 2];
    }
};

void toPlanes(const PackedRows& rows)
{
    const size_t even = rows.area.width - rows.area.width % 2;
    for (size_t y = 0; y < rows.area.height; ++y) {
        const ToPlanes row {
            rows.packed.row(y), rows.planes[0].row(y), rows.planes[1].row(y), rows.planes[2].row(y)};
        coverRow(hn::ScalableTag<uint8_t>(), even, row);
        if (even < rows.area.width)
            row.y[even] = row.packed[2 * even];
    }
}

void toPacked(const PlaneRows& rows)
{
    const size_t even = rows.area.width - rows.area.width % 2;
    for (size_t y = 0; y < rows.area.height; ++y)
        coverRow(hn::ScalableTag<uint8_t>(), even,
            ToPacked {
                rows.planes[0].row(y), rows.planes[1].row(y), rows.planes[2].row(y), rows.packed.row(y)});
}

constexpr YCbCr422Kernels s_kernels {toPlanes, toPacked};
} // namespace

const YCbCr422Kernels& ycbcr422Kernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(ycbcr422Kernels);
const YCbCr422Kernels& kernelsYCbCr422() { return HWY_DYNAMIC_DISPATCH(ycbcr422Kernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/ycbcr422.def>
#endif // HWY_ONCE
