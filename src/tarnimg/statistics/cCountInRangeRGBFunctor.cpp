#include <tarnimg/statistics/cCountInRangeRGBFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

static constexpr char s_operator[] = "cCountInRangeRGBFunctor::operator ()";

cCountInRangeRGBFunctor::cCountInRangeRGBFunctor() { addSupportedInput(cImgType::RGB24, 3); }

void cCountInRangeRGBFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "lowerBound", m_lowerBound);
    frame::bindParam(i_params, "upperBound", m_upperBound);
}

void cCountInRangeRGBFunctor::operator()(const cImg& i_image, int* const o_counts) const
{
    frame::checkInput(*this, i_image, s_operator);
    const auto bytes = [](int value) { return Ipp8u(value); };
    Ipp8u lower[] = {bytes(m_lowerBound.red()), bytes(m_lowerBound.green()), bytes(m_lowerBound.blue())};
    Ipp8u upper[] = {bytes(m_upperBound.red()), bytes(m_upperBound.green()), bytes(m_upperBound.blue())};
    frame::checkStatus(ippiCountInRange_8u_C3R(frame::pixels<Ipp8u>(i_image), frame::stepOf(i_image),
                           frame::sizeOf(i_image), o_counts, lower, upper),
        s_operator);
}

class cCountInRangeRGBStation : public cFunctorStationT<cCountInRangeRGBFunctor, void, void, void> {
public:
    cCountInRangeRGBStation() { m_functor.initSupportedTypes(m_group.getPort<0>()); }

private:
    void process(cBufferT<cImg>* i_buffer)
    {
        if (!m_red.requestsData() && !m_green.requestsData() && !m_blue.requestsData())
            return;
        int counts[3] = {};
        m_functor(i_buffer->getValue(), counts);
        m_red.send(counts[0], i_buffer->getStamp());
        m_green.send(counts[1], i_buffer->getStamp());
        m_blue.send(counts[2], i_buffer->getStamp());
    }

    cPortGroup<cImg> m_group {this, &cCountInRangeRGBStation::process, QStringLiteral("img")};
    cOPort<int> m_red {this, QStringLiteral("redCount"), defaultPoolSize<int>};
    cOPort<int> m_green {this, QStringLiteral("greenCount"), defaultPoolSize<int>};
    cOPort<int> m_blue {this, QStringLiteral("blueCount"), defaultPoolSize<int>};
};

static const cStationRegistration<cCountInRangeRGBStation> s_registration(
    "ipp/image/statistics/countInRangeRGB",
    {"Number of pixels between two bounds, for each of three channels.",
        {{"lowerBound", "least red, green and blue that count"},
            {"upperBound", "greatest red, green and blue that count"}},
        {"Each channel is counted on its own, so this is not the number of pixels between two colours."}});
