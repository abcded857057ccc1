#pragma once

#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>

/** How a pixel type gives away and takes over its settings. */
namespace typeParams {

/** Enters a copy of a value. */
template <class T> void write(cMapObj& o_params, const char* i_path, const T& i_value)
{
    o_params.setSubObject(new cDataValObj<T>(i_value), QString::fromLatin1(i_path), true);
}

/** Takes the value of an entry; without the entry, or if it is of no use, the value stays. */
template <class T> void read(const cMapObj& i_params, const char* i_path, T& io_value)
{
    i_params.getSubObject(QString::fromLatin1(i_path))->getValue(io_value);
}

} // namespace typeParams
