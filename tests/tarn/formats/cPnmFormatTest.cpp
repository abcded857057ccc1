// The portable maps, as their definition has them.

#include "FormatsTest.h"

#include <formats/cPfmFormat.h>
#include <formats/cPnmFormat.h>

namespace {

using pnmFormat = FormatsTest;

cImg decodePnm(const QByteArray& i_bytes) { return decode(cPnmFormat(cPnmFormat::Pnm), i_bytes); }

std::string refusal(const QByteArray& i_bytes)
{
    return messageOf([&] { decodePnm(i_bytes); });
}

TEST_F(pnmFormat, BitmapsAreBlackAndWhite)
{
    const cImg expected = makeImage<quint8>(cImgType::UInt8,
        {{0, 255, 0, 255, 255, 255, 255, 255, 0}, {255, 255, 255, 255, 255, 255, 255, 0, 0}});
    EXPECT_TRUE(samePixels(decodePnm("P1\n# a comment\n9 2\n101000001\n0 0 0 0 0 0 0 1 1\n"), expected));
    EXPECT_TRUE(samePixels(decodePnm(QByteArray("P4\n9 2\n\xa0\x80\x01\x80", 11)), expected));
}

TEST_F(pnmFormat, PlainNumbersAreRead)
{
    EXPECT_TRUE(samePixels(decodePnm("P2 3 2 255\n0 1 2 # black\n253 254\n255"),
        makeImage<quint8>(cImgType::UInt8, {{0, 1, 2}, {253, 254, 255}})));
    EXPECT_TRUE(
        samePixels(decodePnm("P2 2 1 65535 7 65535"), makeImage<quint16>(cImgType::UInt16, {{7, 65535}})));
    EXPECT_TRUE(samePixels(
        decodePnm("P3\n2 1\n255\n1 2 3  4 5 6\n"), makeImage<quint8>(cImgType::RGB24, {{1, 2, 3, 4, 5, 6}})));
}

TEST_F(pnmFormat, BinaryNumbersOfTwoBytesHaveTheHighOneFirst)
{
    EXPECT_TRUE(samePixels(decodePnm(QByteArray("P5 2 1 65535\n\x01\x02\xff\x00", 17)),
        makeImage<quint16>(cImgType::UInt16, {{0x0102, 0xff00}})));
    EXPECT_TRUE(samePixels(decodePnm(QByteArray("P6 1 1 65535\n\x01\x02\x03\x04\x05\x06", 19)),
        makeImage<quint16>(cImgType::UInt16, {{0x0102, 0x0304, 0x0506}}, 3)));
    EXPECT_EQ(encode(cPnmFormat(cPnmFormat::Pgm), makeImage<quint16>(cImgType::UInt16, {{0x0102, 0xff00}})),
        QByteArray("P5\n2 1\n65535\n\x01\x02\xff\x00", 17));
    EXPECT_EQ(encode(cPnmFormat(cPnmFormat::Ppm), makeImage<quint8>(cImgType::RGB24, {{1, 2, 3}})),
        QByteArray("P6\n1 1\n255\n\x01\x02\x03"));
}

TEST_F(pnmFormat, TheGreatestValueBecomesTheRange)
{
    const cImg camera = decodePnm(QByteArray("P5 2 1 4095\n\x0f\xff\x00\x01", 16));
    EXPECT_TRUE(samePixels(camera, makeImage<quint16>(cImgType::UInt16, {{4095, 1}})));
    EXPECT_EQ(camera.getRange().getLow(), 0.0);
    EXPECT_EQ(camera.getRange().getHigh(), 4095.0);
    EXPECT_EQ(decodePnm("P2 2 1 15 3 15").getRange().getHigh(), 15.0);
    EXPECT_EQ(decodePnm("P2 1 1 255 3").getRange().getHigh(), 255.0);
    EXPECT_EQ(decodePnm("P1 1 1 0").getRange().getHigh(), 255.0);
    EXPECT_EQ(refusal(QByteArray("P5 2 1 4095\n\x10\x00\x00\x01", 16)),
        "PNM: a pixel is 4096, above the greatest value 4095");
    EXPECT_EQ(refusal("P2 2 1 15 3 16"), "PNM: a pixel is 16, above the greatest value 15");
    EXPECT_EQ(refusal("P2 2 1 255 3 256"), "PNM: a pixel is 256, above the greatest value 255");
}

TEST_F(pnmFormat, AnArbitraryMapTellsItsKind)
{
    const cPnmFormat pam(cPnmFormat::Pam);
    EXPECT_EQ(encode(pam, makeImage<quint8>(cImgType::RGB32, {{1, 2, 3, 4}})),
        QByteArray(
            "P7\nWIDTH 1\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n\x01\x02\x03\x04"));
    EXPECT_EQ(encode(pam, makeImage<quint8>(cImgType::UInt8, {{1, 2, 3}}, 3)),
        QByteArray("P7\nWIDTH 1\nHEIGHT 1\nDEPTH 3\nMAXVAL 255\nENDHDR\n\x01\x02\x03"));
    const char* start = "P7\n# somebody's\n\nHEIGHT 1\nWIDTH 1\n";
    EXPECT_TRUE(samePixels(decode(pam, QByteArray(start) + "DEPTH 3\nMAXVAL 255\nTUPLTYPE RGB\nENDHDR\nabc"),
        makeImage<quint8>(cImgType::RGB24, {{97, 98, 99}})));
    EXPECT_TRUE(samePixels(decode(pam, QByteArray(start) + "DEPTH 3\nMAXVAL 255\nTUPLTYPE\nENDHDR\nabc"),
        makeImage<quint8>(cImgType::UInt8, {{97, 98, 99}}, 3)));
    const cImg bits
        = decode(pam, QByteArray(start) + "DEPTH 1\nMAXVAL 1\nTUPLTYPE BLACKANDWHITE\nENDHDR\n\x01");
    EXPECT_TRUE(samePixels(bits, makeImage<quint8>(cImgType::UInt8, {{1}})));
    EXPECT_EQ(bits.getRange().getHigh(), 1.0);
    const auto refused
        = [&](const char* i_lines) { return messageOf([&] { decode(pam, QByteArray(start) + i_lines); }); };
    EXPECT_EQ(refused("DEPTH 1\nENDHDR\na"), "PAM: the header lacks one of WIDTH, HEIGHT, DEPTH and MAXVAL");
    EXPECT_EQ(refused("DEPTH 0\nMAXVAL 1\nENDHDR\na"), "PAM: the depth is 0");
    EXPECT_EQ(refused("COLOUR 3\n"), "PAM: unknown line in the header, found 'COLOUR'");
    EXPECT_EQ(refused("DEPTH 1\n"), "PAM: the file ends before the end of the header");
}

TEST_F(pnmFormat, WhatIsWrongIsSaid)
{
    EXPECT_EQ(refusal("P8 1 1 255 a"), "PNM: not of this format, expected P1 to P7 at the start");
    EXPECT_EQ(refusal("P5"), "PNM: the header does not end");
    EXPECT_EQ(refusal("P55 1 255 a"), "PNM: the header does not end");
    EXPECT_EQ(refusal("P5 x 1 255 a"), "PNM: the width is no number, found 'x'");
    EXPECT_EQ(refusal("P5 1 -1 255 a"), "PNM: the height is no number, found '-1'");
    EXPECT_EQ(refusal("P5 1 1 "), "PNM: the file ends before the greatest value");
    EXPECT_EQ(refusal("P5 1 1 0 a"), "PNM: the greatest value is 0, expected 1 to 65535");
    EXPECT_EQ(refusal("P5 1 1 65536 a"), "PNM: the greatest value is 65536, expected 1 to 65535");
    EXPECT_EQ(refusal("P5 0 1 255 a"), "the image is empty (0x1)");
    EXPECT_EQ(refusal("P5 3 2 255 abcde"), "the file ends too early: 5 bytes of pixels, expected 6");
    EXPECT_EQ(refusal("P2 3 1 255 1 2"), "the file ends too early: 4 bytes of pixels, expected 6");
    EXPECT_EQ(refusal("P2 2 1 255    1"), "PNM: the file ends before a pixel");
    EXPECT_EQ(refusal("P2 2 1 255 1 b"), "PNM: a pixel is no number, found 'b'");
    EXPECT_EQ(refusal("P1 3 1 10 "), "PNM: a pixel is neither 0 nor 1");
    EXPECT_EQ(refusal("P1 1 1 2"), "PNM: a pixel is neither 0 nor 1");
    EXPECT_EQ(refusal("P5 65536 65536 255 a"),
        "the image is too large, 65536x65536 pixels of 1 bytes, at most 2 GiB are read or written");
    EXPECT_EQ(refusal("P5 99999999999999999999 1 255 a"),
        "PNM: the width is no number, found '99999999999999999999'");
}

TEST_F(pnmFormat, FloatsStandBottomRowFirst)
{
    const cImg expected = makeImage<float>(cImgType::Float32, {{1.0f, -2.0f}, {0.5f, 4.0f}});
    const QByteArray low("\0\0\0\x3f\0\0\x80\x40\0\0\x80\x3f\0\0\0\xc0", 16);
    EXPECT_EQ(encode(cPfmFormat(), expected), "Pf\n2 2\n-1.0\n" + low);
    EXPECT_TRUE(samePixels(decode(cPfmFormat(), "Pf 2 2 -2.5\n" + low), expected));
    const QByteArray high("\x3f\0\0\0\x40\x80\0\0\x3f\x80\0\0\xc0\0\0\0", 16);
    EXPECT_TRUE(samePixels(decode(cPfmFormat(), "Pf\n2 2\n1.0\n" + high), expected));
    EXPECT_TRUE(samePixels(decode(cPfmFormat(), "PF 1 1 1\n" + high.left(12)),
        makeImage<float>(cImgType::Float32, {{0.5f, 4.0f, 1.0f}}, 3)));
}

TEST_F(pnmFormat, FloatsThatAreWrongAreRefused)
{
    const auto refused
        = [](const QByteArray& i_bytes) { return messageOf([&] { decode(cPfmFormat(), i_bytes); }); };
    EXPECT_EQ(refused("Pf 1 1 0\nabcd"), "PFM: the scale is no number other than 0, found '0'");
    EXPECT_EQ(refused("Pf 1 1 inf\nabcd"), "PFM: the scale is no number other than 0, found 'inf'");
    EXPECT_EQ(refused("PF4\n5 6\n-1.0\nabcd"), "PFM: the header does not end");
    EXPECT_EQ(refused("PF 1 1 1\nabcd"), "the file ends too early: 4 bytes of pixels, expected 12");
    EXPECT_EQ(refused("PF 30000 30000 1\nabcd"),
        "the image is too large, 30000x30000 pixels of 12 bytes, at most 2 GiB are read or written");
}

} // namespace
