#include "support/TraceLines.h"

#include <gtest/gtest.h>
#include <tarnbase/cMatrix.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cStation.h>
#include <tarnimg/cIPortImg.h>

namespace {

/** A station with nothing but the ports that a test gives it. */
class cPlainStation : public cStation {
public:
    cPlainStation() : cStation(QStringLiteral("plain")) {}
};

cImg image(cImgType::ImageTypes i_type, unsigned i_channels) { return cImg(i_type, 2, 2, i_channels); }

cBufferT<cImg>* bufferWith(cOPort<cImg>& i_pool, const cImg& i_image, qint64 i_stamp = 7)
{
    cBufferT<cImg>* buffer = i_pool.getFreeBuffer(false);
    buffer->setValue(i_image);
    buffer->setStamp(i_stamp);
    return buffer;
}

/** An input port with a queue that remembers what it got. */
struct Receiver {
    cPlainStation station;
    cOPort<cImg> pool {&station, QStringLiteral("out"), 5};
    cIPort<cImg> port {&station, QStringLiteral("img")};
    QList<cBufferT<cImg>*> got;
    int calls = 0;

    void takeLists()
    {
        port.setListCallback([this](const QList<cBufferT<cImg>*>& buffers) {
            ++calls;
            got += buffers;
        });
    }
    ~Receiver()
    {
        for (cBufferT<cImg>* buffer : got)
            buffer->releaseAndUnrefBufferAtPort();
    }
};

} // namespace

TEST(imagePortsTest, AnEmptyListTakesEveryImage)
{
    Receiver receiver;
    receiver.takeLists();
    receiver.port.receiveBuffer({bufferWith(receiver.pool, image(cImgType::Complex, 2))}, nullptr, false);
    EXPECT_EQ(receiver.got.size(), 1);
}

TEST(imagePortsTest, AChannelCountOfZeroTakesAnyNumber)
{
    Receiver receiver;
    receiver.takeLists();
    receiver.port.addImageType(cImgType::Float32, 0);
    receiver.port.receiveBuffer({bufferWith(receiver.pool, image(cImgType::Float32, 2))}, nullptr, false);
    EXPECT_EQ(receiver.got.size(), 1);
}

TEST(imagePortsTest, AWrongImageIsGivenBackWithALine)
{
    TraceLines trace;
    Receiver receiver;
    receiver.takeLists();
    receiver.port.addImageType(cImgType::Float32, 1);
    receiver.port.receiveBuffer({bufferWith(receiver.pool, image(cImgType::Float32, 2))}, nullptr, false);
    EXPECT_EQ(receiver.calls, 0);
    EXPECT_EQ(receiver.pool.getHeldCount(), 0);
    EXPECT_EQ(receiver.port.getFates().refused, 1u);
    EXPECT_EQ(receiver.port.getFates().arrived, receiver.port.getFates().getSum());
    EXPECT_EQ(trace.take(),
        QStringList {QStringLiteral("plain.img does not support images of type: Float32 with 2 channels.")});
}

TEST(imagePortsTest, AWrongImageIsAMisfitOfTheStation)
{
    const TraceLines lines;
    Receiver receiver;
    receiver.takeLists();
    receiver.port.addImageType(cImgType::UInt8, 1);
    receiver.port.addImageType(cImgType::Float32, 0);
    receiver.port.addImageType(cImgType::RGB24, 3);
    receiver.port.receiveBuffer({bufferWith(receiver.pool, image(cImgType::UInt16, 3))}, nullptr, false);
    const auto misfits = receiver.station.getMisfits();
    ASSERT_EQ(misfits.size(), 1);
    EXPECT_EQ(misfits.first().toString().toStdString(),
        "plain.img: does not take the images that reach it, expected UInt8 of 1 channel, Float32, RGB24, "
        "found UInt16 of 3 channels");
}

TEST(imagePortsTest, OnlyTheWrongImagesOfADeliveryAreGivenBack)
{
    Receiver receiver;
    receiver.takeLists();
    receiver.port.addImageType(cImgType::UInt8, 1);
    cBufferT<cImg>* right = bufferWith(receiver.pool, image(cImgType::UInt8, 1));
    receiver.port.receiveBuffer({bufferWith(receiver.pool, image(cImgType::UInt8, 3)), right,
                                    bufferWith(receiver.pool, image(cImgType::RGB24, 3))},
        nullptr, false);
    EXPECT_EQ(receiver.calls, 1);
    ASSERT_EQ(receiver.got.size(), 1);
    EXPECT_EQ(receiver.got.first(), right);
}

TEST(imagePortsTest, APortWithoutACallbackTakesNoOwnership)
{
    Receiver receiver;
    cBufferT<cImg>* buffer = bufferWith(receiver.pool, image(cImgType::UInt8, 1));
    receiver.port.receiveBuffer({buffer}, nullptr, false);
    EXPECT_EQ(receiver.pool.getHeldCount(), 1);
    buffer->releaseAndUnrefBufferAtPort();
}

