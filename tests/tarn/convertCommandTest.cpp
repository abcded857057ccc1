// `tarn convert` as its users meet it, and the conversion behind it.

#include "CommandTest.h"

#include <imageConversion.h>
#include <support/messageOf.h>

namespace {

class convert : public CommandTest {
protected:
    Result run(const QString& i_words) const
    {
        return tarn(QStringList {QStringLiteral("convert")} + i_words.split(u' '));
    }
    void save(const char* i_name, const cImg& i_image) const
    {
        host::writeImage(path(QString::fromUtf8(i_name)), i_image);
    }
    cImg read(const char* i_name) const { return host::readImage(path(QString::fromUtf8(i_name))); }
};

TEST_F(convert, BringsAnyTypeThroughEveryFormatThatHoldsIt)
{
    for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type) {
        const cImg image = makeRandomImage(cImgType::ImageTypes(type), 5, 4, 2, unsigned(type));
        SCOPED_TRACE(imageSupport::structureText(image));
        save("a.tif", image);
        for (const char* words : {"a.tif b.npy", "b.npy c.tis", "c.tis d.TIFF"}) {
            const Result result = run(QString::fromUtf8(words));
            EXPECT_EQ(result.exit, 0);
            EXPECT_EQ(result.output + result.errors, QString());
        }
        EXPECT_TRUE(samePixels(read("d.TIFF"), image));
    }
}

TEST_F(convert, NeverNarrowsUnasked)
{
    save("a.tif", makeRandomImage(cImgType::Float32, 3, 2));
    const Result result = run(QStringLiteral("a.tif a.png"));
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(result.errors,
        QStringLiteral(
            "a.tif: error: a.png: PNG cannot hold Float32 with 1 channel, formats that can: NPY, PFM, "
            "TIFF, TIS\n"
            "  help: choose one of these, or a --type that the format can hold\n"));
    EXPECT_EQ(filesIn(QString()), QStringList {QStringLiteral("a.tif")});
}

TEST_F(convert, NarrowsWhenAskedAndSaysSo)
{
    save("a.npy", makeImage<quint16>(cImgType::UInt16, {{0, 65535, 32768}}));
    Result result = run(QStringLiteral("--type UInt8 a.npy a.png"));
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.errors, QStringLiteral("UInt16 to UInt8, 0 to 65535 onto 0 to 255\n"));
    EXPECT_TRUE(samePixels(read("a.png"), makeImage<quint8>(cImgType::UInt8, {{0, 255, 128}})));

    save("f.pfm", makeImage<float>(cImgType::Float32, {{-1.0f, 0.5f, 4.0f, 6.0f}}));
    result = run(QStringLiteral("f.pfm f.pgm --range -4,4 --type uint8"));
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.errors,
        QStringLiteral("Float32 to UInt8, -4 to 4 onto 0 to 255; 1 value lay outside and was cut\n"));
    // (v + 4) / 8 * 255 = 95.6, 143.4
    EXPECT_TRUE(samePixels(read("f.pgm"), makeImage<quint8>(cImgType::UInt8, {{96, 143, 255, 255}})));
    EXPECT_EQ(run(QStringLiteral("-q f.pfm f.pgm --range -4,4 --type UInt8")).errors, QString());
}

TEST_F(convert, GoesByTheRangeOfTheFile)
{
    write(QStringLiteral("a.pgm"), "P2 3 1 4095 0 4095 2048");
    const Result result = run(QStringLiteral("--type=UInt8 a.pgm a.bmp"));
    EXPECT_EQ(result.errors, QStringLiteral("UInt16 to UInt8, 0 to 4095 onto 0 to 255\n"));
    const cImg image = read("a.bmp");
    EXPECT_EQ(image.getPixel<quint8>(0, 0), 0);
    EXPECT_NEAR(image.getPixel<quint8>(1, 0), 255, 1); // the factor is held to 15 bits
    EXPECT_NEAR(image.getPixel<quint8>(2, 0), 128, 1);
}

TEST_F(convert, FloatsKeepTheValues)
{
    save("a.png", makeImage<quint16>(cImgType::UInt16, {{7, 65535}}));
    EXPECT_EQ(run(QStringLiteral("--type Float32 a.png a.npy")).errors,
        QStringLiteral("UInt16 to Float32, values of 0 to 65535\n"));
    EXPECT_TRUE(samePixels(read("a.npy"), makeImage<float>(cImgType::Float32, {{7.0f, 65535.0f}})));
}

