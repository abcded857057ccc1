#include <cFileFormat.h>
#include <cPngFormat.h>
#include <cTiffFormat.h>
#include <support/guiApplication.h>
#include <support/images.h>
#include <support/messageOf.h>
#include <support/qtPrinters.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QMetaEnum>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <png.h>
#include <tarnbase/cMapObj.h>
#include <tiffio.h>

namespace {

class fileFormats : public testing::Test {
protected:
    void SetUp() override
    {
        guiApplication();
        host::registerFileFormats();
        ASSERT_TRUE(m_folder.isValid());
    }
    QString path(const char* i_name) const { return m_folder.filePath(QString::fromUtf8(i_name)); }
    void writeBytes(const char* i_name, const QByteArray& i_bytes) const
    {
        QFile file(path(i_name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(i_bytes), i_bytes.size());
    }
    QByteArray bytesOf(const char* i_name) const
    {
        QFile file(path(i_name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    cImg read(const char* i_name) const { return host::readImage(path(i_name)); }

    QTemporaryDir m_folder;
};

const cFileFormat* formatOf(const char* i_name)
{
    for (const cImgIO* handler : cImgIO::getImgIOSet())
        if (handler->getName() == QLatin1String(i_name))
            return dynamic_cast<const cFileFormat*>(handler);
    return nullptr;
}

struct File {
    const char* format;
    const char* name;
};
void PrintTo(const File& i_file, std::ostream* o_stream) { *o_stream << i_file.name; }

class everyPixelType : public fileFormats, public testing::WithParamInterface<File> {};

TEST_P(everyPixelType, IsReadBackAsItselfOrRefused)
{
    const cFileFormat* format = formatOf(GetParam().format);
    ASSERT_TRUE(format);
    const QString name = path(GetParam().name);
    int held = 0;
    for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type)
        for (unsigned channels = 1; channels <= 5; ++channels) {
            const auto id = cImgType::ImageTypes(type);
            const cImg image = makeRandomImage(id, 13, 7, channels, unsigned(type));
            SCOPED_TRACE(imageSupport::structureText(image));
            if (!format->canHold(id, image.getNumChannels())) {
                EXPECT_THROW(host::writeImage(name, image), std::runtime_error);
                continue;
            }
            ++held;
            ASSERT_EQ(messageOf([&] { host::writeImage(name, image); }), "no failure");
            EXPECT_TRUE(samePixels(host::readImage(name), image));
        }
    EXPECT_GT(held, 0);
}

TEST_P(everyPixelType, OfAViewIsWrittenWithoutWhatLiesAround)
{
    const cFileFormat* format = formatOf(GetParam().format);
    for (const auto type : {cImgType::UInt8, cImgType::RGB24, cImgType::UInt16, cImgType::Float32}) {
        if (!format->canHold(type, type == cImgType::RGB24 ? 3 : 1))
            continue;
        const cImg whole = makeRandomImage(type, 21, 11);
        const cImg view(whole, false, cRect<int>(3, 2, 10, 5));
        host::writeImage(path(GetParam().name), view);
        EXPECT_TRUE(samePixels(read(GetParam().name), view));
    }
}

TEST_P(everyPixelType, OfOnePixelIsReadBack)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 1, 1);
    host::writeImage(path(GetParam().name), image);
    EXPECT_TRUE(samePixels(read(GetParam().name), image));
}

INSTANTIATE_TEST_SUITE_P(Lossless, everyPixelType,
    testing::Values(File {"PNG", "a.png"}, File {"BMP", "a.bmp"}, File {"TIFF", "a.tif"}),
    [](const auto& i_row) { return i_row.param.format; });

TEST_F(fileFormats, TiffHoldsEveryPixelType)
{
    const cFileFormat* tiff = formatOf("TIFF");
    for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type) {
        const cImg layout(cImgType::ImageTypes(type), 1, 1, 2);
        EXPECT_TRUE(tiff->canHold(cImgType::ImageTypes(type), layout.getNumChannels())) << type;
    }
}

TEST_F(fileFormats, JpegKeepsGreyAndColourCloseToWhatTheyWere)
{
    const cImg grey = generateImage(
        cImgType::UInt8, 32, 24, [](unsigned x, unsigned y) { return quint8(4 * x + 3 * y); });
    host::writeImage(path("grey.jpg"), grey);
    const cImg greyBack = read("grey.jpg");
    ASSERT_TRUE(greyBack.isKindOf(cImgType::UInt8));
    // Quality 95 quantises smooth ramps by a step or two.
    for (unsigned y = 0; y < 24; ++y)
        for (unsigned x = 0; x < 32; ++x)
            EXPECT_NEAR(greyBack.getPixel<quint8>(x, y), grey.getPixel<quint8>(x, y), 4);
    const cImg red
        = makeImage<quint8>(cImgType::RGB24, {{200, 20, 30, 200, 20, 30}, {200, 20, 30, 200, 20, 30}});
    host::writeImage(path("red.jpeg"), red);
    const cImg redBack = read("red.jpeg");
    ASSERT_TRUE(redBack.isKindOf(cImgType::RGB24));
    EXPECT_NEAR(redBack.getRow<quint8>(0)[0], 200, 4);
    EXPECT_NEAR(redBack.getRow<quint8>(0)[1], 20, 4);
}

struct Refusal {
    const char* file;
    cImgType::ImageTypes type;
    unsigned channels;
    const char* message;
};

TEST_F(fileFormats, ATypeThatAFormatCannotHoldIsRefusedWithTheFormatsThatCan)
{
    const Refusal refusals[] = {
        {"a.png", cImgType::Float32, 1, "PNG cannot hold Float32 with 1 channel, formats that can: TIFF"},
        {"a.png", cImgType::UInt8, 3, "PNG cannot hold UInt8 with 3 channels, formats that can: TIFF"},
        {"a.png", cImgType::Gradient16, 2, "PNG cannot hold Gradient16, formats that can: TIFF"},
        {"a.jpg", cImgType::UInt16, 1, "JPEG cannot hold UInt16 with 1 channel, formats that can: PNG, TIFF"},
        {"a.jpg", cImgType::RGB32, 4, "JPEG cannot hold RGB32, formats that can: PNG, TIFF"},
        {"a.bmp", cImgType::SInt16, 1, "BMP cannot hold SInt16 with 1 channel, formats that can: TIFF"},
    };
    for (const Refusal& refusal : refusals) {
        const cImg image = makeRandomImage(refusal.type, 3, 2, refusal.channels);
        EXPECT_EQ(messageOf([&] { host::writeImage(path(refusal.file), image); }), refusal.message);
        EXPECT_FALSE(QFile::exists(path(refusal.file)));
    }
}

TEST_F(fileFormats, AFailedWriteLeavesTheOldFile)
{
    writeBytes("a.png", "old");
    EXPECT_THROW(
        host::writeImage(path("a.png"), makeRandomImage(cImgType::Float64, 3, 2)), std::runtime_error);
    EXPECT_THROW(host::writeImage(path("a.png"), cImg()), std::runtime_error);
    EXPECT_EQ(bytesOf("a.png"), "old");
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), QStringList {QStringLiteral("a.png")});
}

