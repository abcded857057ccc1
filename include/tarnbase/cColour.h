#pragma once

#include <tarnbase/export.h>

class QColor;
class QTextStream;

/** Writes "#rrggbb", or "#aarrggbb" for a colour that is not opaque. */
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const QColor& i_colour);
