#include <tarnimg/arithmetic/cAddSquareImageFunctor.h>

#include "accumulator.h"
#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cAddSquareImageFunctor::operator ()";

constexpr frame::UnaryVariant s_variants[] = {
    {cImgType::UInt8, 1, frame::Unary<ippiAddSquare_8u32f_C1IR>::call},
    {cImgType::UInt16, 1, frame::Unary<ippiAddSquare_16u32f_C1IR>::call},
    {cImgType::Float32, 1, frame::Unary<ippiAddSquare_32f_C1IR>::call},
};

} // namespace

cAddSquareImageFunctor::cAddSquareImageFunctor() { addSupportedInputs(s_variants); }

cImg cAddSquareImageFunctor::operator()(const cImg& i_image)
{
    frame::checkInput(*this, i_image, s_operator);
    if (accumulator::prepare(m_sum, i_image))
        accumulator::clear(m_sum);
    if (const frame::UnaryVariant* variant = frame::find(s_variants, i_image))
        frame::checkStatus(variant->call(i_image, m_sum), s_operator);
    return m_sum;
}

void cAddSquareImageFunctor::reset() { accumulator::clear(m_sum); }

class cAddSquareImageStation : public cFunctorStationT<cAddSquareImageFunctor, cImg, cImg, void> {};

static const cStationRegistration<cAddSquareImageStation> s_registration("ipp/image/arithmetic/addSquare",
    {"Running sum of squares, as a Float32 image.", {},
        {"The sum grows without bound: there is no window and no decay.",
            "An image of another size starts a new sum."}});
