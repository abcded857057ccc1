#include "support/StationHarness.h"

#include <gtest/gtest.h>
#include <memory>
#include <tarnbase/cDataValObj.h>
#include <tarnflow/cSourceStation.h>
#include <tarnimg/tarnimg.h>

namespace {

cImg grey(unsigned char i_value, const QString& i_name = QString())
{
    cImg image(cImgType::UInt8, 3, 2, 1);
    image.getImgType().fill(image, int(i_value));
    image.setName(i_name);
    return image;
}

unsigned char pixelOf(const cImg& i_image) { return i_image.getPixel<unsigned char>(2, 1); }

cStation* station(const char* i_id) { return cStation::create(QString::fromLatin1(i_id)); }

/** Doubles an image, or fails where the name asks for it. */
class cTwiceFunctor : public cImgFunctor {
public:
    static inline int s_calls = 0;
    cImg operator()(const cImg& i_image)
    {
        ++s_calls;
        if (i_image.getName() == QStringLiteral("void"))
            return cImg();
        return cAddImagesFunctor()(i_image, i_image);
    }
};

class cTwiceStation : public cFunctorStationT<cTwiceFunctor, cImg, cImg, void> {};

/** Measures an image. */
class cWidthFunctor : public cImgFunctor {
public:
    int operator()(const cImg& i_image)
    {
        if (!i_image.isValid())
            throw std::runtime_error("cWidthFunctor::operator (): Invalid image.");
        return int(i_image.getWidth());
    }
};

class cWidthStation : public cFunctorStationT<cWidthFunctor, int, cImg, void> {
public:
    cWidthStation() : cFunctorStationT(QStringLiteral("img"), QStringLiteral("width"), QString()) {}
};

} // namespace

TEST(functorStationTest, AStationIsCreatedByItsIdentifier)
{
    const std::unique_ptr<cStation> add(station("ipp/image/arithmetic/add"));
    ASSERT_NE(add, nullptr);
    ASSERT_NE(add->getInport(QStringLiteral("img1")), nullptr);
    ASSERT_NE(add->getInport(QStringLiteral("img2")), nullptr);
    ASSERT_NE(add->getOutport(QStringLiteral("img")), nullptr);
    EXPECT_EQ(add->getOutport(QStringLiteral("img"))->getPoolLimit(), 5);
    EXPECT_EQ(station("ipp/image/arithmetic/nothing"), nullptr);
}

TEST(functorStationTest, TwoMatchedImagesBecomeOneWithTheMatchedStamp)
{
    StationHarness harness(station("ipp/image/arithmetic/subtract"));
    harness.feed("img1", grey(50, QStringLiteral("first")), 10);
    harness.feed("img2", grey(200, QStringLiteral("second")), 10);
    harness.runAll();
    const auto results = harness.values<cImg>("img");
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(pixelOf(results[0]), 150);
    EXPECT_TRUE(results[0].getName().isEmpty()) << "two inputs: no attributes";
    ASSERT_EQ(harness.outputs().size(), 1);
    EXPECT_EQ(harness.outputs().at(0).stamp.getStamp(), 10);
    EXPECT_TRUE(harness.errors().isEmpty());
}

TEST(functorStationTest, OneImageBecomesOneWithItsAttributes)
{
    StationHarness harness(new cTwiceStation);
    cImg image = grey(21, QStringLiteral("part"));
    image.setImgAttr(QStringLiteral("gain"), new cDataValObj<int>(3, 0));
    harness.feed("img", image, 4);
    harness.runAll();
    const auto results = harness.values<cImg>("img");
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(pixelOf(results[0]), 42);
    EXPECT_EQ(harness.stamps("img"), QList<qint64> {4});
    EXPECT_EQ(results[0].getName(), QStringLiteral("part"));
    EXPECT_TRUE(results[0].getImgAttributes().contains(QStringLiteral("gain")));
}

TEST(functorStationTest, AnInvalidResultIsNotSentAndNoError)
{
    StationHarness harness(new cTwiceStation);
    harness.feed("img", grey(1, QStringLiteral("void")), 4);
    harness.runAll();
    EXPECT_TRUE(harness.values<cImg>("img").isEmpty());
    EXPECT_TRUE(harness.errors().isEmpty());
}

TEST(functorStationTest, NothingIsComputedOrReportedWhileNobodyWantsTheOutput)
{
    cTwiceFunctor::s_calls = 0;
    StationHarness one(new cTwiceStation, {QStringLiteral("img")});
    one.connectInput("img");
    one.feed("img", grey(1), 1);
    one.runAll();
    EXPECT_EQ(cTwiceFunctor::s_calls, 0);
    EXPECT_EQ(one.fates("img").gated, 1u);

    StationHarness two(station("ipp/image/arithmetic/add"), {QStringLiteral("img")});
    two.feed("img1", cImg(), 1);
    two.feed("img2", grey(1), 1);
    two.runAll();
    EXPECT_TRUE(two.errors().isEmpty());
}

