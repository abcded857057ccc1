// One image where it does not have the key's colour, and another one where it does.
#include "compColorKey.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colour/compColorKey.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "planes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

// Each kernel turns Lanes(d) pixels into vectors, and stores such vectors. In between others may be stored:
// the destination may be a source.

/** Pixels of one lane. */
template <class T> struct KeyOfLane {
    using Lane = T;
    const uint8_t *first, *second;
    uint8_t* dst;
    T key;

    template <class D> HWY_INLINE hn::Vec<D> load(D d, size_t x) const
    {
        const auto a = hn::LoadU(d, reinterpret_cast<const T*>(first) + x);
        const auto b = hn::LoadU(d, reinterpret_cast<const T*>(second) + x);
        return hn::IfThenElse(hn::Eq(a, hn::Set(d, key)), b, a);
    }
    template <class D> HWY_INLINE void store(D d, hn::Vec<D> v, size_t x) const
    {
        hn::StoreU(v, d, reinterpret_cast<T*>(dst) + x);
    }
    HWY_INLINE void one(size_t x) const
    {
        const size_t at = x * sizeof(T);
        const bool isKey = std::memcmp(first + at, &key, sizeof(T)) == 0;
        std::memcpy(dst + at, (isKey ? second : first) + at, sizeof(T));
    }
};

/** Pixels of three bytes. */
struct KeyOfThree {
    using Lane = uint8_t;
    const uint8_t *first, *second;
    uint8_t* dst;
    const uint8_t* key;

    template <class D> struct Pixels {
        hn::Vec<D> v0, v1, v2;
    };

    template <class D> HWY_INLINE Pixels<D> load(D d, size_t x) const
    {
        const size_t n = hn::Lanes(d);
        const uint8_t *a = first + 3 * x, *b = second + 3 * x;
        const auto planes = loadPlanes<3>(d, a);
        const auto isKey = hn::VecFromMask(d,
            hn::And(
                hn::And(hn::Eq(planes.first, hn::Set(d, key[0])), hn::Eq(planes.second, hn::Set(d, key[1]))),
                hn::Eq(planes.third, hn::Set(d, key[2]))));
        HWY_ALIGN uint8_t mask[3 * hn::MaxLanes(D())];
        storeQuarters<3>(d, quartersOf(d, Planes<D> {isKey, isKey, isKey}), mask);
        return {hn::IfVecThenElse(hn::Load(d, mask), hn::LoadU(d, b), hn::LoadU(d, a)),
            hn::IfVecThenElse(hn::Load(d, mask + n), hn::LoadU(d, b + n), hn::LoadU(d, a + n)),
            hn::IfVecThenElse(hn::Load(d, mask + 2 * n), hn::LoadU(d, b + 2 * n), hn::LoadU(d, a + 2 * n))};
    }
    template <class D> HWY_INLINE void store(D d, Pixels<D> pixels, size_t x) const
    {
        hn::StoreU(pixels.v0, d, dst + 3 * x);
        hn::StoreU(pixels.v1, d, dst + 3 * x + hn::Lanes(d));
        hn::StoreU(pixels.v2, d, dst + 3 * x + 2 * hn::Lanes(d));
    }
    HWY_INLINE void one(size_t x) const
    {
        const bool isKey = std::memcmp(first + 3 * x, key, 3) == 0;
        std::memcpy(dst + 3 * x, (isKey ? second : first) + 3 * x, 3);
    }
};

/** Pixels of a vector at a time; the last vector ends with the row and is computed before the others are
 * stored. */
template <class D, class Row> HWY_INLINE void keyRow(D d, size_t n, const Row& row)
{
    const size_t step = hn::Lanes(d);
    if (n >= step) {
        const auto last = row.load(d, n - step);
        for (size_t x = 0; x + step < n; x += step)
            row.store(d, row.load(d, x), x);
        row.store(d, last, n - step);
    } else if constexpr (hn::MaxLanes(d) * sizeof(hn::TFromD<D>) > 16) {
        keyRow(hn::Half<D>(), n, row);
    } else {
        for (size_t x = 0; x < n; ++x)
            row.one(x);
    }
}

template <class T> void byLane(const Keying& keying)
{
    T key;
    std::memcpy(&key, keying.key, sizeof(T));
    for (size_t y = 0; y < keying.area.height; ++y)
        keyRow(hn::ScalableTag<T>(), keying.area.width,
            KeyOfLane<T> {keying.first.row(y), keying.second.row(y), keying.dst.row(y), key});
}

void byThree(const Keying& keying)
{
    const uint8_t key[3] = {keying.key[0], keying.key[1], keying.key[2]};
    for (size_t y = 0; y < keying.area.height; ++y)
        keyRow(hn::ScalableTag<uint8_t>(), keying.area.width,
            KeyOfThree {keying.first.row(y), keying.second.row(y), keying.dst.row(y), key});
}

constexpr CompColorKeyKernels s_kernels {{byLane<uint8_t>, byLane<uint16_t>, byThree, byLane<uint32_t>}};
} // namespace

const CompColorKeyKernels& compColorKeyKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(compColorKeyKernels);
const CompColorKeyKernels& kernelsCompColorKey() { return HWY_DYNAMIC_DISPATCH(compColorKeyKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/compColorKey.def>
#endif // HWY_ONCE
