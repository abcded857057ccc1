// Sums over every window of a span. Compiled for each instruction set.
//
// A window's sum is put together from sums over windows of half the length, and these likewise: each number
// of bits of the length costs one pass. Nothing is ever taken away from a sum, so there is no cancellation:
// dark windows beside bright ones are as exact as any, and a window of zeros gives zero.

#if defined(CUSTOMIPP_WINDOW_SUMS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_WINDOW_SUMS_INL_H_
#undef CUSTOMIPP_WINDOW_SUMS_INL_H_
#else
#define CUSTOMIPP_WINDOW_SUMS_INL_H_
#endif

#include "span-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** Two numbers for each window, in planes or rows of their own. */
struct SumPlaces {
    double* sum;
    double* square;

    SumPlaces operator+(size_t elements) const { return {sum + elements, square + elements}; }
};

/** What the squares of correlation and distance need: the sum of the squares. */
struct SquareSums {
    using V = hn::Vec<Doubles>;
    V square;

    static HWY_INLINE SquareSums ofPixel(V pixel) { return {hn::Mul(pixel, pixel)}; }
    static HWY_INLINE SquareSums load(const SumPlaces& from) { return {hn::LoadU(Doubles(), from.square)}; }
    HWY_INLINE void store(const SumPlaces& to) const { hn::StoreU(square, Doubles(), to.square); }
    /** With as many pixels again. */
    HWY_INLINE SquareSums plus(const SquareSums& other, double) const
    {
        return {hn::Add(square, other.square)};
    }
    /** With pixels that are `times` fewer. */
    HWY_INLINE SquareSums plusOne(const SquareSums& one, double, double) const
    {
        return {hn::Add(square, one.square)};
    }
};

/** What the coefficient needs: the sum, and the squares of the deviations from the mean. They grow by the
 * squared difference of the means. */
struct Deviations {
    using V = hn::Vec<Doubles>;
    V sum, square;

    static HWY_INLINE Deviations ofPixel(V pixel) { return {pixel, hn::Zero(Doubles())}; }
    static HWY_INLINE Deviations load(const SumPlaces& from)
    {
        return {hn::LoadU(Doubles(), from.sum), hn::LoadU(Doubles(), from.square)};
    }
    HWY_INLINE void store(const SumPlaces& to) const
    {
        hn::StoreU(sum, Doubles(), to.sum);
        hn::StoreU(square, Doubles(), to.square);
    }
    HWY_INLINE Deviations plus(const Deviations& other, double pixels) const
    {
        const Doubles d;
        const V difference = hn::Sub(sum, other.sum);
        return {hn::Add(sum, other.sum),
            hn::Add(hn::Add(square, other.square),
                hn::Mul(hn::Mul(difference, difference), hn::Set(d, 0.5 / pixels)))};
    }
    HWY_INLINE Deviations plusOne(const Deviations& one, double times, double pixels) const
    {
        const Doubles d;
        const V difference = hn::Sub(sum, hn::Mul(one.sum, hn::Set(d, times)));
        return {hn::Add(sum, one.sum),
            hn::Add(hn::Add(square, one.square),
                hn::Mul(hn::Mul(difference, difference), hn::Set(d, 1 / (times * (times + 1) * pixels))))};
    }
};

/** Calls step(length, odd) until windows of one unit have become windows of `length` units: each makes them
 * twice as long, and if it is odd, one longer. */
template <class Step> HWY_INLINE void lengthen(int length, const Step& step)
{
    int bit = 0;
    while (length >> (bit + 1))
        ++bit;
    for (int have = 1; --bit >= 0; have = length >> bit)
        step(have, (length >> bit & 1) != 0);
}

/** Windows that are one pixel wide, of 16 columns, become as high as the pattern. */
template <class Sums> struct DownColumns {
    const Plane& window;
    size_t column;
    int rows; ///< of the span that are still needed
    SumPlaces strip; ///< rows of 16 numbers

    HWY_INLINE void begin() const
    {
        const Doubles d;
        for (int y = 0; y < rows; ++y)
            for (size_t lane = 0; lane < 16; lane += hn::Lanes(d))
                pixels(y, lane).store(at(y, lane));
    }
    HWY_INLINE void operator()(int have, bool odd) const
    {
        const Doubles d;
        const int count = rows - 2 * have + (odd ? 0 : 1);
        for (int y = 0; y < count; ++y)
            for (size_t lane = 0; lane < 16; lane += hn::Lanes(d)) {
                Sums sums = Sums::load(at(y, lane)).plus(Sums::load(at(y + have, lane)), have);
                if (odd)
                    sums = sums.plusOne(pixels(y + 2 * have, lane), 2.0 * have, 1);
                sums.store(at(y, lane));
            }
    }

private:
    HWY_INLINE Sums pixels(int y, size_t lane) const
    {
        return Sums::ofPixel(hn::Load(Doubles(), window.row(static_cast<size_t>(y)) + column + lane));
    }
    HWY_INLINE SumPlaces at(int y, size_t lane) const { return strip + (16 * static_cast<size_t>(y) + lane); }
};

/** Windows of one column become as wide as the pattern. A vector reads what lies to its right before that
 * changes. */
template <class Sums> struct AlongRow {
    SumPlaces columns;
    size_t width; ///< of the span
    double columnPixels;
    SumPlaces row;

    HWY_INLINE void begin() const
    {
        for (size_t x = 0; x < width; x += hn::Lanes(Doubles()))
            Sums::load(columns + x).store(row + x);
    }
    HWY_INLINE void operator()(int have, bool odd) const
    {
        const size_t length = static_cast<size_t>(have);
        for (size_t x = 0; x + 2 * length <= width; x += hn::Lanes(Doubles())) {
            Sums sums = Sums::load(row + x).plus(Sums::load(row + (x + length)), have * columnPixels);
            if (odd)
                sums = sums.plusOne(Sums::load(columns + (x + 2 * length)), 2.0 * have, columnPixels);
            sums.store(row + x);
        }
    }
};

/** For each result of a tile the sums over its window. */
template <class Sums> void sumWindows(const MatchMemory& memory, IppiSize pattern, const Tile& tile)
{
    const MatchPlan& plan = memory.plan;
    const Plane window = memory.plane(plan.window);
    const Plane sums = memory.plane(plan.sums), squares = memory.plane(plan.squares);
    double* columns = memory.doubles(plan.columns);
    const SumPlaces work {columns, columns + plan.columnsSize};
    const size_t width = static_cast<size_t>(tile.width + pattern.width - 1);
    const size_t height = static_cast<size_t>(tile.height);

    for (size_t column = 0; column < width; column += 16) {
        const DownColumns<Sums> down {window, column, tile.height + pattern.height - 1, work};
        down.begin();
        lengthen(pattern.height, down);
        for (size_t y = 0; y < height; ++y)
            for (size_t lane = 0; lane < 16; lane += hn::Lanes(Doubles()))
                Sums::load(work + (16 * y + lane))
                    .store({sums.row(y) + column + lane, squares.row(y) + column + lane});
    }
    for (size_t y = 0; y < height; ++y) {
        const SumPlaces place {sums.row(y), squares.row(y)};
        const AlongRow<Sums> along {place, width, static_cast<double>(pattern.height), work};
        along.begin();
        lengthen(pattern.width, along);
        for (size_t x = 0; x < static_cast<size_t>(tile.width); x += hn::Lanes(Doubles()))
            Sums::load(work + x).store(place + x);
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
