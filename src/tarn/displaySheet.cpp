#include "displaySheet.h"

#include <QColor>
#include <QFont>
#include <QMetaEnum>
#include <QPainter>
#include <QPair>
#include <QVector>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <tarnbase/cComplex.h>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>
#include <tarnimg/cImg.h>

namespace host {
namespace {

constexpr int s_side = 80; // of a test image
constexpr int s_gap = 8;
constexpr int s_labelHeight = 14;
constexpr int s_headWidth = 92;
constexpr int s_cellWidth = s_side + s_gap;
constexpr int s_cellHeight = s_side + s_labelHeight + s_gap;
constexpr double s_pi = 3.14159265358979323846;

/** Coordinates from the middle, -1 to 1. */
struct Place {
    double x;
    double y;
    double radius() const { return std::hypot(x, y); }
    double angle() const { return std::atan2(y, x); }
};

Place placeOf(int i_x, int i_y)
{
    return {(2.0 * i_x + 1.0) / s_side - 1.0, (2.0 * i_y + 1.0) / s_side - 1.0};
}

/** Rings that get narrower outwards. */
double rings(Place i_place) { return 0.5 + 0.5 * std::cos(14.0 * i_place.radius() * i_place.radius()); }

/** From the upper left to the lower right. */
double slope(Place i_place) { return (i_place.x + i_place.y + 2.0) / 4.0; }

template <class Paint> void paint(cImg& io_image, const Paint& i_paint)
{
    for (int y = 0; y < s_side; ++y)
        for (int x = 0; x < s_side; ++x) {
            unsigned char* pixel
                = io_image.getData() + y * qint64(io_image.getYPitch()) + x * qint64(io_image.getXPitch());
            const auto values = i_paint(placeOf(x, y));
            std::memcpy(pixel, values.data(), sizeof values);
        }
}

/** Two channels: rings, and a slope, over the display's range. */
template <class T> cImg numbers(cImgType::ImageTypes i_type, double i_low, double i_high)
{
    cImg image(i_type, s_side, s_side, 2);
    paint(image, [=](Place place) {
        const auto value = [=](double part) { return T(i_low + part * (i_high - i_low)); };
        return std::array<T, 2> {value(rings(place)), value(slope(place))};
    });
    image.setRange(i_low, i_high);
    return image;
}

/** Hue by the angle, saturation by the radius, alpha by the slope. */
template <std::size_t Channels> cImg colours(cImgType::ImageTypes i_type)
{
    cImg image(i_type, s_side, s_side);
    paint(image, [](Place place) {
        const double turn = place.angle() / (2.0 * s_pi);
        const QColor colour = QColor::fromHsvF(turn < 0.0 ? turn + 1.0 : turn, std::min(place.radius(), 1.0),
            std::clamp(1.6 - place.radius(), 0.0, 1.0));
        std::array<quint8, Channels> bytes {};
        const int parts[] = {colour.red(), colour.green(), colour.blue(), 128 + int(127.0 * slope(place))};
        std::copy_n(parts, Channels, bytes.begin());
        return bytes;
    });
    return image;
}

/** The gradient of a hill. */
template <class C> cImg gradients(cImgType::ImageTypes i_type)
{
    cImg image(i_type, s_side, s_side);
    paint(image, [](Place place) {
        const double height = 500.0 * std::exp(-3.0 * place.radius() * place.radius());
        return std::array<C, 2> {C(-height * place.x), C(-height * place.y)};
    });
    image.setRange(-128.0, 127.0);
    return image;
}

/** A spectrum with its zero frequency in the corner, as a transform leaves it. */
cImg spectrum()
{
    cImg image(cImgType::Complex, s_side, s_side);
    paint(image, [](Place place) {
        const Place corner {
            place.x < 0.0 ? place.x + 1.0 : place.x - 1.0, place.y < 0.0 ? place.y + 1.0 : place.y - 1.0};
        const double magnitude
            = 1.0 + 1000.0 * std::exp(-6.0 * corner.radius()) * (1.1 + std::cos(20.0 * corner.x));
        const double angle = 3.0 * corner.angle();
        return std::array<float, 2> {float(magnitude * std::cos(angle)), float(magnitude * std::sin(angle))};
    });
    return image;
}

cImg testImage(cImgType::ImageTypes i_type)
{
    switch (i_type) {
    case cImgType::RGB24:
        return colours<3>(i_type);
    case cImgType::RGB32:
        return colours<4>(i_type);
    case cImgType::UInt8:
        return numbers<quint8>(i_type, 0, 255);
    case cImgType::UInt16:
        return numbers<quint16>(i_type, 0, 65535);
    case cImgType::UInt32:
        return numbers<quint32>(i_type, 0, 4294967295.0);
    case cImgType::SInt8:
        return numbers<qint8>(i_type, -128, 127);
    case cImgType::SInt16:
        return numbers<qint16>(i_type, -32768, 32767);
    case cImgType::SInt32:
        return numbers<qint32>(i_type, -2147483648.0, 2147483647.0);
    case cImgType::SInt64: // its display knows no scale
        return numbers<qint64>(i_type, 0, 255);
    case cImgType::Float32:
        return numbers<float>(i_type, -1, 1);
    case cImgType::Float64:
        return numbers<double>(i_type, -1, 1);
    case cImgType::Gradient16:
        return gradients<short>(i_type);
    case cImgType::Gradient32:
        return gradients<int>(i_type);
    default:
        return spectrum();
    }
}

/** A display with its label. */
struct Cell {
    QString label;
    QImage picture;
};

template <class T> QImage withParam(const cImg& i_image, const char* i_key, const T& i_value)
{
    const auto own = i_image.getImgType().clone();
    cMapObj params;
    params.setSubObject(new cDataValObj<T>(i_value), QString::fromLatin1(i_key), true);
    own->setParams(params);
    return own->makeDisplayImage(i_image);
}

/** All styles, and for one type the settings that serve many. */
QVector<Cell> cellsOf(const cImg& i_image)
{
    QVector<Cell> cells;
    const auto own = i_image.getImgType().clone();
    const QStringList styles = own->getStyleList();
    for (const QString& style : styles) {
        own->setStyle(style);
        cells.append({style, own->makeDisplayImage(i_image)});
    }
    switch (i_image.getImgType().getTypeId()) {
    case cImgType::UInt8:
        cells.append({QStringLiteral("Colorize"), withParam(i_image, "Colorize", QColor(255, 160, 0))});
        own->setStyle(styles.last());
        own->setGamma(2.0);
        cells.append({QStringLiteral("Gamma 2"), own->makeDisplayImage(i_image)});
        own->setGamma(1.0);
        own->setRange({64.0, 192.0});
        cells.append({QStringLiteral("Range 64,192"), own->makeDisplayImage(i_image)});
        break;
    case cImgType::RGB24:
        cells.append({QStringLiteral("Hue x 0.5"), withParam(i_image, "Hue", 0.5)});
        break;
    default:
        break;
    }
    return cells;
}

void drawText(QPainter& io_painter, const QRect& i_place, const QString& i_text)
{
    // Long names are drawn narrower, not cut.
    QFont font = io_painter.font();
    const QFont before = font;
    const int width = QFontMetrics(font).horizontalAdvance(i_text);
    if (width > i_place.width())
        font.setPixelSize(std::max(6, font.pixelSize() * i_place.width() / width));
    io_painter.setFont(font);
    io_painter.drawText(i_place, Qt::AlignLeft | Qt::AlignVCenter, i_text);
    io_painter.setFont(before);
}

} // namespace

QImage drawDisplaySheet()
{
    const auto types = QMetaEnum::fromType<cImgType::ImageTypes>();
    QVector<QVector<Cell>> rows;
    QStringList names;
    int columns = 0;
    for (int i = 0; i < types.keyCount(); ++i) {
        if (types.value(i) == cImgType::Invalid)
            continue;
        rows.append(cellsOf(testImage(cImgType::ImageTypes(types.value(i)))));
        names.append(QString::fromLatin1(types.key(i)));
        columns = std::max(columns, int(rows.last().size()));
    }
    QImage sheet(s_headWidth + columns * s_cellWidth + s_gap, int(rows.size()) * s_cellHeight + s_gap,
        QImage::Format_RGB32);
    sheet.fill(QColor(236, 236, 236));
    QPainter painter(&sheet);
    QFont font = painter.font();
    font.setPixelSize(11);
    painter.setFont(font);
    for (int row = 0; row < rows.size(); ++row) {
        const int top = s_gap + row * s_cellHeight;
        drawText(painter, {s_gap, top, s_headWidth - 2 * s_gap, s_side}, names[row]);
        for (int column = 0; column < rows[row].size(); ++column) {
            const Cell& cell = rows[row][column];
            const int left = s_headWidth + column * s_cellWidth;
            painter.drawImage(left, top, cell.picture);
            drawText(painter, {left, top + s_side, s_side, s_labelHeight}, cell.label);
        }
    }
    return sheet;
}

} // namespace host
