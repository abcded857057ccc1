#pragma once

#include "support/FencedMemory.h"
#include "support/Plane.h"

#include <customipp/customipp.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

/** What the tests of template matching share: the functions of each pixel type, and the results by
 * definition. */
namespace match {

inline constexpr int s_shapes[] = {ippiROIFull, ippiROIValid, ippiROISame};

using SizeQuery = IppStatus (*)(IppiSize, IppiSize, IppEnum, int*);
template <class T>
using Function
    = IppStatus (*)(const T*, int, IppiSize, const T*, int, IppiSize, Ipp32f*, int, IppEnum, Ipp8u*);

/** One of the two measures for a pixel type. */
template <class T> struct Calls {
    const char* name;
    SizeQuery size;
    Function<T> run;
    bool isDistance;
};
template <class T> std::vector<Calls<T>> bothMeasures();
#define MATCH_CALLS(T, type)                                                                                 \
    template <> inline std::vector<Calls<T>> bothMeasures()                                                  \
    {                                                                                                        \
        return {{"CrossCorr " #type, ippiCrossCorrNormGetBufferSize, ippiCrossCorrNorm_##type##_C1R, false}, \
            {"SqrDistance " #type, ippiSqrDistanceNormGetBufferSize, ippiSqrDistanceNorm_##type##_C1R,       \
                true}};                                                                                      \
    }
MATCH_CALLS(Ipp8u, 8u32f)
MATCH_CALLS(Ipp16u, 16u32f)
MATCH_CALLS(Ipp32f, 32f)

/** What is summed over one window. */
struct Sums {
    long double products = 0, squares = 0, distance = 0;
    long double deviationProducts = 0, deviationSquares = 0;
};

inline IppiSize resultSize(IppiSize source, IppiSize pattern, int shape)
{
    const int border = shape == ippiROIFull ? 1 : shape == ippiROIValid ? -1 : 0;
    return {source.width + border * (pattern.width - 1), source.height + border * (pattern.height - 1)};
}

/** The results by their definition. */
template <class T> class Oracle {
public:
    Oracle(const Plane<T>& i_source, const Plane<T>& i_pattern) : m_source(i_source), m_pattern(i_pattern)
    {
        m_count = (long double)(i_pattern.lanes()) * i_pattern.rows();
        for (int y = 0; y < i_pattern.rows(); ++y)
            for (int x = 0; x < i_pattern.lanes(); ++x)
                m_mean += i_pattern.get(x, y) / m_count;
        for (int y = 0; y < i_pattern.rows(); ++y)
            for (int x = 0; x < i_pattern.lanes(); ++x) {
                const long double t = i_pattern.get(x, y);
                m_squares += t * t;
                m_deviationSquares += (t - m_mean) * (t - m_mean);
            }
        if (isNone(m_deviationSquares, m_squares))
            m_deviationSquares = 0;
    }

    Sums sumsAt(int i_x, int i_y, int i_shape) const
    {
        const int ox = i_shape == ippiROIFull ? m_pattern.lanes() - 1
            : i_shape == ippiROISame          ? m_pattern.lanes() / 2
                                              : 0;
        const int oy = i_shape == ippiROIFull ? m_pattern.rows() - 1
            : i_shape == ippiROISame          ? m_pattern.rows() / 2
                                              : 0;
        std::vector<long double> window;
        long double mean = 0;
        for (int j = 0; j < m_pattern.rows(); ++j)
            for (int i = 0; i < m_pattern.lanes(); ++i) {
                const int x = i_x + i - ox, y = i_y + j - oy;
                const bool inside = x >= 0 && y >= 0 && x < m_source.lanes() && y < m_source.rows();
                window.push_back(inside ? (long double)(m_source.get(x, y)) : 0);
                mean += window.back() / m_count;
            }
        Sums sums;
        for (size_t k = 0; k < window.size(); ++k) {
            const int i = int(k) % m_pattern.lanes(), j = int(k) / m_pattern.lanes();
            const long double t = m_pattern.get(i, j), x = window[k];
            sums.products += t * x;
            sums.squares += x * x;
            sums.distance += (t - x) * (t - x);
            sums.deviationProducts += (t - m_mean) * (x - mean);
            sums.deviationSquares += (x - mean) * (x - mean);
        }
        if (isNone(sums.deviationSquares, sums.squares))
            sums.deviationSquares = 0;
        return sums;
    }

    /** The value, and by how much it may be missed. */
    std::pair<double, double> valueOf(const Sums& i_sums, int i_norm, bool i_isDistance) const
    {
        if (i_norm == ippiNormNone) {
            const long double value = i_isDistance ? i_sums.distance : i_sums.products;
            if (sizeof(T) == 1)
                return {float(value), 0};
            const long double scale
                = i_isDistance ? i_sums.squares + m_squares : std::sqrt(i_sums.squares * m_squares);
            return {double(value), double(scale) * std::ldexp(1.0, -22)};
        }
        const bool centred = i_norm == ippiNormCoefficient;
        const long double square
            = centred ? i_sums.deviationSquares * m_deviationSquares : i_sums.squares * m_squares;
        if (square == 0)
            return {i_isDistance && i_sums.distance > 0 ? 1 : 0, 0};
        long double value = (i_isDistance     ? i_sums.distance
                                    : centred ? i_sums.deviationProducts
                                              : i_sums.products)
            / std::sqrt(square);
        if (!i_isDistance)
            value = std::clamp<long double>(value, -1, 1);
        return {double(value), 2e-6 * std::max(1.0, std::abs(double(value)))};
    }

private:
    /** Integers that are equal have a mean that may not be a number of this width. */
    static bool isNone(long double i_deviations, long double i_squares)
    {
        return i_deviations <= (std::is_floating_point_v<T> ? std::ldexp(1.0L, -40) : 1e-25L) * i_squares;
    }

    const Plane<T>& m_source;
    const Plane<T>& m_pattern;
    long double m_count, m_mean = 0, m_squares = 0, m_deviationSquares = 0;
};

/** Both measures, every shape and norm that is allowed for the sizes, against the oracle. */
template <class T>
void expectDefinition(const Plane<T>& i_source, const Plane<T>& i_pattern, Layout i_layout = {})
{
    const IppiSize source {i_source.lanes(), i_source.rows()};
    const IppiSize pattern {i_pattern.lanes(), i_pattern.rows()};
    const Oracle<T> oracle(i_source, i_pattern);
    for (const int shape : s_shapes) {
        if (shape == ippiROIValid && (source.width < pattern.width || source.height < pattern.height))
            continue;
        const IppiSize size = resultSize(source, pattern, shape);
        std::vector<Sums> sums;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                sums.push_back(oracle.sumsAt(x, y, shape));
        for (const auto& calls : bothMeasures<T>())
            for (const int norm : {int(ippiNormNone), int(ippiNorm), int(ippiNormCoefficient)}) {
                if (calls.isDistance && norm == ippiNormCoefficient)
                    continue;
                SCOPED_TRACE(std::string(calls.name) + ", shape " + std::to_string(shape >> 16) + ", norm "
                    + std::to_string(norm >> 8) + ", " + std::to_string(source.width) + "x"
                    + std::to_string(source.height) + " with " + std::to_string(pattern.width) + "x"
                    + std::to_string(pattern.height));
                int bytes = 0;
                ASSERT_EQ(calls.size(source, pattern, shape | norm, &bytes), ippStsNoErr);
                ASSERT_GT(bytes, 0);
                FencedMemory work(size_t(bytes) + 5, FencedMemory::AgainstEnd);
                Plane<Ipp32f> result(size.width, size.height, i_layout);
                ASSERT_EQ(
                    calls.run(i_source.data(), i_source.step(), source, i_pattern.data(), i_pattern.step(),
                        pattern, result.data(), result.step(), shape | norm, work.data() + 5),
                    ippStsNoErr);
                ASSERT_TRUE(result.frameIsIntact());
                int wrong = 0;
                for (int y = 0; y < size.height; ++y)
                    for (int x = 0; x < size.width; ++x) {
                        const auto [value, tolerance] = oracle.valueOf(
                            sums[size_t(y) * size_t(size.width) + size_t(x)], norm, calls.isDistance);
                        const double is = result.get(x, y);
                        if (!(std::abs(is - value) <= tolerance) && ++wrong <= 5)
                            ADD_FAILURE() << x << ", " << y << " is " << is << ", should be " << value
                                          << " +- " << tolerance;
                    }
                ASSERT_EQ(wrong, 0);
            }
    }
}

} // namespace match
