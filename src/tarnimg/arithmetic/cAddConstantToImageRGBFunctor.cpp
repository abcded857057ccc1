#include <tarnimg/arithmetic/cAddConstantToImageRGBFunctor.h>

#include "frame/ippConstants.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cValueStationT.h>

namespace {

using frame::WithConstants;

constexpr char s_operator[] = "cAddConstantToImageRGBFunctor::operator ()";

constexpr frame::ConstantVariant s_variants[] = {
    {cImgType::RGB24, 3, WithConstants<ippiAddC_8u_C3RSfs>::call, WithConstants<ippiAddC_8u_C3IRSfs>::call},
    {cImgType::RGB32, 4, WithConstants<ippiAddC_8u_C4RSfs>::call, WithConstants<ippiAddC_8u_C4IRSfs>::call},
};

} // namespace

cAddConstantToImageRGBFunctor::cAddConstantToImageRGBFunctor() { addSupportedInputs(s_variants); }

cImg cAddConstantToImageRGBFunctor::operator()(const cImg& i_image) const
{
    return frame::withConstants(*this, s_variants, i_image, frame::constantsOf(m_constant), s_operator);
}

void cAddConstantToImageRGBFunctor::operator()(cImg& io_image) const
{
    frame::withConstantsInPlace(*this, s_variants, io_image, frame::constantsOf(m_constant), s_operator);
}

void cAddConstantToImageRGBFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "constant", m_constant);
}

class cAddConstantToImageRGBStation : public cInPlaceValueStationT<cAddConstantToImageRGBFunctor, QColor> {
public:
    cAddConstantToImageRGBStation()
        : cInPlaceValueStationT(
            {"value", [](Functor& functor, const QColor& value) { functor.setConstant(value); }})
    {
    }
};

static const cStationRegistration<cAddConstantToImageRGBStation> s_registration(
    "ipp/image/arithmetic/addConstantRGB",
    {"Sum of a colour image and a colour.",
        {{"constant", "the summand, as a colour; the last colour that came in at value replaces it"}},
        {"The fourth channel of RGB32 stays as it is, whatever the alpha of the colour."}});
