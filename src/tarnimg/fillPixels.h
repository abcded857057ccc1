#pragma once

#include <tarnimg/cImg.h>

#include <cstring>

/** Writes one pixel value everywhere, into any memory: pitches and alignment are what they are. Detaches
 * first. */
template <class T> void fillPixels(cImg& io_image, const T& i_value)
{
    unsigned char* row = io_image.getData();
    for (unsigned y = 0; y < io_image.getHeight(); ++y, row += io_image.getYPitch()) {
        unsigned char* pixel = row;
        for (unsigned x = 0; x < io_image.getWidth(); ++x, pixel += io_image.getXPitch())
            std::memcpy(pixel, &i_value, sizeof(T));
    }
}
