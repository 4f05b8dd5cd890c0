// Every waiter is known to be blocked before the next one arrives or a signal is given.
#include "Helper/Semaphore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <thread>
#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Ids = std::vector<int>;

// Threads that each wait once on a semaphore and note when they get through.
class Waiters {
public:
    explicit Waiters(Semaphore& semaphore) : mSemaphore(semaphore) {}

    ~Waiters()
    {
        // A failed expectation may leave threads blocked; free them all.
        while (through() < mThreads.size()) {
            mSemaphore.signalAll();
            std::this_thread::yield();
        }
        for (std::thread& thread : mThreads) {
            thread.join();
        }
    }

    // Starts one more waiter. True once it is blocked, false if it got
    // through without blocking.
    bool startBlocked()
    {
        const std::size_t blockedBefore = mSemaphore.blockedCount();
        const std::size_t throughBefore = through();
        const int id = static_cast<int>(mThreads.size());
        mThreads.emplace_back([this, id] {
            mSemaphore.wait();
            std::lock_guard<std::mutex> lock(mMutex);
            mOrder.push_back(id);
        });
        while (mSemaphore.blockedCount() != blockedBefore + 1) {
            if (through() > throughBefore) {
                return false;
            }
            std::this_thread::yield();
        }
        return true;
    }

    // The ids of the first `count` threads through, in the order they got there.
    Ids woken(std::size_t count)
    {
        while (through() < count) {
            std::this_thread::yield();
        }
        std::lock_guard<std::mutex> lock(mMutex);
        return mOrder;
    }

private:
    std::size_t through()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        return mOrder.size();
    }

    Semaphore& mSemaphore;
    std::vector<std::thread> mThreads;
    std::mutex mMutex;
    Ids mOrder;
};

TEST(SemaphoreTest, CountsSignalsWakesTheLastToBlockFirstAndSignalAllOnlyThoseBlocked)
{
    Semaphore semaphore(2);
    Waiters waiters(semaphore);
    semaphore.wait();
    semaphore.wait();
    semaphore.signal(0);
    semaphore.signalAll();
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(waiters.startBlocked()) << "a count of 2 served a third wait, or signal(0) or signalAll raised it";
    }

    semaphore.signal(0);
    semaphore.signal();
    EXPECT_EQ(semaphore.blockedCount(), 3u) << "signal(0) woke a thread, or signal() not exactly one";
    EXPECT_EQ(waiters.woken(1), Ids{3});
    semaphore.signal(2);
    Ids woken = waiters.woken(3);
    std::sort(woken.begin() + 1, woken.end());
    EXPECT_EQ(woken, (Ids{3, 1, 2})) << "the first to block waits longest";

    ASSERT_TRUE(waiters.startBlocked());
    semaphore.signalAll();
    EXPECT_EQ(semaphore.blockedCount(), 0u);
    EXPECT_EQ(waiters.woken(5).size(), 5u);
    ASSERT_TRUE(waiters.startBlocked()) << "a thread arriving after signalAll got through";
    semaphore.signal();
    EXPECT_EQ(waiters.woken(6).back(), 5);

    // Signals with nobody blocked are kept for later waits.
    semaphore.signal(2);
    semaphore.wait();
    semaphore.wait();
    EXPECT_TRUE(waiters.startBlocked());
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
