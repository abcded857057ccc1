#include "support/StationHarness.h"
#include "support/images.h"

#include <QColor>
#include <gtest/gtest.h>
#include <tarnbase/cDataValObj.h>
#include <tarnimg/tarnimg.h>

namespace {

StationHarness harnessOf(const char* i_name, const QStringList& i_unconnected = {})
{
    return StationHarness(
        cStation::create(QStringLiteral("ipp/image/arithmetic/") + QString::fromLatin1(i_name)),
        i_unconnected);
}

const QStringList s_noValue {QStringLiteral("value")};

cImg grey(int i_value)
{
    cImg image(cImgType::UInt8, 3, 2);
    image.getImgType().fill(image, i_value);
    return image;
}

/** With a name, an attribute and its place in a sequence. */
cImg adorned(cImg i_image)
{
    i_image.setName(QStringLiteral("part"));
    i_image.setNumFrames(9);
    i_image.setFrameIndex(4);
    i_image.setImgAttr(QStringLiteral("gain"), new cDataValObj<int>(3, 0));
    return i_image;
}

void expectAdorned(const cImg& i_image)
{
    EXPECT_EQ(i_image.getName(), QStringLiteral("part"));
    EXPECT_EQ(i_image.getNumFrames(), 9u);
    EXPECT_EQ(i_image.getFrameIndex(), 4u);
    EXPECT_TRUE(i_image.getImgAttributes().contains(QStringLiteral("gain")));
}

QString param(StationHarness& i_harness, const char* i_key)
{
    return i_harness.station().getParams().getSubObject(QString::fromLatin1(i_key))->toText();
}

void setParam(StationHarness& i_harness, const char* i_key, const char* i_value)
{
    ASSERT_TRUE(i_harness.station()
                    .getParams()
                    .getSubObject(QString::fromLatin1(i_key))
                    ->setFromText(QString::fromLatin1(i_value)));
}

/** The first byte of each image that was sent. */
QVector<int> bytesOf(const StationHarness& i_harness)
{
    QVector<int> bytes;
    for (const cImg& image : i_harness.values<cImg>("img"))
        bytes.append(image.getPixel<quint8>(0, 0));
    return bytes;
}

} // namespace

TEST(constantStationsTest, WithoutASenderTheParameterCountsAndImagesMatchAlone)
{
    for (const char* name : {"addConstant", "subtractConstant", "multiplyConstant", "divideConstant"}) {
        SCOPED_TRACE(name);
        StationHarness harness = harnessOf(name, s_noValue);
        setParam(harness, "constant", "2");
        harness.feed("img", adorned(grey(10)), 5);
        harness.feed("img", grey(20), 6);
        harness.runAll();
        const auto results = harness.values<cImg>("img");
        ASSERT_EQ(results.size(), 2);
        expectAdorned(results[0]);
        EXPECT_EQ(harness.stamps("img"), (QList<qint64> {5, 6}));
        EXPECT_TRUE(harness.errors().isEmpty());
    }
}

TEST(constantStationsTest, AValueReplacesTheParameterAndGoesOnActing)
{
    struct Case {
        const char* station;
        QVector<int> results;
    };
    for (const Case& c : {Case {"addConstant", {12, 14}}, Case {"subtractConstant", {8, 10}},
             Case {"multiplyConstant", {20, 24}}, Case {"divideConstant", {5, 6}}}) {
        SCOPED_TRACE(c.station);
        StationHarness harness = harnessOf(c.station);
        setParam(harness, "constant", "5");
        harness.feed("value", 2.0, 1);
        harness.feed("img", grey(10), 1);
        harness.runAll();
        EXPECT_EQ(param(harness, "constant"), QStringLiteral("2"));

        // No value for this image: the sender is finished with the stamp and sends none.
        harness.finish("value", 2);
        harness.feed("img", grey(12), 2);
        harness.runAll();
        EXPECT_EQ(bytesOf(harness), c.results);
        EXPECT_EQ(param(harness, "constant"), QStringLiteral("2"));
    }
}

