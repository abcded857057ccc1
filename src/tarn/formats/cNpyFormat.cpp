#include "cNpyFormat.h"

#include "fileBytes.h"
#include "npyHeader.h"

#include <QIODevice>
#include <algorithm>
#include <cstring>
#include <limits>

namespace {

[[noreturn]] void fail(const QString& i_message) { host::raise(QStringLiteral("NPY: ") + i_message); }

struct Form {
    cImgType::ImageTypes type;
    const char* number;
    bool isGradient = false;
};
constexpr Form s_forms[] = {
    {cImgType::UInt8, "u1"},
    {cImgType::UInt16, "u2"},
    {cImgType::UInt32, "u4"},
    {cImgType::SInt8, "i1"},
    {cImgType::SInt16, "i2"},
    {cImgType::SInt32, "i4"},
    {cImgType::SInt64, "i8"},
    {cImgType::Float32, "f4"},
    {cImgType::Float64, "f8"},
    {cImgType::Complex, "c8"},
    {cImgType::Gradient16, "i2", true},
    {cImgType::Gradient32, "i4", true},
    {cImgType::RGB24, "u1"},
    {cImgType::RGB32, "u1"},
};

constexpr char s_truth[] = "b1";

std::vector<NpyHeader::Field> fieldsOf(const Form& i_form)
{
    const bool native = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;
    const char order = i_form.number[1] == '1' ? '|' : native ? '<' : '>';
    if (i_form.isGradient)
        return {{"dx", order, i_form.number}, {"dy", order, i_form.number}};
    return {{{}, order, i_form.number}};
}

/** What an array is as an image. */
struct Layout {
    cImgType::ImageTypes type = cImgType::Invalid;
    quint64 width = 0;
    quint64 height = 0;
    quint64 channels = 1;
    bool isTruth = false;
    bool isSwapped = false;
};

cImgType::ImageTypes typeFor(const NpyHeader& i_header, bool& o_isTruth)
{
    o_isTruth = i_header.fields.size() == 1 && i_header.fields.front() == NpyHeader::Field {{}, '|', s_truth};
    if (o_isTruth)
        return cImgType::UInt8;
    for (const Form& form : s_forms)
        if (i_header.fields == fieldsOf(form))
            return form.type;
    fail(QStringLiteral("no pixel type has elements %1").arg(QString::fromUtf8(i_header.typeText())));
}

Layout layoutOf(const NpyHeader& i_header)
{
    Layout layout;
    layout.type = typeFor(i_header, layout.isTruth);
    const bool fixed = layout.type == cImgType::Complex || layout.type == cImgType::Gradient16
        || layout.type == cImgType::Gradient32;
    const std::size_t axes = i_header.shape.size();
    if (axes != 2 && (axes != 3 || (fixed && i_header.shape[2] != 1)))
        fail(QStringLiteral("an image of %1 has the shape (height, width)%2, found %3")
                 .arg(QString::fromUtf8(i_header.typeText()),
                     fixed ? QString() : QStringLiteral(" or (height, width, channels)"),
                     QString::fromUtf8(i_header.shapeText())));
    layout.height = i_header.shape[0];
    layout.width = i_header.shape[1];
    if (axes == 3)
        layout.channels = i_header.shape[2];
    if (layout.channels == 0 || layout.channels > std::numeric_limits<unsigned>::max() / 8)
        fail(QStringLiteral("the shape %1 has too few or too many channels")
                 .arg(QString::fromUtf8(i_header.shapeText())));
    if (layout.type == cImgType::UInt8 && !layout.isTruth && axes == 3) {
        if (layout.channels == 3)
            layout.type = cImgType::RGB24;
        else if (layout.channels == 4)
            layout.type = cImgType::RGB32;
    }
    const char foreign = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? '>' : '<';
    for (const NpyHeader::Field& field : i_header.fields) {
        layout.isSwapped = field.order == foreign;
        if (layout.isSwapped != (i_header.fields.front().order == foreign))
            fail(QStringLiteral("fields of different byte order are not supported"));
    }
    return layout;
}

/** From an array whose first axis, the height, runs fastest. `T` is as large as an element. */
template <class T> void takeColumns(const unsigned char* i_bytes, const Layout& i_layout, cImg& io_image)
{
    // Square blocks: rows of the image and columns of the array stay in the cache together.
    constexpr quint64 edge = 64;
    unsigned char* const pixels = io_image.getData();
    const std::size_t pitch = io_image.getYPitch();
    const quint64 w = i_layout.width, h = i_layout.height, c = i_layout.channels;
    for (quint64 channel = 0; channel < c; ++channel)
        for (quint64 x0 = 0; x0 < w; x0 += edge)
            for (quint64 y0 = 0; y0 < h; y0 += edge)
                for (quint64 x = x0; x < std::min(x0 + edge, w); ++x)
                    for (quint64 y = y0; y < std::min(y0 + edge, h); ++y)
                        std::memcpy(pixels + y * pitch + (x * c + channel) * sizeof(T),
                            i_bytes + (y + h * (x + w * channel)) * sizeof(T), sizeof(T));
}

void takeColumns(
    const unsigned char* i_bytes, const Layout& i_layout, unsigned i_elementBytes, cImg& io_image)
{
    switch (i_elementBytes) {
    case 1:
        return takeColumns<quint8>(i_bytes, i_layout, io_image);
    case 2:
        return takeColumns<quint16>(i_bytes, i_layout, io_image);
    case 4:
        return takeColumns<quint32>(i_bytes, i_layout, io_image);
    default:
        return takeColumns<quint64>(i_bytes, i_layout, io_image);
    }
}

void spreadTruths(cImg& io_image)
{
    for (unsigned y = 0; y < io_image.getHeight(); ++y) {
        unsigned char* row = io_image.row<unsigned char>(y);
        std::transform(row, row + host::rowBytes(io_image), row,
            [](unsigned char i_truth) { return static_cast<unsigned char>(i_truth ? 255 : 0); });
    }
}

} // namespace

