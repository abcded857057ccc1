#include "cTiffFormat.h"

#include <QIODevice>
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <tiffio.h>
#include <vector>

namespace {

[[noreturn]] void fail(const std::string& i_message) { throw std::runtime_error("TIFF: " + i_message); }

/** An open file with the procedures that its kind of store needs, and the first message about a failure. */
class cTiff {
public:
    cTiff() = default;
    cTiff(const cTiff&) = delete;
    cTiff& operator=(const cTiff&) = delete;
    ~cTiff() { close(); }

    operator TIFF*() const { return m_tiff; }
    [[noreturn]] void raise(const char* i_otherwise) const
    {
        fail(m_message.empty() ? i_otherwise : m_message);
    }
    bool hasFailed() const { return !m_message.empty(); }
    void close()
    {
        if (m_tiff)
            TIFFClose(m_tiff);
        m_tiff = nullptr;
    }

protected:
    void open(const char* i_mode, thandle_t i_store, TIFFReadWriteProc i_read, TIFFReadWriteProc i_write,
        TIFFSeekProc i_seek, TIFFSizeProc i_size)
    {
        const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
            TIFFOpenOptionsAlloc(), &TIFFOpenOptionsFree);
        if (!options)
            throw std::bad_alloc();
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &keepMessage, this);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &dropWarning, this);
        const auto closeStore = [](thandle_t) { return 0; };
        m_tiff = TIFFClientOpenExt("image", i_mode, i_store, i_read, i_write, i_seek, closeStore, i_size,
            nullptr, nullptr, options.get());
        if (!m_tiff)
            raise("damaged, or not of this format");
    }

private:
    static int keepMessage(TIFF*, void* i_this, const char*, const char* i_format, va_list i_arguments)
    {
        auto* self = static_cast<cTiff*>(i_this);
        char text[256];
        std::vsnprintf(text, sizeof text, i_format, i_arguments);
        if (self->m_message.empty())
            self->m_message = text;
        return 1;
    }
    static int dropWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    TIFF* m_tiff = nullptr;
    std::string m_message;
};

/** The place in a store for a seek of C's kinds. */
toff_t placeFor(toff_t i_offset, int i_whence, toff_t i_now, toff_t i_end)
{
    return i_whence == SEEK_SET ? i_offset : i_whence == SEEK_CUR ? i_now + i_offset : i_end + i_offset;
}

class cTiffReader : public cTiff {
public:
    cTiffReader(const unsigned char* i_data, std::size_t i_size) : m_data(i_data), m_size(i_size)
    {
        open("rm", this, &read, &refuseWrite, &seek, &size);
    }

private:
    static cTiffReader& self(thandle_t i_handle) { return *static_cast<cTiffReader*>(i_handle); }
    static tmsize_t read(thandle_t i_handle, void* o_bytes, tmsize_t i_count)
    {
        cTiffReader& reader = self(i_handle);
        if (i_count <= 0 || reader.m_place >= reader.m_size)
            return 0;
        const std::size_t count = std::min(std::size_t(i_count), std::size_t(reader.m_size - reader.m_place));
        std::memcpy(o_bytes, reader.m_data + reader.m_place, count);
        reader.m_place += count;
        return tmsize_t(count);
    }
    static tmsize_t refuseWrite(thandle_t, void*, tmsize_t) { return -1; }
    static toff_t seek(thandle_t i_handle, toff_t i_offset, int i_whence)
    {
        cTiffReader& reader = self(i_handle);
        return reader.m_place = placeFor(i_offset, i_whence, reader.m_place, reader.m_size);
    }
    static toff_t size(thandle_t i_handle) { return self(i_handle).m_size; }

    const unsigned char* m_data;
    const toff_t m_size;
    toff_t m_place = 0;
};

