#include "support/TraceLines.h"
#include "support/images.h"
#include "support/messageOf.h"
#include "support/qtPrinters.h"

#include <QFile>
#include <QVariant>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/resource.h>
#include <tarnbase/c2DPoint.h>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cTransform.h>
#include <tarnimg/cImg.h>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace {

using Rect = cRect<int>;
using Point = c2DPoint<int>;

/** 0, 1, 2, ... row by row. */
cImg counted(unsigned i_width, unsigned i_height)
{
    return generateImage(cImgType::UInt8, i_width, i_height,
        [i_width](unsigned x, unsigned y) { return quint8(y * i_width + x); });
}

/** A transform that counts its objects. */
class CountedTransform : public cTransform {
public:
    explicit CountedTransform(int& io_count) : m_count(io_count) { ++m_count; }
    ~CountedTransform() override { --m_count; }
    c2DPoint<double> map(const c2DPoint<double>& i_pixel) const override { return i_pixel; }
    cTransform* clone() const override { return new CountedTransform(m_count); }

private:
    int& m_count;
};

/** Whether the call ends for want of memory. */
template <class Call> bool isRefused(const Call& i_call)
{
    try {
        i_call();
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

const QString s_refusal = QStringLiteral("std::bad_alloc: while creating cImg");

} // namespace

static_assert(sizeof(cImg) == sizeof(void*));
static_assert(!std::is_polymorphic_v<cImg>);
static_assert(std::is_nothrow_move_constructible_v<cImg> && std::is_nothrow_move_assignable_v<cImg>);

TEST(cImg, ADefaultImageIsTheVoidImage)
{
    const cImg image;
    EXPECT_FALSE(image.isValid());
    EXPECT_EQ(image.getWidth(), 0u);
    EXPECT_EQ(image.getHeight(), 0u);
    EXPECT_EQ(image.getName(), QStringLiteral("Unnamed"));
    EXPECT_EQ(image.getNumFrames(), 0u);
    EXPECT_EQ(image.getFrameIndex(), 0u);
    EXPECT_EQ(image.getImgType().getTypeId(), cImgType::UInt8);
    EXPECT_EQ(image.getNumChannels(), 1u);
    EXPECT_EQ(image.getXPitch(), 0u);
    EXPECT_EQ(image.getYPitch(), 0u);
    EXPECT_EQ(image.getFrameSize(), 0u);
    EXPECT_EQ(image.getConstData(), nullptr);
    EXPECT_EQ(image.getTransform(), nullptr);
    EXPECT_TRUE(image.isCompact());
    EXPECT_FALSE(image.isKindOf(cImgType::UInt8));
}

TEST(cImg, CopiesAndDetachesOfTheVoidImageStayVoid)
{
    cImg image;
    cImg copy(image);
    copy.detach();
    EXPECT_EQ(&copy.getImgType(), &image.getImgType());
    EXPECT_EQ(copy.getData(), nullptr);
    EXPECT_EQ(&image.clone().getImgType(), &image.getImgType());
    EXPECT_EQ(&cImg(image, false, Rect(0, 0, 5, 5)).getImgType(), &image.getImgType());
    for (int i = 0; i < 1000; ++i)
        copy = image; // would free the void record, were it counted
    copy = cImg();
    EXPECT_EQ(copy.getName(), QStringLiteral("Unnamed"));
}

TEST(cImg, SettersOnAVoidImageChangeThatHandleAlone)
{
    cImg image;
    image.setName(QStringLiteral("mine"));
    image.setNumFrames(7);
    image.setRange(3, 4);
    image.setImgAttr(QStringLiteral("key"), new cDataValObj<int>(5));
    EXPECT_EQ(image.getName(), QStringLiteral("mine"));
    EXPECT_EQ(image.getNumFrames(), 7u);
    EXPECT_FALSE(image.isValid());

    const cImg other;
    EXPECT_EQ(other.getName(), QStringLiteral("Unnamed"));
    EXPECT_EQ(other.getNumFrames(), 0u);
    EXPECT_EQ(other.getRange(), cDblRange(0, 255));
    EXPECT_EQ(other.getImgAttributes().getNumEntries(), 0u);

    cImg styled;
    styled.imgType().setGamma(2);
    EXPECT_EQ(cImg().getImgType().getGamma(), 1.0);

    cImg sized;
    sized.resize(3, 2);
    EXPECT_TRUE(sized.isKindOf(cImgType::UInt8));
    EXPECT_EQ(sized.getSize(), QSize(3, 2));
    EXPECT_FALSE(cImg().isValid());
}

TEST(cImg, ANewImageHasTheDefaultsOfItsRecord)
{
    const cImg image(cImgType::UInt16, 5, 3, 2);
    EXPECT_TRUE(image.isValid());
    EXPECT_TRUE(image.isCompact());
    EXPECT_EQ(image.getSize(), QSize(5, 3));
    EXPECT_EQ(image.getRect(), Rect(0, 0, 5, 3));
    EXPECT_EQ(image.getXPitch(), 4u);
    EXPECT_EQ(image.getYPitch(), 20u);
    EXPECT_EQ(image.getFrameSize(), 60u);
    EXPECT_EQ(image.getNumChannels(), 2u);
    EXPECT_EQ(image.getNumFrames(), 1u);
    EXPECT_EQ(image.getFrameIndex(), 0u);
    EXPECT_EQ(image.getName(), QString());
    EXPECT_EQ(image.getTransform(), nullptr);
    EXPECT_EQ(image.getImgAttributes().getNumEntries(), 0u);
}

TEST(cImg, PixelsAreAlignedByTheRuleOfTheirSize)
{
    const auto misaligned = [](cImgType::ImageTypes i_type, unsigned i_channels, std::uintptr_t i_alignment) {
        const cImg image(i_type, 3, 3, i_channels);
        return reinterpret_cast<std::uintptr_t>(image.getConstData()) % i_alignment;
    };
    EXPECT_EQ(misaligned(cImgType::UInt8, 2, 2), 0u);
    EXPECT_EQ(misaligned(cImgType::RGB24, 3, 4), 0u);
    EXPECT_EQ(misaligned(cImgType::RGB32, 4, 8), 0u);
    EXPECT_EQ(misaligned(cImgType::Float64, 1, 128), 0u);
    EXPECT_EQ(misaligned(cImgType::Float32, 4, 32768), 0u);
    EXPECT_EQ(misaligned(cImgType::UInt8, 1, 64), 0u);
    EXPECT_EQ(misaligned(cImgType::Float64, 3, 1u << 23), 0u);
    EXPECT_EQ(misaligned(cImgType::Float64, 4, 1u << 31), 0u);
}

/** Pages of address space that the process has taken. */
long takenPages()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').first().toLong() : 0;
}

