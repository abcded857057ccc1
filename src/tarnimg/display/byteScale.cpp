// Grey values from numbers, a vector at a time. Compiled once for every instruction set; all give the same
// bytes.
#include "display/byteScale.h"

#include <cmath>
#include <cstring>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/byteScale.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "display/packBytes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// ---- Elements as doubles, doubles as bytes

template <class D64, class T> HWY_INLINE hn::Vec<D64> loadAsDouble(D64 d, const T* i_source)
{
    const hn::Rebind<T, D64> dt;
    const hn::Rebind<std::int32_t, D64> d32;
    if constexpr (std::is_same_v<T, double>) {
        return hn::LoadU(d, i_source);
    } else if constexpr (std::is_same_v<T, qint64>) {
        return hn::ConvertTo(
            d, hn::LoadU(hn::RebindToSigned<D64>(), reinterpret_cast<const std::int64_t*>(i_source)));
    } else if constexpr (sizeof(T) < 4) {
        return hn::PromoteTo(d, hn::PromoteTo(d32, hn::LoadU(dt, i_source)));
    } else if constexpr (std::is_same_v<T, quint32>) {
        // There is no promotion from unsigned: shift the values by 2^31 and back.
        const auto shifted = hn::Xor(hn::LoadU(dt, i_source), hn::Set(dt, 0x80000000u));
        return hn::Add(hn::PromoteTo(d, hn::BitCast(d32, shifted)), hn::Set(d, 2147483648.0));
    } else {
        return hn::PromoteTo(d, hn::LoadU(dt, i_source));
    }
}

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

// ---- Integers

struct IntegerDefinition {
    double low, step, bias, first, last;

    HWY_INLINE explicit IntegerDefinition(const IntegerScale& i_scale)
        : low(i_scale.low),
          step(i_scale.step),
          bias(i_scale.bias),
          first(double(i_scale.first)),
          last(double(i_scale.last))
    {
    }

    template <class D64, class T> HWY_INLINE void operator()(D64 d, const T* i_source, quint8* o_target) const
    {
        const auto v = loadAsDouble(d, i_source);
        auto grey
            = hn::Trunc(hn::Add(hn::Div(hn::Sub(v, hn::Set(d, low)), hn::Set(d, step)), hn::Set(d, bias)));
        grey = hn::IfThenElse(hn::Ge(v, hn::Set(d, last)), hn::Set(d, 255.0), grey);
        storeAsBytes(d, hn::IfThenZeroElse(hn::Le(v, hn::Set(d, first)), grey), o_target);
    }
};

/** The distance from the first value as an unsigned number, after the limits. */
template <class DF, class T> HWY_INLINE auto distance(DF, const T* i_source, const IntegerScale& i_scale)
{
    const hn::Rebind<T, DF> dt;
    const hn::RebindToUnsigned<DF> bits;
    if constexpr (std::is_same_v<T, quint32>) {
        const auto v = hn::LoadU(dt, i_source);
        const auto first = hn::Set(bits, quint32(i_scale.first));
        return hn::Sub(hn::Max(hn::Min(v, hn::Set(bits, quint32(i_scale.last))), first), first);
    } else {
        const hn::RebindToSigned<DF> d32;
        hn::Vec<decltype(d32)> v;
        if constexpr (sizeof(T) == 4)
            v = hn::LoadU(d32, i_source);
        else
            v = hn::PromoteTo(d32, hn::LoadU(dt, i_source));
        const auto first = hn::Set(d32, qint32(i_scale.first));
        v = hn::Max(hn::Min(v, hn::Set(d32, qint32(i_scale.last))), first);
        return hn::BitCast(bits, hn::Sub(v, first)); // wraps to the right unsigned number
    }
}