TEST(functorStationTest, SeveralImagesOfAMatchBecomeOneEachUnderTheirOwnStamps)
{
    StationHarness harness(new cTwiceStation);
    harness.send("img", grey(1), 4);
    harness.send("img", grey(2), 7);
    harness.finish("img", 7);
    EXPECT_EQ(harness.runAll(), 1);
    EXPECT_EQ(harness.stamps("img"), (QList<qint64> {4, 7}));
    EXPECT_EQ(pixelOf(harness.values<cImg>("img")[1]), 4);
}

TEST(functorStationTest, AValueIsNotComputedWhileNobodyWantsIt)
{
    StationHarness harness(new cWidthStation, {QStringLiteral("width")});
    harness.feed("img", cImg(), 1); // would fail
    harness.runAll();
    EXPECT_TRUE(harness.errors().isEmpty());
    EXPECT_EQ(harness.fates("img").gated, 1u);
}

TEST(functorStationTest, AnInvalidImageIsPassedOverByOneInputAndReportedByTwo)
{
    StationHarness one(new cTwiceStation);
    one.feed("img", cImg(), 1);
    one.runAll();
    EXPECT_TRUE(one.errors().isEmpty());
    EXPECT_EQ(one.fates("img").ignored, 1u);

    // The void image passes for a UInt8 of one channel at the port, and is refused by the functor.
    StationHarness two(station("ipp/image/arithmetic/add"));
    two.feed("img1", cImg(), 1);
    two.feed("img2", grey(1), 1);
    two.runAll();
    ASSERT_EQ(two.errors().size(), 1);
    EXPECT_TRUE(
        two.errors().at(0).getMessage() == QStringLiteral("cAddImagesFunctor::operator (): Invalid image."));
    EXPECT_EQ(two.fates("img1").failed, 1u);
}

TEST(functorStationTest, AValueIsSentWhateverItIsAndAnInvalidImageReachesTheFunctor)
{
    StationHarness harness(new cWidthStation);
    harness.feed("img", grey(1), 1);
    harness.feed("img", cImg(), 2);
    harness.runAll();
    EXPECT_EQ(harness.values<int>("width"), QVector<int> {3});
    ASSERT_EQ(harness.errors().size(), 1);
    EXPECT_EQ(harness.outport("width")->getPoolLimit(), 50000);
}

TEST(functorStationTest, AStationStaysUsableAfterAFailure)
{
    StationHarness harness(station("ipp/image/arithmetic/divide"));
    harness.feed("img1", grey(0), 1);
    harness.feed("img2", grey(8), 1);
    harness.feed("img1", grey(2), 2);
    harness.feed("img2", grey(8), 2);
    harness.runAll();
    EXPECT_EQ(harness.errors().size(), 1);
    const auto results = harness.values<cImg>("img");
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(pixelOf(results[0]), 4);
}

TEST(functorStationTest, ADelayedInputSeesTheImageOfTheMatchBefore)
{
    StationHarness harness(station("ipp/image/arithmetic/difference"));
    harness.inport("img2")
        ->getParams()
        .getSubObject(QStringLiteral("delay"))
        ->setFromText(QStringLiteral("1"));
    for (int i = 0; i < 3; ++i) {
        const cImg image = grey(static_cast<unsigned char>(10 * (i + 1) * (i + 1)));
        harness.feed("img1", image, i);
        harness.feed("img2", image, i);
        harness.runAll();
    }
    const auto results = harness.values<cImg>("img");
    ASSERT_EQ(results.size(), 3);
    EXPECT_EQ(pixelOf(results[0]), 0);
    EXPECT_EQ(pixelOf(results[1]), 40 - 10);
    EXPECT_EQ(pixelOf(results[2]), 90 - 40);
}

TEST(functorStationTest, ParametersOfAFunctorAreThoseOfItsStation)
{
    class cOffsetFunctor : public cImgFunctor {
    public:
        int m_offset = 5;
        void refreshParams(cObj* i_params) override
        {
            i_params->setSubObject(new cDataRefObj<int>(m_offset, 0), QStringLiteral("offset"), true);
        }
    };
    class cOffsetStation : public cFunctorStationT<cOffsetFunctor, void, void, void> {
    public:
        int offset() const { return m_functor.m_offset; }
    };
    cOffsetStation offset;
    ASSERT_TRUE(offset.getParams().getSubObject(QStringLiteral("offset"))->setFromText(QStringLiteral("9")));
    EXPECT_EQ(offset.offset(), 9);
}
