#include <tarnimg/colour/cYUV422PlanarToPixelFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"
#include "frame/messages.h"

#include <cstring>
#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cYUV422PlanarToPixelFunctor::operator ()";

void check(bool i_holds, const char* i_message)
{
    if (!i_holds)
        frame::fail(QString::fromLatin1(i_message).arg(QString::fromLatin1(s_operator)));
}

bool isHalf(unsigned i_half, unsigned i_whole) { return 2ull * i_half == i_whole; }

} // namespace

cYUV422PlanarToPixelFunctor::cYUV422PlanarToPixelFunctor() { addSupportedInput(cImgType::UInt8, 1); }

cImg cYUV422PlanarToPixelFunctor::operator()(const cImg& i_y, const cImg& i_u, const cImg& i_v) const
{
    for (const cImg* plane : {&i_y, &i_u, &i_v})
        frame::checkInput(*this, *plane, s_operator);
    check(isHalf(i_u.getWidth(), i_y.getWidth()), frame::s_wrongWidthOfU);
    check(isHalf(i_v.getWidth(), i_y.getWidth()), frame::s_wrongWidthOfV);
    check(i_u.getHeight() == i_y.getHeight(), frame::s_wrongHeightOfU);
    check(i_v.getHeight() == i_y.getHeight(), frame::s_wrongHeightOfV);

    const unsigned width = i_y.getWidth(), height = i_y.getHeight();
    cImg result(cImgType::UInt8, width, 2 * height, 1);
    Ipp8u* packed = frame::pixels<Ipp8u>(result);
    const Ipp8u* planes[3]
        = {frame::pixels<Ipp8u>(i_y), frame::pixels<Ipp8u>(i_u), frame::pixels<Ipp8u>(i_v)};
    int steps[3] = {frame::stepOf(i_y), frame::stepOf(i_u), frame::stepOf(i_v)};
    frame::checkStatus(
        ippiYCbCr422_8u_P3C2R(planes, steps, packed, frame::stepOf(result), frame::sizeOf(i_y)), s_operator);
    // The last row of the frame ends with row `height` of the result.
    if (height > 1)
        std::memset(result.row<Ipp8u>(height + 1), 0, std::size_t(height - 1) * width);
    return result;
}

class cYUV422PlanarToPixelStation : public cFunctorStationT<cYUV422PlanarToPixelFunctor, void, void, void> {
public:
    cYUV422PlanarToPixelStation()
    {
        m_functor.initSupportedTypes(m_group.getPort<0>());
        m_functor.initSupportedTypes(m_group.getPort<1>());
        m_functor.initSupportedTypes(m_group.getPort<2>());
    }

private:
    void process()
    {
        if (m_out.requestsData())
            m_out.send(m_functor(m_group.getValue<0>(), m_group.getValue<1>(), m_group.getValue<2>()),
                m_group.getStamp());
    }

    cPortGroup<cImg, cImg, cImg> m_group {this, &cYUV422PlanarToPixelStation::process, QStringLiteral("Y"),
        QStringLiteral("U"), QStringLiteral("V")};
    cOPort<cImg> m_out {this, QStringLiteral("YUV422"), defaultPoolSize<cImg>};
};

static const cStationRegistration<cYUV422PlanarToPixelStation> s_registration(
    "ipp/image/colorConversion/YUV422PlanarToPixel",
    {"Packed YUV 4:2:2 of planes Y, U and V.", {},
        {"Each row of the planes fills two rows of the result, and the next row replaces the second one of "
         "them.",
            "The lower half of the result is 0 but for its first row."}});