class cTiffWriter : public cTiff {
public:
    explicit cTiffWriter(QIODevice& io_device) { open("wm", &io_device, &refuseRead, &write, &seek, &size); }

private:
    static QIODevice& device(thandle_t i_handle) { return *static_cast<QIODevice*>(i_handle); }
    static tmsize_t refuseRead(thandle_t, void*, tmsize_t) { return -1; }
    static tmsize_t write(thandle_t i_handle, void* i_bytes, tmsize_t i_count)
    {
        return tmsize_t(device(i_handle).write(static_cast<const char*>(i_bytes), i_count));
    }
    static toff_t seek(thandle_t i_handle, toff_t i_offset, int i_whence)
    {
        QIODevice& store = device(i_handle);
        const toff_t place = placeFor(i_offset, i_whence, toff_t(store.pos()), toff_t(store.size()));
        return store.seek(qint64(place)) ? place : toff_t(-1);
    }
    static toff_t size(thandle_t i_handle) { return toff_t(device(i_handle).size()); }
};

/** How a pixel type stands in a file; `bits` of one sample. */
struct Form {
    cImgType::ImageTypes type;
    std::uint16_t format;
    std::uint16_t bits;
};
constexpr Form s_forms[] = {
    {cImgType::UInt8, SAMPLEFORMAT_UINT, 8},
    {cImgType::UInt16, SAMPLEFORMAT_UINT, 16},
    {cImgType::UInt32, SAMPLEFORMAT_UINT, 32},
    {cImgType::SInt8, SAMPLEFORMAT_INT, 8},
    {cImgType::SInt16, SAMPLEFORMAT_INT, 16},
    {cImgType::SInt32, SAMPLEFORMAT_INT, 32},
    {cImgType::SInt64, SAMPLEFORMAT_INT, 64},
    {cImgType::Float32, SAMPLEFORMAT_IEEEFP, 32},
    {cImgType::Float64, SAMPLEFORMAT_IEEEFP, 64},
    {cImgType::Gradient16, SAMPLEFORMAT_COMPLEXINT, 32},
    {cImgType::Gradient32, SAMPLEFORMAT_COMPLEXINT, 64},
    {cImgType::Complex, SAMPLEFORMAT_COMPLEXIEEEFP, 64},
};

struct Header {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bits = 1;
    std::uint16_t samples = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    std::uint16_t planar = PLANARCONFIG_CONTIG;
    bool tiled = false;

    bool isSplit() const { return planar == PLANARCONFIG_SEPARATE && samples > 1; }
    /** Samples that stand together in a row of the file. */
    unsigned samplesPerRow() const { return isSplit() ? 1 : samples; }
    bool isRendered() const { return photometric == PHOTOMETRIC_PALETTE || photometric == PHOTOMETRIC_YCBCR; }
};

Header readHeader(const cTiffReader& i_tiff)
{
    Header header;
    TIFFGetField(i_tiff, TIFFTAG_IMAGEWIDTH, &header.width);
    TIFFGetField(i_tiff, TIFFTAG_IMAGELENGTH, &header.height);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_BITSPERSAMPLE, &header.bits);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_SAMPLESPERPIXEL, &header.samples);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_SAMPLEFORMAT, &header.format);
    TIFFGetField(i_tiff, TIFFTAG_PHOTOMETRIC, &header.photometric);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_PLANARCONFIG, &header.planar);
    header.tiled = TIFFIsTiled(i_tiff);
    if (header.format == SAMPLEFORMAT_VOID)
        header.format = SAMPLEFORMAT_UINT;
    if (header.samples == 0)
        fail("a pixel has no samples");
    return header;
}

bool isSmall(const Header& i_header)
{
    return i_header.format == SAMPLEFORMAT_UINT && i_header.samples == 1
        && (i_header.bits == 1 || i_header.bits == 2 || i_header.bits == 4);
}

