#include "support/TraceLines.h"
#include "support/images.h"
#include "support/qtPrinters.h"

#include <QBuffer>
#include <QDataStream>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cTracer.h>
#include <tarnimg/cImg.h>

namespace {

/** Gives its bytes as they come, like a pipe: it cannot tell how many there are. */
class Pipe : public QIODevice {
public:
    explicit Pipe(const QByteArray& i_bytes) : m_bytes(i_bytes) { open(ReadOnly | Unbuffered); }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* o_data, qint64 i_count) override
    {
        const qint64 count = std::min<qint64>(i_count, m_bytes.size() - m_place);
        std::memcpy(o_data, m_bytes.constData() + m_place, std::size_t(count));
        m_place += int(count);
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    int m_place = 0;
};

/** What stands before the pixels, to be bent. */
struct Header {
    quint32 type = cImgType::UInt8;
    quint32 channels = 1;
    QString name = QStringLiteral("n");
    quint32 frameIndex = 2;
    quint32 numFrames = 3;
    quint32 width = 2;
    quint32 height = 1;
    double low = 0.0;
    double high = 255.0;
    QString attributes;
};

QByteArray bytesOf(const Header& i_header, const QByteArray& i_pixels)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << i_header.type << i_header.channels << i_header.name << i_header.frameIndex << i_header.numFrames
           << i_header.width << i_header.height << i_header.low << i_header.high << i_header.attributes;
    stream.writeRawData(i_pixels.constData(), i_pixels.size());
    return bytes;
}

QByteArray bytesOf(const cImg& i_image)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << i_image;
    EXPECT_EQ(stream.status(), QDataStream::Ok);
    return bytes;
}

/** Reads from bytes and from a pipe, which must give the same. */
cImg readBack(const QByteArray& i_bytes, QDataStream::Status i_expected = QDataStream::Ok)
{
    cImg image = makeRandomImage(cImgType::UInt8, 1, 1);
    QDataStream stream(i_bytes);
    stream >> image;
    EXPECT_EQ(stream.status(), i_expected);

    Pipe pipe(i_bytes);
    QDataStream pipeStream(&pipe);
    cImg piped = makeRandomImage(cImgType::UInt8, 1, 1);
    pipeStream >> piped;
    EXPECT_EQ(pipeStream.status(), i_expected);
    EXPECT_TRUE(samePixels(piped, image));
    EXPECT_EQ(piped.getName(), image.getName());
    return image;
}

/** Whether the bytes are refused with this status, and leave the void image. */
bool isRefused(const QByteArray& i_bytes, QDataStream::Status i_expected)
{
    return readBack(i_bytes, i_expected).getName() == QStringLiteral("Unnamed");
}

bool isCorrupt(const Header& i_header)
{
    return isRefused(bytesOf(i_header, "ab"), QDataStream::ReadCorruptData);
}

/** An image that differs from a new one in all that is written. */
cImg decorated(cImg i_image)
{
    i_image.setName(QStringLiteral("a name"));
    i_image.setNumFrames(10);
    i_image.setFrameIndex(4);
    i_image.setRange(5, 50);
    i_image.setImgAttr(QStringLiteral("gain"), new cDataValObj<double>(1.5));
    i_image.setImgAttr(
        QStringLiteral("note"), new cDataValObj<QString>(QStringLiteral("two\nlines \"quoted\"")));
    return i_image;
}

} // namespace

TEST(imgStreams, GiveBackWhatWasWritten)
{
    for (int type = 1; type <= 14; ++type) {
        SCOPED_TRACE(type);
        const cImg image = decorated(makeRandomImage(cImgType::ImageTypes(type), 7, 5, 3));
        const cImg back = readBack(bytesOf(image));
        EXPECT_TRUE(samePixels(back, image));
        EXPECT_TRUE(back.isCompact());
        EXPECT_EQ(back.getName(), image.getName());
        EXPECT_EQ(back.getNumFrames(), 10u);
        EXPECT_EQ(back.getFrameIndex(), 4u);
        EXPECT_EQ(back.getRange(), image.getRange());
        EXPECT_TRUE(back.getImgAttributes().isEqual(&image.getImgAttributes()));
        EXPECT_NE(back.getImgAttributes().getNumEntries(), 0u);
    }
}

TEST(imgStreams, GiveBackLargeImages)
{
    const cImg image = makeRandomImage(cImgType::UInt16, 1000, 600);
    EXPECT_TRUE(samePixels(readBack(bytesOf(image)), image));
}

