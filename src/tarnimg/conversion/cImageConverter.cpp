#include "conversion/cImageConverter.h"

#include <cmath>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "conversion/cImageConverter.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "conversion/mapDefinition-inl.h"
#include "conversion/mapGuess-inl.h"
#include "conversion/mapIntegers-inl.h"

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

template <class S, class T>
void convertRow(const S* i_source, T* o_target, std::size_t i_count, const LinearMap& i_map)
{
    constexpr bool fromInteger = std::is_integral_v<S>;
    const LinearMap map = i_map; // stays in registers: no store can reach it
    const hn::ScalableTag<double> d;
    const hn::CappedTag<double, 1> one;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    if constexpr (fromInteger && std::is_integral_v<T> && sizeof(S) <= 2 && sizeof(T) <= 2) {
        const hn::ScalableTag<std::uint16_t> d16;
        if (map.fixed.usable)
            for (; x + hn::Lanes(d16) <= i_count; x += hn::Lanes(d16))
                mapWords(d16, i_source + x, o_target + x, map);
    }
    if constexpr (fromInteger && !std::is_same_v<S, quint32> && sizeof(T) == 4) {
        const hn::ScalableTag<std::int32_t> d32;
        if (map.integral.usable)
            for (; x + hn::Lanes(d32) <= i_count; x += hn::Lanes(d32))
                mapIntegral(d32, i_source + x, o_target + x, map);
    }
    if constexpr (std::is_integral_v<T>) {
        if (map.guess.usable) {
            for (; x + guessedAtOnce(d) <= i_count; x += guessedAtOnce(d)) {
                if (!mapByGuess(d, i_source + x, o_target + x, map))
                    for (std::size_t i = 0; i < guessedAtOnce(d); i += lanes)
                        mapByDefinition(d, i_source + x + i, o_target + x + i, map);
            }
        }
    }
    for (; x + lanes <= i_count; x += lanes)
        mapByDefinition(d, i_source + x, o_target + x, map);
    for (; x < i_count;
         ++x) { // by way of aligned places: a vector of one lane is read and written as a number
        S from;
        T to;
        std::memcpy(&from, static_cast<const void*>(i_source + x), sizeof(S));
        mapByDefinition(one, &from, &to, map);
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
