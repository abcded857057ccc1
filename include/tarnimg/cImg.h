#pragma once

#include <tarnbase/cRect.h>
#include <tarnimg/cImgData.h>
#include <tarnimg/cImgType.h>
#include <tarnimg/export.h>

#include <QList>
#include <QMetaType>
#include <QSize>
#include <QString>
#include <cstring>
#include <functional>

class QDataStream;
class QImage;
class QTextStream;
template <class T> class c2DPoint;

/**
 * An image: a handle, one pointer wide, that travels by value.
 *
 * Copies share their pixels until somebody writes: every writing member makes a record of its own first
 * (`detach`). A sub-image is a view into its parent's pixels, for writing too; `clone` it to part from the
 * parent. Pixel memory that is no longer used is kept for the next image of the same shape, so new pixels
 * have undefined content.
 *
 * A default image is the void image. It is not valid, and neither is an image of size 0 or of an unknown
 * type.
 *
 * The address of pixel (x, y) is: data + buffer offset + x * x pitch + y * y pitch. Sizes are pixels;
 * pitches, offsets and sizes of buffers are bytes, unsigned and of 32 bits. An image that would need more is
 * refused like one for which there is no memory: with a report on the error trace and std::bad_alloc.
 *
 * Distinct handles may be used by different threads at once; one handle is for one thread at a time.
 */
class TARNIMG_EXPORT cImg {
public:
    cImg();
    /**
     * An image with undefined pixels. If the type is unknown the image is not valid, and unless it is
     * `Invalid` the error trace tells. Types with a fixed number of channels ignore the number.
     */
    cImg(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_numChannels = 1);
    /**
     * An image over memory from outside, which holds at least y pitch * height bytes.
     *
     * @param i_xPitch 0 counts as 1; raised to the size of a pixel if it is less, with what depends on it
     * @param i_yPitch raised to x pitch * width if it is less
     * @param i_deleter is called with the memory when the last image lets go of it; empty to leave it to the
     * caller
     * @throws std::runtime_error if there is no memory or the type is unknown
     */
    cImg(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_xPitch,
        unsigned i_yPitch, unsigned char* i_buffer, const std::function<void(void*)>& i_deleter,
        unsigned i_numChannels = 1);
    cImg(const cImg& i_other);
    cImg(cImg&& io_other) noexcept;
    /**
     * A view into a rectangle of another image, or with `i_deepCopy` a copy of it. The rectangle is cut to
     * the image; an empty one means the whole image, and then a view is nothing but a plain copy of the
     * handle.
     */
    cImg(const cImg& i_other, bool i_deepCopy, const cRect<int>& i_rect);
    cImg& operator=(const cImg& i_other);
    cImg& operator=(cImg&& io_other) noexcept;
    ~cImg();

    /** A deep copy of the whole view. */
    cImg clone() const;
    /** As `clone`, but with undefined pixels: for whoever writes all of them at once. */
    cImg cloneWithoutPixels() const;
    /**
     * Gives this handle a record and pixels of its own if others share them. Pixels that are shared with the
     * parent or with sub-images stay shared. The void image stays void.
     */
    void detach()
    {
        if (m_data->isShared())
            detachShared();
    }
    /** Frees the pixel memory that is kept for the next images. */
    static void releaseUnusedMemory();

    unsigned getWidth() const { return m_data->m_width; }
    unsigned getHeight() const { return m_data->m_height; }
    /** A side that does not fit an int is cut to the greatest one. */
    QSize getSize() const;
    /** (0, 0, width, height). */
    cRect<int> getRect() const;
    /** Of the buffer: a sub-image has the pitches of its parent. */
    unsigned getXPitch() const { return m_data->m_buf ? m_data->m_buf->m_xPitch : 0; }
    unsigned getYPitch() const { return m_data->m_buf ? m_data->m_buf->m_yPitch : 0; }
    /** Bytes of the whole buffer, also for a sub-image. */
    unsigned getFrameSize() const { return m_data->m_buf ? m_data->m_buf->byteSize() : 0; }
    unsigned getBufferOffset() const { return m_data->m_bufferOffset; }
    unsigned getNumFrames() const { return m_data->m_numFrames; }
    unsigned getFrameIndex() const { return m_data->m_frameIndex; }
    unsigned getNumChannels() const { return getImgType().getNumChannels(); }
    const QString& getName() const { return m_data->m_name; }
    /** The descriptor; one of type `Invalid` if the type could not be made. */
    const cImgType& getImgType() const { return m_data->m_type ? *m_data->m_type : invalidType(); }
    const cDblRange& getRange() const { return getImgType().getRange(); }
    const cTransform* getTransform() const { return m_data->m_transform.get(); }
    const cMapObj& getImgAttributes() const { return m_data->m_attributes; }

