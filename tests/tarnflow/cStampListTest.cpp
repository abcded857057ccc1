#include <tarnflow/cStampList.h>

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {
constexpr qint64 marker = cBufferStamp::s_invalid;

cStampList listOf(const std::vector<qint64>& i_stamps)
{
    cStampList list;
    for (qint64 stamp : i_stamps)
        list.insert(stamp);
    return list;
}

std::vector<qint64> valuesOf(const cStampList& i_list)
{
    std::vector<qint64> values;
    for (int i = 0; i < i_list.getCount(); ++i)
        values.push_back(i_list[i].getStamp());
    return values;
}

using Values = std::vector<qint64>;
} // namespace

TEST(cStampListTest, StampsInOrderAreAppended)
{
    EXPECT_EQ(valuesOf(listOf({1, 2, 2, 7})), (Values {1, 2, 2, 7}));
}

TEST(cStampListTest, ALateStampGoesInFrontOfTheLastEntryThatIsNotLater)
{
    EXPECT_EQ(valuesOf(listOf({5, 10, 30, 20})), (Values {5, 20, 10, 30}));
    EXPECT_EQ(valuesOf(listOf({5, 10, 30, 10})), (Values {5, 10, 10, 30}));
    EXPECT_EQ(valuesOf(listOf({5, 10, 30, 40, 35})), (Values {5, 10, 35, 30, 40}));
}

TEST(cStampListTest, TheFrontIsNeverComparedWithALateStamp)
{
    EXPECT_EQ(valuesOf(listOf({10, 30, 20})), (Values {20, 10, 30}));
    EXPECT_EQ(valuesOf(listOf({30, 20})), (Values {20, 30}));
    EXPECT_EQ(valuesOf(listOf({10, 30, 5})), (Values {5, 10, 30}));
}

TEST(cStampListTest, StampsAreUsedUpFromTheFrontOnly)
{
    cStampList list = listOf({10, 30, 20});
    list.removeUpTo(15);
    EXPECT_EQ(valuesOf(list), (Values {20, 10, 30}));
    list.removeUpTo(20);
    EXPECT_EQ(valuesOf(list), (Values {30}));
    list.removeUpTo(30);
    EXPECT_TRUE(list.isEmpty());
}

TEST(cStampListTest, MarkersAreFoundAndRemovedWhereverTheyStand)
{
    cStampList list = listOf({marker, 5, 3});
    EXPECT_EQ(valuesOf(list), (Values {3, marker, 5}));
    EXPECT_TRUE(list.hasMarker());
    list.removeUpTo(marker);
    EXPECT_TRUE(list.hasMarker());
    list.removeMarkers();
    EXPECT_FALSE(list.hasMarker());
    EXPECT_EQ(valuesOf(list), (Values {3, 5}));
    list.insert(marker);
    EXPECT_EQ(valuesOf(list), (Values {marker, 3, 5}));
    list.removeUpTo(marker);
    EXPECT_FALSE(list.hasMarker());
}

TEST(cStampListTest, TheTimeOfAStampTravelsAlong)
{
    cStampList list;
    list.insert({7, 70});
    list.insert({5, 50});
    EXPECT_EQ(list.getFirst().getTime(), 50);
    EXPECT_EQ(list.getLast().getTime(), 70);
}

TEST(cStampListTest, LongListsEqualAPlainOneAfterEveryStep)
{
    std::mt19937 random(7);
    cStampList list;
    Values plain;
    for (int step = 0; step < 20000; ++step) {
        const int what = int(random() % 8);
        const qint64 stamp = random() % 50 == 0 ? marker : step / 4 + qint64(random() % 9) - 6;
        if (what < 5) {
            list.insert(stamp);
            std::size_t place = plain.size();
            if (!plain.empty() && plain.back() > stamp) {
                place = plain.size() - 1;
                while (place > 0 && plain[place] > stamp)
                    --place;
            }
            plain.insert(plain.begin() + std::ptrdiff_t(place), stamp);
        } else if (what < 7) {
            list.removeUpTo(stamp);
            while (!plain.empty() && plain.front() <= stamp)
                plain.erase(plain.begin());
        } else if (random() % 4 == 0) {
            list.removeMarkers();
            std::erase(plain, marker);
        } else if (random() % 40 == 0) {
            list.clear();
            plain.clear();
        }
        ASSERT_EQ(valuesOf(list), plain) << "step " << step;
        ASSERT_EQ(list.hasMarker(), std::count(plain.begin(), plain.end(), marker) > 0) << "step " << step;
    }
}