/** The guess: false, with nothing stored, if a grey value is in doubt. */
template <bool ForcesEnds, int Shift, class DF, class T>
HWY_INLINE bool storeGuess(DF d, const T* i_source, quint8* o_target, const IntegerScale& i_scale)
{
    constexpr std::int32_t doubt = 16; // twice the greatest error
    const hn::RebindToSigned<DF> d32;
    const auto away = distance(d, i_source, i_scale);
    const auto number = hn::ConvertTo(d, hn::BitCast(d32, hn::ShiftRight<Shift>(away)));
    auto grey = hn::ConvertTo(
        d32, hn::Add(hn::Mul(number, hn::Set(d, i_scale.guess.factor)), hn::Set(d, i_scale.guess.offset)));
    auto isDoubtful
        = hn::Lt(hn::And(hn::Add(grey, hn::Set(d32, doubt)), hn::Set(d32, 0xFFFF)), hn::Set(d32, 2 * doubt));
    if constexpr (ForcesEnds) {
        const auto isFirst = hn::Eq(hn::BitCast(d32, away), hn::Zero(d32));
        const auto isLast
            = hn::Eq(hn::BitCast(d32, away), hn::Set(d32, qint32(quint32(i_scale.last - i_scale.first))));
        isDoubtful = hn::AndNot(hn::Or(isFirst, isLast), isDoubtful);
        grey = hn::IfThenElse(isLast, hn::Set(d32, 255 << 16), hn::IfThenZeroElse(isFirst, grey));
    }
    if (HWY_UNLIKELY(!hn::AllFalse(d32, isDoubtful)))
        return false;
    const hn::Rebind<std::uint8_t, DF> bytes;
    hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<16>(grey)), bytes, o_target);
    return true;
}

template <bool ForcesEnds, int Shift, class T>
void guessedRow(const T* i_source, quint8* o_target, std::size_t i_count, const IntegerScale& i_scale)
{
    const IntegerScale scale = i_scale; // stays in registers: no store can reach it
    const IntegerDefinition definition(scale);
    const hn::ScalableTag<float> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + lanes <= i_count; x += lanes)
        if (!storeGuess<ForcesEnds, Shift>(d, i_source + x, o_target + x, scale))
            definedRow(i_source + x, o_target + x, lanes, definition);
    definedRow(i_source + x, o_target + x, i_count - x, definition);
}

/** The grey values of a vector by the proven line, in the low 16 of 32 bits; none of them is in doubt. */
template <class DF, class T> HWY_INLINE auto byLine(DF d, const T* i_source, const IntegerScale& i_scale)
{
    const hn::RebindToSigned<DF> d32;
    const auto number = hn::ConvertTo(d, hn::BitCast(d32, distance(d, i_source, i_scale)));
    const auto grey
        = hn::Add(hn::Mul(number, hn::Set(d, i_scale.line.factor)), hn::Set(d, i_scale.line.offset));
    return hn::BitCast(d32, hn::Add(grey, hn::Set(d, GreyLine::whole)));
}

template <class T>
void lineRow(const T* i_source, quint8* o_target, std::size_t i_count, const IntegerScale& i_scale)
{
    const IntegerScale scale = i_scale; // stays in registers: no store can reach it
    const PackOrder order;
    const hn::ScalableTag<float> d;
    const hn::ScalableTag<std::uint8_t> bytes;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + 4 * lanes <= i_count; x += 4 * lanes) {
        const T* source = i_source + x;
        hn::StoreU(packBytes(byLine(d, source, scale), byLine(d, source + lanes, scale),
                       byLine(d, source + 2 * lanes, scale), byLine(d, source + 3 * lanes, scale), order),
            bytes, o_target + x);
    }
    definedRow(i_source + x, o_target + x, i_count - x, IntegerDefinition(scale));
}

template <class T>
void integerRow(const T* i_source, quint8* o_target, std::size_t i_count, const IntegerScale& i_scale)
{
    if (i_scale.line.proven)
        lineRow(i_source, o_target, i_count, i_scale);
    else if (!i_scale.guess.usable)
        definedRow(i_source, o_target, i_count, IntegerDefinition(i_scale));
    else if (i_scale.guess.shift != 0)
        guessedRow<true, 1>(i_source, o_target, i_count, i_scale);
    else if (i_scale.guess.forcesEnds)
        guessedRow<true, 0>(i_source, o_target, i_count, i_scale);
    else
        guessedRow<false, 0>(i_source, o_target, i_count, i_scale);
}

/** 64 bits: the low byte of the truncated distance. */
struct Distance64 {
    double low;
    std::int64_t first, last;

