#include "conversion/cImageConverter.h"

#include <cmath>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "conversion/cImageConverter.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// ---- The definition

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

/** The elements, limited to the input range. */
template <class D64, class S>
HWY_INLINE hn::Vec<D64> loadLimited(D64 d, const S* i_source, const LinearMap& i_map)
{
    const auto v = loadAsDouble(d, i_source);
    if (!i_map.limits)
        return v;
    const auto low = hn::Set(d, i_map.low);
    const auto high = hn::Set(d, i_map.high);
    if constexpr (hwy::IsFloat<S>()) { // written out: NaN passes both tests, and an equal low end wins
        const auto notAbove = hn::IfThenElse(hn::Gt(v, high), high, v);
        return hn::IfThenElse(hn::Ge(low, notAbove), low, notAbove);
    } else {
        return hn::Max(hn::Min(v, high), low);
    }
}

/** Subtracts, multiplies, adds: three roundings, never a fused one. */
template <class D64, class V> HWY_INLINE V mapped(D64 d, V v, const LinearMap& i_map)
{
    const V product = hn::Mul(hn::Sub(v, hn::Set(d, i_map.low)), hn::Set(d, i_map.factor));
    return hn::Add(product, hn::Set(d, i_map.offset));
}

/**
 * Halves go upwards for all signs. Negative values are moved up to 0.5 to 2 first, where one more rounding
 * can occur than in floor(w + 0.5): the two differ next to a half.
 */
template <class D64, class V> HWY_INLINE V rounded(D64 d, V w)
{
    const V half = hn::Set(d, 0.5);
    const V below = hn::Trunc(hn::Sub(w, hn::Set(d, 1.0)));
    const V negative = hn::Add(hn::Trunc(hn::Add(hn::Sub(w, below), half)), below);
    return hn::IfThenElse(hn::Ge(w, hn::Zero(d)), hn::Trunc(hn::Add(w, half)), negative);
}

/** The low 32 bits of whole numbers; 0 for what is not finite. */
template <class D64, class V> HWY_INLINE auto lowBits(D64 d, V r)
{
    const V two32 = hn::Set(d, 0x1p32);
    const V times = hn::Floor(hn::Mul(r, hn::Set(d, 0x1p-32)));
    r = hn::Sub(r, hn::Mul(times, two32)); // exact
    r = hn::IfThenElseZero(hn::Eq(r, r), r);
    r = hn::Sub(r, hn::IfThenElseZero(hn::Ge(r, hn::Set(d, 0x1p31)), two32));
    const hn::Rebind<std::uint32_t, D64> bits;
    return hn::BitCast(bits, hn::DemoteTo(hn::Rebind<std::int32_t, D64>(), r));
}

/** Stores the low bits. */
template <class T, class D64, class V32> HWY_INLINE void storeBits(D64, V32 bits, T* o_target)
{
    using U = std::make_unsigned_t<T>;
    const hn::Rebind<U, D64> du;
    const hn::Rebind<T, D64> dt;
    if constexpr (sizeof(T) == 4)
        hn::StoreU(hn::BitCast(dt, bits), dt, o_target);
    else
        hn::StoreU(hn::BitCast(dt, hn::TruncateTo(du, bits)), dt, o_target);
}

template <class S, class T, class D64>
HWY_INLINE void convertByDefinition(D64 d, const S* i_source, T* o_target, const LinearMap& i_map)
{
    const auto w = mapped(d, loadLimited(d, i_source, i_map), i_map);
    if constexpr (std::is_same_v<T, double>) {
        hn::StoreU(w, d, o_target);
    } else if constexpr (std::is_same_v<T, float>) {
        const hn::Rebind<float, D64> df;
        hn::StoreU(hn::DemoteTo(df, w), df, o_target);
    } else {
        storeBits(d, lowBits(d, rounded(d, w)), o_target);
    }
}

// ---- The guess

/**
 * The elements mapped by one multiplication and addition whose constant is so large that the double's low
 * bits are a number with a fixed point; see LinearMap::guess.
 */
