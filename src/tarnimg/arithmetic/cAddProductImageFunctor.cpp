#include <tarnimg/arithmetic/cAddProductImageFunctor.h>

#include "accumulator.h"
#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cAddProductImageFunctor::operator ()";

constexpr frame::BinaryVariant s_variants[] = {
    {cImgType::UInt8, 1, frame::Binary<ippiAddProduct_8u32f_C1IR>::call},
    {cImgType::UInt16, 1, frame::Binary<ippiAddProduct_16u32f_C1IR>::call},
    {cImgType::Float32, 1, frame::Binary<ippiAddProduct_32f_C1IR>::call},
};

} // namespace

cAddProductImageFunctor::cAddProductImageFunctor() { addSupportedInputs(s_variants); }

cImg cAddProductImageFunctor::operator()(const cImg& i_a, const cImg& i_b)
{
    frame::checkInputs(*this, i_a, i_b, s_operator);
    // A new sum is not cleared here, unlike that of the squares.
    accumulator::prepare(m_sum, i_a);
    if (const frame::BinaryVariant* variant = frame::find(s_variants, i_a))
        frame::checkStatus(variant->call(i_a, i_b, m_sum), s_operator);
    return m_sum;
}

void cAddProductImageFunctor::reset() { accumulator::clear(m_sum); }

class cAddProductImageStation : public cFunctorStationT<cAddProductImageFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cAddProductImageStation> s_registration("ipp/image/arithmetic/addProduct",
    {"Running sum of products of two images, as a Float32 image.", {},
        {"A new sum is not cleared: its first content is unpredictable.",
            "The sum grows without bound: there is no window and no decay."}});
