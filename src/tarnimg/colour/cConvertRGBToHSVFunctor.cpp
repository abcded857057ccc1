#include <tarnimg/colour/cConvertRGBToHSVFunctor.h>

#include "rowFunction.h"

#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cConvertRGBToHSVFunctor::operator ()";

constexpr colour::RowVariant<Ipp8u, Ipp8u> s_variants[] = {
    {cImgType::RGB24, 3, ippiRGBToHSV_8u_C3R},
    {cImgType::RGB32, 4, ippiRGBToHSV_8u_AC4R},
};

} // namespace

cConvertRGBToHSVFunctor::cConvertRGBToHSVFunctor() { addSupportedInputs(s_variants); }

void cConvertRGBToHSVFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "numThreads", m_numThreads);
}

cImg cConvertRGBToHSVFunctor::operator()(const cImg& i_image) const
{
    return colour::convertRows(*this, s_variants, m_numThreads, i_image, s_operator);
}

class cConvertRGBToHSVStation : public cFunctorStationT<cConvertRGBToHSVFunctor, cImg, cImg, void> {};

static const cStationRegistration<cConvertRGBToHSVStation> s_registration(
    "ipp/image/colorConversion/RGBToHSV",
    {"Hue, saturation and value in the channels for red, green and blue.",
        {{"numThreads", colour::s_numThreadsMeaning}},
        {"A full circle of hues is 255: red is 0, green 85, blue 170.", "The alpha channel becomes 255."}});
