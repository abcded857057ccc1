#include <tarnimg/arithmetic/cMultiplyConstantWithImageFunctor.h>

#include "scaledConstants.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cValueStationT.h>

namespace {

using frame::WithConstants;

constexpr char s_operator[] = "cMultiplyConstantWithImageFunctor::operator ()";

constexpr frame::ConstantVariant s_variants[] = {
    {cImgType::UInt8, 1, WithConstants<ippiMulC_8u_C1RSfs>::call, WithConstants<ippiMulC_8u_C1IRSfs>::call},
    {cImgType::UInt16, 1, WithConstants<ippiMulC_16u_C1RSfs>::call,
        WithConstants<ippiMulC_16u_C1IRSfs>::call},
    {cImgType::SInt16, 1, WithConstants<ippiMulC_16s_C1RSfs>::call,
        WithConstants<ippiMulC_16s_C1IRSfs>::call},
    {cImgType::Float32, 1, WithConstants<ippiMulC_32f_C1R>::call, WithConstants<ippiMulC_32f_C1IR>::call},
};

frame::PixelConstants constantsFor(const cImg& i_image, double i_constant)
{
    switch (i_image.getImgType().getTypeId()) {
    case cImgType::UInt8:
        return scaledConstant(i_constant, 8);
    case cImgType::UInt16:
    case cImgType::SInt16:
        return scaledConstant(i_constant, 16);
    default:
        return {{i_constant}};
    }
}

} // namespace

cMultiplyConstantWithImageFunctor::cMultiplyConstantWithImageFunctor() { addSupportedInputs(s_variants); }

cImg cMultiplyConstantWithImageFunctor::operator()(const cImg& i_image) const
{
    return frame::withConstants(
        *this, s_variants, i_image, constantsFor(i_image, double(m_constant)), s_operator);
}

void cMultiplyConstantWithImageFunctor::operator()(cImg& io_image) const
{
    frame::withConstantsInPlace(
        *this, s_variants, io_image, constantsFor(io_image, double(m_constant)), s_operator);
}

void cMultiplyConstantWithImageFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "constant", m_constant);
}

class cMultiplyConstantWithImageStation : public cValueStationT<cMultiplyConstantWithImageFunctor, double> {
public:
    cMultiplyConstantWithImageStation()
        : cValueStationT(
            {"value", [](Functor& functor, const double& value) { functor.setConstant(float(value)); }})
    {
    }
};

static const cStationRegistration<cMultiplyConstantWithImageStation> s_registration(
    "ipp/image/arithmetic/multiplyConstant",
    {"Product of an image and a constant.",
        {{"constant", "the factor; the last number that came in at value replaces it"}},
        {"On integer images the factor acts as an integer of the pixel's width divided by a power of two: on "
         "UInt8 "
         "1.3 is 166 / 128 = 1.296875.",
            "The integer is cut to the pixel's width: on UInt8 300 acts as 44 and 200.5 as 145 / 2.",
            "On SInt16 a fraction that 15 bits do not hold changes its sign and size: 1.3 acts as -0.7, 0.5 "
            "as it is.",
            "A negative factor is truncated to an integer, and on unsigned images cut like the others."}});