    template <class D64> HWY_INLINE void operator()(D64 d, const qint64* i_source, quint8* o_target) const
    {
        const hn::RebindToSigned<D64> d64;
        const auto v = hn::LoadU(d64, reinterpret_cast<const std::int64_t*>(i_source));
        const auto away = hn::Trunc(hn::Sub(hn::ConvertTo(d, v), hn::Set(d, low)));
        const auto times = hn::Floor(hn::Mul(away, hn::Set(d, 1.0 / 256.0)));
        auto grey = hn::Sub(away, hn::Mul(times, hn::Set(d, 256.0))); // exact
        grey = hn::IfThenElse(hn::RebindMask(d, hn::Lt(v, hn::Set(d64, last))), grey, hn::Set(d, 255.0));
        grey = hn::IfThenElseZero(hn::RebindMask(d, hn::Gt(v, hn::Set(d64, first))), grey);
        storeAsBytes(d, grey, o_target);
    }
};

/** The same where the truncated distance is that of whole numbers. */
struct WholeDistance64 {
    std::int64_t origin, first, last;

    template <class D64> HWY_INLINE void operator()(D64, const qint64* i_source, quint8* o_target) const
    {
        const hn::RebindToSigned<D64> d64;
        const hn::RebindToUnsigned<D64> bits;
        const hn::Rebind<std::uint8_t, D64> bytes;
        const auto v = hn::LoadU(d64, reinterpret_cast<const std::int64_t*>(i_source));
        const auto away = hn::Sub(v, hn::Set(d64, origin));
        const auto upTo255 = hn::IfThenElse(hn::Lt(v, hn::Set(d64, last)), away, hn::Set(d64, 255));
        const auto grey = hn::IfThenElseZero(hn::Gt(v, hn::Set(d64, first)), upTo255);
        hn::StoreU(hn::TruncateTo(bytes, hn::BitCast(bits, grey)), bytes, o_target);
    }
};

void integer64Row(const qint64* i_source, quint8* o_target, std::size_t i_count, const IntegerScale& i_scale)
{
    if (i_scale.whole.usable) {
        definedRow(
            i_source, o_target, i_count, WholeDistance64 {i_scale.whole.origin, i_scale.first, i_scale.last});
        return;
    }
    definedRow(i_source, o_target, i_count, Distance64 {i_scale.low, i_scale.first, i_scale.last});
}

// ---- Floats

struct FloatDefinition {
    FloatScale scale;

    template <class D64> HWY_INLINE void operator()(D64 d, const double* i_source, quint8* o_target) const
    {
        const auto low = hn::Set(d, scale.low);
        const auto high = hn::Set(d, scale.high);
        auto v = hn::LoadU(d, i_source);
        v = hn::IfThenElse(hn::Gt(v, high), high, v); // NaN stays
        v = hn::IfThenElse(hn::Lt(v, low), low, v);
        const auto grey = hn::Div(hn::Mul(hn::Sub(v, low), hn::Set(d, 255.0)), hn::Set(d, scale.width));
        const auto rounded = hn::Trunc(hn::Add(grey, hn::Set(d, 0.5)));
        storeAsBytes(
            d, hn::IfThenElse(hn::Gt(rounded, hn::Set(d, 255.0)), hn::Set(d, 255.0), rounded), o_target);
    }
};

/**
 * The guess of four vectors: false, with nothing stored, if a grey value is in doubt or an element is no
 * number. The sum with a large constant has the grey value's fraction in its last bits.
 */
