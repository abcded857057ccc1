#include <tarnimg/arithmetic/cImageAbsFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cImageAbsFunctor::operator ()";

constexpr frame::UnaryVariant s_variants[] = {
    {cImgType::SInt16, 1, frame::Unary<ippiAbs_16s_C1R>::call},
    {cImgType::Float32, 1, frame::Unary<ippiAbs_32f_C1R>::call},
};

} // namespace

cImageAbsFunctor::cImageAbsFunctor() { addSupportedInputs(s_variants); }

cImg cImageAbsFunctor::operator()(const cImg& i_image) const
{
    frame::checkInput(*this, i_image, s_operator);
    cImg result = frame::resultLike(i_image);
    if (const frame::UnaryVariant* variant = frame::find(s_variants, i_image))
        frame::checkStatus(variant->call(i_image, result), s_operator);
    return result;
}

class cImageAbsStation : public cFunctorStationT<cImageAbsFunctor, cImg, cImg, void> {};

static const cStationRegistration<cImageAbsStation> s_registration("ipp/image/arithmetic/abs",
    {"Absolute value of each pixel.", {}, {"Takes signed types only: unsigned images are refused."}});
