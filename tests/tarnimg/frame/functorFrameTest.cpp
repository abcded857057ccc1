#include "frame/functorFrame.h"
#include "support/messageOf.h"

#include <customipp/customipp.h>
#include <gtest/gtest.h>
#include <tarnbase/cMapObj.h>
#include <tarnimg/checkIPPStatus.h>

namespace {

/** A functor that takes what a test says. */
class cListFunctor : public cImgFunctor {
public:
    void take(cImgType::ImageTypes i_type, unsigned i_channels) { addSupportedInput(i_type, i_channels); }
};

} // namespace

TEST(functorFrameTest, AnEmptyListTakesEveryImageValidOrNot)
{
    EXPECT_TRUE(cListFunctor().isSupported(cImg(cImgType::Complex, 2, 2)));
    EXPECT_TRUE(cListFunctor().isSupported(cImg()));
}

TEST(functorFrameTest, AChannelCountOfZeroMeansAny)
{
    cListFunctor functor;
    functor.take(cImgType::Float32, 0);
    EXPECT_TRUE(functor.isSupported(cImg(cImgType::Float32, 2, 2, 5)));
    EXPECT_FALSE(functor.isSupported(cImg(cImgType::UInt8, 2, 2, 1)));
    EXPECT_FALSE(functor.isSupported(cImg()));
}

TEST(functorFrameTest, AnotherChannelCountIsRefusedByName)
{
    cListFunctor functor;
    functor.take(cImgType::UInt8, 1);
    EXPECT_EQ(
        messageOf([&] { frame::checkInput(functor, cImg(cImgType::UInt8, 2, 2, 3), "c::operator ()"); }),
        "c::operator (): Unsupported image format (UInt8) or channel count (3).");
}

TEST(functorFrameTest, AWarningFailsLikeAnError)
{
    EXPECT_EQ(messageOf([] { checkIPPStatus(ippStsNoErr); }), "no failure");
    EXPECT_EQ(messageOf([] { checkIPPStatus(ippStsDivByZero); }),
        std::string("checkIPPStatus: ") + ippGetStatusString(ippStsDivByZero));
}

TEST(functorFrameTest, AnEnumerationParameterHoldsAKeyAndKnowsTheOthers)
{
    QString key = QStringLiteral("Float32");
    cMapObj params;
    frame::bindEnumParam(&params, "type", key, cImgType::staticMetaObject, "ImageTypes");
    cObj* entry = params.getSubObject(QStringLiteral("type"));
    ASSERT_EQ(entry->getChoices().size(), 15);
    EXPECT_EQ(entry->getChoices().first(), QStringLiteral("Invalid"));
    ASSERT_TRUE(entry->setFromText(QStringLiteral("RGB24")));
    EXPECT_EQ(key, QStringLiteral("RGB24"));
}

TEST(functorFrameTest, AnUnknownKeyCountsAsZero)
{
    const QMetaObject& types = cImgType::staticMetaObject;
    EXPECT_EQ(frame::enumValue(types, "ImageTypes", QStringLiteral("Float32")), 10);
    EXPECT_EQ(frame::enumValue(types, "ImageTypes", QStringLiteral("nothing")), 0);
}
