#pragma once

#include <customipp/types.h>

#include <QVarLengthArray>
#include <QtGlobal>
#include <functional>
#include <limits>

class cImg;
class cImgType;

namespace conversion {

/** Bytes from one pixel to the next as the routes see them: one channel, except for colours, which they know
 * whole. */
int routePixelBytes(const cImgType& i_type);

/** A rectangle of pixels of the image that a program runs over. */
struct Tile {
    qint64 x;
    qint64 y;
    int width;
    int height;

    /** The tile in elements, for functions that do not care for pixels. */
    IppiSize elements(int i_perPixel) const { return {width * i_perPixel, height}; }
};

/** Rows of a tile: the first byte and the distance of the rows in bytes. */
template <class Byte> struct Rows {
    Byte* first;
    qint64 pitch;

    Rows at(qint64 i_x, qint64 i_y, qint64 i_pixelBytes) const
    {
        return {first + i_y * pitch + i_x * i_pixelBytes, pitch};
    }
    /** The distance as the pixel layer takes it. Tiles have one row where it does not fit. */
    int step() const
    {
        return pitch > std::numeric_limits<int>::max() ? std::numeric_limits<int>::max() : int(pitch);
    }
};

using SourceRows = Rows<const Ipp8u>;
using TargetRows = Rows<Ipp8u>;

/**
 * A conversion as a chain of steps, each of which looks at one pixel at a time.
 *
 * The chain runs over the image in tiles that stay in the first-level cache, with the intermediate pixels of
 * a tile in two small buffers: no frame-sized memory is needed, and the image is read and written once. The
 * bytes are those of the same steps over whole images.
 */
class Program {
public:
    /** Reads the tile in one place and writes it in another, which may be the same if the pixel sizes are
     * equal. */
    using Move = std::function<void(const Tile&, SourceRows, TargetRows)>;
    /** Changes the tile where it is. */
    using Change = std::function<void(const Tile&, TargetRows)>;

    explicit Program(const cImg& i_source);
    /** For pixels of another size than `routePixelBytes`. */
    Program(const cImg& i_source, qint64 i_sourceBytes);

    /** Appends a step. @param i_pixelBytes bytes of a pixel behind it */
    void move(int i_pixelBytes, Move i_function);
    /** Appends a step on the pixels of the result. No move may follow. */
    void change(Change i_function);

    bool isEmpty() const { return m_moves.isEmpty(); }
    /** Pixels of a row of the image. */
    qint64 width() const { return m_width; }
    /** The first pixel of the source, before anything is written. */
    const Ipp8u* firstPixel() const { return m_source.first; }
    /** The program leaves the result's pixels as they are. */
    void cancel() { m_cancelled = true; }
    /** The first step reads the pixels that the result holds at the start, which are of the source's type. */
    void startFromResult() { m_fromResult = true; }
    /** A step asks for the place of its tile in the image. */
    void needsPlaces() { m_places = true; }

    /** Writes the result, which has the size of the source and is detached. */
    void run(cImg& io_result) const;
    /** The same into any memory, which does not overlap the source. */
    void run(TargetRows io_result) const;

private:
    struct Step {
        Move function;
        int pixelBytes;
    };

    /** How many pixels, at each step of the program, take no more than so many bytes; at least one. */
    int pixelsWithin(qint64 i_bytes) const;
    int pixelsPerTile() const;
    void runTile(const Tile& i_tile, SourceRows i_source, TargetRows i_result) const;

    SourceRows m_source;
    qint64 m_width;
    qint64 m_height;
    qint64 m_sourceBytes; ///< Of a pixel of the source.
    int m_pixelBytes; ///< Of a pixel behind the last step.
    bool m_cancelled = false;
    bool m_fromResult = false;
    bool m_places = false;
    QVarLengthArray<Step, 12> m_moves;
    QVarLengthArray<Change, 4> m_changes;
};

} // namespace conversion
