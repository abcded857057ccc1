// The part of a source that lies under a tile of results, and the work memory. Compiled for each instruction
// set.

#if defined(CUSTOMIPP_SPAN_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_SPAN_INL_H_
#undef CUSTOMIPP_SPAN_INL_H_
#else
#define CUSTOMIPP_SPAN_INL_H_
#endif

#include "../movers/rows-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** Eight numbers at a time on every processor, in as many vectors as that takes. */
using Doubles = hn::CappedTag<double, 8>;

/** Rows of numbers in the work memory, each on a 64-byte boundary. */
template <class E> struct PlaneOf {
    E* first;
    size_t stride;

    E* row(size_t y) const { return first + y * stride; }
};
using Plane = PlaneOf<double>;

/** The work memory by its plan. */
struct MatchMemory {
    const MatchPlan& plan;
    unsigned char* base;

    MatchMemory(const MatchPlan& its, unsigned char* buffer)
        : plan(its),
          base(buffer + (64 - reinterpret_cast<uintptr_t>(buffer) % 64) % 64)
    {
    }
    template <class E> E* at(Offset offset) const { return reinterpret_cast<E*>(base + offset); }
    double* doubles(Offset offset) const { return at<double>(offset); }
    Plane plane(Offset offset) const { return {doubles(offset), plan.stride}; }
};

/** One tile: its place in the result, its size, and the source's place of the first pixel under it. */
struct Tile {
    int x, y, width, height;
    int64_t sourceX, sourceY;
};

/** One pixel, at any address. */
template <class T> HWY_INLINE double pixelAt(const Rows<const T>& image, int64_t x, int64_t y)
{
    T pixel;
    __builtin_memcpy(&pixel, image.row(static_cast<size_t>(y)) + x, sizeof(T));
    return static_cast<double>(pixel);
}

/** A vector of pixels as doubles. */
template <class D> HWY_INLINE hn::Vec<D> pixelsAs(D d, const float* from)
{
    return hn::PromoteTo(d, loadAnywhere(hn::Rebind<float, D>(), from));
}
template <class D, class T> HWY_INLINE hn::Vec<D> pixelsAs(D d, const T* from)
{
    const hn::Rebind<int32_t, D> dInt;
    return hn::PromoteTo(d, hn::PromoteTo(dInt, hn::LoadU(hn::Rebind<T, D>(), from)));
}
HWY_INLINE hn::Vec<hn::ScalableTag<uint32_t>> pixelsAs(hn::ScalableTag<uint32_t> d, const uint8_t* from)
{
    return hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, decltype(d)>(), from));
}

/** Pixels of a row, also with no alignment. */
template <class E, class D, class T> HWY_INLINE void convertRow(D d, const T* from, size_t count, E* to)
{
    size_t x = 0;
    for (; x + hn::Lanes(d) <= count; x += hn::Lanes(d))
        hn::StoreU(pixelsAs(d, from + x), d, to + x);
    const Rows<const T> rest {from, 0};
    for (; x < count; ++x)
        to[x] = static_cast<E>(pixelAt(rest, static_cast<int64_t>(x), 0));
}

/** `count` pixels of the source's row y from x on; those outside the source are 0 and are not read. */
template <class E, class D, class T>
void stageRow(D d, const Rows<const T>& source, IppiSize size, int64_t x, int64_t y, size_t count, E* to)
{
    const int64_t end = static_cast<int64_t>(count);
    int64_t first = end, last = end;
    if (y >= 0 && y < size.height) {
        first = std::clamp<int64_t>(-x, 0, end);
        last = std::clamp<int64_t>(size.width - x, first, end);
    }
    std::fill(to, to + first, E(0));
    if (first < last)
        convertRow(
            d, source.row(static_cast<size_t>(y)) + x + first, static_cast<size_t>(last - first), to + first);
    std::fill(to + last, to + end, E(0));
}

/** The whole span of a tile as doubles. */
template <class T> void stageWindow(const MatchTask<T>& task, const MatchMemory& memory, const Tile& tile)
{
    const Plane window = memory.plane(memory.plan.window);
    for (int y = 0; y < memory.plan.spanHeight; ++y)
        stageRow(Doubles(), task.source, task.problem.source, tile.sourceX, tile.sourceY + y,
            static_cast<size_t>(memory.plan.spanWidth), window.row(static_cast<size_t>(y)));
}

/** The sum of squares of a span, in an order that does not depend on the vectors. */
HWY_INLINE double energyOf(const MatchMemory& memory)
{
    const Doubles d;
    const Plane window = memory.plane(memory.plan.window);
    HWY_ALIGN double sums[8] = {};
    for (int y = 0; y < memory.plan.spanHeight; ++y) {
        const double* row = window.row(static_cast<size_t>(y));
        for (size_t lane = 0; lane < 8; lane += hn::Lanes(d)) {
            auto sum = hn::Load(d, sums + lane);
            // The span of a transform is a multiple of 16 pixels wide.
            for (size_t x = lane; x < static_cast<size_t>(memory.plan.spanWidth); x += 8) {
                const auto v = hn::Load(d, row + x);
                sum = hn::Add(sum, hn::Mul(v, v));
            }
            hn::Store(sum, d, sums + lane);
        }
    }
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
