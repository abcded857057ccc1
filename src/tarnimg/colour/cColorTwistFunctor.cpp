#include <tarnimg/colour/cColorTwistFunctor.h>

#include "frame/messages.h"
#include "rowFunction.h"

#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cColorTwistFunctor::operator ()";

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*twist)(const Ipp8u*, int, Ipp8u*, int, IppiSize, const Ipp32f (*)[4]);
};

constexpr Variant s_variants[] = {
    {cImgType::RGB24, 3, ippiColorTwist32f_8u_C3R},
    {cImgType::RGB32, 4, ippiColorTwist32f_8u_AC4R},
};

} // namespace

cColorTwistFunctor::cColorTwistFunctor() { addSupportedInputs(s_variants); }

cImg cColorTwistFunctor::operator()(const cImg& i_image) const
{
    frame::checkInput(*this, i_image, s_operator);
    if (m_twist.getColumnCount() != 4 || m_twist.getRowCount() != 3)
        frame::fail(QString::fromLatin1(frame::s_failure)
                        .arg(QString::fromLatin1(s_operator), QString::fromLatin1(frame::s_twistMustBe3x4)));
    Ipp32f twist[3][4];
    frame::checkStatus(ippsCopy_32f(m_twist.data(), twist[0], 12), s_operator);
    cImg result = frame::resultLike(i_image);
    if (const Variant* variant = frame::find(s_variants, i_image)) {
        frame::checkStatus(colour::fillAlpha(result), s_operator);
        Ipp8u* pixels = frame::pixels<Ipp8u>(result);
        frame::checkStatus(variant->twist(frame::pixels<Ipp8u>(i_image), frame::stepOf(i_image), pixels,
                               frame::stepOf(result), frame::sizeOf(i_image), twist),
            s_operator);
    }
    return result;
}

void cColorTwistFunctor::refreshParams(cObj* i_params) { frame::bindParam(i_params, "twist", m_twist); }

class cColorTwistStation : public cFunctorStationT<cColorTwistFunctor, cImg, cImg, void> {};

static const cStationRegistration<cColorTwistStation> s_registration("ipp/image/colorConversion/colorTwist",
    {"Red, green and blue by a matrix of three rows and four columns.",
        {{"twist",
            "the matrix: in row i the factors of red, green and blue for channel i, and a summand in grey "
            "levels"}},
        {"The matrix is 0 at the start, which makes everything black.", "The alpha channel becomes 255."}});