cImgType::ImageTypes typeFor(const Header& i_header)
{
    if (isSmall(i_header))
        return cImgType::UInt8;
    if (i_header.photometric == PHOTOMETRIC_RGB && i_header.format == SAMPLEFORMAT_UINT
        && i_header.bits == 8) {
        if (i_header.samples == 3)
            return cImgType::RGB24;
        if (i_header.samples == 4)
            return cImgType::RGB32;
    }
    const auto form = std::find_if(std::begin(s_forms), std::end(s_forms),
        [&](const Form& i_form) { return i_form.format == i_header.format && i_form.bits == i_header.bits; });
    const bool pairs
        = i_header.format == SAMPLEFORMAT_COMPLEXINT || i_header.format == SAMPLEFORMAT_COMPLEXIEEEFP;
    if (form == std::end(s_forms) || (pairs && i_header.samples != 1))
        fail("no pixel type has " + std::to_string(i_header.samples) + " samples of "
            + std::to_string(i_header.bits) + " bits in sample format " + std::to_string(i_header.format));
    return form->type;
}

/** Takes a stretch of a row, as it stands in the file, into the image. */
class cPlacer {
public:
    cPlacer(const Header& i_header, cImg& io_image)
        : m_header(i_header),
          m_pixels(io_image.getData()),
          m_pitch(io_image.getYPitch()),
          m_pixelSize(io_image.getImgType().getPixelSize())
    {
    }

    void place(const unsigned char* i_row, std::uint32_t i_x, std::uint32_t i_y, std::uint32_t i_count,
        unsigned i_sample)
    {
        unsigned char* target = m_pixels + std::size_t(i_y) * m_pitch + std::size_t(i_x) * m_pixelSize;
        if (m_header.bits < 8) {
            const unsigned bits = m_header.bits;
            const unsigned most = (1u << bits) - 1;
            for (std::uint32_t i = 0; i < i_count; ++i) {
                const std::size_t bit = std::size_t(i) * bits;
                const unsigned value = (i_row[bit / 8] >> (8 - bits - bit % 8)) & most;
                target[i] = static_cast<unsigned char>(value * 255 / most);
            }
        } else if (m_header.isSplit()) {
            const unsigned size = m_header.bits / 8;
            target += std::size_t(i_sample) * size;
            for (std::uint32_t i = 0; i < i_count; ++i)
                std::memcpy(target + std::size_t(i) * m_pixelSize, i_row + std::size_t(i) * size, size);
        } else {
            std::memcpy(target, i_row, std::size_t(i_count) * m_pixelSize);
        }
    }

private:
    const Header& m_header;
    unsigned char* const m_pixels;
    const std::size_t m_pitch;
    const std::size_t m_pixelSize;
};

/** Bytes of a row of so many pixels in the file. */
std::uint64_t rowBytes(const Header& i_header, std::uint64_t i_pixels)
{
    return (i_pixels * i_header.samplesPerRow() * i_header.bits + 7) / 8;
}

void readStrips(const cTiffReader& i_tiff, const Header& i_header, cPlacer& io_placer)
{
    const std::uint64_t bytes = rowBytes(i_header, i_header.width);
    if (bytes != std::uint64_t(TIFFScanlineSize64(i_tiff)))
        fail("the rows do not fit the header");
    const std::unique_ptr<unsigned char[]> row(new unsigned char[bytes]());
    const unsigned planes = i_header.isSplit() ? i_header.samples : 1;
    for (unsigned sample = 0; sample < planes; ++sample)
        for (std::uint32_t y = 0; y < i_header.height; ++y) {
            if (TIFFReadScanline(i_tiff, row.get(), y, std::uint16_t(sample)) != 1)
                i_tiff.raise("a row cannot be read");
            io_placer.place(row.get(), 0, y, i_header.width, sample);
        }
}

