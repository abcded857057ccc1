// The grey values of every type with any number of channels, against the definition.
#include "displayTesting.h"
#include "reference.h"

#include <QVector>
#include <cmath>
#include <limits>
#include <random>

using namespace displayTesting;
using reference::Range;

namespace {

class scalarDisplayTest : public onEveryTarget {};

INSTANTIATE_TEST_SUITE_P(
    , scalarDisplayTest, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()), targetName);

/** Values round the ends of a range and round all halves of grey values, extremes, and any. */
template <class T> std::vector<T> valuesFor(Range i_range, unsigned i_seed)
{
    using Limits = std::numeric_limits<T>;
    std::vector<T> values {T(0), T(1), Limits::max(), Limits::lowest(), T(Limits::max() / 2)};
    const auto add = [&](double value) {
        if (value >= double(Limits::lowest()) && value < double(Limits::max()))
            values.push_back(T(value));
    };
    const double step = (i_range.high - i_range.low) / 255.0;
    for (double offset : {-1.5, -1.0, -0.5, 0.0, 0.5, 1.0, 1.5}) {
        add(i_range.low + offset);
        add(i_range.high + offset);
    }
    for (int grey = 0; grey <= 255; ++grey)
        for (const double part : {0.0, 0.5}) {
            const double edge = i_range.low + (grey + part) * step;
            for (const double next : {std::floor(edge), std::ceil(edge), edge})
                add(next);
            if constexpr (std::is_floating_point_v<T>) {
                add(std::nextafter(T(edge), Limits::lowest()));
                add(std::nextafter(T(edge), Limits::max()));
            }
        }
    if constexpr (std::is_floating_point_v<T>)
        values.insert(values.end(),
            {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), T(-0.0), Limits::denorm_min()});
    std::mt19937_64 random(i_seed);
    for (int i = 0; i < 3000; ++i) {
        add(i_range.low + (i_range.high - i_range.low) * std::ldexp(double(random() >> 11), -53) * 1.2);
        if constexpr (std::is_integral_v<T>)
            values.push_back(T(random() >> (random() % 64)));
    }
    return values;
}

template <class T, class Grey>
void expectGreys(cImgType::ImageTypes i_type, std::initializer_list<Range> i_ranges, const Grey& i_greyOf)
{
    unsigned seed = 1;
    for (const Range range : i_ranges) {
        const std::vector<T> values = valuesFor<T>(range, seed++);
        cImg image(i_type, unsigned(values.size()), 1);
        std::copy(values.begin(), values.end(), image.row<T>(0));
        image.setRange(range.low, range.high);
        // The range may have been limited.
        const Range used {image.getRange().getLow(), image.getRange().getHigh()};
        const QImage out = show(image);
        ASSERT_TRUE(hasGreyRamp(out));
        int failures = 0;
        for (size_t x = 0; x < values.size() && failures < 5; ++x) {
            const int expected = i_greyOf(values[x], used);
            EXPECT_EQ(int(out.constScanLine(0)[x]), expected)
                << +values[x] << " in " << used.low << " to " << used.high;
            failures += out.constScanLine(0)[x] != expected;
        }
    }
}

} // namespace

TEST_P(scalarDisplayTest, UInt8)
{
    expectGreys<quint8>(cImgType::UInt8,
        {{0, 255}, {10, 20}, {10, 265}, {0, 1}, {100, 101}, {0.5, 200.7}, {3, 250}, {0, 128}, {300, 400}},
        reference::greyOfUInt8);
}

TEST_P(scalarDisplayTest, UInt16)
{
    expectGreys<quint16>(cImgType::UInt16,
        {{0, 65535}, {0, 255}, {1000, 1010}, {100, 4096}, {0, 1}, {300.9, 60000.1}, {65000, 65535}},
        reference::greyOfUInt16);
}

