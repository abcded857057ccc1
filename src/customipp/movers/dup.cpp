// Repeats one channel in all channels.
#include "dup.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/dup.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "bytes-inl.h"
#include "rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

template <int Channels> struct DupBlock {
    static constexpr size_t least = 16;
    const uint8_t* src;
    uint8_t* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const size_t n = hn::Lanes(d);
        const auto v = hn::LoadU(d, src + x);
        uint8_t* to = dst + x * Channels;
        store(repeatBytes<Channels, 0>(d, v), d, to);
        store(repeatBytes<Channels, 1>(d, v), d, to + n);
        store(repeatBytes<Channels, 2>(d, v), d, to + 2 * n);
        if constexpr (Channels == 4)
            store(repeatBytes<Channels, 3>(d, v), d, to + 3 * n);
    }
    HWY_INLINE void one(size_t x) const { std::memset(dst + x * Channels, src[x], Channels); }
};

template <int Channels> void dup(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        coverRow(hn::ScalableTag<uint8_t>(), move.area.width,
            DupBlock<Channels> {move.src.row(y), move.dst.row(y)});
}

constexpr DupKernels s_kernels {dup<3>, dup<4>};
} // namespace

const DupKernels& dupKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(dupKernels);
const DupKernels& kernelsDup() { return HWY_DYNAMIC_DISPATCH(dupKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/dup.def>
#endif // HWY_ONCE