template <class D64, class S>
HWY_INLINE hn::Vec<D64> guessed(D64 d, const S* i_source, const LinearMap& i_map)
{
    auto v = loadAsDouble(d, i_source);
    if (i_map.limits)
        v = hn::Max(hn::Min(v, hn::Set(d, i_map.high)), hn::Set(d, i_map.low));
    return hn::MulAdd(v, hn::Set(d, i_map.factor), hn::Set(d, i_map.guess.constant));
}

/** No element lies so near a half that its rounding is in doubt, and none is not a number. */
template <class S, class D64, class VU64>
HWY_INLINE bool isCertain(D64 d, const S* i_source, VU64 bits0, VU64 bits1, const LinearMap& i_map)
{
    const hn::RebindToUnsigned<D64> du;
    const auto doubtful = hn::Set(du, i_map.guess.doubtful);
    auto isDoubtful = hn::Or(
        hn::Eq(hn::And(bits0, doubtful), hn::Zero(du)), hn::Eq(hn::And(bits1, doubtful), hn::Zero(du)));
    if constexpr (hwy::IsFloat<S>()) {
        const auto v0 = loadAsDouble(d, i_source), v1 = loadAsDouble(d, i_source + hn::Lanes(d));
        isDoubtful = hn::Or(isDoubtful, hn::RebindMask(du, hn::Or(hn::IsNaN(v0), hn::IsNaN(v1))));
    }
    return hn::AllFalse(du, isDoubtful);
}

/** Two vectors at once. */
template <class S, class T, class D64>
HWY_INLINE void convertPair(D64 d, const S* i_source, T* o_target, const LinearMap& i_map)
{
    const std::size_t lanes = hn::Lanes(d);
    const hn::RebindToUnsigned<D64> du;
    const hn::Repartition<std::uint32_t, D64> d32;
    auto bits0 = hn::BitCast(du, guessed(d, i_source, i_map));
    auto bits1 = hn::BitCast(du, guessed(d, i_source + lanes, i_map));
    if (HWY_UNLIKELY(!isCertain(d, i_source, bits0, bits1, i_map))) {
        convertByDefinition(d, i_source, o_target, i_map);
        convertByDefinition(d, i_source + lanes, o_target + lanes, i_map);
        return;
    }
    const hn::Rebind<T, decltype(d32)> dt;
    if constexpr (sizeof(T) == 4) {
        bits0 = hn::ShiftRight<LinearMap::fractionBits<T>>(bits0);
        bits1 = hn::ShiftRight<LinearMap::fractionBits<T>>(bits1);
        hn::StoreU(hn::BitCast(dt, hn::ConcatEven(d32, hn::BitCast(d32, bits1), hn::BitCast(d32, bits0))), dt,
            o_target);
    } else {
        static_assert(LinearMap::fractionBits<T> == 32);
        const auto whole = hn::ConcatOdd(d32, hn::BitCast(d32, bits1), hn::BitCast(d32, bits0));
        const hn::Rebind<std::make_unsigned_t<T>, decltype(d32)> dtu;
        hn::StoreU(hn::BitCast(dt, hn::TruncateTo(dtu, whole)), dt, o_target);
    }
}

// ---- Lanes of 16 bits

template <class D16, class S>
HWY_INLINE hn::Vec<D16> loadLimited16(D16 d, const S* i_source, const LinearMap& i_map)
{
    using Lane = std::conditional_t<std::is_same_v<S, quint16>, std::uint16_t, std::int16_t>;
    const hn::Rebind<Lane, D16> dl;
    const hn::Rebind<S, D16> ds;
    hn::Vec<decltype(dl)> v;
    if constexpr (sizeof(S) == 1)
        v = hn::PromoteTo(dl, hn::LoadU(ds, i_source));
    else
        v = hn::LoadU(ds, i_source);
    if (i_map.limits)
        v = hn::Max(hn::Min(v, hn::Set(dl, Lane(i_map.fixed.high))), hn::Set(dl, Lane(i_map.fixed.low)));
    return hn::BitCast(d, v);
}

