// What others write as TIFF.

#include "FormatsTest.h"

#include <formats/cTiffFormat.h>

#include <tiffio.h>

namespace {

using tiffFormat = FormatsTest;

/** A TIFF file by libtiff's own means; `i_fields` sets what differs from grey of 8 bits. */
template <class Fields, class Pixels>
QString makeTiff(const QString& i_path, const char* i_mode, int i_width, int i_height, Fields&& i_fields,
    Pixels&& i_pixels)
{
    TIFF* tiff = TIFFOpen(QFile::encodeName(i_path).constData(), i_mode);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, i_width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, i_height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    i_fields(tiff);
    i_pixels(tiff);
    TIFFClose(tiff);
    return i_path;
}

void writeRow(TIFF* i_tiff, unsigned i_row, QByteArray i_bytes, unsigned i_plane = 0)
{
    EXPECT_EQ(TIFFWriteScanline(i_tiff, i_bytes.data(), i_row, std::uint16_t(i_plane)), 1);
}

TEST_F(tiffFormat, InForeignByteOrderAndCompressedIsReadToTheBit)
{
    const cImg expected = makeRandomImage(cImgType::UInt16, 17, 9, 3);
    for (const char* mode : {"wb", "wl"}) {
        const QString name = makeTiff(
            path("a.tif"), mode, 17, 9,
            [](TIFF* t) {
                TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 16);
                TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 3);
                TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
                TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
                TIFFSetField(t, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
            },
            [&](TIFF* t) {
                for (unsigned y = 0; y < 9; ++y)
                    writeRow(
                        t, y, QByteArray(reinterpret_cast<const char*>(expected.getRow<quint16>(y)), 17 * 6));
            });
        EXPECT_TRUE(samePixels(host::readImage(name), expected)) << mode;
    }
}

TEST_F(tiffFormat, InTilesIsReadToTheBit)
{
    const cImg expected = makeRandomImage(cImgType::UInt8, 37, 21);
    const QString name = makeTiff(
        path("a.tif"), "w", 37, 21,
        [](TIFF* t) {
            TIFFSetField(t, TIFFTAG_TILEWIDTH, 16);
            TIFFSetField(t, TIFFTAG_TILELENGTH, 16);
        },
        [&](TIFF* t) {
            for (unsigned ty = 0; ty < 21; ty += 16)
                for (unsigned tx = 0; tx < 37; tx += 16) {
                    QByteArray tile(256, '\0');
                    for (unsigned y = ty; y < std::min(ty + 16, 21u); ++y)
                        for (unsigned x = tx; x < std::min(tx + 16, 37u); ++x)
                            tile[int((y - ty) * 16 + x - tx)] = char(expected.getPixel<quint8>(x, y));
                    EXPECT_EQ(TIFFWriteTile(t, tile.data(), tx, ty, 0, 0), 256);
                }
        });
    EXPECT_TRUE(samePixels(host::readImage(name), expected));
}

TEST_F(tiffFormat, InSeparatePlanesBecomesPixels)
{
    const QString name = makeTiff(
        path("a.tif"), "w", 2, 1,
        [](TIFF* t) {
            TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 3);
            TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
            TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_SEPARATE);
        },
        [](TIFF* t) {
            writeRow(t, 0, QByteArray("\x01\x04", 2), 0);
            writeRow(t, 0, QByteArray("\x02\x05", 2), 1);
            writeRow(t, 0, QByteArray("\x03\x06", 2), 2);
        });
    EXPECT_TRUE(samePixels(host::readImage(name), makeImage<quint8>(cImgType::RGB24, {{1, 2, 3, 4, 5, 6}})));
}

TEST_F(tiffFormat, WithWhiteAsZeroIsTurnedRound)
{
    const QString name = makeTiff(
        path("a.tif"), "w", 3, 1,
        [](TIFF* t) { TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE); },
        [](TIFF* t) { writeRow(t, 0, QByteArray("\x00\x01\xff", 3)); });
    EXPECT_TRUE(samePixels(host::readImage(name), makeImage<quint8>(cImgType::UInt8, {{255, 254, 0}})));
}

TEST_F(tiffFormat, OfFourBitsFillsTheRange)
{
    const QString name = makeTiff(
        path("a.tif"), "w", 3, 1, [](TIFF* t) { TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 4); },
        [](TIFF* t) { writeRow(t, 0, QByteArray("\x0f\x70", 2)); });
    EXPECT_TRUE(samePixels(host::readImage(name), makeImage<quint8>(cImgType::UInt8, {{0, 255, 119}})));
}

