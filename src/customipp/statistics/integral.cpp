// Sums over all pixels above and to the left, of the pixels or of their squares.
#include "integral.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/integral.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"
#include "prefix-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

using Ints = hn::ScalableTag<int32_t>;
using Doubles = hn::ScalableTag<double>;

/*
 * A row of results is the row above it plus what the row of pixels has summed up to there. The row above is
 * kept apart: so it can be more exact than the results, and these are only written.
 */

/** 32-bit integers without a sign, rounded once: both halves, and the upper one's place, are exact. */
HWY_INLINE hn::Vec<hn::Rebind<float, Ints>> floatsOfUnsigned(hn::Vec<Ints> v)
{
    const hn::Rebind<float, Ints> df;
    const hn::Rebind<uint32_t, Ints> du;
    const auto high = hn::BitCast(Ints(), hn::ShiftRight<16>(hn::BitCast(du, v)));
    const auto low = hn::And(v, hn::Set(Ints(), 0xFFFF));
    return hn::Add(hn::Mul(hn::ConvertTo(df, high), hn::Set(df, 65536.0f)), hn::ConvertTo(df, low));
}

/** Sums of integers in 32 bits, which wrap; as floats they are signed or unsigned. */
template <class Out, bool Signed> class IntSums {
public:
    HWY_INLINE IntSums(void* above, Out) : m_above(static_cast<int32_t*>(above)), m_row(hn::Zero(Ints())) {}
    static void begin(void* above, size_t n, Out offset)
    {
        std::fill_n(static_cast<uint32_t*>(above), n, static_cast<uint32_t>(offset));
    }
    /** The results for a vector of pixels whose sums since the last advance() are given. */
    HWY_INLINE void add(hn::Vec<Ints> sums, size_t x, Out* out)
    {
        const Ints d;
        const auto result = hn::Add(hn::Add(hn::Load(d, m_above + x), sums), m_row);
        hn::Store(result, d, m_above + x);
        const hn::Rebind<float, Ints> df;
        if constexpr (!hwy::IsFloat<Out>())
            hn::StoreU(result, d, out);
        else if constexpr (Signed)
            hn::StoreU(hn::ConvertTo(df, result), df, out);
        else
            hn::StoreU(floatsOfUnsigned(result), df, out);
    }
    HWY_INLINE void advance(hn::Vec<Ints> sums) { m_row = hn::Add(m_row, lastInAll(Ints(), sums)); }

private:
    int32_t* m_above;
    hn::Vec<Ints> m_row;
};

/** Sums of integers in doubles, which are exact up to 2^53. The offset comes to each result. */
template <class Out> class DoubleSums {
public:
    HWY_INLINE DoubleSums(void* above, Out offset)
        : m_above(static_cast<double*>(above)),
          m_row(hn::Zero(Doubles())),
          m_offset(hn::Set(Doubles(), double {offset}))
    {
    }
    static void begin(void* above, size_t n, Out) { std::fill_n(static_cast<double*>(above), n, 0.0); }
    HWY_INLINE void add(hn::Vec<Ints> sums, size_t x, Out* out)
    {
        const hn::Half<Ints> half;
        const auto low = result(hn::LowerHalf(half, sums), x);
        const auto high = result(hn::UpperHalf(half, sums), x + hn::Lanes(Doubles()));
        if constexpr (sizeof(Out) == sizeof(double)) {
            hn::StoreU(low, Doubles(), out);
            hn::StoreU(high, Doubles(), out + hn::Lanes(Doubles()));
        } else {
            const hn::Rebind<float, Ints> df;
            const hn::Half<decltype(df)> dHalf;
            hn::StoreU(hn::Combine(df, hn::DemoteTo(dHalf, high), hn::DemoteTo(dHalf, low)), df, out);
        }
    }
    HWY_INLINE void advance(hn::Vec<Ints> sums)
    {
        const auto last = hn::LowerHalf(hn::Half<Ints>(), lastInAll(Ints(), sums));
        m_row = hn::Add(m_row, hn::PromoteTo(Doubles(), last));
    }

private:
    HWY_INLINE hn::Vec<Doubles> result(hn::Vec<hn::Half<Ints>> sums, size_t x) const
    {
        const auto row = hn::Add(hn::PromoteTo(Doubles(), sums), m_row);
        const auto sum = hn::Add(hn::Load(Doubles(), m_above + x), row);
        hn::Store(sum, Doubles(), m_above + x);
        return hn::Add(sum, m_offset);
    }

    double* m_above;
    hn::Vec<Doubles> m_row;
    hn::Vec<Doubles> m_offset;
};

