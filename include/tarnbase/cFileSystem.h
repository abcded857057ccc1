#pragma once

#include <tarnbase/export.h>

class QString;

class TARNBASE_EXPORT cFileSystem {
public:
    /** What follows the last dot of the file name, without the dot and in its own case; empty if there is no
     * dot. */
    static QString extractExtension(const QString& i_path);
};
