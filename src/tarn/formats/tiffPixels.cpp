#include "tiffPixels.h"

#include "tiffFile.h"
#include "tiffLayout.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

constexpr std::uint64_t s_mostBytes = Q_UINT64_C(1) << 31;

/** Takes a stretch of a row, as it stands in the file, into the image. */
class cPlacer {
public:
    cPlacer(const TiffHeader& i_header, cImg& io_image)
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
            spreadBits(i_row, i_count, target);
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
    void spreadBits(const unsigned char* i_row, std::uint32_t i_count, unsigned char* o_pixels) const
    {
        const unsigned bits = m_header.bits;
        const unsigned most = (1u << bits) - 1;
        for (std::uint32_t i = 0; i < i_count; ++i) {
            const std::size_t bit = std::size_t(i) * bits;
            const unsigned value = (i_row[bit / 8] >> (8 - bits - bit % 8)) & most;
            o_pixels[i] = static_cast<unsigned char>(value * 255 / most);
        }
    }

    const TiffHeader& m_header;
    unsigned char* const m_pixels;
    const std::size_t m_pitch;
    const std::size_t m_pixelSize;
};

void readStrips(const cTiffReader& i_tiff, const TiffHeader& i_header, cPlacer& io_placer)
{
    const std::uint64_t bytes = i_header.rowBytes(i_header.width);
    if (bytes != std::uint64_t(TIFFScanlineSize64(i_tiff)))
        cTiff::fail("the rows do not fit the header");
    const std::unique_ptr<unsigned char[]> row(new unsigned char[bytes]());
    const unsigned planes = i_header.isSplit() ? i_header.samples : 1;
    for (unsigned sample = 0; sample < planes; ++sample)
        for (std::uint32_t y = 0; y < i_header.height; ++y) {
            if (TIFFReadScanline(i_tiff, row.get(), y, std::uint16_t(sample)) != 1)
                i_tiff.raise("a row cannot be read");
            io_placer.place(row.get(), 0, y, i_header.width, sample);
        }
}

void readTiles(const cTiffReader& i_tiff, const TiffHeader& i_header, cPlacer& io_placer)
{
    const std::uint64_t bytes = i_header.rowBytes(i_header.tileWidth);
    const std::uint64_t tileBytes = TIFFTileSize64(i_tiff);
    if (i_header.tileHeight > s_mostBytes / bytes || bytes * i_header.tileHeight != tileBytes)
        cTiff::fail("the tiles do not fit the header");
    const std::unique_ptr<unsigned char[]> tile(new unsigned char[tileBytes]);
    const unsigned planes = i_header.isSplit() ? i_header.samples : 1;
    const std::uint32_t tileWidth = i_header.tileWidth, tileHeight = i_header.tileHeight;
    for (unsigned sample = 0; sample < planes; ++sample)
        for (std::uint64_t y = 0; y < i_header.height; y += tileHeight)
            for (std::uint64_t x = 0; x < i_header.width; x += tileWidth) {
                const auto read = TIFFReadTile(
                    i_tiff, tile.get(), std::uint32_t(x), std::uint32_t(y), 0, std::uint16_t(sample));
                if (read < 0 || std::uint64_t(read) != tileBytes)
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

} // namespace

namespace host {

void readTiffPixels(const cTiffReader& i_tiff, const TiffHeader& i_header, cImg& o_image)
{
    cPlacer placer(i_header, o_image);
    if (i_header.isTiled())
        readTiles(i_tiff, i_header, placer);
    else
        readStrips(i_tiff, i_header, placer);
    if (i_header.isWhiteZero())
        complement(o_image);
}

cImg renderTiff(const cTiffReader& i_tiff, const TiffHeader& i_header)
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

} // namespace host
