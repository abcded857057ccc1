#include "display/colourCorrection.h"

#include "display/byteTables.h"

#include <tarnimg/arithmetic/cMultiplyConstantWithImageFunctor.h>
#include <tarnimg/cImg.h>
#include <tarnimg/checkIPPStatus.h>

#include <QImage>
#include <QVarLengthArray>
#include <algorithm>
#include <numeric>

namespace display {

namespace {

/** What the functor makes of every byte: a plane of a picture need not be taken out, multiplied and put back.
 */
QVector<int> multiplied(double i_factor)
{
    if (i_factor == 1.0)
        return everyByte();
    cImg bytes(cImgType::UInt8, 256, 1);
    std::iota(bytes.row<Ipp8u>(0), bytes.row<Ipp8u>(0) + 256, Ipp8u(0));
    cMultiplyConstantWithImageFunctor multiply;
    multiply.setConstant(float(i_factor));
    multiply(bytes);
    QVector<int> table(256);
    std::copy_n(bytes.getRow<Ipp8u>(0), 256, table.begin());
    return table;
}

/** Tables for pixels of three bytes, or of four of which the last stays. */
ByteTables tablesOf(double i_first, double i_second, double i_third, bool i_alpha)
{
    const QVector<int> levels = everyByte();
    const QVector<int> first = multiplied(i_first), second = multiplied(i_second),
                       third = multiplied(i_third);
    if (i_alpha)
        return ByteTables({first.constData(), second.constData(), third.constData(), levels.constData()},
            levels.constData());
    return ByteTables({first.constData(), second.constData(), third.constData()}, levels.constData());
}

void correctHsv(QImage& io_picture, const ColourFactors& i_factors, bool i_alpha)
{
    const ByteTables tables = tablesOf(i_factors.hue, i_factors.saturation, i_factors.brightness, i_alpha);
    const auto toHsv = i_alpha ? ippiRGBToHSV_8u_AC4R : ippiRGBToHSV_8u_C3R;
    const auto toRgb = i_alpha ? ippiHSVToRGB_8u_AC4R : ippiHSVToRGB_8u_C3R;
    const int step = io_picture.bytesPerLine();
    const IppiSize row {io_picture.width(), 1};
    QVarLengthArray<Ipp8u, 32768> hsv(step); // a row stays in the first-level cache, a picture does not
    std::fill(hsv.begin(), hsv.end(), Ipp8u(0));
    Ipp8u* pixels = io_picture.bits();
    for (int y = 0; y < io_picture.height(); ++y, pixels += step) {
        checkIPPStatus(toHsv(pixels, step, hsv.data(), step, row));
        tables.map(hsv.data(), step, row);
        checkIPPStatus(toRgb(hsv.data(), step, pixels, step, row));
    }
}

} // namespace

void correctColours(QImage& io_picture, const ColourFactors& i_factors)
{
    const bool alpha = io_picture.format() == QImage::Format_ARGB32;
    if (i_factors.changeColours()) {
        const ByteTables tables = alpha
            ? tablesOf(i_factors.blue, i_factors.green, i_factors.red, alpha) // the order in memory
            : tablesOf(i_factors.red, i_factors.green, i_factors.blue, alpha);
        tables.map(io_picture.bits(), io_picture.bytesPerLine(), {io_picture.width(), io_picture.height()});
    }
    if (i_factors.changeHsv())
        correctHsv(io_picture, i_factors, alpha);
}

} // namespace display
