#pragma once

#include <QtGlobal>

/** Marks what the library shows; all other symbols are hidden. */
#if defined(tarnbase_EXPORTS)
#define TARNBASE_EXPORT Q_DECL_EXPORT
#else
#define TARNBASE_EXPORT Q_DECL_IMPORT
#endif
