#include "tiffFile.h"

#include <QIODevice>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>

namespace {

int dropWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

tmsize_t refuse(thandle_t, void*, tmsize_t) { return -1; }

/** The place in a store for a seek of C's kinds. */
toff_t placeFor(toff_t i_offset, int i_whence, toff_t i_now, toff_t i_end)
{
    return i_whence == SEEK_SET ? i_offset : i_whence == SEEK_CUR ? i_now + i_offset : i_end + i_offset;
}

/**
 * What libtiff may take at once for a file: no small one makes it take much, whatever its header says. (The
 * strongest of its compressions need more for pictures of one colour only.)
 */
std::size_t mostBytesFor(std::size_t i_fileSize)
{
    constexpr std::size_t least = std::size_t(1) << 26, most = std::size_t(1) << 31, ratio = 1 << 15;
    return i_fileSize > most / ratio ? most : std::max(least, i_fileSize * ratio);
}

QIODevice& device(thandle_t i_handle) { return *static_cast<QIODevice*>(i_handle); }

tmsize_t readBytes(thandle_t i_handle, void* o_bytes, tmsize_t i_count)
{
    return tmsize_t(device(i_handle).read(static_cast<char*>(o_bytes), i_count));
}

tmsize_t writeBytes(thandle_t i_handle, void* i_bytes, tmsize_t i_count)
{
    return tmsize_t(device(i_handle).write(static_cast<const char*>(i_bytes), i_count));
}

toff_t seekDevice(thandle_t i_handle, toff_t i_offset, int i_whence)
{
    QIODevice& store = device(i_handle);
    const toff_t place = placeFor(i_offset, i_whence, toff_t(store.pos()), toff_t(store.size()));
    return store.seek(qint64(place)) ? place : toff_t(-1);
}

toff_t sizeOfDevice(thandle_t i_handle) { return toff_t(device(i_handle).size()); }

} // namespace

cTiff::~cTiff()
{
    if (m_tiff)
        TIFFClose(m_tiff);
}

void cTiff::fail(const std::string& i_message) { throw std::runtime_error("TIFF: " + i_message); }

void cTiff::raise(const char* i_otherwise) const { fail(m_message.empty() ? i_otherwise : m_message); }

void cTiff::open(
    const char* i_mode, thandle_t i_store, const Procedures& i_procedures, std::size_t i_mostBytes)
{
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), &TIFFOpenOptionsFree);
    if (!options)
        throw std::bad_alloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &keepMessage, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &dropWarning, this);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), tmsize_t(i_mostBytes));
    const auto closeStore = [](thandle_t) { return 0; };
    m_tiff = TIFFClientOpenExt("image", i_mode, i_store, i_procedures.read, i_procedures.write,
        i_procedures.seek, closeStore, i_procedures.size, nullptr, nullptr, options.get());
    if (!m_tiff)
        raise("damaged, or not of this format");
}

int cTiff::keepMessage(TIFF*, void* i_this, const char*, const char* i_format, va_list i_arguments)
{
    auto* self = static_cast<cTiff*>(i_this);
    char text[256];
    std::vsnprintf(text, sizeof text, i_format, i_arguments);
    if (self->m_message.empty())
        self->m_message = text;
    return 1;
}

cTiffReader::cTiffReader(const unsigned char* i_data, std::size_t i_size) : m_data(i_data), m_size(i_size)
{
    open("rm", this, {&read, &refuse, &seek, &size}, mostBytesFor(i_size));
}

cTiffReader::cTiffReader(QIODevice& io_device)
{
    open("rm", &io_device, {&readBytes, &refuse, &seekDevice, &sizeOfDevice},
        mostBytesFor(std::size_t(io_device.size())));
}

tmsize_t cTiffReader::read(thandle_t i_handle, void* o_bytes, tmsize_t i_count)
{
    cTiffReader& reader = self(i_handle);
    if (i_count <= 0 || reader.m_place >= reader.m_size)
        return 0;
    const std::size_t count = std::min(std::size_t(i_count), std::size_t(reader.m_size - reader.m_place));
    std::memcpy(o_bytes, reader.m_data + reader.m_place, count);
    reader.m_place += count;
    return tmsize_t(count);
}

toff_t cTiffReader::seek(thandle_t i_handle, toff_t i_offset, int i_whence)
{
    cTiffReader& reader = self(i_handle);
    return reader.m_place = placeFor(i_offset, i_whence, reader.m_place, reader.m_size);
}

cTiffWriter::cTiffWriter(QIODevice& io_device)
{
    open("wm", &io_device, {&refuse, &writeBytes, &seekDevice, &sizeOfDevice},
        std::size_t(std::numeric_limits<tmsize_t>::max()));
}