TEST_F(fileFormats, FoldersOnTheWayAreMade)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 3, 2);
    host::writeImage(path("new/deep/a.png"), image);
    EXPECT_TRUE(samePixels(read("new/deep/a.png"), image));
    EXPECT_EQ(messageOf([&] { host::writeImage(path("new/deep/a.png/b.png"), image); }),
        "the folder '" + path("new/deep/a.png").toStdString() + "' cannot be made");
}

TEST_F(fileFormats, TheExtensionIsMatchedAsAWhole)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 3, 2);
    for (const char* name : {"a.PNG", "a.Jpg", "a.jpeg", "a.bmp", "a.tif", "a.TIFF"})
        EXPECT_EQ(messageOf([&] { host::writeImage(path(name), image); }), "no failure") << name;
    const char* known = "unknown file format, expected one of bmp, jpeg, jpg, png, tif, tiff, found ";
    EXPECT_EQ(messageOf([&] { host::writeImage(path("a.p"), image); }), known + std::string("'.p'"));
    EXPECT_EQ(messageOf([&] { host::writeImage(path("a.jp"), image); }), known + std::string("'.jp'"));
    EXPECT_EQ(messageOf([&] { host::readImage(path("a")); }), known + std::string("no extension"));
    EXPECT_EQ(messageOf([&] { host::readImage(path("a.")); }), known + std::string("no extension"));
    EXPECT_TRUE(host::canRead(QStringLiteral("x.tif")));
    EXPECT_FALSE(host::canRead(QStringLiteral("x.*")));
}

TEST_F(fileFormats, NoHandlersFilterContainsAnothersExtension)
{
    const QStringList names {
        QStringLiteral("PNG"), QStringLiteral("JPEG"), QStringLiteral("BMP"), QStringLiteral("TIFF")};
    for (const QString& name : names) {
        const auto patterns = formatOf(qPrintable(name))->getFilter().split(u' ');
        for (const QString& pattern : patterns) {
            // The registry's own search by substring finds the same handler.
            EXPECT_EQ(cImgIO::findReadHandler(QStringLiteral("x") + pattern.mid(1))->getName(), name);
            EXPECT_EQ(cImgIO::findSaveHandler(QStringLiteral("x") + pattern.mid(1))->getName(), name);
        }
    }
}

