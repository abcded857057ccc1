#include <tarnimg/colour/cConvertHSVToRGBFunctor.h>

#include "rowFunction.h"

#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cConvertHSVToRGBFunctor::operator ()";

constexpr colour::RowVariant<Ipp8u, Ipp8u> s_variants[] = {
    {cImgType::RGB24, 3, ippiHSVToRGB_8u_C3R},
    {cImgType::RGB32, 4, ippiHSVToRGB_8u_AC4R},
};

} // namespace

cConvertHSVToRGBFunctor::cConvertHSVToRGBFunctor() { addSupportedInputs(s_variants); }

void cConvertHSVToRGBFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "numThreads", m_numThreads);
}

cImg cConvertHSVToRGBFunctor::operator()(const cImg& i_image) const
{
    return colour::convertRows(*this, s_variants, m_numThreads, i_image, s_operator);
}

class cConvertHSVToRGBStation : public cFunctorStationT<cConvertHSVToRGBFunctor, cImg, cImg, void> {};

static const cStationRegistration<cConvertHSVToRGBStation> s_registration(
    "ipp/image/colorConversion/HSVToRGB",
    {"Red, green and blue of an image that holds hue, saturation and value.",
        {{"numThreads", colour::s_numThreadsMeaning}},
        {"A full circle of hues is 255: red is 0, green 85, blue 170.", "The alpha channel becomes 255."}});
