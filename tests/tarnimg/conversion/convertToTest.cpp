// What stands around the pixels: reports, ranges of the result, reuse of its memory, images of one record.
#include "testImages.h"

#include "support/TraceLines.h"

#include <tarnimg/cImageTypeFactory.h>

#include <gtest/gtest.h>
#include <limits>
#include <memory>

using namespace testImages;

namespace {

std::unique_ptr<cImgType> descriptor(cImgType::ImageTypes i_type)
{
    return std::unique_ptr<cImgType>(cImageTypeFactory::create(i_type, 1));
}

cMapObj oneRange(const char* i_key, double i_low, double i_high)
{
    cMapObj params;
    params[QString::fromLatin1(i_key)] = new cDataValObj<cDblRange>(cDblRange(i_low, i_high));
    return params;
}

/** A row of pixels of type T. */
template <class T> cImg rowOf(cImgType::ImageTypes i_type, std::initializer_list<T> i_values)
{
    cImg image(i_type, unsigned(i_values.size()), 1);
    std::copy(i_values.begin(), i_values.end(), image.row<T>(0));
    return image;
}

template <class T> std::vector<T> valuesOf(const cImg& i_image)
{
    return {i_image.getRow<T>(0), i_image.getRow<T>(0) + i_image.getWidth()};
}

std::string textOf(const cDblRange& i_range)
{
    return std::to_string(i_range.getLow()) + " to " + std::to_string(i_range.getHigh());
}

testing::AssertionResult hasRange(const cImg& i_image, double i_low, double i_high)
{
    if (i_image.getRange() == cDblRange(i_low, i_high))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the range is " << textOf(i_image.getRange());
}

constexpr auto everyLibraryType = {cImgType::RGB24, cImgType::RGB32, cImgType::UInt8, cImgType::UInt16,
    cImgType::UInt32, cImgType::SInt8, cImgType::SInt16, cImgType::SInt32, cImgType::SInt64,
    cImgType::Float32, cImgType::Float64, cImgType::Gradient16, cImgType::Gradient32, cImgType::Complex};

bool isSupported(cImgType::ImageTypes i_source, cImgType::ImageTypes i_target)
{
    if (i_source >= cImgType::Gradient16 || i_target >= cImgType::Gradient16)
        return i_source == i_target;
    return reference::isSupported(reference::Type(i_source), reference::Type(i_target));
}

} // namespace

// ---- Which pairs convert, and what is reported

TEST(convertToTest, EveryPairConvertsOrIsReportedAsNotSupported)
{
    for (const auto from : everyLibraryType) {
        for (const auto to : everyLibraryType) {
            cImg source(from, 4, 3);
            std::memset(source.getData(), 0, source.getFrameSize());
            cImg result;
            TraceLines trace;
            const QString fromName = source.getImgType().getName(), toName = descriptor(to)->getName();
            SCOPED_TRACE((fromName + u' ' + toName).toStdString());
            EXPECT_EQ(source.convertTo(to, result), isSupported(from, to));
            if (isSupported(from, to)) {
                EXPECT_TRUE(trace.take().isEmpty());
                EXPECT_TRUE(result.isKindOf(to));
                EXPECT_EQ(result.getSize(), source.getSize());
            } else {
                EXPECT_EQ(trace.take(),
                    QStringList {
                        QStringLiteral("Conversion is not supported: %1 -> %2.").arg(fromName, toName)});
                EXPECT_FALSE(result.isValid());
            }
        }
    }
}

TEST(convertToTest, ADescriptorOfAnotherTypeThanTheSourceIsRefused)
{
    const cImg source = rowOf<quint16>(cImgType::UInt16, {1, 2, 3});
    cImg result = rowOf<quint8>(cImgType::UInt8, {7, 8});
    const cImg before = result;
    TraceLines trace;
    const auto sint8 = descriptor(cImgType::SInt8), float32 = descriptor(cImgType::Float32);
    EXPECT_FALSE(sint8->convertTo(source, *float32, result, nullptr));
    // The text names the target where the descriptor would be right.
    EXPECT_EQ(trace.take(),
        QStringList {QStringLiteral("Source image type must be of type Float32 but is UInt16.")});
    EXPECT_EQ(result.getConstData(), before.getConstData());
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {7, 8}));
}

