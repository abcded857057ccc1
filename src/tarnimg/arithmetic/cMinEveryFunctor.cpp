#include <tarnimg/arithmetic/cMinEveryFunctor.h>

#include "twoImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using frame::Binary;

constexpr char s_operator[] = "cMinEveryFunctor::operator ()";

constexpr frame::BinaryVariant s_variants[] = {
    {cImgType::UInt8, 1, Binary<ippiMinEvery_8u_C1R>::call},
    {cImgType::UInt16, 1, Binary<ippiMinEvery_16u_C1R>::call},
    {cImgType::SInt16, 1, Binary<ippiMinEvery_16s_C1R>::call},
    {cImgType::Float32, 1, Binary<ippiMinEvery_32f_C1R>::call},
    {cImgType::RGB24, 3, Binary<ippiMinEvery_8u_C3R>::call},
    {cImgType::RGB32, 4, Binary<ippiMinEvery_8u_C4R>::call},
};

} // namespace

cMinEveryFunctor::cMinEveryFunctor() { addSupportedInputs(s_variants); }

cImg cMinEveryFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    return twoImages::workIntoCopy(*this, s_variants, i_a, i_b, s_operator);
}

class cMinEveryStation : public cFunctorStationT<cMinEveryFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cMinEveryStation> s_registration("ipp/image/statistics/minEvery",
    {"Smaller pixel of two images, channel by channel.", {},
        {"The result carries the attributes of the second input."}});