/** The order of 32-bit lanes in which number i of every block comes from part i of the vector. */
template <size_t Lanes> struct QuarterOrder {
    alignas(64) uint32_t lanes[Lanes] = {};

    constexpr QuarterOrder()
    {
        for (size_t i = 0; i < Lanes; ++i)
            lanes[i] = uint32_t(i % 4 * (Lanes / 4) + i / 4);
    }
};

/**
 * Sums along a vector of bytes, which fit into 16 bits: by shifts within each four of them, and along the
 * vector for the sums of the fours alone. Two vectors share that: each has one half of all lanes.
 */
template <class Sums> class ByteRow {
public:
    using Bytes = hn::ScalableTag<uint8_t>;
    static constexpr size_t lanes = hn::MaxLanes(Bytes());
    static constexpr size_t step = 2 * lanes;
    static constexpr size_t least = hn::MaxLanes(Ints());

    template <class Out> HWY_INLINE ByteRow(void* above, Out offset) : m_sums(above, offset) {}
    template <class Out> static void begin(void* above, size_t n, Out offset)
    {
        Sums::begin(above, n, offset);
    }
    template <class Out> HWY_INLINE void next(const uint8_t* src, size_t x, Out* out)
    {
        const Fours first(src), second(src + lanes);
        const auto before = sumsBefore(evenAndOdd(hn::ShiftRight<16>(first.sums), second.sums));
        add(first, evenAndOdd(before, hn::ShiftLeft<16>(before)), x, out);
        add(second, evenAndOdd(hn::ShiftRight<16>(before), before), x + lanes, out + lanes);
    }
    template <class Out> HWY_INLINE void nextFew(const uint8_t* src, size_t x, Out* out)
    {
        const auto v = hn::PromoteTo(Ints(), hn::LoadU(hn::Rebind<uint8_t, Ints>(), src));
        const auto sums = prefixSums(Ints(), v);
        m_sums.add(sums, x, out);
        m_sums.advance(sums);
    }

private:
    using D16 = hn::ScalableTag<uint16_t>;
    using D32 = hn::ScalableTag<uint32_t>;
    using Words = hn::Vec<D16>;
    using Pairs = hn::Vec<D32>; ///< of 16 bits each

    struct Fours {
        Words odd; ///< the second and the fourth byte
        Pairs sums; ///< lower half: of the first two, upper half: of all four

        HWY_INLINE explicit Fours(const uint8_t* src)
        {
            const auto v = hn::BitCast(D16(), hn::LoadU(Bytes(), src));
            odd = hn::ShiftRight<8>(v);
            const auto twos = hn::BitCast(D32(), hn::Add(hn::And(v, hn::Set(D16(), 0xFF)), odd));
            sums = hn::Add(twos, hn::ShiftLeft<16>(twos));
        }
    };

    static HWY_INLINE Pairs evenAndOdd(Pairs even, Pairs odd)
    {
        return hn::BitCast(D32(), hn::OddEven(hn::BitCast(D16(), odd), hn::BitCast(D16(), even)));
    }
    /** The halves do not overflow into each other. */
    static HWY_INLINE Pairs sumsBefore(Pairs v)
    {
        return hn::Sub(hn::BitCast(D32(), prefixSums(Ints(), hn::BitCast(Ints(), v))), v);
    }
    static HWY_INLINE Words quarters(Words v)
    {
        static constexpr QuarterOrder<hn::MaxLanes(Ints())> order;
        if constexpr (hn::MaxLanes(Ints()) <= 4)
            return v;
        else
            return hn::BitCast(
                D16(), hn::TableLookupLanes(hn::BitCast(D32(), v), hn::SetTableIndices(D32(), order.lanes)));
    }
    template <class Out> HWY_INLINE void add(const Fours& fours, Pairs before, size_t x, Out* out)
    {
        const D16 d;
        const auto zero = hn::Zero(d);
        const auto toOdd = hn::Add(hn::BitCast(d, fours.sums), hn::BitCast(d, before));
        const auto odd = quarters(toOdd), even = quarters(hn::Sub(toOdd, fours.odd));
        const auto low = hn::InterleaveLower(d, even, odd), high = hn::InterleaveUpper(d, even, odd);
        const auto last = hn::BitCast(Ints(), hn::InterleaveUpper(d, high, zero));
        m_sums.add(hn::BitCast(Ints(), hn::InterleaveLower(d, low, zero)), x, out);
        m_sums.add(hn::BitCast(Ints(), hn::InterleaveUpper(d, low, zero)), x + least, out + least);
        m_sums.add(hn::BitCast(Ints(), hn::InterleaveLower(d, high, zero)), x + 2 * least, out + 2 * least);
        m_sums.add(last, x + 3 * least, out + 3 * least);
        m_sums.advance(last);
    }

    Sums m_sums;
};

