#include <tarnimg/colour/cExtractValueFunctor.h>

#include "hsvChannel.h"

#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cExtractValueFunctor::operator ()";
constexpr unsigned s_channel = 2;

} // namespace

cExtractValueFunctor::cExtractValueFunctor() { addSupportedInputs(colour::s_hsvVariants); }

cImg cExtractValueFunctor::operator()(const cImg& i_image)
{
    return colour::hsvChannel(*this, i_image, m_hsv, s_channel, s_operator);
}

class cExtractValueStation : public cFunctorStationT<cExtractValueFunctor, cImg, cImg, void> {};

static const cStationRegistration<cExtractValueStation> s_registration("ipp/image/dataExchange/extractValue",
    {"Value of a colour image as a grey image.", {}, {"The value is the greatest of red, green and blue."}});
