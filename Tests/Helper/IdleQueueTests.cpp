// The idle queue driven by its consumer: order, re-entry, clearing, failing
// tasks, and producers on other threads.
#include "Helper/IdleQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Ids = std::vector<int>;

TEST(IdleQueueTest, RunsOneTaskPerUpdateOldestFirst)
{
    IdleQueue queue;
    Ids ran;
    queue.updateQueue();
    for (int i = 0; i < 3; ++i) {
        queue.async([&ran, i] { ran.push_back(i); });
    }
    queue.updateQueue();
    EXPECT_EQ(ran, Ids{0});
    queue.updateQueue();
    queue.updateQueue();
    EXPECT_EQ(ran, (Ids{0, 1, 2}));
    EXPECT_FALSE(queue.hasTask());
    queue.updateQueue();
    EXPECT_EQ(ran.size(), 3u);
}

TEST(IdleQueueTest, ARunningTaskIsNoLongerQueuedAndMayQueueMore)
{
    IdleQueue queue;
    Ids ran;
    bool seenWhileRunning = true;
    queue.async([&] {
        seenWhileRunning = queue.hasTask();
        queue.async([&ran] { ran.push_back(2); });
        ran.push_back(1);
    });
    queue.updateQueue();
    EXPECT_FALSE(seenWhileRunning);
    EXPECT_EQ(ran, Ids{1}) << "the queued task ran within the same update";
    EXPECT_TRUE(queue.hasTask());
    queue.updateQueue();
    EXPECT_EQ(ran, (Ids{1, 2}));
}

TEST(IdleQueueTest, ClearingAndDestroyingDropTasksUnrun)
{
    auto token = std::make_shared<int>(0);
    bool ran = false;
    {
        IdleQueue queue;
        queue.async([token, &ran] { ran = true; });
        queue.async([token, &ran] { ran = true; });
        queue.clearAsyncQueue();
        EXPECT_EQ(token.use_count(), 1) << "cleared tasks still held";
        EXPECT_FALSE(queue.hasTask());
        queue.updateQueue();
        EXPECT_FALSE(ran);

        queue.async([&ran] { ran = true; });
        queue.updateQueue();
        EXPECT_TRUE(ran) << "the queue is unusable after a clear";

        ran = false;
        queue.async([token, &ran] { ran = true; });
    }
    EXPECT_FALSE(ran);
    EXPECT_EQ(token.use_count(), 1);
}

TEST(IdleQueueTest, AFailingTaskReachesTheCallerAndLeavesTheQueueUsable)
{
    IdleQueue queue;
    Ids ran;
    queue.async(std::function<void()>());
    queue.async([] { throw std::runtime_error("task failed"); });
    queue.async([&ran] { ran.push_back(3); });

    EXPECT_THROW(queue.updateQueue(), std::bad_function_call);
    EXPECT_THROW(queue.updateQueue(), std::runtime_error);
    EXPECT_TRUE(queue.hasTask());
    queue.updateQueue();
    EXPECT_EQ(ran, Ids{3});
    EXPECT_FALSE(queue.hasTask());
}

TEST(IdleQueueTest, ManyProducersLoseNoTaskAndKeepTheirOwnOrder)
{
    constexpr int kProducers = 4;
    constexpr int kTasksEach = 2000;
    IdleQueue queue;
    // Touched only by the consumer, on this thread.
    std::vector<Ids> ran(kProducers);

    std::atomic<int> producing{kProducers};

    std::vector<std::thread> producers;
    for (int p = 0; p < kProducers; ++p) {
        producers.emplace_back([&queue, &ran, &producing, p] {
            for (int i = 0; i < kTasksEach; ++i) {
                queue.async([&ran, p, i] { ran[p].push_back(i); });
            }
            --producing;
        });
    }
    // Read before hasTask: once no producer is left, an empty queue stays empty.
    for (int left = producing; left > 0 || queue.hasTask(); left = producing) {
        if (queue.hasTask()) {
            queue.updateQueue();
        } else {
            std::this_thread::yield();
        }
    }
    for (std::thread& producer : producers) {
        producer.join();
    }
    for (int p = 0; p < kProducers; ++p) {
        ASSERT_EQ(ran[p].size(), static_cast<std::size_t>(kTasksEach)) << "producer " << p;
        for (int i = 0; i < kTasksEach; ++i) {
            ASSERT_EQ(ran[p][i], i) << "producer " << p;
        }
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
