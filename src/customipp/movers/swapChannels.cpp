// Changes the order of the four channels of each pixel.
#include "swapChannels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/swapChannels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

/** Which byte of a vector goes where. */
struct Order {
    alignas(64) uint8_t bytes[HWY_MAX_BYTES];

    explicit Order(const int* order)
    {
        for (size_t i = 0; i < sizeof(bytes); ++i)
            bytes[i] = uint8_t(i % 16 / 4 * 4 + size_t(order[i % 4]));
    }
};

/** The last vector of a row overlaps its neighbour: it is computed before any pixel has changed, and stored
 * last. */
template <class D> HWY_INLINE void swapRow(D d, uint8_t* row, size_t n, const Order& order)
{
    const size_t step = hn::Lanes(d);
    if (n >= step) {
        const auto indices = hn::Load(d, order.bytes);
        uint8_t* lastPlace = row + (n - step);
        const auto last = hn::TableLookupBytes(hn::LoadU(d, lastPlace), indices);
        for (size_t x = 0; x + step < n; x += step)
            hn::StoreU(hn::TableLookupBytes(hn::LoadU(d, row + x), indices), d, row + x);
        hn::StoreU(last, d, lastPlace);
    } else if constexpr (hn::MaxLanes(d) > 4) {
        swapRow(hn::Half<D>(), row, n, order);
    }
}

void swapChannels(const Swap& swap)
{
    const Order order(swap.order);
    for (size_t y = 0; y < swap.area.height; ++y)
        swapRow(hn::ScalableTag<uint8_t>(), swap.pixels.row(y), 4 * swap.area.width, order);
}

constexpr SwapChannelsKernels s_kernels {swapChannels};
} // namespace

const SwapChannelsKernels& swapChannelsKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(swapChannelsKernels);
const SwapChannelsKernels& kernelsSwapChannels() { return HWY_DYNAMIC_DISPATCH(swapChannelsKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/swapChannels.def>
#endif // HWY_ONCE
