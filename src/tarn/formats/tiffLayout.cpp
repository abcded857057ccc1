#include "tiffLayout.h"

#include "tiffFile.h"

#include <algorithm>
#include <string>

namespace {

constexpr TiffForm s_forms[] = {
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
    {cImgType::RGB24, SAMPLEFORMAT_UINT, 8},
    {cImgType::RGB32, SAMPLEFORMAT_UINT, 8},
};

/** One sample of fewer bits than a byte has. */
bool isSmall(const TiffHeader& i_header)
{
    return i_header.format == SAMPLEFORMAT_UINT && i_header.samples == 1
        && (i_header.bits == 1 || i_header.bits == 2 || i_header.bits == 4);
}

bool isKnown(std::uint16_t i_photometric)
{
    switch (i_photometric) {
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_SEPARATED:
    case PHOTOMETRIC_CFA:
    case PHOTOMETRIC_PALETTE:
    case PHOTOMETRIC_YCBCR:
        return true;
    default:
        return false;
    }
}

} // namespace

bool TiffForm::isPair() const
{
    return format == SAMPLEFORMAT_COMPLEXINT || format == SAMPLEFORMAT_COMPLEXIEEEFP;
}

bool TiffHeader::isSplit() const { return planar == PLANARCONFIG_SEPARATE && samples > 1; }

bool TiffHeader::isRendered() const
{
    return photometric == PHOTOMETRIC_PALETTE || photometric == PHOTOMETRIC_YCBCR;
}

bool TiffHeader::isWhiteZero() const { return photometric == PHOTOMETRIC_MINISWHITE; }

std::uint64_t TiffHeader::pixelBytes() const { return std::uint64_t(std::max(1, bits / 8)) * samples; }

std::uint64_t TiffHeader::rowBytes(std::uint64_t i_pixels) const
{
    return (i_pixels * (isSplit() ? 1 : samples) * bits + 7) / 8;
}

std::uint64_t TiffHeader::greatestRatio() const
{
    switch (compression) {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS:
        return 64;
    case COMPRESSION_LZW:
        return 2731; // a code of 12 bits stands for 4096 bytes at the most
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
        return 1032;
    default:
        return 1 << 15;
    }
}

namespace host {

TiffHeader readTiffHeader(const cTiffReader& i_tiff)
{
    TiffHeader header;
    TIFFGetField(i_tiff, TIFFTAG_IMAGEWIDTH, &header.width);
    TIFFGetField(i_tiff, TIFFTAG_IMAGELENGTH, &header.height);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_BITSPERSAMPLE, &header.bits);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_SAMPLESPERPIXEL, &header.samples);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_SAMPLEFORMAT, &header.format);
    TIFFGetField(i_tiff, TIFFTAG_PHOTOMETRIC, &header.photometric);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_PLANARCONFIG, &header.planar);
    TIFFGetFieldDefaulted(i_tiff, TIFFTAG_COMPRESSION, &header.compression);
    if (TIFFIsTiled(i_tiff)) {
        TIFFGetField(i_tiff, TIFFTAG_TILEWIDTH, &header.tileWidth);
        TIFFGetField(i_tiff, TIFFTAG_TILELENGTH, &header.tileHeight);
        if (!header.tileWidth || !header.tileHeight)
            cTiff::fail("the tiles are empty");
    }
    if (header.format == SAMPLEFORMAT_VOID)
        header.format = SAMPLEFORMAT_UINT;
    if (header.samples == 0)
        cTiff::fail("a pixel has no samples");
    if (!isKnown(header.photometric))
        cTiff::fail("photometric interpretation " + std::to_string(header.photometric) + " is not supported");
    return header;
}

TiffForm tiffFormFor(const TiffHeader& i_header)
{
    if (isSmall(i_header))
        return tiffFormFor(cImgType::UInt8);
    if (i_header.photometric == PHOTOMETRIC_RGB && i_header.format == SAMPLEFORMAT_UINT
        && i_header.bits == 8) {
        if (i_header.samples == 3)
            return tiffFormFor(cImgType::RGB24);
        if (i_header.samples == 4)
            return tiffFormFor(cImgType::RGB32);
    }
    const auto* form = std::find_if(std::begin(s_forms), std::end(s_forms), [&](const TiffForm& i_form) {
        return i_form.format == i_header.format && i_form.bits == i_header.bits;
    });
    if (form == std::end(s_forms) || (form->isPair() && i_header.samples != 1))
        cTiff::fail("no pixel type has " + std::to_string(i_header.samples)
            + (i_header.samples == 1 ? " sample of " : " samples of ") + std::to_string(i_header.bits)
            + " bits in sample format " + std::to_string(i_header.format));
    return *form;
}

TiffForm tiffFormFor(cImgType::ImageTypes i_type)
{
    return *std::find_if(std::begin(s_forms), std::end(s_forms),
        [i_type](const TiffForm& i_form) { return i_form.type == i_type; });
}

} // namespace host
