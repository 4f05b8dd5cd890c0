#include "Helper/IdleQueue.h"

#include "Helper/Semaphore.h"

#include <utility>

namespace Halvane::Quorvex {

namespace {

// Holds a count-1 semaphore as a lock for one scope.
class SemaphoreLock {
public:
    explicit SemaphoreLock(Semaphore& semaphore) : mSemaphore(semaphore) { mSemaphore.wait(); }
    ~SemaphoreLock() { mSemaphore.signal(); }

    SemaphoreLock(const SemaphoreLock&) = delete;
    SemaphoreLock& operator=(const SemaphoreLock&) = delete;

private:
    Semaphore& mSemaphore;
};

}  // namespace

IdleQueue::IdleQueue() : mLock(std::make_unique<Semaphore>(1)) {}

IdleQueue::~IdleQueue()
{
    mLock.reset();
}

void IdleQueue::async(const std::function<void()>& task)
{
    SemaphoreLock lock(*mLock);
    mQueue.push_back(task);
}

bool IdleQueue::hasTask()
{
    SemaphoreLock lock(*mLock);
    return !mQueue.empty();
}

void IdleQueue::updateQueue()
{
    // One span of the lock both checks and takes, so a clear from another
    // thread between the two cannot leave us reading an empty queue.
    std::function<void()> task;
    {
        SemaphoreLock lock(*mLock);
        if (mQueue.empty()) {
            return;
        }
        task = std::move(mQueue.front());
        mQueue.pop_front();
    }
    task();
}

void IdleQueue::clearAsyncQueue()
{
    std::deque<std::function<void()>> dropped;
    {
        SemaphoreLock lock(*mLock);
        dropped.swap(mQueue);
    }
    // The tasks die here, with the lock free, so that what they captured may
    // use the queue as it is destroyed.
}

}  // namespace Halvane::Quorvex