TEST(cImg, AGreatAlignmentTakesNoGreatMemory)
{
    const long before = takenPages();
    ASSERT_GT(before, 0);
    std::vector<cImg> images;
    for (int i = 0; i < 100; ++i)
        images.emplace_back(cImgType::Float64, 30, 20, 4); // 19200 bytes at a multiple of 2 GiB
    // 8 pages each, where the alignment alone would be 524288.
    EXPECT_LT(takenPages() - before, 100 * 8 + 4096);
    for (unsigned i = 0; i < 100; ++i)
        images[i].setPixel(29, 19, double(i));
    for (unsigned i = 0; i < 100; ++i)
        EXPECT_EQ(images[i].getPixel<double>(29, 19), double(i));
    images.clear();
    cImg::releaseUnusedMemory();
    EXPECT_LT(takenPages() - before, 4096);
}

TEST(cImg, AnUnknownTypeIsReportedAndNotValid)
{
    TraceLines trace;
    const cImg image(cImgType::ImageTypes(99), 4, 4);
    EXPECT_EQ(trace.take(), QStringList(QStringLiteral("ERROR: could not find image type.")));
    EXPECT_FALSE(image.isValid());
    EXPECT_EQ(image.getConstData(), nullptr);
    EXPECT_EQ(image.getImgType().getTypeId(), cImgType::Invalid);
    EXPECT_EQ(image.getImgType().getName(), QStringLiteral("Invalid"));
    EXPECT_EQ(image.getNumChannels(), 0u);
    EXPECT_EQ(image.getName(), QString()); // not the void image
}

TEST(cImg, TheTypeInvalidIsNotValidInSilence)
{
    TraceLines trace;
    cImg image(cImgType::Invalid, 4, 4);
    EXPECT_FALSE(image.isValid());
    image.setRange(1, 2);
    image.resize(5, 5);
    image.copyFrom(counted(2, 2));
    EXPECT_EQ(image.clone().getWidth(), 5u);
    EXPECT_EQ(cImg(image, false, Rect(1, 1, 2, 2)).getWidth(), 2u);
    EXPECT_EQ(image.getData(), nullptr);
    EXPECT_EQ(image.imgType().getTypeId(), cImgType::Invalid);
    EXPECT_EQ(trace.take(), QStringList());
}

TEST(cImg, AnImageWithoutPixelsIsMadeWithAWarning)
{
    TraceLines trace;
    const cImg image(cImgType::UInt8, 0, 5);
    EXPECT_EQ(trace.take(),
        QStringList(
            QStringLiteral("Warning: cImgBuf allocation with size=0, please check memory allocation.")));
    EXPECT_FALSE(image.isValid());
    EXPECT_EQ(image.clone().getHeight(), 5u);
}

