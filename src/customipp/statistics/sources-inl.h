// Where reductions take their vectors from. Compiled once for every target.

#if defined(CUSTOMIPP_STATISTICS_SOURCES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_STATISTICS_SOURCES_INL_H
#undef CUSTOMIPP_STATISTICS_SOURCES_INL_H
#else
#define CUSTOMIPP_STATISTICS_SOURCES_INL_H
#endif

#include "../movers/rows-inl.h"
#include "reduce-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The first `count` elements as they are, zeros behind them. */
template <class T, size_t Size> HWY_INLINE const T* padded(T (&memory)[Size], const T* from, size_t count)
{
    std::memcpy(memory, from, count * sizeof(T));
    std::memset(memory + count, 0, (Size - count) * sizeof(T));
    return memory;
}

/** Integers without their sign; the greatest negative one is why the type is unsigned. */
template <class V> HWY_INLINE auto magnitude(V v)
{
    if constexpr (hwy::IsSigned<hn::TFromV<V>>())
        return hn::BitCast(hn::RebindToUnsigned<hn::DFromV<V>>(), hn::Abs(v));
    else
        return v;
}

/** How far integers are apart. */
template <class V> HWY_INLINE auto distance(V a, V b)
{
    const hn::RebindToUnsigned<hn::DFromV<V>> d;
    return hn::Sub(hn::BitCast(d, hn::Max(a, b)), hn::BitCast(d, hn::Min(a, b)));
}

template <class T, int Channels>
HWY_INLINE Block<hn::Vec<hn::ScalableTag<T>>, size_t {Channels}> loadPlanes(const T* from)
{
    const hn::ScalableTag<T> d;
    Block<hn::Vec<hn::ScalableTag<T>>, size_t {Channels}> planes;
    if constexpr (Channels == 1)
        planes.v[0] = hn::LoadU(d, from);
    else if constexpr (Channels == 3)
        hn::LoadInterleaved3(d, from, planes.v[0], planes.v[1], planes.v[2]);
    else
        hn::LoadInterleaved4(d, from, planes.v[0], planes.v[1], planes.v[2], planes.v[3]);
    return planes;
}

/** Whether pixels are selected; the mask as lanes of type T. */
template <class T> HWY_INLINE hn::Mask<hn::ScalableTag<T>> loadMask(const uint8_t* from)
{
    const hn::RebindToUnsigned<hn::ScalableTag<T>> d;
    const hn::Rebind<uint8_t, decltype(d)> dBytes;
    hn::Vec<decltype(d)> v;
    if constexpr (sizeof(T) == 1)
        v = hn::LoadU(d, from);
    else
        v = hn::PromoteTo(d, hn::LoadU(dBytes, from));
    return hn::RebindMask(hn::ScalableTag<T>(), hn::Ne(v, hn::Zero(d)));
}

/** A row of pixels by channels, a vector each; integers without their sign. The unit is the pixel. */
template <class T, int Channels> struct PlanesOf {
    static constexpr int channels = Channels;
    static constexpr size_t vectors = size_t {Channels};
    static constexpr size_t step = hn::MaxLanes(hn::ScalableTag<T>());
    using Memory = T[step * vectors];
    const T* row;

    HWY_INLINE explicit PlanesOf(const T* from) : row(from) {}
    HWY_INLINE PlanesOf(const Operands<T>& operands, size_t y) : row(operands.pixels.row(y)) {}

    HWY_INLINE auto block(size_t x) const
    {
        const auto planes = loadPlanes<T, Channels>(row + x * vectors);
        if constexpr (Channels == 1 && !hwy::IsFloat<T>())
            return Block<decltype(magnitude(planes.v[0])), 1> {magnitude(planes.v[0])};
        else
            return planes;
    }
    HWY_INLINE PlanesOf rest(size_t x, size_t n, Memory& memory) const
    {
        return PlanesOf(padded(memory, row + x * vectors, (n - x) * vectors));
    }
};