template <class D64>
HWY_INLINE bool storeGuess(D64 d, const double* i_source, quint8* o_target, const FloatScale& i_scale)
{
    const hn::RebindToUnsigned<D64> bits;
    const hn::Rebind<std::uint8_t, D64> bytes;
    const std::size_t lanes = hn::Lanes(d);
    const auto guess = [&](auto i_values) HWY_ATTR {
        const auto limited = hn::Max(hn::Min(i_values, hn::Set(d, i_scale.high)), hn::Set(d, i_scale.low));
        const auto grey = hn::Mul(hn::Sub(limited, hn::Set(d, i_scale.low)), hn::Set(d, i_scale.slope));
        // The half that rounds, two units in the last place as margin, and what makes that place 2^-24.
        return hn::BitCast(bits, hn::Add(grey, hn::Set(d, 0.5 + 0x1p-23 + 0x1.8p28)));
    };
    const auto isDoubtful = [&](auto i_guess) HWY_ATTR {
        return hn::Eq(hn::And(i_guess, hn::Set(bits, 0xFFFFFCu)), hn::Zero(bits));
    };
    const auto v0 = hn::LoadU(d, i_source);
    const auto v1 = hn::LoadU(d, i_source + lanes);
    const auto v2 = hn::LoadU(d, i_source + 2 * lanes);
    const auto v3 = hn::LoadU(d, i_source + 3 * lanes);
    const auto guess0 = guess(v0);
    const auto guess1 = guess(v1);
    const auto guess2 = guess(v2);
    const auto guess3 = guess(v3);
    // Infinities of both signs give NaN here too, which costs time only.
    const auto sum = hn::Add(hn::Add(v0, v1), hn::Add(v2, v3));
    const auto doubts = hn::Or(hn::Or(hn::Or(isDoubtful(guess0), isDoubtful(guess1)),
                                   hn::Or(isDoubtful(guess2), isDoubtful(guess3))),
        hn::RebindMask(bits, hn::IsNaN(sum)));
    if (HWY_UNLIKELY(!hn::AllFalse(bits, doubts)))
        return false;
    const auto store = [&](auto i_guess, quint8* o_to) HWY_ATTR {
        hn::StoreU(hn::TruncateTo(bytes, hn::ShiftRight<24>(i_guess)), bytes, o_to);
    };
    store(guess0, o_target);
    store(guess1, o_target + lanes);
    store(guess2, o_target + 2 * lanes);
    store(guess3, o_target + 3 * lanes);
    return true;
}

void floatRow(const double* i_source, quint8* o_target, std::size_t i_count, const FloatScale& i_scale)
{
    const FloatDefinition definition {i_scale};
    const hn::ScalableTag<double> d;
    const std::size_t batch = 4 * hn::Lanes(d);
    std::size_t x = 0;
    if (i_scale.guess)
        for (; x + batch <= i_count; x += batch)
            if (!storeGuess(d, i_source + x, o_target + x, definition.scale))
                definedRow(i_source + x, o_target + x, batch, definition);
    definedRow(i_source + x, o_target + x, i_count - x, definition);
}

// ---- Indices of gradients

template <bool Amount> struct Index {
    IndexScale scale;

    template <class D64, class T> HWY_INLINE void operator()(D64 d, const T* i_source, quint8* o_target) const
    {
        auto index
            = hn::Mul(hn::Sub(loadAsDouble(d, i_source), hn::Set(d, scale.low)), hn::Set(d, scale.slope));
        if constexpr (Amount)
            index = hn::Min(hn::Abs(index), hn::Set(d, 127.0));
        else
            index = hn::Max(hn::Min(index, hn::Set(d, 255.0)), hn::Zero(d));
        storeAsBytes(d, index, o_target);
    }
};

template <bool Amount, class T>
void indexRow(const T* i_source, quint8* o_target, std::size_t i_count, const IndexScale& i_scale)
{
    definedRow(i_source, o_target, i_count, Index<Amount> {i_scale});
}

// ---- One of several channels

template <class T, unsigned Channels>
HWY_INLINE std::size_t takeVectors(const T* i_pixels, T* o_target, std::size_t i_count, unsigned i_channel)
{
    const hn::ScalableTag<T> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + lanes <= i_count; x += lanes) {
        hn::Vec<decltype(d)> v[4];
        if constexpr (Channels == 2)
            hn::LoadInterleaved2(d, i_pixels + x * 2, v[0], v[1]);
        else if constexpr (Channels == 3)
            hn::LoadInterleaved3(d, i_pixels + x * 3, v[0], v[1], v[2]);
        else
            hn::LoadInterleaved4(d, i_pixels + x * 4, v[0], v[1], v[2], v[3]);
        hn::StoreU(v[i_channel], d, o_target + x);
    }
    return x;
}