TEST(cImg, SizesBeyond32BitsAreRefusedLikeWantOfMemory)
{
    TraceLines trace;
    constexpr unsigned most = std::numeric_limits<unsigned>::max();
    EXPECT_TRUE(isRefused([] { cImg(cImgType::UInt8, 65536, 65536); }));
    EXPECT_EQ(trace.take(), QStringList(s_refusal));
    EXPECT_TRUE(isRefused([] { cImg(cImgType::Float64, 0x20000000, 1); })); // a row alone is too long
    EXPECT_TRUE(isRefused([] { cImg(cImgType::Float64, 0x20000001, 1); })); // and would wrap to 8 bytes
    EXPECT_TRUE(isRefused([] { cImg(cImgType::Float64, 0x20000000, 0); }));
    EXPECT_TRUE(isRefused([] { cImg(cImgType::Float64, 1, 1, 0x20000001); })); // so would a pixel
    EXPECT_TRUE(isRefused([] { cImg(cImgType::UInt8, most, most, most); }));
    EXPECT_EQ(trace.take().size(), 5);

    cImg image = counted(2, 2);
    EXPECT_TRUE(isRefused([&] { image.resize(65536, 65536); }));
    EXPECT_EQ(trace.take(), QStringList(s_refusal));
    EXPECT_TRUE(samePixels(image, counted(2, 2)));

    unsigned char byte = 0;
    EXPECT_TRUE(isRefused([&] { cImg(cImgType::UInt8, most, 2, 1, 0, &byte, nullptr); }));
    EXPECT_TRUE(isRefused([&] { cImg(cImgType::UInt8, 1, 65536, 1, 65536, &byte, nullptr); }));
    EXPECT_TRUE(isRefused([&] { cImg(cImgType::UInt8, 2, 1, most, 0, &byte, nullptr); }));
    EXPECT_EQ(trace.take(), QStringList({s_refusal, s_refusal, s_refusal}));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(cImg, WantOfMemoryForACopyIsReportedAndLeavesTheImageAlone)
{
    // A source that takes no memory, of which no copy fits into the address space that is left.
    constexpr std::size_t bytes = std::size_t(3) << 30;
    void* reserved = mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(reserved, MAP_FAILED);
    cImg::releaseUnusedMemory();
    {
        cImg image(cImgType::UInt8, 65536, 49152, 1, 0, static_cast<unsigned char*>(reserved), nullptr);
        const cImg second = image;
        rlimit before {};
        ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
        const rlimit tight {rlim_t(takenPages() * sysconf(_SC_PAGESIZE)) + (1 << 30), before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_AS, &tight), 0);
        TraceLines trace;
        EXPECT_TRUE(isRefused([&] { image.clone(); }));
        EXPECT_TRUE(isRefused([&] { image.detach(); }));
        EXPECT_TRUE(isRefused([&] { image.setName(QStringLiteral("new")); }));
        EXPECT_EQ(setrlimit(RLIMIT_AS, &before), 0);
        EXPECT_EQ(trace.take(), QStringList({s_refusal, s_refusal, s_refusal}));
        EXPECT_EQ(image.getConstData(), second.getConstData());
        EXPECT_EQ(image.getName(), QString());
    }
    munmap(reserved, bytes);
}
#endif

TEST(cImg, MemoryFromOutsideIsUsedInPlace)
{
    std::vector<unsigned char> memory(3 * 8);
    cImg image(cImgType::UInt8, 5, 3, 1, 8, memory.data(), nullptr);
    EXPECT_EQ(image.getConstData(), memory.data());
    EXPECT_EQ(image.getYPitch(), 8u);
    EXPECT_EQ(image.getFrameSize(), 24u);
    image.setPixel<quint8>(4, 2, 9);
    EXPECT_EQ(memory[2 * 8 + 4], 9);

    const cImg shared = image;
    image.setPixel<quint8>(4, 2, 1); // shared, so it is copied first
    EXPECT_EQ(memory[2 * 8 + 4], 9);
    EXPECT_EQ(image.getYPitch(), 5u);
    EXPECT_TRUE(image.isValid() && shared.isValid());
}

TEST(cImg, PitchesOfMemoryFromOutsideAreRaised)
{
    std::vector<unsigned char> memory(64);
    const cImg grey(cImgType::UInt8, 6, 2, 0, 3, memory.data(), nullptr);
    EXPECT_EQ(grey.getXPitch(), 1u);
    EXPECT_EQ(grey.getYPitch(), 6u);
    const cImg gaps(cImgType::UInt8, 6, 2, 3, 0, memory.data(), nullptr);
    EXPECT_EQ(gaps.getXPitch(), 3u);
    EXPECT_EQ(gaps.getYPitch(), 18u);
    const cImg colour(cImgType::RGB24, 6, 2, 1, 0, memory.data(), nullptr); // pixels never overlap
    EXPECT_EQ(colour.getXPitch(), 3u);
    EXPECT_EQ(colour.getYPitch(), 18u);
}

TEST(cImg, MemoryFromOutsideIsFreedByItsDeleterAlone)
{
    int freed = 0;
    auto memory = std::make_unique<unsigned char[]>(12);
    const auto deleter = [&](void* i_memory) {
        EXPECT_EQ(i_memory, memory.get());
        ++freed;
    };
    {
        const cImg image(cImgType::UInt8, 4, 3, 1, 4, memory.get(), deleter);
        const cImg view(image, false, Rect(1, 1, 2, 2));
    }
    EXPECT_EQ(freed, 1);
    {
        const cImg image(cImgType::UInt8, 4, 3, 1, 4, memory.get(), nullptr);
    }
    EXPECT_NE(cImg(cImgType::UInt8, 4, 3).getConstData(), memory.get()); // neither was kept for reuse
}

TEST(cImg, MemoryFromOutsideMustBeThereAndOfAKnownType)
{
    unsigned char byte = 0;
    EXPECT_EQ(messageOf([] { cImg(cImgType::UInt8, 1, 1, 1, 1, nullptr, nullptr); }),
        "An image must not have an empty image buffer!");
    EXPECT_EQ(messageOf([&] { cImg(cImgType::ImageTypes(99), 1, 1, 1, 1, &byte, nullptr); }),
        "Could not find image type.");
    EXPECT_EQ(messageOf([&] { cImg(cImgType::ImageTypes(99), 1, 1, 1, 1, nullptr, nullptr); }),
        "An image must not have an empty image buffer!");
}

TEST(cImg, MovingLeavesTheVoidImageAndMoveAssignmentSwaps)
{
    cImg image = counted(3, 2);
    cImg moved(std::move(image));
    EXPECT_TRUE(samePixels(moved, counted(3, 2)));
    EXPECT_EQ(image.getName(), QStringLiteral("Unnamed"));
    image = std::move(moved);
    EXPECT_TRUE(samePixels(image, counted(3, 2)));
    EXPECT_FALSE(moved.isValid());
    const cImg& self = image;
    image = self;
    EXPECT_TRUE(samePixels(image, counted(3, 2)));
}

