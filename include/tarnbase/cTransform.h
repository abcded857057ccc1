#pragma once

#include <tarnbase/c2DPoint.h>

/** A mapping from the pixels of an image to the coordinates of a scene. An image owns a copy of its own. */
class TARNBASE_EXPORT cTransform {
public:
    virtual ~cTransform();
    /** The place in the scene of a place in the image, in pixels. */
    virtual c2DPoint<double> map(const c2DPoint<double>& i_pixel) const = 0;
    /** A new copy; the caller owns it. */
    virtual cTransform* clone() const = 0;

protected:
    cTransform() = default;
    cTransform(const cTransform&) = default;
    cTransform& operator=(const cTransform&) = default;
};
