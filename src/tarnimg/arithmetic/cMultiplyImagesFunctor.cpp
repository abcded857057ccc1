#include <tarnimg/arithmetic/cMultiplyImagesFunctor.h>

#include "twoImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using frame::Binary;
using frame::Unary;

constexpr char s_operator[] = "cMultiplyImagesFunctor::operator ()";

constexpr twoImages::Variant s_variants[] = {
    {cImgType::UInt8, 1, Binary<ippiMul_8u_C1RSfs>::call, Unary<ippiMul_8u_C1IRSfs>::call},
    {cImgType::UInt16, 1, Binary<ippiMul_16u_C1RSfs>::call, Unary<ippiMul_16u_C1IRSfs>::call},
    {cImgType::SInt16, 1, Binary<ippiMul_16s_C1RSfs>::call, Unary<ippiMul_16s_C1IRSfs>::call},
    {cImgType::Float32, 1, Binary<ippiMul_32f_C1R>::call, Unary<ippiMul_32f_C1IR>::call},
    {cImgType::RGB24, 3, Binary<ippiMul_8u_C3RSfs>::call, Unary<ippiMul_8u_C3IRSfs>::call},
    {cImgType::RGB32, 4, Binary<ippiMul_8u_C4RSfs>::call, Unary<ippiMul_8u_C4IRSfs>::call},
};

} // namespace

cMultiplyImagesFunctor::cMultiplyImagesFunctor() { addSupportedInputs(s_variants); }

cImg cMultiplyImagesFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    return twoImages::combine(*this, s_variants, i_a, i_b, s_operator);
}

void cMultiplyImagesFunctor::operator()(const cImg& i_a, cImg& io_b) const
{
    twoImages::workInto(*this, s_variants, i_a, io_b, s_operator);
}

class cMultiplyImagesStation : public cFunctorStationT<cMultiplyImagesFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cMultiplyImagesStation> s_registration("ipp/image/arithmetic/multiply",
    {"Product of two images, pixel by pixel and channel by channel.", {},
        {"Integer pixels are saturated, with no scaling: on 8 bits all but small factors give white."}});
