#pragma once

#include <tarnimg/cImgTypeGradient.h>

/** Pixels of two signed values of 32 bits: dx, dy. */
class TARNIMG_EXPORT cImgTypeGradI32 : public cImgTypeGradient<QPair<int, int>> {
public:
    cImgTypeGradI32();
};
