#include "conversionTesting.h"

#include "support/TraceLines.h"

using namespace testImages;
using reference::Outcome;
using reference::Range;

namespace {

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

/** The range that a new image of this type has. */
bool isStartRange(reference::Type i_type, Range i_range)
{
    const cImg image(libraryType(i_type), 1, 1);
    const cDblRange& range = image.getRange();
    return range.getLow() == i_range.low && range.getHigh() == i_range.high;
}

} // namespace

void conversionTesting::expectConversion(const reference::Image& i_source, reference::Type i_to,
    Range i_input, Range i_output, Layout i_sourceLayout, Layout i_resultLayout)
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
