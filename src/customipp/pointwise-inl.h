// Row loops of operations that compute each lane from the lanes at the same place. Compiled once for every target.
//
// An operation is a function object: operator()(D, V...) gives a vector of results, status() the warning it has come
// to, or ippStsNoErr. It travels by value: so its members stay in registers, where the stores of bytes, which may
// alias anything, cannot reach them.

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

    template <class D, class V>
    HWY_INLINE V prepare(D, V constants) const
    {
        return constants;
    }
};

/**
 * A copy of a row that is shorter than a vector, as long as one. The lanes behind the row hold 1, which no operation
 * warns of.
 */
template <class T, class D = hn::ScalableTag<T>>
struct ShortRow {
    HWY_ALIGN T lanes[hn::MaxLanes(D())];

    /** Replaces a pointer to a row by one to the copy. */
    HWY_INLINE void takeOver(const T*& row, size_t count)
    {
        std::fill_n(lanes, hn::MaxLanes(D()), T{1});
        std::memcpy(lanes, row, count * sizeof(T));
        row = lanes;
    }
};

// A row of results, a vector at a time, is what the loop below asks for: anywhere(i) gives those from lane i on; after
// start(i) at<J>(i) does so too, where J counts the vectors from the start, modulo period. A start is a multiple of
// granularity. Copies is where takeOver puts the sources of a row shorter than a vector.

template <class T, class Op>
struct UnaryRow {
    static constexpr size_t period = 1;
    static constexpr size_t granularity = 1;
    using D = hn::ScalableTag<T>;
    Op op;
    const T* pixels;

    using Copies = ShortRow<T>;
    HWY_INLINE void takeOver(Copies& copies, size_t lanes) { copies.takeOver(pixels, lanes); }
    HWY_INLINE hn::Vec<D> anywhere(size_t i) { return op(D(), hn::LoadU(D(), pixels + i)); }
    HWY_INLINE void start(size_t) { }
    template <size_t J>
    HWY_INLINE hn::Vec<D> at(size_t i)
    {
        return anywhere(i);
    }
};

template <class T, class Op>
struct BinaryRow {
    static constexpr size_t period = 1;
    static constexpr size_t granularity = 1;
    using D = hn::ScalableTag<T>;
    Op op;
    const T* first;
    const T* second;

    using Copies = ShortRow<T>[2];
    HWY_INLINE void takeOver(Copies& copies, size_t lanes)
    {
        copies[0].takeOver(first, lanes);
        copies[1].takeOver(second, lanes);
    }
    HWY_INLINE hn::Vec<D> anywhere(size_t i)
    {
        return op(D(), hn::LoadU(D(), first + i), hn::LoadU(D(), second + i));
    }
    HWY_INLINE void start(size_t) { }
    template <size_t J>
    HWY_INLINE hn::Vec<D> at(size_t i)
    {
        return anywhere(i);
    }
};

/** The constants of a pixel, repeated for as many lanes as a period of vectors from any channel on needs. */
template <class T, size_t Period>
struct ConstantsPattern {
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
 * The operation gets the constants first. A vector of them serves one or four channels, three in turn serve three; of
 * four the last one may be kept as it is.
 */
template <class T, class Op, size_t Period, bool KeepAlpha>
struct ConstantsRow {
    static constexpr size_t period = Period;
    static constexpr size_t granularity = KeepAlpha ? 4 : 1;
    using D = hn::ScalableTag<T>;
    using Prepared = decltype(std::declval<Op>().prepare(D(), hn::Zero(D())));
    Op op;
    const T* pixels;
    const ConstantsPattern<T, Period>* pattern;
    Prepared constants[Period];

