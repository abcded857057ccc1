#pragma once

#include <cstdint>
#include <tarnimg/cImgType.h>

class cTiffReader;

/** How the samples of a pixel type stand in a TIFF file. */
struct TiffForm {
    cImgType::ImageTypes type;
    std::uint16_t format;
    std::uint16_t bits; ///< of one sample

    /** The two numbers of a pixel are one sample. */
    bool isPair() const;
};

/** What the directory of a file says about its picture. */
struct TiffHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bits = 1;
    std::uint16_t samples = 1;
    std::uint16_t format = 1;
    std::uint16_t photometric = 1;
    std::uint16_t planar = 1;
    std::uint16_t compression = 1;
    std::uint32_t tileWidth = 0; ///< 0 if the picture is not tiled
    std::uint32_t tileHeight = 0;

    bool isTiled() const { return tileWidth != 0; }
    /** Each channel stands in a plane of its own. */
    bool isSplit() const;
    /** Its pixels stand for others: libtiff makes 8-bit colour of them. */
    bool isRendered() const;
    bool isWhiteZero() const;
    /** Bytes of a pixel of the image that it becomes. */
    std::uint64_t pixelBytes() const;
    /** Bytes of so many pixels of a row, or of a plane's row, in the file. */
    std::uint64_t rowBytes(std::uint64_t i_pixels) const;
    /** How many bytes a byte of the file can become at the most. */
    std::uint64_t greatestRatio() const;
};

namespace host {

/** @throws std::runtime_error if the directory cannot be that of a picture */
TiffHeader readTiffHeader(const cTiffReader& i_tiff);
/** @throws std::runtime_error that says what of it no pixel type has */
TiffForm tiffFormFor(const TiffHeader& i_header);
TiffForm tiffFormFor(cImgType::ImageTypes i_type);

} // namespace host
