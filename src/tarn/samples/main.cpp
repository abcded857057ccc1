// Draws the sample pictures: a series of grey frames, raw frames of a sensor with its dark and flat frames,
// and colour.

#include "scene.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

namespace {

constexpr int s_smallest = 0; ///< what `QImage::save` calls the strongest compression

bool save(const QImage& i_image, const QString& i_folder, const QString& i_name)
{
    const QString path = i_folder + u'/' + i_name;
    if (QDir().mkpath(i_folder) && i_image.save(path, "PNG", s_smallest))
        return true;
    std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
    return false;
}

/** The tone curve of a camera: the linear light's square root, nearly. */
double tone(double i_light) { return std::pow(std::clamp(i_light, 0.0, 1.0), 1 / 1.9); }

double noisy(double i_value, double i_sigma, int i_x, int i_y, unsigned i_seed)
{
    return i_value + i_sigma * normalNoise(i_x, i_y, i_seed);
}

uchar toByte(double i_value) { return uchar(std::clamp(std::lround(i_value), 0l, 255l)); }

QImage greyFrame(int i_width, int i_height, int i_frame)
{
    const Scene scene(i_width, i_height, i_frame);
    QImage image(i_width, i_height, QImage::Format_Grayscale8);
    for (int y = 0; y < i_height; ++y)
        for (int x = 0; x < i_width; ++x) {
            const double light = scene.at(x, y).luminance() * (0.45 + 0.75 * scene.lampAt(x, y));
            image.scanLine(y)[x] = toByte(noisy(255 * tone(light), 0.9, x, y, 100 + unsigned(i_frame)));
        }
    return image;
}

QImage colourFrame(int i_width, int i_height, int i_frame)
{
    const Scene scene(i_width, i_height, i_frame);
    QImage image(i_width, i_height, QImage::Format_RGB888);
    for (int y = 0; y < i_height; ++y)
        for (int x = 0; x < i_width; ++x) {
            const Light light = scene.at(x, y) * (0.45 + 0.75 * scene.lampAt(x, y));
            const double channels[] = {light.r, light.g, light.b};
            for (int c = 0; c < 3; ++c)
                image.scanLine(y)[3 * x + c] = toByte(
                    noisy(255 * tone(channels[c]), 0.6, x, y, 300 + 3 * unsigned(i_frame) + unsigned(c)));
        }
    return image;
}

// The raw sensor counts 0 to 1023 in 16 bits. It is linear, starts at an offset that differs from column to
// column, has a few hot pixels, and dust on its window; all of that is in the dark and the flat frame too.
constexpr double s_mostCounts = 1023;

double offsetOf(int i_x, int i_y)
{
    const double hot = hashNoise(i_x, i_y, 51) > 0.9995 ? 260 * hashNoise(i_x, i_y, 52) : 0;
    return 42 + 9 * hashNoise(i_x, 0, 53) + hot;
}

double dustAt(int i_x, int i_y, int i_width, int i_height)
{
    double clear = 1;
    for (int i = 0; i < 7; ++i) {
        const double dx = i_x - hashNoise(i, 0, 61) * i_width, dy = i_y - hashNoise(i, 0, 62) * i_height;
        const double radius = 7 + 9 * hashNoise(i, 0, 63);
        const double r = std::hypot(dx, dy) / radius;
        clear *= 1 - 0.34 * std::exp(-std::pow(r, 4)) + 0.05 * std::exp(-std::pow((r - 1.1) * 5, 2));
    }
    return clear;
}

QImage rawFrame(int i_width, int i_height, double i_noise, unsigned i_seed,
    const std::function<double(int, int)>& i_counts)
{
    QImage image(i_width, i_height, QImage::Format_Grayscale16);
    for (int y = 0; y < i_height; ++y)
        for (int x = 0; x < i_width; ++x) {
            const double value = noisy(offsetOf(x, y) + i_counts(x, y), i_noise, x, y, i_seed);
            reinterpret_cast<quint16*>(image.scanLine(y))[x]
                = quint16(std::clamp(std::round(value), 0.0, s_mostCounts));
        }
    return image;
}

QImage level(int i_width, int i_height, quint16 i_value)
{
    QImage image(i_width, i_height, QImage::Format_Grayscale16);
    for (int y = 0; y < i_height; ++y)
        std::fill_n(reinterpret_cast<quint16*>(image.scanLine(y)), i_width, i_value);
    return image;
}

bool drawRaw(const QString& i_folder, int i_frames)
{
    constexpr int width = 480, height = 360;
    const auto nothing = [](int, int) { return 0.0; };
    const Scene anyScene(width, height, 0);
    const auto shading = [&](int x, int y) { return anyScene.lampAt(x, y) * dustAt(x, y, width, height); };
    const auto card = [&](int x, int y) { return 780 * shading(x, y); };
    bool good = save(rawFrame(width, height, 0.6, 500, nothing), i_folder, QStringLiteral("dark.png"))
        && save(rawFrame(width, height, 0.8, 501, card), i_folder, QStringLiteral("flat.png"))
        && save(level(width, height, 52000), i_folder, QStringLiteral("white.png"))
        && save(level(width, height, 64), i_folder, QStringLiteral("gain.png"));
    for (int i = 0; good && i < i_frames; ++i) {
        const Scene scene(width, height, i * 2);
        const auto light
            = [&](int x, int y) { return 780 * shading(x, y) * tone(scene.at(x, y).luminance()); };
        good = save(rawFrame(width, height, 1.2, 510 + unsigned(i), light),
            i_folder + QStringLiteral("/frames"), QStringLiteral("raw_%1.png").arg(i, 2, 10, QChar(u'0')));
    }
    return good;
}

} // namespace

int main(int i_count, char** i_words)
{
    const QCoreApplication application(i_count, i_words);
    if (i_count != 2) {
        std::fprintf(stderr, "usage: tarn-samples FOLDER\n");
        return 2;
    }
    const QString folder = QCoreApplication::arguments().at(1);
    bool good = true;
    for (int i = 0; good && i < 8; ++i)
        good = save(greyFrame(640, 480, i), folder + QStringLiteral("/parts"),
            QStringLiteral("frame_%1.png").arg(i, 2, 10, QChar(u'0')));
    for (int i = 0; good && i < 3; ++i)
        good = save(colourFrame(400, 300, i * 2), folder + QStringLiteral("/colour"),
            QStringLiteral("colour_%1.png").arg(i, 2, 10, QChar(u'0')));
    return good && drawRaw(folder + QStringLiteral("/raw"), 4) ? 0 : 1;
}
