// What all pixel types share of their display: gamma, the helpers, and a descriptor of one's own.
#include "displayTesting.h"
#include "reference.h"

#include "support/messageOf.h"

#include <atomic>
#include <memory>
#include <tarnimg/cImageTypeFactory.h>
#include <tarnimg/cImgTypeUInt8.h>
#include <thread>

using namespace displayTesting;

namespace {

const cImgType::ImageTypes s_everyType[] = {cImgType::RGB24, cImgType::RGB32, cImgType::UInt8,
    cImgType::UInt16, cImgType::UInt32, cImgType::SInt8, cImgType::SInt16, cImgType::SInt32, cImgType::SInt64,
    cImgType::Float32, cImgType::Float64, cImgType::Gradient16, cImgType::Gradient32, cImgType::Complex};

std::vector<int> withGamma(std::vector<int> i_bytes, double i_gamma)
{
    for (int& byte : i_bytes)
        byte = reference::gammaOf(byte, i_gamma);
    return i_bytes;
}

/** A type of somebody else, which shows what the base offers. */
class cProbeType : public cImgTypeUInt8 {
public:
    using cImgType::displayScratch;
    using cImgType::makeDisplayImageHelper;
    using cImgType::makeDisplayImageHelperIPP;
};

} // namespace

TEST(gamma, MapsEveryByteOfEveryPictureAlphaToo)
{
    for (const auto type : s_everyType) {
        cImg image = makeRandomImage(type, 75, 6);
        const std::vector<int> plain = bytesOf(show(image));
        for (const double gamma : {2.0, 0.4}) {
            image.imgType().setGamma(gamma);
            EXPECT_EQ(bytesOf(show(image)), withGamma(plain, gamma)) << type << ", gamma " << gamma;
        }
    }
}

TEST(gamma, TwoTakesTheRoot)
{
    cImg image = makeImage<quint8>(cImgType::UInt8, {{0, 64, 255}});
    image.imgType().setGamma(2.0);
    const QImage out = show(image);
    EXPECT_EQ(bytesOf(out), std::vector<int>({0, 128, 255}));
    EXPECT_TRUE(hasGreyRamp(out)); // the colours stay
}

TEST(gamma, IsNotAppliedWithAnAutomaticRange)
{
    cImg image = makeImage<quint8>(cImgType::UInt8, {{0, 64, 255}});
    image.imgType().setGamma(2.0);
    setParam(image, "AutoRange/Use", true);
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 64, 255}));
}

TEST(automaticRange, IsFoundBeforeAnImageIsShown)
{
    cImg numbers = makeImage<quint16>(cImgType::UInt16, {{1000, 1085, 1170, 1255}});
    setParam(numbers, "AutoRange/Use", true);
    EXPECT_EQ(bytesOf(show(numbers)), std::vector<int>({0, 85, 170, 255}));
    EXPECT_EQ(numbers.getRange(), cDblRange(1000, 1255));
    cImg floats = makeImage<float>(cImgType::Float32, {{-1, 0, 4}});
    setParam(floats, "AutoRange/Use", true);
    EXPECT_EQ(bytesOf(show(floats)), std::vector<int>({0, 51, 255}));
    // That of a colour image is the range of red.
    cImg colours = makeImage<quint8>(cImgType::RGB24, {{10, 0, 60, 61, 255, 10}});
    setParam(colours, "AutoRange/Use", true);
    EXPECT_EQ(bytesOf(show(colours)), std::vector<int>({0, 0, 250, 255, 255, 0}));
}

TEST(automaticRange, OfTypesThatHideItFailsWhereItWasTurnedOn)
{
    for (const auto type :
        {cImgType::Gradient16, cImgType::Gradient32, cImgType::Complex, cImgType::SInt64}) {
        cImg image = makeRandomImage(type, 4, 4);
        setParam(image, "AutoRange/Use", true);
        const std::string message = messageOf([&] { show(image); });
        EXPECT_EQ(message.find("cMinMaxFunctor::operator (): Unsupported image format ("), 0u)
            << type << ": " << message;
    }
}