TEST(convertToTest, AnInvalidSourceIsRefused)
{
    TraceLines trace;
    cImg result;
    EXPECT_FALSE(cImg().convertTo(cImgType::UInt16, result));
    EXPECT_EQ(
        trace.take(), QStringList {QStringLiteral("Source image type must be of type UInt16 but is UInt8.")});
    EXPECT_FALSE(result.isValid());
}

TEST(convertToTest, ReportsEndWithThePlaceInTheSource)
{
    QString location;
    const int listener = cTracerManager::instance().addListener(
        [&location](const cTracerManager::Info& info) { location = info.location; });
    cImg result;
    rowOf<quint8>(cImgType::UInt8, {1}).convertTo(cImgType::UInt32, result);
    cTracerManager::instance().removeListener(listener);
    EXPECT_TRUE(location.startsWith(u' ') && location.endsWith(u')') && location.contains(u'('))
        << location.toStdString();
}

TEST(convertToTest, AnUnknownTargetIsRefusedInSilence)
{
    TraceLines trace;
    cImg result;
    const cImg source = rowOf<quint8>(cImgType::UInt8, {1});
    EXPECT_FALSE(source.convertTo(cImgType::Invalid, result));
    EXPECT_FALSE(source.convertTo(cImgType::ImageTypes(15), result));
    EXPECT_TRUE(trace.take().isEmpty());
}

TEST(convertToTest, ARangeWithoutWidthIsReportedAndLeavesThePixels)
{
    const cImg source = rowOf<qint16>(cImgType::SInt16, {1, 2});
    cImg result = rowOf<quint8>(cImgType::UInt8, {7, 8});
    TraceLines trace;
    const cMapObj params = oneRange("outputRange", 5, 5);
    EXPECT_TRUE(source.convertTo(cImgType::UInt8, result, &params));
    EXPECT_EQ(trace.take(), QStringList {QStringLiteral("Invalid range detected.")});
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {7, 8}));
    EXPECT_TRUE(hasRange(result, 5, 5));
}

// ---- Pixels of plain cases, worked out by hand

TEST(convertToTest, UInt8IsStretchedOverAllOfUInt16)
{
    cImg result;
    ASSERT_TRUE(rowOf<quint8>(cImgType::UInt8, {0, 1, 128, 255}).convertTo(cImgType::UInt16, result));
    EXPECT_EQ(valuesOf<quint16>(result), (std::vector<quint16> {0, 257, 32896, 65535}));
    EXPECT_TRUE(hasRange(result, 0, 65535));
}

TEST(convertToTest, UInt16KeepsItsValuesAsFloat)
{
    cImg source = rowOf<quint16>(cImgType::UInt16, {0, 1, 1000, 65535});
    cImg result;
    ASSERT_TRUE(source.convertTo(cImgType::Float32, result));
    EXPECT_EQ(valuesOf<float>(result), (std::vector<float> {0, 1, 1000, 65535}));
    EXPECT_TRUE(hasRange(result, 0, 65535));

    source.setRange(100, 2000); // limits, and keeps what lies inside
    ASSERT_TRUE(source.convertTo(cImgType::Float32, result));
    EXPECT_EQ(valuesOf<float>(result), (std::vector<float> {100, 100, 1000, 2000}));
    EXPECT_TRUE(hasRange(result, 100, 2000));
}

TEST(convertToTest, FloatsFromMinusOneToOneFillAByte)
{
    cImg result;
    ASSERT_TRUE(rowOf<float>(cImgType::Float32, {-7, -1, 0, 1, 7}).convertTo(cImgType::UInt8, result));
    EXPECT_EQ(valuesOf<quint8>(result),
        (std::vector<quint8> {0, 0, 127, 255, 255})); // 1 / (2 / 255) is less than 127.5 in float
}