cNpyFormat::cNpyFormat() : cFileFormat(QStringLiteral("NPY"), QStringLiteral("*.npy"), Read | Write) {}

cImgIO* cNpyFormat::clone() const { return new cNpyFormat; }

bool cNpyFormat::canHold(cImgType::ImageTypes i_type, unsigned i_channels) const
{
    return i_type != cImgType::Invalid
        && !(i_type == cImgType::UInt8 && (i_channels == 3 || i_channels == 4));
}

cImg cNpyFormat::decode(const unsigned char* i_data, std::size_t i_size) const
{
    const NpyHeader header = host::parseNpyHeader(i_data, i_size);
    const Layout layout = layoutOf(header);
    // Bytes of what has one place in the array: a number, a record, a complex number.
    const unsigned number = unsigned(header.fields.front().type[1] - '0');
    const unsigned element = number * unsigned(header.fields.size());
    checkSize(layout.width, layout.height, layout.channels * element);
    checkLength(layout.width * layout.height * layout.channels * element, i_size - header.dataOffset);

    cImg image(layout.type, unsigned(layout.width), unsigned(layout.height), unsigned(layout.channels));
    const unsigned char* bytes = i_data + header.dataOffset;
    if (header.fortranOrder)
        takeColumns(bytes, layout, element, image);
    else
        host::takePixels(bytes, image);
    if (layout.isSwapped)
        host::swapBytes(image);
    if (layout.isTruth)
        spreadTruths(image);
    return image;
}

cFileFormat::Kind cNpyFormat::peek(QIODevice& io_device) const
{
    const QByteArray start = io_device.read(s_headerBytes);
    const Layout layout = layoutOf(host::parseNpyHeader(
        reinterpret_cast<const unsigned char*>(start.constData()), std::size_t(start.size())));
    return {layout.type, unsigned(layout.channels)};
}

void cNpyFormat::encode(const cImg& i_image, QIODevice& io_device) const
{
    const cImgType::ImageTypes type = i_image.getImgType().getTypeId();
    const Form& form = *std::find_if(
        std::begin(s_forms), std::end(s_forms), [type](const Form& i_form) { return i_form.type == type; });
    NpyHeader header;
    header.fields = fieldsOf(form);
    header.shape = {i_image.getHeight(), i_image.getWidth()};
    const bool pairs = type == cImgType::Complex || form.isGradient;
    if (!pairs && i_image.getNumChannels() > 1)
        header.shape.push_back(i_image.getNumChannels());
    const QByteArray start = host::makeNpyHeader(header);
    host::writeBytes(start.constData(), std::size_t(start.size()), io_device);
    host::writePixels(i_image, io_device);
}
