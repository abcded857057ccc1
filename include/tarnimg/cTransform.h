#pragma once

/**
 * A geometric transform that travels with an image, defined by the host.
 *
 * An image owns its transform and copies it with its record. The library asks nothing else of it.
 */
class cTransform {
public:
    virtual ~cTransform() = default;
    /** A new copy, which the caller owns. */
    virtual cTransform* clone() const = 0;

protected:
    cTransform() = default;
    cTransform(const cTransform&) = default;
    cTransform& operator=(const cTransform&) = default;
};
