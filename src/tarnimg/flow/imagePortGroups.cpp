#include <tarnimg/imagePortGroups.h>

template class cPortGroup<cImg>;
template class cPortGroup<cImg, cImg>;
template class cPortGroup<cImg, cImg, cImg>;
template class cPortGroup<cImg, cImg, cImg, cImg>;

template class cPortGroup<cImg, double>;
template class cPortGroup<cImg, float>;
template class cPortGroup<cImg, int>;
template class cPortGroup<cImg, QColor>;
template class cPortGroup<cImg, c2DPoint<int>>;
template class cPortGroup<cImg, cMatrix<float>>;
template class cPortGroup<cImg, double, double, double>;
template class cPortGroup<cImg, QVector<int>, QVector<int>>;
template class cPortGroup<cImg, QVector<float>, QVector<float>>;
template class cPortGroup<cImg, QVector<QVector<int>>, QVector<QVector<int>>>;
