// Fourier transforms of batches: Stockham's algorithm, which leaves the result in its natural order.
//
// A stage of radix R takes sequences of n = R m elements, `stride` of them interleaved, to R times as many
// sequences of m elements: element R p + k of the result is w^(p k) times the k-th number of the transform of
// the elements p, p + m, ... of the source, w being the n-th root of one.
#include "fourier.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "transforms/fourier.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <utility>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <class V> struct Complex {
    V re, im;
};

template <class V> HWY_INLINE Complex<V> operator+(const Complex<V>& a, const Complex<V>& b)
{
    return {hn::Add(a.re, b.re), hn::Add(a.im, b.im)};
}
template <class V> HWY_INLINE Complex<V> operator-(const Complex<V>& a, const Complex<V>& b)
{
    return {hn::Sub(a.re, b.re), hn::Sub(a.im, b.im)};
}
template <class V> HWY_INLINE Complex<V> operator*(const Complex<V>& a, const Complex<V>& b)
{
    return {
        hn::Sub(hn::Mul(a.re, b.re), hn::Mul(a.im, b.im)), hn::Add(hn::Mul(a.re, b.im), hn::Mul(a.im, b.re))};
}
template <class V> HWY_INLINE Complex<V> operator*(const Complex<V>& a, V factor)
{
    return {hn::Mul(a.re, factor), hn::Mul(a.im, factor)};
}
/** a + i b and a - i b */
template <class V> HWY_INLINE Complex<V> plusI(const Complex<V>& a, const Complex<V>& b)
{
    return {hn::Sub(a.re, b.im), hn::Add(a.im, b.re)};
}
template <class V> HWY_INLINE Complex<V> minusI(const Complex<V>& a, const Complex<V>& b)
{
    return {hn::Add(a.re, b.im), hn::Sub(a.im, b.re)};
}

/** The forward transform of `Radix` numbers in place. */
template <int Radix> struct Butterfly;

template <> struct Butterfly<2> {
    template <class V> static HWY_INLINE void run(Complex<V> (&z)[2])
    {
        const Complex<V> sum = z[0] + z[1];
        z[1] = z[0] - z[1];
        z[0] = sum;
    }
};

template <> struct Butterfly<3> {
    template <class V> static HWY_INLINE void run(Complex<V> (&z)[3])
    {
        using T = hn::TFromV<V>;
        const hn::DFromV<V> d;
        const Complex<V> sum = z[1] + z[2];
        const Complex<V> turned = (z[1] - z[2]) * hn::Set(d, static_cast<T>(0.86602540378443864676));
        const Complex<V> middle = z[0] - sum * hn::Set(d, static_cast<T>(0.5));
        z[0] = z[0] + sum;
        z[1] = minusI(middle, turned);
        z[2] = plusI(middle, turned);
    }
};

template <> struct Butterfly<4> {
    template <class V> static HWY_INLINE void run(Complex<V> (&z)[4])
    {
        const Complex<V> sum02 = z[0] + z[2], difference02 = z[0] - z[2];
        const Complex<V> sum13 = z[1] + z[3], difference13 = z[1] - z[3];
        z[0] = sum02 + sum13;
        z[1] = minusI(difference02, difference13);
        z[2] = sum02 - sum13;
        z[3] = plusI(difference02, difference13);
    }
};

template <> struct Butterfly<5> {
    template <class V> static HWY_INLINE void run(Complex<V> (&z)[5])
    {
        using T = hn::TFromV<V>;
        const hn::DFromV<V> d;
        const V cos1 = hn::Set(d, static_cast<T>(0.30901699437494742410));
        const V cos2 = hn::Set(d, static_cast<T>(-0.80901699437494742410));
        const V sin1 = hn::Set(d, static_cast<T>(0.95105651629515357212));
        const V sin2 = hn::Set(d, static_cast<T>(0.58778525229247312917));
        const Complex<V> sum14 = z[1] + z[4], difference14 = z[1] - z[4];
        const Complex<V> sum23 = z[2] + z[3], difference23 = z[2] - z[3];
        const Complex<V> middle1 = z[0] + sum14 * cos1 + sum23 * cos2;
        const Complex<V> middle2 = z[0] + sum14 * cos2 + sum23 * cos1;
        const Complex<V> turned1 = difference14 * sin1 + difference23 * sin2;
        const Complex<V> turned2 = difference14 * sin2 - difference23 * sin1;
        z[0] = z[0] + sum14 + sum23;
        z[1] = minusI(middle1, turned1);
        z[2] = minusI(middle2, turned2);
        z[3] = plusI(middle2, turned2);
        z[4] = plusI(middle1, turned1);
    }
};

