#include "cFileFormat.h"
#include "cOptions.h"
#include "cRunner.h"
#include "commands.h"
#include "displayOptions.h"
#include "displaySheet.h"

#include <QFileInfo>
#include <QImage>
#include <QPoint>
#include <QVector>
#include <algorithm>
#include <tarnimg/cImg.h>

namespace host {
namespace {

const QString s_name = QStringLiteral("show");

cOptions makeOptions()
{
    return cOptions({
        {QStringLiteral("--output"), QStringLiteral("PICTURE"),
            QStringLiteral("where to write the picture; without it the image is described"),
            QStringLiteral("-o")},
        {QStringLiteral("--style"), QStringLiteral("STYLE"),
            QStringLiteral("what of a pixel is shown; the description lists the styles")},
        {QStringLiteral("--range"), QStringLiteral("LOW,HIGH"),
            QStringLiteral("the values that become black and white")},
        {QStringLiteral("--auto"), QString(), QStringLiteral("finds the range: least and greatest value")},
        {QStringLiteral("--quantile"), QStringLiteral("Q"),
            QStringLiteral("the same without the share Q of the pixels at either end, such as 0.01")},
        {QStringLiteral("--gamma"), QStringLiteral("G"),
            QStringLiteral("above 1 the dark values are spread")},
        {QStringLiteral("--at"), QStringLiteral("X,Y"),
            QStringLiteral("prints the values of a pixel; may be given more than once")},
        {QStringLiteral("--sheet"), QStringLiteral("PICTURE"),
            QStringLiteral("draws all pixel types in all styles, from test images")},
    });
}

QString usage(const cOptions& i_options)
{
    return QStringLiteral("usage: tarn show [options] IMAGE\n"
                          "       tarn show --sheet PICTURE\n\n")
        + i_options.usage()
        + QStringLiteral(
            "\nAn image of any pixel type as a picture of 8 bits for the eye:\n"
            "  tarn show depth.tif -o depth.png --quantile 0.01\n"
            "  tarn show photo.jpg -o saturation.png --style Saturation\n"
            "  tarn show photo.jpg --at 10,20\n\n"
            "exit codes: 0 all good, 1 the image cannot be read or the picture not written, 2 bad "
            "usage\n");
}

EExit fail(const QString& i_path, const std::exception& i_error)
{
    refuse(s_name, i_path + QStringLiteral(": ") + QString::fromLocal8Bit(i_error.what()));
    return EExit::SomeFailed;
}

/** The pixels named by --at, or what is wrong. */
QString readPlaces(const QStringList& i_texts, QVector<QPoint>& o_places)
{
    for (const QString& text : i_texts) {
        const QStringList parts = text.split(u',');
        bool goodX = false, goodY = false;
        const QPoint place(parts.first().toInt(&goodX), parts.last().toInt(&goodY));
        if (parts.size() != 2 || !goodX || !goodY)
            return QStringLiteral("--at expects X,Y, found '%1'").arg(text);
        o_places.append(place);
    }
    return {};
}

QString checkPlaces(const QVector<QPoint>& i_places, const cImg& i_image)
{
    for (const QPoint& place : i_places)
        if (place.x() < 0 || place.y() < 0 || unsigned(place.x()) >= i_image.getWidth()
            || unsigned(place.y()) >= i_image.getHeight())
            return QStringLiteral("--at: there is no such pixel, expected 0,0 to %1,%2, found '%3,%4'")
                .arg(i_image.getWidth() - 1)
                .arg(i_image.getHeight() - 1)
                .arg(place.x())
                .arg(place.y());
    return {};
}

void printPlaces(const QVector<QPoint>& i_places, const cImg& i_image, const cImgType& i_type)
{
    for (const QPoint& place : i_places) {
        const unsigned char* pixel = i_image.getConstData() + qint64(place.y()) * i_image.getYPitch()
            + qint64(place.x()) * i_image.getXPitch();
        print(QStringLiteral("%1,%2: %3\n")
                  .arg(place.x())
                  .arg(place.y())
                  .arg(i_type.pixelToString(pixel, false)));
    }
}

void describe(const QString& i_path, const cImg& i_image)
{
    const cImgType& type = i_image.getImgType();
    const unsigned channels = i_image.getNumChannels();
    print(QStringLiteral("%1: %2, %3 channel%4, %5x%6, range %7 to %8\nstyles: %9\n")
              .arg(i_path, type.getName())
              .arg(channels)
              .arg(channels == 1 ? QString() : QStringLiteral("s"))
              .arg(i_image.getWidth())
              .arg(i_image.getHeight())
              .arg(type.getRange().getLow(), 0, 'g', 10)
              .arg(type.getRange().getHigh(), 0, 'g', 10)
              .arg(type.getStyleList().join(QStringLiteral(", "))));
}

/** Both end in a picture that some format must be able to hold. */
QString checkOutput(const QString& i_path)
{
    if (!canWrite(i_path))
        return QStringLiteral("unknown format of the picture '%1'\nknown extensions: %2")
            .arg(i_path, writableExtensions().join(QStringLiteral(", ")));
    return {};
}

/** Draws and writes. */
template <class Draw> EExit writePicture(const QString& i_path, const Draw& i_draw)
{
    try {
        writeImage(i_path, cImg::fromQImage(i_draw()));
        return EExit::Good;
    } catch (const std::exception& error) {
        return fail(i_path, error);
    }
}

EExit showSheet(const cOptions& i_options)
{
    const QString path = i_options.get(QStringLiteral("--sheet"));
    for (const char* other : {"--output", "--style", "--range", "--auto", "--quantile", "--gamma", "--at"})
        if (i_options.has(QString::fromLatin1(other)))
            return refuse(s_name,
                QStringLiteral("--sheet draws its own images, and there is %1 besides")
                    .arg(QString::fromLatin1(other)));
    if (!i_options.getRest().isEmpty())
        return refuse(s_name,
            QStringLiteral("--sheet draws its own images, and there is '%1' besides")
                .arg(i_options.getRest().first()));
    const QString problem = checkOutput(path);
    if (!problem.isEmpty())
        return refuse(s_name, problem);
    return writePicture(path, [] { return drawDisplaySheet().convertToFormat(QImage::Format_RGB888); });
}

EExit showImage(const cOptions& i_options)
{
    const QString& path = i_options.getRest().first();
    const QString output = i_options.get(QStringLiteral("--output"));
    cDisplayOptions display;
    QVector<QPoint> places;
    QString problem = display.read(i_options);
    if (problem.isEmpty())
        problem = readPlaces(i_options.getAll(QStringLiteral("--at")), places);
    if (problem.isEmpty() && i_options.has(QStringLiteral("--output")))
        problem = checkOutput(output);
    if (problem.isEmpty() && !output.isEmpty()
        && QFileInfo(output).absoluteFilePath() == QFileInfo(path).absoluteFilePath())
        problem
            = QStringLiteral("the picture would be written over the image '%1'\nname another file").arg(path);
    if (!problem.isEmpty())
        return refuse(s_name, problem);

    cImg image;
    try {
        image = readImage(path);
    } catch (const std::exception& error) {
        return fail(path, error);
    }
    cImgType& type = image.imgType();
    problem = display.apply(image, type);
    if (problem.isEmpty())
        problem = checkPlaces(places, image);
    if (!problem.isEmpty())
        return refuse(s_name, problem);
    printPlaces(places, image, type);
    if (!output.isEmpty())
        return writePicture(output, [&] { return type.makeDisplayImage(image); });
    if (places.isEmpty())
        describe(path, image);
    return EExit::Good;
}

} // namespace

bool drawsText(const QStringList& i_words)
{
    const auto isSheet = [](const QString& word) { return word.startsWith(QLatin1String("--sheet")); };
    return i_words.value(0) == s_name && std::any_of(i_words.begin(), i_words.end(), isSheet);
}

EExit showCommand(const QStringList& i_words)
{
    cOptions options = makeOptions();
    if (const auto end = readWords(s_name, i_words, options, usage))
        return *end;
    if (options.has(QStringLiteral("--sheet")))
        return showSheet(options);
    if (options.getRest().size() != 1)
        return refuse(s_name,
            QStringLiteral("expected one image, found %1\n'tarn show --help' tells more")
                .arg(options.getRest().size()));
    return showImage(options);
}

} // namespace host
