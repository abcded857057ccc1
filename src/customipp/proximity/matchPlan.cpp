// Which way a template match goes, and how its work memory is laid out.
#include "match.h"

#include "../transforms/fourier.h"

#include <algorithm>
#include <climits>

namespace customipp {

namespace {

bool isEmpty(IppiSize size) { return size.width < 1 || size.height < 1; }

int64_t roundUp(int64_t value, int64_t unit) { return (value + unit - 1) / unit * unit; }
int64_t tilesOf(int64_t length, int64_t tile) { return (length + tile - 1) / tile; }

/** Cycles of a transform for each element of a batch, about. Only the proportions count. */
double cyclesOf(int length)
{
    double cycles = 0;
    for (const int radix : {8, 5, 4, 3, 2})
        for (; length % radix == 0; length /= radix)
            cycles += radix == 2 ? 3.5 : radix <= 4 ? 4.0 : 5.5;
    return cycles;
}

bool hasOnlySmallFactors(int64_t length)
{
    for (const int prime : {2, 3, 5})
        while (length % prime == 0)
            length /= prime;
    return length == 1;
}

/** Beside the transform itself, for each element of a span: staging, transposing, sums, results. */
constexpr double cyclesOfMoving = 12;

/** One side of the span of a tile. */
struct Side {
    int span;
    double cycles; ///< for each result along this side
};

/**
 * The length of a transform that makes the work along one side least: a multiple of `unit` that holds the
 * pattern and at least one result.
 */
Side bestSide(int results, int pattern, int unit)
{
    const int64_t whole = int64_t {results} + pattern - 1;
    const int64_t limit = std::max<int64_t>(512, 3 * int64_t {pattern});
    Side best {0, 0};
    for (int64_t span = roundUp(pattern, unit); !best.span || span <= limit; span += unit) {
        if (span > INT_MAX - unit)
            break;
        if (!hasOnlySmallFactors(span))
            continue;
        const double elements = static_cast<double>(tilesOf(results, span - pattern + 1) * span);
        const double cycles = elements / results * (cyclesOf(static_cast<int>(span)) + cyclesOfMoving);
        if (!best.span || cycles < best.cycles)
            best = {static_cast<int>(span), cycles};
        if (span >= whole)
            break;
    }
    return best;
}

/** Parts of the work memory, one behind the other. */
class Memory {
public:
    Offset take(int64_t bytes)
    {
        const Offset offset = m_bytes;
        m_bytes += static_cast<size_t>(roundUp(bytes, 64));
        return offset;
    }
    Offset takeDoubles(int64_t count) { return take(count * static_cast<int64_t>(sizeof(double))); }
    size_t bytes() const { return m_bytes; }

private:
    size_t m_bytes = 0;
};

/** The results of a direct tile come in blocks of rows and vectors. */
constexpr int blockRows = 4, blockColumns = 32;

void chooseDirectTile(const MatchProblem& problem, MatchPlan& plan)
{
    plan.tileWidth = std::min(problem.result.width, 256);
    plan.tileHeight = std::min(problem.result.height, 32);
    plan.spanWidth = static_cast<int>(roundUp(plan.tileWidth, blockColumns)) + problem.pattern.width;
    plan.spanHeight = static_cast<int>(roundUp(plan.tileHeight, blockRows)) + problem.pattern.height - 1;
}

void layOut(const MatchProblem& problem, bool eightBit, MatchPlan& plan)
{
    Memory memory;
    plan.stride = static_cast<size_t>(roundUp(plan.spanWidth, 32));
    const int64_t stride = static_cast<int64_t>(plan.stride);
    const int64_t tileRows = roundUp(plan.tileHeight, blockRows);
    const int64_t patternPixels = int64_t {problem.pattern.width + 1} * problem.pattern.height;

    plan.window = memory.takeDoubles(stride * plan.spanHeight);
    plan.products = memory.takeDoubles(stride * tileRows);
    plan.sums = memory.takeDoubles(stride * tileRows);
    plan.squares = memory.takeDoubles(stride * tileRows);
    plan.columnsSize = static_cast<size_t>(std::max<int64_t>(16 * int64_t {plan.spanHeight}, stride + 16));
    plan.columns = memory.takeDoubles(2 * static_cast<int64_t>(plan.columnsSize));
    plan.row = memory.takeDoubles(stride);
    if (plan.method != MatchMethod::Spectrum) {
        plan.pattern = memory.takeDoubles(patternPixels);
        if (eightBit)
            plan.pairs = memory.take(stride * plan.spanHeight * 4);
    } else {
        const int64_t lanes = batchLanes<double>;
        const int64_t half = roundUp(plan.spanHeight / 2 + 1, lanes);
        const int64_t longest = std::max(plan.spanWidth, plan.spanHeight);
        plan.spectrumSize = static_cast<size_t>(half * plan.spanWidth * 2);
        plan.spectrum = memory.takeDoubles(half * plan.spanWidth * 2);
        plan.patternSpectrum = memory.takeDoubles(half * plan.spanWidth * 2);
        plan.batch = memory.takeDoubles(longest * 2 * lanes);
        plan.scratch = memory.takeDoubles(longest * 2 * lanes);
        plan.tablesX = memory.takeDoubles(static_cast<int64_t>(fourierTableSize<double>(plan.spanWidth)));
        plan.tablesY = memory.takeDoubles(static_cast<int64_t>(fourierTableSize<double>(plan.spanHeight)));
    }
    plan.bytes = memory.bytes() + 64;
}

} // namespace

IppStatus makeMatchProblem(IppiSize source, IppiSize pattern, IppEnum algType, Measure measure,
    std::initializer_list<StepOf> steps, MatchProblem& problem)
{
    const int shape = algType & ippiROIMask, norm = algType & ippiNormMask, algorithm = algType & ippAlgMask;
    if (isEmpty(source) || isEmpty(pattern))
        return ippStsSizeErr;
    if (shape == ippiROIValid && (source.width < pattern.width || source.height < pattern.height))
        return ippStsSizeErr;

    // The pattern's pixel that lies on the source's pixel x, y for the result x, y; and the result's size.
    const bool full = shape == ippiROIFull, valid = shape == ippiROIValid, same = shape == ippiROISame;
    const int border = full ? 1 : valid ? -1 : 0;
    const int64_t width = source.width + int64_t {border} * (pattern.width - 1);
    const int64_t height = source.height + int64_t {border} * (pattern.height - 1);
    const int64_t widths[3] = {source.width, pattern.width, full || valid || same ? width : 0};
    const int64_t* rowPixels = widths;
    for (const StepOf& image : steps)
        if (image.step <= 0 || image.step < *rowPixels++ * image.pixelBytes)
            return ippStsStepErr;

    if (algType & ~(ippiROIMask | ippiNormMask | ippAlgMask))
        return ippStsAlgTypeErr;
    if (algorithm != ippAlgAuto && algorithm != ippAlgDirect && algorithm != ippAlgFFT)
        return ippStsAlgTypeErr;
    if (norm != ippiNormNone && norm != ippiNorm && norm != ippiNormCoefficient)
        return ippStsAlgTypeErr;
    if (norm == ippiNormCoefficient && measure == Measure::SqrDistance)
        return ippStsAlgTypeErr;
    if (!full && !valid && !same)
        return ippStsAlgTypeErr;
    if (width > INT_MAX || height > INT_MAX)
        return ippStsExceededSizeErr;

    problem.source = source;
    problem.pattern = pattern;
    problem.result = {static_cast<int>(width), static_cast<int>(height)};
    problem.originX = full ? pattern.width - 1 : same ? pattern.width / 2 : 0;
    problem.originY = full ? pattern.height - 1 : same ? pattern.height / 2 : 0;
    problem.norm = norm == ippiNormNone ? MatchNorm::None
        : norm == ippiNorm              ? MatchNorm::Norm
                                        : MatchNorm::Coefficient;
    problem.measure = measure;
    return ippStsNoErr;
}

MatchPlan makeMatchPlan(const MatchProblem& problem, bool eightBit)
{
    const double patternPixels = static_cast<double>(problem.pattern.width) * problem.pattern.height;
    const double results = static_cast<double>(problem.result.width) * problem.result.height;
    const bool pairs = eightBit && patternPixels <= 32768; // below 2^31 in 32 bits, as 255^2 < 2^16
    const double direct = results * patternPixels / (pairs ? 45 : 12);

    MatchPlan plan {};
    plan.method = pairs ? MatchMethod::Pairs : MatchMethod::Direct;
    // Columns are done in pairs of blocks, and rows in pairs.
    const Side x = bestSide(problem.result.width, problem.pattern.width, 2 * int {batchLanes<double>});
    const Side y = bestSide(problem.result.height, problem.pattern.height, 2);
    const double elements = static_cast<double>(x.span) * y.span;
    const double tiles
        = static_cast<double>(tilesOf(problem.result.width, x.span - problem.pattern.width + 1))
        * static_cast<double>(tilesOf(problem.result.height, y.span - problem.pattern.height + 1));
    // The pattern is a tile of its own, transformed in one direction.
    const double spectrum = (tiles + 0.5) * elements
        / batchLanes<double> * (cyclesOf(x.span) + cyclesOf(y.span) + cyclesOfMoving);
    if (spectrum < direct) {
        plan.method = MatchMethod::Spectrum;
        plan.spanWidth = x.span;
        plan.spanHeight = y.span;
        plan.tileWidth = std::min(problem.result.width, x.span - problem.pattern.width + 1);
        plan.tileHeight = std::min(problem.result.height, y.span - problem.pattern.height + 1);
    } else {
        chooseDirectTile(problem, plan);
    }
    layOut(problem, eightBit, plan);
    return plan;
}

IppStatus matchBufferSize(
    Measure measure, IppiSize source, IppiSize pattern, IppEnum algType, int* bufferSize)
{
    if (!bufferSize)
        return ippStsNullPtrErr;
    *bufferSize = 0;
    MatchProblem problem;
    if (const IppStatus status = makeMatchProblem(source, pattern, algType, measure, {}, problem))
        return status;
    const size_t bytes = std::max(makeMatchPlan(problem, true).bytes, makeMatchPlan(problem, false).bytes);
    if (bytes > INT_MAX)
        return ippStsExceededSizeErr;
    *bufferSize = static_cast<int>(bytes);
    return ippStsNoErr;
}

} // namespace customipp
