#include <tarnimg/arithmetic/cAddImagesFunctor.h>

#include "twoImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

using frame::Binary;
using frame::Unary;

constexpr char s_operator[] = "cAddImagesFunctor::operator ()";

constexpr twoImages::Variant s_variants[] = {
    {cImgType::UInt8, 1, Binary<ippiAdd_8u_C1RSfs>::call, Unary<ippiAdd_8u_C1IRSfs>::call},
    {cImgType::UInt16, 1, Binary<ippiAdd_16u_C1RSfs>::call, Unary<ippiAdd_16u_C1IRSfs>::call},
    {cImgType::SInt16, 1, Binary<ippiAdd_16s_C1RSfs>::call, Unary<ippiAdd_16s_C1IRSfs>::call},
    {cImgType::Float32, 1, Binary<ippiAdd_32f_C1R>::call, Unary<ippiAdd_32f_C1IR>::call},
    {cImgType::RGB24, 3, Binary<ippiAdd_8u_C3RSfs>::call, Unary<ippiAdd_8u_C3IRSfs>::call},
    {cImgType::RGB32, 4, Binary<ippiAdd_8u_C4RSfs>::call, Unary<ippiAdd_8u_C4IRSfs>::call},
};

} // namespace

cAddImagesFunctor::cAddImagesFunctor() { addSupportedInputs(s_variants); }

cImg cAddImagesFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    return twoImages::combine(*this, s_variants, i_a, i_b, s_operator);
}

void cAddImagesFunctor::operator()(const cImg& i_a, cImg& io_b) const
{
    twoImages::workInto(*this, s_variants, i_a, io_b, s_operator);
}

class cAddImagesStation : public cFunctorStationT<cAddImagesFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cAddImagesStation> s_registration("ipp/image/arithmetic/add",
    {"Sum of two images, pixel by pixel and channel by channel.", {},
        {"Integer pixels are saturated, the alpha channel of RGB32 is added like the others."}});