void readTiles(
    const cTiffReader& i_tiff, const Header& i_header, cPlacer& io_placer, std::uint64_t i_mostBytes)
{
    std::uint32_t tileWidth = 0, tileHeight = 0;
    TIFFGetField(i_tiff, TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(i_tiff, TIFFTAG_TILELENGTH, &tileHeight);
    const std::uint64_t bytes = rowBytes(i_header, tileWidth);
    if (!bytes || !tileHeight || tileHeight > i_mostBytes / bytes)
        fail("the tiles are empty or too large");
    if (bytes * tileHeight != TIFFTileSize64(i_tiff))
        fail("the tiles do not fit the header");
    const std::unique_ptr<unsigned char[]> tile(new unsigned char[bytes * tileHeight]);
    const unsigned planes = i_header.isSplit() ? i_header.samples : 1;
    for (unsigned sample = 0; sample < planes; ++sample)
        for (std::uint64_t y = 0; y < i_header.height; y += tileHeight)
            for (std::uint64_t x = 0; x < i_header.width; x += tileWidth) {
                const auto read = TIFFReadTile(
                    i_tiff, tile.get(), std::uint32_t(x), std::uint32_t(y), 0, std::uint16_t(sample));
                if (read < 0 || std::uint64_t(read) != bytes * tileHeight)
                    i_tiff.raise("a tile cannot be read");
                const auto count = std::uint32_t(std::min<std::uint64_t>(tileWidth, i_header.width - x));
                const auto rows = std::uint32_t(std::min<std::uint64_t>(tileHeight, i_header.height - y));
                for (std::uint32_t row = 0; row < rows; ++row)
                    io_placer.place(
                        tile.get() + row * bytes, std::uint32_t(x), std::uint32_t(y) + row, count, sample);
            }
}

/** In files where white is zero: the complement, which of unsigned numbers is that of all bits. */
void complement(cImg& io_image)
{
    const std::size_t bytes = std::size_t(io_image.getWidth()) * io_image.getImgType().getPixelSize();
    for (unsigned y = 0; y < io_image.getHeight(); ++y) {
        unsigned char* row = io_image.row<unsigned char>(y);
        std::transform(
            row, row + bytes, row, [](unsigned char i_byte) { return static_cast<unsigned char>(~i_byte); });
    }
}

/** Palettes and YCbCr: libtiff makes 8-bit colour of them. */
cImg render(const cTiffReader& i_tiff, const Header& i_header)
{
    const std::size_t count = std::size_t(i_header.width) * i_header.height;
    const std::unique_ptr<std::uint32_t[]> pixels(new std::uint32_t[count]);
    if (!TIFFReadRGBAImageOriented(
            i_tiff, i_header.width, i_header.height, pixels.get(), ORIENTATION_TOPLEFT, 1)
        || i_tiff.hasFailed())
        i_tiff.raise("the picture cannot be read");
    cImg image(cImgType::RGB24, i_header.width, i_header.height, 1);
    for (std::uint32_t y = 0; y < i_header.height; ++y) {
        unsigned char* row = image.row<unsigned char>(y);
        const std::uint32_t* source = pixels.get() + std::size_t(y) * i_header.width;
        for (std::uint32_t x = 0; x < i_header.width; ++x) {
            row[3 * std::size_t(x)] = static_cast<unsigned char>(TIFFGetR(source[x]));
            row[3 * std::size_t(x) + 1] = static_cast<unsigned char>(TIFFGetG(source[x]));
            row[3 * std::size_t(x) + 2] = static_cast<unsigned char>(TIFFGetB(source[x]));
        }
    }
    return image;
}

std::optional<Form> formFor(cImgType::ImageTypes i_type)
{
    if (i_type == cImgType::RGB24 || i_type == cImgType::RGB32)
        return Form {i_type, SAMPLEFORMAT_UINT, 8};
    for (const Form& form : s_forms)
        if (form.type == i_type)
            return form;
    return {};
}

/** Bytes of a strip of an uncompressed file: large enough to be written in few pieces. */
constexpr std::uint64_t s_stripBytes = 1 << 18;

} // namespace

