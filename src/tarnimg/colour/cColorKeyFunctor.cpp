#include <tarnimg/colour/cColorKeyFunctor.h>

#include "frame/ippConstants.h"
#include "frame/ippImages.h"

#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cColorKeyFunctor::operator ()";

/** The keys of grey and of colour images. */
struct Keys {
    unsigned grey;
    QColor colour;
};

template <auto Function> struct Keyed;

/** The grey key, cut to the pixel. */
template <class T, IppStatus (*Function)(const T*, int, const T*, int, T*, int, IppiSize, T)>
struct Keyed<Function> {
    static IppStatus call(const cImg& i_a, const cImg& i_b, cImg& io_result, const Keys& i_keys)
    {
        T* result = frame::pixels<T>(io_result);
        return Function(frame::pixels<T>(i_a), frame::stepOf(i_a), frame::pixels<T>(i_b), frame::stepOf(i_b),
            result, frame::stepOf(io_result), frame::sizeOf(i_a),
            frame::pixelConstant<T>("colorKeyGray", double(i_keys.grey)));
    }
};

/** As many channels of the colour key as the pixel has. */
template <IppStatus (*Function)(const Ipp8u*, int, const Ipp8u*, int, Ipp8u*, int, IppiSize, Ipp8u*)>
struct Keyed<Function> {
    static IppStatus call(const cImg& i_a, const cImg& i_b, cImg& io_result, const Keys& i_keys)
    {
        const QColor& colour = i_keys.colour;
        Ipp8u key[4]
            = {Ipp8u(colour.red()), Ipp8u(colour.green()), Ipp8u(colour.blue()), Ipp8u(colour.alpha())};
        Ipp8u* result = frame::pixels<Ipp8u>(io_result);
        return Function(frame::pixels<Ipp8u>(i_a), frame::stepOf(i_a), frame::pixels<Ipp8u>(i_b),
            frame::stepOf(i_b), result, frame::stepOf(io_result), frame::sizeOf(i_a), key);
    }
};

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*combine)(const cImg& i_a, const cImg& i_b, cImg& io_result, const Keys& i_keys);
};

constexpr Variant s_variants[] = {
    {cImgType::UInt8, 1, Keyed<ippiCompColorKey_8u_C1R>::call},
    {cImgType::UInt16, 1, Keyed<ippiCompColorKey_16u_C1R>::call},
    {cImgType::RGB24, 3, Keyed<ippiCompColorKey_8u_C3R>::call},
    {cImgType::RGB32, 4, Keyed<ippiCompColorKey_8u_C4R>::call},
};

} // namespace

cColorKeyFunctor::cColorKeyFunctor() { addSupportedInputs(s_variants); }

cImg cColorKeyFunctor::operator()(const cImg& i_a, const cImg& i_b) const
{
    frame::checkInputs(*this, i_a, i_b, s_operator);
    cImg result = frame::resultLike(i_a);
    if (const Variant* variant = frame::find(s_variants, i_a))
        frame::checkStatus(variant->combine(i_a, i_b, result, {m_colorKeyGray, m_colorKeyRGB}), s_operator);
    return result;
}

void cColorKeyFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "colorKeyRGB", m_colorKeyRGB);
    frame::bindParam(i_params, "colorKeyGray", m_colorKeyGray);
}

class cColorKeyStation : public cFunctorStationT<cColorKeyFunctor, cImg, cImg, cImg> {};

static const cStationRegistration<cColorKeyStation> s_registration("ipp/image/colorConversion/colorKey",
    {"The first image, and the second one where the first has a key colour.",
        {{"colorKeyRGB", "the colour that lets the second image through, for RGB24 and RGB32"},
            {"colorKeyGray", "the grey level that does so, for UInt8 and UInt16; higher bits are cut off"}},
        {"On RGB32 the alpha has to be that of the key, too."}});
