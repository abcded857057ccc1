// Elements as doubles, for each instruction set anew.
#if defined(TARNIMG_CONVERSION_LOAD_AS_DOUBLE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TARNIMG_CONVERSION_LOAD_AS_DOUBLE_INL_H
#undef TARNIMG_CONVERSION_LOAD_AS_DOUBLE_INL_H
#else
#define TARNIMG_CONVERSION_LOAD_AS_DOUBLE_INL_H
#endif

#include <hwy/highway.h>

#include <QtGlobal>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** Every value of the element types here is exact in a double. */
template <class D64, class S> HWY_INLINE hn::Vec<D64> loadAsDouble(D64 d, const S* i_source)
{
    const hn::Rebind<S, D64> ds;
    const hn::Rebind<std::int32_t, D64> d32;
    if constexpr (std::is_same_v<S, double>) {
        return hn::LoadU(d, i_source);
    } else if constexpr (sizeof(S) < 4) {
        return hn::PromoteTo(d, hn::PromoteTo(d32, hn::LoadU(ds, i_source)));
    } else if constexpr (std::is_same_v<S, quint32>) {
        // There is no promotion from unsigned: shift the values by 2^31 and back.
        const auto shifted = hn::Xor(hn::LoadU(ds, i_source), hn::Set(ds, 0x80000000u));
        return hn::Add(hn::PromoteTo(d, hn::BitCast(d32, shifted)), hn::Set(d, 2147483648.0));
    } else {
        return hn::PromoteTo(d, hn::LoadU(ds, i_source));
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#endif
