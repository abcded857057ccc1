// Pixels that are greater than their neighbours.
#include "findPeaks.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/findPeaks.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace {

/** A list that is done when it is full. */
class PeakList {
public:
    HWY_INLINE PeakList(IppiPoint* peaks, int capacity) : m_peaks(peaks), m_capacity(capacity) {}
    HWY_INLINE void add(int x, int y) { m_peaks[m_count++] = {x, y}; }
    bool isFull() const { return m_count == m_capacity; }
    int count() const { return m_count; }

private:
    IppiPoint* m_peaks;
    int m_capacity;
    int m_count = 0;
};

/** A row with the rows above and below it; null where there is none. */
template <class T> class PeakRow {
public:
    HWY_INLINE PeakRow(const PeakSearch<T>& search, int y)
        : m_row(search.src.row(size_t(y))),
          m_above(y > 0 ? search.src.row(size_t(y - 1)) : nullptr),
          m_below(y + 1 < search.height ? search.src.row(size_t(y + 1)) : nullptr),
          m_width(search.width),
          m_threshold(search.threshold),
          m_diagonal(search.diagonal),
          m_y(y)
    {
    }

    /** Adds the peaks from column `first` up to, but without, `end`. */
    void find(int first, int end, PeakList& list) const
    {
        using D = hn::ScalableTag<T>;
        constexpr int step = int(hn::MaxLanes(D()));
        int x = first;
        if (x == 0 && x < end && !list.isFull())
            findOne(x++, list);
        // A vector and its neighbours end with the row at the latest.
        for (; x + step < m_width && x < end && !list.isFull(); x += step) {
            uint64_t bits = peaks(D(), x);
            if (end - x < step)
                bits &= (uint64_t {1} << (end - x)) - 1;
            for (; bits != 0 && !list.isFull(); bits &= bits - 1)
                list.add(x + int(hwy::Num0BitsBelowLS1Bit_Nonzero64(bits)), m_y);
        }
        for (; x < end && !list.isFull(); ++x)
            findOne(x, list);
    }

private:
    /** Which pixels of a vector are peaks; none is at either end of the row. */
    template <class D> HWY_INLINE uint64_t peaks(D d, int x) const
    {
        const auto v = hn::LoadU(d, m_row + x);
        auto peak = hn::Gt(v, hn::Set(d, m_threshold));
        peak = hn::And(peak, hn::And(isAbove(v, m_row + x - 1), isAbove(v, m_row + x + 1)));
        if (hn::AllFalse(d, peak))
            return 0;
        for (const T* other : {m_above, m_below})
            if (other) {
                peak = hn::And(peak, isAbove(v, other + x));
                if (m_diagonal)
                    peak = hn::And(peak, hn::And(isAbove(v, other + x - 1), isAbove(v, other + x + 1)));
            }
        uint8_t bits[8] = {};
        hn::StoreMaskBits(d, peak, bits);
        uint64_t all;
        std::memcpy(&all, bits, sizeof(all));
        return all;
    }
    template <class V> static HWY_INLINE auto isAbove(V v, const T* neighbours)
    {
        return hn::Gt(v, hn::LoadU(hn::DFromV<V>(), neighbours));
    }

    void findOne(int x, PeakList& list) const
    {
        const T pixel = at(m_row, x);
        bool peak = pixel > m_threshold;
        for (int i = std::max(x - 1, 0); i <= std::min(x + 1, m_width - 1); ++i) {
            peak = peak && (i == x || pixel > at(m_row, i));
            if (i == x || m_diagonal)
                for (const T* other : {m_above, m_below})
                    peak = peak && (!other || pixel > at(other, i));
        }
        if (peak)
            list.add(x, m_y);
    }
    static T at(const T* row, int x)
    {
        T value;
        std::memcpy(&value, row + x, sizeof(T));
        return value;
    }

    const T* m_row;
    const T* m_above;
    const T* m_below;
    int m_width;
    T m_threshold;
    bool m_diagonal;
    int m_y;
};

template <class T> int findPeaks(const PeakSearch<T>& search)
{
    PeakList list(search.peaks, search.capacity);
    for (int y = search.border; y < search.height - search.border && !list.isFull(); ++y)
        PeakRow<T>(search, y).find(search.border, search.width - search.border, list);
    return list.count();
}

constexpr FindPeaksKernels s_kernels {findPeaks<Ipp32s>, findPeaks<Ipp32f>};
} // namespace

const FindPeaksKernels& findPeaksKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(findPeaksKernels);
const FindPeaksKernels& kernelsFindPeaks() { return HWY_DYNAMIC_DISPATCH(findPeaksKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/findPeaks.def>
#endif // HWY_ONCE