TEST(imgStreams, HaveThisForm)
{
    cImg image = makeImage<quint8>(cImgType::UInt8, {{7, 8}, {9, 10}});
    image.setName(QStringLiteral("n"));
    image.setNumFrames(3);
    image.setFrameIndex(2);
    Header header;
    header.height = 2;
    QTextStream attributes(&header.attributes);
    image.getImgAttributes().write(attributes);
    attributes.flush();
    EXPECT_EQ(bytesOf(image), bytesOf(header, QByteArray("\x07\x08\x09\x0a")));
    EXPECT_EQ(bytesOf(image).left(8), QByteArray("\0\0\0\3\0\0\0\1", 8));
}

TEST(imgStreams, FollowTheByteOrderOfTheStream)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    const cImg image = decorated(makeRandomImage(cImgType::Float32, 3, 2));
    out << image << quint32(42) << image;
    EXPECT_EQ(bytes.left(4), QByteArray("\x0a\0\0\0", 4));

    QDataStream in(bytes);
    in.setByteOrder(QDataStream::LittleEndian);
    cImg first, second;
    quint32 between = 0;
    in >> first >> between >> second;
    EXPECT_EQ(between, 42u);
    EXPECT_TRUE(samePixels(first, image) && samePixels(second, image));
    EXPECT_TRUE(in.atEnd());
}

TEST(imgStreams, OfAViewGiveACompactImage)
{
    const cImg parent = makeRandomImage(cImgType::UInt16, 9, 7, 2);
    const cImg view(parent, false, cRect<int>(2, 3, 4, 3));
    const cImg back = readBack(bytesOf(view));
    EXPECT_TRUE(back.isCompact());
    EXPECT_TRUE(samePixels(back, view));
    EXPECT_EQ(bytesOf(view), bytesOf(cImg(parent, true, cRect<int>(2, 3, 4, 3))));
    EXPECT_EQ(bytesOf(view), bytesOf(view.clone()));
}

TEST(imgStreams, OfACompactImageHaveItsWholeBuffer)
{
    unsigned char memory[] = {1, 2, 90, 3, 4, 91};
    const cImg image(cImgType::UInt8, 2, 2, 1, 3, memory, nullptr);
    EXPECT_EQ(bytesOf(image).right(6), QByteArray("\x01\x02\x5a\x03\x04\x5b"));
    EXPECT_TRUE(samePixels(readBack(bytesOf(image.clone())), image));
}

TEST(imgStreams, OfAViewHaveItsRowsWithTheGapsBetweenPixels)
{
    unsigned char memory[] = {1, 99, 2, 98, 3, 97, 4, 96, 5, 95, 6, 94};
    const cImg parent(cImgType::UInt8, 3, 2, 2, 6, memory, nullptr);
    EXPECT_EQ(bytesOf(cImg(parent, false, cRect<int>(1, 0, 2, 2))).right(9),
        QByteArray("\n\x02\x62\x03\x61\x05\x5f\x06\x5e")); // behind the last letter of the attributes
}

TEST(imgStreams, CarryImagesWithoutPixels)
{
    const cImg nothing = readBack(bytesOf(cImg()));
    EXPECT_FALSE(nothing.isValid());
    EXPECT_EQ(nothing.getName(), QStringLiteral("Unnamed"));
    EXPECT_EQ(nothing.getNumFrames(), 0u);

    cImg unknown(cImgType::Invalid, 5, 6);
    unknown.setName(QStringLiteral("still named"));
    const cImg back = readBack(bytesOf(unknown));
    EXPECT_FALSE(back.isValid());
    EXPECT_EQ(back.getName(), QStringLiteral("still named"));
}

TEST(imgStreams, ThatEndEarlyAreRefusedWhereverTheyEnd)
{
    const QByteArray bytes = bytesOf(decorated(makeRandomImage(cImgType::UInt8, 7, 5)));
    for (int length = 0; length < bytes.size(); ++length)
        EXPECT_TRUE(isRefused(bytes.left(length), QDataStream::ReadPastEnd)) << length;
}

TEST(imgStreams, ThatPromiseTooMuchGetNoMemory)
{
    Header header;
    header.width = header.height = 65535;
    EXPECT_TRUE(isRefused(bytesOf(header, "ab"), QDataStream::ReadPastEnd));
    header.width = 1;
    header.height = 1;
    header.channels = std::numeric_limits<quint32>::max();
    EXPECT_TRUE(isRefused(bytesOf(header, "ab"), QDataStream::ReadPastEnd));
}