/** One of three channels, counted from 0. The unit is the pixel. */
template <class T, int Channel> struct ChannelOf {
    static constexpr int channels = 3;
    static constexpr size_t vectors = 1;
    static constexpr size_t step = hn::MaxLanes(hn::ScalableTag<T>());
    using Memory = T[step * 3];
    const T* row;

    HWY_INLINE explicit ChannelOf(const T* from) : row(from) {}
    HWY_INLINE ChannelOf(const Operands<T>& operands, size_t y) : row(operands.pixels.row(y)) {}

    HWY_INLINE Block<hn::Vec<hn::ScalableTag<T>>, 1> block(size_t x) const
    {
        return {loadPlanes<T, 3>(row + x * 3).v[Channel]};
    }
    HWY_INLINE ChannelOf rest(size_t x, size_t n, Memory& memory) const
    {
        return ChannelOf(padded(memory, row + x * 3, (n - x) * 3));
    }
};

/** The pixels of a source of one vector that a mask selects, zeros for the others. The unit is the pixel. */
template <class T, class Pixels> struct Selected {
    static constexpr int channels = Pixels::channels;
    static constexpr size_t vectors = 1;
    static constexpr size_t step = Pixels::step;
    struct Memory {
        typename Pixels::Memory pixels;
        uint8_t mask[step];
    };
    Pixels pixels;
    const uint8_t* mask;

    HWY_INLINE Selected(Pixels from, const uint8_t* selected) : pixels(from), mask(selected) {}
    HWY_INLINE Selected(const Operands<T>& operands, size_t y)
        : pixels(operands, y),
          mask(operands.mask.row(y))
    {
    }

    HWY_INLINE auto block(size_t x) const
    {
        auto result = pixels.block(x);
        result.v[0] = hn::IfThenElseZero(loadMask<T>(mask + x), result.v[0]);
        return result;
    }
    HWY_INLINE Selected rest(size_t x, size_t n, Memory& memory) const
    {
        return Selected(pixels.rest(x, n, memory.pixels), padded(memory.mask, mask + x, n - x));
    }
};

/** The mask itself. */
template <class T> struct MaskOf : PlanesOf<uint8_t, 1> {
    HWY_INLINE MaskOf(const Operands<T>& operands, size_t y) : PlanesOf<uint8_t, 1>(operands.mask.row(y)) {}
};

/** How far the pixels of two images are apart, by channels. The unit is the pixel. */
template <class T, int Channels> struct DistancesOf {
    static constexpr int channels = Channels;
    static constexpr size_t vectors = size_t {Channels};
    static constexpr size_t step = hn::MaxLanes(hn::ScalableTag<T>());
    struct Memory {
        T first[step * vectors], second[step * vectors];
    };
    using V = decltype(distance(hn::Vec<hn::ScalableTag<T>>(), hn::Vec<hn::ScalableTag<T>>()));
    const T* first;
    const T* second;

    HWY_INLINE DistancesOf(const T* a, const T* b) : first(a), second(b) {}
    HWY_INLINE DistancesOf(const Operands<T>& operands, size_t y)
        : first(operands.pixels.row(y)),
          second(operands.others.row(y))
    {
    }

    HWY_INLINE Block<V, vectors> block(size_t x) const
    {
        const auto a = loadPlanes<T, Channels>(first + x * vectors);
        const auto b = loadPlanes<T, Channels>(second + x * vectors);
        Block<V, vectors> result;
        result.v[0] = distance(a.v[0], b.v[0]);
        if constexpr (Channels > 1) {
            result.v[1] = distance(a.v[1], b.v[1]);
            result.v[2] = distance(a.v[2], b.v[2]);
        }
        if constexpr (Channels > 3)
            result.v[3] = distance(a.v[3], b.v[3]);
        return result;
    }
    HWY_INLINE DistancesOf rest(size_t x, size_t n, Memory& memory) const
    {
        return DistancesOf(padded(memory.first, first + x * vectors, (n - x) * vectors),
            padded(memory.second, second + x * vectors, (n - x) * vectors));
    }
};

