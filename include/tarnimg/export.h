#pragma once

#include <QtGlobal>

/** Marks what `tarnimg` exports; everything else in the library is hidden. */
#if defined(tarnimg_EXPORTS)
#define TARNIMG_EXPORT Q_DECL_EXPORT
#else
#define TARNIMG_EXPORT Q_DECL_IMPORT
#endif
