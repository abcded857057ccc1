// How complex images are shown.
#include "display/channelRows.h"
#include "display/complexColours.h"
#include "display/complexRows.h"
#include "display/picture.h"
#include "display/rendering.h"

#include <tarnimg/cImgTypeComplex.h>

#include <cmath>

namespace {

/** The styles, by their place in the list. */
enum Style { Default, Imaginary, Real, Magnitude, Phase };

constexpr int s_levels = 255;

/** Least and greatest of what are numbers; NaN if nothing is. */
struct Extremes {
    float least = std::nanf("");
    float greatest = std::nanf("");
};

void takeComponent(const Ipp32fc* i_numbers, Style i_style, Ipp32f* o_values, int i_count)
{
    const int numbersStep = i_count * int(sizeof(Ipp32fc));
    const int valuesStep = i_count * int(sizeof(Ipp32f));
    if (i_style == Magnitude)
        ippiMagnitude_32fc32f_C1R(i_numbers, numbersStep, o_values, valuesStep, {i_count, 1});
    else if (i_style == Phase)
        ippiPhase_32fc32f_C1R(i_numbers, numbersStep, o_values, valuesStep, {i_count, 1});
    else
        display::channelRowFor(4)(i_numbers, o_values, std::size_t(i_count), i_style == Imaginary ? 1 : 0, 2);
}

/** Fills the scratch with one component, row by row, so that each is still in the cache for the next step. */
Extremes fillScratch(const cImg& i_image, Style i_style, bool i_useLog, cImg& io_scratch)
{
    const int width = int(i_image.getWidth());
    const int step = width * int(sizeof(Ipp32f));
    Extremes all;
    for (unsigned y = 0; y < i_image.getHeight(); ++y) {
        auto* values = io_scratch.row<Ipp32f>(y);
        takeComponent(
            reinterpret_cast<const Ipp32fc*>(i_image.getConstData() + std::size_t(y) * i_image.getYPitch()),
            i_style, values, width);
        display::complexRowTable().dropInfinities(values, std::size_t(width));
        if (i_useLog)
            ippiLn_32f_C1IR(values, step, {width, 1}); // warns of negative values; those are black
        Extremes row;
        ippiMinMax_32f_C1R(values, step, {width, 1}, &row.least, &row.greatest);
        all = {std::fmin(all.least, row.least), std::fmax(all.greatest, row.greatest)};
    }
    return all;
}

void addFloats(display::Rendering& io_rendering, decltype(ippiSubC_32f_C1R)* i_function, Ipp32f i_constant)
{
    io_rendering.addRows<Ipp32f, Ipp32f>(
        sizeof(Ipp32f), [=](const Ipp32f* i_source, Ipp32f* o_target, std::size_t i_count) {
            const int step = int(i_count * sizeof(Ipp32f));
            i_function(i_source, step, i_constant, o_target, step, {int(i_count), 1});
        });
}

/** From the least to the greatest value over all grey values. */
void renderStretched(const cImg& i_values, const Extremes& i_extremes, QImage& io_picture)
{
    display::Rendering rendering(i_values);
    addFloats(rendering, ippiSubC_32f_C1R, i_extremes.least);
    if (const float length = i_extremes.greatest - i_extremes.least; length != 0.0f)
        addFloats(rendering, ippiDivC_32f_C1R, length);
    rendering.addRows<Ipp32f, Ipp8u>(1, [](const Ipp32f* i_source, Ipp8u* o_target, std::size_t i_count) {
        ippiReduceBits_32f8u_C1R(i_source, int(i_count * sizeof(Ipp32f)), o_target, int(i_count),
            {int(i_count), 1}, 0, ippDitherNone, s_levels, nullptr);
    });
    rendering.run(io_picture);
}

} // namespace

QImage cImgTypeComplex::makeDisplayImage(const cImg& i_image)
{
    if (!i_image.isKindOf(Complex))
        return {};
    const auto style = Style(getStyleIndex());
    const bool hasGaps = i_image.getXPitch() != getPixelSize();
    const cImg image = hasGaps ? i_image.clone() : i_image;
    QImage out;
    if (style == Default) {
        out = display::checkedPicture(display::newPicture(image.getSize(), QImage::Format_ARGB32));
        display::renderComplexColours(image, {m_useLog, m_factor, m_moveCenter}, out);
    } else {
        makeDisplayImageHelper(image, out);
        out = display::checkedPicture(std::move(out));
        cImg& scratch = displayScratch(Float32, image.getWidth(), image.getHeight());
        const Extremes extremes = fillScratch(image, style, m_useLog, scratch);
        renderStretched(scratch, extremes, out);
    }
    applyGamma(out);
    adjustRange(i_image); // takes effect from the next image on
    return out;
}
