// Makes the value types known by name, so that queued signals can carry them.
#include <tarnbase/tarnbase.h>

namespace {

const bool s_areKnown = [] {
    qRegisterMetaType<cRange<double>>("cDblRange");
    qRegisterMetaType<cRange<double>>();
    qRegisterMetaType<cRect<int>>();
    qRegisterMetaType<c2DPoint<int>>();
    qRegisterMetaType<c2DPoint<float>>();
    qRegisterMetaType<c2DPoint<double>>();
    qRegisterMetaType<c2DLine<float>>();
    qRegisterMetaType<cMatrix<int>>();
    qRegisterMetaType<cMatrix<float>>();
    qRegisterMetaType<cMatrix<double>>();
    qRegisterMetaType<cComplex<float>>("cFltComplex");
    qRegisterMetaType<cComplex<float>>();
    qRegisterMetaType<cComplex<double>>();
    qRegisterMetaType<cRgb>();
    qRegisterMetaType<cRgba>();
    qRegisterMetaType<cError>();
    return true;
}();

} // namespace
