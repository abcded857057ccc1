// Grey values from integers of up to 32 bits, a vector at a time. Compiled once for every instruction set;
// all give the same bytes.
#include "display/integerRows.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/integerRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "conversion/loadAsDouble-inl.h"
#include "display/definedRow-inl.h"
#include "display/packBytes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

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
        const auto v = conversion::HWY_NAMESPACE::loadAsDouble(d, i_source);
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

} // namespace

const IntegerTable& integers()
{
    static constexpr IntegerTable s_integers {
        integerRow<qint8>, integerRow<qint16>, integerRow<qint32>, integerRow<quint32>};
    return s_integers;
}

} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

HWY_EXPORT(integers);

const IntegerTable& integerTable() { return HWY_DYNAMIC_DISPATCH(integers)(); }

} // namespace display
#endif // HWY_ONCE