TEST(constantStationsTest, AConnectedInputMakesTheImageWaitUntilItsSenderIsFinishedOrIdle)
{
    StationHarness harness = harnessOf("subtractConstant");
    setParam(harness, "constant", "5");
    harness.feed("img", grey(10), 1);
    EXPECT_EQ(harness.runAll(), 0);
    harness.finish("value", 1);
    EXPECT_EQ(harness.runAll(), 1);
    harness.send("value", 3.0, 2);
    harness.finish("value", 2, true);
    harness.feed("img", grey(10), 2);
    harness.feed("img", grey(10), 3);
    harness.runAll();
    EXPECT_EQ(bytesOf(harness), (QVector<int> {5, 7, 7}));
}

TEST(constantStationsTest, AWaitingValueOfASenderThatWasUnlinkedIsGone)
{
    StationHarness harness = harnessOf("subtractConstant");
    harness.send("value", 3.0, 1);
    harness.disconnectInput("value");
    harness.feed("img", grey(10), 1);
    harness.runAll();
    EXPECT_EQ(bytesOf(harness), QVector<int> {10});
}

TEST(constantStationsTest, AValueOfASenderThatIsDisabledCountsForAdditionOnly)
{
    for (const auto& [name, expected] : {std::pair("addConstant", 12), std::pair("subtractConstant", 5)}) {
        StationHarness harness = harnessOf(name);
        setParam(harness, "constant", "5");
        harness.send("value", 2.0, 1);
        harness.finish("value", 1);
        auto* sender = dynamic_cast<cStation*>(harness.sender("value")->getNode());
        ASSERT_NE(sender, nullptr);
        // The images come from another sender, so that only the value's is disabled.
        auto* other = new cStation(QStringLiteral("other"));
        cOPortBase* images = harness.inport("img")->makeOutport(other, QStringLiteral("images"));
        ASSERT_TRUE(harness.graph().addNode(other));
        ASSERT_TRUE(harness.graph().link(images, harness.inport("img")));
        sender->setEnabled(false);
        StationHarness::send(images, grey(10), 1);
        images->sendFinish(1);
        harness.runAll();
        EXPECT_EQ(bytesOf(harness), QVector<int> {expected}) << name;
    }
}

TEST(constantStationsTest, AValueIsNarrowedWhereTheConstantIsAFloat)
{
    StationHarness add = harnessOf("addConstant");
    add.feed("value", 0.1, 1);
    add.feed("img", makeImage<float>(cImgType::Float32, {{1.0f}}), 1);
    add.runAll();
    ASSERT_EQ(add.values<cImg>("img").size(), 1);
    EXPECT_EQ(add.values<cImg>("img")[0].getPixel<float>(0, 0), 1.0f + 0.1f);
    EXPECT_EQ(param(add, "constant"), QStringLiteral("0.1"));
}

TEST(constantStationsTest, AddTakesAColourAndSubtractAPackedOne)
{
    const cImg image = makeImage<quint8>(cImgType::RGB32, {{100, 100, 100, 100}});
    StationHarness add = harnessOf("addConstantRGB");
    add.feed("value", QColor(1, 2, 3, 4), 1);
    add.feed("img", image, 1);
    add.runAll();
    ASSERT_EQ(add.values<cImg>("img").size(), 1);
    EXPECT_TRUE(
        samePixels(add.values<cImg>("img")[0], makeImage<quint8>(cImgType::RGB32, {{101, 102, 103, 100}})));
    EXPECT_EQ(param(add, "constant"), QStringLiteral("#04010203"));

    StationHarness subtract = harnessOf("subtractConstantRGB");
    subtract.feed("value", double(0x010203) + 0.9, 1);
    subtract.feed("img", image, 1);
    subtract.runAll();
    ASSERT_EQ(subtract.values<cImg>("img").size(), 1);
    EXPECT_TRUE(
        samePixels(subtract.values<cImg>("img")[0], makeImage<quint8>(cImgType::RGB32, {{99, 98, 97, 100}})));
    EXPECT_EQ(param(subtract, "constant"), QStringLiteral("#010203"));
}

