#include <tarnimg/statistics/cMinMaxFunctor.h>

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <QVariant>
#include <algorithm>
#include <cstring>
#include <customipp/customipp.h>
#include <limits>

namespace {

constexpr char s_operator[] = "cMinMaxFunctor::operator ()";

// --- extremes as variants, of one channel ---

/** By a function on images. T is what the pixels are called, whatever the function takes them for. */
template <class T, auto Function> struct OfImage;

template <class T, class P, IppStatus (*Function)(const P*, int, IppiSize, P*, P*)>
struct OfImage<T, Function> {
    static void call(const cImg& i_image, QVariant& o_min, QVariant& o_max)
    {
        P least, greatest;
        const IppStatus status = Function(
            frame::pixels<P>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), &least, &greatest);
        if (status != ippStsNoErr)
            return;
        o_min.setValue(static_cast<T>(least));
        o_max.setValue(static_cast<T>(greatest));
    }
};

/** By a function on sequences: the row pitch, which counts bytes, is the number of elements. */
template <auto Function> struct OfSequence;

template <class T, IppStatus (*Function)(const T*, int, T*, T*)> struct OfSequence<Function> {
    static void call(const cImg& i_image, QVariant& o_min, QVariant& o_max)
    {
        const unsigned behind = i_image.getFrameSize() - i_image.getBufferOffset();
        const auto count = std::min(i_image.getYPitch(), behind / unsigned(sizeof(T)));
        T least, greatest;
        if (Function(frame::pixels<T>(i_image), int(count), &least, &greatest) != ippStsNoErr)
            return;
        o_min.setValue(least);
        o_max.setValue(greatest);
    }
};

struct VariantsRow {
    cImgType::ImageTypes type;
    void (*call)(const cImg& i_image, QVariant& o_min, QVariant& o_max);
};

constexpr VariantsRow s_asVariants[] = {
    {cImgType::UInt8, OfImage<uchar, ippiMinMax_8u_C1R>::call},
    {cImgType::UInt16, OfImage<ushort, ippiMinMax_16u_C1R>::call},
    {cImgType::UInt32, OfSequence<ippsMinMax_32u>::call},
    {cImgType::SInt8, OfImage<signed char, ippiMinMax_8u_C1R>::call},
    {cImgType::SInt16, OfImage<short, ippiMinMax_16s_C1R>::call},
    {cImgType::SInt32, OfSequence<ippsMinMax_32s>::call},
    {cImgType::Float32, OfImage<float, ippiMinMax_32f_C1R>::call},
    {cImgType::Float64, OfSequence<ippsMinMax_64f>::call},
};

// --- extremes as doubles, of every channel ---

void take(double i_least, double i_greatest, double& io_min, double& io_max)
{
    if (i_least < io_min)
        io_min = i_least;
    if (i_greatest > io_max)
        io_max = i_greatest;
}

/** Any number of channels. */
template <class T> void extremes(const cImg& i_image, double* io_min, double* io_max)
{
    const unsigned channels = i_image.getNumChannels();
    for (unsigned y = 0; y < i_image.getHeight(); ++y) {
        const unsigned char* pixel = i_image.getConstData() + std::size_t(y) * i_image.getYPitch();
        for (unsigned x = 0; x < i_image.getWidth(); ++x, pixel += i_image.getXPitch()) {
            for (unsigned c = 0; c < channels; ++c) {
                T value; // memory from outside may have any alignment
                std::memcpy(&value, pixel + c * sizeof(T), sizeof(T));
                take(value, value, io_min[c], io_max[c]);
            }
        }
    }
}

/** Pixels of bytes with a fixed number of channels. */
template <unsigned Channels, IppStatus (*Function)(const Ipp8u*, int, IppiSize, Ipp8u*, Ipp8u*)>
void extremesOfColour(const cImg& i_image, double* io_min, double* io_max)
{
    Ipp8u least[Channels], greatest[Channels];
    const IppStatus status = Function(
        frame::pixels<Ipp8u>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), least, greatest);
    for (unsigned c = 0; c < Channels && status == ippStsNoErr; ++c)
        take(least[c], greatest[c], io_min[c], io_max[c]);
}

struct ArraysRow {
    cImgType::ImageTypes type;
    unsigned channels;
    void (*call)(const cImg& i_image, double* io_min, double* io_max);
};

constexpr ArraysRow s_asArrays[] = {
    {cImgType::UInt8, 0, extremes<quint8>},
    {cImgType::UInt16, 0, extremes<quint16>},
    {cImgType::SInt16, 0, extremes<qint16>},
    {cImgType::SInt32, 0, extremes<qint32>},
    {cImgType::Float32, 0, extremes<float>},
    {cImgType::Float64, 0, extremes<double>},
    {cImgType::RGB24, 3, extremesOfColour<3, ippiMinMax_8u_C3R>},
    {cImgType::RGB32, 4, extremesOfColour<4, ippiMinMax_8u_C4R>},
};

} // namespace

cMinMaxFunctor::cMinMaxFunctor() { addSupportedInputs(s_asArrays); }

void cMinMaxFunctor::operator()(const cImg& i_image, QVariant& o_min, QVariant& o_max) const
{
    const VariantsRow* row = i_image.isValid() ? frame::find(s_asVariants, i_image) : nullptr;
    if (!row)
        frame::checkInput(*this, i_image, s_operator);
    else if (i_image.getNumChannels() == 1)
        row->call(i_image, o_min, o_max);
}

void cMinMaxFunctor::operator()(const cImg& i_image, double* o_min, double* o_max) const
{
    frame::checkInput(*this, i_image, s_operator);
    std::fill_n(o_min, i_image.getNumChannels(), std::numeric_limits<double>::max());
    std::fill_n(o_max, i_image.getNumChannels(), std::numeric_limits<double>::lowest());
    if (const ArraysRow* row = frame::find(s_asArrays, i_image))
        row->call(i_image, o_min, o_max);
}