TEST(cImg, WritingThroughASecondHandleCopiesFirst)
{
    cImg image = counted(4, 4);
    cImg second = image;
    EXPECT_EQ(second.getConstData(), image.getConstData());
    second.pixel<quint8>(1, 1) = 200;
    EXPECT_TRUE(samePixels(image, counted(4, 4)));
    EXPECT_EQ(second.getPixel<quint8>(1, 1), 200);
    EXPECT_EQ(second.getRow<quint8>(1)[1], 200);

    const unsigned char* alone = image.getConstData();
    image.row<quint8>(0)[0] = 7;
    EXPECT_EQ(image.getConstData(), alone); // nobody shares it any more
}

TEST(cImg, CopiesShareTheDescriptorEvenAfterDetach)
{
    cImg image = counted(4, 4);
    cImg copy = image;
    cImg view(image, false, Rect(0, 0, 2, 2));
    cImg deep = image.clone();
    copy.setRange(10, 20);
    EXPECT_EQ(image.getRange(), cDblRange(10, 20));
    EXPECT_EQ(view.getRange(), cDblRange(10, 20));
    EXPECT_EQ(deep.getRange(), cDblRange(10, 20));
    EXPECT_EQ(&copy.getImgType(), &image.getImgType());

    deep.setImgType(cImgType::UInt8); // a descriptor of its own
    deep.setRange(1, 2);
    EXPECT_EQ(image.getRange(), cDblRange(10, 20));
}

TEST(cImg, ASubImageIsAViewIntoItsParent)
{
    cImg parent = counted(8, 6);
    cImg view(parent, false, Rect(2, 1, 3, 4));
    EXPECT_FALSE(view.isCompact());
    EXPECT_EQ(view.getSize(), QSize(3, 4));
    EXPECT_EQ(view.getYPitch(), 8u);
    EXPECT_EQ(view.getFrameSize(), 48u);
    EXPECT_EQ(view.getBufferOffset(), 10u);
    EXPECT_EQ(view.getConstData(), parent.getConstData() + 10);
    EXPECT_EQ(view.getPixel<quint8>(0, 0), 10);

    view.setPixel<quint8>(0, 0, 99);
    EXPECT_EQ(parent.getPixel<quint8>(2, 1), 99);
    parent.setPixel<quint8>(3, 1, 98);
    EXPECT_EQ(view.getPixel<quint8>(1, 0), 98);

    const cImg nested(view, false, Rect(1, 1, 9, 9));
    EXPECT_EQ(nested.getSize(), QSize(2, 3));
    EXPECT_EQ(nested.getPixel<quint8>(0, 0), 2 * 8 + 3);
}

TEST(cImg, ASubImageIsCutToItsParent)
{
    const cImg parent = counted(8, 6);
    const cImg corner(parent, false, Rect(-2, -3, 5, 5));
    EXPECT_EQ(corner.getSize(), QSize(3, 2));
    EXPECT_EQ(corner.getPixel<quint8>(0, 0), 0);
    constexpr int most = std::numeric_limits<int>::max();
    EXPECT_EQ(cImg(parent, false, Rect(6, 5, most, most)).getSize(), QSize(2, 1));
    EXPECT_EQ(cImg(parent, true, Rect(-most, -most, most, most)).getSize(), QSize(0, 0));

    for (const Rect outside : {Rect(8, 0, 2, 2), Rect(0, 6, 2, 2), Rect(-5, 0, 5, 2), Rect(100, 100, 1, 1)}) {
        const cImg view(parent, false, outside);
        EXPECT_EQ(view.getSize(), QSize(0, 0));
        EXPECT_FALSE(view.isValid());
        EXPECT_FALSE(view.clone().isValid()); // a deep copy of nothing
        EXPECT_FALSE(cImg(parent, true, outside).isValid());
    }
}

TEST(cImg, AnEmptyRectangleMeansTheWholeImage)
{
    const cImg parent = counted(8, 6);
    const cImg copy(parent, false, Rect());
    EXPECT_TRUE(copy.isCompact());
    EXPECT_EQ(copy.getConstData(), parent.getConstData());
    const cImg view(parent, false, Rect(3, 3, 0, 2)); // a record of its own for the same pixels
    EXPECT_TRUE(view.isCompact());
    EXPECT_EQ(view.getConstData(), parent.getConstData());
    EXPECT_TRUE(samePixels(cImg(parent, true, Rect(3, 3, 0, 2)), parent));

    cImg sameRecord = copy;
    sameRecord.setPixel<quint8>(0, 0, 77); // shares the record, so it is copied first
    EXPECT_EQ(parent.getPixel<quint8>(0, 0), 0);
    cImg ownRecord(parent, false, Rect(3, 3, 0, 2));
    ownRecord.setPixel<quint8>(0, 0, 77);
    EXPECT_EQ(parent.getPixel<quint8>(0, 0), 77);
}

