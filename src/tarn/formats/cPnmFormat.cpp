#include "cPnmFormat.h"

#include "cTextHeader.h"
#include "fileBytes.h"

#include <QIODevice>
#include <algorithm>
#include <limits>
#include <vector>

namespace {

struct Kind {
    const char* name;
    const char* filter;
};
constexpr Kind s_kinds[]
    = {{"PBM", "*.pbm"}, {"PGM", "*.pgm"}, {"PPM", "*.ppm"}, {"PNM", "*.pnm"}, {"PAM", "*.pam"}};

struct Header {
    char digit = 0; ///< of the file's first two bytes
    quint64 width = 0;
    quint64 height = 0;
    quint64 depth = 1;
    quint64 most = 1; ///< the value that stands for the brightest
    QByteArray kind; ///< of a PAM

    bool isBitmap() const { return digit == '1' || digit == '4'; }
    bool isPlain() const { return digit <= '3'; }
    unsigned sampleBytes() const { return most < 256 ? 1 : 2; }
};

/** The lines of a PAM up to its pixels. */
void readPamLines(cTextHeader& io_text, Header& o_header)
{
    bool hasWidth = false, hasHeight = false, hasDepth = false, hasMost = false;
    for (;;) {
        const QByteArray key = io_text.takeWord("the end of the header");
        if (key == "ENDHDR")
            break;
        if (key == "TUPLTYPE") {
            o_header.kind = io_text.takeLine();
            continue;
        }
        const auto take = [&io_text](quint64& o_value, bool& o_has, const char* i_what) {
            o_value = io_text.takeNumber(i_what);
            o_has = true;
        };
        if (key == "WIDTH")
            take(o_header.width, hasWidth, "the width");
        else if (key == "HEIGHT")
            take(o_header.height, hasHeight, "the height");
        else if (key == "DEPTH")
            take(o_header.depth, hasDepth, "the depth");
        else if (key == "MAXVAL")
            take(o_header.most, hasMost, "the greatest value");
        else
            io_text.fail(
                QStringLiteral("unknown line in the header, found '%1'").arg(QString::fromUtf8(key)));
    }
    if (!hasWidth || !hasHeight || !hasDepth || !hasMost)
        io_text.fail(QStringLiteral("the header lacks one of WIDTH, HEIGHT, DEPTH and MAXVAL"));
    if (o_header.depth == 0 || o_header.depth > std::numeric_limits<unsigned>::max() / 2)
        io_text.fail(QStringLiteral("the depth is %1").arg(o_header.depth));
}

Header readHeader(cTextHeader& io_text)
{
    Header header;
    for (const char* magic : {"P1", "P2", "P3", "P4", "P5", "P6", "P7"})
        if (io_text.take(magic))
            header.digit = magic[1];
    if (!header.digit)
        io_text.fail(QStringLiteral("not of this format, expected P1 to P7 at the start"));
    io_text.takeEnd();
    if (header.digit == '7') {
        readPamLines(io_text, header);
    } else {
        header.width = io_text.takeNumber("the width");
        header.height = io_text.takeNumber("the height");
        if (!header.isBitmap())
            header.most = io_text.takeNumber("the greatest value");
        if (header.digit == '3' || header.digit == '6')
            header.depth = 3;
    }
    if (header.most == 0 || header.most > 65535)
        io_text.fail(QStringLiteral("the greatest value is %1, expected 1 to 65535").arg(header.most));
    if (!header.isPlain())
        io_text.takeEnd();
    return header;
}

cImgType::ImageTypes typeFor(const Header& i_header)
{
    if (i_header.sampleBytes() == 2)
        return cImgType::UInt16;
    const bool pam = i_header.digit == '7';
    if (i_header.depth == 3 && (!pam || i_header.kind == "RGB"))
        return cImgType::RGB24;
    if (i_header.depth == 4 && i_header.kind == "RGB_ALPHA")
        return cImgType::RGB32;
    return cImgType::UInt8;
}

/** Bytes in which the pixels stand, at the least if they are plain text. */
quint64 lengthOf(const Header& i_header)
{
    if (i_header.digit == '4')
        return (i_header.width + 7) / 8 * i_header.height;
    const quint64 samples = i_header.width * i_header.height * i_header.depth;
    if (i_header.digit == '1')
        return samples;
    return i_header.isPlain() ? 2 * samples : samples * i_header.sampleBytes();
}

/** In bitmaps 1 is black. */
constexpr unsigned char grey(unsigned i_bit) { return i_bit ? 0 : 255; }

void takeBits(const unsigned char* i_bytes, cImg& o_image)
{
    const std::size_t bytes = (std::size_t(o_image.getWidth()) + 7) / 8;
    for (unsigned y = 0; y < o_image.getHeight(); ++y) {
        unsigned char* row = o_image.row<unsigned char>(y);
        for (std::size_t x = 0; x < o_image.getWidth(); ++x)
            row[x] = grey((i_bytes[y * bytes + x / 8] >> (7 - x % 8)) & 1u);
    }
}

template <class T> void readPlain(cTextHeader& io_text, const Header& i_header, cImg& o_image)
{
    const std::size_t count = std::size_t(i_header.width) * i_header.depth;
    for (unsigned y = 0; y < o_image.getHeight(); ++y) {
        T* row = o_image.row<T>(y);
        for (std::size_t i = 0; i < count; ++i) {
            const quint64 value
                = i_header.isBitmap() ? grey(io_text.takeBit()) : io_text.takeNumber("a pixel");
            if (value > std::numeric_limits<T>::max())
                io_text.fail(QStringLiteral("a pixel is %1, above the greatest value %2")
                                 .arg(value)
                                 .arg(i_header.most));
            row[i] = T(value);
        }
    }
}

template <class T> void checkValues(const cTextHeader& i_text, const Header& i_header, const cImg& i_image)
{
    const std::size_t count = std::size_t(i_header.width) * i_header.depth;
    T greatest = 0;
    for (unsigned y = 0; y < i_image.getHeight(); ++y)
        greatest = std::max(greatest, *std::max_element(i_image.getRow<T>(y), i_image.getRow<T>(y) + count));
    if (greatest > i_header.most)
        i_text.fail(
            QStringLiteral("a pixel is %1, above the greatest value %2").arg(greatest).arg(i_header.most));
}

/** The kind that a PAM names, so that others show it and it is read back as itself. */
const char* pamKind(cImgType::ImageTypes i_type, unsigned i_channels)
{
    static constexpr const char* s_names[] = {"GRAYSCALE", "GRAYSCALE_ALPHA", "RGB", "RGB_ALPHA"};
    const bool nameless = i_channels > 4 || (i_type == cImgType::UInt8 && i_channels > 2);
    return nameless ? nullptr : s_names[i_channels - 1];
}

QByteArray makeHeader(const cImg& i_image, bool i_pam)
{
    const cImgType::ImageTypes type = i_image.getImgType().getTypeId();
    const unsigned channels = i_image.getNumChannels();
    const QByteArray width = QByteArray::number(i_image.getWidth());
    const QByteArray height = QByteArray::number(i_image.getHeight());
    const QByteArray most = type == cImgType::UInt16 ? "65535" : "255";
    if (!i_pam)
        return (channels == 1 ? "P5\n" : "P6\n") + width + ' ' + height + '\n' + most + '\n';
    const char* kind = pamKind(type, channels);
    return "P7\nWIDTH " + width + "\nHEIGHT " + height + "\nDEPTH " + QByteArray::number(channels)
        + "\nMAXVAL " + most + (kind ? QByteArrayLiteral("\nTUPLTYPE ") + kind : QByteArray()) + "\nENDHDR\n";
}

/** Numbers of 16 bits stand in the file with their high byte first. */
void writeHighFirst(const cImg& i_image, QIODevice& io_device)
{
    std::vector<unsigned char> row(host::rowBytes(i_image));
    for (unsigned y = 0; y < i_image.getHeight(); ++y) {
        const auto* source = i_image.getRow<unsigned char>(y);
        std::copy(source, source + row.size(), row.begin());
        host::swapBytes(row.data(), row.size(), 2);
        host::writeBytes(row.data(), row.size(), io_device);
    }
}

} // namespace

