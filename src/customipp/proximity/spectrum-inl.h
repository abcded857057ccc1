// Products of pattern and source summed by Fourier transforms. Compiled for each instruction set.
//
// Columns first, two real columns as one complex, eight such pairs a batch; then, of the upper half of the
// rows, which is all there is, eight rows a batch; there the spectra meet, and the way back is the same. So
// the row pass reads and writes each batch once. The spectrum of a span lies as the row pass wants it:
// batches of eight rows, one behind the other.

#if defined(CUSTOMIPP_SPECTRUM_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_SPECTRUM_INL_H_
#undef CUSTOMIPP_SPECTRUM_INL_H_
#else
#define CUSTOMIPP_SPECTRUM_INL_H_
#endif

#include "../transforms/fourier.h"
#include "span-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {

const FourierKernels& fourierKernels();

namespace {

/** Rows and columns of a small square exchanged, as large as two or four numbers a vector allow. */
template <class D>
HWY_INLINE void transposeSquare(D d, const double* from, size_t fromStride, double* to, size_t toStride)
{
    const auto row0 = hn::Load(d, from), row1 = hn::Load(d, from + fromStride);
    const auto low01 = hn::InterleaveLower(d, row0, row1), high01 = hn::InterleaveUpper(d, row0, row1);
    if constexpr (hn::MaxLanes(D()) == 4) {
        const auto row2 = hn::Load(d, from + 2 * fromStride), row3 = hn::Load(d, from + 3 * fromStride);
        const auto low23 = hn::InterleaveLower(d, row2, row3), high23 = hn::InterleaveUpper(d, row2, row3);
        hn::Store(hn::ConcatLowerLower(d, low23, low01), d, to);
        hn::Store(hn::ConcatLowerLower(d, high23, high01), d, to + toStride);
        hn::Store(hn::ConcatUpperUpper(d, low23, low01), d, to + 2 * toStride);
        hn::Store(hn::ConcatUpperUpper(d, high23, high01), d, to + 3 * toStride);
    } else {
        hn::Store(low01, d, to);
        hn::Store(high01, d, to + toStride);
    }
}

/** An 8 x 8 block with rows and columns exchanged. */
HWY_INLINE void transposeBlock(const double* from, size_t fromStride, double* to, size_t toStride)
{
    const hn::CappedTag<double, 4> d;
    constexpr size_t edge = hn::MaxLanes(d);
    for (size_t y = 0; y < 8; y += edge)
        for (size_t x = 0; x < 8; x += edge)
            transposeSquare(d, from + y * fromStride + x, fromStride, to + x * toStride + y, toStride);
}

class SpanTransform {
public:
    SpanTransform(const MatchPlan& plan, const MatchMemory& memory)
        : m_width(static_cast<size_t>(plan.spanWidth)),
          m_height(static_cast<size_t>(plan.spanHeight)),
          m_blocks((m_height / 2 + 8) / 8),
          m_batch(memory.doubles(plan.batch)),
          m_scratch(memory.doubles(plan.scratch)),
          m_x(makeFourierPlan(plan.spanWidth, memory.doubles(plan.tablesX))),
          m_y(makeFourierPlan(plan.spanHeight, memory.doubles(plan.tablesY)))
    {
    }

    /** The spectrum of a plane of the pattern, ready to be multiplied with. */
    void preparePattern(const Plane& pattern, double* spectrum) const
    {
        columnsForward(pattern, spectrum);
        const Doubles d;
        // Both spectra come out twice as large, and a transform there and back multiplies by its length.
        const auto scale = hn::Set(d, 0.25 / (static_cast<double>(m_width) * static_cast<double>(m_height)));
        for (size_t block = 0; block < m_blocks; ++block) {
            double* batch = spectrum + block * batchSize<double>(m_width);
            const double* result = transform(m_x, Direction::Forward, batch, m_scratch);
            for (size_t x = 0; x < m_width; ++x)
                for (size_t lane = 0; lane < 8; lane += hn::Lanes(d)) {
                    const size_t re = 16 * x + lane, im = re + 8;
                    // The conjugate makes it a correlation.
                    hn::Store(hn::Mul(hn::Load(d, result + re), scale), d, batch + re);
                    hn::Store(hn::Neg(hn::Mul(hn::Load(d, result + im), scale)), d, batch + im);
                }
        }
    }

    /** The sums of products for the upper left of a window, which has the size of the transforms. */
    void correlate(const Plane& window, const double* pattern, double* spectrum, const Tile& tile,
        const Plane& products) const
    {
        columnsForward(window, spectrum);
        for (size_t block = 0; block < m_blocks; ++block)
            rowsThere(
                pattern + block * batchSize<double>(m_width), spectrum + block * batchSize<double>(m_width));
        for (size_t x = 0; x < m_width / 2 && x < static_cast<size_t>(tile.width); x += 8)
            columnsBack(x, spectrum, tile, products);
    }

private:
    static double* transform(
        const FourierPlan<double>& plan, Direction direction, double* batch, double* scratch)
    {
        return fourierKernels().of64f(plan, direction, batch, scratch);
    }

    /** Where eight columns of a block of eight rows lie in a spectrum. */
    double* place(double* spectrum, size_t block, size_t column) const
    {
        return spectrum + block * batchSize<double>(m_width) + 16 * column;
    }