TEST(cImg, ADeepCopyIsCompactMemoryOfTheViewsSize)
{
    const cImg parent = counted(8, 6);
    const cImg part(parent, true, Rect(2, 1, 3, 4));
    EXPECT_TRUE(part.isCompact());
    EXPECT_EQ(part.getYPitch(), 3u);
    EXPECT_EQ(part.getBufferOffset(), 0u);
    const cImg expected = generateImage(
        cImgType::UInt8, 3, 4, [](unsigned x, unsigned y) { return quint8((y + 1) * 8 + x + 2); });
    EXPECT_TRUE(samePixels(part, expected));

    const cImg view(parent, false, Rect(2, 1, 3, 4));
    const cImg clone = view.clone();
    EXPECT_TRUE(samePixels(clone, expected));
    EXPECT_EQ(clone.getYPitch(), 3u);
    EXPECT_FALSE(clone.isCompact()); // the mark of the view is inherited
    EXPECT_FALSE(cImg(view, true, Rect(0, 0, 2, 2)).isCompact()); // also by a part of it

    cImg detached = view;
    cImg second = detached;
    detached.setPixel<quint8>(0, 0, 255);
    EXPECT_EQ(parent.getPixel<quint8>(2, 1), 10);
    EXPECT_TRUE(samePixels(second, expected));
}

TEST(cImg, ACloneHasEverythingThatTheImageHas)
{
    int transforms = 0;
    {
        cImg image = counted(4, 3);
        image.setName(QStringLiteral("frame"));
        image.setNumFrames(9);
        image.setFrameIndex(4);
        image.setTransform(new CountedTransform(transforms));
        image.setImgAttr(QStringLiteral("key"), new cDataValObj<int>(5));
        const cImg clone = image.clone();
        EXPECT_EQ(clone.getName(), QStringLiteral("frame"));
        EXPECT_EQ(clone.getNumFrames(), 9u);
        EXPECT_EQ(clone.getFrameIndex(), 4u);
        EXPECT_NE(clone.getTransform(), nullptr);
        EXPECT_NE(clone.getTransform(), image.getTransform());
        EXPECT_EQ(transforms, 2);
        EXPECT_TRUE(samePixels(clone, image));

        int value = 0;
        EXPECT_TRUE(clone.getImgAttr(QStringLiteral("key"))->getValue(value));
        EXPECT_EQ(value, 5);
        image.getImgAttr(QStringLiteral("key"))->setValue(6);
        EXPECT_TRUE(clone.getImgAttr(QStringLiteral("key"))->getValue(value));
        EXPECT_EQ(value, 5);
    }
    EXPECT_EQ(transforms, 0);
}

TEST(cImg, ACloneWithoutPixelsHasAllButThose)
{
    cImg::releaseUnusedMemory();
    cImg image = counted(40, 30);
    image.setName(QStringLiteral("frame"));
    const cImg view(image, false, Rect(2, 1, 3, 4));
    EXPECT_EQ(image.cloneWithoutPixels().getName(), QStringLiteral("frame"));
    EXPECT_NE(image.cloneWithoutPixels().getConstData(), image.getConstData());
    EXPECT_EQ(view.cloneWithoutPixels().getSize(), QSize(3, 4));
    EXPECT_EQ(view.cloneWithoutPixels().getYPitch(), 3u);
    EXPECT_EQ(cImg().cloneWithoutPixels().getName(), QStringLiteral("Unnamed"));
    EXPECT_TRUE(samePixels(image, counted(40, 30)));
}

TEST(cImg, AnImageOwnsItsTransform)
{
    int transforms = 0;
    {
        cImg image = counted(2, 2);
        auto* first = new CountedTransform(transforms);
        image.setTransform(first);
        image.setTransform(first);
        EXPECT_EQ(transforms, 1);
        image.setTransform(new CountedTransform(transforms));
        EXPECT_EQ(transforms, 1);

        cImg copy = image;
        copy.setTransform(image.getTransform()); // must not end with two owners
        copy.setName(QStringLiteral("apart"));
        EXPECT_EQ(transforms, 2);
        copy.setTransform(nullptr);
        EXPECT_EQ(transforms, 1);
    }
    EXPECT_EQ(transforms, 0);
}

TEST(cImg, SettersLeaveTheOtherHandlesAlone)
{
    cImg image = counted(2, 2);
    const cImg before = image;
    image.setName(QStringLiteral("new"));
    EXPECT_EQ(before.getName(), QString());
    EXPECT_EQ(image.getName(), QStringLiteral("new"));
    EXPECT_NE(before.getConstData(), image.getConstData());
    EXPECT_TRUE(samePixels(image, before));
}

TEST(cImg, AnAttributeThatMayBeWrittenIsTheHandlesOwn)
{
    cImg image = counted(2, 2);
    image.setImgAttr(QStringLiteral("key"), new cDataValObj<int>(5));
    const cImg before = image;
    image.getImgAttr(QStringLiteral("key"))->setValue(6);
    int value = 0;
    EXPECT_TRUE(before.getImgAttr(QStringLiteral("key"))->getValue(value));
    EXPECT_EQ(value, 5);
    EXPECT_TRUE(std::as_const(image).getImgAttr(QStringLiteral("key"))->getValue(value));
    EXPECT_EQ(value, 6);
}

TEST(cImg, AMissingAttributeIsTheVoidObject)
{
    cImg image = counted(1, 1);
    EXPECT_TRUE(image.getImgAttr(QStringLiteral("none"))->isVoid());
    EXPECT_TRUE(std::as_const(image).getImgAttr(QStringLiteral("none"))->isVoid());
    EXPECT_TRUE(cImg().getImgAttr(QStringLiteral("none"))->isVoid());
}

