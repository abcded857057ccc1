#pragma once

#include "frame/functorFrame.h"
#include "frame/ippImages.h"
#include "frame/rowBands.h"

#include <customipp/customipp.h>

/** What the conversions that work row by row share. */
namespace colour {

/** What "numThreads" means to a user. */
constexpr char s_numThreadsMeaning[]
    = "number of row bands that are computed at the same time; 0 or less: as many as the machine has threads";

/** Rows of a source to as many of a destination. */
template <class S, class D>
using RowFunction
    = IppStatus (*)(const S* i_source, int i_sourceStep, D* o_result, int i_resultStep, IppiSize i_size);

/** How one supported input is converted. */
template <class S, class D> struct RowVariant {
    cImgType::ImageTypes type;
    unsigned channels;
    RowFunction<S, D> function;
};

/** Calls a row function on the whole image, or in bands on the thread pool; the status is that of the first
 * band. */
template <class S, class D>
IppStatus runInBands(RowFunction<S, D> i_function, int i_numThreads, const cImg& i_source, cImg& io_result)
{
    unsigned char* result = io_result.getData();
    return frame::runInBands(i_numThreads, i_source.getHeight(), [&](unsigned first, unsigned rows) {
        return i_function(
            reinterpret_cast<const S*>(i_source.getConstData() + std::size_t(first) * i_source.getYPitch()),
            frame::stepOf(i_source),
            reinterpret_cast<D*>(result + std::size_t(first) * io_result.getYPitch()),
            frame::stepOf(io_result), {int(i_source.getWidth()), int(rows)});
    });
}

/** Makes the alpha of an image of RGB32 255; other types have none. */
inline IppStatus fillAlpha(cImg& io_image)
{
    if (!io_image.isKindOf(cImgType::RGB32))
        return ippStsNoErr;
    return ippiSet_8u_C4CR(
        255, frame::pixels<Ipp8u>(io_image) + 3, frame::stepOf(io_image), frame::sizeOf(io_image));
}

/** A new image of the same type from a supported one; the alpha channel becomes 255. */
template <class Table>
cImg convertRows(const cImgFunctor& i_functor, const Table& i_variants, int i_numThreads, const cImg& i_image,
    const char* i_operator)
{
    frame::checkInput(i_functor, i_image, i_operator);
    cImg result = frame::resultLike(i_image);
    if (const auto* variant = frame::find(i_variants, i_image)) {
        frame::checkStatus(fillAlpha(result), i_operator);
        frame::checkStatus(runInBands(variant->function, i_numThreads, i_image, result), i_operator);
    }
    return result;
}

} // namespace colour
