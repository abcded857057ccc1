#include <tarnimg/arithmetic/cSubtractImagesFunctor.h>

#include "twoImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using frame::Binary;
using frame::Unary;

constexpr char s_operator[] = "cSubtractImagesFunctor::operator ()";

constexpr twoImages::Variant s_variants[] = {
    {cImgType::UInt8, 1, Binary<ippiSub_8u_C1RSfs>::call, Unary<ippiSub_8u_C1IRSfs>::call},
    {cImgType::UInt16, 1, Binary<ippiSub_16u_C1RSfs>::call, Unary<ippiSub_16u_C1IRSfs>::call},
    {cImgType::SInt16, 1, Binary<ippiSub_16s_C1RSfs>::call, Unary<ippiSub_16s_C1IRSfs>::call},
    {cImgType::Float32, 1, Binary<ippiSub_32f_C1R>::call, Unary<ippiSub_32f_C1IR>::call},
    {cImgType::RGB24, 3, Binary<ippiSub_8u_C3RSfs>::call, Unary<ippiSub_8u_C3IRSfs>::call},
    {cImgType::RGB32, 4, Binary<ippiSub_8u_C4RSfs>::call, Unary<ippiSub_8u_C4IRSfs>::call},
};

} // namespace

cSubtractImagesFunctor::cSubtractImagesFunctor() { addSupportedInputs(s_variants); }

cImg cSubtractImagesFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    return twoImages::combine(*this, s_variants, i_a, i_b, s_operator);
}

void cSubtractImagesFunctor::operator()(const cImg& i_a, cImg& io_b) const
{
    twoImages::workInto(*this, s_variants, i_a, io_b, s_operator);
}

class cSubtractImagesStation : public cFunctorStationT<cSubtractImagesFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cSubtractImagesStation> s_registration("ipp/image/arithmetic/subtract",
    {"Difference of two images: img2 - img1.", {},
        {"The second input is the minuend: the result is img2 - img1.",
            "Integer pixels are saturated: what is below 0 becomes 0 on unsigned types."}});