template <class S, class T, class D16>
HWY_INLINE void convertFixed(D16 d, const S* i_source, T* o_target, const LinearMap& i_map)
{
    const auto& fixed = i_map.fixed;
    const auto v = hn::Sub(loadLimited16(d, i_source, i_map), hn::Set(d, fixed.subtrahend));
    const auto upper = hn::Set(d, fixed.upper);
    const auto whole = hn::Add(hn::MulHigh(v, upper), hn::Mul(v, hn::Set(d, fixed.whole)));
    // The mean of two fractions of 2^-16 is their sum in units of 2^-15; one more shift makes room for the
    // start.
    const auto fraction = hn::AverageRound(hn::Mul(v, upper), hn::MulHigh(v, hn::Set(d, fixed.lower)));
    const auto rest = hn::Add(hn::ShiftRight<1>(fraction), hn::Set(d, fixed.start));
    const auto result = hn::Add(hn::Add(whole, hn::ShiftRight<14>(rest)), hn::Set(d, fixed.base));

    // Within two units of 2^-14 of a whole number, the sum may belong to its other side.
    const auto place
        = hn::And(hn::Add(rest, hn::Set(d, std::uint16_t(2))), hn::Set(d, std::uint16_t(0x3FFC)));
    if (HWY_LIKELY(hn::AllFalse(d, hn::Eq(place, hn::Zero(d))))) {
        const hn::Rebind<T, D16> dt;
        if constexpr (sizeof(T) == 2)
            hn::StoreU(hn::BitCast(dt, result), dt, o_target);
        else
            hn::StoreU(
                hn::BitCast(dt, hn::TruncateTo(hn::Rebind<std::uint8_t, D16>(), result)), dt, o_target);
    } else {
        const hn::ScalableTag<double> d64;
        for (std::size_t x = 0; x < hn::Lanes(d); x += hn::Lanes(d64))
            convertByDefinition(d64, i_source + x, o_target + x, i_map);
    }
}

// ---- Rows

template <class S, class T>
void convertRow(const S* i_source, T* o_target, std::size_t i_count, const LinearMap& i_map)
{
    const LinearMap map = i_map; // stays in registers: no store can reach it
    const hn::ScalableTag<double> d;
    const hn::CappedTag<double, 1> one;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    if constexpr (std::is_integral_v<S> && std::is_integral_v<T> && sizeof(S) <= 2 && sizeof(T) <= 2) {
        const hn::ScalableTag<std::uint16_t> d16;
        if (map.fixed.usable)
            for (; x + hn::Lanes(d16) <= i_count; x += hn::Lanes(d16))
                convertFixed(d16, i_source + x, o_target + x, map);
    }
    if constexpr (std::is_integral_v<T>) {
        if (map.guess.usable)
            for (; x + 2 * lanes <= i_count; x += 2 * lanes)
                convertPair(d, i_source + x, o_target + x, map);
    }
    for (; x + lanes <= i_count; x += lanes)
        convertByDefinition(d, i_source + x, o_target + x, map);
    for (; x < i_count;
         ++x) { // by way of aligned places: a vector of one lane is read and written as a number
        S from;
        T to;
        std::memcpy(&from, static_cast<const void*>(i_source + x), sizeof(S));
        convertByDefinition(one, &from, &to, map);
        std::memcpy(static_cast<void*>(o_target + x), &to, sizeof(T));
    }
}

template <class S> constexpr ConvertersFrom<S> convertersFrom()
{
    return {convertRow<S, quint8>, convertRow<S, quint16>, convertRow<S, quint32>, convertRow<S, qint8>,
        convertRow<S, qint16>, convertRow<S, qint32>, convertRow<S, float>, convertRow<S, double>};
}

} // namespace

const ConverterTable& table()
{
    static constexpr ConverterTable table {convertersFrom<quint8>(), convertersFrom<quint16>(),
        convertersFrom<quint32>(), convertersFrom<qint8>(), convertersFrom<qint16>(),
        convertersFrom<qint32>(), convertersFrom<float>(), convertersFrom<double>()};
    return table;
}

} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace conversion {

HWY_EXPORT(table);

const ConverterTable& converterTable() { return HWY_DYNAMIC_DISPATCH(table)(); }

namespace {

/** Halves upwards, as in the vector form; limited to the type, as no wider integer is at hand to take low
 * bits of. */
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
