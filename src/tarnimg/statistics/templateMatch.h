#pragma once

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <span>
#include <tarnimg/cWorkMemory.h>

/** What the functors that look for a template in an image share. */
namespace templateMatch {

using SizeQuery = IppStatus (*)(IppiSize, IppiSize, IppEnum, int*);

/** How one supported input is computed. */
struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(
        const cImg& i_image, const cImg& i_template, cImg& io_result, IppEnum i_flags, unsigned char* i_work);
};

/** An image and a template to a result of its own size, with a work memory. */
template <auto Function> struct Match;

template <class T,
    IppStatus (*Function)(const T*, int, IppiSize, const T*, int, IppiSize, Ipp32f*, int, IppEnum, Ipp8u*)>
struct Match<Function> {
    static IppStatus call(
        const cImg& i_image, const cImg& i_template, cImg& io_result, IppEnum i_flags, unsigned char* i_work)
    {
        Ipp32f* result = frame::pixels<Ipp32f>(io_result);
        return Function(frame::pixels<T>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image),
            frame::pixels<T>(i_template), frame::stepOf(i_template), frame::sizeOf(i_template), result,
            frame::stepOf(io_result), i_flags, i_work);
    }
};

/** What the stations say of the parameter "mode", and of their inputs. */
constexpr char s_modeMeaning[]
    = "extent of the result: \"Full\" every place where image and template meet, \"Valid\" where the "
      "template "
      "lies within the image, \"Same\" the image's size with the template's centre on each pixel";
constexpr char s_inputsNote[]
    = "img1 is the image, img2 the template, which may be larger than the image except with "
      "mode \"Valid\"; outside the image all pixels are 0.";

/** Enters "mode" and "norm". */
void bindParams(cObj* i_params, QString& i_mode, QString& i_norm, const QMetaObject& i_class);

/** The pixel functions of one measure. */
struct Functions {
    SizeQuery bufferSize;
    std::span<const Variant> variants;
};

/** The result for an image and a template. @param i_norm the number of the norm. */
cImg run(const cImgFunctor& i_functor, const Functions& i_functions, const cImg& i_image,
    const cImg& i_template, const QString& i_mode, int i_norm, cWorkMemory& io_work, const char* i_operator);

} // namespace templateMatch