TEST(imgStreams, OfTypesAndSizesThatCannotBeAreCorrupt)
{
    TraceLines trace;
    constexpr quint32 most = std::numeric_limits<quint32>::max();
    for (quint32 type : {15u, 255u, 0x80000000u, most}) {
        Header header;
        header.type = type;
        EXPECT_TRUE(isCorrupt(header)) << type;
    }
    Header wide;
    wide.width = wide.height = 65536;
    EXPECT_TRUE(isCorrupt(wide));
    wide.width = wide.height = wide.channels = most;
    EXPECT_TRUE(isCorrupt(wide));
    Header channels;
    channels.type = cImgType::Float64;
    channels.channels = 0x20000001; // would wrap to 8 bytes
    EXPECT_TRUE(isCorrupt(channels));
    channels.width = 0;
    EXPECT_TRUE(isCorrupt(channels));
    EXPECT_EQ(trace.take().first(), QStringLiteral("Corrupt image stream: no such type or size"));
}

TEST(imgStreams, OfRangesThatAreNoNumbersAreCorrupt)
{
    for (double value : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        Header header;
        header.low = value;
        EXPECT_TRUE(isCorrupt(header));
        header.low = 0;
        header.high = value;
        EXPECT_TRUE(isCorrupt(header));
    }
}

TEST(imgStreams, OfDamagedAttributesAreCorrupt)
{
    Header header;
    for (const char* text : {"{", "}", "nonsense", "{ \"a\": ", "\x01\x02"}) {
        header.attributes = QString::fromLatin1(text);
        EXPECT_TRUE(isCorrupt(header)) << text;
    }
}

TEST(imgStreams, WithoutADeviceOrAfterAnErrorGiveNothing)
{
    QDataStream none;
    cImg image = makeRandomImage(cImgType::UInt8, 1, 1);
    none >> image;
    EXPECT_FALSE(image.isValid());
    EXPECT_EQ(none.status(), QDataStream::ReadPastEnd);

    QDataStream broken(bytesOf(makeRandomImage(cImgType::UInt8, 2, 2)));
    broken.setStatus(QDataStream::ReadCorruptData);
    image = makeRandomImage(cImgType::UInt8, 1, 1);
    broken >> image;
    EXPECT_FALSE(image.isValid());
    EXPECT_EQ(broken.status(), QDataStream::ReadCorruptData);
}

TEST(imgStreams, OfRandomBytesDoNoHarm)
{
    const auto state = cTracer::cerr.getState();
    cTracer::cerr.setState({}); // thousands of lines
    std::mt19937 random(1);
    const QByteArray good = bytesOf(decorated(makeRandomImage(cImgType::Float32, 6, 4, 2)));
    int valid = 0;
    for (int round = 0; round < 5000; ++round) {
        QByteArray bytes = good;
        for (unsigned i = 0; i <= random() % 4; ++i)
            bytes[int(random() % unsigned(bytes.size()))] = char(random());
        if (random() % 4 == 0)
            bytes.truncate(int(random() % unsigned(bytes.size())));
        QDataStream stream(bytes);
        cImg image;
        stream >> image;
        if (image.isValid()) {
            ++valid;
            EXPECT_EQ(stream.status(), QDataStream::Ok);
            EXPECT_FALSE(bytesOf(image).isEmpty()); // reads every pixel
        }
    }
    cTracer::cerr.setState(state);
    EXPECT_GT(valid, 100);
    EXPECT_LT(valid, 4900);
}

TEST(imgStreams, TellPeopleNameSizeAndType)
{
    QString text;
    QTextStream stream(&text);
    cImg image(cImgType::Float32, 4, 3);
    image.setName(QStringLiteral("frame"));
    stream << image << "; " << cImg();
    EXPECT_EQ(text, QStringLiteral("frame: 4x3 (Float32); Invalid image!"));
}

TEST(imgStreams, ForPeopleComeWithoutWaitingForMore)
{
    QByteArray bytes;
    QTextStream stream(&bytes); // holds its text back until it is flushed
    cImg image(cImgType::RGB24, 2, 1);
    image.setName(QStringLiteral("f"));
    stream << image;
    EXPECT_EQ(bytes, QByteArray("f: 2x1 (RGB24)"));
    stream << cImg();
    EXPECT_EQ(bytes, QByteArray("f: 2x1 (RGB24)Invalid image!"));
}
