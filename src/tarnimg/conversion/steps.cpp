#include "conversion/steps.h"

#include "conversion/floatChain.h"

#include <cmath>
#include <limits>

namespace conversion {

namespace {

/** The pixel layer's functions for one channel of T. Equal constants in all channels need no others. */
template <class T> struct Layer;

template <> struct Layer<Ipp8u> {
    static constexpr double greatest = 255.0;
    static constexpr double multiplierLimit = 128.0;
    static constexpr auto limit = ippiThreshold_LTValGTVal_8u_C1R;
    static constexpr auto subtract = ippiSubC_8u_C1RSfs;
    static constexpr auto multiply = ippiMulC_8u_C1RSfs;
    static constexpr auto add = ippiAddC_8u_C1RSfs;
};

template <> struct Layer<Ipp16u> {
    static constexpr double greatest = 65535.0;
    static constexpr double multiplierLimit = 32768.0;
    static constexpr auto limit = ippiThreshold_LTValGTVal_16u_C1R;
    static constexpr auto subtract = ippiSubC_16u_C1RSfs;
    static constexpr auto multiply = ippiMulC_16u_C1RSfs;
    static constexpr auto add = ippiAddC_16u_C1RSfs;
};

template <> struct Layer<Ipp32f> {
    static constexpr auto subtract = ippiSubC_32f_C1R;
    static constexpr auto multiply = ippiMulC_32f_C1R;
    static constexpr auto add = ippiAddC_32f_C1R;
};

template <class T> void addClamp(Program& io_program, int i_channels, T i_low, T i_high)
{
    io_program.move(i_channels * int(sizeof(T)), [=](const Tile& tile, SourceRows source, TargetRows target) {
        Layer<T>::limit(reinterpret_cast<const T*>(source.first), source.step(),
            reinterpret_cast<T*>(target.first), target.step(), tile.elements(i_channels), i_low, i_low,
            i_high, i_high);
    });
}

/** A step with one integer constant. */
template <auto Function, class T>
void addConstant(Program& io_program, int i_channels, T i_value, int i_scale = 0)
{
    io_program.move(i_channels * int(sizeof(T)), [=](const Tile& tile, SourceRows source, TargetRows target) {
        Function(reinterpret_cast<const T*>(source.first), source.step(), i_value,
            reinterpret_cast<T*>(target.first), target.step(), tile.elements(i_channels), i_scale);
    });
}

/** A step with one float constant. */
template <auto Function> void addConstantFloat(Program& io_program, Ipp32f i_value)
{
    io_program.move(int(sizeof(Ipp32f)), [=](const Tile& tile, SourceRows source, TargetRows target) {
        Function(reinterpret_cast<const Ipp32f*>(source.first), source.step(), i_value,
            reinterpret_cast<Ipp32f*>(target.first), target.step(), tile.elements(1));
    });
}

} // namespace

template <class T> T cut(double i_value)
{
    constexpr double width = 1.0 + std::numeric_limits<T>::max();
    const double whole = std::trunc(i_value);
    const double low = whole - std::floor(whole / width) * width; // exact: the width is a power of two
    return low >= 0.0 && low < width ? T(low) : T(0);
}

Multiplier findMultiplier(double i_factor, double i_limit)
{
    Multiplier multiplier {i_factor, 0};
    if (i_factor > 0.0) {
        while (multiplier.value < i_limit) {
            multiplier.value *= 2.0;
            ++multiplier.scale;
        }
    }
    return multiplier;
}

template <class T> bool limits(const cDblRange& i_range)
{
    return i_range.getLow() != 0.0 || !(i_range.getHigh() >= Layer<T>::greatest);
}

template <class T>
Stretch<T>::Stretch(const Ranges& i_ranges)
    : multiplies(i_ranges.factor() != 1.0),
      offset(cut<T>(i_ranges.output.getLow()))
{
    const Multiplier found = findMultiplier(i_ranges.factor(), Layer<T>::multiplierLimit);
    multiplier = cut<T>(found.value);
    scale = found.scale;
}

template <class T>
void addLimit(Program& io_program, int i_channels, const cDblRange& i_range, Refused i_refused)
{
    if (!limits<T>(i_range))
        return;
    const T low = cut<T>(i_range.getLow());
    const T high = cut<T>(i_range.getHigh());
    if (low <= high)
        addClamp(io_program, i_channels, low, high);
    else if (i_refused == Refused::Result)
        io_program.startFromResult();
}

template <class T> void addSubtract(Program& io_program, int i_channels, const Ranges& i_ranges)
{
    if (i_ranges.input.getLow() != 0.0)
        addConstant<Layer<T>::subtract>(io_program, i_channels, cut<T>(i_ranges.input.getLow()));
}

template <class T> void addStretch(Program& io_program, int i_channels, const Ranges& i_ranges)
{
    const Stretch<T> stretch(i_ranges);
    if (stretch.multiplies)
        addConstant<Layer<T>::multiply>(io_program, i_channels, stretch.multiplier, stretch.scale);
    if (stretch.offset != 0)
        addConstant<Layer<T>::add>(io_program, i_channels, stretch.offset);
}

template Ipp8u cut<Ipp8u>(double);
template Ipp16u cut<Ipp16u>(double);
template bool limits<Ipp8u>(const cDblRange&);
template bool limits<Ipp16u>(const cDblRange&);
template struct Stretch<Ipp8u>;
template struct Stretch<Ipp16u>;
template void addLimit<Ipp8u>(Program&, int, const cDblRange&, Refused);
template void addLimit<Ipp16u>(Program&, int, const cDblRange&, Refused);
template void addSubtract<Ipp8u>(Program&, int, const Ranges&);
template void addSubtract<Ipp16u>(Program&, int, const Ranges&);
template void addStretch<Ipp8u>(Program&, int, const Ranges&);
template void addStretch<Ipp16u>(Program&, int, const Ranges&);

void addStretchFloat(Program& io_program, const Ranges& i_ranges)
{
    if (i_ranges.input.getLow() != 0.0)
        addConstantFloat<Layer<Ipp32f>::subtract>(io_program, Ipp32f(i_ranges.input.getLow()));
    if (i_ranges.factor() != 1.0) // multiplication by 1 changes no pixel
        addConstantFloat<Layer<Ipp32f>::multiply>(io_program, Ipp32f(i_ranges.factor()));
    if (i_ranges.output.getLow() != 0.0)
        addConstantFloat<Layer<Ipp32f>::add>(io_program, Ipp32f(i_ranges.output.getLow()));
}

template <class T> void addFloatChain(Program& io_program, const Ranges& i_ranges)
{
    const cDblRange& in = i_ranges.input;
    const cDblRange& out = i_ranges.output;
    const auto divisor = Ipp32f(in.getLength() / out.getLength());
    FloatChain chain {
        .low = Ipp32f(in.getLow()),
        .high = Ipp32f(in.getHigh()),
        .subtrahend = in.getLow() != 0.0 ? Ipp32f(in.getLow()) : 0.0f,
        .divisor = divisor != 0.0f ? divisor : 1.0f, // nothing is divided by 0: an output range far too wide
        .summand = out.getLow() != 0.0 ? Ipp32f(out.getLow()) : -0.0f,
    };
    if constexpr (std::is_integral_v<T>)
        chain.findShortWays(std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
    io_program.move(int(sizeof(T)), [chain](const Tile& tile, SourceRows source, TargetRows target) {
        const auto convert = std::get<FloatChainRow<T>>(floatChainTable());
        for (int y = 0; y < tile.height; ++y) {
            convert(reinterpret_cast<const Ipp32f*>(source.first + y * source.pitch),
                reinterpret_cast<T*>(target.first + y * target.pitch), std::size_t(tile.width), chain);
        }
    });
}

template void addFloatChain<Ipp8u>(Program&, const Ranges&);
template void addFloatChain<Ipp8s>(Program&, const Ranges&);
template void addFloatChain<Ipp16u>(Program&, const Ranges&);
template void addFloatChain<Ipp16s>(Program&, const Ranges&);
template void addFloatChain<Ipp32f>(Program&, const Ranges&);

} // namespace conversion
