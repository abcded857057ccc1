#include "cPngFormat.h"

#include <QIODevice>
#include <csetjmp>
#include <cstring>
#include <png.h>
#include <stdexcept>
#include <string>

namespace {

// libpng leaves a call that fails by longjmp. So each function that calls it has nothing to destroy, and
// returns false.

/** What reading and writing share: the message of the failure, and whether to write in the processor's byte
 * order. */
struct Job {
    png_structp png = nullptr;
    png_infop info = nullptr;
    char message[128] = "damaged";
};

void keepMessage(png_structp i_png, png_const_charp i_message)
{
    auto* job = static_cast<Job*>(png_get_error_ptr(i_png));
    std::strncpy(job->message, i_message, sizeof job->message - 1);
    png_longjmp(i_png, 1);
}

void dropWarning(png_structp, png_const_charp) {}

[[noreturn]] void fail(const Job& i_job) { throw std::runtime_error(std::string("PNG: ") + i_job.message); }

struct Reader : Job {
    const unsigned char* data;
    std::size_t size;
    int passes = 1;

    Reader(const unsigned char* i_data, std::size_t i_size) : data(i_data), size(i_size)
    {
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, keepMessage, dropWarning);
        if (png)
            info = png_create_info_struct(png);
        if (!info)
            throw std::bad_alloc();
    }
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
};

void readBytes(png_structp i_png, png_bytep o_bytes, std::size_t i_count)
{
    auto* reader = static_cast<Reader*>(png_get_io_ptr(i_png));
    if (i_count > reader->size)
        png_error(i_png, "the file ends too early");
    std::memcpy(o_bytes, reader->data, i_count);
    reader->data += i_count;
    reader->size -= i_count;
}

