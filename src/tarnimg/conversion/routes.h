#pragma once

#include "conversion/steps.h"

#include <tarnimg/cImgType.h>

class cImg;

namespace conversion {

/** Appends the steps from one pixel type to another. */
using Route = void (*)(Program& io_program, const Ranges& i_ranges);

/** The route between two types of numbers, null if there is none. */
Route findRoute(cImgType::ImageTypes i_source, cImgType::ImageTypes i_target);

/** Whether images of one type convert to the other: there is a route, or the types are equal. */
bool isSupported(cImgType::ImageTypes i_source, cImgType::ImageTypes i_target);

/**
 * Converts pixels by the route of the two images' types, whatever the ranges of their descriptors; this one
 * keeps both descriptors. Both images must be valid, of one size and of types with a route between them; the
 * result is detached.
 */
void convertPixels(const cImg& i_source, cImg& io_result, const Ranges& i_ranges);

} // namespace conversion
