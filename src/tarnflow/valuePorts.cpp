// The instances of the typed ports for the value types of this library: one vtable and one type_info for all.
#include <tarnflow/cIPort.h>
#include <tarnflow/cOPort.h>

#define TARNFLOW_INSTANTIATE(T)                                                                              \
    template class cBufferT<T>;                                                                              \
    template class cBufferConverter<T>;                                                                      \
    template class cIPortT<T>;                                                                               \
    template class cIPort<T>;                                                                                \
    template class cOPortT<T>;                                                                               \
    template class cOPort<T>;                                                                                \
    template class cImport<T>;                                                                               \
    template class cExport<T>;
TARNFLOW_VALUE_TYPES(TARNFLOW_INSTANTIATE)
