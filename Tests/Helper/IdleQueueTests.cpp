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

TEST(IdleQueueTest, RunsOneTaskPerUpdateOldestFirstGoesOnAfterFailuresClearsAndLosesNoTaskFromOtherThreads)
{
    auto token = std::make_shared<int>(0);
    Ids ran;
    {
        IdleQueue queue;
        bool seenWhileRunning = false;
        queue.async([&] {
            seenWhileRunning = queue.hasTask();
            queue.async([&ran] { ran.push_back(2); });
            ran.push_back(0);
        });
        queue.async([&ran] { ran.push_back(1); });
        queue.updateQueue();
        EXPECT_EQ(ran, Ids{0}) << "not one task per update";
        EXPECT_TRUE(seenWhileRunning) << "the queue looked empty while a task waited";
        queue.updateQueue();
        queue.updateQueue();
        EXPECT_EQ(ran, (Ids{0, 1, 2}));
        EXPECT_FALSE(queue.hasTask());

        // A failing task reaches the caller and the queue goes on.
        queue.async(std::function<void()>());
        queue.async([] { throw std::runtime_error("task failed"); });
        queue.async([&] { seenWhileRunning = queue.hasTask(); });
        EXPECT_THROW(queue.updateQueue(), std::bad_function_call);
        EXPECT_THROW(queue.updateQueue(), std::runtime_error);
        queue.updateQueue();
        EXPECT_FALSE(seenWhileRunning) << "a task being run still counted as waiting";

        // Cleared tasks, and those left at the end, are dropped unrun.
        queue.async([token, &ran] { ran.push_back(3); });
        queue.clearAsyncQueue();
        EXPECT_EQ(token.use_count(), 1) << "cleared tasks still held";
        EXPECT_FALSE(queue.hasTask());
        queue.async([&ran] { ran.push_back(5); });
        queue.updateQueue();

        // Producers on other threads lose no task and keep their own order.
        std::vector<Ids> produced(4);  // touched only by the consumer, on this thread
        std::atomic<int> producing{4};
        std::vector<std::thread> producers;
        for (int p = 0; p < 4; ++p) {
            producers.emplace_back([&, p] {
                for (int i = 0; i < 2000; ++i) {
                    queue.async([&produced, p, i] { produced[p].push_back(i); });
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
        Ids expected(2000);
        std::iota(expected.begin(), expected.end(), 0);
        EXPECT_EQ(produced, std::vector<Ids>(4, expected));
        queue.async([token, &ran] { ran.push_back(4); });
    }
    EXPECT_EQ(ran, (Ids{0, 1, 2, 5})) << "a cleared task ran, or the queue was unusable after a clear";
    EXPECT_EQ(token.use_count(), 1);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
