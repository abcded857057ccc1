// What all formats have in common.

#include "FormatsTest.h"

#include <formats/cPngFormat.h>

#include <QImage>
#include <tarnbase/cMapObj.h>
#include <tarnbase/cTracer.h>
#include <tarnimg/cSupportedImages.h>

namespace {

using fileFormats = FormatsTest;

struct File {
    const char* format;
    const char* name;
};
void PrintTo(const File& i_file, std::ostream* o_stream) { *o_stream << i_file.name; }

std::string nameOf(const testing::TestParamInfo<File>& i_row) { return i_row.param.format; }

/** An image of random bytes: of floats also the numbers that are none, each with bits of its own. */
cImg makeRandomBytes(cImgType::ImageTypes i_type, unsigned i_channels)
{
    cImg image(i_type, 13, 7, i_channels);
    const cImg bytes = makeRandomImage(cImgType::UInt8, image.getYPitch(), 7, 1, unsigned(i_type));
    for (unsigned y = 0; y < 7; ++y)
        std::memcpy(image.row<unsigned char>(y), bytes.getRow<unsigned char>(y), image.getYPitch());
    return image;
}

testing::AssertionResult sameBytes(const cImg& i_actual, const cImg& i_expected)
{
    const testing::AssertionResult same = samePixels(i_actual, i_expected);
    const std::size_t row = std::size_t(i_expected.getWidth()) * i_expected.getImgType().getPixelSize();
    for (unsigned y = 0; same && y < i_expected.getHeight(); ++y)
        if (std::memcmp(i_actual.getRow<unsigned char>(y), i_expected.getRow<unsigned char>(y), row) != 0)
            return testing::AssertionFailure() << "the bits differ in row " << y;
    return same;
}

class everyPixelType : public fileFormats, public testing::WithParamInterface<File> {};

TEST_P(everyPixelType, IsReadBackToTheBitOrRefused)
{
    const cFileFormat* format = formatOf(GetParam().format);
    ASSERT_TRUE(format);
    const QString name = path(GetParam().name);
    int held = 0;
    for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type)
        for (const unsigned channels : {1u, 2u, 3u, 4u, 5u, 7u, 40u}) {
            const auto id = cImgType::ImageTypes(type);
            const cImg image = makeRandomBytes(id, channels);
            SCOPED_TRACE(imageSupport::structureText(image));
            if (!format->canHold(id, image.getNumChannels())) {
                EXPECT_THROW(host::writeImage(name, image), std::runtime_error);
                continue;
            }
            ++held;
            ASSERT_EQ(messageOf([&] { host::writeImage(name, image); }), "no failure");
            EXPECT_TRUE(sameBytes(host::readImage(name), image));
            EXPECT_EQ(host::peekImage(name), cSupportedImages::describe(image));
        }
    EXPECT_GT(held, 0);
}

/** A layout that the format holds. */
cImg makeHeld(const cFileFormat& i_format, unsigned i_width, unsigned i_height)
{
    for (const auto type : {cImgType::UInt8, cImgType::RGB24, cImgType::Float32})
        if (i_format.canHold(type, type == cImgType::RGB24 ? 3 : 1))
            return makeRandomImage(type, i_width, i_height);
    return cImg();
}

TEST_P(everyPixelType, OfAViewIsWrittenWithoutWhatLiesAround)
{
    const cFileFormat& format = *formatOf(GetParam().format);
    for (const auto type : {cImgType::UInt8, cImgType::RGB24, cImgType::UInt16, cImgType::Float32}) {
        if (!format.canHold(type, type == cImgType::RGB24 ? 3 : 1))
            continue;
        const cImg whole = makeRandomImage(type, 21, 11);
        const cImg view(whole, false, cRect<int>(3, 2, 10, 5));
        host::writeImage(path(GetParam().name), view);
        EXPECT_TRUE(samePixels(read(GetParam().name), view));
    }
}

TEST_P(everyPixelType, OverMemoryWithGapsIsWrittenWithoutThem)
{
    const cImg image = makeHeld(*formatOf(GetParam().format), 5, 4);
    const unsigned size = image.getImgType().getPixelSize();
    std::vector<unsigned char> memory(4 * (5 * size + 12), 0xee);
    const cImg gapped(image.getImgType().getTypeId(), 5, 4, size, 5 * size + 12, memory.data(), {});
    for (unsigned y = 0; y < 4; ++y)
        std::memcpy(memory.data() + y * (5 * size + 12), image.getRow<unsigned char>(y), 5 * size);
    host::writeImage(path(GetParam().name), gapped);
    EXPECT_TRUE(samePixels(read(GetParam().name), image));
}