TEST_F(tiffFormat, PalettesBecomeColour)
{
    const QString name = makeTiff(
        path("a.tif"), "w", 2, 1,
        [](TIFF* t) {
            std::vector<std::uint16_t> red(256), green(256), blue(256);
            red[5] = 257 * 200;
            green[5] = 257 * 100;
            blue[5] = 257 * 50;
            TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_PALETTE);
            TIFFSetField(t, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
        },
        [](TIFF* t) { writeRow(t, 0, QByteArray("\x05\x00", 2)); });
    EXPECT_TRUE(
        samePixels(host::readImage(name), makeImage<quint8>(cImgType::RGB24, {{200, 100, 50, 0, 0, 0}})));
}

TEST_F(tiffFormat, OfHalfFloatsIsRefused)
{
    const QString name = makeTiff(
        path("a.tif"), "w", 2, 1,
        [](TIFF* t) {
            TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 16);
            TIFFSetField(t, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
        },
        [](TIFF* t) { writeRow(t, 0, QByteArray(4, '\0')); });
    EXPECT_EQ(messageOf([&] { host::readImage(name); }),
        "TIFF: no pixel type has 1 sample of 16 bits in sample format 3");
}

/** A big-endian file of one pixel, made by hand. */
QByteArray makePair(std::uint16_t i_bits, std::uint16_t i_format, const QByteArray& i_pixel)
{
    QByteArray file("MM\0\x2a\0\0\0\x08\0\x09", 10);
    const auto entry = [&file](int i_tag, bool i_long, std::uint32_t i_value) {
        const auto put = [&file](std::uint32_t i_number, int i_bytes) {
            for (int byte = i_bytes - 1; byte >= 0; --byte)
                file.append(char(i_number >> (8 * byte)));
        };
        put(std::uint32_t(i_tag), 2);
        put(i_long ? 4 : 3, 2);
        put(1, 4);
        put(i_value, i_long ? 4 : 2);
        if (!i_long)
            put(0, 2);
    };
    entry(TIFFTAG_IMAGEWIDTH, false, 1);
    entry(TIFFTAG_IMAGELENGTH, false, 1);
    entry(TIFFTAG_BITSPERSAMPLE, false, i_bits);
    entry(TIFFTAG_COMPRESSION, false, COMPRESSION_NONE);
    entry(TIFFTAG_PHOTOMETRIC, false, PHOTOMETRIC_MINISBLACK);
    entry(TIFFTAG_STRIPOFFSETS, true, 10 + 9 * 12 + 4);
    entry(TIFFTAG_ROWSPERSTRIP, false, 1);
    entry(TIFFTAG_STRIPBYTECOUNTS, true, std::uint32_t(i_pixel.size()));
    entry(TIFFTAG_SAMPLEFORMAT, false, i_format);
    return file + QByteArray(4, '\0') + i_pixel;
}

TEST_F(tiffFormat, PairsInForeignByteOrderKeepTheirOrder)
{
    EXPECT_TRUE(samePixels(
        decode(cTiffFormat(), makePair(32, SAMPLEFORMAT_COMPLEXINT, QByteArray("\x01\x02\xff\xfe", 4))),
        makeImage<qint16>(cImgType::Gradient16, {{0x0102, -2}})));
    EXPECT_TRUE(
        samePixels(decode(cTiffFormat(),
                       makePair(64, SAMPLEFORMAT_COMPLEXINT, QByteArray("\0\0\0\x05\xff\xff\xff\xfd", 8))),
            makeImage<qint32>(cImgType::Gradient32, {{5, -3}})));
    EXPECT_TRUE(
        samePixels(decode(cTiffFormat(),
                       makePair(64, SAMPLEFORMAT_COMPLEXIEEEFP, QByteArray("\x3f\x80\0\0\xc0\0\0\0", 8))),
            makeImage<float>(cImgType::Complex, {{1.0f, -2.0f}})));
}

TEST_F(tiffFormat, AHeaderThatClaimsTooMuchIsRefusedBeforeMemoryIsTaken)
{
    QByteArray file = makePair(64, SAMPLEFORMAT_IEEEFP, QByteArray(8, '\0'));
    const auto setSide = [&file](int i_entry, std::uint16_t i_pixels) {
        file[10 + 12 * i_entry + 8] = char(i_pixels >> 8);
        file[10 + 12 * i_entry + 9] = char(i_pixels);
    };
    setSide(0, 16000);
    setSide(1, 16000);
    EXPECT_EQ(messageOf([&] { decode(cTiffFormat(), file); }),
        "the file is too short for the size in its header: 130 bytes, expected 2048000000 at the least");
    setSide(0, 65535);
    setSide(1, 65535);
    EXPECT_EQ(messageOf([&] { decode(cTiffFormat(), file); }),
        "the image is too large, 65535x65535 pixels of 8 bytes, at most 2 GiB are read or written");
}

} // namespace
