#pragma once

#include <tarnflow/cPortGroup.h>
#include <tarnflow/valueTypes.h>
#include <tarnimg/cIPortImg.h>
#include <tarnimg/export.h>

/** The groups with image inputs are compiled once, in this library. */
extern template class TARNIMG_EXPORT cPortGroup<cImg>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, cImg>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, cImg, cImg>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, cImg, cImg, cImg>;
// An image and values beside it.
extern template class TARNIMG_EXPORT cPortGroup<cImg, double>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, float>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, int>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, QColor>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, c2DPoint<int>>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, cMatrix<float>>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, double, double, double>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, QVector<int>, QVector<int>>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, QVector<float>, QVector<float>>;
extern template class TARNIMG_EXPORT cPortGroup<cImg, QVector<QVector<int>>, QVector<QVector<int>>>;