TEST_P(everyPixelType, OfOnePixelIsReadBack)
{
    const cImg image = makeHeld(*formatOf(GetParam().format), 1, 1);
    ASSERT_TRUE(image.isValid());
    host::writeImage(path(GetParam().name), image);
    EXPECT_TRUE(samePixels(read(GetParam().name), image));
}

INSTANTIATE_TEST_SUITE_P(Lossless, everyPixelType,
    testing::Values(File {"PNG", "a.png"}, File {"BMP", "a.bmp"}, File {"TIFF", "a.tif"},
        File {"NPY", "a.npy"}, File {"PGM", "a.pgm"}, File {"PPM", "a.ppm"}, File {"PNM", "a.pnm"},
        File {"PAM", "a.pam"}, File {"PFM", "a.pfm"}, File {"TIS", "a.tis"}),
    nameOf);

/** The channel counts of a type that a format holds, as the manual has them. */
QString heldText(const cFileFormat& i_format, cImgType::ImageTypes i_type)
{
    const unsigned fixed = cImg(i_type, 1, 1, 2).getNumChannels();
    if (fixed != 2 || i_type >= cImgType::Gradient16)
        return i_format.canHold(i_type, fixed) ? QStringLiteral("yes") : QString();
    QStringList held, refused;
    for (unsigned channels = 1; channels <= 8; ++channels)
        (i_format.canHold(i_type, channels) ? held : refused).append(QString::number(channels));
    if (refused.isEmpty())
        return QStringLiteral("any");
    return held.size() > refused.size() ? QStringLiteral("all but ") + refused.join(QStringLiteral(", "))
                                        : held.join(QStringLiteral(", "));
}

TEST_F(fileFormats, TheManualsTableSaysWhatEachHolds)
{
    const char* const names[] = {"NPY", "TIFF", "TIS", "PNG", "PAM", "PNM", "PGM", "PPM", "PFM", "BMP"};
    QString table = QStringLiteral("| Channels of |");
    for (const char* name : names)
        table += QStringLiteral(" %1 |").arg(QLatin1String(name));
    table += QStringLiteral("\n|---|") + QStringLiteral("---|").repeated(int(std::size(names))) + u'\n';
    for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type) {
        table
            += QStringLiteral("| `%1` |").arg(cImg(cImgType::ImageTypes(type), 1, 1).getImgType().getName());
        for (const char* name : names)
            table += QStringLiteral(" %1 |").arg(heldText(*formatOf(name), cImgType::ImageTypes(type)));
        table += u'\n';
    }
    QFile manual(QStringLiteral(TARN_FORMATS_PAGE));
    ASSERT_TRUE(manual.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString::fromUtf8(manual.readAll()).contains(table)) << "it should hold:\n"
                                                                     << table.toStdString();
}

TEST_F(fileFormats, ThreeHoldEveryPixelType)
{
    for (const char* name : {"TIFF", "NPY", "TIS"})
        for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type) {
            const cImg layout(cImgType::ImageTypes(type), 1, 1, 2);
            EXPECT_TRUE(formatOf(name)->canHold(cImgType::ImageTypes(type), layout.getNumChannels()))
                << name << " " << type;
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
        {"a.png", cImgType::Float32, 1,
            "PNG cannot hold Float32 with 1 channel, formats that can: NPY, PFM, TIFF, TIS"},
        {"a.png", cImgType::UInt8, 3,
            "PNG cannot hold UInt8 with 3 channels, formats that can: PAM, TIFF, TIS"},
        {"a.npy", cImgType::UInt8, 4,
            "NPY cannot hold UInt8 with 4 channels, formats that can: PAM, TIFF, TIS"},
        {"a.png", cImgType::Gradient16, 2, "PNG cannot hold Gradient16, formats that can: NPY, TIFF, TIS"},
        {"a.jpg", cImgType::UInt16, 1,
            "JPEG cannot hold UInt16 with 1 channel, formats that can: NPY, PAM, PGM, PNG, PNM, TIFF, TIS"},
        {"a.jpg", cImgType::RGB32, 4, "JPEG cannot hold RGB32, formats that can: NPY, PAM, PNG, TIFF, TIS"},
        {"a.bmp", cImgType::SInt16, 1,
            "BMP cannot hold SInt16 with 1 channel, formats that can: NPY, TIFF, TIS"},
        {"a.pgm", cImgType::RGB24, 3,
            "PGM cannot hold RGB24, formats that can: BMP, JPEG, NPY, PAM, PNG, PNM, PPM, TIFF, TIS"},
        {"a.pfm", cImgType::Float32, 2,
            "PFM cannot hold Float32 with 2 channels, formats that can: NPY, TIFF, TIS"},
        {"a.pam", cImgType::Float64, 1,
            "PAM cannot hold Float64 with 1 channel, formats that can: NPY, TIFF, TIS"},
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
    for (const char* name :
        {"a.PNG", "a.Jpg", "a.jpeg", "a.bmp", "a.tif", "a.TIFF", "a.Npy", "a.PGM", "a.pnm", "a.pam", "a.tis"})
        EXPECT_EQ(messageOf([&] { host::writeImage(path(name), image); }), "no failure") << name;
    const char* readable
        = "unknown file format, expected one of bmp, jpeg, jpg, npy, pam, pbm, pfm, pgm, png, pnm, "
          "ppm, tif, tiff, tis, found ";
    const char* writable
        = "unknown file format, expected one of bmp, jpeg, jpg, npy, pam, pfm, pgm, png, pnm, ppm, "
          "tif, tiff, tis, found ";
    EXPECT_EQ(messageOf([&] { host::writeImage(path("a.p"), image); }), writable + std::string("'.p'"));
    EXPECT_EQ(messageOf([&] { host::writeImage(path("a.pbm"), image); }), writable + std::string("'.pbm'"));
    EXPECT_EQ(messageOf([&] { host::readImage(path("a.jp")); }), readable + std::string("'.jp'"));
    EXPECT_EQ(messageOf([&] { host::readImage(path("a")); }), readable + std::string("no extension"));
    EXPECT_EQ(messageOf([&] { host::readImage(path("a.")); }), readable + std::string("no extension"));
    EXPECT_TRUE(host::canRead(QStringLiteral("x.tif")));
    EXPECT_FALSE(host::canRead(QStringLiteral("x.*")));
}

