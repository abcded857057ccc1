#include "conversion/routes.h"

#include "conversion/cImageConverter.h"
#include "conversion/expandColour.h"

#include <tarnbase/cTracer.h>
#include <tarnimg/cImg.h>

#include <algorithm>
#include <array>

namespace conversion {

namespace {

const cDblRange s_byteRange(0.0, 255.0);

// ---- Any pair of one-channel types

template <class S, class D> void generic(Program& io_program, const Ranges& i_ranges)
{
    if (i_ranges.input.getLength() == 0.0 || i_ranges.output.getLength() == 0.0) {
        cTracer::cerr << "Invalid range detected." << cTracer::end();
        io_program.cancel();
        return;
    }
    const cImageConverter<S, D> convert(i_ranges.input, i_ranges.output);
    io_program.move(int(sizeof(D)), [convert](const Tile& tile, SourceRows source, TargetRows target) {
        for (int y = 0; y < tile.height; ++y) {
            convert(reinterpret_cast<const S*>(source.first + y * source.pitch),
                reinterpret_cast<D*>(target.first + y * target.pitch), std::size_t(tile.width));
        }
    });
}

// ---- Grey of 8 and 16 bits

/** The result must be written even if nothing changes. */
template <class T>
void copyIfEmpty(Program& io_program, int i_pixelBytes, IppStatus (*i_copy)(const T*, int, T*, int, IppiSize))
{
    if (io_program.isEmpty())
        addMove(io_program, i_pixelBytes, i_copy);
}

void uInt8ToUInt8(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp8u>(io_program, 1, i_ranges.input, Refused::Result);
    addSubtract<Ipp8u>(io_program, 1, i_ranges);
    addStretch<Ipp8u>(io_program, 1, i_ranges);
    copyIfEmpty(io_program, 1, ippiCopy_8u_C1R);
}

void uInt16ToUInt16(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp16u>(io_program, 1, i_ranges.input, Refused::Result);
    addSubtract<Ipp16u>(io_program, 1, i_ranges);
    addStretch<Ipp16u>(io_program, 1, i_ranges);
    copyIfEmpty(io_program, 2, ippiCopy_16u_C1R);
}

/** Limits as bytes, all else in 16 bits. */
void uInt8ToUInt16(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp8u>(io_program, 1, i_ranges.input, Refused::Source);
    addMove(io_program, 2, ippiConvert_8u16u_C1R);
    addSubtract<Ipp16u>(io_program, 1, i_ranges);
    addStretch<Ipp16u>(io_program, 1, i_ranges);
}

/** All in 16 bits; what exceeds a byte in the end saturates. */
void uInt16ToUInt8(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp16u>(io_program, 1, i_ranges.input, Refused::Source);
    addSubtract<Ipp16u>(io_program, 1, i_ranges);
    addStretch<Ipp16u>(io_program, 1, i_ranges);
    addMove(io_program, 1, ippiConvert_16u8u_C1R);
}

// ---- Grey to colour

void setAlpha(Program& io_program, Ipp8u i_alpha)
{
    io_program.change([i_alpha](const Tile& tile, TargetRows pixels) {
        ippiSet_8u_C4CR(i_alpha, pixels.first + 3, pixels.step(), tile.elements(1));
    });
}

/** The last step to RGB32. */
void addExpand(Program& io_program, ColourExpanders::Row i_expand)
{
    io_program.move(4, [i_expand](const Tile& tile, SourceRows source, TargetRows target) {
        for (int y = 0; y < tile.height; ++y)
            i_expand(
                source.first + y * source.pitch, target.first + y * target.pitch, std::size_t(tile.width));
    });
}

/** The constants are equal in all channels, so the grey value takes them before it is spread. */
void uInt8ToGrey(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp8u>(io_program, 1, i_ranges.input, Refused::Source);
    addSubtract<Ipp8u>(io_program, 1, i_ranges);
    addStretch<Ipp8u>(io_program, 1, i_ranges);
}

void uInt8ToRgb24(Program& io_program, const Ranges& i_ranges)
{
    uInt8ToGrey(io_program, i_ranges);
    addMove(io_program, 3, ippiDup_8u_C1C3R);
}

void uInt8ToRgb32(Program& io_program, const Ranges& i_ranges)
{
    uInt8ToGrey(io_program, i_ranges);
    addExpand(io_program, colourExpanders().fromGrey);
}

// ---- Colour to colour

void rgb24ToRgb24(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp8u>(io_program, 3, i_ranges.input, Refused::Result);
    addSubtract<Ipp8u>(io_program, 3, i_ranges);
    addStretch<Ipp8u>(io_program, 3, i_ranges);
    copyIfEmpty(io_program, 3, ippiCopy_8u_C3R);
}

/** The input range does not limit the pixels here: it only shifts and stretches them. Alpha becomes 255. */
void rgb24ToRgb32(Program& io_program, const Ranges& i_ranges)
{
    addSubtract<Ipp8u>(io_program, 3, i_ranges);
    addStretch<Ipp8u>(io_program, 3, i_ranges);
    addExpand(io_program, colourExpanders().fromRgb24);
}

/** The input range does not limit the pixels here either. */
void rgb32ToRgb24(Program& io_program, const Ranges& i_ranges)
{
    addMove(io_program, 3, ippiCopy_8u_AC4C3R);
    addSubtract<Ipp8u>(io_program, 3, i_ranges);
    addStretch<Ipp8u>(io_program, 3, i_ranges);
}

using ChangeColour = IppStatus (*)(const Ipp8u[3], Ipp8u*, int, IppiSize, int);

/** A step with one constant for red, green and blue, which leaves alpha alone. */
void changeColour(Program& io_program, ChangeColour i_function, Ipp8u i_value, int i_scale)
{
    io_program.change([=](const Tile& tile, TargetRows pixels) {
        const Ipp8u values[3] = {i_value, i_value, i_value};
        i_function(values, pixels.first, pixels.step(), tile.elements(1), i_scale);
    });
}

/** If the input range limits nothing each pixel keeps its alpha; else all get that of the first pixel. */
void rgb32ToRgb32(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp8u>(io_program, 4, i_ranges.input, Refused::Result);
    if (limits<Ipp8u>(i_ranges.input)) {
        addSubtract<Ipp8u>(io_program, 4, i_ranges);
        addStretch<Ipp8u>(io_program, 4, i_ranges);
        copyIfEmpty(io_program, 4, ippiCopy_8u_C4R);
        setAlpha(io_program, io_program.firstPixel()[3]);
    } else {
        copyIfEmpty(io_program, 4, ippiCopy_8u_C4R);
        const Stretch<Ipp8u> stretch(i_ranges);
        if (stretch.multiplies)
            changeColour(io_program, ippiMulC_8u_AC4IRSfs, stretch.multiplier, stretch.scale);
        if (stretch.offset != 0)
            changeColour(io_program, ippiAddC_8u_AC4IRSfs, stretch.offset, 0);
    }
}

// ---- Colour to grey

/**
 * Subtracts the low end as if four bytes of each pixel were written where there are three: every row but the
 * first begins with bytes that the row before it has reached too, one for each pixel of a row, and that lose
 * it twice.
 */
void addSubtractOverlapping(Program& io_program, const Ranges& i_ranges)
{
    const auto low = cut<Ipp8u>(i_ranges.input.getLow());
    const qint64 width = io_program.width();
    io_program.needsPlaces();
    io_program.move(3, [=](const Tile& tile, SourceRows source, TargetRows target) {
        ippiSubC_8u_C1RSfs(
            source.first, source.step(), low, target.first, target.step(), tile.elements(3), 0);
        const int skipped = tile.y == 0 ? 1 : 0;
        const qint64 twice = std::min<qint64>(width - 3 * tile.x, qint64(3) * tile.width);
        if (twice > 0 && tile.height > skipped) {
            ippiSubC_8u_C1IRSfs(
                low, target.at(0, skipped, 0).first, target.step(), {int(twice), tile.height - skipped}, 0);
        }
    });
}

void rgb24ToUInt8(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp8u>(io_program, 3, i_ranges.input, Refused::Source);
    if (i_ranges.input.getLow() != 0.0)
        addSubtractOverlapping(io_program, i_ranges);
    addMove(io_program, 1, ippiRGBToGray_8u_C3C1R);
    addStretch<Ipp8u>(io_program, 1, i_ranges);
}

/** Alpha takes part up to the weighted sum, which leaves it out. */
void rgb32ToUInt8(Program& io_program, const Ranges& i_ranges)
{
    addLimit<Ipp8u>(io_program, 4, i_ranges.input, Refused::Source);
    addSubtract<Ipp8u>(io_program, 4, i_ranges);
    addMove(io_program, 1, ippiRGBToGray_8u_AC4C1R);
    addStretch<Ipp8u>(io_program, 1, i_ranges);
}

// ---- Floats

template <class T>
void toFloat32(Program& io_program, const Ranges& i_ranges,
    IppStatus (*i_convert)(const T*, int, Ipp32f*, int, IppiSize))
{
    addLimit<T>(io_program, 1, i_ranges.input, Refused::Source);
    addMove(io_program, 4, i_convert);
    addStretchFloat(io_program, i_ranges);
}

void uInt8ToFloat32(Program& io_program, const Ranges& i_ranges)
{
    toFloat32<Ipp8u>(io_program, i_ranges, ippiConvert_8u32f_C1R);
}

void uInt16ToFloat32(Program& io_program, const Ranges& i_ranges)
{
    toFloat32<Ipp16u>(io_program, i_ranges, ippiConvert_16u32f_C1R);
}

// ---- Two routes by way of UInt8

/** The grey value is stretched over a whole byte before it becomes a colour. */
template <Route ToUInt8, Route ToColour> void toColour(Program& io_program, const Ranges& i_ranges)
{
    ToUInt8(io_program, {i_ranges.input, s_byteRange});
    ToColour(io_program, {s_byteRange, i_ranges.output});
}

/** The colour becomes a grey value within the input range, which the second route then stretches. */
template <Route ToUInt8, Route FromUInt8> void fromColour(Program& io_program, const Ranges& i_ranges)
{
    ToUInt8(io_program, {i_ranges.input, i_ranges.input});
    FromUInt8(io_program, i_ranges);
}

template <Route FromUInt8> constexpr Route fromRgb24 = fromColour<rgb24ToUInt8, FromUInt8>;
template <Route FromUInt8> constexpr Route fromRgb32 = fromColour<rgb32ToUInt8, FromUInt8>;
template <Route ToUInt8> constexpr Route toRgb24 = toColour<ToUInt8, uInt8ToRgb24>;
template <Route ToUInt8> constexpr Route toRgb32 = toColour<ToUInt8, uInt8ToRgb32>;

// ---- The matrix

constexpr Route none = nullptr;

/** Source by target, both in the order of their numbers from RGB24 to Float64. */
constexpr int s_numTypes = 11;
constexpr Route s_routes[s_numTypes][s_numTypes] = {
    // RGB24 to RGB24, RGB32, UInt8, UInt16, UInt32, SInt8, SInt16, SInt32, SInt64, Float32, Float64
    {rgb24ToRgb24, rgb24ToRgb32, rgb24ToUInt8, fromRgb24<uInt8ToUInt16>, fromRgb24<generic<quint8, quint32>>,
        fromRgb24<generic<quint8, qint8>>, fromRgb24<generic<quint8, qint16>>,
        fromRgb24<generic<quint8, qint32>>, none, fromRgb24<uInt8ToFloat32>,
        fromRgb24<generic<quint8, double>>},
    // RGB32
    {rgb32ToRgb24, rgb32ToRgb32, rgb32ToUInt8, fromRgb32<uInt8ToUInt16>, fromRgb32<generic<quint8, quint32>>,
        fromRgb32<generic<quint8, qint8>>, fromRgb32<generic<quint8, qint16>>,
        fromRgb32<generic<quint8, qint32>>, none, fromRgb32<uInt8ToFloat32>,
        fromRgb32<generic<quint8, double>>},
    // UInt8, which alone has no way to UInt32
    {uInt8ToRgb24, uInt8ToRgb32, uInt8ToUInt8, uInt8ToUInt16, none, generic<quint8, qint8>,
        generic<quint8, qint16>, generic<quint8, qint32>, none, uInt8ToFloat32, generic<quint8, double>},
    // UInt16
    {toRgb24<uInt16ToUInt8>, toRgb32<uInt16ToUInt8>, uInt16ToUInt8, uInt16ToUInt16, generic<quint16, quint32>,
        generic<quint16, qint8>, generic<quint16, qint16>, generic<quint16, qint32>, none, uInt16ToFloat32,
        generic<quint16, double>},
    // UInt32
    {toRgb24<generic<quint32, quint8>>, toRgb32<generic<quint32, quint8>>, generic<quint32, quint8>,
        generic<quint32, quint16>, generic<quint32, quint32>, generic<quint32, qint8>,
        generic<quint32, qint16>, generic<quint32, qint32>, none, generic<quint32, float>,
        generic<quint32, double>},
    // SInt8
    {toRgb24<generic<qint8, quint8>>, toRgb32<generic<qint8, quint8>>, generic<qint8, quint8>,
        generic<qint8, quint16>, generic<qint8, quint32>, generic<qint8, qint8>, generic<qint8, qint16>,
        generic<qint8, qint32>, none, generic<qint8, float>, generic<qint8, double>},
    // SInt16
    {toRgb24<generic<qint16, quint8>>, toRgb32<generic<qint16, quint8>>, generic<qint16, quint8>,
        generic<qint16, quint16>, generic<qint16, quint32>, generic<qint16, qint8>, generic<qint16, qint16>,
        generic<qint16, qint32>, none, generic<qint16, float>, generic<qint16, double>},
    // SInt32
    {toRgb24<generic<qint32, quint8>>, toRgb32<generic<qint32, quint8>>, generic<qint32, quint8>,
        generic<qint32, quint16>, generic<qint32, quint32>, generic<qint32, qint8>, generic<qint32, qint16>,
        generic<qint32, qint32>, none, generic<qint32, float>, generic<qint32, double>},
    // SInt64
    {none, none, none, none, none, none, none, none, generic<qint64, qint64>, none, none},
    // Float32
    {toRgb24<addFloatChain<Ipp8u>>, toRgb32<addFloatChain<Ipp8u>>, addFloatChain<Ipp8u>,
        addFloatChain<Ipp16u>, generic<float, quint32>, addFloatChain<Ipp8s>, addFloatChain<Ipp16s>,
        generic<float, qint32>, none, addFloatChain<Ipp32f>, generic<float, double>},
    // Float64
    {toRgb24<generic<double, quint8>>, toRgb32<generic<double, quint8>>, generic<double, quint8>,
        generic<double, quint16>, generic<double, quint32>, generic<double, qint8>, generic<double, qint16>,
        generic<double, qint32>, none, generic<double, float>, generic<double, double>},
};

/** Memory from outside may have room between its pixels, which the steps know nothing of. */
bool hasGaps(const cImg& i_image) { return i_image.getXPitch() != i_image.getImgType().getPixelSize(); }

} // namespace

Route findRoute(cImgType::ImageTypes i_source, cImgType::ImageTypes i_target)
{
    const int source = i_source - cImgType::RGB24;
    const int target = i_target - cImgType::RGB24;
    if (source < 0 || source >= s_numTypes || target < 0 || target >= s_numTypes)
        return nullptr;
    return s_routes[source][target];
}

bool isSupported(cImgType::ImageTypes i_source, cImgType::ImageTypes i_target)
{
    return i_source == i_target || findRoute(i_source, i_target);
}

void convertPixels(const cImg& i_source, cImg& io_result, const Ranges& i_ranges)
{
    if (hasGaps(i_source)) {
        convertPixels(i_source.clone(), io_result, i_ranges);
        return;
    }
    if (hasGaps(io_result)) {
        cImg packed = io_result.clone();
        convertPixels(i_source, packed, i_ranges);
        io_result.copyFrom(packed);
        return;
    }
    Program program(i_source);
    findRoute(i_source.getImgType().getTypeId(), io_result.getImgType().getTypeId())(program, i_ranges);
    program.run(io_result);
}

} // namespace conversion
