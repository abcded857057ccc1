#include <tarnimg/arithmetic/cSubtractConstantFromImageRGBFunctor.h>

#include "frame/ippConstants.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cValueStationT.h>

namespace {

using frame::WithConstants;

constexpr char s_operator[] = "cSubtractConstantFromImageRGBFunctor::operator ()";

constexpr frame::ConstantVariant s_variants[] = {
    {cImgType::RGB24, 3, WithConstants<ippiSubC_8u_C3RSfs>::call, WithConstants<ippiSubC_8u_C3IRSfs>::call},
    {cImgType::RGB32, 4, WithConstants<ippiSubC_8u_C4RSfs>::call, WithConstants<ippiSubC_8u_C4IRSfs>::call},
};

} // namespace

cSubtractConstantFromImageRGBFunctor::cSubtractConstantFromImageRGBFunctor()
{
    addSupportedInputs(s_variants);
}

cImg cSubtractConstantFromImageRGBFunctor::operator()(const cImg& i_image) const
{
    return frame::withConstants(*this, s_variants, i_image, frame::constantsOf(m_constant), s_operator);
}

void cSubtractConstantFromImageRGBFunctor::operator()(cImg& io_image) const
{
    frame::withConstantsInPlace(*this, s_variants, io_image, frame::constantsOf(m_constant), s_operator);
}

void cSubtractConstantFromImageRGBFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "constant", m_constant);
}

class cSubtractConstantFromImageRGBStation
    : public cValueStationT<cSubtractConstantFromImageRGBFunctor, double> {
public:
    cSubtractConstantFromImageRGBStation() : cValueStationT({"value", &setPacked}) {}

private:
    /** The number is a packed colour, 0xAARRGGBB. */
    static void setPacked(Functor& io_functor, const double& i_value)
    {
        io_functor.setConstant(QColor(frame::pixelConstant<QRgb>(i_value)));
    }
};

static const cStationRegistration<cSubtractConstantFromImageRGBStation> s_registration(
    "ipp/image/arithmetic/subtractConstantRGB",
    {"Difference of a colour image and a colour: img - constant.",
        {{"constant", "the subtrahend, as a colour; the last number that came in at value replaces it"}},
        {"A number that comes in at value is a packed colour, red * 65536 + green * 256 + blue.",
            "The fourth channel of RGB32 stays as it is, whatever the alpha of the colour."}});
