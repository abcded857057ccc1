// Copies the pixels that a mask selects.
#include "copyMasked.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/copyMasked.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "bytes-inl.h"
#include "rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** Pixels of `Bytes` bytes; those that stay are read and put back. */
template <size_t Bytes> struct MaskedBlock {
    static constexpr size_t least = 16;
    const uint8_t* src;
    uint8_t* dst;
    const uint8_t* mask;

    template <size_t Part, class D> HWY_INLINE void part(D d, hn::Vec<D> selected, size_t x) const
    {
        const size_t at = x * Bytes + Part * hn::Lanes(d);
        const auto stays = hn::Eq(repeatBytes<Bytes, Part>(d, selected), hn::Zero(d));
        hn::StoreU(hn::IfThenElse(stays, hn::LoadU(d, dst + at), hn::LoadU(d, src + at)), d, dst + at);
    }

    template <class D> HWY_INLINE void operator()(D d, size_t x, Cached) const
    {
        const auto selected = hn::LoadU(d, mask + x);
        part<0>(d, selected, x);
        if constexpr (Bytes > 1)
            part<1>(d, selected, x);
        if constexpr (Bytes > 2)
            part<2>(d, selected, x);
        if constexpr (Bytes > 3)
            part<3>(d, selected, x);
    }

    HWY_INLINE void one(size_t x) const
    {
        if (mask[x] != 0)
            std::memcpy(dst + x * Bytes, src + x * Bytes, Bytes);
    }
};

template <size_t Bytes> void copyMasked(const MaskedMove& move)
{
    for (size_t y = 0; y < move.area.height; ++y) {
        const MaskedBlock<Bytes> block {move.src.row(y), move.dst.row(y), move.mask.row(y)};
        coverRow(hn::ScalableTag<uint8_t>(), move.area.width, block);
    }
}

constexpr CopyMaskedKernels s_kernels {{copyMasked<1>, copyMasked<2>, copyMasked<3>, copyMasked<4>}};
} // namespace

const CopyMaskedKernels& copyMaskedKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(copyMaskedKernels);
const CopyMaskedKernels& kernelsCopyMasked() { return HWY_DYNAMIC_DISPATCH(copyMaskedKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/copyMasked.def>
#endif // HWY_ONCE