TEST_F(fileFormats, ServeTheImageCoreToo)
{
    const cImg image = makeRandomImage(cImgType::UInt16, 5, 4);
    EXPECT_TRUE(image.writeImg(path("a.png")));
    EXPECT_TRUE(samePixels(cImg::openImg(path("a.png")), image));
    const QByteArray bytes = bytesOf("a.png");
    EXPECT_TRUE(samePixels(
        cPngFormat().openImgFromMemory(bytes.constData(), unsigned(bytes.size()), cMapObj()), image));
    EXPECT_FALSE(makeRandomImage(cImgType::SInt8, 2, 2).writeImg(path("b.png")));
    EXPECT_FALSE(cImg::openImg(path("missing.png")).isValid());
    EXPECT_FALSE(cPngFormat().openImgFromMemory("x", 1, cMapObj()).isValid());
}

TEST_F(fileFormats, SayWhyAFileCannotBeRead)
{
    EXPECT_EQ(messageOf([&] { read("missing.png"); }), "No such file or directory");
    writeBytes("empty.png", "");
    EXPECT_EQ(messageOf([&] { read("empty.png"); }), "the file is empty");
    writeBytes("text.png", "this is no picture");
    EXPECT_EQ(messageOf([&] { read("text.png"); }), "PNG: Not a PNG file");
    writeBytes("text.jpg", "this is no picture");
    EXPECT_EQ(messageOf([&] { read("text.jpg"); }), "JPEG: damaged, or not of this format");
    writeBytes("text.bmp", "this is no picture");
    EXPECT_EQ(messageOf([&] { read("text.bmp"); }), "BMP: damaged, or not of this format");
    writeBytes("text.tif", "this is no picture");
    EXPECT_EQ(messageOf([&] { read("text.tif"); }).substr(0, 6), "TIFF: ");
    QDir(m_folder.path()).mkdir(QStringLiteral("folder.png"));
    EXPECT_EQ(messageOf([&] { read("folder.png"); }), "it is a folder");
}

// ---- damage ----

class damagedFiles : public fileFormats, public testing::WithParamInterface<File> {};