TEST(convertToTest, NotANumberBecomesTheLeastValueOfAChainAndZeroElsewhere)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const cImg source = rowOf<float>(cImgType::Float32, {nan, 0});
    cImg result;
    ASSERT_TRUE(source.convertTo(cImgType::SInt8, result));
    EXPECT_EQ(valuesOf<qint8>(result)[0], -128);
    ASSERT_TRUE(source.convertTo(cImgType::SInt32, result));
    EXPECT_EQ(valuesOf<qint32>(result)[0], 0);
    ASSERT_TRUE(source.convertTo(cImgType::Float64, result));
    EXPECT_TRUE(std::isnan(valuesOf<double>(result)[0]));
    ASSERT_TRUE(rowOf<double>(cImgType::Float64, {nan, 0}).convertTo(cImgType::UInt8, result));
    EXPECT_EQ(valuesOf<quint8>(result)[0], 0);
}

TEST(convertToTest, TheGenericMappingRoundsHalvesUpwardsForAllSigns)
{
    const cImg source = rowOf<double>(cImgType::Float64, {-2.5, -1.5, -0.5, 0.5, 1.5, 2.5});
    const cMapObj params = rangeParams({-100, 100}, {-100, 100});
    cImg result;
    ASSERT_TRUE(source.convertTo(cImgType::SInt16, result, &params));
    EXPECT_EQ(valuesOf<qint16>(result), (std::vector<qint16> {-2, -1, 0, 1, 2, 3}));
}

TEST(convertToTest, AValueBeyondAnIntegerTypeKeepsItsLowBits)
{
    const cMapObj params = rangeParams({-128, 127}, {172, 427}); // the value plus 300
    cImg result;
    ASSERT_TRUE(rowOf<qint8>(cImgType::SInt8, {-128, 0, 127}).convertTo(cImgType::UInt8, result, &params));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {172, 44, 171}));
}

TEST(convertToTest, AnEightBitFactorOf256OrMoreWraps)
{
    const cImg source = rowOf<quint8>(cImgType::UInt8, {10, 11, 12, 13});
    const cMapObj params = rangeParams({11, 12}, {0, 257}); // a factor of 257 is cut to 1
    cImg result;
    ASSERT_TRUE(source.convertTo(cImgType::UInt8, result, &params));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {0, 0, 1, 1}));
}

TEST(convertToTest, Rgb32TakesTheFirstAlphaOnlyIfTheInputRangeLimits)
{
    cImg source(cImgType::RGB32, 2, 1), result;
    const quint8 pixels[] = {10, 20, 250, 77, 30, 40, 50, 88};
    std::memcpy(source.getData(), pixels, 8);
    const auto bytes
        = [&result] { return std::vector<quint8>(result.getConstData(), result.getConstData() + 8); };

    const cMapObj shift = rangeParams({0, 255}, {5, 260});
    ASSERT_TRUE(source.convertTo(cImgType::RGB32, result, &shift));
    EXPECT_EQ(bytes(), (std::vector<quint8> {15, 25, 255, 77, 35, 45, 55, 88}));
    const cMapObj limit = rangeParams({0, 40}, {0, 40});
    ASSERT_TRUE(source.convertTo(cImgType::RGB32, result, &limit));
    EXPECT_EQ(bytes(), (std::vector<quint8> {10, 20, 40, 77, 30, 40, 40, 77}));
}

