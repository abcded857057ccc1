#include <tarnimg/colour/cExtractHueFunctor.h>

#include "hsvChannel.h"

#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cExtractHueFunctor::operator ()";
constexpr unsigned s_channel = 0;

} // namespace

cExtractHueFunctor::cExtractHueFunctor() { addSupportedInputs(colour::s_hsvVariants); }

cImg cExtractHueFunctor::operator()(const cImg& i_image)
{
    return colour::hsvChannel(*this, i_image, m_hsv, s_channel, s_operator);
}

class cExtractHueStation : public cFunctorStationT<cExtractHueFunctor, cImg, cImg, void> {};

static const cStationRegistration<cExtractHueStation> s_registration("ipp/image/dataExchange/extractHue",
    {"Hue of a colour image as a grey image.", {},
        {"A full circle of hues is 255: red is 0, green 85, blue 170. Grey has the hue of red."}});
