#pragma once

#include <tarnbase/export.h>

/** How the numbers of an entry are shown to people. It has no part in what is written to a stream. */
class TARNBASE_EXPORT cWriteFormat {
public:
    char notation = 'g'; ///< of floating-point numbers, as QString::number knows it: e, E, f, g, G
    int precision = 6; ///< digits of floating-point numbers, 0 to 100
    int base = 10; ///< of integers, 2 to 36
};
