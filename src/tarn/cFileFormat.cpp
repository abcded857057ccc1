#include "cFileFormat.h"

#include "formats/cJpegBmpFormat.h"
#include "formats/cNpyFormat.h"
#include "formats/cPfmFormat.h"
#include "formats/cPngFormat.h"
#include "formats/cPnmFormat.h"
#include "formats/cStreamFormat.h"
#include "formats/cTiffFormat.h"
#include "formats/fileBytes.h"
#include "imageConversion.h"

#include <tarnbase/cFileSystem.h>
#include <tarnbase/cTracer.h>
#include <tarnimg/cSupportedImages.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <exception>

namespace {

constexpr quint64 s_mostBytes = Q_UINT64_C(1) << 31;

using host::raise;

QString typeText(cImgType::ImageTypes i_type, unsigned i_channels)
{
    const QString name = host::typeName(i_type);
    const bool fixed
        = i_type == cImgType::RGB24 || i_type == cImgType::RGB32 || i_type >= cImgType::Gradient16;
    return fixed ? name
                 : QStringLiteral("%1 with %2 channel%3")
                       .arg(name)
                       .arg(i_channels)
                       .arg(i_channels == 1 ? QString() : QStringLiteral("s"));
}

QStringList patterns(const cImgIO& i_handler)
{
    return i_handler.getFilter().split(u' ', Qt::SkipEmptyParts);
}

/**
 * The handler with a pattern for exactly this extension. (The registry itself looks for the extension
 * anywhere in the patterns, in hash order: "p" would find any of them.)
 */
cImgIO* findHandler(const QString& i_path, cImgIO::EFileIOFlag i_flag)
{
    const QString pattern = QStringLiteral("*.") + cFileSystem::extractExtension(i_path).toLower();
    cImgIO* best = nullptr;
    for (cImgIO* handler : cImgIO::getImgIOSet()) {
        const bool fits = (handler->getFlags() & i_flag) && patterns(*handler).contains(pattern);
        if (fits && (!best || handler->getName() < best->getName()))
            best = handler;
    }
    return best;
}

QStringList extensions(cImgIO::EFileIOFlag i_flag)
{
    QStringList result;
    for (const cImgIO* handler : cImgIO::getImgIOSet()) {
        if (!(handler->getFlags() & i_flag))
            continue;
        for (const QString& pattern : patterns(*handler))
            result.append(pattern.mid(2));
    }
    result.sort();
    result.removeDuplicates();
    return result;
}

QString unknownExtension(const QString& i_path, const QStringList& i_known)
{
    const QString extension = cFileSystem::extractExtension(i_path);
    const QString found
        = extension.isEmpty() ? QStringLiteral("no extension") : QStringLiteral("'.%1'").arg(extension);
    return QStringLiteral("unknown file format, expected one of %1, found %2")
        .arg(i_known.join(QStringLiteral(", ")), found);
}

/** The formats that can hold a type, for the message that refuses it. */
QStringList holders(cImgType::ImageTypes i_type, unsigned i_channels)
{
    QStringList names;
    for (const cImgIO* handler : cImgIO::getImgIOSet()) {
        const auto* format = dynamic_cast<const cFileFormat*>(handler);
        if (format && format->canHold(i_type, i_channels))
            names.append(format->getName());
    }
    names.sort();
    return names;
}

/**
 * A file that is written beside its place and moved there when it is whole; gone if that does not come.
 * (QSaveFile also waits until the disk has it, which costs more than all the rest.)
 */
class cPart {
public:
    explicit cPart(const QString& i_path) : m_path(i_path), m_file(partName(i_path))
    {
        if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            raise(m_file.errorString());
    }
    ~cPart()
    {
        if (!m_done)
            m_file.remove();
    }
    cPart(const cPart&) = delete;
    cPart& operator=(const cPart&) = delete;

    QIODevice& file() { return m_file; }
    void commit()
    {
        const bool flushed = m_file.flush();
        m_file.close();
        if (!flushed || m_file.error() != QFileDevice::NoError)
            raise(m_file.errorString());
        if (std::rename(
                QFile::encodeName(m_file.fileName()).constData(), QFile::encodeName(m_path).constData())
            != 0)
            raise(qt_error_string(errno));
        m_done = true;
    }

private:
    static QString partName(const QString& i_path)
    {
        static std::atomic<unsigned> s_count {0};
        return QStringLiteral("%1.%2-%3.part")
            .arg(i_path)
            .arg(QCoreApplication::applicationPid())
            .arg(++s_count);
    }