template <> struct Butterfly<8> {
    template <class V> static HWY_INLINE void run(Complex<V> (&z)[8])
    {
        const V half = hn::Set(hn::DFromV<V>(), static_cast<hn::TFromV<V>>(0.70710678118654752440));
        Complex<V> even[4] = {z[0] + z[4], z[1] + z[5], z[2] + z[6], z[3] + z[7]};
        const Complex<V> d1 = z[1] - z[5], d2 = z[2] - z[6], d3 = z[3] - z[7];
        // The differences times the powers of exp(-i pi / 4).
        Complex<V> odd[4]
            = {z[0] - z[4], {hn::Mul(hn::Add(d1.re, d1.im), half), hn::Mul(hn::Sub(d1.im, d1.re), half)},
                {d2.im, hn::Neg(d2.re)},
                {hn::Mul(hn::Sub(d3.im, d3.re), half), hn::Neg(hn::Mul(hn::Add(d3.re, d3.im), half))}};
        Butterfly<4>::run(even);
        Butterfly<4>::run(odd);
        HWY_UNROLL(4)
        for (int k = 0; k < 4; ++k) {
            z[2 * k] = even[k];
            z[2 * k + 1] = odd[k];
        }
    }
};

/** One stage: where it reads and writes, and where in an element the parts lie. Exchanging them turns the
 * transform round. */
template <class T> struct Stage {
    const T* from;
    T* to;
    size_t m;
    size_t stride;
    size_t re, im;
    const T* twiddles;
};

/** The sequences p of one stage, of which each result but the first is turned by a twiddle factor. */
template <int Radix, bool Turn, class D, class T>
HWY_INLINE void sequencesAt(D d, const Stage<T>& stage, size_t p)
{
    using V = hn::Vec<D>;
    constexpr size_t element = 2 * batchLanes<T>;
    const size_t distance = stage.stride * stage.m * element;
    const T* twiddles = stage.twiddles + p * 2 * (Radix - 1);
    const T* from = stage.from + stage.stride * p * element;
    T* to = stage.to + stage.stride * Radix * p * element;
    for (size_t q = 0; q < stage.stride; ++q, from += element, to += element) {
        for (size_t lane = 0; lane < batchLanes<T>; lane += hn::Lanes(d)) {
            Complex<V> z[Radix];
            HWY_UNROLL(8)
            for (size_t k = 0; k < size_t(Radix); ++k)
                z[k] = {hn::Load(d, from + k * distance + stage.re + lane),
                    hn::Load(d, from + k * distance + stage.im + lane)};
            Butterfly<Radix>::run(z);
            HWY_UNROLL(8)
            for (size_t k = 0; k < size_t(Radix); ++k) {
                if (Turn && k > 0)
                    z[k] = z[k]
                        * Complex<V> {hn::Set(d, twiddles[2 * k - 2]), hn::Set(d, twiddles[2 * k - 1])};
                hn::Store(z[k].re, d, to + k * stage.stride * element + stage.re + lane);
                hn::Store(z[k].im, d, to + k * stage.stride * element + stage.im + lane);
            }
        }
    }
}

template <int Radix, class D, class T> HWY_NOINLINE void runStage(D d, const Stage<T>& stage)
{
    sequencesAt<Radix, false>(d, stage, 0);
    for (size_t p = 1; p < stage.m; ++p)
        sequencesAt<Radix, true>(d, stage, p);
}