TEST_P(damagedFiles, CutAnywhereAreRefusedOrReadWithoutHarm)
{
    host::writeImage(path(GetParam().name), makeRandomImage(cImgType::UInt8, 9, 5));
    const QByteArray whole = bytesOf(GetParam().name);
    int refused = 0;
    for (int length = 0; length < whole.size(); ++length) {
        const auto* data = reinterpret_cast<const unsigned char*>(whole.constData());
        // A copy of exactly this length, so that reading past its end is an error that the sanitizers see.
        const std::vector<unsigned char> cut(data, data + length);
        try {
            formatOf(GetParam().format)->decode(cut.data(), cut.size());
        } catch (const std::exception&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, whole.size() / 4);
}

TEST_P(damagedFiles, WithAnyByteChangedDoNoHarm)
{
    host::writeImage(path(GetParam().name), makeRandomImage(cImgType::UInt8, 9, 5));
    const QByteArray whole = bytesOf(GetParam().name);
    for (int place = 0; place < std::min(whole.size(), 700); ++place)
        for (const char value : {'\x00', '\x01', '\x7f', '\xff'}) {
            QByteArray changed = whole;
            changed[place] = value;
            try {
                const cImg image = formatOf(GetParam().format)
                                       ->decode(reinterpret_cast<const unsigned char*>(changed.constData()),
                                           std::size_t(changed.size()));
                EXPECT_TRUE(image.isValid());
            } catch (const std::exception&) {
                // refused
            }
        }
}

INSTANTIATE_TEST_SUITE_P(EachFormat, damagedFiles,
    testing::Values(
        File {"PNG", "a.png"}, File {"JPEG", "a.jpg"}, File {"BMP", "a.bmp"}, File {"TIFF", "a.tif"}),
    [](const auto& i_row) { return i_row.param.format; });

TEST_F(fileFormats, AHeaderThatClaimsTooMuchIsRefusedBeforeMemoryIsTaken)
{
    // 60000x60000 grey, with a sound checksum and nothing behind it.
    const QByteArray png
        = QByteArray::fromHex("89504e470d0a1a0a0000000d494844520000ea600000ea600800000000d7bd5a1c"
                              "0000000049454e44ae426082");
    writeBytes("bomb.png", png);
    const std::string message = messageOf([&] { read("bomb.png"); });
    EXPECT_TRUE(message.find("the image is too large") == 0 || message.find("PNG: ") == 0) << message;

    QByteArray bmp(64, '\0');
    bmp.replace(0, 2, "BM");
    bmp[10] = 54;
    bmp[14] = 40;
    bmp[20] = 1; // 65536 x 65536
    bmp[24] = 1;
    bmp[26] = 1;
    bmp[28] = 24;
    writeBytes("bomb.bmp", bmp);
    EXPECT_NE(messageOf([&] { read("bomb.bmp"); }), "no failure");
}

// ---- what others write ----

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

cImg decodePng(const QByteArray& i_bytes)
{
    return cPngFormat().decode(
        reinterpret_cast<const unsigned char*>(i_bytes.constData()), std::size_t(i_bytes.size()));
}

TEST_F(fileFormats, PngOfOneBitBecomesBlackAndWhite)
{
    const QByteArray bytes = makePng(
        9, 2, 1, PNG_COLOR_TYPE_GRAY, false, {QByteArray("\xa5\x80", 2), QByteArray("\x5a\x00", 2)});
    EXPECT_TRUE(samePixels(decodePng(bytes),
        makeImage<quint8>(
            cImgType::UInt8, {{255, 0, 255, 0, 0, 255, 0, 255, 255}, {0, 255, 0, 255, 255, 0, 255, 0, 0}})));
}

TEST_F(fileFormats, PngPalettesBecomeColour)
{
    const QByteArray bytes = makePng(3, 1, 8, PNG_COLOR_TYPE_PALETTE, false, {QByteArray("\x02\x00\x01", 3)},
        {{1, 2, 3}, {40, 50, 60}, {255, 0, 128}});
    EXPECT_TRUE(samePixels(
        decodePng(bytes), makeImage<quint8>(cImgType::RGB24, {{255, 0, 128, 1, 2, 3, 40, 50, 60}})));
}

TEST_F(fileFormats, PngTransparentGreyBecomesASecondChannel)
{
    const QByteArray bytes
        = makePng(3, 1, 8, PNG_COLOR_TYPE_GRAY, false, {QByteArray("\x07\x64\x07", 3)}, {}, 100);
    EXPECT_TRUE(
        samePixels(decodePng(bytes), makeImage<quint8>(cImgType::UInt8, {{7, 255, 100, 0, 7, 255}}, 2)));
}

TEST_F(fileFormats, PngInterlacedOf16BitsIsReadToTheBit)
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

TEST_F(fileFormats, BmpWithAColourTableBecomesColourUnlessItIsGrey)
{
    QImage indexed(2, 1, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(10, 20, 30), qRgb(200, 100, 0)});
    indexed.setPixel(0, 0, 1);
    indexed.setPixel(1, 0, 0);
    ASSERT_TRUE(indexed.save(path("c.bmp"), "BMP"));
    EXPECT_TRUE(samePixels(read("c.bmp"), makeImage<quint8>(cImgType::RGB24, {{200, 100, 0, 10, 20, 30}})));
    QImage mono(9, 1, QImage::Format_Mono);
    mono.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    for (int x = 0; x < 9; ++x)
        mono.setPixel(x, 0, x % 2);
    ASSERT_TRUE(mono.save(path("m.bmp"), "BMP"));
    EXPECT_TRUE(
        samePixels(read("m.bmp"), makeImage<quint8>(cImgType::UInt8, {{0, 255, 0, 255, 0, 255, 0, 255, 0}})));
}

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

TEST_F(fileFormats, TiffInForeignByteOrderAndCompressedIsReadToTheBit)
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

TEST_F(fileFormats, TiffInTilesIsReadToTheBit)
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

TEST_F(fileFormats, TiffInSeparatePlanesBecomesPixels)
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

TEST_F(fileFormats, TiffWithWhiteAsZeroIsTurnedRound)
{
    const QString name = makeTiff(
        path("a.tif"), "w", 3, 1,
        [](TIFF* t) { TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE); },
        [](TIFF* t) { writeRow(t, 0, QByteArray("\x00\x01\xff", 3)); });
    EXPECT_TRUE(samePixels(host::readImage(name), makeImage<quint8>(cImgType::UInt8, {{255, 254, 0}})));
}

TEST_F(fileFormats, TiffOfFourBitsFillsTheRange)
{
    const QString name = makeTiff(
        path("a.tif"), "w", 3, 1, [](TIFF* t) { TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 4); },
        [](TIFF* t) { writeRow(t, 0, QByteArray("\x0f\x70", 2)); });
    EXPECT_TRUE(samePixels(host::readImage(name), makeImage<quint8>(cImgType::UInt8, {{0, 255, 119}})));
}

TEST_F(fileFormats, TiffPalettesBecomeColour)
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

TEST_F(fileFormats, TiffOfHalfFloatsIsRefused)
{
    const QString name = makeTiff(
        path("a.tif"), "w", 2, 1,
        [](TIFF* t) {
            TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 16);
            TIFFSetField(t, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
        },
        [](TIFF* t) { writeRow(t, 0, QByteArray(4, '\0')); });
    EXPECT_EQ(messageOf([&] { host::readImage(name); }),
        "TIFF: no pixel type has 1 samples of 16 bits in sample format 3");
}

} // namespace
