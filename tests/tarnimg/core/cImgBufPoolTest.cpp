#include "support/images.h"

#include <QVariant>
#include <tarnimg/cImg.h>
#include <thread>
#include <vector>

namespace {

using Rect = cRect<int>;

/** Begins and ends without memory that waits for reuse. */
class cImgBufPool : public ::testing::Test {
protected:
    cImgBufPool() { cImg::releaseUnusedMemory(); }
    ~cImgBufPool() override { cImg::releaseUnusedMemory(); }
};

/** The address of an image's pixels, after the image has gone. */
const unsigned char* parked(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height)
{
    return cImg(i_type, i_width, i_height).getConstData();
}

} // namespace

TEST_F(cImgBufPool, AReleasedBufferServesTheNextImageOfItsShape)
{
    const unsigned char* first = nullptr;
    {
        cImg image(cImgType::UInt8, 100, 10);
        image.setPixel<quint8>(99, 9, 123);
        first = image.getConstData();
    }
    const cImg next(cImgType::UInt8, 100, 10);
    EXPECT_EQ(next.getConstData(), first);
    EXPECT_EQ(next.getPixel<quint8>(99, 9), 123); // the old content is visible
    const cImg another(cImgType::UInt8, 100, 10);
    EXPECT_NE(another.getConstData(), first);
}

TEST_F(cImgBufPool, ImagesOfOneByteSizeButAnotherShapeDoNotExchangeBuffers)
{
    const unsigned char* first = parked(cImgType::UInt8, 100, 10);
    EXPECT_NE(cImg(cImgType::UInt8, 10, 100).getConstData(), first);
    EXPECT_NE(cImg(cImgType::UInt16, 50, 10).getConstData(), first);
    EXPECT_NE(cImg(cImgType::UInt16, 100, 5).getConstData(), first);
    EXPECT_EQ(cImg(cImgType::SInt8, 100, 10).getConstData(), first); // the type does not count
}

TEST_F(cImgBufPool, ABufferWaitsForItsLastUser)
{
    cImg image(cImgType::UInt8, 100, 10);
    const unsigned char* pixels = image.getConstData();
    cImg view(image, false, Rect(10, 1, 5, 5));
    image = cImg();
    EXPECT_NE(cImg(cImgType::UInt8, 100, 10).getConstData(), pixels);
    view = cImg();
    const cImg first(cImgType::UInt8, 100, 10);
    const cImg second(cImgType::UInt8, 100, 10);
    EXPECT_TRUE(first.getConstData() == pixels || second.getConstData() == pixels);
}

TEST_F(cImgBufPool, ACopyOfAnImageDoesNotKeepItsBufferOut)
{
    const unsigned char* pixels = nullptr;
    {
        const cImg image(cImgType::UInt8, 100, 10);
        pixels = image.getConstData();
        cImg(cImgType::UInt8, 100, 10).cloneWithoutPixels();
        image.cloneWithoutPixels();
        image.clone();
        cImg(image, false, Rect(1, 1, 2, 2)).clone();
    }
    std::vector<cImg> images;
    bool found = false;
    for (int i = 0; i < 4; ++i) {
        images.emplace_back(cImgType::UInt8, 100, 10);
        found |= images.back().getConstData() == pixels;
    }
    EXPECT_TRUE(found);
}

TEST_F(cImgBufPool, MemoryFromOutsideNeverEntersThePool)
{
    std::vector<unsigned char> memory(1000);
    {
        const cImg image(cImgType::UInt8, 100, 10, 1, 100, memory.data(), nullptr);
    }
    EXPECT_NE(cImg(cImgType::UInt8, 100, 10).getConstData(), memory.data());
    {
        const cImg image(cImgType::UInt8, 100, 10, 1, 100, memory.data(), [](void*) {});
    }
    EXPECT_NE(cImg(cImgType::UInt8, 100, 10).getConstData(), memory.data());
}

TEST_F(cImgBufPool, WhatResizeLeavesIsNotParked)
{
    cImg image(cImgType::UInt8, 1000, 1000);
    image.setPixel<quint8>(500, 500, 77);
    cImg view(image, false, Rect(0, 0, 600, 600));
    image.resize(10, 10);
    EXPECT_EQ(view.getPixel<quint8>(500, 500), 77);
    view = cImg();
    // Memory of this size comes fresh from the system, so that it is clear unless it was parked.
    EXPECT_NE(cImg(cImgType::UInt8, 1000, 1000).getPixel<quint8>(500, 500), 77);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(cImgBufPool, AboutAGigabyteIsKept)
{
    // 6e8 bytes each, of which a single one is touched: the second one overshoots the limit, the third stays
    // out.
    const auto mark = [](quint8 i_value) {
        cImg image(cImgType::UInt8, 30000, 20000);
        image.setPixel(15000u, 10000u, i_value);
        return image;
    };
    cImg first = mark(1);
    cImg second = mark(2);
    cImg third = mark(3);
    first = second = third = cImg();
    int marked = 0;
    std::vector<cImg> images;
    for (int i = 0; i < 3; ++i) {
        images.emplace_back(cImgType::UInt8, 30000, 20000);
        marked += images.back().getPixel<quint8>(15000, 10000) != 0;
    }
    EXPECT_EQ(marked, 2);
}

TEST_F(cImgBufPool, WhatIsTakenAgainMakesRoom)
{
    // Ten times 4e8 bytes one after the other, of which no more than one is parked at a time.
    for (int i = 0; i < 10; ++i) {
        cImg image(cImgType::UInt8, 20000, 20000);
        if (i > 0) {
            EXPECT_EQ(image.getPixel<quint8>(10000, 10000), i);
        }
        image.setPixel<quint8>(10000, 10000, quint8(i + 1));
    }
}
#endif

TEST_F(cImgBufPool, HandlesAndPoolAreSafeForManyThreads)
{
    constexpr int threads = 4;
    constexpr int rounds = 300;
    cImg shared(cImgType::UInt8, 16, 16);
    shared.getImgType().fill(shared, QVariant(0));

    const auto work = [&shared](int i_thread, cImg i_image) {
        for (int round = 0; round < rounds; ++round) {
            cImg mine = i_image; // all threads count references of one record
            const cImg view(mine, false, Rect(i_thread, 0, 4, 4)); // and uses of one buffer
            mine.setPixel<quint8>(3, 3, quint8(i_thread + 1)); // detaches into the pool's memory
            ASSERT_EQ(mine.getPixel<quint8>(3, 3), i_thread + 1);
            ASSERT_EQ(view.getPixel<quint8>(0, 3), 0);
            cImg fresh(cImgType::UInt8, 16, unsigned(1 + round % 3));
            fresh.getImgType().fill(fresh, QVariant(i_thread));
            cImg kept = fresh;
            fresh = mine;
            ASSERT_EQ(kept.getPixel<quint8>(15, 0), i_thread);
            const cImg nothing; // the void record is everybody's
            kept = nothing;
            if (round % 100 == 0)
                cImg::releaseUnusedMemory();
        }
    };
    std::vector<std::thread> workers;
    for (int i = 0; i < threads; ++i)
        workers.emplace_back(work, i, shared);
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(shared.getPixel<quint8>(3, 3), 0);
}
