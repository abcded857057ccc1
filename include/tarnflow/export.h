#pragma once

#include <QtGlobal>

/** Marks what `tarnflow` exports; everything else in the library is hidden. */
#if defined(tarnflow_EXPORTS)
#define TARNFLOW_EXPORT Q_DECL_EXPORT
#else
#define TARNFLOW_EXPORT Q_DECL_IMPORT
#endif
