#pragma once

#include <tarnimg/cImg.h>

class cTiffReader;
struct TiffHeader;

namespace host {

/** Reads all rows or tiles into an image of the header's size and type. @throws std::runtime_error */
void readTiffPixels(const cTiffReader& i_tiff, const TiffHeader& i_header, cImg& o_image);

/** What libtiff makes of a palette or of YCbCr: `RGB24`. @throws std::runtime_error */
cImg renderTiff(const cTiffReader& i_tiff, const TiffHeader& i_header);

} // namespace host