TEST_F(convert, EachChannelIsConverted)
{
    save("a.png", makeImage<quint16>(cImgType::UInt16, {{0, 257, 514, 65535, 25700, 0}}, 3));
    EXPECT_EQ(run(QStringLiteral("--type RGB24 a.png b.png")).exit, 0);
    EXPECT_TRUE(samePixels(read("b.png"), makeImage<quint8>(cImgType::RGB24, {{0, 1, 2, 255, 100, 0}})));
    EXPECT_EQ(run(QStringLiteral("--type UInt8 a.png b.tif")).exit, 0);
    EXPECT_TRUE(samePixels(read("b.tif"), makeImage<quint8>(cImgType::UInt8, {{0, 1, 2, 255, 100, 0}}, 3)));
    const Result result = run(QStringLiteral("--type RGB32 a.png c.png"));
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(result.errors,
        QStringLiteral("a.png: error: UInt16 with 3 channels does not convert to RGB32, which has 4\n"));
}

TEST_F(convert, ColourBecomesGreyAndThatIsSaid)
{
    save("a.png", makeImage<quint8>(cImgType::RGB24, {{50, 50, 50, 200, 200, 200}}));
    EXPECT_EQ(run(QStringLiteral("--type UInt8 a.png b.png")).errors,
        QStringLiteral("RGB24 to UInt8, colour to grey, 0 to 255 onto 0 to 255\n"));
    EXPECT_TRUE(samePixels(read("b.png"), makeImage<quint8>(cImgType::UInt8, {{50, 200}})));
}

TEST_F(convert, WhatDoesNotConvertIsRefusedWithWhatDoes)
{
    save("a.npy", makeRandomImage(cImgType::SInt64, 3, 2));
    EXPECT_EQ(run(QStringLiteral("--type Float64 a.npy b.npy")).errors,
        QStringLiteral(
            "a.npy: error: SInt64 does not convert to Float64\n  help: it converts to no other type\n"));
    save("c.npy", makeRandomImage(cImgType::UInt8, 3, 2));
    EXPECT_EQ(run(QStringLiteral("--type UInt32 c.npy b.npy")).errors,
        QStringLiteral(
            "c.npy: error: UInt8 does not convert to UInt32\n"
            "  help: it converts to RGB24, RGB32, UInt16, SInt8, SInt16, SInt32, Float32, Float64\n"));
}

TEST_F(convert, TakesManyFilesAndNamesThoseThatFail)
{
    writeFrames(QStringLiteral("in"), 3, cImgType::UInt16);
    write(QStringLiteral("in/f1.png"), "this is no picture");
    const Result result = run(QStringLiteral("--type UInt8 in/*.png missing.png out/{index}_{stem}.tif"));
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(result.errors,
        QStringLiteral("in/f1.png: error: PNG: Not a PNG file\n"
                       "missing.png: error: No such file or directory\n"
                       "UInt16 to UInt8, 0 to 65535 onto 0 to 255: 2 files\n"
                       "2 of 4 files converted, 2 failed\n"));
    EXPECT_EQ(filesIn(QStringLiteral("out")),
        (QStringList {QStringLiteral("0000_f0.tif"), QStringLiteral("0002_f2.tif")}));
    const Result list = tarn({QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("l/{stem}.npy")},
        "in/f0.png\nin/f2.png\n");
    EXPECT_EQ(list.exit, 0);
    EXPECT_EQ(list.errors, QStringLiteral("2 of 2 files converted, 0 failed\n"));
    EXPECT_EQ(
        filesIn(QStringLiteral("l")), (QStringList {QStringLiteral("f0.npy"), QStringLiteral("f2.npy")}));
}

TEST_F(convert, WritesOverNoInputAndNoOutput)
{
    writeFrames(QStringLiteral("a"), 1);
    writeFrames(QStringLiteral("b"), 1);
    Result result = run(QStringLiteral("a/f0.png a/f0.png"));
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(
        result.errors, QStringLiteral("a/f0.png: error: a/f0.png is an input and is not written over\n"));
    result = run(QStringLiteral("a b out/{stem}.tif"));
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(result.errors,
        QStringLiteral("b/f0.png: error: out/f0.tif was written from a/f0.png already\n"
                       "  help: put {index} into the name\n"
                       "1 of 2 files converted, 1 failed\n"));
    EXPECT_TRUE(samePixels(read("out/f0.tif"), read("a/f0.png")));
}