    using Copies = ShortRow<T>;
    HWY_INLINE void takeOver(Copies& copies, size_t lanes) { copies.takeOver(pixels, lanes); }
    HWY_INLINE hn::Vec<D> anywhere(size_t i) { return with(prepared(i), i); }
    HWY_INLINE void start(size_t i)
    {
        for (size_t j = 0; j < Period; ++j)
            constants[j] = prepared(i + j * hn::Lanes(D()));
    }
    template <size_t J>
    HWY_INLINE hn::Vec<D> at(size_t i)
    {
        return with(constants[J], i);
    }

private:
    HWY_INLINE Prepared prepared(size_t i) const { return op.prepare(D(), hn::LoadU(D(), pattern->at(i))); }
    HWY_INLINE hn::Vec<D> with(const Prepared& prepared, size_t i)
    {
        const auto v = hn::LoadU(D(), pixels + i);
        const auto result = op(D(), prepared, v);
        if constexpr (KeepAlpha) {
            const auto alpha = hn::BitCast(D(), hn::Set(hn::Repartition<uint32_t, D>(), 0xFF000000u));
            return hn::Or(hn::And(alpha, v), hn::AndNot(alpha, result));
        } else {
            return result;
        }
    }
};

/** The vectors that remain when fewer than a whole period do. */
template <size_t J, class Row, class T>
HWY_INLINE void storeRest(Row& row, T* out, size_t i, size_t last)
{
    const typename Row::D d;
    if constexpr (J + 1 < Row::period) {
        if (i >= last)
            return;
        hn::StoreU(row.template at<J>(i), d, out + i);
        storeRest<J + 1>(row, out, i + hn::Lanes(d), last);
    }
}

template <size_t J, class Row, class T>
HWY_INLINE void storePeriod(Row& row, T* out, size_t i)
{
    const typename Row::D d;
    if constexpr (J < Row::period) {
        hn::StoreU(row.template at<J>(i), d, out + i);
        storePeriod<J + 1>(row, out, i + hn::Lanes(d));
    }
}

/**
 * Writes a row. The stores of the loop are aligned; the first and the last vector of the row overlap them. Those two
 * are computed before the loop, from the row as it was, and stored after it, so the overlap is right in place too.
 */
template <class Row, class T>
HWY_INLINE Row storeRow(Row row, T* out, size_t lanes)
{
    const typename Row::D d;
    const size_t step = hn::Lanes(d);
    typename Row::Copies copies;
    ShortRow<T> shortResult;
    const bool isShort = lanes < step;
    T* const shortOut = out;
    if (HWY_UNLIKELY(isShort)) {
        row.takeOver(copies, lanes);
        out = shortResult.lanes;
    }
    const size_t last = isShort ? 0 : lanes - step;
    const auto firstVector = row.anywhere(0);
    const auto lastVector = row.anywhere(last);

    const size_t misaligned = reinterpret_cast<uintptr_t>(out) % (step * sizeof(T)) / sizeof(T);
    size_t i = (step - misaligned) / Row::granularity * Row::granularity;
    row.start(i);
    for (; i + (Row::period - 1) * step < last; i += Row::period * step)
        storePeriod<0>(row, out, i);
    storeRest<0>(row, out, i, last);

    hn::StoreU(firstVector, d, out);
    hn::StoreU(lastVector, d, out + last);
    if (HWY_UNLIKELY(isShort))
        std::memcpy(shortOut, out, lanes * sizeof(T));
    return row;
}

// The loops over rows, as function objects that are called with the operation.

template <class T>
struct UnaryLoop {
    Rows<const T> pixels;
    Rows<T> out;
    Extent extent;

    template <class Op>
    HWY_INLINE IppStatus operator()(Op op) const
    {
        for (size_t y = 0; y < extent.rows; ++y)
            op = storeRow(UnaryRow<T, Op>{op, pixels.row(y)}, out.row(y), extent.lanes).op;
        return op.status();
    }
};

template <class T>
struct BinaryLoop {
    Rows<const T> first;
    Rows<const T> second;
    Rows<T> out;
    Extent extent;

    template <class Op>
    HWY_INLINE IppStatus operator()(Op op) const
    {
        for (size_t y = 0; y < extent.rows; ++y)
            op = storeRow(BinaryRow<T, Op>{op, first.row(y), second.row(y)}, out.row(y), extent.lanes).op;
        return op.status();
    }
};

template <class T, size_t Period, bool KeepAlpha>
struct ConstantsLoop {
    Rows<const T> pixels;
    Constants<T> constants;
    Rows<T> out;
    Extent extent;

    template <class Op>
    HWY_INLINE IppStatus operator()(Op op) const
    {
        const ConstantsPattern<T, Period> pattern(constants);
        for (size_t y = 0; y < extent.rows; ++y) {
            const ConstantsRow<T, Op, Period, KeepAlpha> row{op, pixels.row(y), &pattern, {}};
            op = storeRow(row, out.row(y), extent.lanes).op;
        }
        return op.status();
    }
};

// The kernels of operations without a scale factor.

template <class Op, class T>
IppStatus unaryPlain(Rows<const T> pixels, Rows<T> out, Extent extent)
{
    return UnaryLoop<T>{pixels, out, extent}(Op());
}

template <class Op, class T>
IppStatus binaryPlain(Rows<const T> first, Rows<const T> second, Rows<T> out, Extent extent, int)
{
    return BinaryLoop<T>{first, second, out, extent}(Op());
}

template <class Op, class... T>
const UnaryKernels<T...>& unaryPlainKernels()
{
    static constexpr UnaryKernels<T...> s_kernels{unaryPlain<Op, T>...};
    return s_kernels;
}

template <class Op, class... T>
const BinaryKernels<T...>& binaryPlainKernels()
{
    static constexpr BinaryKernels<T...> s_kernels{binaryPlain<Op, T>...};
    return s_kernels;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
