#include <tarnimg/colour/cConvertRGBToCMYKFunctor.h>

#include "cmykRows.h"
#include "rowFunction.h"

#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cConvertRGBToCMYKFunctor::operator ()";

constexpr colour::RowVariant<Ipp8u, Ipp32f> s_variants[] = {
    {cImgType::RGB24, 3, colour::cmykOfThree},
    {cImgType::RGB32, 4, colour::cmykOfFour},
};

} // namespace

cConvertRGBToCMYKFunctor::cConvertRGBToCMYKFunctor() { addSupportedInputs(s_variants); }

cImg cConvertRGBToCMYKFunctor::operator()(const cImg& i_image) const
{
    frame::checkInput(*this, i_image, s_operator);
    cImg result(cImgType::Float32, i_image.getWidth(), i_image.getHeight(), 4);
    result.setRange(0.0, 1.0);
    if (const auto* variant = frame::find(s_variants, i_image))
        frame::checkStatus(colour::runInBands(variant->function, m_numThreads, i_image, result), s_operator);
    return result;
}

void cConvertRGBToCMYKFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "numThreads", m_numThreads);
}

class cConvertRGBToCMKYStation : public cFunctorStationT<cConvertRGBToCMYKFunctor, cImg, cImg, void> {};

static const cStationRegistration<cConvertRGBToCMKYStation> s_registration(
    "ipp/image/colorConversion/RGBToCMYK",
    {"Cyan, magenta, yellow and black as four channels of floats from 0 to 1.",
        {{"numThreads", colour::s_numThreadsMeaning}},
        {"Black pixels have no cyan, magenta and yellow: these are NaN.",
            "The rows of a view are taken as if they touched each other."}});
