#pragma once

#include <QtGlobal>
#include <cstddef>

namespace display {

/**
 * Copies pixels of four bytes with the first and the third one exchanged: red, green, blue, alpha become the
 * blue, green, red, alpha of a QImage, and the other way round.
 */
void copySwapped(const quint8* i_source, quint8* o_target, std::size_t i_count);

} // namespace display
