#pragma once

#include <tarnimg/cImgFunctor.h>

class QVariant;

/**
 * Least and greatest pixel. No station has this functor; it serves the image core and other operations.
 *
 * Inputs, as `isSupported` tells them: UInt8, UInt16, SInt16, SInt32, Float32, Float64 with any number of
 * channels; RGB24; RGB32. Other images fail with the texts of all functors, but see the form with variants.
 *
 * Pixels that are not a number do not count.
 */
class TARNIMG_EXPORT cMinMaxFunctor : public cImgFunctor {
public:
    cMinMaxFunctor();

    /**
     * Extremes of an image with one channel, in the metatype of its pixels (UChar, UShort, UInt, SChar,
     * Short, Int, Float or Double). With several channels the variants stay as they are. If no pixel is a
     * number, both are not a number.
     *
     * Beside the supported types this form takes UInt32 and SInt8. Three things are not what one expects:
     * - of SInt8 the bytes are ranked as unsigned: -1 is the greatest;
     * - of UInt32, SInt32 and Float64 only the first pixels count, as many as a row has bytes (so four rows,
     * or eight), or as many as there are up to the end of the pixel memory; in a view these are not only
     * pixels of the view;
     * - a variant that is not shared and holds the type already is written in place.
     */
    void operator()(const cImg& i_image, QVariant& o_min, QVariant& o_max) const;

    /**
     * Extremes of each channel; the arrays have an element for each of them. A channel without a single
     * number has the greatest double as its minimum and the negative of that as its maximum. All pixels
     * count.
     */
    void operator()(const cImg& i_image, double* o_min, double* o_max) const;
};
