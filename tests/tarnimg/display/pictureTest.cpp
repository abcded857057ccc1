// Where the memory of pictures comes from.
#include "displayTesting.h"

#include <set>

using namespace displayTesting;

TEST(picture, TheMemoryOfAPictureThatIsGoneServesTheNext)
{
    for (const auto type : {cImgType::UInt8, cImgType::RGB24, cImgType::RGB32, cImgType::Float64,
             cImgType::Gradient16, cImgType::Complex}) {
        cImg image = makeRandomImage(type, 333, 44);
        QImage first = show(image);
        const uchar* memory = first.constBits();
        first = QImage();
        EXPECT_EQ(show(image).constBits(), memory) << type;
    }
}

TEST(picture, AViewerThatHoldsTheLastPictureNeedsTwo)
{
    cImg image = makeRandomImage(cImgType::UInt16, 333, 45);
    std::set<const uchar*> memories;
    QImage held;
    for (int frame = 0; frame < 10; ++frame) {
        held = show(image);
        memories.insert(held.constBits());
    }
    EXPECT_EQ(memories.size(), 2u);
}

TEST(picture, APictureThatIsHeldKeepsItsPixels)
{
    cImg image = makeRandomImage(cImgType::SInt16, 100, 20);
    const QImage held = show(image);
    const std::vector<int> pixels = bytesOf(held);
    image.setRange(0, 10);
    const QImage other = show(image);
    EXPECT_NE(bytesOf(other), pixels);
    EXPECT_EQ(bytesOf(held), pixels);
}

TEST(picture, APictureOutlivesItsImageAndIsTheCallersToPaintOn)
{
    QImage out;
    {
        cImg image = makeRandomImage(cImgType::RGB32, 30, 20);
        out = show(image);
    }
    const uchar* memory = out.constBits();
    out.setPixel(3, 4, 0xFF123456);
    EXPECT_EQ(out.constBits(), memory); // nothing else holds it, so nothing was copied
    EXPECT_EQ(out.pixel(3, 4), 0xFF123456);
}

TEST(picture, RowsBeginAtWords)
{
    for (const auto type : {cImgType::UInt8, cImgType::RGB24, cImgType::RGB32})
        for (unsigned width = 1; width < 9; ++width) {
            const QImage out = show(makeRandomImage(type, width, 2));
            EXPECT_EQ(out.bytesPerLine(), (int(width) * out.depth() / 8 + 3) / 4 * 4);
            EXPECT_EQ(reinterpret_cast<quintptr>(out.constBits()) % 4, 0u);
        }
}
