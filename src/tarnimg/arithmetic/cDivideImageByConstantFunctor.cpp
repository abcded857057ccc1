#include <tarnimg/arithmetic/cDivideImageByConstantFunctor.h>

#include "scaledConstants.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cValueStationT.h>

namespace {

using frame::WithConstants;

constexpr char s_operator[] = "cDivideImageByConstantFunctor::operator ()";

constexpr frame::ConstantVariant s_variants[] = {
    {cImgType::UInt8, 1, WithConstants<ippiDivC_8u_C1RSfs>::call, WithConstants<ippiDivC_8u_C1IRSfs>::call},
    {cImgType::UInt16, 1, WithConstants<ippiDivC_16u_C1RSfs>::call,
        WithConstants<ippiDivC_16u_C1IRSfs>::call},
    {cImgType::SInt16, 1, WithConstants<ippiDivC_16s_C1RSfs>::call,
        WithConstants<ippiDivC_16s_C1IRSfs>::call},
    {cImgType::Float32, 1, WithConstants<ippiDivC_32f_C1R>::call, WithConstants<ippiDivC_32f_C1IR>::call},
    {cImgType::RGB24, 3, WithConstants<ippiDivC_8u_C3RSfs>::call, WithConstants<ippiDivC_8u_C3IRSfs>::call},
    {cImgType::RGB32, 4, WithConstants<ippiDivC_8u_C4RSfs>::call, WithConstants<ippiDivC_8u_C4IRSfs>::call},
};

frame::PixelConstants divisorsFor(const cImg& i_image, const cDivideImageByConstantFunctor& i_functor)
{
    switch (i_image.getImgType().getTypeId()) {
    case cImgType::Float32:
        return {{i_functor.getConstant()}};
    case cImgType::RGB24:
    case cImgType::RGB32:
        return asDivisors(scaledConstants(
            i_functor.getConstantRed(), i_functor.getConstantGreen(), i_functor.getConstantBlue()));
    default:
        return asDivisors(scaledConstant(i_functor.getConstant(), 8));
    }
}

} // namespace

cDivideImageByConstantFunctor::cDivideImageByConstantFunctor() { addSupportedInputs(s_variants); }

cImg cDivideImageByConstantFunctor::operator()(const cImg& i_image) const
{
    return frame::withConstants(*this, s_variants, i_image, divisorsFor(i_image, *this), s_operator);
}

void cDivideImageByConstantFunctor::operator()(cImg& io_image) const
{
    frame::withConstantsInPlace(*this, s_variants, io_image, divisorsFor(io_image, *this), s_operator);
}

void cDivideImageByConstantFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "constant", m_constant);
    frame::bindParam(i_params, "constantRed", m_constantRed);
    frame::bindParam(i_params, "constantGreen", m_constantGreen);
    frame::bindParam(i_params, "constantBlue", m_constantBlue);
}

class cDivideImageByConstantStation : public cValueStationT<cDivideImageByConstantFunctor, double> {
public:
    cDivideImageByConstantStation()
        : cValueStationT({"value", [](Functor& functor, const double& value) { functor.setConstant(value); }})
    {
    }
};

static const cStationRegistration<cDivideImageByConstantStation> s_registration(
    "ipp/image/arithmetic/divideConstant",
    {"Quotient of an image and a constant: img / constant.",
        {{"constant",
             "the divisor of images with one channel; the last number that came in at value replaces it"},
            {"constantRed", "the divisor of red in colour images"},
            {"constantGreen", "the divisor of green in colour images"},
            {"constantBlue", "the divisor of blue in colour images"}},
        {"On integer images the divisor acts as an integer divided by a power of two, with 8 bits for all "
         "types: 1.3 is "
         "166 / 128 = 1.296875.",
            "The integer is cut to the pixel's width, for colour images to a byte. One that comes to 0 fails "
            "the "
            "frame.",
            "On RGB32 a divisor below 1 that is no short binary fraction fails the frame, because the power "
            "of two "
            "exceeds the byte that the fourth channel is divided by.",
            "A number that comes in at value does not act on colour images."}});