TEST(automaticRange, MakesANewTableOfTheGamma)
{
    cImg image = makeImage<quint8>(cImgType::UInt8, {{0, 64, 255}});
    image.imgType().setGamma(2.0);
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 128, 255}));
    setParam(image, "Gamma", 0.5);
    setParam(image, "AutoRange/Use", true);
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 64, 255})) << "the range is that already";
    setParam(image, "AutoRange/Use", false);
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 128, 255})) << "so the table stays";
    setParam(image, "AutoRange/Use", true);
    image.setPixel(2, 0, quint8(254));
    show(image); // changes the range
    setParam(image, "AutoRange/Use", false);
    setParam(image, "Range", cDblRange(0, 255));
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 16, 252}));
}

TEST(gamma, ParametersAloneDoNotMakeANewTable)
{
    cImg image = makeImage<quint8>(cImgType::UInt8, {{0, 64, 255}});
    setParam(image, "Gamma", 2.0); // there is no table yet
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 128, 255}));
    setParam(image, "Gamma", 0.5);
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 128, 255}));
    image.setRange(0, 255);
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 16, 254}));
    setParam(image, "Gamma", 2.0);
    image.imgType().setGamma(2.0);
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 128, 255}));
}

TEST(display, OnlyAnImageOfTheTypeIsShown)
{
    for (const auto type : s_everyType) {
        const std::unique_ptr<cImgType> own(cImageTypeFactory::create(type, 1));
        EXPECT_TRUE(own->makeDisplayImage(cImg()).isNull()) << type;
        const auto other = type == cImgType::UInt8 ? cImgType::UInt16 : cImgType::UInt8;
        EXPECT_TRUE(own->makeDisplayImage(cImg(other, 4, 4)).isNull()) << type;
        EXPECT_FALSE(own->makeDisplayImage(makeRandomImage(type, 4, 4)).isNull()) << type;
    }
}

TEST(display, AnImageOfFewerChannelsThanTheDescriptorShowsItsLast)
{
    const std::unique_ptr<cImgType> three(cImageTypeFactory::create(cImgType::UInt8, 3));
    three->setStyle(QStringLiteral("Channel 2"));
    const cImg two = makeImage<quint8>(cImgType::UInt8, {{1, 2, 3, 4}}, 2);
    EXPECT_EQ(bytesOf(three->makeDisplayImage(two)), std::vector<int>({2, 4}));
}

TEST(displayHelper, KeepsAPictureThatFits)
{
    const cProbeType probe;
    const cImg image(cImgType::SInt32, 5, 3);
    QImage out;
    probe.makeDisplayImageHelper(image, out);
    EXPECT_EQ(out.size(), QSize(5, 3));
    EXPECT_TRUE(hasGreyRamp(out));
    out.setColorTable({0xFF010203, 0xFF040506});
    const uchar* memory = out.constBits();
    probe.makeDisplayImageHelper(image, out);
    EXPECT_EQ(out.constBits(), memory);
    EXPECT_EQ(out.colorCount(), 2);
}

TEST(displayHelper, MakesAnotherPictureWhereSizeFormatOrColoursDiffer)
{
    const cProbeType probe;
    const cImg image(cImgType::UInt8, 5, 3);
    QImage noColours(5, 3, QImage::Format_Indexed8);
    noColours.setColorTable({});
    for (QImage out :
        {QImage(5, 4, QImage::Format_Indexed8), QImage(5, 3, QImage::Format_RGB888), noColours}) {
        probe.makeDisplayImageHelper(image, out);
        EXPECT_EQ(out.size(), QSize(5, 3));
        EXPECT_TRUE(hasGreyRamp(out));
    }
}