TEST(constantStationsTest, EachColourOfAProductHasItsInput)
{
    StationHarness harness = harnessOf("multiplyConstantRGB", {QStringLiteral("blue")});
    setParam(harness, "constantBlue", "3");
    harness.feed("red", 0.5, 1);
    harness.feed("green", 2.0, 1);
    harness.feed("img", adorned(makeImage<quint8>(cImgType::RGB24, {{10, 10, 10}})), 1);
    harness.runAll();
    const auto results = harness.values<cImg>("img");
    ASSERT_EQ(results.size(), 1);
    EXPECT_TRUE(samePixels(results[0], makeImage<quint8>(cImgType::RGB24, {{5, 20, 30}})));
    expectAdorned(results[0]);
    EXPECT_EQ(param(harness, "constantRed"), QStringLiteral("0.5"));
    EXPECT_EQ(param(harness, "constantGreen"), QStringLiteral("2"));
}

TEST(constantStationsTest, AValueForTheQuotientDoesNotActOnColours)
{
    StationHarness harness = harnessOf("divideConstant");
    harness.feed("value", 2.0, 1);
    harness.feed("img", makeImage<quint8>(cImgType::RGB24, {{10, 10, 10}}), 1);
    harness.runAll();
    ASSERT_EQ(harness.values<cImg>("img").size(), 1);
    EXPECT_TRUE(
        samePixels(harness.values<cImg>("img")[0], makeImage<quint8>(cImgType::RGB24, {{10, 10, 10}})));
    EXPECT_EQ(param(harness, "constant"), QStringLiteral("2"));
    EXPECT_EQ(param(harness, "constantRed"), QStringLiteral("1"));
}

TEST(constantStationsTest, AdditionDoesNotTouchAnImageThatSomebodyElseHolds)
{
    StationHarness harness = harnessOf("addConstant", s_noValue);
    setParam(harness, "constant", "5");
    const cImg image = adorned(grey(10));
    harness.feed("img", image, 1);
    harness.runAll();
    EXPECT_EQ(bytesOf(harness), QVector<int> {15});
    EXPECT_EQ(image.getPixel<quint8>(0, 0), 10);
    expectAdorned(harness.values<cImg>("img")[0]);
}

TEST(constantStationsTest, AdditionWithADelayAddsToEachImageOnce)
{
    StationHarness harness = harnessOf("addConstant", s_noValue);
    setParam(harness, "constant", "5");
    harness.inport("img")
        ->getParams()
        .getSubObject(QStringLiteral("delay"))
        ->setFromText(QStringLiteral("1"));
    for (int i = 0; i < 3; ++i) {
        harness.feed("img", grey(10 * (i + 1)), i);
        harness.runAll();
    }
    EXPECT_EQ(bytesOf(harness), (QVector<int> {15, 15, 25})) << "the first image is seen by two matches";
}

TEST(constantStationsTest, AFailureIsReportedAndGivesItsBufferBack)
{
    StationHarness add = harnessOf("addConstant", s_noValue);
    for (int i = 0; i < 20; ++i) { // more often than the pool has buffers
        add.feed("img", cImg(), i);
        add.runAll();
    }
    ASSERT_EQ(add.errors().size(), 20);
    EXPECT_EQ(add.errors().at(0).getMessage(),
        QStringLiteral("cAddConstantToImageFunctor::operator (): Invalid image."));
    EXPECT_EQ(add.sender("img")->getHeldCount(), 0);

    StationHarness divide = harnessOf("divideConstant", s_noValue);
    setParam(divide, "constant", "0");
    divide.feed("img", grey(10), 1);
    divide.runAll();
    ASSERT_EQ(divide.errors().size(), 1);
    EXPECT_TRUE(divide.values<cImg>("img").isEmpty());
}

TEST(constantStationsTest, NothingIsComputedWhileNobodyWantsTheOutput)
{
    for (const char* name : {"addConstant", "divideConstant"}) {
        StationHarness harness = harnessOf(name, {QStringLiteral("img"), QStringLiteral("value")});
        harness.connectInput("img");
        harness.feed("img", cImg(), 1);
        harness.runAll();
        EXPECT_TRUE(harness.errors().isEmpty()) << name;
        EXPECT_EQ(harness.fates("img").gated, 1u) << name;
    }
}