TEST(convertToTest, TheColourTypesDoNotLimitEachOther)
{
    cImg source(cImgType::RGB24, 1, 1), result;
    const quint8 pixel[] = {10, 100, 250};
    std::memcpy(source.getData(), pixel, 3);
    const cMapObj limit = rangeParams({0, 40}, {0, 40});
    ASSERT_TRUE(source.convertTo(cImgType::RGB32, result, &limit));
    EXPECT_EQ((std::vector<quint8>(result.getConstData(), result.getConstData() + 4)),
        (std::vector<quint8> {10, 100, 250, 255}));
    cImg back;
    ASSERT_TRUE(result.convertTo(cImgType::RGB24, back, &limit));
    EXPECT_EQ((std::vector<quint8>(back.getConstData(), back.getConstData() + 3)),
        (std::vector<quint8> {10, 100, 250}));
}

TEST(convertToTest, GreyOfRgb24LosesTheLowEndTwiceAtTheStartOfEachRowButTheFirst)
{
    cImg source(cImgType::RGB24, 3, 2), result;
    std::memset(source.getData(), 100, 18);
    const cMapObj params = rangeParams({30, 255}, {0, 225});
    ASSERT_TRUE(source.convertTo(cImgType::UInt8, result, &params));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {70, 70, 70}));
    // Three bytes, one for each pixel of a row, are reached from the row before.
    EXPECT_EQ(result.getPixel<quint8>(0, 1), 40);
    EXPECT_EQ(result.getPixel<quint8>(1, 1), 70);
    EXPECT_EQ(result.getPixel<quint8>(2, 1), 70);
}

TEST(convertToTest, GradientsAndComplexNumbersAreCopied)
{
    for (const auto type : {cImgType::Gradient16, cImgType::Gradient32, cImgType::Complex}) {
        cImg source(type, 5, 3);
        for (unsigned i = 0; i < source.getFrameSize(); ++i)
            source.getData()[i] = uchar(i * 7);
        const cDblRange startRange = source.getRange();
        source.setRange(-5, 5);
        const cMapObj params = rangeParams({0, 10}, {0, 1}); // of no effect
        cImg result;
        ASSERT_TRUE(source.convertTo(type, result, &params));
        EXPECT_EQ(std::memcmp(result.getConstData(), source.getConstData(), source.getFrameSize()), 0);
        EXPECT_TRUE(hasRange(result, startRange.getLow(), startRange.getHigh()));
    }
}

// ---- Where the ranges come from

TEST(convertToTest, AnInputRangeOfZeroToZeroIsNoInputRange)
{
    cImg source = rowOf<qint16>(cImgType::SInt16, {0, 50, 100});
    source.setRange(0, 100);
    cImg expected, result;
    ASSERT_TRUE(source.convertTo(cImgType::UInt8, expected));
    for (const double unset : {0.0, 1e-12, -1e-13}) {
        const cMapObj params = oneRange("inputRange", 0, unset);
        ASSERT_TRUE(source.convertTo(cImgType::UInt8, result, &params));
        EXPECT_EQ(valuesOf<quint8>(result), valuesOf<quint8>(expected));
    }
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {0, 127, 255})); // 50 * 2.55 is less than 127.5
}

TEST(convertToTest, ARangeWithOneEndAtZeroIsARange)
{
    const cImg source = rowOf<qint16>(cImgType::SInt16, {-100, 0, 100});
    cImg result;
    const cMapObj input = oneRange("inputRange", -100, 0);
    ASSERT_TRUE(source.convertTo(cImgType::UInt8, result, &input));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {0, 255, 255}));
    const cMapObj both = rangeParams({0, 100}, {-20, 0});
    ASSERT_TRUE(source.convertTo(cImgType::SInt8, result, &both));
    EXPECT_EQ(valuesOf<qint8>(result), (std::vector<qint8> {-20, -20, 0}));
    EXPECT_TRUE(hasRange(result, -20, 0));
}

TEST(convertToTest, AnInputRangeWithoutWidthIsNoInputRange)
{
    const cImg source = rowOf<qint8>(cImgType::SInt8, {-128, 127});
    const cMapObj params = oneRange("inputRange", 5, 5);
    cImg result;
    ASSERT_TRUE(source.convertTo(cImgType::UInt8, result, &params));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {0, 255}));
}

