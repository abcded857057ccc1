#include <tarnimg/statistics/cSqrIntegralFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippConstants.h"
#include "frame/ippImages.h"
#include "integrals.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cSqrIntegralFunctor::operator ()";

template <auto Function> struct SqrIntegral;

template <class S, class D, class Q, IppStatus (*Function)(const S*, int, D*, int, Q*, int, IppiSize, D, Q)>
struct SqrIntegral<Function> {
    static IppStatus call(
        const cImg& i_image, float i_offset, double i_offsetSqr, cImg& io_sums, cImg& io_squares)
    {
        D* sums = frame::pixels<D>(io_sums);
        Q* squares = frame::pixels<Q>(io_squares);
        return Function(frame::pixels<S>(i_image), frame::stepOf(i_image), sums, frame::stepOf(io_sums),
            squares, frame::stepOf(io_squares), frame::sizeOf(i_image),
            frame::pixelConstant<D>("offset", double(i_offset)), i_offsetSqr);
    }
};

} // namespace

cSqrIntegralFunctor::cSqrIntegralFunctor() { addSupportedInput(cImgType::UInt8, 1); }

void cSqrIntegralFunctor::operator()(const cImg& i_image, cImg& o_integral, cImg& o_sqrIntegral) const
{
    frame::checkInput(*this, i_image, s_operator);
    cImg sums = integrals::imageFor(i_image, m_floatMode ? cImgType::Float32 : cImgType::SInt32);
    cImg squares = integrals::imageFor(i_image, cImgType::Float64);
    const auto call = m_floatMode ? SqrIntegral<ippiSqrIntegral_8u32f64f_C1R>::call
                                  : SqrIntegral<ippiSqrIntegral_8u32s64f_C1R>::call;
    frame::checkStatus(call(i_image, m_offset, m_offsetSqr, sums, squares), s_operator);
    o_integral = sums;
    o_sqrIntegral = squares;
}

void cSqrIntegralFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "offset", m_offset);
    frame::bindParam(i_params, "offsetSqr", m_offsetSqr);
    frame::bindParam(i_params, "floatMode", m_floatMode);
}

class cSqrIntegralStation : public cFunctorStationT<cSqrIntegralFunctor, void, void, void> {
public:
    cSqrIntegralStation() { m_functor.initSupportedTypes(m_group.getPort<0>()); }

private:
    void process()
    {
        if (!m_integral.requestsData() && !m_sqrIntegral.requestsData())
            return;
        cImg sums, squares;
        m_functor(m_group.getValue<0>(), sums, squares);
        m_integral.send(sums, m_group.getStamp());
        m_sqrIntegral.send(squares, m_group.getStamp());
    }

    cPortGroup<cImg> m_group {this, &cSqrIntegralStation::process, QStringLiteral("img")};
    cOPort<cImg> m_integral {this, QStringLiteral("integral"), defaultPoolSize<cImg>};
    cOPort<cImg> m_sqrIntegral {this, QStringLiteral("sqrIntegral"), defaultPoolSize<cImg>};
};

static const cStationRegistration<cSqrIntegralStation> s_registration("ipp/image/statistics/sqrIntegral",
    {"Integral images of the pixels and of their squares.",
        {{"offset", "added to each sum, pixel values"}, {"offsetSqr", "added to each sum of squares"},
            {"floatMode",
                "true for sums in Float32, false for SInt32, which wraps; sums of squares are Float64"}},
        {"The results have a column and a row more than the image."}});