/** Any odd radix, by its definition. Its roots lie behind the twiddle factors. */
template <class D, class T> HWY_NOINLINE void runOddStage(D d, const Stage<T>& stage, size_t radix)
{
    using V = hn::Vec<D>;
    constexpr size_t element = 2 * batchLanes<T>;
    const size_t distance = stage.stride * stage.m * element;
    const T* roots = stage.twiddles + 2 * (radix - 1) * stage.m;
    for (size_t p = 0; p < stage.m; ++p) {
        const T* twiddles = stage.twiddles + p * 2 * (radix - 1);
        for (size_t q = 0; q < stage.stride; ++q) {
            const T* from = stage.from + (q + stage.stride * p) * element;
            T* to = stage.to + (q + stage.stride * radix * p) * element;
            for (size_t lane = 0; lane < batchLanes<T>; lane += hn::Lanes(d)) {
                const T* re = from + stage.re + lane;
                const T* im = from + stage.im + lane;
                const Complex<V> first {hn::Load(d, re), hn::Load(d, im)};
                Complex<V> sum = first;
                for (size_t j = 1; j < radix; ++j)
                    sum = sum + Complex<V> {hn::Load(d, re + j * distance), hn::Load(d, im + j * distance)};
                hn::Store(sum.re, d, to + stage.re + lane);
                hn::Store(sum.im, d, to + stage.im + lane);
                // Results k and radix - k are made of the same products.
                for (size_t k = 1; k <= radix / 2; ++k) {
                    Complex<V> middle = first, turned {hn::Zero(d), hn::Zero(d)};
                    for (size_t j = 1, root = k; j <= radix / 2; ++j, root = (root + k) % radix) {
                        const size_t mirrored = (radix - j) * distance;
                        const Complex<V> a {hn::Load(d, re + j * distance), hn::Load(d, im + j * distance)};
                        const Complex<V> b {hn::Load(d, re + mirrored), hn::Load(d, im + mirrored)};
                        middle = middle + (a + b) * hn::Set(d, roots[2 * root]);
                        turned = turned + (a - b) * hn::Set(d, roots[2 * root + 1]);
                    }
                    const size_t pair[2] = {k, radix - k};
                    const Complex<V> result[2] = {minusI(middle, turned), plusI(middle, turned)};
                    for (int i = 0; i < 2; ++i) {
                        const T* turn = twiddles + 2 * pair[i] - 2;
                        const Complex<V> z
                            = result[i] * Complex<V> {hn::Set(d, turn[0]), hn::Set(d, turn[1])};
                        hn::Store(z.re, d, to + pair[i] * stage.stride * element + stage.re + lane);
                        hn::Store(z.im, d, to + pair[i] * stage.stride * element + stage.im + lane);
                    }
                }
            }
        }
    }
}

template <class T> T* transform(const FourierPlan<T>& plan, Direction direction, T* batch, T* scratch)
{
    const hn::CappedTag<T, batchLanes<T>> d;
    const bool forward = direction == Direction::Forward;
    Stage<T> stage {batch, scratch, static_cast<size_t>(plan.length), 1, forward ? 0 : batchLanes<T>,
        forward ? batchLanes<T> : 0, plan.twiddles};
    for (int i = 0; i < plan.stages; ++i) {
        const size_t radix = static_cast<size_t>(plan.radices[i]);
        stage.m /= radix;
        switch (radix) {
        case 2:
            runStage<2>(d, stage);
            break;
        case 3:
            runStage<3>(d, stage);
            break;
        case 4:
            runStage<4>(d, stage);
            break;
        case 5:
            runStage<5>(d, stage);
            break;
        case 8:
            runStage<8>(d, stage);
            break;
        default:
            runOddStage(d, stage, radix);
            stage.twiddles += 2 * radix;
        }
        stage.twiddles += 2 * (radix - 1) * stage.m;
        stage.stride *= radix;
        std::swap(batch, scratch);
        stage.from = batch;
        stage.to = scratch;
    }
    return batch;
}

constexpr FourierKernels s_kernels {transform<float>, transform<double>};
} // namespace

const FourierKernels& fourierKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(fourierKernels);
const FourierKernels& kernelsFourier() { return HWY_DYNAMIC_DISPATCH(fourierKernels)(); }
} // namespace customipp
#endif // HWY_ONCE
