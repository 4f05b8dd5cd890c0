#include "Helper/Semaphore.h"

namespace Halvane::Quorvex {

Semaphore::Semaphore(unsigned int count) : mCount(count) {}

Semaphore::~Semaphore() = default;

void Semaphore::wait()
{
    ++mWaiters;
    {
        std::unique_lock<std::mutex> lock(mMutex);
        if (mCount > 0) {
            --mCount;
        } else {
            Sleeper sleeper;
            mSleepers.push_back(&sleeper);
            sleeper.mWake.wait(lock, [&sleeper] { return sleeper.mWoken; });
        }
    }
    --mWaiters;
}

void Semaphore::signal()
{
    std::lock_guard<std::mutex> lock(mMutex);
    if (mSleepers.empty()) {
        ++mCount;
        return;
    }
    Sleeper* last = mSleepers.back();
    mSleepers.pop_back();
    wake(*last);
}

void Semaphore::signal(unsigned int count)
{
    for (unsigned int i = 0; i < count; ++i) {
        signal();
    }
}

void Semaphore::signalAll()
{
    std::lock_guard<std::mutex> lock(mMutex);
    while (!mSleepers.empty()) {
        Sleeper* last = mSleepers.back();
        mSleepers.pop_back();
        wake(*last);
    }
}

std::size_t Semaphore::blockedCount() const
{
    std::lock_guard<std::mutex> lock(mMutex);
    return mSleepers.size();
}

void Semaphore::wake(Sleeper& sleeper)
{
    // Notified under the lock: the sleeper lives on its thread's stack and
    // cannot leave `wait` before the lock is free.
    sleeper.mWoken = true;
    sleeper.mWake.notify_one();
}

}  // namespace Halvane::Quorvex