TEST(imagePortsTest, TheDirectCallbackIsUsedUncheckedAndNotAdmitted)
{
    Receiver receiver;
    receiver.port.addImageType(cImgType::UInt8, 1);
    cImg seen;
    receiver.port.setDirectCallback([&](cBufferT<cImg>* buffer) { seen = buffer->getValue(); });
    EXPECT_FALSE(receiver.port.hasDirectCallback());
    receiver.port.receiveBuffer({bufferWith(receiver.pool, image(cImgType::Float64, 1))}, nullptr, false);
    EXPECT_TRUE(seen.isKindOf(cImgType::Float64));
    EXPECT_EQ(receiver.pool.getHeldCount(), 0);
}

TEST(imagePortsTest, DisjointListsDoNotLink)
{
    TraceLines trace;
    cIPort<cImg> input;
    cOPort<cImg> output;
    input.addImageType(cImgType::UInt8, 1);
    input.addImageType(cImgType::UInt16, 1);
    output.addImageType(cImgType::Float32, 1);
    EXPECT_FALSE(input.checkStaticData(&output));
    EXPECT_EQ(
        trace.take(), QStringList {QStringLiteral("Image types do not match: UInt8,UInt16,Float32 and ")});
    EXPECT_FALSE(output.checkStaticData(&input));
    EXPECT_EQ(
        trace.take(), QStringList {QStringLiteral("Image types do not match: Float32,UInt8,UInt16 and ")});
}

TEST(imagePortsTest, AnEmptyListOnEitherSideLinks)
{
    cIPort<cImg> input;
    cOPort<cImg> output;
    input.addImageType(cImgType::UInt8, 1);
    EXPECT_TRUE(input.checkStaticData(&output));
    EXPECT_TRUE(output.checkStaticData(&input));
}

TEST(imagePortsTest, LinksCompareWholePairs)
{
    TraceLines trace;
    cIPort<cImg> input;
    cOPort<cImg> output;
    input.addImageType(cImgType::UInt8, 0);
    output.addImageType(cImgType::UInt8, 1);
    EXPECT_FALSE(input.checkStaticData(&output));
    output.addImageType(cImgType::UInt8, 0);
    EXPECT_TRUE(input.checkStaticData(&output));
}

TEST(imagePortsTest, APortOfOtherValuesHasNothingToCompare)
{
    TraceLines trace;
    cIPort<cImg> input;
    input.addImageType(cImgType::UInt8, 1);
    const cOPort<cMatrix<float>> matrices;
    EXPECT_TRUE(input.checkStaticData(&matrices));
    EXPECT_EQ(trace.take(), QStringList());
}

TEST(imagePortsTest, TwoInputsAreComparedLikeAnInputAndAnOutput)
{
    TraceLines trace;
    cIPort<cImg> first;
    cIPort<cImg> second;
    first.addImageType(cImgType::UInt8, 1);
    first.addImageType(cImgType::UInt8, 3);
    first.addImageType(cImgType::UInt8, 1); // once more counts once
    second.addImageType(cImgType::UInt16, 1);
    EXPECT_FALSE(first.checkStaticData(&second));
    EXPECT_EQ(
        trace.take(), QStringList {QStringLiteral("Image types do not match: UInt8,UInt8,UInt16 and ")});
}

TEST(imagePortsTest, TooltipsNameTheTypes)
{
    cIPort<cImg> input;
    cOPort<cImg> output;
    EXPECT_EQ(input.getTooltip(), QStringLiteral("Supported types: <font color=red><b>All"));
    EXPECT_EQ(output.getTooltip(), QStringLiteral("<font color=red><b>Image"));
    input.addImageType(cImgType::UInt8, 1);
    input.addImageType(cImgType::RGB24, 3);
    output.addImageType(cImgType::SInt16, 1);
    input.setDescription(QStringLiteral("the scene"));
    EXPECT_EQ(input.getTooltip(),
        QStringLiteral("Supported types: <font color=red><b>UInt8,RGB24</b><br><font color=blue>the scene"));
    EXPECT_EQ(output.getTooltip(), QStringLiteral("<font color=red><b>SInt16"));
}

TEST(imagePortsTest, AnOutputMadeForAnInputHasAPoolOfFive)
{
    cPlainStation station;
    cIPort<cImg> input(&station, QStringLiteral("img"));
    const std::unique_ptr<cOPortBase> output(input.makeOutport(&station, QStringLiteral("copy")));
    EXPECT_EQ(output->getPoolLimit(), 5);
    EXPECT_TRUE(output->getTypeID() == typeid(cImg));
}

