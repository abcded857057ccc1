#include <tarnimg/colour/cConvertYUVToRGBFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cConvertYUVToRGBFunctor::operator ()";

} // namespace

cConvertYUVToRGBFunctor::cConvertYUVToRGBFunctor() { addSupportedInput(cImgType::UInt8, 1); }

cImg cConvertYUVToRGBFunctor::operator()(const cImg& i_image) const
{
    frame::checkInput(*this, i_image, s_operator);
    cImg result(cImgType::RGB24, i_image.getWidth(), i_image.getHeight() / 2, 1);
    if (!result.isValid())
        return result;
    Ipp8u* rgb = frame::pixels<Ipp8u>(result);
    // A pitch beyond half an int leaves room for one row of the frame only, and then the step plays no part.
    const int frameStep = int(std::min(2ull * i_image.getYPitch(), 0ull + INT_MAX));
    const IppStatus status = ippiYUV422ToRGB_8u_C2C3R(
        frame::pixels<Ipp8u>(i_image), frameStep, rgb, frame::stepOf(result), frame::sizeOf(result));
    // A warning, of an odd width, is no failure; an error leaves all pixels unwritten.
    if (status < ippStsNoErr)
        std::memset(rgb, 0, result.getFrameSize());
    return result;
}

class cConvertYUVToRGBStation : public cFunctorStationT<cConvertYUVToRGBFunctor, cImg, cImg, void> {};

static const cStationRegistration<cConvertYUVToRGBStation> s_registration(
    "ipp/image/colorConversion/YUV422ToRGB",
    {"Colour image of packed YUV 4:2:2, in which two rows of the input are one row of the frame.", {},
        {"The result has half the height of the input; a last odd row is lost."}});
