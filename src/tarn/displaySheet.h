#pragma once

#include <QImage>

namespace host {

/**
 * One picture with every pixel type in every style, each drawn by its display from a test image of that type,
 * and labelled. Needs a QGuiApplication for the text.
 */
QImage drawDisplaySheet();

} // namespace host