    void columnsForward(const Plane& window, double* spectrum) const
    {
        const Doubles d;
        HWY_ALIGN double blocks[4][64]; // real and imaginary parts, of the left and of the right columns
        for (size_t column = 0; column < m_width / 2; column += 8) {
            for (size_t y = 0; y < m_height; ++y) {
                const double* row = window.row(y) + column;
                for (size_t lane = 0; lane < 8; lane += hn::Lanes(d)) {
                    hn::Store(hn::Load(d, row + lane), d, m_batch + 16 * y + lane);
                    hn::Store(hn::Load(d, row + m_width / 2 + lane), d, m_batch + 16 * y + 8 + lane);
                }
            }
            const double* both = transform(m_y, Direction::Forward, m_batch, m_scratch);
            for (size_t block = 0; block < m_blocks; ++block) {
                for (size_t i = 0; i < 8; ++i) {
                    const size_t k = 8 * block + i;
                    if (k > m_height / 2) {
                        for (double(&part)[64] : blocks)
                            std::fill(part + 8 * i, part + 8 * i + 8, 0.0);
                        continue;
                    }
                    const double* z = both + 16 * k;
                    const double* mirrored = both + 16 * (k == 0 ? 0 : m_height - k);
                    for (size_t lane = 0; lane < 8; lane += hn::Lanes(d)) {
                        const auto re = hn::Load(d, z + lane), im = hn::Load(d, z + 8 + lane);
                        const auto mRe = hn::Load(d, mirrored + lane), mIm = hn::Load(d, mirrored + 8 + lane);
                        hn::Store(hn::Add(re, mRe), d, blocks[0] + 8 * i + lane);
                        hn::Store(hn::Sub(im, mIm), d, blocks[1] + 8 * i + lane);
                        hn::Store(hn::Add(im, mIm), d, blocks[2] + 8 * i + lane);
                        hn::Store(hn::Sub(mRe, re), d, blocks[3] + 8 * i + lane);
                    }
                }
                for (size_t part = 0; part < 4; ++part)
                    transposeBlock(blocks[part], 8,
                        place(spectrum, block, column + part / 2 * (m_width / 2)) + part % 2 * 8, 16);
            }
        }
    }

    void rowsThere(const double* pattern, double* batch) const
    {
        const Doubles d;
        double* there = transform(m_x, Direction::Forward, batch, m_scratch);
        for (size_t x = 0; x < m_width; ++x)
            for (size_t lane = 0; lane < 8; lane += hn::Lanes(d)) {
                const size_t iRe = 16 * x + lane, iIm = iRe + 8;
                const auto re = hn::Load(d, there + iRe), im = hn::Load(d, there + iIm);
                const auto pRe = hn::Load(d, pattern + iRe), pIm = hn::Load(d, pattern + iIm);
                hn::Store(hn::Sub(hn::Mul(re, pRe), hn::Mul(im, pIm)), d, there + iRe);
                hn::Store(hn::Add(hn::Mul(re, pIm), hn::Mul(im, pRe)), d, there + iIm);
            }
        // As many stages again: the result is where the batch was.
        transform(m_x, Direction::Backward, there, there == batch ? m_scratch : batch);
    }

    void columnsBack(size_t column, double* spectrum, const Tile& tile, const Plane& products) const
    {
        const Doubles d;
        HWY_ALIGN double blocks[4][64];
        for (size_t block = 0; block < m_blocks; ++block) {
            for (size_t part = 0; part < 4; ++part)
                transposeBlock(place(spectrum, block, column + part / 2 * (m_width / 2)) + part % 2 * 8, 16,
                    blocks[part], 8);
            for (size_t k = 8 * block; k < 8 * block + 8 && k <= m_height / 2; ++k) {
                const bool isReal = k == 0 || k == m_height / 2;
                double* z = m_batch + 16 * k;
                double* mirrored = m_batch + 16 * (k == 0 ? 0 : m_height - k);
                for (size_t lane = 0; lane < 8; lane += hn::Lanes(d)) {
                    const size_t i = 8 * (k % 8) + lane;
                    const auto leftRe = hn::Load(d, blocks[0] + i), leftIm = hn::Load(d, blocks[1] + i);
                    const auto rightRe = hn::Load(d, blocks[2] + i), rightIm = hn::Load(d, blocks[3] + i);
                    if (isReal) {
                        hn::Store(leftRe, d, z + lane);
                        hn::Store(rightRe, d, z + 8 + lane);
                        continue;
                    }
                    hn::Store(hn::Sub(leftRe, rightIm), d, z + lane);
                    hn::Store(hn::Add(leftIm, rightRe), d, z + 8 + lane);
                    hn::Store(hn::Add(leftRe, rightIm), d, mirrored + lane);
                    hn::Store(hn::Sub(rightRe, leftIm), d, mirrored + 8 + lane);
                }
            }
        }
        const double* both = transform(m_y, Direction::Backward, m_batch, m_scratch);
        const bool hasRight = column + m_width / 2 < static_cast<size_t>(tile.width);
        for (size_t y = 0; y < static_cast<size_t>(tile.height); ++y) {
            double* to = products.row(y) + column;
            for (size_t lane = 0; lane < 8; lane += hn::Lanes(d)) {
                hn::Store(hn::Load(d, both + 16 * y + lane), d, to + lane);
                if (hasRight)
                    hn::Store(hn::Load(d, both + 16 * y + 8 + lane), d, to + m_width / 2 + lane);
            }
        }
    }

    size_t m_width, m_height;
    size_t m_blocks; ///< of eight rows
    double* m_batch;
    double* m_scratch;
    FourierPlan<double> m_x, m_y;
};

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
