// The public conversion of images and pixel types; every pixel type converts by the same steps.
#include "conversion/routes.h"

#include <tarnbase/cTracer.h>
#include <tarnimg/cImageTypeFactory.h>
#include <tarnimg/cImg.h>
#include <tarnimg/tarnimg.h>

#include <cmath>
#include <memory>

namespace {

/** Ranges this close to 0 to 0 count as unset. */
constexpr double s_unset = 1e-12;

bool isSet(const cDblRange& i_range)
{
    return !(std::fabs(i_range.getLow()) <= s_unset && std::fabs(i_range.getHigh()) <= s_unset);
}

bool hasWidth(const cDblRange& i_range) { return i_range.getLength() > 0.0; }

bool isFloat(cImgType::ImageTypes i_type)
{
    return i_type == cImgType::Float32 || i_type == cImgType::Float64;
}

/** A float image from one of these types shows the range of its source; from the others, that of the
 * conversion. */
bool givesRangeToFloats(cImgType::ImageTypes i_source)
{
    switch (i_source) {
    case cImgType::RGB24:
    case cImgType::RGB32:
    case cImgType::UInt32:
    case cImgType::SInt8:
    case cImgType::SInt16:
    case cImgType::Float32:
    case cImgType::Float64:
        return true;
    default:
        return false;
    }
}

/** The result is kept and written in place. */
bool fits(const cImg& i_result, const cImg& i_source, cImgType::ImageTypes i_type)
{
    return i_result.isKindOf(i_type) && i_result.getWidth() == i_source.getWidth()
        && i_result.getHeight() == i_source.getHeight();
}

void readRange(const cMapObj& i_params, const QString& i_key, cDblRange& io_range)
{
    if (!i_params.isVoid())
        i_params.getSubObject(i_key)->getValue(io_range);
}

} // namespace

bool cImg::convertTo(const cImgType::ImageTypes& i_type, cImg& io_result, const cMapObj* i_params) const
{
    const std::unique_ptr<cImgType> target(cImageTypeFactory::create(i_type, 1));
    if (!target || &io_result == this)
        return false;
    return convertTo(*target, io_result, i_params);
}

bool cImg::convertTo(const cImgType& i_type, cImg& io_result, const cMapObj* i_params) const
{
    return getImgType().convertTo(*this, i_type, io_result, i_params);
}

bool cImgType::prepareConvert(const cImg& i_source, const cImgType& i_target, cImg& io_result,
    const cMapObj* i_params, cDblRange& io_inputRange, cDblRange& io_outputRange) const
{
    if (!i_source.isKindOf(m_typeId)) {
        // Names the target, though it is this type that the source should have.
        cTracer::cerr << "Source image type must be of type " << i_target.getName() << " but is "
                      << i_source.getImgType().getName() << "." << cTracer::end();
        return false;
    }
    if (!conversion::isSupported(m_typeId, i_target.getTypeId())) {
        cTracer::cerr << "Conversion is not supported: " << i_source.getImgType().getName() << " -> "
                      << i_target.getName() << "." << cTracer::end();
        return false;
    }
    if (!fits(io_result, i_source, i_target.getTypeId()))
        io_result = cImg(i_target.getTypeId(), i_source.getWidth(), i_source.getHeight(), 1);
    if (!io_result.isValid())
        return false;
    io_result.copyImgAttr(i_source);
    if (i_params) {
        readRange(*i_params, QStringLiteral("inputRange"), io_inputRange);
        readRange(*i_params, QStringLiteral("outputRange"), io_outputRange);
    }
    if (!isSet(io_inputRange) || !hasWidth(io_inputRange))
        io_inputRange = m_range;
    // The second test asks for the input range too: without one, an output range makes no sense.
    if (!isSet(io_outputRange) || !hasWidth(io_inputRange))
        io_outputRange = isFloat(i_target.getTypeId()) ? io_inputRange : i_target.getRange();
    io_result.setRange(io_outputRange);
    return true;
}

bool cImgType::convertImage(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    const ImageTypes targetId = i_target.getTypeId();
    // A result that is replaced must live to the end: it may be the source, or hold one of the descriptors.
    const bool isReplaced = !fits(io_result, i_source, targetId);
    const cImg replaced = isReplaced ? io_result : cImg();
    const cImg& source = isReplaced && &i_source == &io_result ? replaced : i_source;

    const bool hasRoute = conversion::findRoute(m_typeId, targetId);
    conversion::Ranges ranges;
    if (!prepareConvert(
            source, i_target, io_result, hasRoute ? i_params : nullptr, ranges.input, ranges.output))
        return false;
    if (!hasRoute
        || (m_typeId == targetId && ranges.input == m_range && ranges.output == i_target.getRange()))
        io_result.copyFrom(source);
    else
        conversion::convertPixels(source, io_result, ranges);
    if (isFloat(targetId) && givesRangeToFloats(m_typeId))
        io_result.setRange(source.getRange());
    return true;
}

// ---- The pixel types

bool cImgTypeRGB24::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeRGB32::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeUInt8::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeUInt16::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeUInt32::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeSInt8::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeSInt16::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeSInt32::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeSInt64::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeFloat32::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeFloat64::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

bool cImgTypeComplex::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

template <class T>
bool cImgTypeGradient<T>::convertTo(
    const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const
{
    return convertImage(i_source, i_target, io_result, i_params);
}

template bool cImgTypeGradient<QPair<short, short>>::convertTo(
    const cImg&, const cImgType&, cImg&, const cMapObj*) const;
template bool cImgTypeGradient<QPair<int, int>>::convertTo(
    const cImg&, const cImgType&, cImg&, const cMapObj*) const;
