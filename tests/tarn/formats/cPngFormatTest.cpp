// What others write as PNG.

#include "FormatsTest.h"

#include <formats/cPngFormat.h>

#include <png.h>

namespace {

using pngFormat = FormatsTest;

/** A PNG file as libpng writes it for these settings. */
QByteArray makePng(int i_width, int i_height, int i_bits, int i_colour, bool i_interlaced,
    const QList<QByteArray>& i_rows, const QVector<png_color>& i_palette = {}, int i_transparent = -1)
{
    QByteArray bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    const auto write = [](png_structp i_png, png_bytep i_data, std::size_t i_count) {
        static_cast<QByteArray*>(png_get_io_ptr(i_png))
            ->append(reinterpret_cast<const char*>(i_data), int(i_count));
    };
    png_set_write_fn(png, &bytes, write, [](png_structp) {});
    png_set_IHDR(png, info, png_uint_32(i_width), png_uint_32(i_height), i_bits, i_colour,
        i_interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
        PNG_FILTER_TYPE_DEFAULT);
    if (!i_palette.isEmpty())
        png_set_PLTE(png, info, i_palette.constData(), i_palette.size());
    if (i_transparent >= 0) {
        png_color_16 colour = {};
        colour.gray = png_uint_16(i_transparent);
        png_set_tRNS(png, info, nullptr, 0, &colour);
    }
    png_write_info(png, info);
    std::vector<png_bytep> rows;
    for (const QByteArray& row : i_rows)
        rows.push_back(reinterpret_cast<png_bytep>(const_cast<char*>(row.constData())));
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

cImg decodePng(const QByteArray& i_bytes) { return decode(cPngFormat(), i_bytes); }

TEST_F(pngFormat, OfOneBitBecomesBlackAndWhite)
{
    const QByteArray bytes = makePng(
        9, 2, 1, PNG_COLOR_TYPE_GRAY, false, {QByteArray("\xa5\x80", 2), QByteArray("\x5a\x00", 2)});
    EXPECT_TRUE(samePixels(decodePng(bytes),
        makeImage<quint8>(
            cImgType::UInt8, {{255, 0, 255, 0, 0, 255, 0, 255, 255}, {0, 255, 0, 255, 255, 0, 255, 0, 0}})));
}

TEST_F(pngFormat, PalettesBecomeColour)
{
    const QByteArray bytes = makePng(3, 1, 8, PNG_COLOR_TYPE_PALETTE, false, {QByteArray("\x02\x00\x01", 3)},
        {{1, 2, 3}, {40, 50, 60}, {255, 0, 128}});
    EXPECT_TRUE(samePixels(
        decodePng(bytes), makeImage<quint8>(cImgType::RGB24, {{255, 0, 128, 1, 2, 3, 40, 50, 60}})));
}

TEST_F(pngFormat, TransparentGreyBecomesASecondChannel)
{
    const QByteArray bytes
        = makePng(3, 1, 8, PNG_COLOR_TYPE_GRAY, false, {QByteArray("\x07\x64\x07", 3)}, {}, 100);
    EXPECT_TRUE(
        samePixels(decodePng(bytes), makeImage<quint8>(cImgType::UInt8, {{7, 255, 100, 0, 7, 255}}, 2)));
}

TEST_F(pngFormat, InterlacedOf16BitsIsReadToTheBit)
{
    const int width = 19, height = 11;
    const cImg expected = makeRandomImage(cImgType::UInt16, width, height);
    QList<QByteArray> rows;
    for (unsigned y = 0; y < height; ++y) {
        QByteArray row;
        for (unsigned x = 0; x < width; ++x) {
            const auto value = expected.getPixel<quint16>(x, y);
            row.append(char(value >> 8)).append(char(value & 255)); // the file's bytes: high first
        }
        rows.append(row);
    }
    EXPECT_TRUE(samePixels(decodePng(makePng(width, height, 16, PNG_COLOR_TYPE_GRAY, true, rows)), expected));
}

} // namespace