cTiffFormat::cTiffFormat() : cFileFormat(QStringLiteral("TIFF"), QStringLiteral("*.tif *.tiff"), Read | Write)
{
}

cImgIO* cTiffFormat::clone() const { return new cTiffFormat; }

bool cTiffFormat::canHold(cImgType::ImageTypes i_type, unsigned i_channels) const
{
    return formFor(i_type) && i_channels <= 65535;
}

cImg cTiffFormat::decode(const unsigned char* i_data, std::size_t i_size) const
{
    const cTiffReader tiff(i_data, i_size);
    const Header header = readHeader(tiff);
    if (header.isRendered()) {
        checkSize(header.width, header.height, 4);
        return render(tiff, header);
    }
    switch (header.photometric) {
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_SEPARATED:
    case PHOTOMETRIC_CFA:
        break;
    default:
        fail("photometric interpretation " + std::to_string(header.photometric) + " is not supported");
    }
    const cImgType::ImageTypes type = typeFor(header);
    const std::uint64_t pixelBytes = std::max<std::uint64_t>(1, header.bits / 8) * header.samples;
    checkSize(header.width, header.height, pixelBytes);
    const bool pairs
        = header.format == SAMPLEFORMAT_COMPLEXINT || header.format == SAMPLEFORMAT_COMPLEXIEEEFP;
    if (pairs && TIFFIsByteSwapped(tiff))
        fail("pairs of numbers in foreign byte order are not supported");
    const bool inverted = header.photometric == PHOTOMETRIC_MINISWHITE;
    if (inverted && header.format != SAMPLEFORMAT_UINT)
        fail("white-is-zero is supported for unsigned numbers only");

    cImg image(type, header.width, header.height, header.samples);
    cPlacer placer(header, image);
    if (header.tiled)
        readTiles(tiff, header, placer, Q_UINT64_C(1) << 31);
    else
        readStrips(tiff, header, placer);
    if (inverted)
        complement(image);
    return image;
}

void cTiffFormat::encode(const cImg& i_image, QIODevice& io_device) const
{
    const cImgType::ImageTypes type = i_image.getImgType().getTypeId();
    const Form form = *formFor(type);
    const bool colour = type == cImgType::RGB24 || type == cImgType::RGB32;
    const bool pairs = form.format == SAMPLEFORMAT_COMPLEXINT || form.format == SAMPLEFORMAT_COMPLEXIEEEFP;
    const auto samples = std::uint16_t(pairs ? 1 : i_image.getNumChannels());
    const std::uint64_t rowBytes = std::uint64_t(i_image.getWidth()) * i_image.getImgType().getPixelSize();

    cTiffWriter tiff(io_device);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, i_image.getWidth());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, i_image.getHeight());
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, form.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, form.format);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    // Only the two colour types say that their samples are red, green and blue; that is how a reader knows
    // them.
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    const unsigned extra = samples - (colour ? 3 : 1);
    if (extra) {
        const std::vector<std::uint16_t> kinds(
            extra, std::uint16_t(colour ? EXTRASAMPLE_UNASSALPHA : EXTRASAMPLE_UNSPECIFIED));
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, extra, kinds.data());
    }
    const std::uint64_t rows = std::max<std::uint64_t>(1, s_stripBytes / rowBytes);
    TIFFSetField(
        tiff, TIFFTAG_ROWSPERSTRIP, std::uint32_t(std::min<std::uint64_t>(rows, i_image.getHeight())));
    for (unsigned y = 0; y < i_image.getHeight(); ++y) {
        // Rows that are neither compressed nor swapped are only read.
        auto* row = const_cast<unsigned char*>(i_image.getRow<unsigned char>(y));
        if (TIFFWriteScanline(tiff, row, y) != 1)
            tiff.raise("a row cannot be written");
    }
    if (!TIFFFlush(tiff) || tiff.hasFailed())
        tiff.raise("the directory cannot be written");
}
