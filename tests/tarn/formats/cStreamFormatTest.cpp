// The file that keeps all that belongs to an image.

#include "FormatsTest.h"

#include <formats/cStreamFormat.h>

#include <QDataStream>
#include <tarnbase/cDataValObj.h>

namespace {

using streamFormat = FormatsTest;

TEST_F(streamFormat, KeepsNameRangeFramesAndAttributes)
{
    cImg image = makeRandomImage(cImgType::Float32, 4, 3, 2);
    image.setName(QStringLiteral("a name"));
    image.setRange(-3.5, 12.25);
    image.setNumFrames(10);
    image.setFrameIndex(4);
    image.setImgAttr(QStringLiteral("gain"), new cDataValObj<double>(1.5));
    host::writeImage(path("a.tis"), image);
    const cImg back = read("a.tis");
    EXPECT_TRUE(samePixels(back, image));
    EXPECT_EQ(back.getName(), QStringLiteral("a name"));
    EXPECT_EQ(back.getRange().getLow(), -3.5);
    EXPECT_EQ(back.getRange().getHigh(), 12.25);
    EXPECT_EQ(back.getNumFrames(), 10u);
    EXPECT_EQ(back.getFrameIndex(), 4u);
    const cObj* gain = back.getImgAttr(QStringLiteral("gain"));
    double value = 0.0;
    ASSERT_TRUE(gain && gain->getValue(value));
    EXPECT_EQ(value, 1.5);
}

TEST_F(streamFormat, IsTheBinaryFormOfAnImage)
{
    const cImg image = makeRandomImage(cImgType::UInt16, 4, 3);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << image;
    EXPECT_EQ(encode(cStreamFormat(), image), bytes);
    EXPECT_TRUE(samePixels(decode(cStreamFormat(), bytes + "what follows"), image));
}

TEST_F(streamFormat, WhatIsWrongIsSaid)
{
    const auto refused
        = [](const QByteArray& i_bytes) { return messageOf([&] { decode(cStreamFormat(), i_bytes); }); };
    const QByteArray bytes = encode(cStreamFormat(), makeRandomImage(cImgType::UInt16, 4, 3));
    EXPECT_EQ(refused(bytes.left(2)), "TIS: the file ends too early");
    EXPECT_EQ(refused(bytes.left(bytes.size() - 1)), "TIS: the file ends too early");
    EXPECT_EQ(refused('\x01' + bytes.mid(1)),
        "TIS: not of this format, expected a pixel type from 1 to 14 at the start, found 16777220");
    QByteArray empty = bytes;
    empty.replace(20, 4, QByteArray(4, '\0')); // the width: type, channels, name's length, frames before it
    EXPECT_EQ(refused(empty), "TIS: the image is empty");
    QByteArray large = bytes;
    large.replace(20, 8, QByteArray(8, '\xff'));
    EXPECT_EQ(refused(large), "TIS: damaged: no image has such a size, range or attributes");
}

} // namespace
