#include <tarnimg/arithmetic/cImageDifferencesFunctor.h>

#include "twoImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using frame::Binary;

constexpr char s_operator[] = "cImageDifferencesFunctor::operator ()";

constexpr twoImages::Variant s_variants[] = {
    {cImgType::UInt8, 1, Binary<ippiAbsDiff_8u_C1R>::call},
    {cImgType::UInt16, 1, Binary<ippiAbsDiff_16u_C1R>::call},
    {cImgType::Float32, 1, Binary<ippiAbsDiff_32f_C1R>::call},
    {cImgType::RGB24, 3, Binary<ippiAbsDiff_8u_C3R>::call},
};

} // namespace

cImageDifferencesFunctor::cImageDifferencesFunctor() { addSupportedInputs(s_variants); }

cImg cImageDifferencesFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    return twoImages::combine(*this, s_variants, i_a, i_b, s_operator);
}

class cImageDifferencesStation : public cFunctorStationT<cImageDifferencesFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cImageDifferencesStation> s_registration(
    "ipp/image/arithmetic/difference", {"Absolute difference of two images, |img1 - img2|.", {}, {}});