    /** Has a descriptor of another type than `Invalid`, and pixels. */
    bool isValid() const
    {
        return m_data->m_type && m_data->m_type->getTypeId() != cImgType::Invalid && getWidth()
            && getHeight();
    }
    /** Neither a view of a part of another image nor a copy of one. */
    bool isCompact() const { return !m_data->m_notCompact; }
    bool isKindOf(cImgType::ImageTypes i_type) const
    {
        return isValid() && m_data->m_type->getTypeId() == i_type;
    }
    /** Both valid, with equal sizes and pitches (types do not count), or both not valid. */
    bool isStructOf(const cImg& i_other) const;
    /** The list is empty or has this image's type; validity does not count. */
    bool checkTypes(const QList<cImgType::ImageTypes>& i_types) const;
    /**
     * This image is valid, types and structures are equal, and so are the bytes from pixel (0,0) of each on,
     * as many as this image's whole buffer has. So the memory behind a view's rectangle counts too; of two
     * views into buffers, what lies behind the end of either buffer does not.
     */
    bool operator==(const cImg& i_other) const;
    bool operator!=(const cImg& i_other) const { return !(*this == i_other); }

    /**
     * The descriptor for writing its settings (style, gamma, parameters). All images that were copied from
     * one another share it, and this member does not change that.
     */
    cImgType& imgType();

    void setName(const QString& i_name);
    void setNumFrames(unsigned i_count);
    void setFrameIndex(unsigned i_index);
    /** Moves a view within its buffer. Refused, with a report on the error trace, if a pixel would lie
     * outside. */
    void setBufferOffset(unsigned i_bytes);
    /** The image takes the transform over. */
    void setTransform(const cTransform* i_transform);
    /** Sets the range of the shared descriptor, as `cImgType::setRange`; the smaller value is the low end. */
    void setRange(double i_low, double i_high);
    void setRange(const cDblRange& i_range);
    /**
     * Sets the range to the least and the greatest pixel as cMinMaxFunctor finds them, of all channels but an
     * alpha; for types that it does not take, and if no pixel is a number, to the present range. No signal is
     * emitted.
     */
    void adjustRange();
    /** The attributes take the object over. */
    void setImgAttr(const QString& i_key, cObj* i_value);
    const cObj* getImgAttr(const QString& i_key) const;
    cObj* getImgAttr(const QString& i_key);
    /** Merges the attributes of another image into these; copies name, frame index and number of frames. */
    void copyImgAttr(const cImg& i_source);
    /** New pixels with undefined content, unless the size is the present one. */
    void resize(unsigned i_width, unsigned i_height);
    /**
     * If the image is a valid one of this type: a fresh descriptor, and the pixels stay. Otherwise a new
     * image of this type with the present size and 1 channel.
     */
    void setImgType(cImgType::ImageTypes i_type);

    /**
     * Copies pixels of an image of the same type; the rectangles are cut to both images. Does nothing for
     * another type or an image that is not valid. Channels are not compared: bytes are copied by this image's
     * pixel size.
     */
    void copyFrom(const cImg& i_source);
    void copyFrom(const cImg& i_source, const c2DPoint<int>& i_destPoint);
    void copyFrom(const cImg& i_source, const cRect<int>& i_sourceRect, const c2DPoint<int>& i_destPoint);

    /**
     * Converts to another pixel type, see `cImgType::convertTo`. `io_result` must not be this very image; its
     * memory is reused if it fits.
     */
    bool convertTo(
        const cImgType::ImageTypes& i_type, cImg& io_result, const cMapObj* i_params = nullptr) const;
    bool convertTo(const cImgType& i_type, cImg& io_result, const cMapObj* i_params = nullptr) const;

