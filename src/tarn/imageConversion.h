#pragma once

#include <QString>
#include <optional>
#include <tarnbase/cRange.h>
#include <tarnimg/cImg.h>

/** What a conversion gave, and what it did to the values. */
struct cConvertedImage {
    cImg image;
    QString text; ///< such as "UInt16 to UInt8, 0 to 4095 onto 0 to 255"; empty if nothing was done
    quint64 outside = 0; ///< numbers of the source that lay outside its range and were cut to it
};

namespace host {

/**
 * An image in another pixel type: the source's range is stretched onto the full range of the result's type;
 * floats keep the values. Each channel is converted by itself; colour becomes grey where the result is not
 * colour, and three or four channels become `RGB24` or `RGB32`.
 *
 * @param i_range of the source; without one, that of the image. With the image's own type the values are
 * stretched within it.
 * @throws std::runtime_error that says what is not possible, and after a line end what is
 */
cConvertedImage convertImage(
    const cImg& i_source, cImgType::ImageTypes i_type, const std::optional<cDblRange>& i_range);

/** The type with this name, whatever its case; `Invalid` if there is none. */
cImgType::ImageTypes typeFromName(const QString& i_name);
/** The name of a type as users write it: "UInt8". */
QString typeName(cImgType::ImageTypes i_type);
QStringList typeNames();

} // namespace host
