#pragma once

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <algorithm>
#include <customipp/customipp.h>

/** What the functors that extract hue, saturation or value share. */
namespace colour {

/** How one supported input becomes hue, saturation and value, and how one channel of these is taken out. */
struct HSVVariant {
    using Pixels = IppStatus (*)(const Ipp8u*, int, Ipp8u*, int, IppiSize);
    cImgType::ImageTypes type;
    unsigned channels;
    Pixels toHSV;
    Pixels extract;
};

constexpr HSVVariant s_hsvVariants[] = {
    {cImgType::RGB24, 3, ippiRGBToHSV_8u_C3R, ippiCopy_8u_C3C1R},
    {cImgType::RGB32, 4, ippiRGBToHSV_8u_AC4R, ippiCopy_8u_C4C1R},
};

/** Rows that are converted at a time: as many as a cache beside the processor holds. */
inline unsigned hsvRows(const cImg& i_image)
{
    constexpr unsigned cacheBytes = 128 * 1024;
    return std::clamp(
        cacheBytes / std::max(1u, i_image.getWidth() * i_image.getXPitch()), 1u, i_image.getHeight());
}

/**
 * One channel of hue, saturation and value.
 *
 * @param io_hsv working memory: a few rows of an image of the same type, made anew where it does not fit
 */
inline cImg hsvChannel(const cImgFunctor& i_functor, const cImg& i_image, cImg& io_hsv, unsigned i_channel,
    const char* i_operator)
{
    frame::checkInput(i_functor, i_image, i_operator);
    cImg result(cImgType::UInt8, i_image.getWidth(), i_image.getHeight(), 1);
    const HSVVariant* variant = frame::find(s_hsvVariants, i_image);
    if (!variant)
        return result;
    const cImgType::ImageTypes type = i_image.getImgType().getTypeId();
    const unsigned rows = hsvRows(i_image);
    if (!io_hsv.isKindOf(type) || io_hsv.getWidth() != i_image.getWidth() || io_hsv.getHeight() != rows)
        io_hsv = cImg(type, i_image.getWidth(), rows, 1);
    Ipp8u* hsv = frame::pixels<Ipp8u>(io_hsv);
    const int hsvStep = frame::stepOf(io_hsv);
    for (unsigned y = 0; y < i_image.getHeight(); y += rows) {
        const IppiSize size {int(i_image.getWidth()), int(std::min(rows, i_image.getHeight() - y))};
        frame::checkStatus(
            variant->toHSV(i_image.getRow<Ipp8u>(y), frame::stepOf(i_image), hsv, hsvStep, size), i_operator);
        frame::checkStatus(
            variant->extract(hsv + i_channel, hsvStep, result.row<Ipp8u>(y), frame::stepOf(result), size),
            i_operator);
    }
    return result;
}

} // namespace colour
