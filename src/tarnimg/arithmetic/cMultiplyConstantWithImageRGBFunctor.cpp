#include <tarnimg/arithmetic/cMultiplyConstantWithImageRGBFunctor.h>

#include "scaledConstants.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cValueStationT.h>

namespace {

using frame::WithConstants;

constexpr char s_operator[] = "cMultiplyConstantWithImageRGBFunctor::operator ()";

constexpr frame::ConstantVariant s_variants[] = {
    {cImgType::RGB24, 3, WithConstants<ippiMulC_8u_C3RSfs>::call, WithConstants<ippiMulC_8u_C3IRSfs>::call},
    {cImgType::RGB32, 4, WithConstants<ippiMulC_8u_C4RSfs>::call, WithConstants<ippiMulC_8u_C4IRSfs>::call},
};

} // namespace

cMultiplyConstantWithImageRGBFunctor::cMultiplyConstantWithImageRGBFunctor()
{
    addSupportedInputs(s_variants);
}

cImg cMultiplyConstantWithImageRGBFunctor::operator()(const cImg& i_image) const
{
    return frame::withConstants(*this, s_variants, i_image,
        scaledConstants(m_constantRed, m_constantGreen, m_constantBlue), s_operator);
}

void cMultiplyConstantWithImageRGBFunctor::operator()(cImg& io_image) const
{
    frame::withConstantsInPlace(*this, s_variants, io_image,
        scaledConstants(m_constantRed, m_constantGreen, m_constantBlue), s_operator);
}

void cMultiplyConstantWithImageRGBFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "constantRed", m_constantRed);
    frame::bindParam(i_params, "constantGreen", m_constantGreen);
    frame::bindParam(i_params, "constantBlue", m_constantBlue);
}

class cMultiplyConstantWithImageRGBStation
    : public cValueStationT<cMultiplyConstantWithImageRGBFunctor, double, double, double> {
public:
    cMultiplyConstantWithImageRGBStation()
        : cValueStationT(
            {"red", [](Functor& functor, const double& value) { functor.setConstantRed(value); }},
            {"green", [](Functor& functor, const double& value) { functor.setConstantGreen(value); }},
            {"blue", [](Functor& functor, const double& value) { functor.setConstantBlue(value); }})
    {
    }
};

static const cStationRegistration<cMultiplyConstantWithImageRGBStation> s_registration(
    "ipp/image/arithmetic/multiplyConstantRGB",
    {"Product of a colour image and a constant for each colour.",
        {{"constantRed", "the factor for red; the last number that came in at red replaces it"},
            {"constantGreen", "the factor for green; the last number that came in at green replaces it"},
            {"constantBlue", "the factor for blue; the last number that came in at blue replaces it"}},
        {"The factors act as bytes divided by one power of two, the greatest that one of them needs: 1.3 is "
         "166 / 128 = 1.296875.",
            "The bytes are cut: a factor below 1/2 that is no short binary fraction needs a power of 256 or "
            "more, with "
            "which a factor of 1, and that of the fourth channel of RGB32, comes to 0."}});
