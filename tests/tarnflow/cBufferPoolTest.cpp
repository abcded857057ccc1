#include "testStations.h"

#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>
#include <thread>

namespace {
constexpr auto s_patience = std::chrono::seconds(30);

/** Runs a function on a thread of its own and tells when it has ended. */
class Helper {
public:
    explicit Helper(std::function<void()> i_function)
        : m_thread([this, function = std::move(i_function)] {
              function();
              m_done.open();
          })
    {
    }
    ~Helper() { m_thread.join(); }
    bool hasEnded() { return m_done.pass(); }

private:
    Gate m_done;
    std::thread m_thread;
};

void waitUntilBlocked(const cOPortBase& i_port)
{
    const auto end = std::chrono::steady_clock::now() + s_patience;
    while (!i_port.isBlocked() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    ASSERT_TRUE(i_port.isBlocked());
}

struct Node : cStation {
    explicit Node(unsigned int i_limit) : out(this, QStringLiteral("out"), i_limit) {}
    cOPort<int> out;
};
} // namespace

TEST(cBufferPool, GivesBuffersUpToItsLimit)
{
    Node node(2);
    cBufferT<int>* first = node.out.getFreeBuffer(false);
    cBufferT<int>* second = node.out.getFreeBuffer(true);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->getRefCount(), 1);
    EXPECT_EQ(first->getParentPort(), &node.out);
    EXPECT_EQ(node.out.getFreeBuffer(false), nullptr);
    EXPECT_EQ(node.out.getBufferCount(), 2);
    EXPECT_EQ(node.out.getHeldCount(), 2);
    first->setValue(42);
    node.out.releaseAndUnrefBuffer(first);
    EXPECT_EQ(node.out.getHeldCount(), 1);
    cBufferT<int>* again = node.out.getFreeBuffer(false);
    EXPECT_EQ(again, first);
    EXPECT_EQ(again->getValue(), 42); // left in place until the next use
    again->releaseAndUnrefBufferAtPort();
    second->releaseAndUnrefBufferAtPort();
    EXPECT_EQ(node.out.getHeldCount(), 0);
}

TEST(cBufferPool, KeepsABufferUntilItsLastHolderGivesItBack)
{
    Node node(1);
    cBufferT<int>* buffer = node.out.getFreeBuffer(false);
    EXPECT_TRUE(buffer->ref());
    EXPECT_EQ(buffer->getRefCount(), 2);
    buffer->releaseAndUnrefBufferAtPort();
    EXPECT_EQ(node.out.getHeldCount(), 1);
    EXPECT_EQ(node.out.getFreeBuffer(false), nullptr);
    buffer->releaseAndUnrefBufferAtPort();
    EXPECT_EQ(node.out.getHeldCount(), 0);
}

TEST(cBufferPool, AnUnattachedPortGivesNothingAndWaitsForNothing)
{
    Node node(1);
    cOPort<int> port;
    EXPECT_EQ(port.getPoolLimit(), 0);
    EXPECT_EQ(port.getFreeBuffer(true), nullptr);
    port.init(&node, "late"_q, 0);
    EXPECT_EQ(port.getPoolLimit(), 2147483647);
    EXPECT_EQ(port.getName(), "late"_q);
    port.init(&node, "again"_q, 3);
    EXPECT_EQ(port.getName(), "late"_q);
    EXPECT_EQ(port.getPoolLimit(), 2147483647);
}

TEST(cBufferPool, TheKindOfPortSetsTheLimit)
{
    Node node(1);
    const std::unique_ptr<cOPortBase> made(node.out.makeOutport(&node, "made"_q));
    EXPECT_EQ(made->getPoolLimit(), 50000);
}

TEST(cBufferPool, ASenderSleepsAtTheLimitUntilABufferComesBack)
{
    Node node(1);
    cBufferT<int>* held = node.out.getFreeBuffer(false);
    cBuffer* taken = nullptr;
    {
        Helper sender([&] { taken = node.out.getFreeBufferBase(true); });
        waitUntilBlocked(node.out);
        held->releaseAndUnrefBufferAtPort();
        EXPECT_TRUE(sender.hasEnded());
    }
    EXPECT_EQ(taken, held);
    EXPECT_EQ(taken->getRefCount(), 1);
    EXPECT_FALSE(node.out.isBlocked());
    taken->releaseAndUnrefBufferAtPort();
}

TEST(cBufferPool, StopWakesSleepersWithNothing)
{
    Node node(1);
    cBufferT<int>* held = node.out.getFreeBuffer(false);
    cBuffer* taken = held;
    {
        Helper sender([&] { taken = node.out.getFreeBufferBase(true); });
        waitUntilBlocked(node.out);
        node.out.setStopped(true);
        EXPECT_TRUE(sender.hasEnded());
    }
    EXPECT_EQ(taken, nullptr);
    EXPECT_EQ(node.out.getFreeBufferBase(true), nullptr); // nobody sleeps any more
    held->releaseAndUnrefBufferAtPort();
    cBuffer* free = node.out.getFreeBufferBase(true); // what is there is given all the same
    ASSERT_TRUE(free);
    free->releaseAndUnrefBufferAtPort();
}

