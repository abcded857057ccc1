// The stages of a length and their tables.
#include "fourier.h"

#include <utility>

namespace customipp {

namespace {

/** Calls function(radix, m) for each stage: m is the length of the sequences that it leaves. */
template <class Function> void forEachStage(int length, Function&& function)
{
    int rest = length;
    const auto take = [&](int radix) {
        rest /= radix;
        function(radix, rest);
    };
    // Eight at a time; what is left of the powers of two is done by fours, and at the most one two.
    int twos = 0;
    for (int n = length; n % 2 == 0; n /= 2)
        ++twos;
    for (; twos == 3 || twos >= 5; twos -= 3)
        take(8);
    for (; twos >= 2; twos -= 2)
        take(4);
    if (twos == 1)
        take(2);
    for (const int radix : {5, 3})
        while (rest % radix == 0)
            take(radix);
    int radix = 7;
    while (rest > 1) {
        if (radix > rest / radix)
            radix = rest; // nothing smaller divides it
        while (rest % radix == 0)
            take(radix);
        radix += 2;
    }
}

/** Whether the stage is done by the definition, for which it needs the roots of one themselves. */
bool needsRoots(int radix) { return radix > 8 || radix == 7; }

/** Sine and cosine of up to an eighth of the circle, by their series, to within one unit in the last place.
 * Those of the C library differ in the last bit from processor to processor. */
UnitRoot firstOctant(double angle)
{
    const double s = angle * angle;
    double sine = 0, cosine = 0;
    for (int n = 20; n >= 2; n -= 2) {
        cosine = (1 - cosine) * (s / ((n - 1) * n));
        sine = (1 - sine) * (s / (n * (n + 1)));
    }
    return {1 - cosine, angle - angle * sine};
}

} // namespace

UnitRoot unitRoot(int numerator, int denominator)
{
    // In eighths of the circle, exactly: numerator / denominator = (octant + rest / denominator) / 8.
    const long long eighths = 8LL * numerator;
    const long long octant = eighths / denominator, rest = eighths % denominator;
    const bool mirrored = octant % 2 != 0;
    constexpr double eighth = 0.78539816339744830962;
    const UnitRoot root
        = firstOctant(eighth * (static_cast<double>(mirrored ? denominator - rest : rest) / denominator));
    UnitRoot turned = mirrored ? UnitRoot {root.im, root.re} : root;
    for (long long quarter = octant / 2; quarter > 0; --quarter)
        turned = {-turned.im, turned.re};
    return turned;
}

template <class T> size_t fourierTableSize(int length)
{
    size_t size = 0;
    forEachStage(length, [&](int radix, int m) {
        size += 2 * static_cast<size_t>(radix - 1) * static_cast<size_t>(m);
        size += needsRoots(radix) ? 2 * static_cast<size_t>(radix) : 0;
    });
    return size;
}

template <class T> FourierPlan<T> fourierPlanAt(int length, const T* tables)
{
    FourierPlan<T> plan {length, 0, {}, tables};
    forEachStage(length, [&](int radix, int) { plan.radices[plan.stages++] = radix; });
    return plan;
}

template <class T> FourierPlan<T> makeFourierPlan(int length, T* tables)
{
    T* next = tables;
    const auto put = [&](const UnitRoot& root) {
        *next++ = static_cast<T>(root.re);
        *next++ = static_cast<T>(root.im);
    };
    forEachStage(length, [&](int radix, int m) {
        for (int p = 0; p < m; ++p)
            for (int k = 1; k < radix; ++k) {
                const UnitRoot root = unitRoot(p * k, radix * m);
                put({root.re, -root.im});
            }
        if (needsRoots(radix))
            for (int k = 0; k < radix; ++k)
                put(unitRoot(k, radix));
    });
    return fourierPlanAt<T>(length, tables);
}

template size_t fourierTableSize<float>(int);
template size_t fourierTableSize<double>(int);
template FourierPlan<float> fourierPlanAt(int, const float*);
template FourierPlan<double> fourierPlanAt(int, const double*);
template FourierPlan<float> makeFourierPlan(int, float*);
template FourierPlan<double> makeFourierPlan(int, double*);

} // namespace customipp
