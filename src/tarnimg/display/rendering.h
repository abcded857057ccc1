#pragma once

#include "conversion/steps.h"
#include "display/byteChains.h"
#include "display/doubleRows.h"
#include "display/integerRows.h"

#include <tarnimg/cImg.h>

class QImage;

namespace display {

/**
 * A picture in the making: steps from the pixels of an image to those of a picture.
 *
 * The steps run over tiles that stay in the first-level cache, see `conversion::Program`: the image is read
 * and the picture written once, with no image in between.
 */
class Rendering {
public:
    explicit Rendering(const cImg& i_image);

    conversion::Program& steps() { return m_program; }

    /** One channel of the interleaved ones. The first step. */
    void addChannel(unsigned i_channel, unsigned i_channels, unsigned i_channelBytes);
    /** Numbers to grey values. */
    template <class T> void addScale(const IntegerScale& i_scale);
    void addScale(const DoubleScale& i_scale);
    void addScale(const Float32Scale& i_scale);
    void addScale(const WordScale& i_scale);
    /** A step on rows of whole pixels, of so many bytes before and behind it. */
    template <class S, class D, class Row> void addRows(int i_pixelBytes, Row i_row);

    /** Fills the picture, which has the size of the image and is its own. */
    void run(QImage& io_picture) const;

private:
    cImg m_image; ///< its pixels lie next to each other
    conversion::Program m_program;
};

template <class S, class D, class Row> void Rendering::addRows(int i_pixelBytes, Row i_row)
{
    m_program.move(i_pixelBytes,
        [row = std::move(i_row)](const conversion::Tile& i_tile, conversion::SourceRows i_source,
            conversion::TargetRows o_target) {
            for (int y = 0; y < i_tile.height; ++y)
                row(reinterpret_cast<const S*>(i_source.first + y * i_source.pitch),
                    reinterpret_cast<D*>(o_target.first + y * o_target.pitch), std::size_t(i_tile.width));
        });
}

template <class T> void Rendering::addScale(const IntegerScale& i_scale)
{
    addRows<T, quint8>(1, [i_scale](const T* i_source, quint8* o_target, std::size_t i_count) {
        integerRowFor<T>()(i_source, o_target, i_count, i_scale);
    });
}

/** The range as the chains of the pixel layer take it: the grey values are the output. */
conversion::Ranges toGrey(const cDblRange& i_range);

/**
 * What every rendering begins with: null if there is no such picture.
 * @throws std::bad_alloc
 */
QImage checkedPicture(QImage&& i_picture);

} // namespace display
