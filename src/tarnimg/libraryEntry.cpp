// What happens when the library is loaded and when it goes.

#include "cImgBufPool.h"

#include <tarnimg/cImageTypeFactory.h>

#include <QDebug>

namespace {

class cLibraryEntry {
public:
    cLibraryEntry()
    {
        qDebug() << "Starting "
                 << "tarnimg"
                 << "....";
        registerImageTypes();
    }

    /** What the constructor has used is destroyed later than this object, so that it can be used here too. */
    ~cLibraryEntry()
    {
        qDebug() << "Terminating "
                 << "tarnimg"
                 << "...";
        cImgBufPool::instance().close();
    }
};

const cLibraryEntry s_entry;

} // namespace
