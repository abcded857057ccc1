// How both gradient types are shown.
#include "display/gradientTables.h"
#include "display/indexRows.h"
#include "display/picture.h"
#include "display/rendering.h"

#include <tarnimg/cImgTypeGradI16.h>
#include <tarnimg/cImgTypeGradI32.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

/** The styles, by their place in the list. */
enum Style { Dx, Dy, Absolute, AbsoluteAndDirection, ProjectionOfDirection };

/** Components as pairs of bytes. */
template <class C>
void addIndices(display::Rendering& io_rendering,
    const std::tuple<display::IndexRow<qint16>, display::IndexRow<qint32>>& i_rows, const cDblRange& i_range)
{
    const display::IndexScale scale(i_range);
    io_rendering.addRows<C, quint8>(2,
        [scale, row = std::get<display::IndexRow<C>>(i_rows)](const C* i_source, quint8* o_target,
            std::size_t i_count) { row(i_source, o_target, 2 * i_count, scale); });
}

/** Each pair of bytes as one byte. */
template <class Combine> void addCombination(display::Rendering& io_rendering, Combine i_combine)
{
    io_rendering.addRows<quint8, quint8>(
        1, [combine = std::move(i_combine)](const quint8* i_source, quint8* o_target, std::size_t i_count) {
            for (std::size_t x = 0; x < i_count; ++x)
                o_target[x] = combine(i_source[2 * x], i_source[2 * x + 1]);
        });
}

void addMagnitude(display::Rendering& io_rendering)
{
    addCombination(
        io_rendering, [&table = display::GradientTables::instance().magnitude](quint8 dx, quint8 dy) {
            return table[dx * display::GradientTables::side + dy];
        });
}

void addDirection(display::Rendering& io_rendering)
{
    addCombination(
        io_rendering, [&table = display::GradientTables::instance().direction](quint8 dx, quint8 dy) {
            return table[std::size_t(dy << 8) + dx];
        });
}

void addProjection(display::Rendering& io_rendering, double i_angle, bool i_absolute)
{
    const display::ProjectionTables tables(i_angle);
    if (i_absolute)
        addCombination(io_rendering, [tables](quint8 dx, quint8 dy) {
            return quint8(std::min(std::abs((tables.y[dy] + tables.x[dx]) * 2), 255));
        });
    else
        addCombination(io_rendering, [tables](quint8 dx, quint8 dy) {
            return quint8(std::clamp(tables.x[dx] + 128 + tables.y[dy], 0, 255));
        });
}

} // namespace

template <class T> QImage cImgTypeGradient<T>::makeDisplayImage(const cImg& i_image)
{
    using Component = typename T::first_type;
    if (!i_image.isKindOf(getTypeId()))
        return {};
    adjustRange(i_image);
    QImage out;
    makeDisplayImageHelper(i_image, out);
    out = display::checkedPicture(std::move(out));
    const auto style = Style(getStyleIndex());
    if (style == Dx || style == Dy) {
        makeComponentImage(i_image, out);
    } else {
        display::Rendering rendering(i_image);
        addIndices<Component>(rendering,
            style == Absolute ? display::indexTable().amounts : display::indexTable().indices, getRange());
        if (style == Absolute) {
            addMagnitude(rendering);
        } else if (style == AbsoluteAndDirection) {
            addDirection(rendering);
            out.setColorTable(display::GradientTables::instance().colours);
        } else {
            addProjection(rendering, m_angle, m_absolute);
        }
        rendering.run(out);
    }
    applyGamma(out);
    return out;
}

template <class T> void cImgTypeGradient<T>::makeComponentImage(const cImg& i_image, QImage& io_out)
{
    using Component = typename T::first_type;
    if (!i_image.isKindOf(getTypeId())) {
        io_out = QImage();
        return;
    }
    makeDisplayImageHelper(i_image, io_out);
    io_out = display::checkedPicture(std::move(io_out));
    display::Rendering rendering(i_image);
    rendering.addChannel(getStyleIndex() == Dy ? 1 : 0, 2, sizeof(Component));
    // The ends are ints for both types.
    rendering.addScale<Component>(display::IntegerScale(getRange(), display::Rounding::Truncated, 32, true));
    rendering.run(io_out);
}

template QImage cImgTypeGradient<QPair<short, short>>::makeDisplayImage(const cImg&);
template QImage cImgTypeGradient<QPair<int, int>>::makeDisplayImage(const cImg&);
template void cImgTypeGradient<QPair<short, short>>::makeComponentImage(const cImg&, QImage&);
template void cImgTypeGradient<QPair<int, int>>::makeComponentImage(const cImg&, QImage&);
