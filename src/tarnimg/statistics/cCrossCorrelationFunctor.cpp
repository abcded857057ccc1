#include <tarnimg/statistics/cCrossCorrelationFunctor.h>

#include "templateMatch.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using templateMatch::Match;

constexpr char s_operator[] = "cCrossCorrelationFunctor::operator ()";

constexpr templateMatch::Variant s_variants[] = {
    {cImgType::UInt8, 1, Match<ippiCrossCorrNorm_8u32f_C1R>::call},
    {cImgType::UInt16, 1, Match<ippiCrossCorrNorm_16u32f_C1R>::call},
    {cImgType::Float32, 1, Match<ippiCrossCorrNorm_32f_C1R>::call},
};
constexpr templateMatch::Functions s_functions {ippiCrossCorrNormGetBufferSize, s_variants};

} // namespace

cCrossCorrelationFunctor::cCrossCorrelationFunctor() { addSupportedInputs(s_variants); }

void cCrossCorrelationFunctor::refreshParams(cObj* i_params)
{
    templateMatch::bindParams(i_params, m_mode, m_norm, staticMetaObject);
}

cImg cCrossCorrelationFunctor::operator()(const cImg& i_image, const cImg& i_template)
{
    const int norm = frame::enumValue(staticMetaObject, "ENorm", m_norm);
    return templateMatch::run(*this, s_functions, i_image, i_template, m_mode, norm, m_work, s_operator);
}

class cCrossCorrelationStation : public cFunctorStationT<cCrossCorrelationFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cCrossCorrelationStation> s_registration(
    "ipp/image/statistics/proximityMeasures/crossCorrelation",
    {"How well a template fits at each place of an image, by correlation.",
        {{"mode", templateMatch::s_modeMeaning},
            {"norm",
                "divisor of the sum of products: \"NormNone\" 1, \"Norm\" the root of both sums of squares "
                "(result -1 to 1), "
                "\"NormCoefficient\" the same of the deviations from both means (-1 to 1)"}},
        {templateMatch::s_inputsNote}});

#include "moc_cCrossCorrelationFunctor.cpp"
