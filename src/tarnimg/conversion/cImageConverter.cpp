#include "conversion/cImageConverter.h"

#include <cstring>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "conversion/cImageConverter.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** Every value of the element types here is exact in a double. */
template <class D64, class S>
HWY_INLINE hn::Vec<D64> loadAsDouble(D64 d, const S* i_source)
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

/** Limits, subtracts, multiplies, adds: four roundings at most, never a fused one. */
template <class S, class D64, class V>
HWY_INLINE V mapped(D64 d, V v, const LinearMap& i_map)
{
    const V low = hn::Set(d, i_map.low);
    const V high = hn::Set(d, i_map.high);
    if constexpr (hwy::IsFloat<S>()) { // written out: NaN passes both tests, and an equal low end wins
        v = hn::IfThenElse(hn::Gt(v, high), high, v);
        v = hn::IfThenElse(hn::Ge(low, v), low, v);
    } else {
        v = hn::Max(hn::Min(v, high), low);
    }
    return hn::Add(hn::Mul(hn::Sub(v, low), hn::Set(d, i_map.factor)), hn::Set(d, i_map.offset));
}

/**
 * Halves go upwards for all signs. Negative values are moved up to 0.5 to 2 first, where one more rounding can occur
 * than in floor(w + 0.5): the two differ next to a half.
 */
template <class D64, class V>
HWY_INLINE V rounded(D64 d, V w)
{
    const V half = hn::Set(d, 0.5);
    const V below = hn::Trunc(hn::Sub(w, hn::Set(d, 1.0)));
    const V negative = hn::Add(hn::Trunc(hn::Add(hn::Sub(w, below), half)), below);
    return hn::IfThenElse(hn::Ge(w, hn::Zero(d)), hn::Trunc(hn::Add(w, half)), negative);
}

/** The whole number modulo 2^32, exactly, in 0 to 2^32 - 1; 0 for what is not finite. */
template <class D64, class V>
HWY_INLINE V wrapped(D64 d, V r)
{
    const V times = hn::Floor(hn::Mul(r, hn::Set(d, 1.0 / 4294967296.0)));
    r = hn::Sub(r, hn::Mul(times, hn::Set(d, 4294967296.0)));
    return hn::IfThenElseZero(hn::Eq(r, r), r);
}

/** Stores whole numbers that an element of type T can hold. */
template <class T, class D64, class V>
HWY_INLINE void storeWhole(D64 d, V r, T* o_target)
{
    const hn::Rebind<T, D64> dt;
    const hn::Rebind<std::int32_t, D64> d32;
    if constexpr (std::is_same_v<T, quint32>) {
        const auto shifted = hn::BitCast(dt, hn::DemoteTo(d32, hn::Sub(r, hn::Set(d, 2147483648.0))));
        hn::StoreU(hn::Xor(shifted, hn::Set(dt, 0x80000000u)), dt, o_target);
    } else if constexpr (std::is_same_v<T, qint32>) {
        hn::StoreU(hn::DemoteTo(d32, r), dt, o_target);
    } else {
        hn::StoreU(hn::DemoteTo(dt, hn::DemoteTo(d32, r)), dt, o_target);
    }
}

/** Stores the low bits of any whole number. */
template <class T, class D64, class V>
HWY_INLINE void storeWrapped(D64 d, V r, T* o_target)
{
    r = wrapped(d, r);
    if constexpr (std::is_same_v<T, quint32>) {
        storeWhole(d, r, o_target);
    } else {
        const hn::Rebind<T, D64> dt;
        const hn::Rebind<std::int32_t, D64> d32;
        const V two32 = hn::Set(d, 4294967296.0);
        r = hn::Sub(r, hn::IfThenElseZero(hn::Ge(r, hn::Set(d, 2147483648.0)), two32));
        const auto bits = hn::DemoteTo(d32, r);
        constexpr int unused = 32 - 8 * int(sizeof(T));
        if constexpr (unused == 0)
            hn::StoreU(bits, dt, o_target);
        else if constexpr (std::is_signed_v<T>)
            hn::StoreU(hn::DemoteTo(dt, hn::ShiftRight<unused>(hn::ShiftLeft<unused>(bits))), dt, o_target);
        else
            hn::StoreU(hn::DemoteTo(dt, hn::And(bits, hn::Set(d32, std::int32_t(T(~T(0)))))), dt, o_target);
    }
}

