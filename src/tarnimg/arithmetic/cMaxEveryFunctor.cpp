#include <tarnimg/arithmetic/cMaxEveryFunctor.h>

#include "twoImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using frame::Rows;

constexpr char s_operator[] = "cMaxEveryFunctor::operator ()";

constexpr twoImages::EveryVariant s_variants[] = {
    {cImgType::UInt8, 1, Rows<ippiMaxEvery_8u_C1IR>::call},
    {cImgType::UInt16, 1, Rows<ippiMaxEvery_16u_C1IR>::call},
    {cImgType::SInt16, 1, Rows<ippiMaxEvery_16s_C1IR>::call},
    {cImgType::Float32, 1, Rows<ippiMaxEvery_32f_C1IR>::call},
    {cImgType::RGB24, 3, Rows<ippiMaxEvery_8u_C3IR>::call},
    {cImgType::RGB32, 4, Rows<ippiMaxEvery_8u_C4IR>::call},
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