/** All values of 16 bits, with ranges that have many ties and ranges that have none. */
template <class T, class Grey>
void expectEveryWord(cImgType::ImageTypes i_type, std::initializer_list<Range> i_ranges, const Grey& i_greyOf)
{
    cImg image(i_type, 65536, 1);
    for (int i = 0; i < 65536; ++i)
        image.row<T>(0)[i] = T(std::numeric_limits<T>::lowest() + i);
    for (const Range range : i_ranges) {
        image.setRange(range.low, range.high);
        const Range used {image.getRange().getLow(), image.getRange().getHigh()};
        const QImage out = show(image);
        for (int i = 0; i < 65536; ++i)
            ASSERT_EQ(int(out.constScanLine(0)[i]), int(i_greyOf(image.getRow<T>(0)[i], used)))
                << image.getRow<T>(0)[i] << " in " << used.low << " to " << used.high;
    }
}

TEST_P(scalarDisplayTest, EveryValueOfUInt16)
{
    expectEveryWord<quint16>(cImgType::UInt16,
        {{0, 510}, {0, 1020}, {10, 200}, {5, 8165}, {0, 65280}, {0, 65535}, {1, 60001}, {0, 4095}, {7, 9},
            {20, 153}},
        reference::greyOfUInt16);
}

TEST_P(scalarDisplayTest, EveryValueOfSInt16)
{
    expectEveryWord<qint16>(cImgType::SInt16,
        {{-200, 200}, {0, 2040}, {-1000.5, 3079.5}, {-255, 255}, {-16320, 16320}, {-32768, 32767},
            {-32640, 32640}, {-3.7, 3.7}, {-300.2, -44.9}, {7, 8}, {-30000, 29999}},
        [](double value, Range range) { return reference::greyOfInteger(value, range, true); });
}

TEST_P(scalarDisplayTest, Float32)
{
    expectGreys<float>(cImgType::Float32,
        {{-1, 1}, {0, 1}, {0, 255}, {-1000, 1e6}, {5, 5.001}, {-3e38, 3e38}}, reference::greyOfFloat32);
}

TEST_P(scalarDisplayTest, Float64)
{
    expectGreys<double>(cImgType::Float64,
        {{-1, 1}, {0, 1}, {0, 255}, {0, 510}, {-1000, 1e6}, {5, 5.001}, {1e6, 1e6 + 1}, {-3, 7.5},
            {1e17, 1e17 + 1024}, {-1e300, 1e290}},
        reference::greyOfFloat64);
}

TEST_P(scalarDisplayTest, IntegersAreRounded)
{
    const auto rounded
        = [](double value, Range range) { return reference::greyOfInteger(value, range, true); };
    expectGreys<qint8>(cImgType::SInt8,
        {{-128, 127}, {0, 100}, {-5, 5}, {-0.5, 0.5}, {-3.7, 3.7}, {3.2, 3.9}, {7, 7}}, rounded);
    expectGreys<qint16>(cImgType::SInt16,
        {{-32768, 32767}, {0, 510}, {0, 1020}, {-5, 5}, {-0.9, 300.3}, {1000, 1001}, {-32768, -32760}},
        rounded);
    expectGreys<quint32>(cImgType::UInt32,
        {{0, 4294967295.0}, {0, 510}, {4294967000.0, 4294967295.0}, {1e9, 3.5e9}, {10.5, 700.2},
            {0, 2147483648.0}},
        rounded);
}

TEST_P(scalarDisplayTest, SInt32IsTruncated)
{
    const auto truncated
        = [](double value, Range range) { return reference::greyOfInteger(value, range, false); };
    expectGreys<qint32>(cImgType::SInt32,
        {{-2147483648.0, 2147483647.0}, {0, 255}, {0, 510}, {-5, 5}, {-1e9, 1e9}, {-3.7, 1000.2},
            {2e9, 2.1e9}, {0, 85}, {-200, 200}, {-2000, 2080}, {-0.5, 65279.5}},
        truncated);
}

