#pragma once

// The port templates make each other (an output for an input, the boundary ports for both): whoever needs one
// gets all. Each of these headers defines its template before it includes this one, so that all definitions
// stand before the first instance.
#include <tarnflow/cBufferConverter.h>
#include <tarnflow/cExport.h>
#include <tarnflow/cIPort.h>
#include <tarnflow/cImport.h>
#include <tarnflow/cOPort.h>

// Bases first: an instance that is made by the way, as the base of another, could no longer be given its
// export mark.
#define TARNFLOW_DECLARE(T)                                                                                  \
    extern template class TARNFLOW_EXPORT cOPortT<T>;                                                        \
    extern template class TARNFLOW_EXPORT cOPort<T>;                                                         \
    extern template class TARNFLOW_EXPORT cExport<T>;                                                        \
    extern template class TARNFLOW_EXPORT cIPortT<T>;                                                        \
    extern template class TARNFLOW_EXPORT cIPort<T>;                                                         \
    extern template class TARNFLOW_EXPORT cImport<T>;                                                        \
    extern template class TARNFLOW_EXPORT cBufferConverter<T>;
TARNFLOW_VALUE_TYPES(TARNFLOW_DECLARE)
#undef TARNFLOW_DECLARE