    /** A copy as `QImage`; null for other types than `RGB24`, `RGB32`, `UInt8` and `UInt16`. Values of
     * `UInt16` above 255 become 255. */
    QImage toQImage() const;
    /** A copy of a `QImage` as `UInt8` (grey), `RGB24` (`Format_RGB888` and colour tables) or `RGB32` (all
     * others). */
    static cImg fromQImage(const QImage& i_image);
    /** Reads a file with the registered handlers; void, with a report on the error trace, if it cannot be
     * read. */
    static cImg openImg(const QString& i_path);
    /** Writes a file with the registered handlers. */
    bool writeImg(const QString& i_path) const;

    /** First byte of pixel (0,0), null if there are no pixels. Rows are y pitch bytes apart. */
    const unsigned char* getConstData() const { return m_data->m_buf ? getConstPixelPrivate(0, 0) : nullptr; }
    /** The same for writing; detaches first, which may change the y pitch: read that afterwards. */
    unsigned char* getData()
    {
        detach();
        return m_data->m_buf ? m_data->pixel(0, 0) : nullptr;
    }

    /** Typed access: `T` is the pixel or a channel of it. Only debug builds check the arguments. */
    template <class T> const T* getRow(unsigned i_y) const;
    /** Detaches first. */
    template <class T> T* row(unsigned i_y);
    template <class T> T getPixel(unsigned i_x, unsigned i_y) const;
    /** Detaches first. */
    template <class T> T& pixel(unsigned i_x, unsigned i_y);
    /** Detaches first. */
    template <class T> void setPixel(unsigned i_x, unsigned i_y, const T& i_value);

private:
    friend TARNIMG_EXPORT QDataStream& operator<<(QDataStream& io_stream, const cImg& i_image);
    friend TARNIMG_EXPORT QDataStream& operator>>(QDataStream& io_stream, cImg& o_image);

    explicit cImg(cImgData* i_data) : m_data(i_data) {}

    static const cImgType& invalidType();
    void detachShared();
    /** `detach`, and a record of its own for the void image, which everybody shares. */
    void detachForWriting();
    void copyArea(const cImg& i_source, const cImgArea& i_area, const c2DPoint<int>& i_destPoint);
    /** Address of a pixel; nothing is checked. */
    const unsigned char* getConstPixelPrivate(unsigned i_x, unsigned i_y) const
    {
        return m_data->pixel(i_x, i_y);
    }
    /** Detaches first. */
    unsigned char* getPixelPrivate(unsigned i_x, unsigned i_y)
    {
        detach();
        return m_data->pixel(i_x, i_y);
    }
    template <class T> bool holds(unsigned i_x, unsigned i_y) const
    {
        return isValid() && i_x < getWidth() && i_y < getHeight() && m_data->pixelSize() % sizeof(T) == 0;
    }

    cImgData* m_data;
};

TARNIMG_EXPORT QDataStream& operator<<(QDataStream& io_stream, const cImg& i_image);
/**
 * Reads what the operator above has written. Input that is corrupt or ends early sets the status of the
 * stream, and leaves the void image.
 */
TARNIMG_EXPORT QDataStream& operator>>(QDataStream& io_stream, cImg& o_image);
/** Name, size and type in one line without an end, for people. */
TARNIMG_EXPORT QTextStream& operator<<(QTextStream& io_stream, const cImg& i_image);

template <class T> const T* cImg::getRow(unsigned i_y) const
{
    Q_ASSERT(holds<T>(0, i_y));
    return reinterpret_cast<const T*>(getConstPixelPrivate(0, i_y));
}

template <class T> T* cImg::row(unsigned i_y)
{
    Q_ASSERT(holds<T>(0, i_y));
    return reinterpret_cast<T*>(getPixelPrivate(0, i_y));
}

template <class T> T cImg::getPixel(unsigned i_x, unsigned i_y) const
{
    Q_ASSERT(holds<T>(i_x, i_y));
    T value;
    std::memcpy(
        &value, getConstPixelPrivate(i_x, i_y), sizeof(T)); // memory from outside may have any alignment
    return value;
}

template <class T> T& cImg::pixel(unsigned i_x, unsigned i_y)
{
    Q_ASSERT(holds<T>(i_x, i_y));
    return *reinterpret_cast<T*>(getPixelPrivate(i_x, i_y));
}

template <class T> void cImg::setPixel(unsigned i_x, unsigned i_y, const T& i_value)
{
    Q_ASSERT(holds<T>(i_x, i_y));
    std::memcpy(getPixelPrivate(i_x, i_y), &i_value, sizeof(T));
}

Q_DECLARE_METATYPE(cImg)