TEST_P(scalarDisplayTest, SInt64ShowsTheLowByteOfTheDistance)
{
    expectGreys<qint64>(cImgType::SInt64,
        {{0, 1000}, {-1e18, 1e18}, {-0.5, 77.9}, {-9.3e18, 9.3e18}, {1e15, 4e18}, {-300, 700}, {3.25, 500.5},
            {-3.25, 500.5}, {0.5, 99}, {3.001, 500}, {4e12, 4.5e12}},
        reference::greyOfSInt64);
}

TEST_P(scalarDisplayTest, TheStyleChoosesTheChannelInEveryLayoutAndSize)
{
    const auto types = {cImgType::UInt8, cImgType::UInt16, cImgType::UInt32, cImgType::SInt8,
        cImgType::SInt16, cImgType::SInt32, cImgType::SInt64, cImgType::Float32, cImgType::Float64};
    for (const auto type : types) {
        for (const unsigned channels : {1u, 2u, 3u, 4u, 5u}) {
            for (const unsigned width : {1u, 2u, 3u, 17u, 33u, 65u, 130u}) {
                const cImg image = makeRandomImage(type, width, 3, channels, width);
                const unsigned channelBytes = image.getImgType().getChannelPixelSize();
                const unsigned channel = width % channels;
                cImg single(type, width, 3);
                for (unsigned y = 0; y < 3; ++y)
                    for (unsigned x = 0; x < width; ++x)
                        std::memcpy(single.getData() + y * single.getYPitch() + x * channelBytes,
                            image.getConstData() + y * image.getYPitch()
                                + (x * channels + channel) * channelBytes,
                            channelBytes);
                const std::vector<int> expected = bytesOf(show(single));
                std::vector<cImg> all = otherLayouts(image);
                all.push_back(image);
                for (cImg& other : all) {
                    other.imgType().setStyle(QStringLiteral("Channel %1").arg(channel));
                    ASSERT_EQ(bytesOf(show(other)), expected)
                        << type << ", " << channels << " channels, " << width;
                }
            }
        }
    }
}

TEST(scalarDisplay, ALargePictureIsTheSumOfItsRows)
{
    cImg image = makeRandomImage(cImgType::SInt16, 3001, 40);
    const QImage out = show(image);
    for (unsigned y = 0; y < 40; y += 13) {
        const cImg row(image, true, cRect<int>(0, int(y), 3001, 1));
        EXPECT_EQ(std::memcmp(show(row).constScanLine(0), out.constScanLine(int(y)), 3001), 0) << y;
    }
}

TEST(scalarDisplay, TheWholeRangeOfUInt8IsACopy)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 37, 5);
    const QImage out = show(image);
    for (unsigned y = 0; y < 5; ++y)
        EXPECT_EQ(std::memcmp(out.constScanLine(int(y)), image.getRow<quint8>(y), 37), 0);
}

TEST(scalarDisplay, ColorizeReplacesTheColoursAndNotThePixels)
{
    cImg image = makeRandomImage(cImgType::UInt8, 16, 2);
    const std::vector<int> pixels = bytesOf(show(image));
    setParam(image, "Colorize", QColor(Qt::red));
    QImage out = show(image);
    EXPECT_EQ(bytesOf(out), pixels);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(out.color(i), qRgba(i, 0, 0, 255));
    setParam(image, "Colorize", QColor(0, 51, 102));
    out = show(image);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(out.color(i),
            qRgba(0, int(i * QColor(0, 51, 102).greenF()), int(i * QColor(0, 51, 102).blueF()), 255));
    setParam(image, "Colorize", QColor(Qt::black));
    EXPECT_TRUE(hasGreyRamp(show(image)));
}

TEST(scalarDisplay, ARangeOfOneValueIsBlackBelowAndWhiteAbove)
{
    cImg image = makeImage<qint16>(cImgType::SInt16, {{4, 5, 6}});
    image.setRange(5, 5);
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 0, 255}));
    cImg floats = makeImage<double>(cImgType::Float64, {{4, 5, 6}});
    floats.setRange(5, 5);
    EXPECT_EQ(bytesOf(show(floats)), std::vector<int>({0, 0, 0}));
}
