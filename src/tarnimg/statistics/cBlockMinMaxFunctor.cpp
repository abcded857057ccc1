#include <tarnimg/statistics/cBlockMinMaxFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <QVariant>
#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cBlockMinMaxFunctor::operator ()";

/** A result that may not be wanted. */
template <class T> T* pixelsOrNull(cImg* io_image)
{
    return io_image ? frame::pixels<T>(*io_image) : nullptr;
}
int stepOrZero(const cImg* i_image) { return i_image ? frame::stepOf(*i_image) : 0; }

template <auto Function> struct Blocks;

template <class T, IppStatus (*Function)(const T*, int, IppiSize, T*, int, T*, int, IppiSize, T*, T*)>
struct Blocks<Function> {
    static IppStatus call(const cImg& i_image, IppiSize i_block, cImg* o_least, cImg* o_greatest,
        QVariant& o_globalMin, QVariant& o_globalMax)
    {
        T least {}, greatest {};
        T* const leastPixels = pixelsOrNull<T>(o_least);
        T* const greatestPixels = pixelsOrNull<T>(o_greatest);
        const IppStatus status
            = Function(frame::pixels<T>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), leastPixels,
                stepOrZero(o_least), greatestPixels, stepOrZero(o_greatest), i_block, &least, &greatest);
        o_globalMin.setValue(least);
        o_globalMax.setValue(greatest);
        return status;
    }
};

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(const cImg& i_image, IppiSize i_block, cImg* o_least, cImg* o_greatest,
        QVariant& o_globalMin, QVariant& o_globalMax);
};

constexpr Variant s_variants[] = {
    {cImgType::UInt8, 1, Blocks<ippiBlockMinMax_8u_C1R>::call},
    {cImgType::UInt16, 1, Blocks<ippiBlockMinMax_16u_C1R>::call},
    {cImgType::SInt16, 1, Blocks<ippiBlockMinMax_16s_C1R>::call},
    {cImgType::Float32, 1, Blocks<ippiBlockMinMax_32f_C1R>::call},
};

/** Blocks along a side, a partial one included. */
unsigned blocksOf(unsigned i_pixels, int i_block)
{
    const unsigned whole = i_pixels / unsigned(i_block);
    return i_pixels % unsigned(i_block) ? whole + 1 : whole;
}

} // namespace

cBlockMinMaxFunctor::cBlockMinMaxFunctor() { addSupportedInputs(s_variants); }

void cBlockMinMaxFunctor::operator()(const cImg& i_image, cImg* o_localMin, cImg* o_localMax,
    QVariant& o_globalMin, QVariant& o_globalMax) const
{
    frame::checkInput(*this, i_image, s_operator);
    const IppiSize block {m_blockSize.width(), m_blockSize.height()};
    if (block.width < 1 || block.height < 1)
        frame::failBecause("blockSize must be > 0.", s_operator);
    const Variant* variant = frame::find(s_variants, i_image);
    if (!variant)
        return;
    const auto blocks = [&] {
        return cImg(i_image.getImgType().getTypeId(), blocksOf(i_image.getWidth(), block.width),
            blocksOf(i_image.getHeight(), block.height), 1);
    };
    cImg least = o_localMin ? blocks() : cImg();
    cImg greatest = o_localMax ? blocks() : cImg();
    frame::checkStatus(variant->call(i_image, block, o_localMin ? &least : nullptr,
                           o_localMax ? &greatest : nullptr, o_globalMin, o_globalMax),
        s_operator);
    if (o_localMin)
        *o_localMin = least;
    if (o_localMax)
        *o_localMax = greatest;
}

void cBlockMinMaxFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "blockSize", m_blockSize);
}

class cBlockMinMaxStation : public cFunctorStationT<cBlockMinMaxFunctor, void, void, void> {
public:
    cBlockMinMaxStation() { m_functor.initSupportedTypes(m_group.getPort<0>()); }

private:
    void process()
    {
        if (!m_localMin.requestsData() && !m_localMax.requestsData())
            return;
        cImg least, greatest;
        QVariant globalMin, globalMax;
        m_functor(m_group.getValue<0>(), &least, &greatest, globalMin, globalMax);
        m_localMin.send(least, m_group.getStamp());
        m_localMax.send(greatest, m_group.getStamp());
    }

    cPortGroup<cImg> m_group {this, &cBlockMinMaxStation::process, QStringLiteral("img")};
    cOPort<cImg> m_localMin {this, QStringLiteral("localMin"), defaultPoolSize<cImg>};
    cOPort<cImg> m_localMax {this, QStringLiteral("localMax"), defaultPoolSize<cImg>};
};

static const cStationRegistration<cBlockMinMaxStation> s_registration("ipp/image/statistics/blockMinMax",
    {"Least and greatest pixel of each block.",
        {{"blockSize",
            "width and height of a block, pixels; blocks at the right and lower edge may be partial"}},
        {}});
