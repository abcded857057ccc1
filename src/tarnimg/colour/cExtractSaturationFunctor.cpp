#include <tarnimg/colour/cExtractSaturationFunctor.h>

#include "hsvChannel.h"

#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cExtractSaturationFunctor::operator ()";
constexpr unsigned s_channel = 1;

} // namespace

cExtractSaturationFunctor::cExtractSaturationFunctor() { addSupportedInputs(colour::s_hsvVariants); }

cImg cExtractSaturationFunctor::operator()(const cImg& i_image)
{
    return colour::hsvChannel(*this, i_image, m_hsv, s_channel, s_operator);
}

class cExtractSaturationStation : public cFunctorStationT<cExtractSaturationFunctor, cImg, cImg, void> {};

static const cStationRegistration<cExtractSaturationStation> s_registration(
    "ipp/image/dataExchange/extractSaturation",
    {"Saturation of a colour image as a grey image.", {}, {"Grey has saturation 0."}});
