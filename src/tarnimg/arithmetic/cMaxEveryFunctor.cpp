#include <tarnimg/arithmetic/cMaxEveryFunctor.h>

#include "twoImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using frame::Binary;

constexpr char s_operator[] = "cMaxEveryFunctor::operator ()";

constexpr frame::BinaryVariant s_variants[] = {
    {cImgType::UInt8, 1, Binary<ippiMaxEvery_8u_C1R>::call},
    {cImgType::UInt16, 1, Binary<ippiMaxEvery_16u_C1R>::call},
    {cImgType::SInt16, 1, Binary<ippiMaxEvery_16s_C1R>::call},
    {cImgType::Float32, 1, Binary<ippiMaxEvery_32f_C1R>::call},
    {cImgType::RGB24, 3, Binary<ippiMaxEvery_8u_C3R>::call},
    {cImgType::RGB32, 4, Binary<ippiMaxEvery_8u_C4R>::call},
};

} // namespace

cMaxEveryFunctor::cMaxEveryFunctor() { addSupportedInputs(s_variants); }

cImg cMaxEveryFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    return twoImages::workIntoCopy(*this, s_variants, i_a, i_b, s_operator);
}

class cMaxEveryStation : public cFunctorStationT<cMaxEveryFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cMaxEveryStation> s_registration("ipp/image/statistics/maxEvery",
    {"Greater pixel of two images, channel by channel.", {},
        {"The result carries the attributes of the second input."}});