TEST(imagePortsTest, BoundariesMadeForImagePortsCarryImages)
{
    cPlainStation station;
    cIPort<cImg> input(&station, QStringLiteral("img"));
    cOPort<cImg> output(&station, QStringLiteral("out"), 5);
    for (cPortBase* maker : {static_cast<cPortBase*>(&input), static_cast<cPortBase*>(&output)}) {
        const auto make = [&](auto* i_inner) {
            auto* asInput = dynamic_cast<cIPort<cImg>*>(maker);
            return asInput ? static_cast<cPortBase*>(asInput->makeExport(i_inner, nullptr, QString()))
                           : static_cast<cPortBase*>(
                               static_cast<cOPort<cImg>*>(maker)->makeExport(i_inner, nullptr, QString()));
        };
        const std::unique_ptr<cPortBase> import(make(static_cast<cIPortBase*>(nullptr)));
        const std::unique_ptr<cPortBase> boundary(make(static_cast<cOPortBase*>(nullptr)));
        EXPECT_NE(dynamic_cast<cImport<cImg>*>(import.get()), nullptr);
        EXPECT_NE(dynamic_cast<cExport<cImg>*>(boundary.get()), nullptr);
        EXPECT_EQ(static_cast<cOPortBase*>(boundary.get())->getPoolLimit(), 5);
    }
}

TEST(imagePortsTest, AViewerThatKeepsImagesNeverStarvesTheFlow)
{
    cGraph graph;
    auto* sender = new cPlainStation;
    ASSERT_TRUE(graph.addNode(sender));
    cOPort<cImg> output(sender, QStringLiteral("out"), 5);
    cIPort<cImg> viewer;
    QList<cImg> kept;
    viewer.setDirectCallback([&](cBufferT<cImg>* buffer) { kept.append(buffer->getValue()); });
    ASSERT_TRUE(graph.link(&output, &viewer));
    QList<const unsigned char*> sent;
    for (int i = 0; i < 50; ++i) { // ten times as many as there are buffers
        const cImg shown = image(cImgType::UInt8, 1);
        sent.append(shown.getConstData());
        output.send(shown, i);
        ASSERT_EQ(output.getHeldCount(), 0);
    }
    ASSERT_EQ(kept.size(), 50);
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(std::as_const(kept)[i].getConstData(), sent[i]) << "no pixels are copied on the way";
    graph.unlink(&output, &viewer);
}

TEST(imagePortsTest, InitAttachesOnceAndAPoolSizeOfZeroMeansNoLimit)
{
    cPlainStation station;
    cOPort<cImg> output;
    EXPECT_EQ(output.getPoolLimit(), 0);
    output.init(&station, QStringLiteral("img"), 0);
    EXPECT_EQ(output.getPoolLimit(), std::numeric_limits<int>::max());
    output.init(&station, QStringLiteral("other"), 3);
    EXPECT_EQ(output.getName(), QStringLiteral("img"));
    EXPECT_EQ(output.getPoolLimit(), std::numeric_limits<int>::max());
}

TEST(imagePortsTest, ABufferOfOneHolderIsWorkedOnInPlace)
{
    Receiver receiver;
    cBufferT<cImg>* buffer = bufferWith(receiver.pool, image(cImgType::UInt8, 1));
    cImg* work = nullptr;
    EXPECT_EQ(receiver.pool.getFreeOrDuplicateBuffer(buffer, work), buffer);
    EXPECT_EQ(work, &buffer->getValue());
    EXPECT_EQ(buffer->getRefCount(), 2);
    buffer->releaseAndUnrefBufferAtPort();
    buffer->releaseAndUnrefBufferAtPort();
}

TEST(imagePortsTest, ASharedBufferIsDuplicatedAndItsPixelsAreSharedUntilTheFirstWrite)
{
    Receiver receiver;
    cBufferT<cImg>* buffer = bufferWith(receiver.pool, image(cImgType::UInt8, 1), 42);
    buffer->ref();
    cImg* work = nullptr;
    cBufferT<cImg>* copy = receiver.pool.getFreeOrDuplicateBuffer(buffer, work);
    ASSERT_NE(copy, buffer);
    EXPECT_EQ(copy->getStamp().getStamp(), 42);
    EXPECT_EQ(std::as_const(*work).getConstData(), buffer->getValue().getConstData());
    work->setPixel<unsigned char>(0, 0, 1);
    EXPECT_NE(std::as_const(*work).getConstData(), buffer->getValue().getConstData());
    copy->releaseAndUnrefBufferAtPort();
    buffer->releaseAndUnrefBufferAtPort();
    buffer->releaseAndUnrefBufferAtPort();
}

TEST(imagePortsTest, TheTextOfABufferIsThatOfItsImage)
{
    Receiver receiver;
    cImg named = image(cImgType::UInt8, 1);
    named.setName(QStringLiteral("part"));
    cBufferT<cImg>* buffer = bufferWith(receiver.pool, named);
    EXPECT_EQ(buffer->getAuditText(), QStringLiteral("part: 2x2 (UInt8)"));
    buffer->releaseAndUnrefBufferAtPort();
}