TEST(displayHelper, TheScratchIsKeptUntilTypeOrSizeDiffer)
{
    const cProbeType probe;
    QImage out;
    probe.makeDisplayImageHelperIPP(cImg(cImgType::UInt16, 6, 3, 2), out);
    EXPECT_EQ(out.size(), QSize(6, 3));
    const cImg first = probe.displayScratch(cImgType::UInt16, 6, 3);
    EXPECT_TRUE(first.isKindOf(cImgType::UInt16));
    EXPECT_EQ(first.getSize(), QSize(6, 3));
    EXPECT_EQ(first.getNumChannels(), 1u);
    probe.makeDisplayImageHelperIPP(cImg(cImgType::UInt16, 6, 3), out);
    EXPECT_EQ(probe.displayScratch(cImgType::UInt16, 6, 3).getConstData(), first.getConstData());
    probe.makeDisplayImageHelperIPP(cImg(cImgType::UInt16, 6, 4), out);
    EXPECT_EQ(probe.displayScratch(cImgType::UInt16, 6, 4).getSize(), QSize(6, 4));
    EXPECT_TRUE(probe.displayScratch(cImgType::Float32, 6, 4).isKindOf(cImgType::Float32));
}

TEST(descriptorClone, HasTheSettingsAndParts)
{
    for (const auto type : s_everyType) {
        cImg image = makeRandomImage(type, 40, 5, 3);
        cImgType& shared = image.imgType();
        shared.setRange({-5, 300}); // limited
        shared.setGamma(1.7);
        shared.setStyle(shared.getStyleList().last());
        setParam(image, "AutoRange/BorderLeft", 1u);
        const std::unique_ptr<cImgType> own = shared.clone();
        EXPECT_EQ(own->getTypeId(), type);
        EXPECT_EQ(own->getNumChannels(), shared.getNumChannels());
        EXPECT_EQ(own->getStyle(), shared.getStyle());
        EXPECT_EQ(own->getGamma(), 1.7);
        EXPECT_EQ(own->getRange(), shared.getRange());
        EXPECT_EQ(own->getParams().toString(false), shared.getParams().toString(false)) << type;
        EXPECT_EQ(bytesOf(own->makeDisplayImage(image)), bytesOf(show(image))) << type;
        own->setRange({10, 20});
        own->setGamma(1.0);
        EXPECT_EQ(shared.getGamma(), 1.7);
        if (type != cImgType::Complex) {
            EXPECT_NE(own->getRange(), shared.getRange()) << type;
        }
    }
}

TEST(descriptorClone, KeepsARangeThatLimitingWouldMove)
{
    cImg image(cImgType::UInt8, 2, 2);
    image.setRange(300, 400);
    EXPECT_EQ(image.getRange(), cDblRange(255, 300));
    EXPECT_EQ(image.getImgType().clone()->getRange(), cDblRange(255, 300));
}

TEST(descriptorClone, OfAnUnknownTypeIsNull)
{
    EXPECT_EQ(cImg(cImgType::Invalid, 1, 1).getImgType().clone(), nullptr);
}

/** One thread changes and renders by the shared descriptor, as a graph may; others look at the same images.
 */
TEST(descriptorClone, RendersBesideThreadsThatUseTheSharedOne)
{
    for (const auto type :
        {cImgType::UInt8, cImgType::SInt32, cImgType::RGB24, cImgType::Gradient16, cImgType::Complex}) {
        cImg image = makeRandomImage(type, 200, 30);
        image.imgType().setGamma(1.5);
        const std::vector<int> expected = bytesOf(show(image));
        std::vector<std::unique_ptr<cImgType>> clones;
        for (int i = 0; i < 3; ++i)
            clones.push_back(image.getImgType().clone());
        std::atomic<bool> done {false};
        std::thread graph([image, &done]() mutable {
            for (int i = 0; !done; ++i) {
                image.imgType().setRange({0.0, 10.0 + i % 50});
                image.imgType().setGamma(1.0 + i % 3);
                image.imgType().makeDisplayImage(image);
            }
        });
        std::vector<std::thread> viewers;
        std::atomic<int> wrong {0};
        for (auto& own : clones)
            viewers.emplace_back([image, &own, &expected, &wrong] {
                for (int i = 0; i < 20; ++i)
                    wrong += bytesOf(own->makeDisplayImage(image)) != expected;
            });
        for (std::thread& viewer : viewers)
            viewer.join();
        done = true;
        graph.join();
        EXPECT_EQ(wrong, 0) << type;
    }
}
