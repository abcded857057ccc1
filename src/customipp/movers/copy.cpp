// Copies whole pixels.
#include "copy.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/copy.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

struct CopyBlock {
    static constexpr size_t least = 1;
    const uint8_t* src;
    uint8_t* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        store(hn::LoadU(d, src + x), d, dst + x);
    }
};

void copyBytes(const Move& move)
{
    if (move.src.first == move.dst.first && move.src.step == move.dst.step)
        return;
    const size_t bytes = move.area.width * move.dstBytes;
    // memcpy streams as well, but it sees one row at a time.
    const bool streams = move.isBeyondCache();
    for (size_t y = 0; y < move.area.height; ++y) {
        if (streams)
            streamRow(hn::ScalableTag<uint8_t>(), bytes, CopyBlock {move.src.row(y), move.dst.row(y)});
        else
            std::memcpy(move.dst.row(y), move.src.row(y), bytes);
    }
    if (streams)
        hwy::FlushStream();
}

constexpr CopyKernels s_kernels {copyBytes};
} // namespace

const CopyKernels& copyKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(copyKernels);
const CopyKernels& kernelsCopy() { return HWY_DYNAMIC_DISPATCH(copyKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/copy.def>
#endif // HWY_ONCE