// Floats as doubles: 16 to a block on every target, each a sum of its own.

inline constexpr size_t doubleLanes = 16;

/** A row of floats; of those that a mask does not select, and behind the row, another value. */
template <bool Masked> struct DoublesOf {
    static constexpr int channels = 1;
    static constexpr size_t step = doubleLanes;
    static constexpr size_t lanes = hn::MaxLanes(hn::ScalableTag<double>());
    static constexpr size_t vectors = step / lanes;
    using V = hn::Vec<hn::ScalableTag<double>>;
    using DFloats = hn::Rebind<float, hn::ScalableTag<double>>;
    struct Memory {
        float pixels[step];
        uint8_t mask[step];
    };
    const float* row;
    const uint8_t* mask;
    float instead;

    HWY_INLINE DoublesOf(const float* from, const uint8_t* selected, float other)
        : row(from),
          mask(selected),
          instead(other)
    {
    }
    HWY_INLINE DoublesOf(const Operands<float>& operands, size_t y)
        : row(operands.pixels.row(y)),
          mask(Masked ? operands.mask.row(y) : nullptr),
          instead(0)
    {
    }

    HWY_INLINE Block<V, vectors> block(size_t x) const
    {
        return block(x, std::make_index_sequence<vectors>());
    }
    HWY_INLINE DoublesOf rest(size_t x, size_t n, Memory& memory) const
    {
        std::fill_n(memory.pixels, step, instead);
        std::memcpy(memory.pixels, row + x, (n - x) * sizeof(float));
        return DoublesOf(memory.pixels, Masked ? padded(memory.mask, mask + x, n - x) : nullptr, instead);
    }

private:
    template <size_t... I> HWY_INLINE Block<V, vectors> block(size_t x, std::index_sequence<I...>) const
    {
        return {vector(x + I * lanes)...};
    }
    HWY_INLINE V vector(size_t x) const
    {
        auto floats = loadAnywhere(DFloats(), row + x);
        if constexpr (Masked) {
            const hn::RebindToUnsigned<DFloats> d;
            const auto bytes = hn::LoadU(hn::Rebind<uint8_t, DFloats>(), mask + x);
            const auto selected = hn::RebindMask(DFloats(), hn::Ne(hn::PromoteTo(d, bytes), hn::Zero(d)));
            floats = hn::IfThenElse(selected, floats, hn::Set(DFloats(), instead));
        }
        return hn::PromoteTo(hn::ScalableTag<double>(), floats);
    }
};

/** The differences of two rows of floats, exact as a double can be. */
struct DifferencesOf {
    using Doubles = DoublesOf<false>;
    static constexpr int channels = 1;
    static constexpr size_t step = doubleLanes;
    static constexpr size_t vectors = Doubles::vectors;
    struct Memory {
        Doubles::Memory first, second;
    };
    Doubles first;
    Doubles second;

    HWY_INLINE DifferencesOf(Doubles a, Doubles b) : first(a), second(b) {}
    HWY_INLINE DifferencesOf(const Operands<float>& operands, size_t y)
        : first(operands.pixels.row(y), nullptr, 0),
          second(operands.others.row(y), nullptr, 0)
    {
    }

    HWY_INLINE Block<Doubles::V, vectors> block(size_t x) const
    {
        return difference(first.block(x), second.block(x), std::make_index_sequence<vectors>());
    }
    HWY_INLINE DifferencesOf rest(size_t x, size_t n, Memory& memory) const
    {
        return DifferencesOf(first.rest(x, n, memory.first), second.rest(x, n, memory.second));
    }

private:
    using Vectors = Block<Doubles::V, vectors>;
    template <size_t... I>
    static HWY_INLINE Vectors difference(const Vectors& a, const Vectors& b, std::index_sequence<I...>)
    {
        return {hn::Sub(a.v[I], b.v[I])...};
    }
};

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
