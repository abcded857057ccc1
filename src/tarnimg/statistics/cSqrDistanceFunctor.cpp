#include <tarnimg/statistics/cSqrDistanceFunctor.h>

#include "templateMatch.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using templateMatch::Match;

constexpr char s_operator[] = "cSqrDistanceFunctor::operator ()";

constexpr templateMatch::Variant s_variants[] = {
    {cImgType::UInt8, 1, Match<ippiSqrDistanceNorm_8u32f_C1R>::call},
    {cImgType::UInt16, 1, Match<ippiSqrDistanceNorm_16u32f_C1R>::call},
    {cImgType::Float32, 1, Match<ippiSqrDistanceNorm_32f_C1R>::call},
};
constexpr templateMatch::Functions s_functions {ippiSqrDistanceNormGetBufferSize, s_variants};

} // namespace

cSqrDistanceFunctor::cSqrDistanceFunctor() { addSupportedInputs(s_variants); }

void cSqrDistanceFunctor::refreshParams(cObj* i_params)
{
    templateMatch::bindParams(i_params, m_mode, m_norm, staticMetaObject);
}

cImg cSqrDistanceFunctor::operator()(const cImg& i_image, const cImg& i_template)
{
    const int norm = frame::enumValue(staticMetaObject, "ENorm", m_norm);
    return templateMatch::run(*this, s_functions, i_image, i_template, m_mode, norm, m_work, s_operator);
}

class cSqrDistanceStation : public cFunctorStationT<cSqrDistanceFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cSqrDistanceStation> s_registration(
    "ipp/image/statistics/proximityMeasures/sqrDistance",
    {"How far a template is from an image at each place: the sum of squared differences.",
        {{"mode", templateMatch::s_modeMeaning},
            {"norm",
                "divisor of the sum: \"NormNone\" 1, \"Norm\" the root of both sums of squares; "
                "\"NormCoefficient\" fails"}},
        {templateMatch::s_inputsNote, "With \"Norm\" a result may be above 1."}});

#include "moc_cSqrDistanceFunctor.cpp"
