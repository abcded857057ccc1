#include <customipp/customipp.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

extern "C" int sumFromC(int left, int right);

TEST(core, EveryStatusHasItsText)
{
#define CUSTOMIPP_STATUS(value, name, text)                                                                  \
    EXPECT_EQ(name, value);                                                                                  \
    EXPECT_STREQ(ippGetStatusString(name), text);
#include <customipp/status.def>
#undef CUSTOMIPP_STATUS
    EXPECT_STREQ(ippGetStatusString(ippStsNullPtrErr), "Null Pointer Error");
    EXPECT_STREQ(ippGetStatusString(ippStsNoErr), "No errors");
}

TEST(core, UnknownStatusHasTheTextForUnknown)
{
    const std::string unknown = ippGetStatusString(ippStsUnknownStatusCodeErr);
    EXPECT_EQ(unknown, "Unknown status code");
    for (const int code : {-10000, -50, 10, 49, 12345})
        EXPECT_EQ(ippGetStatusString(IppStatus(code)), unknown) << code;
}

TEST(core, MemoryIsAlignedAndWritable)
{
    for (int length = 0; length <= 4096; ++length) {
        void* block = ippMalloc(length);
        Ipp8u* bytes = ippsMalloc_8u(length);
        ASSERT_NE(block, nullptr);
        ASSERT_NE(bytes, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 64, 0u);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(bytes) % 64, 0u);
        // A vector of 64 bytes that begins inside the block stays inside.
        const size_t rounded = (size_t(length) + 63) / 64 * 64;
        std::memset(block, 1, rounded);
        std::memset(bytes, 2, rounded);
        // Either release takes the blocks of both.
        ippsFree(block);
        ippFree(bytes);
    }
}

TEST(core, NegativeLengthGivesNoMemoryAndNullIsReleased)
{
    EXPECT_EQ(ippMalloc(-1), nullptr);
    EXPECT_EQ(ippsMalloc_8u(-1), nullptr);
    ippFree(nullptr);
    ippsFree(nullptr);
}

TEST(core, CCodeCallsTheLibrary)
{
    EXPECT_EQ(sumFromC(200, 50), 250);
    EXPECT_EQ(sumFromC(200, 100), 255);
}