    const QString m_path;
    QFile m_file;
    bool m_done = false;
};

} // namespace

void cFileFormat::checkSize(quint64 i_width, quint64 i_height, quint64 i_bytesPerPixel)
{
    if (i_width == 0 || i_height == 0)
        raise(QStringLiteral("the image is empty (%1x%2)").arg(i_width).arg(i_height));
    // Divided, so that no product can overflow.
    if (i_width > s_mostBytes / i_height || i_width * i_height > s_mostBytes / i_bytesPerPixel)
        raise(QStringLiteral(
            "the image is too large, %1x%2 pixels of %3 bytes, at most 2 GiB are read or written")
                  .arg(i_width)
                  .arg(i_height)
                  .arg(i_bytesPerPixel));
}

cImg cFileFormat::openImg(const QString& i_path, const cMapObj&)
{
    try {
        return read(i_path);
    } catch (const std::exception& error) {
        cTracer::cerr << i_path << ": " << QString::fromLocal8Bit(error.what()) << cTracer::end();
        return cImg();
    }
}

cImg cFileFormat::openImgFromMemory(const char* i_data, unsigned i_size, const cMapObj&)
{
    try {
        return decode(reinterpret_cast<const unsigned char*>(i_data), i_size);
    } catch (const std::exception& error) {
        cTracer::cerr << getName() << ": " << QString::fromLocal8Bit(error.what()) << cTracer::end();
        return cImg();
    }
}

bool cFileFormat::writeImg(const QString& i_path, const cImg& i_image, const cObj*)
{
    try {
        write(i_path, i_image);
        return true;
    } catch (const std::exception& error) {
        cTracer::cerr << i_path << ": " << QString::fromLocal8Bit(error.what()) << cTracer::end();
        return false;
    }
}

cImg cFileFormat::read(const QString& i_path) const
{
    if (QFileInfo(i_path).isDir())
        raise(QStringLiteral("it is a folder"));
    QFile file(i_path);
    if (!file.open(QIODevice::ReadOnly))
        raise(file.errorString());
    if (quint64(file.size()) >= s_mostBytes)
        raise(QStringLiteral("the file is too large, at most 2 GiB are read"));
    // Read and not mapped: a file that somebody cuts meanwhile must not end the process.
    const QByteArray data = file.readAll();
    if (file.error() != QFileDevice::NoError)
        raise(file.errorString());
    if (data.isEmpty())
        raise(QStringLiteral("the file is empty"));
    return decode(reinterpret_cast<const unsigned char*>(data.constData()), std::size_t(data.size()));
}

void cFileFormat::checkLength(quint64 i_needed, quint64 i_found)
{
    if (i_found < i_needed)
        raise(QStringLiteral("the file ends too early: %1 bytes of pixels, expected %2")
                  .arg(i_found)
                  .arg(i_needed));
}

void cFileFormat::checkRatio(quint64 i_needed, quint64 i_found, quint64 i_most)
{
    constexpr quint64 harmless = 1 << 20;
    if (i_needed > harmless && i_needed / i_most > i_found)
        raise(QStringLiteral(
            "the file is too short for the size in its header: %1 bytes, expected %2 at the least")
                  .arg(i_found)
                  .arg(i_needed / i_most));
}

QString cFileFormat::whyNotHeld(const cImg& i_image) const
{
    const cImgType::ImageTypes type = i_image.getImgType().getTypeId();
    const unsigned channels = i_image.getNumChannels();
    if (canHold(type, channels))
        return {};
    const QStringList others = holders(type, channels);
    return QStringLiteral("%1 cannot hold %2, formats that can: %3")
        .arg(getName(), typeText(type, channels),
            others.isEmpty() ? QStringLiteral("none") : others.join(QStringLiteral(", ")));
}

void cFileFormat::checkHeld(const cImg& i_image) const
{
    if (!i_image.isValid())
        raise(QStringLiteral("the image is not valid"));
    const QString problem = whyNotHeld(i_image);
    if (!problem.isEmpty())
        raise(problem);
    checkSize(i_image.getWidth(), i_image.getHeight(), i_image.getImgType().getPixelSize());
}

