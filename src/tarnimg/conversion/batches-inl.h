// What ways to integers share that take several vectors at once, for each instruction set anew.
#if defined(TARNIMG_CONVERSION_BATCHES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TARNIMG_CONVERSION_BATCHES_INL_H
#undef TARNIMG_CONVERSION_BATCHES_INL_H
#else
#define TARNIMG_CONVERSION_BATCHES_INL_H
#endif

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/**
 * Asks for the memory that lies 4 KiB behind a batch, before it is time to read it: an image in the outer
 * caches comes too late otherwise. Beyond the image nothing happens.
 */
template <class S> HWY_INLINE void fetchAhead(const S* i_source, std::size_t i_count)
{
    const auto from = reinterpret_cast<std::uintptr_t>(i_source) + 4096;
    for (std::size_t i = 0; i < i_count * sizeof(S); i += 64)
        hwy::Prefetch(reinterpret_cast<const char*>(from + i));
}

/** Elements of which none is NaN. Infinities of both signs are taken for NaN too, which costs time only. */
template <class S> HWY_INLINE bool areNumbers(const S* i_source, std::size_t i_count)
{
    const hn::ScalableTag<S> d;
    auto sum = hn::LoadU(d, i_source);
    for (std::size_t x = hn::Lanes(d); x < i_count; x += hn::Lanes(d))
        sum = hn::Add(sum, hn::LoadU(d, i_source + x));
    return hn::AllFalse(d, hn::IsNaN(sum));
}

/** The low 16 bits of each of 32, one vector behind the other. */
template <class V> HWY_INLINE auto lowWords(V i_v0, V i_v1)
{
    const hn::ScalableTag<std::uint16_t> d;
    return hn::ConcatEven(d, hn::BitCast(d, i_v1), hn::BitCast(d, i_v0));
}

/** Stores the low bits of the lanes of 32 bits of whole vectors, as many as the target has. */
template <class V, class T> HWY_INLINE void storeLowBits(V i_v0, V i_v1, T* o_target)
{
    const hn::ScalableTag<T> d;
    if constexpr (sizeof(T) == 4) {
        hn::StoreU(hn::BitCast(d, i_v0), d, o_target);
        hn::StoreU(hn::BitCast(d, i_v1), d, o_target + hn::Lanes(d));
    } else if constexpr (sizeof(T) == 2) {
        hn::StoreU(hn::BitCast(d, lowWords(i_v0, i_v1)), d, o_target);
    } else {
        const hn::Half<hn::ScalableTag<std::uint8_t>> bytes;
        hn::StoreU(
            hn::TruncateTo(bytes, lowWords(i_v0, i_v1)), bytes, reinterpret_cast<std::uint8_t*>(o_target));
    }
}

template <class V, class T> HWY_INLINE void storeLowBits(V i_v0, V i_v1, V i_v2, V i_v3, T* o_target)
{
    if constexpr (sizeof(T) == 1) {
        const hn::ScalableTag<T> d;
        const auto words01 = hn::BitCast(d, lowWords(i_v0, i_v1));
        const auto words23 = hn::BitCast(d, lowWords(i_v2, i_v3));
        hn::StoreU(hn::ConcatEven(d, words23, words01), d, o_target);
    } else {
        storeLowBits(i_v0, i_v1, o_target);
        storeLowBits(i_v2, i_v3, o_target + 2 * hn::Lanes(hn::ScalableTag<std::uint32_t>()));
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#endif