TEST(convertToTest, ASourceRangeWithoutWidthDropsTheOutputRange)
{
    cImg source = rowOf<quint8>(cImgType::UInt8, {5, 6});
    source.setRange(5, 5);
    const cMapObj params = oneRange("outputRange", 10, 20);
    cImg result;
    TraceLines trace;
    ASSERT_TRUE(source.convertTo(cImgType::UInt16, result, &params));
    EXPECT_TRUE(hasRange(result, 0, 65535));
    EXPECT_TRUE(trace.take().isEmpty());
    ASSERT_TRUE(source.convertTo(cImgType::SInt16, result, &params));
    EXPECT_TRUE(hasRange(result, -32768, 32767));
    EXPECT_EQ(trace.take(), QStringList {QStringLiteral("Invalid range detected.")});
}

TEST(convertToTest, ATargetDescriptorChoosesTheOutputRangeOfIntegers)
{
    const cImg source = rowOf<qint8>(cImgType::SInt8, {-128, 127});
    const auto target = descriptor(cImgType::UInt8);
    target->setRange({10, 20});
    cImg result;
    ASSERT_TRUE(source.convertTo(*target, result));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {10, 20}));
    EXPECT_TRUE(hasRange(result, 10, 20));
}

TEST(convertToTest, ATargetDescriptorMayBeTheResultsOwn)
{
    const cImg source = rowOf<qint8>(cImgType::SInt8, {-128, 127});
    cImg result(cImgType::UInt8, 7, 7); // replaced, as its size is another
    result.setRange(10, 20);
    ASSERT_TRUE(source.convertTo(result.getImgType(), result));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {10, 20}));
}

TEST(convertToTest, TheRangeOfTheResultIsLimitedButNotTheMapping)
{
    const cMapObj params = rangeParams({-128, 127}, {-55, 200});
    cImg result;
    ASSERT_TRUE(rowOf<qint8>(cImgType::SInt8, {-128, 127}).convertTo(cImgType::UInt8, result, &params));
    EXPECT_TRUE(hasRange(result, 0, 200));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {201, 200}));
}

TEST(convertToTest, AFloatResultShowsTheSourcesRangeOfSomeTypesOnly)
{
    for (const auto target : {cImgType::Float32, cImgType::Float64}) {
        for (const auto from :
            {cImgType::RGB24, cImgType::RGB32, cImgType::UInt8, cImgType::UInt16, cImgType::UInt32,
                cImgType::SInt8, cImgType::SInt16, cImgType::SInt32, cImgType::Float32, cImgType::Float64}) {
            cImg source(from, 2, 1), result;
            std::memset(source.getData(), 0, source.getFrameSize());
            source.setRange(3, 99);
            const cMapObj params = rangeParams({10, 20}, {1000, 2000});
            SCOPED_TRACE(source.getImgType().getName().toStdString());
            ASSERT_TRUE(source.convertTo(target, result, &params));
            if (from == cImgType::UInt8 || from == cImgType::UInt16 || from == cImgType::SInt32)
                EXPECT_TRUE(hasRange(result, 1000, 2000));
            else
                EXPECT_TRUE(hasRange(result, 3, 99));
        }
    }
}

TEST(convertToTest, EqualRangesOfOneTypeCopyThePixelsUnlimited)
{
    const cImg floats = rowOf<float>(cImgType::Float32, {-7, 0.3f, 7});
    const cMapObj same = rangeParams({-1, 1}, {-1, 1});
    cImg result;
    ASSERT_TRUE(floats.convertTo(cImgType::Float32, result, &same));
    EXPECT_EQ(valuesOf<float>(result), (std::vector<float> {-7, 0.3f, 7}));
    const cMapObj other = rangeParams({-1, 1}, {-2, 2});
    ASSERT_TRUE(floats.convertTo(cImgType::Float32, result, &other));
    EXPECT_EQ(valuesOf<float>(result), (std::vector<float> {-2, (0.3f + 1) / 0.5f - 2, 2}));

    cImg bytes = rowOf<quint8>(cImgType::UInt8, {1, 100, 200});
    bytes.setRange(50, 150); // the input range is the descriptor's, so this is a copy too
    ASSERT_TRUE(bytes.convertTo(cImgType::UInt8, result));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {1, 100, 200}));
    EXPECT_TRUE(hasRange(result, 0, 255));
}