TEST(cBufferPool, ExtraRoomWakesASleeper)
{
    Node node(1);
    cBufferT<int>* held = node.out.getFreeBuffer(false);
    cBuffer* taken = nullptr;
    {
        Helper sender([&] { taken = node.out.getFreeBufferBase(true); });
        waitUntilBlocked(node.out);
        node.out.setExtraRoom(1);
        EXPECT_TRUE(sender.hasEnded());
    }
    ASSERT_TRUE(taken);
    EXPECT_NE(taken, held);
    EXPECT_EQ(node.out.getBufferCount(), 2);
    node.out.setExtraRoom(0);
    taken->releaseAndUnrefBufferAtPort(); // beyond the room that is left
    EXPECT_EQ(node.out.getBufferCount(), 1);
    held->releaseAndUnrefBufferAtPort();
    EXPECT_EQ(node.out.getHeldCount(), 0);
}

TEST(cBufferPool, APrivateCopyCountsForNoPool)
{
    Node node(1);
    cBufferT<int>* original = node.out.getFreeBuffer(false);
    original->setValue(5);
    original->setStamp({7, 8});
    auto* copy = static_cast<cBufferT<int>*>(node.out.makePrivateCopy(original));
    EXPECT_EQ(copy->getValue(), 5);
    EXPECT_EQ(copy->getStamp().getStamp(), 7);
    EXPECT_EQ(copy->getStamp().getTime(), 8);
    EXPECT_EQ(copy->getRefCount(), 1);
    EXPECT_EQ(copy->getParentPort(), &node.out);
    EXPECT_EQ(node.out.getBufferCount(), 1);
    copy->releaseAndUnrefBufferAtPort();
    original->releaseAndUnrefBufferAtPort();
    EXPECT_EQ(node.out.getHeldCount(), 0);
}

TEST(cBufferPool, ABufferOutlivesItsPort)
{
    auto node = std::make_unique<Node>(3);
    cBufferT<int>* held = node->out.getFreeBuffer(false);
    cBufferT<int>* other = node->out.getFreeBuffer(false);
    cBuffer* copy = node->out.makePrivateCopy(held);
    other->releaseAndUnrefBufferAtPort();
    held->setValue(9);
    node.reset();
    EXPECT_EQ(held->getParentPort(), nullptr);
    EXPECT_EQ(copy->getParentPort(), nullptr);
    EXPECT_EQ(held->getValue(), 9);
    held->releaseAndUnrefBufferAtPort();
    copy->releaseAndUnrefBufferAtPort();
}

TEST(cBufferPool, ServesManyThreads)
{
    Node node(4);
    constexpr int threads = 8;
    constexpr int rounds = 2000;
    std::atomic<int> greatest {0};
    {
        std::vector<std::unique_ptr<Helper>> helpers;
        for (int i = 0; i < threads; ++i)
            helpers.push_back(std::make_unique<Helper>([&, i] {
                for (int round = 0; round < rounds; ++round) {
                    auto* buffer = node.out.getFreeBuffer(true);
                    buffer->setValue(i);
                    greatest = std::max(greatest.load(), node.out.getHeldCount());
                    EXPECT_EQ(buffer->getValue(), i);
                    buffer->releaseAndUnrefBufferAtPort();
                }
            }));
    }
    EXPECT_LE(greatest, 4);
    EXPECT_LE(node.out.getBufferCount(), 4);
    EXPECT_EQ(node.out.getHeldCount(), 0);
}

TEST(cBuffer, WorksInPlaceForItsOnlyHolder)
{
    Node node(2);
    cBufferT<int>* buffer = node.out.getFreeBuffer(false);
    buffer->setValue(3);
    buffer->setStamp(11);
    int* value = nullptr;
    EXPECT_EQ(node.out.getFreeOrDuplicateBuffer(buffer, value), buffer);
    EXPECT_EQ(value, &buffer->m_value);
    EXPECT_EQ(buffer->getRefCount(), 2);

    // Now there is a second holder, so that the next one gets a copy.
    cBufferT<int>* other = node.out.getFreeOrDuplicateBuffer(buffer, value);
    ASSERT_NE(other, buffer);
    EXPECT_EQ(value, &other->m_value);
    EXPECT_EQ(other->getValue(), 3);
    EXPECT_EQ(other->getStamp(), cBufferStamp(11));
    *value = 4;
    EXPECT_EQ(buffer->getValue(), 3);

    node.out.setStopped(true);
    EXPECT_EQ(node.out.getFreeOrDuplicateBuffer(buffer, value), nullptr);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(node.out.getFates().lost, 1u);
    other->releaseAndUnrefBufferAtPort();
    buffer->releaseAndUnrefBufferAtPort();
    buffer->releaseAndUnrefBufferAtPort();
}
