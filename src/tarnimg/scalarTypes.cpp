// The types with any number of channels, but for what only one of them has.

#include <tarnimg/cImgTypeFloat32.h>
#include <tarnimg/cImgTypeFloat64.h>
#include <tarnimg/cImgTypeSInt16.h>
#include <tarnimg/cImgTypeSInt32.h>
#include <tarnimg/cImgTypeSInt64.h>
#include <tarnimg/cImgTypeSInt8.h>
#include <tarnimg/cImgTypeUInt16.h>
#include <tarnimg/cImgTypeUInt32.h>
#include <tarnimg/cImgTypeUInt8.h>

#include "typeParams.h"

#include <limits>

namespace {

template <class T> cDblRange allValues()
{
    return {double(std::numeric_limits<T>::lowest()), double(std::numeric_limits<T>::max())};
}

constexpr cDblRange s_floatStart(-1.0, 1.0);

} // namespace

cImgTypeUInt8::cImgTypeUInt8() : cImgTypeScalar(UInt8, allValues<quint8>()) {}

cImgTypeUInt16::cImgTypeUInt16() : cImgTypeScalar(UInt16, allValues<quint16>()) {}

cImgTypeUInt32::cImgTypeUInt32() : cImgTypeScalar(UInt32, allValues<quint32>()) {}

cImgTypeSInt8::cImgTypeSInt8() : cImgTypeScalar(SInt8, allValues<qint8>()) {}

cImgTypeSInt16::cImgTypeSInt16() : cImgTypeScalar(SInt16, allValues<qint16>()) {}

cImgTypeSInt32::cImgTypeSInt32() : cImgTypeScalar(SInt32, allValues<qint32>()) {}

cImgTypeSInt64::cImgTypeSInt64() : cImgTypeScalar(SInt64, allValues<qint64>()) {}

cImgTypeFloat32::cImgTypeFloat32() : cImgTypeScalar(Float32, allValues<float>()) { setRange(s_floatStart); }

cImgTypeFloat64::cImgTypeFloat64() : cImgTypeScalar(Float64, allValues<double>()) { setRange(s_floatStart); }

cMapObj cImgTypeUInt8::getParams() const
{
    cMapObj params = cImgTypeScalar::getParams();
    typeParams::write(params, "Colorize", m_colorize);
    return params;
}

void cImgTypeUInt8::setParams(const cMapObj& i_params)
{
    cImgTypeScalar::setParams(i_params);
    typeParams::read(i_params, "Colorize", m_colorize);
}
