#include <tarnimg/imagePortGroups.h>

template class cPortGroup<cImg>;
template class cPortGroup<cImg, cImg>;
template class cPortGroup<cImg, cImg, cImg>;
template class cPortGroup<cImg, cImg, cImg, cImg>;