TEST_F(convert, RefusesWhatItDoesNotUnderstand)
{
    writeFrames(QStringLiteral("in"), 2);
    const std::pair<const char*, const char*> rows[] = {
        {"in", "expected an input and an output, found 1\n  help: 'tarn convert --help' tells more\n"},
        {"in/f0.png out",
            "unknown format of the output 'out', expected one of the extensions bmp, jpeg, jpg, npy, pam, "
            "pfm, pgm, png, pnm, ppm, tif, tiff, tis, found none\n"},
        {"in/f0.png o.gif",
            "unknown format of the output 'o.gif', expected one of the extensions bmp, jpeg, jpg, npy, "
            "pam, pfm, pgm, png, pnm, ppm, tif, tiff, tis, found '.gif'\n"},
        {"in o.png",
            "2 inputs would be written to the one file 'o.png'\n  help: put {stem} or {index} into the "
            "name\n"},
        {"nothing*.png o.png", "no file matches 'nothing*.png'\n"},
        {"in/f0.png o{x}.png",
            "unknown placeholder, expected {stem}, {index}, {stamp} or {port}, found {x}\n"},
        {"--type UInt7 in/f0.png o.png", "unknown pixel type, found 'UInt7'\n  help: did you mean 'UInt"},
        {"--range 0,1 in/f0.png o.png", "--range needs --type, which says onto which values to stretch\n"},
        {"--type UInt8 --range 1 in/f0.png o.png",
            "--range expects LOW,HIGH with LOW below HIGH, found '1'\n"},
        {"--type UInt8 --range 1,x in/f0.png o.png",
            "--range expects LOW,HIGH with LOW below HIGH, found '1,x'\n"},
        {"--type UInt8 --range 5,5 in/f0.png o.png",
            "--range expects LOW,HIGH with LOW below HIGH, found '5,5'\n"},
        {"--type UInt8 --range 1,2,3 in/f0.png o.png",
            "--range expects LOW,HIGH with LOW below HIGH, found '1,2,3'\n"},
        {"--type UInt8 --range 0,nan in/f0.png o.png",
            "--range expects LOW,HIGH with LOW below HIGH, found '0,nan'\n"},
        {"--tipe UInt8 in/f0.png o.png", "unknown option, found '--tipe'\n  help: did you mean '--type'?\n"},
    };
    for (const auto& [words, errors] : rows) {
        const Result result = run(QString::fromUtf8(words));
        EXPECT_EQ(result.exit, 2) << words;
        EXPECT_TRUE(
            result.errors.startsWith(QStringLiteral("tarn convert: error: ") + QString::fromUtf8(errors)))
            << words << "\n"
            << result.errors.toStdString();
    }
    EXPECT_EQ(filesIn(QString()), QStringList());
}

TEST_F(convert, HelpIsAResult)
{
    const Result result = run(QStringLiteral("--help"));
    EXPECT_EQ(result.exit, 0);
    EXPECT_TRUE(result.output.startsWith(QStringLiteral("usage: tarn convert [options] INPUT... OUTPUT\n")));
    EXPECT_EQ(result.errors, QString());
}

// ---- the conversion itself ----

TEST_F(convert, TheImagesOwnTypeWithoutARangeLeavesItAlone)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 5, 4, 3);
    const cConvertedImage same = host::convertImage(image, cImgType::UInt8, {});
    EXPECT_EQ(same.image.getConstData(), image.getConstData());
    EXPECT_EQ(same.text, QString());
}

TEST_F(convert, TheImagesOwnTypeWithARangeIsStretchedWithinIt)
{
    const cImg image = makeImage<quint8>(cImgType::UInt8, {{0, 64, 128, 255}});
    const cConvertedImage stretched = host::convertImage(image, cImgType::UInt8, cDblRange(64, 128));
    EXPECT_EQ(stretched.outside, 2u);
    EXPECT_EQ(stretched.image.getPixel<quint8>(1, 0), 0);
    EXPECT_NEAR(stretched.image.getPixel<quint8>(2, 0), 255, 2);
    EXPECT_EQ(stretched.text, QStringLiteral("UInt8 to UInt8, 64 to 128 onto 0 to 255"));
}

TEST_F(convert, NumbersThatAreNoneLieOutside)
{
    const cImg image
        = makeImage<float>(cImgType::Float32, {{0.0f, std::numeric_limits<float>::quiet_NaN(), 2.0f}});
    EXPECT_EQ(host::convertImage(image, cImgType::UInt8, cDblRange(0, 1)).outside, 2u);
}

TEST_F(convert, PairsConvertToThemselvesOnly)
{
    const cImg image = makeRandomImage(cImgType::Complex, 3, 2);
    EXPECT_TRUE(samePixels(host::convertImage(image, cImgType::Complex, cDblRange(0, 1)).image, image));
    EXPECT_EQ(messageOf([&] { host::convertImage(image, cImgType::Float32, {}); }),
        "Complex does not convert to Float32\nit converts to no other type");
}

} // namespace
