#pragma once

#include <tarnimg/cImgIO.h>

#include <cstddef>

class QIODevice;

/**
 * A handler that reads and writes a file format without loss.
 *
 * What a file holds decides the pixel type, and every type that can be written is read back as itself, bit
 * for bit (JPEG alone is lossy by its nature). Nothing is ever narrowed: a type that the format cannot hold
 * is refused.
 *
 * A file is written beside its place and moved there when it is complete.
 */
class cFileFormat : public cImgIO {
public:
    /** Void, with a report on the error trace, if the file cannot be read. */
    cImg openImg(const QString& i_path, const cMapObj& i_params) override;
    cImg openImgFromMemory(const char* i_data, unsigned i_size, const cMapObj& i_params) override;
    bool writeImg(const QString& i_path, const cImg& i_image, const cObj* i_params) override;

    /** @throws std::runtime_error that says why the file cannot be read, without its path */
    cImg read(const QString& i_path) const;
    /** A pixel type and a number of channels. */
    struct Kind {
        cImgType::ImageTypes type = cImgType::Invalid;
        unsigned channels = 0;
    };
    /**
     * What `read` makes of a file, as far as its header tells: `Invalid` where only the pixels do. Those may
     * be damaged all the same. @throws std::runtime_error on a header that is not sound
     */
    virtual Kind peek(QIODevice&) const { return {}; }
    /** @throws std::runtime_error that says why the image cannot be written, without the path */
    void write(const QString& i_path, const cImg& i_image) const;
    /** The same to a device that can seek. */
    void write(QIODevice& io_device, const cImg& i_image) const;

    /** Whether images of this type can be written. */
    virtual bool canHold(cImgType::ImageTypes i_type, unsigned i_channels) const = 0;

    /** Why an image of this type cannot be written, with the formats that can hold it; empty if it can. */
    QString whyNotHeld(const cImg& i_image) const;

    /** How many pictures the file had from which an image was read; those after the first are not read. */
    virtual unsigned countPages(const cImg&) const { return 1; }

    /** @throws std::runtime_error on anything that is no complete, sound file of the format */
    virtual cImg decode(const unsigned char* i_data, std::size_t i_size) const = 0;

protected:
    using cImgIO::cImgIO;
    /** Room for the headers of most files that have theirs at the start. */
    static constexpr qint64 s_headerBytes = 1 << 14;

    /** Writes a valid image of a type that can be held to a device that can seek. @throws std::runtime_error
     */
    virtual void encode(const cImg& i_image, QIODevice& io_device) const = 0;

    /**
     * Checks what a header claims, before memory is taken: sizes above 0, and at most 2 GiB for the pixels.
     * @throws std::runtime_error
     */
    static void checkSize(quint64 i_width, quint64 i_height, quint64 i_bytesPerPixel);
    /**
     * Checks that a file holds what its header claims, before memory is taken.
     * @throws std::runtime_error
     */
    static void checkLength(quint64 i_needed, quint64 i_found);
    /** The same for compressed pixels, of which a byte of the file stands for so many at the most. */
    static void checkRatio(quint64 i_needed, quint64 i_found, quint64 i_most);

private:
    void checkHeld(const cImg& i_image) const;
};

namespace host {

/** Registers the handlers of this library, those of folder formats/. Once; later calls do nothing. */
void registerFileFormats();

/** Reads with the handler whose patterns have the extension. @throws std::runtime_error that says why not,
 * without the path */
cImg readImage(const QString& i_path);
/** The type and channels of the image that `readImage` gives, as cSupportedImages describes them, from the
 * header where that tells. @throws as readImage */
QString peekImage(const QString& i_path);
/** How many pictures there are in the file from which this image was read. */
unsigned countPages(const QString& i_path, const cImg& i_image);
/** Writes with the handler whose patterns have the extension. Folders on the way are made. @throws
 * std::runtime_error */
void writeImage(const QString& i_path, const cImg& i_image);

/** Whether the format of this path has room for the image's type and channels. */
bool canHold(const QString& i_path, const cImg& i_image);
/** Why that format cannot hold the image, with others that can; empty if it can, or has not said. */
QString whyNotHeld(const QString& i_path, const cImg& i_image);
/** Whether a handler reads (or writes) files with the extension of this path. */
bool canRead(const QString& i_path);
bool canWrite(const QString& i_path);
/** The extensions that can be read (or written), sorted, such as "bmp", "jpeg". */
QStringList readableExtensions();
QStringList writableExtensions();

} // namespace host
