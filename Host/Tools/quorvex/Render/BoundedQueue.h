#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace Halvane::Quorvex::Tools {

// A queue between two threads that holds at most `capacity` items: the
// producer waits while it is full, the consumer while it is empty. close()
// ends the stream after the items already in it; abort() ends it at once
// for both sides.
template <typename T>
class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t capacity) : mCapacity(capacity > 0 ? capacity : 1) {}

    // Returns false, dropping the item, once the queue is aborted or closed.
    bool push(T item)
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mNotFull.wait(lock, [this] { return mAborted || mClosed || mItems.size() < mCapacity; });
        if (mAborted || mClosed) {
            return false;
        }
        mItems.push_back(std::move(item));
        mNotEmpty.notify_one();
        return true;
    }

    // The next item; none once the queue is closed and empty, or aborted.
    std::optional<T> pop()
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mNotEmpty.wait(lock, [this] { return mAborted || mClosed || !mItems.empty(); });
        if (mAborted || mItems.empty()) {
            return std::nullopt;
        }
        std::optional<T> item(std::move(mItems.front()));
        mItems.pop_front();
        mNotFull.notify_one();
        return item;
    }

    void close()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mClosed = true;
        mNotEmpty.notify_all();
        mNotFull.notify_all();
    }

    void abort()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mAborted = true;
        mItems.clear();
        mNotEmpty.notify_all();
        mNotFull.notify_all();
    }

private:
    const std::size_t mCapacity;
    std::mutex mMutex;
    std::condition_variable mNotFull;
    std::condition_variable mNotEmpty;
    std::deque<T> mItems;
    bool mClosed = false;
    bool mAborted = false;
};

}  // namespace Halvane::Quorvex::Tools
