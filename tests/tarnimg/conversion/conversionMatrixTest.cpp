// The pixels of every pair of types, against a slow conversion that is written down apart.
#include "reference.h"
#include "testImages.h"

#include "support/TraceLines.h"

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <gtest/gtest.h>
#include <string>

using namespace testImages;
using reference::Outcome;
using reference::Range;

namespace {

/** Runs a test once on each instruction set of this processor that the library may choose. */
class onEveryTarget : public testing::TestWithParam<int64_t> {
protected:
    void SetUp() override { choose(GetParam()); }
    void TearDown() override { choose(0); }

private:
    static void choose(int64_t i_target)
    {
        hwy::SetSupportedTargetsForTest(i_target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

std::string targetName(const testing::TestParamInfo<int64_t>& i_info)
{
    return hwy::TargetName(i_info.param);
}

class conversionMatrixTest : public onEveryTarget {};

INSTANTIATE_TEST_SUITE_P(
    , conversionMatrixTest, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()), targetName);

bool sameElement(reference::Type i_type, const uint8_t* i_a, const uint8_t* i_b, int i_bytes)
{
    if (std::memcmp(i_a, i_b, size_t(i_bytes)) == 0)
        return true;
    if (i_type == reference::Float32) { // any NaN is as good as another
        float a, b;
        std::memcpy(&a, i_a, 4);
        std::memcpy(&b, i_b, 4);
        return a != a && b != b;
    }
    if (i_type == reference::Float64) {
        double a, b;
        std::memcpy(&a, i_a, 8);
        std::memcpy(&b, i_b, 8);
        return a != a && b != b;
    }
    return false;
}

std::string bytesAsText(const uint8_t* i_pixel, int i_bytes)
{
    std::string text;
    for (int i = i_bytes - 1; i >= 0; --i) {
        char byte[3];
        std::snprintf(byte, sizeof byte, "%02x", i_pixel[i]);
        text += byte;
    }
    return text;
}

/** Reports place and bytes of the first five differences. */
testing::AssertionResult samePixels(
    const reference::Image& i_actual, const reference::Image& i_expected, const reference::Image& i_source)
{
    const int bytes = reference::pixelBytes(i_expected.type),
              sourceBytes = reference::pixelBytes(i_source.type);
    std::string text;
    int count = 0;
    for (size_t i = 0; i < i_expected.bytes.size() / bytes; ++i) {
        const uint8_t* is = i_actual.bytes.data() + i * bytes;
        const uint8_t* shouldBe = i_expected.bytes.data() + i * bytes;
        if (!sameElement(i_expected.type, is, shouldBe, bytes) && ++count <= 5) {
            text += "\n  pixel " + std::to_string(i % i_expected.width) + ", "
                + std::to_string(i / i_expected.width) + " is 0x" + bytesAsText(is, bytes) + ", should be 0x"
                + bytesAsText(shouldBe, bytes) + ", source 0x"
                + bytesAsText(i_source.bytes.data() + i * sourceBytes, sourceBytes);
        }
    }
    if (count == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << count << " pixels differ" << text;
}

std::string describe(reference::Type i_from, reference::Type i_to, Range i_input, Range i_output)
{
    return std::string(reference::nameOf(i_from)) + " (" + std::to_string(i_input.low) + " to "
        + std::to_string(i_input.high) + ") -> " + reference::nameOf(i_to) + " ("
        + std::to_string(i_output.low) + " to " + std::to_string(i_output.high) + ")";
}

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

/** The range that a new image of this type has. */
bool isStartRange(reference::Type i_type, Range i_range)
{
    const cImg image(libraryType(i_type), 1, 1);
    const cDblRange& range = image.getRange();
    return range.getLow() == i_range.low && range.getHigh() == i_range.high;
}

/** Converts into a result that holds known pixels, and compares pixels, report and the memory round the
 * result. */
void expectConversion(const reference::Image& i_source, reference::Type i_to, Range i_input, Range i_output,
    Layout i_sourceLayout = Layout::Compact, Layout i_resultLayout = Layout::Compact)
{
    SCOPED_TRACE(describe(i_source.type, i_to, i_input, i_output) + ", " + std::to_string(i_source.width)
        + " x " + std::to_string(i_source.height) + ", layouts " + std::to_string(int(i_sourceLayout)) + " "
        + std::to_string(int(i_resultLayout)));
    const cImg source = toImage(i_source, i_sourceLayout);
    const reference::Image before = randomImage(i_to, i_source.width, i_source.height, 99);
    cImg result = toImage(before, i_resultLayout);
    reference::Image expected = before;
    Outcome outcome = Outcome::Written;
    if (i_source.type == i_to && isStartRange(i_to, i_input) && isStartRange(i_to, i_output))
        expected = i_source; // copied as it is
    else
        outcome = reference::convert(i_source, expected, i_input, i_output);

    TraceLines trace;
    const cMapObj params = rangeParams(i_input, i_output);
    EXPECT_TRUE(source.convertTo(libraryType(i_to), result, &params));
    const QStringList lines = trace.take();
    if (outcome == Outcome::Nothing) {
        EXPECT_FALSE(lines.isEmpty());
        for (const QString& line : lines)
            EXPECT_EQ(line.toStdString(), "Invalid range detected.");
    } else {
        EXPECT_TRUE(lines.isEmpty()) << lines.join(u'|').toStdString();
    }
    ASSERT_TRUE(result.isKindOf(libraryType(i_to)));
    EXPECT_TRUE(samePixels(fromImage(result), expected, i_source));
    EXPECT_EQ(fromImage(source).bytes, i_source.bytes) << "the source was changed";
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

namespace {

/** Values that are mapped next to a half, from a few steps of T below it to a few above. */
template <class T> reference::Image imageNextToHalves(reference::Type i_type, Range i_input, Range i_output)
{
    constexpr int halves = 64, steps = 7;
    reference::Image image(i_type, steps, halves);
    const double factor = (i_output.high - i_output.low) / (i_input.high - i_input.low);
    for (int k = 0; k < halves; ++k) {
        const double whole = std::floor(i_output.low + (i_output.high - i_output.low) * k / halves);
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

TEST_P(conversionMatrixTest, ValuesNextToAHalfAreRoundedAsInTheReference)
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

TEST_P(conversionMatrixTest, MappingsOntoHalvesAreRoundedAsInTheReference)
{
    // Every second pixel lies on a half, or each one does.
    for (const reference::Type from :
        {reference::UInt8, reference::SInt8, reference::UInt16, reference::SInt16, reference::SInt32})
        for (const reference::Type to : reference::everyType)
            if (reference::isSupported(from, to))
                for (const Range& output :
                    {Range {0, 50}, Range {-25, 25}, Range {0.5, 100.5}, Range {-0.5, 99.5}})
                    expectConversion(randomImage(from, 300, 3), to, {0, 100}, output);
}
