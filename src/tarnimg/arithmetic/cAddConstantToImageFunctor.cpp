#include <tarnimg/arithmetic/cAddConstantToImageFunctor.h>

#include "frame/ippConstants.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cValueStationT.h>

namespace {

using frame::WithConstants;

constexpr char s_operator[] = "cAddConstantToImageFunctor::operator ()";

constexpr frame::ConstantVariant s_variants[] = {
    {cImgType::UInt8, 1, WithConstants<ippiAddC_8u_C1RSfs>::call, WithConstants<ippiAddC_8u_C1IRSfs>::call},
    {cImgType::UInt16, 1, WithConstants<ippiAddC_16u_C1RSfs>::call,
        WithConstants<ippiAddC_16u_C1IRSfs>::call},
    {cImgType::SInt16, 1, WithConstants<ippiAddC_16s_C1RSfs>::call,
        WithConstants<ippiAddC_16s_C1IRSfs>::call},
    {cImgType::Float32, 1, WithConstants<ippiAddC_32f_C1R>::call, WithConstants<ippiAddC_32f_C1IR>::call},
};

} // namespace

cAddConstantToImageFunctor::cAddConstantToImageFunctor() { addSupportedInputs(s_variants); }

cImg cAddConstantToImageFunctor::operator()(const cImg& i_image) const
{
    return frame::withConstants(
        *this, s_variants, i_image, frame::constantOf(double(m_constant)), s_operator);
}

void cAddConstantToImageFunctor::operator()(cImg& io_image) const
{
    frame::withConstantsInPlace(
        *this, s_variants, io_image, frame::constantOf(double(m_constant)), s_operator);
}

void cAddConstantToImageFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "constant", m_constant);
}

class cAddConstantToImageStation : public cInPlaceValueStationT<cAddConstantToImageFunctor, double> {
public:
    cAddConstantToImageStation()
        : cInPlaceValueStationT(
            {"value", [](Functor& functor, const double& value) { functor.setConstant(float(value)); }})
    {
    }
};

static const cStationRegistration<cAddConstantToImageStation> s_registration(
    "ipp/image/arithmetic/addConstant",
    {"Sum of an image and a constant.",
        {{"constant", "the summand, in pixel values; the last number that came in at value replaces it"}},
        {"On integer images the constant is truncated to an integer: 1.9 acts as 1.",
            "The integer is cut to the pixel's width: on UInt8 300 acts as 44."}});
