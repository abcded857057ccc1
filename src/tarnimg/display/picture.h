#pragma once

#include <QImage>
#include <QVector>

class cImg;

/** What renders images for displays, shared by the pixel types. */
namespace display {

/**
 * A picture with undefined pixels; null if there can be none of this size.
 *
 * Its memory comes from the pool of the images and goes back there, whoever is the last to hold the picture:
 * a display that shows frame after frame allocates nothing of a frame's size.
 */
QImage newPicture(const QSize& i_size, QImage::Format i_format);

/** An indexed one. */
QImage newIndexedPicture(const QSize& i_size, const QVector<QRgb>& i_colours);

/** Whether an indexed picture of the image's size need not be made anew; its pixels are its own then. */
bool fitsIndexed(const cImg& i_image, const QImage& i_picture);

/** 256 colours from black to the brightest grey, red, green or blue, opaque. */
const QVector<QRgb>& greyRamp();
const QVector<QRgb>& redRamp();
const QVector<QRgb>& greenRamp();
const QVector<QRgb>& blueRamp();

} // namespace display