// ---- The result

TEST(convertToTest, AResultThatFitsKeepsItsMemory)
{
    const cImg source = rowOf<quint8>(cImgType::UInt8, {0, 255});
    cImg result(cImgType::UInt16, 2, 1);
    const unsigned char* memory = result.getConstData();
    ASSERT_TRUE(source.convertTo(cImgType::UInt16, result));
    EXPECT_EQ(result.getConstData(), memory);
    EXPECT_EQ(valuesOf<quint16>(result), (std::vector<quint16> {0, 65535}));
}

TEST(convertToTest, AResultOfAnotherSizeOrTypeIsReplaced)
{
    const cImg source = rowOf<quint8>(cImgType::UInt8, {0, 255});
    for (cImg result :
        {cImg(cImgType::UInt16, 3, 1), cImg(cImgType::UInt16, 1, 2), cImg(cImgType::Float32, 2, 1)}) {
        const cImg before = result;
        const cDblRange range = before.getRange();
        ASSERT_TRUE(source.convertTo(cImgType::UInt16, result));
        EXPECT_EQ(result.getSize(), QSize(2, 1));
        EXPECT_EQ(valuesOf<quint16>(result), (std::vector<quint16> {0, 65535}));
        EXPECT_NE(result.getConstData(), before.getConstData());
        EXPECT_EQ(before.getRange(), range);
    }
}

TEST(convertToTest, ImagesThatShareWithTheResultAreNotWritten)
{
    const cImg source = rowOf<quint8>(cImgType::UInt8, {0, 255});
    cImg result = rowOf<quint16>(cImgType::UInt16, {7, 8});
    const cImg other = result;
    ASSERT_TRUE(source.convertTo(cImgType::UInt16, result));
    EXPECT_EQ(valuesOf<quint16>(other), (std::vector<quint16> {7, 8}));
    EXPECT_EQ(valuesOf<quint16>(result), (std::vector<quint16> {0, 65535}));
}

TEST(convertToTest, TheResultGetsAttributesNameAndFrames)
{
    cImg source = rowOf<quint8>(cImgType::UInt8, {0, 255});
    source.setName(QStringLiteral("left camera"));
    source.setNumFrames(9);
    source.setFrameIndex(4);
    source.setImgAttr(QStringLiteral("exposure"), new cDataValObj<int>(12));
    cImg result;
    ASSERT_TRUE(source.convertTo(cImgType::RGB24, result));
    EXPECT_EQ(result.getName(), QStringLiteral("left camera"));
    EXPECT_EQ(result.getNumFrames(), 9u);
    EXPECT_EQ(result.getFrameIndex(), 4u);
    int exposure = 0;
    const cImg& constResult = result;
    EXPECT_TRUE(constResult.getImgAttr(QStringLiteral("exposure"))->getValue(exposure));
    EXPECT_EQ(exposure, 12);
}

// ---- Source and result are one image

TEST(convertToTest, TheFormWithATypeIdRefusesTheSourceAsResult)
{
    cImg image = rowOf<quint8>(cImgType::UInt8, {1, 2});
    EXPECT_FALSE(image.convertTo(cImgType::UInt16, image));
    EXPECT_FALSE(image.convertTo(cImgType::UInt8, image));
    EXPECT_EQ(valuesOf<quint8>(image), (std::vector<quint8> {1, 2}));
}

