// Pixels whose rounding is close, against a slow conversion that is written down apart.
#include "conversionTesting.h"

using namespace conversionTesting;
using reference::Range;

namespace {

class roundingTest : public onEveryTarget {};

INSTANTIATE_TEST_SUITE_P(, roundingTest, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()), targetName);

/** Values that are mapped next to a half, from a few steps of T below it to a few above. */
template <class T>
reference::Image imageNextToHalves(reference::Type i_type, Range i_input, Range i_output, int i_halves = 64)
{
    constexpr int steps = 7;
    reference::Image image(i_type, steps, i_halves);
    const double factor = (i_output.high - i_output.low) / (i_input.high - i_input.low);
    for (int k = 0; k < i_halves; ++k) {
        const double whole = std::floor(i_output.low + (i_output.high - i_output.low) * k / i_halves);
        auto value = T(i_input.low + (whole + 0.5 - i_output.low) / factor);
        for (int i = 0; i < steps / 2; ++i)
            value = std::nextafter(value, std::numeric_limits<T>::lowest());
        for (int i = 0; i < steps; ++i) {
            std::memcpy(image.bytes.data() + size_t(k * steps + i) * sizeof(T), &value, sizeof(T));
            value = std::nextafter(value, std::numeric_limits<T>::max());
        }
    }
    return image;
}

} // namespace

TEST_P(roundingTest, ValuesNextToAHalfAreRoundedAsInTheReference)
{
    for (const Range& input :
        {Range {-1, 1}, Range {-300, 300}, Range {0, 1000}, Range {-1e6, 3e6}, Range {10.25, 11.5}})
        for (const Range& output : {Range {0, 255}, Range {-128, 127}, Range {-300, 300},
                 Range {-5.5, 100.25}, Range {0, 65535}, Range {-2147483648.0, 2147483647.0}})
            for (const reference::Type to : reference::everyType)
                if (reference::isSupported(reference::Float64, to)) {
                    expectConversion(
                        imageNextToHalves<double>(reference::Float64, input, output), to, input, output);
                    expectConversion(
                        imageNextToHalves<float>(reference::Float32, input, output), to, input, output);
                }
}

TEST_P(roundingTest, FloatsNextToEveryHalfAreRoundedAsInTheReference)
{
    std::mt19937 random(5);
    // Some dividends of this divisor are not divided by products.
    constexpr double awkward = 1.59246767f;
    for (const Range& output : {Range {0, 255}, Range {-128, 127}, Range {0, 65535}, Range {-32768, 32767},
             Range {3, 250}, Range {-0.25, 254.5}, Range {0.5, 255.5}}) {
        const double width = output.high - output.low;
        std::vector<Range> inputs {{0, awkward * width}, {0, 1}, {-1, 1}, {1, 255}, {0, 4095}};
        for (int i = 0; i < 3; ++i) {
            const double low = int(random() % 20001) - 10000;
            inputs.push_back(
                {low / 16, low / 16 + std::ldexp(double(random() % 65535 + 1), -int(random() % 20))});
        }
        const int halves = int(width) + 1;
        for (const Range& input : inputs)
            for (const reference::Type to :
                {reference::UInt8, reference::SInt8, reference::UInt16, reference::SInt16})
                expectConversion(
                    imageNextToHalves<float>(reference::Float32, input, output, halves), to, input, output);
    }
}

TEST_P(roundingTest, OneNaNAmongNumbersBecomesTheLeastValue)
{
    constexpr int width = 130;
    reference::Image image(reference::Float32, width, width);
    for (int i = 0; i < width * width; ++i) {
        const bool isNaN = i % width == i / width;
        const float value = isNaN ? std::numeric_limits<float>::quiet_NaN() : float(i % 301) / 2 - 20;
        std::memcpy(image.bytes.data() + size_t(i) * sizeof value, &value, sizeof value);
    }
    for (const reference::Type to : reference::everyType)
        if (reference::isSupported(reference::Float32, to))
            for (const Range& output :
                {Range {0, 127}, Range {5, 99.5}, Range {-128, 127}, Range {-32768, 32767}})
                expectConversion(image, to, {-10, 120}, output);
}

TEST_P(roundingTest, MappingsOntoHalvesAreRoundedAsInTheReference)
{
    // Every second pixel lies on a half, or each one does.
    for (const reference::Type from :
        {reference::UInt8, reference::SInt8, reference::UInt16, reference::SInt16, reference::SInt32})
        for (const reference::Type to : reference::everyType)
            if (reference::isSupported(from, to))
                for (const Range& output :
                    {Range {0, 50}, Range {-25, 25}, Range {0.5, 100.5}, Range {-0.5, 99.5}})
                    expectConversion(testImages::randomImage(from, 300, 3), to, {0, 100}, output);
}

TEST_P(roundingTest, WholeFactorsGiveTheReferencesPixels)
{
    for (const reference::Type from : {reference::UInt8, reference::SInt8, reference::UInt16,
             reference::SInt16, reference::SInt32, reference::UInt32}) {
        const reference::Image source = testImages::randomImage(from, 131, 2);
        for (const reference::Type to : {reference::UInt32, reference::SInt32, reference::Float32})
            for (const Range& input : {Range {0, 100}, Range {-20, 60}, Range {-300, 300}, Range {250, 260},
                     Range {-2147483648.0, 2147483647.0}})
                for (const double factor : {1.0, 3.0, 257.0, 65537.0, 16843009.0})
                    for (const double offset : {0.0, -7.0, 1e6, 4e9, 0.5})
                        if (reference::isSupported(from, to) && from != to)
                            expectConversion(
                                source, to, input, {offset, offset + factor * (input.high - input.low)});
    }
}

TEST_P(roundingTest, IntegersOntoBytesAreRoundedAsInTheReference)
{
    std::mt19937 random(9);
    for (const Range& input : {Range {-2147483648.0, 2147483647.0}, Range {-300, 300}, Range {0, 100000},
             Range {-1e9, 3e8}, Range {-70.5, 999.25}, Range {0, 4294967295.0}})
        for (const Range& output : {Range {0, 255}, Range {-128, 127}, Range {3.5, 250}, Range {-0.75, 254},
                 Range {-100, 155}, Range {200, 455.5}}) {
            // Next to each half, and anything between.
            reference::Image image(reference::SInt32, 512, 5);
            const double step = (input.high - input.low) / (output.high - output.low);
            for (int i = 0; i < 512 * 5; ++i) {
                const double half = std::floor(output.low) + i / 10 + 0.5;
                const double v = i % 2 == 0
                    ? input.low + (half - output.low) * step + i / 2 % 5 - 2
                    : input.low + double(random()) / 4294967296.0 * (input.high - input.low);
                const auto value = int32_t(std::min(std::max(std::round(v), -2147483648.0), 2147483647.0));
                std::memcpy(image.bytes.data() + size_t(i) * sizeof value, &value, sizeof value);
            }
            for (const reference::Type to : {reference::UInt8, reference::SInt8})
                expectConversion(image, to, input, output);
        }
}
