#include "frame/functorFrame.h"
#include "frame/ippConstants.h"
#include "support/messageOf.h"

#include <QMetaEnum>
#include <QTextCodec>
#include <cmath>
#include <customipp/customipp.h>
#include <gtest/gtest.h>
#include <limits>
#include <tarnbase/cMapObj.h>
#include <tarnflow/cStation.h>
#include <tarnflow/cStepScope.h>
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

namespace {

/** What a step has noted, one misfit a line. */
template <class Step> std::string misfitsOf(Step&& i_step)
{
    cStation station(QStringLiteral("s"));
    const cStepScope scope(&station);
    i_step();
    QStringList lines;
    for (const cGraphError& misfit : station.getMisfits())
        lines.append(misfit.toString());
    return lines.join(u'\n').toStdString();
}

/** The misfit of a value of the parameter "c" for pixels of a type. */
template <class T> std::string cutOf(double i_value, double i_unit = 1)
{
    return misfitsOf([&] {
        EXPECT_EQ(frame::pixelConstant<T>("c", i_value * i_unit, i_unit),
            frame::pixelConstant<T>(i_value * i_unit));
    });
}

} // namespace

TEST(functorFrameTest, AConstantThatThePixelsCutIsNoted)
{
    for (double value : {0.0, 255.0, 1.9, 255.9, -0.5})
        EXPECT_EQ(cutOf<Ipp8u>(value), "") << value;
    for (double value : {-32768.0, 32767.0, -1.5})
        EXPECT_EQ(cutOf<Ipp16s>(value), "") << value;
    EXPECT_EQ(cutOf<Ipp32s>(2147483647.0), "");
    EXPECT_EQ(cutOf<Ipp32f>(1e30), "");
    EXPECT_EQ(cutOf<Ipp32f>(std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(cutOf<Ipp8u>(256),
        "s.c: does not fit into 8-bit pixels, expected a number from 0 to 255, found 256, which would act as "
        "0");
    EXPECT_EQ(cutOf<Ipp8u>(-1),
        "s.c: does not fit into 8-bit pixels, expected a number from 0 to 255, found -1, which would act as "
        "255");
    EXPECT_EQ(cutOf<Ipp16u>(std::nan("")),
        "s.c: does not fit into 16-bit pixels, expected a number from 0 to 65535, found nan, which would act "
        "as 0");
    EXPECT_EQ(cutOf<Ipp32s>(std::numeric_limits<double>::infinity()).substr(0, 39),
        "s.c: does not fit into 32-bit pixels, e");
    // In halves.
    EXPECT_EQ(cutOf<Ipp8u>(127.5, 2), "");
    EXPECT_EQ(cutOf<Ipp8u>(200.5, 2),
        "s.c: does not fit into 8-bit pixels, expected a number from 0 to 127.5, found 200.5, which would "
        "act as 72.5");
}

TEST(functorFrameTest, OnlyConstantsOfParametersAreNoted)
{
    const frame::PixelConstants constants {{300, 301, 302}, 0, {"red", nullptr, "blue"}};
    const std::string misfits
        = misfitsOf([&] { EXPECT_EQ(frame::ConstantArgument<const Ipp8u*>(constants).values[1], 45); });
    EXPECT_EQ(misfits,
        "s.red: does not fit into 8-bit pixels, expected a number from 0 to 255, found 300, which would act "
        "as 44\n"
        "s.blue: does not fit into 8-bit pixels, expected a number from 0 to 255, found 302, which would act "
        "as 46");
}

TEST(functorFrameTest, ImagesOfWrongTypesAreNotedAndThoseOfWrongSizesAreNot)
{
    cListFunctor functor;
    functor.take(cImgType::UInt8, 1);
    const auto noted = [&](const cImg& i_a, const cImg& i_b) {
        return misfitsOf([&] {
            EXPECT_NE(
                messageOf([&] { frame::checkInputs(functor, i_a, i_b, "c::operator ()"); }), "no failure");
        });
    };
    const cImg grey(cImgType::UInt8, 2, 2);
    EXPECT_EQ(noted(grey, cImg(cImgType::UInt16, 2, 2)),
        "s: the images that meet in it differ, expected one pixel type, found UInt8 of 1 channel and UInt16 "
        "of 1 channel");
    EXPECT_EQ(noted(grey, cImg(cImgType::UInt8, 2, 2, 2)),
        "s: the images that meet in it differ, expected one pixel type, found UInt8 of 1 channel and UInt8 "
        "of 2 channels");
    EXPECT_EQ(noted(cImg(cImgType::RGB24, 2, 2), cImg(cImgType::RGB24, 2, 2)),
        "s: does not take the images that reach it, found RGB24");
    EXPECT_EQ(noted(grey, cImg(cImgType::UInt8, 3, 2)), "");
    EXPECT_EQ(noted(grey, cImg()), "");
}
