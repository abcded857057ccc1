#include "twoImages.h"

#include <algorithm>
#include <cstring>

namespace twoImages {

/** Rows that are copied and worked on together stay in the first-level cache in between. */
constexpr unsigned s_bandBytes = 8192;

cImg workIntoCopy(const EveryVariant& i_variant, const cImg& i_a, const cImg& i_b)
{
    const unsigned rowBytes = i_b.getWidth() * i_b.getImgType().getPixelSize();
    const unsigned bandRows = std::max(1u, s_bandBytes / rowBytes);
    cImg result = i_b.cloneWithoutPixels();
    unsigned char* to = result.getData();
    const std::size_t toStep = result.getYPitch();
    const std::size_t aStep = i_a.getYPitch();
    const std::size_t bStep = i_b.getYPitch();

    for (unsigned y = 0; y < i_b.getHeight(); y += bandRows) {
        const unsigned rows = std::min(bandRows, i_b.getHeight() - y);
        for (unsigned row = y; row < y + rows; ++row)
            std::memcpy(to + row * toStep, i_b.getConstData() + row * bStep, rowBytes);
        i_variant.workInto(i_a.getConstData() + y * aStep, int(aStep), to + y * toStep, int(toStep),
            {int(i_b.getWidth()), int(rows)});
    }
    return result;
}

} // namespace twoImages
