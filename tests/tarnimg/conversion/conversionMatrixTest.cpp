// The pixels of every pair of types, against a slow conversion that is written down apart.
#include "conversionTesting.h"

using namespace conversionTesting;
using namespace testImages;
using reference::Range;

namespace {

class conversionMatrixTest : public onEveryTarget {};

INSTANTIATE_TEST_SUITE_P(
    , conversionMatrixTest, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()), targetName);

/** The input ranges of a type: whole, inside, with fractions, narrow, reaching outside, out of order once
 * cut. */
std::vector<Range> inputRanges(reference::Type i_type)
{
    switch (i_type) {
    case reference::RGB24:
    case reference::RGB32:
    case reference::UInt8:
        return {{0, 255}, {10, 200}, {10.75, 200.5}, {0, 100}, {100, 101}, {0.25, 255}, {3, 300}, {200, 300},
            {-20, 90}, {-1, 256}, {0, 1e6}};
    case reference::UInt16:
        return {{0, 65535}, {0, 255}, {1000, 60000}, {10.75, 200.5}, {100, 101}, {3, 70000}, {60000, 70000},
            {-20, 90}, {0, 1e9}};
    case reference::SInt8:
        return {{-128, 127}, {0, 127}, {-10.25, 99.5}, {-300, 300}, {5, 6}};
    case reference::Float32:
    case reference::Float64:
        return {{-1, 1}, {0, 255}, {0, 1}, {-250.5, 249.75}, {-1e10, 1e10}, {1e-3, 2e-3}, {-100, 155}};
    case reference::SInt64:
        return {{-9223372036854775808.0, 9223372036854775808.0}, {0, 1000}, {-1e18, 1e17}};
    default:
        return {{-32768, 32767}, {0, 4294967295.0}, {-2147483648.0, 2147483647.0}, {0, 255}, {-10.25, 9999.5},
            {5, 6}};
    }
}

/** Output ranges: whole ones, inside, with fractions, shifted, wider than types, of width 0. */
std::vector<Range> outputRanges(reference::Type i_type)
{
    std::vector<Range> ranges {{0, 255}, {0, 1}, {20, 220.5}, {-50, 50}, {0, 300}, {-3.75, 3.25}, {7, 7},
        {0, 65535}, {250, 1000.5}, {-1e10, 1e10}, {0, 0.01}};
    switch (i_type) {
    case reference::SInt8:
        ranges.push_back({-128, 127});
        break;
    case reference::SInt16:
    case reference::UInt16:
        ranges.push_back({-32768, 32767});
        break;
    case reference::UInt32:
        ranges.push_back({0, 4294967295.0});
        break;
    case reference::SInt32:
    case reference::SInt64:
        ranges.push_back({-2147483648.0, 2147483647.0});
        ranges.push_back({-9223372036854775808.0, 9223372036854775808.0});
        break;
    default:
        break;
    }
    return ranges;
}

} // namespace

TEST_P(conversionMatrixTest, EveryPairOfTypesAndRangesGivesTheReferencesPixels)
{
    for (const reference::Type from : reference::everyType) {
        const reference::Image source = randomImage(from, 131, 3);
        for (const reference::Type to : reference::everyType) {
            if (!reference::isSupported(from, to))
                continue;
            for (const Range& input : inputRanges(from))
                for (const Range& output : outputRanges(to))
                    expectConversion(source, to, input, output);
            if (HasFailure())
                return;
        }
    }
}

TEST_P(conversionMatrixTest, EveryWidthGivesTheReferencesPixels)
{
    for (const reference::Type from : reference::everyType)
        for (const reference::Type to : reference::everyType)
            for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 63, 64, 65, 130})
                if (reference::isSupported(from, to))
                    for (const int height : {1, 2, 5})
                        expectConversion(randomImage(from, width, height), to, {10.5, 200}, {-3, 90});
}

TEST_P(conversionMatrixTest, ImagesLargerThanACacheGiveTheReferencesPixels)
{
    for (const reference::Type from : reference::everyType)
        for (const reference::Type to : reference::everyType)
            if (reference::isSupported(from, to)) {
                expectConversion(randomImage(from, 9001, 3), to, {10, 200}, {20, 90});
                expectConversion(randomImage(from, 301, 101), to, {10, 200}, {20, 90});
                expectConversion(randomImage(from, 1, 9001), to, {0, 300}, {-20, 90});
            }
}

TEST_P(conversionMatrixTest, NoLayoutOfSourceAndResultChangesThePixels)
{
    for (const reference::Type from : reference::everyType)
        for (const reference::Type to : reference::everyType)
            if (reference::isSupported(from, to))
                for (const Layout sourceLayout : everyLayout)
                    for (const Layout resultLayout : everyLayout)
                        for (const int width : {1, 33, 3001})
                            expectConversion(randomImage(from, width, 5), to, {10, 200}, {20, 90},
                                sourceLayout, resultLayout);
}

TEST_P(conversionMatrixTest, NothingAroundAViewIsWritten)
{
    for (const reference::Type from : reference::everyType)
        for (const reference::Type to : reference::everyType) {
            if (!reference::isSupported(from, to))
                continue;
            const int width = 37, height = 4;
            const size_t bytes = size_t(reference::pixelBytes(to));
            const cImg source = toImage(randomImage(from, width, height));
            cImg parent(libraryType(to), width + 4, height + 4, 1);
            std::memset(parent.getData(), 0x5A, parent.getFrameSize());
            cImg view(parent, false, cRect<int>(1, 3, width, height));
            const cMapObj params = rangeParams({10, 200}, {20, 90});
            ASSERT_TRUE(source.convertTo(libraryType(to), view, &params));
            for (int y = 0; y < height + 4; ++y) {
                const bool inRows = y >= 3 && y < 3 + height;
                for (size_t x = 0; x < (width + 4) * bytes; ++x) {
                    if (inRows && x >= bytes && x < (1 + width) * bytes)
                        continue;
                    ASSERT_EQ(parent.getRow<unsigned char>(unsigned(y))[x], 0x5A)
                        << reference::nameOf(from) << " -> " << reference::nameOf(to) << ", row " << y
                        << ", byte " << x;
                }
            }
        }
}

TEST_P(conversionMatrixTest, EveryGreyLevelOfEightBitsIsStretchedAsInTheReference)
{
    reference::Image levels(reference::UInt8, 256, 1);
    for (int i = 0; i < 256; ++i)
        levels.bytes[size_t(i)] = uint8_t(i);
    for (const reference::Type to : reference::everyType)
        if (reference::isSupported(reference::UInt8, to))
            for (int low = 0; low < 255; low += 15)
                for (int high = low + 1; high <= 256; high += 51)
                    expectConversion(
                        levels, to, {double(low), double(high)}, {double(255 - high), 255.0 - low / 2.0});
}

TEST_P(conversionMatrixTest, EveryGreyLevelOfSixteenBitsIsStretchedAsInTheReference)
{
    reference::Image levels(reference::UInt16, 256, 256);
    for (unsigned i = 0; i < 65536; ++i) {
        const auto level = uint16_t(i);
        std::memcpy(levels.bytes.data() + 2 * i, &level, 2);
    }
    for (const reference::Type to : reference::everyType)
        if (reference::isSupported(reference::UInt16, to))
            for (const Range& input : {Range {0, 65535}, Range {123, 4567}, Range {0, 254.5}})
                for (const Range& output :
                    {Range {0, 255}, Range {0, 65535}, Range {-10, 10}, Range {1, 1.5}})
                    expectConversion(levels, to, input, output);
}
