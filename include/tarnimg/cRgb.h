#pragma once

#include <QMetaType>

/** A pixel of type `RGB24`: three bytes in the order of memory. */
struct cRgb {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;

    friend constexpr bool operator==(const cRgb&, const cRgb&) = default;
};

/** A pixel of type `RGB32`: four bytes in the order of memory. */
struct cRgba {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;
    unsigned char alpha = 255;

    friend constexpr bool operator==(const cRgba&, const cRgba&) = default;
};

static_assert(sizeof(cRgb) == 3 && sizeof(cRgba) == 4, "they are laid over pixels");

Q_DECLARE_METATYPE(cRgb)
Q_DECLARE_METATYPE(cRgba)
