// Wake order and counting of the semaphore, with every waiter known to be
// blocked before the next one arrives or a signal is given.
#include "Helper/Semaphore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
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
            mThrough.notify_all();
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
        std::unique_lock<std::mutex> lock(mMutex);
        mThrough.wait(lock, [&] { return mOrder.size() >= count; });
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
    std::condition_variable mThrough;
    Ids mOrder;
};

TEST(SemaphoreTest, TheCountServesWaitsBeforeAnyoneBlocksAndSignalOfZeroAddsNothing)
{
    Semaphore semaphore(2);
    Waiters waiters(semaphore);
    semaphore.wait();
    semaphore.wait();
    semaphore.signal(0);
    ASSERT_TRUE(waiters.startBlocked()) << "a start count of 2 served a third wait, or signal(0) raised the count";
    semaphore.signal(0);
    EXPECT_EQ(semaphore.blockedCount(), 1u) << "signal(0) woke a thread";

    semaphore.signal();
    EXPECT_EQ(waiters.woken(1), Ids{0});

    // Signals with nobody blocked are kept for later waits.
    semaphore.signal(2);
    semaphore.wait();
    semaphore.wait();
    EXPECT_TRUE(waiters.startBlocked());
}

TEST(SemaphoreTest, SignalsWakeTheLastThreadToBlockFirst)
{
    Semaphore semaphore(0);
    Waiters waiters(semaphore);
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(waiters.startBlocked());
    }

    semaphore.signal();
    EXPECT_EQ(semaphore.blockedCount(), 3u);
    EXPECT_EQ(waiters.woken(1), Ids{3});

    semaphore.signal(2);
    EXPECT_EQ(semaphore.blockedCount(), 1u);
    Ids woken = waiters.woken(3);
    std::sort(woken.begin() + 1, woken.end());
    EXPECT_EQ(woken, (Ids{3, 1, 2})) << "the first to block waits longest";

    semaphore.signal();
    EXPECT_EQ(waiters.woken(4).back(), 0);
}

TEST(SemaphoreTest, SignalAllWakesExactlyThoseBlockedAtTheCall)
{
    Semaphore semaphore(0);
    Waiters waiters(semaphore);
    semaphore.signalAll();
    ASSERT_TRUE(waiters.startBlocked()) << "signalAll with nobody blocked raised the count";
    ASSERT_TRUE(waiters.startBlocked());
    ASSERT_TRUE(waiters.startBlocked());

    semaphore.signalAll();
    EXPECT_EQ(semaphore.blockedCount(), 0u);
    EXPECT_EQ(waiters.woken(3).size(), 3u);

    ASSERT_TRUE(waiters.startBlocked()) << "a thread arriving after signalAll got through";
    semaphore.signal();
    EXPECT_EQ(waiters.woken(4).back(), 3);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
