#include "cTiffFormat.h"

#include "fileBytes.h"
#include "tiffFile.h"
#include "tiffLayout.h"
#include "tiffPixels.h"

#include <algorithm>
#include <vector>

namespace {

/** Bytes of a strip of an uncompressed file: large enough to be written in few pieces. */
constexpr std::uint64_t s_stripBytes = 1 << 18;

void writeHeader(TIFF* io_tiff, const cImg& i_image)
{
    const TiffForm form = host::tiffFormFor(i_image.getImgType().getTypeId());
    const bool colour = form.type == cImgType::RGB24 || form.type == cImgType::RGB32;
    const auto samples = std::uint16_t(form.isPair() ? 1 : i_image.getNumChannels());
    TIFFSetField(io_tiff, TIFFTAG_IMAGEWIDTH, i_image.getWidth());
    TIFFSetField(io_tiff, TIFFTAG_IMAGELENGTH, i_image.getHeight());
    TIFFSetField(io_tiff, TIFFTAG_BITSPERSAMPLE, form.bits);
    TIFFSetField(io_tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(io_tiff, TIFFTAG_SAMPLEFORMAT, form.format);
    TIFFSetField(io_tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(io_tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(io_tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    // Only the two colour types say that their samples are red, green and blue; that is how a reader knows
    // them.
    TIFFSetField(io_tiff, TIFFTAG_PHOTOMETRIC, colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    const unsigned extra = samples - (colour ? 3 : 1);
    if (extra) {
        const std::vector<std::uint16_t> kinds(
            extra, std::uint16_t(colour ? EXTRASAMPLE_UNASSALPHA : EXTRASAMPLE_UNSPECIFIED));
        TIFFSetField(io_tiff, TIFFTAG_EXTRASAMPLES, extra, kinds.data());
    }
    const std::uint64_t rows = std::max<std::uint64_t>(1, s_stripBytes / host::rowBytes(i_image));
    TIFFSetField(
        io_tiff, TIFFTAG_ROWSPERSTRIP, std::uint32_t(std::min<std::uint64_t>(rows, i_image.getHeight())));
}

} // namespace

cTiffFormat::cTiffFormat() : cFileFormat(QStringLiteral("TIFF"), QStringLiteral("*.tif *.tiff"), Read | Write)
{
}

cImgIO* cTiffFormat::clone() const { return new cTiffFormat; }

bool cTiffFormat::canHold(cImgType::ImageTypes i_type, unsigned i_channels) const
{
    return i_type != cImgType::Invalid && i_channels <= 65535;
}

cImg cTiffFormat::decode(const unsigned char* i_data, std::size_t i_size) const
{
    const cTiffReader tiff(i_data, i_size);
    const TiffHeader header = host::readTiffHeader(tiff);
    cImg image;
    if (header.isRendered()) {
        checkSize(header.width, header.height, 4);
        checkRatio(header.rowBytes(header.width) * header.height, i_size, header.greatestRatio());
        image = host::renderTiff(tiff, header);
    } else {
        const TiffForm form = host::tiffFormFor(header);
        if (header.isWhiteZero() && header.format != SAMPLEFORMAT_UINT)
            cTiff::fail("white-is-zero is supported for unsigned numbers only");
        checkSize(header.width, header.height, header.pixelBytes());
        checkRatio(header.rowBytes(header.width) * header.height, i_size, header.greatestRatio());
        image = cImg(form.type, header.width, header.height, header.samples);
        host::readTiffPixels(tiff, header, image);
    }
    image.setNumFrames(TIFFNumberOfDirectories(tiff));
    return image;
}

cFileFormat::Kind cTiffFormat::peek(QIODevice& io_device) const
{
    const cTiffReader tiff(io_device);
    const TiffHeader header = host::readTiffHeader(tiff);
    return header.isRendered() ? Kind {} : Kind {host::tiffFormFor(header).type, header.samples};
}

void cTiffFormat::encode(const cImg& i_image, QIODevice& io_device) const
{
    const cTiffWriter tiff(io_device);
    writeHeader(tiff, i_image);
    for (unsigned y = 0; y < i_image.getHeight(); ++y) {
        // Rows that are neither compressed nor swapped are only read.
        auto* row = const_cast<unsigned char*>(i_image.getRow<unsigned char>(y));
        if (TIFFWriteScanline(tiff, row, y) != 1)
            tiff.raise("a row cannot be written");
    }
    if (!TIFFFlush(tiff) || tiff.hasFailed())
        tiff.raise("the directory cannot be written");
}
