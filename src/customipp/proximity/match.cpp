// Correlation and squared distance of a pattern with every window of an image.
#include "match.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "proximity/match.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "direct-inl.h"
#include "results-inl.h"
#include "spectrum-inl.h"
#include "windowSums-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The sum of products for one result, by the definition. */
template <class T>
double productsAt(const MatchTask<T>& task, double offset, int64_t sourceX, int64_t sourceY)
{
    const IppiSize source = task.problem.source, pattern = task.problem.pattern;
    const int64_t left = std::max<int64_t>(0, -sourceX), top = std::max<int64_t>(0, -sourceY);
    const int64_t right = std::min<int64_t>(pattern.width, source.width - sourceX);
    const int64_t bottom = std::min<int64_t>(pattern.height, source.height - sourceY);
    double sum = 0;
    for (int64_t y = top; y < bottom; ++y)
        for (int64_t x = left; x < right; ++x)
            sum += pixelAt(task.source, sourceX + x, sourceY + y) * (pixelAt(task.pattern, x, y) - offset);
    return sum;
}

/** One call: the pattern made ready, and then tile after tile. */
template <class T> class Match {
public:
    Match(const MatchTask<T>& task, const MatchPlan& plan)
        : m_task(task),
          m_plan(plan),
          m_memory(plan, task.buffer),
          m_pattern(task.pattern, task.problem.pattern, task.problem.norm),
          m_isCoefficient(task.problem.norm == MatchNorm::Coefficient)
    {
    }

    void run() const
    {
        if (m_plan.method == MatchMethod::Spectrum)
            runTiles(prepareSpectrum());
        else
            runTiles(prepareDirect());
    }

private:
    /** What the products are summed with instead of the pattern's pixels is less by this. */
    double offset() const
    {
        return m_isCoefficient && m_plan.method != MatchMethod::Pairs ? m_pattern.mean : 0;
    }

    bool needsSquares() const
    {
        return m_task.problem.norm != MatchNorm::None || m_task.problem.measure == Measure::SqrDistance
            || hasWeakWindows();
    }
    /** Whether a transform's error may be felt in windows that are dark beside their tile. That of 8-bit
     * pixels is always below one half. */
    bool hasWeakWindows() const { return m_plan.method == MatchMethod::Spectrum && sizeof(T) > 1; }

    /** The pattern as numbers in rows of a stride; what is beyond its right end stays. */
    void copyPattern(double* to, size_t stride) const
    {
        const IppiSize size = m_task.problem.pattern;
        const size_t width = static_cast<size_t>(size.width);
        for (int y = 0; y < size.height; ++y, to += stride) {
            stageRow(Doubles(), m_task.pattern, size, 0, y, width, to);
            for (size_t x = 0; x < width; ++x)
                to[x] -= offset();
        }
    }

    struct DirectSums {
        const Match& match;

        void operator()(const Tile& tile) const
        {
            const MatchMemory& memory = match.m_memory;
            if constexpr (sizeof(T) == 1) {
                if (match.m_plan.method == MatchMethod::Pairs) {
                    sumPairs(match.m_task, memory, tile);
                    return;
                }
            }
            sumDirectly<SingleProducts>(memory.plane(match.m_plan.window),
                memory.doubles(match.m_plan.pattern), match.m_task.problem.pattern, tile,
                memory.plane(match.m_plan.products));
        }
    };
    DirectSums prepareDirect() const
    {
        if constexpr (sizeof(T) == 1) {
            if (m_plan.method == MatchMethod::Pairs) {
                preparePairs(m_task, m_memory);
                return {*this};
            }
        }
        copyPattern(m_memory.doubles(m_plan.pattern), static_cast<size_t>(m_task.problem.pattern.width));
        return {*this};
    }

    struct SpectrumSums {
        const Match& match;
        SpanTransform transform;

        void operator()(const Tile& tile) const
        {
            const MatchMemory& memory = match.m_memory;
            transform.correlate(memory.plane(match.m_plan.window),
                memory.doubles(match.m_plan.patternSpectrum), memory.doubles(match.m_plan.spectrum), tile,
                memory.plane(match.m_plan.products));
        }
    };
    SpectrumSums prepareSpectrum() const
    {
        const SpectrumSums sums {*this, SpanTransform(m_plan, m_memory)};
        const Plane window = m_memory.plane(m_plan.window);
        std::fill_n(window.first, window.stride * static_cast<size_t>(m_plan.spanHeight), 0.0);
        copyPattern(window.first, window.stride);
        sums.transform.preparePattern(window, m_memory.doubles(m_plan.patternSpectrum));
        return sums;
    }

    template <class Sums> void runTiles(const Sums& sumProducts) const
    {
        const MatchProblem& problem = m_task.problem;
        for (int64_t y = 0; y < problem.result.height; y += m_plan.tileHeight)
            for (int64_t x = 0; x < problem.result.width; x += m_plan.tileWidth) {
                const Tile tile {static_cast<int>(x), static_cast<int>(y),
                    static_cast<int>(std::min<int64_t>(m_plan.tileWidth, problem.result.width - x)),
                    static_cast<int>(std::min<int64_t>(m_plan.tileHeight, problem.result.height - y)),
                    x - problem.originX, y - problem.originY};
                if (m_plan.method != MatchMethod::Pairs || needsSquares())
                    stageWindow(m_task, m_memory, tile);
                sumProducts(tile);
                if (m_isCoefficient)
                    sumWindows<Deviations>(m_memory, problem.pattern, tile);
                else if (needsSquares())
                    sumWindows<SquareSums>(m_memory, problem.pattern, tile);
                if (hasWeakWindows())
                    mendWeakWindows(tile);
                writeTile(tile);
            }
    }

    /**
     * The error of a transform is that of the whole tile, about 2^-50 of its and the pattern's norm. Where
     * the window's own squares are too small for that, its products are summed by the definition.
     */
    void mendWeakWindows(const Tile& tile) const
    {
        const double least = energyOf(m_memory) * 2.220446049250313e-16; // 2^-52
        for (int y = 0; y < tile.height; ++y) {
            const size_t row = static_cast<size_t>(y);
            double* products = m_memory.plane(m_plan.products).row(row);
            const double* squares = m_memory.plane(m_plan.squares).row(row);
            for (int x = 0; x < tile.width; ++x)
                if (squares[x] < least)
                    products[x] = squares[x] == 0
                        ? 0
                        : productsAt(m_task, offset(), tile.sourceX + x, tile.sourceY + y);
        }
    }

    void writeTile(const Tile& tile) const
    {
        const bool isDistance = m_task.problem.measure == Measure::SqrDistance;
        if (m_isCoefficient)
            write(tile,
                Coefficient {m_pattern.squares, m_pattern.pixels, leastDeviation<T>,
                    m_plan.method == MatchMethod::Pairs ? m_pattern.sum : m_pattern.rest});
        else if (m_task.problem.norm == MatchNorm::Norm && isDistance)
            write(tile, NormedDistance {m_pattern.squares});
        else if (m_task.problem.norm == MatchNorm::Norm)
            write(tile, NormedProducts {m_pattern.squares});
        else if (isDistance)
            write(tile, PlainDistance {m_pattern.squares});
        else
            write(tile, PlainProducts());
    }
    template <class Formula> void write(const Tile& tile, const Formula& formula) const
    {
        // The products of integers are integers.
        const bool round = m_plan.method == MatchMethod::Spectrum && !hwy::IsFloat<T>() && !m_isCoefficient;
        writeResults(m_memory, tile, round, formula, m_task.result);
    }

    const MatchTask<T>& m_task;
    const MatchPlan& m_plan;
    MatchMemory m_memory;
    PatternSums m_pattern;
    bool m_isCoefficient;
};

template <class T> void match(const MatchTask<T>& task)
{
    const MatchPlan plan = makeMatchPlan(task.problem, sizeof(T) == 1);
    Match<T>(task, plan).run();
}

constexpr MatchKernels s_kernels {match<Ipp8u>, match<Ipp16u>, match<Ipp32f>};
} // namespace

const MatchKernels& matchKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(matchKernels);
const MatchKernels& kernelsMatch() { return HWY_DYNAMIC_DISPATCH(matchKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/crossCorrNorm.def>
#include <customipp/sqrDistanceNorm.def>
#endif // HWY_ONCE
