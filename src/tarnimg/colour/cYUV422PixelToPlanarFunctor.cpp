#include <tarnimg/colour/cYUV422PixelToPlanarFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cYUV422PixelToPlanarFunctor::operator ()";

} // namespace

cYUV422PixelToPlanarFunctor::cYUV422PixelToPlanarFunctor() { addSupportedInput(cImgType::UInt8, 1); }

void cYUV422PixelToPlanarFunctor::operator()(const cImg& i_source, cImg& o_y, cImg& o_u, cImg& o_v) const
{
    frame::checkInput(*this, i_source, s_operator);
    // The source may be one of the results. NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const cImg source = i_source;
    const unsigned width = source.getWidth(), height = source.getHeight() / 2;
    o_y = cImg(cImgType::UInt8, width, height, 1);
    o_u = cImg(cImgType::UInt8, width / 2, height, 1);
    o_v = cImg(cImgType::UInt8, width / 2, height, 1);
    Ipp8u* planes[3] = {frame::pixels<Ipp8u>(o_y), frame::pixels<Ipp8u>(o_u), frame::pixels<Ipp8u>(o_v)};
    int steps[3] = {frame::stepOf(o_y), frame::stepOf(o_u), frame::stepOf(o_v)};
    frame::checkStatus(ippiYCbCr422_8u_C2P3R(frame::pixels<Ipp8u>(source), frame::stepOf(source), planes,
                           steps, {int(width), int(height)}),
        s_operator);
}

class cYUV422PixelToPlanarStation : public cFunctorStationT<cYUV422PixelToPlanarFunctor, void, void, void> {
public:
    cYUV422PixelToPlanarStation() { m_functor.initSupportedTypes(m_group.getPort<0>()); }

private:
    void process(cBufferT<cImg>* i_buffer)
    {
        if (!m_y.requestsData() && !m_u.requestsData() && !m_v.requestsData())
            return;
        cImg y, u, v;
        m_functor(i_buffer->getValue(), y, u, v);
        const cBufferStamp stamp = i_buffer->getStamp();
        m_y.send(y, stamp);
        m_u.send(u, stamp);
        m_v.send(v, stamp);
    }

    cPortGroup<cImg> m_group {this, &cYUV422PixelToPlanarStation::process, QStringLiteral("img")};
    cOPort<cImg> m_y {this, QStringLiteral("Y"), defaultPoolSize<cImg>};
    cOPort<cImg> m_u {this, QStringLiteral("U"), defaultPoolSize<cImg>};
    cOPort<cImg> m_v {this, QStringLiteral("V"), defaultPoolSize<cImg>};
};

static const cStationRegistration<cYUV422PixelToPlanarStation> s_registration(
    "ipp/image/colorConversion/YUV422PixelToPlanar",
    {"Planes Y, U and V of packed YUV 4:2:2.", {},
        {"A row of the planes is taken from two rows of the input, of which the second one is the first one "
         "of the next "
         "row."}});
