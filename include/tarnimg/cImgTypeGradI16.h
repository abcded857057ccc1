#pragma once

#include <tarnimg/cImgTypeGradient.h>

/** Pixels of two signed values of 16 bits: dx, dy. */
class TARNIMG_EXPORT cImgTypeGradI16 : public cImgTypeGradient<QPair<short, short>> {
public:
    cImgTypeGradI16();
};