TEST(cImg, ARangeIsPutInOrderAndLimited)
{
    cImg image = counted(1, 1);
    image.setRange(200, 100);
    EXPECT_EQ(image.getRange(), cDblRange(100, 200));
    image.setRange(cDblRange(-5, 300));
    EXPECT_EQ(image.getRange(), cDblRange(0, 255));
}

TEST(cImg, CopyImgAttrMergesAttributesAndTakesNameAndFrames)
{
    cImg source = counted(2, 2);
    source.setName(QStringLiteral("source"));
    source.setNumFrames(3);
    source.setFrameIndex(2);
    source.setRange(1, 2);
    source.setImgAttr(QStringLiteral("a"), new cDataValObj<int>(1));
    cImg image(cImgType::Float32, 2, 2);
    image.setImgAttr(QStringLiteral("b"), new cDataValObj<int>(2));
    image.copyImgAttr(source);
    EXPECT_EQ(image.getName(), QStringLiteral("source"));
    EXPECT_EQ(image.getNumFrames(), 3u);
    EXPECT_EQ(image.getFrameIndex(), 2u);
    EXPECT_EQ(image.getRange(), cDblRange(-1, 1));
    EXPECT_EQ(image.getImgAttributes().getNumEntries(), 2u);
    EXPECT_EQ(source.getImgAttributes().getNumEntries(), 1u);
    image.copyImgAttr(image);
    EXPECT_EQ(image.getImgAttributes().getNumEntries(), 2u);
}

TEST(cImg, ResizeGivesNewPixelsAndLeavesViewsTheOldOnes)
{
    cImg image = counted(8, 6);
    const unsigned char* before = image.getConstData();
    image.resize(8, 6);
    EXPECT_EQ(image.getConstData(), before);

    const cImg view(image, false, Rect(2, 1, 3, 4));
    image.resize(16, 2);
    EXPECT_EQ(image.getSize(), QSize(16, 2));
    EXPECT_EQ(image.getYPitch(), 16u);
    EXPECT_NE(image.getConstData(), view.getConstData() - 10);
    EXPECT_EQ(view.getPixel<quint8>(0, 0), 10);

    image.resize(16, 3);
    EXPECT_EQ(image.getHeight(), 3u);
    EXPECT_EQ(image.getFrameSize(), 48u);
    image.resize(5, 3);
    EXPECT_EQ(image.getYPitch(), 5u);

    cImg shared(view);
    cImg alone(image, false, Rect(3, 1, 2, 1));
    for (cImg* part : {&shared, &alone}) {
        part->resize(5, 5);
        EXPECT_TRUE(part->isCompact());
        EXPECT_EQ(part->getBufferOffset(), 0u);
    }
}

TEST(cImg, ResizeLetsGoOfMemoryFromOutside)
{
    int freed = 0;
    unsigned char memory[4] = {};
    cImg image(cImgType::UInt8, 2, 2, 1, 2, memory, [&](void*) { ++freed; });
    image.resize(3, 3);
    EXPECT_EQ(freed, 1);
    EXPECT_TRUE(image.isValid());
}

TEST(cImg, SetImgTypeOfTheSameTypeRefreshesTheDescriptor)
{
    cImg image(cImgType::UInt8, 3, 3, 2);
    image.setName(QStringLiteral("kept"));
    image.setRange(5, 6);
    const unsigned char* pixels = image.getConstData();
    image.setImgType(cImgType::UInt8);
    EXPECT_EQ(image.getRange(), cDblRange(0, 255));
    EXPECT_EQ(image.getNumChannels(), 2u);
    EXPECT_EQ(image.getConstData(), pixels);
    EXPECT_EQ(image.getName(), QStringLiteral("kept"));
}

TEST(cImg, SetImgTypeOfAnotherTypeReplacesTheRecord)
{
    cImg image(cImgType::UInt8, 3, 2, 2);
    image.setName(QStringLiteral("lost"));
    const cImg other = image;
    image.setImgType(cImgType::Float32);
    EXPECT_TRUE(image.isKindOf(cImgType::Float32));
    EXPECT_EQ(image.getSize(), QSize(3, 2));
    EXPECT_EQ(image.getNumChannels(), 1u);
    EXPECT_EQ(image.getName(), QString());
    EXPECT_TRUE(other.isKindOf(cImgType::UInt8));

    cImg nothing;
    nothing.setImgType(cImgType::UInt8);
    EXPECT_FALSE(nothing.isValid());
    EXPECT_EQ(nothing.getName(), QString());
}

TEST(cImg, TheBufferOffsetMovesAViewWithinItsBuffer)
{
    TraceLines trace;
    const cImg parent = counted(8, 6);
    cImg view(parent, false, Rect(2, 1, 3, 4));
    view.setBufferOffset(0);
    EXPECT_EQ(view.getPixel<quint8>(0, 0), 0);
    view.setBufferOffset(2 * 8 + 5);
    EXPECT_EQ(view.getPixel<quint8>(2, 3), 5 * 8 + 7); // the last byte of the buffer
    EXPECT_EQ(trace.take(), QStringList());

    view.setBufferOffset(2 * 8 + 6);
    EXPECT_EQ(view.getBufferOffset(), 2 * 8 + 5u);
    view.setBufferOffset(std::numeric_limits<unsigned>::max());
    EXPECT_EQ(view.getBufferOffset(), 2 * 8 + 5u);
    EXPECT_EQ(trace.take().size(), 2);

    cImg nothing;
    nothing.setBufferOffset(1);
    EXPECT_EQ(nothing.getBufferOffset(), 0u);
}

