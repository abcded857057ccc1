// Row loops of operations that compute each lane from the lanes at the same place. Compiled once for every
// target.
//
// An operation is a function object: operator()(D, V...) gives a vector of results, status() the warning it
// has come to, or ippStsNoErr. It travels by value: so its members stay in registers, where the stores of
// bytes, which may alias anything, cannot reach them.

#if defined(CUSTOMIPP_POINTWISE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_POINTWISE_INL_H_
#undef CUSTOMIPP_POINTWISE_INL_H_
#else
#define CUSTOMIPP_POINTWISE_INL_H_
#endif

#include "pointwise.h"

#include <hwy/highway.h>

#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** What most operations are: without a warning, and with constants that are used as they come. */
struct PlainOperation {
    IppStatus status() const { return ippStsNoErr; }

    template <class D, class V> HWY_INLINE V prepare(D, V constants) const { return constants; }
};

/**
 * Loads and stores at the two ends of a row, which may be shorter than a vector: no lane outside the row is
 * touched. Lanes behind a short row are loaded as 1, which no operation warns of. The ends of a longer row
 * are whole vectors.
 */
template <class D> struct RowEnds {
    using T = hn::TFromD<D>;
    using V = hn::Vec<D>;

#if HWY_MEM_OPS_MIGHT_FAULT
    size_t lanes;

    HWY_INLINE explicit RowEnds(size_t rowLanes) : lanes(rowLanes) {}
    HWY_INLINE V load(const T* from) const
    {
        const D d;
        if (HWY_LIKELY(lanes >= hn::Lanes(d)))
            return hn::LoadU(d, from);
        HWY_ALIGN T copy[hn::MaxLanes(D())];
        hn::Store(hn::Set(d, T {1}), d, copy);
        std::memcpy(copy, from, lanes * sizeof(T));
        return hn::Load(d, copy);
    }
    HWY_INLINE void store(V v, T* to) const
    {
        const D d;
        if (HWY_LIKELY(lanes >= hn::Lanes(d)))
            return hn::StoreU(v, d, to);
        HWY_ALIGN T copy[hn::MaxLanes(D())];
        hn::Store(v, d, copy);
        std::memcpy(to, copy, lanes * sizeof(T));
    }
#else
    hn::Mask<D> inRow;

    HWY_INLINE explicit RowEnds(size_t rowLanes) : inRow(hn::FirstN(D(), rowLanes)) {}
    HWY_INLINE V load(const T* from) const
    {
        return hn::IfThenElse(inRow, hn::MaskedLoad(inRow, D(), from), hn::Set(D(), T {1}));
    }
    HWY_INLINE void store(V v, T* to) const { hn::BlendedStore(v, inRow, D(), to); }
#endif
};

// A row of results, a vector at a time, is what the loop below asks for: end(i, lanes) gives those from lane
// i on at one of the ends of a row; after start(i) at<J>(i) does so in between, where J counts the vectors
// from the start, modulo period. A start is a multiple of granularity.

template <class T, class Op> struct UnaryRow {
    static constexpr size_t period = 1;
    static constexpr size_t granularity = 1;
    using D = hn::ScalableTag<T>;
    Op op;
    const T* pixels;

    HWY_INLINE hn::Vec<D> end(size_t i, size_t lanes) { return op(D(), RowEnds<D>(lanes).load(pixels + i)); }
    HWY_INLINE void start(size_t) {}
    template <size_t J> HWY_INLINE hn::Vec<D> at(size_t i) { return op(D(), hn::LoadU(D(), pixels + i)); }
};

template <class T, class Op> struct BinaryRow {
    static constexpr size_t period = 1;
    static constexpr size_t granularity = 1;
    using D = hn::ScalableTag<T>;
    Op op;
    const T* first;
    const T* second;

    HWY_INLINE hn::Vec<D> end(size_t i, size_t lanes)
    {
        const RowEnds<D> ends(lanes);
        return op(D(), ends.load(first + i), ends.load(second + i));
    }
    HWY_INLINE void start(size_t) {}
    template <size_t J> HWY_INLINE hn::Vec<D> at(size_t i)
    {
        return op(D(), hn::LoadU(D(), first + i), hn::LoadU(D(), second + i));
    }
};

/** The constants of a pixel, repeated for as many lanes as a period of vectors from any channel on needs. */
template <class T, size_t Period> struct ConstantsPattern {
    /** Pixels of any number of channels fill so many lanes. */
    static constexpr size_t fullPixels = 12;
    static constexpr size_t lanes = std::max(Period * hn::MaxLanes(hn::ScalableTag<T>()) + 3, fullPixels);
    T values[lanes];
    size_t channels;

    explicit ConstantsPattern(Constants<T> constants) : channels(static_cast<size_t>(constants.channels))
    {
        for (size_t i = 0; i < fullPixels; i += channels)
            std::copy_n(constants.values, channels, values + i);
        for (size_t filled = fullPixels; filled < lanes; filled *= 2)
            std::copy_n(values, std::min(filled, lanes - filled), values + filled);
    }

    /** The constants for the lanes of a row from a place on. */
    const T* at(size_t lane) const { return values + (channels == 3 ? lane % 3 : lane % 4 % channels); }
};

/**
 * The operation gets the constants first. A vector of them serves one or four channels, three in turn serve
 * three; of four the last one may be kept as it is.
 */
