#include "conversion/program.h"

#include <tarnimg/cImg.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace conversion {

namespace {

/** Bytes of an intermediate buffer. Two of them, the source's tile and the result's fit the first-level
 * cache. */
constexpr int s_bufferBytes = 8192;

using Buffer = std::array<Ipp8u, s_bufferBytes>;

} // namespace

int routePixelBytes(const cImgType& i_type)
{
    const cImgType::ImageTypes type = i_type.getTypeId();
    const bool colour = type == cImgType::RGB24 || type == cImgType::RGB32;
    return int(colour ? i_type.getPixelSize() : i_type.getChannelPixelSize());
}

Program::Program(const cImg& i_source) : Program(i_source, routePixelBytes(i_source.getImgType())) {}

Program::Program(const cImg& i_source, qint64 i_sourceBytes)
    : m_source {i_source.getConstData(), i_source.getYPitch()},
      m_width(i_source.getWidth()),
      m_height(i_source.getHeight()),
      m_sourceBytes(i_sourceBytes),
      m_pixelBytes(int(i_sourceBytes)) // the first step tells, where a pixel is too long for an int
{
}

void Program::move(int i_pixelBytes, Move i_function)
{
    Q_ASSERT(m_changes.isEmpty());
    m_moves.append({std::move(i_function), i_pixelBytes});
    m_pixelBytes = i_pixelBytes;
}

void Program::change(Change i_function) { m_changes.append(std::move(i_function)); }

int Program::pixelsWithin(qint64 i_bytes) const
{
    qint64 greatest = m_sourceBytes;
    for (const Step& step : m_moves)
        greatest = std::max<qint64>(greatest, step.pixelBytes);
    return int(std::max<qint64>(i_bytes / greatest, 1));
}

int Program::pixelsPerTile() const
{
    // A single step needs no buffer: it can have the image as a whole.
    if (m_moves.size() == 1 && m_changes.isEmpty())
        return pixelsWithin(std::numeric_limits<int>::max());
    return pixelsWithin(s_bufferBytes);
}

void Program::runTile(const Tile& i_tile, SourceRows i_source, TargetRows i_result) const
{
    alignas(64) Buffer buffers[2]; // undefined at the start: each is written before it is read
    SourceRows pixels = i_source;
    qint64 pixelBytes = m_sourceBytes;
    int held = -1; // the buffer that holds the pixels, if one does
    for (int i = 0; i < m_moves.size(); ++i) {
        const Step& step = m_moves[i];
        TargetRows target = i_result;
        if (i + 1 < m_moves.size()) {
            if (held < 0 || step.pixelBytes != pixelBytes)
                held = held == 0 ? 1 : 0;
            target = {buffers[held].data(), qint64(i_tile.width) * step.pixelBytes};
        }
        step.function(i_tile, pixels, target);
        pixels = {target.first, target.pitch};
        pixelBytes = step.pixelBytes;
    }
    for (const Change& change : m_changes)
        change(i_tile, i_result);
}

void Program::run(cImg& io_result) const { run(TargetRows {io_result.getData(), io_result.getYPitch()}); }

void Program::run(TargetRows io_result) const
{
    if (m_cancelled)
        return;
    const SourceRows source = m_fromResult ? SourceRows {io_result.first, io_result.pitch} : m_source;
    qint64 width = m_width;
    qint64 height = m_height;
    if (!m_places && source.pitch == width * m_sourceBytes && io_result.pitch == width * m_pixelBytes) {
        width *= height; // no gaps: one long row
        height = 1;
    }

    constexpr qint64 greatestStep = std::numeric_limits<int>::max();
    const qint64 pixels = pixelsPerTile();
    const qint64 tileWidth = std::min(width, pixels);
    const qint64 tileHeight = source.pitch > greatestStep || io_result.pitch > greatestStep
        ? 1
        : std::min(height, pixels / tileWidth);
    for (qint64 y = 0; y < height; y += tileHeight) {
        for (qint64 x = 0; x < width; x += tileWidth) {
            const Tile tile {
                x, y, int(std::min(tileWidth, width - x)), int(std::min(tileHeight, height - y))};
            runTile(tile, source.at(x, y, m_sourceBytes), io_result.at(x, y, m_pixelBytes));
        }
    }
}

} // namespace conversion