TEST(cImg, StructuresAreComparedWithoutTheTypes)
{
    const cImg grey(cImgType::UInt8, 4, 3);
    EXPECT_TRUE(cImg().isStructOf(cImg()));
    EXPECT_FALSE(cImg().isStructOf(grey));
    EXPECT_FALSE(grey.isStructOf(cImg()));
    EXPECT_TRUE(grey.isStructOf(cImg(cImgType::SInt8, 4, 3)));
    EXPECT_FALSE(grey.isStructOf(cImg(cImgType::UInt16, 4, 3)));
    EXPECT_FALSE(grey.isStructOf(cImg(cImgType::UInt8, 3, 4)));
    EXPECT_FALSE(grey.isStructOf(cImg(cImg(cImgType::UInt8, 8, 3), false, Rect(0, 0, 4, 3)))); // the pitch
    unsigned char memory[3 * 8] = {};
    const cImg packed(cImgType::UInt8, 4, 3, 1, 8, memory, nullptr);
    EXPECT_FALSE(packed.isStructOf(cImg(cImgType::UInt8, 4, 3, 2, 8, memory, nullptr)));
    EXPECT_TRUE(packed.isStructOf(cImg(cImgType::SInt8, 4, 3, 1, 8, memory, nullptr)));
}

TEST(cImg, ImagesAreEqualIfTypeStructureAndBytesAre)
{
    const cImg image = counted(4, 3);
    EXPECT_TRUE(image == counted(4, 3));
    EXPECT_TRUE(image == image.clone());
    EXPECT_FALSE(cImg() == cImg());
    EXPECT_FALSE(image == cImg());
    EXPECT_FALSE(cImg() == image);
    EXPECT_FALSE(image == counted(3, 4));
    cImg other = counted(4, 3);
    other.setPixel<quint8>(3, 2, 0);
    EXPECT_TRUE(image != other);
    const cImg floats = makeImage<float>(cImgType::Float32, {{1.0f}});
    EXPECT_FALSE(floats == makeImage<quint32>(cImgType::UInt32, {{0x3f800000u}}));
}

TEST(cImg, ComparingViewsComparesTheMemoryBehindThemButNothingBehindTheBuffers)
{
    cImg a = counted(8, 6);
    cImg b = counted(8, 6);
    const cImg viewOfA(a, false, Rect(2, 1, 3, 4));
    const cImg viewOfB(b, false, Rect(2, 1, 3, 4));
    EXPECT_TRUE(viewOfA == viewOfB);
    b.setPixel<quint8>(7, 5, 0); // below and right of the view, the last byte of the buffer
    EXPECT_FALSE(viewOfA == viewOfB);
    b.setPixel<quint8>(7, 5, a.getPixel<quint8>(7, 5));
    b.setPixel<quint8>(1, 1, 255); // before the first pixel of the view
    EXPECT_TRUE(viewOfA == viewOfB);

    const cImg constant = generateImage(cImgType::UInt8, 8, 6, [](unsigned, unsigned) { return quint8(1); });
    EXPECT_TRUE(cImg(constant, false, Rect(5, 2, 3, 4)) == cImg(constant, false, Rect(0, 0, 3, 4)));
}

TEST(cImg, CheckTypesLooksAtTheTypeAlone)
{
    EXPECT_TRUE(cImg().checkTypes({}));
    EXPECT_TRUE(cImg().checkTypes({cImgType::RGB24, cImgType::UInt8}));
    EXPECT_FALSE(cImg(cImgType::UInt16, 1, 1).checkTypes({cImgType::RGB24, cImgType::UInt8}));
    EXPECT_TRUE(cImg(cImgType::Invalid, 1, 1).checkTypes({cImgType::Invalid}));
}

TEST(cImg, CopyFromCopiesTheOverlap)
{
    cImg small = generateImage(cImgType::UInt8, 3, 2, [](unsigned, unsigned) { return quint8(0); });
    small.copyFrom(counted(8, 6));
    EXPECT_TRUE(samePixels(small, makeImage<quint8>(cImgType::UInt8, {{0, 1, 2}, {8, 9, 10}})));

    small.copyFrom(counted(8, 6), Rect(6, 5, 9, 9), Point(1, 1));
    EXPECT_TRUE(samePixels(small, makeImage<quint8>(cImgType::UInt8, {{0, 1, 2}, {8, 46, 47}})));

    // A destination left of the image cuts the right end of the copy, not its start.
    small.copyFrom(counted(8, 6), Point(-1, 0));
    EXPECT_TRUE(samePixels(small, makeImage<quint8>(cImgType::UInt8, {{0, 1, 2}, {8, 9, 47}})));

    const cImg before = small.clone();
    constexpr int least = std::numeric_limits<int>::min();
    for (const Point outside : {Point(3, 0), Point(0, 2), Point(-3, 0), Point(least, least)})
        small.copyFrom(counted(8, 6), outside);
    small.copyFrom(counted(8, 6), Rect(8, 0, 1, 1), Point());
    small.copyFrom(counted(8, 6), Rect(2, 2, 0, 0), Point());
    EXPECT_TRUE(samePixels(small, before));
}