TEST(convertToTest, TheFormWithADescriptorConvertsAnImageIntoItself)
{
    for (const reference::Type from : reference::everyType) {
        for (const reference::Type to : reference::everyType) {
            if (!reference::isSupported(from, to))
                continue;
            SCOPED_TRACE(std::string(reference::nameOf(from)) + " " + reference::nameOf(to));
            const reference::Image source = randomImage(from, 701, 5);
            const cMapObj params = rangeParams({10, 200}, {20, 90});
            cImg expected, image = toImage(source);
            ASSERT_TRUE(image.convertTo(libraryType(to), expected, &params));
            ASSERT_TRUE(image.convertTo(*descriptor(libraryType(to)), image, &params));
            EXPECT_EQ(image.getImgType().getTypeId(), libraryType(to));
            EXPECT_EQ(fromImage(image).bytes, fromImage(expected).bytes);
        }
    }
}

TEST(convertToTest, AResultThatSharesTheSourcesRecordParts)
{
    const cImg source = rowOf<quint8>(cImgType::UInt8, {0, 100, 200});
    cImg result = source;
    const cMapObj params = rangeParams({0, 100}, {0, 50});
    ASSERT_TRUE(source.convertTo(cImgType::UInt8, result, &params));
    EXPECT_EQ(valuesOf<quint8>(source), (std::vector<quint8> {0, 100, 200}));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {0, 50, 50}));
}

// ---- Several channels

TEST(convertToTest, OfSeveralChannelsAsManyElementsAsPixelsAreConverted)
{
    cImg source(cImgType::UInt8, 2, 2, 3);
    for (unsigned i = 0; i < 12; ++i)
        source.getData()[i] = uchar(10 * i);
    for (const auto target : {cImgType::UInt16, cImgType::SInt16}) {
        const cMapObj params = rangeParams({0, 255}, {0, 510});
        cImg result;
        ASSERT_TRUE(source.convertTo(target, result, &params));
        EXPECT_EQ(result.getNumChannels(), 1u);
        EXPECT_EQ(valuesOf<quint16>(result), (std::vector<quint16> {0, 20}));
        EXPECT_EQ(result.getPixel<quint16>(0, 1), 120);
        EXPECT_EQ(result.getPixel<quint16>(1, 1), 140);
    }
}

TEST(convertToTest, ACopyOfSeveralChannelsTakesAsManyBytesAsTheResultHas)
{
    cImg source(cImgType::UInt8, 2, 1, 3);
    for (unsigned i = 0; i < 6; ++i)
        source.getData()[i] = uchar(i);
    cImg result;
    ASSERT_TRUE(source.convertTo(cImgType::UInt8, result));
    EXPECT_EQ(valuesOf<quint8>(result), (std::vector<quint8> {0, 1}));

    // The other way round the result asks for more than the source has.
    cImg wide(cImgType::UInt8, 2, 1, 3);
    std::memset(wide.getData(), 99, 6);
    const cImg narrow = rowOf<quint8>(cImgType::UInt8, {5, 6});
    ASSERT_TRUE(narrow.convertTo(cImgType::UInt8, wide));
    EXPECT_EQ(wide.getConstData()[0], 5);
    EXPECT_EQ(wide.getConstData()[1], 6);
}

// ---- Memory from outside

TEST(convertToTest, RoomBetweenThePixelsOfOutsideMemoryIsSkipped)
{
    std::vector<unsigned char> sourceMemory {1, 99, 2, 99, 3, 99, 4, 99}, resultMemory(12, 77);
    const cImg source(cImgType::UInt8, 2, 2, 2, 4, sourceMemory.data(), {}, 1);
    cImg result(cImgType::UInt16, 2, 2, 3, 6, resultMemory.data(), {}, 1);
    const cMapObj params = rangeParams({0, 255}, {0, 255});
    ASSERT_TRUE(source.convertTo(cImgType::UInt16, result, &params));
    EXPECT_EQ(resultMemory, (std::vector<unsigned char> {1, 0, 77, 2, 0, 77, 3, 0, 77, 4, 0, 77}));
    EXPECT_EQ(result.getConstData(), resultMemory.data());
}