template <class T, class Op, size_t Period, bool KeepAlpha> struct ConstantsRow {
    static constexpr size_t period = Period;
    static constexpr size_t granularity = KeepAlpha ? 4 : 1;
    using D = hn::ScalableTag<T>;
    using Prepared = decltype(std::declval<Op>().prepare(D(), hn::Zero(D())));
    Op op;
    const T* pixels;
    const ConstantsPattern<T, Period>* pattern;
    Prepared constants[Period];

    HWY_INLINE hn::Vec<D> end(size_t i, size_t lanes)
    {
        return with(prepared(i), RowEnds<D>(lanes).load(pixels + i));
    }
    HWY_INLINE void start(size_t i)
    {
        for (size_t j = 0; j < Period; ++j)
            constants[j] = prepared(i + j * hn::Lanes(D()));
    }
    template <size_t J> HWY_INLINE hn::Vec<D> at(size_t i)
    {
        return with(constants[J], hn::LoadU(D(), pixels + i));
    }

private:
    HWY_INLINE Prepared prepared(size_t i) const { return op.prepare(D(), hn::LoadU(D(), pattern->at(i))); }
    HWY_INLINE hn::Vec<D> with(const Prepared& those, hn::Vec<D> v)
    {
        const auto result = op(D(), those, v);
        if constexpr (KeepAlpha) {
            const auto alpha = hn::BitCast(D(), hn::Set(hn::Repartition<uint32_t, D>(), 0xFF000000u));
            return hn::Or(hn::And(alpha, v), hn::AndNot(alpha, result));
        } else {
            return result;
        }
    }
};

/** The vectors that remain when fewer than a whole period do. */
template <size_t J, class Row, class T> HWY_INLINE void storeRest(Row& row, T* out, size_t i, size_t last)
{
    const typename Row::D d;
    if constexpr (J + 1 < Row::period) {
        if (i >= last)
            return;
        hn::StoreU(row.template at<J>(i), d, out + i);
        storeRest<J + 1>(row, out, i + hn::Lanes(d), last);
    }
}

template <size_t J, class Row, class T> HWY_INLINE void storePeriod(Row& row, T* out, size_t i)
{
    const typename Row::D d;
    if constexpr (J < Row::period) {
        hn::StoreU(row.template at<J>(i), d, out + i);
        storePeriod<J + 1>(row, out, i + hn::Lanes(d));
    }
}

/**
 * Writes a row. The stores of the loop are aligned; the first and the last vector of the row overlap them.
 * Those two are computed before the loop, from the row as it was, and stored after it, so the overlap is
 * right in place too.
 */
template <class Row, class T> HWY_INLINE Row storeRow(Row row, T* out, size_t lanes)
{
    const typename Row::D d;
    const size_t step = hn::Lanes(d);
    const size_t last = lanes > step ? lanes - step : 0;
    const auto firstVector = row.end(0, lanes);
    auto lastVector = firstVector;
    if (last > 0)
        lastVector = row.end(last, lanes);

    const size_t misaligned = reinterpret_cast<uintptr_t>(out) % (step * sizeof(T)) / sizeof(T);
    size_t i = (step - misaligned) / Row::granularity * Row::granularity;
    row.start(i);
    for (; i + (Row::period - 1) * step < last; i += Row::period * step)
        storePeriod<0>(row, out, i);
    storeRest<0>(row, out, i, last);

    const RowEnds<typename Row::D> ends(lanes);
    ends.store(firstVector, out);
    ends.store(lastVector, out + last);
    return row;
}

// The loops over rows, as function objects that are called with the operation.

template <class T> struct UnaryLoop {
    Rows<const T> pixels;
    Rows<T> out;
    Extent extent;

    template <class Op> HWY_INLINE IppStatus operator()(Op op) const
    {
        for (size_t y = 0; y < extent.rows; ++y)
            op = storeRow(UnaryRow<T, Op> {op, pixels.row(y)}, out.row(y), extent.lanes).op;
        return op.status();
    }
};

template <class T> struct BinaryLoop {
    Rows<const T> first;
    Rows<const T> second;
    Rows<T> out;
    Extent extent;

    template <class Op> HWY_INLINE IppStatus operator()(Op op) const
    {
        for (size_t y = 0; y < extent.rows; ++y)
            op = storeRow(BinaryRow<T, Op> {op, first.row(y), second.row(y)}, out.row(y), extent.lanes).op;
        return op.status();
    }
};

template <class T, size_t Period, bool KeepAlpha> struct ConstantsLoop {
    Rows<const T> pixels;
    Constants<T> constants;
    Rows<T> out;
    Extent extent;

    template <class Op> HWY_INLINE IppStatus operator()(Op op) const
    {
        const ConstantsPattern<T, Period> pattern(constants);
        for (size_t y = 0; y < extent.rows; ++y) {
            const ConstantsRow<T, Op, Period, KeepAlpha> row {op, pixels.row(y), &pattern, {}};
            op = storeRow(row, out.row(y), extent.lanes).op;
        }
        return op.status();
    }
};

// The kernels of operations without a scale factor.

template <class Op, class T> IppStatus unaryPlain(Rows<const T> pixels, Rows<T> out, Extent extent)
{
    return UnaryLoop<T> {pixels, out, extent}(Op());
}

template <class Op, class T>
IppStatus binaryPlain(Rows<const T> first, Rows<const T> second, Rows<T> out, Extent extent, int)
{
    return BinaryLoop<T> {first, second, out, extent}(Op());
}

template <class Op, class... T> const UnaryKernels<T...>& unaryPlainKernels()
{
    static constexpr UnaryKernels<T...> s_kernels {unaryPlain<Op, T>...};
    return s_kernels;
}

template <class Op, class... T> const BinaryKernels<T...>& binaryPlainKernels()
{
    static constexpr BinaryKernels<T...> s_kernels {binaryPlain<Op, T>...};
    return s_kernels;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