TEST(cImg, CopyFromIgnoresOtherTypesAndInvalidImages)
{
    TraceLines trace;
    cImg image = counted(3, 2);
    image.copyFrom(cImg());
    image.copyFrom(makeRandomImage(cImgType::SInt8, 3, 2));
    cImg nothing;
    nothing.copyFrom(counted(3, 2));
    EXPECT_TRUE(samePixels(image, counted(3, 2)));
    EXPECT_FALSE(nothing.isValid());
    EXPECT_EQ(trace.take(), QStringList());
}

TEST(cImg, CopyFromDetachesTheDestination)
{
    cImg image = counted(3, 2);
    const cImg before = image;
    image.copyFrom(makeImage<quint8>(cImgType::UInt8, {{77}}));
    EXPECT_EQ(image.getPixel<quint8>(0, 0), 77);
    EXPECT_EQ(before.getPixel<quint8>(0, 0), 0);
}

TEST(cImg, CopyFromCopiesBytesByThePixelSizeOfTheDestination)
{
    const cImg three = makeImage<quint8>(cImgType::UInt8, {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}}, 3);
    cImg one = makeImage<quint8>(cImgType::UInt8, {{0, 0}, {0, 0}});
    one.copyFrom(three);
    EXPECT_TRUE(samePixels(one, makeImage<quint8>(cImgType::UInt8, {{1, 2}, {7, 8}})));

    // The other way round a row takes bytes of the next one, and the last row ends where the source ends.
    cImg wide = makeImage<quint8>(cImgType::UInt8, {{0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0}}, 3);
    wide.copyFrom(makeImage<quint8>(cImgType::UInt8, {{1, 2}, {3, 4}}));
    EXPECT_TRUE(
        samePixels(wide, makeImage<quint8>(cImgType::UInt8, {{1, 2, 3, 4, 0, 0}, {3, 4, 0, 0, 0, 0}}, 3)));
}

TEST(cImg, CopyFromMovesPixelsWithinTheirOwnMemory)
{
    const cImg original = counted(5, 5);
    for (const Point shift : {Point(1, 0), Point(0, 1), Point(1, 1), Point(2, 1)}) {
        const Rect part(0, 0, 5 - shift.getX(), 5 - shift.getY());
        const Rect moved(shift.getX(), shift.getY(), part.getWidth(), part.getHeight());
        cImg image = original.clone();
        cImg(image, false, moved).copyFrom(cImg(image, false, part));
        EXPECT_TRUE(samePixels(cImg(image, false, moved), cImg(original, false, part)));
        image = original.clone();
        cImg(image, false, part).copyFrom(cImg(image, false, moved));
        EXPECT_TRUE(samePixels(cImg(image, false, part), cImg(original, false, moved)));
    }
    cImg image = original.clone();
    image.copyFrom(image, Rect(0, 0, 4, 4), Point(1, 1));
    EXPECT_TRUE(samePixels(cImg(image, false, Rect(1, 1, 4, 4)), cImg(original, false, Rect(0, 0, 4, 4))));
}

TEST(cImg, GapsBetweenPixelsAreNoPixels)
{
    unsigned char memory[] = {1, 99, 2, 99, 3, 99, 99, 4, 99, 5, 99, 6, 99, 99};
    const cImg image(cImgType::UInt8, 3, 2, 2, 7, memory, nullptr);
    const cImg expected = makeImage<quint8>(cImgType::UInt8, {{1, 2, 3}, {4, 5, 6}});
    EXPECT_TRUE(samePixels(image, expected));
    EXPECT_TRUE(samePixels(image.clone(), expected));
    EXPECT_EQ(image.clone().getXPitch(), 1u);
    EXPECT_TRUE(
        samePixels(cImg(image, true, Rect(1, 1, 2, 1)), makeImage<quint8>(cImgType::UInt8, {{5, 6}})));
    cImg packed(cImgType::UInt8, 3, 2);
    packed.copyFrom(image);
    EXPECT_TRUE(samePixels(packed, expected));

    unsigned char threes[] = {1, 2, 3, 99, 4, 5, 6, 99};
    cImg first(cImgType::UInt8, 2, 1);
    first.copyFrom(cImg(cImgType::UInt8, 2, 1, 4, 8, threes, nullptr, 3));
    EXPECT_TRUE(samePixels(first, makeImage<quint8>(cImgType::UInt8, {{1, 4}})));

    cImg target(cImgType::UInt8, 3, 2, 2, 7, memory, nullptr);
    target.copyFrom(makeImage<quint8>(cImgType::UInt8, {{11, 12}}), Point(1, 0));
    EXPECT_EQ(memory[2], 11);
    EXPECT_EQ(memory[3], 99);
    EXPECT_EQ(memory[4], 12);
}

TEST(cImg, AnyAlignmentOfMemoryFromOutsideWillDo)
{
    unsigned char memory[1 + 2 * 3 * 8] = {};
    cImg image(cImgType::Float64, 3, 2, 8, 24, memory + 1, nullptr);
    image.setPixel(2, 1, 2.5);
    EXPECT_EQ(image.getPixel<double>(2, 1), 2.5);
    EXPECT_EQ(image.clone().getPixel<double>(2, 1), 2.5);
}

TEST(cImg, ImagesTravelInVariants)
{
    EXPECT_NE(QMetaType::type("cImg"), int(QMetaType::UnknownType));
    EXPECT_NE(QMetaType::type("cDblRange"), int(QMetaType::UnknownType));
    const cImg image = counted(3, 2);
    const QVariant variant = QVariant::fromValue(image);
    EXPECT_EQ(variant.value<cImg>().getConstData(), image.getConstData());
}
