#include <tarnimg/statistics/cIntegralFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippConstants.h"
#include "frame/ippImages.h"
#include "integrals.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cIntegralFunctor::operator ()";

/** Of anything but floats the pixels are taken for bytes, as many in a row as it has pixels. */
template <auto Function> struct Integral;

template <class S, class D, IppStatus (*Function)(const S*, int, D*, int, IppiSize)>
struct Integral<Function> {
    static IppStatus call(const cImg& i_image, float, cImg& io_result)
    {
        D* result = frame::pixels<D>(io_result);
        return Function(frame::pixels<S>(i_image), frame::stepOf(i_image), result, frame::stepOf(io_result),
            frame::sizeOf(i_image));
    }
};

template <class S, class D, IppStatus (*Function)(const S*, int, D*, int, IppiSize, D)>
struct Integral<Function> {
    static IppStatus call(const cImg& i_image, float i_offset, cImg& io_result)
    {
        D* result = frame::pixels<D>(io_result);
        return Function(frame::pixels<S>(i_image), frame::stepOf(i_image), result, frame::stepOf(io_result),
            frame::sizeOf(i_image), frame::pixelConstant<D>("offset", double(i_offset)));
    }
};

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    bool isFloat; ///< whatever the mode
    IppStatus (*inIntegers)(const cImg& i_image, float i_offset, cImg& io_result);
    IppStatus (*inFloats)(const cImg& i_image, float i_offset, cImg& io_result);
};

constexpr Variant s_variants[] = {
    {cImgType::UInt8, 1, false, Integral<ippiIntegral_8u32s_C1R>::call,
        Integral<ippiIntegral_8u32f_C1R>::call},
    {cImgType::SInt32, 1, false, Integral<ippiIntegral_8u32s_C1R>::call,
        Integral<ippiIntegral_8u32f_C1R>::call},
    {cImgType::Float32, 1, true, nullptr, Integral<ippiIntegral_32f_C1R>::call},
};

} // namespace

cIntegralFunctor::cIntegralFunctor() { addSupportedInputs(s_variants); }

cImg cIntegralFunctor::operator()(const cImg& i_image) const
{
    frame::checkInput(*this, i_image, s_operator);
    const Variant* variant = frame::find(s_variants, i_image);
    if (!variant)
        return cImg();
    const bool inFloats = variant->isFloat || m_floatMode;
    cImg result = integrals::imageFor(i_image, inFloats ? cImgType::Float32 : cImgType::SInt32);
    const auto call = inFloats ? variant->inFloats : variant->inIntegers;
    frame::checkStatus(call(i_image, m_offset, result), s_operator);
    return result;
}

void cIntegralFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "offset", m_offset);
    frame::bindParam(i_params, "floatMode", m_floatMode);
}

class cIntegralStation : public cFunctorStationT<cIntegralFunctor, cImg, cImg, void> {};

static const cStationRegistration<cIntegralStation> s_registration("ipp/image/statistics/integral",
    {"Integral image: the sum of all pixels above and to the left.",
        {{"offset", "added to each sum, pixel values; not to sums of a Float32 image"},
            {"floatMode",
                "true for sums in Float32, false for SInt32, which wraps; a Float32 image always gives "
                "Float32"}},
        {"The result has a column and a row more than the image.",
            "SInt32 images are read byte by byte, as if the first quarter of each row were pixels of 8 "
            "bits."}});