template <class T>
void channelRow(
    const void* i_pixels, void* o_target, std::size_t i_count, unsigned i_channel, unsigned i_channels)
{
    const T* pixels = static_cast<const T*>(i_pixels);
    T* target = static_cast<T*>(o_target);
    std::size_t x = 0;
    if (i_channels == 2)
        x = takeVectors<T, 2>(pixels, target, i_count, i_channel);
    else if (i_channels == 3)
        x = takeVectors<T, 3>(pixels, target, i_count, i_channel);
    else if (i_channels == 4)
        x = takeVectors<T, 4>(pixels, target, i_count, i_channel);
    const char* from = static_cast<const char*>(i_pixels) + i_channel * sizeof(T);
    for (; x < i_count; ++x)
        std::memcpy(
            static_cast<char*>(o_target) + x * sizeof(T), from + x * i_channels * sizeof(T), sizeof(T));
}

} // namespace

const RowTable& rows()
{
    static constexpr RowTable s_rows {
        {integerRow<qint8>, integerRow<qint16>, integerRow<qint32>, integerRow<quint32>, integer64Row},
        floatRow, {indexRow<false, qint16>, indexRow<false, qint32>},
        {indexRow<true, qint16>, indexRow<true, qint32>}, channelRow<std::uint8_t>, channelRow<std::uint16_t>,
        channelRow<std::uint32_t>, channelRow<std::uint64_t>};
    return s_rows;
}

} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

HWY_EXPORT(rows);

const RowTable& rowTable() { return HWY_DYNAMIC_DISPATCH(rows)(); }

namespace {

/** The low bits of the truncated number, as a number of that width. */
qint64 cut(double i_value, int i_bits, bool i_signed)
{
    const double whole = std::trunc(i_value);
    const double period = std::ldexp(1.0, i_bits);
    if (i_signed && whole >= -period / 2 && whole < period / 2)
        return qint64(whole); // a small number below 0 and 2^64 would not be exact
    double low = whole - std::floor(whole / period) * period; // exact: the period is a power of two
    if (!(low >= 0.0 && low < period))
        return 0;
    if (i_signed && low >= period / 2)
        low -= period;
    return qint64(low);
}

} // namespace

IntegerScale::IntegerScale(const cDblRange& i_range, Rounding i_rounding, int i_bits, bool i_signed)
    : low(i_range.getLow()),
      step(i_range.getLength() / 255.0),
      bias(i_rounding == Rounding::HalvesUp ? 0.5 : 0.0),
      first(cut(i_range.getLow(), i_bits, i_signed)),
      last(cut(i_range.getHigh(), i_bits, i_signed)),
      guess {},
      whole {}
{
    constexpr double one = 65536.0; // the guess's unit of a grey value
    constexpr double margin = 16.0;
    if (i_bits > 32)
        findWholeDistance(i_range);
    if (i_bits > 32 || !(first < last) || !(i_range.getLength() >= 1.0))
        return;
    const double factor = one / step;
    const double offset = ((double(first) - low) / step + bias) * one;
    const double end = offset + double(last - first) * factor;
    guess.usable = true;
    guess.forcesEnds = !(offset >= margin && offset < one - margin && end >= 255.0 * one + margin
        && end < 256.0 * one - margin);
    guess.shift = last - first > std::numeric_limits<qint32>::max() ? 1 : 0;
    guess.factor = float(std::ldexp(factor, guess.shift));
    guess.offset = float(offset);
    if (last - first <= std::numeric_limits<qint32>::max())
        line = GreyLine::find(last - first, 1.0 / step, offset / one, [this](qint64 n, int grey) {
            return first + n >= last || (n > 0 && (double(first + n) - low) / step + bias >= grey);
        });
}

void IntegerScale::findWholeDistance(const cDblRange& i_range)
{
    // Then v - low, rounded to a multiple of 2^-9 or less, does not reach another whole number.
    constexpr double moderate = 0x1p42;
    const double fraction = std::fabs(low - double(first));
    whole.usable = std::fabs(low) < moderate && std::fabs(i_range.getHigh()) < moderate
        && (fraction == 0.0 || (fraction > 0x1p-8 && fraction < 1.0 - 0x1p-8));
    whole.origin = low > double(first) ? first + 1 : first;
}

FloatScale::FloatScale(const cDblRange& i_range)
    : low(i_range.getLow()),
      high(i_range.getHigh()),
      width(i_range.getLength()),
      slope(255.0 / width),
      guess(width > 1e-300 && width < 1e300)
{
}

IndexScale::IndexScale(const cDblRange& i_range) : low(i_range.getLow()), slope(255.0 / i_range.getLength())
{
}

} // namespace display
#endif // HWY_ONCE
