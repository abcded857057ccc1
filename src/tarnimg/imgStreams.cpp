// The binary and the text form of an image.

#include <tarnimg/cImg.h>

#include <tarnbase/cTracer.h>
#include <tarnimg/cImageTypeFactory.h>

#include <QDataStream>
#include <QIODevice>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace {

/** Everything but the pixels, in the order of the stream. */
struct Header {
    quint32 type = 0;
    quint32 channels = 0;
    QString name;
    quint32 frameIndex = 0;
    quint32 numFrames = 0;
    quint32 width = 0;
    quint32 height = 0;
    double low = 0.0;
    double high = 0.0;
    QString attributes;
};

QDataStream& operator<<(QDataStream& io_stream, const Header& i_header)
{
    return io_stream << i_header.type << i_header.channels << i_header.name << i_header.frameIndex
                     << i_header.numFrames << i_header.width << i_header.height << i_header.low
                     << i_header.high << i_header.attributes;
}

QDataStream& operator>>(QDataStream& io_stream, Header& o_header)
{
    return io_stream >> o_header.type >> o_header.channels >> o_header.name >> o_header.frameIndex
        >> o_header.numFrames >> o_header.width >> o_header.height >> o_header.low >> o_header.high
        >> o_header.attributes;
}

/** The bytes of the pixels as a stream has them; nothing if there can be no such image. */
std::optional<quint64> pixelBytes(const Header& i_header)
{
    if (i_header.type == cImgType::Invalid)
        return 0;
    try {
        const std::unique_ptr<cImgType> type(
            cImageTypeFactory::create(cImgType::ImageTypes(i_header.type), i_header.channels));
        if (!type)
            return {};
        constexpr quint64 most = std::numeric_limits<quint32>::max();
        const quint64 row = quint64(type->getPixelSize()) * i_header.width;
        if (row > most || row * i_header.height > most)
            return {};
        return row * i_header.height;
    } catch (const std::bad_alloc&) { // channels beyond measure
        return {};
    }
}

constexpr quint64 s_part = 1 << 30; // one call of a stream counts in int

void writeBytes(QDataStream& io_stream, const unsigned char* i_bytes, quint64 i_count)
{
    for (quint64 done = 0; done < i_count && io_stream.status() == QDataStream::Ok; done += s_part)
        io_stream.writeRawData(
            reinterpret_cast<const char*>(i_bytes + done), int(std::min(s_part, i_count - done)));
}

bool readBytes(QDataStream& io_stream, unsigned char* o_bytes, quint64 i_count)
{
    for (quint64 done = 0; done < i_count; done += s_part) {
        const int part = int(std::min(s_part, i_count - done));
        if (io_stream.readRawData(reinterpret_cast<char*>(o_bytes + done), part) != part)
            return false;
    }
    return true;
}

/** For a device that cannot tell how much it has: the memory grows with what has come. */
bool readBytesGrowing(QDataStream& io_stream, std::vector<unsigned char>& o_bytes, quint64 i_count)
{
    constexpr quint64 start = 1 << 16;
    while (o_bytes.size() < i_count) {
        const quint64 done = o_bytes.size();
        o_bytes.resize(std::min(i_count, std::max(2 * done, start)));
        if (!readBytes(io_stream, o_bytes.data() + done, o_bytes.size() - done))
            return false;
    }
    return true;
}

} // namespace

QDataStream& operator<<(QDataStream& io_stream, const cImg& i_image)
{
    Header header;
    header.type = i_image.getImgType().getTypeId();
    header.channels = i_image.getNumChannels();
    header.name = i_image.getName();
    header.frameIndex = i_image.getFrameIndex();
    header.numFrames = i_image.getNumFrames();
    header.width = i_image.getWidth();
    header.height = i_image.getHeight();
    header.low = i_image.getRange().getLow();
    header.high = i_image.getRange().getHigh();
    QTextStream attributes(&header.attributes);
    i_image.getImgAttributes().write(attributes);
    attributes.flush();
    io_stream << header;

    const unsigned char* pixels = i_image.getConstData();
    if (!pixels)
        return io_stream;
    if (i_image.isCompact()) {
        writeBytes(io_stream, pixels, i_image.m_data->bytesFromStart());
    } else {
        const quint64 rowBytes = quint64(i_image.getWidth()) * i_image.getXPitch();
        for (unsigned y = 0; y < i_image.getHeight(); ++y)
            writeBytes(io_stream, pixels + std::size_t(y) * i_image.getYPitch(), rowBytes);
    }
    return io_stream;
}

QDataStream& operator>>(QDataStream& io_stream, cImg& o_image)
{
    o_image = cImg();
    const QIODevice* device = io_stream.device();
    if (!device)
        io_stream.setStatus(QDataStream::ReadPastEnd); // the readers of Qt do not tell
    Header header;
    io_stream >> header;
    if (io_stream.status() != QDataStream::Ok)
        return io_stream;

    const auto corrupt = [&io_stream](const char* i_what) -> QDataStream& {
        io_stream.setStatus(QDataStream::ReadCorruptData);
        cTracer::cerr << "Corrupt image stream: " << i_what << cTracer::end();
        return io_stream;
    };
    const auto bytes = pixelBytes(header);
    if (!bytes)
        return corrupt("no such type or size");
    if (!std::isfinite(header.low) || !std::isfinite(header.high))
        return corrupt("range");
    cMapObj attributes;
    QTextStream text(&header.attributes, QIODevice::ReadOnly);
    if (!header.attributes.isEmpty() && !attributes.readStream(text))
        return corrupt("attributes");

    // Nobody gets a large image out of a short stream.
    const bool sequential = device->isSequential();
    std::vector<unsigned char> early;
    if (sequential ? !readBytesGrowing(io_stream, early, *bytes)
                   : quint64(device->bytesAvailable()) < *bytes) {
        io_stream.setStatus(QDataStream::ReadPastEnd);
        return io_stream;
    }
    cImg image(cImgType::ImageTypes(header.type), header.width, header.height, header.channels);
    image.setRange(header.low, header.high);
    image.setNumFrames(header.numFrames);
    image.setFrameIndex(header.frameIndex);
    image.setName(header.name);
    image.m_data->m_attributes = std::move(attributes);
    if (sequential) {
        if (!early.empty())
            std::memcpy(image.getData(), early.data(), early.size());
    } else if (!readBytes(io_stream, image.getData(), *bytes)) {
        io_stream.setStatus(QDataStream::ReadPastEnd);
        return io_stream;
    }
    o_image = image;
    return io_stream;
}

QTextStream& operator<<(QTextStream& io_stream, const cImg& i_image)
{
    if (i_image.isValid())
        io_stream << i_image.getName() << ": " << i_image.getWidth() << 'x' << i_image.getHeight() << " ("
                  << i_image.getImgType().getName() << ')';
    else
        io_stream << "Invalid image!";
    io_stream.flush();
    return io_stream;
}
