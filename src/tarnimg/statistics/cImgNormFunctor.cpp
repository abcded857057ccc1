#include <tarnimg/statistics/cImgNormFunctor.h>

#include "norms.h"
#include "reductions.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using statistics::OfImage;

constexpr char s_operator[] = "cImgNormFunctor::operator ()";

/** With a mask; those of three channels give the first. */
template <auto Function> struct Masked;

template <class T, IppStatus (*Function)(const T*, int, const Ipp8u*, int, IppiSize, double*)>
struct Masked<Function> {
    static IppStatus call(const cImg& i_image, const cImg& i_mask, double* o_value)
    {
        return statistics::withMask(i_image, i_mask, [&](const Ipp8u* mask, int step, IppiSize size) {
            return Function(frame::pixels<T>(i_image), frame::stepOf(i_image), mask, step, size, o_value);
        });
    }
};

template <class T, IppStatus (*Function)(const T*, int, const Ipp8u*, int, IppiSize, int, double*)>
struct Masked<Function> {
    static IppStatus call(const cImg& i_image, const cImg& i_mask, double* o_value)
    {
        return statistics::withMask(i_image, i_mask, [&](const Ipp8u* mask, int step, IppiSize size) {
            return Function(frame::pixels<T>(i_image), frame::stepOf(i_image), mask, step, size, 1, o_value);
        });
    }
};

using NormCall = IppStatus (*)(const cImg& i_image, double* o_values);
using MaskedCall = IppStatus (*)(const cImg& i_image, const cImg& i_mask, double* o_value);

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    statistics::ByNorm<NormCall> norm;
    statistics::ByNorm<MaskedCall> masked; ///< null where there is none
};

/** The calls in the order of ByNorm. */
template <auto... Functions> constexpr statistics::ByNorm<NormCall> s_norms {OfImage<Functions>::call...};
template <auto... Functions> constexpr statistics::ByNorm<MaskedCall> s_masked {Masked<Functions>::call...};

constexpr Variant s_variants[] = {
    {cImgType::UInt8, 1, s_norms<ippiNorm_L1_8u_C1R, ippiNorm_L2_8u_C1R, ippiNorm_Inf_8u_C1R>,
        s_masked<ippiNorm_L1_8u_C1MR, ippiNorm_L2_8u_C1MR, ippiNorm_Inf_8u_C1MR>},
    {cImgType::UInt16, 1, s_norms<ippiNorm_L1_16u_C1R, ippiNorm_L2_16u_C1R, ippiNorm_Inf_16u_C1R>,
        s_masked<ippiNorm_L1_16u_C1MR, ippiNorm_L2_16u_C1MR, ippiNorm_Inf_16u_C1MR>},
    {cImgType::SInt16, 1, s_norms<ippiNorm_L1_16s_C1R, ippiNorm_L2_16s_C1R, ippiNorm_Inf_16s_C1R>, {}},
    {cImgType::Float32, 1, s_norms<ippiNorm_L1_32f_C1R, ippiNorm_L2_32f_C1R, ippiNorm_Inf_32f_C1R>,
        s_masked<ippiNorm_L1_32f_C1MR, ippiNorm_L2_32f_C1MR, ippiNorm_Inf_32f_C1MR>},
    {cImgType::RGB24, 3, s_norms<ippiNorm_L1_8u_C3R, ippiNorm_L2_8u_C3R, ippiNorm_Inf_8u_C3R>,
        s_masked<ippiNorm_L1_8u_C3CMR, ippiNorm_L2_8u_C3CMR, ippiNorm_Inf_8u_C3CMR>},
    {cImgType::RGB32, 4, s_norms<ippiNorm_L1_8u_C4R, ippiNorm_L2_8u_C4R, ippiNorm_Inf_8u_C4R>, {}},
};

} // namespace

cImgNormFunctor::cImgNormFunctor() { addSupportedInputs(s_variants); }

void cImgNormFunctor::refreshParams(cObj* i_params)
{
    frame::bindEnumParam(i_params, "mode", m_mode, staticMetaObject, "EMode");
}

double cImgNormFunctor::operator()(const cImg& i_image) const
{
    frame::checkInput(*this, i_image, s_operator);
    double norms[4] = {};
    if (const Variant* variant = frame::find(s_variants, i_image))
        frame::checkStatus(
            variant->norm.of(frame::enumValue(staticMetaObject, "EMode", m_mode))(i_image, norms),
            s_operator);
    return norms[0];
}

double cImgNormFunctor::operator()(const cImg& i_image, const cImg& i_mask) const
{
    frame::checkInput(*this, i_image, s_operator);
    double norms[4] = {};
    const Variant* variant = frame::find(s_variants, i_image);
    const int mode = frame::enumValue(staticMetaObject, "EMode", m_mode);
    if (variant && variant->masked.of(mode)) {
        // The statuses are not looked at: of a refused call the result stays 0.
        if (i_mask.isKindOf(cImgType::UInt8))
            variant->masked.of(mode)(i_image, i_mask, norms);
        else
            variant->norm.of(mode)(i_image, norms);
    }
    return norms[0];
}

void cImgNormFunctor::operator()(const cImg& i_image, double* o_norms) const
{
    frame::checkInput(*this, i_image, s_operator);
    const Variant* variant = frame::find(s_variants, i_image);
    if (variant && variant->channels > 1) // and the status is not looked at
        variant->norm.of(frame::enumValue(staticMetaObject, "EMode", m_mode))(i_image, o_norms);
}

class cImgNormStation : public cFunctorStationT<cImgNormFunctor, double, cImg, cImg> {
public:
    cImgNormStation()
        : cFunctorStationT(QStringLiteral("img"), QStringLiteral("mask"), QStringLiteral("norm"), QString())
    {
        m_group.getQueue<1>().required = false;
    }
};

static const cStationRegistration<cImgNormStation> s_registration("ipp/image/statistics/norm",
    {"Norm of an image, over all pixels or those of a mask.",
        {{"mode", "sum of absolute values, root of the sum of squares, or greatest absolute value"}},
        {"Of RGB24 the norm of red.",
            "SInt16 and RGB32 always give 0: there is no norm with a mask for them.",
            "A mask that is not UInt8 selects every pixel, and so does none."}});

#include "moc_cImgNormFunctor.cpp"