TEST_F(fileFormats, NoHandlersFilterContainsAnothersExtension)
{
    int extensions = 0;
    for (const cImgIO* handler : cImgIO::getImgIOSet())
        for (const QString& pattern : handler->getFilter().split(u' ')) {
            ++extensions;
            EXPECT_TRUE(pattern.startsWith(QStringLiteral("*.")));
            for (const cImgIO* other : cImgIO::getImgIOSet())
                EXPECT_TRUE(other == handler || !other->getFilter().contains(pattern.mid(2)))
                    << pattern.toStdString() << " and " << other->getFilter().toStdString();
            // So the registry's own search by substring finds the same handler.
            const QString file = QStringLiteral("x") + pattern.mid(1);
            const QSharedPointer<cImgIO> writer = cImgIO::findSaveHandler(file);
            EXPECT_EQ(cImgIO::findReadHandler(file)->getName(), handler->getName());
            EXPECT_EQ(writer ? writer->getName() : QString(),
                handler->getFlags() & cImgIO::Write ? handler->getName() : QString());
        }
    EXPECT_EQ(extensions, 14);
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

TEST_F(fileFormats, AHeaderThatClaimsMoreThanTheBytesCanHoldTakesNoMemory)
{
    const auto expected = [](const QByteArray& i_bytes, int i_least) {
        return "the file is too short for the size in its header: " + std::to_string(i_bytes.size())
            + " bytes, expected " + std::to_string(i_least) + " at the least";
    };
    host::writeImage(path("a.jpg"), makeRandomImage(cImgType::UInt8, 16, 16));
    QByteArray jpeg = bytesOf("a.jpg");
    const int frame = jpeg.indexOf("\xff\xc0");
    ASSERT_GT(frame, 0);
    jpeg.replace(frame + 5, 4, QByteArray("\x4e\x20\x4e\x20")); // 20000x20000
    writeBytes("large.jpg", jpeg);
    EXPECT_EQ(messageOf([&] { read("large.jpg"); }), expected(jpeg, 20000 * 20000 / 1024));

    // Run lengths that end at once.
    host::writeImage(path("a.bmp"), makeRandomImage(cImgType::UInt8, 16, 16));
    QByteArray bitmap = bytesOf("a.bmp");
    bitmap.replace(18, 8, QByteArray("\x98\x3a\0\0\x98\x3a\0\0", 8));
    bitmap[30] = 1;
    bitmap.replace(34, 4, QByteArray("\x02\0\0\0", 4));
    const int pixels = bitmap.size() - 256;
    bitmap.replace(pixels, 2, QByteArray("\0\x01", 2));
    writeBytes("large.bmp", bitmap);
    EXPECT_EQ(messageOf([&] { read("large.bmp"); }), expected(bitmap, 15000 * 15000 / 1024));
}

TEST_F(fileFormats, ABitmapWithAHeaderOfAnUnknownLengthIsRefused)
{
    host::writeImage(path("a.bmp"), makeRandomImage(cImgType::UInt8, 16, 16));
    QByteArray bitmap = bytesOf("a.bmp");
    // Qt would take the halves of the width for the sides, those of the height for planes and bits.
    bitmap[14] = 3;
    bitmap.replace(18, 8, QByteArray("\x10\0\x10\0\x01\0\x18\0", 8));
    writeBytes("b.bmp", bitmap);
    EXPECT_EQ(messageOf([&] { read("b.bmp"); }), "BMP: an unknown header of 3 bytes");
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
    writeBytes("text.npy", "this is no picture");
    EXPECT_EQ(messageOf([&] { read("text.npy"); }), "NPY: not of this format");
    writeBytes("text.pgm", "this is no picture");
    EXPECT_EQ(
        messageOf([&] { read("text.pgm"); }), "PGM: not of this format, expected P1 to P7 at the start");
    writeBytes("text.pfm", "this is no picture");
    EXPECT_EQ(
        messageOf([&] { read("text.pfm"); }), "PFM: not of this format, expected PF or Pf at the start");
    writeBytes("text.tis", "this is no picture");
    EXPECT_EQ(messageOf([&] { read("text.tis"); }),
        "TIS: not of this format, expected a pixel type from 1 to 14 at the start, found 1952999795");
    writeBytes("text.tif", "this is no picture");
    EXPECT_EQ(messageOf([&] { read("text.tif"); }).substr(0, 6), "TIFF: ");
    QDir(m_folder.path()).mkdir(QStringLiteral("folder.png"));
    EXPECT_EQ(messageOf([&] { read("folder.png"); }), "it is a folder");
}

// ---- damage ----

class damagedFiles : public fileFormats, public testing::WithParamInterface<File> {};

TEST_P(damagedFiles, WithAnyByteChangedDoNoHarm)
{
    const cFileFormat& format = *formatOf(GetParam().format);
    const QByteArray whole = encode(format, makeHeld(format, 9, 5));
    const auto state = cTracer::cerr.getState();
    cTracer::cerr.setState({}); // thousands of lines
    for (int place = 0; place < std::min(whole.size(), 700); ++place)
        for (const char value : {'\x00', '\x01', '\x7f', '\xff', '9'}) {
            QByteArray changed = whole;
            changed[place] = value;
            try {
                EXPECT_TRUE(decode(format, changed).isValid());
            } catch (const std::runtime_error&) {
                // refused
            }
        }
    cTracer::cerr.setState(state);
}

INSTANTIATE_TEST_SUITE_P(EachFormat, damagedFiles,
    testing::Values(File {"PNG", "a.png"}, File {"JPEG", "a.jpg"}, File {"BMP", "a.bmp"},
        File {"TIFF", "a.tif"}, File {"NPY", "a.npy"}, File {"PGM", "a.pgm"}, File {"PAM", "a.pam"},
        File {"PFM", "a.pfm"}, File {"TIS", "a.tis"}),
    nameOf);

class cutFiles : public fileFormats, public testing::WithParamInterface<File> {};

TEST_P(cutFiles, AreRefusedUnlessAllPixelsAreThere)
{
    const cFileFormat& format = *formatOf(GetParam().format);
    const QByteArray whole = encode(format, makeHeld(format, 9, 5));
    const cImg image = decode(format, whole);
    int accepted = 0;
    for (int length = 0; length < whole.size(); ++length) {
        cImg read;
        if (messageOf([&] { read = decode(format, whole.left(length)); }) != "no failure")
            continue;
        ++accepted;
        EXPECT_TRUE(samePixels(read, image)) << length;
    }
    EXPECT_LE(accepted, 4); // the padding of a last row, the place of a page that does not follow
}

INSTANTIATE_TEST_SUITE_P(EachFormat, cutFiles,
    testing::Values(File {"PNG", "a.png"}, File {"JPEG", "a.jpg"}, File {"BMP", "a.bmp"},
        File {"TIFF", "a.tif"}, File {"NPY", "a.npy"}, File {"PGM", "a.pgm"}, File {"PAM", "a.pam"},
        File {"PFM", "a.pfm"}, File {"TIS", "a.tis"}),
    nameOf);

TEST_F(fileFormats, AHeaderThatClaimsTooMuchIsRefusedBeforeMemoryIsTaken)
{
    // 60000x60000 grey, with a sound checksum and nothing behind it.
    const QByteArray png
        = QByteArray::fromHex("89504e470d0a1a0a0000000d494844520000ea600000ea600800000000a5b92a9e"
                              "000000004944415435af061e0000000049454e44ae426082");
    writeBytes("bomb.png", png);
    EXPECT_EQ(messageOf([&] { read("bomb.png"); }),
        "the image is too large, 60000x60000 pixels of 1 bytes, at most 2 GiB are read or written");

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

} // namespace
