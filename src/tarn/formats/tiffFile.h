#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>
#include <tiffio.h>

class QIODevice;

/** A file that libtiff has open, with the procedures that its kind of store needs, and the first message
 * about a failure. */
class cTiff {
public:
    cTiff() = default;
    cTiff(const cTiff&) = delete;
    cTiff& operator=(const cTiff&) = delete;
    ~cTiff();

    operator TIFF*() const { return m_tiff; }
    /** Throws what libtiff has said, or this if it has said nothing. */
    [[noreturn]] void raise(const char* i_otherwise) const;
    bool hasFailed() const { return !m_message.empty(); }

    /** @throws std::runtime_error with the format's name before the message */
    [[noreturn]] static void fail(const std::string& i_message);

protected:
    struct Procedures {
        TIFFReadWriteProc read;
        TIFFReadWriteProc write;
        TIFFSeekProc seek;
        TIFFSizeProc size;
    };
    /** @param i_mostBytes that libtiff may take at once */
    void open(const char* i_mode, thandle_t i_store, const Procedures& i_procedures, std::size_t i_mostBytes);

private:
    static int keepMessage(TIFF*, void* i_this, const char*, const char* i_format, va_list i_arguments);

    TIFF* m_tiff = nullptr;
    std::string m_message;
};

/** Reads from memory, or from a device that can seek; either must outlive it. */
class cTiffReader : public cTiff {
public:
    cTiffReader(const unsigned char* i_data, std::size_t i_size);
    explicit cTiffReader(QIODevice& io_device);

private:
    static cTiffReader& self(thandle_t i_handle) { return *static_cast<cTiffReader*>(i_handle); }
    static tmsize_t read(thandle_t i_handle, void* o_bytes, tmsize_t i_count);
    static toff_t seek(thandle_t i_handle, toff_t i_offset, int i_whence);
    static toff_t size(thandle_t i_handle) { return self(i_handle).m_size; }

    const unsigned char* m_data = nullptr; // of memory only, as what follows
    const toff_t m_size = 0;
    toff_t m_place = 0;
};

/** Writes to a device that can seek. */
class cTiffWriter : public cTiff {
public:
    explicit cTiffWriter(QIODevice& io_device);
};