cPnmFormat::cPnmFormat(EKind i_kind)
    : cFileFormat(QString::fromLatin1(s_kinds[i_kind].name), QString::fromLatin1(s_kinds[i_kind].filter),
        i_kind == Pbm ? FileIOFlags(Read) : Read | Write),
      m_kind(i_kind)
{
}

cImgIO* cPnmFormat::clone() const { return new cPnmFormat(m_kind); }

bool cPnmFormat::canHold(cImgType::ImageTypes i_type, unsigned i_channels) const
{
    const bool numbers = i_type == cImgType::UInt8 || i_type == cImgType::UInt16;
    const bool grey = numbers && i_channels == 1;
    const bool colour = i_type == cImgType::RGB24 || (i_type == cImgType::UInt16 && i_channels == 3);
    switch (m_kind) {
    case Pbm:
        return false;
    case Pgm:
        return grey;
    case Ppm:
        return colour;
    case Pnm:
        return grey || colour;
    case Pam:
        return numbers || colour || i_type == cImgType::RGB32;
    }
    return false;
}

cImg cPnmFormat::decode(const unsigned char* i_data, std::size_t i_size) const
{
    cTextHeader text(s_kinds[m_kind].name, i_data, i_size);
    const Header header = readHeader(text);
    checkSize(header.width, header.height, header.depth * header.sampleBytes());
    // The last number of a plain file needs no blank after it, and the first is parted from the header by
    // one.
    checkLength(lengthOf(header), text.restSize());

    cImg image(typeFor(header), unsigned(header.width), unsigned(header.height), unsigned(header.depth));
    const bool wide = header.sampleBytes() == 2;
    if (header.isPlain()) {
        wide ? readPlain<quint16>(text, header, image) : readPlain<quint8>(text, header, image);
    } else if (header.isBitmap()) {
        takeBits(text.rest(), image);
    } else {
        host::takePixels(text.rest(), image);
        if (wide && Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
            host::swapBytes(image);
    }
    if (!header.isBitmap() && header.most != (wide ? 65535 : 255)) {
        wide ? checkValues<quint16>(text, header, image) : checkValues<quint8>(text, header, image);
        image.setRange(0, double(header.most));
    }
    return image;
}

cFileFormat::Kind cPnmFormat::peek(QIODevice& io_device) const
{
    const QByteArray start = io_device.read(s_headerBytes);
    cTextHeader text(s_kinds[m_kind].name, reinterpret_cast<const unsigned char*>(start.constData()),
        std::size_t(start.size()));
    const Header header = readHeader(text);
    return {typeFor(header), unsigned(header.depth)};
}

void cPnmFormat::encode(const cImg& i_image, QIODevice& io_device) const
{
    const QByteArray header = makeHeader(i_image, m_kind == Pam);
    host::writeBytes(header.constData(), std::size_t(header.size()), io_device);
    if (i_image.isKindOf(cImgType::UInt16) && Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
        writeHighFirst(i_image, io_device);
    else
        host::writePixels(i_image, io_device);
}
