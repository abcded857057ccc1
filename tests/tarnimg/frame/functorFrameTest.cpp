#include "frame/functorFrame.h"
#include "support/messageOf.h"

#include <QMetaEnum>
#include <QTextCodec>
#include <customipp/customipp.h>
#include <gtest/gtest.h>
#include <tarnbase/cMapObj.h>
#include <tarnimg/cIPortImg.h>
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

    // So its check passes, but that of the image itself comes before.
    const auto check = [](const cImg& i_image) {
        return messageOf([&] { frame::checkInput(cListFunctor(), i_image, "c::operator ()"); });
    };
    EXPECT_EQ(check(cImg(cImgType::Complex, 2, 2)), "no failure");
    EXPECT_EQ(check(cImg()), "c::operator (): Invalid image.");
}

TEST(functorFrameTest, AChannelCountOfZeroMeansAny)
{
    cListFunctor functor;
    functor.take(cImgType::Float32, 0);
    EXPECT_TRUE(functor.isSupported(cImg(cImgType::Float32, 2, 2, 5)));
    EXPECT_FALSE(functor.isSupported(cImg(cImgType::UInt8, 2, 2, 1)));
    functor.take(cImgType::UInt8, 1);
    EXPECT_TRUE(functor.isSupported(cImg(cImgType::UInt8, 2, 2, 1)));
    EXPECT_FALSE(functor.isSupported(cImg())) << "of this type, but not valid";
}

TEST(functorFrameTest, CopiesTakeTheListAlong)
{
    cListFunctor functor;
    functor.take(cImgType::UInt8, 1);
    cListFunctor copy(functor);
    cListFunctor assigned;
    assigned.take(cImgType::Complex, 2);
    assigned = functor;
    functor.take(cImgType::RGB24, 3);
    for (const cListFunctor* other : {&copy, &assigned}) {
        EXPECT_EQ(other->getSupportedInputs().size(), 1);
        EXPECT_TRUE(other->isSupported(cImg(cImgType::UInt8, 2, 2)));
        EXPECT_FALSE(other->isSupported(cImg(cImgType::Complex, 2, 2)));
    }
}

TEST(functorFrameTest, APortKeepsWhatItTakesAndLearnsTheListInItsOrder)
{
    cListFunctor functor;
    functor.take(cImgType::RGB24, 3);
    functor.take(cImgType::Float32, 0);
    cIPort<cImg> port;
    port.addImageType(cImgType::UInt8, 1);
    functor.initSupportedTypes(port);
    using Pair = QPair<cImgType::ImageTypes, unsigned int>;
    EXPECT_TRUE(port.getSupportedTypes()
        == (QList<Pair> {{cImgType::UInt8, 1u}, {cImgType::RGB24, 3u}, {cImgType::Float32, 0u}}));
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
    for (const IppStatus status : {ippStsDivByZero, ippStsSizeErr})
        EXPECT_EQ(messageOf([&] { checkIPPStatus(status); }),
            std::string("checkIPPStatus: ") + ippGetStatusString(status));
}

TEST(functorFrameTest, TheTextOfAFailureIsInTheLocalEncoding)
{
    QTextCodec* const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    EXPECT_EQ(messageOf([] { frame::fail(QString(QChar(0xfc))); }), "\xc3\xbc");
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    EXPECT_EQ(messageOf([] { frame::fail(QString(QChar(0xfc))); }), "\xfc");
    QTextCodec::setCodecForLocale(before);
}

TEST(functorFrameTest, AnEnumerationParameterHoldsAKeyAndKnowsTheOthers)
{
    QString key = QStringLiteral("Float32");
    cMapObj params;
    frame::bindEnumParam(&params, "type", key, cImgType::staticMetaObject, "ImageTypes");
    EXPECT_EQ(key, QStringLiteral("Float32"));
    cObj* entry = params.getSubObject(QStringLiteral("type"));
    ASSERT_EQ(entry->getChoices().size(), 15);
    EXPECT_EQ(entry->getChoices().first(), QStringLiteral("Invalid"));
    EXPECT_EQ(entry->getFlags(), cObj::ObjFlags());
    ASSERT_TRUE(entry->setFromText(QStringLiteral("RGB24")));
    EXPECT_EQ(key, QStringLiteral("RGB24"));
}

TEST(functorFrameTest, AnUnknownKeyCountsAsZero)
{
    const QMetaObject& types = cImgType::staticMetaObject;
    EXPECT_EQ(frame::enumValue(types, "ImageTypes", QStringLiteral("Float32")), 10);
    EXPECT_EQ(frame::enumValue(types, "ImageTypes", QStringLiteral("nothing")), 0);
    EXPECT_EQ(frame::enumValue(types, "ImageTypes", QString()), 0);
    // Also where no key has this value.
    const QMetaEnum orientation = QMetaEnum::fromType<Qt::Orientation>();
    EXPECT_EQ(orientation.valueToKey(0), nullptr);
    const QMetaObject& owner = *orientation.enclosingMetaObject();
    EXPECT_EQ(frame::enumValue(owner, "Orientation", QStringLiteral("Vertical")), int(Qt::Vertical));
    EXPECT_EQ(frame::enumValue(owner, "Orientation", QStringLiteral("nothing")), 0);
}
