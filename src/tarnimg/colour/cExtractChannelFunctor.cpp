#include <tarnimg/colour/cExtractChannelFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <algorithm>
#include <cstring>
#include <customipp/customipp.h>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cExtractChannelFunctor::operator ()";

using Extract = IppStatus (*)(const cImg& i_source, unsigned i_channel, cImg& io_result);
template <class T> using Copy = IppStatus (*)(const T*, int, T*, int, IppiSize);

/** Rows of pixels by a function of the pixel layer, which gets the channel of the first pixel. */
template <class T, Copy<T> Function>
IppStatus copyRows(const cImg& i_source, unsigned i_channel, cImg& io_result)
{
    T* result = frame::pixels<T>(io_result);
    return Function(frame::pixels<T>(i_source) + i_channel, frame::stepOf(i_source), result,
        frame::stepOf(io_result), frame::sizeOf(i_source));
}

/** Every i_stride-th element; memory may have any alignment. */
template <class T>
void copyEvery(const unsigned char* i_from, std::size_t i_stride, T* o_to, std::size_t i_count)
{
    for (std::size_t i = 0; i < i_count; ++i)
        std::memcpy(o_to + i, i_from + i * i_stride * sizeof(T), sizeof(T));
}

/** Rows of pixels of two elements. */
template <class T> IppStatus copyPairs(const cImg& i_source, unsigned i_channel, cImg& io_result)
{
    for (unsigned y = 0; y < i_source.getHeight(); ++y)
        copyEvery(i_source.getConstData() + std::size_t(y) * i_source.getYPitch() + i_channel * sizeof(T), 2,
            io_result.row<T>(y), i_source.getWidth());
    return ippStsNoErr;
}

/** The memory from the first pixel on as one sequence; the result has no gaps between its rows. */
template <class T> IppStatus copySequence(const cImg& i_source, unsigned i_channel, cImg& io_result)
{
    const std::size_t stride = i_source.getNumChannels();
    const std::size_t wanted = std::size_t(i_source.getWidth()) * i_source.getHeight();
    const std::size_t elements = (i_source.getFrameSize() - i_source.getBufferOffset()) / sizeof(T);
    const std::size_t present
        = i_channel < elements ? std::min(wanted, (elements - i_channel - 1) / stride + 1) : 0;
    T* result = frame::pixels<T>(io_result);
    if (present > 0)
        copyEvery(i_source.getConstData() + i_channel * sizeof(T), stride, result, present);
    std::fill(result + present, result + wanted, T());
    return ippStsNoErr;
}

/** Any number of channels. */
template <class T, Copy<T> OfOne, Copy<T> OfThree, Copy<T> OfFour>
IppStatus copyAny(const cImg& i_source, unsigned i_channel, cImg& io_result)
{
    const unsigned channels = i_source.getNumChannels();
    if (i_channel < channels) {
        if (channels == 1)
            return copyRows<T, OfOne>(i_source, i_channel, io_result);
        if (channels == 3)
            return copyRows<T, OfThree>(i_source, i_channel, io_result);
        if (channels == 4)
            return copyRows<T, OfFour>(i_source, i_channel, io_result);
    }
    return copySequence<T>(i_source, i_channel, io_result);
}

struct Variant {
    cImgType::ImageTypes type;
    cImgType::ImageTypes result;
    unsigned channels; ///< 0 where any channel may be asked for
    Extract extract;
};

constexpr Variant s_variants[] = {
    {cImgType::Gradient16, cImgType::SInt16, 2, copyPairs<Ipp16s>},
    {cImgType::Gradient32, cImgType::SInt32, 2, copyPairs<Ipp32s>},
    {cImgType::RGB24, cImgType::UInt8, 3, copyRows<Ipp8u, ippiCopy_8u_C3C1R>},
    {cImgType::RGB32, cImgType::UInt8, 4, copyRows<Ipp8u, ippiCopy_8u_C4C1R>},
    {cImgType::SInt8, cImgType::SInt8, 0, copySequence<Ipp8s>},
    {cImgType::UInt8, cImgType::UInt8, 0,
        copyAny<Ipp8u, ippiCopy_8u_C1R, ippiCopy_8u_C3C1R, ippiCopy_8u_C4C1R>},
    {cImgType::UInt16, cImgType::UInt16, 0,
        copyAny<Ipp16u, ippiCopy_16u_C1R, ippiCopy_16u_C3C1R, ippiCopy_16u_C4C1R>},
    {cImgType::SInt16, cImgType::SInt16, 0,
        copyAny<Ipp16s, ippiCopy_16s_C1R, ippiCopy_16s_C3C1R, ippiCopy_16s_C4C1R>},
    {cImgType::UInt32, cImgType::UInt32, 0, copySequence<Ipp32u>},
    {cImgType::SInt32, cImgType::SInt32, 0,
        copyAny<Ipp32s, ippiCopy_32s_C1R, ippiCopy_32s_C3C1R, ippiCopy_32s_C4C1R>},
    {cImgType::Float32, cImgType::Float32, 0,
        copyAny<Ipp32f, ippiCopy_32f_C1R, ippiCopy_32f_C3C1R, ippiCopy_32f_C4C1R>},
    {cImgType::Float64, cImgType::Float64, 0, copySequence<Ipp64f>},
};

} // namespace

void cExtractChannelFunctor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "channelID", m_channelID);
}

cImg cExtractChannelFunctor::operator()(const cImg& i_image) const
{
    const Variant* variant = i_image.isValid() ? frame::find(s_variants, i_image) : nullptr;
    if (!variant || (variant->channels != 0 && m_channelID >= variant->channels))
        return cImg();
    cImg result(variant->result, i_image.getWidth(), i_image.getHeight(), 1);
    frame::checkStatus(variant->extract(i_image, m_channelID, result), s_operator);
    result.setRange(i_image.getRange());
    return result;
}

class cExtractChannelStation : public cFunctorStationT<cExtractChannelFunctor, cImg, cImg, void> {};

static const cStationRegistration<cExtractChannelStation> s_registration(
    "ipp/image/dataExchange/extractChannel",
    {"One channel of an image as an image of its own.", {{"channelID", "channel, counted from 0"}},
        {"A channel that a colour or gradient image does not have gives no result, and no failure.",
            "Other images have a result for any channel: beyond the last one that of later pixels."}});
