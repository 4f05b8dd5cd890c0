// The idle queue driven by its consumer: order, re-entry, clearing, failing
// tasks, and producers on other threads.
#include "Helper/IdleQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Ids = std::vector<int>;

TEST(IdleQueueTest, RunsOneTaskPerUpdateOldestFirstAndARunningTaskMayQueueMore)
{
    IdleQueue queue;
    Ids ran;
    bool seenWhileRunning = true;
    queue.updateQueue();
    queue.async([&] {
        seenWhileRunning = queue.hasTask();
        queue.async([&ran] { ran.push_back(3); });
        ran.push_back(0);
    });
    for (int i = 1; i < 3; ++i) {
        queue.async([&ran, i] { ran.push_back(i); });
    }

    queue.updateQueue();
    EXPECT_EQ(ran, Ids{0}) << "not one task per update";
    EXPECT_TRUE(seenWhileRunning) << "the queue looked empty while two tasks waited";
    queue.updateQueue();
    queue.updateQueue();
    EXPECT_TRUE(queue.hasTask());
    queue.updateQueue();
    EXPECT_EQ(ran, (Ids{0, 1, 2, 3}));
    EXPECT_FALSE(queue.hasTask());
    queue.updateQueue();
    EXPECT_EQ(ran.size(), 4u);

    // A task being run no longer counts as waiting.
    queue.async([&] { seenWhileRunning = queue.hasTask(); });
    queue.updateQueue();
    EXPECT_FALSE(seenWhileRunning);
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
    std::vector<Ids> ran(kProducers);  // touched only by the consumer, on this thread
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
        queue.updateQueue();
    }
    for (std::thread& producer : producers) {
        producer.join();
    }
    Ids expected(kTasksEach);
    std::iota(expected.begin(), expected.end(), 0);
    for (int p = 0; p < kProducers; ++p) {
        EXPECT_EQ(ran[p], expected) << "producer " << p;
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