template <class S, class T, class D64>
HWY_INLINE void convertVector(D64 d, const S* i_source, T* o_target, const LinearMap& i_map)
{
    using V = hn::Vec<D64>;
    const V w = mapped<S>(d, loadAsDouble(d, i_source), i_map);
    if constexpr (std::is_same_v<T, double>) {
        hn::StoreU(w, d, o_target);
    } else if constexpr (std::is_same_v<T, float>) {
        const hn::Rebind<float, D64> df;
        hn::StoreU(hn::DemoteTo(df, w), df, o_target);
    } else if (i_map.store == Store::Wraps) {
        storeWrapped(d, rounded(d, w), o_target);
    } else {
        V r = i_map.store == Store::NonNegative ? hn::Trunc(hn::Add(w, hn::Set(d, 0.5))) : rounded(d, w);
        if constexpr (hwy::IsFloat<S>())
            r = hn::IfThenElseZero(hn::Eq(r, r), r);
        storeWhole(d, r, o_target);
    }
}

template <class S, class T>
void convertRow(const S* i_source, T* o_target, std::size_t i_count, const LinearMap& i_map)
{
    const hn::ScalableTag<double> d;
    const hn::CappedTag<double, 1> one;
    const LinearMap map = i_map; // stays in registers: no store can reach it
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + lanes <= i_count; x += lanes)
        convertVector(d, i_source + x, o_target + x, map);
    for (; x < i_count; ++x)
        convertVector(one, i_source + x, o_target + x, map);
}

template <class S>
constexpr ConvertersFrom<S> convertersFrom()
{
    return {convertRow<S, quint8>, convertRow<S, quint16>, convertRow<S, quint32>, convertRow<S, qint8>,
        convertRow<S, qint16>, convertRow<S, qint32>, convertRow<S, float>, convertRow<S, double>};
}

} // namespace

const ConverterTable& table()
{
    static constexpr ConverterTable table{convertersFrom<quint8>(), convertersFrom<quint16>(),
        convertersFrom<quint32>(), convertersFrom<qint8>(), convertersFrom<qint16>(), convertersFrom<qint32>(),
        convertersFrom<float>(), convertersFrom<double>()};
    return table;
}

} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace conversion {

HWY_EXPORT(table);

const ConverterTable& converterTable()
{
    return HWY_DYNAMIC_DISPATCH(table)();
}

namespace {

/** Halves upwards, as in the vector form; limited to the type, as no wider integer is at hand to take low bits of. */
qint64 roundedToInt64(double i_value)
{
    double r;
    if (i_value >= 0.0) {
        r = std::trunc(i_value + 0.5);
    } else {
        const double below = std::trunc(i_value - 1.0);
        r = std::trunc(i_value - below + 0.5) + below;
    }
    if (std::isnan(r))
        return 0;
    if (r >= 9223372036854775808.0)
        return std::numeric_limits<qint64>::max();
    return r >= -9223372036854775808.0 ? qint64(r) : std::numeric_limits<qint64>::min();
}

} // namespace

void convertInt64Row(const qint64* i_source, qint64* o_target, std::size_t i_count, const LinearMap& i_map)
{
    for (std::size_t x = 0; x < i_count; ++x) {
        qint64 element;
        std::memcpy(&element, i_source + x, sizeof element); // rows may begin at any byte
        double v = double(element);
        v = v > i_map.high ? i_map.high : v;
        v = i_map.low >= v ? i_map.low : v;
        element = roundedToInt64((v - i_map.low) * i_map.factor + i_map.offset);
        std::memcpy(o_target + x, &element, sizeof element);
    }
}

} // namespace conversion
#endif // HWY_ONCE
