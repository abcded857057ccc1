#include <tarnimg/arithmetic/cDivideImagesFunctor.h>

#include "twoImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using frame::Binary;
using frame::Unary;

constexpr char s_operator[] = "cDivideImagesFunctor::operator ()";

constexpr twoImages::Variant s_variants[] = {
    {cImgType::UInt8, 1, Binary<ippiDiv_8u_C1RSfs>::call, Unary<ippiDiv_8u_C1IRSfs>::call},
    {cImgType::UInt16, 1, Binary<ippiDiv_16u_C1RSfs>::call, Unary<ippiDiv_16u_C1IRSfs>::call},
    {cImgType::SInt16, 1, Binary<ippiDiv_16s_C1RSfs>::call, Unary<ippiDiv_16s_C1IRSfs>::call},
    {cImgType::Float32, 1, Binary<ippiDiv_32f_C1R>::call, Unary<ippiDiv_32f_C1IR>::call},
    {cImgType::RGB24, 3, Binary<ippiDiv_8u_C3RSfs>::call, Unary<ippiDiv_8u_C3IRSfs>::call},
    {cImgType::RGB32, 4, Binary<ippiDiv_8u_C4RSfs>::call, Unary<ippiDiv_8u_C4IRSfs>::call},
};

} // namespace

cDivideImagesFunctor::cDivideImagesFunctor() { addSupportedInputs(s_variants); }

cImg cDivideImagesFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    return twoImages::combine(*this, s_variants, i_a, i_b, s_operator);
}

void cDivideImagesFunctor::operator()(const cImg& i_a, cImg& io_b) const
{
    twoImages::workInto(*this, s_variants, i_a, io_b, s_operator);
}

class cDivideImagesStation : public cFunctorStationT<cDivideImagesFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cDivideImagesStation> s_registration("ipp/image/arithmetic/divide",
    {"Quotient of two images: img2 / img1.", {},
        {"The first input is the divisor: the result is img2 / img1.",
            "A frame with a zero among the divisors fails, and no image is sent for it."}});
