#include <tarnimg/statistics/cImgNormDiffFunctor.h>

#include "norms.h"
#include "reductions.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using statistics::OfImages;

constexpr char s_operator[] = "cImgNormDiffFunctor::operator ()";

using NormCall = IppStatus (*)(const cImg& i_a, const cImg& i_b, double* o_values);

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    statistics::ByNorm<NormCall> norm;
};

/** The calls in the order of ByNorm. */
template <auto... Functions> constexpr statistics::ByNorm<NormCall> s_norms {OfImages<Functions>::call...};

constexpr Variant s_variants[] = {
    {cImgType::UInt8, 1, s_norms<ippiNormDiff_L1_8u_C1R, ippiNormDiff_L2_8u_C1R, ippiNormDiff_Inf_8u_C1R>},
    {cImgType::UInt16, 1,
        s_norms<ippiNormDiff_L1_16u_C1R, ippiNormDiff_L2_16u_C1R, ippiNormDiff_Inf_16u_C1R>},
    {cImgType::SInt16, 1,
        s_norms<ippiNormDiff_L1_16s_C1R, ippiNormDiff_L2_16s_C1R, ippiNormDiff_Inf_16s_C1R>},
    {cImgType::Float32, 1,
        s_norms<ippiNormDiff_L1_32f_C1R, ippiNormDiff_L2_32f_C1R, ippiNormDiff_Inf_32f_C1R>},
    {cImgType::RGB24, 3, s_norms<ippiNormDiff_L1_8u_C3R, ippiNormDiff_L2_8u_C3R, ippiNormDiff_Inf_8u_C3R>},
    {cImgType::RGB32, 4, s_norms<ippiNormDiff_L1_8u_C4R, ippiNormDiff_L2_8u_C4R, ippiNormDiff_Inf_8u_C4R>},
};

} // namespace

cImgNormDiffFunctor::cImgNormDiffFunctor() { addSupportedInputs(s_variants); }

void cImgNormDiffFunctor::refreshParams(cObj* i_params)
{
    frame::bindEnumParam(i_params, "mode", m_mode, staticMetaObject, "EMode");
}

double cImgNormDiffFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    frame::checkInputs(*this, i_a, i_b, s_operator);
    double norms[4] = {};
    if (const Variant* variant = frame::find(s_variants, i_a))
        frame::checkStatus(
            variant->norm.of(frame::enumValue(staticMetaObject, "EMode", m_mode))(i_a, i_b, norms),
            s_operator);
    return norms[0];
}

class cImgNormDiffStation : public cFunctorStationT<cImgNormDiffFunctor, double, cImg, cImg> {
public:
    cImgNormDiffStation()
        : cFunctorStationT(QStringLiteral("img1"), QStringLiteral("img2"), QStringLiteral("norm"), QString())
    {
    }
};

static const cStationRegistration<cImgNormDiffStation> s_registration("ipp/image/statistics/normDiff",
    {"Norm of the difference of two images.",
        {{"mode",
            "sum of absolute differences, root of the sum of squares, or greatest absolute difference"}},
        {"Of RGB24 and RGB32 the norm of red."}});

#include "moc_cImgNormDiffFunctor.cpp"