bool readHeader(Reader& io_reader)
{
    if (setjmp(png_jmpbuf(io_reader.png)))
        return false;
    png_set_read_fn(io_reader.png, &io_reader, readBytes);
    png_set_user_limits(io_reader.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_read_info(io_reader.png, io_reader.info);
    return true;
}

/** Asks for whole bytes, for alpha in place of a transparent colour, and for the processor's byte order. */
bool setUpConversions(Reader& io_reader)
{
    if (setjmp(png_jmpbuf(io_reader.png)))
        return false;
    if (png_get_color_type(io_reader.png, io_reader.info) == PNG_COLOR_TYPE_PALETTE)
        png_set_palette_to_rgb(io_reader.png);
    else if (png_get_bit_depth(io_reader.png, io_reader.info) < 8)
        png_set_expand_gray_1_2_4_to_8(io_reader.png);
    if (png_get_valid(io_reader.png, io_reader.info, PNG_INFO_tRNS))
        png_set_tRNS_to_alpha(io_reader.png);
    if (Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
        png_set_swap(io_reader.png);
    io_reader.passes = png_set_interlace_handling(io_reader.png);
    png_read_update_info(io_reader.png, io_reader.info);
    return true;
}

/** Rows of pixels in memory. */
struct Rows {
    unsigned char* first;
    std::size_t pitch;
    std::size_t count;
};

/** An interlaced picture comes in seven passes, each of which adds pixels to the same rows. */
void readPasses(png_structp i_png, int i_passes, const Rows& o_rows)
{
    for (int pass = 0; pass < i_passes; ++pass)
        for (std::size_t y = 0; y < o_rows.count; ++y)
            png_read_row(i_png, o_rows.first + y * o_rows.pitch, nullptr);
}

bool readRows(Reader& io_reader, const Rows& o_rows)
{
    if (setjmp(png_jmpbuf(io_reader.png)))
        return false;
    readPasses(io_reader.png, io_reader.passes, o_rows);
    png_read_end(io_reader.png, nullptr);
    return true;
}

struct Writer : Job {
    QIODevice& device;

    explicit Writer(QIODevice& io_device) : device(io_device)
    {
        png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, keepMessage, dropWarning);
        if (png)
            info = png_create_info_struct(png);
        if (!info)
            throw std::bad_alloc();
    }
    ~Writer() { png_destroy_write_struct(&png, &info); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
};

void writeBytes(png_structp i_png, png_bytep i_bytes, std::size_t i_count)
{
    auto* writer = static_cast<Writer*>(png_get_io_ptr(i_png));
    if (writer->device.write(reinterpret_cast<const char*>(i_bytes), qint64(i_count)) != qint64(i_count))
        png_error(i_png, "the device takes no more");
}

void flushNothing(png_structp) {}

/** The lowest level with the cheap row filters: cameras deliver faster than the higher levels compress. */
constexpr int s_compression = 1;

struct Layout {
    png_uint_32 width;
    png_uint_32 height;
    int bitDepth;
    int colourType;
};

void writeEach(png_structp i_png, const Rows& i_rows)
{
    for (std::size_t y = 0; y < i_rows.count; ++y)
        png_write_row(i_png, i_rows.first + y * i_rows.pitch);
}

bool writeRows(Writer& io_writer, const Layout& i_layout, const Rows& i_rows)
{
    if (setjmp(png_jmpbuf(io_writer.png)))
        return false;
    png_set_write_fn(io_writer.png, &io_writer, writeBytes, flushNothing);
    png_set_user_limits(io_writer.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_compression_level(io_writer.png, s_compression);
    png_set_filter(io_writer.png, PNG_FILTER_TYPE_BASE, PNG_FAST_FILTERS);
    png_set_IHDR(io_writer.png, io_writer.info, i_layout.width, i_layout.height, i_layout.bitDepth,
        i_layout.colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(io_writer.png, io_writer.info);
    if (Q_BYTE_ORDER == Q_LITTLE_ENDIAN && i_layout.bitDepth == 16)
        png_set_swap(io_writer.png);
    writeEach(io_writer.png, i_rows);
    png_write_end(io_writer.png, nullptr);
    return true;
}

/** Deflate makes at most this many bytes of one; a header that claims more is forged, or the file is cut. */
constexpr unsigned s_deflateRatio = 1032;

constexpr int s_colourTypes[]
    = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_RGB_ALPHA};

cImgType::ImageTypes typeFor(int i_bitDepth, unsigned i_channels)
{
    if (i_bitDepth == 16)
        return cImgType::UInt16;
    return i_channels == 3 ? cImgType::RGB24 : i_channels == 4 ? cImgType::RGB32 : cImgType::UInt8;
}

} // namespace

cPngFormat::cPngFormat() : cFileFormat(QStringLiteral("PNG"), QStringLiteral("*.png"), Read | Write) {}

cImgIO* cPngFormat::clone() const { return new cPngFormat; }

bool cPngFormat::canHold(cImgType::ImageTypes i_type, unsigned i_channels) const
{
    switch (i_type) {
    case cImgType::RGB24:
    case cImgType::RGB32:
        return true;
    case cImgType::UInt8:
        return i_channels <= 2; // 3 and 4 channels would be read back as colour
    case cImgType::UInt16:
        return i_channels <= 4;
    default:
        return false;
    }
}

cImg cPngFormat::decode(const unsigned char* i_data, std::size_t i_size) const
{
    const std::size_t fileSize = i_size;
    Reader reader(i_data, i_size);
    if (!readHeader(reader))
        fail(reader);
    const quint64 width = png_get_image_width(reader.png, reader.info);
    const quint64 height = png_get_image_height(reader.png, reader.info);
    // The header's sample size before any conversion is no greater than the one after it.
    const quint64 rawBits
        = quint64(png_get_bit_depth(reader.png, reader.info)) * png_get_channels(reader.png, reader.info);
    checkSize(width, height, 1);
    checkRatio(height * (width * rawBits / 8 + 1), fileSize, s_deflateRatio); // a row has a byte more
    if (!setUpConversions(reader))
        fail(reader);
    const unsigned channels = png_get_channels(reader.png, reader.info);
    const int bitDepth = png_get_bit_depth(reader.png, reader.info);
    checkSize(width, height, quint64(channels) * bitDepth / 8);

    cImg image(typeFor(bitDepth, channels), unsigned(width), unsigned(height), channels);
    if (png_get_rowbytes(reader.png, reader.info) > image.getYPitch())
        throw std::runtime_error("PNG: the rows do not fit the header");
    if (!readRows(reader, {image.getData(), image.getYPitch(), std::size_t(height)}))
        fail(reader);
    return image;
}

cFileFormat::Kind cPngFormat::peek(QIODevice& io_device) const
{
    const QByteArray start = io_device.read(s_headerBytes);
    Reader reader(reinterpret_cast<const unsigned char*>(start.constData()), std::size_t(start.size()));
    if (!readHeader(reader) || !setUpConversions(reader))
        fail(reader);
    const unsigned channels = png_get_channels(reader.png, reader.info);
    return {typeFor(png_get_bit_depth(reader.png, reader.info), channels), channels};
}

void cPngFormat::encode(const cImg& i_image, QIODevice& io_device) const
{
    if (i_image.getWidth() > PNG_UINT_31_MAX || i_image.getHeight() > PNG_UINT_31_MAX)
        throw std::runtime_error("PNG: a side is longer than 2147483647 pixels");
    const Layout layout {i_image.getWidth(), i_image.getHeight(), i_image.isKindOf(cImgType::UInt16) ? 16 : 8,
        s_colourTypes[i_image.getNumChannels() - 1]};
    // libpng only reads them.
    const Rows rows {const_cast<png_bytep>(i_image.getConstData()), i_image.getYPitch(), i_image.getHeight()};
    Writer writer(io_device);
    if (!writeRows(writer, layout, rows))
        fail(writer);
}