/** Squares of bytes. */
template <class Sums> class SquareRow {
public:
    static constexpr size_t least = hn::MaxLanes(Ints());

    template <class Out> HWY_INLINE SquareRow(void* above, Out offset) : m_sums(above, offset) {}
    template <class Out> static void begin(void* above, size_t n, Out offset)
    {
        Sums::begin(above, n, offset);
    }
    template <class Out> HWY_INLINE void nextFew(const uint8_t* src, size_t x, Out* out)
    {
        const auto v = hn::PromoteTo(Ints(), hn::LoadU(hn::Rebind<uint8_t, Ints>(), src));
        const auto sums = prefixSums(Ints(), hn::Mul(v, v));
        m_sums.add(sums, x, out);
        m_sums.advance(sums);
    }

private:
    Sums m_sums;
};

/** Floats, in groups of eight whatever the vector: so all targets add in one order. */
class FloatRow {
public:
    static constexpr size_t least = 8;

    HWY_INLINE FloatRow(void* above, float) : m_above(static_cast<double*>(above)), m_row(hn::Zero(D())) {}
    static void begin(void* above, size_t n, float) { std::fill_n(static_cast<double*>(above), n, 0.0); }
    HWY_INLINE void nextFew(const float* src, size_t x, float* out)
    {
        const D d;
        const hn::Rebind<float, D> df;
        hn::Vec<D> sums[parts];
        for (size_t i = 0; i < parts; ++i)
            sums[i] = prefixSums(d, hn::PromoteTo(d, loadAnywhere(df, src + i * lanes)));
        for (size_t half = 1; half < parts; half *= 2)
            for (size_t i = 0; i < parts; ++i)
                if (i / half % 2 == 1)
                    sums[i] = hn::Add(sums[i], lastInAll(d, sums[i / half * half - 1]));
        for (size_t i = 0; i < parts; ++i) {
            const size_t place = x + i * lanes;
            const auto result = hn::Add(hn::Load(d, m_above + place), hn::Add(m_row, sums[i]));
            hn::Store(result, d, m_above + place);
            storeAnywhere(hn::DemoteTo(df, result), df, out + i * lanes);
        }
        m_row = hn::Add(m_row, lastInAll(d, sums[parts - 1]));
    }

private:
    using D = hn::CappedTag<double, least>;
    static constexpr size_t lanes = hn::MaxLanes(D());
    static constexpr size_t parts = least / lanes;

    double* m_above;
    hn::Vec<D> m_row;
};

/** A row of n results. Behind the last pixel there is nothing but zeros. */
template <class Row, class S, class D> HWY_INLINE void integralRow(Row row, const S* src, size_t n, D* out)
{
    size_t x = 0;
    if constexpr (requires { Row::step; })
        for (; x + Row::step <= n; x += Row::step)
            row.next(src + x, x, out + x);
    for (; x + Row::least <= n; x += Row::least)
        row.nextFew(src + x, x, out + x);
    if (const size_t rest = n - x) {
        S pixels[Row::least] = {};
        D results[Row::least];
        std::memcpy(pixels, src + x, rest * sizeof(S));
        row.nextFew(pixels, x, results);
        std::memcpy(out + x, results, rest * sizeof(D));
    }
}

template <class Row, class S, class D> void integral(const IntegralMove<S, D>& move)
{
    for (size_t x = 0; x <= move.area.width; ++x)
        std::memcpy(move.dst.first + x, &move.offset, sizeof(D));
    Row::begin(move.above, move.area.width, move.offset);
    for (size_t y = 0; y < move.area.height; ++y) {
        D* const out = move.dst.row(y + 1);
        std::memcpy(out, &move.offset, sizeof(D));
        integralRow(Row(move.above, move.offset), move.src.row(y), move.area.width, out + 1);
    }
}

constexpr IntegralKernels s_kernels {
    integral<ByteRow<IntSums<Ipp32s, true>>, Ipp8u, Ipp32s>,
    integral<ByteRow<DoubleSums<Ipp32f>>, Ipp8u, Ipp32f>,
    integral<ByteRow<IntSums<Ipp32f, false>>, Ipp8u, Ipp32f>,
    integral<ByteRow<IntSums<Ipp32f, true>>, Ipp8u, Ipp32f>,
    integral<SquareRow<DoubleSums<Ipp64f>>, Ipp8u, Ipp64f>,
    integral<FloatRow, Ipp32f, Ipp32f>,
};
} // namespace

const IntegralKernels& integralKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(integralKernels);
const IntegralKernels& kernelsIntegral() { return HWY_DYNAMIC_DISPATCH(integralKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/integral.def>
#include <customipp/sqrIntegral.def>
#endif // HWY_ONCE
