// How both RGB types are shown.
#include "conversion/routes.h"
#include "display/colourCorrection.h"
#include "display/picture.h"
#include "display/rendering.h"

#include <tarnimg/cImgTypeRGB32.h>

#include <QMetaEnum>
#include <algorithm>
#include <cmath>

namespace {

/** The styles of both types: those of three channels are the same but for alpha. */
using Mode = cImgTypeRGB32::Modes;

Mode modeOf(const QString& i_style)
{
    bool known = false;
    const int value = QMetaEnum::fromType<Mode>().keyToValue(i_style.toLatin1().constData(), &known);
    return known ? Mode(value) : Mode::Default;
}

double factorOf(const cDblRange& i_range) { return display::toGrey(i_range).factor(); }

/** Nothing is subtracted either if the factor is 1. */
bool isOne(double i_factor) { return std::min(std::fabs(i_factor), 1.0) >= std::fabs(i_factor - 1.0) * 1e12; }

/** The range's low end becomes 0, its high end 255, in all channels alike. */
void addRange(conversion::Program& io_program, int i_channels, const cDblRange& i_range)
{
    if (isOne(factorOf(i_range)))
        return;
    conversion::addSubtract<Ipp8u>(io_program, i_channels, display::toGrey(i_range));
    conversion::addStretch<Ipp8u>(io_program, i_channels, display::toGrey(i_range));
}

QImage colours(const cImg& i_image, const cDblRange& i_range)
{
    if (isOne(factorOf(i_range)))
        return i_image.toQImage();
    const bool alpha = i_image.isKindOf(cImgType::RGB32);
    QImage out = display::checkedPicture(
        display::newPicture(i_image.getSize(), alpha ? QImage::Format_ARGB32 : QImage::Format_RGB888));
    display::Rendering rendering(i_image);
    addRange(rendering.steps(), alpha ? 4 : 3, i_range);
    if (alpha)
        rendering.steps().change([](const conversion::Tile& tile, conversion::TargetRows pixels) {
            constexpr int order[] = {2, 1, 0, 3};
            ippiSwapChannels_8u_C4IR(pixels.first, pixels.step(), tile.elements(1), order);
        });
    rendering.run(out);
    return out;
}

const QVector<QRgb>& rampOf(Mode i_mode)
{
    switch (i_mode) {
    case Mode::Red:
        return display::redRamp();
    case Mode::Green:
        return display::greenRamp();
    case Mode::Blue:
        return display::blueRamp();
    default:
        return display::greyRamp();
    }
}

/** Hue, saturation or value of three or four channels. */
void addHsv(display::Rendering& io_rendering, unsigned i_plane, bool i_alpha, const cDblRange& i_range)
{
    // The fourth channel goes by way of a conversion, which stretches the range for the first time.
    if (i_alpha)
        conversion::findRoute(cImgType::RGB32, cImgType::RGB24)(
            io_rendering.steps(), display::toGrey(i_range));
    conversion::addMove(io_rendering.steps(), 3, ippiRGBToHSV_8u_C3R);
    io_rendering.addChannel(i_plane, 3, 1);
}

QImage component(const cImg& i_image, Mode i_mode, const cDblRange& i_range)
{
    const bool alpha = i_image.isKindOf(cImgType::RGB32);
    QImage out = display::checkedPicture(display::newIndexedPicture(i_image.getSize(), rampOf(i_mode)));
    display::Rendering rendering(i_image);
    switch (i_mode) {
    case Mode::Intensity:
        conversion::addMove(rendering.steps(), 1, alpha ? ippiRGBToGray_8u_AC4C1R : ippiRGBToGray_8u_C3C1R);
        break;
    case Mode::Hue:
        addHsv(rendering, 0, alpha, i_range);
        break;
    case Mode::Saturation:
        addHsv(rendering, 1, alpha, i_range);
        break;
    case Mode::Value:
        addHsv(rendering, 2, alpha, i_range);
        break;
    default:
        rendering.addChannel(unsigned(i_mode - Mode::Red), alpha ? 4 : 3, 1);
    }
    addRange(rendering.steps(), 1, i_range);
    rendering.run(out);
    return out;
}

} // namespace

QImage cImgTypeRGB::makeDisplayImage(const cImg& i_image)
{
    if (!i_image.isKindOf(getTypeId()))
        return {};
    adjustRange(i_image);
    QImage out;
    const Mode mode = modeOf(getStyle());
    if (mode == Mode::Default) {
        out = display::checkedPicture(colours(i_image, getRange()));
        display::correctColours(out, {m_red, m_green, m_blue, m_brightness, m_saturation, m_hue});
    } else {
        out = component(i_image, mode, getRange());
    }
    applyGamma(out);
    return out;
}
