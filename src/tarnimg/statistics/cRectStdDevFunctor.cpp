#include <tarnimg/statistics/cRectStdDevFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"
#include "frame/messages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cRectStdDevFunctor::operator ()";

template <auto Function> struct Deviation;

template <class S, class Q, class D,
    IppStatus (*Function)(const S*, int, const Q*, int, D*, int, IppiSize, IppiRect)>
struct Deviation<Function> {
    static IppStatus call(const cImg& i_sums, const cImg& i_squares, IppiRect i_rect, cImg& io_result)
    {
        D* result = frame::pixels<D>(io_result);
        return Function(frame::pixels<S>(i_sums), frame::stepOf(i_sums), frame::pixels<Q>(i_squares),
            frame::stepOf(i_squares), result, frame::stepOf(io_result), frame::sizeOf(io_result), i_rect);
    }
};

/** Nothing is computed for sums in double precision. */
IppStatus leaveUnwritten(const cImg&, const cImg&, IppiRect, cImg&) { return ippStsNoErr; }

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(const cImg& i_sums, const cImg& i_squares, IppiRect i_rect, cImg& io_result);
};

constexpr Variant s_variants[] = {
    {cImgType::Float32, 1, Deviation<ippiRectStdDev_32f_C1R>::call},
    {cImgType::Float64, 1, leaveUnwritten},
    {cImgType::SInt32, 1, Deviation<ippiRectStdDev_32s32f_C1R>::call},
};

} // namespace

cRectStdDevFunctor::cRectStdDevFunctor() { addSupportedInputs(s_variants); }

cImg cRectStdDevFunctor::operator()(const cImg& i_integral, const cImg& i_sqrIntegral) const
{
    frame::checkInput(*this, i_integral, s_operator);
    if (!i_sqrIntegral.isKindOf(cImgType::Float64))
        frame::failUnsupported(i_sqrIntegral, s_operator);
    if (i_integral.getNumChannels() != i_sqrIntegral.getNumChannels())
        frame::failDiffering(frame::s_channelsMustBeEqual, i_integral, i_sqrIntegral, s_operator);
    if (i_integral.getWidth() != i_sqrIntegral.getWidth()
        || i_integral.getHeight() != i_sqrIntegral.getHeight())
        frame::fail(frame::s_sizesMustBeEqual, s_operator);
    const qint64 width = qint64(i_integral.getWidth()) - m_rect.getRight();
    const qint64 height = qint64(i_integral.getHeight()) - m_rect.getBottom();
    if (width <= 0 || height <= 0)
        frame::checkStatus(ippStsStepErr, s_operator);
    // What the pixel layer would say, before such a rectangle makes the result larger than the images.
    if (m_rect.isEmpty() || m_rect.getLeft() < 0 || m_rect.getTop() < 0)
        frame::checkStatus(ippStsRectErr, s_operator);

    cImg result(cImgType::Float32, unsigned(width), unsigned(height), 1);
    const IppiRect rect {m_rect.getLeft(), m_rect.getTop(), m_rect.getWidth(), m_rect.getHeight()};
    if (const Variant* variant = frame::find(s_variants, i_integral))
        frame::checkStatus(variant->call(i_integral, i_sqrIntegral, rect, result), s_operator);
    return result;
}

void cRectStdDevFunctor::refreshParams(cObj* i_params) { frame::bindParam(i_params, "rect", m_rect); }

class cRectStdDevStation : public cFunctorStationT<cRectStdDevFunctor, cImg, cImg, cImg> {
public:
    cRectStdDevStation()
        : cFunctorStationT(
            QStringLiteral("integral"), QStringLiteral("sqrIntegral"), QStringLiteral("img"), QString())
    {
    }
};

static const cStationRegistration<cRectStdDevStation> s_registration("ipp/image/statistics/rectStdDev",
    {"Standard deviation under a rectangle at every place of an image, from its integral images.",
        {{"rect",
            "the rectangle for the first pixel of the result: left, top, width and height, pixels of the "
            "image"}},
        {"The rectangle must end before the integral images do: the last row and column of places is left "
         "out.",
            "sqrIntegral must be Float64. An integral of Float64 is taken too, but its result is not "
            "computed."}});
