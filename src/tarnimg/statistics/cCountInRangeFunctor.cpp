#include <tarnimg/statistics/cCountInRangeFunctor.h>

#include "frame/ippConstants.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cCountInRangeFunctor::operator ()";

template <auto Function> struct Count;

template <class T, IppStatus (*Function)(const T*, int, IppiSize, int*, T, T)> struct Count<Function> {
    static IppStatus call(const cImg& i_image, float i_lower, float i_upper, int* o_count)
    {
        return Function(frame::pixels<T>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), o_count,
            frame::pixelConstant<T>("lowerBound", double(i_lower)),
            frame::pixelConstant<T>("upperBound", double(i_upper)));
    }
};

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(const cImg& i_image, float i_lower, float i_upper, int* o_count);
};

constexpr Variant s_variants[] = {
    {cImgType::UInt8, 1, Count<ippiCountInRange_8u_C1R>::call},
    {cImgType::Float32, 1, Count<ippiCountInRange_32f_C1R>::call},
};

} // namespace

cCountInRangeFunctor::cCountInRangeFunctor() { addSupportedInputs(s_variants); }

void cCountInRangeFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "lowerBound", m_lowerBound);
    frame::bindParam(i_params, "upperBound", m_upperBound);
}

int cCountInRangeFunctor::operator()(const cImg& i_image) const
{
    frame::checkInput(*this, i_image, s_operator);
    int count = 0;
    if (const Variant* variant = frame::find(s_variants, i_image))
        frame::checkStatus(variant->call(i_image, m_lowerBound, m_upperBound, &count), s_operator);
    return count;
}

class cCountInRangeStation : public cFunctorStationT<cCountInRangeFunctor, int, cImg, void> {
public:
    cCountInRangeStation() : cFunctorStationT(QStringLiteral("img"), QStringLiteral("count"), QString()) {}
};

static const cStationRegistration<cCountInRangeStation> s_registration("ipp/image/statistics/countInRange",
    {"Number of pixels between two bounds.",
        {{"lowerBound", "least value that counts"}, {"upperBound", "greatest value that counts"}},
        {"On UInt8 the bounds are cut to eight bits: 256 means 0, and the upper bound may so come to lie "
         "below "
         "the lower one, which fails."}});
