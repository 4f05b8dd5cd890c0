#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace Halvane::Quorvex {

// A counting semaphore that wakes the most recent waiter first. A signal
// with threads blocked hands the count straight to the last of them, so a
// thread arriving later cannot take it first.
class Semaphore {
public:
    explicit Semaphore(unsigned int count);
    virtual ~Semaphore();

    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    // Takes one from the count, blocking while it is 0.
    void wait();
    // Wakes the last thread to block, or adds one to the count when none is.
    void signal();
    // `count` single signals; 0 does nothing.
    void signal(unsigned int count);
    // Wakes every thread blocked at this moment and leaves the count as it is.
    void signalAll();

    // Threads blocked in `wait` right now, not counting those that a signal
    // has woken but that have not yet returned.
    std::size_t blockedCount() const;

private:
    // One blocked thread: it sleeps on its own condition, so a signal wakes
    // exactly the thread it chose.
    struct Sleeper {
        std::condition_variable mWake;
        bool mWoken = false;
    };

    void wake(Sleeper& sleeper);

    mutable std::mutex mMutex;
    unsigned int mCount;
    // Blocked threads, the most recent at the back.
    std::vector<Sleeper*> mSleepers;
    std::atomic<std::int64_t> mWaiters{0};
};

}  // namespace Halvane::Quorvex
