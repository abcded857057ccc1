#pragma once

#include <tarnflow/cPortGroup.h>
#include <tarnimg/cIPortImg.h>
#include <tarnimg/export.h>

/** The groups with image inputs are compiled once, in this library. */
extern template class TARNIMG_EXPORT cPortGroup<cImg>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, cImg>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, cImg, cImg>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, cImg, cImg, cImg>;
