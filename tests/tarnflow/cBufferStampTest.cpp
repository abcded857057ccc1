#include <tarnflow/cBufferStamp.h>

#include <gtest/gtest.h>
#include <limits>

TEST(cBufferStamp, TheDefaultIsTheSmallestNumberAndInvalid)
{
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    EXPECT_EQ(cBufferStamp().getStamp(), least);
    EXPECT_TRUE(cBufferStamp() == cBufferStamp(least));
    EXPECT_FALSE(cBufferStamp(least).isValid());
    EXPECT_TRUE(cBufferStamp(least + 1).isValid());
    EXPECT_TRUE(cBufferStamp(0).isValid());
}

TEST(cBufferStamp, IsOrderedByItsFirstFieldAlone)
{
    const cBufferStamp early(5, 900), late(7, 100);
    EXPECT_TRUE(early < late && early <= late && early != late);
    EXPECT_FALSE(early >= late || early == late || late < early || late <= early);
    EXPECT_TRUE(late >= early);
    const cBufferStamp same(5, 1);
    EXPECT_TRUE(early == same && early <= same && early >= same);
    EXPECT_FALSE(early != same || early < same);
    EXPECT_TRUE(cBufferStamp() < cBufferStamp(-1000));
}

TEST(cBufferStamp, DifferencesAreThoseOfBothFields)
{
    const cBufferStamp difference = cBufferStamp(20, 1500) - cBufferStamp(5, 2000);
    EXPECT_EQ(difference.getStamp(), 15);
    EXPECT_EQ(difference.getTime(), -500);
    const cBufferStamp moved = cBufferStamp(5, 2000).movedBy(difference);
    EXPECT_EQ(moved.getStamp(), 20);
    EXPECT_EQ(moved.getTime(), 1500);
    // Beyond the numbers it goes on at their other end.
    EXPECT_EQ((cBufferStamp(1) - cBufferStamp()).getStamp(), std::numeric_limits<qint64>::min() + 1);
}
