#include <tarnimg/arithmetic/cSubtractConstantFromImageFunctor.h>

#include "frame/ippConstants.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cValueStationT.h>

namespace {

using frame::WithConstants;

constexpr char s_operator[] = "cSubtractConstantFromImageFunctor::operator ()";

constexpr frame::ConstantVariant s_variants[] = {
    {cImgType::UInt8, 1, WithConstants<ippiSubC_8u_C1RSfs>::call, WithConstants<ippiSubC_8u_C1IRSfs>::call},
    {cImgType::UInt16, 1, WithConstants<ippiSubC_16u_C1RSfs>::call,
        WithConstants<ippiSubC_16u_C1IRSfs>::call},
    {cImgType::SInt16, 1, WithConstants<ippiSubC_16s_C1RSfs>::call,
        WithConstants<ippiSubC_16s_C1IRSfs>::call},
    {cImgType::Float32, 1, WithConstants<ippiSubC_32f_C1R>::call, WithConstants<ippiSubC_32f_C1IR>::call},
    // Accepted, and passed over.
    {cImgType::RGB24, 3, nullptr, nullptr},
    {cImgType::RGB32, 4, nullptr, nullptr},
};

} // namespace

cSubtractConstantFromImageFunctor::cSubtractConstantFromImageFunctor() { addSupportedInputs(s_variants); }

cImg cSubtractConstantFromImageFunctor::operator()(const cImg& i_image) const
{
    return frame::withConstants(*this, s_variants, i_image, frame::constantOf(m_constant), s_operator);
}

void cSubtractConstantFromImageFunctor::operator()(cImg& io_image) const
{
    frame::withConstantsInPlace(*this, s_variants, io_image, frame::constantOf(m_constant), s_operator);
}

void cSubtractConstantFromImageFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "constant", m_constant);
}

class cSubtractConstantFromImageStation : public cValueStationT<cSubtractConstantFromImageFunctor, double> {
public:
    cSubtractConstantFromImageStation()
        : cValueStationT({"value", [](Functor& functor, const double& value) { functor.setConstant(value); }})
    {
    }
};

static const cStationRegistration<cSubtractConstantFromImageStation> s_registration(
    "ipp/image/arithmetic/subtractConstant",
    {"Difference of an image and a constant: img - constant.",
        {{"constant", "the subtrahend, in pixel values; the last number that came in at value replaces it"}},
        {"On integer images the constant is truncated to an integer: 1.9 acts as 1.",
            "The integer is cut to the pixel's width: on UInt8 300 acts as 44.",
            "RGB24 and RGB32 are accepted, but nothing is computed for them: the pixels of the result are "
            "undefined. Use subtractConstantRGB for colour images."}});
