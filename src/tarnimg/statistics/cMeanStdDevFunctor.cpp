#include <tarnimg/statistics/cMeanStdDevFunctor.h>

#include "frame/messages.h"
#include "reductions.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cMeanStdDevFunctor::operator ()";

/** The two forms of a pixel type; the channel counts where there are three. */
template <auto Function, auto MaskedFunction> struct Both;

template <class T, IppStatus (*Function)(const T*, int, IppiSize, double*, double*),
    IppStatus (*MaskedFunction)(const T*, int, const Ipp8u*, int, IppiSize, double*, double*)>
struct Both<Function, MaskedFunction> {
    static IppStatus call(const cImg& i_image, int, double* o_mean, double* o_stdDev)
    {
        return Function(
            frame::pixels<T>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), o_mean, o_stdDev);
    }
    static IppStatus masked(const cImg& i_image, const cImg& i_mask, int, double* o_mean, double* o_stdDev)
    {
        return statistics::withMask(i_image, i_mask, [&](const Ipp8u* mask, int step, IppiSize size) {
            return MaskedFunction(
                frame::pixels<T>(i_image), frame::stepOf(i_image), mask, step, size, o_mean, o_stdDev);
        });
    }
};

template <class T, IppStatus (*Function)(const T*, int, IppiSize, int, double*, double*),
    IppStatus (*MaskedFunction)(const T*, int, const Ipp8u*, int, IppiSize, int, double*, double*)>
struct Both<Function, MaskedFunction> {
    static IppStatus call(const cImg& i_image, int i_channel, double* o_mean, double* o_stdDev)
    {
        return Function(frame::pixels<T>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), i_channel,
            o_mean, o_stdDev);
    }
    static IppStatus masked(
        const cImg& i_image, const cImg& i_mask, int i_channel, double* o_mean, double* o_stdDev)
    {
        return statistics::withMask(i_image, i_mask, [&](const Ipp8u* mask, int step, IppiSize size) {
            return MaskedFunction(frame::pixels<T>(i_image), frame::stepOf(i_image), mask, step, size,
                i_channel, o_mean, o_stdDev);
        });
    }
};

using Of8u = Both<ippiMean_StdDev_8u_C1R, ippiMean_StdDev_8u_C1MR>;
using Of16u = Both<ippiMean_StdDev_16u_C1R, ippiMean_StdDev_16u_C1MR>;
using Of32f = Both<ippiMean_StdDev_32f_C1R, ippiMean_StdDev_32f_C1MR>;
using OfRgb = Both<ippiMean_StdDev_8u_C3CR, ippiMean_StdDev_8u_C3CMR>;

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(const cImg& i_image, int i_channel, double* o_mean, double* o_stdDev);
    IppStatus (*masked)(
        const cImg& i_image, const cImg& i_mask, int i_channel, double* o_mean, double* o_stdDev);
};

constexpr Variant s_variants[] = {
    {cImgType::UInt8, 1, Of8u::call, Of8u::masked},
    {cImgType::UInt16, 1, Of16u::call, Of16u::masked},
    {cImgType::Float32, 1, Of32f::call, Of32f::masked},
    {cImgType::RGB24, 3, OfRgb::call, OfRgb::masked},
};

} // namespace

cMeanStdDevFunctor::cMeanStdDevFunctor() { addSupportedInputs(s_variants); }

void cMeanStdDevFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "channelOfInterest", m_channelOfInterest);
}

void cMeanStdDevFunctor::operator()(const cImg& i_image, double& o_mean, double& o_stdDev) const
{
    frame::checkInput(*this, i_image, s_operator);
    if (const Variant* variant = frame::find(s_variants, i_image))
        frame::checkStatus(variant->call(i_image, int(m_channelOfInterest), &o_mean, &o_stdDev), s_operator);
}

void cMeanStdDevFunctor::operator()(
    const cImg& i_image, const cImg& i_mask, double& o_mean, double& o_stdDev) const
{
    if (!i_mask.isValid())
        frame::fail(QString::fromLatin1(frame::s_invalidImage).arg(QLatin1String(s_operator)));
    frame::checkInput(*this, i_image, s_operator);
    if (const Variant* variant = frame::find(s_variants, i_image))
        frame::checkStatus(
            variant->masked(i_image, i_mask, int(m_channelOfInterest), &o_mean, &o_stdDev), s_operator);
}

/** The mask may stay away. */
class cMeanStdDevStation : public cFunctorStationT<cMeanStdDevFunctor, void, void, void> {
public:
    cMeanStdDevStation()
    {
        m_functor.initSupportedTypes(m_group.getPort<0>());
        m_group.getQueue<1>().required = false;
    }

private:
    void process()
    {
        if (!m_mean.requestsData() && !m_stdDev.requestsData())
            return;
        const cImg& image = m_group.getValue<0>();
        const cImg& mask = m_group.getValue<1>();
        double mean = 0, stdDev = 0;
        if (mask.isValid())
            m_functor(image, mask, mean, stdDev);
        else
            m_functor(image, mean, stdDev);
        m_mean.send(mean, m_group.getStamp());
        m_stdDev.send(stdDev, m_group.getStamp());
    }

    cPortGroup<cImg, cImg> m_group {
        this, &cMeanStdDevStation::process, QStringLiteral("img"), QStringLiteral("mask")};
    cOPort<double> m_mean {this, QStringLiteral("mean"), defaultPoolSize<double>};
    cOPort<double> m_stdDev {this, QStringLiteral("stdDev"), defaultPoolSize<double>};
};

static const cStationRegistration<cMeanStdDevStation> s_registration("ipp/image/statistics/meanStdDev",
    {"Mean and standard deviation of all pixels or those of a mask.",
        {{"channelOfInterest", "the channel of an RGB24 image that is measured: 1 red, 2 green, 3 blue"}},
        {"The deviation is that of a population: the squares are divided by the number of pixels.",
            "A mask is read as bytes, whatever its type; each that is not 0 selects a pixel."}});