void cFileFormat::write(const QString& i_path, const cImg& i_image) const
{
    checkHeld(i_image);
    cPart part(i_path);
    encode(i_image, part.file());
    part.commit();
}

void cFileFormat::write(QIODevice& io_device, const cImg& i_image) const
{
    checkHeld(i_image);
    encode(i_image, io_device);
}

namespace host {

void registerFileFormats()
{
    static cBmpFormat s_bmp;
    static cJpegFormat s_jpeg;
    static cNpyFormat s_npy;
    static cPfmFormat s_pfm;
    static cPngFormat s_png;
    static cPnmFormat s_pbm(cPnmFormat::Pbm), s_pgm(cPnmFormat::Pgm), s_ppm(cPnmFormat::Ppm),
        s_pnm(cPnmFormat::Pnm), s_pam(cPnmFormat::Pam);
    static cStreamFormat s_stream;
    static cTiffFormat s_tiff;
    static const bool s_done = [] {
        cImgIO* const all[] = {&s_bmp, &s_jpeg, &s_npy, &s_pfm, &s_png, &s_pbm, &s_pgm, &s_ppm, &s_pnm,
            &s_pam, &s_stream, &s_tiff};
        return std::all_of(std::begin(all), std::end(all), &cImgIO::registerFileIO);
    }();
    Q_UNUSED(s_done)
}

cImg readImage(const QString& i_path)
{
    cImgIO* handler = findHandler(i_path, cImgIO::Read);
    if (!handler)
        raise(unknownExtension(i_path, readableExtensions()));
    const QSharedPointer<cImgIO> own(handler->clone());
    if (const auto* format = dynamic_cast<const cFileFormat*>(own.data()))
        return format->read(i_path);
    cImg image = own->openImg(i_path, cMapObj());
    if (!image.isValid())
        raise(QStringLiteral("%1 cannot read it").arg(own->getName()));
    return image;
}

QString peekImage(const QString& i_path)
{
    if (const auto* format = dynamic_cast<const cFileFormat*>(findHandler(i_path, cImgIO::Read))) {
        QFile file(i_path);
        try {
            const cFileFormat::Kind kind
                = file.open(QIODevice::ReadOnly) ? format->peek(file) : cFileFormat::Kind {};
            if (kind.type != cImgType::Invalid)
                return cSupportedImages::describe(kind.type, kind.channels);
        } catch (const std::exception&) {
            // The header may be a long one.
        }
    }
    return cSupportedImages::describe(readImage(i_path));
}

unsigned countPages(const QString& i_path, const cImg& i_image)
{
    const auto* format = dynamic_cast<const cFileFormat*>(findHandler(i_path, cImgIO::Read));
    return format ? format->countPages(i_image) : 1;
}

void writeImage(const QString& i_path, const cImg& i_image)
{
    cImgIO* handler = findHandler(i_path, cImgIO::Write);
    if (!handler)
        raise(unknownExtension(i_path, writableExtensions()));
    const QString folder = QFileInfo(i_path).path();
    if (!QDir().mkpath(folder))
        raise(QStringLiteral("the folder '%1' cannot be made").arg(folder));
    const QSharedPointer<cImgIO> own(handler->clone());
    if (const auto* format = dynamic_cast<const cFileFormat*>(own.data()))
        format->write(i_path, i_image);
    else if (!own->writeImg(i_path, i_image, nullptr))
        raise(QStringLiteral("%1 cannot write it").arg(own->getName()));
}

bool canHold(const QString& i_path, const cImg& i_image)
{
    const auto* format = dynamic_cast<const cFileFormat*>(findHandler(i_path, cImgIO::Write));
    return format && format->canHold(i_image.getImgType().getTypeId(), i_image.getNumChannels());
}

QString whyNotHeld(const QString& i_path, const cImg& i_image)
{
    const auto* format = dynamic_cast<const cFileFormat*>(findHandler(i_path, cImgIO::Write));
    return format ? format->whyNotHeld(i_image) : QString();
}

bool canRead(const QString& i_path) { return findHandler(i_path, cImgIO::Read); }

bool canWrite(const QString& i_path) { return findHandler(i_path, cImgIO::Write); }

QStringList readableExtensions() { return extensions(cImgIO::Read); }

QStringList writableExtensions() { return extensions(cImgIO::Write); }

} // namespace host
