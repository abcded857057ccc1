// Grey values by way of doubles, as they are defined, for each instruction set anew.
#if defined(TARNIMG_DISPLAY_DEFINED_ROW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TARNIMG_DISPLAY_DEFINED_ROW_INL_H
#undef TARNIMG_DISPLAY_DEFINED_ROW_INL_H
#else
#define TARNIMG_DISPLAY_DEFINED_ROW_INL_H
#endif

#include <hwy/highway.h>

#include <QtGlobal>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** Numbers from 0 to less than 256; NaN is 0. */
template <class D64, class V> HWY_INLINE void storeAsBytes(D64, V v, quint8* o_target)
{
    const hn::Rebind<std::int32_t, D64> d32;
    const hn::Rebind<std::uint8_t, D64> bytes;
    v = hn::IfThenElseZero(hn::Eq(v, v), v);
    hn::StoreU(hn::DemoteTo(bytes, hn::DemoteTo(d32, v)), bytes, o_target);
}

/** Calls an operation with vectors, and with single elements by way of aligned places at the end. */
template <class T, class Op>
HWY_INLINE void definedRow(const T* i_source, quint8* o_target, std::size_t i_count, const Op& i_op)
{
    const hn::ScalableTag<double> d;
    const hn::CappedTag<double, 1> one;
    std::size_t x = 0;
    for (; x + hn::Lanes(d) <= i_count; x += hn::Lanes(d))
        i_op(d, i_source + x, o_target + x);
    for (; x < i_count; ++x) {
        T element;
        quint8 byte;
        std::memcpy(&element, static_cast<const void*>(i_source + x), sizeof element);
        i_op(one, &element, &byte);
        o_target[x] = byte;
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#endif
