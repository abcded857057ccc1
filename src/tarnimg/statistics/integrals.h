#pragma once

#include <tarnimg/cImg.h>

/** What the functors that make integral images share. */
namespace integrals {

/** An image for the sums of another: a column and a row more, with undefined pixels. */
inline cImg imageFor(const cImg& i_image, cImgType::ImageTypes i_type)
{
    return cImg(i_type, i_image.getWidth() + 1, i_image.getHeight() + 1, 1);
}

} // namespace integrals
